#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <optional>

#include "shell/DocumentState.h"
#include "windows/tree/SourceDocument.h"

class QSplitter;

namespace tme {

struct Global;

/// The pane with a document's source below or beside its tree, as the settings have it. It follows the document as soon
/// as the event loop turns; while it is hidden, it does nothing. What is typed there becomes an edit of the document
/// after a pause, or when the user turns to anything else.
class SourcePane : public QObject {
  Q_OBJECT

 public:
  /// splitter: holds the tree, and then the pane. All must outlive this.
  SourcePane(Global& global, QSplitter& splitter, std::unique_ptr<SourceDocument> document);
  ~SourcePane() override;

  bool IsShown() const { return view_ != nullptr; }
  /// Shows or hides the pane where the settings say.
  void ApplySettings();
  /// The document or the selection may be another one now.
  void Follow();
  /// What was typed becomes a step of the document.
  void Commit();
  bool HasFocus() const { return view_ && view_->hasFocus(); }
  bool IsEditable() const { return document_->Pieces() != nullptr; }
  /// While the text has the focus, commands of the window about a selection are its own. Returns false for any other.
  bool TakeCommand(std::string_view command) { return HasFocus() && view_->RunCommand(command); }
  /// Of the caret, as people count; null while the pane is hidden.
  std::optional<DocumentState::Place> Place() const;
  /// Goes to a line, from 1, and selects what it belongs to.
  void GoToLine(std::int64_t line);
  /// Why the line that the user is in is not understood; empty for one that is, and when he has left for the tree.
  const QString& Fault() const { return fault_; }

 signals:
  void FaultChanged();
  void PlaceChanged();
  /// The focus came or went.
  void FocusChanged();
  /// By what was typed.
  void DocumentEdited();

 protected:
  /// Of the splitter; while something is typed, of all: whatever the user does elsewhere comes after it.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show();
  void Hide();
  void FollowNow();
  void ShowSelection();
  void SelectCaretLine();
  void FindFault();
  void SetFault(const QString& fault);
  bool IsBeside() const;
  void ReadSize();
  void ApplySize();
  /// Of the tree's part, with its buttons.
  int HeightOfFewRows() const;
  void WriteSize();

  Global& global_;
  QSplitter& splitter_;
  const std::unique_ptr<SourceDocument> document_;
  /// Of the splitter; null while the pane is hidden.
  QPointer<SourceView> view_;
  /// Pixels, as the user wants them where there is room; 0: a share of the room.
  int wanted_size_ = 0;
  QTimer follow_;
  QTimer pause_;
  /// Of what is shown.
  std::optional<std::uint64_t> revision_;
  /// Whose node the caret selected.
  std::optional<PadPosition> selected_line_;
  bool is_committing_ = false;
  QString fault_;
};

}  // namespace tme
