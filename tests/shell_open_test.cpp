#include <QApplication>
#include <QMdiSubWindow>
#include <QScreen>

#include "Editor.h"
#include "TestSystem.h"
#include "WaitFor.h"
#include "shell/CommandLineRecord.h"
#include "shell/DocumentArea.h"
#include "shell/NoticeBar.h"
#include "shell/OS_SendMessage.h"
#include "shell/OpenDispatch.h"
#include "shell/WindowArrangement.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

QString NotAFile(const QString& path) {
  return u"TME was unable to verify that your request was to open a file.\r( "_s + path +
         u" )\rAs such, this action has been canceled."_s;
}

}  // namespace

TEST_F(Editor, PathListFindsFilesAmongBlanks) {
  if (folder_.path().contains(u' ')) GTEST_SKIP() << "in such a folder, only the last path of a list can be found";
  const QString plain = File(u"a.ini"_s, kIni), blank = File(u"b c.ini"_s, kIni), last = File(u"d  e.ini"_s, kIni);
  dialogs_.ExpectMsgBox(NotAFile(QDir::toNativeSeparators(folder_.path())), u"TME"_s, MsgButtons::Ok, MsgAnswer::Ok,
                        MsgIcon::Information);
  dialogs_.ExpectMsgBox(NotAFile(u"nowhere.ini"_s), u"TME"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Information);
  Start({u" "_s + plain + u"  "_s + QDir::toNativeSeparators(folder_.path()) + u" nowhere.ini "_s + blank + u" "_s,
         last});
  EXPECT_EQ(Ini(0).windowTitle(), u"a.ini");
  EXPECT_EQ(Ini(1).windowTitle(), u"b c.ini");
  EXPECT_EQ(Ini(2).File().Path(), last);
  EXPECT_EQ(Ini(3).Tag(), u"");
  EXPECT_EQ(global_.area.ActiveDocument(), &Ini(2));
}

TEST_F(Editor, SixthDocumentOfAKindIsRefused) {
  QStringList paths;
  for (int number = 0; number < 6; ++number) paths += File(u"%1.ini"_s.arg(number), kIni);
  dialogs_.ExpectMsgBox(
      u"There are no more INI File documents available to open.  Please close one before opening another."_s,
      u"Reached the limit of 5 type max"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::None);
  Start(paths);
  Ini(2).FileClose();
  NewDocument(global_, DocumentKind::Ini);
  EXPECT_EQ(Ini(2).windowTitle(), u"New INI File");
}

TEST_F(Editor, KindFollowsTheLastThreeLetters) {
  const QString filter = Settings().txt_filter;
  const std::pair<const char*, DocumentKind> rows[] = {
      {"/x/WIN.INI", DocumentKind::Ini},   {"/x/a.reg", DocumentKind::Reg},     {"/x/a.txt", DocumentKind::Txt},
      {"/x/p.html", DocumentKind::Txt},    {"/x/notes.WRI", DocumentKind::Rtf}, {"/x/noext", DocumentKind::Rtf},
      {"/x/desktopini", DocumentKind::Ini}};
  for (const auto& [path, kind] : rows) EXPECT_EQ(KindOf(QString::fromLatin1(path), filter), kind) << path;
  EXPECT_EQ(KindOf(u"a.ini"_s, u"*.INI;*.TXT"_s), DocumentKind::Txt) << "the text filter wins";
}

