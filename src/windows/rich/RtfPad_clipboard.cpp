// What RtfPad gives to the clipboard and takes from it.

#include <QMimeData>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextList>
#include <algorithm>
#include <optional>
#include <utility>

#include "documents/rtf/RtfPicture.h"
#include "documents/rtf/RtfWriter.h"
#include "windows/rich/ClosedDocument.h"
#include "windows/rich/RtfClipboard.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfHtml.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/RtfPad.h"

namespace tme {
namespace {

/// The toolkit joins the first paragraph of a fragment to the one that it comes into, or puts an item of a list behind
/// that, also where there is no text before it. This gives that paragraph the format of the first one instead.
class FirstParagraph {
 public:
  /// Takes it out of its list.
  explicit FirstParagraph(const QTextDocument& part) : format_(part.firstBlock().blockFormat()) {
    const QTextBlock first = part.firstBlock();
    mark_ = first.charFormat();
    is_text_ = part.frameAt(first.position()) == part.rootFrame() && !format_.hasProperty(kFiller);
    QTextList* list = first.textList();
    if (!list) return;
    list_format_ = list->format();
    goes_on_ = first.next().textList() == list;
    list->remove(first);
  }

  void Apply(const QTextBlock& to) {
    if (!is_text_ || (to.textList() && !list_format_)) return;
    format_.setObjectIndex(-1);
    format_.setProperty(kFlatCell, to.blockFormat().property(kFlatCell));
    QTextCursor cursor(to);
    const bool has_own_end = RtfFormats::HasOwnEnd(to);
    if (!has_own_end) format_.setProperty(kMarkFormat, std::max(mark_.intProperty(kCharFormat), 1));
    cursor.setBlockFormat(format_);
    if (has_own_end) cursor.setBlockCharFormat(mark_);
    if (!list_format_) return;
    QTextList* rest = to.next().textList();
    if (rest && goes_on_)
      rest->add(to);
    else
      cursor.createList(*list_format_);
  }

 private:
  QTextBlockFormat format_;
  QTextCharFormat mark_;
  std::optional<QTextListFormat> list_format_;
  bool goes_on_ = false;  ///< the next one stands in the same list
  bool is_text_ = false;  ///< it stands in no table
};

/// What comes behind pasted paragraphs stays as it was; the toolkit gives it the format of the last one.
void KeepRest(const QTextBlock& begin, const QTextBlock& rest, const QTextBlockFormat& format,
              const QTextCharFormat& mark) {
  if (format.hasProperty(kLongParagraph)) return;
  QTextCursor cursor(rest);
  cursor.setBlockFormat(format);
  cursor.setBlockCharFormat(mark);
  // What is attached to the paragraph's end stays there.
  QTextBlockFormat first = begin.blockFormat();
  if (!format.hasProperty(kAttached) || first.property(kAttached) != format.property(kAttached)) return;
  first.clearProperty(kAttached);
  QTextCursor(begin).setBlockFormat(first);
}

}  // namespace

std::unique_ptr<QTextDocument> RtfPad::SelectionAsDocument() const {
  auto part = std::make_unique<ClosedDocument>();
  part->setUndoRedoEnabled(false);
  part->setDefaultFont(document()->defaultFont());
  const QTextCursor selected = textCursor();
  QTextCursor(part.get()).insertFragment(selected.selection());
  // The toolkit puts an item of a list behind the empty paragraph that each document begins with.
  const int blocks = document()->findBlock(selected.selectionEnd()).blockNumber() -
                     document()->findBlock(selected.selectionStart()).blockNumber() + 1;
  const bool begins_with_item = document()->findBlock(selected.selectionStart()).textList() != nullptr;
  if (begins_with_item && part->firstBlock().length() == 1 && part->blockCount() > blocks)
    QTextCursor(part.get()).deleteChar();
  return part;
}

std::string RtfPad::SelectedRtf() const {
  if (!Complete()) return {};
  const std::unique_ptr<QTextDocument> part = SelectionAsDocument();
  // Of the page and of headers, a part knows nothing.
  const QScopedValueRollback controls(store_->document.document_controls, std::string());
  const QScopedValueRollback section(store_->document.kept_section, std::string());
  const RtfExport written(*part, *store_);
  std::string rtf;
  rtf::WriteRtf(written.Document(), [&rtf](std::string_view text) {
    rtf += text;
    return true;
  });
  return rtf;
}

void RtfPad::InsertFragment(const QTextDocument& part) {
  Insert(part.characterCount(), part.blockCount(), [&part](QTextCursor& cursor) {
    cursor.removeSelectedText();
    const QTextBlock target = cursor.block();
    const bool is_empty = target.length() == 1, is_at_begin = cursor.atBlockStart(), has_rest = !cursor.atBlockEnd();
    const QTextBlockFormat format = target.blockFormat();
    const QTextCharFormat mark = target.charFormat();
    // A word alone has no format of its own; a paragraph that was taken as a whole has.
    const bool has_end = part.blockCount() > 1;
    const bool has_format = has_end || part.firstBlock().blockFormat().intProperty(kParagraphFormat) > 1;
    const int first = cursor.position();
    std::optional<FirstParagraph> first_format;
    if (is_at_begin && (has_end || (is_empty && has_format))) first_format.emplace(part);
    const QTextCharFormat first_mark = cursor.document()->firstBlock().charFormat();
    cursor.insertFragment(QTextDocumentFragment(&part));
    // Undo would not bring it back.
    if (first == 0) QTextCursor(cursor.document()).setBlockCharFormat(first_mark);
    const QTextBlock begin = cursor.document()->findBlock(first);
    if (first_format) first_format->Apply(begin);
    const QTextBlock last = part.lastBlock();
    const bool ends_paragraph = last.length() == 1 && !last.blockFormat().hasProperty(kFiller);
    if (has_end && (has_rest || ends_paragraph) && begin != cursor.block())
      KeepRest(begin, cursor.block(), format, mark);
  });
}

std::optional<RtfSimplified> RtfPad::ReplaceSelectionWithRtf(rtf::RtfDocument&& read, const RtfImportStep& step) {
  if (!Complete()) return std::nullopt;
  ClosedDocument part;
  RtfSimplified simplified;
  if (!ImportRtfPart(std::move(read), *store_, part, simplified, step)) return std::nullopt;
  InsertFragment(part);
  return simplified;
}

std::optional<RtfSimplified> RtfPad::ReplaceSelectionWithHtml(const QString& html, const RtfImportStep& step) {
  return ReplaceSelectionWithRtf(RtfOfHtml(html, document()->defaultFont()), step);
}

void RtfPad::ReplaceSelectionWithPicture(const QByteArray& bytes) {
  if (!Complete()) return;
  rtf::Object picture;
  picture.kind = rtf::ObjectKind::Picture;
  picture.picture = bytes.toStdString();
  // As it will be saved, so that the file has nothing else to change.
  picture.rtf = rtf::RtfOfPicture(picture.picture, 0, 0);
  const rtf::PictureGroup shown = rtf::ReadPicture(picture.rtf);
  picture.width = shown.width;
  picture.height = shown.height;
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
  return source->hasText() || source->hasHtml() || source->hasImage() || !RtfOf(*source).isEmpty();
}

void RtfPad::insertFromMimeData(const QMimeData* source) { emit PasteRequested(*source); }

}  // namespace tme
