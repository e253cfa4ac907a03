#include <string>

#include "documents/rtf/RtfTableWalk.h"
#include "documents/rtf/RtfWriter.h"

namespace tme::rtf {
namespace {

/// Text without formats.
class PlainWriter : private RtfTableWalk::Listener {
 public:
  PlainWriter(const RtfDocument& document, const RtfPart& put)
      : document_(document), put_(put), walk_(document, *this) {}
  bool Write();

 private:
  static constexpr std::size_t kPartBytes = std::size_t{1} << 16;
  static constexpr std::string_view kLineEnd = "\r\n";
  static constexpr std::string_view kLineBreak = "\u2028";

  void Text(std::string_view text);
  void BeginRow(std::uint32_t, std::size_t) override {}
  void EndCell(std::size_t) override { pending_tab_ = true; }
  void EmptyCell(std::size_t) override { Tab(), pending_tab_ = true; }
  void EndRow(std::uint32_t, std::size_t) override { pending_tab_ = false, part_.append(kLineEnd); }
  void Tab();

  const RtfDocument& document_;
  const RtfPart& put_;
  RtfTableWalk walk_;
  std::string part_;
  bool pending_tab_ = false;  ///< a cell has ended, and maybe its row
};

void PlainWriter::Tab() {
  if (pending_tab_) part_.push_back('\t');
  pending_tab_ = false;
}

void PlainWriter::Text(std::string_view text) {
  for (std::size_t end = text.find(kLineBreak); end != std::string_view::npos; end = text.find(kLineBreak)) {
    part_.append(text.substr(0, end)).append(kLineEnd);
    text.remove_prefix(end + kLineBreak.size());
  }
  part_.append(text);
}

bool PlainWriter::Write() {
  part_.reserve(2 * kPartBytes);
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
        part_.append("[").append(object->label).append("]");
      }
    }
    const bool ended_cell = walk_.Leave(is_last ? nullptr : &document_.paragraphs[i + 1]);
    if (!ended_cell && !is_last) part_.append(kLineEnd);
    if (part_.size() < kPartBytes) continue;
    if (!put_(part_)) return false;
    part_.clear();
  }
  return part_.empty() || put_(part_);
}

}  // namespace

bool WriteRtfAsText(const RtfDocument& document, const RtfPart& put) { return PlainWriter(document, put).Write(); }

}  // namespace tme::rtf
