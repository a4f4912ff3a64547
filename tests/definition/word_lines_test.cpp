#include "definition/word_lines.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/numeric.h"
#include "definition/engine_rig.h"
#include "definition/post_value.h"

using namespace tvx;

namespace {

std::string Formatted(PostValueType value, std::string format, RunState* keep = nullptr) {
    RunState fresh;
    RunState& state = keep ? *keep : fresh;
    state.Engine.PostValue = std::move(value);
    ApplyFormat(state, format);
    return ValueAsText(state.Engine.PostValue);
}

// Writes block B, made of the body lines, with the word lines, after `setup`; gives the
// program's lines.
template <typename Setup>
std::vector<std::string> Block(const std::vector<std::string>& body, const std::vector<std::string>& wrd, Setup setup,
                               int times = 1) {
    std::vector<std::string> pst = {"B=TRUE"};
    pst.insert(pst.end(), body.begin(), body.end());
    pst.push_back("******");
    pst.push_back("");
    std::vector<std::string> words = wrd;
    words.push_back("******");
    EngineRig rig(pst, words);
    setup(rig.State);
    for (int i = 0; i < times; ++i) rig.Write("B");
    rig.CloseAll();
    return rig.Program();
}

using Lines = std::vector<std::string>;

}  // namespace

// --- Table tags and memos ---

TEST(ReadTagValue, MachineChangeBelowHalfAThousandthIsNotPrinted) {
    EngineRig rig({"B=TRUE", "[XW]", "******", ""}, {"XW [M3] [FORMAT=D4] [CONV=X]", "******"});
    ValueTables& t = rig.State.Tables;
    t.PostMemo[3] = 10.0f;
    t.PostMachine[3] = 10.0004f;
    rig.Write("B");
    EXPECT_EQ(t.PostMemo[3], 10.0f);
    t.PostMachine[3] = 10.0006f;
    rig.Write("B");
    EXPECT_EQ(t.PostMemo[3], 10.0006f);
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), Lines{"X10.0006"});
}

TEST(ReadTagValue, ModalTagPrintsOnceUntilASetListClearsItsMemo) {
    EngineRig rig({"ONE_BLOCK=TRUE", "[MODE]", "******", "ZAP_BLOCK=TRUE", "[RESET]", "******", ""},
                  {"MODE [M7=1] [CONV=G1]", "RESET [P0=0] [CONV=*] [SET=M7=0]", "******"});
    rig.Write("ONE_BLOCK");
    rig.Write("ONE_BLOCK");
    rig.Write("ZAP_BLOCK");
    rig.Write("ONE_BLOCK");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"G1", "G1"}));
    EXPECT_EQ(rig.State.Tables.PostMemo[7], 1.0f);
}

TEST(ReadTagValue, IfMachineEqualsPrintsWhenTheCellHasTheValueAndChanged) {
    auto run = [](float machine, float memo) {
        Lines lines = Block({"[SPIN]"}, {"SPIN [IF M4=1] [CONV=M3]"}, [&](RunState& s) {
            s.Tables.PostMachine[4] = machine;
            s.Tables.PostMemo[4] = memo;
        });
        return lines;
    };
    EXPECT_EQ(run(1, 0), Lines{"M3"});
    EXPECT_EQ(run(1, 1), Lines{});  // not changed
    EXPECT_EQ(run(2, 0), Lines{});  // changed, not to 1
}

TEST(ReadTagValue, IfMachineWithoutValueIsTheSameAsTheMachineTag) {
    EXPECT_EQ(Block({"[XW]"}, {"XW [IF M1] [FORMAT=D1] [CONV=X]"},
                    [](RunState& s) { s.Tables.PostMachine[1] = 2.5f; }),
              Lines{"X2.5"});
}

