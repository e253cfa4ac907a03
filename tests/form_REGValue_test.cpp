#include "windows/reg/form_REGValue.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <string>
#include <tuple>

#include "files/CodePage.h"
#include "windows/reg/HexView.h"
#include "windows/reg/RegTypeChange.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr RegCoding kFive{RegVersion::Version5, CodePageToUtf8, Utf8ToCodePage};
constexpr RegCoding kFour{RegVersion::Regedit4, CodePageToUtf8, Utf8ToCodePage};

struct ValueDialog {
  explicit ValueDialog(const RegData& data, const RegCoding& coding = kFive) : dialog(nullptr, u"Edit"_s, coding) {
    dialog.SetValue(u"v"_s, data);
    dialog.show();
    (void)QTest::qWaitForWindowActive(&dialog);
  }
  explicit ValueDialog(std::uint32_t type, const std::string& bytes) : ValueDialog(DataOfBytes(type, bytes, kFive)) {}
  template <class Widget>
  Widget* Find(const char* name) {
    return dialog.findChild<Widget*>(QString::fromLatin1(name));
  }
  void Choose(std::uint32_t type) {
    auto* types = Find<QComboBox>("cmb_Type");
    types->setCurrentIndex(types->findData(type));
    emit types->activated(types->currentIndex());
  }
  /// The reasons that stand in sight.
  QString Reasons() {
    QStringList reasons;
    for (const QLabel* label : dialog.findChildren<QLabel*>(u"reason"_s))
      if (label->isVisible() && !label->text().isEmpty()) reasons += label->text();
    return reasons.join(u'|');
  }
  bool CanAccept() { return Find<QPushButton>("cmd_OK")->isEnabled(); }
  std::string Bytes() { return RegBytes(dialog.Data(), kFive).value_or("none"); }

  form_REGValue dialog;
};

RegData Text(std::uint32_t type, const std::string& text) {
  RegData made = EmptyRegData(type);
  made.text = text;
  return made;
}

}  // namespace

TEST(form_REGValue, ATypeTakesOverWhatKeepsItsMeaning) {
  const std::string twelve("1\0002\0\0\0", 6), a_b("a\0\0\0b\0\0\0\0\0", 10);
  // From a type, its bytes, to a type, and what becomes of them.
  const std::tuple<std::uint32_t, std::string, std::uint32_t, std::string> cases[] = {
      {reg_type::kString, twelve, reg_type::kExpandString, twelve},
      {reg_type::kString, twelve, reg_type::kDword, std::string("\x0c\0\0\0", 4)},
      {reg_type::kString, twelve, reg_type::kQword, std::string("\x0c\0\0\0\0\0\0\0", 8)},
      {reg_type::kString, twelve, reg_type::kMultiString, twelve + std::string(2, '\0')},
      {reg_type::kString, twelve, reg_type::kBinary, twelve},
      {reg_type::kString, std::string("x\0\0\0", 4), reg_type::kDword, std::string("x\0\0\0", 4)},
      {reg_type::kString, std::string(2, '\0'), reg_type::kDword, std::string(4, '\0')},
      {reg_type::kDword, std::string("\x0c\0\0\0", 4), reg_type::kDwordBigEndian, std::string("\0\0\0\x0c", 4)},
      {reg_type::kDword, std::string("\x0c\0\0\0", 4), reg_type::kString, twelve},
      {reg_type::kQword, std::string(8, '\1'), reg_type::kDword, std::string(8, '\1')},
      {reg_type::kMultiString, a_b, reg_type::kString, std::string("a\0\r\0\n\0b\0\0\0", 10)},
      {reg_type::kBinary, twelve, reg_type::kLink, twelve},
      {reg_type::kBinary, "odd", reg_type::kString, "odd"},
      {0xFFFF0012, "\1", reg_type::kString, "\1"},
  };
  for (const auto& [from, bytes, to, expected] : cases) {
    ValueDialog value(from, bytes);
    // The way between loses nothing.
    for (const std::uint32_t type : {reg_type::kNone, reg_type::kDword, reg_type::kMultiString, to}) value.Choose(type);
    EXPECT_EQ(value.Bytes(), expected) << from << " to " << to;
    EXPECT_EQ(value.dialog.Data().type, to);
    EXPECT_TRUE(value.CanAccept());
    value.Choose(from);
    EXPECT_EQ(value.dialog.Data(), DataOfBytes(from, bytes, kFive));
  }
}

