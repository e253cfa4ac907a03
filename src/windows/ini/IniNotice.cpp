#include "windows/ini/IniNotice.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include "documents/ini/IniReader.h"
#include "documents/ini/IniWriter.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString Tr(const char* text) { return QCoreApplication::translate("IniNotice", text); }

/// Of 0 nothing is said.
void Count(QStringList& said, std::uint64_t count, const QString& one, const QString& many) {
  if (count > 0) said += Counted(count, one, many);
}

}  // namespace

QString NoticeOf(const IniReadResult& result, const QString& source) {
  QStringList sentences;
  if (result.ended_at_line > 0)
    sentences += Tr("%1 ended early at line %2: %3.")
                     .arg(source, QLocale().toString(static_cast<qulonglong>(result.ended_at_line)),
                          Counted(result.lines_not_read, Tr("1 line was not taken"), Tr("%1 lines were not taken")));
  Count(sentences, result.nodes_overwritten, Tr("1 item was overwritten."), Tr("%1 items were overwritten."));
  Count(sentences, result.cut_headers, Tr("1 section header does not end in \"]\" and lost its last character."),
        Tr("%1 section headers do not end in \"]\" and lost their last character."));
  Count(sentences, result.blank_lines_dropped, Tr("1 blank line dropped."), Tr("%1 blank lines dropped."));
  if (result.sections_reordered)
    sentences += Tr("%1 holds its sections in another order.").arg(source);
  else if (result.entries_reordered)
    sentences += Tr("%1 holds its entries in another order.").arg(source);
  if (sentences.isEmpty()) return {};
  sentences += Tr("Saving writes only what the tree shows.");
  return sentences.join(u' ');
}

QString LeftOutOf(const IniReadResult& result) {
  QStringList items;
  Count(items, result.lines_not_read, Tr("the last line"), Tr("the last %1 lines"));
  Count(items, result.nodes_overwritten, Tr("1 item that was overwritten"), Tr("%1 items that were overwritten"));
  Count(items, result.cut_headers, Tr("1 header without \"]\""), Tr("%1 headers without \"]\""));
  Count(items, result.blank_lines_dropped, Tr("1 blank line"), Tr("%1 blank lines"));
  if (result.sections_reordered)
    items += Tr("the order of its sections");
  else if (result.entries_reordered)
    items += Tr("the order of its entries");
  return items.join(u", "_s);
}

QString NoticeOf(const IniTree& tree) {
  const IniReadBack back = ReadBackOf(tree);
  QStringList sentences;
  if (back.ends_at_line > 0)
    sentences +=
        Tr("Opened again, this file would end at line %1: above the sections it may have one comment, which begins "
           "with \";\".")
            .arg(QLocale().toString(static_cast<qulonglong>(back.ends_at_line)));
  Count(sentences, back.headers, Tr("1 line begins with \"[\" and would be a section when the file is opened again."),
        Tr("%1 lines begin with \"[\" and would be sections when the file is opened again."));
  Count(sentences, back.doubles,
        Tr("1 section has the name of another one: opening the file again asks which one to keep."),
        Tr("%1 sections have the names of others: opening the file again asks which ones to keep."));
  Count(sentences, back.other_kinds,
        Tr("1 line would be of another kind (entry, comment) when the file is opened again."),
        Tr("%1 lines would be of another kind (entry, comment) when the file is opened again."));
  Count(sentences, back.blank_entries, Tr("1 entry without text would be gone when the file is opened again."),
        Tr("%1 entries without text would be gone when the file is opened again."));
  return sentences.join(u' ');
}

}  // namespace tme
