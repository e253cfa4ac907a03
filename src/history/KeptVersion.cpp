#include "history/KeptVersion.h"

#include <QCoreApplication>

namespace tme {

QString ReasonText(KeptReason reason) {
  const char* text = "";
  switch (reason) {
    case KeptReason::BeforeSave:
      text = QT_TRANSLATE_NOOP("KeptReason", "Before a save");
      break;
    case KeptReason::NotSaved:
      text = QT_TRANSLATE_NOOP("KeptReason", "Closed without saving");
      break;
    case KeptReason::BeforeRestore:
      text = QT_TRANSLATE_NOOP("KeptReason", "Before a restore");
      break;
    case KeptReason::Rescued:
      text = QT_TRANSLATE_NOOP("KeptReason", "Rescued after a crash");
      break;
  }
  return QCoreApplication::translate("KeptReason", text);
}

bool SameOrigin(const ContentOrigin& a, const ContentOrigin& b) {
  return a.kind == b.kind && a.path == b.path && (!a.path.isEmpty() || a.title == b.title);
}

// No path begins with a line break.
QString OriginKey(const ContentOrigin& origin) { return origin.path.isEmpty() ? u'\n' + origin.title : origin.path; }

}  // namespace tme
