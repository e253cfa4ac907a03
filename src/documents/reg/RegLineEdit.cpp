#include "documents/reg/RegLineEdit.h"

#include <algorithm>
#include <utility>

#include "documents/reg/RegWholeParser.h"

namespace tme {

namespace {

bool IsSaid(RegPiece kind) { return kind != RegPiece::Blank && kind != RegPiece::Comment; }

}  // namespace

RegDocument::LineEdit::LineEdit(RegDocument& document, Piece first, Piece last, std::string_view text)
    : document_(document),
      before_(document.lines_.Previous(first)),
      behind_(document.lines_.Next(last)),
      text_(text),
      version_(document.version_) {
  FindStart(first);
}

/// Hex that went on in no line may do so now: it stands before blank lines and comments.
void RegDocument::LineEdit::FindStart(Piece first) {
  const SourceLines& lines = document_.lines_;
  const auto is_said = [this](Piece piece) { return IsSaid(document_.KindOf(piece)); };
  while (before_ != SourceLines::kEnds && !is_said(before_)) before_ = lines.Previous(before_);
  if (before_ != SourceLines::kEnds) before_ = lines.Previous(before_);
  Piece said = before_;
  while (said != SourceLines::kEnds && !is_said(said)) said = lines.Previous(said);
  may_say_version_ = said == SourceLines::kEnds;
  if (may_say_version_) before_ = SourceLines::kEnds;
  std::string around;
  for (Piece piece = lines.Next(before_); piece != first; piece = lines.Next(piece)) around.append(lines.Text(piece));
  text_.insert(0, around);
  Piece header = before_;
  while (header != SourceLines::kEnds && !IsHeader(document_.KindOf(header))) header = lines.Previous(header);
  if (header == SourceLines::kEnds) return;
  header_ = document_.headers_[0].next;
  while (document_.headers_[header_].piece != header) header_ = document_.headers_[header_].next;
}

void RegDocument::LineEdit::TakeOn() {
  text_.append(document_.lines_.Text(behind_));
  behind_ = document_.lines_.Next(behind_);
}

/// A last line without its end goes on in what follows.
void RegDocument::LineEdit::TakeWholeLines() {
  const auto goes_on = [this] {
    if (behind_ == SourceLines::kEnds || text_.empty()) return false;
    const bool is_half = text_.back() == '\r' && document_.lines_.Text(behind_).starts_with('\n');
    return is_half || LineEndOf(text_).empty();
  };
  while (goes_on()) TakeOn();
}

RegDocument::LineEdit::Piece RegDocument::LineEdit::Append(std::string_view lines, RegPiece kind) {
  items_.push_back({.lines = lines, .kind = kind});
  return static_cast<Piece>(items_.size() - 1);
}

RegNode* RegDocument::LineEdit::AppendHeader(std::string_view path, Piece piece) {
  items_[piece].path = path;
  return document_.Root();  // any key: whose values are whose is found out later
}

void RegDocument::LineEdit::AppendValue(const RegNode* /*key*/, RegType type, std::string_view name,
                                        std::string_view assignment, Piece piece) {
  Item& item = items_[piece];
  item.type = type;
  item.name = name;
  item.assignment = {static_cast<std::size_t>(assignment.data() - item.lines.data()), assignment.size()};
}

void RegDocument::LineEdit::Parse() {
  while (!ParseOnce()) {
  }
}

bool RegDocument::LineEdit::ParseOnce() {
  TakeWholeLines();
  parsed_ = text_;
  Piece ahead = behind_;
  const SourceLines& lines = document_.lines_;
  std::size_t said = 0;
  for (; ahead != SourceLines::kEnds && said < ahead_; ahead = lines.Next(ahead)) {
    parsed_.append(lines.Text(ahead));
    if (IsSaid(document_.KindOf(ahead))) ++said;
  }
  items_.clear();
  RegWholeResult result;
  RegParseStart start{.version = may_say_version_ ? document_.unsaid_version_ : document_.version_,
                      .may_say_version = may_say_version_,
                      .current = header_ == 0 ? nullptr : document_.Root()};
  RegWholeParser parser(*this, parsed_, start, result);
  const char* place = parsed_.data() + text_.size();
  const bool reads_on = parser.Run(place, [](const LineReader&) { return true; }) > place;
  version_ = parser.Version();
  const bool is_list = version_ == RegVersion::Regedit;
  const bool is_other_kind = is_list != (document_.version_ == RegVersion::Regedit);
  if (behind_ != ahead && (reads_on || parser.MaySayVersion())) {
    while (behind_ != ahead) TakeOn();
    ahead_ *= 2;
    return false;
  }
  FindChanged();
  // Where headers change, so does the key of all up to the next one; where the kind of file does, all does.
  const auto is_end = [&](Piece piece) {
    return piece == SourceLines::kEnds || (!is_other_kind && IsHeader(document_.KindOf(piece)));
  };
  changes_headers_ = is_other_kind || ChangesHeaders();
  if (!changes_headers_ || is_end(behind_) || (is_list && !is_other_kind)) return true;
  while (!is_end(behind_)) TakeOn();
  return false;
}

void RegDocument::LineEdit::FindChanged() {
  old_.clear();
  const SourceLines& lines = document_.lines_;
  for (Piece piece = lines.Next(before_); piece != behind_; piece = lines.Next(piece)) old_.push_back({.piece = piece});
  const auto is_same = [this, &lines](const Item& item, const Old& old) {
    return item.kind == document_.KindOf(old.piece) && item.lines == lines.Text(old.piece);
  };
  const std::size_t most = std::min(items_.size(), old_.size());
  same_first_ = same_last_ = 0;
  while (same_first_ < most && is_same(items_[same_first_], old_[same_first_])) ++same_first_;
  while (same_last_ < most - same_first_ &&
         is_same(items_[items_.size() - 1 - same_last_], old_[old_.size() - 1 - same_last_]))
    ++same_last_;
}

bool RegDocument::LineEdit::ChangesHeaders() const {
  for (std::size_t i = same_first_; i < NewEnd(); ++i)
    if (IsHeader(items_[i].kind)) return true;
  for (std::size_t i = same_first_; i < OldEnd(); ++i)
    if (IsHeader(document_.KindOf(old_[i].piece))) return true;
  return false;
}

void RegDocument::LineEdit::Run() {
  Parse();
  const Editing editing(document_, EditName::EditSource);
  const bool has_comments = document_.comments_ == RegComments::Shown;
  const bool is_reset = changes_headers_ || has_comments;
  RegNode* const selected = document_.selected_;
  if (is_reset) document_.observer_->BeforeReset();
  if (has_comments) document_.DropComments();
  FindOld();
  PutLines();
  if (changes_headers_) PutHeaders();
  changes_headers_ ? MoveValues() : ReplaceValues();
  document_.version_ = version_;
  Prune(std::move(gone_));
  if (has_comments) document_.MakeComments();
  if (is_reset) Select(selected);
  document_.NoteRevision();
  is_reset ? document_.observer_->AfterReset() : document_.observer_->ValuesReset();
}

}  // namespace tme
