#include "windows/rich/RtfPartText.h"

#include <QLocale>
#include <QStringList>

#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {

using rtf::Part;
using rtf::PartKind;

QString RtfPartText::What(const Part& part) {
  const QString name = DisplayText(part.name);
  switch (part.kind) {
    case PartKind::Object: {
      QString text = part.is_linked ? tr("Linked object") : tr("Embedded object");
      if (!name.isEmpty()) text += u": "_s + name;
      if (!part.declared_class.empty()) text += u' ' + tr("(said to be %1)").arg(DisplayText(part.declared_class));
      return part.is_updated ? text + u' ' + tr("– asks to be updated when the file opens") : text;
    }
    case PartKind::Template:
      return tr("Template");
    case PartKind::ActiveField:
      return name.isEmpty() ? tr("Field that another field makes") : name;
    case PartKind::Link:
      return part.name == "HYPERLINK" ? tr("Link") : tr("Link of a drawing");
    case PartKind::Picture: {
      const QString text = name.isEmpty() ? tr("Picture") : tr("Picture (%1)").arg(name);
      return part.is_copy ? text + u' ' + tr("– the same for older programs") : text;
    }
    default:
      return part.count > 1 ? tr("%1 (%2 times)").arg(name, QLocale().toString(part.count)) : name;
  }
}

QString RtfPartText::Where(const Part& part) {
  QStringList targets;
  for (const std::string& target : part.targets) targets.append(DisplayText(target));
  return targets.join(u"; "_s);
}

QString RtfPartText::Size(const Part& part) {
  return part.bytes > 0 ? QLocale().formattedDataSize(static_cast<qint64>(part.bytes)) : QString();
}

QString RtfPartText::Tip(const Part& part) {
  QStringList texts{What(part)};
  for (const QString& text : {Where(part), Size(part)})
    if (!text.isEmpty()) texts.append(text);
  return texts.join(u"\n"_s);
}

QString RtfPartText::Heading(PartKind kind) {
  switch (kind) {
    case PartKind::Object:
      return tr("Embedded and linked objects");
    case PartKind::Template:
      return tr("Templates that other programs fetch");
    case PartKind::ActiveField:
      return tr("Fields that other programs fetch or run something for");
    case PartKind::Reference:
      return tr("Files and sources elsewhere");
    case PartKind::Link:
      return tr("Links");
    case PartKind::Picture:
      return tr("Pictures");
    case PartKind::Unshown:
      break;
  }
  return tr("Kept, but not shown");
}

}  // namespace tme
