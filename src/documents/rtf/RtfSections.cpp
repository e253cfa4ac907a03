#include "documents/rtf/RtfSections.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tme::rtf {
namespace {

/// Behind the first break among the runs of a paragraph that is not its last one; the paragraph's end where none is.
std::size_t BehindSection(const RtfDocument& document, std::size_t paragraph, std::size_t run) {
  const std::size_t end = document.EndOfRuns(paragraph);
  if (document.paragraphs[paragraph].cell >= 0) return end;
  for (; run < end; ++run) {
    const Object* const object = EntryOf(document.objects, document.runs[run].object);
    if (object != nullptr && object->kind == ObjectKind::SectionBreak) return run + 1;
  }
  return end;
}

}  // namespace

bool HasTextBehindSections(const RtfDocument& document) {
  const auto is_break = [](const Object& object) { return object.kind == ObjectKind::SectionBreak; };
  if (std::ranges::none_of(document.objects, is_break)) return false;
  for (std::size_t i = 0; i < document.paragraphs.size(); ++i)
    if (BehindSection(document, i, document.paragraphs[i].first_run) < document.EndOfRuns(i)) return true;
  return false;
}

RtfDocument WithSectionsApart(const RtfDocument& document) {
  RtfDocument apart = document;
  apart.paragraphs.clear();
  for (std::size_t i = 0; i < document.paragraphs.size(); ++i) {
    Paragraph part = document.paragraphs[i];
    apart.paragraphs.push_back(part);
    std::size_t run = BehindSection(document, i, part.first_run);
    for (; run < document.EndOfRuns(i); run = BehindSection(document, i, run)) {
      part.first_run = static_cast<std::uint32_t>(run);
      apart.paragraphs.push_back(part);
    }
  }
  return apart;
}

}  // namespace tme::rtf
