// Input: the number of edits, three bytes for each (which one, where, what with), then the text of a file.
#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"

namespace tme::fuzz {
namespace {

std::string CodePageText(std::string_view bytes) {
  std::string text;
  std::array<char, utf8::kMaxCharacterBytes> character;
  for (const char byte : bytes)
    text.append(character.data(), utf8::PutCharacter(static_cast<unsigned char>(byte), character.data()));
  return text;
}
std::optional<std::string> CodePageBytes(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const std::optional<char32_t> character = utf8::TakeCharacter(text);
    if (!character || *character > 0xFF) return std::nullopt;
    bytes.push_back(static_cast<char>(*character));
  }
  return bytes;
}
constexpr RegCoding kCoding{RegVersion::Version5, CodePageText, CodePageBytes};

std::string Written(const RegDocument& document) {
  std::string text;
  document.Lines().Write([&text](std::string_view part) {
    text += part;
    return true;
  });
  Promise(text.size() == document.Lines().Size(), "the size is known");
  return text;
}

std::string Folded(std::string_view text) {
  std::string folded;
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  while (!text.empty()) {
    if (const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept)) {
      folded.append(bytes.data(), utf8::PutCharacter(FoldCase(*character), bytes.data()));
    } else {
      folded.push_back(text.front());
      text.remove_prefix(1);
    }
  }
  return folded;
}

/// The first line of an assignment, and how many follow.
std::string Shape(std::string_view line, std::size_t more) { return std::string(line) + '\n' + std::to_string(more); }
std::string ShapeOf(std::string_view data) {
  std::size_t more = 0;
  for (std::size_t at = 0; at < data.size(); ++at)
    more += data[at] == '\n' || (data[at] == '\r' && !data.substr(at + 1).starts_with('\n'));
  return Shape(more == 0 ? data : data.substr(0, data.find('\\') + 1), more);
}

/// A line of what a file holds: "K path", "D path", "V path" with name and assignment, "C path" with a comment in
/// sight.
using Content = std::vector<std::string>;

Content ShownBy(const RegDocument& document) {
  Content content;
  std::size_t nodes = 0;
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    ++nodes;
    const std::string folded = Folded(path);
    for (int row = 0; row < node.ChildCount(); ++row) Promise(node.Child(row)->Row() == row, "a child knows its place");
    if (IsKey(node.Tag()) && node.Parent() != nullptr)
      Promise(document.FindChild(node.Parent(), node.Text()) == &node, "a key stands once");
    if (node.Tag() == RegTag::Deletion) content.push_back("D " + folded);
    if (node.Tag() == RegTag::Comment)
      content.push_back("C " + Folded(node.Parent()->KeyPath()) + '\n' + std::string(node.Text()));
    if (IsKey(node.Tag()) && document.PieceOf(&node) != SourceLines::kEnds) content.push_back("K " + folded);
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      const RegValueRecord& value = document.Values()[record];
      content.push_back("V " + folded + '\n' + std::string(value.name) + '\n' + ShapeOf(value.data));
    }
    return true;
  });
  Promise(nodes == document.NodeCount(), "nodes are counted");
  std::ranges::sort(content);
  return content;
}

/// The second parser: line by line and character by character, for files that begin with a known first line.
class SimpleParser {
 public:
  explicit SimpleParser(std::string_view text) {
    while (!text.empty()) {
      const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
      lines_.emplace_back(text.substr(0, end));
      const std::size_t behind = end + (text.substr(end).starts_with("\r\n") ? 2 : end < text.size() ? 1 : 0);
      text.remove_prefix(behind);
    }
  }

  Content Run() {
    for (at_ = 1; at_ < lines_.size(); ++at_) {
      const std::string line = Cut(lines_[at_]);
      if (line.starts_with('[')) TakeKey(line);
      if (line.starts_with('"') || line.starts_with('@')) TakeValue(line);
    }
    std::ranges::sort(content_);
    content_.erase(std::unique(content_.begin(), content_.end(),
                               [](const std::string& a, const std::string& b) { return a == b && a[0] == 'K'; }),
                   content_.end());
    return content_;
  }

