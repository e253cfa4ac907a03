// The forms in which a registry document that is held whole can be saved.
#include <QStringList>
#include <algorithm>

#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegSourceLine.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "windows/reg/RegValueText.h"
#include "windows/reg/form_REG.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// A document that became another kind is never REGEDIT again: it holds default values alone.
std::vector<RegVersion> VersionsFor(const RegDocument& document) {
  if (document.Version() == RegVersion::Regedit)
    return {RegVersion::Regedit, RegVersion::Regedit4, RegVersion::Version5};
  return {RegVersion::Regedit4, RegVersion::Version5};
}

QString NameOfVersion(RegVersion version) {
  const std::string_view line = HeaderOf(version);
  return QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
}

}  // namespace

std::vector<FormKind> form_REG::FormKinds() const {
  std::vector<FormKind> kinds;
  for (const RegVersion version : VersionsFor(document_))
    kinds.push_back(
        {NameOfVersion(version), version == RegVersion::Version5 ? TextEncoding::Utf16Le : TextEncoding::CodePage});
  return kinds;
}

std::size_t form_REG::PresentKind() const {
  const std::vector<RegVersion> versions = VersionsFor(document_);
  return static_cast<std::size_t>(std::find(versions.begin(), versions.end(), document_.Version()) - versions.begin());
}

bool form_REG::ConfirmKind(std::size_t kind) {
  constexpr std::size_t kMostListed = 8;
  const RegVersion target = VersionsFor(document_)[kind];
  const std::vector<RegUnsayable> unsayable = UnsayableIn(document_, target, CodingOf(document_));
  if (unsayable.empty()) return true;
  QStringList said{Counted(unsayable.size(), tr("1 value has a text that cannot be said in %2:"),
                           tr("%1 values have texts that cannot be said in %2:"))
                       .arg(NameOfVersion(target))};
  for (std::size_t index = 0; index < std::min(unsayable.size(), kMostListed); ++index)
    said += tr("line %1: %2")
                .arg(QString::number(unsayable[index].line), DisplayText(QuotedRegName(unsayable[index].name), 60));
  if (unsayable.size() > kMostListed) said += u"…"_s;
  said += QString();
  said += tr("Converted anyway, each keeps its bytes as they are, which are another text in such a file.");
  return global_.dialogs.Choose(said.join(u'\r'), {tr("Convert &Anyway"), tr("Cancel")}, MsgIcon::Warning,
                                tr("Save As Another Form")) == 0;
}

void form_REG::BecomeKind(std::size_t kind) { BecomeVersion(VersionsFor(document_)[kind]); }

void form_REG::BecomeVersion(RegVersion target) {
  const WaitCursor wait_cursor;
  const RegDocument::Step step(document_, EditName::Convert);
  const SourceLines& lines = document_.Lines();
  if (document_.Version() == RegVersion::Regedit)
    document_.ReplaceLines(lines.First(), lines.Last(), WithoutPairs(document_));
  document_.ConvertTo(target, CodingOf(document_));
}

form_REG::SaveOutcome form_REG::ConfirmCharacters(const SaveRequest& request) {
  const bool is_8bit = file_.Format().encoding == TextEncoding::CodePage && document_.Version() != RegVersion::Version5;
  const QString unfit = is_8bit && IsModified() ? UnfitLine(file_.Format()) : QString();
  if (unfit.isEmpty()) return SaveOutcome::Saved;
  const QString why =
      tr("A file of this kind, %1, has no place for a character of %2").arg(NameOfVersion(document_.Version()), unfit);
  if (request.caller == SaveRequest::Caller::AutoSave) {
    AddNotice(tr("AutoSave passed over this document.") + u' ' + QString(why).replace(u'\r', u' '));
    return SaveOutcome::Cancelled;
  }
  const QString question = why + u"\r\r"_s + tr("As %1, in UTF-16, it has.").arg(NameOfVersion(RegVersion::Version5));
  if (global_.dialogs.Choose(question, {tr("&Save as 5.00"), tr("Cancel")}, MsgIcon::Question, kProgramTitle) != 0)
    return global_.frame.IsLeaving() ? SaveOutcome::Cancelled : SaveOutcome::Failed;
  const RegDocument::Step step(document_, EditName::Convert);
  const auto put = [this](const TextFormat& format) { return [this, format] { file_.SetFormat(format); }; };
  const TextFormat format{TextEncoding::Utf16Le, {}};
  BecomeVersion(RegVersion::Version5);
  AddFormatStep(put(file_.Format()), put(format));
  file_.SetFormat(format);
  return SaveOutcome::Saved;
}

std::string form_REG::TextForOtherHolding() { return IsWhole() ? Content() : WithoutAsShownMark(Content()); }

}  // namespace tme
