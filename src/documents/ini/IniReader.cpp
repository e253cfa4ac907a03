#include "documents/ini/IniReader.h"

#include <utility>

#include "base/Utf8.h"
#include "documents/ini/IniTree.h"

namespace tme {

namespace {

bool IsHeader(std::string_view line) { return line.starts_with('['); }
bool IsComment(std::string_view line) { return line.starts_with(';'); }

/// The line without its first and last character, whatever the last one is; they may be the same.
std::string_view HeaderName(std::string_view line) {
  line.remove_prefix(1);
  line.remove_suffix(utf8::LastCharacterBytes(line));
  return line;
}

}  // namespace

IniReadResult IniReader::Read(IniTree& tree, std::string text, const IniQuestions& ask) {
  const std::uint64_t revision = tree.Revision();
  IniReader reader(tree, tree.texts_.Keep(std::move(text)), ask);
  reader.Run();
  if (tree.Revision() == revision) tree.texts_.GiveBackLast();
  return reader.result_;
}

IniReader::IniReader(IniTree& tree, std::string_view text, const IniQuestions& ask)
    : tree_(tree), ask_(ask), lines_(text), first_created_(tree.next_created_) {}

void IniReader::Run() {
  const IniTag selected = tree_.Selected()->Tag();
  std::string_view line;
  if (selected == IniTag::Value || selected == IniTag::Comments) {
    if (selected == IniTag::Value) tree_.Select(tree_.Selected()->Parent());
    EndBefore(IniReadEnd::NothingAdded, 1);
  } else if (lines_.Next(line)) {
    if (IsHeader(line) || (selected == IniTag::OpenedFile && IsComment(line))) {
      ReadSections(line);
    } else if (selected == IniTag::Section) {
      tree_.AddEntry(tree_.Selected(), line, IniTag::Value);
      EndBefore(IniReadEnd::OneEntryOnly, 2);
    } else {
      EndBefore(IniReadEnd::LineNotTaken, 1);
    }
  }
  if (result_.end != IniReadEnd::DuplicateRefused) tree_.SetExpanded(tree_.Root(), true);
}

void IniReader::ReadSections(std::string_view line) {
  IniNode* root = tree_.Root();
  tree_.observer_->BeforeReset();
  if (IsComment(line)) tree_.Append(root, line, IniTag::Comments);
  for (int row = 0; row < root->ChildCount(); ++row) names_.insert(root->Child(row)->Text());
  bool going_on = IsComment(line) || TakeLine(line);
  while (going_on && lines_.Next(line)) going_on = TakeLine(line);

  if (result_.end != IniReadEnd::DuplicateRefused) {
    FinishSection();
    FinishRoot();
    // Intended: a header on the last line leaves the selection where it was.
    if (result_.end == IniReadEnd::EndOfInput && !IsHeader(line)) tree_.Select(root);
    tree_.EndReset();
  }
  result_.sections_reordered = SectionsReordered();
}

bool IniReader::TakeLine(std::string_view line) {
  if (line.empty()) {
    ++blank_lines_;
    return true;
  }
  if (IsHeader(line)) {
    if (line.size() > 1 && !line.ends_with(']')) ++result_.cut_headers;
    return StartSection(HeaderName(line));
  }
  if (section_ == nullptr) {
    EndBefore(IniReadEnd::LineNotTaken, lines_.Number());
    return false;
  }
  result_.blank_lines_dropped += std::exchange(blank_lines_, 0);
  IniNode* entry = tree_.NewNode(section_, line, IsComment(line) ? IniTag::Comments : IniTag::Value);
  entry->row_ = static_cast<std::uint32_t>(entries_.size());
  entries_.push_back(entry);
  return true;
}

bool IniReader::StartSection(std::string_view name) {
  FinishSection();
  if (!names_.insert(name).second && !MayOverwrite(name)) return false;
  section_ = tree_.Append(tree_.Root(), name, IniTag::Section);
  return true;
}

/// Asks, with the tree complete up to here, and makes room.
bool IniReader::MayOverwrite(std::string_view name) {
  FinishRoot();
  tree_.EndReset();
  if (!ask_.duplicate_section(name)) {
    EndBefore(IniReadEnd::DuplicateRefused, lines_.Number());
    return false;
  }
  tree_.observer_->BeforeReset();
  const std::size_t nodes_before = tree_.NodeCount();
  if (tree_.MarkTextEqualTo(name) > 0) tree_.RemoveMarked();
  result_.nodes_overwritten += nodes_before - tree_.NodeCount();
  return true;
}

void IniReader::FinishSection() {
  if (section_ != nullptr) {
    // A save writes one back.
    if (blank_lines_ > 0) --blank_lines_;
    if (!entries_.empty()) {
      tree_.ChildrenOf(section_).assign(entries_.begin(), entries_.end());
      if (IniTree::SortChildren(section_, sorter_)) result_.entries_reordered = true;
      entries_.clear();
    }
    section_ = nullptr;
  }
  result_.blank_lines_dropped += std::exchange(blank_lines_, 0);
}

void IniReader::FinishRoot() {
  IniTree::SortChildren(tree_.Root(), sorter_);
  if (tree_.next_created_ != first_created_) ++tree_.revision_;
}

void IniReader::EndBefore(IniReadEnd end, std::uint64_t line_number) {
  result_.end = end;
  std::string_view rest;
  while (lines_.Next(rest)) continue;
  if (lines_.Number() < line_number) return;
  result_.ended_at_line = line_number;
  result_.lines_not_read = lines_.Number() - line_number + 1;
}

bool IniReader::SectionsReordered() const {
  const IniNode* root = tree_.Root();
  std::uint32_t last_created = 0;
  for (int row = 0; row < root->ChildCount(); ++row) {
    const IniNode* child = root->Child(row);
    if (child->Tag() != IniTag::Section || child->created_ < first_created_) continue;
    if (child->created_ < last_created) return true;
    last_created = child->created_;
  }
  return false;
}

}  // namespace tme
