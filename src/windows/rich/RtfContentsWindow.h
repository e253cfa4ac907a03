#pragma once

#include <QDialog>

#include "documents/rtf/RtfContents.h"

class QPlainTextEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace tme {

/// Lists what a rich-text file holds besides its text. Shows only, and copies as text; nothing in it can be opened.
class RtfContentsWindow : public QDialog {
  Q_OBJECT

 public:
  /// title: of the document. Deletes itself when it closes.
  RtfContentsWindow(const rtf::Contents& contents, const QString& title, QWidget* parent);

  /// A line for each row, its columns apart by tabs.
  QString Text() const;
  /// The same of the rows that are selected.
  QString SelectedText() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls(const rtf::Contents& contents, const QString& title);
  void AddParts(const rtf::Contents& contents);
  void AddCounts(const rtf::Contents& contents);
  /// meaning: stands below the list while the heading is the current row.
  QTreeWidgetItem* AddHeading(const QString& text, std::uint64_t count, const QString& meaning = {});
  static void AddRow(QTreeWidgetItem& heading, const QString& what, const QString& where, const QString& size);

  static QString LineOf(const QTreeWidgetItem& row);
  void FitColumns();
  /// The current row in full, below the list.
  void ShowDetails();

  QTreeWidget* list_ = nullptr;
  QPlainTextEdit* details_ = nullptr;
};

}  // namespace tme
