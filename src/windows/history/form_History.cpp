#include "windows/history/form_History.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <exception>
#include <new>

#include "shell/DisplayText.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/FileMessages.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/PlainText.h"
#include "shell/SaveDialog.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "windows/history/DifferenceView.h"
#include "windows/history/VersionComparison.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Up to here the window waits for the comparison, which takes no time that anyone notices.
constexpr qint64 kComparedAtOnce = qint64{1} << 20;
const QString kSizeValue = QStringLiteral("History Size");

enum Column { kTimeColumn, kReasonColumn, kNameColumn, kSizeColumn, kColumns };
constexpr int kIndexRole = Qt::UserRole;     ///< place in versions_, newest first
constexpr int kSortRole = Qt::UserRole + 1;  ///< a number, where the text is none to sort by

std::shared_ptr<VersionComparison> TooLargeToCompare() {
  auto comparison = std::make_shared<VersionComparison>();
  comparison->outcome = VersionComparison::Outcome::TooLarge;
  return comparison;
}

/// A row of the list; what is equal stays in the order of time.
class VersionItem : public QTreeWidgetItem {
 public:
  using QTreeWidgetItem::QTreeWidgetItem;
  bool operator<(const QTreeWidgetItem& other) const override {
    const int column = treeWidget()->sortColumn();
    const qint64 mine = data(column, kSortRole).toLongLong(), its = other.data(column, kSortRole).toLongLong();
    const int texts = mine == its ? QString::localeAwareCompare(text(column), other.text(column)) : 0;
    if (mine != its) return mine < its;
    if (texts != 0 && column != kTimeColumn) return texts < 0;
    return data(kTimeColumn, kIndexRole).toInt() > other.data(kTimeColumn, kIndexRole).toInt();
  }
};

QString NameOf(const ContentOrigin& origin) {
  return origin.path.isEmpty() ? origin.title : QDir::toNativeSeparators(origin.path);
}

/// Short, and to the second: versions may be kept in quick succession.
QString TimeText(const QDateTime& time) {
  const QLocale locale;
  QString form = locale.timeFormat(QLocale::ShortFormat);
  if (!form.contains(u"ss"_s)) form.replace(u"mm"_s, u"mm:ss"_s);
  const QDateTime local = time.toLocalTime();
  return locale.toString(local.date(), QLocale::ShortFormat) + u' ' + locale.toString(local.time(), form);
}

}  // namespace

