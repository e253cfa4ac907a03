#pragma once

#include <QString>
#include <QStringList>

class QAction;
class QComboBox;
class QLabel;
class QPoint;
class QTreeWidgetItem;
class QWidget;

namespace tme {

/// A text from a file, a path or the clipboard must never be taken for markup, which could name pictures to load, nor
/// for an access key or a placeholder. Whatever shows such a text goes through here; tools/check_plain_text finds what
/// does not.

/// As a tool tip shows it literally: at most 1000 characters, long lines with places to break, control characters as
/// their symbols. Also for ToolTipRole. Markup inside, where the text looks like any: not for other uses.
QString TipText(const QString& text);
/// For a widget also its description for screen readers, which is the text itself.
void SetTip(QWidget& widget, const QString& text);
void SetTip(QAction& action, const QString& text);
void SetItemTip(QComboBox& box, int index, const QString& text);
void SetItemTip(QTreeWidgetItem& item, int column, const QString& text);
/// Shows it now, at a point of the screen; hides what is shown when it is empty.
void ShowTip(const QPoint& global_position, const QString& text, QWidget* widget);
/// The same of lines, one below the other: the first 30.
void ShowTipLines(const QPoint& global_position, const QStringList& lines, QWidget* widget);
void SetWhatsThis(QWidget& widget, const QString& text);

/// A label that takes no text for markup. Owned by the parent, or else by whatever takes it.
QLabel* PlainLabel(const QString& text = {}, QWidget* parent = nullptr);

/// As the caption of a menu's item: "&" marks no access key, a tab does not begin the column of the shortcuts.
QString MenuText(QString text);
/// As the caption of a window: "[*]" is no placeholder for a changed document.
QString CaptionText(QString text);

}  // namespace tme
