#include <algorithm>
#include <string>
#include <unordered_map>

#include "base/CaseFold.h"
#include "console/Findings.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniSourceLine.h"

namespace tme::console {
namespace {

std::string FirstIn(std::uint64_t line) { return "first in line " + std::to_string(line); }

std::string_view WithoutLineEnd(std::string_view line) { return line.substr(0, line.size() - LineEndOf(line).size()); }

class IniCheck {
 public:
  explicit IniCheck(Findings& findings) : findings_(findings) {}

  void Header(std::uint64_t number, std::string_view line) {
    const std::string_view name = SourceHeaderName(line);
    const std::string_view text = TrimIniBlanks(line);
    const std::string_view behind = TrimIniBlanks(text.substr(std::min(text.size(), name.size() + 2)));
    if (text.find(']') == std::string_view::npos)
      Add(number, "a section without \"]\"", "readers cut its name or pass over it");
    else if (!behind.empty() && !behind.starts_with(';') && !behind.starts_with('#'))
      Add(number, "text behind the \"]\" of a section", "readers take it for part of the name, drop it or refuse it");
    if (TrimIniBlanks(name).empty()) Add(number, "a section without a name", "readers refuse it or cannot name it");
    if (name != TrimIniBlanks(name)) Add(number, "blanks around the name of a section", "some readers keep them");
    const auto [first, is_new] = sections_.try_emplace(FoldedCase(TrimIniBlanks(name)), number);
    if (!is_new)
      Add(number, "section [" + std::string(name) + "] again, " + FirstIn(first->second),
          "readers take the first, the last or both, or refuse the file");
    has_section_ = true;
    keys_.clear();
    owner_ = {};
  }
  void Entry(std::uint64_t number, std::string_view line) {
    const IniEntryParts parts = EntryPartsOf(line);
    if (!has_section_ && !said_top_) {
      said_top_ = true;
      Add(number, "an entry before the first section", "many readers do not find it or refuse the file");
    }
    if (StandsDeeper(number, line, parts)) return;
    if (!parts.has_equals) Add(number, "an entry without \"=\"", "readers pass over it or refuse the file");
    if (parts.has_equals && parts.key.empty()) Add(number, "an entry without a key", "readers pass over it");
    const auto [first, is_new] = keys_.try_emplace(FoldedCase(parts.key), number);
    if (!is_new)
      Add(number, "key \"" + std::string(parts.key) + "\" again, " + FirstIn(first->second),
          "readers take the first or the last, or refuse the file");
  }
  void Comment(std::uint64_t number, std::string_view line) {
    const std::string_view text = TrimIniBlanks(line);
    if (text.starts_with('#') && text.find('=') != std::string_view::npos)
      Add(number, "a comment with \"#\" and \"=\"", "the functions of Windows take it for an entry");
  }

 private:
  void Add(std::uint64_t number, std::string what, std::string why) {
    findings_.push_back({number, std::move(what), std::move(why)});
  }

  /// Whether the line is no more than more of a value above.
  bool StandsDeeper(std::uint64_t number, std::string_view line, const IniEntryParts& parts) {
    if (owner_.empty() || IniDepthOf(line) <= IniDepthOf(owner_)) {
      owner_ = line;
      owner_number_ = number;
      return false;
    }
    Add(number,
        std::string(parts.has_equals ? "an entry" : "a line") + " that stands deeper than key \"" +
            std::string(EntryPartsOf(owner_).key) + "\" above, in line " + std::to_string(owner_number_),
        parts.has_equals ? "some readers take it for more of that value"
                         : "some readers take it for more of that value, others pass over it or refuse the file");
    return !parts.has_equals;
  }

  Findings& findings_;
  /// The entry that a line which stands deeper may belong to; empty before the first one of a section.
  std::string_view owner_;
  std::uint64_t owner_number_ = 0;
  std::unordered_map<std::string, std::uint64_t> sections_;
  std::unordered_map<std::string, std::uint64_t> keys_;
  bool has_section_ = false;
  bool said_top_ = false;
};

void CheckMark(const ConsoleFile& file, Findings& findings) {
  const TextEncoding encoding = file.Format().encoding;
  const bool is_marked_utf8 = encoding == TextEncoding::Utf8Bom;
  const SourceLines& lines = file.Lines();
  const bool is_section =
      lines.First() != SourceLines::kEnds && static_cast<IniLine>(lines.Kind(lines.First())) == IniLine::Header;
  if (is_marked_utf8)
    findings.push_back({1,
                        std::string("the byte order mark of UTF-8 ") +
                            (is_section ? "right before the first section" : "at the start"),
                        is_section ? "the functions of Windows do not find that section"
                                   : "readers that know no mark take the first line for another one"});
  if (encoding == TextEncoding::Utf16Be || encoding == TextEncoding::Utf16BeUnmarked)
    findings.push_back({1, "UTF-16 with the high byte first", "the functions of Windows do not read it"});
  if (encoding == TextEncoding::Utf16LeUnmarked)
    findings.push_back({1, "UTF-16 without a byte order mark", "most readers take it for 8-bit text"});
}

/// What the editor leaves out when it does not hold the file whole.
void CheckReading(const ConsoleFile& file, Findings& findings) {
  std::string text;
  file.Lines().Write([&text](std::string_view part) {
    text.append(part);
    return true;
  });
  IniTree tree;
  const IniReadResult result =
      ReadIni(tree, std::move(text), IniQuestions{.duplicate_section = [](std::string_view) { return true; }});
  if (result.end == IniReadEnd::LineNotTaken)
    findings.push_back({result.ended_at_line, "the editor's reading by the rules ends here",
                        std::to_string(result.lines_not_read) +
                            (result.lines_not_read == 1 ? " line is left out" : " lines are left out")});
}

}  // namespace

void CheckIni(const ConsoleFile& file, Findings& findings) {
  CheckMark(file, findings);
  IniCheck check(findings);
  ForEachPiece(file, [&](SourceLines::Piece piece, std::uint64_t number, std::string_view text) {
    const std::string_view line = WithoutLineEnd(text);
    switch (static_cast<IniLine>(file.Lines().Kind(piece))) {
      case IniLine::Header:
        return check.Header(number, line);
      case IniLine::Entry:
        return check.Entry(number, line);
      case IniLine::Comment:
        return check.Comment(number, line);
      case IniLine::Blank:
        return;
    }
  });
  CheckReading(file, findings);
}

}  // namespace tme::console
