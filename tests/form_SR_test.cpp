#include "windows/text/form_SR.h"

#include <QCheckBox>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <algorithm>

#include "Editor.h"
#include "system/Twips.h"
#include "windows/text/TextPad.h"
#include "windows/text/form_TXT.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class Search : public Editor {
 protected:
  /// A new document with this text, "[" and "]" around what is selected, or "|" where the caret stands.
  form_TXT& New(const std::string& marked) {
    const int slot = global_.documents.FindFreeSlot(DocumentKind::Txt);
    auto& window = dynamic_cast<form_TXT&>(*global_.documents.At(DocumentKind::Txt, slot));
    window.NewTXT();
    Mark(PadOf(window), marked);
    QApplication::processEvents();
    return window;
  }
  static TextPad& PadOf(form_TXT& window) { return dynamic_cast<TextPad&>(window.EditingArea()); }
  static void Mark(TextPad& pad, std::string marked) {
    const auto take = [&marked](char mark) {
      const std::size_t at = marked.find(mark);
      if (at != std::string::npos) marked.erase(at, 1);
      return at == std::string::npos ? PadPosition{0} : static_cast<PadPosition>(at);
    };
    const PadPosition caret = take('|'), start = take('['), end = take(']');
    pad.SetText(marked);
    pad.Select(std::max(caret, start), std::max(caret, end));
  }
  static std::string Marked(const TextPad& pad) {
    std::string text(pad.Text());
    if (pad.SelectionStart() == pad.SelectionEnd()) return text;
    text.insert(static_cast<std::size_t>(pad.SelectionEnd()), "]");
    return text.insert(static_cast<std::size_t>(pad.SelectionStart()), "[");
  }
  form_SR* Dialog() { return form_SR::Opened(global_); }
  template <typename Control>
  Control& In(const char* name) {
    return *Dialog()->findChild<Control*>(QLatin1StringView(name));
  }
  QString TextIn(const char* name) { return In<QLineEdit>(name).text(); }
};

struct SearchCase {
  const char* text;
  const char* wanted;
  const char* replacement;          ///< null: find mode
  std::vector<std::string> clicks;  ///< the document after each; before it "?y" or "?n" for each question's answer
  unsigned options = 0;
};
const std::vector<SearchCase> kSearches{
    {"|abcabc", "abc", nullptr, {"[abc]abc", "?n"}},
    {"|abcabc", "abc", nullptr, {"[abc]abc", "?y[abc]abc"}},
    {"|aXa", "a", nullptr, {"[a]Xa", "aX[a]", "[a]Xa"}},
    {"a bcdef|g", "a", nullptr, {"[a] bcdefg"}},
    {"[ab]", "b", nullptr, {"a[b]"}},
    {"|nothing", "missing", nullptr, {"?y?y?n"}},
    {"[some] text", "missing", nullptr, {"[some] text"}},
    {"|text here", "", nullptr, {"text here"}},
    {"[one]ONE x ONE", "ONE", nullptr, {"oneONE x [ONE]"}, kFindMatchCase},
    {"|one One x ONE", "ONE", nullptr, {"one One x [ONE]"}, kFindMatchCase},
    {"|cats cat x", "cat", nullptr, {"cats [cat] x"}, kFindWholeWord},
    {"|a-a-a-a", "a", "aa", {"[aa]-a-a-a", "aa-[aa]-a-a", "aa-aa-[aa]-a"}},
    {"|a-bc-a-bc", "a", "", {"-bc-a-bc", "-bc--bc", "?n"}},
    {"[old] old old.", "old", "new", {"old [new] old."}},
    // A selection of the user's is replaced when nothing is found.
    {"[user] text", "missing", "new", {"[new] text"}},
    {"|x\r\ny\r\nz", "Y", "1\n2", {"x\r\n[1\r\n2]\r\nz"}},
};

}  // namespace

TEST_F(Search, StepsThroughADocument) {
  Start();
  form_TXT& window = New("");
  for (const SearchCase& c : kSearches) {
    SCOPED_TRACE(testing::Message() << c.text << " / " << c.wanted);
    Mark(PadOf(window), c.text);
    form_SR::Open(global_, window, c.replacement ? SearchMode::Replace : SearchMode::Find);
    In<QLineEdit>("txt_SearchString").setText(QString::fromUtf8(c.wanted));
    In<QLineEdit>("txt_R").setText(QString::fromUtf8(c.replacement));
    In<QCheckBox>("cb_MatchCase").setChecked((c.options & kFindMatchCase) != 0);
    In<QCheckBox>("cb_WholeWord").setChecked((c.options & kFindWholeWord) != 0);
    const QString title = c.replacement ? u"Search / Replace"_s : u"Search"_s;
    for (std::string click : c.clicks) {
      bool closes = false;
      for (; click.starts_with('?'); click.erase(0, 2)) {
        closes = click[1] == 'n';
        dialogs_.ExpectMsgBox(
            u"Couldn't find \"%1\"\r\rContinue %2 from the top?"_s.arg(QString::fromUtf8(c.wanted), title), title,
            MsgButtons::YesNo, closes ? MsgAnswer::No : MsgAnswer::Yes, MsgIcon::Question);
      }
      Dialog()->cmd_FindNext_Click();
      EXPECT_EQ(Dialog() == nullptr, closes);
      if (!closes) {
        EXPECT_EQ(Marked(PadOf(window)), click);
      }
    }
  }
}

