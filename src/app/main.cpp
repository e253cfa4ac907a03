#include "app/Startup.h"
#include "system/Process.h"

int main(int argc, char** argv) { tme::LeaveProcess(tme::Main(argc, argv)); }
