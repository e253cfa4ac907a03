#pragma once

#include <QTextEdit>
#include <exception>
#include <functional>
#include <memory>
#include <set>

#include "base/Parts.h"
#include "documents/rtf/RtfOriginal.h"
#include "shell/Zoom.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/RtfPageHeight.h"
#include "windows/rich/RtfSelectionFormats.h"
#include "windows/rich/RtfStore.h"
#include "windows/rich/RtfTraces.h"
#include "windows/text/Pad.h"

namespace tme {

class RtfFilling;
class RtfObjectView;

/// The editing area of a rich-text window. Positions are those of its QTextDocument. Attributes of the selection are
/// null when it mixes them; without a selection they are those that the next typed character gets.
class RtfPad : public QTextEdit, public Pad {
  Q_OBJECT

 public:
  explicit RtfPad(QWidget* parent);
  ~RtfPad() override;

  QWidget& Widget() override { return *this; }
  PadPosition End() const override;
  PadPosition SelectionStart() const override { return textCursor().selectionStart(); }
  PadPosition SelectionEnd() const override { return textCursor().selectionEnd(); }
  PadPosition Moved(PadPosition from, std::int64_t characters) const override;
  void Select(PadPosition start, PadPosition end) override;
  QString SelectedText() const override;
  void ReplaceSelection(const QString& text) override;
  std::optional<PadPosition> Find(const QString& text, PadPosition from, PadPosition to, unsigned options) override;
  void SetRightMargin(int twips) override;
  void Print(QPrinter& printer) override;
  std::uint64_t Revision() const override { return revision_; }
  bool CanUndo() const override { return document()->isUndoAvailable(); }
  bool CanRedo() const override { return document()->isRedoAvailable(); }

  /// Without layout while it lives, when it edits many characters; afterwards all is laid out anew, what is in sight
  /// first and the rest while nobody waits. One inside another does nothing.
  class LargeEdit {
   public:
    /// cost: of what is inserted, as in RtfShape.h; the selection's own is known.
    explicit LargeEdit(RtfPad& pad, std::size_t cost = 0);
    ~LargeEdit();
    LargeEdit(const LargeEdit&) = delete;
    LargeEdit& operator=(const LargeEdit&) = delete;

   private:
    RtfPad* pad_ = nullptr;  ///< null for a small edit
    int place_ = 0;
  };

  /// An empty document in the editor's default font, or one that was read. Undo begins anew.
  void Clear();
  /// Null when `step` gave up: the pad is as it was.
  std::optional<RtfSimplified> SetRtf(rtf::RtfDocument&& read, const RtfImportStep& step = {});
  /// The same for a document that takes long to show: its beginning is there at once, and the rest once Filled is
  /// emitted. note: as of RtfFilling. Until then nothing can be edited; who needs all of the document waits for it.
  void Fill(rtf::RtfDocument&& read, std::function<void(const rtf::RtfDocument& exported)> note);
  bool IsFilling() const { return filling_ != nullptr; }
  /// How much of the document is there, 0 to 1.
  double PartFilled() const;
  /// Waits for all of it, with progress. False when the user did not: what was to be done cannot be.
  bool Complete() const;
  /// The whole document; false when the sink stopped. original: the file that it was read from, whose bytes are taken
  /// but for what was edited, where that can be done; null for none.
  bool WriteRtf(const PartSink& sink, const rtf::RtfOriginal* original = nullptr);
  /// Before any edit of what was read: the original learns what the view gives back.
  void NoteUnedited(rtf::RtfOriginal& original);
  /// Without formats, lines ended by CR LF.
  bool WriteText(const PartSink& sink);
  std::string SelectedRtf() const;
  /// Null when `step` gave up: the text is as it was.
  std::optional<RtfSimplified> ReplaceSelectionWithRtf(rtf::RtfDocument&& read, const RtfImportStep& step = {});
  /// Marked-up text; whatever it refers to and does not hold is left out.
  std::optional<RtfSimplified> ReplaceSelectionWithHtml(const QString& html, const RtfImportStep& step = {});
  /// The bytes of a PNG or JPEG file.
  void ReplaceSelectionWithPicture(const QByteArray& bytes);

