#pragma once
// The one state of a run: plain sub-structs passed by reference, so that a test can make a
// fresh one.
#include <array>
#include <string>
#include <vector>

#include "definition/engine_state.h"
#include "definition/tables.h"

namespace tvx {

// A tool of the turret file (.trt); element 0 is always empty.
struct TurretTool {
    int32_t ToolNumber = 0;
    int16_t Size = 0;
    int16_t Station = 0;
    std::string ToolText1;
    std::string ToolText2;
    int16_t Kind = 0;
    bool Loaded = false;
};

// The job's files and texts.
struct JobState {
    std::string WorkDir;      // with a trailing separator
    // The process's current directory, where files named without a directory lie
    // ("progsubs.sub"); empty for the process's own, else with a trailing separator.
    std::string CurrentDir;
    std::string JobPath, JobName, JobTitle;
    std::string DrawingFile, ProgramFile, ReportFile, PlatinoFile, SeqFile;
    std::string SubFile1, SubFile2, SubFile3;
    std::string PostFile, WordFile, LayoutFile;
    // Timers of each station (0 to the number of stations), five each.
    std::vector<std::array<float, 5>> ToolTimes;
};

// The machine and its tables.
struct MachineState {
    std::string MachineStem;  // ends with a dot
    std::vector<TurretTool> TurretTools{TurretTool{}};
};

// The generation loop's own registers.
struct LoopState {};

struct RunState {
    ValueTables Tables;
    EngineState Engine;
    JobState Job;
    MachineState Machine;
    LoopState Loop;
};

}  // namespace tvx
