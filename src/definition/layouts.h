#pragma once
// Layout tables: a template of the .lyt file printed once for each line of the job sequence,
// with the line's numbers in the value tables.
#include <cstdint>
#include <string>

namespace tvx {

struct RunState;

// Gives WriteReservedBlock its next body line, in PostDefLine, from the next line of the job
// sequence; "******" ends the layout (mode 0, an empty body line).
void NextLayoutLine(RunState& state, int16_t& mode);
// FindReservedWord for the layout file, on its own channel.
bool FindLayoutWord(RunState& state, const std::string& word);
// Takes the next comma-separated field off the trimmed line; returns its leading number.
double NextLayoutField(std::string& line, std::string& field);

}  // namespace tvx
