#pragma once
// The definition's files and the engine's channels: the paths of a job, opening and closing
// by channel number, and the outputs that finished lines are routed to.
#include <string>

#include "common/textfile.h"
#include "definition/definition_cache.h"

namespace tvx {

struct RunState;

// Forms the paths of the job's files in `WorkDir` and of the definition from `MachineStem`,
// opens the word file on its channel, where it stays open for the run, sets the level of
// called blocks to 0 and copies the definition to the three level copies, overwriting.
void SetDefinitionFiles(RunState& state);

// The input of a channel number (1, 2, 5, 6, 10, 13, 14, 17); any other number is a fault.
TextInput& InputChannel(RunState& state, int channel);
// Opens a definition file for input on a channel, through the held texts. A channel that is
// open already is the fault "File already open"; so is channel 17 while the subroutine file
// is being written.
void OpenDefinitionInput(RunState& state, int channel, const std::string& path);
void CloseInputChannel(RunState& state, int channel);
// The held text that an open input channel reads; a streamed channel has none.
DefinitionText& HeldTextOf(RunState& state, int channel);
// Places an open input channel behind the first line of its file, from the top, that holds
// `word` (with `callable`: and does not hold "CALL"), and gives that line; with no such line
// the channel is at the end of its file and `line` is empty. A held text answers from what it
// remembers, a streamed one is read line by line.
void PassFirstLineHolding(RunState& state, int channel, const std::string& word, bool callable, std::string& line);

// Opens an output of the engine (program, report, subroutine file, second program file),
// emptying the file, and forgets any held text of that path.
void OpenEngineOutput(RunState& state, TextOutput& output, const std::string& path, bool append = false);
void CloseEngineOutput(RunState& state, TextOutput& output);
// The subroutine file "progsubs.sub" in the run's current directory, and the name under
// which level 5 reads it.
std::string SubroutineFilePath(const RunState& state);
std::string SubroutineLevelPath(const RunState& state);
// Opens the subroutine file for output and prints its first line "SUBROUTINES=TRUE".
void OpenSubroutineFile(RunState& state);

// Drops the held text of a file that the system itself writes.
void ForgetDefinitionFile(RunState& state, const std::string& path);
// Closes every channel of the engine.
void CloseAllFiles(RunState& state);

}  // namespace tvx
