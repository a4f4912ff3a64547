#pragma once
// The program's one main procedure: a job from its start to its end.
#include <string>

namespace tvx {

struct RunState;

// Runs the job whose Torvanex.cfg lies in Config.StartDir (empty: the current directory).
// Every way it can end early travels as a RunEnd.
void PostMain(RunState& state);
// Runs the job in a directory and gives the exit status, with any message on stderr.
int RunJob(const std::string& directory);

}  // namespace tvx
