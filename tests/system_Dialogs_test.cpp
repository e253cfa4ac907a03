#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "WaitFor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/ShellUtilities.h"
#include "system/Twips.h"

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

class FileDialogs : public testing::Test {
 protected:
  FileDialogs() {
    dialog_.filter = u"INI File|*.INI|Text File|*.TXT;*.BAT|Other (*.*)|*.*"_s;
    dialog_.filter_index = 2;
    dialog_.default_ext = u".TXT"_s;
    dialog_.init_dir = folder_.path();
  }
  QString In(QLatin1StringView name) const { return QDir::toNativeSeparators(folder_.filePath(name)); }
  void Make(QLatin1StringView name) const { EXPECT_TRUE(QFile(In(name)).open(QIODevice::WriteOnly)); }

  CommonDialog dialog_;

 private:
  QTemporaryDir folder_;
};

TEST(Dialogs, ButtonsOfItsOwnAnswerByTheirPlaceAndEscapeByTheLast) {
  for (const int chosen : {0, 1, 2}) {
    WhenShown<QMessageBox>([chosen](QMessageBox* box) {
      EXPECT_EQ(box->defaultButton()->text(), u"Cancel");
      EXPECT_EQ(box->text(), u"a\n<b>");
      if (chosen == 2) return QTest::keyClick(box, Qt::Key_Escape);
      for (QAbstractButton* button : box->buttons())
        if (button->text() == (chosen == 0 ? u"&Yes" : u"&No")) button->click();
    });
    EXPECT_EQ(Dialogs().Choose(u"a\r<b>"_s, {u"&Yes"_s, u"&No"_s, u"Cancel"_s}, MsgIcon::Warning, u"t"_s), chosen);
  }
}

TEST(MessageBoxes, GiveALongPathAsItIs) {
  const QString path = u"C:\\"_s + QString(300, u'x') + u"\\"_s + QString(300, u'y');
  WhenShown<QMessageBox>([&](QMessageBox* box) {
    EXPECT_NE(box->text(), path) << "it breaks its lines";
    EXPECT_EQ(box->findChild<QLabel*>(u"qt_msgbox_label"_s)->accessibleName(), path);
    QTest::keyClick(box, Qt::Key_C, Qt::ControlModifier);
    box->accept();
  });
  Dialogs().MsgBox(path, MsgButtons::Ok, MsgIcon::Information, {});
  EXPECT_EQ(QGuiApplication::clipboard()->text(), path);
}

TEST_F(FileDialogs, SaveAddsTheExtensionAndDoesNotAskAboutAnExistingFile) {
  Make("new.TXT"_L1);
  Make("old.txt"_L1);
  for (const auto& [typed, chosen] :
       {std::pair("new"_L1, "new.TXT"_L1), std::pair("old"_L1, "old.txt"_L1), std::pair("x.cfg"_L1, "x.cfg"_L1)}) {
    WhenShown<QFileDialog>([name = QString(typed)](QFileDialog* box) {
      auto* edit = box->findChild<QLineEdit*>();
      WaitFor([&] { return box->isActiveWindow(); });
      edit->setFocus();  // only what is typed counts, not the existing file that the list has selected
      edit->selectAll();
      QTest::keyClicks(edit, name);
      QMetaObject::invokeMethod(box, "accept");
    });
    const QString path = dialog_.ShowSave();
    EXPECT_TRUE(QFileInfo(path) == QFileInfo(In(chosen))) << path.toStdString();
  }
  WhenShown<QFileDialog>([](QFileDialog* box) { box->reject(); });
  EXPECT_EQ(dialog_.ShowSave(), QString());
  EXPECT_EQ(dialog_.file_name, In("x.cfg"_L1)) << "a cancelled dialog changes no field";
}

TEST_F(FileDialogs, OpenGivesBackWhatTheFilterHides) {
  for (const auto name : {"a.txt"_L1, "b.cfg"_L1, "c d.ini"_L1}) Make(name);
  dialog_.multi_select = true;
  WhenShown<QFileDialog>([](QFileDialog* box) {
    auto* edit = box->findChild<QLineEdit*>();
    WaitFor([&] { return box->isActiveWindow(); });
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, u"\"b.cfg\" \"a.txt\" \"c d.ini\""_s);
    QMetaObject::invokeMethod(box, "accept");
  });
  QStringList chosen = dialog_.ShowOpen();
  chosen.sort();
  EXPECT_EQ(chosen, (QStringList{In("a.txt"_L1), In("b.cfg"_L1), In("c d.ini"_L1)}));
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
