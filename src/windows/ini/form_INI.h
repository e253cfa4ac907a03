#pragma once

#include <QPrinter>
#include <optional>

#include "documents/ini/IniTree.h"
#include "files/TextEncoding.h"
#include "shell/DocumentWindow.h"

class QPushButton;
class QTextEdit;
class QTreeView;

namespace tme {

class IniItemModel;
struct IniReadResult;

/// The window of an INI document: its tree in `TV` above five buttons. Everything that changes the document is a call
/// of IniTree; the view follows through IniItemModel.
class form_INI : public DocumentWindow {
  Q_OBJECT

 public:
  form_INI(Global& global, int slot);
  ~form_INI() override;

  int PreferredWidth() const override;
  std::uint64_t Revision() const override { return tree_.Revision(); }

  Q_INVOKABLE void NewINI();
  /// Reads the file at the slot's path. A file that cannot be read: a message, and the slot is free again.
  Q_INVOKABLE void OpenINI();
  Q_INVOKABLE void SaveFile();
  Q_INVOKABLE void SaveAs();
  Q_INVOKABLE void FileClose() override;
  Q_INVOKABLE void ExitForm() override;
  /// Puts the whole document on the clipboard, then prints it from there.
  Q_INVOKABLE void PrintDoc(QPrinter* printer);

  Q_INVOKABLE void EditCut();
  Q_INVOKABLE void EditCopy();
  /// Reads the clipboard below the selected node. Does not mark the document changed; intended.
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

  std::string Content() override;
  void PutContent(std::string bytes) override;

  /// The document as it stands.
  const IniTree& Tree() const { return tree_; }

 protected:
  void BuildControls(QWidget& client) override;
  void UpdateCommands() override;
  bool CloseDocument() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildTreeView(QWidget& client);
  void BuildButtons(QWidget& client);
  /// Places the tree and the buttons; they share the client area (see the .cpp).
  void Form_Resize();
  void TV_NodeClick();
  void RestoreView();
  void ShowSelection();

  SaveOutcome Save();
  SaveOutcome SaveElsewhere();
  bool WriteTo(QString& path);
  void SetFormat(const DecodedText& decoded);
  TextFormat FormatToWrite() const;
  PartProducer Producer() const;

  void cmd_Edit_Click();
  void EditEntry(IniNode* node);
  void RenameSection(IniNode* node);
  void EditComment(IniNode* node);
  bool ConfirmDeletion(const QString& label, const IniNode& node);
  void AddEntryTo(IniNode* section, const QString& key, const QString& value);
  IniReadResult Read(std::string text);
  /// Into a fresh tree, without a question: every line is taken, also where a file could not hold it so.
  void ReadKept(const std::string& text);

  IniTree tree_;
  TextFormat format_;
  /// The file has characters of the 8-bit code page, so who reads it takes it for that or for UTF-16, never for UTF-8.
  bool is_8bit_ = false;
  std::unique_ptr<IniItemModel> model_;
  QTreeView* TV = nullptr;
  QTextEdit* RTFPrintBox = nullptr;
  QPushButton* cmd_AddSection = nullptr;
  QPushButton* cmd_DeleteSection = nullptr;
  QPushButton* cmd_Edit = nullptr;
  QPushButton* cmd_AddValue = nullptr;
  QPushButton* cmd_DeleteValue = nullptr;
};

}  // namespace tme
