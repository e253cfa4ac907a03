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
#include <algorithm>
#include <array>
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

/// How a box with one of the MsgButtons, in their order, is made.
struct ButtonSet {
  QMessageBox::StandardButtons shown;
  QMessageBox::StandardButton preset;
  QMessageBox::StandardButton on_escape;
};
constexpr std::array kButtonSets{
    ButtonSet{QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok},
    ButtonSet{QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No},
    ButtonSet{QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes, QMessageBox::Cancel},
    ButtonSet{QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel},
    ButtonSet{QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Retry, QMessageBox::Cancel},
};
/// In the order of MsgIcon.
constexpr std::array kIcons{QMessageBox::NoIcon, QMessageBox::Information, QMessageBox::Question, QMessageBox::Warning,
                            QMessageBox::NoIcon};
/// In the order of MsgAnswer.
constexpr std::array kAnswers{QMessageBox::Ok, QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel,
                              QMessageBox::Retry};

/// What can be copied of it and what a screen reader reads is the text itself, without the places to break.
class MessageBox : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;
  void Fill(const QString& text, MsgIcon icon, const QString& title) {
    // The texts' line breaks are bare carriage returns.
    text_ = QString(text).replace(u'\r', u'\n');
    setObjectName("MsgBox"_L1);
    setWindowTitle(title);
    setIcon(kIcons.at(static_cast<std::size_t>(icon)));
    if (icon == MsgIcon::Program) setIconPixmap(QApplication::windowIcon().pixmap(kProgramIcon));
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setText(Breakable(text_));
    if (auto* label = findChild<QLabel*>("qt_msgbox_label"_L1)) label->setAccessibleName(text_);
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

}  // namespace

MsgAnswer Dialogs::MsgBox(const QString& text, MsgButtons buttons, MsgIcon icon, const QString& title) {
  const ModalDialog<MessageBox> box;
  box->Fill(text, icon, title);
  const ButtonSet& set = kButtonSets.at(static_cast<std::size_t>(buttons));
  box->setStandardButtons(set.shown);
  box->setDefaultButton(set.preset);
  box->setEscapeButton(set.on_escape);
  if (QAbstractButton* retry = box->button(QMessageBox::Retry))
    retry->setText(QCoreApplication::translate("Dialogs", "&Try Again"));
  const int chosen = box->exec();
  const auto* const answer = std::find(kAnswers.begin(), kAnswers.end(), box ? chosen : set.on_escape);
  return answer == kAnswers.end() ? MsgAnswer::Ok : static_cast<MsgAnswer>(answer - kAnswers.begin());
}

int Dialogs::Choose(const QString& text, const QStringList& buttons, MsgIcon icon, const QString& title) {
  const ModalDialog<MessageBox> box;
  box->Fill(text, icon, title);
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

QString Breakable(const QString& text) {
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

QString OneLine(QString text) {
  text.replace("\r\n"_L1, " "_L1);
  for (QChar& character : text)
    if (character == u'\n' || character == u'\r') character = u' ';
  return text;
}

}  // namespace tme
