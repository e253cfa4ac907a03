#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/ShellUtilities.h"
#include "platform/Twips.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

/// Calls `use` with the modal dialog that comes up next.
template <typename Dialog, typename Use>
void WhenShown(const Use& use) {
  QTimer::singleShot(0, qApp, [use] {
    auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
    if (dialog != nullptr) return use(dialog);
    ADD_FAILURE() << "no such dialog";
    if (QWidget* other = QApplication::activeModalWidget()) other->close();
  });
}

TEST(Dialogs, MsgBoxKeys) {
  const struct {
    MsgButtons buttons;
    MsgAnswer enter, escape;
  } cases[] = {{MsgButtons::Ok, MsgAnswer::Ok, MsgAnswer::Ok},
               {MsgButtons::YesNo, MsgAnswer::Yes, MsgAnswer::No},
               {MsgButtons::YesNoCancel, MsgAnswer::Yes, MsgAnswer::Cancel}};
  for (const auto& [buttons, enter, escape] : cases) {
    for (const Qt::Key key : {Qt::Key_Enter, Qt::Key_Escape}) {
      WhenShown<QMessageBox>([key](QMessageBox* box) {
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        QTest::keyClick(box, key);
      });
      const MsgAnswer expected = key == Qt::Key_Enter ? enter : escape;
      EXPECT_EQ(Dialogs().MsgBox(u"<b>x</b>"_s, buttons, MsgIcon::Question, u"T"_s), expected);
    }
  }
}

TEST(Dialogs, InputBox) {
  for (const bool accept : {true, false}) {
    WhenShown<QInputDialog>([accept](QInputDialog* box) {
      auto* edit = box->findChild<QLineEdit*>();
      EXPECT_EQ(edit->selectedText(), u"old"_s) << "typing replaces what is proposed";
      QTest::keyClicks(edit, u"new"_s);
      QTest::keyClick(edit, accept ? Qt::Key_Enter : Qt::Key_Escape);
    });
    EXPECT_EQ(Dialogs().InputBox(u"Prompt <i>"_s, u"T"_s, u"old"_s), accept ? u"new"_s : QString());
  }
}

class FileDialogs : public testing::Test {
 protected:
  FileDialogs() {
    dialog_.filter = u"INI File|*.INI|Text File|*.TXT;*.BAT|Other (*.*)|*.*"_s;
    dialog_.filter_index = 2;
    dialog_.default_ext = u".TXT"_s;
    dialog_.init_dir = folder_.path();
  }
  QString In(QLatin1StringView name) const { return folder_.filePath(name); }
  void Make(QLatin1StringView name) const { EXPECT_TRUE(QFile(In(name)).open(QIODevice::WriteOnly)); }

  CommonDialog dialog_;

 private:
  QTemporaryDir folder_;
};

TEST_F(FileDialogs, FiltersMatchInAnyLetterCase) {
  WhenShown<QFileDialog>([this](QFileDialog* box) {
    EXPECT_EQ(box->nameFilters(), QStringList({u"INI File (*.[Ii][Nn][Ii])"_s,
                                               u"Text File (*.[Tt][Xx][Tt] *.[Bb][Aa][Tt])"_s, u"Other (*.*) (*)"_s}));
    EXPECT_EQ(box->selectedNameFilter(), u"Text File"_s);
    box->selectNameFilter(box->nameFilters().at(2));
    box->findChild<QLineEdit*>()->setText(u"\"a.ini\" \"b.ini\""_s);
    QMetaObject::invokeMethod(box, "accept");
  });
  Make("a.ini"_L1);
  Make("b.ini"_L1);
  dialog_.multi_select = true;
  EXPECT_EQ(dialog_.ShowOpen(), QStringList({In("a.ini"_L1), In("b.ini"_L1)}));
  EXPECT_EQ(dialog_.filter_index, 3);
  EXPECT_EQ(dialog_.file_name, In("a.ini"_L1));
}

TEST_F(FileDialogs, SaveAddsTheExtensionAndDoesNotAskAboutAnExistingFile) {
  Make("new.TXT"_L1);
  for (const auto& [typed, chosen] : {std::pair("new"_L1, "new.TXT"_L1), std::pair("x.cfg"_L1, "x.cfg"_L1)}) {
    WhenShown<QFileDialog>([name = QString(typed)](QFileDialog* box) {
      auto* edit = box->findChild<QLineEdit*>();
      EXPECT_TRUE(QTest::qWaitForWindowActive(box));
      edit->setFocus();  // only what is typed counts, not the existing file that the list has selected
      edit->selectAll();
      QTest::keyClicks(edit, name);
      QMetaObject::invokeMethod(box, "accept");
    });
    EXPECT_EQ(dialog_.ShowSave().toStdString(), In(chosen).toStdString());
  }
  WhenShown<QFileDialog>([](QFileDialog* box) { box->reject(); });
  EXPECT_EQ(dialog_.ShowSave(), QString());
  EXPECT_EQ(dialog_.file_name, In("x.cfg"_L1)) << "a cancelled dialog changes no field";
}

TEST(ShellUtilities, PathsAndTwips) {
  const ShellUtilities shell;
  EXPECT_TRUE(shell.IsRooted(u"\\\\host\\x"_s) && shell.IsRooted(u"c:\\x"_s));
  EXPECT_FALSE(shell.IsRooted(u"x.ini"_s) || shell.IsRooted(u"c:x"_s) || shell.IsRooted(u"\\x"_s));
  EXPECT_FALSE(shell.FileExists(shell.UserDataFolder())) << "a folder is not a file";
  EXPECT_TRUE(QDir(shell.UserDataFolder()).exists());
  EXPECT_EQ(TwipsToPixels(-1447, 96), -96);
  EXPECT_EQ(TwipsToPixels(1448, 96), 97);
  EXPECT_EQ(PixelsToTwips(2, 144), 20);
}

}  // namespace
}  // namespace tme
