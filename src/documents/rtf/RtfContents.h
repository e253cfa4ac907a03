#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {

/// What a file may hold besides its text, the most dangerous first.
enum class PartKind : std::uint8_t {
  Object,       ///< embedded or linked; other programs start its program
  Template,     ///< a document that other programs fetch
  ActiveField,  ///< a field that other programs fetch something for, or that runs something
  Reference,    ///< to a file or a source of data that is not in the document
  Link,         ///< that opens when a reader asks for it
  Picture,
  Unshown,  ///< a group of another kind that is kept and not shown, all of one name together
};
inline constexpr std::size_t kPartKinds = 7;

struct Part {
  PartKind kind{};
  /// Object: its class. ActiveField: its word, empty where another field makes it. Picture: what it is, for people.
  /// Unshown, Reference: the control word.
  std::string name{};
  std::string declared_class{};        ///< Object: what the file says it is, where its data say something else
  std::vector<std::string> targets{};  ///< where it leads, names in it; at most kMaxTargetBytes each
  std::string shown{};                 ///< Link: its text in the document; at most kMaxTargetBytes
  std::uint64_t bytes = 0;             ///< Object, Picture: of its data; Unshown: in the file
  std::uint32_t count = 1;             ///< Unshown
  bool is_linked = false;              ///< Object: its data stand elsewhere
  bool is_updated = false;             ///< Object: other programs run it when the file opens
  bool is_copy = false;                ///< Picture: for programs that do not know the other form
};

struct Contents {
  std::vector<Part> parts;  ///< by kind, then in the file's order; at most kMaxParts of a kind
  std::array<std::uint64_t, kPartKinds> totals{};
  std::uint64_t headers = 0, footers = 0, footnotes = 0, endnotes = 0, comments = 0, formulas = 0, bookmarks = 0;
  std::uint64_t index_entries = 0, drawings = 0;
  std::uint64_t fields = 0;                     ///< of all kinds
  std::uint64_t insertions = 0, deletions = 0;  ///< tracked changes: passages
  std::uint64_t bytes_behind_end = 0;           ///< that follow the document's last brace, blanks aside
  bool is_complete = true;                      ///< false when the caller gave up

  /// Whether other programs would fetch or run something.
  bool IsActive() const;
};

inline constexpr std::size_t kMaxParts = 1000;
inline constexpr std::size_t kMaxTargetBytes = 4000;
/// So much of an object's data is looked into.
inline constexpr std::size_t kMaxObjectBytesRead = std::size_t{1} << 20;

/// Returns false to give up. done, total: bytes.
using ContentsStep = std::function<bool(std::size_t done, std::size_t total)>;

/// Lists what any bytes hold, wherever in the file it stands, without doing anything with it. One pass.
Contents ListContents(std::string_view bytes, const DecodeCodePage& decode, const ContentsStep& step = {});

}  // namespace tme::rtf
