#pragma once

#include <QDialog>

#include "windows/history/LatestComparison.h"

class QGridLayout;
class QLineEdit;
class QPushButton;

namespace tme {

class ComparisonPane;
struct ComparedFile;
struct Global;

/// Two files side by side, of which a document may hold one: what differs, by lines or by structure.
class form_Compare : public QDialog {
  Q_OBJECT

 public:
  /// The first file is that of the active document if it has one.
  explicit form_Compare(Global& global, QWidget* parent = nullptr);

  /// Remembers what is compared for the next time.
  void done(int result) override;

 private:
  void BuildControls();
  QLineEdit* AddFile(QGridLayout& files, const QString& caption, const QString& name, const QString& browse_caption);
  void Browse(QLineEdit& file);
  void PathChanged();
  void Compare();
  ComparedFile FileIn(const QLineEdit& file) const;

  Global& global_;
  QLineEdit* txt_First = nullptr;
  QLineEdit* txt_Second = nullptr;
  QPushButton* cmd_Compare = nullptr;
  ComparisonPane* pane_ = nullptr;
  QList<QWidget*> order_;  ///< of the focus
  LatestComparison comparing_;
};

}  // namespace tme
