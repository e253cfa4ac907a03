#include "windows/history/VersionComparison.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "base/LineReader.h"
#include "documents/compare/OutlineDiff.h"
#include "documents/ini/IniLine.h"
#include "documents/reg/RegAsShown.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfWriter.h"
#include "files/CodePage.h"
#include "files/FileBytes.h"
#include "files/TextEncoding.h"
#include "shell/DisplayText.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString Tr(const char* text) { return QCoreApplication::translate("VersionComparison", text); }

void CountLines(VersionComparison& result) {
  const auto count = [&](DiffChange change) {
    return static_cast<std::uint64_t>(std::ranges::count(result.lines, change, &DiffLine::change));
  };
  result.only_here = count(DiffChange::Added);
  result.only_now = count(DiffChange::Removed);
}

/// In each run of lines that differ, those that stand only now come first.
void PutNowFirst(std::vector<DiffLine>& lines) {
  const auto is_same = [](const DiffLine& line) { return line.change == DiffChange::Same; };
  for (auto begin = lines.begin(); begin != lines.end();) {
    begin = std::find_if_not(begin, lines.end(), is_same);
    const auto end = std::find_if(begin, lines.end(), is_same);
    std::stable_partition(begin, end, [](const DiffLine& line) { return line.change == DiffChange::Removed; });
    begin = end;
  }
}

void CompareTexts(VersionComparison& result, const std::stop_token& stop = {}) {
  result.lines = DiffLines(result.now_text, result.text, kMostChangedLines, stop);
  PutNowFirst(result.lines);
  CountLines(result);
}

RegCoding StructureCoding() {
  return {.version = RegVersion::Regedit4, .from_code_page = CodePageToUtf8, .to_code_page = Utf8ToCodePage};
}

/// Takes both texts for what they say.
void CompareStructures(DocumentKind kind, VersionComparison& result, const std::stop_token& stop) {
  const auto read = [kind](std::string text) {
    return kind == DocumentKind::Ini ? ReadIniOutline(std::move(text))
                                     : ReadRegOutline(std::move(text), StructureCoding());
  };
  const Outline now = read(std::move(result.now_text));
  if (stop.stop_requested()) return;
  const Outline then = read(result.text);
  result.now_text.clear();
  if (stop.stop_requested()) return;
  result.differences = DiffText(now, then, DiffOutlines(now, then));
  if (result.differences.empty()) {
    result.outcome = VersionComparison::Outcome::SameStructure;
    result.lines = DiffLines(result.text, result.text);
    return;
  }
  result.outcome = VersionComparison::Outcome::Different;
  LineReader reader(result.differences);
  for (std::string_view line; reader.Next(line);) {
    const DiffChange change = line.front() == '+'   ? DiffChange::Added
                              : line.front() == '-' ? DiffChange::Removed
                                                    : DiffChange::Same;
    result.lines.push_back({change, line.substr(1)});
  }
  CountLines(result);
}

void CompareSorted(VersionComparison& result) {
  VersionComparison sorted;
  sorted.text = SortedIni(result.text);
  sorted.now_text = SortedIni(result.now_text);
  CompareTexts(sorted);
  if (sorted.only_here + sorted.only_now >= result.only_here + result.only_now) return;
  if (sorted.only_here + sorted.only_now == 0) {
    result.outcome = VersionComparison::Outcome::SameButOrder;
    result.now_text.clear();
    result.lines = DiffLines(result.text, result.text);
    return;
  }
  result.in_sorted_order = true;
  // Short strings live in themselves, so the lines are made anew.
  result.text = std::move(sorted.text);
  result.now_text = std::move(sorted.now_text);
  CompareTexts(result);
}

}  // namespace

