#include "windows/rich/RtfViewLists.h"

#include <QTextCursor>
#include <QTextList>

#include "windows/rich/RtfFormats.h"

namespace tme {

QTextList* RtfViewLists::Find(const rtf::ParagraphFormat& format) {
  if (format.list == rtf::ListKind::None) {
    // Lists of the file's tables go on behind other text, others end.
    std::erase_if(lists_, [](const auto& entry) { return entry.first.id == 0; });
    return nullptr;
  }
  std::erase_if(lists_, [&format](const auto& entry) {
    return entry.first.id == format.list_id && entry.first.level > format.list_level;
  });
  const auto found = lists_.find({format.list_id, format.list_level, format.list});
  return found == lists_.end() ? nullptr : found->second;
}

void RtfViewLists::Begin(const rtf::ParagraphFormat& format, QTextCursor& cursor) {
  if (format.list == rtf::ListKind::None) return;
  QTextListFormat shown;
  shown.setStyle(RtfFormats::StyleOf(format.list));
  if (format.list == rtf::ListKind::Bullet && format.list_level % 3 != 0)
    shown.setStyle(format.list_level % 3 == 1 ? QTextListFormat::ListCircle : QTextListFormat::ListSquare);
  shown.setIndent(0);
  lists_[{format.list_id, format.list_level, format.list}] = cursor.createList(shown);
}

}  // namespace tme