 private:
  static std::string Cut(std::string line) {
    return line.erase(0, std::min(line.find_first_not_of(" \t"), line.size()));
  }
  static bool IsRest(std::string_view rest) {
    const std::string cut = Cut(std::string(rest));
    return cut.empty() || cut[0] == ';';
  }

  void TakeKey(const std::string& line) {
    const std::size_t end = line.rfind(']');
    if (end == std::string::npos) return;
    const bool deletes = line[1] == '-';
    std::string path;
    for (const char c : line.substr(1 + deletes, end - 1 - deletes))
      if (c != '\\' || (!path.empty() && path.back() != '\\')) path.push_back(c);
    if (path.ends_with('\\')) path.pop_back();
    if (path.empty()) return;
    path_ = Folded(path);
    has_path_ = true;
    content_.push_back((deletes ? "D " : "K ") + path_);
  }

  /// Takes a quoted text off the line. Null without a closing quote.
  static std::optional<std::string> TakeQuoted(std::string& line) {
    for (std::size_t at = 1; at < line.size(); ++at) {
      if (line[at] == '\\') {
        ++at;
      } else if (line[at] == '"') {
        const std::string text = line.substr(0, at + 1);
        line.erase(0, at + 1);
        return text;
      }
    }
    return std::nullopt;
  }

  void TakeValue(std::string line) {
    std::string name;
    if (line[0] == '"') {
      const std::optional<std::string> quoted = TakeQuoted(line);
      if (!quoted) return;
      name = UnescapedRegText(quoted->substr(1, quoted->size() - 2));
    } else {
      line.erase(0, 1);
    }
    line = Cut(line);
    if (!line.starts_with('=') || !has_path_) return;
    line = Cut(line.substr(1));
    const std::optional<std::string> data = DataOf(line);
    if (data) content_.push_back("V " + path_ + '\n' + name + '\n' + *data);
  }

  std::optional<std::string> DataOf(std::string line) {
    if (line.starts_with('"')) {
      const std::optional<std::string> quoted = TakeQuoted(line);
      return quoted && IsRest(line) ? std::optional(Shape(*quoted, 0)) : std::nullopt;
    }
    if (line.starts_with('-')) return IsRest(line.substr(1)) ? std::optional(Shape("-", 0)) : std::nullopt;
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::string mark = Folded(line.substr(0, colon));
    if (mark == "dword") {
      std::size_t end = colon + 1;
      while (end < line.size() && std::isxdigit(static_cast<unsigned char>(line[end])) != 0) ++end;
      const bool fits = end > colon + 1 && end <= colon + 9 && IsRest(line.substr(end));
      return fits ? std::optional(Shape(line.substr(0, end), 0)) : std::nullopt;
    }
    const bool is_typed = mark.size() > 5 && mark.size() <= 13 && mark.starts_with("hex(") && mark.ends_with(')') &&
                          mark.find_first_not_of("0123456789abcdef", 4) == mark.size() - 1;
    if (mark != "hex" && !is_typed) return std::nullopt;
    return HexOf(line, colon + 1);
  }

  /// Where a line's hex ends, "\\" included. Null when something stands behind it.
  static std::optional<std::size_t> EndOfDigits(const std::string& line, std::size_t digits) {
    std::size_t end = std::min(line.find_first_not_of("0123456789abcdefABCDEF, \t", digits), line.size());
    if (!AreBytes(line.substr(digits, end - digits))) return std::nullopt;
    if (line.substr(end).starts_with('\\'))
      ++end;
    else
      end = std::max(digits, line.substr(0, end).find_last_not_of(" \t") + 1);
    return IsRest(line.substr(end)) ? std::optional(end) : std::nullopt;
  }

  /// Whether digits come in ones and twos, with a comma behind each but the last.
  static bool AreBytes(std::string text) {
    for (text = Cut(text); !text.empty(); text = Cut(text)) {
      const std::size_t digits = std::min(text.find_first_of(", \t"), text.size());
      text = Cut(text.erase(0, digits));
      if (digits < 1 || digits > 2 || (!text.empty() && text[0] != ',')) return false;
      text.erase(0, 1);
    }
    return true;
  }

