#include "definition/calc.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <optional>
#include <string>

#include "common/fault.h"
#include "common/numtext.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

// Substitutes and evaluates an expression, as a word line's CALC does.
std::optional<double> Calc(RunState& state, std::string expr) {
    SubstituteCalc(state, expr);
    return EvaluateCalc(state, expr);
}

std::optional<double> Calc(std::string expr) {
    RunState state;
    return Calc(state, std::move(expr));
}

std::string Substituted(RunState& state, std::string expr) {
    SubstituteCalc(state, expr);
    return expr;
}

RunEnd EndOf(RunState& state, const std::string& expr) {
    try {
        Calc(state, expr);
    } catch (const RunEnd& e) {
        return e;
    }
    ADD_FAILURE() << "no end of the run for " << expr;
    return {};
}

}  // namespace

// --- Order of work -------------------------------------------------------------------------

TEST(Calc, OperatorsHaveNoPrecedenceTwoPlusThreeTimesFourIsTwenty) { EXPECT_EQ(Calc("2+3*4"), 20.0); }

TEST(Calc, GroupIsWorkedFirstTwoPlusGroupThreeTimesFourIsFourteen) { EXPECT_EQ(Calc("2+(3*4)"), 14.0); }

TEST(Calc, SubtractionRunsLeftToRight) { EXPECT_EQ(Calc("10-2-3"), 5.0); }

TEST(Calc, GroupWithNegativeValueBeforeAnOperator) { EXPECT_EQ(Calc("(1-3)*2"), -4.0); }

TEST(Calc, DivisionRunsInOrderWithTheOthers) {
    EXPECT_EQ(Calc("7/2"), 3.5);
    EXPECT_EQ(Calc("1+5/2"), 3.0);
    EXPECT_EQ(Calc("12/4*3"), 9.0);
}

TEST(Calc, NestedGroupsInnermostLastGroupFirst) {
    EXPECT_EQ(Calc("((1+2)*(3+4))"), 21.0);
    EXPECT_EQ(Calc("(1+2)*(3+4)"), 21.0);
    EXPECT_EQ(Calc("2*(3+(4-1))"), 12.0);
    EXPECT_EQ(Calc("((((5))))"), 5.0);
    EXPECT_EQ(Calc("10-(2-(3-(4-1)))"), 8.0);
}

TEST(Calc, GroupDirectlyBehindANumberJoinsItsText) {
    EXPECT_EQ(Calc("2(3)"), 23.0);
    EXPECT_EQ(Calc("(2)3"), 23.0);
    EXPECT_EQ(Calc("(1)(2)(3)"), 123.0);
    EXPECT_EQ(Calc("2(1+2)"), 23.0);
}

TEST(Calc, OperatorAtTheEndIsIgnored) {
    EXPECT_EQ(Calc("5+"), 5.0);
    EXPECT_EQ(Calc("5*"), 5.0);
}

TEST(Calc, OperatorAtTheStartIsIgnored) {
    EXPECT_EQ(Calc("+5"), 5.0);
    EXPECT_EQ(Calc("*5"), 5.0);
}

TEST(Calc, DoubleMinusInFrontIsTheEmptyNumberMinusTheRest) { EXPECT_EQ(Calc("--5"), -5.0); }

TEST(Calc, MinusBehindAnOperatorIsASign) {
    EXPECT_EQ(Calc("5--2"), 7.0);
    EXPECT_EQ(Calc("5*-2"), -10.0);
    EXPECT_EQ(Calc("-3+1"), -2.0);
}

TEST(Calc, LaterOperatorReplacesAnEarlierOneWithoutANumberBetween) {
    // The operator that follows operand 1 is the last one written before the next number.
    EXPECT_EQ(Calc("6*+2"), 12.0);
    EXPECT_EQ(Calc("6+*2"), 8.0);
}

// --- Characters ----------------------------------------------------------------------------

TEST(Calc, OtherCharactersAreDroppedAndSeparateNothing) {
    EXPECT_EQ(Calc("12A3"), 123.0);
    EXPECT_EQ(Calc("1,5+1"), 16.0);
    EXPECT_EQ(Calc("2 x 3"), 23.0);
}

TEST(Calc, BlanksAreIgnored) {
    EXPECT_EQ(Calc(" 1 2 + 3 "), 15.0);
    RunState state;
    EXPECT_EQ(Substituted(state, " 1 + 2 "), "1+2");
}

