#pragma once
// The one state of a run: plain sub-structs passed by reference, so that a test can make a
// fresh one.
#include <array>
#include <string>
#include <vector>

#include "definition/engine_state.h"
#include "definition/tables.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

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

// ---- Configuration: start-up file, machine table, directories -------------------------------

// TurretTool as the turret file (.trt) fills it: Station is the station's number (0 to 64),
// ToolText1 the station's label (PostText[26]), ToolText2 its code text (PostText[25]), Kind
// the Kind of that station in the station table, Loaded true for each record read.

// A row of Machine.lst. Element 0 of the table holds the count in Number.
struct MachineRow {
    int32_t Number = 0;
    std::string MachineMaker;
    std::string MachineDirName;
    std::string MachineModel;
    std::string MachineNote;
};

// A row of Reverse.lst. Element 0 of the table holds the count in Number.
struct ReverseRow {
    int32_t Number = 0;
    std::string FirstText;
    std::string SecondText;
};

struct ConfigState {
    // Directory that holds Torvanex.cfg: empty for the process's current directory.
    std::string StartDir;
    // Lines 1 to 3 of Torvanex.cfg, each with a trailing separator. WorkDir (in JobState) is a
    // copy of ProgramDir.
    std::string ProgramDir, DataDir, ProjectDir;
    std::string RevSubsDir;  // DataDir + "RevSubs\"
    std::string DriveRoot;   // first three characters of WorkDir, trimmed
    int16_t MachineNumber = 1;
    std::string ProjectName;
    std::string CurrentProjectPath;  // ProjectPath of the machine's folder and ProjectName
    std::vector<MachineRow> MachineList{MachineRow{}};
    bool FullInstall = false;
    bool ReverseInstall = false;
    std::vector<ReverseRow> ReverseList{ReverseRow{}};
};

// ---- Machine files: stations, lengths -----------------------------------------------------

// A cell of the station table (.stn), cells 0 to 64, indexed by the station number.
struct StationCell {
    int16_t Number = 0;
    std::string Name;        // cut to 18 characters
    int16_t Kind = 0;        // 1 to 9: a special station
    float OffsetX = 0;       // millimetres
    float OffsetY = 0;
    int16_t ToolCount = 0;   // below 1: the station is empty
};

// A pair of lengths of the .mch file (lines 24 onward).
struct LengthPair {
    float First = 0;
    float Second = 0;
};

// ---- Material: the current material's record (.mtl), fields by their numbers -------------

struct MaterialRecord {
    std::string Name;           // field 0: the material's name, "Default" for the fallback
    int16_t Field1 = 0;
    float Field2 = 0, Field3 = 0, Field4 = 0;
    std::string Field5;
    std::string Field11;        // the tool library's name
    float Field12 = 0;          // 1000 on a combo machine
    float Field13 = 0;
    float Field21 = 0, Field22 = 0;
    int16_t Field23 = 0;
    ToolSpec Tool;              // field 31, a tool string; empty unless a punch with real sizes
};

// A record of the tool defaults file (.dft), kept as its 49 bytes.
using ToolDefaultRecord = std::array<unsigned char, 49>;

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

    // ---- The job's tool table and drawing header ----
    int16_t SeqRowCount = 0;   // tool rows of Program.seq
    int32_t RecordTotal = 0;   // records of the job's drawing
    // The record count of the drawing that a pass is rewriting, or has just rewritten; the
    // cruciform pass sets it while it walks and leaves it 0.
    int32_t WorkingCount = 0;
    std::string MaterialName;  // EntityText of record 1, trimmed
    std::string MaterialText;  // the material's field 11
    float SheetX = 0, SheetY = 0, SheetZ = 0;
    std::array<float, 5> SheetValues{};  // 1 to 4
    float SheetExtra = 0;
    // The date and time texts "dd-mm-yyyy hh:mm" to use instead of the clock; empty for the
    // clock. Lets a job be run twice to the same bytes.
    std::string FixedClock;
};

// The machine and its tables.
struct MachineState {
    std::string MachineStem;  // ends with a dot
    std::vector<TurretTool> TurretTools{TurretTool{}};

