#include "windows/options/form_TMEOptions.h"

#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTabWidget>
#include <QTest>

#include "Editor.h"
#include "TestSystem.h"
#include "WaitFor.h"
#include "shell/AutoSave.h"
#include "windows/options/HelpTexts.h"
#include "windows/options/ShellIntegration.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class OptionsDialog : public Editor {
 protected:
  void Open() {
    AwaitSystemTurn();
    if (!dialog_) Start();
    const auto set_timer = [this](int minutes) {
      timer_.push_back(minutes);
      frame_->Saver().SetAutoSaveTimer(minutes);
    };
    dialog_ = std::make_unique<form_TMEOptions>(global_, integration_, set_timer, frame_.get());
    dialog_->show();
    QApplication::setActiveWindow(dialog_.get());
    WaitFor([&] { return dialog_->isActiveWindow(); });
  }
  template <typename Widget = QPushButton>
  Widget& Find(const char* name) {
    auto* widget = dialog_->findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_TRUE(widget) << name;
    return *widget;
  }
  QString Stored(const QString& name, const QString& key = SettingsRoot) { return registry_.ReadValue(key, name); }
  void ShowTab(int index) { Find<QTabWidget>("TS").setCurrentIndex(index); }
  /// Leaves the box for AutoSave's minutes with this text in it.
  void EnterMinutes(const QString& text, Qt::Key leave = Qt::Key_Tab) {
    Find<QCheckBox>("cb_AutoSave").setChecked(true);
    auto& box = Find<QLineEdit>("txt_AutoSave");
    box.setFocus();
    box.setText(text);
    QTest::keyClick(&box, leave);
    QApplication::processEvents();
  }

  ShellIntegration integration_{registry_, QCoreApplication::applicationFilePath()};
  std::vector<int> timer_;
  std::unique_ptr<form_TMEOptions> dialog_;
};

}  // namespace

TEST_F(OptionsDialog, OkSavesEverything) {
  Open();
  for (const char* name : {"cb_Notifications", "cb_SEM", "cb_MultiSelect", "cb_SendTo"}) Find<QCheckBox>(name).click();
  ShowTab(1);
  Find<QCheckBox>("cb_WholeINI").click();
  ShowTab(0);
  Find<QRadioButton>("opt_DefOpen2").click();
  EnterMinutes(u"12"_s);
  ShowTab(3);
  QTest::keyClicks(&Find<QLineEdit>("txt_ext"), u"t*t"_s);
  dialogs_.ExpectMsgBox(ExtensionFaultText(ExtensionFault::IllegalCharacter, {}), u"Error:"_s, MsgButtons::OkCancel,
                        MsgAnswer::Cancel, MsgIcon::Information);
  Find("cmd_Add").click();
  QTest::keyClicks(&Find<QLineEdit>("txt_ext"), u"log"_s);  // the box is empty again
  QTest::keyClick(&Find<QLineEdit>("txt_ext"), Qt::Key_Return);
  common_dialog_.ExpectFont([](CommonDialog& dialog) {
    EXPECT_EQ(dialog.font_name, u"Courier") << "it begins with the font in force";
    dialog.font_name = u"Monospace"_s;
    dialog.font_size = 14;
  });
  Find("cmd_SetFS").click();
  ShowTab(4);
  EXPECT_EQ(Find<QLineEdit>("txt_ext").text(), u"log") << "one box serves both lists";
  Find("cmd_RTFAdd").click();
  Find<QListWidget>("list_rtf").setCurrentRow(0);
  Find("Cmd_RTFRemove").click();
  Find("Cmd_RTFRemove").click();  // nothing is selected any more
  EXPECT_EQ(Stored(u"AutoSave"_s), u"") << "nothing before OK";
  Find("cmd_OK").click();

  EXPECT_FALSE(dialog_->isVisible());
  EXPECT_EQ(timer_, (std::vector{0, 12})) << "stopped meanwhile";
  const std::pair<const char*, const char*> values[] = {{"Supress Results", "1"},   {"Contain SRD", "0"},
                                                        {"Start Editors Max", "1"}, {"MultiSelect", "1"},
                                                        {"Default Open Type", "2"}, {"AutoSave", "12"}};
  for (const auto& [name, text] : values) EXPECT_EQ(Stored(QString::fromLatin1(name)).toStdString(), text) << name;
  EXPECT_EQ(Stored(u"Whole File"_s, kIniKey) + Stored(u"Whole File"_s, kRegKey), u"10");
  EXPECT_EQ(Stored(u"File Filter"_s, kTxtKey), Settings().txt_filter + u";*.LOG"_s);
  EXPECT_EQ(Stored(u"File Filter"_s, kRtfKey), u"*.WRI;*.LOG");
  EXPECT_EQ(Stored(u"Default Font"_s, kTxtKey) + Stored(u"Default Size"_s, kTxtKey), u"Monospace14");

  Open();
  EXPECT_TRUE(Find<QCheckBox>("cb_SendTo").isChecked());
  EXPECT_TRUE(Find<QCheckBox>("cb_WholeINI").isChecked());
  EXPECT_TRUE(Find<QRadioButton>("opt_DefOpen2").isChecked());
  EXPECT_EQ(Find<QLineEdit>("txt_AutoSave").text(), u"12");
  Find<QCheckBox>("cb_SEM").click();
  Find("cmd_Cancel").click();
  EXPECT_TRUE(global_.settings.start_editors_max);
  EXPECT_EQ(timer_, (std::vector{0, 12, 0, 12}));
}

