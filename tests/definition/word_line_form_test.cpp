// Word lines read once into their forms: what a form holds, and that a word evaluated through
// the held word file (forms kept for the run) and through the streamed one (each line read
// anew) gives the same output, the same tables and the same end.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/block_writer.h"
#include "definition/calc.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "definition/post_value.h"
#include "definition/word_lines.h"
#include "state/run_state.h"

using namespace tvx;

TEST(WordLineForm, ReadsTheTableTagAndTheRestOfTheLine) {
    const WordLineForm f =
        ParseWordLine("X_AXIS [IF M10=2] [CALC=P1+1] [FORMAT=ntz d3] [CONV=X] [SET=P5=3 M6=P7] [TEXT=abc] NLZ");
    EXPECT_TRUE(f.WithIf);
    EXPECT_EQ(f.Line, "X_AXIS [M10=2] [CALC=P1+1] [FORMAT=ntz d3] [CONV=X] [SET=P5=3 M6=P7] [TEXT=abc] NLZ");
    EXPECT_EQ(f.Kind, WordLineForm::Table::M);
    EXPECT_EQ(f.Index, 10);
    EXPECT_FALSE(f.MachineValue);
    EXPECT_EQ(f.MachineNumber, 2);
    EXPECT_TRUE(f.Calc);
    ASSERT_EQ(f.CalcOf.Pieces.size(), 2u);
    EXPECT_EQ(f.CalcOf.Pieces[0].Table, 'P');
    EXPECT_EQ(f.CalcOf.Pieces[1].Literal, "+1");
    EXPECT_TRUE(f.CalcOf.Chain);
    EXPECT_TRUE(f.NLZ);
    EXPECT_TRUE(f.FormatOf.NTZ);
    EXPECT_EQ(f.FormatOf.Decimals, 3);
    EXPECT_EQ(f.ConvTag.Inner, "X");
    ASSERT_EQ(f.SetList.size(), 2u);
    EXPECT_EQ(f.SetList[0].TargetLetter, 'P');
    EXPECT_EQ(f.SetList[0].TargetCell, 5);
    EXPECT_EQ(f.SetList[0].SourceNumber, 3);
    EXPECT_EQ(f.SetList[1].TargetLetter, 'M');
    EXPECT_EQ(f.SetList[1].SourceLetter, 'P');
    EXPECT_EQ(f.SetList[1].SourceCell, 7);
    EXPECT_EQ(f.TextTag.Inner, "abc");
}

TEST(WordLineForm, OpenTagIsAFaultOnlyWhenItIsRead) {
    const WordLineForm f = ParseWordLine("W [P3] [CONV=A");
    EXPECT_TRUE(f.Conv);
    EXPECT_FALSE(f.ConvTag.Closed);
    EXPECT_EQ(EngineRig::EndText([&] { TagInner(f.ConvTag); }),
              "Invalid procedure call: no ] behind \"[CONV=\" in the line: W [P3] [CONV=A");
}

TEST(WordLineForm, FormatKeepsItsFlagsApartFromItsNumbers) {
    const FormatForm f = ParseFormat("abs p4 d2 max=6");
    EXPECT_EQ(f.Whole, "ABS P4 D2 MAX=6");
    EXPECT_EQ(f.Rest, " P4 D2 MAX=6");
    EXPECT_TRUE(f.ABS);
    EXPECT_EQ(f.Pad, 4);
    EXPECT_EQ(f.Decimals, 2);
    EXPECT_TRUE(f.HasMax);
    EXPECT_EQ(f.MaxCount, 6);
    const FormatForm c = ParseFormat("ASC)65(");
    EXPECT_TRUE(c.HasCode);
    EXPECT_TRUE(c.CodeReversed);
}

TEST(WordLineForm, ReferenceCutOffByAnotherLetterKeepsItsDigitsForTheNextOfItsLetter) {
    // "P1M2P3+1": the P reference takes 1, then 3 after the M; the M's 2 is never resolved.
    const std::vector<CalcPiece> pieces = ParseCalcSubstitution("p1m2p3+1");
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0].Table, 'P');
    EXPECT_EQ(pieces[0].Cell, 13);
    EXPECT_EQ(pieces[1].Table, 0);
    EXPECT_EQ(pieces[1].Literal, "+1");
}

TEST(WordLineForm, LineOfAHeldWordFileIsReadOnce) {
    EngineRig rig({"B=TRUE", "[W]", "******"}, {"W [P1] [FORMAT=D0] [CONV=N]", "******"});
    DefinitionText& text = HeldTextOf(rig.State, ChannelWord);
    const WordLineForm* first = &WordLineFormOf(text, 0);
    EXPECT_EQ(&WordLineFormOf(text, 0), first);
    rig.State.Tables.PostParam[1] = 7;
    rig.Write("B");
    rig.State.Tables.PostParam[1] = 8;
    rig.Write("B");
    EXPECT_EQ(&WordLineFormOf(text, 0), first);
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"N7", "N8"}));
}

