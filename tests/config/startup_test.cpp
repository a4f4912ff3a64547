#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/installation.h"

using namespace tvx;

namespace {

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

// A plain installation: machine 1 "M1" (a tool machine), project "Job1".
void PlainInstallation(const Installation& in, const std::string& machine = "1", const std::string& project = "Job1") {
    in.Config(machine, project);
    in.MachineList({"1,\"Maker One\",\"M1\",\"Model A\",\"First\"", "2,\"Maker Two\",\"M2\",\"Model B\",\"Second\"",
                    "******"});
    in.Machine("M1", "10");
    in.Machine("M2", "10");
}

}  // namespace

TEST(StartupConfig, LinesAreTrimmedAndDirectoriesGetATrailingBackslash) {
    Installation in;
    Installation::Write(in.Start + "\\Torvanex.cfg",
                        {"  " + in.Program + "  ", in.Data + "\\", " " + in.Projects, " 3 ", "  Job1  ", "******"});
    in.MachineList({"******"});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.ProgramDir, in.Program + "\\");
    EXPECT_EQ(state.Config.DataDir, in.Data + "\\");
    EXPECT_EQ(state.Config.ProjectDir, in.Projects + "\\");
    EXPECT_EQ(state.Config.MachineNumber, 3);
    EXPECT_EQ(state.Config.ProjectName, "Job1");
    EXPECT_EQ(state.Job.WorkDir, in.Program + "\\");
    EXPECT_EQ(state.Config.RevSubsDir, in.Data + "\\RevSubs\\");
    EXPECT_EQ(state.Config.DriveRoot, in.Program.substr(0, 3));
}

TEST(StartupConfig, DriveRootIsTheFirstThreeCharactersOfWorkDirTrimmed) {
    Installation in;
    // A program directory of two characters: "X" plus the appended backslash, then the trim.
    Installation::Write(in.Start + "\\Torvanex.cfg", {"X", in.Data, in.Projects, "1", "", "******"});
    RunState state = in.State();
    // Machine.lst lies in WorkDir, which here is "X\" relative to the current directory.
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "File not found: X\\Machine.lst");
    EXPECT_EQ(state.Config.DriveRoot, "X\\");
}

TEST(StartupConfig, MachineZeroLoadsMachineOne) {
    Installation in;
    PlainInstallation(in, "0");
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.MachineNumber, 1);
    LoadMachine(state, state.Config.MachineNumber, state.Config.ProjectName);
    EXPECT_EQ(state.Machine.MachineDirName, "M1");
    EXPECT_EQ(state.Machine.MachineMaker, "Maker One");
}

TEST(StartupConfig, NegativeMachineNumberLoadsMachineOne) {
    Installation in;
    PlainInstallation(in, "-4");
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.MachineNumber, 1);
}

TEST(StartupConfig, MachineNumberBeyondSixteenBitsIsAnOverflowFault) {
    Installation in;
    PlainInstallation(in, "40000");
    RunState state = in.State();
    try {
        LoadStartupConfig(state);
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "Overflow: MachineNumber of " + in.Start + "\\Torvanex.cfg 40000");
    }
}

TEST(StartupConfig, ProjectWithAColonIsDroppedAtLoadAndReplacedAtSaveByTheFirstSubdirectory) {
    Installation in;
    PlainInstallation(in, "1", "C:X");
    MakeDirectory(in.Projects + "\\M1\\Zeta");
    MakeDirectory(in.Projects + "\\M1\\Beta");
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.ProjectName, "");
    LoadMachine(state, state.Config.MachineNumber, state.Config.ProjectName);
    // Subdirectories in name order: "Beta", "Torvanex Directory", "Zeta".
    EXPECT_EQ(state.Config.ProjectName, "Beta");
    EXPECT_EQ(in.ConfigBytes(), in.Program + "\\\r\n" + in.Data + "\\\r\n" + in.Projects + "\\\r\n1\r\nBeta\r\n******\r\n");
    EXPECT_EQ(state.Config.CurrentProjectPath, in.Projects + "\\M1\\Beta\\");
}

TEST(StartupConfig, MissingTorvanexCfgIsAFileFaultNamingIt) {
    Installation in;
    RunState state = in.State();
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "File not found: " + in.Start + "\\Torvanex.cfg");
}

TEST(StartupConfig, TorvanexCfgOfFewerThanFiveLinesIsAFaultNamingIt) {
    Installation in;
    Installation::Write(in.Start + "\\Torvanex.cfg", {in.Program, in.Data, in.Projects, "1"});
    in.MachineList({"******"});
    RunState state = in.State();
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "Input past end of file: " + in.Start + "\\Torvanex.cfg");
}

TEST(StartupConfig, MissingMachineLstIsAFileFaultNamingIt) {
    Installation in;
    in.Config("1", "Job1");
    RunState state = in.State();
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "File not found: " + in.Program + "\\Machine.lst");
}

