#include <QApplication>
#include <QDialog>
#include <QMdiSubWindow>
#include <QTest>

#include "Editor.h"
#include "WaitFor.h"
#include "shell/AutoSave.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "windows/reg/form_REG.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr const char* kTouched = "[A]\r\nx=1\r\n\r\n[B]\r\n\r\n";
constexpr const char* kForeign = "changed by another program";

class SavingTest : public Editor {
 protected:
  /// Lets minutes pass, as long as the timer runs.
  void PassMinutes(int minutes) {
    auto* timer = frame_->Saver().findChild<QTimer*>(u"AutoSaveTimer"_s);
    for (; minutes > 0 && timer->isActive(); --minutes) {
      QTimerEvent minute(timer->timerId());
      QApplication::sendEvent(timer, &minute);
    }
  }
  /// An edit that leaves the changed flag alone.
  static void Touch(form_INI& window) { const_cast<IniTree&>(window.Tree()).AddSection("B"); }
};

}  // namespace

TEST_F(SavingTest, TimerSavesWhatWasTouched) {
  const QString touched = File(u"a.ini"_s, kIni), untouched = File(u"b.ini"_s, kIni);
  const QString keys = File(u"c.reg"_s, "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\r\n");
  registry_.WriteValue(SettingsRoot, u"AutoSave"_s, u"2"_s);
  Start({touched, untouched, keys});
  Touch(Ini(0));
  auto& reg = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 0));
  auto& document = const_cast<RegDocument&>(reg.Document());
  document.AddValueRecord(document.Root()->Child(0)->Child(0), RegType::String, "n", "new");
  File(u"b.ini"_s, kForeign);
  QStringList captions;
  QObject::connect(frame_.get(), &QWidget::windowTitleChanged, [&](const QString& caption) { captions += caption; });
  PassMinutes(1);
  EXPECT_EQ(BytesOf(touched), kIni);
  PassMinutes(1);
  EXPECT_EQ(BytesOf(touched), kTouched);
  EXPECT_EQ(BytesOf(untouched), kForeign);
  EXPECT_NE(BytesOf(keys).find("\"n\"=\"new\""), std::string::npos);
  EXPECT_EQ(captions, (QStringList{u"Tamarind Editor - AutoSaving Open Files"_s, u"Tamarind Editor"_s}));
  File(u"a.ini"_s, kForeign);
  PassMinutes(2);
  EXPECT_EQ(BytesOf(touched), kForeign) << "written, and not touched since";
}

TEST_F(SavingTest, TimerPassesOverWhatItWouldHaveToAskAbout) {
  File(u"history"_s, "a file where the folder should be");
  const QString cut = File(u"a.ini"_s, "[A]\nx=1\n\ny=2"), whole = File(u"b.ini"_s, kIni);
  registry_.WriteValue(SettingsRoot, u"AutoSave"_s, u"1"_s);
  Start({cut, whole});
  for (const int slot : {0, 1}) Touch(Ini(slot));
  PassMinutes(2);
  EXPECT_EQ(BytesOf(cut), "[A]\nx=1\n\ny=2");
  EXPECT_EQ(BytesOf(whole), kTouched);
  EXPECT_EQ(Ini(0).findChild<NoticeBar*>()->Text().count(u"AutoSave passed over"_s), 1);
}

TEST_F(SavingTest, TimerCountsAndWaits) {
  const QString path = File(u"a.ini"_s, kIni);
  Start({path});
  // Periods as they are set, the minutes that pass, and whether a save comes in them; the count goes on throughout.
  const std::tuple<int, int, bool> rows[] = {{0, 200, false}, {3, 2, false},   {2, 1, false},
                                             {4, 1, true},    {99, 98, false}, {99, 1, true},
                                             {9, 8, false},   {8, 90, false},  {8, 9, true}};
  for (const auto& [period, minutes, saved] : rows) {
    File(u"a.ini"_s, "");
    Touch(Ini());
    frame_->Saver().SetAutoSaveTimer(global_.settings.auto_save_period = period);
    PassMinutes(minutes);
    EXPECT_EQ(!BytesOf(path).empty(), saved) << period << " after " << minutes;
  }
  Touch(Ini());
  File(u"a.ini"_s, "");
  frame_->Saver().SetAutoSaveTimer(global_.settings.auto_save_period = 1);
  QDialog question(frame_.get());
  question.setModal(true);
  question.show();
  PassMinutes(3);
  EXPECT_EQ(BytesOf(path), "") << "it waits for the question";
  question.hide();
  PassMinutes(1);
  EXPECT_NE(BytesOf(path), "");
}

TEST_F(SavingTest, TimerAsksForNamesWhenNobodyTypes) {
  using std::chrono::milliseconds;
  const QString path = InFolder(u"named.INI"_s);
  Start();
  global_.settings.auto_save_period = 1;
  AutoSave saver(global_, milliseconds(600));
  saver.SetAutoSaveTimer(1);
  form_INI& window = NewIni("[A]\r\nx=1\r\n");
  const auto due = [&saver] {
    QTimerEvent minute(saver.findChild<QTimer*>(u"AutoSaveTimer"_s)->timerId());
    QApplication::sendEvent(saver.findChild<QTimer*>(u"AutoSaveTimer"_s), &minute);
  };
  auto* bar = window.findChild<NoticeBar*>();
  due();
  due();
  EXPECT_TRUE(bar->Text().startsWith(u"AutoSave asks for the name of this document once"));
  for (int key = 0; key < 8; ++key) {
    QTest::keyClick(&window, Qt::Key_Shift);
    QTest::qWait(150);
    ASSERT_TRUE(common_dialog_.shown.empty()) << "somebody types";
  }
  common_dialog_.ExpectSave(path);
  WaitFor([this] { return !common_dialog_.shown.empty(); });
  EXPECT_EQ(common_dialog_.shown.front().title, u"Save File - New INI File");
  EXPECT_EQ(bar->Text(), u"");
  EXPECT_NE(BytesOf(path), "");
  saver.SetAutoSaveTimer(0);
}

TEST_F(SavingTest, SaveAllCascadesAndCloseAllStopsAtCancel) {
  const QString path = File(u"a.ini"_s, kIni), other = File(u"b.ini"_s, kIni);
  Start({path, other});
  Touch(Ini(0));
  global_.area.Activate(Ini(1));
  Ini(1).SubWindow()->showMaximized();
  global_.menus.Action(u"menu_FileSaveAll"_s)->trigger();
  EXPECT_EQ(BytesOf(path), kTouched);
  Ini(1).File().SetChanged(true);
  global_.menus.Action(u"menu_FileSaveAll"_s)->trigger();
  EXPECT_FALSE(Ini(1).File().IsChanged());
  for (const int slot : {0, 1}) EXPECT_EQ(Ini(slot).SubWindow()->width(), Ini(slot).PreferredWidth()) << slot;
  EXPECT_EQ(global_.area.ActiveDocument(), &Ini(1));

  Ini(1).File().SetChanged(true);
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + other, u"Document Changed"_s, MsgButtons::YesNoCancel,
                        MsgAnswer::Cancel);
  global_.menus.Action(u"menu_FileCloseAll"_s)->trigger();
  EXPECT_EQ(Ini(0).Tag(), u"");
  EXPECT_EQ(Ini(1).Tag(), u"1");
}
