#include "windows/rich/RtfPad.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include "documents/rtf/RtfWriter.h"
#include "documents/search/TextSearch.h"
#include "files/CodePage.h"
#include "shell/PlainText.h"
#include "system/Twips.h"
#include "windows/rich/ClosedDocument.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/RtfJoinedText.h"
#include "windows/rich/RtfObjectView.h"
#include "windows/rich/RtfPrint.h"
#include "windows/rich/RtfShape.h"
#include "windows/text/PadKeys.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kDefaultTabTwips = 720;
constexpr int kEdgePixels = 10;  ///< between the window's edge and the text
constexpr PadPosition kLargeText = 200'000;

/// In the plain pad too, and not on every system a redo key of its own.
bool IsRedo(const QKeyEvent& key) { return key.key() == Qt::Key_Y && key.modifiers() == Qt::ControlModifier; }

}  // namespace

RtfPad::RtfPad(QWidget* parent)
    : QTextEdit(parent), store_(std::make_unique<RtfStore>()), objects_(new RtfObjectView(this)) {
  setObjectName(u"pad"_s);
  setAccessibleName(tr("Text of the document"));
  setAcceptRichText(true);
  setFrameShape(QFrame::NoFrame);
  LayOutUnwrapped();  // as right_margin_ says
  setCursorWidth(2);
  // A page is white on every desktop: the colours of the text are the document's.
  QPalette palette = this->palette();
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, Qt::black);
  setPalette(palette);
  Clear();
}

RtfPad::~RtfPad() = default;

void RtfPad::Show(std::unique_ptr<QTextDocument> view) {
  view->setDocumentMargin(kEdgePixels);
  traces_.Reset(*store_);
  traces_.MakeRoom(*view);
  view->setUndoRedoEnabled(true);
  view->setModified(false);
  view->documentLayout()->registerHandler(kRtfObjectType, objects_);
  objects_->Reset(*store_);
  connect(view.get(), &QTextDocument::contentsChange, this, [this](int position) { NoteChange(position); });
  large_steps_.clear();
  large_redos_.clear();
  page_height_.Reset();
  selection_formats_ = {};
  view->setParent(this);
  const QTextDocument* old = document();
  // The edit deletes only what it made itself.
  const bool owned = old && old->parent() == this;
  setDocument(view.release());
  if (owned) delete old;
  setTabStopDistance(TwipsToUnits(kDefaultTabTwips));
  ApplyZoom();
  ++revision_;
}

void RtfPad::NoteChange(int position) {
  ++revision_;
  traces_.NoteEdit(std::max(document()->findBlock(position).blockNumber(), 0));
  // The numbers of the items that follow may be others now.
  if (traces_.HasLists()) viewport()->update();
}

void RtfPad::Clear() {
  StopFilling();
  store_ = std::make_unique<RtfStore>();
  store_->document = EmptyRtfDocument();
  auto view = std::make_unique<ClosedDocument>();
  const RtfFormats formats(*store_);
  view->setUndoRedoEnabled(false);
  QTextCursor cursor(view.get());
  cursor.setBlockFormat(formats.ShowParagraphFormat(0));
  cursor.setBlockCharFormat(formats.ShowCharFormat(0));
  view->setDefaultFont(formats.ShowCharFormat(0).font());
  Show(std::move(view));
  setCurrentCharFormat(formats.ShowCharFormat(0));
}

std::optional<RtfSimplified> RtfPad::SetRtf(rtf::RtfDocument&& read, const RtfImportStep& step) {
  auto store = std::make_unique<RtfStore>();
  auto view = std::make_unique<ClosedDocument>();
  RtfSimplified simplified;
  if (!ImportRtf(std::move(read), *store, *view, simplified, step)) return std::nullopt;
  StopFilling();
  store_ = std::move(store);
  view->setDefaultFont(RtfFormats(*store_).ShowCharFormat(0).font());
  Show(std::move(view));
  // The edit's own cursor would type on in the format of the document before.
  setTextCursor(QTextCursor(document()));
  return simplified;
}

