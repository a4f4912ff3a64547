#pragma once
// The block line interpreter: body lines with tags become output lines, routed to the
// program, the subroutine file, the second program file or the report.
#include <cstdint>
#include <string>

namespace tvx {

struct RunState;
struct WordTag;

// Prints the body of the block that FindReservedWord (or the job driver) left the definition
// positioned at, up to its "******".
void WriteReservedBlock(RunState& state);
// Appends the output of one word of the .wrd to PostLine.
void EvaluateWord(RunState& state, const std::string& tag);
void EvaluateWord(RunState& state, const WordTag& tag);
// A tag read once for EvaluateWord.
WordTag MakeWordTag(const std::string& tag);
// Finds the first line of a word in the .wrd from the rolling position, with one rewind to
// the top; leaves it in PostWordLine and the file behind it. Gives the number of the line in
// the held word file, or -1 for a word file read as a stream or a word not found.
int32_t SearchWordLine(RunState& state, const std::string& word);

}  // namespace tvx
