#pragma once

#include <QString>

namespace tme {

class RegDocument;
struct RegReadResult;

/// What a read left out, as sentences; empty when every line found its place.
QString NoticeOf(const RegReadResult& result);
/// What a save of the document would do to its values; empty when it writes each where it stands.
QString NoticeOf(const RegDocument& document);

}  // namespace tme
