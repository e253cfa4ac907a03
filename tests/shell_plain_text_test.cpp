#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTextDocument>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>

#include "Editor.h"
#include "shell/DisplayText.h"
#include "shell/GlobalMenus.h"
#include "shell/PlainText.h"
#include "system/CommonDialog.h"
#include "windows/history/form_History.h"
#include "windows/reg/form_REG.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// What a tool tip or a label shows of a text, without its places to break.
QString Read(const QString& text) {
  QTextDocument document;
  if (Qt::mightBeRichText(text))
    document.setHtml(text);
  else
    document.setPlainText(text);
  return document.toPlainText().remove(QChar(0x200B)).replace(QChar::Nbsp, u' ');
}

constexpr const char* kHostile[] = {
    "<img src=/dev/zero>",
    "<b>a</b>",
    "a &lt;b&gt;",
    "</p><a href='x'>y</a>",
    "<?xml?>",
    "a & b",
    "two  blanks",
    "tab\there'\"",
    "<qt/>/a/b\\c d&amp;",
    "<!-- a",
    "/plain/path.ini",
    "",
};

class PlainTextTest : public Editor {
 protected:
  form_REG& Reg() { return static_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 0)); }
};

}  // namespace

TEST_F(PlainTextTest, TipsReadAsTheTextItself) {
  for (const char* text : kHostile) {
    EXPECT_EQ(Read(TipText(QString::fromUtf8(text))).toStdString(), text);
    QLabel* label = PlainLabel(QString::fromUtf8(text));
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    delete label;
  }
  EXPECT_EQ(Read(TipText(u"a\nb\1"_s)), u"a\u240Ab\u2401");
  EXPECT_EQ(CaptionText(u"a[*].ini"_s), u"a[*][*].ini");
  const QString path = u"/"_s + QString(500, u'x');
  EXPECT_EQ(Read(TipText(path)), path);
  EXPECT_EQ(Read(TipText(QString(1'000'000, u'<'))), QString(1000, u'<') + QChar(0x2026));
}

TEST_F(PlainTextTest, NamesFromFilesAreNoMarkupAnywhere) {
  const QString key = u"HKEY_USERS\\<img src=/dev/zero>"_s;
  // A name that Windows takes, too.
  const QString path =
      File(u"&lt;b&gt; a&b.reg"_s, "REGEDIT4\r\n\r\n[" + key.toStdString() + "]\r\n\"a\"=\"b\"\r\n\r\n");
  Start({path});
  const QString title = QFileInfo(path).fileName();
  auto* location = Reg().findChild<QLabel*>(u"lbl_location"_s);
  EXPECT_EQ(location->textFormat(), Qt::PlainText);
  auto* keys = Reg().findChild<QTreeView*>(u"TV"_s);
  const QModelIndex root = keys->model()->index(0, 0);
  keys->setCurrentIndex(keys->model()->index(0, 0, keys->model()->index(0, 0, root)));
  EXPECT_EQ(location->text(), key);
  EXPECT_EQ(Read(location->toolTip()), key);
  EXPECT_EQ(Reg().windowTitle(), u"&lt;b&gt; a&b.reg"_s);

  QAction* recent = global_.menus.Action(u"menu_mru1"_s);
  EXPECT_EQ(recent->text(), u"&&lt;b&&gt; a&&b.reg"_s);
  EXPECT_EQ(Read(recent->toolTip()), path);
  QMenu* window_menu = global_.menus.Menu(u"md_menu_window"_s);
  emit window_menu->aboutToShow();
  EXPECT_EQ(window_menu->actions().last()->text(), u"&1 &&lt;b&&gt; a&&b.reg"_s);

  history_.versions.Keep({DocumentKind::Reg, path, title}, KeptReason::BeforeSave, "a");
  form_History form(global_);
  auto* scope = form.findChild<QComboBox*>(u"cb_Scope"_s);
  EXPECT_EQ(Read(scope->toolTip()), path);
  EXPECT_EQ(scope->accessibleDescription(), path);
  EXPECT_EQ(Read(scope->itemData(0, Qt::ToolTipRole).toString()), path);
  EXPECT_EQ(Read(form.findChild<QTreeWidget*>(u"list_Versions"_s)->topLevelItem(0)->toolTip(2)), path);
}

TEST_F(PlainTextTest, TheFileDialogsOwnQuestionsArePlain) {
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  bool asked = false;
  OnDialog(u"CommonDialog"_s, [&](QWidget& dialog) {
    QTimer::singleShot(0, &dialog, [&] {
      auto* box = dialog.findChild<QMessageBox*>();
      asked = box != nullptr;
      if (box) {
        EXPECT_EQ(box->textFormat(), Qt::PlainText) << box->text().toStdString();
        box->reject();
      }
      static_cast<QDialog&>(dialog).reject();
    });
    dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(u"<b>none"_s);
    static_cast<QDialog&>(dialog).accept();
  });
  CommonDialog common_dialog;
  common_dialog.init_dir = folder_.path();
  EXPECT_TRUE(common_dialog.ShowOpen().isEmpty());
  EXPECT_TRUE(asked);
}
