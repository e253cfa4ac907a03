#pragma once

#include <QPlainTextEdit>
#include <cstdint>
#include <optional>

#include "documents/reg/RegData.h"

class QLineEdit;

namespace tme {

class FieldReason;
class HexView;

/// The part of a dialog in which data of one kind (RegContent) are edited.
class RegContentPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;
  /// The limits of the data's type hold from now on. Whether the page can show exactly these data.
  virtual bool Show(const RegData& shown) = 0;
  /// False while what stands there cannot be taken; the page says why.
  virtual bool IsValid() const { return true; }
  /// What the user made of the data, of the type that was shown. Only when valid.
  virtual RegData Data() const = 0;
  /// Another reason against the content, from outside; empty takes it away.
  virtual void SayAgainst(const QString& /*reason*/) {}

 protected:
  std::uint32_t type_ = 0;

 signals:
  void Edited();
};

/// Text that keeps the kind of each of its line ends; a new line ends as the first one does, or with CR LF.
class RegTextBox : public QPlainTextEdit {
  Q_OBJECT

 public:
  /// What Enter does; Shift+Enter always begins a line.
  enum class Enter : std::uint8_t { Accepts, BeginsLine };

  RegTextBox(QWidget* parent, Enter enter);
  /// Whether Text would give the same text again.
  static bool CanHold(const QString& text);
  void SetText(const QString& text);
  QString Text() const;
  /// Without line ends.
  QStringList Lines() const;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  const Enter enter_;
  QString line_end_ = QStringLiteral("\r\n");
};

class RegTextPage : public RegContentPage {
  Q_OBJECT

 public:
  explicit RegTextPage(QWidget* parent);
  bool Show(const RegData& shown) override;
  RegData Data() const override;
  void SayAgainst(const QString& reason) override;

 private:
  RegTextBox* txt_Text;
  FieldReason* reason_;
};

/// Two boxes that follow each other.
class RegNumberPage : public RegContentPage {
  Q_OBJECT

 public:
  explicit RegNumberPage(QWidget* parent);
  bool Show(const RegData& shown) override;
  bool IsValid() const override { return number_.has_value(); }
  RegData Data() const override;

 private:
  struct Box {
    QLineEdit* edit;
    FieldReason* reason;
    int base;
  };
  Box MakeBox(const QString& object_name, const QString& accessible_name, int base);
  void Take(const Box& from, const Box& to);
  /// Why a text is no number of the base within the limit; empty when it is.
  QString ReasonAgainst(const QString& digits, int base) const;

  Box hexadecimal_;
  Box decimal_;
  std::optional<std::uint64_t> number_;
};

/// A string a line.
class RegStringsPage : public RegContentPage {
  Q_OBJECT

 public:
  explicit RegStringsPage(QWidget* parent);
  bool Show(const RegData& shown) override;
  bool IsValid() const override { return EmptyLine() < 0; }
  RegData Data() const override;
  void SayAgainst(const QString& reason) override;

 private:
  /// Lines without the empty one that a last line end begins.
  QStringList Strings() const;
  /// The first empty one, or -1.
  int EmptyLine() const;
  void Check();

  RegTextBox* txt_Strings;
  FieldReason* reason_;
};

class RegBinaryPage : public RegContentPage {
  Q_OBJECT

 public:
  explicit RegBinaryPage(QWidget* parent);
  bool Show(const RegData& shown) override;
  RegData Data() const override;
  void SayAgainst(const QString& reason) override;

 private:
  HexView* hex_;
  FieldReason* reason_;
};

}  // namespace tme
