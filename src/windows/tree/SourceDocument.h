#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "base/Parts.h"
#include "documents/SourceLines.h"
#include "documents/WrittenChange.h"
#include "windows/tree/SourceView.h"

namespace tme {

/// A document as a source pane sees it: its text, and which lines of it what is selected in the window stands in.
class SourceDocument {
 public:
  virtual ~SourceDocument() = default;
  virtual const SourceLexer& Lexer() const = 0;
  /// Another number than before means another text.
  virtual std::uint64_t Revision() const = 0;
  /// Called with each change; it may only note it. Empty for none.
  virtual void Listen(std::function<void()> listener) = 0;
  /// What a plain save writes.
  virtual bool Write(const PartSink& sink) const = 0;
  /// What that writes otherwise than at an earlier revision, in the order of the text, where that is known; nothing
  /// where all is to be compared. Where there are several, each has as many lines as before.
  virtual std::vector<WrittenChange> ChangesSince(std::uint64_t /*revision*/) const { return {}; }
  /// Of what is selected. text: shows the document as it is.
  virtual std::vector<SourceLineRange> SelectedLines(const SourceView& text) const = 0;
  /// Selects what a line belongs to, if anything.
  virtual void SelectLine(const SourceView& text, PadPosition line) = 0;

  /// The pieces, where the text may be edited; else null.
  virtual const SourceLines* Pieces() const = 0;
  /// Puts lines in the place of pieces, as one step. Both are kEnds in an empty document.
  virtual void ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view lines) = 0;

 protected:
  /// The last, empty line is the last piece's.
  static SourceLines::Piece PieceOfLine(const SourceLines& pieces, const SourceView& text, PadPosition line) {
    const SourceLines::Piece piece = pieces.PieceAt(static_cast<std::uint64_t>(text.StartOf(line)));
    return piece == SourceLines::kEnds ? pieces.Last() : piece;
  }
};

}  // namespace tme
