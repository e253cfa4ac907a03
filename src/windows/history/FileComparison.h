#pragma once

#include <QString>
#include <optional>
#include <stop_token>
#include <string>

#include "windows/history/VersionComparison.h"

namespace tme {

/// A side of a comparison of two files.
struct ComparedFile {
  QString path;
  std::optional<std::string> unsaved{};  ///< what its document holds in place of the file
  std::optional<DocumentKind> kind{};    ///< of that document; else by the ending, else by the content

  /// 0 for what is not there.
  qint64 Bytes() const;
};

/// Compares; files of two kinds, and others than INI and registry files, by their lines. Any thread may call. The
/// result is of no use when something was thrown or the comparison was stopped.
void CompareFiles(ComparedFile first, ComparedFile second, ComparedBy by, const std::stop_token& stop,
                  VersionComparison& result);

/// What is said about it, in a sentence.
QString FilesSummary(const VersionComparison& comparison);

}  // namespace tme
