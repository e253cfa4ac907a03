#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "documents/reg/RegDocument.h"

namespace tme {

/// Fills a document from a text: the one way in for readers. The observer sees one reset from construction to
/// destruction, and only these calls change the document meanwhile. The root is selected afterwards.
class RegDocument::Load {
 public:
  /// text: taken over by the document, and given back when nothing was appended. values: room is made for so many.
  Load(RegDocument& document, std::string&& text, std::size_t values);
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;
  ~Load();

  /// Where the texts below must lie, but for those made in Texts(). The reader may change what it has not appended.
  std::string& Text() { return text_; }
  TextStore& Texts() { return document_.texts_; }

  /// Returns the key with this path ("HKEY_USERS\\Alpha"). Keys that are missing are appended. The path must stay as it
  /// is until the next call, which costs only what differs from it.
  RegNode* KeyOf(std::string_view path);
  void AppendValue(RegNode* owner, RegType type, std::string_view name, std::string_view data) {
    document_.AppendRecord(owner, type, name, data);
  }

  // Whole holding.
  /// Must come before all else. pieces: room is made for so many. unsaid: the version where the text says none.
  void HoldWhole(std::size_t pieces, RegVersion unsaid);
  void SetVersion(RegVersion version) { document_.version_ = version; }
  SourceLines::Piece Append(std::string_view lines, RegPiece kind) {
    return document_.lines_.Append(lines, static_cast<std::uint8_t>(kind));
  }
  /// The key of the header line that was appended as a piece.
  RegNode* AppendHeader(std::string_view path, SourceLines::Piece piece);
  RegNode* AppendDeletion(std::string_view path, SourceLines::Piece piece);
  void AppendValue(RegNode* owner, RegType type, std::string_view name, std::string_view data,
                   SourceLines::Piece piece) {
    document_.AppendRecord(owner, type, name, data);
    document_.values_.back().piece = piece;
  }

 private:
  /// Where a level of the last path ends, and its node.
  struct Level {
    std::size_t end;
    RegNode* node;
  };

  RegDocument& document_;
  std::string& text_;
  const std::size_t first_nodes_;
  const std::size_t first_values_;
  /// The path that came last, and its levels from the hive on: most keys share their beginning with it.
  std::string_view path_;
  std::vector<Level> levels_;
};

}  // namespace tme