bool RtfPad::WriteRtf(const PartSink& sink, const rtf::RtfOriginal* original) {
  if (!Complete()) return false;
  const RtfExport written(*document(), *store_);
  const std::optional<std::string> edited =
      original == nullptr ? std::nullopt : original->WithEdits(written.Document(), BytesToUtf8);
  return edited ? sink(*edited) : rtf::WriteRtf(written.Document(), sink);
}

void RtfPad::NoteUnedited(rtf::RtfOriginal& original) {
  original.SetUnedited(RtfExport(*document(), *store_).Document());
}

bool RtfPad::WriteText(const PartSink& sink) {
  if (!Complete()) return false;
  const RtfExport written(*document(), *store_);
  return rtf::WriteRtfAsText(written.Document(), sink);
}

PadPosition RtfPad::End() const {
  Complete();
  return document()->characterCount() - 1;
}

PadPosition RtfPad::Moved(PadPosition from, std::int64_t characters) const {
  return std::clamp<PadPosition>(from + characters, 0, End());
}

void RtfPad::Select(PadPosition start, PadPosition end) {
  if ((start != 0 || end != 0) && !Complete()) return;
  QTextCursor cursor = textCursor();
  const PadPosition last = document()->characterCount() - 1;
  start = std::clamp<PadPosition>(start, 0, last);
  end = std::clamp<PadPosition>(end, 0, last);
  // The layout goes on to both ends.
  if (!LayOutTo(static_cast<int>(std::max(start, end)))) return;
  // Who selects all of a large text stays at its beginning: to keep a place at its end, a command would have to wait
  // for the whole layout.
  if (start == 0 && end == last && end > kLargeText) std::swap(start, end);
  cursor.setPosition(static_cast<int>(start));
  cursor.setPosition(static_cast<int>(end), QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  ensureCursorVisible();
}

QString RtfPad::SelectedText() const {
  const QTextCursor cursor = textCursor();
  QString text = cursor.selectedText();
  if (store_->long_paragraphs > 0 && !cursor.hasComplexSelection()) {
    const RtfJoinedText all(*document(), *store_);
    const PadPosition start = all.IndexOf(SelectionStart());
    text = all.Text().mid(start, all.IndexOf(SelectionEnd()) - start);
  }
  for (const char16_t line_end : {u'\u2029', u'\u2028', u'\uFDD0', u'\uFDD1'}) text.replace(line_end, u'\n');
  return text.remove(QChar::ObjectReplacementCharacter);
}

void RtfPad::ReplaceSelection(const QString& text) {
  Insert(text.size(), text.count(u'\n'), [&text](QTextCursor& cursor) { cursor.insertText(text); });
}

void RtfPad::Insert(qsizetype characters, qsizetype lines, const std::function<void(QTextCursor&)>& insert) {
  if (!Complete()) return;
  const int first = textCursor().selectionStart();
  {
    const LargeEdit edit(*this, static_cast<std::size_t>(characters) + static_cast<std::size_t>(lines) * kCostOfCell);
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    insert(cursor);
    AfterInsertion(first);
    cursor.endEditBlock();
  }
  ShowCaret();
}

std::optional<PadPosition> RtfPad::Find(const QString& text, PadPosition from, PadPosition to, unsigned options) {
  if (!Complete()) return std::nullopt;
  const TextSearch search(text.toStdString(), options & kFindMatchCase ? SearchCase::Match : SearchCase::Ignore,
                          options & kFindWholeWord ? SearchWords::Whole : SearchWords::Any);
  // Its units are the document's positions.
  const RtfJoinedText all(*document(), *store_);
  const std::u16string_view units(reinterpret_cast<const char16_t*>(all.Text().utf16()),
                                  static_cast<std::size_t>(all.Text().size()));
  const std::optional<TextMatch> match = search.Find(units, static_cast<std::size_t>(all.IndexOf(Moved(from, 0))),
                                                     static_cast<std::size_t>(all.IndexOf(Moved(to, 0))));
  if (!match) return std::nullopt;
  const PadPosition start = all.PositionOf(static_cast<PadPosition>(match->start));
  Select(start, all.PositionOf(static_cast<PadPosition>(match->end)));
  return start;
}

void RtfPad::Print(QPrinter& printer) {
  if (!Complete()) return;
  const std::unique_ptr<QTextDocument> text = textCursor().hasSelection()
                                                  ? SelectionAsDocument()
                                                  : std::unique_ptr<QTextDocument>(document()->clone(document()));
  text->documentLayout()->registerHandler(kRtfObjectType, objects_);
  RtfTraces traces;
  traces.Reset(*store_);
  PrintRtf(printer, *text, store_->document.document_controls, &traces);
}

bool RtfPad::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && IsRedo(*static_cast<QKeyEvent*>(event))) event->accept();
  return QTextEdit::event(event);
}

