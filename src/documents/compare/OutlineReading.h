#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "documents/compare/Outline.h"

namespace tme {

/// Fills an outline: the one way in for readers. Items come in the order of the text, without a gap.
class Outline::Reading {
 public:
  /// text: taken over by the outline.
  Reading(Kind kind, std::string text, const OutlineOptions& options);

  const std::string& Text() const { return *outline_.text_; }
  RegCoding& Coding() { return outline_.coding_; }
  /// Some whole lines of the text. Returns the item's number.
  Index Add(std::string_view lines, Sort sort);
  /// name, value: views of the text.
  void SetName(Index item, std::string_view name);
  void SetEscapedName(Index item, std::string_view name);
  void SetValue(Index item, std::string_view value);
  /// The item that was added last is the header of this group.
  void BeginGroup(std::string_view path, GroupSort sort);

  Outline Finish() &&;

 private:
  std::uint32_t PlaceOf(std::string_view view) const {
    return static_cast<std::uint32_t>(view.data() - outline_.text_->data());
  }
  /// Takes empty components out of a path.
  std::string_view PathOf(std::string_view path);
  void EnterGroups();
  void EnterItems();
  void FindDeletedKeys();

  Outline outline_;
};

}  // namespace tme
