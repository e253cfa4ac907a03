#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QCheckBox;
class QHBoxLayout;
class QKeySequence;
class QLabel;
class QPushButton;

namespace tme {

class DifferenceView;
enum class ComparedBy : std::uint8_t;
struct VersionComparison;

/// The lines of a comparison, all of them or the differences only, under a sentence about it and with the way from
/// difference to difference.
class ComparisonPane : public QWidget {
  Q_OBJECT

 public:
  /// text_name: of the lines, for screen readers.
  explicit ComparisonPane(const QString& text_name, QWidget* parent = nullptr);

  /// Replaces the lines; null shows none.
  void Show(std::shared_ptr<const VersionComparison> comparison);
  void Say(const QString& sentence);
  /// Both, and whether lines are too long to be shown whole.
  void ShowAndSay(std::shared_ptr<const VersionComparison> comparison, const QString& sentence);
  /// What is compared, which the user chooses. structured: whether the content has more than lines.
  ComparedBy By() const;
  void SetBy(ComparedBy by);
  void OfferStructure(bool structured);
  /// What takes the focus, in its order.
  QList<QWidget*> TabOrder() const;

 signals:
  /// The user has chosen.
  void ByChanged();

 private:
  QPushButton* AddWay(QHBoxLayout& row, const QString& name, const QString& caption, const QKeySequence& key,
                      void (DifferenceView::*go)());
  void ShowLines();
  void ShowPlace();

  std::shared_ptr<const VersionComparison> comparison_;
  QLabel* lbl_Difference;
  QLabel* lbl_Place;
  QCheckBox* chk_ByStructure;
  QCheckBox* chk_DifferencesOnly;
  QPushButton* cmd_Previous = nullptr;
  QPushButton* cmd_Next = nullptr;
  DifferenceView* txt_Version;
};

}  // namespace tme
