#include "windows/tree/SaveForm.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/FormCaptions.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

struct FormTexts {
  Q_DECLARE_TR_FUNCTIONS(SaveForm)
};

/// A row of choices with a value each.
class Choices {
 public:
  Choices(QFormLayout& rows, const QString& name, const QString& caption) : box_(new QComboBox) {
    box_->setObjectName(name);
    box_->setAccessibleName(QString(caption).remove(u'&').remove(u':'));
    rows.addRow(PlainLabel(caption), box_);
    static_cast<QLabel*>(rows.labelForField(box_))->setBuddy(box_);
  }
  void Add(const QString& text, int value) { box_->addItem(text, value); }
  void Choose(int value) { box_->setCurrentIndex(box_->findData(value)); }
  int Chosen() const { return box_->currentData().toInt(); }
  QComboBox& Box() { return *box_; }

 private:
  QComboBox* box_;
};

Choices Encodings(QFormLayout& rows, TextEncoding present) {
  Choices encodings(rows, u"cb_Encoding"_s, FormTexts::tr("&Encoding:"));
  for (const TextEncoding encoding : OfferedEncodings(present))
    encodings.Add(CaptionOf(encoding), static_cast<int>(encoding));
  encodings.Choose(static_cast<int>(present));
  return encodings;
}

Choices Ends(QFormLayout& rows, LineEnds present) {
  Choices ends(rows, u"cb_LineEnds"_s, FormTexts::tr("&Line ends:"));
  if (present == LineEnds::Mixed) ends.Add(CaptionOf(present), static_cast<int>(present));
  for (const LineEnds each : kOfferedLineEnds) ends.Add(CaptionOf(each), static_cast<int>(each));
  ends.Choose(static_cast<int>(present));
  return ends;
}

}  // namespace

std::optional<SaveForm> AskForSaveForm(QWidget* parent, const std::vector<FormKind>& kinds, const SaveForm& present) {
  QDialog dialog(parent);
  dialog.setObjectName(u"SaveForm"_s);
  dialog.setWindowTitle(FormTexts::tr("Save As Another Form"));
  auto* column = new QVBoxLayout(&dialog);
  auto* rows = new QFormLayout;
  column->addLayout(rows);
  std::optional<Choices> kind;
  if (!kinds.empty()) {
    kind.emplace(*rows, u"cb_Kind"_s, FormTexts::tr("&Kind:"));
    for (std::size_t index = 0; index < kinds.size(); ++index) kind->Add(kinds[index].name, static_cast<int>(index));
    kind->Choose(static_cast<int>(present.kind));
  }
  Choices encodings = Encodings(*rows, present.encoding), ends = Ends(*rows, present.line_ends);
  if (kind)
    QObject::connect(&kind->Box(), &QComboBox::currentIndexChanged, &dialog, [&] {
      const auto chosen = static_cast<std::size_t>(kind->Chosen());
      encodings.Choose(static_cast<int>(chosen == present.kind ? present.encoding : kinds[chosen].encoding));
    });
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, &dialog);
  QPushButton* save = buttons->addButton(FormTexts::tr("&Save As..."), QDialogButtonBox::AcceptRole);
  save->setDefault(true);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  column->addWidget(buttons);
  (kind ? kind->Box() : encodings.Box()).setFocus();
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return SaveForm{kind ? static_cast<std::size_t>(kind->Chosen()) : 0, static_cast<TextEncoding>(encodings.Chosen()),
                  static_cast<LineEnds>(ends.Chosen())};
}

}  // namespace tme
