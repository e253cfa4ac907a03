#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"

namespace tme::rtf {

inline RtfDocument Read(std::string_view bytes) { return ReadRtf(bytes, BytesToUtf8); }

/// What differs from plain text, as short marks: "b,fs20".
inline std::string MarksOf(const RtfDocument& document, const CharFormat& format) {
  std::string marks;
  const auto add = [&](bool is_set, const std::string& mark) {
    if (is_set) marks.append(marks.empty() ? "" : ",").append(mark);
  };
  const auto number = [](auto value) { return std::to_string(static_cast<unsigned>(value)); };
  const CharFormat& plain = document.char_formats.front();
  add(format.bold, "b");
  add(format.italic, "i");
  add(format.hidden, "v");
  add(format.underline != Underline::None, "ul" + number(format.underline));
  add(format.strike != Strike::None, "strike" + number(format.strike));
  add(format.script != Script::Normal, format.script == Script::Super ? "super" : "sub");
  add(format.capitals != Capitals::None, format.capitals == Capitals::All ? "caps" : "scaps");
  const bool has_font = format.font < document.fonts.size();
  add(format.font != plain.font, has_font ? document.fonts[format.font].name : "no font");
  add(format.half_points != plain.half_points, "fs" + number(format.half_points));
  add(format.color != 0, "cf" + number(format.color));
  add(format.background != 0, "cb" + number(format.background));
  add(format.shading != 0, "shading" + number(format.shading));
  add(format.raise != 0, "raise" + std::to_string(format.raise));
  add(format.said != 0, "said" + number(format.said));
  constexpr std::string_view kClasses[] = {"", "hich", "dbch"};
  add(format.text_class != FontClass::Low, std::string(kClasses[static_cast<std::size_t>(format.text_class)]));
  add(format.font_class != FontClass::Low, "f " + std::string(kClasses[static_cast<std::size_t>(format.font_class)]));
  add(format.extra != 0, format.extra == 0 ? "" : document.extras[format.extra - 1]);
  if (format.field != 0) add(true, "field " + number(format.field) + " " + document.fields[format.field - 1].url);
  return marks;
}

/// The same of a paragraph.
inline std::string MarksOf(const RtfDocument& document, const ParagraphFormat& format) {
  std::string marks;
  const auto add = [&](std::string_view mark, std::int32_t value) {
    if (value != 0) marks.append(marks.empty() ? "" : ",").append(mark).append(std::to_string(value));
  };
  add("q", static_cast<std::int32_t>(format.alignment));
  add("li", format.left);
  add("ri", format.right);
  add("fi", format.first_line);
  add("sb", format.space_before);
  add("sa", format.space_after);
  add("sl", format.line_spacing);
  add("slmult", format.line_multiple ? 1 : 0);
  add("pagebb", format.page_break_before ? 1 : 0);
  add("list", static_cast<std::int32_t>(format.list));
  add("level", format.list_level);
  add("start", format.list == ListKind::None ? 0 : format.list_start);
  add("ls", format.list_id);
  for (const TabStop& tab : format.tabs) {
    add("tab" + std::to_string(static_cast<int>(tab.kind)) + std::to_string(static_cast<int>(tab.leader)) + ":",
        tab.position);
  }
  add("said", format.said);
  for (const std::uint32_t number : {format.extra, format.list_group})
    if (number != 0) marks.append(marks.empty() ? "" : ",").append(document.extras[number - 1]);
  return marks;
}

/// Each paragraph as its cell ("2/"), its look in parentheses and its runs; runs that do not look plain in brackets
/// with their marks; objects in angle brackets; "|" after each. A line break is "$", a page break "^", a tab "~".
inline std::string Dump(const RtfDocument& document) {
  std::string dump;
  std::size_t run = 0;
  std::size_t at = 0;
  const auto object = [](const Object& it) {
    constexpr std::string_view kinds[] = {"picture", "placeholder", "invisible", "section"};
    std::string text = std::string(kinds[static_cast<std::size_t>(it.kind)]) + " ";
    if (it.kind == ObjectKind::Picture) {
      return text + std::to_string(it.picture.size()) + " " + std::to_string(it.width) + "x" +
             std::to_string(it.height);
    }
    return text + (it.kind == ObjectKind::Placeholder ? it.label : it.rtf);
  };
  for (std::size_t i = 0; i < document.paragraphs.size(); ++i) {
    const Paragraph& paragraph = document.paragraphs[i];
    if (paragraph.cell >= 0) dump += std::to_string(paragraph.cell) + "/";
    const std::string marks = MarksOf(document, document.paragraph_formats[paragraph.format]);
    if (!marks.empty()) dump += "(" + marks + ")";
    for (; run < document.EndOfRuns(i); ++run) {
      const Run& it = document.runs[run];
      const std::string run_marks = MarksOf(document, document.char_formats[it.format]);
      std::string text = document.text.substr(at, it.bytes);
      for (std::size_t found = 0; (found = text.find("\xE2\x80\xA8")) != std::string::npos;)
        text.replace(found, 3, "$");
      for (char& c : text) c = c == '\f' ? '^' : c == '\t' ? '~' : c;
      at += it.bytes;
      if (it.object != 0) text = "<" + object(document.objects[it.object - 1]) + ">";
      if (run_marks.empty())
        dump += text;
      else
        dump.append("[").append(run_marks).append(":").append(text).append("]");
    }
    dump += "|";
  }
  return dump;
}

/// All that a document holds: what two documents that say the same have in common.
inline std::string Describe(const RtfDocument& document) {
  std::ostringstream out;
  out << Dump(document) << document.ansi_code_page << ' ' << document.default_font << '\n';
  for (const Font& font : document.fonts)
    out << "font " << font.number << ' ' << font.name << ' ' << font.family << ' ' << font.charset << ' ' << font.words
        << font.behind << '\n';
  for (const std::uint32_t color : document.colors) out << "colour " << color << '\n';
  out << document.kept_header << '\n' << document.document_controls << '\n' << document.kept_section << '\n';
  for (const Paragraph& it : document.paragraphs)
    out << "mark " << MarksOf(document, document.char_formats[it.mark_format]) << '\n';
  for (const Object& it : document.objects)
    out << "object " << static_cast<int>(it.kind) << ' ' << it.rtf << ' ' << it.picture.size() << ' ' << it.label
        << '\n';
  for (const Field& it : document.fields)
    out << "field " << it.parent << ' ' << it.words << ' ' << it.instruction << '\n';
  for (const Cell& it : document.cells)
    out << "cell " << it.row << ' ' << it.right_edge << ' ' << it.row_span << '/' << it.column_span << '\n';
  for (const Row& it : document.rows) out << "row " << it.table << ' ' << it.definition << '\n';
  for (const Table& it : document.tables) out << "table " << it.parent_cell << '\n';
  return out.str();
}

/// "" when all is kept.
inline std::string Dump(const Losses& losses) {
  std::string dump;
  if (losses.unknown_characters > 0) dump += "unknown " + std::to_string(losses.unknown_characters) + " ";
  if (losses.limits > 0) dump += "limits " + std::to_string(losses.limits) + " ";
  if (losses.ended_early) dump += "early ";
  if (losses.not_rtf) dump += "not-rtf ";
  return dump;
}

}  // namespace tme::rtf
