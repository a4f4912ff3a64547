#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/installation.h"

using namespace tvx;

namespace {

// Machine 1 "M1" of the given kind, machine 2 "M2" a plain machine of kind 0.
void MachineInstallation(const Installation& in, const std::string& kind, bool full = true) {
    in.Config("1", "");
    in.MachineList({"1,\"Maker One\",\"M1\",\"Model A\",\"First\"", "2,\"Maker Two\",\"M2\",\"\",\"\"", "******"});
    in.Machine("M1", kind);
    in.Machine("M2", "0");
    if (full) in.FullInstall();
}

RunState Load(const Installation& in, int16_t number = 1, const std::string& project = "") {
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, number, project);
    return state;
}

std::string FaultOfLoad(const Installation& in, int16_t number = 1) {
    try {
        (void)Load(in, number);
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        return end.Text;
    }
    ADD_FAILURE() << "no fault";
    return {};
}

std::vector<std::string> MchWith(const std::string& kind, std::vector<std::pair<int, std::string>> lines) {
    auto mch = Installation::MchLines(kind, "2");
    for (const auto& [line, text] : lines) {
        if (line <= static_cast<int>(mch.size())) mch[static_cast<size_t>(line - 1)] = text;
        else mch.push_back(text);
    }
    return mch;
}

}  // namespace

TEST(LoadMachine, TheRowOfTheMachineGivesItsTextsAndPaths) {
    Installation in;
    MachineInstallation(in, "10");
    const RunState state = Load(in);
    EXPECT_EQ(state.Config.MachineNumber, 1);
    EXPECT_EQ(state.Machine.MachineMaker, "Maker One");
    EXPECT_EQ(state.Machine.MachineDirName, "M1");
    EXPECT_EQ(state.Machine.MachineModel, "Model A");
    EXPECT_EQ(state.Machine.MachineNote, "First");
    EXPECT_EQ(state.Machine.MachineStem, in.Data + "\\Data\\M1.");
    EXPECT_EQ(state.Machine.MaterialDir, in.Data + "\\Material\\M1\\");
    EXPECT_EQ(state.Machine.ShapesDir, in.Data + "\\Shapes\\M1\\");
    EXPECT_EQ(state.Machine.CustomDir, in.Data + "\\Shapes\\M1\\Custom\\");
    EXPECT_EQ(state.Machine.UndefinedDir, in.Data + "\\Shapes\\M1\\Undefined\\");
}

TEST(LoadMachine, AMachineListWithoutTheMachineLeavesItsTextsEmptyAndTheStemDataDot) {
    Installation in;
    MachineInstallation(in, "10", false);
    in.Machine("", "0");  // the files Data\.msr, Data\.mch, ...
    const RunState state = Load(in, 5);
    EXPECT_EQ(state.Config.MachineNumber, 5);
    EXPECT_EQ(state.Machine.MachineMaker, "");
    EXPECT_EQ(state.Machine.MachineDirName, "");
    EXPECT_EQ(state.Machine.MachineModel, "");
    EXPECT_EQ(state.Machine.MachineNote, "");
    EXPECT_EQ(state.Machine.MachineStem, in.Data + "\\Data\\.");
}

TEST(LoadMachine, RewritesTorvanexCfgWithTheMachineLoaded) {
    Installation in;
    MachineInstallation(in, "10");
    MakeDirectory(in.Projects + "\\M2\\Job2");
    (void)Load(in, 2, "Job2");
    EXPECT_EQ(in.ConfigBytes(), in.Program + "\\\r\n" + in.Data + "\\\r\n" + in.Projects + "\\\r\n2\r\nJob2\r\n******\r\n");
}

TEST(LoadMachine, ClearMachineEmptiesTheMachineBeforeALoad) {
    Installation in;
    MachineInstallation(in, "12");
    in.MachineFile("M1", "msr", {"Units: IMPERIAL"});
    RunState state = Load(in, 1);
    ASSERT_TRUE(state.Machine.ImperialUnits);
    ASSERT_EQ(state.Machine.TurretTools.size(), 2u);
    LoadMachine(state, 2, "");
    EXPECT_FALSE(state.Machine.ImperialUnits);
    EXPECT_FALSE(state.Machine.IsToolMachine);
    EXPECT_EQ(state.Machine.TurretTools.size(), 1u);
    EXPECT_EQ(state.Machine.MachineMaker, "Maker Two");
    ClearMachine(state);
    EXPECT_EQ(state.Machine.MachineMaker, "");
    EXPECT_EQ(state.Machine.MachineStem, "");
    EXPECT_EQ(state.Machine.ToolStations, std::vector<int16_t>{0});
    EXPECT_EQ(state.Machine.StationTable[1].Name, "");
}

