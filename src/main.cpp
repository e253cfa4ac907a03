#include "platform/Process.h"
#include "shell/Startup.h"

int main(int argc, char** argv) { tme::LeaveProcess(tme::Main(argc, argv)); }
