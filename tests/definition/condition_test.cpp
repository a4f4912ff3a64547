#include "definition/condition.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "common/fault.h"
#include "common/numtext.h"
#include "definition/engine_rig.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

bool Condition(RunState& state, std::string line) { return EvaluateCondition(state, line); }

RunEnd EndOf(RunState& state, std::string line) {
    try {
        EvaluateCondition(state, line);
    } catch (const RunEnd& e) {
        return e;
    }
    ADD_FAILURE() << "no end of the run for " << line;
    return {};
}

}  // namespace

// --- Seven significant digits --------------------------------------------------------------

TEST(Condition, ParamEqualToItsNumberIsTrue) {
    RunState state;
    state.Tables.PostParam[9] = 100;
    EXPECT_TRUE(Condition(state, "CANNED_PUNCH=TRUE IF [P9=100]"));
}

TEST(Condition, DifferenceInTheSeventhDigitIsSeen) {
    RunState state;
    state.Tables.PostParam[9] = 100.0001f;
    EXPECT_FALSE(Condition(state, "CANNED_PUNCH=TRUE IF [P9=100]"));
}

TEST(Condition, DifferenceBeyondTheSeventhDigitIsNotSeen) {
    RunState state;
    state.Tables.PostParam[9] = 100.00001f;
    EXPECT_TRUE(Condition(state, "CANNED_PUNCH=TRUE IF [P9=100]"));
}

TEST(Condition, TwoCellsEqualInTheirSevenDigitTextCompareEqual) {
    RunState state;
    state.Tables.PostParam[1] = 1.0000001f;
    state.Tables.PostParam[2] = 1.0f;
    ASSERT_NE(state.Tables.PostParam[1], state.Tables.PostParam[2]);
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1=P2]"));
}

// --- Operators -----------------------------------------------------------------------------

TEST(Condition, NoOperatorIsFalse) {
    RunState state;
    state.Tables.PostParam[1] = 1;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [P1]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF []"));
}

TEST(Condition, NegativeNumberOnTheRightSide) {
    RunState state;
    state.Tables.PostMachine[3] = -2;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M3<-1]"));
    state.Tables.PostMachine[3] = -1;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [M3<-1]"));
    state.Tables.PostMachine[3] = 0;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [M3<-1]"));
}

TEST(Condition, TwoTableValuesAreCompared) {
    RunState state;
    state.Tables.PostParam[1] = 2.5f;
    state.Tables.PostParam[2] = 2.5f;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1=P2]"));
    state.Tables.PostParam[2] = 3;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [P1=P2]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1<P2]"));
}

TEST(Condition, NotEqualIsFoundBeforeLessAndGreater) {
    RunState state;
    state.Tables.PostParam[1] = 1;
    // Read as "1 < '>2'", the right side would be 0 and the test false.
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1<>2]"));
    state.Tables.PostParam[1] = 3;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1<>2]"));
    state.Tables.PostParam[1] = 2;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [P1<>2]"));
}

TEST(Condition, LessOrEqualAndGreaterOrEqual) {
    RunState state;
    state.Tables.PostVar[3] = 4;
    state.Tables.PostParam[4] = 4;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [V3>=P4]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [V3<=P4]"));
    state.Tables.PostParam[4] = 5;
    EXPECT_FALSE(Condition(state, "X=TRUE IF [V3>=P4]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [V3<=P4]"));
}

TEST(Condition, LessAndGreater) {
    RunState state;
    state.Tables.PostMachine[12] = 0.5f;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M12>0]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [M12<0]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [M12>.5]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M12<>0]"));
}

TEST(Condition, NumberOnTheLeftSide) {
    RunState state;
    state.Tables.PostParam[1] = 3;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [5>P1]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [2>P1]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [3=3]"));
}

TEST(Condition, FirstOperatorOfTheOrderDecidesAtItsFirstPlace) {
    // "=>" is not an operator: ">" is found first, the left side is "5=" and reads 5.
    RunState state;
    state.Tables.PostParam[1] = 5;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1=>2]"));
}

// --- VAL -----------------------------------------------------------------------------------