TEST(MachineUnits, ImperialIsReadBehindTheColonInAnyCase) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "msr", {"Units:  imperial "});
    const RunState state = Load(in);
    EXPECT_TRUE(state.Machine.ImperialUnits);
    EXPECT_TRUE(state.Machine.ImperialOutput);
}

TEST(MachineUnits, AnythingElseIsMetric) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "msr", {"Units: IMPERIAL INCH"});
    const RunState state = Load(in);
    EXPECT_FALSE(state.Machine.ImperialUnits);
    EXPECT_FALSE(state.Machine.ImperialOutput);
}

TEST(MachineData, AnImperialMachineWithTenInALengthLineKeeps254) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "msr", {"IMPERIAL"});
    in.MachineFile("M1", "mch", MchWith("10", {{5, "X limit: 10.0"}, {6, "Y limit: 1"}, {7, "Clamp: 0.03937"},
                                               {21, "Pairs: 1"}, {24, "P1: 2"}, {25, "P1: 0.5"}}));
    const RunState state = Load(in);
    EXPECT_EQ(state.Machine.MachineLengths[5], 254.0f);
    EXPECT_EQ(state.Machine.MachineLengths[6], 25.4f);
    // 0.03937 * 25.4 = 0.999998, rounded to 3 decimals.
    EXPECT_EQ(state.Machine.MachineLengths[7], 1.0f);
    EXPECT_EQ(state.Machine.MachineLengths[23], 584.2f);
    EXPECT_EQ(state.Tables.PostParam[55], 254.0f);
    EXPECT_EQ(state.Tables.PostParam[56], 25.4f);
    EXPECT_EQ(state.Machine.LengthPairs[1].First, 50.8f);
    EXPECT_EQ(state.Machine.LengthPairs[1].Second, 12.7f);
}

TEST(MachineData, MetricLengthsAreKeptAsTheyStand) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "mch", MchWith("10", {{5, "X limit: 10.12345"}, {6, "1250"}}));
    const RunState state = Load(in);
    EXPECT_EQ(state.Machine.MachineLengths[5], 10.12345f);
    EXPECT_EQ(state.Machine.MachineLengths[6], 1250.0f);
    EXPECT_EQ(state.Tables.PostParam[55], 10.12345f);
    EXPECT_EQ(state.Tables.PostParam[56], 1250.0f);
    EXPECT_EQ(state.Machine.MachineLengths[22], 22.0f);
}

TEST(MachineData, KindIsRoundedAndStationCountAndTurnSenseAreTruncated) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "mch", MchWith("12.5", {{3, "Stations: 20.9"}, {4, "Sense: -1.7"}, {14, "Flag: yes"}}));
    const RunState state = Load(in);
    EXPECT_EQ(state.Machine.MachineKind, 12);  // halves go to the even neighbour
    EXPECT_EQ(state.Machine.StationCount, 20);
    EXPECT_EQ(state.Machine.TurnSense, -1);
    EXPECT_TRUE(state.Machine.MachineFlag14);
}

TEST(MachineData, LengthPairsFollowLine23) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "mch",
                   MchWith("10", {{21, "Pairs: 3"}, {24, "1"}, {25, "2"}, {26, "3"}, {27, "4"}, {28, "5"}, {29, "6"}}));
    const RunState state = Load(in);
    EXPECT_EQ(state.Machine.PairCount, 3);
    EXPECT_EQ(state.Machine.LengthPairs[1].First, 1.0f);
    EXPECT_EQ(state.Machine.LengthPairs[1].Second, 2.0f);
    EXPECT_EQ(state.Machine.LengthPairs[3].First, 5.0f);
    EXPECT_EQ(state.Machine.LengthPairs[3].Second, 6.0f);
}

