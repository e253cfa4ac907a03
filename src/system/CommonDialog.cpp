#include "system/CommonDialog.h"

#include <QApplication>
#include <QChildEvent>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <algorithm>

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// The dialogs ask questions of their own, about names that were typed or pasted there: as plain text, like ours.
class PlainQuestions : public QObject {
 public:
  explicit PlainQuestions(QDialog& dialog) : QObject(&dialog) { dialog.installEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    // Before the box is laid out, which would load what markup names.
    if (event->type() == QEvent::ChildPolished)
      if (auto* box = qobject_cast<QMessageBox*>(static_cast<QChildEvent*>(event)->child()))
        box->setTextFormat(Qt::PlainText);
    return QObject::eventFilter(watched, event);
  }
};

/// What stands in the name field: one name, or several in quotation marks, as whole paths.
QStringList TypedPaths(const QFileDialog& dialog) {
  const auto* edit = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
  if (!edit) return {};  // a dialog of the desktop's, which gives back all that was typed
  QStringList paths;
  const QStringList parts = edit->text().split(u'"');
  for (qsizetype index = 1; index < parts.size(); index += 2)
    if (!parts[index].isEmpty()) paths.append(QDir::cleanPath(dialog.directory().absoluteFilePath(parts[index])));
  return paths;
}

/// The folder, or the nearest one above it that exists.
QString ExistingFolder(const QString& folder) {
  QString above = folder;
  while (!QFileInfo(above).isDir() && above != QFileInfo(above).path()) above = QFileInfo(above).path();
  return above;
}

QString WithExtension(const QString& path, const QString& extension) {
  if (QFileInfo(path).fileName().contains(u'.')) return path;
  // Where there is only a file of that name in small letters, it is the one that is meant.
  const QString whole = path + extension, small = path + extension.toLower();
  return !QFileInfo::exists(whole) && QFileInfo::exists(small) ? small : whole;
}

}  // namespace

QStringList CommonDialog::NameFilters() const {
  QStringList filters;
  const QStringList parts = filter.split(u'|');
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList wildcards;
    const QStringList given = parts[i + 1].split(u';', Qt::SkipEmptyParts);
    for (const QString& wildcard : given) {
      const QString plain = wildcard.trimmed();
      // On the systems that this wildcard comes from, it means names without a dot too.
      wildcards.append(plain == "*.*"_L1 ? u"*"_s : AnyCase(plain));
    }
    filters.append(u"%1 (%2)"_s.arg(parts[i].trimmed(), wildcards.join(u' ')));
  }
  return filters;
}

QStringList CommonDialog::Choose(QFileDialog& dialog) {
  const QStringList filters = NameFilters();
  dialog.setObjectName("CommonDialog"_L1);
  new PlainQuestions(dialog);
  dialog.setOption(QFileDialog::HideNameFilterDetails);  // the names say it; the wildcards are not for reading
  if (!filters.isEmpty()) {
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(filters.value(filter_index - 1, filters.first()));
  }
  if (!file_name.isEmpty()) dialog.selectFile(file_name);
  if (dialog.exec() != QDialog::Accepted) return {};

  // With hidden wildcards, some of the dialogs give back the name alone.
  const QString name = dialog.selectedNameFilter();
  const auto selected = std::find_if(filters.begin(), filters.end(), [&name](const QString& each) {
    return each == name || each.startsWith(name + " ("_L1);
  });
  const QStringList chosen = dialog.selectedFiles();
  if (!chosen.isEmpty() && selected != filters.end()) filter_index = static_cast<int>(selected - filters.begin()) + 1;
  return chosen;
}

QStringList CommonDialog::ShowOpen() {
  QFileDialog dialog(QApplication::activeWindow(), title, ExistingFolder(init_dir));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(multi_select ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(default_ext);
  QStringList chosen = Choose(dialog);
  // The dialog drops typed names that the filter hides.
  if (!chosen.isEmpty() && multi_select)
    for (const QString& path : TypedPaths(dialog))
      if (!chosen.contains(path)) chosen.append(path);
  for (QString& path : chosen) path = QDir::toNativeSeparators(path);
  if (!chosen.isEmpty()) file_name = chosen.first();
  return chosen;
}

QString CommonDialog::ShowSave() {
  QFileDialog dialog(QApplication::activeWindow(), title, ExistingFolder(init_dir));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  // The extension is added below: a system's dialog may do so to a name that has another one, or the same in small.
  const QStringList chosen = Choose(dialog);
  if (chosen.isEmpty()) return {};
  file_name = QDir::toNativeSeparators(WithExtension(chosen.first(), default_ext));
  return file_name;
}

QString CommonDialog::ShowFolder() {
  QFileDialog dialog(QApplication::activeWindow(), title, ExistingFolder(init_dir));
  dialog.setObjectName("CommonDialog"_L1);
  new PlainQuestions(dialog);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (dialog.exec() != QDialog::Accepted) return {};
  return QDir::toNativeSeparators(dialog.selectedFiles().value(0));
}

bool CommonDialog::ShowFont() {
  QFont font = QApplication::font();
  if (!font_name.isEmpty()) font.setFamily(font_name);
  if (font_size > 0) font.setPointSize(font_size);
  font.setBold(font_bold);
  font.setItalic(font_italic);
  font.setUnderline(font_underline);
  font.setStrikeOut(font_strikethru);
  QFontDialog dialog(font, QApplication::activeWindow());
  dialog.setObjectName("FontDialog"_L1);
  dialog.setWindowTitle(title);
  if (dialog.exec() != QDialog::Accepted) return false;
  const QFont chosen = dialog.selectedFont();
  font_name = chosen.family();
  font_size = chosen.pointSize();
  font_bold = chosen.bold();
  font_italic = chosen.italic();
  font_underline = chosen.underline();
  font_strikethru = chosen.strikeOut();
  return true;
}

bool CommonDialog::ShowColor() {
  QColorDialog dialog(color, QApplication::activeWindow());
  dialog.setObjectName("ColorDialog"_L1);
  dialog.setWindowTitle(title);
  if (dialog.exec() != QDialog::Accepted) return false;
  color = dialog.selectedColor();
  return true;
}

std::unique_ptr<QPrinter> CommonDialog::ShowPrinter() {
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  QPrintDialog dialog(printer.get(), QApplication::activeWindow());
  new PlainQuestions(dialog);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, (flags & kNoPageNumbers) == 0);
  if (dialog.exec() != QDialog::Accepted) return nullptr;
  return printer;
}

}  // namespace tme
