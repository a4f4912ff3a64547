#pragma once
// The search for a block of the definition.
#include <string>

namespace tvx {

struct RunState;

// Opens the definition anew on channel 1 and finds the first line that holds `word`. The
// file stays open behind that line. A word that is not found, or only in the last line, ends
// the run with "Reserved Word - <word> not found in file <PostFile>". The result is the
// block's truth: "=TRUE", or the condition of "=TRUE IF [...]".
bool FindReservedWord(RunState& state, const std::string& word);

// The truth of a reserved-word line: "=TRUE" is true, "=TRUE IF" gives the condition.
bool LineTruth(RunState& state, const std::string& line);

}  // namespace tvx
