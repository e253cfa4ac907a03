// Input: bytes that come from another launch; they are a command line's text, too.
#include <QByteArray>
#include <QString>
#include <algorithm>

#include "Fuzz.h"
#include "shell/CommandLineRecord.h"
#include "system/InstanceLink.h"

namespace tme::fuzz {
namespace {

void CheckRecord(const QByteArray& bytes) {
  const std::optional<CopyData> record = UnpackCopyData(bytes);
  const bool incomplete = IsBeginningOfRecord(bytes);
  Promise(!incomplete || bytes.size() < kMaxRecordBytes, "no more is waited for than a record has");
  if (!record) return;
  Promise(!incomplete, "a whole record is not waited for");
  Promise(record->data.size() <= MaxDataBytes(record->dwData), "a record is no longer than allowed");
  Promise(PackCopyData(*record) == bytes, "a record packs into its bytes again");
  // Of a long one some parts are enough.
  const qsizetype step = 1 + bytes.size() / kMaxCopyDataBytes;
  for (qsizetype size = 0; size < bytes.size(); size += step) {
    Promise(IsBeginningOfRecord(bytes.first(size)), "a part of a record waits for the rest");
    Promise(!UnpackCopyData(bytes.first(size)), "a part of a record is none");
  }
  const std::optional<ReceivedCommandLine> received = CommandLineOf(*record);
  const bool is_command_line = record->dwData == kCommandLineData || record->dwData == kLongData;
  Promise(received.has_value() == is_command_line, "only a command line is one");
  if (received) Promise(!received->text.contains(QChar(u'\0')), "the text ends at a zero byte");
}

void CheckCommandLine(const QString& text) {
  const QString sent = text.left(text.indexOf(u'\0'));  // all of it where there is none
  for (const bool is_long : {false, true}) {
    const QByteArray packed = PackCopyData(is_long ? LongCommandLineRecord(text) : CommandLineRecord(text));
    const std::optional<CopyData> record = UnpackCopyData(packed);
    Promise(record.has_value(), "every command line fits a record");
    const std::optional<ReceivedCommandLine> received = CommandLineOf(*record);
    Promise(received.has_value(), "and arrives as one");
    Promise(sent.startsWith(received->text), "a command line arrives from its beginning on");
    const bool fits = is_long ? sent.toUtf8().size() < kMaxLongDataBytes : FitsCommandLineRecord(sent);
    Promise(!fits || received->text == sent, "and one that fits arrives whole");
    Promise(!received->is_cut, "what a sender of ours cuts has its end");
  }
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tme::fuzz;
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  CheckRecord(bytes);
  CheckCommandLine(QString::fromUtf8(bytes));
  return 0;
}
