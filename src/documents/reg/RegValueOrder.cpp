#include "documents/reg/RegValueOrder.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/reg/RegHex.h"

namespace tme {
namespace {

constexpr std::size_t kComparedBytes = 512;
constexpr std::size_t kPrefixBytes = 8;
constexpr int kHexBase = 16;
/// Longer hex data are compared as they stand in the file.
constexpr std::size_t kMostDecoded = std::size_t{1} << 16;  // bytes

/// Numbers come first.
enum class Group : std::uint8_t { Number, Text, Bytes, Other };

/// What a record is ordered by. The text lies in the arena of Keys.
struct Key {
  std::uint64_t number;  ///< or the first bytes of the text
  std::size_t text;
  std::uint32_t size;
  std::uint32_t place;
  Group group;
};

std::optional<std::uint64_t> HexNumberOf(std::string_view digits) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, kHexBase);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

/// The keys of some records, and their texts in one piece of memory.
class Keys {
 public:
  Keys(const RegDocument& document, const RegCoding& coding) : document_(document), coding_(coding) {}

  void Reserve(std::size_t count) { keys_.reserve(count); }

  void Add(const RegValueRecord& record, RegValueColumn column) {
    switch (column) {
      case RegValueColumn::Name:
        return AddText(Group::Text, record.name);
      case RegValueColumn::Type:
        return AddType(record);
      case RegValueColumn::Data:
        return document_.HeldAs() == Holding::Whole ? AddAssignment(record.data) : AddData(record);
    }
  }

  std::vector<std::uint32_t> Sorted() {
    std::sort(keys_.begin(), keys_.end(), [this](const Key& left, const Key& right) { return IsBefore(left, right); });
    std::vector<std::uint32_t> order;
    order.reserve(keys_.size());
    for (const Key& key : keys_) order.push_back(key.place);
    return order;
  }

 private:
  bool IsBefore(const Key& left, const Key& right) const {
    if (left.group != right.group) return left.group < right.group;
    if (left.number != right.number) return left.number < right.number;
    const std::string_view arena = texts_;
    const int order = arena.substr(left.text, left.size).compare(arena.substr(right.text, right.size));
    return order != 0 ? order < 0 : left.place < right.place;
  }

  std::uint32_t NextPlace() const { return static_cast<std::uint32_t>(keys_.size()); }
  void AddNumber(std::uint64_t number) { keys_.push_back({number, 0, 0, NextPlace(), Group::Number}); }

  void AddText(Group group, std::string_view text) {
    const std::size_t at = texts_.size();
    text = text.substr(0, kComparedBytes);
    while (!text.empty()) {
      const std::size_t ascii = utf8::AsciiRun(text);
      for (const char c : text.substr(0, ascii)) texts_ += static_cast<char>(FoldCase(static_cast<unsigned char>(c)));
      text.remove_prefix(ascii);
      if (text.empty()) break;
      char bytes[utf8::kMaxCharacterBytes] = {text[0]};
      std::size_t size = 1;
      if (const std::optional<char32_t> character = utf8::TakeCharacter(text))
        size = utf8::PutCharacter(FoldCase(*character), bytes);
      else
        text.remove_prefix(1);
      texts_.append(bytes, size);
    }
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < kPrefixBytes; ++i)
      prefix = prefix << 8 | (at + i < texts_.size() ? static_cast<unsigned char>(texts_[at + i]) : 0U);
    keys_.push_back({prefix, at, static_cast<std::uint32_t>(texts_.size() - at), NextPlace(), group});
  }

  void AddType(const RegValueRecord& record) {
    if (document_.HeldAs() == Holding::ByRules) return AddText(Group::Text, TraitsOf(record.type).name);
    if (record.data == "-") return AddText(Group::Text, "Deletion");
    const RegMark mark = RegMarkOf(record.data);
    if (mark.form == RegForm::Hex) return AddText(Group::Text, RegTypeName(mark.type));
    if (mark.form == RegForm::Dword) return AddText(Group::Text, "REG_DWORD");
    AddText(Group::Text, record.type == RegType::String ? "REG_SZ" : "");
  }

