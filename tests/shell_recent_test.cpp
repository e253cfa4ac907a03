#include <QAction>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class RecentFilesTest : public Editor {
 protected:
  QString Open(const QString& name) {
    const QString path = File(name, "[A]\r\nx=1\r\n\r\n");
    OpenPathList(global_, path);
    Ini().FileClose();
    return path;
  }
  QString Stored(int index) const { return registry_.ReadValue(kMruKey, u"mru"_s + QString::number(index)); }
  QAction& Item(int index) { return *global_.menus.Action(u"menu_mru"_s + QString::number(index)); }
  /// Captions of the items that are shown; "-" for the separator above them.
  QStringList Shown() {
    QStringList captions;
    if (global_.menus.Action(u"mrusep"_s)->isVisible()) captions += u"-"_s;
    for (int index = 1; index <= 4; ++index)
      if (Item(index).isVisible()) captions += Item(index).text();
    return captions;
  }
};

}  // namespace

TEST_F(RecentFilesTest, FourFilesInOrderOfFirstOpening) {
  Start();
  EXPECT_EQ(Shown(), QStringList());
  QStringList paths;
  for (const QString& name : {u"1.ini"_s, u"a & b.ini"_s, u"3.ini"_s, u"4.ini"_s}) paths += Open(name);
  EXPECT_EQ(Shown(), (QStringList{u"-"_s, u"1.ini"_s, u"a && b.ini"_s, u"3.ini"_s, u"4.ini"_s}));
  registry_.WriteValue(kMruKey, u"mru2"_s, u"untouched"_s);
  Open(u"3.ini"_s);
  EXPECT_EQ(Stored(2), u"untouched") << "a file that is in the list changes nothing";
  paths += Open(u"5.ini"_s);
  for (int index = 1; index <= 4; ++index) EXPECT_EQ(Stored(index), paths[index]);

  QFile::remove(paths[2]);
  Open(u"5.ini"_s);
  NewDocument(global_, DocumentKind::Ini);
  EXPECT_EQ(Shown(), (QStringList{u"-"_s, u"a && b.ini"_s, u"4.ini"_s, u"5.ini"_s})) << "hidden, not forgotten";
  EXPECT_EQ(Stored(2), paths[2]);
}

TEST_F(RecentFilesTest, ItemsOpenTheirFile) {
  const QString first = File(u"1.ini"_s, "[A]\r\n\r\n"), second = File(u"b c.ini"_s, "[B]\r\n\r\n");
  int index = 0;
  for (const QString& path : {first, InFolder(u"gone.ini"_s), second})
    registry_.WriteValue(kMruKey, u"mru"_s + QString::number(++index), path);
  Start();
  dialogs_.ExpectMsgBox(u"This file no longer exists"_s, u"Tamarind Editor"_s);
  Item(2).trigger();
  EXPECT_EQ(Stored(2), second);
  EXPECT_EQ(Stored(3), u"");
  Item(2).trigger();
  EXPECT_EQ(Ini(0).File().Path(), second) << "the item opens what it says";
}
