#include "documents/rtf/RtfObjects.h"

#include <algorithm>
#include <limits>

#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxLists = 10'000;
constexpr std::size_t kSignatureBytes = 4;

bool IsShownFormat(std::string_view bytes) { return bytes.starts_with("\x89PNG") || bytes.starts_with("\xFF\xD8\xFF"); }

std::int32_t Scaled(std::int64_t goal, std::int64_t percent) {
  const std::int64_t scaled = goal * percent / 100;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(scaled, 0, std::numeric_limits<std::int32_t>::max()));
}

/// Collects the bytes of a picture as long as they are those of a format that is shown.
class PictureBytes {
 public:
  explicit PictureBytes(PictureGroup& picture) : picture_(picture) {}

  void AddHex(std::string_view digits) {
    for (const char c : digits) {
      const int digit = HexDigit(static_cast<unsigned char>(c));
      if (digit < 0) continue;
      if (high_ < 0) {
        high_ = digit;
        continue;
      }
      Add(static_cast<char>(high_ * 16 + digit));
      high_ = -1;
      if (is_other_) return;
    }
  }
  void AddBinary(std::string_view bytes) {
    for (const char c : bytes) {
      Add(c);
      if (is_other_) return;
    }
  }

 private:
  void Add(char byte) {
    std::string& bytes = picture_.bytes;
    bytes.push_back(byte);
    if (bytes.size() == kSignatureBytes) is_other_ = !IsShownFormat(bytes);
    if (bytes.size() > kMaxPictureBytes) picture_.too_large = is_other_ = true;
  }

  PictureGroup& picture_;
  int high_ = -1;
  bool is_other_ = false;
};

struct PictureSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t percent_x = 100;
  std::int32_t percent_y = 100;
};

void ReadPictureWord(const Token& token, PictureSize& size, PictureGroup& picture) {
  const std::string_view name = token.text;
  if (name == "picwgoal") size.width = token.value;
  if (name == "pichgoal") size.height = token.value;
  if (name == "picscalex" && token.value > 0) size.percent_x = token.value;
  if (name == "picscaley" && token.value > 0) size.percent_y = token.value;
  if (name == "wmetafile") picture.label = "Picture (Windows metafile)";
  if (name == "emfblip") picture.label = "Picture (enhanced metafile)";
  if (name == "pmmetafile") picture.label = "Picture (OS/2 metafile)";
  if (name == "macpict") picture.label = "Picture (QuickDraw)";
  if (name == "dibitmap" || name == "wbitmap") picture.label = "Picture (Windows bitmap)";
}

ListKind KindOfNumberFormat(std::int32_t format) {
  switch (format) {
    case 1:
      return ListKind::UpperRoman;
    case 2:
      return ListKind::LowerRoman;
    case 3:
      return ListKind::UpperLetter;
    case 4:
      return ListKind::LowerLetter;
    case 23:
      return ListKind::Bullet;
    case 255:
      return ListKind::None;
    default:
      return ListKind::Decimal;
  }
}

/// Takes a word or a quoted text off the front.
std::string TakeArgument(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n"), text.size()));
  const bool is_quoted = text.starts_with('"');
  if (is_quoted) text.remove_prefix(1);
  const std::size_t end = std::min(text.find_first_of(is_quoted ? "\"" : " \t\n"), text.size());
  std::string argument;
  for (std::size_t i = 0; i < end; ++i) {
    if (is_quoted && text[i] == '\\' && i + 1 < end && text[i + 1] == '\\') ++i;
    argument += text[i];
  }
  text.remove_prefix(std::min(end + (is_quoted ? 1u : 0u), text.size()));
  return argument;
}

}  // namespace

PictureGroup ReadPicture(std::string_view group) {
  PictureGroup picture;
  PictureSize size;
  PictureBytes bytes(picture);
  Tokenizer tokens(group);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Word && !picture.is_there) {
      picture.is_there = token.text == "pict";
    } else if (picture.is_there) {
      if (token.kind == TokenKind::GroupEnd) break;
      if (token.kind == TokenKind::GroupStart) tokens.TakeGroup(token.begin, nullptr);
      if (token.kind == TokenKind::Word) ReadPictureWord(token, size, picture);
      if (token.kind == TokenKind::Text) bytes.AddHex(token.text);
      if (token.kind == TokenKind::Binary) bytes.AddBinary(token.text);
    }
  }
  if (picture.too_large || !IsShownFormat(picture.bytes)) picture.bytes = {};
  if (picture.too_large) picture.label = "Picture (too large)";
  picture.width = Scaled(size.width, size.percent_x);
  picture.height = Scaled(size.height, size.percent_y);
  return picture;
}

