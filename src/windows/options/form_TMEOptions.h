#pragma once

#include <QDialog>
#include <array>
#include <functional>
#include <utility>
#include <vector>

#include "windows/options/FilterList.h"

class QButtonGroup;
class QCheckBox;
class QGridLayout;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;
class QVBoxLayout;

namespace tme {

class ShellIntegration;
enum class ShellHook : std::uint8_t;
struct Global;
struct HelpTopic;
struct Settings;

/// Edits the settings. OK writes all of them to the store and to the shell's copies at once; Cancel discards.
class form_TMEOptions : public QDialog {
  Q_OBJECT

 public:
  /// Runs AutoSave with an interval in minutes; 0 stops it.
  using AutoSaveTimer = std::function<void(int minutes)>;

  /// Stops AutoSave; it runs again, with the interval then in force, once the dialog is left.
  form_TMEOptions(Global& global, ShellIntegration& integration, AutoSaveTimer set_auto_save_timer, QWidget* parent);

 protected:
  void done(int result) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum FilterKind : std::size_t { Txt, Rtf };
  static constexpr std::size_t kFilterKinds = 2;
  struct FilterControls {
    FilterList filter{};
    QListWidget* list = nullptr;
    QPushButton* add = nullptr;
    QPushButton* remove = nullptr;
    QGridLayout* grid = nullptr;
  };

  // form_TMEOptions_tabs.cpp
  void BuildTabs();
  QVBoxLayout* AddTab(const QString& caption, const QString& tool_tip);
  /// A box for one of kFlags.
  void AddFlag(QVBoxLayout* column, const QString& name, const QString& caption, bool Settings::*field);
  void BuildGeneralTab(QVBoxLayout* column);
  /// name: of the box.
  void BuildTreeTab(QVBoxLayout* column, const QString& name, bool Settings::*always_whole);
  void BuildDefaultOpenType(QVBoxLayout* column);
  void BuildAutoSave(QVBoxLayout* column);
  void BuildDefaultDisplay(QVBoxLayout* column);
  void BuildExtensionBox();
  QGroupBox* BuildFilter(FilterKind kind, const QString& frame_name, const QString& title);
  /// The one box for extensions serves both lists: it moves to the one that is shown.
  void MoveExtensionBox(FilterKind kind);
  void TS_Click();

  void Form_Load();
  void cmd_OK_Click();
  void SaveFlags();
  void SaveTexts();
  /// What could not be done, for the user.
  QStringList SetHook(ShellHook hook, const QCheckBox* box, const QString& what);

  void cmd_Add_Click(FilterKind kind);
  void cmd_Remove_Click(FilterKind kind);
  void ShowFilter(FilterKind kind);
  void cmd_SetFS_Click();
  void cb_AutoSave_Click();
  /// False when the interval is not valid, which the user has been told; the box is empty and has the focus then.
  bool CheckAutoSave();

  /// The topic of a control or of the nearest one around it; null when there is none.
  static const HelpTopic* TopicOf(const QWidget* control);
  void PopUpHelp(QWidget* control, const QPoint& global_position);
  void ContextHelp_Click();

  Global& global_;
  ShellIntegration& integration_;
  const AutoSaveTimer set_auto_save_timer_;
  /// The one that the Help menu was opened for.
  const HelpTopic* help_topic_ = nullptr;
  std::array<FilterControls, kFilterKinds> filters_;

  QTabWidget* TS;
  QWidget* extension_box_ = nullptr;
  QLineEdit* txt_ext = nullptr;
  std::vector<std::pair<bool Settings::*, QCheckBox*>> flag_boxes_;
  QCheckBox* cb_SendTo = nullptr;
  QCheckBox* Check1 = nullptr;
  QCheckBox* cb_AutoSave = nullptr;
  QLineEdit* txt_AutoSave = nullptr;
  QLineEdit* txt_txtfont = nullptr;
  QLineEdit* txt_txtsize = nullptr;
  QButtonGroup* opt_DefOpen = nullptr;
  QPushButton* cmd_Cancel = nullptr;
};

}  // namespace tme
