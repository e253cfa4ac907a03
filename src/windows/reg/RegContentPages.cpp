#include "windows/reg/RegContentPages.h"

#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "shell/DisplayText.h"
#include "shell/PlainText.h"
#include "windows/reg/FieldReason.h"
#include "windows/reg/HexView.h"
#include "windows/reg/RegTypeChange.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kTextCharacters = 64;
constexpr int kTextLines = 6;

QVBoxLayout* ColumnOf(QWidget* page) {
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(0, 0, 0, 0);
  return column;
}

}  // namespace

RegTextBox::RegTextBox(QWidget* parent, Enter enter) : QPlainTextEdit(parent), enter_(enter) {
  setTabChangesFocus(true);
  setMinimumSize(fontMetrics().averageCharWidth() * kTextCharacters, fontMetrics().lineSpacing() * kTextLines);
}

bool RegTextBox::CanHold(const QString& text) {
  // What the text's own layout takes for its marks.
  constexpr QChar kMarks[] = {QChar(0), QChar::ParagraphSeparator, QChar(0xFDD0), QChar(0xFDD1)};
  return std::ranges::none_of(kMarks, [&text](QChar mark) { return text.contains(mark); });
}

void RegTextBox::SetText(const QString& text) {
  setPlainText(text);
  line_end_ = u"\r\n"_s;
  qsizetype at = 0;
  for (QTextBlock block = document()->begin(); block.next().isValid(); block = block.next()) {
    at += block.text().size();
    const QString end = text.mid(at, text.mid(at, 2) == u"\r\n" ? 2 : 1);
    // The state of a block is free for its editor; new blocks have -1.
    block.setUserState(end == u"\r\n" ? 0 : end[0].unicode());
    if (block == document()->begin()) line_end_ = end;
    at += end.size();
  }
}

QString RegTextBox::Text() const {
  QString text;
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    text += block.text();
    if (!block.next().isValid()) break;
    const int state = block.userState();
    text += state < 0 ? line_end_ : state == 0 ? u"\r\n"_s : QString(QChar(state));
  }
  return text;
}

QStringList RegTextBox::Lines() const {
  QStringList lines;
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) lines += block.text();
  return lines;
}

void RegTextBox::keyPressEvent(QKeyEvent* event) {
  const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!is_enter) return QPlainTextEdit::keyPressEvent(event);
  const bool is_shifted = event->modifiers().testFlag(Qt::ShiftModifier);
  if (event->modifiers().testFlag(Qt::ControlModifier) || (enter_ == Enter::Accepts && !is_shifted))
    return event->ignore();
  textCursor().insertBlock();
  ensureCursorVisible();
}

RegTextPage::RegTextPage(QWidget* parent)
    : RegContentPage(parent),
      txt_Text(new RegTextBox(this, RegTextBox::Enter::Accepts)),
      reason_(new FieldReason(*txt_Text, this)) {
  txt_Text->setObjectName(u"txt_Text"_s);
  txt_Text->setAccessibleName(tr("Text"));
  setFocusProxy(txt_Text);
  connect(txt_Text, &QPlainTextEdit::textChanged, this, &RegContentPage::Edited);
  QVBoxLayout* column = ColumnOf(this);
  column->addWidget(txt_Text, 1);
  column->addWidget(PlainLabel(tr("Shift+Enter begins a new line."), this));
  column->addWidget(reason_);
}

bool RegTextPage::Show(const RegData& shown) {
  const QString text = EditableText(shown.text);
  if (!RegTextBox::CanHold(text)) return false;
  type_ = shown.type;
  txt_Text->SetText(text);
  txt_Text->selectAll();
  return true;
}

RegData RegTextPage::Data() const {
  RegData made = EmptyRegData(type_);
  made.text = EditedBytes(txt_Text->Text());
  return made;
}

void RegTextPage::SayAgainst(const QString& reason) { reason_->Say(reason); }

RegNumberPage::RegNumberPage(QWidget* parent)
    : RegContentPage(parent),
      hexadecimal_(MakeBox(u"txt_Hexadecimal"_s, tr("Hexadecimal number"), 16)),
      decimal_(MakeBox(u"txt_Decimal"_s, tr("Decimal number"), 10)) {
  auto* form = new QFormLayout(this);
  form->setContentsMargins(0, 0, 0, 0);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("&Hexadecimal:"), hexadecimal_.edit);
  form->addRow({}, hexadecimal_.reason);
  form->addRow(tr("D&ecimal:"), decimal_.edit);
  form->addRow({}, decimal_.reason);
  setFocusProxy(hexadecimal_.edit);
  connect(hexadecimal_.edit, &QLineEdit::textEdited, this, [this] { Take(hexadecimal_, decimal_); });
  connect(decimal_.edit, &QLineEdit::textEdited, this, [this] { Take(decimal_, hexadecimal_); });
}

RegNumberPage::Box RegNumberPage::MakeBox(const QString& object_name, const QString& accessible_name, int base) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(object_name);
  edit->setAccessibleName(accessible_name);
  return {edit, new FieldReason(*edit, this), base};
}