LegacyList ReadLegacyNumbering(std::string_view group) {
  LegacyList list;
  list.look.kind = ListKind::Decimal;
  Tokenizer tokens(group);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    const std::string_view name = token.text;
    if (name == "pnlvlblt") list.look.kind = ListKind::Bullet;
    if (name == "pnlvlcont") list.look.kind = ListKind::None;
    if (name == "pnlcltr") list.look.kind = ListKind::LowerLetter;
    if (name == "pnucltr") list.look.kind = ListKind::UpperLetter;
    if (name == "pnlcrm") list.look.kind = ListKind::LowerRoman;
    if (name == "pnucrm") list.look.kind = ListKind::UpperRoman;
    if (name == "pnstart") list.look.start = token.value;
    if (name == "pnlvl") list.level = static_cast<std::uint8_t>(std::clamp(token.value, 1, 9) - 1);
  }
  return list;
}

ListKind ListKindOfText(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n(");
  if (first == std::string_view::npos) return ListKind::None;
  const char c = text[first];
  const bool is_short = text.find_first_of(").", first) == first + 1;
  if (c >= '0' && c <= '9') return ListKind::Decimal;
  if (c >= 'a' && c <= 'z' && is_short) return ListKind::LowerLetter;
  if (c >= 'A' && c <= 'Z' && is_short) return ListKind::UpperLetter;
  return ListKind::Bullet;
}

namespace {

void ReadLevelWord(const Token& word, ListLook& look) {
  if (word.text == "levelnfc" || word.text == "levelnfcn") look.kind = KindOfNumberFormat(word.value);
  if (word.text == "levelstartat") look.start = word.value;
}

}  // namespace

bool ListTables::ReadLists(std::string_view group) {
  Tokenizer tokens(group);
  Token token;
  List list;
  std::size_t next_level = 0;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    const std::string_view name = token.text;
    if (name == "list") {
      list = {};
      next_level = 0;
    } else if (name == "listlevel") {
      ++next_level;
    } else if (name == "listid") {
      list.id = token.value;
      if (lists_.size() >= kMaxLists) return false;
      lists_.push_back(list);
    } else if (next_level > 0 && next_level <= kLevels) {
      ReadLevelWord(token, list.levels[next_level - 1]);
    }
  }
  std::stable_sort(lists_.begin(), lists_.end(), [](const List& a, const List& b) { return a.id < b.id; });
  return true;
}

bool ListTables::ReadOverrides(std::string_view group) {
  Tokenizer tokens(group);
  Token token;
  List list;
  std::size_t next_level = 0;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    const std::string_view name = token.text;
    if (name == "listoverride") {
      list = {};
      next_level = 0;
    } else if (name == "listid") {
      const List* found = FindIn(lists_, token.value);
      if (found != nullptr) list.levels = found->levels;
    } else if (name == "lfolevel") {
      ++next_level;
    } else if (name == "ls") {
      list.id = token.value;
      if (overrides_.size() >= kMaxLists) return false;
      overrides_.push_back(list);
    } else if (next_level > 0 && next_level <= kLevels) {
      ReadLevelWord(token, list.levels[next_level - 1]);
    }
  }
  std::stable_sort(overrides_.begin(), overrides_.end(), [](const List& a, const List& b) { return a.id < b.id; });
  return true;
}

const ListTables::List* ListTables::FindIn(const std::vector<List>& lists, std::int32_t id) {
  const auto found = std::lower_bound(lists.begin(), lists.end(), id,
                                      [](const List& list, std::int32_t wanted) { return list.id < wanted; });
  return found != lists.end() && found->id == id ? &*found : nullptr;
}

ListLook ListTables::Find(std::int32_t override_number, std::uint8_t level) const {
  const List* found = FindIn(overrides_, override_number);
  return found != nullptr && level < kLevels ? found->levels[level] : ListLook{};
}

std::string UrlOfInstruction(std::string_view instruction) {
  if (TakeArgument(instruction) != "HYPERLINK") return {};
  std::string url;
  std::string place;
  while (true) {
    instruction.remove_prefix(std::min(instruction.find_first_not_of(" \t\n"), instruction.size()));
    if (instruction.empty()) break;
    const bool is_quoted = instruction.starts_with('"');
    const std::string argument = TakeArgument(instruction);
    if (is_quoted || !argument.starts_with('\\')) {
      if (url.empty()) url = argument;
    } else if (argument == "\\l") {
      place = TakeArgument(instruction);
    } else if (argument == "\\o" || argument == "\\t") {
      TakeArgument(instruction);
    }
  }
  return place.empty() ? url : url + "#" + place;
}

}  // namespace tme::rtf
