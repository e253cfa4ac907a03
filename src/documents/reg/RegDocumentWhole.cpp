// The edits of whole holding.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

constexpr auto kValuePiece = static_cast<std::uint8_t>(RegPiece::Value);

/// The first line of a text, without its line end.
std::string_view FirstLineOf(std::string_view text) { return text.substr(0, text.find_first_of("\r\n")); }

/// Where the value's name and assignment stand in its piece.
std::optional<RegValuePlace> PlaceIn(std::string_view text, RegPiece kind) {
  const std::string_view line = FirstLineOf(text);
  if (kind == RegPiece::Value) return FindRegValue(text, line.size());
  const std::optional<RegPairPlace> pair = FindRegPair(line);
  return pair ? std::optional(pair->place) : std::nullopt;
}

RegType TypeOf(std::string_view assignment, RegPiece kind) {
  if (kind == RegPiece::Pair || assignment.starts_with('"')) return RegType::String;
  if (assignment == "-") return RegType::None;
  return assignment.starts_with('d') || assignment.starts_with('D') ? RegType::Dword : RegType::Hex;
}

bool IsOfNode(const RegNode* node, const RegNode* top) {
  while (node != nullptr && node != top) node = node->Parent();
  return node == top;
}

int LevelOf(const RegNode* node) {
  int level = -1;
  while ((node = node->Parent()) != nullptr) ++level;
  return level;
}

/// The component of a path that names a level, hives being 0. Empty components do not count.
RegSpan ComponentOf(std::string_view path, int level) {
  std::size_t at = path.find_first_not_of('\\');
  for (; level > 0 && at != path.npos; --level)
    at = path.find_first_not_of('\\', std::min(path.find('\\', at), path.size()));
  at = std::min(at, path.size());
  return {at, std::min(path.find('\\', at), path.size()) - at};
}

}  // namespace

RegNode* RegDocument::AddKey(RegNode* parent, std::string_view name) {
  const Editing editing(*this, EditName::AddKey);
  observer_->BeforeInsert(*parent, parent->ChildCount());
  RegNode* node = Append(parent, texts_.Copy(name), parent == root_.get() ? RegTag::Hive : RegTag::Branch);
  AddHeaderLine(node);
  NoteRevision();
  observer_->AfterInsert();
  return node;
}

std::size_t RegDocument::AddValue(RegNode* key, std::string_view name, std::string_view assignment) {
  const Editing editing(*this, EditName::AddValue);
  if (key->place_ == 0) AddHeaderLine(key);
  const bool is_pair = version_ == RegVersion::Regedit;
  const SourceLines::Piece piece = is_pair ? AddPairLine(key, assignment) : AddValueLine(key, name, assignment);
  const std::size_t record = values_.size();
  AppendRecord(key, RegType::None, texts_.Copy(is_pair ? "" : name), texts_.Copy(assignment));
  values_[record].piece = piece;
  FollowPiece(record);
  NoteRevision();
  observer_->ValueAdded(record);
  return record;
}

SourceLines::Piece RegDocument::AddValueLine(const RegNode* key, std::string_view name, std::string_view assignment) {
  const SourceLines::Piece place = BlockEnd(key->place_);
  std::string line = QuotedRegName(name) + '=';
  SourceLines::Piece above = place;
  while (KindOf(above) == RegPiece::Comment || KindOf(above) == RegPiece::Other) above = lines_.Previous(above);
  const std::string_view style = KindOf(above) == RegPiece::Value ? lines_.Text(above) : std::string_view();
  if (const std::optional<RegValuePlace> like = PlaceIn(style, RegPiece::Value)) {
    const std::size_t name_end = like->name.End();
    line = std::string(style.substr(0, like->name.at)) + QuotedRegName(name);
    line.append(style.substr(name_end, like->assignment.at - name_end));
  }
  line.append(WrapAssignment(line, assignment, lines_.LineEndBehind(place)));
  return lines_.InsertBehind(place, line, kValuePiece);
}

