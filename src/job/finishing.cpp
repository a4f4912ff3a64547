#include "job/finishing.h"

#include "common/paths.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "job/run_state.h"

namespace tvx {

void FormatPass(RunState& state) {
    JobState& job = state.Job;
    EngineState& e = state.Engine;
    CloseInputChannel(state, ChannelWord);
    OpenDefinitionInput(state, ChannelWord, job.WordFile);
    const std::string temporary = job.WorkDir + "Progmain.tmp";
    CloseEngineOutput(state, e.ProgramOutput);
    ForgetDefinitionFile(state, temporary);
    CopyFileTo(job.ProgramFile, temporary);
    OpenEngineOutput(state, e.ProgramOutput, job.ProgramFile);
    job.PostFile = temporary;
    if (!FindReservedWord(state, "PROGRAM_FORMAT")) PostAbort(state, "'PROGRAM_FORMAT' not found in Post-Processor");
    e.RenumberMode = true;
    WriteReservedBlock(state);
    CloseAllFiles(state);
}

}  // namespace tvx
