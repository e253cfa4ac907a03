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
      const bool is_last = i + 1 == document_.paragraphs.size();
      const std::size_t end = is_last ? document_.runs.size() : document_.paragraphs[i + 1].first_run;
      for (std::size_t run = paragraph.first_run; run < end; ++run) {
        if (document_.runs[run].object != 0)
          AddObject(document_.objects[document_.runs[run].object - 1]);
        else
          out_ << '"' << document_.text.substr(text_at, document_.runs[run].bytes) << '"';
        text_at += document_.runs[run].bytes;
        AddLook(document_.char_formats[document_.runs[run].format]);
      }
      out_ << "paragraph";
      AddLook(document_.paragraph_formats[paragraph.format]);
      AddCell(paragraph.cell);
      AddLook(document_.char_formats[paragraph.mark_format]);
    }
    return out_.str();
  }

 private:
  void AddObject(const Object& object) {
    out_ << "object " << static_cast<int>(object.kind) << ' ' << object.rtf << ' ' << object.picture.size() << ' '
         << object.width << 'x' << object.height << ' ' << object.label;
  }

  std::string Extra(std::uint32_t number) const { return number == 0 ? std::string() : document_.extras[number - 1]; }

  void AddLook(const CharFormat& look) {
    out_ << " f" << look.font << " fs" << look.half_points << " cf" << look.color << " cb" << look.background << " b"
         << look.bold << " i" << look.italic << " v" << look.hidden << " strike" << static_cast<int>(look.strike)
         << " ul" << static_cast<int>(look.underline) << " script" << static_cast<int>(look.script) << " caps"
         << static_cast<int>(look.capitals) << ' ' << Extra(look.extra);
    for (std::uint32_t field = look.field; field != 0; field = document_.fields[field - 1].parent)
      out_ << " field " << document_.fields[field - 1].instruction << ' ' << document_.fields[field - 1].url;
    out_ << '\n';
  }

  void AddLook(const ParagraphFormat& look) {
    out_ << " li" << look.left << " ri" << look.right << " fi" << look.first_line << " sb" << look.space_before << " sa"
         << look.space_after << " sl" << look.line_spacing << '*' << look.line_multiple << " q"
         << static_cast<int>(look.alignment) << " pagebb" << look.page_break_before << " list "
         << static_cast<int>(look.list) << '/' << look.list_id << '/' << static_cast<int>(look.list_level) << '/'
         << look.list_start << ' ' << Extra(look.extra);
    for (const TabStop& tab : look.tabs)
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
