#include "ini/IniNotice.h"

#include <QLocale>
#include <QStringList>

#include "ini/IniReader.h"
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
  if (result.blank_lines_dropped > 0)
    sentences += Counted(result.blank_lines_dropped, u"1 blank line dropped."_s, u"%1 blank lines dropped."_s);
  if (sentences.isEmpty()) return {};
  if (result.sections_reordered)
    sentences += u"%1 holds its sections in another order."_s.arg(source);
  else if (result.entries_reordered)
    sentences += u"%1 holds its entries in another order."_s.arg(source);
  sentences += u"Saving writes only what the tree shows."_s;
  return sentences.join(u' ');
}

}  // namespace tme
