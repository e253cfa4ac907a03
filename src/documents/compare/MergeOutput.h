#pragma once

#include <string>
#include <string_view>

#include "documents/compare/Outline.h"

namespace tme {

/// Puts the merged text together.
class MergeOutput {
 public:
  /// ours: whose line ends new lines get. theirs: where ours has none.
  MergeOutput(const Outline& ours, const Outline& theirs);

  bool IsEmpty() const { return text_.empty(); }
  std::size_t Size() const { return text_.size(); }
  /// Our lines, as they are.
  void Put(std::string_view lines);
  /// Lines that get our line ends.
  void PutTheirs(std::string_view lines);
  void PutBlank() { PutTheirs("\n"); }
  /// Each of the lines as a comment that marks a conflict. side: "ours" or "theirs".
  void PutMark(std::string_view side, std::string_view lines);
  /// What a new line here ends in.
  std::string_view LineEnd() const;
  /// The text ends as ours does, with a line end or without.
  std::string Take(std::string_view ours) &&;

 private:
  void EndLine();

  const std::string_view usual_end_;
  const char comment_;
  std::string text_;
};

}  // namespace tme
