#pragma once

#include <QDialog>
#include <array>
#include <cstdint>
#include <functional>

#include "documents/reg/RegData.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace tme {

class FieldReason;
class RegContentPage;

/// Adds or edits one value of a document that is held whole: its name, its type, and its data decoded. What cannot be
/// taken is marked with the reason, and OK stays off meanwhile. exec gives Accepted or Rejected.
class form_REGValue : public QDialog {
  Q_OBJECT

 public:
  form_REGValue(QWidget* parent, const QString& caption, const RegCoding& coding);

  /// The value to begin with. An empty name is the key's default value.
  void SetValue(const QString& name, const RegData& value);
  /// Begins with the deletion of a value, which is a choice beside the types then, and has no data.
  void SetDeletion(const QString& name);
  /// check: gives the reason against a name, or nothing.
  void SetNameCheck(std::function<QString(const QString& name)> check);

  /// For a new value: the name is what is typed first.
  void EditName();

  QString Name() const;
  bool IsDeletion() const { return is_deletion_; }
  /// Only after Accepted, and not for a deletion. What was not edited is exactly what was given.
  RegData Data() const;

 protected:
  /// Ctrl+Enter accepts wherever the cursor is.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void BuildTypes();
  void BuildPages();
  void ChooseType(std::uint32_t type);
  void ShowData(RegData value);
  void ShowDeletion();
  void KeepEdited();
  /// As large as what is in sight wants it and the screen has room for. Does not shrink while one looks at it.
  void Grow();
  RegContentPage& Page() const;
  void Check();
  /// The reason against the data beside what their page knows; empty when there is none.
  QString ReasonAgainstData() const;

  const RegCoding coding_;
  std::function<QString(const QString&)> check_name_;

  std::uint32_t type_ = reg_type::kString;
  /// What the user gave last, and its type: each choice of a type begins from there, so that walking through the types
  /// loses nothing.
  RegData given_;
  bool is_edited_ = false;   ///< since the page was filled
  bool is_filling_ = false;  ///< the page
  bool is_deletion_ = false;

  QLineEdit* txt_Name;
  FieldReason* name_reason_;
  QComboBox* cmb_Type;
  QLabel* lbl_Note;
  QLabel* lbl_Data;
  QStackedWidget* stack_;
  std::array<RegContentPage*, 4> pages_;  ///< by RegContent
  QPushButton* cmd_OK;
};

}  // namespace tme
