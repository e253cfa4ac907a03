#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <memory>
#include <string>

#include "console/JsonDocument.h"
#include "console/JsonReader.h"
#include "console/KeyEdits.h"
#include "console/Values.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegSourceLine.h"

namespace tme::console {
namespace {

using Kind = JsonValue::Kind;

bool HasLineEnd(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

std::optional<std::uint32_t> TypeOfName(std::string_view name) {
  for (std::uint32_t type = reg_type::kNone; type <= reg_type::kQword; ++type)
    if (RegTypeName(type) == name) return type;
  constexpr std::string_view kPrefix = "REG_0x";
  constexpr int kHex = 16;
  std::uint32_t type = 0;
  const char* const end = name.data() + name.size();
  if (!name.starts_with(kPrefix)) return std::nullopt;
  const auto result = std::from_chars(name.data() + kPrefix.size(), end, type, kHex);
  return result.ec == std::errc() && result.ptr == end ? std::optional(type) : std::nullopt;
}

class DocumentReader {
 public:
  DocumentReader(const std::string& name, const JsonValue& root) : name_(name), root_(root) {}

  std::unique_ptr<ConsoleFile> Read() {
    const JsonValue& kind = Member(root_, "kind", Kind::String);
    is_ini_ = kind.text == "ini";
    if (!is_ini_ && kind.text != "reg") Fail(kind, "\"kind\" is neither \"ini\" nor \"reg\"");
    const char* const groups = is_ini_ ? "sections" : "keys";
    Allow(root_, {"kind", "encoding", "stray_byte", "line_end", groups});
    ReadFormat();
    line_end_ = EndOf(Member(root_, "line_end", Kind::String));
    const JsonValue& all = Member(root_, groups, Kind::Array);
    coding_ = ConsoleFile::CodingFor(VersionIn(all));
    for (const JsonValue& group : all.items) ReadGroup(group, &group == all.items.data());
    return std::make_unique<ConsoleFile>(name_, is_ini_ ? DocumentKind::Ini : DocumentKind::Reg, std::move(text_),
                                         format_);
  }

 private:
  [[noreturn]] void Fail(const JsonValue& value, const std::string& why) const {
    throw Trouble(name_ + ":" + std::to_string(value.line) + ": " + why);
  }
  void Allow(const JsonValue& object, std::initializer_list<std::string_view> names) const {
    if (object.kind != Kind::Object) Fail(object, "an object is missing");
    for (const auto& [name, value] : object.members)
      if (std::find(names.begin(), names.end(), name) == names.end()) Fail(value, "no member \"" + name + "\" here");
  }
  const JsonValue& Member(const JsonValue& object, const std::string& name, Kind kind) const {
    const JsonValue* member = object.Find(name);
    if (member == nullptr || member->kind != kind)
      Fail(member == nullptr ? object : *member, "\"" + name + "\" is missing or of another kind");
    return *member;
  }
  /// What read makes of the text.
  template <typename Read>
  auto ReadFrom(const JsonValue& value, Read read) const {
    try {
      return read(value.text);
    } catch (const Trouble& trouble) {
      Fail(value, trouble.what());
    }
  }
  const std::string* TextOrNull(const JsonValue& object, const std::string& name) const {
    return object.Find(name) == nullptr ? nullptr : &Member(object, name, Kind::String).text;
  }
  std::string EndOf(const JsonValue& value) const {
    if (!value.text.empty() && value.text != "\n" && value.text != "\r\n" && value.text != "\r")
      Fail(value, "this is no line end");
    return value.text;
  }
  void ReadFormat() {
    const JsonValue& encoding = Member(root_, "encoding", Kind::String);
    int number = 0;
    while (number < kTextEncodings && EncodingName(static_cast<TextEncoding>(number)) != encoding.text) ++number;
    if (number == kTextEncodings) Fail(encoding, "an unknown encoding");
    format_.encoding = static_cast<TextEncoding>(number);
    if (root_.Find("stray_byte") != nullptr)
      format_.stray_byte = static_cast<char>(ReadFrom(Member(root_, "stray_byte", Kind::Number), NumberOf));
  }
  /// What the file's first line says.
  RegVersion VersionIn(const JsonValue& groups) const {
    const JsonValue* lines = groups.items.empty() ? nullptr : groups.items.front().Find("lines");
    for (std::size_t at = 0; lines != nullptr && at < lines->items.size(); ++at) {
      const JsonValue* other = lines->items[at].Find("other");
      if (other != nullptr) return VersionOfLine(other->text).value_or(ConsoleFile::UnsaidVersionIn(format_));
    }
    return ConsoleFile::UnsaidVersionIn(format_);
  }

  void ReadGroup(const JsonValue& group, bool is_first) {
    Allow(group, {is_ini_ ? "name" : "path", "deleted", "line", "end", "lines"});
    const JsonValue* name = group.Find(is_ini_ ? "name" : "path");
    const bool has_header = name == nullptr || name->kind != Kind::Null;
    if (!has_header && !is_first) Fail(group, "only the first one goes without a name");
    if (has_header) Put(group, HeaderLine(group, Member(group, is_ini_ ? "name" : "path", Kind::String).text));
    for (const JsonValue& line : Member(group, "lines", Kind::Array).items)
      Put(line, is_ini_ ? IniLineOf(line) : RegLineOf(line));
  }
  void Put(const JsonValue& item, const std::string& line) {
    if (!text_.empty() && !HasLineEnd(text_.substr(text_.size() - 1))) Fail(item, "a line before it has no end");
    const JsonValue* end = item.Find("end");
    text_ += line;
    text_ += end == nullptr ? line_end_ : EndOf(Member(item, "end", Kind::String));
  }

  std::string HeaderLine(const JsonValue& group, const std::string& name) const {
    const bool deletes = group.Find("deleted") != nullptr;
    const auto is_it = [&](std::string_view line) {
      if (HasLineEnd(line) || !line.substr(FirstText(line)).starts_with('[')) return false;
      if (is_ini_) return !deletes && SourceHeaderName(line) == name;
      const auto place = FindRegHeader(line);
      return place && (place->kind == RegPiece::KeyDeletion) == deletes && place->path.Of(line) == name;
    };
    if (const std::string* line = TextOrNull(group, "line"); line != nullptr && is_it(*line)) return *line;
    const std::string plain = (deletes ? "[-" : "[") + name + "]";
    if (!is_it(plain)) Fail(group, "nothing in such a file can have this name");
    return plain;
  }
  std::string IniLineOf(const JsonValue& item) const {
    Allow(item, {"key", "value", "comment", "blank", "line", "end"});
    if (item.Find("key") == nullptr)
      return TextLineOf(item, {{"comment", IniLine::Comment}, {"blank", IniLine::Blank}});
    const std::string& key = Member(item, "key", Kind::String).text;
    const bool has_equals = item.Find("value") == nullptr || item.Find("value")->kind != Kind::Null;
    const std::string value = has_equals ? Member(item, "value", Kind::String).text : std::string();
    const auto is_it = [&](std::string_view line) {
      const IniEntryParts parts = EntryPartsOf(line);
      return !HasLineEnd(line) && SourceKindOf(line) == IniLine::Entry && parts.has_equals == has_equals &&
             parts.key == key && parts.value == value;
    };
    if (const std::string* line = TextOrNull(item, "line")) {
      if (is_it(*line)) return *line;
      if (std::string changed = WithEntry(*line, key, value, {}); is_it(changed)) return changed;
    }
    for (const std::string& form : {value, "\"" + value + "\"", "'" + value + "'"})
      if (std::string line = PlainEntry(key, form, has_equals); is_it(line)) return line;
    Fail(item, "no line can have this key and value");
  }
  std::string TextLineOf(const JsonValue& item, std::initializer_list<std::pair<const char*, IniLine>> kinds) const {
    for (const auto& [name, kind] : kinds) {
      const std::string* text = TextOrNull(item, name);
      if (text == nullptr) continue;
      const bool is_comment = kind != IniLine::Comment || is_ini_ || TrimIniBlanks(*text).starts_with(';');
      if (!HasLineEnd(*text) && SourceKindOf(*text) == kind && is_comment) return *text;
    }
    Fail(item, "this is no line of such a file");
  }

  std::string RegLineOf(const JsonValue& item) const {
    Allow(item, {"name", "type", "value", "bytes", "deleted", "comment", "blank", "other", "line", "end"});
    if (const std::string* other = TextOrNull(item, "other")) return OtherLineOf(item, *other);
    if (item.Find("name") == nullptr)
      return TextLineOf(item, {{"comment", IniLine::Comment}, {"blank", IniLine::Blank}});
    const std::string& name = Member(item, "name", Kind::String).text;
    const bool deletes = item.Find("deleted") != nullptr;
    const std::optional<RegData> data = deletes ? std::nullopt : std::optional(DataIn(item));
    if (const std::string* line = TextOrNull(item, "line")) {
      const auto place = FindRegValue(*line, std::min(line->find_first_of("\r\n"), line->size()));
      if (place && NameOfQuoted(place->name.Of(*line)) == name && EndsBehind(*line, place->assignment) &&
          DecodeAssignment(place->assignment.Of(*line), coding_) == data)
        return *line;
    }
    const auto assignment = deletes ? std::optional<std::string>("-") : EncodeAssignment(*data, coding_);
    if (!assignment) Fail(item, std::string(WhyNot(FaultOf(*data, coding_))));
    if (!IsValueName(name)) Fail(item, "no value can have this name");
    return PlainValue(name, *assignment, line_end_);
  }
  static bool EndsBehind(std::string_view line, RegSpan assignment) {
    return !HasLineEnd(line.substr(assignment.End()));
  }
  std::string OtherLineOf(const JsonValue& item, const std::string& text) const {
    const std::string_view visible = std::string_view(text).substr(FirstText(text));
    const bool is_key = coding_.version != RegVersion::Regedit && visible.starts_with('[') && FindRegHeader(text);
    if (HasLineEnd(text) || is_key) Fail(item, "this is no line of such a file");
    return text;
  }
  RegData DataIn(const JsonValue& item) const {
    const JsonValue& type = Member(item, "type", Kind::String);
    const auto number = TypeOfName(type.text);
    if (!number) Fail(type, "an unknown type");
    if (item.Find("bytes") != nullptr)
      return DataOfBytes(*number, ReadFrom(Member(item, "bytes", Kind::String), BytesOfPairs), coding_);
    RegData data;
    data.type = *number;
    data.content = ContentOf(*number);
    const JsonValue* value = item.Find("value");
    if (value == nullptr) Fail(item, "\"value\" or \"bytes\" is missing");
    if (data.content == RegContent::Strings) {
      for (const JsonValue& string : Member(item, "value", Kind::Array).items) {
        if (string.kind != Kind::String) Fail(string, "a string is missing");
        data.strings.push_back(string.text);
      }
    } else if (data.content == RegContent::Number) {
      if (value->kind != Kind::Number && value->kind != Kind::String) Fail(*value, "a number is missing");
      data.number = ReadFrom(*value, NumberOf);
    } else if (data.content == RegContent::Text) {
      data.text = Member(item, "value", Kind::String).text;
    } else {
      Fail(*value, "this type has \"bytes\"");
    }
    return data;
  }

  const std::string& name_;
  const JsonValue& root_;
  bool is_ini_ = true;
  TextFormat format_;
  RegCoding coding_;
  std::string line_end_;
  std::string text_;
};

}  // namespace

std::unique_ptr<ConsoleFile> ReadJsonDocument(const std::string& name, std::string_view json) {
  const JsonValue root = ReadJson(name, json);
  return DocumentReader(name, root).Read();
}

}  // namespace tme::console
