#include <utility>
#include <vector>

#include "documents/compare/OutlineReading.h"
#include "documents/ini/IniSourceLine.h"

namespace tme {
namespace {

std::string_view WithoutLineEnd(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// Makes items of runs. An entry waits for the lines that its value goes on in.
class IniOutlineReader {
 public:
  explicit IniOutlineReader(Outline::Reading& reading) : reading_(reading) {}

  void Take(const IniSourceRun& run) {
    const bool is_between = run.kind == IniLine::Comment || run.kind == IniLine::Blank;
    if (!entry_.empty() && is_between) return between_.push_back(run);
    if (!entry_.empty() && ContinuesEntry(run.lines, entry_)) {
      last_ = WithoutLineEnd(run.lines);
      lines_ = {lines_.data(), static_cast<std::size_t>(run.lines.data() + run.lines.size() - lines_.data())};
      return between_.clear();
    }
    Finish();
    if (is_between) return AddBetween(run);
    if (run.kind == IniLine::Header) {
      reading_.Add(run.lines, Outline::Sort::Header);
      return reading_.BeginGroup(SourceHeaderName(WithoutLineEnd(run.lines)), Outline::GroupSort::Named);
    }
    lines_ = run.lines;
    entry_ = WithoutLineEnd(run.lines);
    last_ = {};
  }

  /// Adds what waits.
  void Finish() {
    if (!entry_.empty()) AddEntry();
    entry_ = {};
    for (const IniSourceRun& run : between_) AddBetween(run);
    between_.clear();
  }

 private:
  void AddEntry() {
    const Outline::Index item = reading_.Add(lines_, Outline::Sort::Entry);
    IniEntryParts parts = EntryPartsOf(entry_);
    reading_.SetName(item, parts.key);
    if (parts.quote != 0) parts.value = {parts.value.data() - 1, parts.value.size() + 2};
    if (!last_.empty()) {
      const std::string_view text = TrimIniBlanks(last_);
      parts.value = {parts.value.data(), static_cast<std::size_t>(text.data() + text.size() - parts.value.data())};
    }
    if (parts.has_equals || !last_.empty()) reading_.SetValue(item, parts.value);
  }

  void AddBetween(const IniSourceRun& run) {
    const Outline::Sort sort = run.kind == IniLine::Blank ? Outline::Sort::Blank : Outline::Sort::Comment;
    const Outline::Index item = reading_.Add(run.lines, sort);
    if (run.kind == IniLine::Comment) reading_.SetName(item, TrimIniBlanks(WithoutLineEnd(run.lines)));
  }

  Outline::Reading& reading_;
  /// The line of the entry that waits, without its end; all of its lines; the last of them, unless that is the first.
  std::string_view entry_;
  std::string_view lines_;
  std::string_view last_;
  /// What stands below it so far.
  std::vector<IniSourceRun> between_;
};

}  // namespace

Outline ReadIniOutline(std::string text, const OutlineOptions& options) {
  Outline::Reading reading(Outline::Kind::Ini, std::move(text), options);
  IniOutlineReader reader(reading);
  ForEachSourceRun(reading.Text(), [&reader](const IniSourceRun& run) { reader.Take(run); });
  reader.Finish();
  return std::move(reading).Finish();
}

}  // namespace tme