TEST_F(Editor, OpenDialogUsesItsFieldsAndRemembersTheFolder) {
  const QString first = File(u"one two.ini"_s, kIni), second = File(u"b.ini"_s, kIni), odd = File(u"odd.cfg"_s, kIni);
  registry_.WriteValue(SettingsRoot, u"Default Open Type"_s, u"2"_s);
  registry_.WriteValue(SettingsRoot, u"MultiSelect"_s, u"1"_s);
  Start();
  common_dialog_.ExpectOpen({});
  OpenFileDialog(global_);
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"Last Open"_s), u"") << "cancelled";
  common_dialog_.ExpectOpen({odd}, 2);  // a file of any name opens as the kind of the chosen entry
  OpenFileDialog(global_);
  common_dialog_.ExpectOpen({first, second}, 4);
  OpenFileDialog(global_);
  ASSERT_EQ(common_dialog_.shown.size(), 3U);
  const CommonDialog& shown = common_dialog_.shown.back();
  EXPECT_EQ(shown.title, u"Open File for Editing");
  EXPECT_EQ(shown.filter, u"Text File|"_s + Settings().txt_filter + u"|INI File|*.INI|Registry File|*.REG|RTF File|"_s +
                              Settings().rtf_filter + u"|Other (*.*)|*.*"_s);
  EXPECT_TRUE(shown.multi_select);
  EXPECT_EQ(shown.init_dir, QDir::toNativeSeparators(folder_.path()));
  EXPECT_EQ(Ini(0).windowTitle(), u"odd.cfg");
  EXPECT_EQ(Ini(1).windowTitle(), u"one two.ini");
  EXPECT_EQ(Ini(2).windowTitle(), u"b.ini");
}

TEST_F(Editor, HandedOverTextIsOpened) {
  const QString path = File(u"a.ini"_s, kIni);
  Start();
  ReceiveCommandLine(global_, {4, path.toUtf8() + '\0'});
  EXPECT_EQ(Ini(0).Tag(), u"") << "not a command line";
  ReceiveCommandLine(global_, {kCommandLineData, path.toUtf8() + QByteArray("\0/ignored", 9)});
  EXPECT_EQ(Ini(0).File().Path(), path) << "cut at the zero byte";
  const QString cut = u"/many words of a path "_s.repeated(20).left(kMaxCopyDataBytes);
  dialogs_.ExpectMsgBox(u"TME was unable to verify that your request was to open a file.\r( "_s + cut +
                            u" )\rAs such, this action has been canceled."_s,
                        u"TME"_s);
  ReceiveCommandLine(global_, {kCommandLineData, cut.toUtf8()});  // no zero byte: there was more
  const QString odd_name = u"\xFEFF.ini"_s;
  EXPECT_EQ(CommandLineOf(CommandLineRecord(odd_name))->text, odd_name);
}

TEST_F(Editor, ExitAsksSlotBySlotAndNeverCancels) {
  const QStringList paths{File(u"0.ini"_s, kIni), File(u"1.ini"_s, kIni)};
  Start(paths);
  Ini(1).setFocus();
  for (const int slot : {0, 1}) {
    Select(Ini(slot), {u"A"_s, u"x=1"_s});
    dialogs_.ExpectMsgBox(u"Are you sure you want to delete Key / Value x=1?"_s, u"Deletion Confirmation"_s,
                          MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
    Ini(slot).DeleteValue();
    EXPECT_EQ(Ini(slot).windowTitle(), u"%1.ini [CHANGED]"_s.arg(slot));
  }
  const QString question = u"Save this file?\r"_s, title = u"Document Changed"_s;
  dialogs_.ExpectMsgBox(question + paths[0], title, MsgButtons::YesNoCancel, MsgAnswer::Cancel, MsgIcon::Question);
  dialogs_.ExpectMsgBox(question + paths[1], title, MsgButtons::YesNoCancel, MsgAnswer::Yes, MsgIcon::Question);
  frame_->close();
  EXPECT_TRUE(frame_->HasLeft());
  EXPECT_FALSE(frame_->isVisible());
  EXPECT_EQ(BytesOf(paths[0]), kIni);
  EXPECT_EQ(BytesOf(paths[1]), "[A]\r\n\r\n");
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"WinRegistration"_s), u"");
}

TEST_F(Editor, LeavingAsksForAnotherPlaceWhenTheWriteFails) {
  const QString path = File(u"a.ini"_s, kIni), other = InFolder(u"b.ini"_s);
  Start({path});
  AwaitSystemTurn();
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, u"New"_s);
  Ini().AddSection();
  QFile::setPermissions(path, QFile::ReadOwner);
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::Yes);
  dialogs_.ExpectMsgBox(
      u"TME could not save the file\r( "_s + path + u" )\rThe file is read-only.  The file on disk is unchanged."_s,
      u"Tamarind Editor"_s);
  common_dialog_.ExpectSave(other);
  frame_->ExitApplication();
  EXPECT_EQ(BytesOf(other), "[A]\r\nx=1\r\n\r\n[New]\r\n\r\n");
  EXPECT_TRUE(InstanceLink().ClaimOnlyInstance()) << "a launch from here on is the first";
}

