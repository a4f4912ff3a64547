#include "definition/reserved_word.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "definition/engine_rig.h"

using namespace tvx;

TEST(FindReservedWord, WordOnlyInTheLastLineIsNotFound) {
    EngineRig rig({"A=TRUE", "X", "******", "LAST_WORD=TRUE"}, {"******"});
    EXPECT_EQ(EngineRig::EndText([&] { FindReservedWord(rig.State, "LAST_WORD"); }),
              AbortText("Reserved Word - LAST_WORD not found in file " + rig.Path("def.pst")));
}

TEST(FindReservedWord, WordNowhereInTheFileIsNotFound) {
    EngineRig rig({"A=TRUE", "X", "******", ""}, {"******"});
    EXPECT_EQ(EngineRig::EndText([&] { FindReservedWord(rig.State, "CANNED_DWELL"); }),
              AbortText("Reserved Word - CANNED_DWELL not found in file " + rig.Path("def.pst")));
}

TEST(FindReservedWord, ShorterWordStopsAtTheFirstLineThatHoldsIt) {
    EngineRig rig({"CANNED_PUNCHED_LINE=FALSE", "L", "******", "CANNED_PUNCH=TRUE", "P", "******", ""}, {"******"});
    EXPECT_FALSE(FindReservedWord(rig.State, "CANNED_PUNCH"));
    // The file stays open behind the line that stopped the search.
    EXPECT_EQ(ReadLine(rig.State.Engine.DefinitionInput), "L");
}

TEST(FindReservedWord, TrueIfWithoutBracketAbortsWithTheLine) {
    EngineRig rig({"CANNED_DWELL=TRUE IF P1=2", "D", "******", ""}, {"******"});
    EXPECT_EQ(EngineRig::EndText([&] { FindReservedWord(rig.State, "CANNED_DWELL"); }),
              AbortText("CANNED_DWELL=TRUE IF P1=2 case not found in definition"));
}

TEST(FindReservedWord, EachSearchStartsAtTheTop) {
    EngineRig rig({"A=TRUE", "X", "******", "B=TRUE", "Y", "******", ""}, {"******"});
    EXPECT_TRUE(FindReservedWord(rig.State, "B"));
    // The position of the unwritten block B is forgotten: A, above it, is found.
    EXPECT_TRUE(rig.Write("A"));
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), std::vector<std::string>{"X"});
}

TEST(FindReservedWord, LowerCaseTrueIsNotATruth) {
    EngineRig rig({"A=true", "X", "******", ""}, {"******"});
    EXPECT_FALSE(FindReservedWord(rig.State, "A"));
}

TEST(FindReservedWord, LineWithoutTruthIsFalse) {
    EngineRig rig({"CANNED_DWELL=FALSE", "X", "******", ""}, {"******"});
    EXPECT_FALSE(FindReservedWord(rig.State, "CANNED_DWELL"));
}

TEST(FindReservedWord, TrueIfTakesTheCondition) {
    EngineRig rig({"CANNED_DWELL=TRUE IF [P1=2]", "X", "******", ""}, {"******"});
    EXPECT_FALSE(FindReservedWord(rig.State, "CANNED_DWELL"));
    rig.State.Tables.PostParam[1] = 2;
    EXPECT_TRUE(FindReservedWord(rig.State, "CANNED_DWELL"));
}

TEST(FindReservedWord, WordIsFoundInABodyLineAndCaseMatters) {
    EngineRig rig({"X=TRUE", "call canned_punch here: CANNED_PUNCH", "******", "CANNED_PUNCH=TRUE", "P", "******", ""},
                  {"******"});
    // The body line holds the word: it is taken as the reserved-word line, and it is false.
    EXPECT_FALSE(FindReservedWord(rig.State, "CANNED_PUNCH"));
    EXPECT_EQ(ReadLine(rig.State.Engine.DefinitionInput), "******");
}

TEST(FindReservedWord, MissingDefinitionFileIsAFileFault) {
    EngineRig rig({"A=TRUE", "X", "******"}, {"******"});
    rig.State.Job.PostFile = rig.Path("none.pst");
    try {
        FindReservedWord(rig.State, "A");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "File not found: " + rig.Path("none.pst"));
    }
}
