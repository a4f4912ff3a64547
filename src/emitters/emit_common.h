#pragma once
// What every emitter shares: writing a block of the definition, and the coordinates of the
// program in the machine's units.
#include <string>

namespace tvx {

struct RunState;

// Finds the reserved word, writes its block if it is true, and closes the definition file.
// Gives the block's truth.
bool WriteBlock(RunState& state, const std::string& word);
// As WriteBlock, but a false block ends the run with "'" + word + "' not found in
// Post-Processor".
void WriteRequiredBlock(RunState& state, const std::string& word);
// A length or coordinate of the drawing (millimetres) as the program takes it: on an imperial
// machine divided by 25.4 and rounded with no places, else as it stands.
double ProgramLength(const RunState& state, double millimetres);
// The distance of a point from the position last given to the machine (PostMemo 15, 16).
double DistanceFromLastPosition(RunState& state, double x, double y);

}  // namespace tvx
