#include "definition/reserved_word.h"

#include "common/numtext.h"
#include "definition/condition.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "job/run_state.h"

namespace tvx {

bool LineTruth(RunState& state, const std::string& line) {
    bool result = false;
    if (Holds(line, "=TRUE")) result = true;
    if (Holds(line, "=TRUE IF")) {
        std::string condition = line;
        result = EvaluateCondition(state, condition);
    }
    return result;
}

bool FindReservedWord(RunState& state, const std::string& word) {
    CloseInputChannel(state, ChannelDefinition);
    OpenDefinitionInput(state, ChannelDefinition, state.Job.PostFile);
    DefinitionText& text = HeldTextOf(state, ChannelDefinition);
    TextInput& in = state.Engine.DefinitionInput;
    const int32_t found = FirstLineHolding(text, word);
    in.Pos = found < 0 ? text.Data->size() : text.After(found);
    // The test is on the end of the file, not on the match: a match in the last line is
    // taken as not found, so that a reserved word without a body is never a block.
    if (AtEnd(in)) PostAbort(state, "Reserved Word - " + word + " not found in file " + state.Job.PostFile);
    return LineTruth(state, std::string(text.Line(found)));
}

}  // namespace tvx
