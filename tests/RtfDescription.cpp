#include "RtfDescription.h"

#include <sstream>

namespace tme::rtf {
namespace {

class Description {
 public:
  explicit Description(const RtfDocument& document) : document_(document) {}

  std::string Text() {
    out_ << document_.ansi_code_page << ' ' << document_.default_font << '\n';
    for (const Font& font : document_.fonts)
      out_ << "font " << font.number << ' ' << font.name << ' ' << font.family << ' ' << font.charset << '\n';
    for (const std::uint32_t color : document_.colors) out_ << "colour " << color << '\n';
    out_ << document_.kept_header << '\n' << document_.document_controls << '\n' << document_.kept_section << '\n';
    std::size_t text_at = 0;
    for (std::size_t i = 0; i < document_.paragraphs.size(); ++i) {
      const Paragraph& paragraph = document_.paragraphs[i];
      for (std::size_t run = paragraph.first_run; run < document_.EndOfRuns(i); ++run) {
        if (document_.runs[run].object != 0)
          AddObject(document_.objects[document_.runs[run].object - 1]);
        else
          out_ << '"' << document_.text.substr(text_at, document_.runs[run].bytes) << '"';
        text_at += document_.runs[run].bytes;
        AddFormat(document_.char_formats[document_.runs[run].format]);
      }
      out_ << "paragraph";
      AddFormat(document_.paragraph_formats[paragraph.format]);
      AddCell(paragraph.cell);
      AddFormat(document_.char_formats[paragraph.mark_format]);
    }
    return out_.str();
  }

 private:
  void AddObject(const Object& object) {
    out_ << "object " << static_cast<int>(object.kind) << ' ' << object.rtf << ' ' << object.picture.size() << ' '
         << object.width << 'x' << object.height << ' ' << object.label;
  }

  std::string Extra(std::uint32_t number) const { return number == 0 ? std::string() : document_.extras[number - 1]; }

  void AddFormat(const CharFormat& format) {
    out_ << " f" << format.font << " fs" << format.half_points << " cf" << format.color << " cb" << format.background
         << " b" << format.bold << " i" << format.italic << " v" << format.hidden << " strike"
         << static_cast<int>(format.strike) << " ul" << static_cast<int>(format.underline) << " script"
         << static_cast<int>(format.script) << " caps" << static_cast<int>(format.capitals) << ' '
         << Extra(format.extra);
    for (std::uint32_t field = format.field; field != 0; field = document_.fields[field - 1].parent)
      out_ << " field " << document_.fields[field - 1].instruction << ' ' << document_.fields[field - 1].url;
    out_ << '\n';
  }

  void AddFormat(const ParagraphFormat& format) {
    out_ << " li" << format.left << " ri" << format.right << " fi" << format.first_line << " sb" << format.space_before
         << " sa" << format.space_after << " sl" << format.line_spacing << '*' << format.line_multiple << " q"
         << static_cast<int>(format.alignment) << " pagebb" << format.page_break_before << " list "
         << static_cast<int>(format.list) << '/' << format.list_id << '/' << static_cast<int>(format.list_level) << '/'
         << format.list_start << ' ' << Extra(format.extra);
    for (const TabStop& tab : format.tabs)
      out_ << " tab" << tab.position << '/' << static_cast<int>(tab.kind) << '/' << static_cast<int>(tab.leader);
  }

  void AddCell(std::int32_t number) {
    while (number >= 0) {
      const Cell& cell = document_.cells[static_cast<std::size_t>(number)];
      const Row& row = document_.rows[cell.row];
      out_ << " cell " << number << '/' << cell.row << '/' << row.table << " to " << cell.right_edge << " spans "
           << cell.row_span << '/' << cell.column_span << ' ' << row.definition;
      number = document_.tables[row.table].parent_cell;
    }
  }

  const RtfDocument& document_;
  std::ostringstream out_;
};

}  // namespace

std::string Describe(const RtfDocument& document) { return Description(document).Text(); }

}  // namespace tme::rtf
