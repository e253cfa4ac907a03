#include "documents/compare/FileKind.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "base/LineReader.h"
#include "documents/reg/RegNames.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {

std::optional<DocumentKind> KindNamed(std::string_view name) {
  std::string upper(name);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return static_cast<char>(std::toupper(c)); });
  if (upper == "INF") return DocumentKind::Ini;
  const auto found =
      std::find_if(kKinds.begin(), kKinds.end(), [&upper](DocumentKind k) { return NameOf(k) == upper; });
  return found == kKinds.end() ? std::nullopt : std::optional(*found);
}

std::optional<DocumentKind> KindOfName(std::string_view file_name) {
  const std::size_t dot = file_name.rfind('.');
  return dot == std::string_view::npos ? std::nullopt : KindNamed(file_name.substr(dot + 1));
}

DocumentKind KindOfText(std::string_view text) {
  constexpr std::string_view kHive = "HKEY_";
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);) {
    line.remove_prefix(FirstText(line));
    if (line.empty() || line.starts_with(';')) continue;
    const auto header = line.starts_with('[') ? FindRegHeader(line) : std::nullopt;
    const bool is_key = header && SameRegName(header->path.Of(line).substr(0, kHive.size()), kHive);
    return is_key || VersionOfLine(line) ? DocumentKind::Reg : DocumentKind::Ini;
  }
  return DocumentKind::Ini;
}

}  // namespace tme
