#include "history/KeptVersion.h"

#include <QCoreApplication>
#include <array>

namespace tme {

QString ReasonText(KeptReason reason) {
  constexpr std::array kTexts{
      QT_TRANSLATE_NOOP("KeptReason", "Before a save"), QT_TRANSLATE_NOOP("KeptReason", "Closed without saving"),
      QT_TRANSLATE_NOOP("KeptReason", "Before a restore"), QT_TRANSLATE_NOOP("KeptReason", "Rescued after a crash")};
  return QCoreApplication::translate("KeptReason", kTexts[static_cast<std::size_t>(reason)]);
}

bool SameOrigin(const ContentOrigin& a, const ContentOrigin& b) {
  return a.kind == b.kind && a.path == b.path && (!a.path.isEmpty() || a.title == b.title);
}

// No path begins with a line break.
QString OriginKey(const ContentOrigin& origin) { return origin.path.isEmpty() ? u'\n' + origin.title : origin.path; }

}  // namespace tme
