#include "windows/rich/RtfPad.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QWheelEvent>

#include "documents/rtf/RtfWriter.h"
#include "documents/search/TextSearch.h"
#include "shell/PlainText.h"
#include "system/Twips.h"
#include "windows/rich/RtfClipboard.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfImport.h"
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
constexpr int kLeastWrapPixels = 40;

/// A text of marked-up pages that fetches nothing, neither files nor pages.
class ClosedDocument : public QTextDocument {
 protected:
  QVariant loadResource(int, const QUrl&) override { return {}; }
};

/// In the plain pad too, and not on every system a redo key of its own.
bool IsRedo(const QKeyEvent& key) { return key.key() == Qt::Key_Y && key.modifiers() == Qt::ControlModifier; }

void RemovePictures(QTextDocument& document) {
  QTextCursor cursor(&document);
  while (!(cursor = document.find(QString(QChar::ObjectReplacementCharacter), cursor)).isNull())
    cursor.removeSelectedText();
}

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
  view->setUndoRedoEnabled(true);
  view->setModified(false);
  view->documentLayout()->registerHandler(kRtfObjectType, objects_);
  objects_->Reset(*store_);
  connect(view.get(), &QTextDocument::contentsChange, this, [this] { ++revision_; });
  large_steps_.clear();
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

void RtfPad::Clear() {
  store_ = std::make_unique<RtfStore>();
  store_->document = EmptyRtfDocument();
  auto view = std::make_unique<QTextDocument>();
  RtfLooks looks(*store_);
  view->setUndoRedoEnabled(false);
  QTextCursor cursor(view.get());
  cursor.setBlockFormat(looks.Show(store_->document.paragraph_formats[0], 0));
  cursor.setBlockCharFormat(looks.Show(0));
  view->setDefaultFont(looks.Show(0).font());
  Show(std::move(view));
  setCurrentCharFormat(looks.Show(0));
}

std::optional<RtfSimplified> RtfPad::SetRtf(rtf::RtfDocument&& read, const RtfImportStep& step) {
  auto store = std::make_unique<RtfStore>();
  auto view = std::make_unique<QTextDocument>();
  RtfSimplified simplified;
  if (!ImportRtf(std::move(read), *store, *view, simplified, step)) return std::nullopt;
  store_ = std::move(store);
  view->setDefaultFont(RtfLooks(*store_).Show(0).font());
  Show(std::move(view));
  // The edit's own cursor would type on in the format of the document before.
  setTextCursor(QTextCursor(document()));
  return simplified;
}

bool RtfPad::WriteRtf(const Part& put) {
  const RtfExport written(*document(), *store_);
  return rtf::WriteRtf(written.Document(), put);
}

bool RtfPad::WriteText(const Part& put) {
  const RtfExport written(*document(), *store_);
  return rtf::WriteRtfAsText(written.Document(), put);
}

PadPosition RtfPad::End() const { return document()->characterCount() - 1; }

PadPosition RtfPad::Moved(PadPosition from, std::int64_t characters) const {
  return std::clamp<PadPosition>(from + characters, 0, End());
}

