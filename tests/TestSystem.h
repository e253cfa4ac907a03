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
/// Waits until no other test uses what some systems have once for all of a user's processes, the claim of the only
/// instance and the classes of all users, and keeps them away from it until this process ends.
void AwaitSystemTurn();
/// Takes away what EnterSystem made.
void LeaveSystem();
