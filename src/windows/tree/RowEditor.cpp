#include "windows/tree/RowEditor.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <limits>
#include <utility>

#include "shell/PlainText.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kEditorName = QStringLiteral("row_editor");

}  // namespace

RowEditor::RowEditor(QString accessible_name, Texts texts, QObject* parent)
    : HitMarks({}, parent), accessible_name_(std::move(accessible_name)), texts_(std::move(texts)) {}

void RowEditor::Finish(QWidget& window) {
  auto* editor = window.findChild<QLineEdit*>(kEditorName);
  if (!editor) return;
  if (editor->hasFocus()) return window.setFocus();
  QFocusEvent out(QEvent::FocusOut);
  QCoreApplication::sendEvent(editor, &out);
}

QWidget* RowEditor::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const {
  auto* box = new QLineEdit(parent);
  box->setObjectName(kEditorName);
  box->setAccessibleName(accessible_name_);
  box->setMaxLength(std::numeric_limits<int>::max());
  box->setAutoFillBackground(true);
  connect(box, &QLineEdit::textEdited, box, [box] {
    ShowTip({}, {}, box);
    box->setAccessibleDescription({});
  });
  edited_ = index;
  return box;
}

void RowEditor::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* box = static_cast<QLineEdit*>(editor);
  // A change of the row elsewhere does not undo what is being typed.
  if (box->isModified()) return;
  box->setText(texts_.shown(index));
  if (!texts_.selected) return;
  // The view selects all once the editor has the keys.
  const auto size = static_cast<int>(texts_.selected(index));
  const auto select = [box, size] {
    if (!box->isModified()) box->setSelection(0, size);
  };
  QMetaObject::invokeMethod(box, select, Qt::QueuedConnection);
}

void RowEditor::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const {
  Take(*static_cast<QLineEdit*>(editor), index);
}

void RowEditor::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
  HitMarks::updateEditorGeometry(editor, option, index);
  // Longer names than the one that is there need room, too.
  QRect place = editor->geometry();
  place.setRight(option.rect.right());
  editor->setGeometry(place);
}

bool RowEditor::Take(QLineEdit& box, const QModelIndex& index) const {
  const QString text = OneLine(box.text());
  if (!index.isValid() || text == texts_.shown(index)) return true;
  const QString reason = texts_.take(index, text);
  if (reason.isEmpty()) return true;
  box.setAccessibleDescription(reason);
  QAccessibleEvent alert(&box, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
  ShowTip(box.mapToGlobal(box.rect().bottomLeft()), reason, &box);
  return false;
}

bool RowEditor::eventFilter(QObject* watched, QEvent* event) {
  auto* box = qobject_cast<QLineEdit*>(watched);
  if (box == nullptr || event->type() != QEvent::KeyPress) return HitMarks::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      if (Take(*box, edited_)) emit closeEditor(box, NoHint);
      return true;
    default:
      return HitMarks::eventFilter(watched, event);
  }
}

}  // namespace tme
