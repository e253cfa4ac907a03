// Lines of other documents, or of this one, put below a key.
#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "documents/reg/RegConversion.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {

namespace {

const RegNode* CommonOf(const RegNode* one, const RegNode* other) {
  const auto level_of = [](const RegNode* node) {
    int level = 0;
    while ((node = node->Parent()) != nullptr) ++level;
    return level;
  };
  int one_level = level_of(one);
  int other_level = level_of(other);
  while (one != other) {
    if (one_level >= other_level) {
      one = one->Parent();
      --one_level;
    } else {
      other = other->Parent();
      --other_level;
    }
  }
  return one;
}

/// What the paths of a text have in common, and lose below a key: all above its one top key, or its several ones.
const RegNode* CommonKeyOf(const RegDocument& source) {
  const RegNode* common = nullptr;
  source.ForEachBlock(
      [&common](const RegBlock& block) { common = common == nullptr ? block.node : CommonOf(common, block.node); });
  if (common == nullptr) return source.Root();
  return source.PieceOf(common) != SourceLines::kEnds ? common->Parent() : common;
}

}  // namespace

/// Puts the lines of a document that was read from the clipboard into another one.
class RegDocument::Pasting {
 public:
  Pasting(RegDocument& target, RegNode* key, const RegDocument& source, const RegCoding& coding, RegPasteResult& result)
      : target_(target), key_(key), source_(source), from_(coding), to_(coding), result_(result) {
    from_.version = source.version_;
    to_.version = target.version_;
    nodes_[key->parent_ == nullptr ? source.Root() : CommonKeyOf(source)] = key;
  }

  void Run() {
    const std::uint32_t first = source_.headers_[0].next;
    const SourceLines::Piece blocks = first == 0 ? SourceLines::kEnds : source_.LeadOf(first);
    const SourceLines& lines = source_.lines_;
    SourceLines::Piece start = lines.First();
    while (start != blocks &&
           (source_.KindOf(start) == RegPiece::FileHeader || source_.KindOf(start) == RegPiece::Blank))
      start = lines.Next(start);
    const bool has_no_key = blocks == SourceLines::kEnds && key_->parent_ != nullptr;
    if (has_no_key || !source_.ValuesOfPath(source_.Root()).empty()) {
      PutFirstValues(start, blocks);
      start = blocks;
    }
    if (start != SourceLines::kEnds) PutBlocks(start);
  }

 private:
  void PutFirstValues(SourceLines::Piece at, SourceLines::Piece end) {
    if (key_->parent_ == nullptr) {
      result_.left_out = source_.ValuesOfPath(source_.Root()).size();
      return;
    }
    if (key_->place_ == 0) target_.AddHeaderLine(key_);
    place_ = target_.BlockEnd(key_->place_);
    for (; at != end; at = source_.lines_.Next(at))
      if (source_.KindOf(at) != RegPiece::Blank) Put(at, key_);
    PartFromNext();
  }

  void PutBlocks(SourceLines::Piece at) {
    const SourceLines& lines = source_.lines_;
    header_ = target_.LastHeaderBelow(key_);
    place_ = target_.MakeRoomBehind(header_);
    SourceLines::Piece last = lines.Last();
    while (source_.KindOf(last) == RegPiece::Blank) last = lines.Previous(last);
    std::uint32_t next = source_.headers_[0].next;
    for (const SourceLines::Piece end = lines.Next(last); at != end; at = lines.Next(at)) {
      if (next != 0 && source_.headers_[next].piece == at) {
        PutHeader(at, source_.headers_[next].node);
        next = source_.headers_[next].next;
      } else {
        Put(at, owner_);
      }
    }
    PartFromNext();
  }

  /// A comment that comes last would belong to the next header.
  void PartFromNext() {
    const SourceLines::Piece next = target_.lines_.Next(place_);
    if (target_.KindOf(place_) != RegPiece::Comment || next == SourceLines::kEnds ||
        target_.KindOf(next) == RegPiece::Blank)
      return;
    target_.lines_.InsertBehind(place_, std::string(target_.lines_.LineEndBehind(place_)),
                                static_cast<std::uint8_t>(RegPiece::Blank));
  }

  void PutHeader(SourceLines::Piece at, const RegNode* node) {
    const std::string_view line = source_.lines_.Text(at);
    const std::string_view without_end = line.substr(0, line.size() - LineEndOf(line).size());
    owner_ = NodeFor(node);
    const RegSpan path = FindRegHeader(without_end)->path;
    place_ = target_.lines_.InsertBehind(
        place_, std::string(line.substr(0, path.at)).append(owner_->KeyPath()).append(line.substr(path.End())),
        source_.lines_.Kind(at));
    target_.LinkHeader(owner_, place_, header_);
    header_ = owner_->place_;
    ++result_.keys;
  }

