#include "windows/rich/RtfRunInserter.h"

#include <QTextCursor>
#include <string>

#include "base/Utf8.h"
#include "shell/DisplayText.h"
#include "windows/rich/RtfPieces.h"
#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

constexpr std::size_t kEndless = ~std::size_t{0};

/// Where a text that is longer than the room of its piece is cut: behind a blank, or between characters.
std::size_t CutOf(std::string_view text, std::size_t room) {
  const std::size_t blank = text.rfind(' ', room);
  if (blank != std::string_view::npos && blank < room && room - blank < kBytesOfPiece / 4) return blank + 1;
  return utf8::CharacterStart(text, room);
}

}  // namespace

RtfRunInserter::RtfRunInserter(const rtf::RtfDocument& source, RtfStore& store, const RtfFormats& formats,
                               QTextCursor& cursor, const RtfImportStep& step)
    : source_(source),
      store_(store),
      formats_(formats),
      cursor_(cursor),
      step_(step),
      char_formats_(store.document.char_formats.size()),
      room_(kEndless),
      room_runs_(kEndless) {}

void RtfRunInserter::Step() {
  if (step_ && !step_(offset_, source_.text.size())) given_up_ = true;
}

void RtfRunInserter::BeginPieces(QTextBlockFormat& format, std::uint32_t mark) {
  piece_mark_ = mark;
  ++long_paragraphs_;
  format.setProperty(kLongParagraph, ++store_.long_paragraphs);
  format.setProperty(kPiece, 1);
  ShowAsPiece(format, 1);
  next_piece_ = format;
  next_piece_.setObjectIndex(-1);
  room_ = kBytesOfPiece;
  room_runs_ = kRunsOfPiece;
}

void RtfRunInserter::NextPiece() {
  const int piece = next_piece_.intProperty(kPiece) + 1;
  next_piece_.setProperty(kPiece, piece);
  ShowAsPiece(next_piece_, piece);
  cursor_.insertBlock(next_piece_, FormatOf(piece_mark_));
  room_ = kBytesOfPiece;
  room_runs_ = kRunsOfPiece;
  Step();
}

void RtfRunInserter::EndPieces(int attached) {
  room_ = room_runs_ = kEndless;
  if (attached == 0) return;
  QTextBlockFormat format = cursor_.blockFormat();
  format.setProperty(kAttached, attached);
  cursor_.setBlockFormat(format);
}

void RtfRunInserter::TakeRoomForRun() {
  if (room_runs_ == kEndless) return;
  if (room_runs_ == 0) NextPiece();
  --room_runs_;
}

bool RtfRunInserter::IsUnseen(const rtf::Run& run) const {
  if (run.object) return store_.document.objects[run.object - 1].kind == rtf::ObjectKind::Invisible;
  return store_.document.char_formats[run.format].hidden;
}

int RtfRunInserter::Attach(std::size_t first, std::size_t last, std::uint32_t offset) {
  std::vector<RtfStore::Attached> parts;
  for (; first < last; ++first) {
    const rtf::Run& run = source_.runs[first];
    parts.push_back({run.object, run.format, run.object ? std::string() : source_.text.substr(offset, run.bytes)});
    offset += run.bytes;
  }
  store_.attached.push_back(std::move(parts));
  return static_cast<int>(store_.attached.size());
}

void RtfRunInserter::InsertRuns(std::size_t first, std::size_t last) {
  int attached = 0;
  while (first < last && !given_up_) {
    const rtf::Run& run = source_.runs[first];
    if (IsUnseen(run)) {
      std::size_t end = first + 1;
      while (end < last && IsUnseen(source_.runs[end])) ++end;
      attached = Attach(first, end, offset_);
      for (; first < end; ++first) offset_ += source_.runs[first].bytes;
      continue;
    }
    if (attached == 0 && !run.object) {
      InsertText(std::string_view(source_.text).substr(offset_, run.bytes), FormatOf(run.format));
    } else {
      QTextCharFormat format = FormatOf(run.format);
      if (attached) format.setProperty(kAttached, attached);
      if (run.object)
        InsertObject(static_cast<int>(run.object), format);
      else
        InsertText(std::string_view(source_.text).substr(offset_, run.bytes), format);
      attached = 0;
    }
    offset_ += run.bytes;
    ++first;
  }
}

void RtfRunInserter::InsertText(std::string_view text, const QTextCharFormat& format) {
  for (std::size_t page_end = text.find('\f'); page_end != std::string_view::npos; page_end = text.find('\f')) {
    InsertText(text.substr(0, page_end), format);
    InsertObject(kPageBreak, format);
    text.remove_prefix(page_end + 1);
  }
  if (text.empty()) return;
  TakeRoomForRun();
  while (text.size() > room_ && !given_up_) {
    const std::size_t cut = CutOf(text, room_);
    if (cut > 0) cursor_.insertText(TextOf(text.substr(0, cut)), format);
    text.remove_prefix(cut);
    NextPiece();
  }
  cursor_.insertText(TextOf(text), format);
  if (room_ != kEndless) room_ -= text.size();
}

void RtfRunInserter::InsertObject(int object, QTextCharFormat format) {
  TakeRoomForRun();
  format.setObjectType(kRtfObjectType);
  format.setProperty(kObject, object);
  const auto index = static_cast<std::size_t>(object) - 1;
  if (object > 0 && store_.document.objects[index].kind == rtf::ObjectKind::SectionBreak) {
    const bool begins_page = store_.document.objects[index].label == rtf::kPageBreakLabel;
    format.setProperty(kSectionBreak,
                       static_cast<int>(begins_page ? RtfSectionBreak::Page : RtfSectionBreak::SamePage));
  }
  cursor_.insertText(QString(QChar::ObjectReplacementCharacter), format);
}

const QTextCharFormat& RtfRunInserter::FormatOf(std::uint32_t number) {
  if (number >= char_formats_.size()) number = 0;
  std::optional<QTextCharFormat>& format = char_formats_[number];
  if (!format) format = formats_.ShowCharFormat(number);
  return *format;
}

}  // namespace tme
