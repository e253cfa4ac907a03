#include "windows/reg/form_REGValue.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>
#include <limits>
#include <utility>

#include "shell/PlainText.h"
#include "system/Dialogs.h"
#include "windows/reg/FieldReason.h"
#include "windows/reg/RegContentPages.h"
#include "windows/reg/RegTypeChange.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

struct TypeChoice {
  std::uint32_t type;
  const char* meaning = nullptr;
};

/// In the order in which they are offered: what is usual comes first.
constexpr std::array kTypeChoices{
    TypeChoice{reg_type::kString, QT_TRANSLATE_NOOP("tme::form_REGValue", "text")},
    TypeChoice{reg_type::kExpandString, QT_TRANSLATE_NOOP("tme::form_REGValue", "text with %variables%")},
    TypeChoice{reg_type::kMultiString, QT_TRANSLATE_NOOP("tme::form_REGValue", "several texts")},
    TypeChoice{reg_type::kDword, QT_TRANSLATE_NOOP("tme::form_REGValue", "number, 32 bits")},
    TypeChoice{reg_type::kQword, QT_TRANSLATE_NOOP("tme::form_REGValue", "number, 64 bits")},
    TypeChoice{reg_type::kBinary, QT_TRANSLATE_NOOP("tme::form_REGValue", "bytes")},
    TypeChoice{reg_type::kNone, QT_TRANSLATE_NOOP("tme::form_REGValue", "bytes of no type")},
    TypeChoice{reg_type::kDwordBigEndian, QT_TRANSLATE_NOOP("tme::form_REGValue", "number, highest byte first")},
    TypeChoice{reg_type::kLink, QT_TRANSLATE_NOOP("tme::form_REGValue", "path of another key")},
    TypeChoice{reg_type::kResourceList},
    TypeChoice{reg_type::kFullResourceDescriptor},
    TypeChoice{reg_type::kResourceRequirementsList},
};

/// As large as the page in sight wants to be.
class RegPageStack : public QStackedWidget {
 public:
  using QStackedWidget::QStackedWidget;

  QSize sizeHint() const override { return currentWidget()->sizeHint(); }
  QSize minimumSizeHint() const override { return currentWidget()->minimumSizeHint(); }
  bool hasHeightForWidth() const override { return currentWidget()->hasHeightForWidth(); }
  int heightForWidth(int width) const override { return currentWidget()->heightForWidth(width); }
};

}  // namespace

form_REGValue::form_REGValue(QWidget* parent, const QString& caption, const RegCoding& coding)
    : QDialog(parent),
      coding_(coding),
      txt_Name(new QLineEdit(this)),
      name_reason_(new FieldReason(*txt_Name, this)),
      cmb_Type(new QComboBox(this)),
      lbl_Note(PlainLabel({}, this)),
      lbl_Data(PlainLabel(tr("Value &data:"), this)),
      stack_(new RegPageStack(this)),
      pages_{new RegTextPage(this), new RegStringsPage(this), new RegNumberPage(this), new RegBinaryPage(this)} {
  setObjectName(u"form_REGValue"_s);
  setWindowTitle(caption);
  txt_Name->setObjectName(u"txt_Name"_s);
  txt_Name->setAccessibleName(tr("Value name"));
  txt_Name->setPlaceholderText(tr("(Default)"));
  txt_Name->setMaxLength(std::numeric_limits<int>::max());
  // A file of the first form has a key's default value alone.
  txt_Name->setReadOnly(coding_.version == RegVersion::Regedit);
  connect(txt_Name, &QLineEdit::textEdited, this, &form_REGValue::Check);
  lbl_Note->setObjectName(u"lbl_Note"_s);
  lbl_Note->setWordWrap(true);
  BuildTypes();
  BuildPages();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  cmd_OK = buttons->button(QDialogButtonBox::Ok);
  cmd_OK->setObjectName(u"cmd_OK"_s);
  cmd_OK->setDefault(true);
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"cmd_Cancel"_s);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* column = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("Value &name:"), txt_Name);
  form->addRow({}, name_reason_);
  form->addRow(tr("&Type:"), cmb_Type);
  column->addLayout(form);
  column->addWidget(lbl_Note);
  lbl_Data->setBuddy(stack_);
  column->addWidget(lbl_Data);
  column->addWidget(stack_, 1);
  // Where there is no page, the fields stay at the top.
  column->addStretch();
  column->addWidget(buttons);
}

void form_REGValue::BuildTypes() {
  cmb_Type->setObjectName(u"cmb_Type"_s);
  cmb_Type->setAccessibleName(tr("Type of the value"));
  for (const TypeChoice& choice : kTypeChoices) {
    const QString name = QString::fromStdString(RegTypeName(choice.type));
    cmb_Type->addItem(choice.meaning == nullptr ? name : tr("%1 (%2)").arg(name, tr(choice.meaning)), choice.type);
  }
  // A file of the first form has one type of value.
  cmb_Type->setEnabled(coding_.version != RegVersion::Regedit);
  connect(cmb_Type, &QComboBox::activated, this, [this] {
    const QVariant type = cmb_Type->currentData();
    type.isValid() ? ChooseType(type.toUInt()) : ShowDeletion();
  });
}