void RtfPad::Select(PadPosition start, PadPosition end) {
  QTextCursor cursor = textCursor();
  start = Moved(start, 0);
  end = Moved(end, 0);
  // The layout goes on to both ends.
  if (!LayOutTo(static_cast<int>(std::max(start, end)))) return;
  // Who selects all of a large text stays at its beginning: to keep a place at its end, a command would have to wait
  // for the whole layout.
  if (start == 0 && end == End() && end > kLargeText) std::swap(start, end);
  cursor.setPosition(static_cast<int>(start));
  cursor.setPosition(static_cast<int>(end), QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  ensureCursorVisible();
}

QString RtfPad::SelectedText() const {
  const QTextCursor cursor = textCursor();
  QString text = cursor.selectedText();
  if (store_->long_paragraphs > 0 && !cursor.hasComplexSelection()) {
    const JoinedText all(*document(), true);
    const PadPosition start = all.IndexOf(SelectionStart());
    text = all.text.mid(start, all.IndexOf(SelectionEnd()) - start);
  }
  for (const char16_t line_end : {u'\u2029', u'\u2028', u'\uFDD0', u'\uFDD1'}) text.replace(line_end, u'\n');
  return text.remove(QChar::ObjectReplacementCharacter);
}

void RtfPad::ReplaceSelection(const QString& text) {
  const int first = textCursor().selectionStart();
  {
    const LargeEdit edit(
        *this, static_cast<std::size_t>(text.size()) + static_cast<std::size_t>(text.count(u'\n')) * kCostOfCell);
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.insertText(text);
    AfterInsertion(first);
    cursor.endEditBlock();
  }
  ShowCaret();
}

std::optional<PadPosition> RtfPad::Find(const QString& text, PadPosition from, PadPosition to, unsigned options) {
  const TextSearch search(text.toStdString(), options & kFindMatchCase ? SearchCase::Match : SearchCase::Ignore,
                          options & kFindWholeWord ? SearchWords::Whole : SearchWords::Any);
  // Its units are the document's positions.
  const JoinedText all(*document(), store_->long_paragraphs > 0);
  const std::u16string_view units(reinterpret_cast<const char16_t*>(all.text.utf16()),
                                  static_cast<std::size_t>(all.text.size()));
  const std::optional<TextMatch> match = search.Find(units, static_cast<std::size_t>(all.IndexOf(Moved(from, 0))),
                                                     static_cast<std::size_t>(all.IndexOf(Moved(to, 0))));
  if (!match) return std::nullopt;
  const PadPosition start = all.PositionOf(static_cast<PadPosition>(match->start));
  Select(start, all.PositionOf(static_cast<PadPosition>(match->end)));
  return start;
}

void RtfPad::SetRightMargin(int twips) {
  if (std::exchange(right_margin_, twips) == twips) return;
  const int place = LeavePlace();
  if (twips >= kNoWrap) {
    LayOutUnwrapped();
  } else {
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setLineWrapColumnOrWidth(std::max(TwipsToPixels(twips, logicalDpiX()), kLeastWrapPixels));
    setLineWrapMode(FixedPixelWidth);
  }
  ShowFrom(place);
}

/// Not NoWrap: that lays out to no width at all while it knows of no paragraph that needs one, and what is
/// right-aligned or centred then ends up to the left of the page. Longer paragraphs widen the page here too.
void RtfPad::LayOutUnwrapped() {
  setLineWrapMode(WidgetWidth);
  setWordWrapMode(QTextOption::NoWrap);
}

void RtfPad::Print(QPrinter& printer) {
  const std::unique_ptr<QTextDocument> text =
      textCursor().hasSelection() ? SelectionAsDocument() : std::unique_ptr<QTextDocument>(document()->clone());
  text->documentLayout()->registerHandler(kRtfObjectType, objects_);
  PrintRtf(printer, *text, store_->document.document_controls);
}

std::unique_ptr<QTextDocument> RtfPad::SelectionAsDocument() const {
  auto part = std::make_unique<QTextDocument>();
  part->setUndoRedoEnabled(false);
  part->setDefaultFont(document()->defaultFont());
  QTextCursor(part.get()).insertFragment(textCursor().selection());
  return part;
}

std::string RtfPad::SelectedRtf() const {
  const std::unique_ptr<QTextDocument> part = SelectionAsDocument();
  rtf::RtfDocument& kept = store_->document;
  // Of the page and of headers, a part knows nothing.
  const std::string controls = std::exchange(kept.document_controls, {});
  const std::string section = std::exchange(kept.kept_section, {});
  std::string rtf;
  {
    const RtfExport written(*part, *store_);
    rtf::WriteRtf(written.Document(), [&rtf](std::string_view text) {
      rtf += text;
      return true;
    });
  }
  kept.document_controls = controls;
  kept.kept_section = section;
  return rtf;
}

void RtfPad::InsertFragment(const QTextDocument& part) {
  const int first = textCursor().selectionStart();
  {
    const LargeEdit edit(*this, static_cast<std::size_t>(part.characterCount()) +
                                    static_cast<std::size_t>(part.blockCount()) * kCostOfCell);
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.insertFragment(QTextDocumentFragment(&part));
    AfterInsertion(first);
    cursor.endEditBlock();
  }
  ShowCaret();
}

std::optional<RtfSimplified> RtfPad::ReplaceSelectionWithRtf(rtf::RtfDocument&& read, const RtfImportStep& step) {
  QTextDocument part;
  RtfSimplified simplified;
  if (!ImportRtfPart(std::move(read), *store_, part, simplified, step)) return std::nullopt;
  InsertFragment(part);
  return simplified;
}

std::optional<RtfSimplified> RtfPad::ReplaceSelectionWithHtml(const QString& html, const RtfImportStep& step) {
  ClosedDocument part;
  part.setUndoRedoEnabled(false);
  part.setHtml(html);
  RemovePictures(part);
  RtfStore store;
  store.document = EmptyRtfDocument();
  rtf::RtfDocument text;
  {
    const RtfExport written(part, store);
    text = written.Document();
  }
  // Tables that the view could not bear are simplified as those of a file.
  if (RtfShape(text).FlatTables() > 0) return ReplaceSelectionWithRtf(std::move(text), step);
  InsertFragment(part);
  return RtfSimplified();
}

void RtfPad::ReplaceSelectionWithPicture(const QByteArray& bytes) {
  rtf::Object picture;
  picture.kind = rtf::ObjectKind::Picture;
  picture.picture = bytes.toStdString();
  store_->document.objects.push_back(std::move(picture));
  QTextCursor cursor = textCursor();
  QTextCharFormat format = cursor.charFormat();
  format.setObjectType(kRtfObjectType);
  format.setProperty(kObject, static_cast<int>(store_->document.objects.size()));
  cursor.insertText(QString(QChar::ObjectReplacementCharacter), format);
  ensureCursorVisible();
}

QMimeData* RtfPad::createMimeDataFromSelection() const { return RtfMimeData(SelectedRtf(), SelectedText()).release(); }

bool RtfPad::canInsertFromMimeData(const QMimeData* source) const {
  return source->hasText() || source->hasHtml() || source->hasImage() || HasRtf(*source);
}

void RtfPad::insertFromMimeData(const QMimeData* source) { emit PasteRequested(*source); }

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
  const bool is_modifier = event->key() == Qt::Key_Shift || event->key() == Qt::Key_Control ||
                           event->key() == Qt::Key_Alt || event->key() == Qt::Key_Meta;
  if (is_modifier || LayOutTo(to_end ? static_cast<int>(End()) : textCursor().position()))
    QTextEdit::keyPressEvent(event);
}

