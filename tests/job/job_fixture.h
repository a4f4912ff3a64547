#pragma once
// A run state on a small definition in a temporary directory, for the tests of the job driver
// and the emitters: the definition M.pst / M.wrd, the program and report open for output.
#include <string>
#include <vector>

#include "common/paths.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "state/run_state.h"
#include "test_support.h"

namespace tvx {

struct JobFixture {
    TempDir Dir;
    RunState State;

    static std::vector<std::string> DefaultWords() {
        return {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "X_AXIS [M10] [FORMAT=D3] [CONV=X]",
                "Y_AXIS [M11] [FORMAT=D3] [CONV=Y]",        "VALUE30 [P30] [FORMAT=D2] [CONV=V]",
                "VALUE36 [P36] [FORMAT=D0] [CONV=A]",       "VALUE37 [P37] [FORMAT=D0] [CONV=B]",
                "END_OF_WORDS [P0] [CONV=*]"};
    }

    explicit JobFixture(const std::vector<std::string>& pst, const std::vector<std::string>& wrd = DefaultWords()) {
        const std::string dir = Dir.Path + "/";
        WriteAllLines(dir + "M.pst", pst);
        WriteAllLines(dir + "M.wrd", wrd);
        WriteAllLines(dir + "M.lyt", {"TOOL_LAYOUT=TRUE", "******"});
        State.Job.WorkDir = dir;
        State.Job.CurrentDir = dir;
        State.Machine.MachineStem = dir + "M.";
        // A library tooling looks its folders up (and makes them) under these: never outside the
        // test's own directory.
        State.Machine.ShapesDir = dir + "Shapes/";
        State.Machine.CustomDir = dir + "Custom/";
        SetDefinitionFiles(State);
        OpenEngineOutput(State, State.Engine.ProgramOutput, State.Job.ProgramFile);
        OpenEngineOutput(State, State.Engine.ReportOutput, State.Job.ReportFile);
    }

    // The program text written so far (closes the files).
    std::string Program() {
        CloseAllFiles(State);
        return ReadAllBytes(State.Job.ProgramFile);
    }
    std::string Path(const std::string& name) const { return Dir.Path + "/" + name; }
};

}  // namespace tvx