void form_REGValue::BuildPages() {
  for (RegContentPage* page : pages_) {
    stack_->addWidget(page);
    connect(page, &RegContentPage::Edited, this, [this] {
      if (is_filling_) return;
      is_edited_ = true;
      Check();
    });
  }
}

RegContentPage& form_REGValue::Page() const { return *static_cast<RegContentPage*>(stack_->currentWidget()); }

void form_REGValue::SetNameCheck(std::function<QString(const QString& name)> check) {
  check_name_ = std::move(check);
  Check();
}

void form_REGValue::SetValue(const QString& name, const RegData& value) {
  txt_Name->setText(name);
  if (cmb_Type->findData(value.type) < 0)
    cmb_Type->addItem(QString::fromStdString(RegTypeName(value.type)), value.type);
  cmb_Type->setCurrentIndex(cmb_Type->findData(value.type));
  type_ = value.type;
  given_ = value;
  ShowData(value);
  Page().setFocus();
}

void form_REGValue::SetDeletion(const QString& name) {
  txt_Name->setText(name);
  cmb_Type->insertItem(0, tr("Deletion"));
  cmb_Type->setCurrentIndex(0);
  given_ = EmptyRegData(reg_type::kString);
  ShowDeletion();
  cmb_Type->setFocus();
}

void form_REGValue::EditName() {
  if (txt_Name->isReadOnly()) return;
  txt_Name->setFocus();
  txt_Name->selectAll();
}

void form_REGValue::KeepEdited() {
  // What cannot be taken is given up with its page.
  if (is_edited_ && Page().IsValid()) given_ = Page().Data();
  is_edited_ = false;
}

void form_REGValue::ShowDeletion() {
  KeepEdited();
  is_deletion_ = true;
  for (QWidget* widget : std::initializer_list<QWidget*>{lbl_Note, lbl_Data, stack_}) widget->hide();
  Grow();
  Check();
}

void form_REGValue::ChooseType(std::uint32_t type) {
  KeepEdited();
  type_ = type;
  ShowData(ConvertRegData(given_, type, coding_));
}

void form_REGValue::ShowData(RegData value) {
  is_filling_ = true;
  RegContentPage* page = pages_[static_cast<std::size_t>(value.content)];
  if (!page->Show(value)) {
    value = AsBytes(value, coding_);
    page = pages_[static_cast<std::size_t>(RegContent::Bytes)];
    page->Show(value);
  }
  is_filling_ = is_edited_ = is_deletion_ = false;
  stack_->setCurrentWidget(page);
  lbl_Data->show();
  stack_->show();
  stack_->setFocusProxy(page);
  const bool is_improper = value.content != ContentOf(type_);
  lbl_Note->setVisible(is_improper);
  if (is_improper)
    lbl_Note->setText(tr("These bytes cannot be shown as %1, so they are edited as bytes.")
                          .arg(QString::fromStdString(RegTypeName(type_))));
  Grow();
  Check();
}

void form_REGValue::Grow() {
  layout()->invalidate();
  layout()->activate();
  QSize wanted = sizeHint();
  if (isVisible()) {
    wanted = wanted.expandedTo(size());
    wanted.setHeight(std::max(wanted.height(), layout()->minimumHeightForWidth(wanted.width())));
  }
  // Before it is shown, the frame is not known.
  const QRect free = screen()->availableGeometry();
  const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight);
  const QSize frame = isVisible() ? frameSize() - size() : QSize(0, title);
  resize(wanted.boundedTo(free.size() - frame));
  if (!isVisible()) return;
  const QPoint last = free.bottomRight() - QPoint(frameSize().width(), frameSize().height());
  move(std::min(x(), last.x()), std::min(y(), last.y()));
}

QString form_REGValue::Name() const { return OneLine(txt_Name->text()); }

RegData form_REGValue::Data() const { return is_edited_ ? Page().Data() : ConvertRegData(given_, type_, coding_); }

QString form_REGValue::ReasonAgainstData() const {
  // Any bytes can be written, and copying them for nothing may cost a pause.
  const bool is_binary = &Page() == pages_[static_cast<std::size_t>(RegContent::Bytes)];
  if (is_deletion_ || is_binary || !Page().IsValid()) return {};
  switch (FaultOf(Page().Data(), coding_)) {
    case RegFault::NotInCodePage:
      return tr(
          "The code page of this file does not have all of these characters. File, Save As Another Form makes it "
          "one of version 5.00, which has.");
    case RegFault::NotUnicode:
      return tr("The text has half a character.");
    case RegFault::OnlyText:
      return tr("A value of this kind of file is one line of text.");
    default:
      return {};
  }
}

void form_REGValue::Check() {
  const QString name_reason = check_name_ ? check_name_(Name()) : QString();
  name_reason_->Say(name_reason);
  const QString data_reason = ReasonAgainstData();
  Page().SayAgainst(data_reason);
  cmd_OK->setEnabled(name_reason.isEmpty() && data_reason.isEmpty() && (is_deletion_ || Page().IsValid()));
  // A reason may need more lines than it has.
  if (isVisible() && layout()->minimumHeightForWidth(width()) > height()) Grow();
}

void form_REGValue::keyPressEvent(QKeyEvent* event) {
  const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (is_enter && event->modifiers().testFlag(Qt::ControlModifier) && cmd_OK->isEnabled()) return accept();
  QDialog::keyPressEvent(event);
}

}  // namespace tme