TEST(Calc, LettersAreTakenInUpperCase) {
    RunState state;
    state.Tables.PostParam[1] = 2;
    state.Tables.PostMachine[2] = 3;
    EXPECT_EQ(Substituted(state, "p1+m2"), " 2+ 3");
    EXPECT_EQ(Calc(state, "p1*m2"), 6.0);
    EXPECT_EQ(Substituted(state, "12a3"), "12A3");
}

// --- Value and text of a group -------------------------------------------------------------

TEST(Calc, LastValueIsReturnedAsAFullDouble) { EXPECT_EQ(Calc("1/3"), 1.0 / 3.0); }

TEST(Calc, GroupValuePassesThroughItsFifteenDigitText) {
    // The group's value goes back as "0.333333333333333", so the product is not 1.
    const auto grouped = Calc("(1/3)*3");
    ASSERT_TRUE(grouped.has_value());
    EXPECT_DOUBLE_EQ(*grouped, 0.999999999999999);
    EXPECT_LT(*grouped, 1.0);
    EXPECT_EQ(Calc("1/3*3"), 1.0);
}

TEST(Calc, TinyGroupValueBecomesZero) {
    // 1/100000 has the text "1E-05", which the free form turns into "0".
    EXPECT_EQ(Calc("(1/100000)+1"), 1.0);
    EXPECT_EQ(Calc("1/100000+1"), 1.00001);
}

TEST(Calc, LargeResultIsRoundedToFiveDecimalsAndStaysWhole) {
    // 1E+15 has an exponent in its text; rounded to 5 decimals it stays 1E+15.
    EXPECT_EQ(Calc("999999999999999+1"), 1e15);
    EXPECT_EQ(Calc("99999999999999+1"), 1e14);
}

TEST(Calc, GroupValueWithAnExponentStopsTheNextScanAtItsLetter) {
    // The group's value comes back as "1E+15"; the next round reads "1" and stops at "E".
    EXPECT_EQ(Calc("(999999999999999+1)"), 1.0);
    EXPECT_EQ(Calc("(999999999999999+1)*2"), 1.0);
}

TEST(Calc, ArithmeticOverflowIsAFaultOfTheRun) {
    const std::string big = "1" + std::string(300, '0');
    RunState state;
    const RunEnd end = EndOf(state, big + "*" + big);
    EXPECT_EQ(end.Status, ExitFault);
    EXPECT_EQ(end.Text.rfind("Overflow", 0), 0u);
}

// --- Faults and no value -------------------------------------------------------------------

TEST(Calc, DivisionByZeroIsAFaultWithoutAValue) {
    RunState state;
    EXPECT_EQ(Calc(state, "8/0"), std::nullopt);
    EXPECT_TRUE(state.Engine.MathError);
}

TEST(Calc, DivisionByZeroInsideAGroupIsAFault) {
    RunState state;
    EXPECT_EQ(Calc(state, "1+(4/(2-2))"), std::nullopt);
    EXPECT_TRUE(state.Engine.MathError);
}

TEST(Calc, DivisionByAMinusWithoutDigitsIsADivisionByZero) {
    RunState state;
    EXPECT_EQ(Calc(state, "8/-"), std::nullopt);
    EXPECT_TRUE(state.Engine.MathError);
}

TEST(Calc, EmptyExpressionHasNoValueAndIsNoFault) {
    RunState state;
    EXPECT_EQ(Calc(state, ""), std::nullopt);
    EXPECT_FALSE(state.Engine.MathError);
}

TEST(Calc, ExpressionWithoutANumberHasNoValue) {
    RunState state;
    EXPECT_EQ(Calc(state, "+"), std::nullopt);
    EXPECT_EQ(Calc(state, "ABC"), std::nullopt);
    EXPECT_FALSE(state.Engine.MathError);
}

TEST(Calc, EmptyGroupLeavesNoText) {
    RunState state;
    EXPECT_EQ(Calc(state, "()"), std::nullopt);
    EXPECT_EQ(Calc(state, "2()"), 2.0);
    EXPECT_EQ(Calc(state, "2+()3"), 5.0);
    EXPECT_FALSE(state.Engine.MathError);
}

TEST(Calc, OpenGroupWithoutCloseIsAFaultWithoutAValue) {
    RunState state;
    EXPECT_EQ(Calc(state, "(2"), std::nullopt);
    EXPECT_TRUE(state.Engine.MathError);
}

