#include "tools/try_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/engine_rig.h"
#include "test_support.h"

using namespace tvx;

namespace {

struct ExeRun {
    int Status = -1;
    std::string Out;
    std::string Err;
};

std::string Quote(const std::string& text) {
    std::string q = "'";
    for (char c : text) {
        if (c == '\'') q += "'\\''";
        else q += c;
    }
    return q + "'";
}

ExeRun RunExe(const TempDir& dir, const std::vector<std::string>& args) {
    std::string command = Quote(TORVANEX_EXE);
    for (const auto& a : args) command += " " + Quote(a);
    command += " >" + Quote(dir.Path + "/out.txt") + " 2>" + Quote(dir.Path + "/err.txt");
    const int raw = std::system(command.c_str());
    ExeRun run;
    run.Status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.Out = ReadAllBytes(dir.Path + "/out.txt");
    run.Err = ReadAllBytes(dir.Path + "/err.txt");
    return run;
}

const std::vector<std::string> PunchItems = {"PostMachine[1]=10.5", "PostMemo[1]=10.5", "PostMachine[2]=3",
                                              "PostMemo[2]=0",       "PostParam[1]=5",   "PostParam[4]=5",
                                              "CANNED_PUNCH"};

void WritePunchBlock(const TempDir& dir) {
    WriteFileAtomically(dir.Path + "/STEM.pst", CrLf({"CANNED_PUNCH=TRUE", "[BLOCK_NUMBER1][X_AXIS][Y_AXIS]", "******"}));
    WriteFileAtomically(dir.Path + "/STEM.wrd",
                        CrLf({"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "X_AXIS [M1] [FORMAT=D3] [CONV=X]",
                              "Y_AXIS [M2] [FORMAT=D3] [CONV=Y]", "******"}));
}

std::vector<std::string> Args(const std::vector<std::string>& front, const std::vector<std::string>& items) {
    std::vector<std::string> all = front;
    all.insert(all.end(), items.begin(), items.end());
    return all;
}

}  // namespace

TEST(TryCommand, PunchBlockPrintsTheFinishedBlock) {
    TempDir dir;
    WritePunchBlock(dir);
    const ExeRun run = RunExe(dir, Args({"try", dir.Path + "/STEM"}, PunchItems));
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Out, "N5Y3.000\r\n");
    EXPECT_EQ(run.Err, "");
}

TEST(TryCommand, RawPrintsTheTextBeforeTheFormatPass) {
    TempDir dir;
    WritePunchBlock(dir);
    const ExeRun run = RunExe(dir, Args({"try", "--raw", dir.Path + "/STEM"}, PunchItems));
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Out, "[BLOCK_NUMBER1]Y3.000\r\n");
}

TEST(TryCommand, AbortShowsTheMessageBoxAndExitsWithOne) {
    TempDir dir;
    WritePunchBlock(dir);
    const ExeRun run = RunExe(dir, {"try", dir.Path + "/STEM", "CANNED_DWELL"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, "");
    EXPECT_EQ(run.Err, "Torvanex\nReserved Word - CANNED_DWELL not found in file " + dir.Path +
                           "/STEM.pst\n\nProgram Aborted\n");
}

TEST(TryCommand, MissingWordFileIsAFaultWithTwo) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/STEM.pst", CrLf({"A=TRUE", "x", "******"}));
    const ExeRun run = RunExe(dir, {"try", dir.Path + "/STEM", "A"});
    EXPECT_EQ(run.Status, 2);
    EXPECT_EQ(run.Err, "File not found: " + dir.Path + "/STEM.wrd\n");
}

TEST(TryCommand, WorkingFilesDoNotGoBesideTheDefinition) {
    TempDir dir;
    WritePunchBlock(dir);
    RunExe(dir, Args({"try", dir.Path + "/STEM"}, PunchItems));
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/Program.sb1"));
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/progsubs.sub"));
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/Progmain.prg"));
}

