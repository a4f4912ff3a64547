#include "definition/block_writer.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "definition/reserved_word.h"

using namespace tvx;

namespace {

const std::vector<std::string> WorkedPst = {"CANNED_PUNCH=TRUE", "[BLOCK_NUMBER1][X_AXIS][Y_AXIS]", "******"};
const std::vector<std::string> WorkedWrd = {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "X_AXIS [M1] [FORMAT=D3] [CONV=X]",
                                            "Y_AXIS [M2] [FORMAT=D3] [CONV=Y]"};

void SetWorkedValues(RunState& state) {
    ValueTables& t = state.Tables;
    t.PostMachine[1] = 10.5f;
    t.PostMemo[1] = 10.5f;
    t.PostMachine[2] = 3;
    t.PostMemo[2] = 0;
    t.PostParam[1] = 5;
    t.PostParam[4] = 5;
}

// Writes a block of a second definition file in RenumberMode, as the format pass does.
void WriteRenumbered(EngineRig& rig, const std::vector<std::string>& text) {
    WriteFileAtomically(rig.Path("fmt.tmp"), CrLf(text));
    rig.State.Job.PostFile = rig.Path("fmt.tmp");
    ASSERT_TRUE(FindReservedWord(rig.State, "PROGRAM_FORMAT"));
    rig.State.Engine.RenumberMode = true;
    WriteReservedBlock(rig.State);
    rig.CloseAll();
}

std::vector<std::string> WithEnd(std::vector<std::string> lines) {
    lines.push_back("******");
    return lines;
}

}  // namespace

TEST(WorkedExample, NormalPassDefersTheBlockNumberAndSilencesTheUnchangedAxis) {
    EngineRig rig(WorkedPst, WithEnd(WorkedWrd));
    SetWorkedValues(rig.State);
    EXPECT_TRUE(rig.Write("CANNED_PUNCH"));
    rig.CloseAll();
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "[BLOCK_NUMBER1]Y3.000\r\n");
    EXPECT_EQ(rig.State.Tables.PostMemo[2], 3.0f);
    EXPECT_EQ(rig.State.Tables.PostMemo[1], 10.5f);
    EXPECT_EQ(rig.State.Tables.PostParam[1], 5.0f);
}

TEST(WorkedExample, RenumberPassPrintsTheBlockNumberAndStepsIt) {
    EngineRig rig(WorkedPst, WithEnd(WorkedWrd));
    SetWorkedValues(rig.State);
    WriteRenumbered(rig, {"PROGRAM_FORMAT=TRUE", "[BLOCK_NUMBER1]Y3.000", "******"});
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "N5Y3.000\r\n");
    EXPECT_EQ(rig.State.Tables.PostParam[1], 10.0f);
}

TEST(WorkedExample, WordFileOfExactlyTheThreeLinesLosesTheLastWord) {
    // Y_AXIS stands in the last line of the .wrd, which counts as not found.
    EngineRig rig(WorkedPst, WorkedWrd);
    SetWorkedValues(rig.State);
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("CANNED_PUNCH"); }),
              AbortText("Reserved Word - Y_AXIS not found in file " + rig.Path("def.wrd")));
}

TEST(WriteReservedBlock, SecondBlankStaysBehindPrintedFieldTextAndFoldsOtherwise) {
    EngineRig rig({"B=TRUE", "X[FIRST]  Y[SECOND]", "X[NONE]  Y[SECOND]", "******", ""},
                  {"FIRST [P1] [FORMAT=D0] [CONV=*]", "NONE [P1=9] [CONV=*]", "SECOND [P2] [FORMAT=D0] [CONV=*]", "******"});
    rig.State.Tables.PostParam[1] = 5;
    rig.State.Tables.PostParam[2] = 6;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"X5  Y6", "X Y6"}));
}

