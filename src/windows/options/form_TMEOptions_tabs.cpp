#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>

#include "shell/PlainText.h"
#include "shell/Settings.h"
#include "windows/options/ShellIntegration.h"
#include "windows/options/form_TMEOptions.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Widths in average characters, so that they grow with the font.
constexpr int kMinutesCharacters = 6;
constexpr int kFontNameCharacters = 28;
constexpr int kListRows = 7;

QString WithoutAccessKey(QString caption) { return caption.remove(u'&'); }

void SetWidth(QLineEdit* box, int characters) {
  box->setFixedWidth(box->fontMetrics().averageCharWidth() * characters + box->fontMetrics().height());
}

template <typename Control>
Control* Named(Control* control, const QString& name, const QString& accessible_name) {
  control->setObjectName(name);
  control->setAccessibleName(accessible_name);
  return control;
}

QCheckBox* AddCheckBox(QVBoxLayout* column, const QString& name, const QString& caption) {
  auto* box = Named(new QCheckBox(caption), name, WithoutAccessKey(caption));
  column->addWidget(box);
  return box;
}

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& caption, const QString& accessible_name) {
  auto* button = Named(new QPushButton(caption, parent), name, accessible_name);
  button->setAutoDefault(false);
  return button;
}

QGroupBox* MakeGroup(const QString& name, const QString& title) { return Named(new QGroupBox(title), name, title); }

}  // namespace

void form_TMEOptions::BuildTabs() {
  Named(TS, u"TS"_s, tr("Option pages"));
  // All captions in full, whatever the font: the dialog is as wide as they need.
  TS->setUsesScrollButtons(false);
  TS->setElideMode(Qt::ElideNone);
  TS->tabBar()->setAccessibleName(tr("Option pages"));

  BuildGeneralTab(AddTab(tr("General"), tr("General Program Options")));
  BuildTreeTab(AddTab(tr("INI Editor"), tr("Options specific to the INI Editor")), u"cb_WholeINI"_s,
               &Settings::ini_whole);
  BuildTreeTab(AddTab(tr("REG Editor"), tr("Options specific to the REG Editor")), u"cb_WholeREG"_s,
               &Settings::reg_whole);
  BuildExtensionBox();
  QVBoxLayout* txt = AddTab(tr("TXT Editor"), tr("Options specific to the TXT Editor"));
  txt->addWidget(BuildFilter(Txt, u"Frame2"_s, tr("Text Files")), 1);
  BuildDefaultDisplay(txt);
  QVBoxLayout* rtf = AddTab(tr("RTF Editor"), tr("Options specific to the RTF Editor"));
  rtf->addWidget(BuildFilter(Rtf, u"Frame3"_s, tr("Rich-Text Files")), 1);
  connect(TS, &QTabWidget::currentChanged, this, &form_TMEOptions::TS_Click);
  MoveExtensionBox(Txt);
}

namespace {
/// A page that scrolls where the screen has no place for all of it, and asks for the place of all.
class Page : public QScrollArea {
 public:
  explicit Page(QWidget* content) {
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
  }
  QSize sizeHint() const override { return widget()->sizeHint(); }
  QSize minimumSizeHint() const override {
    const int with_scroll_bar = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
    return {with_scroll_bar, QScrollArea::minimumSizeHint().height()};
  }
};
}  // namespace

QVBoxLayout* form_TMEOptions::AddTab(const QString& caption, const QString& tool_tip) {
  auto* frame = new QWidget;
  const int index = TS->addTab(new Page(frame), caption);
  Named(frame, u"frame_Sections"_s + QString::number(index), caption);
  TS->setTabToolTip(index, TipText(tool_tip));
  return new QVBoxLayout(frame);
}

void form_TMEOptions::TS_Click() {
  if (filters_[Txt].list->isVisible()) MoveExtensionBox(Txt);
  if (filters_[Rtf].list->isVisible()) MoveExtensionBox(Rtf);
}

