#include "history/form_History.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTextBlock>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>

#include "base/LineDiff.h"
#include "platform/CodePage.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/FilePath.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/Hourglass.h"
#include "shell/OpenDispatch.h"
#include "shell/mdform_TMEditor.h"
#include "text/rtf/RtfReader.h"
#include "text/rtf/RtfWriter.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// More would keep the window busy; the whole is a click on "Open as New Document" away.
constexpr std::size_t kShownLines = 20'000;
constexpr std::size_t kShownLineBytes = 2'000;

enum Column { kTimeColumn, kReasonColumn, kNameColumn, kSizeColumn, kColumns };

/// What people read in a content: without its formatting, as UTF-8.
std::string ReadableText(DocumentKind kind, std::string content) {
  if (kind != DocumentKind::Rtf) return DecodeText(std::move(content)).text;
  std::string text;
  rtf::WriteRtfAsText(rtf::ReadRtf(content, BytesToUtf8), [&text](std::string_view part) {
    text.append(part);
    return true;
  });
  return text;
}

/// Line by line with a mark in front; what the document has now and the version has not, and the other way round, stand
/// on a colour too.
void ShowLines(QPlainTextEdit& view, const std::vector<DiffLine>& lines) {
  constexpr std::array kMarks{u' ', u'-', u'+'};
  const QColor only_here(0, 160, 0, 60), only_now(200, 0, 0, 60);
  view.clear();
  QTextCursor cursor(view.document());
  cursor.beginEditBlock();
  for (std::size_t index = 0; index < lines.size(); ++index) {
    if (index == kShownLines) {
      cursor.insertText(QObject::tr("… %1 more lines").arg(QLocale().toString(lines.size() - index)));
      break;
    }
    const DiffLine& line = lines[index];
    QTextBlockFormat format;
    if (line.change == LineChange::Added) format.setBackground(only_here);
    if (line.change == LineChange::Removed) format.setBackground(only_now);
    cursor.setBlockFormat(format);
    const std::string_view shown = line.text.substr(0, kShownLineBytes);
    cursor.insertText(QString(kMarks[static_cast<std::size_t>(line.change)]) + u' ' +
                      QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size())));
    if (shown.size() < line.text.size()) cursor.insertText(u"…"_s);
    if (index + 1 < lines.size()) cursor.insertBlock();
  }
  cursor.endEditBlock();
  view.moveCursor(QTextCursor::Start);
}

QString NameOf(const ContentOrigin& origin) { return origin.path.isEmpty() ? origin.title : origin.path; }

}  // namespace

form_History::form_History(Global& global, QWidget* parent) : QDialog(parent), global_(global) {
  setObjectName(u"form_History"_s);
  setWindowTitle(tr("File History"));
  BuildControls();
  const DocumentWindow* active = global_.frame->ActiveDocument();
  if (active && !active->Slot().path.isEmpty()) cb_Scope->addItem(active->Slot().title, active->Slot().path);
  cb_Scope->addItem(tr("All files"));
  if (active && !active->Slot().path.isEmpty() && global_.history.Versions(active->Slot().path).isEmpty())
    cb_Scope->setCurrentIndex(cb_Scope->count() - 1);
  connect(cb_Scope, &QComboBox::currentIndexChanged, this, &form_History::ListVersions);
  ListVersions();
}