TEST(Calc, UnbalancedParenthesesAreAFault) {
    for (const char* expr : {"2)", "((1)", "(1))", "1+(2*(3)"}) {
        RunState state;
        EXPECT_EQ(Calc(state, expr), std::nullopt) << expr;
        EXPECT_TRUE(state.Engine.MathError) << expr;
    }
}

TEST(Calc, CloseBeforeOpenIsAFaultOfUnbalancedParentheses) {
    // Equal counts, but the last "(" has no ")" behind it.
    RunState state;
    EXPECT_EQ(Calc(state, ")("), std::nullopt);
    EXPECT_TRUE(state.Engine.MathError);
    RunState other;
    EXPECT_EQ(Calc(other, "1)+(2"), std::nullopt);
    EXPECT_TRUE(other.Engine.MathError);
}

TEST(Calc, MathErrorIsNeverCleared) {
    RunState state;
    EXPECT_EQ(Calc(state, "8/0"), std::nullopt);
    EXPECT_EQ(Calc(state, "1+1"), 2.0);
    EXPECT_TRUE(state.Engine.MathError);
}

// --- Table references ----------------------------------------------------------------------

TEST(Calc, ParamAtOneHalfSubstitutesBlankPointFive) {
    RunState state;
    state.Tables.PostParam[1] = 0.5f;
    EXPECT_EQ(Substituted(state, "P1"), " .5");
    EXPECT_EQ(Calc(state, "P1"), 0.5);
}

TEST(Calc, MachineCellSubstitutesItsSingleText) {
    RunState state;
    state.Tables.PostMachine[2] = -1.5f;
    state.Tables.PostMachine[200] = 3.14159265f;
    EXPECT_EQ(Substituted(state, "M2*2"), "-1.5*2");
    EXPECT_EQ(Substituted(state, "M200"), " 3.141593");
    EXPECT_EQ(Calc(state, "M2*2"), -3.0);
}

TEST(Calc, ParamValueHasSevenSignificantDigits) {
    RunState state;
    state.Tables.PostParam[7] = 10.0006f;
    EXPECT_EQ(Substituted(state, "P7"), " 10.0006");
    EXPECT_EQ(Calc(state, "P7"), 10.0006);
}

TEST(Calc, UserTextWithoutANumberSubstitutesZero) {
    RunState state;
    state.Tables.PostUserText[3] = "ABC";
    EXPECT_EQ(Substituted(state, "V3"), " 0");
    EXPECT_EQ(Calc(state, "V3"), 0.0);
}

TEST(Calc, UserTextSubstitutesItsLeadingNumberAsASingle) {
    RunState state;
    state.Tables.PostUserText[3] = "12.5mm";
    state.Tables.PostUserText[4] = "  -3 x";
    state.Tables.PostUserText[5] = "0.1";
    state.Tables.PostUserText[201] = "7";
    EXPECT_EQ(Substituted(state, "V3"), " 12.5");
    EXPECT_EQ(Substituted(state, "V4"), "-3");
    EXPECT_EQ(Substituted(state, "V5"), " .1");
    EXPECT_EQ(Calc(state, "V3+V4*2"), 19.0);
    EXPECT_EQ(Calc(state, "V201"), 7.0);
}

TEST(Calc, UserTextNumberBeyondASingleIsAnOverflow) {
    RunState state;
    state.Tables.PostUserText[1] = "1E300";
    const RunEnd end = EndOf(state, "V1");
    EXPECT_EQ(end.Status, ExitFault);
    EXPECT_EQ(end.Text.rfind("Overflow", 0), 0u);
}

TEST(Calc, NegativeCellBehindAMinusIsASign) {
    RunState state;
    state.Tables.PostParam[1] = -3;
    EXPECT_EQ(Substituted(state, "2-P1"), "2--3");
    EXPECT_EQ(Calc(state, "2-P1"), 5.0);
    EXPECT_EQ(Calc(state, "P1-2"), -5.0);
}

TEST(Calc, ReferencesInsideGroups) {
    RunState state;
    state.Tables.PostParam[4] = 2;
    state.Tables.PostMachine[10] = 5;
    EXPECT_EQ(Substituted(state, "(P4+M10)*P4"), "( 2+ 5)* 2");
    EXPECT_EQ(Calc(state, "(P4+M10)*P4"), 14.0);
    EXPECT_EQ(Calc(state, "P4+M10*P4"), 14.0);
    EXPECT_EQ(Calc(state, "P4+(M10*P4)"), 12.0);
}

