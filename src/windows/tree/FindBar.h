#pragma once

#include <QFrame>

#include "windows/tree/TreeFinder.h"

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace tme {

class FlowLayout;

/// The slim bar at the bottom of a tree window in which a text is sought while it is typed.
class FindBar : public QFrame {
  Q_OBJECT

 public:
  FindBar(TreeFinder& finder, const std::vector<SearchTarget::Field>& fields, QWidget* parent);

  /// Shows the bar with this query, and searches. Where it is shown already the query stays.
  void Open(const FindQuery& query);
  /// The same with the query of another document's bar, whatever it showed.
  void OpenWith(const FindBar& other);
  /// The focus into the text, all of it selected.
  void FocusText();
  /// As the list is shown or not.
  void SetListChecked(bool is_checked);
  /// Shows the row for replacing, with the focus in what is empty of the two texts.
  void ShowReplace();
  QString ReplaceText() const;
  /// What is undone next is of the document, and not what was typed here.
  void ForgetTyping();
  /// Why something was not done; empty for nothing.
  void Say(const QString& reason);

 signals:
  void NextWanted();
  void PreviousWanted();
  void ListWanted(bool is_wanted);
  /// The focus into the list.
  void ListFocusWanted();
  void CloseWanted();
  void ReplaceWanted();
  void ReplaceAllWanted();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void BuildText();
  void BuildReplaceRow();
  QToolButton* AddButton(const char* name, const QString& caption, const QString& accessible_name, const QString& tip);
  QToolButton* AddToggle(const char* name, const QString& caption, const QString& accessible_name, const QString& tip);
  void AddLookIn(const std::vector<SearchTarget::Field>& fields);
  void AddScopes(QMenu& menu);
  void ChangeQuery();
  void ShowQuery(const FindQuery& query);
  /// The count, or what is wrong with the expression.
  void ShowState();
  QString CountText() const;

  TreeFinder& finder_;
  FlowLayout* const row_;
  QLineEdit* const text_;
  QToolButton* match_case_ = nullptr;
  QToolButton* whole_word_ = nullptr;
  QToolButton* pattern_ = nullptr;
  QToolButton* list_ = nullptr;
  QLabel* count_ = nullptr;
  QLabel* error_ = nullptr;
  QWidget* replace_row_ = nullptr;
  QLineEdit* replace_text_ = nullptr;
  struct FieldAction {
    SearchField field;
    QAction* action;
  };
  std::vector<FieldAction> fields_;
  QAction* all_documents_ = nullptr;
  QAction* this_document_ = nullptr;
  bool is_showing_ = false;
};

}  // namespace tme
