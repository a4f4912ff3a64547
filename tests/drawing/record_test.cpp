#include "drawing/record.h"

#include <gtest/gtest.h>

#include <vector>

#include <string>

#include "common/fault.h"
#include "drawing/drawfile.h"

using namespace tvx;

namespace {

// The fault text of an expression that must end the run, or "" when it does not.
template <typename F>
std::string FaultOf(F f) {
    try {
        f();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        return e.Text;
    }
    return "";
}

// A record with every field set to something other than its cleared value.
DrawRecord FilledRecord() {
    DrawRecord r;
    r.EntityCode = 130;
    r.EntityName = "Arc Profile";
    r.EntityText = "SOME TEXT";
    r.SpareWord = 7;
    r.RecordCount = 99;
    r.CarryWord1 = 501;
    r.CarryWord2 = -3;
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{static_cast<float>(i), static_cast<float>(-i)};
    for (int i = 1; i <= 20; ++i) r.Value[i] = static_cast<float>(i) + 0.25f;
    for (int i = 1; i <= 8; ++i) r.Count[i] = static_cast<int16_t>(i * 11);
    r.Spare[1] = RawCell{1, 2, 3, 4};
    r.Spare[2] = RawCell{0xFF, 0xFE, 0xFD, 0xFC};
    r.Side = -1;
    r.FollowFlag = -1;
    r.Extent[1] = {1, 2};
    r.Extent[2] = {3, 4};
    r.Margin[1] = {5, 6};
    r.Margin[2] = {7, 8};
    for (ToolSpec* t : {&r.ToolA, &r.ToolB}) {
        t->Present = -1;
        t->Letter = "E";
        t->ToolName = "RECT 10 X 5";
        for (int i = 1; i <= 4; ++i) t->Size[i] = static_cast<float>(10 * i);
        t->ToolNumber = 12;
        t->WorkType = 21;
        t->ToolStep = 45;
        t->ToolAngle = 90;
        t->StageIndex = 3;
    }
    r.LeadIn = LeadSpec{2, 5.5f, 30, 11};
    r.LeadOut = LeadSpec{-3, 6.5f, 60, 22};
    r.After = AfterAction{2, 1.5f};
    return r;
}

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

}  // namespace

TEST(DrawRecord, ArraysAreIndexedFromOne) {
    DrawRecord r;
    r.Value[10] = 45;
    r.Point[4] = SinglePoint{1.5f, 2};
    r.Count[8] = 2;
    EXPECT_EQ(r.Value.Cells[9], 45.0f);
    EXPECT_EQ(r.Point.Cells[3].X, 1.5f);
    EXPECT_EQ(r.Count.Cells[7], 2);
    EXPECT_EQ(decltype(r.Value)::Bound, 20);
}

TEST(DrawRecord, AnIndexOutsideTheFieldIsAFaultNamingTheField) {
    DrawRecord r;
    const DrawRecord& c = r;
    EXPECT_EQ(FaultOf([&] { r.Value[21] = 1; }), "Index out of range: Value(21)");
    EXPECT_EQ(FaultOf([&] { (void)c.Value[0]; }), "Index out of range: Value(0)");
    EXPECT_EQ(FaultOf([&] { r.Point[7].X = 1; }), "Index out of range: Point(7)");
    EXPECT_EQ(FaultOf([&] { r.Count[9] = 1; }), "Index out of range: Count(9)");
    EXPECT_EQ(FaultOf([&] { r.Spare[3][0] = 1; }), "Index out of range: Spare(3)");
    EXPECT_EQ(FaultOf([&] { r.Extent[-1].X = 1; }), "Index out of range: Extent(-1)");
    EXPECT_EQ(FaultOf([&] { r.Margin[3].Y = 1; }), "Index out of range: Margin(3)");
    EXPECT_EQ(FaultOf([&] { r.ToolA.Size[5] = 1; }), "Index out of range: Size(5)");
}

