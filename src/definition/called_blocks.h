#pragma once
// Called blocks: "[CALL name]" runs another block of the definition from its own copy of the
// file, up to three levels deep; level 5 reads the subroutine text.
#include <string>

namespace tvx {

struct RunState;

// Gives the next body line of the current level, working through "[CALL " lines.
void ReadDefinitionLine(RunState& state, std::string& line);
// As FindReservedWord, in the current level's file, passing over lines that hold "CALL".
bool FindCalledWord(RunState& state, const std::string& name);
// Maps PostLevel to its channel and file; `bodyLine` names the line in the nesting message.
void SelectDefinitionLevel(RunState& state, const std::string& bodyLine);
// One level back: a level of 4 counts as 1, so that it falls back to 0.
void StepBackLevel(RunState& state);

}  // namespace tvx
