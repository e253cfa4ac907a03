#include "windows/rich/RtfPartText.h"

#include <QLocale>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>

#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {

using rtf::Part;
using rtf::PartKind;

namespace {

constexpr int kHexBase = 16;

/// "example.org" of "https://www.Example.org/a"; empty for what names none.
QString HostOf(const QString& address) {
  QString host = address.trimmed().toLower();
  const qsizetype scheme = host.indexOf(u"://"_s);
  if (scheme < 0 && !host.startsWith(u"www."_s)) return {};
  if (scheme >= 0) host = host.sliced(scheme + 3);
  static const QRegularExpression kEndOfHost(u"[/?#\\s:\\\\]"_s);
  const qsizetype end = host.indexOf(kEndOfHost);
  if (end >= 0) host.truncate(end);
  if (const qsizetype user = host.lastIndexOf(u'@'); user >= 0) host = host.sliced(user + 1);
  return host.startsWith(u"www."_s) ? host.sliced(4) : host;
}

}  // namespace

QString RtfPartText::Shown(const std::string& text) {
  QString shown;
  for (const QChar character : DisplayText(text)) {
    const char16_t code = character.unicode();
    const bool is_order = (code >= u'\u202A' && code <= u'\u202E') || (code >= u'\u2066' && code <= u'\u2069');
    const bool is_mark = code == u'\u200E' || code == u'\u200F' || code == u'\u061C';
    shown += is_order || is_mark ? u"[U+%1]"_s.arg(QString::number(code, kHexBase).toUpper().rightJustified(4, u'0'))
                                 : QString(character);
  }
  return shown;
}

bool RtfPartText::IsOtherAddress(const QString& text, const QString& target) {
  const QString host = HostOf(text);
  return !host.isEmpty() && host != HostOf(target);
}

bool RtfPartText::IsOtherAddress(const rtf::Part& part) {
  if (part.targets.empty()) return false;
  return IsOtherAddress(QString::fromStdString(part.shown), QString::fromStdString(part.targets.front()));
}

/// What is dangerous comes first.
QString RtfPartText::OfObject(const Part& part) {
  QString text = part.is_linked ? tr("Linked object") : tr("Embedded object");
  if (part.is_updated) text = tr("Run when opened: %1").arg(text.toLower());
  if (!part.name.empty()) text += u": "_s + Shown(part.name);
  return part.declared_class.empty() ? text : tr("%1, called %2").arg(text, Shown(part.declared_class));
}

QString RtfPartText::OfField(const QString& word) {
  const std::pair<const char*, QString> meanings[] = {
      {"ADDIN", tr("data of another program")},
      {"BARCODE", tr("a bar code")},
      {"AUTOTEXT", tr("fetches text of a template")},
      {"CONTROL", tr("runs a control of a program")},
      {"DATABASE", tr("fetches from a data base")},
      {"DDE", tr("talks to another program, can start it")},
      {"DDEAUTO", tr("starts another program when the file opens")},
      {"EMBED", tr("an embedded object")},
      {"HTMLACTIVEX", tr("runs a control of a program")},
      {"IMPORT", tr("fetches a picture")},
      {"INCLUDE", tr("fetches another file")},
      {"INCLUDEPICTURE", tr("fetches a picture")},
      {"INCLUDETEXT", tr("fetches another file")},
      {"LINK", tr("fetches from another file")},
      {"MACROBUTTON", tr("runs a macro when clicked")},
      {"PRINT", tr("sends commands to the printer")},
      {"RD", tr("fetches another file")},
  };
  const auto known =
      std::ranges::find(meanings, word, [](const auto& entry) { return QLatin1StringView(entry.first); });
  return known == std::end(meanings) ? word : tr("%1: %2").arg(word, known->second);
}

