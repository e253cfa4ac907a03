#pragma once

#include <QElapsedTimer>
#include <functional>
#include <memory>
#include <unordered_set>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWriter.h"
#include "files/TextEncoding.h"
#include "windows/tree/TreeDocumentWindow.h"

class QAbstractItemView;
class QLabel;
class QProgressBar;
class QTextEdit;

namespace tme {

class DocumentTreeView;
class RegDraggedRows;
class RowDragView;
struct DropAnswer;
struct RowDragging;
class RegKeyModel;
struct RegLosses;
class RegValueModel;
class RegWholeCommands;
struct RegPlace;
struct RegTarget;

/// The window of a registry export file: its keys in `TV` beside the selected key's values in `LV`, and below them the
/// key's path. Everything that changes the document is a call of RegDocument; the views follow through their models.
class form_REG : public TreeDocumentWindow {
  Q_OBJECT

 public:
  form_REG(Global& global, int slot);
  ~form_REG() override;

  std::uint64_t Revision() const override { return document_.Revision(); }

  Q_INVOKABLE void NewREG();
  /// Reads the document's file; lines that fail go to the error log.
  Q_INVOKABLE void OpenREG();
  Q_INVOKABLE void FileSaveRegular() { SaveIn(RegLayout::Regular, {}); }
  Q_INVOKABLE void FileSaveExpanded() { SaveIn(RegLayout::Expanded, {}); }
  Q_INVOKABLE void FileSaveAsRegular();
  Q_INVOKABLE void FileSaveAsExpanded();
  /// Writes the expanded layout into a file of its own and prints that. By the rules the document counts as unchanged
  /// afterwards, although its own file was not written; intended.
  void PrintDoc(QPrinter& printer) override;

  Q_INVOKABLE void EditModify();
  Q_INVOKABLE void EditNewKey();
  Q_INVOKABLE void EditNewString();
  Q_INVOKABLE void EditNewDword();
  Q_INVOKABLE void EditNewBinary();
  Q_INVOKABLE void EditDelete();
  /// In whole holding a key, comment or value is renamed in its row.
  Q_INVOKABLE void EditRename();
  Q_INVOKABLE void CopyKeyPath();
  /// Lines for cmd that make the selected values, or else the selected keys. What the reg command cannot say is a
  /// comment line, and a notice.
  Q_INVOKABLE void CopyRegAdd();
  /// The selected rows as they show, columns with a tab between them, a level of keys a tab.
  Q_INVOKABLE void CopyAsText();
  Q_INVOKABLE void ExpandAll();
  Q_INVOKABLE void CollapseAll();

  // In whole holding alone. Menus show them nowhere else.
  Q_INVOKABLE void EditNewExpandString();
  Q_INVOKABLE void EditNewMultiString();
  Q_INVOKABLE void EditNewQword();
  /// Rows of the list when it was worked in last, else the selected key.
  Q_INVOKABLE void EditCut();
  Q_INVOKABLE void EditCopy();
  Q_INVOKABLE void EditPaste();
  Q_INVOKABLE void EditWriteDeletion();
  /// Shows comment lines as nodes, or no longer.
  Q_INVOKABLE void ShowComments();

  /// The document as it stands.
  const RegDocument& Document() const { return document_; }
  RegDocument& Document() override { return document_; }

  /// In the layout of the last save.
  SaveOutcome Save(const SaveRequest& request) override;
  SaveOutcome SavePlain(const SaveRequest& request) override { return SaveIn(RegLayout::Regular, request); }
  std::string Content() override;
  bool HoldsWholeFile() const override;

 protected:
  ReadEnd ReadText(std::string text) override;
  void PutByRules(std::string bytes) override;
  LineEnds UsedLineEnds() const override { return document_.Lines().UsedLineEnds(); }
  void SetLineEnds(LineEnds ends) override { document_.SetLineEnds(ends); }
  std::vector<FormKind> FormKinds() const override;
  std::size_t PresentKind() const override;
  bool ConfirmKind(std::size_t kind) override;
  void BecomeKind(std::size_t kind) override;
  std::string TextForOtherHolding() override;
  std::unique_ptr<SearchTarget> MakeSearchTarget() override;
  void BuildControls(QWidget& client) override;
  std::unique_ptr<SourceDocument> MakeSourceDocument() override;
  void UpdateCommands() override;
  std::function<void()> SelectionAgain() const override;
  void AddState(DocumentState& state) const override;
  DocumentFigures Figures() const override;
  PartProducer Characters() override;
  SaveDialogTexts SaveTexts() const override;
  SaveOutcome ConfirmWrite(const SaveRequest& request) override;
  TextFormat FormatToWrite() const override;
  PartProducer Producer() override;
  void TitleChanged(const QString& before) override;
  void DocumentCloses() override { EndProgress(); }
  void DropContent() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// The control that the user last worked in; deleting and modifying go by it.
  enum class Focus { TV, LV };

  void BuildKeyTree(QWidget* parent);
  void BuildValueList(QWidget* parent);
  void PopUpMenu(const QAbstractItemView& view, const QPoint& position);
  void BuildRowEditors();