  std::optional<bool> SelectionBold() const;
  std::optional<bool> SelectionItalic() const;
  std::optional<bool> SelectionUnderline() const;
  std::optional<QColor> SelectionColor() const;
  std::optional<QString> SelectionFontName() const;
  /// Points; 0 stands for the smallest size, half a point.
  std::optional<double> SelectionFontSize() const;
  std::optional<bool> SelectionBullet() const;
  void SetSelectionBold(bool bold);
  void SetSelectionItalic(bool italic);
  void SetSelectionUnderline(bool underline);
  void SetSelectionStrikeThru(bool strike);
  void SetSelectionColor(const QColor& color);
  void SetSelectionFontName(const QString& name);
  /// Sizes of 0 and below become 0, which is shown as half a point.
  void SetSelectionFontSize(double points);
  void SetSelectionBullet(bool bullet);
  /// Twips between a bullet that is set from now on and its text.
  void SetBulletIndent(int twips) { bullet_indent_ = twips; }

  /// Of one step, however large it is.
  void Undo() override;
  void Redo() override;
  /// Of laying it out, as in RtfShape.h.
  std::size_t SelectionCost() const;

  /// What is said of text of a format: an object's kind, where a link leads.
  QString TipOf(const QTextCharFormat& format) const;
  /// The same of a point of the viewport, marks that are drawn over the text included.
  QString TipAt(const QPoint& point) const;

  /// Where the link at the caret leads; empty for none.
  QString LinkAtCaret() const;

  /// 100 is the size of the document. For the display only.
  void SetZoom(int percent);

 signals:
  /// The user pastes, copies or drops; the window knows the clipboard's forms.
  void PasteRequested(const QMimeData& data);
  /// From time to time, between Fill and Filled.
  void FillingWentOn();
  /// The document is whole; it is the one that it was.
  void Filled(const RtfSimplified& simplified);
  /// There is but the beginning. reason: in words for a sentence.
  void FillingFailed(const QString& reason);

 protected:
  QMimeData* createMimeDataFromSelection() const override;
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void Show(std::unique_ptr<QTextDocument> view);
  void StopFilling();
  void ReportFilling();
  enum class Swap : std::uint8_t { Now, WhenFree };
  /// What was made takes the place of the beginning.
  void ShowFilled(Swap when);
  void NoteChange(int position);
  /// Of the viewport in the document.
  QPoint Scrolled() const;
  QString FieldTip(const QTextCharFormat& format) const;
  /// The text of the link around a cursor, as far as its paragraph goes.
  /// That stands under a point of the document; -1 for none.
  int CharacterAt(const QPointF& point) const;
  static QString LinkText(const QTextCursor& cursor);
  /// After each change of the page by the edit, which knows of no tall text.
  void FitPage();
  /// Lays the text out as far as a position, with progress. False when the user did not wait for it, or the document is
  /// no longer there.
  bool LayOutTo(int position);
  /// Position of what stands in the view's corner.
  int FirstShown() const;
  /// FirstShown; goes to the beginning, where a new layout begins, when that is far away.
  int LeavePlace();
  void ShowFrom(int position);
  /// Scrolls to it, unless the user does not wait for that.
  bool ShowCaret();
  enum class StepKind : std::uint8_t { Undo, Redo };
  void Step(StepKind kind);
  /// What was inserted between a position and the caret joins the flat cell around, and is shown in pieces where it is
  /// long.
  void AfterInsertion(int first);
  /// Where Delete or Backspace joins a paragraph with one that a section's break ends, selects both ends.
  void SelectBreakBefore(int key);
  /// The Return key: a paragraph like the one around; in an empty item of a list, the end of the list.
  void BeginParagraph();
  /// Replaces the selection with what `insert` inserts: so many characters in so many lines.
  void Insert(qsizetype characters, qsizetype lines, const std::function<void(QTextCursor&)>& insert);
  void InsertFragment(const QTextDocument& part);
  void LayOutUnwrapped();
  void ApplyZoom();
  /// What stands at the top stays there.
  void ZoomInPlace();
  /// Sets what `set` sets in a format given to it.
  template <typename Set>
  void MergeFormat(Set set);
  std::unique_ptr<QTextDocument> SelectionAsDocument() const;
  template <typename Of>
  auto Uniform(Of of) const -> std::optional<decltype(of(QTextCharFormat()))>;

  // `store_` changes when a selection is written: fonts and formats that are new join its tables.
  std::unique_ptr<RtfStore> store_;
  RtfObjectView* objects_;
  RtfTraces traces_;
  RtfPageHeight page_height_;
  mutable RtfSelectionFormats selection_formats_;
  QImage zoom_device_;
  ZoomPercent zoom_;
  int right_margin_ = kNoWrap;
  int bullet_indent_ = 0;
  std::uint64_t revision_ = 0;
  std::set<int> large_steps_;            ///< by how many commands the toolkit could undo after each
  std::set<int> large_redos_;            ///< by how many it could when one was undone
  std::shared_ptr<RtfFilling> filling_;  ///< null when all of the document is there
  std::exception_ptr fill_failure_;
};

}  // namespace tme