TEST(CalcLastRound, SmallValueComesBackUnrounded) {
    // A value whose plain text takes a small exponent reads as "0" in free form: no rounding.
    RunState state;
    const auto v = EvaluateCalc(state, ".0000123");
    ASSERT_TRUE(v.has_value());
    EXPECT_EQ(*v, 0.0000123);
}

TEST(CalcLastRound, ValueOfAnExponentTextIsRoundedToFiveDecimals) {
    RunState state;
    const auto v = EvaluateCalc(state, "999999999999999.7");
    ASSERT_TRUE(v.has_value());
    EXPECT_EQ(*v, RoundTo(999999999999999.7, 5));
    const auto w = EvaluateCalc(state, "99999999999999.7");
    ASSERT_TRUE(w.has_value());
    EXPECT_EQ(*w, 99999999999999.7);
}

namespace {

// Word lines of every kind, sound and broken, under the words A, B and C.
const std::vector<std::string> WordLinePool = {
    "A [P1] [FORMAT=D2] [CONV=X]",
    "A [M2] [FORMAT=NTZ D3] [CONV=Y] [SET=P3=P1 M4=5]",
    "A [IF M3=1] [CONV=G1]",
    "A [M3=2] [CONV=G2] [SET=M3=0]",
    "A [P2=1] [CONV=Q] [TEXT=hello]",
    "A [P4] [SETCALC=P4+P1] [FORMAT=NOP D2] [CONV=*]",
    "A [P5] [CALC=(P1+2)*M2] [FORMAT=ABS P3] [CONV=C]",
    "A [P6] [CALC=P1-P7] [FORMAT=D1] NLZ [CONV=D]",
    "A [S1] [FORMAT=UCS MAX3] [CONV=*]",
    "A [V2] [CONV=*] [SET=V3=P1]",
    "A [M5] [NOTWHEN=M6M7] [FORMAT=D0] [CONV=N]",
    "A [P8] [FORMAT=ASC(66)] [CONV=*]",
    "A [P9] [FORMAT=INV RND D0] [CONV=R]",
    "A [P10] [FORMAT=ANG D1] [CONV=A]",
    "A [P1] [CONV=Z",
    "A [P11] [FORMAT=D2 [CONV=E]",
    "A [P12] [CALC=P1+1 [CONV=F]",
    "A [P13] [FORMAT=D2]",
    "B [P1] [FORMAT=DOD] [CONV=B]",
    "B [M1] [CONV=M]",
    "C [P14] [FORMAT=INT P2] [CONV=K] [SET=M8=P14 P15=M8]",
    "AB [P1] [CONV=AB]",
    "******",
};

struct Outcome {
    std::string Line;
    std::string End;
    std::vector<float> Cells;
    std::vector<std::string> Texts;
    bool operator==(const Outcome&) const = default;
};

}  // namespace

RC_GTEST_PROP(WordLineForm, HeldAndStreamedWordFilesEvaluateAlike, ()) {
    std::vector<std::string> wrd =
        *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(WordLinePool));
    wrd.push_back("******");
    const auto words = *rc::gen::container<std::vector<std::string>>(
        rc::gen::element<std::string>("A", "B", "C", "AB", "A.text", "B.text"));
    const auto values = *rc::gen::container<std::vector<float>>(
        20, rc::gen::map(rc::gen::inRange(-40, 40), [](int v) { return static_cast<float>(v) / 4.0f; }));

    std::vector<Outcome> outcomes;
    for (bool streamed : {false, true}) {
        EngineRig rig({"B=TRUE", "x", "******"}, wrd);
        if (streamed) {
            rig.State.Engine.Cache.HeldSizeLimit = 0;
            ForgetDefinition(rig.State.Engine.Cache, rig.State.Job.WordFile);
            CloseInputChannel(rig.State, ChannelWord);
            OpenDefinitionInput(rig.State, ChannelWord, rig.State.Job.WordFile);
        }
        ValueTables& t = rig.State.Tables;
        for (size_t i = 0; i < values.size(); ++i) {
            t.PostParam[i] = values[i];
            t.PostMachine[i] = values[values.size() - 1 - i];
            t.PostMemo[i] = values[(i * 7) % values.size()];
        }
        t.PostText[1] = "abcdef";
        t.PostUserText[2] = "user";
        Outcome o;
        o.End = EngineRig::EndText([&] {
            for (const std::string& word : words) EvaluateWord(rig.State, word);
        });
        // Each rig has a directory of its own: the messages name the word file alike.
        for (size_t at; (at = o.End.find(rig.State.Job.WordFile)) != std::string::npos;)
            o.End.replace(at, rig.State.Job.WordFile.size(), "def.wrd");
        o.Line = rig.State.Engine.PostLine;
        for (size_t i = 0; i < values.size(); ++i) {
            o.Cells.push_back(t.PostParam[i]);
            o.Cells.push_back(t.PostMachine[i]);
            o.Cells.push_back(t.PostMemo[i]);
        }
        for (int i = 1; i <= 3; ++i) o.Texts.push_back(t.PostUserText[i]);
        o.Texts.push_back(t.PostText[1]);
        CloseAllFiles(rig.State);
        outcomes.push_back(o);
    }
    RC_ASSERT(outcomes[0] == outcomes[1]);
}

