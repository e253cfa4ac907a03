#include "windows/ini/KeyValueDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <limits>

#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kBoxCharacters = 48;

QLineEdit* MakeBox(QDialog* dialog, const QString& name, const QString& accessible_name) {
  auto* box = new QLineEdit(dialog);
  box->setObjectName(name);
  box->setAccessibleName(accessible_name);
  // A line of a file may be longer than the 32767 characters that a line edit takes unasked.
  box->setMaxLength(std::numeric_limits<int>::max());
  box->setMinimumWidth(box->fontMetrics().averageCharWidth() * kBoxCharacters);
  box->installEventFilter(dialog);
  return box;
}

}  // namespace

KeyValueDialog::KeyValueDialog(QWidget* parent)
    : QDialog(parent),
      txt_Key(MakeBox(this, u"txt_Key"_s, tr("Key"))),
      txt_value(MakeBox(this, u"txt_value"_s, tr("Value"))),
      buttons_(new QDialogButtonBox(this)) {
  auto* form = new QFormLayout(this);
  form->addRow(tr("&Key:"), txt_Key);
  form->addRow(tr("&Value:"), txt_value);
  form->addRow(buttons_);
}

QString KeyValueDialog::Key() const { return OneLine(txt_Key->text()); }

QString KeyValueDialog::Value() const { return OneLine(txt_value->text()); }

QPushButton* KeyValueDialog::AddButton(const char* name, const QString& caption, std::function<void()> press) {
  const bool first = buttons_->buttons().isEmpty();
  auto* button = new QPushButton(caption, this);
  button->setObjectName(QLatin1StringView(name));
  button->setAccessibleName(QString(caption).remove(u'&'));
  buttons_->addButton(button, QDialogButtonBox::ActionRole);
  button->setDefault(first);
  connect(button, &QPushButton::clicked, this, [this, press = std::move(press)] {
    if (press) press();
    hide();
  });
  return button;
}

void KeyValueDialog::reject() {
  if (cancel_button_) cancel_button_->click();
}

bool KeyValueDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && txt_Key->text().isEmpty()) return true;
  }
  return QDialog::eventFilter(watched, event);
}

form_ADE::form_ADE(QWidget* parent, const QString& caption, DeleteButton delete_button) : KeyValueDialog(parent) {
  setObjectName(u"form_ADE"_s);
  setWindowTitle(caption);
  AddButton("cmd_Exit", tr("OK"), {});
  const auto press = [this](const QString& word, Outcome outcome) {
    txt_value->setText(word);
    by_button_ = outcome;
  };
  SetCancelButton(AddButton("cmd_Cancel", tr("Cancel"), [=] { press(kCancelled, Outcome::Cancelled); }));
  QPushButton* cmd_Delete = AddButton("cmd_Delete", tr("&Delete"), [=] { press(kDelete, Outcome::Deleted); });
  cmd_Delete->setVisible(delete_button == DeleteButton::Shown);
}

void form_ADE::SetEntry(const QString& key, const QString& value) {
  txt_Key->setText(key);
  txt_value->setText(value);
  txt_value->setFocus();
  txt_value->selectAll();
}

form_ADE::Outcome form_ADE::ByText() const {
  if (Value() == kCancelled) return Outcome::Cancelled;
  return Value() == kDelete ? Outcome::Deleted : Outcome::Accepted;
}

form_INIAddValue::form_INIAddValue(QWidget* parent) : KeyValueDialog(parent) {
  setObjectName(u"form_INIAddValue"_s);
  setWindowTitle(tr("Add Key to All Sections"));
  AddButton("cmd_Add", tr("&Add"), {});
  SetCancelButton(AddButton("cmd_Cancel", tr("Cancel"), [this] { txt_Key->clear(); }));
}

}  // namespace tme
