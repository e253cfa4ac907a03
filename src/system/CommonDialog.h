#pragma once

#include <QColor>
#include <QPrinter>
#include <QString>
#include <QStringList>
#include <memory>

class QFileDialog;

namespace tme {

/// The one shared open, save, folder, font, colour and print dialog. Its fields are set before each use and keep their
/// values between uses. Virtual, so that a test can choose instead.
class CommonDialog {
 public:
  /// Print dialog flags (commdlg.h): PD_RETURNDC and PD_NOPAGENUMS.
  static constexpr int kReturnDc = 0x100;
  static constexpr int kNoPageNumbers = 0x8;

  QString title;
  /// "INI File|*.INI|Other (*.*)|*.*": pairs of name and wildcards (";" between wildcards). Matched without regard to
  /// letter case.
  QString filter;
  /// From 1; after a dialog, the entry that the user chose.
  int filter_index = 1;
  /// Appended to a name typed without one, with its dot.
  QString default_ext;
  QString init_dir;
  /// Proposed name before, chosen path after the dialog.
  QString file_name;
  bool multi_select = false;
  int flags = 0;
  /// Font dialog; not shown in it beforehand, so that it begins where it was left. Empty and 0 until a font was chosen.
  QString font_name;
  int font_size = 0;  ///< points
  bool font_bold = false;
  bool font_italic = false;
  bool font_underline = false;
  bool font_strikethru = false;
  QColor color = Qt::black;

  virtual ~CommonDialog() = default;
  /// Chosen files as whole paths; empty when cancelled.
  virtual QStringList ShowOpen();
  /// Chosen path; empty when cancelled. Does not ask about an existing file.
  virtual QString ShowSave();
  /// Chosen folder; empty when cancelled.
  virtual QString ShowFolder();
  /// Font and attributes into the font fields; false when cancelled, which leaves them as they were.
  virtual bool ShowFont();
  /// Into `color`; false when cancelled, which leaves it as it was.
  virtual bool ShowColor();
  /// Why no print dialog can come up, for the user to read; empty when one can.
  virtual QString PrintObstacle() const;
  /// The printer that was chosen, null when cancelled. The caller owns it.
  virtual std::unique_ptr<QPrinter> ShowPrinter();

 private:
  /// The pairs of `filter` as name filters of QFileDialog, in their order.
  QStringList NameFilters() const;
  /// A wildcard as the system's file dialog needs it to match without regard to letter case.
  static QString AnyCase(const QString& wildcard);
  /// Shows the dialog with the fields that opening and saving share. Empty when cancelled; then no field has changed.
  QStringList Choose(QFileDialog& dialog);
};

}  // namespace tme
