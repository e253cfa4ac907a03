#pragma once

#include <QModelIndex>
#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "documents/search/TreeSearch.h"
#include "windows/tree/Replacer.h"

class QAbstractItemView;

namespace tme {

class EditableDocument;

/// What a window with a tree gives to a search: its document, and its views as far as a search is concerned.
class SearchTarget {
 public:
  struct Field {
    SearchField field;
    QString caption;
  };
  /// A part of what a view shows for an index.
  struct ShownField {
    SearchField field;
    std::string text;
    /// What stands before it, in UTF-16 units.
    qsizetype units_before = 0;
    /// Bytes at its start that the view does not show.
    std::size_t hidden = 0;
  };
  /// A place in the words of the document, not cut.
  struct Row {
    std::string name;
    std::string path;
    std::string data;
  };

  virtual ~SearchTarget() = default;

  virtual std::vector<Field> Fields() const = 0;
  /// It must go before the document does.
  virtual std::unique_ptr<SearchSource> MakeSource() const = 0;
  virtual std::unique_ptr<Replacer> MakeReplacer() = 0;
  virtual EditableDocument& Edited() = 0;

  virtual std::string TextOf(const SearchPlace& place, SearchField field) const = 0;
  virtual Row RowOf(const SearchPlace& place) const = 0;

  /// The views that show the places.
  virtual std::vector<QAbstractItemView*> Views() const = 0;
  /// index: of one of these views. matcher: what is sought in the texts.
  virtual std::vector<ShownField> ShownAt(const QModelIndex& index, const TextMatcher& matcher) const = 0;
  virtual SearchPlace Selected() const = 0;
  /// Selects a place and brings it in sight, wherever the focus is.
  virtual void GoTo(const SearchPlace& place) = 0;
  /// Gives the focus to the view that shows what is selected.
  virtual void FocusSelected() = 0;
};

/// Whether a list shows this field as the name of its place, or else as its data.
constexpr bool IsName(SearchField field) { return field != SearchField::Value && field != SearchField::Data; }

}  // namespace tme
