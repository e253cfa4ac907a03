// What keys, menu and clipboard do to the bytes.
#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>

#include "windows/reg/HexView.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// What can be undone, in bytes; older edits are forgotten.
constexpr qsizetype kMaxUndoBytes = qsizetype{1} << 27;

int DigitOf(QChar character) {
  bool is_digit = false;
  const int digit = QString(character).toInt(&is_digit, 16);
  return is_digit ? digit : -1;
}

bool IsBetweenBytes(QChar character) { return character.isSpace() || character == u',' || character == u'\\'; }

}  // namespace

std::optional<QByteArray> BytesOfHexText(QStringView text) {
  text = text.trimmed();
  // As a registry file writes it, with or without the number of a type.
  if (text.startsWith(u"hex", Qt::CaseInsensitive)) text = text.mid(text.indexOf(u':') + 1);
  QByteArray bytes;
  bytes.reserve(text.size() / 2);
  for (qsizetype at = 0; at < text.size();) {
    if (IsBetweenBytes(text[at])) {
      ++at;
      continue;
    }
    if (text.mid(at, 2).compare(u"0x"_s, Qt::CaseInsensitive) == 0) at += 2;
    qsizetype end = at;
    while (end < text.size() && DigitOf(text[end]) >= 0) ++end;
    const bool is_one_digit = end == at + 1;
    if ((end - at) % 2 != 0 && !is_one_digit) return std::nullopt;
    if (end == at || (end < text.size() && !IsBetweenBytes(text[end]))) return std::nullopt;
    if (is_one_digit) bytes += static_cast<char>(DigitOf(text[at++]));
    for (; at < end; at += 2) bytes += static_cast<char>(16 * DigitOf(text[at]) + DigitOf(text[at + 1]));
  }
  return bytes;
}

QString HexTextOf(QByteArrayView bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  QString text;
  text.reserve(3 * bytes.size());
  for (qsizetype at = 0; at < bytes.size(); ++at) {
    if (at > 0) text += at % HexView::kRowBytes == 0 ? u'\n' : u' ';
    const auto byte = static_cast<unsigned char>(bytes[at]);
    text += QLatin1Char(kDigits[byte / 16]);
    text += QLatin1Char(kDigits[byte % 16]);
  }
  return text;
}

void HexView::Select(qsizetype anchor, qsizetype cursor) {
  MoveCursor(anchor, Anchor::Moves);
  MoveCursor(cursor, Anchor::Stays);
}

void HexView::MoveCursor(qsizetype to, Anchor anchor) {
  cursor_ = std::clamp<qsizetype>(to, 0, bytes_.size());
  if (anchor == Anchor::Moves) anchor_ = cursor_;
  is_at_low_digit_ = false;
  Reveal(cursor_);
  viewport()->update();
  emit CursorMoved();
  QAccessibleTextCursorEvent event(this, 0);
  if (QAccessible::isActive()) {
    const auto in_row = static_cast<int>(cursor_ % kRowBytes);
    event.setCursorPosition(static_cast<int>(cursor_ / kRowBytes) * (kRowCharacters + 1) +
                            CharacterOf(in_row, column_));
    QAccessible::updateAccessibility(&event);
  }
}

std::optional<qsizetype> HexView::PlaceOf(const QKeyEvent& event) const {
  const bool is_control = event.modifiers().testFlag(Qt::ControlModifier);
  const qsizetype row_start = cursor_ - cursor_ % kRowBytes;
  const qsizetype page = verticalScrollBar()->pageStep() * kRowBytes;
  switch (event.key()) {
    case Qt::Key_Left:
      return cursor_ - 1;
    case Qt::Key_Right:
      return cursor_ + 1;
    case Qt::Key_Up:
      return cursor_ < kRowBytes ? cursor_ : cursor_ - kRowBytes;
    case Qt::Key_Down:
      return cursor_ + kRowBytes > bytes_.size() ? cursor_ : cursor_ + kRowBytes;
    case Qt::Key_PageUp:
      return cursor_ < page ? cursor_ % kRowBytes : cursor_ - page;
    case Qt::Key_PageDown:
      return cursor_ + page;
    case Qt::Key_Home:
      return is_control ? 0 : row_start;
    case Qt::Key_End:
      return is_control ? bytes_.size() : std::min(row_start + kRowBytes - 1, bytes_.size());
    default:
      return std::nullopt;
  }
}