void form_History::BuildControls() {
  auto* scope_label = new QLabel(tr("&Versions of:"));
  cb_Scope = new QComboBox;
  cb_Scope->setObjectName(u"cb_Scope"_s);
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
  list_Versions->setColumnCount(kColumns);
  list_Versions->setHeaderLabels({tr("Time"), tr("Kept"), tr("File"), tr("Size")});
  connect(list_Versions, &QTreeWidget::currentItemChanged, this, &form_History::ShowVersion);

  lbl_Difference = new QLabel;
  lbl_Difference->setObjectName(u"lbl_Difference"_s);
  txt_Version = new QPlainTextEdit;
  txt_Version->setObjectName(u"txt_Version"_s);
  txt_Version->setAccessibleName(tr("The version's text, with the difference to now"));
  txt_Version->setReadOnly(true);
  txt_Version->setUndoRedoEnabled(false);
  txt_Version->setLineWrapMode(QPlainTextEdit::NoWrap);
  txt_Version->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* text_side = new QWidget;
  auto* text_layout = new QVBoxLayout(text_side);
  text_layout->setContentsMargins(0, 0, 0, 0);
  text_layout->addWidget(lbl_Difference);
  text_layout->addWidget(txt_Version, 1);

  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->addWidget(list_Versions);
  splitter->addWidget(text_side);
  splitter->setStretchFactor(0, 2);
  splitter->setStretchFactor(1, 3);
  splitter->setChildrenCollapsible(false);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  const auto add = [&](const QString& name, const QString& caption, const QString& tip, void (form_History::*click)()) {
    auto* button = buttons->addButton(caption, QDialogButtonBox::ActionRole);
    button->setObjectName(name);
    button->setToolTip(tip);
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
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(scope);
  layout->addWidget(splitter, 1);
  layout->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 36);
}

void form_History::ListVersions() {
  const QVariant path = cb_Scope->currentData();
  versions_ = path.isValid() ? global_.history.Versions(path.toString()) : global_.history.Versions();
  list_Versions->clear();
  for (const KeptVersion& version : versions_) {
    auto* item = new QTreeWidgetItem(list_Versions);
    item->setText(kTimeColumn, QLocale().toString(version.time.toLocalTime(), QLocale::ShortFormat));
    item->setToolTip(kTimeColumn, QLocale().toString(version.time.toLocalTime(), QLocale::LongFormat));
    item->setText(kReasonColumn, ReasonText(version.reason));
    item->setText(kNameColumn, version.origin.title);
    item->setToolTip(kNameColumn, NameOf(version.origin));
    item->setText(kSizeColumn, QLocale().formattedDataSize(version.bytes));
    item->setTextAlignment(kSizeColumn, Qt::AlignRight | Qt::AlignVCenter);
  }
  for (int column = 0; column < kColumns; ++column) list_Versions->resizeColumnToContents(column);
  list_Versions->setCurrentItem(list_Versions->topLevelItem(0));
  if (versions_.isEmpty()) ShowVersion();
}

const KeptVersion* form_History::Selected() const {
  const int row = list_Versions->indexOfTopLevelItem(list_Versions->currentItem());
  return row < 0 ? nullptr : &versions_[row];
}

DocumentWindow* form_History::WindowOf(const KeptVersion& version) const {
  DocumentWindow* found = nullptr;
  global_.documents.ForEach([&](DocumentSlot& slot) {
    const bool same = !version.origin.path.isEmpty() && slot.path == version.origin.path;
    if (same && slot.window->Kind() == version.origin.kind && !slot.window->Tag().isEmpty()) found = slot.window;
  });
  return found;
}

void form_History::ShowVersion() {
  const KeptVersion* version = Selected();
  for (QPushButton* button : {cmd_OpenAsNew, cmd_SaveCopy}) button->setEnabled(version != nullptr);
  cmd_Restore->setEnabled(version && !version->origin.path.isEmpty());
  txt_Version->clear();
  if (!version) {
    lbl_Difference->setText(
        tr("Nothing is kept yet. The content of a file is kept before a save replaces it, and that of "
           "a document that is closed without saving."));
    lbl_Difference->setWordWrap(true);
    return;
  }
  const Hourglass hourglass;
  const std::optional<std::string> content = global_.history.Content(version->digest);
  if (!content) {
    lbl_Difference->setText(tr("This version can no longer be read."));
    return;
  }
  const std::string text = ReadableText(version->origin.kind, *content);
  DocumentWindow* window = WindowOf(*version);
  std::string now;
  bool has_now = window != nullptr;
  if (window)
    now = window->Content();
  else if (!version->origin.path.isEmpty())
    has_now = !ReadFileBytes(FilePath(version->origin.path), now);
  if (!has_now) {
    lbl_Difference->setText(tr("The version's text. There is no document or file to compare it with."));
    ShowLines(*txt_Version, DiffLines(text, text));
    return;
  }
  const std::string now_text = ReadableText(version->origin.kind, std::move(now));
  const std::vector<DiffLine> lines = DiffLines(now_text, text);
  const auto count = [&lines](LineChange change) {
    return std::count_if(lines.begin(), lines.end(), [change](const DiffLine& line) { return line.change == change; });
  };
  const qint64 added = count(LineChange::Added), removed = count(LineChange::Removed);
  lbl_Difference->setText(added == 0 && removed == 0
                              ? tr("The text is the same as now.")
                              : tr("%1 lines stand only in this version (+), %2 only in what is there now (-).")
                                    .arg(QLocale().toString(added), QLocale().toString(removed)));
  ShowLines(*txt_Version, lines);
}