TEST(MachineData, MoreThanThreeLengthPairsIsAnIndexFault) {
    Installation in;
    MachineInstallation(in, "10");
    std::vector<std::pair<int, std::string>> lines{{21, "Pairs: 4"}};
    for (int line = 24; line <= 31; ++line) lines.emplace_back(line, "1");
    in.MachineFile("M1", "mch", MchWith("10", lines));
    EXPECT_EQ(FaultOfLoad(in), "Index out of range: LengthPairs(4)");
}

TEST(MachineData, AShortMchFileIsAFaultNamingIt) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "mch", {"Machine", "Kind: 10", "Stations: 2"});
    EXPECT_EQ(FaultOfLoad(in), "Input past end of file: " + in.Data + "\\Data\\M1.mch");
}

TEST(MachineData, TheKindDecidesTheClassOfMachine) {
    struct Case {
        const char* Kind;
        bool Tool, Combo, Profile;
    };
    for (const Case c : {Case{"0", false, false, false}, Case{"5", false, false, true}, Case{"10", true, false, false},
                         Case{"12", true, false, true}, Case{"20", true, false, false}, Case{"39", true, false, true},
                         Case{"40", false, true, false}, Case{"45", false, true, false}, Case{"50", false, false, false},
                         Case{"51", false, false, false}}) {
        Installation in;
        MachineInstallation(in, c.Kind);
        const RunState state = Load(in);
        EXPECT_EQ(state.Machine.IsToolMachine, c.Tool) << c.Kind;
        EXPECT_EQ(state.Machine.IsComboMachine, c.Combo) << c.Kind;
        EXPECT_EQ(state.Machine.IsProfileMachine, c.Profile) << c.Kind;
    }
}

TEST(MachineParameters, ParametersOnIsClearedAgainAfterTheTurretFiles) {
    Installation in;
    MachineInstallation(in, "10");
    const RunState state = Load(in);
    EXPECT_FALSE(state.Machine.ParametersOn);
}

TEST(MachineControl, IntermotionTwoDigitsGiveTheHighest) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "cms", {"Control: INTERMOTION 4 2"});
    const RunState state = Load(in);
    EXPECT_EQ(state.Machine.ControlName, "INTERMOTION 4 2");
    EXPECT_EQ(state.Machine.IntermotionKind, 4);
}

TEST(MachineControl, IntermotionKindTakesOnlyTheDigitsOneToSix) {
    struct Case {
        const char* Text;
        int16_t Kind;
    };
    for (const Case c : {Case{"Control: intermotion 6 3 9", 6}, Case{"Control: INTERMOTION", 0},
                         Case{"Control: INTERMOTION 7 8", 0}, Case{"Control: FANUC 5", 0},
                         Case{"Control: INTERMOTION-1", 1}}) {
        Installation in;
        MachineInstallation(in, "10");
        in.MachineFile("M1", "cms", {c.Text});
        EXPECT_EQ(Load(in).Machine.IntermotionKind, c.Kind) << c.Text;
    }
}

TEST(MachineControl, ProducerInTheMakerDoesNotSetWestinghouseControl) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineList({"1,\"PRODUCER\",\"M1\",\"\",\"\"", "******"});
    in.MachineFile("M1", "cms", {"Control: WESTINGHOUSE"});
    EXPECT_FALSE(Load(in).Machine.WestinghouseControl);
}

TEST(MachineControl, WestinghouseControlNeedsBothNamesInTheControlFile) {
    struct Case {
        const char* Text;
        bool Set;
    };
    for (const Case c : {Case{"Control: Producer Westinghouse", true}, Case{"Control: PRODUCER", false},
                         Case{"Control: WESTINGHOUSE", false}}) {
        Installation in;
        MachineInstallation(in, "10");
        in.MachineFile("M1", "cms", {c.Text});
        EXPECT_EQ(Load(in).Machine.WestinghouseControl, c.Set) << c.Text;
    }
}