TEST(ReadTagValue, ParamTagPrintsAlwaysAndParamEqualsIsAPlainComparison) {
    EXPECT_EQ(Block({"[PW][PW][KEYON]"}, {"PW [P5] [FORMAT=D0] [CONV=P]", "KEYON [P6=2] [CONV=K]"},
                    [](RunState& s) {
                        s.Tables.PostParam[5] = 7;
                        s.Tables.PostParam[6] = 2;
                    }),
              Lines{"P7P7K"});
    EXPECT_EQ(Block({"A[KEYON]"}, {"KEYON [P6=2] [CONV=K]"}, [](RunState& s) { s.Tables.PostParam[6] = 2.0001f; }),
              Lines{"A"});
}

TEST(ReadTagValue, NotWhenTakesTheLineBackWhenNoListedCellChanged) {
    const Lines wrd = {"TOOLCHG [M5=1] [NOTWHEN=M1M2] [CONV=T]"};
    // M1 changed: the line prints and the memo of M5 takes 1.
    EXPECT_EQ(Block({"[TOOLCHG]"}, wrd,
                    [&](RunState& s) {
                        s.Tables.PostMachine[1] = 5;
                        s.Tables.PostMemo[5] = 0;
                    }),
              Lines{"T"});
    // Nothing changed: not printed, and the memo of M5 is put back.
    EngineRig rig({"B=TRUE", "[TOOLCHG]", "******", ""}, {wrd[0], "******"});
    rig.State.Tables.PostMemo[5] = 0.5f;
    rig.Write("B");
    const float memo = rig.State.Tables.PostMemo[5];
    rig.CloseAll();
    EXPECT_TRUE(rig.Program().empty());
    EXPECT_EQ(memo, 0.5f);
}

TEST(ReadTagValue, NotWhenOnAParamLineClearsTheMemoOfItsCell) {
    EngineRig rig({"B=TRUE", "[PW]", "******", ""}, {"PW [P3] [NOTWHEN=M1] [CONV=P]", "******"});
    rig.State.Tables.PostMemo[3] = 9;
    rig.Write("B");
    EXPECT_EQ(rig.State.Tables.PostMemo[3], 0.0f);
}

TEST(ReadTagValue, UserTextTagPrintsTheText) {
    EXPECT_EQ(Block({"[USER]"}, {"USER [V3] [CONV=X]"}, [](RunState& s) { s.Tables.PostUserText[3] = "abc"; }),
              Lines{"abc"});
}

TEST(ReadTagValue, TextOfVWinsOverSWhenSStandsFirst) {
    EXPECT_EQ(Block({"[BOTH]"}, {"BOTH [S4] [V3] [CONV=X]"},
                    [](RunState& s) {
                        s.Tables.PostUserText[3] = "vee";
                        s.Tables.PostText[4] = "ess";
                    }),
              Lines{"vee"});
}

TEST(ReadTagValue, SetListOnALineWithoutATableTagIsReadAsATextCell) {
    EngineRig rig({"B=TRUE", "[BAD]", "******", ""}, {"BAD [CONV=*] [SET=M5=0]", "******"});
    try {
        rig.Write("B");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_NE(end.Text.find("Type mismatch"), std::string::npos);
    }
}

TEST(ReadTagValue, ActiveIsInheritedByTheNextLineOfTheWord) {
    const Lines wrd = {"CUT [M9=1] [CONV=M7]", "CUT [CONV=G4]"};
    EXPECT_EQ(Block({"[CUT]"}, wrd, [](RunState&) {}), Lines{"M7G4"});
    EXPECT_EQ(Block({"[CUT]"}, wrd, [](RunState& s) { s.Tables.PostMemo[9] = 1; }), Lines{});
}

TEST(EvaluateWord, LineWithoutTagPrintsTheValueThePreviousWordLeft) {
    EXPECT_EQ(Block({"[A] [B]"}, {"A [P1] [FORMAT=D2] [CONV=A]", "B [CONV=B]"},
                    [](RunState& s) { s.Tables.PostParam[1] = 1.5f; }),
              Lines{"A1.50 B1.5"});
}

