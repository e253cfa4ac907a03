#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"

/// Answers the questions that a test expects, in their order. A question that was not expected, or with another text,
/// fails the test and is cancelled; one left over when this goes fails it too.
class ScriptedDialogs : public tme::Dialogs {
 public:
  ~ScriptedDialogs() override { ExpectAllAsked(); }

  /// icon: not looked at when absent.
  void ExpectMsgBox(const QString& text, const QString& title, tme::MsgButtons buttons = tme::MsgButtons::Ok,
                    tme::MsgAnswer answer = tme::MsgAnswer::Ok, std::optional<tme::MsgIcon> icon = {});
  /// answer: empty to cancel.
  void ExpectInputBox(const QString& prompt, const QString& title, const QString& proposed, const QString& answer);
  /// Fails for what was not asked by now, and forgets it.
  void ExpectAllAsked();

  tme::MsgAnswer MsgBox(const QString& text, tme::MsgButtons buttons, tme::MsgIcon icon, const QString& title) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& text) override;

 private:
  struct Question {
    std::string shown;  ///< every part of the question but the icon, as the failure prints it
    std::optional<tme::MsgIcon> icon;
    tme::MsgAnswer button = tme::MsgAnswer::Cancel;
    QString input;
  };
  Question Next(const std::string& shown);

  std::deque<Question> expected_;
};

/// The same for the shared open, save and print dialog. `shown` keeps the fields as they were at each call.
class ScriptedCommonDialog : public tme::CommonDialog {
 public:
  ~ScriptedCommonDialog() override { ExpectAllAsked(); }

  /// paths: none to cancel. index: the filter entry that the user chooses; 0 leaves the one that is set.
  void ExpectOpen(const QStringList& paths, int index = 0);
  /// path: empty to cancel.
  void ExpectSave(const QString& path, int index = 0);
  /// pdf: the file that is printed into; empty to cancel.
  void ExpectPrinter(const QString& pdf);
  void ExpectAllAsked();

  QStringList ShowOpen() override;
  QString ShowSave() override;
  std::unique_ptr<QPrinter> ShowPrinter() override;

  std::vector<tme::CommonDialog> shown;

 private:
  struct Use {
    std::string dialog;
    QStringList paths;
    int index = 0;
  };
  QStringList Next(const std::string& dialog);

  std::deque<Use> expected_;
};
