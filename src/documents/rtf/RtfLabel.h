#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfFontTable.h"
#include "documents/rtf/RtfTextDecoder.h"

namespace tme::rtf {

/// Which text of a group its label is made of.
enum class LabelText : std::uint8_t {
  All,
  OfDrawing,  ///< of text boxes and results of objects alone
};

/// The text of a group that is kept as it came, for people: lines end with a line feed, cells with a tab. `around`: the
/// encoding of the group around. Internal to the reader.
std::string LabelOf(std::string_view group, LabelText which, FontTable& fonts, TextEncoding around);

/// All of the text of groups that a document keeps, in the encodings of its fonts.
class GroupTexts {
 public:
  GroupTexts(const RtfDocument& document, const DecodeCodePage& decode);
  GroupTexts(const GroupTexts&) = delete;
  GroupTexts& operator=(const GroupTexts&) = delete;

  std::string TextOf(std::string_view group);

 private:
  const DecodeCodePage decode_;
  RtfDocument scratch_;
  FontTable fonts_;
};

}  // namespace tme::rtf
