#include "text/RtfPad.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QWheelEvent>

#include "platform/Twips.h"
#include "shell/PlainText.h"
#include "text/RtfClipboard.h"
#include "text/RtfExport.h"
#include "text/RtfImport.h"
#include "text/RtfObjectView.h"
#include "text/RtfPrint.h"
#include "text/TextSearch.h"
#include "text/rtf/RtfWriter.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kDefaultTabTwips = 720;
constexpr int kEdgePixels = 10;  ///< between the window's edge and the text
constexpr int kLeastZoom = 20, kMostZoom = 500;
constexpr double kZoomStep = 1.1;
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
  setLineWrapMode(NoWrap);  // as right_margin_ says
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

void RtfPad::SetRtf(rtf::RtfDocument&& read) {
  store_ = std::make_unique<RtfStore>();
  auto view = std::make_unique<QTextDocument>();
  ImportRtf(std::move(read), *store_, *view);
  view->setDefaultFont(RtfLooks(*store_).Show(0).font());
  Show(std::move(view));
  // The edit's own cursor would type on in the format of the document before.
  setTextCursor(QTextCursor(document()));
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
  cursor.setPosition(static_cast<int>(Moved(start, 0)));
  cursor.setPosition(static_cast<int>(Moved(end, 0)), QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  ensureCursorVisible();
}

QString RtfPad::SelectedText() const {
  QString text = textCursor().selectedText();
  for (const char16_t line_end : {u'\u2029', u'\u2028', u'\uFDD0', u'\uFDD1'}) text.replace(line_end, u'\n');
  return text.remove(QChar::ObjectReplacementCharacter);
}

void RtfPad::ReplaceSelection(const QString& text) {
  textCursor().insertText(text);
  ensureCursorVisible();
}

std::optional<PadPosition> RtfPad::Find(const QString& text, PadPosition from, PadPosition to, unsigned options) {
  const TextSearch search(text.toStdString(), options & kFindMatchCase ? SearchCase::Match : SearchCase::Ignore,
                          options & kFindWholeWord ? SearchWords::Whole : SearchWords::Any);
  // Its units are the document's positions.
  const QString all = document()->toRawText();
  const std::u16string_view units(reinterpret_cast<const char16_t*>(all.utf16()), static_cast<std::size_t>(all.size()));
  const std::optional<TextMatch> match =
      search.Find(units, static_cast<std::size_t>(Moved(from, 0)), static_cast<std::size_t>(Moved(to, 0)));
  if (!match) return std::nullopt;
  Select(static_cast<PadPosition>(match->start), static_cast<PadPosition>(match->end));
  return static_cast<PadPosition>(match->start);
}

void RtfPad::SetRightMargin(int twips) {
  if (std::exchange(right_margin_, twips) == twips) return;
  if (twips >= kNoWrap) return setLineWrapMode(NoWrap);
  setLineWrapColumnOrWidth(std::max(TwipsToPixels(twips, logicalDpiX()), kLeastWrapPixels));
  setLineWrapMode(FixedPixelWidth);
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

void RtfPad::ReplaceSelectionWithRtf(rtf::RtfDocument&& read) {
  QTextDocument part;
  ImportRtfPart(std::move(read), *store_, part);
  textCursor().insertFragment(QTextDocumentFragment(&part));
  ensureCursorVisible();
}

void RtfPad::ReplaceSelectionWithHtml(const QString& html) {
  ClosedDocument part;
  part.setUndoRedoEnabled(false);
  part.setHtml(html);
  RemovePictures(part);
  textCursor().insertFragment(QTextDocumentFragment(&part));
  ensureCursorVisible();
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
  if (IsRedo(*event)) return redo();
  QTextEdit::keyPressEvent(event);
}

void RtfPad::resizeEvent(QResizeEvent* event) {
  QTextEdit::resizeEvent(event);
  // While the window was yet without its size, showing the caret has scrolled the first line away.
  if (event->oldSize().height() < 3 * cursorRect().height() && textCursor().atStart()) verticalScrollBar()->setValue(0);
}

void RtfPad::SetZoom(int percent) {
  percent = std::clamp(percent, kLeastZoom, kMostZoom);
  if (std::exchange(zoom_, percent) != percent) ApplyZoom();
}

/// The layout measures on a device of another resolution; the document knows nothing of it.
void RtfPad::ApplyZoom() {
  QAbstractTextDocumentLayout* layout = document()->documentLayout();
  if (zoom_ == 100) {
    if (layout->paintDevice() == viewport()) return;
    layout->setPaintDevice(viewport());
  } else {
    zoom_device_ = QImage(1, 1, QImage::Format_RGB32);
    zoom_device_.setDotsPerMeterX(qRound(logicalDpiX() * zoom_ / 100.0 / 0.0254));
    zoom_device_.setDotsPerMeterY(qRound(logicalDpiY() * zoom_ / 100.0 / 0.0254));
    layout->setPaintDevice(&zoom_device_);
  }
  // As after a new page size: all is laid out anew, what is in sight first.
  document()->setPageSize(document()->pageSize());
  viewport()->update();
}

void RtfPad::wheelEvent(QWheelEvent* event) {
  if (!event->modifiers().testFlag(Qt::ControlModifier)) return QTextEdit::wheelEvent(event);
  const double steps = event->angleDelta().y() / 120.0;
  SetZoom(qRound(zoom_ * std::pow(kZoomStep, steps)));
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
