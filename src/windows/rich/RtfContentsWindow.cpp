#include "windows/rich/RtfContentsWindow.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
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
constexpr int kWhatWidth = 55, kWhereWidth = 55, kSizeWidth = 14, kLines = 24;
constexpr double kShareOfScreen = 0.9;

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
  const int character = fontMetrics().averageCharWidth();
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(kWhere, QHeaderView::Stretch);
  list_->setColumnWidth(kWhat, kWhatWidth * character);
  list_->setColumnWidth(kSize, kSizeWidth * character);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QPushButton* copy = buttons->addButton(tr("&Copy as Text"), QDialogButtonBox::ActionRole);
  copy->setObjectName(u"cmd_Copy"_s);
  connect(copy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(Text()); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(note);
  rows->addWidget(list_, 1);
  rows->addWidget(buttons);
  const QSize wanted((kWhatWidth + kWhereWidth + kSizeWidth) * character, kLines * fontMetrics().lineSpacing());
  resize(wanted.boundedTo(screen()->availableSize() * kShareOfScreen));
}

void RtfContentsWindow::AddParts(const rtf::Contents& contents) {
  QTreeWidgetItem* heading = nullptr;
  const rtf::Part* before = nullptr;
  for (const rtf::Part& part : contents.parts) {
    if (before == nullptr || before->kind != part.kind)
      heading = AddHeading(RtfPartText::Heading(part.kind), contents.totals[static_cast<std::size_t>(part.kind)]);
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
      {tr("Fields of all kinds"), contents.fields},
      {tr("Bookmarks"), contents.bookmarks},
      {tr("Bytes behind the end of the document"), contents.bytes_behind_end}};
  QTreeWidgetItem* heading = nullptr;
  for (const auto& [what, count] : counts) {
    if (count == 0) continue;
    if (heading == nullptr) heading = AddHeading(tr("How many"), 0);
    AddRow(*heading, what, {}, QLocale().toString(static_cast<qulonglong>(count)));
  }
}

QTreeWidgetItem* RtfContentsWindow::AddHeading(const QString& text, std::uint64_t count) {
  const QString number = QLocale().toString(static_cast<qulonglong>(count));
  auto* heading = new QTreeWidgetItem(list_, {count > 0 ? tr("%1 (%2)").arg(text, number) : text});
  heading->setFirstColumnSpanned(true);
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

QString RtfContentsWindow::Text() const {
  QString text;
  for (QTreeWidgetItemIterator it(list_); *it; ++it) {
    const QString indent = (*it)->parent() ? u"\t"_s : QString();
    QStringList columns{indent + (*it)->text(kWhat)};
    for (const int column : {kWhere, kSize})
      if (!(*it)->text(column).isEmpty()) columns.append((*it)->text(column));
    text += columns.join(u'\t') + u'\n';
  }
  return text;
}

}  // namespace tme
