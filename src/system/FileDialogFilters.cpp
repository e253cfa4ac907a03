#include "system/FileDialogFilters.h"

namespace tme {

using namespace Qt::StringLiterals;

QStringList FileDialogFilters(const QString& filter) {
  QStringList filters;
  const QStringList parts = filter.split(u'|');
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList wildcards;
    const QStringList given = parts[i + 1].split(u';', Qt::SkipEmptyParts);
    for (const QString& wildcard : given) {
      const QString plain = wildcard.trimmed();
      // On the systems that this wildcard comes from, it means names without a dot too.
      wildcards.append(plain == "*.*"_L1 ? u"*"_s : FileDialogWildcard(plain));
    }
    filters.append(u"%1 (%2)"_s.arg(parts[i].trimmed(), wildcards.join(u' ')));
  }
  return filters;
}

}  // namespace tme