TEST(EvaluateWord, TextTagPrintsTheTextOfTheWordLine) {
    EXPECT_EQ(Block({"[FEED.text]=[FEED]"}, {"FEED [P7] [FORMAT=D0] [CONV=F] [TEXT=Feed rate]"},
                    [](RunState& s) { s.Tables.PostParam[7] = 300; }),
              Lines{"Feed rate=F300"});
}

TEST(EvaluateWord, TextTagOnALineWithoutTextAborts) {
    EngineRig rig({"B=TRUE", "[FEED.text]", "******", ""}, {"FEED [P7] [CONV=F]", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }),
              AbortText("FEED [P7] [CONV=F] : [TEXT= not found in definition"));
}

TEST(EvaluateWord, ActiveLineWithoutConvAborts) {
    EngineRig rig({"B=TRUE", "[FEED]", "******", ""}, {"FEED [P7] [FORMAT=D0]", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }), AbortText("FEED [P7] [FORMAT=D0] : CONV= not found in definition"));
}

TEST(EvaluateWord, FormatWithoutClosingBracketAborts) {
    EngineRig rig({"B=TRUE", "[FEED]", "******", ""}, {"FEED [P7] [CONV=F] [FORMAT=D0", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }),
              AbortText("Reserved Word - end of FORMAT expression ] not found in file " + rig.Path("def.wrd")));
}

TEST(EvaluateWord, CalcWithoutClosingBracketAborts) {
    EngineRig rig({"B=TRUE", "[FEED]", "******", ""}, {"FEED [CONV=F] [CALC=P1+1", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }),
              AbortText("Reserved Word - end of CALC expression ] not found in file " + rig.Path("def.wrd")));
}

TEST(EvaluateWord, WordWithoutABlankBehindItIsAFaultOfTheRun) {
    EngineRig rig({"B=TRUE", "[FEED]", "******", ""}, {"FEED[P7][CONV=F]", "******"});
    try {
        rig.Write("B");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
    }
}

TEST(EvaluateWord, WordFoundFirstInsideTheLastTagOfALineIsAFaultOfTheRun) {
    // "ON" stands first in "[CONV=P]", with no blank behind it: the line cannot be parsed.
    EngineRig rig({"B=TRUE", "[ON]", "******", ""}, {"PW [P5] [CONV=P]", "ON [P6] [CONV=K]", "******"});
    try {
        rig.Write("B");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
    }
}

TEST(EvaluateWord, EveryLineOfAWordPrints) {
    EXPECT_EQ(Block({"[XY]"}, {"XY [P1] [FORMAT=D0] [CONV=X]", "XY [P2] [FORMAT=D0] [CONV=Y]"},
                    [](RunState& s) {
                        s.Tables.PostParam[1] = 1;
                        s.Tables.PostParam[2] = 2;
                    }),
              Lines{"X1Y2"});
}

TEST(EvaluateWord, SearchRollsOnAndFindsAnEarlierWordAfterOneRewind) {
    // B stands before A in the file: A is found, then B only after the rewind.
    EXPECT_EQ(Block({"[A][B][A]"}, {"B [CONV=b]", "X [CONV=x]", "A [CONV=a]", "Y [CONV=y]"}, [](RunState&) {}),
              Lines{"a0b0a0"});
}

TEST(EvaluateWord, TheLineBehindAWordGroupIsPassedOverByTheNextSearch) {
    // After A, the next line (the first B) has been read: the search goes on to the second B.
    EXPECT_EQ(Block({"[A][B]"}, {"A [CONV=a]", "B [CONV=first]", "Z [CONV=z]", "B [CONV=second]", "Y [CONV=y]"},
                    [](RunState&) {}),
              Lines{"a0second0"});
}