form_History::form_History(Global& global, QWidget* parent) : QDialog(parent), global_(global) {
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

form_History::~form_History() = default;

void form_History::BuildControls() {
  QLabel* scope_label = PlainLabel(tr("&Versions of:"));
  cb_Scope = new QComboBox;
  cb_Scope->setObjectName(u"cb_Scope"_s);
  cb_Scope->setAccessibleName(tr("Versions of"));
  scope_label->setBuddy(cb_Scope);
  auto* scope = new QHBoxLayout;
  scope->addWidget(scope_label);
  scope->addWidget(cb_Scope, 1);

  list_Versions = new QTreeWidget;
  list_Versions->setObjectName(u"list_Versions"_s);
  list_Versions->setAccessibleName(tr("Kept versions"));
  list_Versions->setRootIsDecorated(false);
  list_Versions->setUniformRowHeights(true);
  list_Versions->setAlternatingRowColors(true);
  list_Versions->setAllColumnsShowFocus(true);
  list_Versions->setTextElideMode(Qt::ElideMiddle);
  list_Versions->setColumnCount(kColumns);
  list_Versions->setHeaderLabels({tr("Time"), tr("Kept"), tr("File"), tr("Size")});
  list_Versions->headerItem()->setTextAlignment(kSizeColumn, Qt::AlignRight | Qt::AlignVCenter);
  list_Versions->header()->setStretchLastSection(false);
  list_Versions->sortByColumn(kTimeColumn, Qt::DescendingOrder);
  connect(list_Versions, &QTreeWidget::currentItemChanged, this, &form_History::ShowVersion);
  connect(list_Versions, &QTreeWidget::itemDoubleClicked, this, &form_History::cmd_OpenAsNew_Click);

  splitter_ = new QSplitter(Qt::Vertical);
  splitter_->setAccessibleName(tr("Versions and text"));
  splitter_->addWidget(list_Versions);
  splitter_->addWidget(BuildTextSide());
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
  // Enter looks at a version and changes nothing.
  cmd_OpenAsNew->setDefault(true);
  const QList<QWidget*> order{cb_Scope, list_Versions, chk_DifferencesOnly, cmd_Previous, cmd_Next, txt_Version};
  for (qsizetype index = 1; index < order.size(); ++index) setTabOrder(order[index - 1], order[index]);
}

QWidget* form_History::BuildTextSide() {
  lbl_Difference = PlainLabel();
  lbl_Difference->setObjectName(u"lbl_Difference"_s);
  lbl_Difference->setWordWrap(true);
  lbl_Place = PlainLabel();
  lbl_Place->setObjectName(u"lbl_Place"_s);
  chk_DifferencesOnly = new QCheckBox(tr("&Differences only"));
  chk_DifferencesOnly->setObjectName(u"chk_DifferencesOnly"_s);
  SetTip(*chk_DifferencesOnly, tr("Without the lines that are the same, but for a few around each difference"));
  connect(chk_DifferencesOnly, &QCheckBox::toggled, this, &form_History::ShowLines);
  txt_Version = new DifferenceView;
  txt_Version->setObjectName(u"txt_Version"_s);
  txt_Version->setAccessibleName(tr("The version's text, with the difference to now"));
  connect(txt_Version, &DifferenceView::CaretMoved, this, &form_History::ShowPlace);

  auto* row = new QHBoxLayout;
  row->addWidget(chk_DifferencesOnly);
  row->addStretch(1);
  row->addWidget(lbl_Place);
  const auto add = [&](const QString& name, const QString& caption, const QKeySequence& key,
                       void (DifferenceView::*go)()) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    SetTip(*button, tr("%1 (%2)").arg(QString(caption).remove(u'&'), key.toString(QKeySequence::NativeText)));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, txt_Version, go);
    auto* action = new QAction(this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, txt_Version, go);
    addAction(action);
    row->addWidget(button);
    return button;
  };
  cmd_Previous =
      add(u"cmd_Previous"_s, tr("&Previous Difference"), Qt::SHIFT | Qt::Key_F8, &DifferenceView::GoToPrevious);
  cmd_Next = add(u"cmd_Next"_s, tr("&Next Difference"), Qt::Key_F8, &DifferenceView::GoToNext);

  auto* side = new QWidget;
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(lbl_Difference);
  layout->addLayout(row);
  layout->addWidget(txt_Version, 1);
  return side;
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
  if (global_.settings.present)
    global_.registry.WriteValue(
        SettingsRoot, kSizeValue, kTextType,
        u"%1 %2 %3 %4"_s.arg(width()).arg(height()).arg(splitter_->sizes()[0]).arg(splitter_->sizes()[1]));
  QDialog::done(result);
}

void form_History::ListVersions(const QString& selected_id) {
  const QVariant path = cb_Scope->currentData();
  versions_ = path.isValid() ? global_.history.versions.List(path.toString()) : global_.history.versions.List();
  SetTip(*cb_Scope, QDir::toNativeSeparators(path.toString()));
  const QSignalBlocker silent(list_Versions);
  list_Versions->clear();
  list_Versions->setSortingEnabled(false);
  QTreeWidgetItem* selected = nullptr;
  for (qsizetype index = 0; index < versions_.size(); ++index) {
    const KeptVersion& version = versions_[index];
    auto* item = new VersionItem(list_Versions);
    item->setData(kTimeColumn, kIndexRole, static_cast<int>(index));
    item->setText(kTimeColumn, TimeText(version.time));
    item->setData(kTimeColumn, kSortRole, version.time.toMSecsSinceEpoch());
    SetItemTip(*item, kTimeColumn, QLocale().toString(version.time.toLocalTime(), QLocale::LongFormat));
    item->setText(kReasonColumn, ReasonText(version.reason));
    item->setText(kNameColumn, NameOf(version.origin));
    SetItemTip(*item, kNameColumn, NameOf(version.origin));
    item->setText(kSizeColumn, QLocale().formattedDataSize(version.bytes));
    item->setData(kSizeColumn, kSortRole, version.bytes);
    SetItemTip(*item, kSizeColumn, Counted(static_cast<std::uint64_t>(version.bytes), tr("1 byte"), tr("%1 bytes")));
    item->setTextAlignment(kSizeColumn, Qt::AlignRight | Qt::AlignVCenter);
    if (version.id == selected_id) selected = item;
  }
  list_Versions->setSortingEnabled(true);
  list_Versions->setColumnHidden(kNameColumn, path.isValid());
  QHeaderView& header = *list_Versions->header();
  header.setSectionResizeMode(QHeaderView::Interactive);
  for (int column = 0; column < kColumns; ++column)
    if (column != kNameColumn) list_Versions->resizeColumnToContents(column);
  header.setSectionResizeMode(path.isValid() ? kReasonColumn : kNameColumn, QHeaderView::Stretch);
  if (!selected) selected = list_Versions->topLevelItem(0);
  list_Versions->setCurrentItem(selected);
  if (selected) list_Versions->scrollToItem(selected);
  ShowVersion();
}

