#pragma once

#include "documents/ini/IniTree.h"
#include "files/TextEncoding.h"
#include "windows/tree/RowEditor.h"
#include "windows/tree/TreeDocumentWindow.h"

class QPrinter;
class QPushButton;
class QTextEdit;
class QTreeView;

namespace tme {

class DocumentTreeView;
class IniDraggedRows;
class IniItemModel;
struct DropAnswer;
struct IniReadResult;

/// The window of an INI document: its tree in `TV` above five buttons. Everything that changes the document is a call
/// of IniTree; the view follows through IniItemModel.
class form_INI : public TreeDocumentWindow {
  Q_OBJECT

 public:
  form_INI(Global& global, int slot);
  ~form_INI() override;

  int PreferredWidth() const override;
  std::uint64_t Revision() const override { return tree_.Revision(); }

  Q_INVOKABLE void NewINI();
  /// Reads the document's file. A file that cannot be read: a message, and the slot is free again.
  Q_INVOKABLE void OpenINI();
  Q_INVOKABLE void SaveFile() { Save({}); }
  Q_INVOKABLE void SaveAs() { Save({.path = SaveRequest::Path::AskedAlways}); }
  /// Puts the whole document on the clipboard, then prints it from there.
  void PrintDoc(QPrinter& printer) override;

  Q_INVOKABLE void EditCut();
  Q_INVOKABLE void EditCopy();
  /// Reads the clipboard below the selected node. By the rules this does not mark the document changed; intended.
  Q_INVOKABLE void EditPaste();
  Q_INVOKABLE void PasteNewSection();
  Q_INVOKABLE void EditDelete();
  Q_INVOKABLE void AddSection();
  Q_INVOKABLE void DeleteSection();
  Q_INVOKABLE void AddValue();
  Q_INVOKABLE void AddSectionToAll();
  Q_INVOKABLE void DeleteValue();
  Q_INVOKABLE void DeleteAllNodes();
  Q_INVOKABLE void ExpandAll();
  Q_INVOKABLE void CollapseAll();
  /// Edits the selected entry, section or comment in its dialog.
  Q_INVOKABLE void EditLine() { cmd_Edit_Click(); }
  /// In whole holding edits the selected row in the tree, by the rules as EditLine.
  Q_INVOKABLE void EditRename();
  /// Puts the selected rows on the clipboard as they show, a level a tab.
  Q_INVOKABLE void CopyAsText();
  /// In whole holding: arranges the tree by name, or as in the file again. The file stays as it is.
  Q_INVOKABLE void SortByName();

  /// The document as it stands.
  const IniTree& Tree() const { return tree_; }
  IniTree& Document() override { return tree_; }

 protected:
  ReadEnd ReadText(std::string text) override;
  void PutByRules(std::string bytes) override;
  LineEnds UsedLineEnds() const override { return tree_.Lines().UsedLineEnds(); }
  void SetLineEnds(LineEnds ends) override { tree_.SetLineEnds(ends); }
  std::unique_ptr<SearchTarget> MakeSearchTarget() override;
  void BuildControls(QWidget& client) override;
  std::unique_ptr<SourceDocument> MakeSourceDocument() override;
  void UpdateCommands() override;
  std::function<void()> SelectionAgain() const override;
  void AddState(DocumentState& state) const override;
  DocumentFigures Figures() const override;
  SaveDialogTexts SaveTexts() const override;
  SaveOutcome WriteTo(QString& path, const SaveRequest& request) override;
  TextFormat FormatToWrite() const override;
  PartProducer Producer() override;
  void EncodingChosen(TextEncoding encoding) override;
  std::function<void()> FormatAgain() override;
  void TitleChanged(const QString& before) override;
  void DropContent() override { tree_.Reset({}); }
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildTreeView(QWidget& client);
  void BuildButtons(QWidget& client);
  void BuildDragging();
  /// target: a section or the root.
  DropAnswer AnswerTo(const IniDraggedRows& rows, Qt::DropAction action, const IniNode& target) const;
  void TakeRows(const IniDraggedRows& rows, Qt::DropAction action, IniNode* target);
  /// Puts the lines of dragged rows into this document. False when not all of them could be taken.
  bool TakeLines(const std::string& lines, IniNode* target, std::vector<IniNode*>& came);
  /// Places the tree and the buttons; they share the client area (see the .cpp).
  void Form_Resize();
  void TV_NodeClick();
  void RestoreView();
  void ShowSelection();
  void ShowArrangement();

  void cmd_Edit_Click();
  void EditEntry(IniNode* node);
  void EditText(IniNode* node, const QString& prompt, const QString& title);
  void DeleteWhenConfirmed(IniNode* node, const QString& label);
  /// The selected nodes, none below another one. When it is one alone, it is the tree's selected node afterwards.
  std::vector<IniNode*> SelectedForCommand();
  /// As the clipboard has them: lines, then sections.
  std::string LinesOfMany(const std::vector<IniNode*>& nodes) const;
  void RemoveMany(const std::vector<IniNode*>& nodes, IniComments comments);
  void DeleteManyWhenConfirmed(const std::vector<IniNode*>& nodes);
  /// By the rules adds all lines of several rows below the selected section, and their sections. Returns the nodes of
  /// the lines, and how the sections were read.
  std::vector<IniNode*> PutManyLines(const std::string& lines, IniReadResult& result);
  QString RefusedText() const;
  void SayRefused();
  /// A row's text as it is edited in the row, and what becomes of it.
  RowEditor::Texts RowTexts();
  bool IsWhole() const { return tree_.Holding() == Holding::Whole; }
  IniReadResult Read(std::string text);

  IniTree tree_;
  /// The file has characters of the 8-bit code page, so who reads it takes it for that or for UTF-16, never for UTF-8.
  bool is_8bit_ = false;
  /// Whether that was so before the last save; only the encoding of a file that was plain ASCII is a choice to
  /// remember.
  bool was_8bit_ = false;
  bool wrote_ascii_ = false;  ///< what Producer gave last
  std::unique_ptr<IniItemModel> model_;
  DocumentTreeView* TV = nullptr;
  /// Of the view before the model was reset.
  int scrolled_ = 0;
  QTextEdit* RTFPrintBox = nullptr;
  QPushButton* cmd_AddSection = nullptr;
  QPushButton* cmd_DeleteSection = nullptr;
  QPushButton* cmd_Edit = nullptr;
  QPushButton* cmd_AddValue = nullptr;
  QPushButton* cmd_DeleteValue = nullptr;
};

}  // namespace tme
