#pragma once

#include <QDialog>
#include <cstdint>

#include "documents/DocumentKind.h"

class QCheckBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tme {

class Pad;
class PadWindow;
struct Global;

enum class SearchMode : std::uint8_t { Find, Replace, Again };

/// The one search and replace dialog: modeless, a child of the frame, bound to one text or rich-text document. It works
/// on that document's Pad and deletes itself when it is closed.
class form_SR : public QDialog {
  Q_OBJECT

 public:
  /// The open dialog; null when there is none.
  static form_SR* Opened(const Global& global);
  /// Opens the dialog for a document, or turns the open one to it. The search box gets the selected text, unless that
  /// is longer than the box takes (32767 characters).
  static void Open(Global& global, PadWindow& window, SearchMode mode);

  /// Whether it is bound to this document.
  bool IsBoundTo(const PadWindow& window) const;
  /// Focus into the search box, its text selected.
  void FocusSearchBox();
  /// To the top right corner of the screen, or of the frame ("Contain SRD"), but never out of sight.
  void Initialize();
  /// The bound document opens the dialog anew, in the other mode.
  void CtrlF();
  void CtrlH();
  /// Remembers the search text and searches. May show the question whether to go on from the top, and may close the
  /// dialog; it stands until control is back in the event loop.
  void cmd_FindNext_Click();
  void cmd_Cance_Click();
  /// Searches for the text that was last searched for in a plain-text document.
  void SearchAgain();

  void reject() override { cmd_Cance_Click(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Outcome : std::uint8_t { Done, FromTheTop };

  explicit form_SR(Global& global);
  void BuildControls();
  void LayOut();
  void SetMode(SearchMode mode);
  QString Caption() const;
  /// Null once the document is closed.
  PadWindow* Window() const;
  void TakeSelection(Pad& pad);
  void StoreLastSearch();
  void RunSearch();
  Outcome RunSearchOnce();
  void FocusPad(PadWindow& window);
  /// Whether the selection is the search text or the replacement, whatever the case.
  bool IsSelectionKnown(const Pad& pad) const;
  Outcome AskForTheTop(PadWindow& window);

  Global& global_;
  DocumentKind target_kind_ = DocumentKind::Txt;
  int target_slot_ = 0;
  SearchMode mode_ = SearchMode::Find;
  bool closed_ = false;

  QGroupBox* frm_Search;
  QLabel* Label1;
  QLineEdit* txt_SearchString;
  QLabel* lbl_R;
  QLineEdit* txt_R;
  QCheckBox* cb_MatchCase;
  QCheckBox* cb_WholeWord;
  QPushButton* cmd_FindNext;
  QPushButton* cmd_Cance;
  QFrame* Line1;
  QLabel* Label3;
  QLabel* lbl_Exp;
  QLabel* Label2;
};

}  // namespace tme