void RtfPad::keyPressEvent(QKeyEvent* event) {
  if (IsRedo(*event) || event->matches(QKeySequence::Redo)) return Redo();
  if (event->matches(QKeySequence::Undo)) return Undo();
  if (const std::optional<Zoom> zoom = ZoomOf(*event)) {
    if (zoom_.Apply(*zoom)) ZoomInPlace();
    return;
  }
  if (IsUnboundKey(*event)) return event->ignore();
  if (!IsModifierKey(event->key()) && !Complete()) return;
  if (event->matches(QKeySequence::InsertParagraphSeparator)) return BeginParagraph();
  if (event->modifiers() == Qt::NoModifier) SelectBreakBefore(event->key());
  const bool deletes = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
  const bool edits = deletes || (!event->text().isEmpty() && !event->modifiers().testFlag(Qt::ControlModifier));
  if (edits && textCursor().hasSelection()) {
    {
      const LargeEdit edit(*this);
      QTextEdit::keyPressEvent(event);
    }
    ShowCaret();
    return;
  }
  const bool to_end =
      event->matches(QKeySequence::MoveToEndOfDocument) || event->matches(QKeySequence::SelectEndOfDocument);
  // A key alone does not move the caret.
  if (IsModifierKey(event->key()) || LayOutTo(to_end ? static_cast<int>(End()) : textCursor().position()))
    QTextEdit::keyPressEvent(event);
}

/// Without it, the two paragraphs would only look joined: in the file it ends the first one.
void RtfPad::SelectBreakBefore(int key) {
  QTextCursor cursor = textCursor();
  const bool joins = key == Qt::Key_Delete ? cursor.atBlockEnd() : key == Qt::Key_Backspace && cursor.atBlockStart();
  if (!joins || cursor.hasSelection()) return;
  if (key == Qt::Key_Backspace) cursor.movePosition(QTextCursor::PreviousCharacter);
  if (cursor.atEnd() || cursor.atBlockStart() || cursor.charFormat().intProperty(kSectionBreak) == 0) return;
  const int end = cursor.position();
  cursor.setPosition(end - 1);
  cursor.setPosition(end + 1, QTextCursor::KeepAnchor);
  setTextCursor(cursor);
}

void RtfPad::resizeEvent(QResizeEvent* event) {
  QTextEdit::resizeEvent(event);
  FitPage();
  // While the window was yet without its size, showing the caret has scrolled the first line away.
  if (event->oldSize().height() < 3 * cursorRect().height() && textCursor().atStart()) verticalScrollBar()->setValue(0);
}

void RtfPad::showEvent(QShowEvent* event) {
  // The first time, the edit shows its caret, which OpenRTF has left out of sight in a long right-to-left paragraph.
  const int left = horizontalScrollBar()->value();
  QTextEdit::showEvent(event);
  horizontalScrollBar()->setValue(left);
}

void RtfPad::wheelEvent(QWheelEvent* event) {
  const std::optional<double> notches = ZoomNotchesOf(*event);
  if (!notches) return QTextEdit::wheelEvent(event);
  if (zoom_.Turn(*notches)) ZoomInPlace();
  event->accept();
}

}  // namespace tme