TEST(WriteReservedBlock, RunsOfBlanksInLiteralTextShrinkToOne) {
    EngineRig rig({"B=TRUE", "G1   X    Y", "******", ""}, {"******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), std::vector<std::string>{"G1 X Y"});
}

TEST(WriteReservedBlock, LineOfOnlyABlockNumberInRenumberModeIsDroppedAndTheNumberNotUsed) {
    EngineRig rig({"B=TRUE", "X", "******"}, {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "******"});
    rig.State.Tables.PostParam[1] = 10;
    rig.State.Tables.PostParam[4] = 5;
    WriteRenumbered(rig, {"PROGRAM_FORMAT=TRUE", "[BLOCK_NUMBER1]", "[BLOCK_NUMBER1]X1", "******", ""});
    EXPECT_EQ(rig.Program(), std::vector<std::string>{"N10X1"});
    EXPECT_EQ(rig.State.Tables.PostParam[1], 15.0f);
}

TEST(WriteReservedBlock, LineOfOnlySpacesIsNotPrintedInTheNormalPass) {
    EngineRig rig({"B=TRUE", "   ", "X", "", "******", ""}, {"******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), std::vector<std::string>{"X"});
}

TEST(WriteReservedBlock, RenumberModeCopiesOtherTagsWithTheirBrackets) {
    EngineRig rig({"B=TRUE", "X", "******"}, {"******"});
    WriteRenumbered(rig, {"PROGRAM_FORMAT=TRUE", "G1[BLOCK_MEMO_SET][FOO] X", "******", ""});
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"G1[BLOCK_MEMO_SET][FOO] X"}));
}

TEST(WriteReservedBlock, RenumberModeDropsALineOfNothingButCopiedTags) {
    // A copied tag is no printing field: the line counts as empty.
    EngineRig rig({"B=TRUE", "X", "******"}, {"******"});
    WriteRenumbered(rig, {"PROGRAM_FORMAT=TRUE", "[RESET_PUNCH]", "Y[RESET_PUNCH]", "******", ""});
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"Y[RESET_PUNCH]"}));
}

TEST(WriteReservedBlock, DeferredTagsAreCopiedAsTheyStandInTheNormalPass) {
    EngineRig rig({"B=TRUE", "[BLOCK_NUMBER2][BLOCK_MEMO_SET][BLOCK_MEMO_RESET][BLOCK_SUB_NUMBER]",
                   "[RESET_PUNCH][INCREMENT_SUB]G0", "[BLOCK_NUMBER1]", "******", ""},
                  {"******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"[BLOCK_NUMBER2][BLOCK_MEMO_SET][BLOCK_MEMO_RESET][BLOCK_SUB_NUMBER]",
                                                       "[RESET_PUNCH][INCREMENT_SUB]G0", "[BLOCK_NUMBER1]"}));
}

TEST(WriteReservedBlock, BraceWithoutAtIsALiteralAndAStrayAtIsLost) {
    EngineRig rig({"B=TRUE", "A{B}C", "D@E", "******", ""}, {"******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"A{B}C", "DE"}));
}

TEST(WriteReservedBlock, RightAlignmentAtTheLineStartIsTrimmedAway) {
    EngineRig rig({"B=TRUE", "{[NUM]}@R010", "AB{[NUM]}@R010", "AB{[NUM]}@L010", "******", ""},
                  {"NUM [P1] [FORMAT=D0] [CONV=N]", "******"});
    rig.State.Tables.PostParam[1] = 15;
    rig.Write("B");
    rig.CloseAll();
    // @R010 is a width of 8: "N15" gets 5 blanks in front, which the trim takes off again.
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"N15", "AB   N15", "AB      N15"}));
}

TEST(WriteReservedBlock, AlignmentShowsInReportModeWhereNothingIsTrimmed) {
    EngineRig rig({"B=TRUE", "{[NUM]}@R010", "A  B", "", "******", ""}, {"NUM [P1] [FORMAT=D0] [CONV=N]", "******"});
    rig.State.Tables.PostParam[1] = 15;
    rig.State.Engine.ReportMode = true;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Report(), (std::vector<std::string>{"     N15", "A  B", ""}));
    EXPECT_TRUE(rig.Program().empty());
}

TEST(WriteReservedBlock, OverlongLineIsNotCutByAlignment) {
    EngineRig rig({"B=TRUE", "ABCDEFGHIJ{[NUM]}@L005", "******", ""}, {"NUM [P1] [FORMAT=D0] [CONV=N]", "******"});
    rig.State.Tables.PostParam[1] = 15;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), std::vector<std::string>{"ABCDEFGHIJN15"});
}

TEST(EvaluateWord, WordOnlyInTheLastWordLineAbortsAsNotFound) {
    EngineRig rig({"B=TRUE", "[LAST]", "******", ""}, {"A [P1] [CONV=A]", "LAST [P2] [CONV=L]"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }),
              AbortText("Reserved Word - LAST not found in file " + rig.Path("def.wrd")));
}

