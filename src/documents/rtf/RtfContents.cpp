#include "documents/rtf/RtfContents.h"

#include <algorithm>

#include "documents/rtf/RtfContentsWalk.h"

namespace tme::rtf {

bool Contents::IsActive() const {
  const auto has = [this](PartKind kind) { return totals[static_cast<std::size_t>(kind)] > 0; };
  return has(PartKind::Object) || has(PartKind::Template) || has(PartKind::ActiveField) || has(PartKind::Reference);
}

Contents ListContents(std::string_view bytes, const DecodeCodePage& decode, const ContentsStep& step) {
  Contents contents;
  ContentsWalk(bytes, decode, contents).Run(step);
  std::ranges::stable_sort(contents.parts, {}, &Part::kind);
  return contents;
}

}  // namespace tme::rtf
