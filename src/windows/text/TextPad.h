#pragma once

#include <Qsci/qsciscintillabase.h>

#include <QAccessible>
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/SourceLines.h"
#include "shell/Zoom.h"
#include "windows/text/Pad.h"

namespace tme {

/// The editing area of a plain-text window: one font, no margins or markers. Positions are bytes of the UTF-8 text;
/// bytes that are no UTF-8 and control characters are kept and shown as marks.
class TextPad : public QsciScintillaBase, public Pad {
  Q_OBJECT

 public:
  /// Whether there are places for styles, a byte for each of the text.
  enum class Styles : std::uint8_t { None, Kept };
  explicit TextPad(QWidget* parent, Styles styles = Styles::None);

  /// Replaces the document; its first line end becomes that of typed and pasted lines (CR LF without one). The caret
  /// stands at the start, there is nothing to undo, and SCEN_CHANGE, which tells of edits just before they happen, is
  /// not emitted.
  void SetText(std::string utf8);
  /// The document as it stands; an edit invalidates it.
  std::string_view Text() const;
  /// points: 1 or more.
  void SetTextFont(const QString& family, int points);

  QWidget& Widget() override { return *this; }
  PadPosition End() const override;
  PadPosition SelectionStart() const override;
  PadPosition SelectionEnd() const override;
  /// A line end of CR LF is two characters.
  PadPosition Moved(PadPosition from, std::int64_t characters) const override;
  void Select(PadPosition start, PadPosition end) override;
  QString SelectedText() const override;
  void ReplaceSelection(const QString& text) override;
  std::optional<PadPosition> Find(const QString& text, PadPosition from, PadPosition to, unsigned options) override;
  void SetRightMargin(int twips) override;
  int RightMargin() const { return right_margin_; }
  void Print(QPrinter& printer) override;
  std::uint64_t Revision() const override { return revision_; }
  bool CanUndo() const override { return Send(SCI_CANUNDO) != 0; }
  bool CanRedo() const override { return Send(SCI_CANREDO) != 0; }
  void Undo() override { Send(SCI_UNDO); }
  void Redo() override { Send(SCI_REDO); }

  /// From 0.
  std::int64_t LineOf(PadPosition position) const;
  std::int64_t LineCount() const { return Send(SCI_GETLINECOUNT); }
  PadPosition StartOfLine(std::int64_t line) const;
  /// In the time that memory takes to be read once, and none for what the last count of its sort counted already.
  enum class Count : std::uint8_t { Column, Selection };
  std::int64_t CharactersBetween(PadPosition start, PadPosition end, Count count) const;
  /// What lines end in; without any, what typed ones will. Linear.
  LineEnds UsedLineEnds() const;
  /// Gives all lines this end, typed ones included. A step of undo. go_on(bytes done, bytes in all) is called every few
  /// hundredths of a second; where it gives false, all is taken back. Returns whether the lines have the end.
  bool SetLineEnds(LineEnds ends, const std::function<bool(std::size_t done, std::size_t total)>& go_on);
  /// A step of undo that something outside of the text takes, and is done already: undo and redo call these. The text
  /// counts as edited.
  void AddOutsideStep(std::function<void()> undo, std::function<void()> redo);
  /// Line numbers stand in a margin as wide as the last of them.
  void ShowLineNumbers(bool shown);

  // For TextPadAccessible. Offsets are UTF-16 units; one behind the text stands for its end.
  struct Range {
    PadPosition start;
    PadPosition end;
  };
  int OffsetOf(PadPosition position) const;
  PadPosition PositionOf(int offset) const;
  PadPosition Caret() const;
  QString TextBetween(PadPosition start, PadPosition end) const;
  /// The character as readers see it, the word or the line around a position.
  Range UnitAround(PadPosition position, QAccessible::TextBoundaryType type) const;
  /// On the screen.
  QRect RectOf(PadPosition position) const;
  PadPosition PositionAt(const QPoint& global) const;
  void Reveal(PadPosition start, PadPosition end);

 protected:
  bool event(QEvent* event) override;
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  /// An input method is told of the text near the caret, within its line.
  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
  void wheelEvent(QWheelEvent* event) override;
  virtual void ApplyColors();

  /// SendScintilla without its conversions: positions and pointers are not cut where `long` has 32 bits.
  std::intptr_t Send(unsigned message, std::uintptr_t first = 0, std::intptr_t second = 0) const;
  /// An edit invalidates it.
  std::string_view BytesBetween(PadPosition start, PadPosition end) const;

 private:
  void SetUpView();
  void SetUpDocument();
  void AssignKeys();
  void ApplyWrap();
  void ApplyZoom(Zoom zoom);
  void FitLineNumbers();
  /// What is selected and in sight, by lines and bytes within them.
  struct Place {
    struct Spot {
      std::int64_t line;
      PadPosition bytes;
    };
    Spot anchor;
    Spot caret;
    std::intptr_t first_line;
  };
  Place PlaceNow() const;
  /// Bytes beyond a line's end count as that end.
  void ReturnTo(const Place& place);
  void NoteStep(std::function<void()> undo, std::function<void()> redo);
  void RunStep(int type, int token);
  /// Gives the lines from a position on this end, some megabytes of them. Returns where the next ones begin.
  PadPosition EndLinesFrom(PadPosition start, std::string_view line_end);
  void Type(const QString& text);
  /// Empty at the end of the text. CR LF is one.
  Range GraphemeAround(PadPosition position) const;
  /// After the caret has moved from there.
  void KeepCaretOutsideGraphemes(PadPosition caret_before);
  /// False: the key is not for that, or the component does the same.
  bool DeleteGrapheme(const QKeyEvent& key);
  void NeedLineIndex() const;
  char ByteAt(PadPosition position) const;
  std::string_view SelectedBytes() const;

  /// The edits that are told. Not what comes after one: for that, QScintilla copies the text and counts characters from
  /// the document's start.
  static constexpr int kEvents = SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE | SC_MOD_CONTAINER;

  using DirectFunction = std::intptr_t (*)(std::intptr_t, unsigned, std::uintptr_t, std::intptr_t);
  const DirectFunction send_;
  const std::intptr_t editor_;
  const Styles styles_;
  std::uint64_t revision_ = 0;
  int right_margin_ = kNoWrap;
  QFont font_;
  bool shows_line_numbers_ = false;
  /// What undo and redo call, by the numbers that the component keeps.
  struct OutsideStep {
    std::function<void()> undo;
    std::function<void()> redo;
  };
  std::vector<OutsideStep> outside_steps_;
  struct Counted {
    Range range{};
    std::uint64_t revision = 0;
    std::int64_t characters = 0;
  };
  mutable std::array<Counted, 2> counted_;
};

}  // namespace tme