    // ---- Machine configuration (row of Machine.lst, per-machine paths, machine files) ----
    std::string MachineMaker, MachineDirName, MachineModel, MachineNote;
    std::string MaterialDir, ShapesDir, CustomDir, UndefinedDir;
    // .msr
    bool ImperialUnits = false;
    bool ImperialOutput = false;  // the emitters' copy of ImperialUnits
    // .mch
    int16_t MachineKind = 0;
    bool IsToolMachine = false;     // kind 10 up to below 40
    bool IsComboMachine = false;    // kind 40 up to below 50
    bool IsProfileMachine = false;  // kind not a multiple of 10 and below 40
    int16_t StationCount = 0;
    int16_t TurnSense = 0;
    // Lengths of the .mch file by line number (lines 5 to 13, 15 to 20, 22, 23), millimetres.
    std::array<float, 24> MachineLengths{};
    bool MachineFlag14 = false;     // line 14 is "YES"
    int16_t PairCount = 0;
    std::array<LengthPair, 4> LengthPairs{};  // 1 to 3
    // .prm
    bool ParametersOn = false;
    // .cms and the maker's name
    std::string ControlName;        // line 1 of .cms, upper case
    int16_t IntermotionKind = 0;
    bool WestinghouseControl = false;
    bool ViprosMaker = false;
    bool RainMaker = false;
    bool BehrensMaker = false;
    bool TrumfMaker = false;
    bool PullmaxMaker = false;
    bool LvdMaker = false;
    // .stn
    std::array<StationCell, 65> StationTable{};
    std::vector<int16_t> ToolStations{0};  // element 0 holds the count
    int16_t SpecialStation = 0;
    std::string SpecialStationName;

    // ---- Material and tool library ----
    MaterialRecord Material;        // the current material
    float MaterialField13 = 0;      // field 13 of the current material, for the job
    std::string ToolLibrary;        // name of the tool library
    std::string ToolsStem;          // DataDir + "Tools\" + MachineDirName + "\" + library + "."
    std::string TurretsStem;        // DataDir + "Turrets\" + MachineDirName + "\" + library + "."
    std::array<ToolDefaultRecord, 5> ToolDefaults{};  // 1 to 4
};

// The settings stage last applied (stage files MtrlStg.n, PrflStg.n, PnchStg.n).
struct StageState {
    int32_t CurrentStage = 0;         // -1: none, the next stage is loaded whatever it is
    std::string StageLetter;          // letter of the stage in question
    std::string PreviousStageLetter;  // letter of the stage last applied
    // The punch stage last found without a file, in which work directory, and the lookup
    // generation (LookupGeneration) it was found at, 0 for none: while the generation is the
    // same, no file has been made or deleted since, and the file is not looked for again.
    int32_t MissingStage = 0;
    std::string MissingIn;
    uint64_t MissingAt = 0;
};

// The cutting head's path from block to block.
struct CutPathState {
    double LastX = 0, LastY = 0;  // end of the last move or profiled block
    float CutAngle = 0;           // direction of cut at the end of the last block; -9999 after a gap
    float CutTurn = 0;            // change of direction at the start of the block in work
};

// The generation loop's own registers.
struct LoopState {
    int32_t RecordIndex = 1;   // the main drawing's current record
    DrawRecord Record;         // the record in work
    DrawRecord PartRecord;     // look-ahead of a part drawing
    int32_t PartIndex = 0;
    int32_t PartRecordCount = 0;
    bool PartMatch = false;
    bool ShapeActive = false;
    int32_t ShapeIndex = 0;
    bool ToolingActive = false;
    int32_t ToolingIndex = 0;
    bool CallSubroutinesDue = true;
    std::vector<std::string> PartNames{std::string()};  // 1-based
    std::vector<int16_t> PartNumbers{0};                // 1-based
    bool PartKnown = false;
    int16_t NextPartNumber = 0;
    ToolSpec CurrentTool;
    bool ToolRotates = false;
    // The record streams, by their fixed numbers.
    DrawingFile MainDrawing;     // 8: the job's drawing
    DrawingFile ShapeDrawing;    // 11: Shape.drw
    DrawingFile PartDrawing;     // 12: the part drawing
    DrawingFile ToolingDrawing;  // 21: AssTool.drw
    StageState Stages;
    CutPathState CutPath;
};

struct RunState {
    ValueTables Tables;
    EngineState Engine;
    JobState Job;
    MachineState Machine;
    LoopState Loop;
    // ---- Configuration ----
    ConfigState Config;
};

}  // namespace tvx
