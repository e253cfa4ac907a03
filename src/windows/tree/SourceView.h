#pragma once

#include <vector>

#include "base/Parts.h"
#include "documents/WrittenChange.h"
#include "windows/text/TextPad.h"
#include "windows/tree/SourceLexer.h"

namespace tme {

/// Lines of a text, from 0.
struct SourceLineRange {
  PadPosition first = 0;
  PadPosition count = 0;
  bool operator==(const SourceLineRange&) const = default;
};

/// The source of a document as text, with its lines numbered and coloured. What is painted is styled then, and nothing
/// else, so that any size shows at once.
class SourceView : public TextPad {
  Q_OBJECT

 public:
  /// lexer: must outlive this.
  SourceView(QWidget* parent, const SourceLexer& lexer);

  /// Makes the text what is written, by exchanging the lines that differ. What is in sight stays there. Nothing is to
  /// be undone then.
  void Follow(const PartProducer& write);
  /// The same from a known state. Returns false, and does nothing, where the text is not as they say.
  bool Follow(const std::vector<WrittenChange>& changes);
  void SetEditable(bool editable);
  /// Whether the user typed since Follow or Accept.
  bool IsTyped() const { return is_typed_; }
  /// What was typed is in the document.
  void Accept();

  PadPosition LineCount() const { return Send(SCI_GETLINECOUNT); }
  PadPosition LineAt(PadPosition position) const {
    return Send(SCI_LINEFROMPOSITION, static_cast<std::uintptr_t>(position));
  }
  PadPosition StartOf(PadPosition line) const { return Send(SCI_POSITIONFROMLINE, static_cast<std::uintptr_t>(line)); }
  PadPosition CaretLine() const { return LineAt(Caret()); }

  /// Marks lines in place of those marked before.
  void Mark(const std::vector<SourceLineRange>& lines);
  const std::vector<SourceLineRange>& Marked() const { return marked_; }
  /// Scrolls so that the lines are in sight, if they are not, and without keys puts the caret there.
  void Reveal(const SourceLineRange& lines);
  /// Why a line is not understood; empty for one that is.
  QString FaultAt(PadPosition line) const;
  /// Does in the text what a command of the window is called. Returns false for one that texts have not.
  bool RunCommand(std::string_view command);

 signals:
  /// By the user.
  void Typed();
  void CaretMoved();
  /// The caret's line or column may be another one now, whoever moved it.
  void PlaceChanged();
  void Entered();
  void Left();

 protected:
  bool event(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  /// Tab goes on, since a pad that keeps it would keep who comes by keys.
  // NOLINTNEXTLINE(bugprone-parent-virtual-call): the parent is what keeps it.
  bool focusNextPrevChild(bool next) override { return QWidget::focusNextPrevChild(next); }
  void keyPressEvent(QKeyEvent* event) override;
  void ApplyColors() override;

 private:
  class Comparison;

  void SetUpMarks();
  void StyleInSight();
  /// Some lines with all that belongs to them, as far as that is near. start: where they begin.
  SourcePart PartAround(PadPosition first, PadPosition last, PadPosition& start) const;
  std::string_view Line(PadPosition line) const { return BytesBetween(StartOf(line), EndOf(line)); }
  PadPosition EndOf(PadPosition line) const { return line + 1 < LineCount() ? StartOf(line + 1) : End(); }
  void ShowFaults(PadPosition start, PadPosition end, const std::vector<SourceFault>& faults);
  /// Puts whole lines in the place of others, as far as they differ.
  void Exchange(PadPosition start, PadPosition end, std::string text);
  void Replace(PadPosition start, PadPosition end, std::string_view text);
  void ApplyEditable();
  bool HandleKey(const QKeyEvent& key);
  /// New lines end as the line of the caret does.
  void TakeLineEndOfCaret();

  const SourceLexer& lexer_;
  std::vector<SourceLineRange> marked_;
  /// Too long to be styled.
  bool is_plain_in_sight_ = false;
  bool is_editable_ = false;
  bool is_typed_ = false;
  bool is_following_ = false;
};

}  // namespace tme
