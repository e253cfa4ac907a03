#pragma once

#include <QString>

namespace tme {

struct IniReadResult;

/// What a read of a source ("The file") left out, as sentences; empty when every line found its place.
QString NoticeOf(const IniReadResult& result, const QString& source);

}  // namespace tme
