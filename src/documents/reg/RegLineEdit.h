#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {

/// Lines that come in the place of others, and what follows from them for the tree and the values.
class RegDocument::LineEdit {
 public:
  using Piece = SourceLines::Piece;

  /// first, last: kEnds where the document has no lines.
  LineEdit(RegDocument& document, Piece first, Piece last, std::string_view text);
  void Run();

  // For the parser, which numbers pieces from 0.
  Piece Append(std::string_view lines, RegPiece kind);
  RegNode* AppendHeader(std::string_view path, Piece piece);
  RegNode* AppendDeletion(std::string_view path, Piece piece) { return AppendHeader(path, piece); }
  void AppendValue(const RegNode* key, RegType type, std::string_view name, std::string_view assignment, Piece piece);
  TextStore& Texts() { return names_; }

 private:
  /// A piece as it is parsed.
  struct Item {
    std::string_view lines;
    RegPiece kind;
    /// Of the document.
    Piece piece = SourceLines::kEnds;
    std::string_view path = {};
    /// A value's.
    RegType type = RegType::None;
    std::string_view name = {};
    RegSpan assignment = {};
  };
  /// A piece that goes, or whose value may get another key.
  struct Old {
    Piece piece;
    /// Of a header; 0 for none.
    std::uint32_t header = 0;
    RegNode* owner = nullptr;
    std::size_t record = SIZE_MAX;
  };

  // The lines that are parsed: those that come, and those around them that may mean something else then.
  void FindStart(Piece first);
  void TakeOn();
  void TakeWholeLines();
  void Parse();
  /// Whether all that was parsed stands by itself.
  bool ParseOnce();
  void FindChanged();
  bool ChangesHeaders() const;

  // What changes.
  void FindOld();
  void FindRecords();
  void PutLines();
  void PutHeaders();
  /// Those of lines that came, in the records of those that went as far as there are any.
  void ReplaceValues();
  /// Those of lines that came, and of those that stay and have another key now.
  void MoveValues();
  void PutValue(const Item& item, RegNode* owner);
  // behind: the header that the new one comes behind.
  RegNode* KeyOf(const Item& item, std::uint32_t behind);
  /// Of its own or below it. Without any, it has the letters of those that come.
  static bool HasLines(const RegNode& key);
  RegNode* NewChild(RegNode* parent, std::string_view text, RegTag tag, std::uint32_t behind);
  std::size_t RowFor(const RegNode* parent, std::uint32_t behind) const;
  void UnlinkFromNode(std::uint32_t header);
  /// The ring of a node goes by the order of the file. Linear.
  void OrderHeaders();
  void Prune(std::vector<RegNode*> nodes);
  void Select(RegNode* selected);

  static bool IsHeader(RegPiece kind) {
    return kind == RegPiece::Key || kind == RegPiece::KeyDeletion || kind == RegPiece::Pair;
  }
  std::size_t OldEnd() const { return old_.size() - same_last_; }
  std::size_t NewEnd() const { return items_.size() - same_last_; }

  RegDocument& document_;
  /// What stands before the lines and behind them.
  Piece before_;
  Piece behind_;
  std::string text_;
  /// The text and some of what follows.
  std::string parsed_;
  /// The last header before what is parsed, later before what changes; 0 for none.
  std::uint32_t header_ = 0;
  bool may_say_version_ = false;
  RegVersion version_;
  std::size_t ahead_ = 1;
  TextStore names_;
  std::vector<Item> items_;
  std::vector<Old> old_;
  /// How many are the same at the start and at the end, and how many of these follow on the last header that changed.
  std::size_t same_first_ = 0;
  std::size_t same_last_ = 0;
  std::size_t following_ = 0;
  bool changes_headers_ = false;
  std::vector<RegNode*> gone_;
  std::vector<RegNode*> come_;
  /// Had header lines before more came.
  std::unordered_set<const RegNode*> unordered_;
};

}  // namespace tme
