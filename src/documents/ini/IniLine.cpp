#include "documents/ini/IniLine.h"

#include <algorithm>
#include <vector>

#include "base/LineReader.h"

namespace tme {

std::string SortedIni(std::string_view text) {
  std::vector<std::vector<std::string_view>> sections(1);
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);) {
    const IniLine kind = KindOf(line);
    if (kind == IniLine::Header) sections.emplace_back();
    if (kind != IniLine::Blank) sections.back().push_back(line);
  }
  const auto heading = [](const auto& section) { return section.empty() ? std::string_view() : section.front(); };
  std::stable_sort(sections.begin() + 1, sections.end(),
                   [&](const auto& a, const auto& b) { return heading(a) < heading(b); });
  std::string sorted;
  sorted.reserve(text.size());
  for (std::vector<std::string_view>& section : sections) {
    const bool has_heading = &section != &sections.front();
    if (section.size() > 1) std::stable_sort(section.begin() + (has_heading ? 1 : 0), section.end());
    if (has_heading && !sorted.empty()) sorted += '\n';
    for (const std::string_view line : section) sorted.append(line).append("\n");
  }
  return sorted;
}

}  // namespace tme
