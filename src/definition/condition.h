#pragma once
// The condition of "=TRUE IF [condition]".
#include <string>

namespace tvx {

struct RunState;

// Tests the condition in the first square brackets of a line; the line comes back in upper
// case. A line with no "[" ends the run with "<line> case not found in definition".
bool EvaluateCondition(RunState& state, std::string& line);

}  // namespace tvx
