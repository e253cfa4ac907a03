#include "windows/history/VersionList.h"

#include <QCoreApplication>
#include <QDir>
#include <QHeaderView>
#include <QLocale>
#include <array>

#include "shell/DisplayText.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

enum Column { kTimeColumn, kReasonColumn, kNameColumn, kSizeColumn, kColumns };
constexpr int kIndexRole = Qt::UserRole;     ///< place in versions_, newest first
constexpr int kSortRole = Qt::UserRole + 1;  ///< a number, where the text is none to sort by

QString ReasonText(KeptReason reason) {
  constexpr std::array kTexts{
      QT_TRANSLATE_NOOP("KeptReason", "Before a save"), QT_TRANSLATE_NOOP("KeptReason", "Closed without saving"),
      QT_TRANSLATE_NOOP("KeptReason", "Before a restore"), QT_TRANSLATE_NOOP("KeptReason", "Rescued after a crash")};
  return QCoreApplication::translate("KeptReason", kTexts[static_cast<std::size_t>(reason)]);
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

}  // namespace

QString ShownName(const ContentOrigin& origin) {
  return origin.path.isEmpty() ? origin.title : QDir::toNativeSeparators(origin.path);
}

QString ShownTime(const QDateTime& time) {
  const QLocale locale;
  QString form = locale.timeFormat(QLocale::ShortFormat);
  if (!form.contains(u"ss"_s)) form.replace(u"mm"_s, u"mm:ss"_s);
  const QDateTime local = time.toLocalTime();
  return locale.toString(local.date(), QLocale::ShortFormat) + u' ' + locale.toString(local.time(), form);
}

VersionList::VersionList(QWidget* parent) : QTreeWidget(parent) {
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setAllColumnsShowFocus(true);
  setTextElideMode(Qt::ElideMiddle);
  setColumnCount(kColumns);
  setHeaderLabels({tr("Time"), tr("Kept"), tr("File"), tr("Size")});
  headerItem()->setTextAlignment(kSizeColumn, Qt::AlignRight | Qt::AlignVCenter);
  header()->setStretchLastSection(false);
  sortByColumn(kTimeColumn, Qt::DescendingOrder);
}

void VersionList::List(QList<KeptVersion> versions, Of of, const QString& current_id) {
  const QSignalBlocker silent(this);
  versions_ = std::move(versions);
  clear();
  setSortingEnabled(false);
  QTreeWidgetItem* current = nullptr;
  for (int index = 0; index < static_cast<int>(versions_.size()); ++index) {
    AddRow(index);
    if (versions_[index].id == current_id) current = topLevelItem(index);
  }
  setSortingEnabled(true);
  FitColumns(of);
  if (!current) current = topLevelItem(0);
  setCurrentItem(current);
  if (current) scrollToItem(current);
}

void VersionList::AddRow(int index) {
  const KeptVersion& version = versions_[index];
  auto* item = new VersionItem(this);
  item->setData(kTimeColumn, kIndexRole, index);
  item->setText(kTimeColumn, ShownTime(version.time));
  item->setData(kTimeColumn, kSortRole, version.time.toMSecsSinceEpoch());
  SetItemTip(*item, kTimeColumn, QLocale().toString(version.time.toLocalTime(), QLocale::LongFormat));
  item->setText(kReasonColumn, ReasonText(version.reason));
  item->setText(kNameColumn, ShownName(version.origin));
  SetItemTip(*item, kNameColumn, ShownName(version.origin));
  item->setText(kSizeColumn, QLocale().formattedDataSize(version.bytes));
  item->setData(kSizeColumn, kSortRole, version.bytes);
  SetItemTip(*item, kSizeColumn, Counted(static_cast<std::uint64_t>(version.bytes), tr("1 byte"), tr("%1 bytes")));
  item->setTextAlignment(kSizeColumn, Qt::AlignRight | Qt::AlignVCenter);
}

void VersionList::FitColumns(Of of) {
  setColumnHidden(kNameColumn, of == Of::OneFile);
  header()->setSectionResizeMode(QHeaderView::Interactive);
  for (int column = 0; column < kColumns; ++column)
    if (column != kNameColumn) resizeColumnToContents(column);
  header()->setSectionResizeMode(of == Of::OneFile ? kReasonColumn : kNameColumn, QHeaderView::Stretch);
}

const KeptVersion* VersionList::Current() const {
  const QTreeWidgetItem* item = currentItem();
  return item ? &versions_[item->data(kTimeColumn, kIndexRole).toInt()] : nullptr;
}

}  // namespace tme
