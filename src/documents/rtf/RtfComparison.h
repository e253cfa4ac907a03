#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Compares paragraphs of two documents by what they say: formats by what they are, objects by their bytes. How their
/// runs are parted does not count, nor which cell they stand in. The documents outlive this and do not change.
class RtfComparison {
 public:
  /// right_tables: what the right document's text names. unnamed_font: of these, one that also stands for text
  /// without a font.
  RtfComparison(const RtfDocument& left, const RtfDocument& right, const RtfDocument& right_tables,
                std::size_t unnamed_font);

  bool SameParagraph(std::size_t left, std::size_t right);

 private:
  struct Cursor;
  using Known = std::unordered_map<std::uint64_t, bool>;

  bool SameRuns(Cursor& left, Cursor& right);
  static bool TakeUnseen(Cursor& cursor, const RtfDocument& tables, std::string& groups);
  bool SameCharFormat(std::uint32_t left, std::uint32_t right);
  bool SameParagraphFormat(std::uint32_t left, std::uint32_t right);
  bool SameFont(std::uint32_t left, std::uint32_t right) const;
  bool SameExtra(std::uint32_t left, std::uint32_t right) const;
  bool SameWords(const CharFormat& left, const CharFormat& right) const;
  bool SameField(std::uint32_t left, std::uint32_t right) const;

  const RtfDocument& left_;
  const RtfDocument& right_;
  const RtfDocument& right_tables_;
  const std::size_t unnamed_font_;
  const std::vector<std::uint32_t> left_text_;
  const std::vector<std::uint32_t> right_text_;
  Known char_formats_;
  Known paragraph_formats_;
};

/// Where each paragraph's text begins.
std::vector<std::uint32_t> TextStarts(const RtfDocument& document);

}  // namespace tme::rtf
