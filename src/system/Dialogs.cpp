#include "system/Dialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <limits>
#include <memory>

namespace tme {

using namespace Qt::StringLiterals;

namespace {

constexpr int kMinInputWidth = 360;  // pixels
constexpr int kProgramIcon = 64;     // pixels

/// The dialog may be gone with its parent window when it returns from its event loop. While it stands, the wait
/// cursor rests.
template <typename Dialog>
class ModalDialog {
 public:
  ModalDialog() : dialog_(new Dialog(QApplication::activeWindow())) {
    for (; QGuiApplication::overrideCursor(); QGuiApplication::restoreOverrideCursor())
      pointers_.prepend(*QGuiApplication::overrideCursor());
  }
  ~ModalDialog() {
    delete dialog_.data();
    for (const QCursor& pointer : pointers_) QGuiApplication::setOverrideCursor(pointer);
  }
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;
  Dialog* operator->() const { return dialog_.data(); }
  explicit operator bool() const { return !dialog_.isNull(); }

 private:
  QPointer<Dialog> dialog_;
  QList<QCursor> pointers_;
};

QMessageBox::StandardButtons BoxButtons(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::Ok:
      return QMessageBox::Ok;
    case MsgButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::TryAgainCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

QMessageBox::StandardButton EscapeButton(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::Ok:
      return QMessageBox::Ok;
    case MsgButtons::YesNo:
      return QMessageBox::No;
    case MsgButtons::YesNoCancel:
    case MsgButtons::OkCancel:
    case MsgButtons::TryAgainCancel:
      return QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon BoxIcon(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::None:
    case MsgIcon::Program:
      return QMessageBox::NoIcon;
    case MsgIcon::Information:
      return QMessageBox::Information;
    case MsgIcon::Question:
      return QMessageBox::Question;
    case MsgIcon::Warning:
      return QMessageBox::Warning;
  }
  return QMessageBox::NoIcon;
}

MsgAnswer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Yes:
      return MsgAnswer::Yes;
    case QMessageBox::No:
      return MsgAnswer::No;
    case QMessageBox::Cancel:
      return MsgAnswer::Cancel;
    case QMessageBox::Retry:
      return MsgAnswer::TryAgain;
    default:
      return MsgAnswer::Ok;
  }
}

/// A label breaks lines at blanks only: a long path or value gets places to break where it has none.
QString Breakable(const QString& text) {
  constexpr int kLongestRun = 60;
  QString breakable;
  int run = 0;
  for (const QChar character : text) {
    breakable += character;
    run = character.isSpace() ? 0 : run + 1;
    const bool separator = character == u'/' || character == u'\\';
    if (run < (separator ? kLongestRun / 2 : kLongestRun) || character.isHighSurrogate()) continue;
    breakable += QChar(0x200B);  // zero width space
    run = 0;
  }
  return breakable;
}

/// What can be copied of it and what a screen reader reads is the text itself, without the places to break.
class MessageBox : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;
  void ShowText(const QString& text) {
    text_ = text;
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setText(Breakable(text));
    if (auto* label = findChild<QLabel*>("qt_msgbox_label"_L1)) label->setAccessibleName(text);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->matches(QKeySequence::Copy))
      QGuiApplication::clipboard()->setText(text_);
    else
      QMessageBox::keyPressEvent(event);
  }

 private:
  QString text_;
};

void Fill(MessageBox& box, const QString& text, MsgIcon icon, const QString& title) {
  box.setObjectName("MsgBox"_L1);
  box.setWindowTitle(title);
  box.setIcon(BoxIcon(icon));
  if (icon == MsgIcon::Program) box.setIconPixmap(QApplication::windowIcon().pixmap(kProgramIcon));
  // The texts' line breaks are bare carriage returns.
  box.ShowText(QString(text).replace(u'\r', u'\n'));
}

}  // namespace

MsgAnswer Dialogs::MsgBox(const QString& text, MsgButtons buttons, MsgIcon icon, const QString& title) {
  const ModalDialog<MessageBox> box;
  Fill(*box.operator->(), text, icon, title);
  box->setStandardButtons(BoxButtons(buttons));
  if (QAbstractButton* retry = box->button(QMessageBox::Retry))
    retry->setText(QCoreApplication::translate("Dialogs", "&Try Again"));
  const bool asks = buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel;
  box->setDefaultButton(asks ? QMessageBox::Yes : QMessageBox::Ok);
  if (buttons == MsgButtons::TryAgainCancel) box->setDefaultButton(QMessageBox::Retry);
  box->setEscapeButton(EscapeButton(buttons));
  const int button = box->exec();
  return AnswerOf(box ? button : EscapeButton(buttons));
}

int Dialogs::Choose(const QString& text, const QStringList& buttons, MsgIcon icon, const QString& title) {
  const ModalDialog<MessageBox> box;
  Fill(*box.operator->(), text, icon, title);
  const int last = static_cast<int>(buttons.size()) - 1;
  QList<QAbstractButton*> added;
  for (int index = 0; index <= last; ++index)
    added.append(box->addButton(buttons[index], index == last ? QMessageBox::RejectRole : QMessageBox::ActionRole));
  box->setDefaultButton(static_cast<QPushButton*>(added[last]));
  box->setEscapeButton(added[last]);
  box->exec();
  const auto chosen = box ? added.indexOf(box->clickedButton()) : -1;
  return chosen < 0 ? last : static_cast<int>(chosen);
}

QString Dialogs::InputBox(const QString& prompt, const QString& title, const QString& text) {
  const ModalDialog<QInputDialog> box;
  box->setObjectName("InputBox"_L1);
  box->setWindowTitle(title);
  box->setInputMode(QInputDialog::TextInput);
  box->setLabelText({});  // makes the label
  if (auto* label = box->findChild<QLabel*>()) label->setTextFormat(Qt::PlainText);
  box->setLabelText(prompt);
  // A line of a file may be longer than the 32767 characters that a line edit takes unasked.
  if (auto* edit = box->findChild<QLineEdit*>()) edit->setMaxLength(std::numeric_limits<int>::max());
  box->setTextValue(text);
  box->resize(box->sizeHint().expandedTo({kMinInputWidth, 0}));
  const bool accepted = box->exec() == QDialog::Accepted;
  return accepted && box ? OneLine(box->textValue()) : QString();
}

QString OneLine(QString text) {
  text.replace("\r\n"_L1, " "_L1);
  for (QChar& character : text)
    if (character == u'\n' || character == u'\r') character = u' ';
  return text;
}

}  // namespace tme
