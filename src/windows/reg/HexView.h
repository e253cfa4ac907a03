#pragma once

#include <QAbstractScrollArea>
#include <QByteArray>
#include <QString>
#include <cstdint>
#include <deque>
#include <optional>

namespace tme {

/// Bytes in rows of 16: the offset of the row, the bytes' hexadecimal digits, and a column with their characters. Both
/// columns can be edited; Tab goes from the digits to the characters and on to the next control. What is out of sight
/// costs nothing, an edit one move of the bytes behind it.
class HexView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  static constexpr int kRowBytes = 16;
  enum class Column : std::uint8_t { Digits, Text };

  explicit HexView(QWidget* parent = nullptr);

  /// The cursor goes to the start, and nothing can be undone.
  void SetBytes(QByteArray bytes);
  const QByteArray& Bytes() const { return bytes_; }

  /// A place between 0 and the number of bytes; behind the last byte a new one can be typed.
  qsizetype Cursor() const { return cursor_; }
  qsizetype SelectionStart() const { return std::min(anchor_, cursor_); }
  /// Behind the last selected byte.
  qsizetype SelectionEnd() const { return std::max(anchor_, cursor_); }
  void Select(qsizetype anchor, qsizetype cursor);
  Column ActiveColumn() const { return column_; }

  /// Rows with bytes, and the one in which the next byte can be typed.
  qsizetype RowCount() const { return bytes_.size() / kRowBytes + 1; }
  /// Row as it is shown, always of kRowCharacters.
  QString RowText(qsizetype row) const;
  static constexpr int kRowCharacters = 76;
  /// Where a byte's digits or character stand in its row's text.
  static int CharacterOf(int byte_in_row, Column column);
  /// In the viewport, in pixels.
  QRect RectOf(qsizetype byte, Column column) const;
  qsizetype ByteAt(const QPoint& point) const;
  void Reveal(qsizetype byte);

  /// Says where the cursor is, and what typing does there.
  QString StatusText() const;

  void Cut();
  void Copy() const;
  /// Takes hexadecimal digits into the digits, text into the characters.
  void Paste();
  void Delete();
  void Undo();
  void Redo();

 signals:
  void BytesChanged();
  void CursorMoved();
  /// A paste could not be taken.
  void Refused(const QString& reason);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 private:
  enum class Anchor : std::uint8_t { Moves, Stays };
  struct Edit {
    qsizetype offset;
    QByteArray removed;
    QByteArray inserted;
    qsizetype cursor_before;
  };

  void MeasureFont();
  void UpdateScrollBars();
  qreal XOf(int character) const;
  void PaintRow(QPainter& painter, qsizetype row) const;
  void PaintColumn(QPainter& painter, qsizetype row, const QString& text, Column column) const;
  void PaintCursor(QPainter& painter) const;
  bool RunStandardKey(const QKeyEvent& event);
  /// Where a key takes the cursor; nothing for a key that moves nothing.
  std::optional<qsizetype> PlaceOf(const QKeyEvent& event) const;
  void MoveCursor(qsizetype to, Anchor anchor);
  bool Type(QChar character);
  void TypeDigit(int digit);
  void TypeByte(char byte);
  /// Makes room for a typed byte at the cursor: behind it when inserting, in place of the selection or the next byte.
  void PutByte(char byte);
  void Backspace();
  void Replace(qsizetype offset, qsizetype count, const QByteArray& with, qsizetype cursor_after);
  void Apply(qsizetype offset, qsizetype count, const QByteArray& with, qsizetype cursor_after);

  QByteArray bytes_;
  qsizetype cursor_ = 0;
  qsizetype anchor_ = 0;
  Column column_ = Column::Digits;
  /// The first digit of the byte at the cursor was typed.
  bool is_at_low_digit_ = false;
  bool overwrites_ = true;
  std::deque<Edit> edits_;
  /// Of edits_; those from here on were undone.
  std::size_t edit_count_ = 0;
  qsizetype edits_size_ = 0;  ///< bytes

  qreal cell_width_ = 8;  ///< pixels, as row_height_
  int row_height_ = 16;
};

/// The bytes of a text of hexadecimal digits as people and programs write them: "0a0b", "0A 0B", "hex:0a,0b,\" over
/// several lines, "0x0a, 0x0b". Nothing when it is none.
std::optional<QByteArray> BytesOfHexText(QStringView text);
/// "0a 0b", 16 bytes a line.
QString HexTextOf(QByteArrayView bytes);

}  // namespace tme
