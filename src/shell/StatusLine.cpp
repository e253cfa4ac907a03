#include "shell/StatusLine.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QShortcut>
#include <QStatusBar>
#include <algorithm>
#include <array>

#include "shell/DisplayText.h"
#include "shell/DocumentWindow.h"
#include "shell/PlainText.h"
#include "shell/StatusParts.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kLeastWaitMs = 30, kWaitShare = 20, kCopiedMs = 1500;
constexpr int kGap = 6;  // pixels
/// A path that has less room than for so many characters goes.
constexpr int kLeastPathCharacters = 12;

QString ShortNameOf(TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::CodePage:
      return StatusLine::tr("8-bit");
    case TextEncoding::Utf8:
      return StatusLine::tr("UTF-8");
    case TextEncoding::Utf8Bom:
      return StatusLine::tr("UTF-8 BOM");
    case TextEncoding::Utf16Le:
      return StatusLine::tr("UTF-16 LE");
    case TextEncoding::Utf16Be:
      return StatusLine::tr("UTF-16 BE");
    case TextEncoding::Utf16LeUnmarked:
    case TextEncoding::Utf16BeUnmarked:
      break;
  }
  return StatusLine::tr("UTF-16 without BOM");
}

QString ShortNameOf(LineEnds ends) {
  if (ends == LineEnds::Mixed) return StatusLine::tr("mixed");
  return ends == LineEnds::CrLf ? StatusLine::tr("CR LF") : StatusLine::tr("LF");
}

QString LocalNumber(std::int64_t number) { return QLocale().toString(qlonglong{number}); }

bool WorksOrAsks() { return QApplication::activeModalWidget() || QApplication::overrideCursor(); }

}  // namespace

StatusLine::StatusLine(QStatusBar& bar, Source source) : QWidget(&bar), source_(std::move(source)) {
  setObjectName(u"status_line"_s);
  bar.setObjectName(u"status_bar"_s);
  bar.setAccessibleName(tr("Status"));
  bar.setSizeGripEnabled(false);
  BuildParts();
  bar.addWidget(this, 1);
  delay_.setSingleShot(true);
  delay_.setInterval(kLeastWaitMs);
  connect(&delay_, &QTimer::timeout, this, [this] { WorksOrAsks() ? Refresh() : ShowNow(); });
  copied_.setSingleShot(true);
  copied_.setInterval(kCopiedMs);
  connect(&copied_, &QTimer::timeout, this, [this] {
    ShowPath(state_);
    Arrange();
  });
  auto* back = new QShortcut(u"F6"_s, this);
  back->setContext(Qt::WidgetWithChildrenShortcut);
  connect(back, &QShortcut::activated, this, &StatusLine::BackToDocument);
}

QLabel* StatusLine::MakeLabel(const QString& name) {
  QLabel* label = PlainLabel({}, this);
  label->setObjectName(name);
  return label;
}

StatusButton* StatusLine::MakeButton(const QString& name, void (StatusLine::*click)()) {
  auto* button = new StatusButton(name, this);
  connect(button, &QToolButton::clicked, this, click);
  return button;
}

void StatusLine::BuildParts() {
  kind_ = MakeLabel(u"status_kind"_s);
  holding_ = MakeButton(u"status_holding"_s, &StatusLine::SwitchHolding);
  path_ = MakeButton(u"status_path"_s, &StatusLine::CopyPath);
  field_ = new LineField(this);
  connect(field_, &LineField::Chosen, this, &StatusLine::GoTo);
  connect(field_, &LineField::Escaped, this, &StatusLine::BackToDocument);
  connect(field_, &LineField::LeftBehind, this, &StatusLine::LeaveField);
  selection_ = MakeLabel(u"status_selection"_s);
  place_ = MakeButton(u"status_place"_s, &StatusLine::AskForLine);
  count_ = MakeLabel(u"status_count"_s);
  encoding_ = new StatusButton(u"status_encoding"_s, this);
  line_ends_ = MakeButton(u"status_line_ends"_s, &StatusLine::SayLineEndsStay);
  const auto make_menu = [this](const QString& name, const QString& caption, void (StatusLine::*fill)(QMenu&)) {
    auto* menu = new QMenu(this);
    menu->setObjectName(name);
    menu->setAccessibleName(caption);
    connect(menu, &QMenu::aboutToShow, this, [this, menu, fill] {
      menu->clear();
      (this->*fill)(*menu);
    });
    return menu;
  };
  encodings_ = make_menu(u"status_encodings"_s, tr("Encoding"), &StatusLine::FillEncodings);
  encoding_->setMenu(encodings_);
  ends_ = make_menu(u"status_ends"_s, tr("Line ends"), &StatusLine::FillLineEnds);
  Show({});
}

void StatusLine::Refresh() {
  if (!delay_.isActive()) delay_.start();
}

void StatusLine::ShowNow() {
  delay_.stop();
  QElapsedTimer timer;
  timer.start();
  DocumentWindow* const active = source_.active();
  Show(active && active->IsOpen() ? active->State() : DocumentState());
  delay_.setInterval(std::max<int>(kLeastWaitMs, kWaitShare * static_cast<int>(timer.elapsed())));
}

