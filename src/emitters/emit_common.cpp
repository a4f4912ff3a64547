#include "emitters/emit_common.h"

#include "common/numeric.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

namespace tvx {

bool WriteBlock(RunState& state, const std::string& word) {
    const bool truth = FindReservedWord(state, word);
    if (truth) WriteReservedBlock(state);
    CloseInputChannel(state, ChannelDefinition);
    return truth;
}

void WriteRequiredBlock(RunState& state, const std::string& word) {
    if (!FindReservedWord(state, word)) PostAbort(state, "'" + word + "' not found in Post-Processor");
    WriteReservedBlock(state);
    CloseInputChannel(state, ChannelDefinition);
}

double ProgramLength(const RunState& state, double millimetres) {
    if (!state.Machine.ImperialOutput) return millimetres;
    return RoundTo(millimetres / 25.4, 0);
}

double DistanceFromLastPosition(RunState& state, double x, double y) {
    double distance = 0;
    double angle = 0;
    XYToPolar(x - state.Tables.PostMemo[15], y - state.Tables.PostMemo[16], distance, angle);
    return distance;
}

}  // namespace tvx
