#pragma once

#include <cstdint>
#include <map>
#include <tuple>

#include "documents/rtf/RtfDocument.h"

class QTextCursor;
class QTextList;

namespace tme {

/// The lists of a view that paragraphs join while they are inserted in their order.
class RtfViewLists {
 public:
  /// The list that a paragraph goes on with; null when it is in none or begins one. Ends the lists that it leaves.
  QTextList* Find(const rtf::ParagraphFormat& format);
  /// Begins a list with the paragraph of the cursor, if it is in one.
  void Begin(const rtf::ParagraphFormat& format, QTextCursor& cursor);

 private:
  struct Key {
    std::int32_t id;
    std::uint8_t level;
    rtf::ListKind kind;
    auto operator<=>(const Key&) const = default;
  };
  std::map<Key, QTextList*> lists_;
};

}  // namespace tme