TEST(Condition, ValMakesBothSidesEqual) {
    RunState state;
    state.Tables.PostMachine[4] = 2.5f;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M4=VAL]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [M4<>VAL]"));
    state.Tables.PostMachine[4] = -123.4567f;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M4=VAL]"));
}

TEST(Condition, TextFromValOnIsDropped) {
    RunState state;
    state.Tables.PostMachine[4] = 7;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M4=VAL+100]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [M4=val]"));
}

TEST(Condition, ValStandsForTheLastTableReference) {
    RunState state;
    state.Tables.PostParam[1] = 1;
    state.Tables.PostParam[2] = 2;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1<P2VAL]"));  // " 1< 2" + " 2": right reads 22
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P2=VAL]"));
}

TEST(Condition, ValWithoutAReferenceIsZero) {
    RunState state;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [0=VAL]"));
}

// --- Tables and cell numbers ---------------------------------------------------------------

TEST(Condition, LetterVMeansTheNumericVarTable) {
    RunState state;
    state.Tables.PostVar[3] = 7;
    state.Tables.PostUserText[3] = "1";
    EXPECT_TRUE(Condition(state, "X=TRUE IF [V3=7]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [V3=1]"));
}

TEST(Condition, EmptyCellNumberIsCellZero) {
    RunState state;
    state.Tables.PostParam[0] = 4;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P=4]"));
}

TEST(Condition, CellNumberIsRoundedWithHalvesToEven) {
    RunState state;
    state.Tables.PostParam[2] = 9;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P2.5=9]"));
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1.5=9]"));
}

TEST(Condition, BlanksAroundTheParts) {
    RunState state;
    state.Tables.PostParam[9] = 11;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [ P9 = 11 ]"));
}

TEST(Condition, ReferenceInterruptedByAnotherLetterIsDropped) {
    RunState state;
    state.Tables.PostParam[1] = 100;
    state.Tables.PostMachine[2] = 3;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1M2=3]"));
}

TEST(Condition, ParamIndexBeyondTheBoundIsAFaultOfTheRun) {
    RunState state;
    const RunEnd end = EndOf(state, "X=TRUE IF [P301=0]");
    EXPECT_EQ(end.Status, ExitFault);
    EXPECT_EQ(end.Text, "Index out of range: PostParam(301)");
}

TEST(Condition, MachineIndexBeyondTheBoundIsAFaultOfTheRun) {
    RunState state;
    EXPECT_EQ(EndOf(state, "X=TRUE IF [M201>0]").Text, "Index out of range: PostMachine(201)");
}

TEST(Condition, VarIndexBeyondTheBoundIsAFaultOfTheRun) {
    // The text table has a cell 201, the numeric one has not.
    RunState state;
    EXPECT_EQ(EndOf(state, "X=TRUE IF [1=V201]").Text, "Index out of range: PostVar(201)");
}

TEST(Condition, NegativeCellNumberIsAFaultOfTheRun) {
    RunState state;
    EXPECT_EQ(EndOf(state, "X=TRUE IF [P-1=0]").Text, "Index out of range: PostParam(-1)");
}

// --- The line ------------------------------------------------------------------------------

TEST(Condition, LowerCaseLettersAreTakenInUpperCase) {
    RunState state;
    state.Tables.PostParam[9] = 100;
    state.Tables.PostMachine[12] = 1;
    std::string line = "canned_punch=true if [p9=100]";
    EXPECT_TRUE(EvaluateCondition(state, line));
    EXPECT_TRUE(Condition(state, "x=true if [m12<>0]"));
}

TEST(Condition, LineComesBackInUpperCase) {
    RunState state;
    std::string line = "canned_punch=true if [p9=100] rest";
    EvaluateCondition(state, line);
    EXPECT_EQ(line, "CANNED_PUNCH=TRUE IF [P9=100] REST");
}

TEST(Condition, OnlyTheFirstBracketsCount) {
    RunState state;
    state.Tables.PostParam[1] = 1;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1=1] [P1=2]"));
    EXPECT_FALSE(Condition(state, "X=TRUE IF [P1=2] [P1=1]"));
}

TEST(Condition, ConditionWithoutCloseRunsToTheEndOfTheLine) {
    RunState state;
    state.Tables.PostParam[1] = 1;
    EXPECT_TRUE(Condition(state, "X=TRUE IF [P1=1"));
}

