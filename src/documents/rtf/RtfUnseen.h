#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfLabel.h"

/// What a document keeps without showing it, and what is said of it: comments, headers, tracked changes.
namespace tme::rtf {

/// A moment as the file format packs it into a number, local time.
struct PackedTime {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;  ///< month 0: none is said
};
PackedTime UnpackTime(std::int32_t packed);

enum class UnseenKind : std::uint8_t { Comment, Formula, FormField, Field, Header, Footer };
enum class PagesOf : std::uint8_t { All, First, Left, Right };

struct Unseen {
  UnseenKind kind{};
  PagesOf pages = PagesOf::All;  ///< of Header and Footer
  std::string text{};            ///< Field: its instruction
  std::string author{};          ///< of a Comment; initials where the file says no more
  PackedTime time{};             ///< of a Comment
  std::string watermark{};       ///< text behind that of the pages, in a Header or Footer
};

/// groups: one or several that stand side by side, as they came. Of other kinds (bookmarks, index entries) nothing.
std::vector<Unseen> UnseenIn(std::string_view groups, GroupTexts& texts);

enum class RevisionKind : std::uint8_t { Inserted, Deleted, MovedFrom, MovedTo, Format };
struct Revision {
  RevisionKind kind{};
  std::int32_t author = 0;  ///< index into AuthorsOf; past its end: nobody is named
  PackedTime time{};
};
/// What words that are kept with text say; one for each kind, in their order.
std::vector<Revision> RevisionsIn(std::string_view words);
/// Names in the document's table of who changed it.
std::vector<std::string> AuthorsOf(const RtfDocument& document, GroupTexts& texts);

}  // namespace tme::rtf
