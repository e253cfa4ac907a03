#include "shell/PathList.h"

#include <utility>

namespace tme {

QString TakePath(QString& text, const std::function<bool(const QString&)>& exists) {
  QString path = std::exchange(text, {});
  if (exists(path)) return path;
  path = path.trimmed();
  const qsizetype blank = path.indexOf(u' ');
  if (blank < 0 || exists(path)) return path;
  text = path.mid(blank).trimmed();
  path.truncate(blank);
  return path;
}

}  // namespace tme