TEST_F(Editor, AnotherLaunchMayTakeTheSlotOfAFileThatCannotBeRead) {
  const QString path = File(u"a.ini"_s, kIni), gone = InFolder(u"gone.ini"_s);
  Start();
  dialogs_.ExpectMsgBox(u"TME could not open the file\r( "_s + gone + u" )\r"_s + NothingThere(Missing::File) + u'.',
                        u"Tamarind Editor"_s);
  dialogs_.while_asking = [&] { OpenPathList(global_, path); };
  OpenFileByName(global_, gone);
  EXPECT_EQ(Ini().File().Path(), path);
}

TEST_F(Editor, FrameComesBackWhereItWas) {
  const auto write = [this](const QString& name, const QString& text) {
    registry_.WriteValue(SettingsRoot, name, text);
  };
  Start();
  const QRect screen = frame_->screen()->geometry();
  EXPECT_EQ(frame_->size(), (QSizeF(screen.size()) * 0.75).toSize()) << "first start";
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"Application Path"_s), shell_utilities_.ProgramFolder());

  write(u"MDI Top"_s, u"300"_s);
  write(u"MDI Left"_s, u"450"_s);
  write(u"MDI Width"_s, u"6000"_s);
  write(u"MDI Height"_s, u"tall"_s);  // no number: the height stays
  mdform_TMEditor again(global_, [](Global&, DocumentKind, int) { return nullptr; });
  again.MDIForm_Load({});
  const double dpi = again.logicalDpiX();
  EXPECT_EQ(again.pos(), QPoint(qRound(450 * dpi / 1440), qRound(300 * dpi / 1440)));
  EXPECT_EQ(again.width(), qRound(6000 * dpi / 1440));
  EXPECT_EQ(again.height(), qRound(screen.height() * 0.75));

  again.showMaximized();
  WaitFor([this] { return registry_.ReadValue(SettingsRoot, u"MDI Max"_s) == u"1"; });
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"MDI Height"_s), u"tall") << "maximising writes the flag alone";
}

TEST_F(Editor, FrameComesBackOntoAScreen) {
  Start();
  const QRect screen = frame_->screen()->geometry();
  const double twips = 1440.0 / frame_->logicalDpiX();
  // Left, top, width, height in pixels, as written and as restored; beyond 2184 pixels no 16 bits hold them.
  const std::pair<QRect, QRect> rows[] = {
      {{5000, 3000, 400, 300}, {screen.right() + 1 - 400, screen.bottom() + 1 - 300, 400, 300}},
      {{-5000, 10, 400, 300}, {0, 10, 400, 300}},
      {{10, 20, 3000, 300}, {0, 20, screen.width(), 300}},
      {{100, 50, 400, 300}, {100, 50, 400, 300}}};
  for (const auto& [written, restored] : rows) {
    const std::pair<const char*, int> values[] = {{"MDI Left", written.x()},
                                                  {"MDI Top", written.y()},
                                                  {"MDI Width", written.width()},
                                                  {"MDI Height", written.height()}};
    for (const auto& [name, pixels] : values)
      registry_.WriteValue(SettingsRoot, QString::fromLatin1(name), QString::number(qRound(pixels * twips)));
    mdform_TMEditor again(global_, [](Global&, DocumentKind, int) { return nullptr; });
    again.MDIForm_Load({});
    EXPECT_EQ(QRect(again.pos(), again.size()), restored) << written.x();
  }
}

TEST_F(Editor, WelcomeDocumentIsGoneAndNobodyMissesIt) {
  const QString path = File(u"Welcome.RTF"_s, "{\\rtf1 Welcome}");
  Start();
  frame_->OpenWelcomeDocument(folder_.path());
  const DocumentWindow& window = *global_.documents.At(DocumentKind::Rtf, 0);
  global_.area.ActiveDocument()->Form_Activate();
  EXPECT_EQ(window.windowTitle(), u"Welcome.RTF");
  EXPECT_EQ(window.findChild<NoticeBar*>()->Text(), u"");
  EXPECT_EQ(window.File().Path(), u"") << "saved there, it would be taken away at the next start";
  EXPECT_FALSE(QFile::exists(path));
}

