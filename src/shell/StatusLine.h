#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

#include "shell/DocumentState.h"

class QLabel;
class QMenu;
class QStatusBar;

namespace tme {

class DocumentWindow;
class LineField;
class StatusButton;

/// The row at the bottom of the frame that says what the active document is and where the user is in it. F6 goes to it
/// and back, Tab and the arrow keys from part to part. Where it is narrow, the parts that matter least go first.
class StatusLine : public QWidget {
  Q_OBJECT

 public:
  /// The document that is shown, null for none, and how it gets a command.
  struct Source {
    std::function<DocumentWindow*()> active;
    std::function<void(const QByteArray& command)> send;
  };
  /// Joins the bar, which owns it.
  StatusLine(QStatusBar& bar, Source source);

  /// Shows the state of the active document soon: calls may come with every key. Showing takes a twentieth of the time
  /// at most, and waits while the program works or asks.
  void Refresh();
  void ShowNow();
  /// Puts the keys on the first part.
  void FocusFirst();
  /// Asks for a line of the active document and goes there. Nothing where lines are not counted.
  void AskForLine();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 private:
  QLabel* MakeLabel(const QString& name);
  StatusButton* MakeButton(const QString& name, void (StatusLine::*click)());
  void BuildParts();
  void Show(const DocumentState& state);
  void ShowForm(const DocumentState& state);
  void ShowPath(const DocumentState& state);
  void ShowPlace(const DocumentState& state);
  /// Places the parts that fit.
  void Arrange();
  void CopyPath();
  void SwitchHolding();
  void SayLineEndsStay();
  void FillEncodings(QMenu& menu);
  void FillLineEnds(QMenu& menu);
  void GoTo(std::int64_t line);
  void LeaveField();
  void BackToDocument();
  std::vector<QWidget*> Stops() const;

  const Source source_;
  QTimer delay_;
  QTimer copied_;  ///< while it runs, the path says that it was copied
  DocumentState state_;
  QLabel* kind_;
  StatusButton* holding_;
  StatusButton* path_;
  LineField* field_;
  QLabel* selection_;
  StatusButton* place_;
  QLabel* count_;
  StatusButton* encoding_;
  StatusButton* line_ends_;
  QMenu* encodings_;
  QMenu* ends_;
};

}  // namespace tme