TEST(MachineControl, EachMakerFlagFollowsTheMakersName) {
    struct Case {
        const char* Maker;
        bool Vipros, Rain, Behrens, Trumf, Pullmax, Lvd;
    };
    for (const Case c : {Case{"Vipros 357", true, false, false, false, false, false},
                         Case{"Rain Machines", false, true, false, false, false, false},
                         Case{"IBH Behrens", false, false, true, false, false, false},
                         Case{"IBH", false, false, false, false, false, false},
                         Case{"Behrens", false, false, false, false, false, false},
                         Case{"Bosch TC Trumf", false, false, false, true, false, false},
                         Case{"TC Trumf", false, false, false, false, false, false},
                         Case{"Bosch Trumf", false, false, false, false, false, false},
                         Case{"Pullmatic", false, false, false, false, true, false},
                         Case{"pullmax", false, false, false, false, true, false},
                         Case{"LVD RS", false, false, false, false, false, true},
                         Case{"LVD", false, false, false, false, false, false},
                         Case{"Producer", false, false, false, false, false, false}}) {
        Installation in;
        MachineInstallation(in, "10");
        in.MachineList({std::string("1,\"") + c.Maker + "\",\"M1\",\"\",\"\"", "******"});
        const MachineState machine = Load(in).Machine;
        EXPECT_EQ(machine.ViprosMaker, c.Vipros) << c.Maker;
        EXPECT_EQ(machine.RainMaker, c.Rain) << c.Maker;
        EXPECT_EQ(machine.BehrensMaker, c.Behrens) << c.Maker;
        EXPECT_EQ(machine.TrumfMaker, c.Trumf) << c.Maker;
        EXPECT_EQ(machine.PullmaxMaker, c.Pullmax) << c.Maker;
        EXPECT_EQ(machine.LvdMaker, c.Lvd) << c.Maker;
        EXPECT_FALSE(machine.WestinghouseControl) << c.Maker;
        EXPECT_EQ(machine.MachineMaker, c.Maker);
    }
}

TEST(MachineStations, StationsFillTheTableToolStationsAndTheSpecialStation) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"Station one\",0,1.5,2.5,1", "2,\"A very long station name here\",0,0,0,2",
                                 "3,\"Empty\",0,0,0,0", "4,\"Tap\",5,0,0,1", "5,\"Form\",9,0,0,1",
                                 "6,\"Idle special\",3,0,0,0", "7,\"Big\",10,0,0,3", "******"});
    in.MachineFile("M1", "trt", {"******"});
    const MachineState machine = Load(in).Machine;
    EXPECT_EQ(machine.ToolStations, (std::vector<int16_t>{3, 1, 2, 7}));
    EXPECT_EQ(machine.SpecialStation, 5);
    EXPECT_EQ(machine.SpecialStationName, "Form");
    const StationCell& one = machine.StationTable[1];
    EXPECT_EQ(one.Number, 1);
    EXPECT_EQ(one.Name, "Station one");
    EXPECT_EQ(one.Kind, 0);
    EXPECT_EQ(one.OffsetX, 1.5f);
    EXPECT_EQ(one.OffsetY, 2.5f);
    EXPECT_EQ(one.ToolCount, 1);
    EXPECT_EQ(machine.StationTable[2].Name, "A very long statio");
    EXPECT_EQ(machine.StationTable[3].Number, 3);
    EXPECT_EQ(machine.StationTable[3].ToolCount, 0);
    EXPECT_EQ(machine.StationTable[6].Kind, 3);
}

TEST(MachineStations, AStationNumberOf65EndsTheList) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,1", "65,\"B\",0,0,0,1", "2,\"C\",0,0,0,1"});
    in.MachineFile("M1", "trt", {"******"});
    const MachineState machine = Load(in).Machine;
    EXPECT_EQ(machine.ToolStations, (std::vector<int16_t>{1, 1}));
    EXPECT_EQ(machine.StationTable[2].Number, 0);
    EXPECT_EQ(machine.StationTable[2].Name, "");
}

TEST(MachineStations, AStationNumberBelowOneEndsTheList) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,1", "0,\"B\",0,0,0,1", "2,\"C\",0,0,0,1"});
    in.MachineFile("M1", "trt", {"******"});
    EXPECT_EQ(Load(in).Machine.ToolStations, (std::vector<int16_t>{1, 1}));
}

