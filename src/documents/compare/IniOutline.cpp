#include <utility>

#include "documents/compare/OutlineReading.h"
#include "documents/ini/IniSourceLine.h"

namespace tme {
namespace {

std::string_view WithoutLineEnd(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

Outline ReadIniOutline(std::string text, const OutlineOptions& options) {
  Outline::Reading reading(Outline::Kind::Ini, std::move(text), options);
  const auto take_entry = [&reading](std::string_view lines, std::string_view line) {
    const Outline::Index item = reading.Add(lines, Outline::Sort::Entry);
    IniEntryParts parts = EntryPartsOf(line);
    reading.SetName(item, parts.key);
    if (parts.quote != 0) parts.value = {parts.value.data() - 1, parts.value.size() + 2};
    if (parts.has_equals) reading.SetValue(item, parts.value);
  };
  ForEachSourceRun(reading.Text(), [&](const IniSourceRun& run) {
    const std::string_view line = WithoutLineEnd(run.lines);
    switch (run.kind) {
      case IniLine::Blank:
        reading.Add(run.lines, Outline::Sort::Blank);
        break;
      case IniLine::Comment:
        reading.SetName(reading.Add(run.lines, Outline::Sort::Comment), TrimIniBlanks(line));
        break;
      case IniLine::Header:
        reading.Add(run.lines, Outline::Sort::Header);
        reading.BeginGroup(SourceHeaderName(line), Outline::GroupSort::Named);
        break;
      case IniLine::Entry:
        take_entry(run.lines, line);
        break;
    }
  });
  return std::move(reading).Finish();
}

}  // namespace tme
