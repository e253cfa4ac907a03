#pragma once

#include <optional>
#include <string_view>

#include "console/ConsoleFile.h"
#include "documents/compare/Outline.h"

namespace tme::console {

/// Files that are compared or merged, each with what it says.
class ComparedFile {
 public:
  /// As ConsoleFile. Throws Trouble.
  ComparedFile(std::string_view name, std::optional<std::string_view> kind, Streams& streams,
               std::optional<std::string_view> shown_name = {})
      : file_(name, kind, streams, ConsoleFile::Holds::Text, shown_name) {}

  const ConsoleFile& File() const { return file_; }
  bool IsEmpty() const { return file_.Text().empty(); }
  /// Takes the text. kind: Ini or Reg. Throws Trouble where the file is of another kind, unless it is empty.
  Outline Read(DocumentKind kind, const OutlineOptions& options);

 private:
  ConsoleFile file_;
};

}  // namespace tme::console
