#include "windows/reg/RegNotice.h"

#include <QCoreApplication>
#include <QStringList>

#include "documents/reg/RegLosses.h"
#include "documents/reg/RegReader.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString Tr(const char* text) { return QCoreApplication::translate("RegNotice", text); }

/// Counts as the items of a list or as sentences.
struct Items : QStringList {
  void Add(std::uint64_t count, const QString& one, const QString& many = {}) {
    if (count > 0) append(Counted(count, one, many));
  }
  QString Text() const { return join(u", "_s); }
};

void AddNotTaken(Items& items, const RegReadResult& result) {
  items.Add(result.failed_lines, Tr("1 line that failed"), Tr("%1 lines that failed"));
  items.Add(result.comment_lines, Tr("1 comment"), Tr("%1 comments"));
  items.Add(result.typed_hex_lines, Tr("1 further line of a typed hex value"),
            Tr("%1 further lines of typed hex values"));
  const bool is_deletion = result.ended_at_deletion;
  items.Add(result.after_unknown_hive,
            is_deletion ? Tr("1 line from the deletion of a key on") : Tr("1 line from a key of no known hive on"),
            is_deletion ? Tr("%1 lines from the deletion of a key on") : Tr("%1 lines from a key of no known hive on"));
  items.Add(result.unfinished_last_line, Tr("the last line, which needs an empty one after it"));
  items.Add(result.other_lines, Tr("1 line that is no value"), Tr("%1 lines that are no values"));
}

void AddOtherwise(Items& items, const RegReadResult& result) {
  items.Add(result.other_header ? 1 : 0, Tr("the header, which becomes REGEDIT4"));
  items.Add(result.default_values, Tr("1 default value (@), which gets the name \"[default]\""),
            Tr("%1 default values (@), which get the name \"[default]\""));
  items.Add(result.value_deletions, Tr("1 deletion of a value (=-), which becomes the text \"-\""),
            Tr("%1 deletions of values (=-), which become the text \"-\""));
  items.Add(result.typed_hex_values, Tr("1 typed hex value, which becomes a text between quotes"),
            Tr("%1 typed hex values, which become texts between quotes"));
  items.Add(result.other_forms, Tr("1 value in a form of its own"), Tr("%1 values in forms of their own"));
  items.Add(result.cut_keys, Tr("1 key without \"]\" at its end, which loses its last character"),
            Tr("%1 keys without \"]\" at their end, which lose their last character"));
}

}  // namespace

QString NoticeOf(const RegReadResult& result) {
  QStringList sentences;
  if (result.end == RegReadEnd::UnknownHive) {
    const QString sentence =
        result.ended_at_deletion
            ? Tr("The file ended early at line %1: it deletes a key, which is not taken, and the tree stays hidden.")
            : Tr("The file ended early at line %1: its key belongs to no known hive, and the tree stays hidden.");
    sentences += sentence.arg(result.ended_at_line);
  }
  Items not_taken, otherwise;
  AddNotTaken(not_taken, result);
  if (!not_taken.isEmpty()) sentences += Tr("Not taken: ") + not_taken.Text() + u'.';
  if (result.end != RegReadEnd::LargeFileRefused) AddOtherwise(otherwise, result);
  if (!otherwise.isEmpty()) sentences += Tr("Saved otherwise: ") + otherwise.Text() + u'.';
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
    lost.Add(losses.empty_keys, Tr("1 key without values"), Tr("%1 keys without values"));
    lost.Add(losses.empty_hives, Tr("1 hive without keys"), Tr("%1 hives without keys"));
  }
  lost.Add(losses.keys_of_title, Tr("1 key that has the name of the tree's root"),
           Tr("%1 keys that have the name of the tree's root"));
  lost.Add(losses.values, Tr("1 value that stands directly under the file, a hive or such a key"),
           Tr("%1 values that stand directly under the file, a hive or such a key"));
  Items sentences;
  if (!lost.isEmpty())
    sentences += (is_saved ? Tr("Not written: ") : Tr("A save does not write: ")) + lost.Text() + u'.';
  sentences.Add(losses.deleted_values, Tr("1 deleted value is written as a line without a name (\"\"=)."),
                Tr("%1 deleted values are written as lines without a name (\"\"=)."));
  sentences.Add(losses.shared_keys,
                Tr("1 key shares a name with another key: saving writes the values of all of them under each."),
                Tr("%1 keys share a name with another key: saving writes the values of all of them under each."));
  sentences.Add(losses.unknown_hives, Tr("1 hive has an unknown name: opened again, the file ends at its keys."),
                Tr("%1 hives have unknown names: opened again, the file ends at their keys."));
  return sentences.join(u' ');
}

}  // namespace tme
