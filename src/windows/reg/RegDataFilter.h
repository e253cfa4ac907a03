#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tme {

class TextMatcher;

/// Tells data of registry values that a text cannot be found in from how they are written, which is far quicker than to
/// decode them. It goes by one character of the text that no number and no bytes are shown with.
class RegDataFilter {
 public:
  /// matcher: null for one that finds nothing.
  explicit RegDataFilter(const TextMatcher* matcher = nullptr);

  /// assignment: as in a whole document, of numbers, bytes or text in hex. False: whatever they are shown as, nothing
  /// is found in it. True says nothing.
  bool MayHold(std::string_view assignment) const;

 private:
  /// In both letter cases; empty where the text has no such character.
  std::string characters_;
  /// As the bytes of a text have it in a file.
  std::vector<std::string> in_hex_;
};

}  // namespace tme
