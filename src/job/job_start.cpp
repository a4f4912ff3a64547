#include "job/job_start.h"

#include "common/numtext.h"
#include "common/textfile.h"
#include "config/config.h"
#include "definition/definition_files.h"
#include "state/run_state.h"

namespace tvx {

void StartJob(RunState& state) {
    LoadRunMachine(state);
    CountSequenceRows(state);
}

void LoadRunMachine(RunState& state) {
    LoadStartupConfig(state);
    LoadMachine(state, state.Config.MachineNumber, state.Config.ProjectName);
    std::string material = "Default";
    LoadMaterial(state, material);
}

void CountSequenceRows(RunState& state) {
    state.Job.SeqRowCount = 0;
    TextInput seq;
    OpenTextInput(seq, state.Job.WorkDir + "Program.seq");
    if (!AtEnd(seq)) ReadLine(seq);
    while (!AtEnd(seq)) {
        const std::string first = Trim(ReadItem(seq));
        // A row begun on the last line of the file is not counted.
        if (first == "******" || first.empty() || AtEnd(seq)) break;
        for (int i = 0; i < 8; ++i) ReadItem(seq);
        if (state.Job.SeqRowCount == 32767) break;
        ++state.Job.SeqRowCount;
    }
}

void ReadProgramPath(RunState& state) {
    TextInput pth;
    OpenTextInput(pth, state.Job.WorkDir + "Program.pth");
    state.Job.JobPath = Trim(ReadItem(pth));
    state.Job.JobName = Trim(ReadItem(pth));
    state.Job.JobTitle = Trim(ReadItem(pth));
}

void SetJobFiles(RunState& state) { SetDefinitionFiles(state); }

}  // namespace tvx
