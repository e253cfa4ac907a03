#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfItems.h"
#include "documents/rtf/RtfLabelPlan.h"
#include "documents/rtf/RtfNumbering.h"
#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfRewriter.h"
#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// Puts the edits of a document into the bytes of its file. Internal to RtfOriginal.
class RtfSplicer {
 public:
  /// sides, patch: outlive this.
  RtfSplicer(const RtfRewriter::Sides& sides, Patch& patch);

  /// False when it has no place; something of it may stand in the patch then.
  bool Splice(RtfHunk hunk);

 private:
  static constexpr std::uint32_t kSame = RtfItem::kNoPiece;

  struct Range {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };
  /// Where text can come in, and what holds there.
  struct Place {
    std::uint32_t at = 0;
    std::uint32_t format = 0;
    std::uint32_t paragraph = 0;
    std::uint8_t unicode_skip = 1;
    bool takes_next = false;  ///< what stands before it would take a letter in
  };

  bool FindParagraph(RtfHunk& hunk) const;
  bool FindPieces(std::vector<RtfItem>& items, std::size_t first_paragraph) const;
  bool EndsBefore(std::size_t piece, const RtfItem& item) const;
  Range RangeOf(const RtfItem& item) const;
  bool IsFixed(const RtfItem& item) const;

  std::size_t LastPieceOf(const RtfItem& item) const;
  bool IsSeen(std::size_t paragraph) const;

  bool Remove(const RtfItem& item);
  void RemoveSection(const RtfItem& item);
  bool Keep(std::span<const RtfItem> before, std::span<const RtfItem> after);
  bool Wrap(std::span<const RtfItem> items, std::uint32_t format);
  bool MayMeanOthers(std::span<const RtfItem> items, std::uint32_t format) const;
  bool KeepMark(const RtfItem& before, const RtfItem& after);

  Place PlaceBehindSection(const RtfItem& item, bool is_gone) const;
  std::optional<Place> PlaceBehind(const RtfItem& item) const;
  std::optional<Place> PlaceBefore(const RtfItem& item) const;
  Place PlaceAt(std::uint32_t at, const RtfItem& item, std::size_t behind, std::uint8_t unicode_skip) const;
  std::optional<Place> PlaceFor(const std::vector<RtfItem>& before, std::size_t next,
                                std::span<const RtfItem> added) const;
  void KeepLabels(std::span<const RtfItem> before, std::span<const RtfItem> after);
  void WriteLabel(std::size_t paragraph);
  bool Insert(const Place& place, std::span<const RtfItem> added);
  bool InsertText(const Place& place, std::span<const RtfItem> text);
  bool InsertObject(const Place& place, const RtfItem& item);
  bool InsertMark(const Place& place, const RtfItem& mark);

  bool SameField(std::uint32_t one, std::uint32_t other) const;
  bool SameCell(std::size_t before, std::size_t after) const;
  Alphabet AlphabetOf(std::uint32_t format) const;
  bool WriteFormat(std::uint32_t from, std::uint32_t to);
  void WriteParagraphFormat(std::uint32_t paragraph, std::uint32_t format);
  std::string TakeSnippet();

  const RtfRewriter::Sides& sides_;
  const RtfDocument& before_;
  const RtfSource& source_;
  const RtfDocument& after_;
  const CharFormat plain_;
  const std::vector<Alphabet> alphabets_;
  const std::vector<std::uint32_t> before_text_;
  const std::vector<std::uint32_t> after_text_;
  std::string snippet_;
  const PartSink sink_;
  RtfOutput out_;
  Patch& patch_;
  RtfLabelPlan labels_;     ///< of the hunk
  RtfNumbering numbering_;  ///< of the document after the edits
  std::size_t numbered_ = 0;
  RtfHunk hunk_;                 ///< that is being spliced
  std::size_t removed_end_ = 0;  ///< of the items before the edit, behind those that were taken out last
};

}  // namespace tme::rtf