TEST_F(OptionsDialog, AutoSaveTakesNumbersTo99) {
  Open();
  auto& box = Find<QLineEdit>("txt_AutoSave");
  EXPECT_FALSE(box.isEnabled());
  for (const char* text : {"0", "", "99", " 7 "}) EnterMinutes(QString::fromLatin1(text));
  for (const char* text : {"100", "-1", "abc", "1e999", "x"}) {
    dialogs_.ExpectMsgBox(
        u"You have not entered a valid number for AutoSave.  Please enter a number between 1 and 99."_s, u"AutoSave"_s,
        MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Information);
    EnterMinutes(QString::fromLatin1(text), text[0] == 'x' ? Qt::Key_Return : Qt::Key_Tab);
    EXPECT_EQ(box.text(), u"") << text;
    EXPECT_TRUE(box.hasFocus()) << text;
    dialogs_.ExpectAllAsked();
  }
  EXPECT_TRUE(dialog_->isVisible()) << "Enter saves no such number either";
  box.setText(u"x"_s);
  QTest::mouseClick(&Find("cmd_Cancel"), Qt::LeftButton);
  EXPECT_FALSE(dialog_->isVisible()) << "Cancel asks for nothing";
}

TEST_F(OptionsDialog, WhatCannotBeWrittenLeavesTheRest) {
  ASSERT_TRUE(QDir().mkpath(SendToEntry()));
  const auto failures = integration_.Set(ShellHook::SendTo, HookState::On);
  ASSERT_EQ(failures.size(), 1U);
  Open();
  global_.settings.present = global_.settings.txt_present = false;
  Find<QCheckBox>("cb_SendTo").click();
  Find<QCheckBox>("cb_SEM").click();
  dialogs_.ExpectMsgBox(
      u"The integration into the file manager could not be changed completely. All other options are saved.\r\rSend To entry: "_s +
          failures[0].place + u'\r' + failures[0].reason,
      kProgramTitle, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  Find("cmd_OK").click();
  EXPECT_FALSE(dialog_->isVisible());
  EXPECT_TRUE(global_.settings.start_editors_max);
  EXPECT_EQ(Stored(u"Start Editors Max"_s) + Stored(u"AutoSave"_s) + Stored(u"Default Open Type"_s), u"");
  EXPECT_EQ(Stored(u"File Filter"_s, kTxtKey) + Stored(u"Default Font"_s, kTxtKey), u"");
  EXPECT_EQ(Stored(u"File Filter"_s, kRtfKey), u"*.RTF;*.WRI");
}

TEST_F(OptionsDialog, ContextHelpBelongsToTheControl) {
  Open();
  const std::tuple<int, const char*, const char*, int> rows[] = {
      {0, "cb_SendTo", "SendTo Link Help", 104},          {0, "opt_DefOpen3", "Default Filter Type Help", 115},
      {0, "txt_AutoSave", "AutoSave Help", 116},          {3, "list_text", "Text File Filter Help", 101},
      {3, "cmd_SetFS", "Text Default Display Help", 102}, {4, "txt_ext", "RTF File Filter Help", 105}};
  Find<QCheckBox>("cb_AutoSave").click();
  for (const auto& [tab, name, title, id] : rows) {
    ShowTab(tab);
    auto& control = Find<QWidget>(name);
    const QString text = shell_utilities_.FormatHelpText(HelpText(id));
    for (int way = 0; way < 2; ++way)
      dialogs_.ExpectMsgBox(text, QString::fromLatin1(title), MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Information);
    const QPoint middle = control.rect().center();
    QContextMenuEvent click(QContextMenuEvent::Mouse, middle, control.mapToGlobal(middle));
    QApplication::sendEvent(&control, &click);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu && menu->objectName() == u"Help") << name;
    menu->findChild<QAction*>(u"ContextHelp"_s)->trigger();
    menu->close();
    control.setFocus();
    QTest::keyClick(&control, Qt::Key_F1);
    const QWidget* explained = &control;
    while (explained->whatsThis().isEmpty()) explained = explained->parentWidget();
    EXPECT_EQ(explained->whatsThis(), text) << "Shift+F1";
  }
}