void form_TMEOptions::AddFlag(QVBoxLayout* column, const QString& name, const QString& caption, bool Settings::*field) {
  flag_boxes_.emplace_back(field, AddCheckBox(column, name, caption));
}

void form_TMEOptions::BuildGeneralTab(QVBoxLayout* column) {
  const auto add_group = [column](const QString& name, const QString& title) {
    QGroupBox* group = MakeGroup(name, title);
    column->addWidget(group);
    return new QVBoxLayout(group);
  };
  QVBoxLayout* windows = add_group(u"frm_Windows"_s, tr("Windows and Messages"));
  AddFlag(windows, u"cb_SEM"_s, tr("Start editors ma&ximized"), &Settings::start_editors_max);
  AddFlag(windows, u"cb_ContainSRD"_s, tr("&Start search and replace inside the frame"), &Settings::contain_srd);
  AddFlag(windows, u"cb_Notifications"_s, tr("Do &not report when a tool has finished"), &Settings::supress_results);

  QVBoxLayout* opening = add_group(u"frm_Opening"_s, tr("Opening Files"));
  AddFlag(opening, u"cb_MultiSelect"_s, tr("Allow se&veral files at once"), &Settings::multi_select);
  BuildDefaultOpenType(opening);

  BuildAutoSave(add_group(u"frm_AutoSave"_s, tr("AutoSave")));

  QVBoxLayout* manager = add_group(u"frm_FileManager"_s, tr("File Manager"));
  cb_SendTo =
      AddCheckBox(manager, u"cb_SendTo"_s, tr("Offer the editor under %1").arg(ShellIntegration::SendToPlace()));
  Check1 = AddCheckBox(manager, u"Check1"_s, tr("Offer the editor in the context &menu of all files"));
  column->addStretch();
}

void form_TMEOptions::BuildTreeTab(QVBoxLayout* column, const QString& name, bool Settings::*always_whole) {
  AddFlag(column, name, tr("Always &keep the whole file"), always_whole);
  QLabel* label = PlainLabel(
      tr("Files then open with all that they hold, in its order, and an edit changes its own lines alone.  View, Whole "
         "File chooses for one document."));
  label->setWordWrap(true);
  column->addWidget(label);
  column->addStretch();
}

void form_TMEOptions::BuildDefaultOpenType(QVBoxLayout* column) {
  auto* group = Named(new QWidget, u"opt_DefOpen"_s, tr("Type of file listed first"));
  auto* row = new QHBoxLayout(group);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(PlainLabel(tr("List first:")));
  opt_DefOpen = new QButtonGroup(this);
  const QStringList captions{tr("&INI"), tr("&Registry"), tr("&Text"), tr("Ric&h text")};
  for (std::size_t index = 0; index < kOpenTypes.size(); ++index) {
    const QString& caption = captions[static_cast<qsizetype>(index)];
    auto* button = Named(new QRadioButton(caption), u"opt_DefOpen"_s + QString::number(index),
                         tr("List first: %1").arg(WithoutAccessKey(caption)));
    opt_DefOpen->addButton(button, static_cast<int>(kOpenTypes[index]));
    row->addWidget(button);
  }
  row->addStretch();
  column->addWidget(group);
}

void form_TMEOptions::BuildAutoSave(QVBoxLayout* column) {
  auto* row = new QHBoxLayout;
  column->addLayout(row);
  cb_AutoSave =
      Named(new QCheckBox(tr("Save all doc&uments every")), u"cb_AutoSave"_s, tr("Save all documents automatically"));
  txt_AutoSave = Named(new QLineEdit, u"txt_AutoSave"_s, tr("Minutes between automatic saves"));
  SetWidth(txt_AutoSave, kMinutesCharacters);
  txt_AutoSave->installEventFilter(this);
  row->addWidget(cb_AutoSave);
  row->addWidget(txt_AutoSave);
  row->addWidget(PlainLabel(tr("minutes")));
  row->addStretch();
  connect(cb_AutoSave, &QCheckBox::toggled, this, &form_TMEOptions::cb_AutoSave_Click);
  cb_AutoSave_Click();
}

