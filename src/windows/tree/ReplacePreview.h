#pragma once

#include <QAbstractTableModel>
#include <QDialog>
#include <vector>

#include "windows/tree/HitMarks.h"
#include "windows/tree/Replacer.h"

class QLabel;
class QPushButton;
class QTreeView;

namespace tme {

class TreeDocumentWindow;

/// A replacement that the user may leave out.
struct PlannedReplacement {
  TreeDocumentWindow* window;
  Replacement replacement;
  bool is_chosen;
};

/// Planned replacements, a row each: what the texts are and what they become. Those that are refused cannot be chosen.
class ReplacementModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { Name, Path, Before, After, Reason, Document, ColumnCount };

  /// plans: outlive it.
  ReplacementModel(std::vector<PlannedReplacement>& plans, QObject* parent);

  void ChooseAll(bool is_chosen);
  std::size_t ChosenCount() const;
  std::size_t RefusedCount() const;
  bool HasManyDocuments() const;
  /// Refuses those of the chosen ones that collide as others are left out. Returns whether there are any.
  bool RefuseCollisions();
  /// What differs between before and after.
  std::vector<MarkedRange> MarksOf(const QModelIndex& index) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : ColumnCount; }
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString TextAt(const PlannedReplacement& plan, int column) const;

  std::vector<PlannedReplacement>& plans_;
};

/// Shows planned replacements and lets the user choose among them; accepted when they are to be done.
class ReplacePreview : public QDialog {
  Q_OBJECT

 public:
  /// plans: outlive it; the user's choice is put there.
  ReplacePreview(std::vector<PlannedReplacement>& plans, QWidget* parent);

  /// Stays with what collides now, for the user to see.
  void accept() override;

 private:
  QTreeView* BuildList();
  void ShowColumns();
  void ShowCount();

  ReplacementModel* const rows_;
  QTreeView* const list_;
  QLabel* const count_;
  QPushButton* replace_ = nullptr;
};

}  // namespace tme