TEST(EvaluateWord, SetCalcStoresIntoTheTableOfTheLinesTag) {
    EngineRig rig({"B=TRUE", "[STORE]", "******", ""},
                  {"STORE [P20] [SETCALC=P1*2] [FORMAT=D1] [CONV=*]", "STORE [V7] [SETCALC=3] [FORMAT=D0] [CONV=*]", "******"});
    rig.State.Tables.PostParam[1] = 1.25f;
    rig.Write("B");
    EXPECT_EQ(rig.State.Tables.PostParam[20], 2.5f);
    EXPECT_EQ(rig.State.Tables.PostVar[7], 3.0f);
}

TEST(EvaluateWord, NoPrintFormatPrintsTheAddressWithoutTheNumber) {
    EXPECT_EQ(Block({"[CYCLE]"}, {"CYCLE [P3] [FORMAT=NOP D0] [CONV=G81]"}, [](RunState& s) { s.Tables.PostParam[3] = 9; }),
              Lines{"G81"});
}

TEST(EvaluateWord, NoPrintStaysSetUntilALineWithoutFormat) {
    EXPECT_EQ(Block({"[CYCLE][NEXT][LAST][NEXT]"},
                    {"CYCLE [P3] [FORMAT=NOP D0] [CONV=G81]", "NEXT [P4] [FORMAT=D0] [CONV=R]", "LAST [P5] [CONV=Q]"},
                    [](RunState& s) {
                        s.Tables.PostParam[3] = 9;
                        s.Tables.PostParam[4] = 4;
                        s.Tables.PostParam[5] = 5;
                    }),
              Lines{"G81RQ5R4"});
}

// --- Text cells ---

TEST(ReadTagValue, StationTextPrintsOnceThenTheConvTextAlone) {
    EngineRig rig({"B=TRUE", "[STN]", "******", ""}, {"STN [S25] [CONV=T]", "******"});
    rig.State.Tables.PostText[25] = "T12";
    rig.Write("B");
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"T12", "T"}));
}

TEST(ReadTagValue, TextCellsOtherThan25To27AreKept) {
    EXPECT_EQ(Block({"[NAME][NAME]"}, {"NAME [S5] [CONV=*]"}, [](RunState& s) { s.Tables.PostText[5] = "ab"; }),
              Lines{"abab"});
}

TEST(ReadTagValue, MaxThreeOfATextKeepsThreeCharacters) {
    EXPECT_EQ(Block({"[NAME]"}, {"NAME [S5] [FORMAT=MAX(3)] [CONV=*]"}, [](RunState& s) { s.Tables.PostText[5] = "ABCDE"; }),
              Lines{"ABC"});
}

TEST(ReadTagValue, EmptyTextCellWithAFormatOtherThanUcsGivesZero) {
    EXPECT_EQ(Block({"[E]"}, {"E [S6] [FORMAT=MAX(5)] [CONV=Q]"}, [](RunState&) {}), Lines{"0"});
    EXPECT_EQ(Block({"[E]"}, {"E [S6] [FORMAT=UCS] [CONV=Q]"}, [](RunState&) {}), Lines{"Q"});
    EXPECT_EQ(Block({"[E]"}, {"E [S6] [FORMAT=UCS] [CONV=Q]"}, [](RunState& s) { s.Tables.PostText[6] = "ab"; }),
              Lines{"AB"});
}

// --- Number forms through blocks ---

TEST(ReadConvText, StarPrintsTheBareNumber) {
    EXPECT_EQ(Block({"[BARE]"}, {"BARE [P3] [FORMAT=D1] [CONV=*]"}, [](RunState& s) { s.Tables.PostParam[3] = 2.5f; }),
              Lines{"2.5"});
}

TEST(ApplyFormat, NoTrailingZeroFormatOnZeroPrintsNothingNotEvenTheAddress) {
    const Lines wrd = {"Z [P1] [FORMAT=NTZ D3] [CONV=X]"};
    EXPECT_EQ(Block({"A[Z]B"}, wrd, [](RunState&) {}), Lines{"AB"});
    EXPECT_EQ(Block({"A[Z]B"}, wrd, [](RunState& s) { s.Tables.PostParam[1] = 1; }), Lines{"AX1.000B"});
}

