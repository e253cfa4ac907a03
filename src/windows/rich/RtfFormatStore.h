#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfInternTable.h"
#include "windows/rich/RtfStore.h"

namespace tme {

/// Adds formats, and the fonts, colours and fields that they name, to the document of a store; what is there already is
/// found again.
class RtfFormatStore {
 public:
  /// Completes the document, which from then on has at least one font, colour and format of each kind, and no format
  /// of a font that it has not but rtf::kMissingFont. `store` outlives this.
  explicit RtfFormatStore(RtfStore& store);

  const rtf::RtfDocument& Document() const { return document_; }

  // Indices into the document's tables.
  std::uint32_t Add(const rtf::CharFormat& format) { return char_formats_.Intern(document_.char_formats, format); }
  std::uint32_t Add(const rtf::ParagraphFormat& format) {
    return paragraph_formats_.Intern(document_.paragraph_formats, format);
  }
  /// By name, without regard to case, and charset.
  std::uint32_t Add(const rtf::Font& font);
  /// Of text whose font is in no table.
  std::uint32_t DefaultFont() const;
  std::uint32_t AddColor(std::uint32_t rgb);

  /// Kept control words of characters but for one, by its name; as CharFormat::extra names them.
  std::uint32_t WithoutWord(std::uint32_t extra, std::string_view name);

  /// A new link, as CharFormat::field names it.
  std::uint32_t AddLink(std::string url);

 private:
  rtf::RtfDocument& document_;
  rtf::InternTable char_formats_;
  rtf::InternTable paragraph_formats_;
};

/// Adds what the text of a document names to the store: fonts and colours find their like there or are added, objects
/// and fields are added, and what names styles, lists and authors of changes, as RtfTableJoin has it. The text, whose
/// numbers name parts of the store.
rtf::RtfDocument MergeRtf(rtf::RtfDocument&& source, RtfStore& store);

}  // namespace tme
