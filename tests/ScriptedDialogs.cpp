#include "ScriptedDialogs.h"

namespace {

std::string Shown(const QString& title, const QString& text, const QString& detail) {
  return QStringLiteral("\"%1\": \"%2\" [%3]").arg(title, text, detail).toStdString();
}

QString Name(tme::MsgButtons buttons) {
  constexpr const char* kNames[] = {"Ok", "YesNo", "YesNoCancel", "OkCancel", "TryAgainCancel"};
  return QLatin1String(kNames[static_cast<std::size_t>(buttons)]);
}

}  // namespace

void ScriptedDialogs::ExpectMsgBox(const QString& text, const QString& title, tme::MsgButtons buttons,
                                   tme::MsgAnswer answer, std::optional<tme::MsgIcon> icon) {
  Add("MsgBox " + Shown(title, text, Name(buttons)), {answer, {}, icon});
}

void ScriptedDialogs::ExpectInputBox(const QString& prompt, const QString& title, const QString& proposed,
                                     const QString& answer) {
  Add("InputBox " + Shown(title, prompt, proposed), {{}, answer, {}});
}

tme::MsgAnswer ScriptedDialogs::MsgBox(const QString& text, tme::MsgButtons buttons, tme::MsgIcon icon,
                                       const QString& title) {
  if (answer_all_) return *answer_all_;
  const DialogAnswer answer = Next("MsgBox " + Shown(title, text, Name(buttons)));
  EXPECT_EQ(icon, answer.icon.value_or(icon)) << text.toStdString();
  while_asking();
  return answer.button;
}

void ScriptedDialogs::ExpectChoice(const QString& text, const QString& title, const QStringList& buttons, int chosen) {
  Add("Choose " + Shown(title, text, buttons.join(u'|')), {{}, {}, {}, chosen});
}

int ScriptedDialogs::Choose(const QString& text, const QStringList& buttons, tme::MsgIcon /*icon*/,
                            const QString& title) {
  const int last = static_cast<int>(buttons.size()) - 1;
  if (answer_all_) return *answer_all_ == tme::MsgAnswer::Cancel ? last : 0;
  const std::string any_text = "Choose " + Shown(title, {}, buttons.join(u'|'));
  const DialogAnswer answer = Next(IsNext(any_text) ? any_text : "Choose " + Shown(title, text, buttons.join(u'|')));
  while_asking();
  return answer.chosen.value_or(last);
}

QString ScriptedDialogs::InputBox(const QString& prompt, const QString& title, const QString& text) {
  return Next("InputBox " + Shown(title, prompt, text)).input;
}

QStringList ScriptedCommonDialog::ShowOpen() {
  shown.push_back(*this);
  const auto [paths, index, choose] = Next("Open");
  if (paths.isEmpty()) return {};
  if (index != 0) filter_index = index;
  file_name = paths.first();
  return paths;
}

QString ScriptedCommonDialog::ShowSave() {
  shown.push_back(*this);
  const QString path = answer_saves_ ? *answer_saves_ : Next("Save").paths.value(0);
  if (!path.isEmpty()) file_name = path;
  return path;
}

QString ScriptedCommonDialog::ShowFolder() {
  shown.push_back(*this);
  return Next("Folder").paths.value(0);
}

bool ScriptedCommonDialog::Choose(const std::string& dialog) {
  shown.push_back(*this);
  const std::function<void(tme::CommonDialog&)> choose = Next(dialog).choose;
  if (choose) choose(*this);
  return choose != nullptr;
}

std::unique_ptr<QPrinter> ScriptedCommonDialog::ShowPrinter() {
  shown.push_back(*this);
  const FileAnswer answer = Next("Print");
  if (answer.choose) answer.choose(*this);
  const QString pdf = answer.paths.value(0);
  if (pdf.isEmpty()) return nullptr;
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  printer->setOutputFormat(QPrinter::PdfFormat);
  printer->setOutputFileName(pdf);
  return printer;
}
