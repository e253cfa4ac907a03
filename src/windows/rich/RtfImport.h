#pragma once

#include <cstddef>
#include <functional>

#include "windows/rich/RtfStore.h"

class QTextDocument;

namespace tme {

/// What a view shows in a simpler form than a table or a paragraph, so that it can be laid out; an export brings it
/// back.
struct RtfSimplified {
  std::size_t tables = 0;
  std::size_t paragraphs = 0;
};

/// Told often how many bytes of the text are shown; false gives up.
using RtfImportStep = std::function<bool(std::size_t done, std::size_t total)>;

template <typename Work>
RtfImportStep StepOf(Work& work) {
  return [&work](std::size_t done, std::size_t total) { return work.GoOn(done, total); };
}

/// Fills an empty document with a read one, whose kept parts become the store's. No undo is recorded. False when it was
/// given up; document and store are of no use then.
bool ImportRtf(rtf::RtfDocument&& source, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
               const RtfImportStep& step = {});

/// The same for a part that joins another document: fonts and colours find their like in the store or are added,
/// objects are added, and so are styles and lists that it names. Given up, it leaves the store
/// with parts that nothing names.
bool ImportRtfPart(rtf::RtfDocument&& source, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
                   const RtfImportStep& step = {});

}  // namespace tme
