#pragma once

#include <QString>
#include <cstdint>

namespace tme {

struct RegLosses;
struct RegReadResult;

/// What a read left out, as sentences; empty when every line found its place.
QString NoticeOf(const RegReadResult& result);
/// The same as a list for the middle of a sentence.
QString LeftOutOf(const RegReadResult& result);

enum class RegNoticeTime : std::uint8_t { BeforeSave, AfterSave };
/// What a save leaves out or writes otherwise, as sentences; empty when it writes each key and value where it stands.
/// Before a save it says nothing of keys and hives without values.
QString NoticeOf(const RegLosses& losses, RegNoticeTime time);

}  // namespace tme