std::optional<std::string> form_History::SelectedContent() {
  std::optional<std::string> content = global_.history.Content(Selected()->digest);
  if (!content)
    global_.dialogs.MsgBox(
        tr("This version can no longer be read: its file in %1 is gone or damaged.").arg(global_.history.Folder()),
        MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  return content;
}

void form_History::cmd_OpenAsNew_Click() {
  std::optional<std::string> content = SelectedContent();
  if (!content) return;
  if (DocumentWindow* window = NewDocument(global_, TraitsOf(Selected()->origin.kind).slot_code))
    window->PutContent(std::move(*content));
  accept();
}

void form_History::cmd_SaveCopy_Click() {
  const std::optional<std::string> content = SelectedContent();
  if (!content) return;
  const KeptVersion& version = *Selected();
  const QString ending = u'.' + QString::fromLatin1(TraitsOf(version.origin.kind).name);
  CommonDialog& dialog = global_.common_dialog;
  dialog.title = tr("Save a Copy");
  dialog.filter = tr("All Files") + u"|*.*"_s;
  const int filter_index = std::exchange(dialog.filter_index, 1);
  dialog.default_ext = ending;
  dialog.init_dir = LastSaveFolder(global_.registry);
  dialog.file_name = QFileInfo(version.origin.title).completeBaseName() + tr(" (kept)") + ending;
  const QString path = dialog.ShowSave();
  dialog.filter_index = filter_index;  // what a rich-text save writes goes by it
  if (path.isEmpty()) return;
  if (QFileInfo::exists(path) && global_.dialogs.MsgBox(tr("Overwrite existing file?"), MsgButtons::YesNoCancel,
                                                        MsgIcon::Question, tr("File Exists")) != MsgAnswer::Yes)
    return;
  // What the copy replaces is kept, too.
  auto failure = global_.history.KeepFile({version.origin.kind, path, QFileInfo(path).fileName()});
  if (!failure) failure = WriteFileBytes(FilePath(path), *content);
  if (failure)
    global_.dialogs.MsgBox(tr("The copy could not be written to %1: %2.  The file on disk is unchanged.")
                               .arg(path, QString::fromStdString(failure->reason)),
                           MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void form_History::cmd_Restore_Click() {
  std::optional<std::string> content = SelectedContent();
  if (!content) return;
  const KeptVersion version = *Selected();
  DocumentWindow* window = WindowOf(version);
  const KindTraits& traits = TraitsOf(version.origin.kind);
  const int slot = global_.documents.FindFreeSlot(static_cast<int>(traits.slot_code));
  if (!window && slot < 0) return ShowNoFreeSlot(global_, QString::fromLatin1(traits.message_name));
  const auto failure = window ? global_.history.Keep(version.origin, KeptReason::BeforeRestore, window->Content())
                              : global_.history.KeepFile(version.origin, KeptReason::BeforeRestore);
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
    global_.documents.At(version.origin.kind, slot).window->ShowKept(version.origin, std::move(*content));
  ListVersions();
}

}  // namespace tme
