#include "windows/tree/FindBar.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include "shell/DisplayText.h"
#include "shell/PlainText.h"
#include "windows/tree/FlowLayout.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kBarMargin = 3;         // pixels
constexpr int kTextCharacters = 14;   // which the text shows at least
constexpr int kCountCharacters = 13;  // so that the buttons stay where they are while hits are counted

}  // namespace

FindBar::FindBar(TreeFinder& finder, const std::vector<SearchTarget::Field>& fields, QWidget* parent)
    : QFrame(parent), finder_(finder), row_(new FlowLayout), text_(new QLineEdit(this)) {
  setObjectName(u"find_bar"_s);
  setAccessibleName(tr("Find"));
  setFrameShape(QFrame::StyledPanel);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kBarMargin, kBarMargin, kBarMargin, kBarMargin);
  rows->setSpacing(kBarMargin);
  // Above the rows, which stay where they are when it comes: the bar grows upwards.
  error_ = PlainLabel({}, this);
  error_->setObjectName(u"find_error"_s);
  error_->setWordWrap(true);
  error_->hide();
  rows->addWidget(error_);
  rows->addLayout(row_);
  row_->setSpacing(kBarMargin);
  BuildText();
  connect(AddButton("find_previous", u"▲"_s, tr("Find Previous"), tr("The hit before (Shift+F3)")),
          &QToolButton::clicked, this, &FindBar::PreviousWanted);
  connect(AddButton("find_next", u"▼"_s, tr("Find Next"), tr("The next hit (F3)")), &QToolButton::clicked, this,
          &FindBar::NextWanted);
  count_ = PlainLabel({}, this);
  count_->setObjectName(u"find_count"_s);
  count_->setMinimumWidth(fontMetrics().averageCharWidth() * kCountCharacters);
  row_->addWidget(count_);
  match_case_ = AddToggle("find_case", tr("Aa"), tr("Match Case"), tr("Match case"));
  whole_word_ = AddToggle("find_word", tr("Word"), tr("Whole Word"), tr("Whole words alone"));
  pattern_ = AddToggle("find_pattern", u".*"_s, tr("Regular Expression"), tr("The text is a regular expression"));
  AddLookIn(fields);
  list_ = AddButton("find_list", tr("All Hits"), tr("All Hits"), tr("A list of all hits beside the tree"));
  list_->setCheckable(true);
  connect(list_, &QToolButton::toggled, this, &FindBar::ListWanted);
  QToolButton* close = AddButton("find_close", {}, tr("Close the bar"), tr("Close the bar (Esc)"));
  close->setIcon(style()->standardIcon(QStyle::SP_DockWidgetCloseButton));
  connect(close, &QToolButton::clicked, this, &FindBar::CloseWanted);
  BuildReplaceRow();
  rows->addWidget(replace_row_);
  connect(&finder_, &TreeFinder::Progressed, this, &FindBar::ShowState);
  // What was said was about what there was.
  connect(&finder_, &TreeFinder::Restarted, this, [this] { Say(finder_.Error()); });
  hide();
}

void FindBar::BuildText() {
  text_->setObjectName(u"find_text"_s);
  text_->setAccessibleName(tr("Text to find"));
  text_->setPlaceholderText(tr("Find"));
  text_->setMinimumWidth(fontMetrics().averageCharWidth() * kTextCharacters);
  text_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  text_->installEventFilter(this);
  connect(text_, &QLineEdit::textChanged, this, &FindBar::ChangeQuery);
  row_->addWidget(text_);
}