TEST(DrawRecord, ATextShorterThanItsFieldIsPaddedWithBlanks) {
    ToolSpec t;
    t.ToolName = "RND 10";
    EXPECT_EQ(t.ToolName.Text(), "RND 10" + std::string(58, ' '));
    EXPECT_EQ(t.ToolName.Trimmed(), "RND 10");
    DrawRecord r;
    r.EntityName = "Punch";
    EXPECT_EQ(r.EntityName.Text(), "Punch             ");
    // A longer text keeps its first bytes, as a fixed-length text does.
    r.EntityName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    EXPECT_EQ(r.EntityName.Text(), "ABCDEFGHIJKLMNOPQR");
}

TEST(DrawRecord, ToolNamesAreComparedOnTheTrimmedText) {
    ToolSpec a, b;
    a.ToolName = "RND 10";
    b.ToolName = "  RND 10";
    EXPECT_NE(a.ToolName.Text(), b.ToolName.Text());
    EXPECT_TRUE(SameToolName(a, b));
    b.ToolName = "RND 10.5";
    EXPECT_FALSE(SameToolName(a, b));
    b.ToolName = "rnd 10";  // plain byte comparison: case counts
    EXPECT_FALSE(SameToolName(a, b));
}

// Only blanks are trimmed, at either end; a tab or a zero byte is part of the name, and blanks
// inside it count.
TEST(DrawRecord, ToolNamesAreTrimmedOfBlanksOnlyAsTrimDoes) {
    const std::vector<std::string> names{"", " ", "RND 10", "  RND 10", "RND  10", "\tRND 10", "RND 10\t",
                                         std::string("RND 10\0", 7), std::string(64, 'X'), std::string(63, ' ') + "X"};
    for (const std::string& x : names) {
        for (const std::string& y : names) {
            ToolSpec a, b;
            a.ToolName = x;
            b.ToolName = y;
            EXPECT_EQ(SameToolName(a, b), a.ToolName.Trimmed() == b.ToolName.Trimmed()) << x << "|" << y;
        }
    }
}

TEST(DrawRecord, ValuesAreSinglesAndAPassStartsFromTheRoundedValue) {
    DrawRecord r;
    const double computed = 1.0 / 3.0;
    r.Value[1] = ToSingle(computed);
    const DrawRecord back = DecodeRecord(Bytes(r));
    // 1/3 rounded to 32 bits is 0.3333333432674408 (0x3EAAAAAB).
    EXPECT_EQ(back.Value[1], 0.3333333432674408);
    EXPECT_NE(static_cast<double>(back.Value[1]), computed);
    EXPECT_EQ(static_cast<double>(back.Value[1]) * 3.0, 1.0000000298023224);
}

TEST(DrawRecord, ADefaultRecordIsACleanRecord) {
    DrawRecord made;
    DrawRecord cleared = FilledRecord();
    ClearRecord(cleared);
    EXPECT_EQ(Bytes(made), Bytes(cleared));
}

TEST(DrawRecord, ClearRecordGivesBlankTextsAndZeros) {
    DrawRecord r = FilledRecord();
    ClearRecord(r);
    const std::string b = Bytes(r);
    for (size_t i = 0; i < b.size(); ++i) {
        const bool text = (i >= 2 && i < 92) || (i >= 292 && i < 357) || (i >= 391 && i < 456);
        EXPECT_EQ(b[i], text ? ' ' : '\0') << "byte " << i;
    }
    EXPECT_EQ(r.EntityName.Text(), std::string(18, ' '));
    EXPECT_EQ(r.EntityText.Text(), std::string(72, ' '));
}

