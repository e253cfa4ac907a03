#include "windows/history/form_History.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include "history/History.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/PlainText.h"
#include "system/RegistryAccess.h"
#include "windows/history/ComparisonPane.h"
#include "windows/history/VersionComparison.h"
#include "windows/history/VersionList.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kSizeValue = QStringLiteral("History Size");
const QString kByStructureValue = QStringLiteral("History By Structure");

}  // namespace

form_History::form_History(Global& global, QWidget* parent)
    : QDialog(parent),
      global_(global),
      commands_(global),
      comparing_([this](auto comparison) { ShowComparison(std::move(comparison)); }) {
  setObjectName(u"form_History"_s);
  setWindowTitle(tr("File History"));
  BuildControls();
  RestoreSize();
  const DocumentWindow* active = global_.area.ActiveDocument();
  const QString path = active ? active->File().Path() : QString();
  if (!path.isEmpty()) {
    cb_Scope->addItem(active->File().Title(), path);
    SetItemTip(*cb_Scope, 0, QDir::toNativeSeparators(path));
  }
  cb_Scope->addItem(tr("All files"));
  if (!path.isEmpty() && global_.history.versions.List(path).isEmpty())
    cb_Scope->setCurrentIndex(cb_Scope->count() - 1);
  connect(cb_Scope, &QComboBox::currentIndexChanged, this, [this] { ListVersions(); });
  ListVersions();
  list_Versions->setFocus();
}

void form_History::BuildControls() {
  QLabel* scope_label = PlainLabel(tr("&Versions of:"));
  cb_Scope = new QComboBox;
  cb_Scope->setObjectName(u"cb_Scope"_s);
  cb_Scope->setAccessibleName(tr("Versions of"));
  scope_label->setBuddy(cb_Scope);
  auto* scope = new QHBoxLayout;
  scope->addWidget(scope_label);
  scope->addWidget(cb_Scope, 1);

  list_Versions = new VersionList;
  list_Versions->setObjectName(u"list_Versions"_s);
  list_Versions->setAccessibleName(tr("Kept versions"));
  connect(list_Versions, &QTreeWidget::currentItemChanged, this, &form_History::ShowVersion);
  connect(list_Versions, &QTreeWidget::itemDoubleClicked, this, &form_History::cmd_OpenAsNew_Click);

  pane_ = new ComparisonPane(tr("The version's text, with the difference to now"));
  pane_->SetBy(global_.registry.ReadValue(SettingsRoot, kByStructureValue) == u"1" ? ComparedBy::Structure
                                                                                   : ComparedBy::Lines);
  connect(pane_, &ComparisonPane::ByChanged, this, &form_History::ShowVersion);
  splitter_ = new QSplitter(Qt::Vertical);
  splitter_->setAccessibleName(tr("Versions and text"));
  splitter_->addWidget(list_Versions);
  splitter_->addWidget(pane_);
  splitter_->setStretchFactor(0, 2);
  splitter_->setStretchFactor(1, 3);
  splitter_->setChildrenCollapsible(false);

  auto* buttons = new QDialogButtonBox;
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(scope);
  layout->addWidget(splitter_, 1);
  layout->addWidget(buttons);
  // In the window already, and Close last: the box orders its own buttons.
  BuildButtons(*buttons);
  // Enter shows a version and changes nothing.
  cmd_OpenAsNew->setDefault(true);
  const QList<QWidget*> order = QList<QWidget*>{cb_Scope, list_Versions} + pane_->TabOrder();
  for (qsizetype index = 1; index < order.size(); ++index) setTabOrder(order[index - 1], order[index]);
}