TEST(MachineStations, AnEmptyFirstItemOrTheEndOfTheFileEndsTheList) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,1", "", "2,\"C\",0,0,0,1"});
    in.MachineFile("M1", "trt", {"******"});
    EXPECT_EQ(Load(in).Machine.ToolStations, (std::vector<int16_t>{1, 1}));
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,1", "2,\"C\",0,0,0,1"});
    EXPECT_EQ(Load(in).Machine.ToolStations, (std::vector<int16_t>{2, 1, 2}));
}

TEST(MachineStations, ANumberBeyondSixteenBitsIsAnOverflowFaultNamingTheFile) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,40000", "******"});
    EXPECT_EQ(FaultOfLoad(in), "Overflow: ToolCount of " + in.Data + "\\Data\\M1.stn 40000");
}

TEST(MachineStations, ImperialOffsetsAreConvertedToMillimetres) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "msr", {"IMPERIAL"});
    in.MachineFile("M1", "stn", {"1,\"A\",0,10,0.03937,1", "******"});
    const MachineState machine = Load(in).Machine;
    EXPECT_EQ(machine.StationTable[1].OffsetX, 254.0f);
    EXPECT_EQ(machine.StationTable[1].OffsetY, 1.0f);
}

TEST(MachineStations, StationsAreReadOnlyInAFullInstallation) {
    Installation in;
    MachineInstallation(in, "10", false);
    Installation::Write(in.Data + "\\Data\\M1.stn", {"1,\"A\",0,0,0,1", "******"});
    const MachineState machine = Load(in).Machine;
    EXPECT_EQ(machine.ToolStations, std::vector<int16_t>{0});
    EXPECT_EQ(machine.StationTable[1].Number, 0);
    std::filesystem::remove(NativePath(in.Data + "\\Data\\M1.stn"));
    EXPECT_NO_THROW((void)Load(in));
}

TEST(MachineTurret, ATurretFileWithNoToolsLeavesTheOneEmptyElement) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "trt", {"******"});
    const MachineState machine = Load(in).Machine;
    ASSERT_EQ(machine.TurretTools.size(), 1u);
    EXPECT_FALSE(machine.TurretTools[0].Loaded);
    EXPECT_EQ(machine.TurretTools[0].ToolNumber, 0);
    Installation::Write(in.Data + "\\Data\\M1.trt", {});
    EXPECT_EQ(Load(in).Machine.TurretTools.size(), 1u);
}

TEST(MachineTurret, ToolsTakeTheKindOfTheirStation) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "stn", {"1,\"A\",0,0,0,1", "2,\"Tap\",4,0,0,1", "******"});
    in.MachineFile("M1", "trt", {"\"12.9\",5,1,\"Label A\",\"11\"", "3,-2,2,Label B,22", "******", "4,1,1,\"x\",\"y\""});
    const MachineState machine = Load(in).Machine;
    ASSERT_EQ(machine.TurretTools.size(), 3u);
    EXPECT_FALSE(machine.TurretTools[0].Loaded);
    const TurretTool& first = machine.TurretTools[1];
    EXPECT_EQ(first.ToolNumber, 12);
    EXPECT_EQ(first.Size, 5);
    EXPECT_EQ(first.Station, 1);
    EXPECT_EQ(first.ToolText1, "Label A");
    EXPECT_EQ(first.ToolText2, "11");
    EXPECT_EQ(first.Kind, 0);
    EXPECT_TRUE(first.Loaded);
    const TurretTool& second = machine.TurretTools[2];
    EXPECT_EQ(second.ToolNumber, 3);
    EXPECT_EQ(second.Size, -2);
    EXPECT_EQ(second.Station, 2);
    EXPECT_EQ(second.ToolText1, "Label B");
    EXPECT_EQ(second.ToolText2, "22");
    EXPECT_EQ(second.Kind, 4);
    EXPECT_TRUE(second.Loaded);
}

TEST(MachineTurret, AStationBeyondTheTableIsAnIndexFault) {
    Installation in;
    MachineInstallation(in, "10");
    in.MachineFile("M1", "trt", {"1,5,65,\"A\",\"1\"", "******"});
    EXPECT_EQ(FaultOfLoad(in), "Index out of range: StationTable(65)");
}

