#include "console/RegScript.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "console/Findings.h"
#include "console/Values.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegAddLine.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegNames.h"
#include "documents/reg/RegSourceLine.h"
#include "files/EncodingEvidence.h"

namespace tme::console {
namespace {

constexpr std::string_view kSignature = "sig #";

/// In a batch file a percent sign stands twice, whatever is around it.
std::optional<std::string> BatchLine(std::optional<std::string> line) {
  if (!line) return std::nullopt;
  std::string doubled;
  for (const char c : *line) doubled.append(c == '%' ? 2 : 1, c);
  if (doubled.size() > kMaxCommandLine) return std::nullopt;
  return doubled;
}

/// A text for PowerShell: in single quotes, where nothing but these means anything; it takes four other characters for
/// them, too. Controls stand outside.
std::string PowerShellText(std::string_view text) {
  constexpr std::array<std::string_view, 5> kQuotes{"'", "\xE2\x80\x98", "\xE2\x80\x99", "\xE2\x80\x9A",
                                                    "\xE2\x80\x9B"};
  std::string quoted = "'";
  bool is_sum = false;
  while (!text.empty()) {
    const auto quote =
        std::find_if(kQuotes.begin(), kQuotes.end(), [text](auto each) { return text.starts_with(each); });
    const auto unit = static_cast<unsigned char>(text.front());
    if (quote != kQuotes.end()) {
      quoted.append(*quote).append(*quote);
      text.remove_prefix(quote->size());
      continue;
    }
    if (unit < ' ') {
      quoted.append("'+[char]").append(std::to_string(unit)).append("+'");
      is_sum = true;
    } else {
      quoted += text.front();
    }
    text.remove_prefix(1);
  }
  quoted += '\'';
  return is_sum ? "(" + quoted + ")" : quoted;
}

std::string PowerShellBytes(std::string_view bytes) {
  std::string list = "[byte[]]@(";
  for (const char byte : bytes) {
    if (list.back() != '(') list += ',';
    list += std::to_string(static_cast<unsigned char>(byte));
  }
  return list + ")";
}

/// Data and kind, as SetValue takes them. Null for other types, and bytes that are no proper form of theirs.
std::optional<std::string> PowerShellData(const RegData& data) {
  if (data.content != ContentOf(data.type)) return std::nullopt;
  switch (data.type) {
    case reg_type::kString:
      return PowerShellText(data.text) + ", 'String'";
    case reg_type::kExpandString:
      return PowerShellText(data.text) + ", 'ExpandString'";
    case reg_type::kDword:
      return "[int]" + std::to_string(static_cast<std::int32_t>(data.number)) + ", 'DWord'";
    case reg_type::kQword:
      return "[long]" + std::to_string(static_cast<std::int64_t>(data.number)) + ", 'QWord'";
    case reg_type::kBinary:
      return PowerShellBytes(data.bytes) + ", 'Binary'";
    case reg_type::kNone:
      return PowerShellBytes(data.bytes) + ", 'None'";
    case reg_type::kMultiString: {
      std::string list = "[string[]]@(";
      for (const std::string& string : data.strings)
        list.append(&string == data.strings.data() ? "" : ",").append(PowerShellText(string));
      return list + "), 'MultiString'";
    }
    default:
      return std::nullopt;
  }
}

/// The hive's object, and the path below it as a text. Null for an unknown hive.
std::optional<std::pair<std::string, std::string>> PowerShellPath(std::string_view path) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kHives{
      {{"HKEY_CLASSES_ROOT", "ClassesRoot"},
       {"HKEY_CURRENT_USER", "CurrentUser"},
       {"HKEY_LOCAL_MACHINE", "LocalMachine"},
       {"HKEY_USERS", "Users"},
       {"HKEY_CURRENT_CONFIG", "CurrentConfig"}}};
  const std::string_view hive = path.substr(0, path.find('\\'));
  const auto found = std::find_if(kHives.begin(), kHives.end(), [hive](auto h) { return SameRegName(h.first, hive); });
  if (found == kHives.end()) return std::nullopt;
  const std::string_view below = path.substr(std::min(path.size(), hive.size() + 1));
  return std::pair("[Microsoft.Win32.Registry]::" + std::string(found->second), PowerShellText(below));
}

std::string Counted(std::uint64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

constexpr std::string_view kTooLong = "a line that cmd takes would not hold it";

/// Why a value has no line.
std::string WhyNoLine(const RegData& data, Shell shell) {
  const std::string type = RegTypeName(data.type), a_type = "a " + type;
  if (data.content != ContentOf(data.type)) return a_type + " with bytes that are no proper form of it";
  const bool is_cmd = shell == Shell::Cmd;
  if (is_cmd && data.type == reg_type::kNone) return "reg add takes no data of a REG_NONE";
  if (data.content == RegContent::Bytes && data.type != reg_type::kBinary)
    return (is_cmd ? "reg add has no type " : "SetValue has no type ") + type;
  const auto has_end = [](std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; };
  if (!is_cmd) return "SetValue has no type " + type;
  if (data.content == RegContent::Strings && data.strings.empty()) return "reg add takes no empty list";
  if (has_end(data.text) || std::any_of(data.strings.begin(), data.strings.end(), has_end))
    return "a batch file has no place for a line end in a text";
  return std::string(kTooLong);
}

class ScriptWriter {
 public:
  ScriptWriter(const ConsoleFile& file, Shell shell, Streams& streams)
      : file_(file), shell_(shell), streams_(streams) {}

  std::string Write() {
    ForEachPiece(file_, [this](SourceLines::Piece piece, std::uint64_t number, std::string_view text) {
      text.remove_suffix(LineEndOf(text).size());
      Piece(static_cast<RegPiece>(file_.Lines().Kind(piece)), number, text);
    });
    CloseKey();
    if (failures_ > 0)
      throw Trouble(file_.Name() + ": " + Counted(failures_, "line") + " cannot be said there; nothing was written");
    if (comments_ > 0)
      streams_.Complain(file_.Name() + ": " + Counted(comments_, "comment") +
                        " left out: cmd has no safe place for them");
    if (utf8::AsciiRun(script_) == script_.size()) return script_;
    return (shell_ == Shell::Cmd ? "@chcp 65001 >nul\r\n" : std::string(kUtf8Mark)) + script_;
  }

 private:
  void Put(std::uint64_t number, const std::optional<std::string>& line, std::string_view why_not) {
    if (line) {
      script_.append(*line).append(shell_ == Shell::Cmd ? "\r\n" : "\n");
      return;
    }
    Refuse(number, why_not);
  }
  void Refuse(std::uint64_t number, std::string_view why) {
    ++failures_;
    streams_.Complain(file_.At(number).append("this cannot be said there: ").append(why));
  }
  void CloseKey() {
    if (is_open_ && shell_ == Shell::PowerShell) script_ += "$key.Close()\n";
    is_open_ = false;
  }
  void Piece(RegPiece kind, std::uint64_t number, std::string_view text) {
    switch (kind) {
      case RegPiece::Key:
      case RegPiece::KeyDeletion:
        return Key(kind, number, text);
      case RegPiece::Value:
        return Value(number, text);
      case RegPiece::Comment:
        return Comment(text);
      case RegPiece::Other:
      case RegPiece::Pair:
        return Refuse(number, "it is no key, value or comment");
      case RegPiece::Blank:
      case RegPiece::FileHeader:
        return;
    }
  }
  void Comment(std::string_view text) {
    if (shell_ == Shell::Cmd) {
      ++comments_;
      return;
    }
    // A blank, for "#requires" is no comment; two where "# SIG #" would begin a signature, behind which nothing may
    // come.
    const std::string_view comment = TrimIniBlanks(TrimIniBlanks(text).substr(1));
    const bool is_signature = FoldedCase(comment.substr(0, kSignature.size())) == kSignature;
    script_.append(is_signature ? "#  " : "# ").append(comment).append("\n");
  }
  void Key(RegPiece kind, std::uint64_t number, std::string_view line) {
    const bool deletes = kind == RegPiece::KeyDeletion;
    CloseKey();
    path_ = FindRegHeader(line)->path.Of(line);
    is_open_ = !deletes;
    if (shell_ == Shell::Cmd)
      return Put(number, BatchLine(deletes ? RegDeleteKeyLine(path_) : RegAddKeyLine(path_)), kTooLong);
    const auto place = PowerShellPath(path_);
    is_open_ = is_open_ && place;
    if (!place) return Refuse(number, "PowerShell has no such hive");
    if (deletes && path_.find('\\') == std::string_view::npos) return Refuse(number, "no hive can be deleted");
    script_ += deletes ? place->first + ".DeleteSubKeyTree(" + place->second + ", $false)\n"
                       : "$key = " + place->first + ".CreateSubKey(" + place->second + ")\n";
  }
  void Value(std::uint64_t number, std::string_view text) {
    const auto place = FindRegValue(text, std::min(text.find_first_of("\r\n"), text.size()));
    if (!place) return Refuse(number, "it is no value");
    const std::string_view quoted = place->name.Of(text), assignment = place->assignment.Of(text);
    const std::string name = NameOfQuoted(quoted);
    const auto data = DecodeAssignment(assignment, file_.Coding());
    for (const std::string_view comment : CommentsInHex(assignment)) Comment(comment);
    if (const auto behind = TrimIniBlanks(text.substr(place->assignment.End())); !behind.empty()) Comment(behind);
    if (!is_open_) return Refuse(number, "imports pass over it, for there is no key that it belongs to");
    const std::string why_not = data ? WhyNoLine(*data, shell_) : std::string(kTooLong);
    if (shell_ == Shell::Cmd) return Put(number, BatchLine(RegAddValueLine(path_, name, data)), why_not);
    const std::string quoted_name = PowerShellText(name);
    if (!data) return Put(number, "$key.DeleteValue(" + quoted_name + ", $false)", {});
    const auto written = PowerShellData(*data);
    if (!written) return Refuse(number, why_not);
    Put(number, "$key.SetValue(" + quoted_name + ", " + *written + ")", {});
  }

  const ConsoleFile& file_;
  const Shell shell_;
  Streams& streams_;
  std::string script_;
  std::string_view path_;
  bool is_open_ = false;
  std::uint64_t failures_ = 0;
  std::uint64_t comments_ = 0;
};

}  // namespace

std::string ScriptOf(const ConsoleFile& file, Shell shell, Streams& streams) {
  return ScriptWriter(file, shell, streams).Write();
}

}  // namespace tme::console
