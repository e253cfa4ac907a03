#include "windows/history/FileComparison.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "base/LineReader.h"
#include "documents/compare/FileKind.h"
#include "documents/reg/RegAsShown.h"
#include "files/FileBytes.h"
#include "shell/DisplayText.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"

namespace tme {
namespace {

class FileTexts {
  Q_DECLARE_TR_FUNCTIONS(FileTexts)
};

/// Whether the first line that is no comment is a section: other files have lines with "=", too.
bool BeginsWithSection(std::string_view text) {
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos || line[start] == ';' || line[start] == '#') continue;
    return line[start] == '[';
  }
  return false;
}

/// Gives the content; false leaves why not in the result.
bool Read(ComparedFile& file, std::string& content, VersionComparison& result) {
  if (file.Bytes() > kMostComparedBytes) {
    result.outcome = VersionComparison::Outcome::TooLarge;
    return false;
  }
  if (file.unsaved) {
    content = *std::move(file.unsaved);
    return true;
  }
  const auto failure = ReadFileBytes(FilePath(file.path), content);
  if (!failure) return true;
  result.outcome = VersionComparison::Outcome::Unreadable;
  result.failure = FileTexts::tr("%1 could not be read: %2.")
                       .arg(QDir::toNativeSeparators(file.path), QString::fromStdString(failure->reason));
  return false;
}

struct ReadableFile {
  DocumentKind kind;
  std::string text;
};

ReadableFile MakeReadable(const ComparedFile& file, std::string content) {
  std::optional<DocumentKind> kind = file.kind ? file.kind : KindOfName(file.path.toStdString());
  if (!kind && content.starts_with("{\\rtf")) kind = DocumentKind::Rtf;
  if (kind) return {*kind, ReadableText(*kind, std::move(content))};
  std::string text = ReadableText(DocumentKind::Txt, std::move(content));
  if (KindOfText(text) == DocumentKind::Reg) return {DocumentKind::Reg, WithoutAsShownMark(std::move(text))};
  return {BeginsWithSection(text) ? DocumentKind::Ini : DocumentKind::Txt, std::move(text)};
}

}  // namespace

qint64 ComparedFile::Bytes() const { return unsaved ? static_cast<qint64>(unsaved->size()) : QFileInfo(path).size(); }

void CompareFiles(ComparedFile first, ComparedFile second, ComparedBy by, const std::stop_token& stop,
                  VersionComparison& result) {
  std::string first_content, second_content;
  if (!Read(first, first_content, result) || !Read(second, second_content, result) || stop.stop_requested()) return;
  const bool same_bytes = first_content == second_content;
  ReadableFile before = MakeReadable(first, std::move(first_content));
  ReadableFile after = MakeReadable(second, std::move(second_content));
  if (stop.stop_requested()) return;
  const DocumentKind kind = before.kind == after.kind ? after.kind : DocumentKind::Txt;
  result.has_structure = HasStructure(kind);
  result.text = std::move(after.text);
  if (same_bytes) {
    result.outcome = VersionComparison::Outcome::SameBytes;
    result.lines = DiffLines(result.text, result.text, kMostChangedLines, stop);
    return;
  }
  result.now_text = std::move(before.text);
  CompareReadable(kind, by, result, stop);
}

QString FilesSummary(const VersionComparison& comparison) {
  using Outcome = VersionComparison::Outcome;
  switch (comparison.outcome) {
    case Outcome::Unreadable:
      return Breakable(comparison.failure);
    case Outcome::Failed:
      return FileTexts::tr("The files could not be compared: %1.").arg(comparison.failure);
    case Outcome::TooLarge:
      return FileTexts::tr("This is too large to be compared here.");
    case Outcome::SameBytes:
      return FileTexts::tr("The files are the same.");
    case Outcome::SameLines:
      return FileTexts::tr("The same lines; line ends, the encoding or the formatting differ.");
    case Outcome::SameStructure:
      return FileTexts::tr("The same sections, keys and values; order, comments or the way they are written differ.");
    default:
      return FileTexts::tr("%1 only in the second file (+), %2 only in the first file (-).")
          .arg(Counted(comparison.only_here, FileTexts::tr("1 line"), FileTexts::tr("%1 lines")),
               Counted(comparison.only_now, FileTexts::tr("1 line"), FileTexts::tr("%1 lines")));
  }
}

}  // namespace tme