namespace {

// The outcome of an expression: its value, the math error flag, or the fault it ends in.
struct CalcOutcome {
    std::optional<double> Value;
    bool MathError = false;
    std::string End;
    bool operator==(const CalcOutcome& other) const {
        const bool sameValue = Value.has_value() == other.Value.has_value() &&
                               (!Value || *Value == *other.Value || (std::isnan(*Value) && std::isnan(*other.Value)));
        return sameValue && MathError == other.MathError && End == other.End;
    }
};

void FillCells(RunState& state, const std::vector<float>& values) {
    for (size_t i = 0; i < values.size(); ++i) {
        state.Tables.PostParam[i] = values[i];
        state.Tables.PostMachine[i] = values[values.size() - 1 - i];
        state.Tables.PostUserText[i] = PlainText(values[(i * 3) % values.size()]);
    }
}

}  // namespace

RC_GTEST_PROP(CalcChain, ChainWorkedOnItsTermsGivesWhatItsTextGives, ()) {
    std::string expr;
    for (int i = *rc::gen::inRange(1, 8); i > 0; --i)
        expr += *rc::gen::element<std::string>("P1", "P2", "M3", "V4", "P5", "p6", "2", "0.5", ".25", "1.5.2", "+", "-",
                                               "*", "/", "+", "*", "(", ")", " ", "X", "P99999", "M", "P1M2");
    const auto values = *rc::gen::container<std::vector<float>>(
        8, rc::gen::element<float>(0.0f, -0.0f, 1.0f, -2.5f, 0.001f, 12.75f, 3e-5f, 1e8f, -9999999.0f, 2e20f, 1e38f,
                                   0.1f, 7.0f));
    RC_CLASSIFY(ParseCalc(expr).Chain, "chain");
    std::vector<CalcOutcome> outcomes;
    for (bool byTerms : {true, false}) {
        RunState state;
        FillCells(state, values);
        CalcOutcome o;
        o.End = EngineRig::EndText([&] {
            if (byTerms) {
                o.Value = EvaluateCalc(state, ParseCalc(expr));
            } else {
                std::string text = expr;
                SubstituteCalc(state, text);
                o.Value = EvaluateCalc(state, text);
            }
        });
        o.MathError = state.Engine.MathError;
        outcomes.push_back(o);
    }
    RC_ASSERT(outcomes[0] == outcomes[1]);
}

TEST(CalcChain, PlainChainsAreKeptAsTerms) {
    const std::vector<std::pair<const char*, bool>> expressions = {
        {"P204+P20", true},
        {"p205 + 1", true},
        {"2*M3/V1-.5", true},
        {"-P1", false},     // a sign
        {"(P1+2)", false},  // a group
        {"2P1", false},     // a number that runs into a cell's text
        {"P1+", false},     // an operator without its operand
        {"P1+X", false},    // a letter the evaluator drops
        {"", false},
    };
    for (const auto& [text, chain] : expressions) EXPECT_EQ(ParseCalc(text).Chain, chain) << text;
}

TEST(CalcChain, CellWithAnExponentTextGoesTheWayOfTheText) {
    // 1E+08 reads as "1+08" in the evaluator: 1 + 8 + 1.
    RunState state;
    state.Tables.PostParam[1] = 1e8f;
    const auto v = EvaluateCalc(state, ParseCalc("P1+1"));
    ASSERT_TRUE(v.has_value());
    EXPECT_EQ(*v, 10.0);
}

TEST(PostValue, NoValueInEitherNumberFormReadsAsItsOwnText) {
    for (PostValueType value : {SingleValue(-9999.0f), DoubleValue(-9999.0), TextValue(NoValueText)}) {
        SetPlainNumberText(value, "w");
        EXPECT_EQ(value.Type, PostValueType::Kind::Text);
        EXPECT_EQ(value.Text, NoValueText);
    }
    EXPECT_TRUE(IsNoValue(TextValue(NoValueText)));
}

TEST(PostValue, ANumberOrANumericTextBecomesItsBarePlainText) {
    PostValueType single = SingleValue(0.5f);
    SetPlainNumberText(single, "w");
    EXPECT_EQ(single.Text, ".5");
    PostValueType text = TextValue(" 12.50 ");
    SetPlainNumberText(text, "w");
    EXPECT_EQ(text.Text, "12.5");
    PostValueType negative = DoubleValue(-0.25);
    SetPlainNumberText(negative, "w");
    EXPECT_EQ(negative.Text, "-.25");
}
