#include "system/SessionEnd.h"

#include <QGuiApplication>
#include <QSessionManager>

namespace tme {

void SessionEnd::FollowSessionManager(const std::function<void(Questions)>& end) {
  // Its documents are not opened again at the next log-on, so the program is not started either.
  const auto stay_away = [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); };
  QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, qGuiApp, stay_away, Qt::DirectConnection);
  const auto commit = [end, stay_away](QSessionManager& manager) {
    stay_away(manager);
    const bool allowed = manager.allowsInteraction();
    end(allowed ? Questions::Allowed : Questions::Refused);
    if (allowed) manager.release();
  };
  QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, qGuiApp, commit, Qt::DirectConnection);
}

}  // namespace tme
