#include <windows.h>

#include <QRegularExpression>
#include <cstdio>
#include <cstdlib>

#include "system/Process.h"

namespace tme {

using namespace Qt::StringLiterals;

/// A compiled pattern keeps memory for each thread that matches it, and a program built with MinGW frees what belongs
/// to a thread before the destructors that read it. Qt asks for the variable once, at its first pattern.
void EnterProcess() {
  // The folder that the program is started in, often that of the file it opens, gives it no libraries.
  ::SetDllDirectoryW(L"");
  constexpr const char* kCompiles = "QT_ENABLE_REGEXP_JIT";
  const QByteArray before = qgetenv(kCompiles);
  qputenv(kCompiles, "0");
  QRegularExpression(u"x"_s).optimize();
  before.isEmpty() ? qunsetenv(kCompiles) : qputenv(kCompiles, before);
}

/// The libraries' last destructors do not run, for the same reason.
void LeaveProcess(int status) {
  std::fflush(nullptr);
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(status));
  std::_Exit(status);  // not reached
}

}  // namespace tme