TEST(MachineTurret, TheTurretIsReadOnToolAndComboMachinesOnly) {
    for (const char* kind : {"0", "5", "50"}) {
        Installation in;
        MachineInstallation(in, kind);
        std::filesystem::remove(NativePath(in.Data + "\\Data\\M1.trt"));
        EXPECT_EQ(Load(in).Machine.TurretTools.size(), 1u) << kind;
    }
    for (const char* kind : {"10", "45"}) {
        Installation in;
        MachineInstallation(in, kind);
        EXPECT_EQ(Load(in).Machine.TurretTools.size(), 2u) << kind;
    }
}

TEST(MachineFiles, AMissingMachineFileIsAFileFaultNamingIt) {
    for (const char* extension : {"msr", "mch", "prm", "cms", "stn", "trt"}) {
        Installation in;
        MachineInstallation(in, "10");
        const std::string path = in.Data + "\\Data\\M1." + extension;
        std::filesystem::remove(NativePath(path));
        EXPECT_EQ(FaultOfLoad(in), "File not found: " + path) << extension;
    }
}

TEST(MachineFiles, AMissingFileStopsTheLoadBeforeTheDirectoriesAndTheSave) {
    Installation in;
    MachineInstallation(in, "10");
    std::filesystem::remove(NativePath(in.Data + "\\Data\\M1.cms"));
    (void)FaultOfLoad(in);
    EXPECT_FALSE(DirectoryExists(in.Projects + "\\M1"));
    EXPECT_EQ(in.ConfigBytes(), in.Program + "\r\n" + in.Data + "\r\n" + in.Projects + "\r\n1\r\n\r\n******\r\n");
}

namespace {

std::set<std::string> DirectoriesUnder(const std::string& root) {
    std::set<std::string> names;
    const std::string base = NativePath(root);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(base))
        if (entry.is_directory()) names.insert(entry.path().string().substr(base.size() + 1));
    return names;
}

std::set<std::string> ShapeTree(const std::string& machine) {
    std::set<std::string> names{"Data/Shapes", "Data/Shapes/" + machine, "Data/Shapes/" + machine + "/Custom",
                                "Data/Shapes/" + machine + "/Undefined"};
    for (const char* shape : {"Circle", "Single-D", "Double-D", "Obround", "Rad-Rect", "Rectangle"}) {
        const std::string folder = "Data/Shapes/" + machine + "/" + shape;
        names.insert(folder);
        names.insert(folder + "/Inside");
        names.insert(folder + "/Outside");
    }
    return names;
}

}  // namespace

TEST(MachineDirectories, LoadMachineMakesTheTreeOfAToolMachineInAFullInstallation) {
    Installation in;
    MachineInstallation(in, "10");
    (void)Load(in, 1, "Job1");
    std::set<std::string> expected{"Start", "Program", "Projects", "Data", "Data/Data", "Data/Data/Default",
                                   "Data/Blocks", "Data/Material", "Data/Material/M1", "Data/Tools", "Data/Tools/M1",
                                   "Data/Turrets", "Data/Turrets/M1", "Projects/M1",
                                   "Projects/M1/Torvanex Directory", "Projects/M1/Job1"};
    expected.merge(ShapeTree("M1"));
    EXPECT_EQ(DirectoriesUnder(in.Root.Path), expected);
}

TEST(MachineDirectories, AProfileMachineWithoutFullInstallationGetsNoMaterialToolOrTurretFolders) {
    Installation in;
    MachineInstallation(in, "5", false);
    (void)Load(in, 1, "");
    std::set<std::string> expected{"Start",       "Program",     "Projects", "Data", "Data/Data", "Data/Data/Default",
                                   "Projects/M1", "Projects/M1/Torvanex Directory"};
    expected.merge(ShapeTree("M1"));
    EXPECT_EQ(DirectoriesUnder(in.Root.Path), expected);
}

TEST(MachineDirectories, TheMarkerIsMadeInAnExistingFolderAndExistingFoldersAreKept) {
    Installation in;
    MachineInstallation(in, "10");
    MakeDirectory(in.Projects + "\\M1\\Old job");
    Installation::Write(in.Projects + "\\M1\\Old job\\part.drw", {"x"});
    (void)Load(in, 1, "Old job");
    EXPECT_TRUE(DirectoryExists(in.Projects + "\\M1\\Torvanex Directory"));
    EXPECT_TRUE(FileExists(in.Projects + "\\M1\\Old job\\part.drw"));
}
