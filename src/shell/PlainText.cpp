#include "shell/PlainText.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QTextDocument>
#include <QToolTip>
#include <QTreeWidgetItem>
#include <algorithm>

#include "shell/DisplayText.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr qsizetype kMaxCharactersInTip = 1000, kMaxLinesInTip = 30;

QString Shown(const QString& text) {
  return DisplayText(text.left(kMaxCharactersInTip + 1).toStdString(), kMaxCharactersInTip);
}

}  // namespace

QString TipText(const QString& text) {
  const QString shown = Shown(text);
  const bool looks_like_markup = shown.contains(u'<') || shown.contains(u'&');
  if (!looks_like_markup && shown.size() <= kLongestRun) return shown;
  const QString wraps = shown.size() <= kLongestRun ? u"pre"_s : u"pre-wrap"_s;
  return u"<p style='white-space:"_s + wraps + u"'>"_s + Breakable(shown).toHtmlEscaped() + u"</p>"_s;
}

void SetTip(QWidget& widget, const QString& text) {
  widget.setToolTip(TipText(text));
  widget.setAccessibleDescription(Shown(text));
}

void SetTip(QAction& action, const QString& text) { action.setToolTip(TipText(text)); }

void SetItemTip(QComboBox& box, int index, const QString& text) {
  box.setItemData(index, TipText(text), Qt::ToolTipRole);
}

void SetItemTip(QTreeWidgetItem& item, int column, const QString& text) { item.setToolTip(column, TipText(text)); }

void ShowTip(const QPoint& global_position, const QString& text, QWidget* widget) {
  QToolTip::showText(global_position, TipText(text), widget);
}

void ShowTipLines(const QPoint& global_position, const QStringList& lines, QWidget* widget) {
  if (lines.size() < 2) return ShowTip(global_position, lines.value(0), widget);
  QStringList shown;
  bool is_short = true;
  for (const QString& line : lines.first(std::min(lines.size(), kMaxLinesInTip))) {
    shown.append(Breakable(Shown(line)).toHtmlEscaped());
    is_short = is_short && line.size() <= kLongestRun;
  }
  const QString wraps = is_short ? u"pre"_s : u"pre-wrap"_s;
  const QString text = u"<p style='white-space:"_s + wraps + u"'>"_s + shown.join(u"<br>"_s) + u"</p>"_s;
  QToolTip::showText(global_position, text, widget);
}

void SetWhatsThis(QWidget& widget, const QString& text) {
  widget.setWhatsThis(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text);
}

QLabel* PlainLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setText(text);
  return label;
}

QString MenuText(QString text) { return text.replace(u'&', u"&&"_s).replace(u'\t', QChar(0x2409)); }

QString CaptionText(QString text) { return text.replace(u"[*]"_s, u"[*][*]"_s); }

}  // namespace tme
