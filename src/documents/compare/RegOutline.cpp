#include <algorithm>
#include <utility>

#include "documents/compare/OutlineReading.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegSourceLine.h"
#include "documents/reg/RegWholeParser.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {
namespace {

/// What the parser fills instead of a document.
class OutlineTarget {
 public:
  using Piece = SourceLines::Piece;

  explicit OutlineTarget(Outline::Reading& reading) : reading_(reading) {}

  Piece Append(std::string_view lines, RegPiece kind) {
    lines_ = lines;
    const Outline::Index item = reading_.Add(lines, SortOf(kind));
    if (kind == RegPiece::Comment || kind == RegPiece::Other) reading_.SetName(item, Trimmed(lines));
    return item;
  }

  RegNode* AppendHeader(std::string_view path, Piece piece) {
    if (reading_.Coding().version == RegVersion::Regedit)
      reading_.SetName(piece, path);
    else
      reading_.BeginGroup(path, Outline::GroupSort::Named);
    return any_key_.Root();
  }

  RegNode* AppendDeletion(std::string_view path, Piece /*piece*/) {
    reading_.BeginGroup(path, Outline::GroupSort::Deletion);
    return any_key_.Root();
  }

  void AppendValue(const RegNode* /*key*/, RegType /*type*/, std::string_view name, std::string_view assignment,
                   Piece piece) {
    reading_.SetValue(piece, assignment);
    if (reading_.Coding().version == RegVersion::Regedit) return;
    if (name.data() != unescaped_.data()) return reading_.SetName(piece, name);
    const std::size_t line_size = std::min(lines_.find_first_of("\r\n"), lines_.size());
    const std::string_view quoted = FindRegValue(lines_, line_size)->name.Of(lines_);
    reading_.SetEscapedName(piece, quoted.substr(1, quoted.size() - 2));
  }

  /// A place for one unescaped name.
  OutlineTarget& Texts() { return *this; }
  std::string_view Copy(std::string name) {
    unescaped_ = std::move(name);
    return unescaped_;
  }

 private:
  Outline::Sort SortOf(RegPiece kind) const {
    switch (kind) {
      case RegPiece::Blank:
        return Outline::Sort::Blank;
      case RegPiece::FileHeader:
        reading_.Coding().version = *VersionOfLine(Trimmed(lines_));
        return Outline::Sort::FileHeader;
      case RegPiece::Key:
        return reading_.Coding().version == RegVersion::Regedit ? Outline::Sort::Entry : Outline::Sort::Header;
      case RegPiece::KeyDeletion:
        return Outline::Sort::Header;
      case RegPiece::Comment:
        return Outline::Sort::Comment;
      case RegPiece::Other:
        return Outline::Sort::Other;
      default:
        return Outline::Sort::Entry;
    }
  }

  static std::string_view Trimmed(std::string_view lines) {
    lines.remove_prefix(FirstText(lines));
    return lines.substr(0, lines.find_last_not_of(" \t\r\n") + 1);
  }

  Outline::Reading& reading_;
  /// The parser asks only whether there is a key.
  const RegDocument any_key_;
  std::string_view lines_;
  std::string unescaped_;
};

Outline ReadBlocks(std::string text, const RegCoding& coding, const OutlineOptions& options) {
  Outline::Reading reading(Outline::Kind::Reg, std::move(text), options);
  reading.Coding() = coding;
  OutlineTarget target(reading);
  RegWholeResult result;
  const std::string_view all = reading.Text();
  RegWholeParser parser(target, all, {.version = coding.version}, result);
  parser.Run(all.data() + all.size(), [](const LineReader&) { return true; });
  return std::move(reading).Finish();
}

}  // namespace

Outline ReadRegOutline(std::string text, const RegCoding& coding, const OutlineOptions& options) {
  Outline outline = ReadBlocks(std::move(text), coding, options);
  const bool has_pairs = outline.Coding().version == RegVersion::Regedit;
  if (!has_pairs || options.blocks == OutlineOptions::Blocks::Apart) return outline;
  RegDocument document;
  ReadWholeReg(document, outline.Text(), {.unsaid = RegVersion::Regedit});
  return ReadBlocks(WithoutPairs(document), coding, options);
}

}  // namespace tme
