#include "job/post_main.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "emitters/emit_common.h"
#include "emitters/stages.h"
#include "job/finishing.h"
#include "job/generation.h"
#include "job/job_start.h"
#include "job/preparation.h"
#include "state/run_state.h"
#include "ui/progress.h"

namespace tvx {

void PostMain(RunState& state) {
    StartJob(state);
    ReadProgramPath(state);
    SetJobFiles(state);
    PrepareDrawing(state);
    OpenEngineOutput(state, state.Engine.ProgramOutput, state.Job.ProgramFile);
    OpenEngineOutput(state, state.Engine.ReportOutput, state.Job.ReportFile);
    OpenJobDrawing(state);
    ShowProgress(state.Job.JobName);

    state.Loop.RecordIndex = 1;
    state.Engine.SubroutineOutput = false;
    state.Loop.CallSubroutinesDue = true;
    WriteLine(state.Engine.ProgramOutput, "PROGRAM_FORMAT=TRUE");
    LoadMaterialStage(state, "2");
    LoadMaterialStage(state, "1");
    LoadMaterialStage(state, "0");
    WriteBlock(state, "PROGRAM_START");

    PrepareGeneration(state);
    RunGenerationLoop(state);

    CloseDrawing(state.Loop.MainDrawing);
    CloseProgram(state);
    FormatPass(state);
    FamilyPasses(state);
    MakeJobCopies(state);
    HideProgress();
}

int RunJob(const std::string& directory) {
    auto state = std::make_unique<RunState>();
    state->Config.StartDir = directory;
    // Files named without a directory ("progsubs.sub") lie in the directory of the run.
    state->Job.CurrentDir = directory.empty() ? std::string() : WithSeparator(directory);
    if (const char* clock = std::getenv("TORVANEX_CLOCK")) state->Job.FixedClock = clock;
    // What the run learns of its folders is kept for the run: a stage file that is not there is
    // looked for once, not once a record.
    LookupCacheScope lookups;
    try {
        PostMain(*state);
        return ExitClean;
    } catch (const RunEnd& end) {
        HideProgress();
        // Whatever was written so far stays on disk as far as it was written.
        CloseAllFiles(*state);
        if (!end.Text.empty()) {
            std::fwrite(end.Text.data(), 1, end.Text.size(), stderr);
            std::fputc('\n', stderr);
        }
        return end.Status;
    }
}

}  // namespace tvx
