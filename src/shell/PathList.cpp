#include "shell/PathList.h"

#include <utility>

namespace tme {

QString TakePath(QString& text, const std::function<bool(const QString&)>& file_exists) {
  QString path = std::exchange(text, {});
  const qsizetype blank = path.indexOf(u' ');
  if (blank < 0 || file_exists(path)) return path;
  text = path.mid(blank).trimmed();
  path.truncate(blank);
  return path;
}

}  // namespace tme
