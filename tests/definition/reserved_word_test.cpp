#include "definition/reserved_word.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/definition_cache.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "state/run_state.h"

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

TEST(FindReservedWord, ConditionOfAHeldLineIsReadOnceAndEvaluatedAtEachFind) {
    EngineRig rig({"A=TRUE IF [P9=11]", "X", "******", ""}, {"******"});
    rig.State.Tables.PostParam[9] = 11;
    EXPECT_TRUE(FindReservedWord(rig.State, "A"));
    rig.State.Tables.PostParam[9] = 12;
    EXPECT_FALSE(FindReservedWord(rig.State, "A"));
    const DefinitionText& text = HeldTextOf(rig.State, ChannelDefinition);
    EXPECT_NE(text.Truths.at(0), nullptr);
    EXPECT_TRUE(rig.State.Engine.Truths.empty());
    // The file stays open behind the line, as a search of the text leaves it.
    EXPECT_EQ(ReadLine(rig.State.Engine.DefinitionInput), "X");
}

TEST(FindReservedWord, StreamedDefinitionKeepsTruthsByTheLinesText) {
    EngineRig rig({"A=TRUE IF [P9=11]", "X", "******", ""}, {"******"});
    rig.State.Engine.Cache.HeldSizeLimit = 0;
    ForgetDefinition(rig.State.Engine.Cache, rig.State.Job.PostFile);
    rig.State.Tables.PostParam[9] = 11;
    EXPECT_TRUE(FindReservedWord(rig.State, "A"));
    rig.State.Tables.PostParam[9] = 12;
    EXPECT_FALSE(FindReservedWord(rig.State, "A"));
    EXPECT_EQ(rig.State.Engine.Truths.size(), 1u);
    EXPECT_EQ(ReadLine(rig.State.Engine.DefinitionInput), "X");
}
