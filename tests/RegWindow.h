#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "Editor.h"
#include "shell/DocumentArea.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/reg/form_REG.h"

namespace tme {

using namespace Qt::StringLiterals;

/// A registry document in its window.
class RegWindow : public Editor {
 protected:
  static constexpr const char* kFile =
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Alpha]\r\n@=\"dft\"\r\n\"s\"=\"a\\\\b\"\r\n\"n\"=dword:0000000a\r\n"
      "\"h\"=hex:01,\\\r\n  02\r\n\r\n[HKEY_CURRENT_USER\\Alpha\\Beta]\r\n\r\n";

  form_REG& Reg() { return dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 0)); }
  void Open(const std::string& bytes) {
    Start();
    OpenPathList(global_, File(u"a.reg"_s, bytes));
  }
  /// A document of any kind, in the way of holding it that counts from now on.
  template <class Window>
  Window& OpenAs(const QString& name, const std::string& bytes, Holding holding) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = global_.settings.reg_whole = holding == Holding::Whole;
    OpenPathList(global_, File(name, bytes));
    return dynamic_cast<Window&>(*global_.area.ActiveDocument());
  }
  QTreeView* View(const QString& name) { return Reg().findChild<QTreeView*>(name); }
  QString Notice() { return Reg().findChild<NoticeBar*>()->Text(); }

  void SelectKey(const QStringList& path) {
    const QAbstractItemModel* model = View(u"TV"_s)->model();
    QModelIndex index = model->index(0, 0);
    for (const QString& text : path)
      for (int row = 0; row < model->rowCount(index); ++row)
        if (model->index(row, 0, index).data().toString() == text) {
          index = model->index(row, 0, index);
          break;
        }
    View(u"TV"_s)->setCurrentIndex(index);
    QTest::keyClick(View(u"TV"_s), Qt::Key_Shift);
  }
  void SelectValue(int row) {
    View(u"LV"_s)->setCurrentIndex(View(u"LV"_s)->model()->index(row, 0));
    QTest::keyClick(View(u"LV"_s), Qt::Key_Shift);
  }
  /// The list as it shows, a row a line.
  QString Rows() {
    const QAbstractItemModel* model = View(u"LV"_s)->model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row)
      rows += QStringList{model->index(row, 0).data().toString(), model->index(row, 1).data().toString(),
                          model->index(row, 2).data().toString()}
                  .join(u'|');
    return rows.join(u'\n');
  }
  static std::function<void(QWidget&)> Fill(const QString& name, const QString& data, const QString& button) {
    return [=](QWidget& dialog) {
      if (!name.isEmpty()) dialog.findChild<QLineEdit*>(u"txt_Name"_s)->setText(name);
      dialog.findChild<QPlainTextEdit*>(u"txt_Data"_s)->setPlainText(data);
      QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    };
  }
  /// The editor that is open in a row, or null.
  static QLineEdit* RowBox(const QWidget& window) {
    QCoreApplication::processEvents();
    for (QLineEdit* box : window.findChildren<QLineEdit*>(u"row_editor"_s))
      if (box->isVisible()) return box;
    return nullptr;
  }
  /// Types over what it holds, and Enter.
  static void TypeInRow(const QWidget& window, const QString& text) {
    QLineEdit* box = RowBox(window);
    ASSERT_NE(box, nullptr);
    box->selectAll();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
  }
  void ExpectDeletion(const QString& what, MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"Are you sure you want to permanently delete "_s + what, u"Deletion Confirmation"_s,
                          MsgButtons::YesNo, answer, MsgIcon::Question);
  }
};

}  // namespace tme
