#include <gtest/gtest.h>

#include <filesystem>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/installation.h"

using namespace tvx;

namespace {

// Machine 1 "M1" of the given kind and station count, loaded.
RunState LoadedMachine(const Installation& in, const std::string& kind, bool full = true,
                       const std::string& stations = "2") {
    in.Config("1", "");
    in.MachineList({"1,\"Maker\",\"M1\",\"\",\"\"", "******"});
    in.Machine("M1", kind, stations);
    if (full) in.FullInstall();
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, 1, "");
    return state;
}

const std::vector<std::string> FirstSix{"Material: Steel", "Code: 7", "Thickness: 1.5", "Density: 7.85",
                                        "Strength: 400", "Text:  Mild steel "};

std::vector<std::string> With(std::vector<std::string> lines, const std::vector<std::string>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::string Text(const RunState& state, const std::string& name, int field) {
    return MaterialValueText(ReadMaterialField(state, name, field));
}

double Number(const RunState& state, const std::string& name, int field) {
    return MaterialNumber(ReadMaterialField(state, name, field));
}

MaterialValue::Kinds Kind(const RunState& state, const std::string& name, int field) {
    return ReadMaterialField(state, name, field).Kind;
}

std::string FaultText(const std::function<void()>& action) {
    try {
        action();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        return end.Text;
    }
    ADD_FAILURE() << "no fault";
    return {};
}

}  // namespace

TEST(ReadMaterialField, AMachineOfNeitherClassReadsOnlyTheFirstSixLines) {
    Installation in;
    const RunState state = LoadedMachine(in, "0");
    in.Material("M1", "Steel", FirstSix);
    EXPECT_EQ(Text(state, "Steel", 0), "Steel");
    EXPECT_EQ(Number(state, "Steel", 1), 7);
    EXPECT_EQ(Number(state, "Steel", 2), 1.5);
    EXPECT_EQ(Number(state, "Steel", 3), static_cast<double>(7.85f));
    EXPECT_EQ(Number(state, "Steel", 4), 400);
    EXPECT_EQ(Text(state, "Steel", 5), "Mild steel");
    for (int field : {11, 12, 13, 21, 22, 23, 31}) {
        EXPECT_EQ(Kind(state, "Steel", field), MaterialValue::Empty) << field;
        EXPECT_EQ(Text(state, "Steel", field), "") << field;
        EXPECT_EQ(Number(state, "Steel", field), 0) << field;
    }
}

TEST(ReadMaterialField, AProfileMachineReadsFields21To23) {
    Installation in;
    const RunState state = LoadedMachine(in, "5");
    in.Material("M1", "Steel", With(FirstSix, {"Kerf: 0.25", "Power: 2000", "Gas: 3"}));
    EXPECT_EQ(Number(state, "Steel", 21), 0.25);
    EXPECT_EQ(Number(state, "Steel", 22), 2000);
    EXPECT_EQ(Number(state, "Steel", 23), 3);
    for (int field : {11, 12, 13, 31}) EXPECT_EQ(Kind(state, "Steel", field), MaterialValue::Empty) << field;
}

TEST(ReadMaterialField, AToolMachineReadsFields11To13) {
    Installation in;
    const RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Steel", With(FirstSix, {"Library:  Punch Lib ", "Speed: 250", "Thick: 2.5"}));
    EXPECT_EQ(Text(state, "Steel", 11), "Punch Lib");
    EXPECT_EQ(Number(state, "Steel", 12), 250);
    EXPECT_EQ(Number(state, "Steel", 13), 2.5);
    for (int field : {21, 22, 23, 31}) EXPECT_EQ(Kind(state, "Steel", field), MaterialValue::Empty) << field;
}

TEST(ReadMaterialField, AToolMachineWithAProfileHeadReadsEveryField) {
    Installation in;
    const RunState state = LoadedMachine(in, "12");
    in.Material("M1", "Steel", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5", "Kerf: 0.25",
                                               "Power: 2000", "Gas: 3", "Tool: E, Rect, 10, 5, 0, 0, 3, 12, 0, 90, 2"}));
    EXPECT_EQ(Text(state, "Steel", 11), "Lib");
    EXPECT_EQ(Number(state, "Steel", 12), 250);
    EXPECT_EQ(Number(state, "Steel", 13), 2.5);
    EXPECT_EQ(Number(state, "Steel", 21), 0.25);
    EXPECT_EQ(Number(state, "Steel", 22), 2000);
    EXPECT_EQ(Number(state, "Steel", 23), 3);
    EXPECT_EQ(Text(state, "Steel", 31), "E, Rect, 10, 5, 0, 0, 3, 12, 0, 90, 2");
}

