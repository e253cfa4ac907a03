#include "windows/reg/form_REGName.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <limits>
#include <utility>

#include "system/Dialogs.h"
#include "windows/reg/FieldReason.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kNameCharacters = 48;

}  // namespace

form_REGName::form_REGName(QWidget* parent, const QString& caption, const QString& label, const QString& text,
                           std::function<QString(const QString&)> check)
    : QDialog(parent), txt_Name(new QLineEdit(this)) {
  setObjectName(u"form_REGName"_s);
  setWindowTitle(caption);
  txt_Name->setObjectName(u"txt_Name"_s);
  txt_Name->setAccessibleName(QString(label).remove(u'&').remove(u':'));
  txt_Name->setMaxLength(std::numeric_limits<int>::max());
  txt_Name->setMinimumWidth(txt_Name->fontMetrics().averageCharWidth() * kNameCharacters);
  txt_Name->setText(text);
  txt_Name->selectAll();
  auto* reason = new FieldReason(*txt_Name, this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* cmd_OK = buttons->button(QDialogButtonBox::Ok);
  cmd_OK->setObjectName(u"cmd_OK"_s);
  cmd_OK->setDefault(true);
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"cmd_Cancel"_s);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* form = new QFormLayout(this);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(label, txt_Name);
  form->addRow({}, reason);
  form->addRow(buttons);
  const auto decide = [this, reason, cmd_OK, check = std::move(check)] {
    const QString against = Text().isEmpty() ? QString() : check(Text());
    reason->Say(against);
    cmd_OK->setEnabled(against.isEmpty() && !Text().isEmpty());
  };
  connect(txt_Name, &QLineEdit::textChanged, this, decide);
  decide();
}

QString form_REGName::Text() const { return OneLine(txt_Name->text()); }

}  // namespace tme
