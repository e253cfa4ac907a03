// Input: a byte for how many edits, four bytes for each (which one, at which paragraph, where in it, with what), the
// bytes of a file.
//
// What a save promises of any file and any edits: read again it says what the edited document says, and all bytes stay
// as they are but
// - of the edited paragraphs; where something came in between two, of these two; a control word may get a blank behind
//   it where text comes next;
// - of rows, or tables, around these where those are written anew, as RtfHunk::Level::Blocks says;
// - fonts and colours that came in: they stand at the ends of the file's own tables, or as tables behind the control
//   words at the beginning.
// A letter that is spliced in is one insertion, but for one behind the break of a section, which begins a paragraph. A
// file that was not edited is the same bytes. Only where the ladder ends (no bytes) is all written anew; that is not
// looked at here.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "RtfPromises.h"
#include "documents/rtf/RtfOriginal.h"
#include "documents/rtf/RtfSections.h"
#include "files/CodePage.h"

namespace tme::fuzz {
namespace {

using namespace rtf;

constexpr unsigned kMostEdits = 6;
constexpr unsigned kBytesOfEdit = 4;

enum class What : std::uint8_t { Letter, Text, Remove, Bold, Font, Split, Join, Align, Add, Move, Count };

What TakeEdit(EditedRtf& edited, std::string_view& input) {
  const auto what = static_cast<What>(TakeByte(input) % static_cast<std::uint8_t>(What::Count));
  const std::size_t paragraph = TakeByte(input) % edited.Document().paragraphs.size();
  if (!edited.IsSeen(paragraph)) return What::Count;
  const std::size_t places = edited.PlacesIn(paragraph);
  const std::size_t place = TakeByte(input) % places;
  const std::uint8_t with = TakeByte(input);
  const std::size_t last = place + with % (places - place);
  constexpr std::string_view kTexts[] = {"a", "1", " ", "\xC3\xA9", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80", "\\{}", "\t-"};
  switch (what) {
    case What::Letter:
      edited.Type(paragraph, place, with % 2 == 0 ? "x" : "\xE4\xB8\xAD");
      break;
    case What::Text:
      edited.Type(paragraph, place, kTexts[with % std::size(kTexts)]);
      break;
    case What::Remove:
      edited.Remove(paragraph, place, last);
      break;
    case What::Bold:
      edited.Format(paragraph, place, last, [](CharFormat& format) { format.bold = !format.bold; });
      break;
    case What::Font:
      edited.Format(paragraph, place, last, [font = edited.AddFont(), color = edited.AddColor()](CharFormat& format) {
        format.font = font;
        format.color = color;
      });
      break;
    case What::Split:
      edited.Split(paragraph, place);
      break;
    case What::Join:
      edited.Join(paragraph);
      break;
    case What::Align:
      edited.FormatParagraph(paragraph, static_cast<Alignment>(with % 4));
      break;
    case What::Add:
      edited.AddParagraph(paragraph);
      break;
    default:
      edited.Move(paragraph);
      break;
  }
  return what;
}

/// Each piece of the source stands in order, and plain ones are the text.
void LookAt(const RtfSource& source, const RtfDocument& document, std::string_view bytes) {
  Promise(source.marks.size() == document.paragraphs.size(), "each paragraph has its mark");
  for (std::size_t i = 0; i < source.pieces.size(); ++i) {
    const RtfSource::Piece& piece = source.pieces[i];
    const std::size_t end = i + 1 < source.pieces.size() ? source.pieces[i + 1].text : document.text.size();
    Promise(piece.begin <= piece.end && piece.end <= bytes.size(), "a piece stands in the file");
    if (piece.kind != RtfSource::Kind::Plain) continue;
    const std::string_view text = std::string_view(document.text).substr(piece.text, end - piece.text);
    Promise(bytes.substr(piece.begin, piece.end - piece.begin) == text, "a plain piece is its text");
  }
}

void Run(std::string_view input) {
  const unsigned edits = TakeByte(input) % (kMostEdits + 1);
  std::string_view script = input.substr(0, std::size_t{kBytesOfEdit} * edits);
  const std::string bytes(input.substr(script.size()));
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  if (source.marks.empty()) return;
  LookAt(source, read, bytes);
  RtfOriginal original(bytes, read, source);
  original.SetUnedited(read);
  Promise(original.WithEdits(read, BytesToUtf8) == bytes, "a document that was not edited is its file");
  EditedRtf edited(read);
  What last = What::Count;
  for (unsigned i = 0; i < edits; ++i) last = TakeEdit(edited, script);
  std::vector<RtfHunk> hunks;
  const std::optional<std::string> saved = original.WithEdits(edited.Document(), BytesToUtf8, &hunks);
  if (!saved) return;
  const bool is_spliced =
      std::ranges::all_of(hunks, [](const RtfHunk& hunk) { return hunk.level == RtfHunk::Level::Splice; });
  const bool is_letter = edits == 1 && last == What::Letter && !HasTextBehindSections(edited.Document());
  Promise(!is_letter || !is_spliced || IsOneLetterMore(bytes, *saved), "a letter is one insertion");
  const std::string broken = BrokenPromise(bytes, source, edited, *saved, hunks, ReadRtf(*saved, BytesToUtf8));
  Promise(broken.empty(), broken.c_str());
}

}  // namespace
}  // namespace tme::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
