#include "documents/reg/RegWholeReader.h"

#include <string_view>
#include <utility>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegDocumentLoad.h"
#include "documents/reg/RegWholeParser.h"

namespace tme {
namespace {

constexpr std::uint64_t kLinesPerWholeProgress = 8192;
/// Fewer bytes than lines of exports have, so that most documents find room for all of their pieces and values.
constexpr std::size_t kBytesPerPiece = 24;

void Import(RegDocument& document, std::string text, const RegWholeOptions& options, RegWholeResult& result) {
  const std::size_t pieces = text.size() / kBytesPerPiece;
  RegDocument::Load load(document, std::move(text), pieces);
  load.HoldWhole(pieces, options.unsaid);
  const std::string_view taken = load.Text();
  const bool are_first_of_root = options.first_values == RegWholeOptions::FirstValues::OfRoot;
  RegWholeParser parser(load, taken,
                        {.version = options.unsaid, .current = are_first_of_root ? document.Root() : nullptr}, result);
  parser.Run(taken.data() + taken.size(), [&](const LineReader& lines) {
    if (lines.Number() % kLinesPerWholeProgress != 0 || !options.progress) return true;
    const auto done = static_cast<std::uint64_t>(lines.Position() - taken.data());
    result.cancelled = !options.progress(done, taken.size());
    return !result.cancelled;
  });
  load.SetVersion(parser.Version());
}

}  // namespace

RegWholeResult ReadWholeReg(RegDocument& document, std::string text, const RegWholeOptions& options) {
  RegWholeResult result;
  Import(document, std::move(text), options, result);
  if (result.cancelled) document.Reset(document.Root()->Text());
  return result;
}

}  // namespace tme
