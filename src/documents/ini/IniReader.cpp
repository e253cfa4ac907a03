#include "documents/ini/IniReader.h"

#include <unordered_set>
#include <utility>

#include "base/LineReader.h"
#include "documents/ini/IniLine.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniTreeLoad.h"

namespace tme {

namespace {

IniTag TagOf(IniLine kind) { return kind == IniLine::Comment ? IniTag::Comments : IniTag::Value; }

/// Ends the read before a line, which is the current one of `lines` or the next, and counts what is left.
void EndBefore(IniReadEnd end, std::uint64_t line_number, LineReader& lines, IniReadResult& result) {
  result.end = end;
  std::string_view rest;
  while (lines.Next(rest)) continue;
  if (lines.Number() < line_number) return;
  result.ended_at_line = line_number;
  result.lines_not_read = lines.Number() - line_number + 1;
}

/// Reads a text that begins with a header or a comment.
class SectionReader {
 public:
  SectionReader(IniTree& tree, std::string text, const IniQuestions& ask)
      : tree_(tree), ask_(ask), load_(tree, std::move(text)), lines_(load_.Text()) {
    const IniNode& root = *tree.Root();
    for (int row = 0; row < root.ChildCount(); ++row) names_.insert(root.Child(row)->Text());
  }

  IniReadResult Read() {
    std::string_view line;
    bool going_on = lines_.Next(line);
    if (KindOf(line) == IniLine::Comment) {
      load_.AppendEntry(line, IniTag::Comments);
      names_.insert(line);
    } else {
      going_on = TakeLine(line);
    }
    while (going_on && lines_.Next(line)) going_on = TakeLine(line);

    if (result_.end != IniReadEnd::DuplicateRefused) {
      FinishSection();
      // Intended: a header on the last line leaves the selection where it was.
      if (result_.end == IniReadEnd::EndOfInput && KindOf(line) != IniLine::Header) tree_.Select(tree_.Root());
      load_.Commit();
    }
    result_.entries_reordered = load_.EntriesReordered();
    result_.sections_reordered = load_.SectionsReordered();
    return result_;
  }

 private:
  /// Returns false where the read ends.
  bool TakeLine(std::string_view line) {
    const IniLine kind = KindOf(line);
    if (kind == IniLine::Blank) {
      ++blank_lines_;
      return true;
    }
    if (kind == IniLine::Header) {
      if (line.size() > 1 && !line.ends_with(']')) ++result_.cut_headers;
      return StartSection(HeaderName(line));
    }
    if (!in_section_) {
      EndBefore(IniReadEnd::LineNotTaken, lines_.Number(), lines_, result_);
      return false;
    }
    result_.blank_lines_dropped += std::exchange(blank_lines_, 0);
    load_.AppendEntry(line, TagOf(kind));
    return true;
  }

  bool StartSection(std::string_view name) {
    FinishSection();
    if (!names_.insert(name).second && !MayOverwrite(name)) return false;
    load_.AppendSection(name);
    in_section_ = true;
    return true;
  }

  /// Asks, with the tree complete up to here, and makes room. Returns false when the answer is no.
  bool MayOverwrite(std::string_view name) {
    load_.Commit();
    if (!ask_.duplicate_section(name)) {
      EndBefore(IniReadEnd::DuplicateRefused, lines_.Number(), lines_, result_);
      return false;
    }
    load_.Reopen();
    result_.nodes_overwritten += load_.RemoveTextEqualTo(name);
    return true;
  }

  /// Counts its blank lines, but for the one that a save writes back.
  void FinishSection() {
    if (std::exchange(in_section_, false) && blank_lines_ > 0) --blank_lines_;
    result_.blank_lines_dropped += std::exchange(blank_lines_, 0);
  }

  IniTree& tree_;
  const IniQuestions& ask_;
  IniTree::Load load_;
  LineReader lines_;
  IniReadResult result_;
  /// Texts of the root's children.
  std::unordered_set<std::string_view> names_;
  /// A header came before the current line.
  bool in_section_ = false;
  /// Those directly before the current line.
  std::uint64_t blank_lines_ = 0;
};

}  // namespace

IniReadResult ReadIni(IniTree& tree, std::string text, const IniQuestions& ask) {
  const IniTag selected = tree.Selected()->Tag();
  IniReadResult result;
  LineReader lines(text);
  std::string_view line;
  if (selected == IniTag::Value || selected == IniTag::Comments) {
    if (selected == IniTag::Value) tree.Select(tree.Selected()->Parent());
    EndBefore(IniReadEnd::NothingAdded, 1, lines, result);
  } else if (lines.Next(line)) {
    const IniLine kind = KindOf(line);
    if (kind == IniLine::Header || (selected == IniTag::OpenedFile && kind == IniLine::Comment)) {
      result = SectionReader(tree, std::move(text), ask).Read();
    } else if (selected == IniTag::Section) {
      tree.AddLine(tree.Selected(), line, IniTag::Value);
      EndBefore(IniReadEnd::OneEntryOnly, 2, lines, result);
    } else {
      EndBefore(IniReadEnd::LineNotTaken, 1, lines, result);
    }
  }
  if (result.end != IniReadEnd::DuplicateRefused) tree.SetExpanded(tree.Root(), true);
  return result;
}

void ReadEveryIniLine(IniTree& tree, const std::string& text) {
  const IniReadResult result = ReadIni(tree, text, {[](std::string_view) { return false; }});
  if (result.end == IniReadEnd::DuplicateRefused || result.lines_not_read > 0) {
    tree.Reset(std::string(tree.Root()->Text()));
    IniTree::Load load(tree, text);
    LineReader lines(load.Text());
    for (std::string_view line; lines.Next(line);) {
      const IniLine kind = KindOf(line);
      if (kind == IniLine::Header && line.size() > 1)
        load.AppendSection(HeaderName(line));
      else if (kind != IniLine::Blank)
        load.AppendEntry(line, TagOf(kind));
    }
    load.Commit();
    tree.SetExpanded(tree.Root(), true);
  }
  tree.Select(tree.Root());
}

void ReadWholeIni(IniTree& tree, std::string text) {
  IniTree::Load load(tree, std::move(text));
  ForEachSourceRun(load.Text(), [&load](const IniSourceRun& run) { load.AppendLines(run.lines, run.kind); });
  load.Commit();
  tree.SetExpanded(tree.Root(), true);
}

}  // namespace tme
