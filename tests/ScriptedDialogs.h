#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "system/CommonDialog.h"
#include "system/Dialogs.h"

/// Answers the questions that a test expects, in their order. A question that was not expected, or with another text,
/// fails the test and gets Answer{}, a cancel; one left over when this goes fails it too.
template <typename Answer>
class Script {
 public:
  ~Script() { ExpectAllAsked(); }
  /// Fails for what was not asked by now, and forgets it.
  void ExpectAllAsked() {
    for (const auto& expected : std::exchange(expected_, {})) ADD_FAILURE() << "Not asked: " << expected.first;
  }

 protected:
  void Add(const std::string& question, const Answer& answer) { expected_.emplace_back(question, answer); }
  bool IsNext(const std::string& question) const { return !expected_.empty() && expected_.front().first == question; }
  Answer Next(const std::string& question) {
    if (expected_.empty()) expected_.push_back({"no question", {}});
    const auto [expected, answer] = std::move(expected_.front());
    expected_.pop_front();
    EXPECT_EQ(question, expected);
    return question == expected ? answer : Answer{};
  }

 private:
  std::deque<std::pair<std::string, Answer>> expected_;
};

struct DialogAnswer {
  tme::MsgAnswer button = tme::MsgAnswer::Cancel;
  QString input;
  std::optional<tme::MsgIcon> icon;  ///< the one that the box must show
  std::optional<int> chosen{};       ///< of buttons of the box's own
};

class ScriptedDialogs : public tme::Dialogs, public Script<DialogAnswer> {
 public:
  /// icon: not looked at when absent.
  void ExpectMsgBox(const QString& text, const QString& title, tme::MsgButtons buttons = tme::MsgButtons::Ok,
                    tme::MsgAnswer answer = tme::MsgAnswer::Ok, std::optional<tme::MsgIcon> icon = {});
  /// text: not looked at when empty. chosen: the index of the button.
  void ExpectChoice(const QString& text, const QString& title, const QStringList& buttons, int chosen);
  /// answer: empty to cancel.
  void ExpectInputBox(const QString& prompt, const QString& title, const QString& proposed, const QString& answer);
  /// Called while each message is on the screen.
  std::function<void()> while_asking = [] {};

  /// From now on every message box gets this answer, where a test is about something else.
  void AnswerAll(tme::MsgAnswer answer) { answer_all_ = answer; }

  tme::MsgAnswer MsgBox(const QString& text, tme::MsgButtons buttons, tme::MsgIcon icon, const QString& title) override;
  /// Unexpected: the last button.
  int Choose(const QString& text, const QStringList& buttons, tme::MsgIcon icon, const QString& title) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& text) override;

 private:
  std::optional<tme::MsgAnswer> answer_all_;
};

struct FileAnswer {
  QStringList paths{};
  int index = 0;
  std::function<void(tme::CommonDialog&)> choose{};
};

/// The same for the shared open, save and print dialog. `shown` keeps the fields as they were at each call.
class ScriptedCommonDialog : public tme::CommonDialog, public Script<FileAnswer> {
 public:
  /// paths: none to cancel. index: the filter entry that the user chooses; 0 leaves the one that is set.
  void ExpectOpen(const QStringList& paths, int index = 0) { Add("Open", {paths, index, {}}); }
  /// path: empty to cancel.
  void ExpectSave(const QString& path) { Add("Save", {QStringList(path), 0, {}}); }
  /// From now on every save dialog gets this path, where a test is about something else.
  void AnswerSaves(const QString& path) { answer_saves_ = path; }
  /// pdf: the file that is printed into; empty to cancel. meanwhile: what happens while the dialog is up.
  void ExpectPrinter(const QString& pdf, const std::function<void(tme::CommonDialog&)>& meanwhile = {}) {
    Add("Print", {QStringList(pdf), 0, meanwhile});
  }

  /// folder: empty to cancel.
  void ExpectFolder(const QString& folder) { Add("Folder", {QStringList(folder), 0, {}}); }

  /// choose: sets the fields as the user would; none to cancel.
  void ExpectFont(const std::function<void(tme::CommonDialog&)>& choose = {}) { Add("Font", {{}, 0, choose}); }
  void ExpectColor(const std::function<void(tme::CommonDialog&)>& choose = {}) { Add("Color", {{}, 0, choose}); }

  QStringList ShowOpen() override;
  QString ShowSave() override;
  QString ShowFolder() override;
  bool ShowFont() override { return Choose("Font"); }
  bool ShowColor() override { return Choose("Color"); }
  QString PrintObstacle() const override { return print_obstacle; }
  std::unique_ptr<QPrinter> ShowPrinter() override;

  QString print_obstacle;
  std::vector<tme::CommonDialog> shown;

 private:
  bool Choose(const std::string& dialog);

  std::optional<QString> answer_saves_;
};
