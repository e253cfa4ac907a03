#include "windows/history/ComparisonPane.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/PlainText.h"
#include "windows/history/DifferenceView.h"
#include "windows/history/VersionComparison.h"

using namespace Qt::StringLiterals;

namespace tme {

ComparisonPane::ComparisonPane(const QString& text_name, QWidget* parent)
    : QWidget(parent),
      lbl_Difference(PlainLabel()),
      lbl_Place(PlainLabel()),
      chk_ByStructure(new QCheckBox(tr("By &Structure"))),
      chk_DifferencesOnly(new QCheckBox(tr("&Differences only"))),
      txt_Version(new DifferenceView) {
  lbl_Difference->setObjectName(u"lbl_Difference"_s);
  lbl_Difference->setWordWrap(true);
  lbl_Place->setObjectName(u"lbl_Place"_s);
  chk_ByStructure->setObjectName(u"chk_ByStructure"_s);
  SetTip(*chk_ByStructure,
         tr("Sections, keys and values whatever their order, encoding and comments, instead of lines"));
  connect(chk_ByStructure, &QCheckBox::clicked, this, &ComparisonPane::ByChanged);
  chk_DifferencesOnly->setObjectName(u"chk_DifferencesOnly"_s);
  SetTip(*chk_DifferencesOnly, tr("Without the lines that are the same, but for a few around each difference"));
  connect(chk_DifferencesOnly, &QCheckBox::toggled, this, &ComparisonPane::ShowLines);
  txt_Version->setObjectName(u"txt_Version"_s);
  txt_Version->setAccessibleName(text_name);
  connect(txt_Version, &DifferenceView::CaretMoved, this, &ComparisonPane::ShowPlace);

  auto* row = new QHBoxLayout;
  row->addWidget(chk_ByStructure);
  row->addWidget(chk_DifferencesOnly);
  row->addStretch(1);
  row->addWidget(lbl_Place);
  cmd_Previous = AddWay(*row, u"cmd_Previous"_s, tr("&Previous Difference"), Qt::SHIFT | Qt::Key_F8,
                        &DifferenceView::GoToPrevious);
  cmd_Next = AddWay(*row, u"cmd_Next"_s, tr("&Next Difference"), Qt::Key_F8, &DifferenceView::GoToNext);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(lbl_Difference);
  layout->addLayout(row);
  layout->addWidget(txt_Version, 1);
}

QPushButton* ComparisonPane::AddWay(QHBoxLayout& row, const QString& name, const QString& caption,
                                    const QKeySequence& key, void (DifferenceView::*go)()) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  SetTip(*button, tr("%1 (%2)").arg(QString(caption).remove(u'&'), key.toString(QKeySequence::NativeText)));
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, txt_Version, go);
  auto* action = new QAction(this);
  action->setShortcut(key);
  connect(action, &QAction::triggered, txt_Version, go);
  addAction(action);
  row.addWidget(button);
  return button;
}

QList<QWidget*> ComparisonPane::TabOrder() const {
  return {chk_ByStructure, chk_DifferencesOnly, cmd_Previous, cmd_Next, txt_Version};
}

ComparedBy ComparisonPane::By() const {
  return chk_ByStructure->isChecked() ? ComparedBy::Structure : ComparedBy::Lines;
}

void ComparisonPane::SetBy(ComparedBy by) { chk_ByStructure->setChecked(by == ComparedBy::Structure); }

void ComparisonPane::OfferStructure(bool structured) { chk_ByStructure->setEnabled(structured); }

void ComparisonPane::Say(const QString& sentence) { lbl_Difference->setText(sentence); }

void ComparisonPane::Show(std::shared_ptr<const VersionComparison> comparison) {
  comparison_ = std::move(comparison);
  ShowLines();
}

void ComparisonPane::ShowAndSay(std::shared_ptr<const VersionComparison> comparison, const QString& sentence) {
  Show(std::move(comparison));
  Say(txt_Version->HasCutLines()
          ? sentence + u' ' +
                tr("Lines of more than %1 bytes are shown in part, from where they differ.")
                    .arg(QLocale().toString(static_cast<qulonglong>(DifferenceView::kShownLineBytes)))
          : sentence);
}

void ComparisonPane::ShowLines() {
  const bool differs = comparison_ && comparison_->outcome == VersionComparison::Outcome::Different;
  if (comparison_)
    txt_Version->ShowLines(comparison_->lines,
                           differs && chk_DifferencesOnly->isChecked() ? ShownLines::DifferencesOnly : ShownLines::All);
  else
    txt_Version->Clear();
  ShowPlace();
}

void ComparisonPane::ShowPlace() {
  const int count = txt_Version->DifferenceCount();
  lbl_Place->setText(count == 0
                         ? QString()
                         : tr("Difference %1 of %2")
                               .arg(QLocale().toString(txt_Version->CurrentDifference()), QLocale().toString(count)));
  lbl_Place->setVisible(count > 0);
  chk_DifferencesOnly->setEnabled(count > 0);
  cmd_Previous->setEnabled(txt_Version->HasPrevious());
  cmd_Next->setEnabled(txt_Version->HasNext());
}

}  // namespace tme
