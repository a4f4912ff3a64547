#include "definition/called_blocks.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"

using namespace tvx;

using Lines = std::vector<std::string>;

TEST(CalledBlocks, CallOfAFalseConditionalBlockPrintsNothingAndTheCallerGoesOn) {
    const Lines pst = {"MAIN=TRUE", "A", "[CALL SUB]", "B", "******", "SUB=TRUE IF [P1=1]", "S", "******", ""};
    {
        EngineRig rig(pst, {"******"});
        rig.Write("MAIN");
        rig.CloseAll();
        EXPECT_EQ(rig.Program(), (Lines{"A", "B"}));
        EXPECT_EQ(rig.State.Engine.PostLevel, 0);
    }
    {
        EngineRig rig(pst, {"******"});
        rig.State.Tables.PostParam[1] = 1;
        rig.Write("MAIN");
        rig.CloseAll();
        EXPECT_EQ(rig.Program(), (Lines{"A", "S", "B"}));
    }
}

TEST(CalledBlocks, ThreeNestedCallsWork) {
    EngineRig rig({"MAIN=TRUE", "[CALL L1]", "M", "******", "L1=TRUE", "one", "[CALL L2]", "one-after", "******", "L2=TRUE",
                   "two", "[CALL L3]", "two-after", "******", "L3=TRUE", "three", "******", ""},
                  {"******"});
    rig.Write("MAIN");
    EXPECT_EQ(rig.State.Engine.PostLevel, 0);
    EXPECT_FALSE(rig.State.Engine.LevelInput1.Open);
    EXPECT_FALSE(rig.State.Engine.LevelInput2.Open);
    EXPECT_FALSE(rig.State.Engine.LevelInput3.Open);
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"one", "two", "three", "two-after", "one-after", "M"}));
}

TEST(CalledBlocks, AFourthNestedCallLandsOnTheOpenDefinitionChannel) {
    EngineRig rig({"MAIN=TRUE", "[CALL L1]", "******", "L1=TRUE", "[CALL L2]", "******", "L2=TRUE", "[CALL L3]", "******",
                   "L3=TRUE", "[CALL L4]", "******", "L4=TRUE", "four", "******", ""},
                  {"******"});
    try {
        rig.Write("MAIN");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "File already open: " + rig.State.Job.SubFile3);
    }
}

TEST(CalledBlocks, ABlockThatCallsItselfEndsAtTheNestingLimit) {
    EngineRig rig({"MAIN=TRUE", "[CALL LOOP]", "******", "LOOP=TRUE", "x", "[CALL LOOP]", "******", ""}, {"******"});
    try {
        rig.Write("MAIN");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
    }
}

TEST(SelectDefinitionLevel, EachLevelReadsItsOwnCopyOnItsOwnChannel) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    EngineState& e = rig.State.Engine;
    const struct {
        int Level;
        int Channel;
        std::string File;
    } table[] = {{1, 10, rig.State.Job.SubFile1},
                 {2, 14, rig.State.Job.SubFile2},
                 {3, 13, rig.State.Job.SubFile3},
                 {5, 17, rig.Path("Progsubs.sub")}};
    for (const auto& row : table) {
        e.PostLevel = static_cast<int16_t>(row.Level);
        SelectDefinitionLevel(rig.State, "line");
        EXPECT_EQ(e.PostChannel, row.Channel);
        EXPECT_EQ(e.PostLevelFile, row.File);
        EXPECT_EQ(e.PostLevel, row.Level);
    }
    e.PostLevel = 0;
    SelectDefinitionLevel(rig.State, "line");
    EXPECT_EQ(e.PostChannel, 1);
    EXPECT_EQ(e.PostLevelFile, rig.Path("Progsubs.sub"));  // unchanged
    e.PostLevel = 4;
    SelectDefinitionLevel(rig.State, "line");
    EXPECT_EQ(e.PostChannel, 1);
    EXPECT_EQ(e.PostLevel, 0);
    e.PostLevel = 6;
    EXPECT_EQ(EngineRig::EndText([&] { SelectDefinitionLevel(rig.State, "[CALL X]"); }),
              AbortText("[CALL X] - Too many levels of nesting in File : Post.sub"));
}