  /// Goes to the last line of the value.
  std::optional<std::string> HexOf(const std::string& line, std::size_t digits) {
    std::optional<std::size_t> end = EndOfDigits(line, digits);
    if (!end) return std::nullopt;
    const std::size_t first = at_;
    for (std::string part = line; part[*end - 1] == '\\';) {
      std::size_t next = at_ + 1;
      while (next < lines_.size() && IsRest(lines_[next])) ++next;
      if (next == lines_.size()) break;
      part = Cut(lines_[next]);
      end = EndOfDigits(part, 0);
      if (!end || std::isxdigit(static_cast<unsigned char>(part[0])) == 0) break;
      at_ = next;
    }
    return Shape(line.substr(0, *EndOfDigits(line, digits)), at_ - first);
  }

  std::vector<std::string> lines_;
  std::size_t at_ = 0;
  std::string path_;
  bool has_path_ = false;
  Content content_;
};

/// What stands before and behind the lines that an edit may touch.
struct Around {
  std::string before;
  std::string behind;
};

Around AroundPiece(const RegDocument& document, SourceLines::Piece piece) {
  Around around;
  const SourceLines& lines = document.Lines();
  std::string* side = &around.before;
  for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
    if (at == piece)
      side = &around.behind;
    else
      side->append(lines.Text(at));
  }
  return around;
}

bool IsAround(const Around& around, std::string_view text) {
  return text.size() >= around.before.size() + around.behind.size() && text.starts_with(around.before) &&
         text.ends_with(around.behind);
}

/// Whether one text comes from the other by putting bytes in at one place. A last line may have got its end.
bool IsInsertion(std::string_view text, std::string_view longer) {
  const auto common = static_cast<std::size_t>(std::ranges::mismatch(text, longer).in1 - text.begin());
  return longer.size() >= text.size() && longer.ends_with(text.substr(common));
}

/// Edits one thing that the bytes choose, and checks that nothing else changed.
class Edit {
 public:
  Edit(RegDocument& document, std::uint8_t which, std::uint8_t where, std::uint8_t what)
      : document_(document), which_(which), what_(what), before_(Written(document)) {
    WalkKeys(*document.Root(), [this](const RegNode& node) {
      nodes_.push_back(const_cast<RegNode*>(&node));
      for (const std::size_t record : document_.ValuesOfPath(&node)) records_.push_back(record);
      return true;
    });
    node_ = nodes_[where % nodes_.size()];
    if (!records_.empty()) record_ = records_[where % records_.size()];
  }

  void Run() {
    const bool is_list = document_.Version() == RegVersion::Regedit;
    const bool is_key = IsKey(node_->Tag());
    switch (which_ % 10) {
      case 0:
        if (is_key && node_->Parent() != nullptr)
          CheckInsertion([&] { document_.AddValue(node_, is_list ? "" : Name(), Assignment()); });
        return;
      case 1: {
        const std::string name = (node_->Parent() == nullptr ? "HKEY_" : "") + Name();
        if (is_key && document_.FindChild(node_, name) == nullptr)
          CheckInsertion([&] { document_.AddKey(node_, name); });
        return;
      }
      case 2:
      case 3:
      case 4:
        return EditValue(is_list);
      case 5:
        return document_.RemoveKey(node_);
      case 6:
        if (is_key && node_->Parent() != nullptr && !is_list) document_.WriteDeletion(node_);
        return;
      case 7: {
        const bool is_free = node_->Parent() != nullptr && document_.FindChild(node_->Parent(), Name()) == nullptr;
        if (is_free && node_->Tag() != RegTag::Comment && node_->Tag() != RegTag::Hive)
          document_.RenameKey(node_, Name());
        return;
      }
      case 8:
        Promise(document_.Comments() == RegComments::Shown || Written(document_) == before_, "showing changes nothing");
        return document_.ShowComments(what_ % 2 == 0 ? RegComments::Shown : RegComments::Hidden);
      default:
        if (!is_list && is_key)
          document_.Paste(node_, ClipboardText(document_, *nodes_[what_ % nodes_.size()]), kCoding);
    }
  }

