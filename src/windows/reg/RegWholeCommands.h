#pragma once

#include <QCoreApplication>
#include <cstdint>
#include <vector>

#include "documents/reg/RegDocument.h"

class QWidget;

namespace tme {

class Dialogs;
class form_REGValue;

/// What a command works on: some values of the selected key, or nodes. Most commands take the selected node alone.
struct RegTarget {
  /// In the order of the list; empty for nodes.
  std::vector<std::size_t> records = {};
  /// The selected nodes from above, none below another one; empty for records.
  std::vector<RegNode*> nodes = {};
  bool is_in_list = false;
};

/// The commands of a registry window whose document is held whole: they ask what is to be asked and edit the document,
/// at its selected node. Each returns whether it changed anything.
class RegWholeCommands {
  Q_DECLARE_TR_FUNCTIONS(RegWholeCommands)

 public:
  /// window: the parent of the dialogs. All outlive this.
  RegWholeCommands(QWidget& window, Dialogs& dialogs, RegDocument& document)
      : window_(window), dialogs_(dialogs), document_(document) {}

  bool NewKey();
  bool NewValue(std::uint32_t type);
  /// A value, or the text of a comment.
  bool Modify(const RegTarget& target);
  bool Delete(const RegTarget& target);
  bool ConfirmDeletion(const RegTarget& target);
  /// In place of what is there, the file says that it is to be deleted.
  bool WriteDeletion(const RegTarget& target);
  /// Gives a key or comment another name, or a value. The reason where it cannot have it, and nothing was done.
  QString Rename(RegNode* node, const QString& name);
  QString Rename(std::size_t record, const QString& name);

  // What the document's kind of file can take.
  bool CanHaveDeletions() const { return document_.Version() != RegVersion::Regedit; }
  bool CanAddValue() const;
  bool CanPaste() const { return CanAddValue() && CanHaveDeletions(); }
  bool CanRename(const RegTarget& target) const;

 private:
  bool AskWhetherTo(const QString& question, const QString& title);
  bool ModifyValue(std::size_t record);
  bool ModifyComment(RegNode* comment);
  static QString ReasonAgainstComment(const QString& text);
  /// The reason against a name of a child of the key. renamed: may have it; null for a new one.
  QString ReasonAgainstKey(const RegNode* parent, const QString& name, const RegNode* renamed) const;
  /// The reason against a name of a value of the key.
  QString ReasonAgainstValue(const RegNode* key, const QString& name, const RegValueRecord* renamed) const;
  /// One that no value of the key has.
  QString NewValueName(const RegNode* key) const;
  QString LabelOf(const RegTarget& target) const;

  QWidget& window_;
  Dialogs& dialogs_;
  RegDocument& document_;
};

}  // namespace tme