TEST(Calc, LargeCellTextLosesItsExponentLetter) {
    // " 1E+07": the "E" falls out and "1+07" is left.
    RunState state;
    state.Tables.PostParam[1] = 10000000.0f;
    EXPECT_EQ(Substituted(state, "P1"), " 1E+07");
    EXPECT_EQ(Calc(state, "P1"), 8.0);
}

TEST(Calc, EmptyCellNumberIsCellZero) {
    RunState state;
    state.Tables.PostParam[0] = 4;
    EXPECT_EQ(Substituted(state, "P+1"), " 4+1");
    EXPECT_EQ(Calc(state, "P"), 4.0);
}

TEST(Calc, CellNumberIsRoundedWithHalvesToEven) {
    RunState state;
    state.Tables.PostParam[2] = 9;
    state.Tables.PostParam[4] = 11;
    EXPECT_EQ(Substituted(state, "P1.5"), " 9");
    EXPECT_EQ(Substituted(state, "P2.5"), " 9");
    EXPECT_EQ(Substituted(state, "P3.5"), " 11");
}

TEST(Calc, BlanksInsideACellNumberArePassedOver) {
    RunState state;
    state.Tables.PostParam[12] = 6;
    EXPECT_EQ(Substituted(state, "P 1 2"), " 6");
}

TEST(Calc, ReferenceCutOffByAnotherLetterKeepsItsDigitsForTheNextOfItsLetter) {
    // P collects "1", M takes over and is resolved at "+", the next P goes on with "1" and
    // collects "3": cell 13.
    RunState state;
    state.Tables.PostParam[1] = 100;
    state.Tables.PostParam[3] = 50;
    state.Tables.PostParam[13] = 7;
    state.Tables.PostMachine[2] = 3;
    EXPECT_EQ(Substituted(state, "P1M2+P3"), " 3+ 7");
    EXPECT_EQ(Calc(state, "P1M2+P3"), 10.0);
}

TEST(Calc, ParamIndexBeyondTheBoundIsAFaultOfTheRun) {
    RunState state;
    const RunEnd end = EndOf(state, "P301");
    EXPECT_EQ(end.Status, ExitFault);
    EXPECT_EQ(end.Text, "Index out of range: PostParam(301)");
}

TEST(Calc, MachineIndexBeyondTheBoundIsAFaultOfTheRun) {
    RunState state;
    EXPECT_EQ(EndOf(state, "1+M201").Text, "Index out of range: PostMachine(201)");
}

TEST(Calc, UserTextIndexBeyondTheBoundIsAFaultOfTheRun) {
    RunState state;
    EXPECT_EQ(EndOf(state, "V202").Text, "Index out of range: PostUserText(202)");
}

TEST(Calc, HugeCellNumberIsAnOverflowOfTheRun) {
    RunState state;
    const RunEnd end = EndOf(state, "P99999999999");
    EXPECT_EQ(end.Status, ExitFault);
    EXPECT_EQ(end.Text.rfind("Overflow", 0), 0u);
}

// --- Properties ----------------------------------------------------------------------------

namespace {

std::optional<double> CalcOf(int a, char op, int b) {
    return Calc(LongText(a) + std::string(1, op) + LongText(b));
}

}  // namespace

RC_GTEST_PROP(CalcProperty, SumOfSmallWholeNumbersIsExact, ()) {
    const int a = *rc::gen::inRange(0, 10000);
    const int b = *rc::gen::inRange(0, 10000);
    RC_ASSERT(CalcOf(a, '+', b) == std::optional<double>(a + b));
}

RC_GTEST_PROP(CalcProperty, ProductOfSmallWholeNumbersIsExact, ()) {
    const int a = *rc::gen::inRange(0, 10000);
    const int b = *rc::gen::inRange(0, 10000);
    RC_ASSERT(CalcOf(a, '*', b) == std::optional<double>(static_cast<double>(a) * b));
}

RC_GTEST_PROP(CalcProperty, DifferenceOfSmallWholeNumbersIsExact, ()) {
    const int a = *rc::gen::inRange(0, 10000);
    const int b = *rc::gen::inRange(0, 10000);
    RC_ASSERT(CalcOf(a, '-', b) == std::optional<double>(a - b));
}

RC_GTEST_PROP(CalcProperty, GroupedSumOfSmallWholeNumbersIsExact, ()) {
    const int a = *rc::gen::inRange(0, 10000);
    const int b = *rc::gen::inRange(0, 10000);
    RC_ASSERT(Calc("(" + LongText(a) + "+" + LongText(b) + ")") == std::optional<double>(a + b));
}