void StatusLine::Show(const DocumentState& state) {
  const bool same_path = state.path == state_.path && state.fault == state_.fault;
  state_ = state;
  const auto say = [](QLabel* label, const QString& text) {
    if (label->text() == text) return;
    label->setText(text);
    label->setAccessibleName(text);
  };
  say(kind_, state.kind);
  say(count_, state.count);
  ShowForm(state);
  if (!same_path) copied_.stop();
  if (!copied_.isActive()) ShowPath(state);
  ShowPlace(state);
  QString selected;
  if (state.selected_characters > 0)
    selected = Counted(static_cast<std::uint64_t>(state.selected_characters), tr("1 character selected"),
                       tr("%1 characters selected"));
  if (state.selected_lines > 1) selected = tr("%1 in %2 lines").arg(selected, LocalNumber(state.selected_lines));
  say(selection_, selected);
  Arrange();
}

void StatusLine::ShowForm(const DocumentState& state) {
  if (state.holding) {
    const bool is_whole = state.holding == Holding::Whole;
    holding_->Say(is_whole ? tr("whole") : tr("by the rules"),
                  is_whole ? tr("The file is held whole") : tr("The file is held by the rules"),
                  is_whole ? tr("All of the file is kept and shown, and an edit changes its own lines alone.  A click "
                                "shows it by the rules.")
                           : tr("The file is read by the editor's rules: what they do not take is left out, and the "
                                "rest gets their order and form.  A click shows the whole file."));
  }
  if (state.encoding) {
    const QString name = QString::fromUtf8(EncodingName(*state.encoding));
    encoding_->Say(ShortNameOf(*state.encoding), tr("Encoding: %1").arg(name),
                   tr("The file's encoding: %1.  A click changes it.").arg(name));
  }
  if (state.line_ends) {
    const QString name = ShortNameOf(*state.line_ends);
    line_ends_->Say(name, tr("Line ends: %1").arg(name),
                    state.line_ends_stay.isEmpty() ? tr("What the lines end in.  A click changes all of them.")
                                                   : state.line_ends_stay);
    line_ends_->setMenu(state.line_ends_stay.isEmpty() ? ends_ : nullptr);
  }
}

void StatusLine::ShowPath(const DocumentState& state) {
  const bool is_fault = !state.fault.isEmpty();
  const QString& text = is_fault ? state.fault : state.path;
  path_->Say(text, (is_fault ? tr("Not understood: %1") : tr("Path: %1")).arg(text),
             text + u"\n"_s + tr("A click copies it."));
}

void StatusLine::ShowPlace(const DocumentState& state) {
  if (!state.place) return;
  const QString line = LocalNumber(state.place->line), column = LocalNumber(state.place->column);
  place_->Say(tr("Ln %1, Col %2").arg(line, column),
              tr("Line %1 of %2, column %3").arg(line, LocalNumber(state.place->lines), column),
              tr("Go to a line (Ctrl+G)"));
}

void StatusLine::Arrange() {
  const bool is_asking = field_->isVisibleTo(this);
  struct Part {
    QWidget* part;
    bool is_there;
  };
  // The first to go comes first; the place in the line is another matter.
  const std::array parts{Part{kind_, !state_.kind.isEmpty()},
                         Part{count_, !state_.count.isEmpty()},
                         Part{line_ends_, state_.line_ends.has_value()},
                         Part{holding_, state_.holding.has_value()},
                         Part{encoding_, state_.encoding.has_value()},
                         Part{selection_, state_.selected_characters > 0},
                         Part{place_, state_.place.has_value()}};
  const bool has_path = !is_asking && !(state_.path + state_.fault).isEmpty();
  const int least = is_asking ? field_->sizeHint().width()
                    : has_path
                        ? std::min(kLeastPathCharacters * fontMetrics().averageCharWidth(), path_->sizeHint().width())
                        : 0;
  int room = width() - 2 * kGap - least;
  for (const Part& part : parts)
    if (part.is_there) room -= part.part->sizeHint().width() + kGap;
  for (const Part& part : parts) {
    const bool fits = part.is_there && room >= 0;
    if (part.is_there && !fits) room += part.part->sizeHint().width() + kGap;
    part.part->setVisible(fits);
  }
  int left = kGap, right = width() - kGap;
  const auto place = [this](QWidget* part, int from, int size) { part->setGeometry(from, 0, size, height()); };
  for (QWidget* part : {static_cast<QWidget*>(kind_), static_cast<QWidget*>(holding_)}) {
    if (!part->isVisibleTo(this)) continue;
    place(part, left, part->sizeHint().width());
    left += part->width() + kGap;
  }
  for (QWidget* part : std::array<QWidget*, 5>{line_ends_, encoding_, count_, place_, selection_}) {
    if (!part->isVisibleTo(this)) continue;
    right -= part->sizeHint().width();
    place(part, right, part->sizeHint().width());
    right -= kGap;
  }
  path_->setVisible(has_path);
  place(path_, left, std::clamp(path_->sizeHint().width(), 0, std::max(0, right - left)));
  place(field_, left, std::max(0, right - left));
}

}  // namespace tme
