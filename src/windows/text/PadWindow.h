#pragma once

#include "shell/DocumentWindow.h"
#include "windows/text/Pad.h"

class QKeyEvent;

namespace tme {

/// What the text and the rich-text window share: the commands, the keys of and the keys of the editing area. A kind
/// brings its pad, its layout, and what it reads and writes.
class PadWindow : public DocumentWindow {
  Q_OBJECT

 public:
  using DocumentWindow::DocumentWindow;

  /// The editing area; only while the window holds a document.
  virtual Pad& EditingArea() = 0;
  int SlotNumber() const { return Tag().toInt(); }

  /// Lays out the client area; nothing while the window is minimized.
  Q_INVOKABLE virtual void ResizeForm() = 0;
  Q_INVOKABLE void SaveAs() { Save({.path = SaveRequest::Path::AskedAlways}); }
  SaveOutcome Save(const SaveRequest& request) override;
  Q_INVOKABLE void SaveFile() { Save({}); }
  void PrintDoc(QPrinter& printer) override;
  Q_INVOKABLE void EditUndo();
  Q_INVOKABLE void EditRedo();
  Q_INVOKABLE void EditCut();
  /// Empties the clipboard even when nothing is selected; intended.
  Q_INVOKABLE virtual void EditCopy();
  Q_INVOKABLE virtual void EditPaste();
  Q_INVOKABLE void EditSelectAll();
  Q_INVOKABLE void EditDelete();
  Q_INVOKABLE void EditTimeDate();
  /// Inverts the check mark that all text windows share and the next start takes over.
  Q_INVOKABLE void EditWW();
  Q_INVOKABLE void SearchFind();
  Q_INVOKABLE void SearchReplace();

 protected:
  /// To be called at the end of BuildControls, with the pad in place: from then on the pad's keys, focus and right
  /// clicks, and the client area's size, are looked after here.
  void WatchPad(QWidget& client);
  /// The right margin from the check mark of the word wrap item.
  void ApplyWordWrap();
  /// Whether Undo and Redo can be chosen; to be called when that may have changed.
  void ShowUndoState();
  /// Opens the search dialog and repeats the last search.
  void SearchForLast();

  void UpdateCommands() override;
  /// The question about overwriting a file was cancelled: the title is again what it was at the last Save As, and empty
  /// when there was none; intended.
  void PathNotChosen() override;
  void DocumentCloses() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool PadKeyPressed(const QKeyEvent& key);
  bool SearchKeyPressed(const QKeyEvent& key);
  void CloseForeignSearch();

  QWidget* client_ = nullptr;
  QString title_at_save_as_;
};

}  // namespace tme
