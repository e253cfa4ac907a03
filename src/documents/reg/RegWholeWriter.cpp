#include "documents/reg/RegWholeWriter.h"

#include <unordered_set>
#include <vector>

#include "documents/reg/RegDocument.h"

namespace tme {

namespace {

bool IsAtOrBelow(const RegNode* node, const RegNode* top) {
  while (node != nullptr && node != top) node = node->Parent();
  return node != nullptr;
}

class ExpandedWrite {
 public:
  ExpandedWrite(const RegDocument& document, const PartSink& sink) : document_(document), out_(sink) {}

  bool Run() {
    const SourceLines& lines = document_.Lines();
    SourceLines::Piece at = lines.First();
    const auto put_until = [&](SourceLines::Piece end) {
      for (; at != end; at = lines.Next(at)) going_on_ = going_on_ && out_.Append(lines.Text(at)).EndPiece();
    };
    document_.ForEachBlock([&](const RegBlock& block) {
      put_until(block.lead);
      if (block.node->Tag() != RegTag::Deletion) {
        PutKeysAbove(*block.node, block.lead);
        written_.insert(block.node);
      }
    });
    put_until(SourceLines::kEnds);
    return going_on_ && out_.Flush();
  }

 private:
  void PutKeysAbove(const RegNode& node, SourceLines::Piece place) {
    std::vector<const RegNode*> above;
    for (const RegNode* key = node.Parent(); key->Tag() == RegTag::Branch && !written_.contains(key);
         key = key->Parent())
      above.push_back(key);
    const std::string_view end = document_.Lines().LineEndBehind(place);
    for (; !above.empty(); above.pop_back()) {
      const RegNode* key = above.back();
      written_.insert(key);
      if (document_.PieceOf(key) != SourceLines::kEnds) continue;
      going_on_ = going_on_ && out_.Append("[").Append(key->KeyPath()).Append("]").Append(end).Append(end).EndPiece();
    }
  }

  const RegDocument& document_;
  PartBuffer out_;
  /// Keys that need no line any more.
  std::unordered_set<const RegNode*> written_;
  bool going_on_ = true;
};

/// The first line and an empty one.
std::string FirstLines(const RegDocument& document, std::string_view end) {
  return std::string(HeaderOf(document.Version())).append(end).append(end);
}

/// What stands last in a file may lack its line end.
void AppendPiece(std::string& text, std::string_view piece, std::string_view end) {
  text.append(piece);
  if (LineEndOf(piece).empty()) text.append(end);
}

}  // namespace

bool WriteWholeReg(const RegDocument& document, RegLayout layout, const PartSink& sink) {
  if (layout == RegLayout::Regular || document.Version() == RegVersion::Regedit) return document.Lines().Write(sink);
  return ExpandedWrite(document, sink).Run();
}

std::string ClipboardText(const RegDocument& document, const RegNode& node) {
  const SourceLines& lines = document.Lines();
  const std::string end(lines.LineEndBehind(lines.First()));
  std::string text = FirstLines(document, end);
  if (node.Tag() == RegTag::Comment) {
    AppendPiece(text, lines.Text(document.PieceOf(&node)), end);
    return text;
  }
  const bool is_implied = IsKey(node.Tag()) && document.PieceOf(&node) == SourceLines::kEnds;
  if (is_implied && node.Parent() != nullptr && document.Version() != RegVersion::Regedit)
    text.append("[").append(node.KeyPath()).append("]").append(end).append(end);
  document.ForEachBlock([&](const RegBlock& block) {
    if (!IsAtOrBelow(block.node, &node)) return;
    for (SourceLines::Piece at = block.lead; at != block.end; at = lines.Next(at))
      AppendPiece(text, lines.Text(at), end);
  });
  return text;
}

std::string ClipboardText(const RegDocument& document, std::span<const std::size_t> records) {
  const SourceLines& lines = document.Lines();
  const std::string end(lines.LineEndBehind(lines.First()));
  std::string text = FirstLines(document, end);
  for (const std::size_t record : records) AppendPiece(text, lines.Text(document.Values()[record].piece), end);
  return text;
}

}  // namespace tme