const KeptVersion* form_History::Selected() const {
  const QTreeWidgetItem* item = list_Versions->currentItem();
  return item ? &versions_[item->data(kTimeColumn, kIndexRole).toInt()] : nullptr;
}

DocumentWindow* form_History::WindowOf(const KeptVersion& version) const {
  DocumentWindow* found = nullptr;
  global_.documents.ForEachOpen([&](DocumentWindow& window) {
    const bool same = !version.origin.path.isEmpty() && window.File().Path() == version.origin.path &&
                      window.Kind() == version.origin.kind;
    // Of two documents of one file, it is about the one that the user looks at.
    if (same && (!found || &window == global_.area.ActiveDocument())) found = &window;
  });
  return found;
}

std::optional<std::string> form_History::UnsavedNow(const KeptVersion& version) const {
  DocumentWindow* window = WindowOf(version);
  // What a save would write may leave out what the file has: without edits, the file counts.
  const bool in_file = window && !window->IsModified() && QFileInfo::exists(version.origin.path);
  if (!window || in_file) return std::nullopt;
  return window->Content();
}

void form_History::ShowVersion() {
  const KeptVersion* version = Selected();
  ++wanted_;
  comparison_.reset();
  ShowLines();
  EnableCommands(version != nullptr);
  if (!version) {
    lbl_Difference->setText(
        cb_Scope->currentData().isValid()
            ? tr("Nothing is kept of this file yet. Its content is kept before a save replaces it.")
            : tr("Nothing is kept yet. The content of a file is kept before a save replaces it, and that of a "
                 "document that is closed without saving."));
    return;
  }
  try {
    CompareVersion(*version);
  } catch (const std::exception&) {  // no memory, no thread
    ShowComparison(TooLargeToCompare());
  }
}

void form_History::CompareVersion(const KeptVersion& version) {
  std::optional<std::string> now = UnsavedNow(version);
  const qint64 bytes = version.bytes + (now ? static_cast<qint64>(now->size()) : QFileInfo(version.origin.path).size());
  if (bytes <= kComparedAtOnce) {
    auto comparison = std::make_shared<VersionComparison>();
    Compare(global_.history, version, std::move(now), *comparison);
    return ShowComparison(std::move(comparison));
  }
  lbl_Difference->setText(tr("Comparing..."));
  if (!comparing_.valid()) StartComparing(version, std::move(now));
}