void form_History::BuildButtons(QDialogButtonBox& box) {
  const auto add = [&](const QString& name, const QString& caption, const QString& tip, void (form_History::*click)()) {
    auto* button = box.addButton(caption, QDialogButtonBox::ActionRole);
    button->setObjectName(name);
    SetTip(*button, tip);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, click);
    return button;
  };
  cmd_OpenAsNew = add(u"cmd_OpenAsNew"_s, tr("&Open as New Document"), tr("The version in a document without a file"),
                      &form_History::cmd_OpenAsNew_Click);
  cmd_SaveCopy = add(u"cmd_SaveCopy"_s, tr("Save a &Copy..."), tr("The version's bytes into a file of another name"),
                     &form_History::cmd_SaveCopy_Click);
  cmd_Restore = add(u"cmd_Restore"_s, tr("&Restore"),
                    tr("The version back into its document; what stands there now is kept as a version first"),
                    &form_History::cmd_Restore_Click);
  box.addButton(QDialogButtonBox::Close);
  connect(&box, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void form_History::RestoreSize() {
  const QStringList stored = global_.registry.ReadValue(SettingsRoot, kSizeValue).split(u' ');
  QSize size(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 38);
  if (const QSize read(stored.value(0).toInt(), stored.value(1).toInt()); !read.isEmpty()) size = read;
  resize(size.boundedTo(screen()->availableSize() * 9 / 10));
  const int list = stored.value(2).toInt(), text = stored.value(3).toInt();
  if (list > 0 && text > 0) splitter_->setSizes({list, text});
}

void form_History::done(int result) {
  if (global_.settings.present) {
    global_.registry.WriteValue(
        SettingsRoot, kSizeValue,
        u"%1 %2 %3 %4"_s.arg(width()).arg(height()).arg(splitter_->sizes()[0]).arg(splitter_->sizes()[1]));
    global_.registry.WriteValue(SettingsRoot, kByStructureValue,
                                pane_->By() == ComparedBy::Structure ? u"1"_s : QString());
  }
  QDialog::done(result);
}

void form_History::ListVersions(const QString& current_id) {
  const QVariant path = cb_Scope->currentData();
  SetTip(*cb_Scope, QDir::toNativeSeparators(path.toString()));
  if (path.isValid())
    list_Versions->List(global_.history.versions.List(path.toString()), VersionList::Of::OneFile, current_id);
  else
    list_Versions->List(global_.history.versions.List(), VersionList::Of::AllFiles, current_id);
  ShowVersion();
}

void form_History::ShowVersion() {
  const KeptVersion* version = list_Versions->Current();
  comparing_.Cancel();
  pane_->Show(nullptr);
  EnableCommands(version != nullptr);
  pane_->OfferStructure(version && HasStructure(version->origin.kind));
  if (!version) return SayThatNothingIsKept();
  pane_->Say(tr("Comparing..."));
  comparing_.Start([&] { return ComparisonOf(*version); });
}

void form_History::SayThatNothingIsKept() {
  pane_->Say(cb_Scope->currentData().isValid()
                 ? tr("Nothing is kept of this file yet. Its content is kept before a save replaces it.")
                 : tr("Nothing is kept yet. The content of a file is kept before a save replaces it, and that of a "
                      "document that is closed without saving."));
}

LatestComparison::Job form_History::ComparisonOf(const KeptVersion& version) {
  std::optional<std::string> now = commands_.UnsavedNow(version);
  const qint64 bytes = version.bytes + (now ? static_cast<qint64>(now->size()) : QFileInfo(version.origin.path).size());
  auto compare = [&contents = global_.history.contents, version, now = std::move(now), by = pane_->By()](
                     const auto&, VersionComparison& result) mutable {
    Compare(contents, version, std::move(now), by, result);
  };
  return {bytes, std::move(compare)};
}

void form_History::ShowComparison(std::shared_ptr<const VersionComparison> comparison) {
  EnableCommands(comparison->outcome != VersionComparison::Outcome::Unreadable);
  const QString said = Summary(*comparison, *list_Versions->Current(), global_.history.folder.Path());
  pane_->ShowAndSay(std::move(comparison), said);
}

void form_History::EnableCommands(bool enabled) {
  for (QPushButton* button : {cmd_OpenAsNew, cmd_SaveCopy}) button->setEnabled(enabled);
  cmd_Restore->setEnabled(enabled && !list_Versions->Current()->origin.path.isEmpty());
}

void form_History::cmd_OpenAsNew_Click() {
  if (cmd_OpenAsNew->isEnabled() && commands_.OpenAsNew(*list_Versions->Current())) accept();
}

void form_History::cmd_SaveCopy_Click() { commands_.SaveCopy(*list_Versions->Current()); }

void form_History::cmd_Restore_Click() {
  const KeptVersion version = *list_Versions->Current();
  // The same version stays selected, so that one sees that it is what is there now.
  if (commands_.Restore(version)) ListVersions(version.id);
}

}  // namespace tme
