#pragma once

#include <QString>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "documents/diff/LineDiff.h"
#include "history/ContentStore.h"
#include "history/KeptVersion.h"

namespace tme {

/// What of two contents is compared: their lines, or the sections, keys and values that INI and registry files say.
enum class ComparedBy : std::uint8_t { Lines, Structure };

/// A kept content beside what stands there now, or a second file beside a first one.
struct VersionComparison {
  enum class Outcome : std::uint8_t {
    Unreadable,  ///< the kept content is gone or damaged, or a file cannot be read
    Failed,      ///< something was thrown
    TooLarge,
    NothingThere,  ///< no document or file to compare with: the lines are those of the version
    SameBytes,
    SameLines,      ///< the bytes differ all the same
    SameStructure,  ///< the lines differ all the same; they are those of the version
    SameButOrder,   ///< of an INI file, whose saves sort it; the lines are as they stand in the version
    Different
  };

  Outcome outcome = Outcome::Unreadable;
  QString failure;               ///< why, when it failed or a file cannot be read
  bool has_structure = false;    ///< the texts can be compared by it
  bool in_sorted_order = false;  ///< both sides were sorted before they were compared
  std::uint64_t only_here = 0;
  std::uint64_t only_now = 0;
  std::vector<DiffLine> lines;  ///< point into the texts below
  std::string text;
  std::string now_text;
  std::string differences;  ///< by structure

  VersionComparison() = default;
  VersionComparison(const VersionComparison&) = delete;
  VersionComparison& operator=(const VersionComparison&) = delete;
};

/// Whether files of a kind say more than lines.
constexpr bool HasStructure(DocumentKind kind) { return kind == DocumentKind::Ini || kind == DocumentKind::Reg; }

/// Each side; more would take the memory several times over.
inline constexpr qint64 kMostComparedBytes = qint64{200} << 20;

/// What people read in a content: without its formatting, as UTF-8.
std::string ReadableText(DocumentKind kind, std::string content);

/// Compares the result's two readable texts.
void CompareReadable(DocumentKind kind, ComparedBy by, VersionComparison& result, const std::stop_token& stop = {});

/// Compares; other kinds than INI and registry files by their lines. now: what the document holds; without it the file
/// is read. Needs no window, any thread may call. A result in which something was thrown is of no use.
void Compare(const ContentStore& contents, const KeptVersion& version, std::optional<std::string> now, ComparedBy by,
             VersionComparison& result);

/// What is said about it, in a sentence or two.
QString Summary(const VersionComparison& comparison, const KeptVersion& version, const QString& history_folder);

}  // namespace tme
