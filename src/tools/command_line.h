#pragma once
// The command line of the executable: with no arguments the job in the current directory,
// else one of the subcommands that serve people.
namespace tvx {

int RunCommandLine(int argc, char** argv);

}  // namespace tvx