void form_TMEOptions::BuildDefaultDisplay(QVBoxLayout* column) {
  QGroupBox* Frame1 = MakeGroup(u"Frame1"_s, tr("Default Display"));
  column->addWidget(Frame1);
  auto* row = new QHBoxLayout(Frame1);
  const auto add_box = [&](const QString& name, const QString& caption, const QString& accessible_name, int width) {
    auto* box = Named(new QLineEdit(Frame1), name, accessible_name);
    box->setReadOnly(true);
    box->installEventFilter(this);
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * width);
    QLabel* label = PlainLabel(caption);
    label->setBuddy(box);
    row->addWidget(label);
    row->addWidget(box, width);
    return box;
  };
  txt_txtfont = add_box(u"txt_txtfont"_s, tr("Fo&nt:"), tr("Default font"), kFontNameCharacters);
  txt_txtsize = add_box(u"txt_txtsize"_s, tr("Si&ze:"), tr("Default size in points"), kMinutesCharacters);
  QPushButton* cmd_SetFS = MakeButton(Frame1, u"cmd_SetFS"_s, tr("C&hoose..."), tr("Choose default font and size"));
  row->addWidget(cmd_SetFS);
  connect(cmd_SetFS, &QPushButton::clicked, this, &form_TMEOptions::cmd_SetFS_Click);
}

void form_TMEOptions::BuildExtensionBox() {
  extension_box_ = new QWidget(this);
  auto* column = new QVBoxLayout(extension_box_);
  column->setContentsMargins(0, 0, 0, 0);
  QLabel* label = PlainLabel(tr("Define &Filter:"));
  txt_ext = Named(new QLineEdit(extension_box_), u"txt_ext"_s, tr("Define Filter"));
  txt_ext->installEventFilter(this);
  label->setBuddy(txt_ext);
  column->addWidget(label);
  column->addWidget(txt_ext);
}

QGroupBox* form_TMEOptions::BuildFilter(FilterKind kind, const QString& frame_name, const QString& title) {
  QGroupBox* frame = MakeGroup(frame_name, title);
  FilterControls& controls = filters_[kind];
  const bool text = kind == Txt;
  controls.add = MakeButton(frame, text ? u"cmd_Add"_s : u"cmd_RTFAdd"_s, tr("&Add"), tr("Add the extension"));
  controls.remove = MakeButton(frame, text ? u"cmd_Remove"_s : u"Cmd_RTFRemove"_s, tr("&Remove"),
                               tr("Remove the selected extension"));
  controls.list = Named(new QListWidget(frame), text ? u"list_text"_s : u"list_rtf"_s,
                        text ? tr("Extensions of text files") : tr("Extensions of rich-text files"));
  controls.list->setMinimumHeight(controls.list->fontMetrics().lineSpacing() * kListRows);
  controls.list->installEventFilter(this);
  QLabel* label = PlainLabel(tr("E&xtensions:"));
  label->setBuddy(controls.list);

  controls.grid = new QGridLayout(frame);
  controls.grid->addWidget(controls.add, 0, 1, Qt::AlignBottom);
  controls.grid->addWidget(label, 1, 0);
  controls.grid->addWidget(controls.list, 2, 0);
  controls.grid->addWidget(controls.remove, 2, 1, Qt::AlignTop);
  controls.grid->setRowStretch(2, 1);
  connect(controls.add, &QPushButton::clicked, this, [this, kind] { cmd_Add_Click(kind); });
  connect(controls.remove, &QPushButton::clicked, this, [this, kind] { cmd_Remove_Click(kind); });
  return frame;
}

void form_TMEOptions::MoveExtensionBox(FilterKind kind) {
  const FilterControls& controls = filters_[kind];
  controls.grid->addWidget(extension_box_, 0, 0);
  extension_box_->show();
  setTabOrder(txt_ext, controls.add);
  setTabOrder(controls.add, controls.list);
  setTabOrder(controls.list, controls.remove);
}

}  // namespace tme