TEST_F(Search, ALargeFontStaysOnTheScreen) {
  QFont font = QApplication::font();
  font.setPointSize(20);
  QApplication::setFont(font);
  Start();
  form_TXT& window = New("text");
  window.SearchReplace();
  // Never less than its controls need, whatever the font.
  EXPECT_LT(Dialog()->width(), std::max(1024, Dialog()->layout()->totalMinimumSize().width() + 1));
  EXPECT_LT(Dialog()->height(), 768);
}

TEST_F(Search, ModesAndKeys) {
  Start();
  form_TXT& window = New("one [two] three two");
  window.SearchFind();
  EXPECT_EQ(Dialog()->windowTitle(), u"Search"_s);
  EXPECT_EQ(In<QLineEdit>("txt_SearchString").selectedText(), u"two"_s);

  form_SR* const first = Dialog();
  QTest::keyClick(&In<QCheckBox>("cb_WholeWord"), Qt::Key_H, Qt::ControlModifier);
  EXPECT_EQ(Dialog(), first);
  EXPECT_EQ(Dialog()->windowTitle(), u"Search / Replace"_s);
  EXPECT_FALSE(In<QLineEdit>("txt_R").isHidden());
  In<QLineEdit>("txt_R").setText(u"2"_s);
  QTest::keyClick(&In<QLineEdit>("txt_R"), Qt::Key_Return);
  EXPECT_EQ(Marked(PadOf(window)), "one two three [2]");

  QTest::keyClick(&In<QPushButton>("cmd_FindNext"), Qt::Key_F, Qt::ControlModifier);
  EXPECT_EQ(TextIn("txt_SearchString"), u"2"_s);
  EXPECT_EQ(TextIn("txt_R"), QString());
  QTest::keyClick(&In<QCheckBox>("cb_MatchCase"), Qt::Key_Escape);
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_FALSE(first->isVisible());
}

TEST_F(Search, TheLastSearchIsRemembered) {
  Start();
  form_TXT& window = New("one|two one one");
  window.SearchFind();
  EXPECT_EQ(TextIn("txt_SearchString"), QString());
  In<QLineEdit>("txt_SearchString").setText(u"one"_s);
  QTest::mouseClick(&In<QPushButton>("cmd_FindNext"), Qt::LeftButton);
  EXPECT_EQ(registry_.ReadValue(kTxtKey, u"Last Search"_s), u"one"_s);
  Dialog()->cmd_Cance_Click();
  Mark(PadOf(window), "two |one one");
  window.SearchAgain();
  EXPECT_TRUE(Dialog()->isVisible());
  EXPECT_EQ(Marked(PadOf(window)), "two [one] one");

  global_.settings.txt_present = false;
  window.SearchAgain();
  EXPECT_EQ(TextIn("txt_SearchString"), QString());
}

TEST_F(Search, BelongsToOneDocument) {
  Start();
  form_TXT& first = New("first");
  form_TXT& second = New("second");
  first.SearchFind();
  EXPECT_TRUE(Dialog()->IsBoundTo(first));
  QFocusEvent focus(QEvent::FocusIn);
  QApplication::sendEvent(&first.EditingArea().Widget(), &focus);
  EXPECT_NE(Dialog(), nullptr);
  QApplication::sendEvent(&second.EditingArea().Widget(), &focus);
  EXPECT_EQ(Dialog(), nullptr);

  first.SearchFind();
  second.SearchReplace();
  EXPECT_TRUE(Dialog()->IsBoundTo(second));
  first.FileClose();
  EXPECT_NE(Dialog(), nullptr);
  second.FileClose();
  EXPECT_EQ(Dialog(), nullptr);
}

TEST_F(Search, StandsInTheTopRightCorner) {
  Start();
  frame_->setGeometry(20, 30, 700, 500);
  form_TXT& window = New("text");
  const int gap = TwipsToPixels(200, frame_->logicalDpiX());
  for (const bool contained : {true, false}) {
    global_.settings.contain_srd = contained;
    window.SearchFind();
    const QRect corner = contained ? frame_->frameGeometry() : frame_->screen()->geometry();
    EXPECT_EQ(Dialog()->frameGeometry().top(), corner.top() + gap);
    // One that wide fonts make wider than the place begins at the screen's edge.
    EXPECT_EQ(Dialog()->frameGeometry().right(), std::max(corner.right() - gap, Dialog()->frameGeometry().width() - 1));
  }
}
