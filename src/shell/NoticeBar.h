#pragma once

#include <QFrame>
#include <cstdint>
#include <functional>
#include <vector>

class QBoxLayout;
class QLabel;
class QScrollArea;
class QToolButton;

namespace tme {

/// A button of a notice: its caption, and what a click does.
struct NoticeAction {
  QString caption;
  std::function<void()> run;
};

/// How long a notice stays, unless the user puts it away.
enum class NoticeLife : std::uint8_t { UntilSave, Document };

/// The slim bar at the top of a document window that says what the user should know and need not answer. Hidden while
/// it has nothing to say; the user can put it away. It shows three lines at most, and the rest at a click on "more…".
class NoticeBar : public QFrame {
  Q_OBJECT

 public:
  explicit NoticeBar(QWidget* parent);

  struct Notice {
    QString sentence;
    std::vector<NoticeAction> actions{};
    NoticeLife life{};
  };

  /// Adds a sentence and its buttons to what stands there and shows the bar. A sentence that stands there already is
  /// not said twice, and of two buttons with one caption the later one counts. An empty sentence is ignored with its
  /// buttons.
  void Add(const QString& sentence, std::vector<NoticeAction> actions = {}, NoticeLife life = {});
  /// Takes a sentence away that no longer holds; the bar hides with the last one. Buttons stay until then.
  void Remove(const QString& sentence);
  /// Takes sentences and buttons away and hides the bar.
  void Clear();
  /// The document was saved: takes away what was about it before.
  void EndUntilSave();
  const std::vector<Notice>& Notices() const { return notices_; }
  QString Text() const;
  /// Puts the focus on the first button that shows, since areas that take the Tab leave no other way to it. False when
  /// there is none.
  bool FocusFirst();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void BuildText();
  void BuildButtons();
  void AddButton(NoticeAction action);
  /// Gives the text its height and the buttons their place for the width there is.
  void Arrange();

  std::vector<Notice> notices_;
  QLabel* label_;
  QScrollArea* area_;
  QToolButton* more_;
  QWidget* buttons_;
  QBoxLayout* rows_;
  bool is_expanded_ = false;
};

}  // namespace tme