void FindBar::BuildReplaceRow() {
  replace_row_ = new QWidget(this);
  auto* row = new FlowLayout(replace_row_);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kBarMargin);
  replace_text_ = new QLineEdit(replace_row_);
  replace_text_->setObjectName(u"replace_text"_s);
  replace_text_->setAccessibleName(tr("Text to put in its place"));
  replace_text_->setPlaceholderText(tr("Replace with"));
  replace_text_->setMinimumWidth(fontMetrics().averageCharWidth() * kTextCharacters);
  replace_text_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  replace_text_->installEventFilter(this);
  connect(replace_text_, &QLineEdit::returnPressed, this, &FindBar::ReplaceWanted);
  row->addWidget(replace_text_);
  const auto add = [&](const char* name, const QString& caption, const QString& tip, void (FindBar::*wanted)()) {
    auto* button = new QToolButton(replace_row_);
    button->setObjectName(QLatin1StringView(name));
    button->setText(caption);
    button->setAccessibleName(caption);
    SetTip(*button, tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::clicked, this, wanted);
    row->addWidget(button);
  };
  add("replace_one", tr("Replace"), tr("Replace this hit and go to the next (Enter)"), &FindBar::ReplaceWanted);
  add("replace_all", tr("Replace All..."), tr("Show what all hits become, and replace them"),
      &FindBar::ReplaceAllWanted);
  replace_row_->hide();
}

QToolButton* FindBar::AddButton(const char* name, const QString& caption, const QString& accessible_name,
                                const QString& tip) {
  auto* button = new QToolButton(this);
  button->setObjectName(QLatin1StringView(name));
  button->setText(caption);
  button->setAccessibleName(accessible_name);
  SetTip(*button, tip);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keys with the text
  row_->addWidget(button);
  return button;
}

QToolButton* FindBar::AddToggle(const char* name, const QString& caption, const QString& accessible_name,
                                const QString& tip) {
  QToolButton* button = AddButton(name, caption, accessible_name, tip);
  button->setCheckable(true);
  connect(button, &QToolButton::toggled, this, &FindBar::ChangeQuery);
  return button;
}

void FindBar::AddLookIn(const std::vector<SearchTarget::Field>& fields) {
  QToolButton* button =
      AddButton("find_fields", tr("Look In"), tr("Look In"), tr("What is searched, and in which documents"));
  button->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(button);
  menu->setAccessibleName(tr("Look In"));
  for (const SearchTarget::Field& field : fields) {
    QAction* action = menu->addAction(field.caption);
    action->setCheckable(true);
    action->setChecked(true);
    connect(action, &QAction::toggled, this, &FindBar::ChangeQuery);
    fields_.push_back({field.field, action});
  }
  menu->addSeparator();
  AddScopes(*menu);
  button->setMenu(menu);
}

void FindBar::AddScopes(QMenu& menu) {
  auto* scopes = new QActionGroup(&menu);
  this_document_ = menu.addAction(tr("&This Document"));
  all_documents_ = menu.addAction(tr("&All Open Documents"));
  for (QAction* action : {this_document_, all_documents_}) {
    action->setCheckable(true);
    scopes->addAction(action);
  }
  this_document_->setChecked(true);
  connect(all_documents_, &QAction::toggled, this, &FindBar::ChangeQuery);
}

void FindBar::Open(const FindQuery& query) {
  if (!isHidden()) return;
  replace_row_->hide();
  ShowQuery(query);
  show();
  ChangeQuery();
}

void FindBar::OpenWith(const FindBar& other) {
  const FindQuery& query = other.finder_.Query();
  {
    const QScopedValueRollback showing(is_showing_, true);
    ShowQuery(query);
    for (const FieldAction& field : fields_) field.action->setChecked((query.left_out & FieldBit(field.field)) == 0);
    (query.scope == FindScope::AllDocuments ? all_documents_ : this_document_)->setChecked(true);
    replace_text_->setText(other.ReplaceText());
  }
  replace_row_->setVisible(!other.replace_row_->isHidden());
  show();
  ChangeQuery();
}

void FindBar::FocusText() {
  text_->setFocus(Qt::ShortcutFocusReason);
  text_->selectAll();
}

void FindBar::ShowReplace() {
  replace_row_->show();
  if (text_->text().isEmpty()) return FocusText();
  replace_text_->setFocus(Qt::ShortcutFocusReason);
  replace_text_->selectAll();
}

QString FindBar::ReplaceText() const { return replace_text_->text(); }

