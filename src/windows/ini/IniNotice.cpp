#include "windows/ini/IniNotice.h"

#include <QLocale>
#include <QStringList>

#include "documents/ini/IniReader.h"
#include "documents/ini/IniWriter.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {

QString NoticeOf(const IniReadResult& result, const QString& source) {
  QStringList sentences;
  if (result.ended_at_line > 0)
    sentences += u"%1 ended early at line %2: %3."_s.arg(
        source, QLocale().toString(static_cast<qulonglong>(result.ended_at_line)),
        Counted(result.lines_not_read, u"1 line was not taken"_s, u"%1 lines were not taken"_s));
  if (result.nodes_overwritten > 0)
    sentences += Counted(result.nodes_overwritten, u"1 item was overwritten."_s, u"%1 items were overwritten."_s);
  if (result.cut_headers > 0)
    sentences += Counted(result.cut_headers, u"1 section header does not end in \"]\" and lost its last character."_s,
                         u"%1 section headers do not end in \"]\" and lost their last character."_s);
  if (result.blank_lines_dropped > 0)
    sentences += Counted(result.blank_lines_dropped, u"1 blank line dropped."_s, u"%1 blank lines dropped."_s);
  if (result.sections_reordered)
    sentences += u"%1 holds its sections in another order."_s.arg(source);
  else if (result.entries_reordered)
    sentences += u"%1 holds its entries in another order."_s.arg(source);
  if (sentences.isEmpty()) return {};
  sentences += u"Saving writes only what the tree shows."_s;
  return sentences.join(u' ');
}

QString LeftOutOf(const IniReadResult& result) {
  QStringList items;
  const auto add = [&items](std::uint64_t count, const QString& one, const QString& many) {
    if (count > 0) items += Counted(count, one, many);
  };
  add(result.lines_not_read, u"the last line"_s, u"the last %1 lines"_s);
  add(result.nodes_overwritten, u"1 item that was overwritten"_s, u"%1 items that were overwritten"_s);
  add(result.cut_headers, u"1 header without \"]\""_s, u"%1 headers without \"]\""_s);
  add(result.blank_lines_dropped, u"1 blank line"_s, u"%1 blank lines"_s);
  if (result.sections_reordered)
    items += u"the order of its sections"_s;
  else if (result.entries_reordered)
    items += u"the order of its entries"_s;
  return items.join(u", "_s);
}

QString NoticeOf(const IniTree& tree) {
  const IniReadBack back = ReadBackOf(tree);
  QStringList sentences;
  const auto add = [&sentences](std::uint64_t count, const QString& one, const QString& many) {
    if (count > 0) sentences += Counted(count, one, many);
  };
  if (back.ends_at_line > 0)
    sentences +=
        u"Opened again, this file would end at line %1: above the sections it may have one comment, which begins "
        "with \";\"."_s.arg(QLocale().toString(static_cast<qulonglong>(back.ends_at_line)));
  add(back.headers, u"1 line begins with \"[\" and would be a section when the file is opened again."_s,
      u"%1 lines begin with \"[\" and would be sections when the file is opened again."_s);
  add(back.doubles, u"1 section has the name of another one: opening the file again asks which one to keep."_s,
      u"%1 sections have the names of others: opening the file again asks which ones to keep."_s);
  add(back.other_kinds, u"1 line would be of another kind (entry, comment) when the file is opened again."_s,
      u"%1 lines would be of another kind (entry, comment) when the file is opened again."_s);
  add(back.blank_entries, u"1 entry without text would be gone when the file is opened again."_s,
      u"%1 entries without text would be gone when the file is opened again."_s);
  return sentences.join(u' ');
}

}  // namespace tme