  RegNode* NodeFor(const RegNode* node) {
    std::vector<const RegNode*> missing;
    while (!nodes_.contains(node)) {
      missing.push_back(node);
      node = node->parent_;
    }
    RegNode* own = nodes_[node];
    for (; !missing.empty(); missing.pop_back()) nodes_[missing.back()] = own = ChildLike(own, *missing.back());
    return own;
  }

  RegNode* ChildLike(RegNode* parent, const RegNode& node) {
    RegNode* own = IsKey(node.tag_) ? target_.FindChild(parent, node.Text()) : nullptr;
    if (own != nullptr) return own;
    const RegTag key_tag = parent->parent_ == nullptr ? RegTag::Hive : RegTag::Branch;
    return target_.Append(parent, target_.texts_.Copy(node.Text()), IsKey(node.tag_) ? key_tag : node.tag_);
  }

  void Put(SourceLines::Piece at, RegNode* owner) {
    const std::string_view text = source_.lines_.Text(at);
    if (source_.KindOf(at) != RegPiece::Value) {
      place_ = target_.lines_.InsertBehind(place_, text, source_.lines_.Kind(at));
      const RegPiece kind = source_.KindOf(at);
      result_.comments += kind == RegPiece::Comment ? 1 : 0;
      result_.not_understood += kind == RegPiece::Other ? 1 : 0;
      return;
    }
    const RegValuePlace value = *FindRegValue(text, std::min(text.find_first_of("\r\n"), text.size()));
    const std::optional<std::string> line = Converted(text, value);
    if (!line) {
      ++result_.left_out;
      return;
    }
    place_ = target_.lines_.InsertBehind(place_, *line, source_.lines_.Kind(at));
    if (*line != text) target_.KeepComments(place_, value.assignment.Of(text));
    const std::string_view name = value.name.Of(text);
    const std::string plain = name.size() < 2 ? "" : UnescapedRegText(name.substr(1, name.size() - 2));
    target_.AppendRecord(owner, RegType::None, target_.texts_.Copy(plain), {});
    target_.values_.back().piece = place_;
    target_.FollowPiece(target_.values_.size() - 1);
    ++result_.values;
  }

  /// The lines of a value in the target's version; null when it cannot be said there.
  std::optional<std::string> Converted(std::string_view text, const RegValuePlace& value) const {
    const std::string_view assignment = value.assignment.Of(text);
    RegFault fault = RegFault::None;
    if (from_.version == to_.version) return std::string(text);
    const std::optional<std::string> converted = ConvertedAssignment(assignment, from_, to_, fault);
    // Half a character has no other bytes anywhere, so a paste keeps those that it has.
    if (!converted && fault != RegFault::NotUnicode) return std::nullopt;
    if (!converted) return std::string(text);
    if (*converted == assignment) return std::string(text);
    const std::string_view before = text.substr(0, value.assignment.at);
    std::string line(before);
    line.append(WrapAssignment(before, *converted, target_.lines_.LineEndBehind(place_)));
    return line.append(text.substr(value.assignment.End()));
  }

  RegDocument& target_;
  RegNode* const key_;
  const RegDocument& source_;
  RegCoding from_;
  RegCoding to_;
  RegPasteResult& result_;
  /// The nodes of the source and what they became.
  std::unordered_map<const RegNode*, RegNode*> nodes_;
  /// What the next lines stand behind.
  SourceLines::Piece place_ = SourceLines::kEnds;
  std::uint32_t header_ = 0;
  /// What the next values belong to.
  RegNode* owner_ = nullptr;
};

RegPasteResult RegDocument::Paste(RegNode* key, std::string_view text, const RegCoding& coding) {
  RegPasteResult result;
  if (version_ == RegVersion::Regedit || !IsKey(key->tag_)) return result;
  const std::uint32_t near = LastHeaderBelow(key);
  const std::string end(lines_.LineEndBehind(near == 0 ? lines_.Last() : headers_[near].piece));
  const RegWholeOptions options{
      .unsaid = version_, .first_values = RegWholeOptions::FirstValues::OfRoot, .progress = {}};
  RegDocument source;
  ReadWholeReg(source, LinesEndedBy(text, end), options);
  if (source.version_ == RegVersion::Regedit) {
    const std::string blocks = WithoutPairs(source);
    source.Reset("");
    ReadWholeReg(source, blocks, options);
  }
  SourceLines::Piece taken = source.lines_.First();
  while (taken != SourceLines::kEnds &&
         (source.KindOf(taken) == RegPiece::Blank || source.KindOf(taken) == RegPiece::FileHeader))
    taken = source.lines_.Next(taken);
  if (taken == SourceLines::kEnds) return result;
  const Editing editing(*this, EditName::Paste);
  const std::size_t headers = headers_.size();
  observer_->BeforeReset();
  if (comments_ == RegComments::Shown) DropComments();
  Pasting(*this, key, source, coding, result).Run();
  if (comments_ == RegComments::Shown) MakeComments();
  const bool has_any = headers_.size() > headers || result.values + result.comments + result.not_understood > 0;
  if (has_any) NoteRevision();
  observer_->AfterReset();
  return result;
}

}  // namespace tme