bool RegNumberPage::Show(const RegData& shown) {
  type_ = shown.type;
  number_ = shown.number;
  for (const Box& box : {hexadecimal_, decimal_}) {
    box.edit->setText(QString::number(*number_, box.base));
    box.reason->Say({});
  }
  hexadecimal_.edit->selectAll();
  return true;
}

RegData RegNumberPage::Data() const {
  RegData made = EmptyRegData(type_);
  made.number = *number_;
  return made;
}

QString RegNumberPage::ReasonAgainst(const QString& digits, int base) const {
  if (digits.isEmpty()) return tr("A number is needed.");
  bool is_number = false;
  const std::uint64_t number = digits.toULongLong(&is_number, base);
  if (is_number && number <= LargestNumberOf(type_) && !digits.startsWith(u'+')) return {};
  const auto is_digit = [base](QChar character) {
    bool is_one = false;
    QString(character).toInt(&is_one, base);
    return is_one;
  };
  if (std::ranges::all_of(digits, is_digit))
    return tr("The largest number of this type is %1.").arg(QString::number(LargestNumberOf(type_), base));
  return base == 16 ? tr("A hexadecimal number has the digits 0 to 9 and a to f only.")
                    : tr("A decimal number has the digits 0 to 9 only.");
}

void RegNumberPage::Take(const Box& from, const Box& to) {
  QString digits = from.edit->text().trimmed();
  if (from.base == 16 && digits.startsWith(u"0x"_s, Qt::CaseInsensitive)) digits.remove(0, 2);
  const QString reason = ReasonAgainst(digits, from.base);
  number_.reset();
  if (reason.isEmpty()) number_ = digits.toULongLong(nullptr, from.base);
  from.reason->Say(reason);
  to.reason->Say({});
  to.edit->setText(number_ ? QString::number(*number_, to.base) : QString());
  emit Edited();
}

RegStringsPage::RegStringsPage(QWidget* parent)
    : RegContentPage(parent),
      txt_Strings(new RegTextBox(this, RegTextBox::Enter::BeginsLine)),
      reason_(new FieldReason(*txt_Strings, this)) {
  txt_Strings->setObjectName(u"txt_Strings"_s);
  txt_Strings->setAccessibleName(tr("Texts, a line each"));
  txt_Strings->setLineWrapMode(QPlainTextEdit::NoWrap);
  setFocusProxy(txt_Strings);
  connect(txt_Strings, &QPlainTextEdit::textChanged, this, &RegStringsPage::Check);
  QVBoxLayout* column = ColumnOf(this);
  column->addWidget(txt_Strings, 1);
  column->addWidget(PlainLabel(tr("Each line is a text of its own. Ctrl+Enter accepts."), this));
  column->addWidget(reason_);
}

bool RegStringsPage::Show(const RegData& shown) {
  QStringList lines;
  for (const std::string& string : shown.strings) lines += EditableText(string);
  const auto is_line = [](const QString& line) {
    return RegTextBox::CanHold(line) && !line.contains(u'\n') && !line.contains(u'\r');
  };
  if (!std::ranges::all_of(lines, is_line)) return false;
  type_ = shown.type;
  txt_Strings->SetText(lines.join(u"\r\n"_s));
  return true;
}

QStringList RegStringsPage::Strings() const {
  QStringList lines = txt_Strings->Lines();
  if (lines.last().isEmpty()) lines.removeLast();
  return lines;
}

int RegStringsPage::EmptyLine() const { return static_cast<int>(Strings().indexOf(QString())); }

RegData RegStringsPage::Data() const {
  RegData made = EmptyRegData(type_);
  for (const QString& line : Strings()) made.strings.push_back(EditedBytes(line));
  return made;
}

void RegStringsPage::Check() {
  const int line = EmptyLine();
  reason_->Say(line < 0
                   ? QString()
                   : tr("Line %1 is empty, but an empty text would end the list.").arg(QLocale().toString(line + 1)));
  emit Edited();
}

void RegStringsPage::SayAgainst(const QString& reason) {
  if (EmptyLine() < 0) reason_->Say(reason);
}

RegBinaryPage::RegBinaryPage(QWidget* parent)
    : RegContentPage(parent), hex_(new HexView(this)), reason_(new FieldReason(*hex_, this)) {
  setFocusProxy(hex_);
  QLabel* status = PlainLabel({}, this);
  status->setObjectName(u"hex_status"_s);
  status->setWordWrap(true);
  connect(hex_, &HexView::CursorMoved, this, [this, status] {
    status->setText(hex_->StatusText());
    reason_->Say({});
  });
  connect(hex_, &HexView::BytesChanged, this, &RegContentPage::Edited);
  connect(hex_, &HexView::Refused, reason_, &FieldReason::Say);
  QVBoxLayout* column = ColumnOf(this);
  column->addWidget(hex_, 1);
  column->addWidget(status);
  column->addWidget(reason_);
}

bool RegBinaryPage::Show(const RegData& shown) {
  type_ = shown.type;
  hex_->SetBytes(QByteArray::fromStdString(shown.bytes));
  return true;
}

RegData RegBinaryPage::Data() const {
  RegData made = EmptyRegData(type_);
  made.content = RegContent::Bytes;
  made.bytes = hex_->Bytes().toStdString();
  return made;
}

void RegBinaryPage::SayAgainst(const QString& reason) { reason_->Say(reason); }

}  // namespace tme
