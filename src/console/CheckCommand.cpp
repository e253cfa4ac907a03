#include <algorithm>
#include <array>
#include <string>

#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/Findings.h"
#include "console/Json.h"
#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"

namespace tme::console {
namespace {

constexpr std::size_t kMostFiles = 1'000'000;

void CheckRtf(const ConsoleFile& file, Findings& findings) {
  const rtf::Losses losses = rtf::ReadRtf(file.Bytes(), BytesToUtf8).losses;
  if (losses.not_rtf) findings.push_back({1, "no rich text, whatever its name", "readers refuse it or show its bytes"});
  if (losses.ended_early && !losses.not_rtf)
    findings.push_back({1, "groups that do not end where the file does", "readers drop what comes behind"});
}

Findings FindingsIn(const ConsoleFile& file) {
  Findings findings;
  if (file.Kind() == DocumentKind::Rtf)
    CheckRtf(file, findings);
  else
    CheckLines(file, findings);
  if (file.Kind() == DocumentKind::Ini) CheckIni(file, findings);
  if (file.Kind() == DocumentKind::Reg) CheckReg(file, findings);
  std::stable_sort(findings.begin(), findings.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
  return findings;
}

Result Check(const Arguments& arguments, Streams& streams) {
  JsonWriter json(streams);
  const bool as_json = arguments.Has(kJsonOption);
  Result result = Result::Done;
  if (as_json) json.BeginArray(JsonWriter::Layout::Lines);
  for (const std::string_view name : arguments.Operands()) {
    try {
      const ConsoleFile file(name, arguments.ValueOf(kKindOption), streams);
      for (const Finding& finding : FindingsIn(file)) {
        result = std::max(result, Result::Other);
        if (!as_json) {
          streams.PutLine(file.At(finding.line) + finding.what + " (" + finding.why + ")");
          continue;
        }
        json.BeginObject().Member("file", file.Name()).Name("line").Number(finding.line);
        json.Member("what", finding.what).Member("why", finding.why).EndObject();
      }
    } catch (const Trouble& trouble) {  // the other files are still to be looked at
      streams.Complain(trouble.what());
      result = Result::Trouble;
    }
  }
  if (as_json) json.EndArray();
  if (as_json) json.EndText();
  return result;
}

constexpr std::array kCheckOptions{kKindOption, kJsonOption};

}  // namespace

constinit const Command kCheckCommand{
    "check",
    "FILE…",
    1,
    kMostFiles,
    kCheckOptions,
    "name the lines that readers take in different ways",
    "A line FILE:LINE: what (why it matters) for each, and exit status 1; nothing is written for a clean file. Looked "
    "for\n"
    "are sections, keys and values that stand there twice, entries before the first section, a missing \"]\" and text\n"
    "behind it, lines that stand deeper than the entry above, lines that are none of these, byte order marks, "
    "encodings and line ends that are mixed, unknown "
    "hives,\n"
    "and data of registry values that are no proper form of their type.\n",
    &Check};

}  // namespace tme::console