TEST(TryCommand, ReportAndSubroutineTextGoToStandardError) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/S.pst",
                        CrLf({"PROGRAM_REPORT=TRUE", "Report  line", "******", "SUB_LINE=TRUE", "S1", "******", ""}));
    WriteFileAtomically(dir.Path + "/S.wrd", CrLf({"******"}));
    const ExeRun run =
        RunExe(dir, {"try", dir.Path + "/S", "PROGRAM_REPORT", "SubroutineOutput=1", "SUB_LINE", "SubroutineOutput=0"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Out, "S1\r\n");
    EXPECT_EQ(run.Err, "--- report (Progmain.rpt) ---\nReport  line\r\n"
                       "--- subroutine file (progsubs.sub) ---\nSUBROUTINES=TRUE\r\nS1\r\n******\r\n");
}

TEST(TryCommand, SequenceFileFeedsALayout) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/L.pst", CrLf({"HEAD=TRUE", "[TOOL_LAYOUT]", "******", ""}));
    WriteFileAtomically(dir.Path + "/L.wrd", CrLf({"TNAME [S27] [CONV=*]", "******"}));
    WriteFileAtomically(dir.Path + "/L.lyt", CrLf({"TOOL_LAYOUT=TRUE", "A1(T [TNAME])", "******"}));
    WriteFileAtomically(dir.Path + "/job.seq", CrLf({"Title", "A1,RO10,10,0,0,0,0,3,1", "******"}));
    const ExeRun run = RunExe(dir, {"try", "--seq", dir.Path + "/job.seq", dir.Path + "/L", "ToolText1[1]=x", "HEAD"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Out, "(T RO10)\r\n");
}

TEST(ApplyTryItem, CellsAndFlags) {
    RunState state;
    state.Job.ToolTimes.assign(65, {});
    EXPECT_TRUE(ApplyTryItem(state, "PostParam[1]=5"));
    EXPECT_TRUE(ApplyTryItem(state, "PostMachine[2]=3.5"));
    EXPECT_TRUE(ApplyTryItem(state, "PostMemo[2]=0"));
    EXPECT_TRUE(ApplyTryItem(state, "PostVar[4]=1"));
    EXPECT_TRUE(ApplyTryItem(state, "PostUserText[3]=abc"));
    EXPECT_TRUE(ApplyTryItem(state, "PostText[5]=a b"));
    EXPECT_TRUE(ApplyTryItem(state, "ToolText1[2]=label"));
    EXPECT_TRUE(ApplyTryItem(state, "ToolTimes[3,1]=2.5"));
    EXPECT_TRUE(ApplyTryItem(state, "ReportMode=1"));
    EXPECT_FALSE(ApplyTryItem(state, "CANNED_PUNCH"));
    EXPECT_FALSE(ApplyTryItem(state, "PostParm[1]=5"));
    EXPECT_EQ(state.Tables.PostParam[1], 5.0f);
    EXPECT_EQ(state.Tables.PostMachine[2], 3.5f);
    EXPECT_EQ(state.Tables.PostVar[4], 1.0f);
    EXPECT_EQ(state.Tables.PostUserText[3], "abc");
    EXPECT_EQ(state.Tables.PostText[5], "a b");
    EXPECT_EQ(state.Machine.TurretTools[2].ToolText1, "label");
    EXPECT_EQ(state.Job.ToolTimes[3][1], 2.5f);
    EXPECT_TRUE(state.Engine.ReportMode);
    EXPECT_THROW(ApplyTryItem(state, "PostParam[301]=1"), RunEnd);
    EXPECT_THROW(ApplyTryItem(state, "PostParam[x]=1"), RunEnd);
}

TEST(RunTry, MachineCells100And101StartAt100) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/C.pst", CrLf({"B=TRUE", "[HUNDRED]", "******", ""}));
    WriteFileAtomically(dir.Path + "/C.wrd", CrLf({"HUNDRED [P0] [CALC=M100+M101] [FORMAT=D0] [CONV=H]", "******"}));
    TryOptions options;
    options.Stem = dir.Path + "/C";
    options.Items = {"B"};
    TryResult result;
    RunTry(options, result);
    EXPECT_EQ(result.Program, "H200\r\n");
}