TEST(ReadMaterialField, AComboMachineHasTheFixed1000AndZerosForThePathFields) {
    Installation in;
    const RunState state = LoadedMachine(in, "45");
    in.Material("M1", "Steel", With(FirstSix, {"Library: Lib", "Thick: 2.5", "Gas: 3"}));
    EXPECT_EQ(Text(state, "Steel", 11), "Lib");
    EXPECT_EQ(Text(state, "Steel", 12), "1000");
    EXPECT_EQ(Number(state, "Steel", 13), 2.5);
    EXPECT_EQ(Text(state, "Steel", 21), "0");
    EXPECT_EQ(Text(state, "Steel", 22), "0");
    EXPECT_EQ(Number(state, "Steel", 23), 3);
    EXPECT_EQ(Kind(state, "Steel", 31), MaterialValue::Empty);
}

TEST(ReadMaterialField, AFieldTheTableDoesNotHoldIsEmpty) {
    Installation in;
    const RunState state = LoadedMachine(in, "12");
    in.Material("M1", "Steel", With(FirstSix, {"a", "1", "2", "3", "4", "5", "t"}));
    for (int field : {-1, 6, 10, 14, 30, 32, 99}) EXPECT_EQ(Kind(state, "Steel", field), MaterialValue::Empty) << field;
}

TEST(ReadMaterialField, AMissingMaterialIsReadFromDefault) {
    Installation in;
    const RunState state = LoadedMachine(in, "0");
    in.Material("M1", "Default", With({"Material: Default", "Code: 9"}, {"1", "2", "3", "Default text"}));
    EXPECT_EQ(Number(state, " Copper ", 1), 9);
    EXPECT_EQ(Text(state, "Copper", 0), "Default");
    EXPECT_EQ(Text(state, "Copper", 5), "Default text");
}

TEST(ReadMaterialField, WithoutEvenDefaultEveryFieldIsEmpty) {
    Installation in;
    const RunState state = LoadedMachine(in, "10");
    for (int field : {0, 1, 5, 12}) EXPECT_EQ(Kind(state, "Copper", field), MaterialValue::Empty) << field;
}

TEST(ReadMaterialField, AShortMaterialFileIsAFaultNamingIt) {
    Installation in;
    const RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Steel", FirstSix);
    EXPECT_EQ(FaultText([&] { (void)ReadMaterialField(state, "Steel", 1); }),
              "Input past end of file: " + in.Data + "\\Material\\M1\\Steel.mtl");
}

TEST(LoadMaterial, AMaterialWhoseFileIsMissingLoadsDefaultAndReadsDefault) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5"}));
    std::string name = "Copper";
    LoadMaterial(state, name);
    EXPECT_EQ(name, "Default");
    EXPECT_EQ(state.Machine.Material.Name, "Default");
    EXPECT_EQ(state.Machine.Material.Field1, 7);
    EXPECT_EQ(state.Machine.Material.Field13, 2.5f);
}

TEST(LoadMaterial, TheNameIsTrimmedAndAnEmptyNameIsDefault) {
    Installation in;
    RunState state = LoadedMachine(in, "0");
    in.Material("M1", "Steel", FirstSix);
    in.Material("M1", "Default", FirstSix);
    std::string name = "  Steel  ";
    LoadMaterial(state, name);
    EXPECT_EQ(name, "Steel");
    EXPECT_EQ(state.Machine.Material.Name, "Steel");
    name = "   ";
    LoadMaterial(state, name);
    EXPECT_EQ(name, "Default");
}

TEST(LoadMaterial, TheRecordTheToolAndTheLibraryNameOfAToolMachineWithAProfileHead) {
    Installation in;
    RunState state = LoadedMachine(in, "12");
    in.Material("M1", "Steel", With(FirstSix, {"Library:  Lib ", "Speed: 250", "Thick: 2.5", "Kerf: 0.25",
                                               "Power: 2000", "Gas: 3", "Tool: E, Rect, 10, 5, 0, 0, 3, 12, 0, 90, 2"}));
    std::string name = "Steel";
    LoadMaterial(state, name);
    const MaterialRecord& record = state.Machine.Material;
    EXPECT_EQ(record.Name, "Steel");
    EXPECT_EQ(record.Field1, 7);
    EXPECT_EQ(record.Field2, 1.5f);
    EXPECT_EQ(record.Field3, 7.85f);
    EXPECT_EQ(record.Field4, 400.0f);
    EXPECT_EQ(record.Field5, "Mild steel");
    EXPECT_EQ(record.Field11, "Lib");
    EXPECT_EQ(record.Field12, 250.0f);
    EXPECT_EQ(record.Field13, 2.5f);
    EXPECT_EQ(record.Field21, 0.25f);
    EXPECT_EQ(record.Field22, 2000.0f);
    EXPECT_EQ(record.Field23, 3);
    EXPECT_EQ(record.Tool.Present, -1);
    EXPECT_EQ(record.Tool.Letter.Trimmed(), "E");
    EXPECT_EQ(record.Tool.ToolName.Trimmed(), "Rect");
    EXPECT_EQ(record.Tool.Size[1], 10.0f);
    EXPECT_EQ(record.Tool.Size[2], 5.0f);
    EXPECT_EQ(record.Tool.ToolNumber, 3);
    EXPECT_EQ(record.Tool.WorkType, 12);
    EXPECT_EQ(record.Tool.ToolAngle, 90.0f);
    EXPECT_EQ(record.Tool.StageIndex, 2);
    EXPECT_EQ(state.Machine.MaterialField13, 2.5f);
    EXPECT_EQ(state.Machine.ToolLibrary, "Full Library");  // "Lib.lkp" is not there
}