bool HexView::event(QEvent* event) {
  // Del, Ctrl+C and the like belong to this view, whatever a menu does with them.
  if (event->type() == QEvent::ShortcutOverride) {
    const auto* key = static_cast<QKeyEvent*>(event);
    for (const auto standard : {QKeySequence::Copy, QKeySequence::Cut, QKeySequence::Paste, QKeySequence::Undo,
                                QKeySequence::Redo, QKeySequence::SelectAll, QKeySequence::Delete})
      if (key->matches(standard)) event->accept();
  }
  return QAbstractScrollArea::event(event);
}

bool HexView::RunStandardKey(const QKeyEvent& event) {
  const auto run = [&](QKeySequence::StandardKey key, auto command) {
    if (!event.matches(key)) return false;
    command();
    return true;
  };
  return run(QKeySequence::Copy, [this] { Copy(); }) || run(QKeySequence::Cut, [this] { Cut(); }) ||
         run(QKeySequence::Paste, [this] { Paste(); }) || run(QKeySequence::Undo, [this] { Undo(); }) ||
         run(QKeySequence::Redo, [this] { Redo(); }) || run(QKeySequence::Delete, [this] { Delete(); }) ||
         run(QKeySequence::SelectAll, [this] { Select(0, bytes_.size()); });
}

void HexView::keyPressEvent(QKeyEvent* event) {
  if (RunStandardKey(*event)) return;
  if (const auto place = PlaceOf(*event)) {
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
    return MoveCursor(*place, extends ? Anchor::Stays : Anchor::Moves);
  }
  if (event->key() == Qt::Key_Insert && event->modifiers() == Qt::NoModifier) {
    overwrites_ = !overwrites_;
    return MoveCursor(cursor_, Anchor::Moves);
  }
  if (event->key() == Qt::Key_Backspace) return Backspace();
  const QString text = event->text();
  const bool is_command = event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  // Characters of AltGr come with both modifiers.
  const bool is_character = text.size() == 1 && text[0].isPrint() &&
                            (!is_command || event->modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier));
  if (is_character && Type(text[0])) return;
  event->ignore();
}

bool HexView::Type(QChar character) {
  if (column_ == Column::Text) {
    if (character.unicode() > 0xFF) {
      emit Refused(tr("\"%1\" is no single byte.").arg(character));
      return true;
    }
    TypeByte(static_cast<char>(character.unicode()));
    return true;
  }
  const int digit = DigitOf(character);
  if (digit >= 0) TypeDigit(digit);
  if (digit < 0 && character != u' ') emit Refused(tr("\"%1\" is no hexadecimal digit.").arg(character));
  return true;
}

void HexView::TypeDigit(int digit) {
  if (is_at_low_digit_) {
    const char byte = static_cast<char>((bytes_[cursor_] & 0xF0) | digit);
    Replace(cursor_, 1, QByteArray(1, byte), cursor_ + 1);
    return;
  }
  const bool keeps_low_digit = overwrites_ && anchor_ == cursor_ && cursor_ < bytes_.size();
  PutByte(static_cast<char>(16 * digit + (keeps_low_digit ? bytes_[cursor_] & 0x0F : 0)));
  is_at_low_digit_ = true;
  viewport()->update();
}

void HexView::TypeByte(char byte) {
  PutByte(byte);
  MoveCursor(cursor_ + 1, Anchor::Moves);
}

void HexView::PutByte(char byte) {
  const qsizetype start = SelectionStart();
  qsizetype count = SelectionEnd() - start;
  if (count == 0 && overwrites_ && start < bytes_.size()) count = 1;
  Replace(start, count, QByteArray(1, byte), start);
}

void HexView::Backspace() {
  if (anchor_ != cursor_ || is_at_low_digit_) return Delete();
  if (cursor_ > 0) Replace(cursor_ - 1, 1, {}, cursor_ - 1);
}

