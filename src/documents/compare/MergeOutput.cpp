#include "documents/compare/MergeOutput.h"

#include <utility>

#include "base/LineReader.h"
#include "documents/SourceLines.h"
#include "documents/compare/Merge.h"

namespace tme {
namespace {

std::string_view FirstEndOf(std::string_view text) {
  const std::size_t at = text.find_first_of("\r\n");
  if (at == std::string_view::npos) return "";
  return text.substr(at, text.substr(at).starts_with("\r\n") ? 2 : 1);
}

std::string_view UsualEndOf(const Outline& ours, const Outline& theirs) {
  for (const Outline* outline : {&ours, &theirs})
    if (const std::string_view end = FirstEndOf(outline->Text()); !end.empty()) return end;
  return "\r\n";
}

/// What the first comment of an INI file begins with, since many of its readers know one of the two alone.
char CommentOf(const Outline& ours) {
  if (ours.FileKind() == Outline::Kind::Reg) return ';';
  for (const Outline::Item& item : ours.Items())
    if (item.sort == Outline::Sort::Comment) return ours.RawNameOf(item).front();
  return ';';
}

}  // namespace

MergeOutput::MergeOutput(const Outline& ours, const Outline& theirs)
    : usual_end_(UsualEndOf(ours, theirs)), comment_(CommentOf(ours)) {
  text_.reserve(ours.Text().size() + theirs.Text().size() / 8);
}

std::string_view MergeOutput::LineEnd() const {
  const std::string_view end = LineEndOf(text_);
  return end.empty() ? usual_end_ : end;
}

void MergeOutput::EndLine() {
  if (!text_.empty() && LineEndOf(text_).empty()) text_.append(usual_end_);
}

void MergeOutput::Put(std::string_view lines) {
  if (lines.empty()) return;
  EndLine();
  text_.append(lines);
}

void MergeOutput::PutTheirs(std::string_view lines) {
  if (lines.empty()) return;
  EndLine();
  text_.append(LinesEndedBy(lines, std::string(LineEnd())));
}

void MergeOutput::PutMark(std::string_view side, std::string_view lines) {
  LineReader reader(lines);
  EndLine();
  const std::string end(LineEnd());
  for (std::string_view line; reader.Next(line);)
    text_.append(1, comment_).append(kMergeMark).append(side).append(": ").append(line).append(end);
}

std::string MergeOutput::Take(std::string_view ours) && {
  if (ours.empty()) return std::move(text_);
  const std::string_view end = LineEndOf(text_);
  if (LineEndOf(ours).empty())
    text_.resize(text_.size() - end.size());
  else if (end.empty() && !text_.empty())
    text_.append(usual_end_);
  return std::move(text_);
}

}  // namespace tme
