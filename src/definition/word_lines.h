#pragma once
// Word lines of the .wrd file: the table tags, the number and text forms, the address text
// and the assignments that run when a line prints.
#include <string>

#include "definition/engine_state.h"

namespace tvx {

struct RunState;

// Reads the table tag of a word line into `value` (the engine's PostValue), its cell into
// `index` and its verdict into `active`; "[IF M" is cut to "[M" in `line` itself.
void ReadTagValue(RunState& state, std::string& line, PostValueType& index, PostValueType& value, bool& active);
// "n=x": true when x as a single equals PostParam cell n exactly.
bool TestParamEquals(RunState& state, const std::string& spec);
// "MaMb...": true when any of the listed PostMachine cells differs from its memo by half a
// thousandth or more.
void AnyMachineChanged(RunState& state, const std::string& list, bool& result);
// Applies the word line's [FORMAT= to PostValue, for text cells.
void FormatTextValue(RunState& state);
// Applies a format to PostValue and sets the format flags.
void ApplyFormat(RunState& state, std::string& format);
void ReadConvText(RunState& state, const std::string& line, std::string& field);
void ReadSetText(RunState& state, const std::string& line, std::string& list);
void ReadTextField(RunState& state, const std::string& line, std::string& text);
void ExecuteSetList(RunState& state, const std::string& list);

// The text between a tag's opening (of `openLength` characters, at `open`) and the next "]"
// behind it; a tag with no "]" cannot be read and is a fault of the run.
std::string TagText(const std::string& line, size_t open, size_t openLength);

}  // namespace tvx