/// The line that says that the key is there becomes the value's, or another one stands behind it.
SourceLines::Piece RegDocument::AddPairLine(RegNode* key, std::string_view assignment) {
  const std::string text = std::string(" = ").append(assignment);
  SourceLines::Piece piece = headers_[key->place_].piece;
  if (KindOf(piece) == RegPiece::Key) {
    const std::string_view line = FirstLineOf(lines_.Text(piece));
    const std::size_t path_end = FindRegPair(line)->place.name.End();
    ReplaceIn(piece, {path_end, line.size() - path_end}, text);
  } else {
    std::uint32_t behind = key->place_;
    piece = lines_.InsertBehind(MakeRoomBehind(behind), key->KeyPath() + text, kValuePiece);
    LinkHeader(key, piece, behind);
  }
  lines_.SetKind(piece, static_cast<std::uint8_t>(RegPiece::Pair));
  return piece;
}

void RegDocument::SetAssignment(std::size_t record, std::string_view assignment) {
  const Editing editing(*this, EditName::Edit);
  const RegValueRecord& value = values_[record];
  const SourceLines::Piece above = lines_.Previous(value.piece);
  if (!PutAssignment(record, assignment)) return;
  AdoptComments(value.owner, lines_.Next(above), value.piece);
  ValueHasChanged(record);
}

/// Returns whether anything changed.
bool RegDocument::PutAssignment(std::size_t record, std::string_view assignment) {
  const SourceLines::Piece piece = values_[record].piece;
  const std::string_view text = lines_.Text(piece);
  const std::optional<RegValuePlace> place = PlaceIn(text, KindOf(piece));
  if (!place) return false;
  const std::string end(lines_.LineEndBehind(piece));
  const std::string wrapped = KindOf(piece) == RegPiece::Pair
                                  ? std::string(assignment)
                                  : WrapAssignment(text.substr(0, place->assignment.at), assignment, end);
  if (place->assignment.Of(text) == wrapped) return false;
  KeepComments(piece, place->assignment.Of(text));
  if (wrapped == place->assignment.Of(text)) return false;
  ReplaceIn(piece, place->assignment, wrapped);
  FollowPiece(record);
  return true;
}

/// Puts the comments between the lines of a value above it: they go on belonging to it, and to its key.
void RegDocument::KeepComments(SourceLines::Piece piece, std::string_view assignment) {
  if (KindOf(piece) == RegPiece::Pair || RegMarkOf(assignment).form != RegForm::Hex) return;
  for (const std::string_view comment : CommentsInHex(assignment))
    lines_.InsertBehind(lines_.Previous(piece), comment, static_cast<std::uint8_t>(RegPiece::Comment));
}

void RegDocument::RenameInLine(std::size_t record, std::string_view name) {
  const SourceLines::Piece piece = values_[record].piece;
  const std::optional<RegValuePlace> place = PlaceIn(lines_.Text(piece), KindOf(piece));
  if (!place || KindOf(piece) == RegPiece::Pair) return;
  const Editing editing(*this, EditName::Rename);
  ReplaceIn(piece, place->name, QuotedRegName(name));
  EditedRecord(record).name = texts_.Copy(name);
  FollowPiece(record);
  ValueHasChanged(record);
}

void RegDocument::WriteDeletion(std::size_t record) {
  const Editing editing(*this, EditName::WriteDeletion);
  SetAssignment(record, "-");
}

void RegDocument::SetLineEnds(LineEnds ends) {
  if (lines_.UsedLineEnds() == ends || ends == LineEnds::Mixed) return;
  const Editing editing(*this, EditName::ChangeLineEnds);
  lines_.SetLineEnds(ends);
  for (std::size_t record = 0; record < values_.size(); ++record)
    if (!values_[record].deleted) FollowPiece(record);
  NoteRevision();
}

void RegDocument::DeleteValueLines(std::size_t record) {
  const RegValueRecord& value = values_[record];
  if (value.deleted) return;
  const Editing editing(*this, EditName::DeleteValue);
  const SourceLines::Piece piece = value.piece;
  if (KindOf(piece) == RegPiece::Pair) {
    const std::string_view line = FirstLineOf(lines_.Text(piece));
    const RegSpan path = FindRegPair(line)->place.name;
    ReplaceIn(piece, {path.End(), line.size() - path.End()}, "");
    lines_.SetKind(piece, static_cast<std::uint8_t>(RegPiece::Key));
  } else {
    const SourceLines::Piece above = lines_.Previous(piece);
    KeepComments(piece, value.data);
    const SourceLines::Piece kept = lines_.Next(above);
    lines_.Remove(piece);
    if (kept != piece) AdoptComments(value.owner, kept, lines_.Next(piece));
    SourceLines::Piece below = lines_.Next(piece);
    while (KindOf(below) == RegPiece::Comment) below = lines_.Next(below);
    GiveCommentsAway(value.owner, below);
  }
  MarkDeleted(record);
  ValueHasChanged(record);
}