TEST(EvaluateWord, WordMissingFromTheWordFileAborts) {
    EngineRig rig({"B=TRUE", "[NOWHERE]", "******", ""}, {"A [P1] [CONV=A]", "******"});
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("B"); }),
              AbortText("Reserved Word - NOWHERE not found in file " + rig.Path("def.wrd")));
}

TEST(WriteReservedBlock, NotSignAloneStaysInTheNormalPassUnlessP9Is100) {
    const std::string notSign(1, '\xAC');
    {
        EngineRig rig({"B=TRUE", notSign, "******", ""}, {"******"});
        rig.Write("B");
        rig.CloseAll();
        EXPECT_EQ(rig.Program(), std::vector<std::string>{notSign});
    }
    {
        EngineRig rig({"B=TRUE", notSign, "******", ""}, {"******"});
        rig.State.Tables.PostParam[9] = 100;
        rig.Write("B");
        rig.CloseAll();
        EXPECT_TRUE(rig.Program().empty());
        EXPECT_EQ(ReadAllBytes(rig.State.Job.PlatinoFile), std::string("\0\r\n", 3));
    }
}

TEST(WriteReservedBlock, NotSignBecomesANulInRenumberMode) {
    EngineRig rig({"B=TRUE", "X", "******"}, {"******"});
    WriteRenumbered(rig, {"PROGRAM_FORMAT=TRUE", std::string(1, '\xAC'), "******", ""});
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), std::string("\0\r\n", 3));
}

TEST(WriteReservedBlock, LineHoldingByte226BecomesTheEndOfFileMark) {
    EngineRig rig({"B=TRUE", "AB\xE2" "CD", "******", ""}, {"******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(ReadAllBytes(rig.State.Job.ProgramFile), "\x1A\r\n");
}

TEST(WriteReservedBlock, MinusNineThousandLineIsAnEmptyLine) {
    EngineRig rig({"B=TRUE", "-9999", "X", "******", ""}, {"******"});
    rig.State.Engine.ReportMode = true;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Report(), (std::vector<std::string>{"", "X"}));
}

TEST(WriteReservedBlock, RoutesToTheSubroutineFileUnlessP80IsOne) {
    EngineRig rig({"B=TRUE", "S", "******", ""}, {"******"});
    rig.State.Engine.SubroutineOutput = true;
    rig.Write("B");
    rig.State.Tables.PostParam[80] = 1;
    rig.Write("B");
    rig.State.Tables.PostParam[80] = 0;
    rig.State.Engine.SubroutineOutput = false;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Subroutines(), (std::vector<std::string>{"SUBROUTINES=TRUE", "S"}));
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"S", "S"}));
}

TEST(WriteReservedBlock, P9Of100WinsOverTheSubroutineFile) {
    EngineRig rig({"B=TRUE", "S", "******", ""}, {"******"});
    rig.State.Engine.SubroutineOutput = true;
    rig.State.Tables.PostParam[9] = 100;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Platino(), std::vector<std::string>{"S"});
    EXPECT_EQ(rig.Subroutines(), std::vector<std::string>{"SUBROUTINES=TRUE"});
}

TEST(WriteReservedBlock, LineOfInactiveOrEmptyTagsIsNotPrinted) {
    EngineRig rig({"B=TRUE", "[OFF]", "[EMPTY]", "******", ""},
                  {"OFF [P1=9] [CONV=X]", "EMPTY [P1] [FORMAT=NTZ D0] [CONV=X]", "******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_TRUE(rig.Program().empty());
}

TEST(WriteReservedBlock, LayoutTagWithTextBehindLosesTheText) {
    EngineRig rig({"B=TRUE", "A[TOOL_LAYOUT]B", "C", "******", ""}, {"******"}, {"TOOL_LAYOUT=TRUE", "T1x", "******"},
                  {"title", "******"});
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"A", "C"}));
}

TEST(WriteReservedBlock, MissingSeparatorRunsPastTheEndOfTheFile) {
    EngineRig rig({"B=TRUE", "X"}, {"******"});
    try {
        rig.Write("B");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "Input past end of file: " + rig.Path("def.pst"));
    }
}
