// The current machine: its row of the machine table, its paths and directories, and its files
// .msr (units), .mch (class and limits), .prm, .cms (control and maker flags), .stn (stations)
// and .trt (tools in the turret).
#include <string>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/config_files.h"

namespace tvx {
namespace {

// .msr: line 1 is the unit; "IMPERIAL" makes every length of the machine's files inches.
void LoadUnits(MachineState& machine) {
    TextInput in;
    OpenTextInput(in, machine.MachineStem + "msr");
    machine.ImperialUnits = Upper(ReadLabelValue(in)) == "IMPERIAL";
    machine.ImperialOutput = machine.ImperialUnits;
    CloseText(in);
}

// .mch: the machine's class, its stations, its turning sense and its lengths, one value a
// line; lengths are kept in millimetres.
void LoadMachineData(RunState& state) {
    auto& machine = state.Machine;
    TextInput in;
    OpenTextInput(in, machine.MachineStem + "mch");
    const bool imperial = machine.ImperialUnits;
    auto length = [&]() { return MachineLength(LeadingNumber(ReadLabelValue(in)), imperial); };

    (void)ReadLine(in);  // line 1: the machine's title, for people
    machine.MachineKind = TextToInteger16(ReadLabelValue(in), "MachineKind", in);
    machine.StationCount = TextTruncToInteger16(ReadLabelValue(in), "StationCount", in);
    machine.TurnSense = TextTruncToInteger16(ReadLabelValue(in), "TurnSense", in);
    for (int line = 5; line <= 13; ++line) machine.MachineLengths[static_cast<size_t>(line)] = length();
    state.Tables.PostParam[55] = machine.MachineLengths[5];
    state.Tables.PostParam[56] = machine.MachineLengths[6];
    machine.MachineFlag14 = Upper(ReadLabelValue(in)) == "YES";
    for (int line = 15; line <= 20; ++line) machine.MachineLengths[static_cast<size_t>(line)] = length();
    machine.PairCount = TextToInteger16(ReadLabelValue(in), "PairCount", in);
    for (int line = 22; line <= 23; ++line) machine.MachineLengths[static_cast<size_t>(line)] = length();
    for (int pair = 1; pair <= machine.PairCount; ++pair) {
        if (pair >= static_cast<int>(machine.LengthPairs.size())) IndexFault("LengthPairs", pair);
        auto& cell = machine.LengthPairs[static_cast<size_t>(pair)];
        cell.First = length();
        cell.Second = length();
    }
    CloseText(in);

    const int kind = machine.MachineKind;
    machine.IsToolMachine = kind >= 10 && kind < 40;
    machine.IsComboMachine = kind >= 40 && kind < 50;
    machine.IsProfileMachine = kind % 10 != 0 && kind < 40;
}

// .prm: line 1 compared with "YES".
void LoadParameters(MachineState& machine) {
    TextInput in;
    OpenTextInput(in, machine.MachineStem + "prm");
    machine.ParametersOn = Upper(ReadLabelValue(in)) == "YES";
    CloseText(in);
}

// .cms: the control's name, and with the maker's name from the machine table the flags that
// single out controls and makers whose programs need their own handling.
void LoadControl(MachineState& machine) {
    TextInput in;
    OpenTextInput(in, machine.MachineStem + "cms");
    machine.ControlName = Upper(ReadLabelValue(in));
    CloseText(in);

    const std::string& control = machine.ControlName;
    machine.IntermotionKind = 0;
    if (Holds(control, "INTERMOTION"))
        for (char digit = '1'; digit <= '6'; ++digit)
            if (control.find(digit) != std::string::npos) machine.IntermotionKind = static_cast<int16_t>(digit - '0');
    machine.WestinghouseControl = Holds(control, "PRODUCER") && Holds(control, "WESTINGHOUSE");

    const std::string maker = Upper(machine.MachineMaker);
    machine.ViprosMaker = Holds(maker, "VIPROS");
    machine.RainMaker = Holds(maker, "RAIN");
    machine.BehrensMaker = Holds(maker, "IBH") && Holds(maker, "BEHREN");
    machine.TrumfMaker = Holds(maker, "BOSCH") && Holds(maker, "TC") && Holds(maker, "TRUMF");
    machine.PullmaxMaker = Holds(maker, "PULLMATIC") || Holds(maker, "PULLMAX");
    machine.LvdMaker = Holds(maker, "RS") && Holds(maker, "LVD");
}

// .stn: the turret's stations, one a row: number, name, kind, offsets X and Y, tool count.
// The list ends at "******", an empty first item, the end of the file, or a station number
// outside 1 to 64.
void LoadStations(MachineState& machine) {
    for (size_t cell = 0; cell <= 60; ++cell) machine.StationTable[cell] = StationCell{};
    machine.ToolStations.assign(1, 0);
    machine.SpecialStation = 0;
    machine.SpecialStationName.clear();

    TextInput in;
    OpenTextInput(in, machine.MachineStem + "stn");
    while (!ListAtEnd(in)) {
        const std::string first = ReadItem(in);
        if (IsListEnd(first)) break;
        int32_t number = 0;
        if (!RoundsIntoInt32(LeadingNumber(first), number) || number < 1 || number > 64) break;
        StationCell cell;
        cell.Number = static_cast<int16_t>(number);
        cell.Name = ReadItem(in).substr(0, 18);
        cell.Kind = TextToInteger16(ReadItem(in), "Kind", in);
        cell.OffsetX = MachineLength(LeadingNumber(ReadItem(in)), machine.ImperialUnits);
        cell.OffsetY = MachineLength(LeadingNumber(ReadItem(in)), machine.ImperialUnits);
        cell.ToolCount = TextToInteger16(ReadItem(in), "ToolCount", in);
        machine.StationTable[static_cast<size_t>(number)] = cell;

        // An empty station holds no tool and is not counted.
        if (cell.ToolCount < 1) continue;
        if (cell.Kind >= 1 && cell.Kind <= 9) {
            machine.SpecialStation = cell.Number;
            machine.SpecialStationName = cell.Name;
        } else {
            if (machine.ToolStations.size() > 32767) IndexFault("ToolStations", static_cast<long long>(machine.ToolStations.size()));
            machine.ToolStations.push_back(cell.Number);
            machine.ToolStations[0] = static_cast<int16_t>(machine.ToolStations.size() - 1);
        }
    }
    CloseText(in);
}

// .trt: the tools in the turret, one a row: tool number, size, station, label, code text.
// Element 0 of the table stays empty.
void LoadTurret(MachineState& machine) {
    machine.TurretTools.assign(1, TurretTool{});
    TextInput in;
    OpenTextInput(in, machine.MachineStem + "trt");
    while (!ListAtEnd(in)) {
        const std::string first = ReadItem(in);
        if (IsListEnd(first)) break;
        TurretTool tool;
        tool.ToolNumber = TruncToInteger32(LeadingNumber(first), FieldOf("ToolNumber", in).c_str());
        tool.Size = TextToInteger16(ReadItem(in), "Size", in);
        tool.Station = TextToInteger16(ReadItem(in), "Station", in);
        tool.ToolText1 = ReadItem(in);
        tool.ToolText2 = ReadItem(in);
        if (tool.Station < 0 || tool.Station >= static_cast<int>(machine.StationTable.size()))
            IndexFault("StationTable", tool.Station);
        tool.Kind = machine.StationTable[static_cast<size_t>(tool.Station)].Kind;
        tool.Loaded = true;
        machine.TurretTools.push_back(tool);
    }
    CloseText(in);
}

// The machine's directories, made where they are missing: its project folder with the
// folder's marker and the current project, its material folder, its tool and turret
// libraries, and the folder tree of the shapes library.
void MakeMachineDirectories(const RunState& state, const std::string& project) {
    const auto& config = state.Config;
    const auto& machine = state.Machine;
    const std::string& dirName = machine.MachineDirName;
    const std::string folder = config.ProjectDir + dirName;
    MakeDirectory(folder);
    MakeDirectory(folder + "\\Torvanex Directory");
    const std::string name = Trim(project);
    if (!Holds(name, ":")) MakeDirectory(folder + "\\" + name);

    if (config.FullInstall) MakeDirectory(config.DataDir + "Material\\" + dirName);

    if (machine.IsToolMachine) {
        MakeDirectory(config.DataDir + "Tools");
        MakeDirectory(config.DataDir + "Tools\\" + dirName);
        MakeDirectory(config.DataDir + "Turrets");
        MakeDirectory(config.DataDir + "Turrets\\" + dirName);
    }

    MakeDirectory(config.DataDir + "Shapes");
    MakeDirectory(machine.ShapesDir);
    for (const char* shape : {"Circle", "Single-D", "Double-D", "Obround", "Rad-Rect", "Rectangle"}) {
        MakeDirectory(machine.ShapesDir + shape);
        MakeDirectory(machine.ShapesDir + shape + "\\Inside");
        MakeDirectory(machine.ShapesDir + shape + "\\Outside");
    }
    MakeDirectory(machine.CustomDir);
    MakeDirectory(machine.UndefinedDir);
}

}  // namespace

void ClearMachine(RunState& state) { state.Machine = MachineState{}; }

void LoadMachine(RunState& state, int16_t number, const std::string& project) {
    ClearMachine(state);
    auto& config = state.Config;
    auto& machine = state.Machine;
    config.MachineNumber = number;

    // The machine's row; a number that the table does not hold leaves the texts empty.
    const int32_t count = config.MachineList.empty() ? 0 : config.MachineList[0].Number;
    for (int32_t row = 1; row <= count && row < static_cast<int32_t>(config.MachineList.size()); ++row) {
        const MachineRow& entry = config.MachineList[static_cast<size_t>(row)];
        if (entry.Number != number) continue;
        machine.MachineMaker = entry.MachineMaker;
        machine.MachineDirName = entry.MachineDirName;
        machine.MachineModel = entry.MachineModel;
        machine.MachineNote = entry.MachineNote;
        break;
    }

    const std::string& dirName = machine.MachineDirName;
    machine.MachineStem = config.DataDir + "Data\\" + dirName + ".";
    machine.MaterialDir = config.DataDir + "Material\\" + dirName + "\\";
    machine.ShapesDir = config.DataDir + "Shapes\\" + dirName + "\\";
    machine.CustomDir = machine.ShapesDir + "Custom\\";
    machine.UndefinedDir = machine.ShapesDir + "Undefined\\";

    LoadUnits(machine);
    LoadMachineData(state);
    LoadParameters(machine);
    LoadControl(machine);
    if (config.FullInstall) LoadStations(machine);
    if (machine.IsToolMachine || machine.IsComboMachine) LoadTurret(machine);
    machine.ParametersOn = false;

    MakeMachineDirectories(state, project);
    SaveStartupConfig(state, project);
}

}  // namespace tvx
