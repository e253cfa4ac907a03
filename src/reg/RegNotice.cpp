#include "reg/RegNotice.h"

#include <QStringList>

#include "reg/RegDocument.h"
#include "reg/RegReader.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {

QString NoticeOf(const RegReadResult& result) {
  QStringList reasons;
  const auto add = [&reasons](std::uint64_t count, const QString& one, const QString& many) {
    if (count > 0) reasons += Counted(count, one, many);
  };
  add(result.failed_lines, u"1 line that failed"_s, u"%1 lines that failed"_s);
  add(result.comment_lines, u"1 comment"_s, u"%1 comments"_s);
  add(result.typed_hex_lines, u"1 further line of a typed hex value"_s, u"%1 further lines of typed hex values"_s);
  add(result.after_unknown_hive, u"1 line from a key of no known hive on"_s,
      u"%1 lines from a key of no known hive on"_s);
  add(result.unfinished_last_line, u"the last line, which needs an empty one after it"_s, {});
  add(result.other_lines, u"1 line that is no value"_s, u"%1 lines that are no values"_s);

  QStringList sentences;
  if (result.end == RegReadEnd::UnknownHive)
    sentences += u"The file ended early at line %1: its key belongs to no known hive, and the tree stays hidden."_s.arg(
        result.ended_at_line);
  if (!reasons.isEmpty()) sentences += u"Not taken: "_s + reasons.join(u", "_s) + u'.';
  if (result.typed_hex_values > 0)
    sentences += Counted(result.typed_hex_values, u"1 typed hex value is held as a text."_s,
                         u"%1 typed hex values are held as texts."_s);
  return sentences.join(u' ');
}

QString NoticeOf(const RegDocument& document) {
  QStringList sentences;
  if (const std::size_t keys = document.KeysSharingAName(); keys > 0)
    sentences +=
        Counted(keys, u"1 key shares a name with another key: saving writes the values of all of them under each."_s,
                u"%1 keys share a name with another key: saving writes the values of all of them under each."_s);
  if (const std::size_t values = document.UnsavedValues(); values > 0)
    sentences += Counted(values, u"1 value stands directly under the file or a hive: it is not saved."_s,
                         u"%1 values stand directly under the file or a hive: they are not saved."_s);
  return sentences.join(u' ');
}

}  // namespace tme
