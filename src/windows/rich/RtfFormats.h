#pragma once

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>
#include <cstdint>

#include "windows/rich/RtfFormatStore.h"

class QTextBlock;
class QTextList;

namespace tme {

/// Turns a document's formats into those of a view and back. What the view's cannot show is taken from the format that
/// they were made of.
class RtfFormats {
 public:
  explicit RtfFormats(RtfStore& store) : store_(store) {}

  /// By its index in the store's document.
  QTextCharFormat ShowCharFormat(std::uint32_t number) const;
  QTextBlockFormat ShowParagraphFormat(std::uint32_t number) const;
  static QTextListFormat::Style StyleOf(rtf::ListKind kind);

  /// Index into the document's char_formats; new formats, fonts, colours and links are added.
  std::uint32_t Read(const QTextCharFormat& shown);
  /// Index into the document's paragraph_formats; a new format is added. list: null for a paragraph outside any.
  std::uint32_t Read(const QTextBlockFormat& shown, const QTextList* list);

  /// False for the first block of all, whose own char format is not undone, and of a cell, where it is the cell's: that
  /// of their paragraph's end is kMarkFormat.
  static bool HasOwnEnd(const QTextBlock& block);

  /// Index into the document's colours, to which a new one is added; 0 for none.
  std::uint32_t ColorOf(const QBrush& brush);

 private:
  QBrush BrushOf(std::uint32_t color) const;
  void SayChanges(const rtf::CharFormat& before, rtf::CharFormat& format) const;
  void ReadFont(const QTextCharFormat& shown, const QTextCharFormat& was, rtf::CharFormat& format);

  RtfFormatStore store_;
};

}  // namespace tme
