// Input: a byte whose bits answer the questions, then the text of a file.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "Fuzz.h"
#include "base/Utf8.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegLosses.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWriter.h"

namespace tme::fuzz {
namespace {

constexpr unsigned kRefuseHeader = 1;
constexpr unsigned kRefuseLargeFile = 2;

RegReadResult Read(RegDocument& document, std::string text, unsigned answers) {
  return ReadReg(document, std::move(text),
                 {.wrong_header = [answers] { return (answers & kRefuseHeader) == 0; },
                  .large_file = [answers] { return (answers & kRefuseLargeFile) == 0; },
                  .progress =
                      [](const RegProgress& progress) {
                        const bool importing = progress.phase == RegProgress::Phase::Importing;
                        Promise(!importing || progress.lines <= progress.total + 1, "progress stays below all");
                      }});
}

template <typename Visit>
void ForEachKey(const RegDocument& document, Visit visit) {
  const auto enter = [&visit](const RegNode& node) {
    visit(node);
    return true;
  };
  WalkKeys(*document.Root(), enter, [](const RegNode&) {});
}

void CheckDocument(const RegDocument& document) {
  std::size_t nodes = 0;
  std::size_t values = 0;
  ForEachKey(document, [&](const RegNode& node) {
    ++nodes;
    for (int row = 0; row < node.ChildCount(); ++row) {
      const RegNode* child = node.Child(row);
      Promise(child->Parent() == &node && child->Row() == row, "a child knows its place");
      Promise(document.FindChild(&node, child->Text()) == child, "a child is found by its name");
    }
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      Promise(document.Values()[record].owner == &node, "after a read, a value is shown at its own key");
      ++values;
    }
  });
  Promise(nodes == document.NodeCount(), "keys are counted");
  Promise(values == document.Values().size(), "every value is shown once");
}

/// Values are written under each key of their name; larger results would leave few runs in a second.
constexpr std::uint64_t kMostWritten = std::uint64_t{1} << 22;

/// Null where the result is larger.
std::optional<std::string> Write(const RegDocument& document, RegLayout layout) {
  const std::uint64_t bytes = RegOutputBytes(document, layout);
  if (bytes > kMostWritten) return std::nullopt;
  std::string written;
  const auto append = [&written](std::string_view part) {
    Promise(part.ends_with("\r\n"), "parts are whole lines");
    written += part;
    return true;
  };
  Promise(WriteReg(document, layout, append), "a writer that nobody stops gets to its end");
  Promise(written.size() == bytes, "the size is known beforehand");
  return written;
}

/// Files that are no exports may give values whose lines mean something else when they are read again: the reader looks
/// for a type in the whole line, takes quotes off a name that has some left, and one backslash off the end of a path.
/// All of that is intended, and the writer escapes nothing.
bool ReadsBack(const RegDocument& document) {
  bool reads_back = true;
  ForEachKey(document, [&](const RegNode& node) { reads_back = reads_back && !node.Text().empty(); });
  return reads_back && std::ranges::all_of(document.Values(), [](const RegValueRecord& record) {
           const bool other_type = record.type == RegType::Hex && record.data.find("=dword:") != std::string_view::npos;
           return !record.name.starts_with('"') && !other_type;
         });
}

void CheckWriteReadWrite(const RegDocument& document, const std::string& written, RegLayout layout) {
  RegDocument again;
  const RegReadResult result = Read(again, written, 0);
  CheckDocument(again);
  Promise(result.end == RegReadEnd::EndOfInput, "a written file is read to its end");
  Promise(result.failed_lines + result.other_lines + result.unfinished_last_line == 0, "and every line of it taken");
  Promise(Write(again, layout) == written, "write, read, write gives the same bytes");
  const bool lost = again.NodeCount() != document.NodeCount() || again.Values().size() != document.Values().size();
  Promise(lost == (LossesOf(document, layout).fingerprint != 0), "what a save leaves out is told");
}

void Run(std::string_view input) {
  const unsigned answers = TakeByte(input);
  RegDocument document;
  const RegReadResult result = Read(document, std::string(input), answers);
  CheckDocument(document);
  Promise(result.error_log.empty() == (result.failed_lines == 0 || result.end == RegReadEnd::UnknownHive),
          "failed lines are logged");

  const std::optional<std::string> written = Write(document, RegLayout::Regular);
  const std::optional<std::string> expanded = Write(document, RegLayout::Expanded);
  if (written && utf8::IsValid(input)) Promise(utf8::IsValid(*written), "no character is cut in two");
  if (document.KeysSharingAName() > 0 || !ReadsBack(document)) return;
  if (written) CheckWriteReadWrite(document, *written, RegLayout::Regular);
  if (expanded) CheckWriteReadWrite(document, *expanded, RegLayout::Expanded);
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
