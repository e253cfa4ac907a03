#include "windows/options/form_TMEOptions.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QVBoxLayout>

#include "shell/Global.h"
#include "shell/PlainText.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"
#include "windows/options/HelpTexts.h"
#include "windows/options/ShellIntegration.h"

using namespace Qt::StringLiterals;

namespace tme {

form_TMEOptions::form_TMEOptions(Global& global, ShellIntegration& integration, AutoSaveTimer set_auto_save_timer,
                                 QWidget* parent)
    : QDialog(parent),
      global_(global),
      integration_(integration),
      set_auto_save_timer_(std::move(set_auto_save_timer)),
      TS(new QTabWidget(this)) {
  setObjectName(u"form_TMEOptions"_s);
  setWindowTitle(tr("Tamarind Editor Options"));
  setWindowFlag(Qt::WindowContextHelpButtonHint);
  auto* column = new QVBoxLayout(this);
  column->addWidget(TS);
  BuildTabs();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* cmd_OK = buttons->button(QDialogButtonBox::Ok);
  cmd_OK->setObjectName(u"cmd_OK"_s);
  cmd_OK->setAccessibleName(tr("OK"));
  cmd_OK->setDefault(true);
  cmd_Cancel = buttons->button(QDialogButtonBox::Cancel);
  cmd_Cancel->setObjectName(u"cmd_Cancel"_s);
  cmd_Cancel->setAccessibleName(tr("Cancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &form_TMEOptions::cmd_OK_Click);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  column->addWidget(buttons);

  for (QWidget* control : findChildren<QWidget*>())
    if (const HelpTopic* topic = FindHelpTopic(control->objectName()))
      SetWhatsThis(*control, global_.shell_utilities.FormatHelpText(HelpText(topic->text_id)));
  Form_Load();
  // The pages scroll where the screen is too low for them; the frame's decoration is like this dialog's.
  const QWidget& frame = global_.frame;
  const QSize decoration = frame.frameGeometry().size() - frame.size();
  resize(sizeHint().boundedTo(frame.screen()->availableGeometry().size() - decoration));
}

void form_TMEOptions::Form_Load() {
  set_auto_save_timer_(0);
  const Settings& settings = global_.settings;
  for (const auto& [field, box] : flag_boxes_) box->setChecked(settings.*field);
  cb_SendTo->setChecked(integration_.State(ShellHook::SendTo) == HookState::On);
  Check1->setChecked(integration_.State(ShellHook::ContextMenu) == HookState::On);
  filters_[Txt].filter.Load(settings.txt_filter);
  filters_[Rtf].filter.Load(settings.rtf_filter);
  ShowFilter(Txt);
  ShowFilter(Rtf);
  txt_txtfont->setText(settings.font_name);
  txt_txtsize->setText(QString::number(settings.font_size));
  const QString open_type = global_.registry.ReadValue(SettingsRoot, u"Default Open Type"_s);
  opt_DefOpen->button(static_cast<int>(ParseDefaultOpenType(open_type)))->setChecked(true);
  const bool saves = settings.auto_save_period > 0;
  if (saves) txt_AutoSave->setText(QString::number(settings.auto_save_period));
  cb_AutoSave->setChecked(saves);
}

void form_TMEOptions::done(int result) {
  QDialog::done(result);
  set_auto_save_timer_(global_.settings.auto_save_period);
}

void form_TMEOptions::cmd_OK_Click() {
  if (!CheckAutoSave()) return;
  SaveFlags();
  // One after the other: the operands of a sum have no order.
  QStringList failures = SetHook(ShellHook::SendTo, cb_SendTo, tr("Send To entry"));
  failures += SetHook(ShellHook::ContextMenu, Check1, tr("Context menu command"));
  SaveTexts();
  const std::optional<StoreFailure> unsaved = global_.registry.Flush();
  if (unsaved) global_.frame.SettingsFailureTold();
  if (!failures.isEmpty()) {
    QString text = tr("The integration into the file manager could not be changed completely.");
    if (!unsaved) text += u' ' + tr("All other options are saved.");
    global_.dialogs.MsgBox(text + u"\r\r"_s + failures.join(u"\r"_s), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  }
  if (unsaved) global_.dialogs.MsgBox(SettingsFailureText(*unsaved), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  accept();
}

void form_TMEOptions::SaveFlags() {
  for (const Flag& flag : kFlags)
    for (const auto& [field, box] : flag_boxes_)
      if (field == flag.field) global_.settings.SetFlag(field, box->isChecked(), global_.registry);
}

QStringList form_TMEOptions::SetHook(ShellHook hook, const QCheckBox* box, const QString& what) {
  QStringList failures;
  // Written each time, whether or not the box has changed: a hook that was damaged comes back.
  const HookState state = box->isChecked() ? HookState::On : HookState::Off;
  for (const IntegrationFailure& failure : integration_.Set(hook, state))
    failures.append(u"%1: %2\r%3"_s.arg(what, failure.place, failure.reason));
  return failures;
}

void form_TMEOptions::SaveTexts() {
  Settings& settings = global_.settings;
  RegistryAccess& registry = global_.registry;
  settings.rtf_filter = filters_[Rtf].filter.Save();
  settings.txt_filter = filters_[Txt].filter.Save();
  settings.font_name = txt_txtfont->text();
  settings.font_size = ParseInt16(txt_txtsize->text()).value_or(settings.font_size);
  settings.auto_save_period = cb_AutoSave->isChecked() ? ParseAutoSavePeriod(txt_AutoSave->text()) : 0;
  if (settings.rtf_present) registry.WriteValue(kRtfKey, u"File Filter"_s, settings.rtf_filter);
  if (settings.txt_present) {
    registry.WriteValue(kTxtKey, u"File Filter"_s, settings.txt_filter);
    registry.WriteValue(kTxtKey, u"Default Font"_s, txt_txtfont->text());
    registry.WriteValue(kTxtKey, u"Default Size"_s, txt_txtsize->text());
  }
  if (settings.present) {
    const auto open_type = static_cast<DocumentKind>(opt_DefOpen->checkedId());
    registry.WriteValue(SettingsRoot, u"Default Open Type"_s, DefaultOpenTypeText(open_type));
    registry.WriteValue(SettingsRoot, u"AutoSave"_s, QString::number(settings.auto_save_period));
  }
}

void form_TMEOptions::cmd_Add_Click(FilterKind kind) {
  FilterControls& controls = filters_[kind];
  txt_ext->setFocus();
  const QString extension = txt_ext->text();
  const ExtensionFault fault = CheckExtension(extension);
  if (fault != ExtensionFault::None) {
    global_.dialogs.MsgBox(ExtensionFaultText(fault, extension), MsgButtons::OkCancel, MsgIcon::Information,
                           tr("Error:"));
    txt_ext->clear();
    return;
  }
  const qsizetype index = controls.filter.Add(extension.toUpper());
  ShowFilter(kind);
  controls.list->setCurrentRow(static_cast<int>(index));
  txt_ext->selectAll();
}

void form_TMEOptions::cmd_Remove_Click(FilterKind kind) {
  const int row = filters_[kind].list->currentRow();
  if (row < 0) return;
  filters_[kind].filter.Remove(row);
  ShowFilter(kind);
}

void form_TMEOptions::ShowFilter(FilterKind kind) {
  QListWidget* list = filters_[kind].list;
  list->clear();
  list->addItems(filters_[kind].filter.Extensions());
}

void form_TMEOptions::cmd_SetFS_Click() {
  CommonDialog& dialog = global_.common_dialog;
  dialog.title = tr("Choose Default Font and Size");
  const QString name_before = std::exchange(dialog.font_name, txt_txtfont->text());
  const int size_before = std::exchange(dialog.font_size, txt_txtsize->text().toInt());
  if (!dialog.ShowFont()) {
    // What the shared dialog holds is what a cancelled choice applies elsewhere.
    dialog.font_name = name_before;
    dialog.font_size = size_before;
    return;
  }
  txt_txtfont->setText(dialog.font_name);
  txt_txtsize->setText(QString::number(dialog.font_size));
}

void form_TMEOptions::cb_AutoSave_Click() {
  txt_AutoSave->setEnabled(cb_AutoSave->isChecked());
  // Not every style greys a disabled box by itself.
  QPalette palette = txt_AutoSave->palette();
  palette.setBrush(QPalette::Disabled, QPalette::Base, this->palette().brush(QPalette::Window));
  txt_AutoSave->setPalette(palette);
}

bool form_TMEOptions::CheckAutoSave() {
  if (!cb_AutoSave->isChecked()) return true;
  if (txt_AutoSave->text().isEmpty()) txt_AutoSave->setText(u"0"_s);
  const std::optional<double> minutes = ParseNumber(txt_AutoSave->text());
  // Zero passes, although the message asks for 1 to 99: it is off. Intended.
  if (minutes && *minutes >= 0 && *minutes <= kMaxAutoSavePeriod) return true;
  global_.dialogs.MsgBox(
      tr("You have not entered a valid number for AutoSave.  Please enter a number between 1 and 99."), MsgButtons::Ok,
      MsgIcon::Information, tr("AutoSave"));
  txt_AutoSave->clear();
  TS->setCurrentIndex(0);
  txt_AutoSave->setFocus();
  return false;
}

bool form_TMEOptions::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ContextMenu) {
    if (auto* edit = qobject_cast<QLineEdit*>(watched)) {
      PopUpHelp(edit, static_cast<QContextMenuEvent*>(event)->globalPos());
      return true;
    }
  }
  if (watched == txt_AutoSave && event->type() == QEvent::FocusOut) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    const bool left = reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
    // Not from within the change of focus, which the message would disturb. Leaving for Cancel discards the entry.
    const auto check = [this] {
      if (isVisible() && focusWidget() != cmd_Cancel && focusWidget() != txt_AutoSave) CheckAutoSave();
    };
    if (left) QMetaObject::invokeMethod(this, check, Qt::QueuedConnection);
  }
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    const FilterKind kind = filters_[Rtf].list->isVisible() ? Rtf : Txt;
    if (watched == txt_ext && (key == Qt::Key_Return || key == Qt::Key_Enter) && !txt_ext->text().isEmpty()) {
      cmd_Add_Click(kind);
      return true;
    }
    if (watched == filters_[kind].list && key == Qt::Key_Delete) {
      cmd_Remove_Click(kind);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

const HelpTopic* form_TMEOptions::TopicOf(const QWidget* control) {
  for (; control; control = control->parentWidget())
    if (const HelpTopic* topic = FindHelpTopic(control->objectName())) return topic;
  return nullptr;
}

void form_TMEOptions::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() != QContextMenuEvent::Keyboard) return PopUpHelp(childAt(event->pos()), event->globalPos());
  if (QWidget* control = focusWidget()) PopUpHelp(control, control->mapToGlobal(control->rect().center()));
}

void form_TMEOptions::PopUpHelp(QWidget* control, const QPoint& global_position) {
  help_topic_ = TopicOf(control);
  // A text box keeps its own items above the help.
  auto* edit = qobject_cast<QLineEdit*>(control);
  if (!help_topic_ && !edit) return;
  QMenu* Help = edit ? edit->createStandardContextMenu() : new QMenu(this);
  Help->setObjectName(u"Help"_s);
  Help->setAttribute(Qt::WA_DeleteOnClose);
  if (help_topic_) {
    if (edit) Help->addSeparator();
    QAction* ContextHelp = Help->addAction(tr("&What's This?"), this, &form_TMEOptions::ContextHelp_Click);
    ContextHelp->setObjectName(u"ContextHelp"_s);
  }
  Help->popup(global_position);
}

void form_TMEOptions::ContextHelp_Click() {
  if (!help_topic_) return;
  const QString text = global_.shell_utilities.FormatHelpText(HelpText(help_topic_->text_id));
  global_.dialogs.MsgBox(text, MsgButtons::Ok, MsgIcon::Information, help_topic_->Title());
}

void form_TMEOptions::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_F1 || event->modifiers() != Qt::NoModifier) return QDialog::keyPressEvent(event);
  help_topic_ = TopicOf(focusWidget());
  ContextHelp_Click();
}

}  // namespace tme
