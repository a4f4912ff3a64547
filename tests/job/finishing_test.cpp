#include "job/finishing.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"

using namespace tvx;

namespace {

// The generation as a job does it: the first line, the blocks, the closing lines.
void Generate(EngineRig& rig, const std::vector<std::string>& words) {
    EngineState& e = rig.State.Engine;
    WriteLine(e.ProgramOutput, "PROGRAM_FORMAT=TRUE");
    for (const auto& word : words) rig.Write(word);
    WriteLine(e.SubroutineFile, "******");
    WriteLine(e.ProgramOutput, "******");
    rig.CloseAll();
}

}  // namespace

TEST(FormatPass, PunchBlockGetsItsBlockNumber) {
    EngineRig rig({"CANNED_PUNCH=TRUE", "[BLOCK_NUMBER1][X_AXIS][Y_AXIS]", "******"},
                  {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "X_AXIS [M1] [FORMAT=D3] [CONV=X]",
                   "Y_AXIS [M2] [FORMAT=D3] [CONV=Y]", "******"});
    ValueTables& t = rig.State.Tables;
    t.PostMachine[1] = 10.5f;
    t.PostMemo[1] = 10.5f;
    t.PostMachine[2] = 3;
    t.PostParam[1] = 5;
    t.PostParam[4] = 5;
    Generate(rig, {"CANNED_PUNCH"});
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "PROGRAM_FORMAT=TRUE\r\n[BLOCK_NUMBER1]Y3.000\r\n******\r\n");
    FormatPass(rig.State);
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "N5Y3.000\r\n");
    EXPECT_EQ(ReadAllBytes(rig.Path("Progmain.tmp")), "PROGRAM_FORMAT=TRUE\r\n[BLOCK_NUMBER1]Y3.000\r\n******\r\n");
    EXPECT_EQ(rig.State.Job.PostFile, rig.Path("Progmain.tmp"));
    EXPECT_TRUE(rig.State.Engine.RenumberMode);
    EXPECT_EQ(t.PostParam[1], 10.0f);
    EXPECT_FALSE(rig.State.Engine.WordInput.Open);
}

TEST(FormatPass, BlockNumbersRunOnThroughBlocksAndTheSubroutineText) {
    EngineRig rig({"LINE_A=TRUE", "[BLOCK_NUMBER1]G1", "******", "LINE_B=TRUE", "[BLOCK_NUMBER1]G2", "******", ""},
                  {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "******"});
    rig.State.Tables.PostParam[1] = 10;
    rig.State.Tables.PostParam[4] = 10;
    EngineState& e = rig.State.Engine;
    WriteLine(e.ProgramOutput, "PROGRAM_FORMAT=TRUE");
    rig.Write("LINE_A");
    e.SubroutineOutput = true;
    rig.Write("LINE_B");
    e.SubroutineOutput = false;
    WriteLine(e.ProgramOutput, "[CALL SUBROUTINES]");
    rig.Write("LINE_A");
    WriteLine(e.SubroutineFile, "******");
    WriteLine(e.ProgramOutput, "******");
    rig.CloseAll();
    FormatPass(rig.State);
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "N10G1\r\nN20G2\r\nN30G1\r\n");
}

TEST(FormatPass, FalseProgramFormatAborts) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    rig.CloseAll();
    WriteFileAtomically(rig.State.Job.ProgramFile, "PROGRAM_FORMAT=FALSE\r\nX\r\n******\r\n");
    EXPECT_EQ(EngineRig::EndText([&] { FormatPass(rig.State); }),
              AbortText("'PROGRAM_FORMAT' not found in Post-Processor"));
}

TEST(FormatPass, ProgramWithoutProgramFormatIsNotFound) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    rig.CloseAll();
    WriteFileAtomically(rig.State.Job.ProgramFile, "X\r\n******\r\n");
    EXPECT_EQ(EngineRig::EndText([&] { FormatPass(rig.State); }),
              AbortText("Reserved Word - PROGRAM_FORMAT not found in file " + rig.Path("Progmain.tmp")));
}
