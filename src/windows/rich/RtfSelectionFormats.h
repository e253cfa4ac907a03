#pragma once

#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <cstdint>
#include <vector>

namespace tme {

/// The formats of the characters of a selection, each once. They are looked for as far as somebody asks, and once while
/// selection and text stay: a selection may have millions of runs, and a command asks for many attributes.
class RtfSelectionFormats {
 public:
  /// revision: of the text; another one than before when it was edited.
  void Follow(const QTextCursor& selection, std::uint64_t revision);
  /// Null behind the last one; good until the next call.
  const QTextCharFormat* At(std::size_t index);

 private:
  void LookAtBlock();

  int start_ = 0;
  int end_ = 0;
  std::uint64_t revision_ = 0;
  QTextBlock next_;  ///< to be looked at; invalid at the end
  QTextBlock last_;
  std::vector<bool> seen_;  ///< by the toolkit's number of the format
  std::vector<QTextCharFormat> formats_;
};

}  // namespace tme