// --- ApplyFormat on the value register ---

TEST(ApplyFormat, DecimalsGiveExactlyThatManyPlaces) {
    EXPECT_EQ(Formatted(SingleValue(1.5f), "D3"), "1.500");
    EXPECT_EQ(Formatted(SingleValue(1.5f), "D3 DOD"), "1.5");
    EXPECT_EQ(Formatted(DoubleValue(1.23456789), "D9"), "1.234568");
}

TEST(ApplyFormat, DecimalsZeroRoundsHalvesToEven) {
    EXPECT_EQ(Formatted(SingleValue(2.5f), "D0"), "2");
    EXPECT_EQ(Formatted(SingleValue(3.5f), "D0"), "4");
}

TEST(ApplyFormat, PadWithDecimalsPadsTheIntegerPart) {
    EXPECT_EQ(Formatted(SingleValue(12.5f), "P3D1"), "012.5");
    EXPECT_EQ(Formatted(SingleValue(12.5f), "D1P3"), "012.5");
    EXPECT_EQ(Formatted(SingleValue(12.5f), "d1 p3"), "012.5");
}

TEST(ApplyFormat, PadCountsTheSignAsACharacter) { EXPECT_EQ(Formatted(SingleValue(-5), "P3"), "0-5"); }

TEST(ApplyFormat, MaxKeepsThatManyCharacters) { EXPECT_EQ(Formatted(TextValue("ABCDE"), "MAX(3)"), "ABC"); }

TEST(ApplyFormat, EmptyTextBecomesZero) { EXPECT_EQ(Formatted(TextValue(""), "MAX(5)"), "0"); }

TEST(ApplyFormat, UpperCaseAloneStopsBeforeTheNumberForms) {
    EXPECT_EQ(Formatted(TextValue("abc"), "UCS"), "ABC");
    EXPECT_EQ(Formatted(TextValue(""), "ucs"), "");
}

TEST(ApplyFormat, SignFlags) {
    EXPECT_EQ(Formatted(SingleValue(5), "NEG D0"), "-5");
    EXPECT_EQ(Formatted(SingleValue(-5), "NEG D0"), "-5");
    EXPECT_EQ(Formatted(SingleValue(5), "INV D0"), "-5");
    EXPECT_EQ(Formatted(SingleValue(-5), "INV D0"), "5");
    EXPECT_EQ(Formatted(SingleValue(-2.5f), "ABS D1"), "2.5");
}

TEST(ApplyFormat, AngleAndRounding) {
    EXPECT_EQ(Formatted(SingleValue(-90), "ANG D0"), "270");
    EXPECT_EQ(Formatted(SingleValue(2.5f), "INT D0"), "2");
    EXPECT_EQ(Formatted(SingleValue(-2.5f), "INT D0"), "-3");
    EXPECT_EQ(Formatted(SingleValue(2.1f), "RND D0"), "3");
    EXPECT_EQ(Formatted(SingleValue(2), "RND D0"), "2");
}

TEST(ApplyFormat, CharacterOfACode) {
    EXPECT_EQ(Formatted(SingleValue(0), "ASC(65)"), "A");
    EXPECT_EQ(Formatted(SingleValue(0), "ASC(13)"), "\r");
}

TEST(ApplyFormat, WithoutDecimalsANumberKeepsItsPlainText) {
    EXPECT_EQ(Formatted(SingleValue(0.1f), "ABS"), ".1");
    EXPECT_EQ(Formatted(SingleValue(1.5f), "DOD"), "1.5");
}

TEST(ApplyFormat, SignFlagsStaySetForTheNextLineOfTheWord) {
    RunState state;
    EXPECT_EQ(Formatted(SingleValue(-2), "ABS D1", &state), "2.0");
    EXPECT_EQ(Formatted(SingleValue(-3), "D1", &state), "3.0");
    EXPECT_TRUE(state.Engine.FormatABS);
}