TEST(DrawRecord, ClearToolWritesABlankLetterNotAZeroByte) {
    ToolSpec t = FilledRecord().ToolA;
    ClearTool(t);
    EXPECT_EQ(t.Letter.Text(), " ");
    EXPECT_EQ(t.Letter.Bytes[0], ' ');
    EXPECT_EQ(t.Present, 0);
    EXPECT_EQ(t.ToolName.Text(), std::string(64, ' '));
    for (int i = 1; i <= 4; ++i) EXPECT_EQ(t.Size[i], 0.0f);
    EXPECT_EQ(t.ToolNumber, 0);
    EXPECT_EQ(t.WorkType, 0);
    EXPECT_EQ(t.ToolStep, 0.0f);
    EXPECT_EQ(t.ToolAngle, 0.0f);
    EXPECT_EQ(t.StageIndex, 0);
    // Every comparison of the letter with a quoted letter is false for a record without a tool.
    for (const char* letter : {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M", "S", "P", "U", ""})
        EXPECT_NE(t.Letter.Text(), letter);
}

TEST(DrawRecord, ClearLeadAndClearAfterGiveZeros) {
    DrawRecord r = FilledRecord();
    ClearLead(r.LeadIn);
    ClearAfter(r.After);
    EXPECT_EQ(r.LeadIn.LeadKind, 0);
    EXPECT_EQ(r.LeadIn.LeadLength, 0.0f);
    EXPECT_EQ(r.LeadIn.LeadAngle, 0.0f);
    EXPECT_EQ(r.LeadIn.LeadSpare, 0);
    EXPECT_EQ(r.After.ActionCode, 0);
    EXPECT_EQ(r.After.ActionValue, 0.0f);
    EXPECT_EQ(r.LeadOut.LeadKind, -3);  // the other lead is left alone
}

TEST(DrawRecord, CopyRecordCopiesEveryField) {
    const DrawRecord source = FilledRecord();
    DrawRecord destination;
    CopyRecord(source, destination);
    EXPECT_EQ(Bytes(destination), Bytes(source));
    CopyRecord(destination, destination);
    EXPECT_EQ(Bytes(destination), Bytes(source));
}

TEST(DrawRecord, CopyToolLeadAndAfterCopyEveryField) {
    const DrawRecord source = FilledRecord();
    DrawRecord d;
    CopyTool(source.ToolA, d.ToolB);
    CopyLead(source.LeadOut, d.LeadIn);
    CopyAfter(source.After, d.After);
    EXPECT_EQ(d.ToolB.Present, -1);
    EXPECT_EQ(d.ToolB.Letter.Text(), "E");
    EXPECT_EQ(d.ToolB.ToolName.Trimmed(), "RECT 10 X 5");
    EXPECT_EQ(d.ToolB.Size[4], 40.0f);
    EXPECT_EQ(d.ToolB.ToolNumber, 12);
    EXPECT_EQ(d.ToolB.WorkType, 21);
    EXPECT_EQ(d.ToolB.ToolStep, 45.0f);
    EXPECT_EQ(d.ToolB.ToolAngle, 90.0f);
    EXPECT_EQ(d.ToolB.StageIndex, 3);
    EXPECT_EQ(d.LeadIn.LeadKind, -3);
    EXPECT_EQ(d.LeadIn.LeadLength, 6.5f);
    EXPECT_EQ(d.LeadIn.LeadAngle, 60.0f);
    EXPECT_EQ(d.LeadIn.LeadSpare, 22);
    EXPECT_EQ(d.After.ActionCode, 2);
    EXPECT_EQ(d.After.ActionValue, 1.5f);
    EXPECT_EQ(d.ToolA.Present, 0);
}

TEST(DrawRecord, SwapLeadsAlsoExchangesTheLeadSpares) {
    DrawRecord r = FilledRecord();
    SwapLeads(r);
    EXPECT_EQ(r.LeadIn.LeadSpare, 22);
    EXPECT_EQ(r.LeadOut.LeadSpare, 11);
    EXPECT_EQ(r.LeadIn.LeadLength, 6.5f);
    EXPECT_EQ(r.LeadIn.LeadAngle, 60.0f);
    EXPECT_EQ(r.LeadOut.LeadLength, 5.5f);
    EXPECT_EQ(r.LeadOut.LeadAngle, 30.0f);
}

TEST(DrawRecord, SwapLeadsDoesNotTouchTheSign) {
    DrawRecord r = FilledRecord();  // LeadIn kind 2, LeadOut kind -3
    SwapLeads(r);
    EXPECT_EQ(r.LeadIn.LeadKind, -3);
    EXPECT_EQ(r.LeadOut.LeadKind, 2);
    r.LeadIn.LeadKind = -2;  // a reversed entity's lead keeps the sign the reversal gave it
    r.LeadOut.LeadKind = -2;
    SwapLeads(r);
    EXPECT_EQ(r.LeadIn.LeadKind, -2);
    EXPECT_EQ(r.LeadOut.LeadKind, -2);
}

TEST(DrawRecord, WorkClassesAtTheirBorders) {
    // IsPunchWork: 10 <= v < 40.
    EXPECT_FALSE(IsPunchWork(9));
    EXPECT_TRUE(IsPunchWork(10));
    EXPECT_TRUE(IsPunchWork(19));
    EXPECT_TRUE(IsPunchWork(20));
    EXPECT_TRUE(IsPunchWork(39));
    EXPECT_FALSE(IsPunchWork(40));
    EXPECT_FALSE(IsPunchWork(-10));
    // IsProfileWork: 1 <= v < 10.
    EXPECT_FALSE(IsProfileWork(0));
    EXPECT_TRUE(IsProfileWork(1));
    EXPECT_TRUE(IsProfileWork(9));
    EXPECT_FALSE(IsProfileWork(10));
    EXPECT_FALSE(IsProfileWork(-1));
    // IsRotaryWork: v >= 20.
    EXPECT_FALSE(IsRotaryWork(19));
    EXPECT_TRUE(IsRotaryWork(20));
    EXPECT_TRUE(IsRotaryWork(39));
    EXPECT_TRUE(IsRotaryWork(40));
    EXPECT_TRUE(IsRotaryWork(32767));
    EXPECT_FALSE(IsRotaryWork(-20));
    // IsDualWork: not a multiple of 10 and below 40.
    EXPECT_TRUE(IsDualWork(9));
    EXPECT_FALSE(IsDualWork(10));
    EXPECT_TRUE(IsDualWork(19));
    EXPECT_FALSE(IsDualWork(20));
    EXPECT_TRUE(IsDualWork(39));
    EXPECT_FALSE(IsDualWork(40));
    EXPECT_FALSE(IsDualWork(41));
    EXPECT_FALSE(IsDualWork(0));
    EXPECT_TRUE(IsDualWork(-1));  // -1 is no multiple of 10 and below 40
    EXPECT_FALSE(IsDualWork(-10));
    EXPECT_TRUE(IsDualWork(-32768));  // -3276.8 tens: no multiple of 10
}

TEST(DrawRecord, ChildRecordsTakeTheNameOfTheirCode) {
    const DrawRecord parent = FilledRecord();
    DrawRecord child;
    const std::pair<int16_t, const char*> named[] = {{120, "Line Profile"},   {130, "Arc Profile"},
                                                     {210, "Punch"},          {220, "Linear Pattern"},
                                                     {225, "Grid Pattern"},   {230, "Arc Pattern"}};
    for (const auto& [code, name] : named) {
        MakeChildRecord(parent, code, child);
        EXPECT_EQ(child.EntityCode, code);
        EXPECT_EQ(child.EntityName.Trimmed(), name);
    }
    for (int16_t code : {110, 151, 156, 311, 350, 500, 521}) {
        MakeChildRecord(parent, code, child);
        EXPECT_EQ(child.EntityCode, code);
        EXPECT_EQ(child.EntityName.Text(), std::string(18, ' '));
    }
}

TEST(DrawRecord, AChildInheritsTheCarryWordsAndToolAOnly) {
    const DrawRecord parent = FilledRecord();
    DrawRecord child = FilledRecord();
    child.CarryWord1 = 1;
    MakeChildRecord(parent, 120, child);
    DrawRecord expected;
    expected.EntityCode = 120;
    expected.EntityName = "Line Profile";
    expected.CarryWord1 = 501;
    expected.CarryWord2 = -3;
    CopyTool(parent.ToolA, expected.ToolA);
    EXPECT_EQ(Bytes(child), Bytes(expected));
    // Leads, the second tool and the action after stay cleared.
    EXPECT_EQ(child.LeadIn.LeadKind, 0);
    EXPECT_EQ(child.ToolB.Present, 0);
    EXPECT_EQ(child.After.ActionCode, 0);
}

TEST(DrawRecord, AChildMayBeMadeInThePlaceOfItsParent) {
    DrawRecord r = FilledRecord();
    MakeChildRecord(r, 210, r);
    EXPECT_EQ(r.EntityName.Trimmed(), "Punch");
    EXPECT_EQ(r.CarryWord1, 501);
    EXPECT_EQ(r.CarryWord2, -3);
    EXPECT_EQ(r.ToolA.ToolName.Trimmed(), "RECT 10 X 5");
    EXPECT_EQ(r.ToolA.StageIndex, 3);
    EXPECT_EQ(r.Value[1], 0.0f);
}

TEST(ToolString, AFullLineFillsEveryFieldAndMarksTheToolPresent) {
    ToolSpec t;
    ParseToolString(" E , RECT 10 X 5 , 10, 5.5, 0.25, -1, 12, 21, 45, 90.5, 3", t);
    EXPECT_EQ(t.Present, -1);
    EXPECT_EQ(t.Letter.Text(), "E");
    EXPECT_EQ(t.ToolName.Text(), "RECT 10 X 5" + std::string(53, ' '));
    EXPECT_EQ(t.Size[1], 10.0f);
    EXPECT_EQ(t.Size[2], 5.5f);
    EXPECT_EQ(t.Size[3], 0.25f);
    EXPECT_EQ(t.Size[4], -1.0f);
    EXPECT_EQ(t.ToolNumber, 12);
    EXPECT_EQ(t.WorkType, 21);
    EXPECT_EQ(t.ToolStep, 45.0f);
    EXPECT_EQ(t.ToolAngle, 90.5f);
    EXPECT_EQ(t.StageIndex, 3);
}

TEST(ToolString, FewerThanElevenPiecesLeaveNoTool) {
    ToolSpec t;
    t.Present = -1;
    t.ToolName = "OLD";
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0", t);  // ten pieces
    EXPECT_EQ(t.Present, 0);
    EXPECT_EQ(t.Letter.Text(), " ");
    EXPECT_EQ(t.ToolName.Trimmed(), "");
    ParseToolString("", t);
    EXPECT_EQ(t.Present, 0);
}

TEST(ToolString, ALetterOutsideTheListLeavesNoTool) {
    ToolSpec t;
    for (const char* line : {"X,RND 10,10,0,0,0,1,10,0,0,1", "a,RND 10,10,0,0,0,1,10,0,0,1",
                             "AB,RND 10,10,0,0,0,1,10,0,0,1", ",RND 10,10,0,0,0,1,10,0,0,1"}) {
        ParseToolString(line, t);
        EXPECT_EQ(t.Present, 0) << line;
        EXPECT_EQ(t.Letter.Text(), " ") << line;
    }
}

TEST(ToolString, LibraryToolingLetterUIsNotAcceptedInAToolString) {
    ToolSpec t;
    ParseToolString("U,LIB 7,10,10,0,0,7,10,0,0,1", t);
    EXPECT_EQ(t.Present, 0);
    EXPECT_EQ(t.Letter.Text(), " ");
}

TEST(ToolString, EveryListedLetterIsAccepted) {
    ToolSpec t;
    for (const char* letter : {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M", "S", "P"}) {
        ParseToolString(std::string(letter) + ",T,1,1,0,0,1,10,0,0,1", t);
        EXPECT_EQ(t.Present, -1) << letter;
        EXPECT_EQ(t.Letter.Text(), letter);
    }
}

TEST(ToolString, StageIndexIsKeptAsGivenAndIsNeverBelowOne) {
    ToolSpec t;
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0,7", t);
    EXPECT_EQ(t.StageIndex, 7);
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0,0", t);
    EXPECT_EQ(t.StageIndex, 1);
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0,-4", t);
    EXPECT_EQ(t.StageIndex, 1);
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0,", t);
    EXPECT_EQ(t.StageIndex, 1);
}

TEST(ToolString, ToolNumberAndWorkTypeAreTruncated) {
    ToolSpec t;
    ParseToolString("A,RND 10,10,0,0,0,12.9,19.99,0,0,1", t);
    EXPECT_EQ(t.ToolNumber, 12);
    EXPECT_EQ(t.WorkType, 19);
    ParseToolString("A,RND 10,10,0,0,0,-3.7,-0.5,0,0,1", t);
    EXPECT_EQ(t.ToolNumber, -3);
    EXPECT_EQ(t.WorkType, 0);
}

TEST(ToolString, NumbersAreLeadingNumbersOfTheirText) {
    ToolSpec t;
    ParseToolString("C,SQ 20,20mm,abc,1 2,,5x,10,2.5deg,-45,1", t);
    EXPECT_EQ(t.Size[1], 20.0f);
    EXPECT_EQ(t.Size[2], 0.0f);
    EXPECT_EQ(t.Size[3], 12.0f);  // blanks inside a number are passed over
    EXPECT_EQ(t.Size[4], 0.0f);
    EXPECT_EQ(t.ToolNumber, 5);
    EXPECT_EQ(t.ToolStep, 2.5f);
    EXPECT_EQ(t.ToolAngle, -45.0f);
}

TEST(ToolString, PiecesBeyondTheEleventhArePassedOver) {
    ToolSpec t;
    ParseToolString("P,PLASMA,1.2,0,0,0,0,5,0,0,2,EXTRA,MORE", t);
    EXPECT_EQ(t.Present, -1);
    EXPECT_EQ(t.Letter.Text(), "P");
    EXPECT_EQ(t.WorkType, 5);
    EXPECT_EQ(t.StageIndex, 2);
}

TEST(ToolString, ALongNameIsCutToItsField) {
    ToolSpec t;
    ParseToolString("A," + std::string(70, 'N') + ",10,0,0,0,1,10,0,0,1", t);
    EXPECT_EQ(t.ToolName.Text(), std::string(64, 'N'));
}

TEST(ToolString, AToolNumberBeyondSixteenBitsIsAnOverflow) {
    ToolSpec t;
    EXPECT_EQ(FaultOf([&] { ParseToolString("A,RND,10,0,0,0,40000,10,0,0,1", t); }), "Overflow: ToolNumber 40000");
}

TEST(ToolClass, ALetterTestIsFalseForTheBlankLetterOfAClearedTool) {
    ToolSpec tool;
    ClearTool(tool);
    EXPECT_FALSE(LetterIs(tool, 'A'));
    EXPECT_FALSE(LetterIs(tool, '\0'));
    tool.Letter = "E";
    EXPECT_TRUE(LetterIs(tool, 'E'));
    EXPECT_FALSE(LetterIs(tool, 'e'));
}

TEST(ToolClass, AToolIsWorkedWhenPresentWithAWorkTypeOfTenOrMore) {
    ToolSpec tool;
    tool.WorkType = 10;
    EXPECT_FALSE(IsWorkedTool(tool));
    tool.Present = -1;
    EXPECT_TRUE(IsWorkedTool(tool));
    tool.WorkType = 9;
    EXPECT_FALSE(IsWorkedTool(tool));
    tool.Present = 1;
    tool.WorkType = 20;
    EXPECT_TRUE(IsWorkedTool(tool));
}

// Every point and both boxes move; each sum is made in double and stored as a single, so that
// 0.1 + 0.2 is the single nearest 0.3000000119..., not a sum of two singles rounded twice.
TEST(MoveRecord, MovesEveryPointAndBothBoxesWithSumsStoredAsSingles) {
    DrawRecord record;
    for (int i = 1; i <= 6; ++i) record.Point[i] = SinglePoint{static_cast<float>(i), 0.1f};
    for (int i = 1; i <= 2; ++i) {
        record.Extent[i] = SinglePoint{10.0f * i, 0.1f};
        record.Margin[i] = SinglePoint{20.0f * i, 0.1f};
    }
    record.Value[1] = 7;
    MoveRecord(record, 100, 0.2);
    const float y = static_cast<float>(static_cast<double>(0.1f) + 0.2);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(record.Point[i].X, 100.0f + i);
        EXPECT_EQ(record.Point[i].Y, y);
    }
    for (int i = 1; i <= 2; ++i) {
        EXPECT_EQ(record.Extent[i].X, 100.0f + 10.0f * i);
        EXPECT_EQ(record.Margin[i].X, 100.0f + 20.0f * i);
        EXPECT_EQ(record.Margin[i].Y, y);
    }
    EXPECT_EQ(record.Value[1], 7.0f);
}
