#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfOutput.h"

namespace tme::rtf {

/// Format of text after \plain. Its `said`: which properties a style may say other than that; none in a document
/// without.
CharFormat PlainFormat(const RtfDocument& document);

/// Whether control words lead from one format to another without \plain, and leave nothing of the first behind. Fields
/// are none of its business. `plain`: PlainFormat.
bool LeadsTo(const RtfDocument& document, const CharFormat& plain, const CharFormat& from, const CharFormat& to);

/// Whether a format takes a group of its own: no word takes it back, or readers hold back what follows it.
bool NeedsGroup(const RtfDocument& document, const CharFormat& format);

/// Writes what leads from one format to another; fields are none of its business. `plain`: PlainFormat.
void WriteCharFormat(const RtfDocument& document, const CharFormat& plain, const CharFormat& from, const CharFormat& to,
                     RtfOutput& out);

/// Control words of a paragraph's format, those after \pard; a group among them says how a list without an entry in the
/// file's tables counts.
std::string ParagraphControls(const RtfDocument& document, const ParagraphFormat& format);

/// From \trowd to the last \cellx, made from the cells' edges.
std::string RowControls(const RtfDocument& document, std::span<const std::uint32_t> cells);

/// A row's definition as it came, with an edge for each of the cells that it left out: word processors drop those.
std::string CompletedDefinition(const RtfDocument& document, std::span<const std::uint32_t> cells);

/// An entry of the font table.
void WriteFont(const Font& font, RtfOutput& out);
/// One of the colour table; the first is automatic.
void WriteColor(const RtfDocument& document, std::size_t index, RtfOutput& out);
/// Font and colour table.
void WriteTables(const RtfDocument& document, RtfOutput& out);

/// For each font, and one more for numbers past the end.
std::vector<Alphabet> AlphabetsOf(const std::vector<Font>& fonts);

}  // namespace tme::rtf
