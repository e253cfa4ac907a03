#include "documents/reg/RegValueOrder.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

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

}  // namespace tme
