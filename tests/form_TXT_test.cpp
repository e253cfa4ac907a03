#include "windows/text/form_TXT.h"

#include <QApplication>
#include <QClipboard>
#include <QMdiSubWindow>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include "Editor.h"
#include "TestSystem.h"
#include "WaitFor.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "system/Twips.h"
#include "windows/text/TextPad.h"

using namespace tme;
using namespace Qt::StringLiterals;

class FormTxt : public Editor {
 protected:
  FormTxt() { Start(); }
  form_TXT& Window(int slot = 0) { return dynamic_cast<form_TXT&>(*global_.documents.At(DocumentKind::Txt, slot)); }
  form_TXT& Open(const std::string& bytes, int slot = 0) {
    OpenPathList(global_, File(u"%1.txt"_s.arg(slot), bytes));
    QApplication::processEvents();
    return Window(slot);
  }
  form_TXT& New() {
    NewDocument(global_, DocumentKind::Txt);
    return Window();
  }
  static TextPad& PadOf(form_TXT& window) { return static_cast<TextPad&>(window.EditingArea()); }
  static std::string TextOf(form_TXT& window) { return std::string(PadOf(window).Text()); }
  void ExpectOverwrite(MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, answer,
                          MsgIcon::Question);
  }
};

TEST_F(FormTxt, UntouchedFilesComeBackAsTheyWere) {
  using namespace std::string_literals;
  std::string large;
  while (large.size() < 700'000) large += "a line\r\nand one \xE4\xB8\xAD\n";
  const std::vector<std::string> files{""s,
                                       "\r"s,
                                       "a\r\nb\nc\rd"s,
                                       "\xEF\xBB\xBFwith mark\n"s,
                                       "\xEF\xBB\xBF\xFF invalid \xC3"s,
                                       "\xEF\xBB\xBF"s,
                                       "Gr\xFC\xDF\x81\r\n"s,
                                       "nul \0 and \x01\x1B\x7F\n"s,
                                       "\xFF\xFE\x41\x00\x00\xD8\x0D\x00\x0A\x00z"s,
                                       "\xFE\xFF\x00\x41\xDC\x00"s,
                                       "\xE2\x80\xA8\xC2\x85 line ends of other kinds"s,
                                       large,
                                       "\xFC" + std::string(600'000, '\xE9')};
  for (const std::string& bytes : files) {
    form_TXT& window = Open(bytes);
    EXPECT_FALSE(window.File().IsChanged() || window.IsModified());
    const QString path = window.File().Path();
    QFile::remove(path);
    window.SaveFile();
    EXPECT_TRUE(BytesOf(path) == bytes) << bytes.substr(0, 40);
    window.FileClose();
    EXPECT_TRUE(window.Tag().isEmpty());
  }
}

TEST_F(FormTxt, EditsTakeTheLineEndOfTheFileAndCanBeUndone) {
  const std::vector<std::array<std::string, 2>> table{
      {"a\nb", "x\ny\n\na\nb"}, {"a\r", "x\ry\r\ra\r"}, {"a\r\nb\n", "x\r\ny\r\n\r\na\r\nb\n"}, {"", "x\r\ny\r\n\r\n"}};
  for (const auto& [before, after] : table) {
    form_TXT& window = Open(before);
    QGuiApplication::clipboard()->setText(u"x\ny\r\n"_s);
    QTest::keyClick(&PadOf(window), Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&PadOf(window), Qt::Key_Return);
    EXPECT_EQ(TextOf(window), after);
    EXPECT_EQ(window.windowTitle(), u"0.txt [CHANGED]"_s);
    EXPECT_TRUE(window.IsModified());
    QTest::keyClick(&PadOf(window), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&PadOf(window), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(TextOf(window), before);
    window.Altered(false);
    window.FileClose();
  }
}

TEST_F(FormTxt, CutCopyDeleteSelectAllAndTab) {
  form_TXT& window = Open("one\r\ntwo");
  TextPad& pad = PadOf(window);
  window.EditSelectAll();
  QTest::keyClick(&pad, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"one\ntwo"_s);
  pad.Select(0, 2);
  QTest::keyClick(&pad, Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(TextOf(window), "e\r\ntwo");
  pad.Select(0, 1);
  window.EditDelete();
  window.EditDelete();
  QTest::keyClick(&pad, Qt::Key_Backtab, Qt::ShiftModifier);
  QTest::keyClick(&pad, Qt::Key_Tab);
  EXPECT_EQ(TextOf(window), "\t\t\r\ntwo");
  EXPECT_EQ(pad.Moved(0, 5), 5);  // CR LF are two
  pad.Select(0, 0);
  window.EditCopy();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QString());
  window.Altered(false);
}

TEST_F(FormTxt, KeysWithCtrlOrSuperTypeNothing) {
  form_TXT& window = Open("word");
  TextPad& pad = PadOf(window);
  const auto press = [&](int key, const QString& text, Qt::KeyboardModifiers modifiers) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&pad, &event);
  };
  window.EditSelectAll();
  const auto zoom = [&] { return pad.SendScintilla(QsciScintillaBase::SCI_GETZOOM); };
  const struct {
    QChar key;
    int zoom_by_ctrl;
  } keys[] = {{u'1', 0}, {u'5', 0}, {u'.', 0}, {u',', 0}, {u';', 0}, {u'\'', 0},
              {u'j', 0}, {u'+', 1}, {u'=', 2}, {u'-', 1}, {u'0', 0}};
  for (const auto& [key, zoomed] : keys) {
    const int code = key.toUpper().unicode();
    for (const Qt::KeyboardModifiers with : {Qt::MetaModifier | Qt::NoModifier, Qt::MetaModifier | Qt::ControlModifier})
      press(code, key, with);
    press(code, key, Qt::ControlModifier);
    EXPECT_EQ(zoom(), zoomed) << key.toLatin1();
    press(code, key, Qt::ControlModifier | Qt::KeypadModifier);
    pad.SendScintilla(QsciScintillaBase::SCI_SETZOOM, zoomed);
    EXPECT_EQ(TextOf(window), "word") << key.toLatin1();
  }
  EXPECT_FALSE(window.File().IsChanged());
  // AltGr is Ctrl+Alt on some systems; a character beyond 16 bits and one without width are typed like any other.
  press(Qt::Key_E, u"\u20AC"_s, Qt::ControlModifier | Qt::AltModifier);
  press(0, u"\U0001F600"_s, Qt::NoModifier);
  press(Qt::Key_2, u"\u200D"_s, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(TextOf(window), "\xE2\x82\xAC\xF0\x9F\x98\x80\xE2\x80\x8D");
  window.Altered(false);
}

TEST_F(FormTxt, CaretGoesByWhatReadersTakeForACharacter) {
  const std::string accented = "e\xCC\x81\xCC\xA3", flag = "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA",
                    family = "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
  form_TXT& window = Open("a" + accented + "b" + flag + flag + family + "\r\nz" + accented);
  TextPad& pad = PadOf(window);
  std::vector<PadPosition> right, left;
  const auto walk = [&](Qt::Key key, std::vector<PadPosition>& stops) {
    for (PadPosition before = -1; pad.Caret() != before;) {
      before = pad.Caret();
      stops.push_back(before);
      QTest::keyClick(&pad, key);
    }
  };
  walk(Qt::Key_Right, right);
  walk(Qt::Key_Left, left);
  EXPECT_EQ(right, (std::vector<PadPosition>{0, 1, 6, 7, 15, 23, 34, 36, 37, 42}));
  EXPECT_EQ(std::vector(left.rbegin(), left.rend()), right);
  // Straight below, inside of the first line's accented letter.
  pad.Select(37, 37);
  QTest::keyClick(&pad, Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(pad.SelectedText().size(), 3);
  QTest::mouseClick(pad.viewport(), Qt::LeftButton, {}, pad.viewport()->mapFromGlobal(pad.RectOf(4).center()));
  EXPECT_TRUE(pad.Caret() == 1 || pad.Caret() == 6) << pad.Caret();
  // Delete takes all of it, Backspace an accent alone but a picture whole.
  pad.Select(1, 1);
  QTest::keyClick(&pad, Qt::Key_Delete);
  pad.Select(10, 10);
  QTest::keyClick(&pad, Qt::Key_Backspace);
  pad.Select(pad.End(), pad.End());
  QTest::keyClick(&pad, Qt::Key_Backspace);
  EXPECT_EQ(TextOf(window), "ab" + flag + family + "\r\nze\xCC\x81");
  window.Altered(false);
}

TEST_F(FormTxt, UndoAndRedoAreOfferedWhenThereIsSomething) {
  form_TXT& window = Open("word");
  const auto offered = [&] {
    QTest::qWait(0);
    return std::pair(global_.menus.Action(u"menu_EditUndo"_s)->isEnabled(),
                     global_.menus.Action(u"menu_EditRedo"_s)->isEnabled());
  };
  EXPECT_EQ(offered(), std::pair(false, false));
  QTest::keyClicks(&PadOf(window), u"ab"_s);
  WaitFor([&] { return offered() == std::pair(true, false); });
  global_.menus.Action(u"menu_EditUndo"_s)->trigger();
  EXPECT_EQ(TextOf(window), "word");
  EXPECT_EQ(offered(), std::pair(false, true));
  Open("other", 1);
  EXPECT_EQ(offered(), std::pair(false, false));
  window.Form_Activate();
  global_.menus.Action(u"menu_EditRedo"_s)->trigger();
  EXPECT_EQ(TextOf(window), "abword");
  QTest::keyClick(&PadOf(window), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(TextOf(window), "word") << "the key undoes once";
  window.Altered(false);
}

TEST_F(FormTxt, TimeComesBeforeTheDate) {
  form_TXT& window = New();
  const QDate before = QDate::currentDate();
  window.EditTimeDate();
  const QDate after = QDate::currentDate();
  const QStringList parts = QString::fromStdString(TextOf(window)).split(u" - "_s);
  ASSERT_EQ(parts.size(), 2);
  EXPECT_TRUE(QRegularExpression(u"^\\d{1,2}.\\d{2}"_s).match(parts[0]).hasMatch()) << parts[0].toStdString();
  const auto text = [](QDate date) { return QLocale::system().toString(date, QLocale::ShortFormat); };
  EXPECT_TRUE(parts[1] == text(before) || parts[1] == text(after)) << parts[1].toStdString();
  window.Altered(false);
}

TEST_F(FormTxt, SaveAsKeepsOrRestoresTheNames) {
  form_TXT& window = Open("text");
  const QString first = window.File().Path(), other = File(u"other.txt"_s, "old");
  window.EditDelete();
  PadOf(window).ReplaceSelection(u"new "_s);

  common_dialog_.ExpectSave({});
  window.SaveAs();
  EXPECT_EQ(window.windowTitle(), u"0.txt [CHANGED]"_s);
  common_dialog_.ExpectSave(other);
  ExpectOverwrite(MsgAnswer::No);
  common_dialog_.ExpectSave(other);
  ExpectOverwrite(MsgAnswer::Cancel);
  window.SaveAs();
  EXPECT_EQ(window.File().Path(), first);
  EXPECT_EQ(window.File().Title(), u"0.txt"_s);
  EXPECT_EQ(window.windowTitle(), u"0.txt [CHANGED]"_s);
  EXPECT_TRUE(window.File().IsChanged());
  EXPECT_EQ(BytesOf(other), "old");

  common_dialog_.ExpectSave(InFolder(u"no folder/x.txt"_s));
  dialogs_.ExpectMsgBox(u"TME could not save the file\r( %1 )\r%2.  Nothing was written."_s.arg(
                            InFolder(u"no folder/x.txt"_s), NothingThere(Missing::Folder)),
                        u"Tamarind Editor"_s);
  window.SaveAs();
  EXPECT_EQ(window.File().Path(), first);

  common_dialog_.ExpectSave(other);
  ExpectOverwrite(MsgAnswer::Yes);
  window.SaveAs();
  EXPECT_EQ(BytesOf(other), "new text");
  EXPECT_EQ(BytesOf(first), "text");
  EXPECT_EQ(window.windowTitle(), u"other.txt"_s);
  EXPECT_FALSE(window.File().IsChanged() || window.IsModified());
  const tme::CommonDialog& shown = common_dialog_.shown.back();
  EXPECT_EQ(shown.title, u"Save Text File"_s);
  EXPECT_EQ(shown.filter, u"Text File|"_s + global_.settings.txt_filter);
  EXPECT_EQ(shown.default_ext, u".TXT"_s);

  // The next document in this window is not given the file of the last one.
  window.FileClose();
  New();
  common_dialog_.ExpectSave({});
  window.SaveFile();
  EXPECT_EQ(window.File().Path(), QString());
  EXPECT_EQ(window.windowTitle(), u"New Text Document"_s);
}

TEST_F(FormTxt, CancelledOverwriteOfANewDocumentEmptiesItsCaption) {
  form_TXT& window = New();
  PadOf(window).ReplaceSelection(u"x"_s);
  common_dialog_.ExpectSave(File(u"there.txt"_s, "old"));
  ExpectOverwrite(MsgAnswer::Cancel);
  window.SaveFile();
  EXPECT_EQ(window.windowTitle(), QString());
  EXPECT_EQ(window.File().Path(), QString());
  EXPECT_TRUE(window.File().IsChanged());
  EXPECT_EQ(TextOf(window), "x");
  window.Altered(false);
}

TEST_F(FormTxt, CancelledOverwriteKeepsTheCaptionThatASaveAsSaw) {
  form_TXT& window = New();
  common_dialog_.ExpectSave({});
  window.SaveAs();
  common_dialog_.ExpectSave(File(u"there.txt"_s, "old"));
  ExpectOverwrite(MsgAnswer::Cancel);
  window.SaveFile();
  EXPECT_EQ(window.windowTitle(), u"New Text Document"_s);
}

TEST_F(FormTxt, ClosingAsks) {
  form_TXT& window = Open("text");
  const QString question = u"Save this file?\r"_s + window.File().Path(), path = window.File().Path();
  const auto answer = [&](MsgAnswer with) {
    PadOf(window).ReplaceSelection(u"+"_s);
    dialogs_.ExpectMsgBox(question, u"Document Changed"_s, MsgButtons::YesNoCancel, with, MsgIcon::Question);
    window.SubWindow()->close();
  };
  answer(MsgAnswer::Cancel);
  EXPECT_EQ(window.Tag(), u"0"_s);
  answer(MsgAnswer::Yes);
  EXPECT_EQ(window.Tag(), QString());
  EXPECT_EQ(BytesOf(path), "++text");
  EXPECT_EQ(PadOf(window).End(), 0);  // its memory is given back

  // A cancelled save dialog does not keep the window.
  New();
  PadOf(window).ReplaceSelection(u"lost"_s);
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::Yes);
  common_dialog_.ExpectSave({});
  window.FileClose();
  EXPECT_EQ(window.Tag(), QString());
}

TEST_F(FormTxt, WordWrapIsOneCheckMarkForAllWindows) {
  form_TXT& first = Open(std::string(3000, 'a') + " b\n");
  form_TXT& second = Open("b", 1);
  const auto wrapped = [](form_TXT& window) {
    TextPad& pad = PadOf(window);
    return PixelsToTwips(pad.width(), pad.logicalDpiX()) - 500;
  };
  EXPECT_EQ(PadOf(second).RightMargin(), Pad::kNoWrap);
  global_.menus.Action(u"menu_EditWordWrap"_s)->trigger();
  EXPECT_TRUE(global_.menus.Action(u"menu_EditWordWrap"_s)->isChecked());
  EXPECT_EQ(PadOf(second).RightMargin(), wrapped(second));
  EXPECT_EQ(PadOf(first).RightMargin(), Pad::kNoWrap);
  Settings next_start;
  next_start.ReadFrameGroup(registry_);
  EXPECT_TRUE(next_start.word_wrap);
  first.Form_Activate();
  EXPECT_EQ(PadOf(first).RightMargin(), wrapped(first));
  WaitFor([&] { return PadOf(first).SendScintilla(QsciScintillaBase::SCI_WRAPCOUNT, 0) > 1; });
  first.SubWindow()->resize(400, 300);
  EXPECT_EQ(PadOf(first).RightMargin(), wrapped(first));
  global_.menus.Action(u"menu_EditWordWrap"_s)->trigger();
  EXPECT_EQ(PadOf(first).RightMargin(), Pad::kNoWrap);
}

TEST_F(FormTxt, TextThatTheEncodingCannotHoldIsSaid) {
  form_TXT& window = Open("caf\xE9");
  QGuiApplication::clipboard()->setText(u"\u4E2D"_s);
  window.EditPaste();
  window.SaveFile();
  EXPECT_EQ(BytesOf(window.File().Path()),
            "\xE4\xB8\xAD"
            "caf\xC3\xA9");
  EXPECT_TRUE(window.findChild<NoticeBar*>()->isVisibleTo(&window));
  while (PadOf(window).CanUndo()) window.EditUndo();
  WaitFor([&] { return window.File().Format().encoding == TextEncoding::CodePage; });
  window.SaveFile();
  EXPECT_EQ(BytesOf(window.File().Path()), "caf\xE9") << "as it was opened";
}

TEST_F(FormTxt, AssistiveProgramsReadLinesAndCharacters) {
  form_TXT& window = Open("\xC3\xA9\xF0\x9F\x98\x80 word\nlast");
  QAccessibleTextInterface* text = QAccessible::queryAccessibleInterface(&PadOf(window))->textInterface();
  ASSERT_TRUE(text);
  EXPECT_EQ(text->characterCount(), 13);
  EXPECT_EQ(text->text(1, 3), u"\U0001F600"_s);
  int start = 0, end = 0;
  EXPECT_EQ(text->textAtOffset(5, QAccessible::WordBoundary, &start, &end), u"word"_s);
  EXPECT_EQ(start, 4);
  EXPECT_EQ(text->textAfterOffset(5, QAccessible::LineBoundary, &start, &end), u"last"_s);
  EXPECT_EQ(end, 13);
  text->setCursorPosition(99);
  EXPECT_EQ(text->cursorPosition(), 13);
}

TEST_F(FormTxt, PrintsTheSelectionElseAll) {
  const QString pdftotext = QStandardPaths::findExecutable(u"pdftotext"_s);
  if (pdftotext.isEmpty()) GTEST_SKIP() << "pdftotext is not installed";
  std::string bytes = "begin\tcolumn\r\n" + std::string(300, 'w') + "\r\n";
  for (int line = 0; line < 150; ++line) bytes += "line " + std::to_string(line) + "\r\n";
  form_TXT& window = Open(bytes + "end");
  const auto printed = [&] {
    window.Form_Activate();
    common_dialog_.ExpectPrinter(InFolder(u"out.pdf"_s), [this](CommonDialog&) { Open("of another launch", 1); });
    global_.menus.Action(u"menu_FilePrint"_s)->trigger();
    QProcess process;
    process.start(pdftotext, {u"-layout"_s, InFolder(u"out.pdf"_s), u"-"_s});
    process.waitForFinished(-1);
    return QString::fromUtf8(process.readAllStandardOutput());
  };
  const QString all = printed();
  EXPECT_TRUE(all.contains(QRegularExpression(u"begin +column"_s))) << all.left(200).toStdString();
  EXPECT_EQ(all.count(u'w'), 300);
  EXPECT_GE(all.count(u'\f'), 3);
  for (const QString& text : {u"line 0\n"_s, u"line 149\n"_s, u"end\n"_s}) EXPECT_TRUE(all.contains(text));
  PadOf(window).Select(0, 5);
  EXPECT_EQ(printed().trimmed(), u"begin"_s);
}
