#include "documents/reg/RegWholeWriter.h"

#include <unordered_set>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

/// Calls key(node) for each key that only longer paths imply, before the block that begins at lead.
template <typename Key>
void ForEachImpliedKey(const RegDocument& document, Key key) {
  /// Keys that need no line any more.
  std::unordered_set<const RegNode*> written;
  std::vector<const RegNode*> above;
  document.ForEachBlock([&](const RegBlock& block) {
    if (block.node->Tag() == RegTag::Deletion) return;
    const RegNode* at = block.node->Parent();
    for (; at->Tag() == RegTag::Branch && !written.contains(at); at = at->Parent()) above.push_back(at);
    for (; !above.empty(); above.pop_back()) {
      written.insert(above.back());
      if (document.PieceOf(above.back()) == SourceLines::kEnds) key(*above.back(), block.lead);
    }
    written.insert(block.node);
  });
}

bool WriteExpanded(const RegDocument& document, const PartSink& sink) {
  const SourceLines& lines = document.Lines();
  PartBuffer out(sink);
  bool going_on = true;
  SourceLines::Piece at = lines.First();
  const auto put_until = [&](SourceLines::Piece end) {
    for (; at != end; at = lines.Next(at)) going_on = going_on && out.Append(lines.Text(at)).EndPiece();
  };
  ForEachImpliedKey(document, [&](const RegNode& key, SourceLines::Piece lead) {
    put_until(lead);
    if (!going_on) return;
    const std::string_view end = lines.LineEndBehind(lead);
    going_on = out.Append("[").Append(key.KeyPath()).Append("]").Append(end).Append(end).EndPiece();
  });
  put_until(SourceLines::kEnds);
  return going_on && out.Flush();
}

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
  return WriteExpanded(document, sink);
}

std::uint64_t WholeRegBytes(const RegDocument& document, RegLayout layout) {
  std::uint64_t bytes = document.Lines().Size();
  if (layout == RegLayout::Regular || document.Version() == RegVersion::Regedit) return bytes;
  const RegNode* last = nullptr;
  std::size_t last_size = 0;
  ForEachImpliedKey(document, [&](const RegNode& key, SourceLines::Piece lead) {
    // The next one is mostly below the last: its path is counted from there.
    last_size = key.Parent() == last ? last_size + 1 + key.Text().size() : key.KeyPath().size();
    last = &key;
    bytes += last_size + 2 + 2 * document.Lines().LineEndBehind(lead).size();
  });
  return bytes;
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

std::string ClipboardText(const RegDocument& document, std::span<RegNode* const> nodes) {
  const SourceLines& lines = document.Lines();
  const std::string end(lines.LineEndBehind(lines.First()));
  std::string text = FirstLines(document, end);
  std::unordered_set<const RegNode*> keys;
  for (const RegNode* node : nodes) {
    if (node->Tag() == RegTag::Comment)
      AppendPiece(text, lines.Text(document.PieceOf(node)), end);
    else
      keys.insert(node);
    if (IsKey(node->Tag()) && document.PieceOf(node) == SourceLines::kEnds && node->Parent() != nullptr)
      text.append("[").append(node->KeyPath()).append("]").append(end).append(end);
  }
  document.ForEachBlock([&](const RegBlock& block) {
    const RegNode* at = block.node;
    while (at != nullptr && !keys.contains(at)) at = at->Parent();
    if (at == nullptr) return;
    for (SourceLines::Piece piece = block.lead; piece != block.end; piece = lines.Next(piece))
      AppendPiece(text, lines.Text(piece), end);
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