/// By its control word, which stands behind for who knows them.
QString RtfPartText::NameOfGroup(const Part& part) {
  const std::pair<const char*, QString> names[] = {
      {"background", tr("Background of the pages")},
      {"blipuid", tr("Numbers of pictures")},
      {"colorschememapping", tr("Colors of the theme")},
      {"company", tr("Name of a company")},
      {"datafield", tr("Data of fields")},
      {"datastore", tr("Data of programs and forms")},
      {"docvar", tr("Variables of the document")},
      {"defchp", tr("Usual format of text")},
      {"defpap", tr("Usual format of paragraphs")},
      {"ffdata", tr("Data of fields to fill in")},
      {"file", tr("Another file")},
      {"fontemb", tr("Embedded fonts")},
      {"fontfile", tr("Font in another file")},
      {"formfield", tr("Data of fields to fill in")},
      {"hlinkbase", tr("Where links begin")},
      {"htmltag", tr("Markup of a page or message")},
      {"latentstyles", tr("Styles that are not used")},
      {"linkval", tr("Property from elsewhere")},
      {"mailmerge", tr("Letters to many")},
      {"mmathPr", tr("Settings of formulas")},
      {"mmconnectstr", tr("Data base for letters to many")},
      {"mmconnectstrdata", tr("Data base for letters to many")},
      {"mmdatasource", tr("Data for letters to many")},
      {"mmheadersource", tr("Data for letters to many")},
      {"mmodsosrc", tr("Data for letters to many")},
      {"mmodsoudl", tr("Data base for letters to many")},
      {"mmquery", tr("Query of a data base")},
      {"nextfile", tr("File that follows when printed")},
      {"oldcprops", tr("Formats before tracked changes")},
      {"oldpprops", tr("Formats before tracked changes")},
      {"passwordhash", tr("Password against changes")},
      {"pgptbl", tr("Formats of paragraphs on pages")},
      {"pibName", tr("Picture in another file")},
      {"protusertbl", tr("Who may change it")},
      {"rsidtbl", tr("Numbers of editing sessions")},
      {"themedata", tr("Theme")},
      {"userprops", tr("Properties of the document")},
      {"wgrffmtfilter", tr("Which styles are listed")},
      {"xmlnstbl", tr("Names of markup")},
  };
  const QString word = Shown(part.name);
  const auto known = std::ranges::find(names, word, [](const auto& entry) { return QLatin1StringView(entry.first); });
  return known == std::end(names) ? word : tr("%1 – %2").arg(known->second, word);
}

QString RtfPartText::What(const Part& part) {
  const QString name = Shown(part.name);
  switch (part.kind) {
    case PartKind::Object:
      return OfObject(part);
    case PartKind::Template:
      return tr("Template");
    case PartKind::ActiveField:
      return name.isEmpty() ? tr("Field that another field makes") : OfField(name);
    case PartKind::Link:
      if (IsOtherAddress(part)) return tr("Link that shows another address");
      return part.name == "HYPERLINK" ? tr("Link") : tr("Link of a drawing");
    case PartKind::Picture: {
      const QString text = name.isEmpty() ? tr("Picture") : tr("Picture (%1)").arg(name);
      return part.is_copy ? text + u' ' + tr("– the same for older programs") : text;
    }
    default:
      return part.count > 1 ? tr("%1 (%2 times)").arg(NameOfGroup(part), QLocale().toString(part.count))
                            : NameOfGroup(part);
  }
}

QString RtfPartText::Where(const Part& part) {
  QStringList targets;
  for (const std::string& target : part.targets) targets.append(Shown(target));
  if (IsOtherAddress(part)) targets.append(tr("its text: %1").arg(Shown(part.shown)));
  return targets.join(u"; "_s);
}

QString RtfPartText::Size(const Part& part) {
  return part.bytes > 0 ? QLocale().formattedDataSize(static_cast<qint64>(part.bytes)) : QString();
}

QString RtfPartText::Tip(const Part& part) {
  QStringList texts{What(part)};
  for (const QString& text : {Size(part), Where(part)})
    if (!text.isEmpty()) texts.append(text);
  return texts.join(u"\n"_s);
}

QString RtfPartText::Meaning(PartKind kind) {
  switch (kind) {
    case PartKind::Object:
      return tr(
          "Data of other programs. A word processor hands them to that program when they are opened, and those that "
          "are "
          "run when opened as soon as it opens the file. Do not open them unless you trust who made the file.");
    case PartKind::Template:
      return tr(
          "A document that a word processor loads when it opens this file, from the place that is named. It can bring "
          "programs (macros) with it.");
    case PartKind::ActiveField:
      return tr(
          "Places whose text a word processor works out. For these it reads another file, asks an address on the net "
          "or starts a program.");
    case PartKind::Reference:
      return tr("Files and data bases elsewhere that other programs read when they open this file.");
    case PartKind::Link:
      return tr(
          "Addresses that open in other programs when the link is clicked. The text of a link may show another "
          "address.");
    case PartKind::Picture:
      return tr("Pictures that stand in the file itself.");
    case PartKind::Unshown:
      break;
  }
  return tr("Parts that this editor does not show. They stay in the file as they are.");
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
