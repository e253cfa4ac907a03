#include "console/RtfLines.h"

#include <string>

#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfTableWalk.h"
#include "files/CodePage.h"

namespace tme::console {
namespace {

using namespace rtf;

constexpr std::string_view kLineBreak = "\xE2\x80\xA8";  // U+2028
constexpr char kPageBreak = '\f';

class LineOutput : public RtfTableWalk::Listener {
 public:
  explicit LineOutput(Streams& streams) : streams_(streams) {}

  void BeginRow(std::uint32_t /*row*/, std::size_t depth) override {
    if (depth > 0 && !line_.empty()) line_ += ' ';
  }
  void EndCell(std::size_t depth) override { line_ += depth == 0 ? '\t' : ' '; }
  void EmptyCell(std::size_t depth) override { EndCell(depth); }
  void EndRow(std::uint32_t /*row*/, std::size_t depth) override {
    if (!line_.empty()) line_.pop_back();  // behind the last cell
    if (depth == 0) EndLine();
  }
  void EndLine() {
    streams_.PutLine(line_);
    line_.clear();
  }
  /// in_cell: line breaks and tabs become blanks, as in a table's row they would be read as others.
  void Append(std::string_view text, bool in_cell) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      const bool is_break = text.substr(at).starts_with(kLineBreak);
      if (is_break || text[at] == kPageBreak) {
        if (in_cell)
          line_ += ' ';
        else
          EndLine();
        at += is_break ? kLineBreak.size() - 1 : 0;
      } else {
        line_ += in_cell && text[at] == '\t' ? ' ' : text[at];
      }
    }
  }

 private:
  Streams& streams_;
  std::string line_;
};

}  // namespace

void PutRtfLines(std::string_view bytes, Streams& streams) {
  const RtfDocument document = ReadRtf(bytes, BytesToUtf8);
  LineOutput output(streams);
  RtfTableWalk walk(document, output);
  std::size_t at = 0;
  for (std::size_t index = 0; index < document.paragraphs.size(); ++index) {
    const Paragraph& paragraph = document.paragraphs[index];
    walk.Enter(paragraph);
    const bool in_cell = walk.Depth() > 0;
    for (std::size_t run = paragraph.first_run; run < document.EndOfRuns(index); ++run) {
      const Object* object = EntryOf(document.objects, document.runs[run].object);
      const bool is_shown = object != nullptr && object->kind != ObjectKind::Invisible;
      if (is_shown && object->kind != ObjectKind::SectionBreak)
        output.Append("[" + (object->label.empty() ? std::string("Picture") : object->label) + "]", in_cell);
      output.Append(std::string_view(document.text).substr(at, document.runs[run].bytes), in_cell);
      at += document.runs[run].bytes;
    }
    if (const Object* section = document.SectionBreakOf(index)) {
      if (document.EndOfRuns(index) > paragraph.first_run + 1) output.EndLine();
      if (section->label == kPageBreakLabel) output.EndLine();
      continue;
    }
    const bool is_last = index + 1 == document.paragraphs.size();
    const bool has_ended = walk.Leave(is_last ? nullptr : &document.paragraphs[index + 1]);
    if (in_cell && !has_ended) output.Append(" ", in_cell);
    if (!in_cell) output.EndLine();
  }
}

}  // namespace tme::console
