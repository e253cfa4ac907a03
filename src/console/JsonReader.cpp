#include "console/JsonReader.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "documents/reg/RegHex.h"

namespace tme::console {
namespace {

constexpr std::size_t kMaxLevels = 64;
constexpr char32_t kFirstByteEscape = 0xDC80, kLastByteEscape = 0xDCFF;

class JsonParser {
 public:
  JsonParser(const std::string& name, std::string_view text) : name_(name), rest_(text) {}

  JsonValue Text() {
    if (!utf8::IsValid(rest_)) Fail("no UTF-8");
    JsonValue value = Value(0);
    SkipBlanks();
    if (!rest_.empty()) Fail("text behind the end");
    return value;
  }

 private:
  [[noreturn]] void Fail(std::string_view why) const {
    throw Trouble(name_ + ":" + std::to_string(line_) + ": no JSON: " + std::string(why));
  }
  void SkipBlanks() {
    while (!rest_.empty() && std::string_view(" \t\r\n").find(rest_.front()) != std::string_view::npos) {
      if (rest_.front() == '\n') ++line_;
      rest_.remove_prefix(1);
    }
  }
  bool Take(std::string_view text) {
    const bool is_next = rest_.starts_with(text);
    if (is_next) rest_.remove_prefix(text.size());
    return is_next;
  }
  void Expect(char c) {
    SkipBlanks();
    if (!Take({&c, 1})) Fail(std::string("\"") + c + "\" is missing");
  }

  JsonValue Value(std::size_t level) {
    if (level > kMaxLevels) Fail("too many levels");
    SkipBlanks();
    JsonValue value{.line = line_};
    if (Take("{"))
      Object(value, level);
    else if (Take("["))
      Array(value, level);
    else if (rest_.starts_with('"'))
      value.kind = JsonValue::Kind::String, value.text = Characters();
    else if (Take("true"))
      value.kind = JsonValue::Kind::True;
    else if (Take("false"))
      value.kind = JsonValue::Kind::False;
    else if (!Take("null"))
      value.kind = JsonValue::Kind::Number, value.text = Digits();
    return value;
  }
  void Object(JsonValue& value, std::size_t level) {
    value.kind = JsonValue::Kind::Object;
    SkipBlanks();
    if (Take("}")) return;
    while (true) {
      SkipBlanks();
      std::string name = Characters();
      if (value.Find(name) != nullptr) Fail("the member \"" + name + "\" twice");
      Expect(':');
      JsonValue member = Value(level + 1);
      value.members.emplace_back(std::move(name), std::move(member));
      SkipBlanks();
      if (Take("}")) return;
      Expect(',');
    }
  }
  void Array(JsonValue& value, std::size_t level) {
    value.kind = JsonValue::Kind::Array;
    SkipBlanks();
    if (Take("]")) return;
    while (true) {
      value.items.push_back(Value(level + 1));
      SkipBlanks();
      if (Take("]")) return;
      Expect(',');
    }
  }
  std::string Digits() {
    const std::string_view all = rest_;
    const auto digits = [this] {
      std::size_t count = 0;
      while (count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9') ++count;
      rest_.remove_prefix(count);
      return count > 0;
    };
    Take("-");
    bool is_number = Take("0") || digits();
    if (Take(".")) is_number = is_number && digits();
    if (Take("e") || Take("E")) {
      if (!Take("+")) Take("-");
      is_number = is_number && digits();
    }
    if (!is_number) Fail("a value is missing");
    return std::string(all.substr(0, all.size() - rest_.size()));
  }
  std::string Characters() {
    if (!Take("\"")) Fail("a string is missing");
    std::string text;
    while (true) {
      const auto is_plain = [](char c) { return c != '"' && c != '\\' && static_cast<unsigned char>(c) >= ' '; };
      const auto end = std::find_if_not(rest_.begin(), rest_.end(), is_plain);
      text.append(rest_.begin(), end);
      rest_.remove_prefix(static_cast<std::size_t>(end - rest_.begin()));
      if (Take("\"")) return text;
      if (!Take("\\")) Fail("a string without end, or a control in it");
      Escape(text);
    }
  }
  void Escape(std::string& text) {
    constexpr std::string_view kLetters = "\"\\/bfnrt", kCharacters = "\"\\/\b\f\n\r\t";
    if (Take("u")) return Unit(text);
    const std::size_t letter = rest_.empty() ? std::string_view::npos : kLetters.find(rest_.front());
    if (letter == std::string_view::npos) Fail("an unknown escape");
    text += kCharacters[letter];
    rest_.remove_prefix(1);
  }
  char32_t FourDigits() {
    constexpr std::size_t kDigits = 4;
    const std::string_view digits = rest_.substr(0, kDigits);
    if (digits.size() < kDigits || !std::all_of(digits.begin(), digits.end(), IsHexDigit)) Fail("an unknown escape");
    rest_.remove_prefix(kDigits);
    return static_cast<char32_t>(std::stoul(std::string(digits), nullptr, 16));
  }
  void Unit(std::string& text) {
    char32_t unit = FourDigits();
    if (unit >= kFirstByteEscape && unit <= kLastByteEscape) {
      text += static_cast<char>(unit & 0xFF);
      return;
    }
    if (utf16::IsSurrogate(unit)) {
      const char32_t low = utf16::IsHighSurrogate(unit) && Take("\\u") ? FourDigits() : 0;
      if (!utf16::IsLowSurrogate(low)) Fail("half a character");
      unit = utf16::Join(unit, low);
    }
    std::array<char, utf8::kMaxCharacterBytes> bytes{};
    text.append(bytes.data(), utf8::PutCharacter(unit, bytes.data()));
  }

  const std::string& name_;
  std::string_view rest_;
  std::uint64_t line_ = 1;
};

}  // namespace

const JsonValue* JsonValue::Find(std::string_view name) const {
  const auto found =
      std::find_if(members.begin(), members.end(), [name](const auto& each) { return each.first == name; });
  return found == members.end() ? nullptr : &found->second;
}

JsonValue ReadJson(const std::string& name, std::string_view text) { return JsonParser(name, text).Text(); }

}  // namespace tme::console
