// Input: bytes that come from another launch; they are a command line's text, too.
#include <QByteArray>
#include <QString>
#include <algorithm>

#include "Fuzz.h"
#include "platform/InstanceLink.h"
#include "shell/CommandLineRecord.h"

namespace tme::fuzz {
namespace {

void CheckRecord(const QByteArray& bytes) {
  const std::optional<CopyData> record = UnpackCopyData(bytes);
  const bool incomplete = IsBeginningOfRecord(bytes);
  Promise(!incomplete || bytes.size() < kMaxRecordBytes, "no more is waited for than a record has");
  if (!record) return;
  Promise(!incomplete, "a whole record is not waited for");
  Promise(record->data.size() <= kMaxCopyDataBytes, "a record is no longer than allowed");
  Promise(PackCopyData(*record) == bytes, "a record packs into its bytes again");
  for (qsizetype size = 0; size < bytes.size(); ++size) {
    Promise(IsBeginningOfRecord(bytes.first(size)), "a part of a record waits for the rest");
    Promise(!UnpackCopyData(bytes.first(size)), "a part of a record is none");
  }
  const std::optional<QString> text = CommandLineOf(*record);
  Promise(text.has_value() == (record->dwData == kCommandLineData), "only a command line is one");
  if (text) Promise(!text->contains(QChar(u'\0')), "the text ends at a zero byte");
}

void CheckCommandLine(const QString& text) {
  const QByteArray packed = PackCopyData(CommandLineRecord(text));
  const std::optional<CopyData> record = UnpackCopyData(packed);
  Promise(record.has_value(), "every command line fits a record");
  const std::optional<QString> received = CommandLineOf(*record);
  Promise(received.has_value(), "and arrives as one");
  const QString sent = text.left(text.indexOf(u'\0'));  // all of it where there is none
  Promise(sent.startsWith(*received), "a command line arrives from its beginning on");
  const bool fits = sent.toUtf8().size() <= kMaxCommandLineBytes;
  Promise(!fits || *received == sent, "and one that fits arrives whole");
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