TEST(Condition, MissingBracketAbortsWithTheLineInUpperCase) {
    RunState state;
    const RunEnd end = EndOf(state, "canned_dwell=true if p1=1");
    EXPECT_EQ(end.Status, ExitAbort);
    EXPECT_EQ(end.Text, "Torvanex\nCANNED_DWELL=TRUE IF P1=1 case not found in definition\n\nProgram Aborted");
    EXPECT_EQ(state.Engine.PostErrorText, "CANNED_DWELL=TRUE IF P1=1 case not found in definition");
}

// --- Properties ----------------------------------------------------------------------------

RC_GTEST_PROP(ConditionProperty, CellEqualsItsSevenDigitText, ()) {
    const int cell = *rc::gen::inRange(0, 301);
    const float value = *rc::gen::arbitrary<float>();
    RC_PRE(std::isfinite(value));
    RunState state;
    state.Tables.PostParam[cell] = value;
    std::string line = "X=TRUE IF [P" + LongText(cell) + "=" + Trim(PlainText(value)) + "]";
    RC_ASSERT(EvaluateCondition(state, line));
}

// A plain comparison compared as numbers gives what its text gives.
RC_GTEST_PROP(ConditionForm, PlainComparisonGivesWhatItsTextGives, ()) {
    std::string condition;
    for (int i = *rc::gen::inRange(1, 6); i > 0; --i)
        condition += *rc::gen::element<std::string>("P1", "M2", "V3", "p4", "P9999", " ", "=", "<", ">", "<>", "<=",
                                                    ">=", "=<", "3", "1.5", "X", "VAL", "-2", "P1M2", "1E3");
    const std::string line = "B=TRUE IF [" + condition + "]";
    const auto values = *rc::gen::container<std::vector<float>>(
        6, rc::gen::element<float>(0.0f, 1.0f, 1.5f, -2.0f, 3.0f, 100.00001f, 1e8f, 2e-6f, 1000.0f));
    ConditionForm form = ParseCondition(line);
    RC_CLASSIFY(form.Plain, "plain");
    std::vector<std::string> outcomes;
    for (bool plain : {true, false}) {
        RunState state;
        for (size_t i = 0; i < values.size(); ++i) {
            state.Tables.PostParam[i] = values[i];
            state.Tables.PostMachine[i] = values[(i + 1) % values.size()];
            state.Tables.PostVar[i] = values[(i + 2) % values.size()];
        }
        form.Plain = form.Plain && plain;
        bool truth = false;
        const std::string end = EngineRig::EndText([&] { truth = EvaluateCondition(state, form); });
        outcomes.push_back(end + (truth ? "T" : "F"));
    }
    RC_ASSERT(outcomes[0] == outcomes[1]);
}

TEST(ConditionForm, SingleComparisonOfCellsAndNumbersIsPlain) {
    const std::vector<std::pair<const char*, bool>> conditions = {
        {"A=TRUE IF [P9=11]", true},
        {"A=TRUE IF [ M3 <> P4 ]", true},
        {"A=TRUE IF [P1>=VAL]", true},
        {"A=TRUE IF [P1<P2=3]", false},  // two comparisons
        {"A=TRUE IF [2P1=3]", false},    // a number that runs into a cell's text
        {"A=TRUE IF [=<3]", false},      // no comparison of its own
    };
    for (const auto& [line, plain] : conditions) EXPECT_EQ(ParseCondition(line).Plain, plain) << line;
}

TEST(LineTruth, ConditionOfALineMetAgainIsEvaluatedAnew) {
    RunState state;
    // The cell, the line, and its truth with the cell so.
    const std::vector<std::tuple<float, const char*, bool>> meetings = {
        {11, "A=TRUE IF [P9=11]", true}, {12, "A=TRUE IF [P9=11]", false}, {12, "A=TRUE", true}, {12, "A=FALSE", false}};
    for (const auto& [cell, line, truth] : meetings) {
        state.Tables.PostParam[9] = cell;
        EXPECT_EQ(LineTruth(state, line), truth) << line << " with P9 " << cell;
    }
    EXPECT_EQ(state.Engine.Truths.size(), 3u);
}