TEST(LoadMaterial, TheMaterialsToolIsClearedUnlessItIsAPunchWithRealSizes) {
    struct Case {
        const char* Tool;
        bool Kept;
    };
    for (const Case c : {Case{"E, R, 10, 5, 0, 0, 3, 12, 0, 0, 1", true}, Case{"E, R, 0.05, 0.05, 0, 0, 3, 10, 0, 0, 1", true},
                         Case{"P, R, 10, 5, 0, 0, 3, 12, 0, 0, 1", false}, Case{"E, R, 10, 5, 0, 0, 3, 9, 0, 0, 1", false},
                         Case{"E, R, 0.04, 5, 0, 0, 3, 12, 0, 0, 1", false}, Case{"E, R, 10, 0, 0, 0, 3, 12, 0, 0, 1", false},
                         Case{"Z, R, 10, 5, 0, 0, 3, 12, 0, 0, 1", false}, Case{"E, R, 10, 5", false}, Case{"", false}}) {
        Installation in;
        RunState state = LoadedMachine(in, "12");
        in.Material("M1", "Steel", With(FirstSix, {"Lib", "1", "2", "3", "4", "5", std::string("Tool: ") + c.Tool}));
        std::string name = "Steel";
        LoadMaterial(state, name);
        const ToolSpec& tool = state.Machine.Material.Tool;
        EXPECT_EQ(tool.Present != 0, c.Kept) << c.Tool;
        if (!c.Kept) {
            EXPECT_EQ(tool.Letter.Text(), " ") << c.Tool;
            EXPECT_EQ(tool.WorkType, 0) << c.Tool;
            EXPECT_EQ(tool.Size[1], 0.0f) << c.Tool;
        }
    }
}

TEST(LoadMaterial, CreatesTheMissingLibraryFilesWithTheirFirstContent) {
    Installation in;
    RunState state = LoadedMachine(in, "10", true, "3");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5"}));
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolLibrary, "Full Library");
    EXPECT_EQ(state.Machine.ToolsStem, in.Data + "\\Tools\\M1\\Full Library.");
    EXPECT_EQ(state.Machine.TurretsStem, in.Data + "\\Turrets\\M1\\Full Library.");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Tools\\M1\\Full Library.lkp"), "******\r\n");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Turrets\\M1\\Full Library.lkp"), "******\r\n");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Turrets\\M1\\Full Library.0"),
              "1, , , 0, 0, 0, 0, , 0\r\n2, , , 0, 0, 0, 0, , 0\r\n3, , , 0, 0, 0, 0, , 0\r\n******\r\n");
}

TEST(LoadMaterial, ATurretOfNoStationsGetsATurretFileOfTheEndMarkAlone) {
    Installation in;
    RunState state = LoadedMachine(in, "10", true, "0");
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Turrets\\M1\\Full Library.0"), "******\r\n");
}

TEST(LoadMaterial, ExistingLibraryFilesAreLeftAlone) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5"}));
    Installation::Write(in.Data + "\\Tools\\M1\\Lib.lkp", {"1,\"Tool\"", "******"});
    Installation::Write(in.Data + "\\Turrets\\M1\\Lib.0", {"5, , , 0, 0, 0, 0, , 0", "******"});
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolLibrary, "Lib");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Tools\\M1\\Lib.lkp"), "1,\"Tool\"\r\n******\r\n");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Turrets\\M1\\Lib.0"), "5, , , 0, 0, 0, 0, , 0\r\n******\r\n");
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Turrets\\M1\\Lib.lkp"), "******\r\n");
}