std::string ReadableText(DocumentKind kind, std::string content) {
  std::string text;
  if (kind == DocumentKind::Rtf) {
    rtf::WriteRtfAsText(rtf::ReadRtf(content, BytesToUtf8), [&text](std::string_view part) {
      text.append(part);
      return true;
    });
    return text;
  }
  text = DecodeText(std::move(content)).text;
  return kind == DocumentKind::Reg ? WithoutAsShownMark(std::move(text)) : text;
}

void CompareReadable(DocumentKind kind, ComparedBy by, VersionComparison& result, const std::stop_token& stop) {
  if (by == ComparedBy::Structure && HasStructure(kind)) return CompareStructures(kind, result, stop);
  CompareTexts(result, stop);
  result.outcome = result.only_here + result.only_now == 0 ? VersionComparison::Outcome::SameLines
                                                           : VersionComparison::Outcome::Different;
}

void Compare(const ContentStore& contents, const KeptVersion& version, std::optional<std::string> now, ComparedBy by,
             VersionComparison& result) {
  using Outcome = VersionComparison::Outcome;
  const QString& path = version.origin.path;
  const qint64 now_bytes = now ? static_cast<qint64>(now->size()) : path.isEmpty() ? 0 : QFileInfo(path).size();
  if (std::max(version.bytes, now_bytes) > kMostComparedBytes) {
    result.outcome = Outcome::TooLarge;
    return;
  }
  std::optional<std::string> content = contents.Read(version.digest);
  if (!content) return;
  if (std::string bytes; !now && !path.isEmpty() && !ReadFileBytes(FilePath(path), bytes)) now = std::move(bytes);
  const bool same_bytes = now && *now == *content;
  result.text = ReadableText(version.origin.kind, std::move(*content));
  if (!now || same_bytes) {
    result.outcome = now ? Outcome::SameBytes : Outcome::NothingThere;
    result.lines = DiffLines(result.text, result.text);
    return;
  }
  result.now_text = ReadableText(version.origin.kind, std::move(*now));
  CompareReadable(version.origin.kind, by, result);
  const bool is_sorted =
      by == ComparedBy::Lines && version.origin.kind == DocumentKind::Ini && version.origin.holding == Holding::ByRules;
  if (result.outcome == Outcome::Different && is_sorted) CompareSorted(result);
}

QString Summary(const VersionComparison& comparison, const KeptVersion& version, const QString& history_folder) {
  using Outcome = VersionComparison::Outcome;
  switch (comparison.outcome) {
    case Outcome::Unreadable:
      return Tr("This version can no longer be read: its file in %1 is gone or damaged.")
          .arg(QDir::toNativeSeparators(history_folder));
    case Outcome::Failed:
      return Tr("This version could not be compared: %1.").arg(comparison.failure);
    case Outcome::TooLarge:
      return Tr("This is too large to be compared here. Open as New Document and Save a Copy have all of it.");
    case Outcome::NothingThere:
      return Tr("The version's text. There is no document or file to compare it with.");
    case Outcome::SameBytes:
      return Tr("The same as now.");
    case Outcome::SameLines:
      return version.origin.kind == DocumentKind::Rtf
                 ? Tr("The text is the same as now; its formatting or the way it is written differs.")
                 : Tr("The lines are the same as now; line ends or the encoding differ.");
    case Outcome::SameStructure:
      return version.origin.kind == DocumentKind::Ini
                 ? Tr("The same sections, keys and values as now; order, comments or the way they are written differ.")
                 : Tr("The same keys and values as now; order, comments or the way they are written differ.");
    case Outcome::SameButOrder:
      return Tr("The same lines as now, in another order.");
    case Outcome::Different:
      break;
  }
  const QString counts = Tr("%1 only in this version (+), %2 only in what is there now (-).")
                             .arg(Counted(comparison.only_here, Tr("1 line"), Tr("%1 lines")),
                                  Counted(comparison.only_now, Tr("1 line"), Tr("%1 lines")));
  return comparison.in_sorted_order ? counts + u' ' + Tr("Both sorted, as a save sorts them.") : counts;
}

}  // namespace tme