RegNode* RegDocument::WriteDeletion(RegNode* key) {
  const Editing editing(*this, EditName::WriteDeletion);
  std::uint32_t first = headers_[0].next;
  while (first != 0 && !IsOfNode(headers_[first].node, key)) first = headers_[first].next;
  // At the end of the file a comment may stand that is another key's.
  const SourceLines::Piece above =
      first == 0 ? MakeRoomBehind(headers_[0].previous) : lines_.Previous(headers_[first].piece);
  const std::string end(lines_.LineEndBehind(above));
  const bool blank_follows = first != 0 && KindOf(TailOf(first)) == RegPiece::Blank;
  const SourceLines::Piece piece =
      lines_.InsertBehind(above, "[-" + key->KeyPath() + ']' + end, static_cast<std::uint8_t>(RegPiece::KeyDeletion));
  if (blank_follows) lines_.InsertBehind(piece, end, static_cast<std::uint8_t>(RegPiece::Blank));
  RegNode* parent = key->parent_;
  observer_->BeforeInsert(*parent, key->Row());
  RegNode* deletion = MakeNode(parent, key->Text(), RegTag::Deletion);
  NoteRow(deletion, key->row_, RegChanges::ListChange::Kind::Added);
  PutRow(deletion, key->row_);
  LinkHeader(deletion, piece, first == 0 ? headers_[0].previous : headers_[first].previous);
  observer_->AfterInsert();
  AdoptComments(deletion, LeadOf(deletion->place_), piece);
  if (IsOfNode(selected_, key)) {
    selected_ = deletion;
    observer_->SelectionMoved();
  }
  RemoveKey(key);
  return deletion;
}

void RegDocument::RenameKey(RegNode* key, std::string_view name) {
  if (key->Text() == name) return;
  const Editing editing(*this, EditName::Rename);
  const int level = LevelOf(key);
  WalkKeys(*key, [&](const RegNode& node) {
    if (node.tag_ == RegTag::Comment || node.place_ == 0) return true;
    std::uint32_t header = node.place_;
    do {
      header = headers_[header].next_of_node;
      const SourceLines::Piece piece = headers_[header].piece;
      const std::string_view line = FirstLineOf(lines_.Text(piece));
      const bool is_pair = version_ == RegVersion::Regedit;
      const RegSpan path = is_pair ? FindRegPair(line)->place.name : FindRegHeader(line)->path;
      RegSpan component = ComponentOf(path.Of(line), level);
      component.at += path.at;
      ReplaceIn(piece, component, name);
    } while (header != node.place_);
    return true;
  });
  NoteRevision();
  key->parent_->children_->ForgetTexts();
  EditedNode(key).SetTextView(texts_.Copy(name));
  observer_->TextChanged(*key);
}

void RegDocument::SetComment(RegNode* comment, std::string_view text) {
  if (comment->Text() == text) return;
  const Editing editing(*this, EditName::Edit);
  const std::string_view line = lines_.Text(comment->place_);
  const std::size_t first = FirstText(line);
  ReplaceIn(comment->place_, {first, comment->Text().size()}, text);
  EditedNode(comment).SetTextView(texts_.Copy(text));
  NoteRevision();
  observer_->TextChanged(*comment);
}

void RegDocument::ReplaceIn(SourceLines::Piece piece, RegSpan place, std::string_view text) {
  const std::string_view old = lines_.Text(piece);
  lines_.Replace(piece, std::string(old.substr(0, place.at)).append(text).append(old.substr(place.End())));
}

/// A record shows what its piece says.
void RegDocument::FollowPiece(std::size_t record) {
  const RegPiece kind = KindOf(values_[record].piece);
  const std::string_view text = lines_.Text(values_[record].piece);
  const std::optional<RegValuePlace> place = PlaceIn(text, kind);
  if (!place || place->assignment.Of(text).data() == values_[record].data.data()) return;
  RegValueRecord& value = EditedRecord(record);
  value.data = place->assignment.Of(text);
  value.type = TypeOf(value.data, kind);
}

}  // namespace tme
