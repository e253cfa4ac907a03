#pragma once

#include <QString>
#include <cstdint>
#include <optional>

class QPrinter;
class QWidget;

namespace tme {

/// A place in a pad's text, from its start, in the pad's own unit: compare two, or let Pad::Moved count characters.
using PadPosition = std::int64_t;

/// The values are the find flags of rich edit controls (FR_WHOLEWORD, FR_MATCHCASE of commdlg.h).
enum FindOption : unsigned { kFindWholeWord = 2, kFindMatchCase = 4 };

/// The editing area of a text window, as search and the commands that both kinds share see it.
class Pad {
 public:
  /// Right margin of a pad that does not wrap, in twips.
  static constexpr int kNoWrap = 1'000'000;

  virtual ~Pad() = default;
  virtual QWidget& Widget() = 0;

  virtual PadPosition End() const = 0;
  virtual PadPosition SelectionStart() const = 0;
  virtual PadPosition SelectionEnd() const = 0;
  /// That many characters on (back when negative), at most to the start or the end of the text.
  virtual PadPosition Moved(PadPosition from, std::int64_t characters) const = 0;
  /// Selects and scrolls so that the caret, at `end`, is seen.
  virtual void Select(PadPosition start, PadPosition end) = 0;
  /// Lines parted by "\n".
  virtual QString SelectedText() const = 0;
  /// The caret stands behind the text afterwards. One step of undo.
  virtual void ReplaceSelection(const QString& text) = 0;
  /// Selects the first match that lies in [from, to) and returns its start. Nothing found: the selection stays.
  /// Whole words are bounded by characters that are neither letters, digits nor underscores.
  virtual std::optional<PadPosition> Find(const QString& text, PadPosition from, PadPosition to, unsigned options) = 0;

  /// Where lines wrap, in twips from the left edge; kNoWrap and beyond: nowhere.
  virtual void SetRightMargin(int twips) = 0;

  /// The selection if there is one, else all.
  virtual void Print(QPrinter& printer) = 0;

  virtual bool CanUndo() const = 0;
  virtual bool CanRedo() const = 0;
  virtual void Undo() = 0;
  virtual void Redo() = 0;

  /// Counts the edits of the content: another number than before means that something was changed.
  virtual std::uint64_t Revision() const = 0;
};

}  // namespace tme
