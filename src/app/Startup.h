#pragma once

namespace tme {

/// The program: hands its command line to the running instance, or becomes it. Returns the process's exit status:
/// 0, or 1 when a running instance did not answer and the user gave up.
int Main(int argc, char** argv);

}  // namespace tme
