#include "shell/Startup.h"

int main(int argc, char** argv) { return tme::Main(argc, argv); }
