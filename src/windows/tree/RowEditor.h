#pragma once

#include <QPersistentModelIndex>
#include <functional>

#include "windows/tree/HitMarks.h"

class QLineEdit;

namespace tme {

/// The delegate of the views of a tree window: edits the text of a row in the row. Enter takes what was typed and
/// Escape gives it up. What cannot be taken is said beside the row, which goes on being edited; when the keys go
/// elsewhere the old text comes back.
class RowEditor : public HitMarks {
  Q_OBJECT

 public:
  struct Texts {
    /// What the editor begins with.
    std::function<QString(const QModelIndex&)> shown;
    /// How many characters of it are selected at first; all where this is empty.
    std::function<qsizetype(const QModelIndex&)> selected = {};
    /// Takes another text. Gives the reason where it cannot be taken; the document stays as it is then.
    std::function<QString(const QModelIndex&, const QString&)> take;
  };
  /// accessible_name: of the field.
  RowEditor(QString accessible_name, Texts texts, QObject* parent);

  /// Takes what is being typed in a row of a window, as if the keys went elsewhere.
  static void Finish(QWidget& window);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// False after the reason was said.
  bool Take(QLineEdit& box, const QModelIndex& index) const;

  const QString accessible_name_;
  const Texts texts_;
  /// The row that is edited.
  mutable QPersistentModelIndex edited_;
};

}  // namespace tme
