#include "windows/reg/RegNotice.h"

#include <QStringList>

#include "documents/reg/RegLosses.h"
#include "documents/reg/RegReader.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Counts as the items of a list.
class Items {
 public:
  void Add(std::uint64_t count, const QString& one, const QString& many = {}) {
    if (count > 0) items_ += Counted(count, one, many);
  }
  bool IsEmpty() const { return items_.isEmpty(); }
  QString Text() const { return items_.join(u", "_s); }

 private:
  QStringList items_;
};

void AddNotTaken(Items& items, const RegReadResult& result) {
  items.Add(result.failed_lines, u"1 line that failed"_s, u"%1 lines that failed"_s);
  items.Add(result.comment_lines, u"1 comment"_s, u"%1 comments"_s);
  items.Add(result.typed_hex_lines, u"1 further line of a typed hex value"_s,
            u"%1 further lines of typed hex values"_s);
  if (result.ended_at_deletion)
    items.Add(result.after_unknown_hive, u"1 line from the deletion of a key on"_s,
              u"%1 lines from the deletion of a key on"_s);
  else
    items.Add(result.after_unknown_hive, u"1 line from a key of no known hive on"_s,
              u"%1 lines from a key of no known hive on"_s);
  items.Add(result.unfinished_last_line, u"the last line, which needs an empty one after it"_s);
  items.Add(result.other_lines, u"1 line that is no value"_s, u"%1 lines that are no values"_s);
}

void AddOtherwise(Items& items, const RegReadResult& result) {
  items.Add(result.other_header ? 1 : 0, u"the header, which becomes REGEDIT4"_s);
  items.Add(result.default_values, u"1 default value (@), which gets the name \"[default]\""_s,
            u"%1 default values (@), which get the name \"[default]\""_s);
  items.Add(result.value_deletions, u"1 deletion of a value (=-), which becomes the text \"-\""_s,
            u"%1 deletions of values (=-), which become the text \"-\""_s);
  items.Add(result.typed_hex_values, u"1 typed hex value, which becomes a text between quotes"_s,
            u"%1 typed hex values, which become texts between quotes"_s);
  items.Add(result.other_forms, u"1 value in a form of its own"_s, u"%1 values in forms of their own"_s);
  items.Add(result.cut_keys, u"1 key without \"]\" at its end, which loses its last character"_s,
            u"%1 keys without \"]\" at their end, which lose their last character"_s);
}

}  // namespace

QString NoticeOf(const RegReadResult& result) {
  QStringList sentences;
  if (result.end == RegReadEnd::UnknownHive) {
    const QString sentence =
        result.ended_at_deletion
            ? u"The file ended early at line %1: it deletes a key, which is not taken, and the tree stays hidden."_s
            : u"The file ended early at line %1: its key belongs to no known hive, and the tree stays hidden."_s;
    sentences += sentence.arg(result.ended_at_line);
  }
  Items not_taken, otherwise;
  AddNotTaken(not_taken, result);
  if (!not_taken.IsEmpty()) sentences += u"Not taken: "_s + not_taken.Text() + u'.';
  if (result.end != RegReadEnd::LargeFileRefused) AddOtherwise(otherwise, result);
  if (!otherwise.IsEmpty()) sentences += u"Saved otherwise: "_s + otherwise.Text() + u'.';
  return sentences.join(u' ');
}

QString LeftOutOf(const RegReadResult& result) {
  Items items;
  AddNotTaken(items, result);
  AddOtherwise(items, result);
  return items.Text();
}

QString NoticeOf(const RegLosses& losses, RegNoticeTime time) {
  const bool is_saved = time == RegNoticeTime::AfterSave;
  Items lost;
  if (is_saved) {
    lost.Add(losses.empty_keys, u"1 key without values"_s, u"%1 keys without values"_s);
    lost.Add(losses.empty_hives, u"1 hive without keys"_s, u"%1 hives without keys"_s);
  }
  lost.Add(losses.keys_of_title, u"1 key that has the name of the tree's root"_s,
           u"%1 keys that have the name of the tree's root"_s);
  lost.Add(losses.values, u"1 value that stands directly under the file, a hive or such a key"_s,
           u"%1 values that stand directly under the file, a hive or such a key"_s);
  QStringList sentences;
  if (!lost.IsEmpty()) sentences += (is_saved ? u"Not written: "_s : u"A save does not write: "_s) + lost.Text() + u'.';
  if (losses.deleted_values > 0)
    sentences += Counted(losses.deleted_values, u"1 deleted value is written as a line without a name (\"\"=)."_s,
                         u"%1 deleted values are written as lines without a name (\"\"=)."_s);
  if (losses.shared_keys > 0)
    sentences +=
        Counted(losses.shared_keys,
                u"1 key shares a name with another key: saving writes the values of all of them under each."_s,
                u"%1 keys share a name with another key: saving writes the values of all of them under each."_s);
  if (losses.unknown_hives > 0)
    sentences +=
        Counted(losses.unknown_hives, u"1 hive has an unknown name: opened again, the file ends at its keys."_s,
                u"%1 hives have unknown names: opened again, the file ends at their keys."_s);
  return sentences.join(u' ');
}

}  // namespace tme
