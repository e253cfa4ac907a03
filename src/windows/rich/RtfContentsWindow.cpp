#include "windows/rich/RtfContentsWindow.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/PlainText.h"
#include "windows/rich/RtfPartText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

enum Column : std::uint8_t { kWhat, kWhere, kSize };
// Characters of the window's font.
constexpr int kLeastWhatWidth = 40, kWindowWidth = 170, kLines = 34, kDetailLines = 4;
constexpr double kShareOfScreen = 0.9, kMostWhatShare = 0.6;
constexpr int kMeaningRole = Qt::UserRole;

}  // namespace

RtfContentsWindow::RtfContentsWindow(const rtf::Contents& contents, const QString& title, QWidget* parent)
    : QDialog(parent) {
  setObjectName(u"RtfContentsWindow"_s);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(CaptionText(tr("What %1 Contains").arg(title)));
  setSizeGripEnabled(true);
  BuildControls(contents, title);
  AddParts(contents);
  AddCounts(contents);
  if (list_->topLevelItemCount() == 0) AddHeading(tr("Nothing but text"), 0);
  list_->expandAll();
  FitColumns();
  list_->setCurrentItem(list_->topLevelItem(0));
  list_->setFocus();
}

void RtfContentsWindow::BuildControls(const rtf::Contents& contents, const QString& title) {
  QString sentence = tr("Nothing that stands here is run, loaded or fetched by this editor. Other programs may do so.");
  if (std::ranges::any_of(contents.totals, [](std::uint64_t total) { return total > rtf::kMaxParts; }))
    sentence += u' ' + tr("Of each kind, the first %1 are listed.").arg(QLocale().toString(rtf::kMaxParts));
  QLabel* note = PlainLabel(sentence);
  note->setWordWrap(true);
  list_ = new QTreeWidget;
  list_->setObjectName(u"list_Contents"_s);
  list_->setAccessibleName(tr("What %1 contains").arg(title));
  list_->setHeaderLabels({tr("What"), tr("Where It Leads, What Is in It"), tr("Size")});
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->header()->setStretchLastSection(false);
  connect(list_, &QTreeWidget::currentItemChanged, this, &RtfContentsWindow::ShowDetails);
  list_->installEventFilter(this);
  details_ = new QPlainTextEdit;
  details_->setObjectName(u"text_Details"_s);
  details_->setAccessibleName(tr("The selected row in full"));
  details_->setReadOnly(true);
  details_->setTabChangesFocus(true);
  details_->setFixedHeight(kDetailLines * fontMetrics().lineSpacing() + 2 * details_->frameWidth() +
                           static_cast<int>(2 * details_->document()->documentMargin()));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QPushButton* copy = buttons->addButton(tr("&Copy All as Text"), QDialogButtonBox::ActionRole);
  copy->setObjectName(u"cmd_Copy"_s);
  connect(copy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(Text()); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(note);
  rows->addWidget(list_, 1);
  rows->addWidget(details_);
  rows->addWidget(buttons);
  const QSize wanted(kWindowWidth * fontMetrics().averageCharWidth(), kLines * fontMetrics().lineSpacing());
  resize(wanted.boundedTo(screen()->availableSize() * kShareOfScreen));
}

void RtfContentsWindow::AddParts(const rtf::Contents& contents) {
  QTreeWidgetItem* heading = nullptr;
  const rtf::Part* before = nullptr;
  for (const rtf::Part& part : contents.parts) {
    if (before == nullptr || before->kind != part.kind)
      heading = AddHeading(RtfPartText::Heading(part.kind), contents.totals[static_cast<std::size_t>(part.kind)],
                           RtfPartText::Meaning(part.kind));
    AddRow(*heading, RtfPartText::What(part), RtfPartText::Where(part), RtfPartText::Size(part));
    before = &part;
  }
}

void RtfContentsWindow::AddCounts(const rtf::Contents& contents) {
  const std::pair<QString, std::uint64_t> counts[] = {
      {tr("Headers"), contents.headers},
      {tr("Footers"), contents.footers},
      {tr("Footnotes"), contents.footnotes},
      {tr("Endnotes"), contents.endnotes},
      {tr("Comments"), contents.comments},
      {tr("Tracked insertions"), contents.insertions},
      {tr("Tracked deletions"), contents.deletions},
      {tr("Formulas"), contents.formulas},
      {tr("Drawings and text boxes"), contents.drawings},
      {tr("Fields of all kinds"), contents.fields},
      {tr("Bookmarks"), contents.bookmarks},
      {tr("Entries of indexes and contents"), contents.index_entries},
      {tr("Bytes behind the end of the document"), contents.bytes_behind_end}};
  QTreeWidgetItem* heading = nullptr;
  for (const auto& [what, count] : counts) {
    if (count == 0) continue;
    if (heading == nullptr) heading = AddHeading(tr("How many"), 0);
    AddRow(*heading, what, {}, QLocale().toString(static_cast<qulonglong>(count)));
  }
}

QTreeWidgetItem* RtfContentsWindow::AddHeading(const QString& text, std::uint64_t count, const QString& meaning) {
  const QString number = QLocale().toString(static_cast<qulonglong>(count));
  auto* heading = new QTreeWidgetItem(list_, {count > 0 ? tr("%1 (%2)").arg(text, number) : text});
  heading->setFirstColumnSpanned(true);
  heading->setData(kWhat, kMeaningRole, meaning);
  QFont font = heading->font(kWhat);
  font.setBold(true);
  heading->setFont(kWhat, font);
  return heading;
}

void RtfContentsWindow::AddRow(QTreeWidgetItem& heading, const QString& what, const QString& where,
                               const QString& size) {
  auto* row = new QTreeWidgetItem(&heading, {what, where, size});
  row->setTextAlignment(kSize, Qt::AlignRight);
  SetItemTip(*row, kWhat, what);
  if (!where.isEmpty()) SetItemTip(*row, kWhere, where);
}

/// What stands in a column says how wide it is, within bounds; where it leads has the rest.
void RtfContentsWindow::FitColumns() {
  const int character = fontMetrics().averageCharWidth();
  for (const Column column : {kWhat, kSize}) {
    list_->resizeColumnToContents(column);
    list_->setColumnWidth(column, list_->columnWidth(column) + 2 * character);
  }
  const int most = static_cast<int>(width() * kMostWhatShare);
  list_->setColumnWidth(kWhat,
                        std::clamp(list_->columnWidth(kWhat), std::min(kLeastWhatWidth * character, most), most));
  list_->header()->setSectionResizeMode(kWhere, QHeaderView::Stretch);
}

/// The list itself would copy a single column.
bool RtfContentsWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool is_key = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
  if (watched != list_ || !is_key || !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    return QDialog::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) QGuiApplication::clipboard()->setText(SelectedText());
  event->accept();
  return true;
}

void RtfContentsWindow::ShowDetails() {
  QStringList texts;
  const QTreeWidgetItem* row = list_->currentItem();
  for (const int column : {kWhat, kWhere, kSize})
    if (row && !row->text(column).isEmpty()) texts.append(row->text(column));
  if (row && !row->data(kWhat, kMeaningRole).toString().isEmpty())
    texts.append(row->data(kWhat, kMeaningRole).toString());
  details_->setPlainText(texts.join(u'\n'));
}

QString RtfContentsWindow::LineOf(const QTreeWidgetItem& row) {
  const QString indent = row.parent() ? u"\t"_s : QString();
  QStringList columns{indent + row.text(kWhat)};
  for (const int column : {kWhere, kSize})
    if (!row.text(column).isEmpty()) columns.append(row.text(column));
  return columns.join(u'\t') + u'\n';
}

QString RtfContentsWindow::Text() const {
  QString text;
  for (QTreeWidgetItemIterator it(list_); *it; ++it) text += LineOf(**it);
  return text;
}

QString RtfContentsWindow::SelectedText() const {
  QString text;
  for (QTreeWidgetItemIterator it(list_, QTreeWidgetItemIterator::Selected); *it; ++it) text += LineOf(**it);
  return text;
}

}  // namespace tme
