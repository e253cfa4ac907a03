#pragma once

#include <cstdint>
#include <string_view>

/// The control words that the list of a file's contents knows. Internal to it.
namespace tme::rtf {

enum class ContentsWord : std::uint8_t {
  None,
  Shown,  ///< a group that is part of what is shown
  Skip,   ///< a table whose text is none of the document's
  CodePage,
  Plain,
  Inserted,
  Deleted,
  Header,
  Footer,
  Footnote,
  Endnote,
  Comment,
  Formula,
  Bookmark,
  IndexEntry,
  Drawing,
  Picture,
  PictureCopy,  ///< \nonshppict
  PictureKind,
  Object,
  ObjectLinked,
  ObjectUpdated,
  ObjectData,
  ObjectClass,
  ObjectName,
  Instruction,
  Result,
  Template,
  Reference,
  LinkTarget,
  PropertyName,
  PropertyValue,
};

struct ContentsWordEntry {
  std::string_view name{};
  ContentsWord word = ContentsWord::None;
  std::string_view label{};  ///< PictureKind: for people
};

/// By its exact letters; ContentsWord::None for others.
const ContentsWordEntry& FindContentsWord(std::string_view name);

}  // namespace tme::rtf
