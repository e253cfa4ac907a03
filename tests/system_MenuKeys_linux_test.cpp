#include <QApplication>
#include <QMenu>
#include <QTest>

#include "Editor.h"
#include "shell/OpenDispatch.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(Editor, TheMenuKeysReachTheMenusOfEveryKind) {
  Start();
  for (const DocumentKind kind : {DocumentKind::Ini, DocumentKind::Reg, DocumentKind::Txt, DocumentKind::Rtf}) {
    DocumentWindow* window = NewDocument(global_, kind);
    QWidget* focus = QApplication::focusWidget();
    ASSERT_TRUE(focus && window->isAncestorOf(focus));
    for (const auto& [modifier, menus] : {std::pair{Qt::ShiftModifier, QStringList{u"menu_Edit"_s, u"context_menu"_s}},
                                          std::pair{Qt::NoModifier, QStringList{u"md_Menu_File"_s}}}) {
      QTest::keyClick(focus, Qt::Key_F10, modifier);
      QWidget* popup = QApplication::activePopupWidget();
      ASSERT_NE(popup, nullptr) << static_cast<int>(kind);
      EXPECT_TRUE(menus.contains(popup->objectName())) << popup->objectName().toStdString();
      popup->close();
    }
  }
}