void RtfPad::resizeEvent(QResizeEvent* event) {
  QTextEdit::resizeEvent(event);
  // While the window was yet without its size, showing the caret has scrolled the first line away.
  if (event->oldSize().height() < 3 * cursorRect().height() && textCursor().atStart()) verticalScrollBar()->setValue(0);
}

void RtfPad::showEvent(QShowEvent* event) {
  // The first time, the edit shows its caret, which OpenRTF has left out of sight in a long right-to-left paragraph.
  const int left = horizontalScrollBar()->value();
  QTextEdit::showEvent(event);
  horizontalScrollBar()->setValue(left);
}

void RtfPad::SetZoom(int percent) {
  if (zoom_.Set(percent)) ZoomInPlace();
}

/// The layout measures on a device of another resolution; the document knows nothing of it.
void RtfPad::ApplyZoom() {
  QAbstractTextDocumentLayout* layout = document()->documentLayout();
  const int percent = zoom_.Value();
  if (percent == 100) {
    if (layout->paintDevice() == viewport()) return;
    layout->setPaintDevice(viewport());
  } else {
    zoom_device_ = QImage(1, 1, QImage::Format_RGB32);
    zoom_device_.setDotsPerMeterX(qRound(logicalDpiX() * percent / 100.0 / 0.0254));
    zoom_device_.setDotsPerMeterY(qRound(logicalDpiY() * percent / 100.0 / 0.0254));
    layout->setPaintDevice(&zoom_device_);
  }
  // As after a new page size: all is laid out anew, what is in sight first.
  document()->setPageSize(document()->pageSize());
  viewport()->update();
}

void RtfPad::ZoomInPlace() {
  const int place = LeavePlace();
  ApplyZoom();
  ShowFrom(place);
}

void RtfPad::wheelEvent(QWheelEvent* event) {
  const std::optional<double> notches = ZoomNotchesOf(*event);
  if (!notches) return QTextEdit::wheelEvent(event);
  if (zoom_.Turn(*notches)) ZoomInPlace();
  event->accept();
}

bool RtfPad::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTextEdit::viewportEvent(event);
  const auto& help = *static_cast<QHelpEvent*>(event);
  const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
  const int position = document()->documentLayout()->hitTest(help.pos() + scrolled, Qt::ExactHit);
  QString tip;
  if (position >= 0 && position < End()) {
    QTextCursor cursor(document());
    cursor.setPosition(position + 1);
    tip = objects_->LabelOf(cursor.charFormat());
    if (tip.isEmpty()) tip = cursor.charFormat().anchorHref();
  }
  ShowTip(help.globalPos(), tip, viewport());
  return true;
}

}  // namespace tme
