#include "windows/options/FilterList.h"

#include <QCoreApplication>
#include <algorithm>

#include "system/ShellUtilities.h"
#include "windows/options/HelpTexts.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr qsizetype kMaxCharacters = 4;
constexpr QLatin1StringView kIllegalCharacters("/\\:*?<>|\"");

}  // namespace

void FilterList::Load(const QString& filter) {
  extensions_.clear();
  for (const QString& piece : filter.split(u';')) Add(piece.startsWith("*."_L1) ? piece.mid(2) : piece);
}

QString FilterList::Save() const {
  QStringList pieces;
  for (const QString& extension : extensions_) pieces += "*."_L1 + extension;
  return pieces.join(u';');
}

qsizetype FilterList::Add(const QString& extension) {
  if (extension.isEmpty()) return -1;
  for (qsizetype index = 0; index < extensions_.size(); ++index)
    if (extensions_[index].compare(extension, Qt::CaseInsensitive) == 0) return index;
  extensions_.append(extension);
  return extensions_.size() - 1;
}

void FilterList::Remove(qsizetype index) {
  if (index >= 0 && index < extensions_.size()) extensions_.removeAt(index);
}

ExtensionFault CheckExtension(const QString& extension) {
  if (extension.isEmpty()) return ExtensionFault::Empty;
  if (extension.size() > kMaxCharacters) return ExtensionFault::TooLong;
  const bool illegal = std::any_of(extension.begin(), extension.end(),
                                   [](QChar character) { return kIllegalCharacters.contains(character); });
  return illegal ? ExtensionFault::IllegalCharacter : ExtensionFault::None;
}

QString ExtensionFaultText(ExtensionFault fault, const QString& extension) {
  const ShellUtilities shell_utilities;
  const auto text = [&](int id) { return shell_utilities.FormatHelpText(HelpText(id)); };
  switch (fault) {
    case ExtensionFault::Empty:
      return text(112);
    case ExtensionFault::TooLong:
      return text(110) + extension + text(111);
    case ExtensionFault::IllegalCharacter:
      return text(113) + kIllegalCharacters + QCoreApplication::translate("FilterList", "\r\rPlease Try Again.");
    case ExtensionFault::None:
      break;
  }
  return {};
}

}  // namespace tme