TEST(SetDefinitionFiles, CopiesTheDefinitionToTheThreeLevelFiles) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    const std::string pst = ReadAllBytes(rig.Path("def.pst"));
    EXPECT_EQ(ReadAllBytes(rig.Path("Program.sb1")), pst);
    EXPECT_EQ(ReadAllBytes(rig.Path("Program.sb2")), pst);
    EXPECT_EQ(ReadAllBytes(rig.Path("Program.sb3")), pst);
    EXPECT_EQ(rig.State.Job.PostFile, rig.Path("def.pst"));
    EXPECT_EQ(rig.State.Job.WordFile, rig.Path("def.wrd"));
    EXPECT_EQ(rig.State.Job.LayoutFile, rig.Path("def.lyt"));
    EXPECT_EQ(rig.State.Job.SeqFile, rig.Path("Program.seq"));
    EXPECT_TRUE(rig.State.Engine.WordInput.Open);
}

namespace {

// Closes the subroutine file of the rig and gives it the lines, as the generation leaves it.
void SubroutineText(EngineRig& rig, const Lines& lines) {
    CloseEngineOutput(rig.State, rig.State.Engine.SubroutineFile);
    WriteFileAtomically(rig.Path("progsubs.sub"), CrLf(lines));
}

}  // namespace

TEST(CalledBlocks, SubroutineTextIsWorkedThroughAtLevelFive) {
    EngineRig rig({"MAIN=TRUE", "A", "[CALL SUBROUTINES]", "B", "******", ""}, {"******"});
    SubroutineText(rig, {"SUBROUTINES=TRUE", "N50000", "S1", "******"});
    rig.Write("MAIN");
    EXPECT_EQ(rig.State.Engine.PostLevel, 0);
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"A", "N50000", "S1", "B"}));
}

TEST(CalledBlocks, CallInsideTheSubroutineTextEndsWithTheNestingMessage) {
    EngineRig rig({"MAIN=TRUE", "[CALL SUBROUTINES]", "******", "X=TRUE", "x", "******", ""}, {"******"});
    SubroutineText(rig, {"SUBROUTINES=TRUE", "S1", "[CALL X]", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("MAIN"); }),
              AbortText("[CALL X] - Too many levels of nesting in File : Post.sub"));
}

TEST(CalledBlocks, SubroutineLevelWhileTheSubroutineFileIsWrittenIsAFault) {
    EngineRig rig({"MAIN=TRUE", "[CALL SUBROUTINES]", "******", ""}, {"******"});
    try {
        rig.Write("MAIN");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "File already open: " + rig.Path("Progsubs.sub"));
    }
}

TEST(CalledBlocks, CallInTheMiddleOfALineCallsAndLosesTheText) {
    EngineRig rig({"MAIN=TRUE", "A[CALL SUB]B", "******", "SUB=TRUE", "S", "******", ""}, {"******"});
    rig.Write("MAIN");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), Lines{"S"});
}

TEST(CalledBlocks, BlockWithCallInItsLineCannotBeCalled) {
    EngineRig rig({"MAIN=TRUE", "[CALL DO_CALL]", "******", "DO_CALL=TRUE", "X", "******", ""}, {"******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("MAIN"); }), AbortText("Reserved Word - DO_CALL not found in file "));
}

TEST(CalledBlocks, CalledBlockInTheLastLineIsNotFound) {
    EngineRig rig({"MAIN=TRUE", "[CALL SUB]", "******", "SUB=TRUE"}, {"******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("MAIN"); }), AbortText("Reserved Word - SUB not found in file "));
}

TEST(CalledBlocks, SeparatorDirectlyBehindANestedCallIsPrintedAsText) {
    // L1 ends right behind its call of L2: back on level 1 the "******" is no separator.
    EngineRig rig({"MAIN=TRUE", "[CALL L1]", "M", "******", "L1=TRUE", "[CALL L2]", "******", "L1-tail", "******",
                   "L2=TRUE", "two", "******", ""},
                  {"******"});
    rig.Write("MAIN");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"two", "******", "L1-tail", "M"}));
}

TEST(CalledBlocks, SeparatorBehindACallOnLevelZeroEndsTheBlock) {
    EngineRig rig({"MAIN=TRUE", "[CALL SUB]", "******", "SUB=TRUE", "S", "******", ""}, {"******"});
    rig.Write("MAIN");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), Lines{"S"});
}
