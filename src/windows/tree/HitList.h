#pragma once

#include <QTreeView>

namespace tme {

class HitListModel;
class TreeFinder;

/// All hits of a finder. A row that becomes the current one is shown in its document; Enter and a double-click go
/// there.
class HitList : public QTreeView {
  Q_OBJECT

 public:
  HitList(TreeFinder& finder, QWidget* parent);

 signals:
  void Chosen(std::size_t hit);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  /// The columns keep their shares.
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// The row of the hit that is selected in the document.
  void Follow();
  void ShowColumns();

  TreeFinder& finder_;
  HitListModel* const rows_;
  bool is_following_ = false;
};

}  // namespace tme
