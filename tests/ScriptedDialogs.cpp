#include "ScriptedDialogs.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

std::string Shown(const char* kind, const QString& title, const QString& text, const std::string& detail) {
  return kind + (" \"" + title.toStdString()) + "\": \"" + text.toStdString() + "\" [" + detail + "]";
}

std::string Name(tme::MsgButtons buttons) {
  constexpr const char* kNames[] = {"Ok", "YesNo", "YesNoCancel"};
  return kNames[static_cast<std::size_t>(buttons)];
}

}  // namespace

void ScriptedDialogs::ExpectMsgBox(const QString& text, const QString& title, tme::MsgButtons buttons,
                                   tme::MsgAnswer answer, std::optional<tme::MsgIcon> icon) {
  expected_.push_back({Shown("MsgBox", title, text, Name(buttons)), icon, answer, {}});
}

void ScriptedDialogs::ExpectInputBox(const QString& prompt, const QString& title, const QString& proposed,
                                     const QString& answer) {
  expected_.push_back({Shown("InputBox", title, prompt, proposed.toStdString()), {}, {}, answer});
}

void ScriptedDialogs::ExpectAllAsked() {
  for (const Question& question : std::exchange(expected_, {})) ADD_FAILURE() << "Not asked: " << question.shown;
}

ScriptedDialogs::Question ScriptedDialogs::Next(const std::string& shown) {
  if (expected_.empty()) {
    ADD_FAILURE() << "Unexpected: " << shown;
    return {};
  }
  Question question = std::move(expected_.front());
  expected_.pop_front();
  EXPECT_EQ(shown, question.shown);
  return shown == question.shown ? question : Question{};
}

tme::MsgAnswer ScriptedDialogs::MsgBox(const QString& text, tme::MsgButtons buttons, tme::MsgIcon icon,
                                       const QString& title) {
  const Question question = Next(Shown("MsgBox", title, text, Name(buttons)));
  EXPECT_EQ(icon, question.icon.value_or(icon)) << question.shown;
  return question.button;
}

QString ScriptedDialogs::InputBox(const QString& prompt, const QString& title, const QString& text) {
  return Next(Shown("InputBox", title, prompt, text.toStdString())).input;
}

void ScriptedCommonDialog::ExpectOpen(const QStringList& paths, int index) {
  expected_.push_back({"Open", paths, index});
}

void ScriptedCommonDialog::ExpectSave(const QString& path, int index) {
  expected_.push_back({"Save", path.isEmpty() ? QStringList() : QStringList(path), index});
}

void ScriptedCommonDialog::ExpectPrinter(const QString& pdf) {
  expected_.push_back({"Printer", pdf.isEmpty() ? QStringList() : QStringList(pdf)});
}

void ScriptedCommonDialog::ExpectAllAsked() {
  for (const Use& use : std::exchange(expected_, {})) ADD_FAILURE() << "Not shown: " << use.dialog << " dialog";
}

QStringList ScriptedCommonDialog::Next(const std::string& dialog) {
  shown.push_back(*this);
  if (expected_.empty() || expected_.front().dialog != dialog) {
    ADD_FAILURE() << "Unexpected: " << dialog << " dialog \"" << title.toStdString() << "\"";
    return {};
  }
  const Use use = std::move(expected_.front());
  expected_.pop_front();
  if (!use.paths.isEmpty() && use.index != 0) filter_index = use.index;
  return use.paths;
}

QStringList ScriptedCommonDialog::ShowOpen() {
  const QStringList paths = Next("Open");
  if (!paths.isEmpty()) file_name = paths.first();
  return paths;
}

QString ScriptedCommonDialog::ShowSave() {
  const QStringList paths = Next("Save");
  if (paths.isEmpty()) return {};
  return file_name = paths.first();
}

std::unique_ptr<QPrinter> ScriptedCommonDialog::ShowPrinter() {
  const QStringList paths = Next("Printer");
  if (paths.isEmpty()) return nullptr;
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  printer->setOutputFormat(QPrinter::PdfFormat);
  printer->setOutputFileName(paths.first());
  return printer;
}