 private:
  std::string Name() const { return "n" + std::to_string(what_ % 5); }
  std::string Assignment() const {
    constexpr std::array kKinds{"\"text\"", "dword:0000001a", "-", "hex:"};
    if (document_.Version() == RegVersion::Regedit) return "text";
    std::string assignment = kKinds[what_ % kKinds.size()];
    if (assignment == "hex:") assignment = "hex(2):01";
    for (unsigned i = 0; assignment[0] == 'h' && i < what_; ++i) assignment += ",0f";
    return assignment;
  }

  template <typename Change>
  void CheckInsertion(Change change) {
    change();
    Promise(IsInsertion(before_, Written(document_)), "adding puts lines in at one place");
  }

  void EditValue(bool is_list) {
    if (records_.empty()) return;
    const Around around = AroundPiece(document_, document_.Values()[record_].piece);
    if (which_ % 10 == 2) {
      document_.SetAssignment(record_, Assignment());
    } else if (which_ % 10 == 3) {
      document_.RenameValue(record_, Name());
    } else {
      const bool has_comment = document_.Values()[record_].data.find(';') != std::string_view::npos;
      document_.DeleteValue(record_);
      Promise(is_list || has_comment || Written(document_) == around.before + around.behind,
              "a value goes with its lines");
    }
    Promise(IsAround(around, Written(document_)), "an edit changes its own lines");
  }

  RegDocument& document_;
  const std::uint8_t which_;
  const std::uint8_t what_;
  const std::string before_;
  std::vector<RegNode*> nodes_;
  std::vector<std::size_t> records_;
  RegNode* node_ = nullptr;
  std::size_t record_ = 0;
};

/// Lines that mean something else where others stand before them: hex that goes on in nothing, a first line that is not
/// the first, a hive whose name makes its header a deletion.
bool DependsOnPlace(const RegDocument& document, const RegWholeResult& result) {
  const RegNode& root = *document.Root();
  for (int row = 0; row < root.ChildCount(); ++row)
    if (root.Child(row)->Text().starts_with('-')) return true;
  return !result.has_header || result.not_understood > 0 ||
         std::ranges::any_of(document.Values(), [](const RegValueRecord& value) { return value.data.ends_with('\\'); });
}

void Run(std::string_view input) {
  const unsigned edits = TakeByte(input) % 16;
  const std::string_view commands = input.substr(0, std::min<std::size_t>(input.size(), std::size_t{3} * edits));
  const std::string text(input.substr(commands.size()));
  RegDocument document;
  const RegWholeResult result = ReadWholeReg(document, text);
  Promise(Written(document) == text, "untouched is identical");
  const Content shown = ShownBy(document);
  const bool simple = text.starts_with("REGEDIT4\r\n") || text.starts_with("Windows Registry Editor Version 5.00\n");
  if (simple) Promise(SimpleParser(text).Run() == shown, "the tree shows what a second parser finds");
  for (const RegValueRecord& value : document.Values()) {
    const std::optional<RegData> data = DecodeAssignment(value.data, kCoding);
    const std::optional<std::string> again = data ? EncodeAssignment(*data, kCoding) : std::nullopt;
    if (again) Promise(DecodeAssignment(*again, kCoding) == data, "decode, encode, decode is the same");
  }
  for (std::size_t at = 0; at + 2 < commands.size(); at += 3) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(commands[at + i]); };
    Edit(document, byte(0), byte(1), byte(2)).Run();
    const Content now = ShownBy(document);
    if (DependsOnPlace(document, result)) continue;
    RegDocument again;
    ReadWholeReg(again, Written(document), {.unsaid = document.Version(), .first_values = {}, .progress = {}});
    again.ShowComments(document.Comments());
    Promise(ShownBy(again) == now, "the tree is what a reader makes of the lines");
  }
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
