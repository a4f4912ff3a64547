#include "tools/command_line.h"

int main(int argc, char** argv) { return tvx::RunCommandLine(argc, argv); }