void FindBar::Say(const QString& reason) {
  error_->setText(reason);
  error_->setAccessibleName(reason);
  error_->setVisible(!reason.isEmpty());
}

void FindBar::SetListChecked(bool is_checked) { list_->setChecked(is_checked); }

void FindBar::ShowQuery(const FindQuery& query) {
  const QScopedValueRollback showing(is_showing_, true);
  text_->setText(query.wanted);
  match_case_->setChecked(query.search_case == SearchCase::Match);
  whole_word_->setChecked(query.words == SearchWords::Whole);
  pattern_->setChecked(query.syntax == FindSyntax::Pattern);
}

void FindBar::ChangeQuery() {
  if (is_showing_) return;
  FindQuery query;
  query.wanted = text_->text();
  if (match_case_->isChecked()) query.search_case = SearchCase::Match;
  if (whole_word_->isChecked()) query.words = SearchWords::Whole;
  if (pattern_->isChecked()) query.syntax = FindSyntax::Pattern;
  if (all_documents_->isChecked()) query.scope = FindScope::AllDocuments;
  for (const FieldAction& field : fields_)
    if (!field.action->isChecked()) query.left_out |= FieldBit(field.field);
  finder_.SetQuery(query);
  Say(finder_.Error());
  ShowState();
}

QString FindBar::CountText() const {
  const std::size_t count = finder_.Hits().size(), all = finder_.FoundCount();
  const auto number = [](std::size_t of) { return QLocale().toString(static_cast<qulonglong>(of)); };
  if (!finder_.Matcher() || (all == 0 && finder_.IsSearching())) return {};
  const std::optional<std::size_t> chosen = finder_.Chosen();
  if (chosen && *chosen >= count) return tr("%1 of %2 in all documents").arg(number(*chosen + 1), number(all));
  QString text;
  if (chosen)
    text = tr("%1 of %2").arg(number(*chosen + 1), number(count));
  else
    text = count == 0 ? tr("No hits") : Counted(count, tr("1 hit"), tr("%1 hits"));
  if (all > count) text = tr("%1, %2 in all documents").arg(text, number(all));
  return text;
}

void FindBar::ShowState() {
  if (const QString text = CountText(); text != count_->text()) {
    count_->setText(text);
    count_->setAccessibleName(text);
  }
  if (const auto& matcher = finder_.Matcher(); matcher && matcher->HasGivenUp() && error_->isHidden())
    Say(tr("Some texts take this expression too long; not all in them is found."));
}

void FindBar::ForgetTyping() {
  const QScopedValueRollback showing(is_showing_, true);
  for (QLineEdit* box : {text_, replace_text_}) box->setText(box->text());
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    // A box with nothing to undo would take the key, too.
    const auto& box = *static_cast<QLineEdit*>(watched);
    const auto& key = *static_cast<QKeyEvent*>(event);
    const bool is_of_document = (key.matches(QKeySequence::Undo) && !box.isUndoAvailable()) ||
                                (key.matches(QKeySequence::Redo) && !box.isRedoAvailable());
    if (is_of_document) event->ignore();
    return is_of_document || QFrame::eventFilter(watched, event);
  }
  if (event->type() != QEvent::KeyPress || watched != text_) return QFrame::eventFilter(watched, event);
  const auto* key = static_cast<QKeyEvent*>(event);
  if (key->key() == Qt::Key_Down && key->modifiers() == Qt::NoModifier) {
    emit ListFocusWanted();
    return true;
  }
  if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) return QFrame::eventFilter(watched, event);
  if (key->modifiers().testFlag(Qt::ShiftModifier))
    emit PreviousWanted();
  else
    emit NextWanted();
  return true;
}

/// The rows go on below in a narrow bar, for which a layout does not ask by itself.
bool FindBar::event(QEvent* event) {
  const bool is_handled = QFrame::event(event);
  if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
    setMinimumHeight(layout()->totalHeightForWidth(width()));
  return is_handled;
}

}  // namespace tme