TEST(MachineList, RowsAreReadItemByItemUpToTheEndMarkAndElementZeroHoldsTheCount) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"1,\"Maker One\",\"M1\",\"Model A\",\"First\"", "2,\"Maker, Two\",\"M2\",\"\",Bare note", "******",
                    "3,\"Maker Three\",\"M3\",\"\",\"\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    const auto& list = state.Config.MachineList;
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].Number, 2);
    EXPECT_EQ(list[1].Number, 1);
    EXPECT_EQ(list[1].MachineMaker, "Maker One");
    EXPECT_EQ(list[1].MachineDirName, "M1");
    EXPECT_EQ(list[1].MachineModel, "Model A");
    EXPECT_EQ(list[1].MachineNote, "First");
    EXPECT_EQ(list[2].Number, 2);
    EXPECT_EQ(list[2].MachineMaker, "Maker, Two");
    EXPECT_EQ(list[2].MachineModel, "");
    EXPECT_EQ(list[2].MachineNote, "Bare note");
}

TEST(MachineList, ANumberBelowOneEndsTheList) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"1,\"A\",\"M1\",\"\",\"\"", "0,\"B\",\"M0\",\"\",\"\"", "2,\"C\",\"M2\",\"\",\"\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.MachineList[0].Number, 1);
    EXPECT_EQ(state.Config.MachineList.size(), 2u);
}

TEST(MachineList, AnEmptyFirstItemEndsTheList) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"1,\"A\",\"M1\",\"\",\"\"", "", "2,\"C\",\"M2\",\"\",\"\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.MachineList[0].Number, 1);
}

TEST(MachineList, TheEndOfTheFileEndsTheList) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"1,\"A\",\"M1\",\"\",\"\"", "2,\"C\",\"M2\",\"\",\"\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.MachineList[0].Number, 2);
    EXPECT_EQ(state.Config.MachineList[2].MachineDirName, "M2");
}

TEST(MachineList, ARowCutShortByTheEndOfTheFileIsAFaultNamingTheFile) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"1,\"A\",\"M1\""});
    RunState state = in.State();
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "Input past end of file: " + in.Program + "\\Machine.lst");
}

TEST(DataTree, ProductPresenceComesFromTheExecutablesInWorkDir) {
    struct Case {
        bool Drw, Prg, Rvs, Full, Reverse;
    };
    for (const Case c : {Case{false, false, false, false, false}, Case{true, false, true, false, false},
                         Case{false, true, true, false, false}, Case{true, true, false, true, false},
                         Case{true, true, true, true, true}}) {
        Installation in;
        in.Config("1", "");
        in.MachineList({"******"});
        in.Executables(c.Drw, c.Prg, c.Rvs);
        if (c.Rvs) Installation::Write(in.Program + "\\Reverse.lst", {"******"});
        RunState state = in.State();
        LoadStartupConfig(state);
        EXPECT_EQ(state.Config.FullInstall, c.Full);
        EXPECT_EQ(state.Config.ReverseInstall, c.Reverse);
        EXPECT_EQ(DirectoryExists(in.Data + "\\Blocks"), c.Full);
        EXPECT_EQ(DirectoryExists(in.Data + "\\Material"), c.Full);
        EXPECT_EQ(DirectoryExists(in.Data + "\\RevSubs"), c.Reverse);
    }
}

TEST(DataTree, ExecutableNamesAreFoundWithoutRegardToCase) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    Installation::Write(in.Program + "\\TORVADRW.EXE", {"x"});
    Installation::Write(in.Program + "\\torvaprg.exe", {"x"});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_TRUE(state.Config.FullInstall);
}

TEST(DataTree, ReverseListIsLoadedUnderReverseInstallUpToTheEndOfTheFile) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    in.Executables(true, true, true);
    Installation::Write(in.Program + "\\Reverse.lst", {"1,\"First\",\"One\"", "7,\"Second\",\"Two\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    const auto& list = state.Config.ReverseList;
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].Number, 2);
    EXPECT_EQ(list[2].Number, 7);
    EXPECT_EQ(list[2].FirstText, "Second");
    EXPECT_EQ(list[2].SecondText, "Two");
}

TEST(DataTree, ReverseListEndsAtTheEndMark) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    in.Executables(true, true, true);
    Installation::Write(in.Program + "\\Reverse.lst", {"1,\"First\",\"One\"", "******", "2,\"Second\",\"Two\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.ReverseList[0].Number, 1);
}

TEST(DataTree, ReverseListIsNotReadWithoutReverseInstall) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    in.FullInstall();
    Installation::Write(in.Program + "\\Reverse.lst", {"1,\"First\",\"One\""});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(state.Config.ReverseList.size(), 1u);
    EXPECT_EQ(state.Config.ReverseList[0].Number, 0);
}

TEST(DataTree, MissingReverseListUnderReverseInstallIsAFileFault) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    in.Executables(true, true, true);
    RunState state = in.State();
    EXPECT_EQ(FaultText([&] { LoadStartupConfig(state); }), "File not found: " + in.Program + "\\Reverse.lst");
}

