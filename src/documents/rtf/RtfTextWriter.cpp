
#include "documents/rtf/RtfTableWalk.h"
#include "documents/rtf/RtfWriter.h"

namespace tme::rtf {
namespace {

/// Text without formats.
class PlainWriter : private RtfTableWalk::Listener {
 public:
  PlainWriter(const RtfDocument& document, const PartSink& sink)
      : document_(document), out_(sink), walk_(document, *this) {}
  bool Write();

 private:
  static constexpr std::string_view kLineEnd = "\r\n";
  static constexpr std::string_view kLineBreak = "\u2028";

  void Text(std::string_view text);
  void BeginRow(std::uint32_t, std::size_t) override {}
  void EndCell(std::size_t) override { pending_tab_ = true; }
  void EmptyCell(std::size_t) override { Tab(), pending_tab_ = true; }
  void EndRow(std::uint32_t, std::size_t) override { pending_tab_ = false, out_.Append(kLineEnd); }
  void Tab();

  const RtfDocument& document_;
  PartBuffer out_;
  RtfTableWalk walk_;
  bool pending_tab_ = false;  ///< a cell has ended, and maybe its row
};

void PlainWriter::Tab() {
  if (pending_tab_) out_.Append("\t");
  pending_tab_ = false;
}

void PlainWriter::Text(std::string_view text) {
  for (std::size_t end = text.find(kLineBreak); end != std::string_view::npos; end = text.find(kLineBreak)) {
    out_.Append(text.substr(0, end)).Append(kLineEnd);
    text.remove_prefix(end + kLineBreak.size());
  }
  out_.Append(text);
}

bool PlainWriter::Write() {
  std::size_t text_at = 0;
  for (std::size_t i = 0; i < document_.paragraphs.size(); ++i) {
    const bool is_last = i + 1 == document_.paragraphs.size();
    walk_.Enter(document_.paragraphs[i]);
    Tab();
    for (std::size_t run = document_.paragraphs[i].first_run; run < document_.EndOfRuns(i); ++run) {
      const rtf::Object* const object = EntryOf(document_.objects, document_.runs[run].object);
      if (object == nullptr) {
        Text(std::string_view(document_.text).substr(text_at, document_.runs[run].bytes));
        text_at += document_.runs[run].bytes;
      } else if (object->kind == ObjectKind::Placeholder && !object->label.empty()) {
        out_.Append("[").Append(object->label).Append("]");
      }
    }
    if (const rtf::Object* section = document_.SectionBreakOf(i)) {
      if (document_.EndOfRuns(i) > document_.paragraphs[i].first_run + 1) out_.Append(kLineEnd);
      if (section->label == kPageBreakLabel) out_.Append("\f");
      continue;
    }
    const bool ended_cell = walk_.Leave(is_last ? nullptr : &document_.paragraphs[i + 1]);
    if (!ended_cell && !is_last) out_.Append(kLineEnd);
    if (!out_.EndPiece()) return false;
  }
  return out_.Flush();
}

}  // namespace

bool WriteRtfAsText(const RtfDocument& document, const PartSink& sink) { return PlainWriter(document, sink).Write(); }

}  // namespace tme::rtf