TEST(form_REGValue, WhatCannotBeTakenIsSaidAndOkStaysOff) {
  ValueDialog value(reg_type::kDword, std::string(4, '\0'));
  auto* hexadecimal = value.Find<QLineEdit>("txt_Hexadecimal");
  auto* decimal = value.Find<QLineEdit>("txt_Decimal");
  const auto type = [](QLineEdit* box, const QString& text) {
    box->selectAll();
    QTest::keyClicks(box, text);
  };
  type(hexadecimal, u"0xFF"_s);
  EXPECT_EQ(decimal->text(), u"255");
  type(decimal, u"4294967296"_s);
  EXPECT_EQ(value.Reasons(), u"The largest number of this type is 4294967295.");
  EXPECT_EQ(decimal->accessibleDescription(), value.Reasons());
  EXPECT_NE(decimal->palette().color(QPalette::Base), hexadecimal->palette().color(QPalette::Base));
  EXPECT_EQ(hexadecimal->text(), u"");
  EXPECT_FALSE(value.CanAccept());
  type(hexadecimal, u"-1"_s);
  EXPECT_EQ(value.Reasons(), u"A hexadecimal number has the digits 0 to 9 and a to f only.");
  value.Choose(reg_type::kQword);
  type(hexadecimal, u"fffffffffffffffff"_s);
  EXPECT_EQ(value.Reasons(), u"The largest number of this type is ffffffffffffffff.");
  type(hexadecimal, u"ffffffffffffffff"_s);
  EXPECT_EQ(decimal->text(), u"18446744073709551615");
  EXPECT_TRUE(value.CanAccept());

  value.dialog.SetNameCheck([](const QString& name) { return name == u"w" ? u"taken"_s : QString(); });
  type(value.Find<QLineEdit>("txt_Name"), u"w"_s);
  EXPECT_EQ(value.Reasons(), u"taken");
  EXPECT_FALSE(value.CanAccept());

  ValueDialog strings(reg_type::kMultiString, std::string("a\0\0\0\0\0", 6));
  auto* lines = strings.Find<QPlainTextEdit>("txt_Strings");
  lines->setPlainText(u"a\n\nb\n"_s);
  EXPECT_EQ(strings.Reasons(), u"Line 2 is empty, but an empty text would end the list.");
  EXPECT_FALSE(strings.CanAccept());
  lines->setPlainText(u"a\nb\n"_s);
  EXPECT_TRUE(strings.CanAccept()) << "a last line end is none of a line";
  EXPECT_EQ(strings.dialog.Data().strings, (std::vector<std::string>{"a", "b"}));

  ValueDialog four(Text(reg_type::kExpandString, "a"), kFour);
  four.Find<QPlainTextEdit>("txt_Text")->setPlainText(u"\u4e2d"_s);
  EXPECT_EQ(
      four.Reasons(),
      u"The code page of this file does not have all of these characters. File, Save As Another Form makes it one "
      u"of version 5.00, which has.");
  ValueDialog first(Text(reg_type::kString, "a"), {RegVersion::Regedit, CodePageToUtf8, Utf8ToCodePage});
  EXPECT_FALSE(first.Find<QComboBox>("cmb_Type")->isEnabled());
  first.Find<QPlainTextEdit>("txt_Text")->setPlainText(u"a\nb"_s);
  EXPECT_EQ(first.Reasons(), u"A value of this kind of file is one line of text.");
}

TEST(form_REGValue, ReasonsHaveTheirRoom) {
  ValueDialog value(reg_type::kDword, std::string(4, '\0'));
  value.dialog.SetNameCheck([](const QString&) { return u"many words about a name "_s.repeated(12); });
  QTest::keyClicks(value.Find<QLineEdit>("txt_Hexadecimal"), u"xyz"_s);
  QTest::keyClicks(value.Find<QLineEdit>("txt_Decimal"), u"-"_s);
  QCoreApplication::processEvents();
  for (const QLineEdit* box : value.dialog.findChildren<QLineEdit*>())
    if (box->isVisible()) {
      EXPECT_GE(box->height(), box->sizeHint().height()) << box->objectName().toStdString();
    }
  for (const QLabel* label : value.dialog.findChildren<QLabel*>(u"reason"_s))
    if (label->isVisible()) {
      EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
    }
}