  void AddData(const RegValueRecord& record) {
    const std::optional<std::uint64_t> number = record.type == RegType::Dword ? HexNumberOf(record.data) : std::nullopt;
    if (number) return AddNumber(*number);
    AddText(record.type == RegType::Hex ? Group::Bytes : record.deleted ? Group::Other : Group::Text, record.data);
  }

  /// As it stands in a whole document.
  void AddAssignment(std::string_view assignment) {
    // Texts and numbers are most of a file, and need no decoding.
    if (assignment.size() >= 2 && assignment.front() == '"' && assignment.back() == '"') {
      const std::string_view text = assignment.substr(1, assignment.size() - 2);
      return text.find('\\') == text.npos ? AddText(Group::Text, text) : AddText(Group::Text, UnescapedRegText(text));
    }
    const RegMark mark = RegMarkOf(assignment);
    if (mark.form == RegForm::Hex && mark.type == reg_type::kBinary)
      return AddText(Group::Bytes, assignment.substr(mark.size));
    const bool is_short = assignment.size() <= kMostDecoded;
    const std::optional<RegData> data = is_short ? DecodeAssignment(assignment, coding_) : std::nullopt;
    if (!data) return AddText(mark.form == RegForm::Hex ? Group::Bytes : Group::Other, assignment);
    if (data->content == RegContent::Number) return AddNumber(data->number);
    AddText(data->content == RegContent::Bytes ? Group::Bytes : Group::Text, DisplayOf(*data, kComparedBytes));
  }

  const RegDocument& document_;
  const RegCoding& coding_;
  std::string texts_;
  std::vector<Key> keys_;
};

}  // namespace

std::vector<std::uint32_t> OrderOfValues(const RegDocument& document, std::span<const std::size_t> records,
                                         RegValueColumn column, const RegCoding& coding) {
  Keys keys(document, coding);
  keys.Reserve(records.size());
  for (const std::size_t record : records) keys.Add(document.Values()[record], column);
  return keys.Sorted();
}

std::vector<std::uint32_t> OrderInFile(const RegDocument& document, std::span<const std::size_t> records) {
  if (document.HeldAs() == Holding::ByRules || records.empty()) return {};
  const SourceLines& lines = document.Lines();
  const auto piece_of = [&](std::size_t record) { return document.Values()[record].piece; };
  const auto kind_of = [&lines](SourceLines::Piece piece) { return static_cast<RegPiece>(lines.Kind(piece)); };
  const auto says_nothing = [&kind_of](SourceLines::Piece piece) {
    const RegPiece kind = kind_of(piece);
    return kind == RegPiece::Blank || kind == RegPiece::Comment || kind == RegPiece::Other;
  };
  // Each stands behind the one before, or first in its block.
  bool is_in_order = true;
  for (std::size_t at = 0; at < records.size() && is_in_order; ++at) {
    SourceLines::Piece above = lines.Previous(piece_of(records[at]));
    while (above != SourceLines::kEnds && says_nothing(above)) above = lines.Previous(above);
    const bool is_first = above == SourceLines::kEnds || kind_of(above) != RegPiece::Value;
    is_in_order = is_first || (at > 0 && above == piece_of(records[at - 1]));
  }
  if (is_in_order) return {};
  std::unordered_map<SourceLines::Piece, std::uint32_t> place_of;
  for (std::size_t at = 0; at < records.size(); ++at)
    place_of.emplace(piece_of(records[at]), static_cast<std::uint32_t>(at));
  std::vector<std::uint32_t> order;
  const RegNode* owner = document.Values()[records.front()].owner;
  document.ForEachBlock([&](const RegBlock& block) {
    if (block.node != owner) return;
    for (SourceLines::Piece at = block.header; at != block.end; at = lines.Next(at))
      if (const auto found = place_of.find(at); found != place_of.end()) order.push_back(found->second);
  });
  if (order.size() != records.size()) order.clear();
  return order;
}

}  // namespace tme
