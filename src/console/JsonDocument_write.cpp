#include <algorithm>
#include <string>

#include "console/Findings.h"
#include "console/Json.h"
#include "console/JsonDocument.h"
#include "console/Values.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegSourceLine.h"

namespace tme::console {
namespace {

using enum JsonWriter::Layout;

class DocumentJson {
 public:
  DocumentJson(const ConsoleFile& file, Streams& streams)
      : file_(file), is_ini_(file.Kind() == DocumentKind::Ini), json_(streams) {}

  void Write() {
    const SourceLines& lines = file_.Lines();
    line_end_ = lines.LineEndBehind(lines.First());
    json_.BeginObject(Lines).Member("kind", is_ini_ ? "ini" : "reg");
    json_.Member("encoding", EncodingName(file_.Format().encoding));
    if (file_.Format().stray_byte)
      json_.Name("stray_byte").Number(static_cast<unsigned char>(*file_.Format().stray_byte));
    json_.Member("line_end", line_end_).Name(is_ini_ ? "sections" : "keys").BeginArray(Lines);
    json_.BeginObject().Name(is_ini_ ? "name" : "path").Null();
    json_.Name("lines").BeginArray(Lines);
    for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
      if (is_ini_)
        IniPiece(static_cast<IniLine>(lines.Kind(at)), lines.Text(at));
      else
        RegPieceOf(static_cast<RegPiece>(lines.Kind(at)), lines.Text(at));
    }
    json_.EndArray().EndObject().EndArray().EndObject().EndText();
  }

 private:
  void Header(std::string_view name, std::string_view text, bool deletes, std::string_view line,
              const std::string& plain, std::string_view end) {
    json_.EndArray().EndObject().BeginObject().Member(name, text);
    if (deletes) json_.Name("deleted").True();
    Form(line, plain, end);
    json_.Name("lines").BeginArray(Lines);
  }
  void Form(std::string_view line, const std::string& plain, std::string_view end) {
    if (line != plain) json_.Member("line", line);
    if (end != line_end_) json_.Member("end", end);
  }
  /// Each of them, of a run of blank ones.
  void Texts(std::string_view name, std::string_view lines) {
    SourceLineReader reader(lines);
    for (std::string_view line; reader.Next(line);) {
      const std::string_view end = LineEndOf(line), text = line.substr(0, line.size() - end.size());
      json_.BeginObject().Member(name, text);
      Form(text, std::string(text), end);
      json_.EndObject();
    }
  }
  void IniPiece(IniLine kind, std::string_view text) {
    const std::string_view end = LineEndOf(text), line = text.substr(0, text.size() - end.size());
    if (kind == IniLine::Header) {
      const std::string name(SourceHeaderName(line));
      return Header("name", name, false, line, "[" + name + "]", end);
    }
    if (kind != IniLine::Entry) return Texts(kind == IniLine::Blank ? "blank" : "comment", text);
    const IniEntryParts parts = EntryPartsOf(line);
    json_.BeginObject().Member("key", parts.key).Name("value");
    if (parts.has_equals)
      json_.String(parts.value);
    else
      json_.Null();
    Form(line, PlainEntry(parts.key, parts.value, parts.has_equals), end);
    json_.EndObject();
  }
  void RegPieceOf(RegPiece kind, std::string_view text) {
    const std::string_view end = LineEndOf(text), line = text.substr(0, text.size() - end.size());
    const bool deletes = kind == RegPiece::KeyDeletion;
    const bool is_header = (kind == RegPiece::Key || deletes) && line.substr(FirstText(line)).starts_with('[');
    const auto header = is_header ? FindRegHeader(line) : std::nullopt;
    if (header) {
      const std::string path(header->path.Of(line));
      return Header("path", path, deletes, line, (deletes ? "[-" : "[") + path + "]", end);
    }
    if (kind == RegPiece::Value) return Value(line, end);
    const std::string_view name = kind == RegPiece::Blank ? "blank" : kind == RegPiece::Comment ? "comment" : "other";
    Texts(name, text);
  }
  void Value(std::string_view line, std::string_view end) {
    const std::size_t first_line = std::min(line.find_first_of("\r\n"), line.size());
    const auto place = FindRegValue(line, first_line);
    if (!place) return Texts("other", line);
    const std::string_view quoted = place->name.Of(line), assignment = place->assignment.Of(line);
    const std::string name = NameOfQuoted(quoted);
    json_.BeginObject().Member("name", name);
    const auto data = DecodeAssignment(assignment, file_.Coding());
    std::string plain = "-";
    if (data) {
      PutData(json_, *data);
      plain = EncodeAssignment(*data, file_.Coding()).value_or("");
    } else {
      json_.Name("deleted").True();
    }
    Form(line, PlainValue(name, plain, line_end_), end);
    json_.EndObject();
  }

  const ConsoleFile& file_;
  const bool is_ini_;
  JsonWriter json_;
  std::string_view line_end_;
};

}  // namespace

std::string PlainEntry(std::string_view key, std::string_view value, bool has_equals) {
  return has_equals ? std::string(key).append("=").append(value) : std::string(key);
}

std::string PlainValue(std::string_view name, std::string_view assignment, std::string_view line_end) {
  const std::string before = QuotedRegName(name) + "=";
  return before + WrapAssignment(before, assignment, line_end);
}

void WriteJsonDocument(const ConsoleFile& file, Streams& streams) { DocumentJson(file, streams).Write(); }

}  // namespace tme::console