TEST(form_REGValue, TextKeepsItsLineEndsAndEnterAccepts) {
  ValueDialog value(Text(reg_type::kString, "a\nb\rc\r\nd\xC2\xA0"));
  auto* text = value.Find<QPlainTextEdit>("txt_Text");
  text->moveCursor(QTextCursor::End);
  QTest::keyClicks(text, u"e"_s);
  QTest::keyClick(text, Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(value.dialog.Data().text,
            "a\nb\rc\r\nd\xC2\xA0"
            "e\n");
  QTest::keyClick(text, Qt::Key_Return);
  EXPECT_EQ(value.dialog.result(), QDialog::Accepted);

  ValueDialog strings(reg_type::kMultiString, std::string(2, '\0'));
  auto* lines = strings.Find<QPlainTextEdit>("txt_Strings");
  QTest::keyClicks(lines, u"a"_s);
  QTest::keyClick(lines, Qt::Key_Return);
  QTest::keyClicks(lines, u"b"_s);
  QTest::keyClick(lines, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(strings.dialog.result(), QDialog::Accepted);
  EXPECT_EQ(strings.dialog.Data().strings, (std::vector<std::string>{"a", "b"}));
  QTest::keyClick(lines, Qt::Key_Escape);

  ValueDialog marks(Text(reg_type::kString,
                         "a\xE2\x80\xA9"
                         "b"));
  EXPECT_TRUE(marks.Find<HexView>("HexView")->isVisible()) << "a box of text would make a line end of it";
  EXPECT_EQ(marks.dialog.Data().text,
            "a\xE2\x80\xA9"
            "b");
}

TEST(form_REGValue, BytesAreEditedInBothColumns) {
  ValueDialog value(reg_type::kString, "odd");
  EXPECT_EQ(value.Find<QLabel>("lbl_Note")->text(),
            u"These bytes cannot be shown as REG_SZ, so they are edited as bytes.");
  auto* hex = value.Find<HexView>("HexView");
  hex->SetBytes(QByteArray(40, 'x'));
  const auto keys = [hex](std::initializer_list<int> list, Qt::KeyboardModifiers modifiers = {}) {
    for (const int key : list) QTest::keyClick(hex, static_cast<Qt::Key>(key), modifiers);
  };
  QTest::keyClicks(hex, u"0a1b"_s);
  keys({Qt::Key_Tab});
  QTest::keyClicks(hex, u"Q"_s);
  EXPECT_TRUE(hex->Bytes().startsWith("\x0a\x1bQx"));
  EXPECT_EQ(hex->RowText(0), u"00000000  0a 1b 51 78 78 78 78 78  78 78 78 78 78 78 78 78  ..Qxxxxxxxxxxxxx");
  EXPECT_EQ(hex->RowText(2), u"00000020  78 78 78 78 78 78 78 78                           xxxxxxxx        ");
  keys({Qt::Key_Backtab});
  keys({Qt::Key_Home, Qt::Key_Insert});
  QTest::keyClicks(hex, u"ff"_s);
  EXPECT_EQ(hex->Bytes().size(), 41);
  keys({Qt::Key_Backspace, Qt::Key_Delete});
  EXPECT_EQ(hex->Bytes().size(), 39);
  keys({Qt::Key_Z, Qt::Key_Z}, Qt::ControlModifier);
  EXPECT_EQ(hex->Bytes().size(), 41);
  keys({Qt::Key_Down, Qt::Key_End}, Qt::NoModifier);
  EXPECT_EQ(hex->Cursor(), 31);
  keys({Qt::Key_Home, Qt::Key_PageDown}, Qt::ShiftModifier);
  keys({Qt::Key_C, Qt::Key_X}, Qt::ControlModifier);
  EXPECT_EQ(hex->Bytes().size(), 31);
  EXPECT_EQ(QApplication::clipboard()->text(), u"78 78 78 78 78 78 78 78 78 78");
  QApplication::clipboard()->setText(u"hex(2):00,01,\\\r\n  02 0x3 0405"_s);
  keys({Qt::Key_V}, Qt::ControlModifier);
  EXPECT_TRUE(hex->Bytes().endsWith(QByteArray("\0\1\2\3\4\5", 6)));
  QApplication::clipboard()->setText(u"no"_s);
  keys({Qt::Key_V}, Qt::ControlModifier);
  EXPECT_EQ(value.Reasons(), u"What was pasted is no text of hexadecimal digits.");
  EXPECT_TRUE(value.CanAccept()) << "the bytes are as good as before";
  EXPECT_EQ(value.dialog.Data().bytes, hex->Bytes().toStdString());

  auto* text = QAccessible::queryAccessibleInterface(hex)->textInterface();
  int start = 0, end = 0;
  EXPECT_EQ(text->textAtOffset(80, QAccessible::LineBoundary, &start, &end), hex->RowText(1) + u'\n');
  EXPECT_EQ(start, 77);
  text->setCursorPosition(77 + 10 + 3);
  EXPECT_EQ(hex->Cursor(), 17);
  EXPECT_EQ(text->cursorPosition(), 90);
}

TEST(form_REGValue, LargeBytesAreEditedWithoutAPause) {
  ValueDialog value(reg_type::kBinary, std::string(std::size_t{50} << 20, 'x'));
  auto* hex = value.Find<HexView>("HexView");
  QTest::keyClick(hex, Qt::Key_End, Qt::ControlModifier);
  QTest::keyClicks(hex, u"00"_s);
  QTest::keyClick(hex, Qt::Key_Home, Qt::ControlModifier);
  QTest::keyClick(hex, Qt::Key_Delete);
  EXPECT_EQ(hex->Bytes().size(), qsizetype{50} << 20);
  EXPECT_EQ(hex->Cursor(), 0);
}