TEST(DataTree, FirstStartCopiesEveryDataFileIntoDataDefault) {
    Installation in;
    PlainInstallation(in);
    RunState state = in.State();
    LoadStartupConfig(state);
    const std::string defaults = in.Data + "\\Data\\Default\\";
    for (const char* name : {"M1.msr", "M1.mch", "M1.prm", "M1.cms", "M1.stn", "M1.trt", "M2.mch"})
        EXPECT_EQ(ReadAllBytes(defaults + name), ReadAllBytes(in.Data + "\\Data\\" + name)) << name;
    EXPECT_EQ(ListFiles(defaults, "*").size(), 12u);
}

TEST(DataTree, ASecondStartLeavesDataDefaultAsItWas) {
    Installation in;
    PlainInstallation(in);
    {
        RunState state = in.State();
        LoadStartupConfig(state);
    }
    const std::string delivered = ReadAllBytes(in.Data + "\\Data\\M1.cms");
    in.MachineFile("M1", "cms", {"Control: CHANGED"});
    in.MachineFile("M3", "cms", {"Control: NEW"});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(ReadAllBytes(in.Data + "\\Data\\Default\\M1.cms"), delivered);
    EXPECT_FALSE(FileExists(in.Data + "\\Data\\Default\\M3.cms"));
}

TEST(DataTree, ExportCfgIsCreatedWithZeroAndPrg) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(ReadAllBytes(in.Program + "\\Export.cfg"), "0\r\nprg\r\n");
}

TEST(DataTree, AnExistingExportCfgIsLeftAlone) {
    Installation in;
    in.Config("1", "");
    in.MachineList({"******"});
    Installation::Write(in.Program + "\\Export.cfg", {"1", "nc"});
    RunState state = in.State();
    LoadStartupConfig(state);
    EXPECT_EQ(ReadAllBytes(in.Program + "\\Export.cfg"), "1\r\nnc\r\n");
}

TEST(SaveStartupConfig, RewritesTorvanexCfgByteForByte) {
    Installation in;
    Installation::Write(in.Start + "\\Torvanex.cfg", {" " + in.Program, in.Data + "\\", in.Projects, "0", " Job1 "});
    in.MachineList({"1,\"Maker One\",\"M1\",\"\",\"\"", "******"});
    in.Machine("M1", "10");
    MakeDirectory(in.Projects + "\\M1\\Job1");
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, state.Config.MachineNumber, state.Config.ProjectName);
    EXPECT_EQ(in.ConfigBytes(), in.Program + "\\\r\n" + in.Data + "\\\r\n" + in.Projects + "\\\r\n1\r\nJob1\r\n******\r\n");
}

TEST(SaveStartupConfig, AnExistingProjectIsKept) {
    Installation in;
    PlainInstallation(in);
    MakeDirectory(in.Projects + "\\M1\\Alpha");
    MakeDirectory(in.Projects + "\\M1\\Job1");
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, 1, "  Job1 ");
    EXPECT_EQ(state.Config.ProjectName, "Job1");
    EXPECT_EQ(state.Config.CurrentProjectPath, in.Projects + "\\M1\\Job1\\");
}

TEST(SaveStartupConfig, AProjectThatIsNotThereIsDroppedAndReplaced) {
    Installation in;
    PlainInstallation(in);
    MakeDirectory(in.Projects + "\\M2\\Alpha");
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, 2, "Job1");
    // LoadMachine makes the project directory; a later save for a project that is gone drops it.
    ASSERT_TRUE(DirectoryExists(in.Projects + "\\M2\\Job1"));
    SaveStartupConfig(state, "Gone");
    EXPECT_EQ(state.Config.ProjectName, "Alpha");
}

TEST(SaveStartupConfig, ExsubsAndDotNamesAreReplacedAndSkipped) {
    Installation in;
    PlainInstallation(in);
    RunState state = in.State();
    LoadStartupConfig(state);
    MakeDirectory(in.Projects + "\\M1\\exsubs");
    MakeDirectory(in.Projects + "\\M1\\Work");
    LoadMachine(state, 1, "");
    // Subdirectories in name order: "exsubs" (skipped), "Torvanex Directory".
    EXPECT_EQ(state.Config.ProjectName, "Torvanex Directory");
    for (const char* name : {"EXSUBS", ".", ".."}) {
        SaveStartupConfig(state, name);
        EXPECT_EQ(state.Config.ProjectName, "Torvanex Directory") << name;
    }
}

TEST(SaveStartupConfig, AProjectOnADriveThatIsNotReadyIsDropped) {
    Installation in;
    PlainInstallation(in);
    MakeDirectory(in.Projects + "\\M1\\Alpha");
    RunState state = in.State();
    LoadStartupConfig(state);
    LoadMachine(state, 1, "Q:\\Jobs");
    EXPECT_EQ(state.Config.ProjectName, "Alpha");
}

TEST(ProjectPath, IsTheProjectUnderTheFolderOrOnlyTheDriveOfAnAbsoluteName) {
    RunState state;
    state.Config.ProjectDir = "C:\\Projects\\";
    EXPECT_EQ(ProjectPath(state, " M1 ", " Job1 "), "C:\\Projects\\M1\\Job1\\");
    EXPECT_EQ(ProjectPath(state, "M1", "D:\\Elsewhere\\Job"), "D:\\");
    EXPECT_EQ(ProjectPath(state, "M1", ""), "C:\\Projects\\M1\\\\");
}