  // Dragging (form_REG_drag.cpp).
  void BuildDragging();
  RowDragging DraggingIn(Focus focus);
  /// The key that takes what is dropped at a row of a view.
  RegNode* KeyAt(Focus focus, const QModelIndex& at) const;
  DropAnswer AnswerTo(const RegDraggedRows& rows, Qt::DropAction action, const RegNode& key) const;
  DropAnswer AnswerByRules(const RegDraggedRows& rows, Qt::DropAction action, const RegNode& key) const;
  void TakeRows(const RegDraggedRows& rows, Qt::DropAction action, RegNode* key);
  /// False when not all of them could be taken. came: the keys that came.
  bool TakeLines(const std::string& lines, const RegTarget& what, RegNode* key, std::vector<RegNode*>& came);
  void ShowDropped(RegNode* key, const std::vector<RegNode*>& came, std::size_t first_record);
  /// Before and after a reset of the tree: what was expanded stays so, and what comes back to the tree is as it went.
  void RememberView() { RememberExpanded(document_.Root()); }
  void RestoreView();
  /// Of the node and below it.
  void RememberExpanded(const RegNode* top);
  void RestoreExpanded(const RegNode* top);
  /// Many values changed.
  void FollowValues();
  /// Selects the first key that has values, unless another row is selected.
  void SelectFirstKeyWithValues();
  void ShowSelection();
  /// The list and the path of the selected key.
  void ShowKey();
  /// Whoever comes to the list by a key begins at a row.
  void SelectFirstRow(Qt::FocusReason reason);
  void SetFocusMarker(Focus focus);
  void ReadColumnWidths();
  void WriteColumnWidth(int column, int pixels);

  /// A character without a byte in the code page makes a REGEDIT4 file one of version 5.00, if the user agrees.
  SaveOutcome ConfirmCharacters(const SaveRequest& request);
  void BecomeVersion(RegVersion target);
  bool IsWhole() const { return document_.HeldAs() == Holding::Whole; }
  void SelectPlace(const RegPlace& place);
  ReadEnd ReadWhole(std::string text);
  void UpdateWholeCommands();
  RegTarget Target();
  RegTarget TargetIn(Focus focus);
  /// Their lines; none by the rules.
  std::string LinesOf(const RegTarget& target) const;
  /// Puts lines into a key and says what became of them. Returns what Paste does.
  RegPasteResult PasteLines(RegNode* key, const std::string& lines);
  /// Takes it out of the document, as one step, and follows that.
  void RemoveTarget(const RegTarget& target, EditName name);
  int SelectedRowCount() const;
  /// What follows from an edit of whole holding.
  void FollowEdit(const RegTarget& target);
  /// Or the last one.
  void GoToRow(int row) const;
  void GoToPlace(RegNode* node, std::uint32_t record);
  /// Those that the list shows.
  void SelectRecords(const std::vector<std::size_t>& records) const;
  void NewWholeKey();
  void NewWholeValue(std::uint32_t type);
  void RenameInRow();
  /// Takes it out of the document, as one step, and out of the list.
  void DeleteMany(const RegTarget& target);
  /// Runs an edit and what follows from it.
  void RunWhole(bool (RegWholeCommands::*command)(const RegTarget&));
  RegReadResult Read(std::string text);
  void ShowProgress(const RegProgress& progress);
  void ShowImport(const RegProgress& progress);
  void EndProgress();
  void ReportErrors(const std::string& error_log);
  SaveOutcome SaveIn(RegLayout layout, const SaveRequest& request);
  /// Writes a text file of the program's own into its folder, or else into the user's data folder. Its path; empty
  /// after a message when neither can be written.
  QString WriteOwnFile(const char* name, const PartProducer& produce);
  /// Keeps what a save left out and says so.
  void TellLosses(const RegLosses& losses);
  /// The document in a layout.
  PartProducer ProducerIn(RegLayout layout) const;
  /// What a save writes, with a dialog that can stop it.
  PartProducer ProducerWithProgress();
  /// Of the selected key, or of the key of the selected comment.
  QString SelectedPath() const;
  void ShowPath();
  void SetLocation(const QString& text);
  /// After an edit of a key or its values: what a save makes of it otherwise than it is shown.
  void TellWhatASaveMakesOf(const RegNode& node);

  void AddValueOfType(RegType type, const QString& caption);
  /// -1 without a selected row.
  int SelectedRow() const;

  RegDocument document_;
  std::unique_ptr<RegKeyModel> keys_;
  std::unique_ptr<RegValueModel> values_;
  std::unique_ptr<RegWholeCommands> whole_;
  /// Of the last save, or the one that goes on.
  RegLayout layout_ = RegLayout::Regular;
  /// RegLosses::fingerprint of what the history has of this document.
  std::uint64_t kept_losses_ = 0;
  bool large_output_is_allowed_ = false;
  bool is_placing_columns_ = false;
  Focus FocusMarker = Focus::TV;
  /// Of the nodes that are out of the tree, or while it is reset of all.
  std::unordered_set<const RegNode*> expanded_;
  QElapsedTimer since_progress_;

  DocumentTreeView* TV = nullptr;
  RowDragView* LV = nullptr;
  QString location_;  ///< what lbl_location shows
  QLabel* lbl_location = nullptr;
  QProgressBar* PB = nullptr;
  QProgressBar* PB2 = nullptr;
  QTextEdit* RTFPrint2 = nullptr;
};

}  // namespace tme