TEST(ApplyFormat, NumberFormOfATextThatIsNoNumberIsATypeMismatch) {
    try {
        Formatted(TextValue("abc"), "D2");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_NE(end.Text.find("Type mismatch"), std::string::npos);
    }
}

// --- Assignments ---

TEST(ExecuteSetList, MemoParamAndUserTextTargets) {
    RunState state;
    ValueTables& t = state.Tables;
    t.PostMemo[5] = 7;
    t.PostMachine[3] = 1.25f;
    ExecuteSetList(state, "M5=0 P12=M3 V3=2.5");
    EXPECT_EQ(t.PostMemo[5], 0.0f);
    EXPECT_EQ(t.PostParam[12], 1.25f);
    EXPECT_EQ(t.PostUserText[3], "2.5");
    EXPECT_EQ(t.PostMachine[5], 0.0f);
}

TEST(ExecuteSetList, AssignmentsWithoutSeparators) {
    RunState state;
    ValueTables& t = state.Tables;
    t.PostParam[4] = 2.5f;
    t.PostUserText[1] = "3.5abc";
    ExecuteSetList(state, "V2=P4M6=V1P7=-1");
    EXPECT_EQ(t.PostUserText[2], "2.5");
    EXPECT_EQ(t.PostMemo[6], 3.5f);
    EXPECT_EQ(t.PostParam[7], -1.0f);
}

TEST(ExecuteSetList, MemoTargetIsRoundedToFourDecimals) {
    RunState state;
    ExecuteSetList(state, "M5=1.23456");
    EXPECT_EQ(state.Tables.PostMemo[5], ToSingle(1.2346));
}

TEST(ExecuteSetList, MemoZeroIsRoundedWhenNoMemoWasSet) {
    RunState state;
    state.Tables.PostMemo[0] = 1.23456f;
    ExecuteSetList(state, "P1=2");
    EXPECT_EQ(state.Tables.PostMemo[0], ToSingle(1.2346));
    EXPECT_EQ(state.Tables.PostParam[1], 2.0f);
}

TEST(ExecuteSetList, SignInFrontOfASourceCellCarriesOutEarlyWithZero) {
    RunState state;
    state.Tables.PostParam[1] = 9;
    state.Tables.PostParam[2] = 4;
    ExecuteSetList(state, "P1=-P2");
    EXPECT_EQ(state.Tables.PostParam[1], 0.0f);
}

TEST(ExecuteSetList, LowerCaseLettersAreNoTableLetters) {
    RunState state;
    state.Tables.PostParam[1] = 9;
    ExecuteSetList(state, "p1=5");
    EXPECT_EQ(state.Tables.PostParam[1], 9.0f);
}

TEST(TestParamEquals, CellNumberRoundsAndFurtherEqualsSignsAreLeftOut) {
    RunState state;
    state.Tables.PostParam[5] = 3;
    EXPECT_TRUE(TestParamEquals(state, "5=3"));
    state.Tables.PostParam[5] = 30;
    EXPECT_TRUE(TestParamEquals(state, "5=3=0"));
    state.Tables.PostParam[2] = 1;
    EXPECT_TRUE(TestParamEquals(state, "2.5=1"));
    state.Tables.PostParam[5] = 3.0001f;
    EXPECT_FALSE(TestParamEquals(state, "5=3"));
}

TEST(AnyMachineChanged, WalksTheWholeListWithThousandthRounding) {
    RunState state;
    ValueTables& t = state.Tables;
    t.PostMachine[1] = 1.0004f;
    t.PostMemo[1] = 1;
    bool result = true;
    AnyMachineChanged(state, "M1", result);
    EXPECT_FALSE(result);
    t.PostMachine[2] = 0.001f;
    AnyMachineChanged(state, "M1M2", result);
    EXPECT_TRUE(result);
    AnyMachineChanged(state, "M2M1", result);
    EXPECT_TRUE(result);
}