void form_History::StartComparing(const KeptVersion& version, std::optional<std::string> now) {
  auto compare = [this, version, now = std::move(now), number = wanted_]() mutable {
    auto comparison = std::make_shared<VersionComparison>();
    bool has_memory = true;
    try {
      Compare(global_.history, version, std::move(now), *comparison);
    } catch (const std::bad_alloc&) {
      has_memory = false;
    }
    if (!has_memory) comparison = TooLargeToCompare();
    const auto show = [this, comparison, number] {
      comparing_.get();
      // Another one was selected meanwhile; only the last of them counts.
      if (number == wanted_)
        ShowComparison(comparison);
      else if (!comparison_ && Selected())
        ShowVersion();
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
  };
  comparing_ = std::async(std::launch::async, std::move(compare));
}

void form_History::ShowComparison(std::shared_ptr<const VersionComparison> comparison) {
  const KeptVersion& version = *Selected();
  comparison_ = std::move(comparison);
  EnableCommands(comparison_->outcome != VersionComparison::Outcome::Unreadable);
  ShowLines();
  QString said = Summary(*comparison_, version, global_.history.folder.Path());
  if (txt_Version->HasCutLines())
    said += u' ' + tr("Lines of more than %1 bytes are shown in part, from where they differ.")
                       .arg(QLocale().toString(static_cast<qulonglong>(DifferenceView::kShownLineBytes)));
  lbl_Difference->setText(said);
}

void form_History::EnableCommands(bool enabled) {
  for (QPushButton* button : {cmd_OpenAsNew, cmd_SaveCopy}) button->setEnabled(enabled);
  cmd_Restore->setEnabled(enabled && !Selected()->origin.path.isEmpty());
}

void form_History::ShowLines() {
  const bool differs = comparison_ && comparison_->outcome == VersionComparison::Outcome::Different;
  if (comparison_)
    txt_Version->ShowLines(comparison_->lines,
                           differs && chk_DifferencesOnly->isChecked() ? ShownLines::DifferencesOnly : ShownLines::All);
  else
    txt_Version->Clear();
  ShowPlace();
}

void form_History::ShowPlace() {
  const int count = txt_Version->DifferenceCount();
  lbl_Place->setText(count == 0
                         ? QString()
                         : tr("Difference %1 of %2")
                               .arg(QLocale().toString(txt_Version->CurrentDifference()), QLocale().toString(count)));
  chk_DifferencesOnly->setEnabled(count > 0);
  cmd_Previous->setEnabled(txt_Version->HasPrevious());
  cmd_Next->setEnabled(txt_Version->HasNext());
}

std::optional<std::string> form_History::SelectedContent() {
  std::optional<std::string> content = global_.history.contents.Read(Selected()->digest);
  if (!content)
    global_.dialogs.MsgBox(Summary({}, *Selected(), global_.history.folder.Path()), MsgButtons::Ok, MsgIcon::Warning,
                           kProgramTitle);
  return content;
}

void form_History::cmd_OpenAsNew_Click() {
  if (!cmd_OpenAsNew->isEnabled()) return;
  std::optional<std::string> content = SelectedContent();
  if (!content) return;
  const KeptVersion& version = *Selected();
  DocumentWindow* window = NewDocument(global_, version.origin.kind);
  if (!window) return;
  window->PutContent(std::move(*content));
  window->AddNotice(tr("This is %1 as it was kept at %2.").arg(NameOf(version.origin), TimeText(version.time)));
  accept();
}

QString form_History::AskForCopyPath(const ContentOrigin& origin) {
  const QFileInfo name(origin.title);
  QString ending = origin.path.isEmpty() ? QString::fromLatin1(NameOf(origin.kind)) : name.suffix();
  if (!ending.isEmpty()) ending.prepend(u'.');
  // What a rich-text save writes goes by the entry that its own dialog had.
  const int filter_index = global_.common_dialog.filter_index;
  QString path = AskForSavePath(global_, {tr("Save a Copy"), tr("All Files") + u"|*.*"_s, ending,
                                          name.completeBaseName() + tr(" (kept)") + ending});
  global_.common_dialog.filter_index = filter_index;
  return path;
}

void form_History::cmd_SaveCopy_Click() {
  const std::optional<std::string> content = SelectedContent();
  if (!content) return;
  const KeptVersion& version = *Selected();
  const QString path = AskForCopyPath(version.origin);
  if (path.isEmpty()) return;
  // What the copy replaces is kept, too.
  const ContentOrigin target{version.origin.kind, path, QFileInfo(path).fileName()};
  if (const auto failure = global_.history.files.Replace(target, *content))
    global_.dialogs.MsgBox(
        tr("The copy could not be written to %1: %2.  %3")
            .arg(path, QString::fromStdString(failure->reason), FileMessages::WhatIsSafe(path, *failure)),
        MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  else
    RememberLastSaveFolder(global_.registry, QFileInfo(path).absolutePath());
}

void form_History::cmd_Restore_Click() {
  std::optional<std::string> content = SelectedContent();
  if (!content) return;
  const KeptVersion version = *Selected();
  DocumentWindow* window = WindowOf(version);
  const int slot = global_.documents.FindFreeSlot(version.origin.kind);
  if (!window && slot < 0) return ShowNoFreeSlot(global_, version.origin.kind);
  const std::optional<std::string> now = window ? std::optional(window->Content()) : std::nullopt;
  if (now == content) return;  // pressed twice
  const auto failure = now ? global_.history.versions.Keep(version.origin, KeptReason::BeforeRestore, *now)
                           : global_.history.files.KeepFile(version.origin, KeptReason::BeforeRestore);
  if (failure) {
    global_.dialogs.MsgBox(tr("What stands there now could not be kept: %1.  Nothing was restored.")
                               .arg(QString::fromStdString(failure->reason)),
                           MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
    return;
  }
  // A file that is not open need not be there any more: its document comes back without it.
  if (window)
    window->PutContent(std::move(*content));
  else
    global_.documents.At(version.origin.kind, slot)->ShowKept(version.origin, std::move(*content));
  // The same version stays selected, so that one sees that it is what is there now.
  ListVersions(version.id);
}

}  // namespace tme
