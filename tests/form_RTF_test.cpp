#include "windows/rich/form_RTF.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QPrinter>
#include <QProgressDialog>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>

#include "RtfWindow.h"
#include "WaitFor.h"
#include "shell/GlobalMenus.h"
#include "shell/LongWork.h"
#include "windows/rich/RtfPrint.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(FormRtf, SavesUntouchedBytesAsTheyWereAndEditsAsRichText) {
  const std::string bytes = "{\\rtf1\\ansi  {\\*\\odd thing}\\pard\\b one\\b0\\par}\n\n";
  form_RTF& window = Open(bytes);
  const QString path = InFolder(u"letter.rtf"_s);
  QTest::keyClick(&PadOf(window), Qt::Key_Right);
  EXPECT_EQ(window.windowTitle(), u"letter.rtf [CHANGED]"_s);
  window.SaveFile();
  EXPECT_EQ(BytesOf(path), bytes);
  EXPECT_EQ(window.windowTitle(), u"letter.rtf"_s);
  PadOf(window).ReplaceSelection(u"\u4E2D"_s);
  window.SaveFile();
  const std::string written = BytesOf(path);
  EXPECT_TRUE(written.starts_with("{\\rtf1"));
  EXPECT_NE(written.find("\\u20013"), std::string::npos);
  EXPECT_FALSE(window.IsModified());
}

TEST_F(FormRtf, AnEditChangesItsOwnPlaceInTheFile) {
  const std::string bytes =
      "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\r\n{\\*\\odd thing}\\pard\\chpgn  {\\b one}\\par\r\n"
      "\\trowd\\cellx900\\pard\\intbl cell\\cell\\row\\pard last\\par}\n";
  form_RTF& window = Open(bytes);
  RtfPad& pad = PadOf(window);
  const QString path = InFolder(u"letter.rtf"_s);
  const auto saved = [&] {
    window.SaveFile();
    return BytesOf(path);
  };
  const auto with = [&](std::string_view what, std::string_view instead) {
    std::string edited = bytes;
    return edited.replace(edited.find(what), what.size(), instead);
  };
  const auto find = [&](const QString& text) { pad.setTextCursor(pad.document()->find(text)); };
  find(u"one"_s);
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"ly"_s);
  EXPECT_EQ(saved(), with("one", "onely"));
  pad.undo();
  EXPECT_EQ(saved(), bytes);
  find(u"cell"_s);
  window.FormatBold();
  EXPECT_EQ(saved(), with("cell\\cell", "{\\b cell}\\cell"));
  pad.undo();
  find(u"last"_s);
  QTest::keyClick(&pad, Qt::Key_Left);
  QTest::keyClicks(&pad, u"a\r"_s);
  EXPECT_EQ(saved(), with("last", "a\\par last"));
}

TEST_F(FormRtf, SaysWhatItShowsInASimplerForm) {
  std::string bytes = "{\\rtf1 ";
  for (int level = 1; level < 20; ++level) bytes += "\\itap" + std::to_string(level) + " a\\nestcell ";
  bytes += "\\pard\\itap0 " + std::string(50'000, 'x') + "}";
  form_RTF& window = Open(bytes);
  EXPECT_TRUE(NoticeOf(window).contains(u"nested too deeply"_s));
  EXPECT_TRUE(NoticeOf(window).contains(u"so long"_s));
  window.SaveFile();
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), bytes);
}

