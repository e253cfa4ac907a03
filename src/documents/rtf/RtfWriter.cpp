#include "documents/rtf/RtfWriter.h"

#include <string>

#include "documents/rtf/RtfBodyWriter.h"
#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfHeaderTables.h"
#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfUses.h"

namespace tme::rtf {

namespace {

void WriteHeader(const RtfDocument& document, RtfOutput& out) {
  out.Open("\\rtf1");
  out.Words(document.ansi_code_page == 10000 ? "\\mac" : "\\ansi");
  out.Word("\\ansicpg", document.ansi_code_page);
  out.Words("\\uc1");
  if (document.is_default_font_said) out.Word("\\deff", document.default_font);
  out.LineEnd();
  WriteTables(document, out);
  RtfUses uses(document);
  if (!document.joined.empty()) uses.Note(0, document.paragraphs.size());
  const std::string header = HeaderWith(document.kept_header, document.kept_header.size(), uses.Joined());
  for (const std::string* part : {&header, &document.document_controls, &document.kept_section}) {
    if (part->empty()) continue;
    out.Kept(*part);
    out.LineEnd();
  }
  // Kept control words may have said otherwise.
  out.Words("\\uc1");
}

}  // namespace

bool WriteRtf(const RtfDocument& document, const PartSink& sink) {
  RtfOutput out(sink);
  WriteHeader(document, out);
  RtfBodyWriter(document, out).WriteAll();
  out.Close();
  if (document.kept_behind.empty())
    out.LineEnd();
  else
    out.Kept(document.kept_behind);
  return out.Finish();
}

}  // namespace tme::rtf