TEST_F(OptionsDialog, ALargeFontStaysOnTheScreen) {
  QFont font = QApplication::font();
  font.setPointSize(48);
  QApplication::setFont(font);
  Open();
  const int room = dialog_->screen()->availableGeometry().height();
  EXPECT_LE(dialog_->height(), room);
  EXPECT_GT(Find<QWidget>("frame_Sections0").height() + Find<>("cmd_OK").height(), room) << "a smaller screen, then";
  auto &before_last = Find<QCheckBox>("cb_SendTo"), &last = Find<QCheckBox>("Check1");
  EXPECT_TRUE(last.visibleRegion().isEmpty());
  before_last.setFocus();
  QTest::keyClick(&before_last, Qt::Key_Tab);
  EXPECT_TRUE(last.hasFocus());
  EXPECT_FALSE(last.visibleRegion().isEmpty()) << "the page scrolls to the focus";
}

TEST_F(OptionsDialog, TabWalksInTheOrderOfReading) {
  Open();
  Find<QCheckBox>("cb_AutoSave").click();
  const std::pair<int, const char*> rows[] = {
      {0,
       "cb_SEM cb_ContainSRD cb_Notifications cb_MultiSelect opt_DefOpen0 cb_AutoSave txt_AutoSave cb_SendTo Check1 "},
      {2, "cb_WholeREG "},
      {3, "txt_ext cmd_Add list_text cmd_Remove txt_txtfont txt_txtsize cmd_SetFS "},
      {4, "txt_ext cmd_RTFAdd list_rtf Cmd_RTFRemove "}};
  for (const auto& [tab, names] : rows) {
    ShowTab(tab);
    Find<QTabWidget>("TS").setFocus();
    QString walked;
    while (true) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
      const QString name = QApplication::focusWidget()->objectName();
      if (name == u"cmd_OK" || walked.size() > 500) break;
      walked += name + u" "_s;
    }
    EXPECT_EQ(walked.toStdString(), names);
  }
}