TEST_F(FormRtf, ACancelledOpeningOpensNothingAndACancelledPasteChangesNothing) {
  LongWork::quiet_ms = 0;
  const auto cancel = [this] {
    QTimer::singleShot(0, frame_.get(), [this] {
      auto* box = frame_->findChild<QProgressDialog*>(u"LongWorkProgress"_s);
      ASSERT_TRUE(box);
      EXPECT_TRUE(box->isModal());
      box->cancel();
    });
  };
  std::string bytes = "{\\rtf1 ";
  for (int paragraph = 0; paragraph < 2'000; ++paragraph) bytes += "a\\par ";
  bytes += "}";
  const QString path = File(u"letter.rtf"_s, bytes);
  cancel();
  OpenPathList(global_, path);
  EXPECT_TRUE(Window().Tag().isEmpty());
  EXPECT_TRUE(Window().File().Path().isEmpty());
  EXPECT_EQ(global_.documents.FindFreeSlot(DocumentKind::Rtf), 0);
  OpenPathList(global_, path);
  ASSERT_FALSE(Window().Tag().isEmpty());
  EXPECT_EQ(PadOf(Window()).document()->blockCount(), 2'000);
  auto* data = new QMimeData;
  data->setData(u"text/rtf"_s, QByteArray::fromStdString(bytes));
  QGuiApplication::clipboard()->setMimeData(data);
  cancel();
  Window().EditPaste();
  EXPECT_EQ(PadOf(Window()).document()->blockCount(), 2'000);
  EXPECT_FALSE(Window().IsModified());
  LongWork::quiet_ms = 500;
}

TEST_F(FormRtf, ALargeEditIsLaidOutBitByBitAndIsOneStep) {
  form_RTF& window = Open("{\\rtf1 " + std::string(1'000'000, 'x') + "}");
  RtfPad& pad = PadOf(window);
  const auto is_laid_out = [&pad] { return pad.document()->lastBlock().layout()->lineCount() > 0; };
  window.EditSelectAll();
  EXPECT_TRUE(is_laid_out());
  window.FormatBold();
  EXPECT_FALSE(is_laid_out());
  EXPECT_EQ(pad.SelectionBold(), true);
  for (const bool bold : {false, true}) {
    bold ? pad.Redo() : pad.Undo();
    EXPECT_FALSE(is_laid_out());
    EXPECT_EQ(pad.SelectionBold(), bold);
    EXPECT_EQ(pad.SelectionEnd() - pad.SelectionStart(), pad.End());
  }
}

TEST_F(FormRtf, OpensReadyToTypeInTheFormatOfItsFirstCharacter) {
  form_RTF& window = Open("{\\rtf1\\b one\\b0  two}");
  EXPECT_EQ(PadOf(window).SelectionBold(), true);
  EXPECT_EQ(PadOf(window).wordWrapMode(), QTextOption::NoWrap);
  PadOf(window).selectAll();
  QTest::keyClick(&PadOf(window), 'j', Qt::AltModifier);
  EXPECT_EQ(PadOf(window).toPlainText(), u"one two"_s);
}

TEST_F(FormRtf, KeysWithCtrlOrSuperThatNobodyHasDoNothing) {
  form_RTF& window = Open("{\\rtf1 one two}");
  RtfPad& pad = PadOf(window);
  pad.Select(0, 3);
  const double before = pad.document()->documentLayout()->documentSize().height();
  const auto height = [&] { return pad.document()->documentLayout()->documentSize().height(); };
  QTest::keyClick(&pad, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(height(), before);
  QTest::keyClick(&pad, Qt::Key_0, Qt::ControlModifier | Qt::KeypadModifier);
  EXPECT_EQ(height(), before);
  EXPECT_FALSE(window.File().IsChanged()) << "zooming is no edit";
  for (const Qt::Key key : {Qt::Key_K, Qt::Key_D, Qt::Key_E, Qt::Key_5})
    for (const Qt::KeyboardModifier with : {Qt::ControlModifier, Qt::MetaModifier})
      QTest::keyClick(&pad, key, with | (key == Qt::Key_5 ? Qt::KeypadModifier : Qt::NoModifier));
  EXPECT_EQ(pad.toPlainText(), u"one two"_s);
  EXPECT_EQ(pad.textCursor().position(), 3);
}

TEST_F(FormRtf, WithoutWrapParagraphsStandWhereTheirAlignmentPutsThem) {
  constexpr int kBefore = 400;  // more than what is laid out at once
  std::string bytes = "{\\rtf1 ";
  for (int line = 0; line < kBefore; ++line) bytes += "left\\par ";
  form_RTF& window = Open(bytes + "\\qr\\u1513?\\par\\pard\\qc centre\\par\\pard\\rtlpar\\u1513?\\par\\rtlpar" +
                          std::string(1500, '.') + "}");
  RtfPad& pad = PadOf(window);
  const auto expect_in_place = [&] {
    QApplication::processEvents();
    pad.document()->documentLayout()->documentSize();  // lays out the rest
    WaitFor([&] { return pad.horizontalScrollBar()->maximum() > 0; });
    const double width = pad.viewport()->width();
    const auto text = [&](int number) {
      const QTextLayout& line = *pad.document()->findBlockByNumber(number).layout();
      return line.lineAt(0).naturalTextRect().translated(line.position());
    };
    EXPECT_LT(text(kBefore - 1).left(), 60);
    EXPECT_NEAR(text(kBefore).right(), width, 60);
    EXPECT_NEAR(text(kBefore + 1).center().x(), width / 2, 5);
    EXPECT_NEAR(text(kBefore + 2).right(), width, 60);
    EXPECT_GT(text(kBefore + 3).right(), 2 * width);
    EXPECT_GT(pad.horizontalScrollBar()->maximum(), width);
  };
  expect_in_place();
  window.SubWindow()->resize(500, 300);
  expect_in_place();
  pad.verticalScrollBar()->setValue(pad.verticalScrollBar()->maximum() / 2);
  const auto top = [&] { return pad.cursorForPosition({}).blockNumber(); };
  const int before = top();
  QTest::keyClick(&pad, Qt::Key_Plus, Qt::ControlModifier);
  expect_in_place();
  EXPECT_NEAR(top(), before, 1);
  window.EditWW();
  window.EditWW();
  expect_in_place();
  window.FileClose();
  // Where the caret stands in a long one is no reason to open with the others out of sight.
  PadOf(Open("{\\rtf1\\rtlpar " + std::string(1500, '.') + "\\par\\qr short}"));
  QApplication::processEvents();
  EXPECT_EQ(pad.horizontalScrollBar()->value(), 0);
}

TEST_F(FormRtf, AssistiveProgramsToggleTheButtons) {
  form_RTF& window = New();
  RtfPad& pad = PadOf(window);
  pad.ReplaceSelection(u"one"_s);
  pad.Select(0, 3);
  const auto toggle = [&](const char* tag) {
    auto* button = window.findChild<QToolButton*>(QLatin1StringView(tag));
    QAccessible::queryAccessibleInterface(button)->actionInterface()->doAction(
        QAccessibleActionInterface::toggleAction());
    return button->isChecked();
  };
  for (const bool on : {true, false}) {
    for (const char* tag : {"bold", "italic", "underline", "list"}) EXPECT_EQ(toggle(tag), on) << tag;
    EXPECT_EQ(pad.SelectionBold(), on);
    EXPECT_EQ(pad.SelectionItalic(), on);
    EXPECT_EQ(pad.SelectionUnderline(), on);
    EXPECT_EQ(pad.SelectionBullet(), on);
    EXPECT_EQ(IsChecked("menu_FormatBold"), on);
  }
}

TEST_F(FormRtf, PrintsInsideThePageAndBreaksIt) {
  std::string bytes = "{\\rtf1 ";
  for (int word = 0; word < 300; ++word) bytes += "word ";
  form_RTF& window = Open(bytes + "\\page two\\par}");
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFileName(InFolder(u"out.pdf"_s));
  window.PrintDoc(printer);
  EXPECT_NE(BytesOf(InFolder(u"out.pdf"_s)).find("/Count 2\n"), std::string::npos);
}

TEST_F(FormRtf, TheDialogsFilterIndexDecidesWhatIsWritten) {
  form_RTF& window = Open("{\\rtf1 caf\\'e9\\par}");
  const QString path = InFolder(u"letter.rtf"_s);
  PadOf(window).ReplaceSelection(u"x"_s);
  const std::string before = BytesOf(path);
  global_.common_dialog.filter_index = 3;
  window.SaveFile();
  EXPECT_EQ(BytesOf(path), before);
  EXPECT_FALSE(window.File().IsChanged());
  EXPECT_TRUE(NoticeOf(window).contains(u"Save As"_s));
  EXPECT_TRUE(window.IsModified());
  global_.common_dialog.filter_index = 2;
  window.SaveFile();
  EXPECT_EQ(BytesOf(path), "xcaf\xE9");
  EXPECT_TRUE(NoticeOf(window).contains(u"plain text"_s));
  common_dialog_.ExpectSave(InFolder(u"other.rtf"_s));
  window.SaveAs();
  EXPECT_TRUE(BytesOf(InFolder(u"other.rtf"_s)).starts_with("{\\rtf1"));
  EXPECT_EQ(common_dialog_.shown.back().filter, u"RTF File|*.RTF;*.WRI|TXT File| & TXTFilter"_s);
}

TEST_F(FormRtf, FormatCommandsAndTheirStateFollowTheSelection) {
  form_RTF& window = New();
  RtfPad& pad = PadOf(window);
  pad.ReplaceSelection(u"one two"_s);
  pad.Select(0, 3);
  Click(window, u"bold"_s);
  QTest::keyClick(&pad, Qt::Key_B, Qt::ControlModifier);
  QTest::keyClick(&pad, Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(pad.SelectionBold(), false);
  EXPECT_EQ(pad.SelectionItalic(), true);
  EXPECT_TRUE(IsChecked("menu_FormatItalic"));
  pad.Select(0, 7);
  QTest::keyClick(&pad, Qt::Key_Shift);
  QTest::mouseRelease(pad.viewport(), Qt::MiddleButton);
  QApplication::processEvents();
  EXPECT_FALSE(IsChecked("menu_FormatItalic"));
  window.FormatItalic();
  EXPECT_EQ(pad.SelectionItalic(), true);
  common_dialog_.ExpectFont();
  const std::optional<QString> name = pad.SelectionFontName();
  window.FormatFont();
  EXPECT_EQ(pad.SelectionItalic(), false);
  EXPECT_EQ(pad.SelectionFontName(), name);
  common_dialog_.ExpectColor();
  global_.common_dialog.color = Qt::red;
  window.FormatColor();
  EXPECT_EQ(pad.SelectionColor(), QColor(Qt::red));
}

TEST_F(FormRtf, FontSizeButtons) {
  form_RTF& window = New();
  RtfPad& pad = PadOf(window);
  pad.ReplaceSelection(u"one two"_s);
  pad.Select(0, 3);
  pad.SetSelectionFontSize(2);
  Click(window, u"FD"_s);
  EXPECT_EQ(pad.SelectionFontSize(), 0);
  pad.Select(0, 7);
  Click(window, u"FD"_s);
  EXPECT_EQ(pad.SelectionFontSize(), std::nullopt);
  Click(window, u"FU"_s);
  EXPECT_EQ(pad.SelectionFontSize(), 2);
}

TEST_F(FormRtf, EnterInABulletedLineBeginsTheNextWithABlank) {
  form_RTF& window = New();
  RtfPad& pad = PadOf(window);
  pad.ReplaceSelection(u"one"_s);
  window.FormatBulleted();
  EXPECT_TRUE(IsChecked("menu_FormatBulleted"));
  QTest::keyClick(&pad, Qt::Key_Return);
  EXPECT_EQ(pad.toPlainText(), u"one\n "_s);
  EXPECT_EQ(pad.SelectionBullet(), true);
}

TEST_F(FormRtf, ClipboardCarriesRichAndPlainText) {
  form_RTF& window = Open("{\\rtf1\\ansi one {\\b two}\\par}");
  RtfPad& pad = PadOf(window);
  pad.Select(0, pad.End());
  window.EditCopy();
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  for (const char* name : {"text/rtf", "application/rtf", "text/richtext"})
    EXPECT_TRUE(data->data(QLatin1StringView(name)).startsWith("{\\rtf1")) << name;
  EXPECT_EQ(data->text(), u"one two"_s);
  pad.Select(pad.End(), pad.End());
  QTest::keyClick(&pad, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(pad.toPlainText(), u"one twoone two"_s);
  pad.Select(11, 14);
  EXPECT_EQ(pad.SelectionBold(), true);
  window.EditPasteSpecialPlainText();
  auto* html = new QMimeData;
  html->setHtml(u"a<img src='file:///etc/hostname'><b>b</b>"_s);
  QGuiApplication::clipboard()->setMimeData(html);
  pad.Select(0, pad.End());
  window.EditPaste();
  EXPECT_EQ(pad.toPlainText(), u"ab"_s);
  auto* picture = new QMimeData;
  picture->setImageData(QImage(3, 3, QImage::Format_RGB32));
  QGuiApplication::clipboard()->setMimeData(picture);
  window.EditPaste();
  EXPECT_EQ(pad.End(), 3);
}

TEST_F(FormRtf, NamesThatAreNoCommands) {
  const QMetaObject& commands = form_RTF::staticMetaObject;
  EXPECT_EQ(commands.indexOfMethod("SearchAgain()"), -1);
  EXPECT_EQ(commands.indexOfMethod("Altered(bool)"), -1);
  EXPECT_NE(commands.indexOfMethod("FormatBulleted()"), -1);
}

TEST_F(FormRtf, RedoAndWordWrapAsInThePlainPad) {
  RtfPad& pad = PadOf(New());
  EXPECT_EQ(pad.wordWrapMode(), QTextOption::NoWrap);
  QTest::keyClicks(&pad, u"one"_s);
  QTest::keyClick(&pad, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(pad.toPlainText(), QString());
  EXPECT_FALSE(global_.menus.Action(u"menu_EditUndo"_s)->isEnabled());
  QTest::keyClick(&pad, Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(pad.toPlainText(), u"one"_s);
  EXPECT_FALSE(global_.menus.Action(u"menu_EditRedo"_s)->isEnabled());
  global_.menus.Action(u"menu_EditUndo"_s)->trigger();
  EXPECT_EQ(pad.toPlainText(), QString());
}

TEST_F(FormRtf, PrintsInsideThePagesMargins) {
  form_RTF& window = Open("{\\rtf1\\pard\\li1440 " + std::string(200, 'x') + "\\par}");
  const std::unique_ptr<QTextDocument> text(PadOf(window).document()->clone());
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFileName(InFolder(u"letter.pdf"_s));
  PrintRtf(printer, *text, "\\margl1440\\margt1440");
  EXPECT_EQ(text->pageCount(), 1);
  EXPECT_GT(text->begin().layout()->lineCount(), 1);
  constexpr double kInch = 96;  // the layout has units of its own and is scaled as a whole
  const QRectF block = text->documentLayout()->blockBoundingRect(text->begin());
  EXPECT_NEAR(block.left(), kInch, 2);
  EXPECT_NEAR(block.top(), kInch, 2);
  EXPECT_NEAR(text->begin().layout()->lineAt(0).x(), kInch, 2);
}
