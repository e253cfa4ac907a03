#include "windows/reg/form_REGEdit.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextDocument>
#include <limits>

#include "shell/DisplayText.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kBoxCharacters = 64;
constexpr int kBoxLines = 8;

}  // namespace

form_REGEdit::form_REGEdit(QWidget* parent, const QString& caption)
    : QDialog(parent), txt_Name(new QLineEdit(this)), txt_Data(new QPlainTextEdit(this)) {
  setObjectName(u"form_REGEdit"_s);
  setWindowTitle(caption);
  txt_Name->setObjectName(u"txt_Name"_s);
  txt_Name->setAccessibleName(tr("Value name"));
  txt_Name->setMaxLength(std::numeric_limits<int>::max());
  txt_Data->setObjectName(u"txt_Data"_s);
  txt_Data->setAccessibleName(tr("Value data"));
  txt_Data->setTabChangesFocus(true);
  txt_Data->setWordWrapMode(QTextOption::WrapAnywhere);
  txt_Data->setMinimumSize(txt_Data->fontMetrics().averageCharWidth() * kBoxCharacters,
                           txt_Data->fontMetrics().lineSpacing() * kBoxLines);
  txt_Data->installEventFilter(this);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(u"cmd_OK"_s);
  buttons->button(QDialogButtonBox::Ok)->setDefault(true);
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"cmd_Cancel"_s);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    SetData(TrimBlanks(Data()));
    hide();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &form_REGEdit::reject);

  auto* form = new QFormLayout(this);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("Value &name:"), txt_Name);
  form->addRow(tr("Value &data:"), txt_Data);
  form->addRow(buttons);
}

void form_REGEdit::SetDataFont(const QString& family) {
  QFont font(family, txt_Data->font().pointSize());
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  txt_Data->setFont(font);
}

void form_REGEdit::SetValue(const QString& name, const QString& text) {
  txt_Name->setText(name);
  txt_Name->setReadOnly(true);
  SetData(text);
  txt_Data->setFocus();
  txt_Data->selectAll();
}

QString form_REGEdit::Name() const { return OneLine(txt_Name->text()); }

QString form_REGEdit::Data() const {
  // The raw text, since the plain one turns no-break spaces into blanks.
  return txt_Data->document()->toRawText().remove(QChar::ParagraphSeparator).remove(QChar::LineSeparator);
}

void form_REGEdit::SetData(const QString& text) { txt_Data->setPlainText(text); }

void form_REGEdit::reject() {
  SetData(kCancelled);
  hide();
}

bool form_REGEdit::eventFilter(QObject* watched, QEvent* event) {
  if (watched == txt_Data && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      findChild<QPushButton*>(u"cmd_OK"_s)->click();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace tme