TEST_F(Editor, EditorsStartMaximisedWhereTheUserWantsIt) {
  registry_.WriteValue(SettingsRoot, u"Start Editors Max"_s, u"1"_s);
  Start({File(u"a.ini"_s, kIni), File(u"b.ini"_s, kIni)});
  // Opened before the frame showed.
  WaitFor([this] { return Ini(1).SubWindow()->isMaximized(); });
  OpenPathList(global_, File(u"c.ini"_s, kIni));
  EXPECT_TRUE(Ini(2).SubWindow()->isMaximized());
  NewDocument(global_, DocumentKind::Ini);
  EXPECT_TRUE(Ini(3).SubWindow()->isMaximized());
  EXPECT_GT(Ini(3).height(), frame_->height() / 2);
}

TEST_F(Editor, SettingsAreCleaned) {
  const std::pair<const char*, int> periods[] = {{"", 0}, {"abc", 0}, {"-3", 0}, {"7", 7}, {"99", 99}, {"250", 99}};
  for (const auto& [text, minutes] : periods)
    EXPECT_EQ(ParseAutoSavePeriod(QString::fromLatin1(text)), minutes) << text;
  EXPECT_EQ(ParseDefaultOpenType({}), DocumentKind::Ini);
  EXPECT_EQ(ParseDefaultOpenType(u"3"_s), DocumentKind::Rtf);
  EXPECT_EQ(ParseDefaultOpenType(u"4"_s), DocumentKind::Ini);
  Start();
  for (const auto& [text, points] : {std::pair{u"0"_s, 10}, {u""_s, 10}, {u"12"_s, 12}}) {
    registry_.WriteValue(kTxtKey, u"Default Size"_s, text);
    Settings settings;
    settings.ReadTxtGroup(registry_);
    EXPECT_EQ(settings.font_size, points) << text.toStdString();
    EXPECT_EQ(settings.font_name, u"Courier");
  }
  const QString documents = PersonalFolder(registry_);
  EXPECT_FALSE(documents.isEmpty());
  RememberLastSaveFolder(registry_, folder_.path());
  EXPECT_EQ(LastSaveFolder(registry_), QDir::toNativeSeparators(folder_.path()));
  RememberLastSaveFolder(registry_, InFolder(u"gone"_s));
  EXPECT_EQ(LastSaveFolder(registry_), QDir::toNativeSeparators(folder_.path()));
  folder_.remove();
  EXPECT_EQ(LastSaveFolder(registry_), documents);
}

TEST_F(Editor, ArrangementsFillTheFrame) {
  const auto covered = [](const std::vector<QRect>& rects) {
    int area = 0;
    for (const QRect& rect : rects) area += rect.width() * rect.height();
    return area;
  };
  for (int count = 1; count <= 20; ++count)
    for (const Arrangement way : {Arrangement::TileHorizontally, Arrangement::TileVertically}) {
      const std::vector<QRect> rects = TileRects(count, {640, 480}, way);
      EXPECT_EQ(rects.size(), static_cast<std::size_t>(count));
      EXPECT_EQ(covered(rects), 640 * 480) << count;
    }
  EXPECT_EQ(TileRects(3, {600, 300}, Arrangement::TileHorizontally)[1], QRect(0, 100, 600, 100));
  EXPECT_EQ(TileRects(3, {600, 300}, Arrangement::TileVertically)[1], QRect(200, 0, 200, 300));

  Start({File(u"a.ini"_s, kIni), File(u"b.ini"_s, kIni), File(u"c.ini"_s, kIni)});
  Ini(0).SubWindow()->showMinimized();
  global_.area.ArrangeWindows(3);
  QMdiSubWindow* icon = Ini(0).SubWindow();
  EXPECT_EQ(icon->geometry().bottomLeft(), QPoint(0, icon->parentWidget()->height() - 1));
  global_.area.ArrangeWindows(0);
  EXPECT_EQ(Ini(1).SubWindow()->pos(), QPoint(0, 0));
  EXPECT_GT(Ini(2).SubWindow()->x(), 0);
  EXPECT_EQ(Ini(2).SubWindow()->width(), Ini(2).PreferredWidth());
}
