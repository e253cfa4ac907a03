#include "windows/history/form_Compare.h"

#include <QAbstractButton>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <future>

#include "Editor.h"
#include "WaitFor.h"
#include "shell/DocumentWindow.h"
#include "windows/history/DifferenceView.h"
#include "windows/history/LatestComparison.h"
#include "windows/history/VersionComparison.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class FormCompareTest : public Editor {
 protected:
  static void Click(form_Compare& form, const QString& button) { form.findChild<QAbstractButton*>(button)->click(); }
  /// Compares with that second file.
  static void CompareWith(form_Compare& form, const QString& path) {
    form.findChild<QLineEdit*>(u"txt_Second"_s)->setText(path);
    Click(form, u"cmd_Compare"_s);
    WaitFor([&] { return Said(form) != "Comparing..."; });
  }
  static std::string Said(form_Compare& form) {
    return form.findChild<QLabel*>(u"lbl_Difference"_s)->text().remove(QChar(0x200B)).toStdString();
  }
  static std::string Shown(form_Compare& form) {
    return std::string(form.findChild<DifferenceView*>(u"txt_Version"_s)->Text());
  }
};

}  // namespace

TEST_F(FormCompareTest, ShowsWhatDiffersByStructureAndByLines) {
  const QString first = File(u"a.ini"_s, "[A]\r\nx=1\r\ny=2\r\n[C]\r\nz=1\r\n\r\n"),
                other = File(u"b"_s, "; c\n[a]\nY=2\nx=3\nn=4\n");
  Start({first});
  form_Compare form(global_);
  EXPECT_EQ(form.findChild<QLineEdit*>(u"txt_First"_s)->text(), first);
  EXPECT_EQ(Said(form), "Choose two files.");
  common_dialog_.ExpectOpen({other});
  Click(form, u"cmd_BrowseSecond"_s);
  EXPECT_EQ(Shown(form), "  [A]\n- x=1\n+ x=3\n+ n=4\n- [C]\n- z=1") << "what has no ending goes by its content";
  EXPECT_EQ(Said(form), "2 lines only in the second file (+), 3 lines only in the first file (-).");
  Click(form, u"chk_ByStructure"_s);
  EXPECT_EQ(Shown(form), "- [A]\n- x=1\n- y=2\n- [C]\n- z=1\n- \n+ ; c\n+ [a]\n+ Y=2\n+ x=3\n+ n=4");
  form.done(0);
  EXPECT_FALSE(form_Compare(global_).findChild<QAbstractButton*>(u"chk_ByStructure"_s)->isChecked()) << "remembered";

  Ini().PutContent("[A]\nx=5\n", Holding::ByRules);
  CompareWith(form, first);
  EXPECT_EQ(Said(form), "The files are the same.") << "both sides are what the document holds";
  const QString large = File(u"large.ini"_s, "[A]\r\nx=5\r\n\r\n" + std::string(2'000'000, ';') + "\r\n");
  CompareWith(form, large);
  EXPECT_TRUE(Said(form).starts_with("1 line only in the second file (+), 0 lines only")) << Said(form);
}

TEST_F(FormCompareTest, NobodyWaitsForAComparisonThatIsLeft) {
  Start();
  std::promise<void> gate;
  const std::shared_future<void> opened = gate.get_future();
  int told = 0;
  {
    LatestComparison comparing([&told](const auto&) { ++told; });
    const auto start = [&comparing](bool waits, const std::shared_future<void>& until) {
      comparing.Start([=]() -> LatestComparison::Job {
        const auto compare = [=](const std::stop_token&, VersionComparison&) {
          if (waits) until.wait();
        };
        return {qint64{1} << 30, compare, true};
      });
    };
    start(true, opened);
    comparing.Cancel();
    start(false, opened);
    WaitFor([&told] { return told == 1; });
    start(true, opened);
  }
  EXPECT_EQ(told, 1) << "and nobody waits at the end";
  gate.set_value();
}

TEST_F(FormCompareTest, SaysWhatCannotBeRead) {
  Start({File(u"&lt;b&gt;a.ini"_s, "[A]\n")});
  form_Compare form(global_);
  for (const QString& path : {InFolder(u"none"_s), QDir::toNativeSeparators(folder_.path())}) {
    CompareWith(form, path);
    EXPECT_TRUE(Said(form).starts_with(path.toStdString() + " could not be read: ")) << Said(form);
    EXPECT_EQ(Shown(form), "");
  }
  EXPECT_EQ(form.findChild<QLabel*>(u"lbl_Difference"_s)->textFormat(), Qt::PlainText);
}
