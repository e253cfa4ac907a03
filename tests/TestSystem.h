#pragma once

#include <QString>

/// Keeps what the system itself holds for the user away from a test: the registry's part of the user on Windows, which
/// names the known folders too. home: where these lie for the test. False when that fails.
bool EnterSystem(const QString& home);
/// The file that stands for the program among what a file can be sent to; for tests that are in its way.
QString SendToEntry();
enum class Missing { File, Folder };
/// What the system says of a path that leads nowhere since that is missing; no full stop.
QString NothingThere(Missing what);
/// Takes away what EnterSystem made.
void LeaveSystem();
