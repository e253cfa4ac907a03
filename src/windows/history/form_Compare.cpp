#include "windows/history/form_Compare.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <utility>

#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/PlainText.h"
#include "system/CommonDialog.h"
#include "system/RegistryAccess.h"
#include "windows/history/ComparisonPane.h"
#include "windows/history/FileComparison.h"
#include "windows/history/VersionCommands.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kCompareByLinesValue = QStringLiteral("Compare By Lines");

}  // namespace

form_Compare::form_Compare(Global& global, QWidget* parent)
    : QDialog(parent), global_(global), comparing_([this](const auto& comparison) {
        pane_->OfferStructure(comparison->has_structure);
        pane_->ShowAndSay(comparison, FilesSummary(*comparison));
      }) {
  setObjectName(u"form_Compare"_s);
  setWindowTitle(tr("Compare Files"));
  BuildControls();
  const QSize size(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 38);
  resize(size.boundedTo(screen()->availableSize() * 9 / 10));
  const DocumentWindow* active = global_.area.ActiveDocument();
  if (active) txt_First->setText(QDir::toNativeSeparators(active->File().Path()));
  PathChanged();
  (txt_First->text().isEmpty() ? txt_First : txt_Second)->setFocus();
}

void form_Compare::BuildControls() {
  auto* files = new QGridLayout;
  txt_First = AddFile(*files, tr("&First file:"), u"First"_s, tr("&Browse..."));
  txt_Second = AddFile(*files, tr("Second fi&le:"), u"Second"_s, tr("B&rowse..."));
  QLabel* unsaved = PlainLabel(tr("A file that is open and changed is compared as a save would write it now."));
  unsaved->setWordWrap(true);
  files->addWidget(unsaved, files->rowCount(), 1, 1, 2);

  pane_ = new ComparisonPane(tr("The second file's text, with the difference to the first"));
  pane_->SetBy(global_.registry.ReadValue(SettingsRoot, kCompareByLinesValue) == u"1" ? ComparedBy::Lines
                                                                                      : ComparedBy::Structure);
  connect(pane_, &ComparisonPane::ByChanged, this, &form_Compare::Compare);

  auto* buttons = new QDialogButtonBox;
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(files);
  layout->addWidget(pane_, 1);
  layout->addWidget(buttons);
  cmd_Compare = buttons->addButton(tr("Co&mpare"), QDialogButtonBox::ActionRole);
  cmd_Compare->setObjectName(u"cmd_Compare"_s);
  cmd_Compare->setDefault(true);
  connect(cmd_Compare, &QPushButton::clicked, this, &form_Compare::Compare);
  buttons->addButton(QDialogButtonBox::Close);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  order_ += pane_->TabOrder();
  for (qsizetype index = 1; index < order_.size(); ++index) setTabOrder(order_[index - 1], order_[index]);
}

QLineEdit* form_Compare::AddFile(QGridLayout& files, const QString& caption, const QString& name,
                                 const QString& browse_caption) {
  QLabel* label = PlainLabel(caption);
  auto* path = new QLineEdit;
  path->setObjectName(u"txt_"_s + name);
  path->setAccessibleName(QString(caption).remove(u'&').remove(u':'));
  label->setBuddy(path);
  connect(path, &QLineEdit::textChanged, this, &form_Compare::PathChanged);
  auto* browse = new QPushButton(browse_caption);
  browse->setObjectName(u"cmd_Browse"_s + name);
  browse->setAccessibleName(tr("Browse for the %1").arg(path->accessibleName().toLower()));
  browse->setAutoDefault(false);
  connect(browse, &QPushButton::clicked, this, [this, path] { Browse(*path); });
  const int row = files.rowCount();
  files.addWidget(label, row, 0);
  files.addWidget(path, row, 1);
  files.addWidget(browse, row, 2);
  order_ << path << browse;
  return path;
}

void form_Compare::done(int result) {
  if (global_.settings.present)
    global_.registry.WriteValue(SettingsRoot, kCompareByLinesValue,
                                pane_->By() == ComparedBy::Lines ? u"1"_s : QString());
  QDialog::done(result);
}

void form_Compare::Browse(QLineEdit& file) {
  CommonDialog& dialog = global_.common_dialog;
  dialog.title = tr("Choose a File to Compare");
  dialog.filter = tr("All Files") + u"|*.*"_s;
  // What a rich-text save writes goes by the entry that its own dialog had.
  const int filter_index = std::exchange(dialog.filter_index, 1);
  dialog.file_name.clear();
  const QFileInfo now(file.text());
  dialog.init_dir = !file.text().isEmpty() && now.dir().exists() ? now.absolutePath() : InitialOpenFolder(global_);
  dialog.multi_select = false;
  const QStringList paths = dialog.ShowOpen();
  dialog.filter_index = filter_index;
  if (paths.isEmpty()) return;
  file.setText(QDir::toNativeSeparators(paths.first()));
  if (cmd_Compare->isEnabled()) Compare();
}

void form_Compare::PathChanged() {
  comparing_.Cancel();
  cmd_Compare->setEnabled(!txt_First->text().isEmpty() && !txt_Second->text().isEmpty());
  // What was compared is no longer what the paths say.
  pane_->Show(nullptr);
  pane_->Say(cmd_Compare->isEnabled() ? tr("Press Compare to see what differs.") : tr("Choose two files."));
}

void form_Compare::Compare() {
  if (!cmd_Compare->isEnabled()) return;
  pane_->Show(nullptr);
  pane_->Say(tr("Comparing..."));
  comparing_.Start([this]() -> LatestComparison::Job {
    ComparedFile first = FileIn(*txt_First), second = FileIn(*txt_Second);
    const qint64 bytes = first.Bytes() + second.Bytes();
    return {bytes,
            [first = std::move(first), second = std::move(second), by = pane_->By()](
                const std::stop_token& stop, VersionComparison& result) mutable {
              CompareFiles(std::move(first), std::move(second), by, stop, result);
            },
            true};
  });
}

ComparedFile form_Compare::FileIn(const QLineEdit& file) const {
  ComparedFile compared{.path = QDir::fromNativeSeparators(file.text())};
  DocumentWindow* window = WindowOfFile(global_, compared.path, KindOf(compared.path, global_.settings.txt_filter));
  compared.unsaved = VersionCommands::UnsavedOf(window);
  if (compared.unsaved) compared.kind = window->Kind();
  return compared;
}

}  // namespace tme
