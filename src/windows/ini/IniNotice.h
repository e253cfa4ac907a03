#pragma once

#include <QString>

namespace tme {

class IniTree;
struct IniReadResult;

/// What a read of a source ("The file") left out, as sentences; empty when a save would write every line where it
/// stood.
QString NoticeOf(const IniReadResult& result, const QString& source);
/// The same as a list for the middle of a sentence.
QString LeftOutOf(const IniReadResult& result);
/// What the reader would make of a file of this tree otherwise than the tree has it, as sentences; mostly empty.
QString NoticeOf(const IniTree& tree);

}  // namespace tme