TEST(LoadMaterial, AMissingLibraryFallsBackToFullLibrary) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5"}));
    Installation::Write(in.Data + "\\Tools\\M1\\Full Library.lkp", {"******"});
    Installation::Write(in.Data + "\\Tools\\M1\\Alpha.lkp", {"******"});
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolLibrary, "Full Library");
}

TEST(LoadMaterial, WithoutFullLibraryTheFirstLookupFileOfTheMachinesToolsIsTaken) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Speed: 250", "Thick: 2.5"}));
    Installation::Write(in.Data + "\\Tools\\M1\\Beta.lkp", {"******"});
    Installation::Write(in.Data + "\\Tools\\M1\\alpha.lkp", {"******"});
    Installation::Write(in.Data + "\\Tools\\M1\\Aardvark.txt", {"******"});
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolLibrary, "alpha");
    EXPECT_EQ(state.Machine.ToolsStem, in.Data + "\\Tools\\M1\\alpha.");
    EXPECT_TRUE(FileExists(in.Data + "\\Turrets\\M1\\alpha.0"));
}

TEST(LoadMaterial, AMachineThatIsNoToolMachineOnlyGetsItsStems) {
    Installation in;
    RunState state = LoadedMachine(in, "45");
    in.Material("M1", "Default", With(FirstSix, {"Library: Lib", "Thick: 2.5", "Gas: 3"}));
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolLibrary, "Lib");
    EXPECT_EQ(state.Machine.ToolsStem, in.Data + "\\Tools\\M1\\Lib.");
    EXPECT_EQ(state.Machine.TurretsStem, in.Data + "\\Turrets\\M1\\Lib.");
    EXPECT_EQ(state.Machine.Material.Field12, 1000.0f);
    EXPECT_FALSE(DirectoryExists(in.Data + "\\Tools"));
    EXPECT_FALSE(DirectoryExists(in.Data + "\\Turrets"));
}

TEST(LoadMaterial, OnlyAFullInstallationLoadsAMaterial) {
    Installation in;
    RunState state = LoadedMachine(in, "10", false);
    std::string name = " Copper ";
    LoadMaterial(state, name);
    EXPECT_EQ(name, " Copper ");
    EXPECT_EQ(state.Machine.Material.Name, "");
    EXPECT_EQ(state.Machine.ToolsStem, "");
}

TEST(LoadMaterial, WithoutEvenDefaultTheRecordIsEmptyAndTheLibraryIsFullLibrary) {
    Installation in;
    RunState state = LoadedMachine(in, "12");
    std::string name = "Copper";
    LoadMaterial(state, name);
    EXPECT_EQ(name, "Default");
    EXPECT_EQ(state.Machine.Material.Field1, 0);
    EXPECT_EQ(state.Machine.Material.Field5, "");
    EXPECT_EQ(state.Machine.Material.Tool.Present, 0);
    EXPECT_EQ(state.Machine.ToolLibrary, "Full Library");
}

TEST(LoadMaterial, ToolDefaultsAreFourRecordsOf49BytesKeptAsTheyStand) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    MakeDirectory(in.Data + "\\Tools\\M1");
    std::string bytes;
    for (int i = 0; i < 4 * 49; ++i) bytes += static_cast<char>(i * 7 % 256);
    WriteFileAtomically(in.Data + "\\Tools\\M1\\Full Library.dft", bytes);
    std::string name = "Default";
    LoadMaterial(state, name);
    for (size_t record = 1; record <= 4; ++record)
        for (size_t i = 0; i < 49; ++i)
            EXPECT_EQ(state.Machine.ToolDefaults[record][i], static_cast<unsigned char>(((record - 1) * 49 + i) * 7 % 256));
}

TEST(LoadMaterial, ToolDefaultsBeyondTheEndOfTheFileAreZeros) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    WriteFileAtomically(in.Data + "\\Tools\\M1\\Full Library.dft", std::string(60, 'x'));
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolDefaults[1][48], 'x');
    EXPECT_EQ(state.Machine.ToolDefaults[2][10], 'x');
    EXPECT_EQ(state.Machine.ToolDefaults[2][11], 0);
    EXPECT_EQ(state.Machine.ToolDefaults[4][0], 0);
}

TEST(LoadMaterial, AMissingToolDefaultsFileReadsAsZerosAndIsNotMade) {
    Installation in;
    RunState state = LoadedMachine(in, "10");
    state.Machine.ToolDefaults[1][0] = 5;
    std::string name = "Default";
    LoadMaterial(state, name);
    EXPECT_EQ(state.Machine.ToolDefaults[1][0], 0);
    EXPECT_FALSE(FileExists(in.Data + "\\Tools\\M1\\Full Library.dft"));
}
