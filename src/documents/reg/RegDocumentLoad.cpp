#include "documents/reg/RegDocumentLoad.h"

#include <algorithm>
#include <utility>

namespace tme {

RegDocument::Load::Load(RegDocument& document, std::string&& text, std::size_t values)
    : document_(document),
      text_(document.texts_.Keep(std::move(text))),
      first_nodes_(document.NodeCount()),
      first_values_(document.Values().size()) {
  document_.values_.reserve(first_values_ + values);
  document_.observer_->BeforeReset();
}

RegDocument::Load::~Load() {
  document_.Select(document_.Root());
  if (document_.NodeCount() != first_nodes_ || document_.Values().size() != first_values_ ||
      document_.lines_.First() != SourceLines::kEnds) {
    document_.NoteRevision();
  } else {
    document_.texts_.GiveBackLast();
  }
  document_.observer_->AfterReset();
}

void RegDocument::Load::HoldWhole(std::size_t pieces, RegVersion unsaid) {
  document_.unsaid_version_ = unsaid;
  document_.holding_ = Holding::Whole;
  document_.lines_.Reserve(pieces);
}

RegNode* RegDocument::Load::AppendHeader(std::string_view path, SourceLines::Piece piece) {
  RegNode* key = KeyOf(path);
  document_.LinkHeader(key, piece, document_.headers_[0].previous);
  return key;
}

RegNode* RegDocument::Load::AppendDeletion(std::string_view path, SourceLines::Piece piece) {
  path = path.substr(0, path.find_last_not_of('\\') + 1);
  const std::size_t divider = path.rfind('\\');
  const bool has_parent = divider != std::string_view::npos;
  RegNode* parent = has_parent ? KeyOf(path.substr(0, divider)) : document_.Root();
  RegNode* key = document_.Append(parent, has_parent ? path.substr(divider + 1) : path, RegTag::Deletion);
  document_.LinkHeader(key, piece, document_.headers_[0].previous);
  return key;
}

RegNode* RegDocument::Load::KeyOf(std::string_view path) {
  const auto common = static_cast<std::size_t>(std::ranges::mismatch(path, path_).in1 - path.begin());
  const auto leads_to = [path, common](const Level& level) {
    return level.end <= common && (level.end == path.size() || path[level.end] == '\\');
  };
  while (!levels_.empty() && !leads_to(levels_.back())) levels_.pop_back();
  path_ = path;
  RegNode* key = levels_.empty() ? document_.Root() : levels_.back().node;
  std::size_t start = levels_.empty() ? 0 : levels_.back().end + 1;
  while (start <= path.size()) {
    const std::size_t end = std::min(path.find('\\', start), path.size());
    const std::string_view text = path.substr(start, end - start);
    if (text.empty() && document_.holding_ == Holding::Whole) {
      start = end + 1;
      continue;
    }
    RegNode* child = document_.FindChild(key, text);
    if (child == nullptr) child = document_.Append(key, text, levels_.empty() ? RegTag::Hive : RegTag::Branch);
    key = child;
    levels_.push_back({end, key});
    start = end + 1;
  }
  return key;
}

}  // namespace tme