void HexView::Delete() {
  const qsizetype start = SelectionStart();
  const qsizetype count = std::min(std::max<qsizetype>(SelectionEnd() - start, 1), bytes_.size() - start);
  if (count > 0) Replace(start, count, {}, start);
}

void HexView::Cut() {
  if (anchor_ == cursor_) return;
  Copy();
  Delete();
}

void HexView::Copy() const {
  if (anchor_ == cursor_) return;
  const QByteArrayView selected = QByteArrayView(bytes_).sliced(SelectionStart(), SelectionEnd() - SelectionStart());
  const QString text = column_ == Column::Digits ? HexTextOf(selected) : QString::fromLatin1(selected);
  QGuiApplication::clipboard()->setText(text);
}

void HexView::Paste() {
  const QString text = QGuiApplication::clipboard()->text();
  if (text.isEmpty()) return;
  std::optional<QByteArray> bytes;
  if (column_ == Column::Digits) {
    bytes = BytesOfHexText(text);
    if (!bytes) return emit Refused(tr("What was pasted is no text of hexadecimal digits."));
  } else {
    if (std::ranges::any_of(text, [](QChar character) { return character.unicode() > 0xFF; }))
      return emit Refused(tr("What was pasted has characters that are no single bytes."));
    bytes = text.toLatin1();
  }
  Replace(SelectionStart(), SelectionEnd() - SelectionStart(), *bytes, SelectionStart() + bytes->size());
}

void HexView::Replace(qsizetype offset, qsizetype count, const QByteArray& with, qsizetype cursor_after) {
  const auto size_of = [](const Edit& edit) {
    return edit.removed.size() + edit.inserted.size() + static_cast<qsizetype>(sizeof(Edit));
  };
  for (; edits_.size() > edit_count_; edits_.pop_back()) edits_size_ -= size_of(edits_.back());
  edits_.push_back({offset, bytes_.mid(offset, count), with, cursor_});
  edits_size_ += size_of(edits_.back());
  for (; edits_size_ > kMaxUndoBytes; edits_.pop_front()) edits_size_ -= size_of(edits_.front());
  edit_count_ = edits_.size();
  Apply(offset, count, with, cursor_after);
}

void HexView::Apply(qsizetype offset, qsizetype count, const QByteArray& with, qsizetype cursor_after) {
  bytes_.replace(offset, count, with);
  UpdateScrollBars();
  MoveCursor(cursor_after, Anchor::Moves);
  emit BytesChanged();
}

void HexView::Undo() {
  if (edit_count_ == 0) return;
  const Edit& edit = edits_[--edit_count_];
  Apply(edit.offset, edit.inserted.size(), edit.removed, edit.cursor_before);
}

void HexView::Redo() {
  if (edit_count_ == edits_.size()) return;
  const Edit& edit = edits_[edit_count_++];
  Apply(edit.offset, edit.removed.size(), edit.inserted, edit.offset + edit.inserted.size());
}

void HexView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  const bool has_selection = anchor_ != cursor_;
  const auto add = [&](const QString& text, QKeySequence::StandardKey key, bool is_available, auto command) {
    QAction* action = menu.addAction(text, this, command);
    action->setShortcut(key);
    action->setEnabled(is_available);
  };
  add(tr("&Undo"), QKeySequence::Undo, edit_count_ > 0, [this] { Undo(); });
  add(tr("R&edo"), QKeySequence::Redo, edit_count_ < edits_.size(), [this] { Redo(); });
  menu.addSeparator();
  add(tr("&Cut"), QKeySequence::Cut, has_selection, [this] { Cut(); });
  add(tr("C&opy"), QKeySequence::Copy, has_selection, [this] { Copy(); });
  add(tr("&Paste"), QKeySequence::Paste, !QGuiApplication::clipboard()->text().isEmpty(), [this] { Paste(); });
  add(tr("&Delete"), QKeySequence::Delete, cursor_ < bytes_.size() || has_selection, [this] { Delete(); });
  menu.addSeparator();
  add(tr("Select &All"), QKeySequence::SelectAll, !bytes_.isEmpty(), [this] { Select(0, bytes_.size()); });
  menu.exec(event->globalPos());
}

}  // namespace tme
