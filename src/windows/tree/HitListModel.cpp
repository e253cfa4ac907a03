#include "windows/tree/HitListModel.h"

#include <algorithm>
#include <array>

#include "base/Utf8.h"
#include "shell/DisplayText.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// A view goes over all its rows when some come.
constexpr qint64 kBetweenRows = 100;  // milliseconds
/// What is shown before a hit, so that it is in sight in a narrow column.
constexpr std::size_t kBytesBefore = 24;

struct Excerpt {
  QString text;
  MarkedRange mark;
};

Excerpt ExcerptOf(std::string_view text, const SearchHit& hit) {
  const std::size_t hit_start = std::min<std::size_t>(hit.start, text.size());
  const std::size_t start = hit_start <= kBytesBefore ? 0 : utf8::CharacterStart(text, hit_start - kBytesBefore);
  const QString ellipsis = start > 0 ? u"…"_s : QString();
  const QString before = ellipsis + DisplayText(text.substr(start, hit_start - start));
  return {ellipsis + DisplayText(text.substr(start)),
          {before.size(), DisplayText(text.substr(hit_start, hit.size)).size()}};
}

}  // namespace

HitListModel::HitListModel(TreeFinder& finder, QObject* parent) : QAbstractTableModel(parent), finder_(finder) {
  connect(&finder_, &TreeFinder::Restarted, this, &HitListModel::Empty);
  connect(&finder_, &TreeFinder::Progressed, this, &HitListModel::Follow);
  Follow();
}

void HitListModel::Empty() {
  shown_.row = -1;
  since_followed_.invalidate();
  if (row_count_ == 0) return;
  beginResetModel();
  row_count_ = 0;
  endResetModel();
}

void HitListModel::Follow() {
  if (finder_.IsSearching() && since_followed_.isValid() && since_followed_.elapsed() < kBetweenRows) return;
  const int count = static_cast<int>(std::min<std::size_t>(finder_.FoundCount(), INT_MAX));
  if (count == row_count_) return;
  since_followed_.start();
  shown_.row = -1;
  // Those of several documents may come in between.
  if (finder_.DocumentCount() > 1) {
    beginResetModel();
    row_count_ = count;
    endResetModel();
  } else {
    beginInsertRows({}, row_count_, count - 1);
    row_count_ = count;
    endInsertRows();
  }
}

const HitListModel::ShownRow& HitListModel::Shown(int row) const {
  if (shown_.row == row) return shown_;
  const TreeFinder::Found found = finder_.At(static_cast<std::size_t>(row));
  const SearchTarget& target = found.window->Searchable();
  const SearchPlace place = found.hit.Place();
  const SearchTarget::Row shown = target.RowOf(place);
  shown_.row = row;
  shown_.texts[Name] = DisplayText(shown.name);
  shown_.texts[Path] = DisplayText(shown.path);
  shown_.texts[Data] = DisplayText(shown.data);
  shown_.texts[Document] = DisplayText(found.window->File().Title().toStdString());
  const Excerpt excerpt = ExcerptOf(target.TextOf(place, found.hit.field), found.hit);
  shown_.hit_column = IsName(found.hit.field) ? Name : Data;
  shown_.texts[shown_.hit_column] = excerpt.text;
  shown_.mark = excerpt.mark;
  return shown_;
}

std::vector<MarkedRange> HitListModel::MarksOf(const QModelIndex& index) const {
  const ShownRow& shown = Shown(index.row());
  if (index.column() != shown.hit_column) return {};
  return {shown.mark};
}

QVariant HitListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  return Shown(index.row()).texts[index.column()];
}

QVariant HitListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return std::array{tr("Name"), tr("Path"), tr("Data"), tr("Document")}.at(static_cast<std::size_t>(section));
}

}  // namespace tme
