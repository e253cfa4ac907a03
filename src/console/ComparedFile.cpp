#include "console/ComparedFile.h"

#include <string>

namespace tme::console {

Outline ComparedFile::Read(DocumentKind kind, const OutlineOptions& options) {
  if (!IsEmpty()) file_.RequireTree();
  if (!IsEmpty() && file_.Kind() != kind) {
    const bool is_ini = kind == DocumentKind::Ini;
    file_.Fail(0, is_ini ? "a registry file, where the other one is an INI file (--kind takes both as one)"
                         : "an INI file, where the other one is a registry file (--kind takes both as one)");
  }
  std::string text = file_.TakeText();
  if (text.size() > Outline::kMostBytes) file_.Fail(0, "it is too large to be compared");
  if (kind == DocumentKind::Ini) return ReadIniOutline(std::move(text), options);
  return ReadRegOutline(std::move(text), ConsoleFile::CodingFor(file_.UnsaidVersion()), options);
}

}  // namespace tme::console
