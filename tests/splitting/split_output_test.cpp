// The output of a split and the arithmetic every split routine shares: numbering of appended
// records, the bound on one entity's records, the side of an outline's lines, made segments,
// hit counts and the faults of a damaged record.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "common/fault.h"
#include "drawing/binding_support.h"
#include "drawing/drawfile.h"
#include "splitting/split_output.h"
#include "test_support.h"

using namespace tvx;
using tvx::bindtest::Machine;

namespace {

DrawRecord Source(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.CarryWord1 = 7;
    r.CarryWord2 = 9;
    r.ToolA.Present = -1;
    r.ToolA.Letter = "A";
    r.ToolA.Size[1] = 10;
    r.ToolA.WorkType = 10;
    r.LeadIn.LeadKind = 1;
    r.After.ActionCode = 2;
    return r;
}

std::string FaultText(const std::function<void()>& run) {
    try {
        run();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        return end.Text;
    }
    ADD_FAILURE() << "no fault";
    return {};
}

}  // namespace

TEST(SplitOutput, AppendsBehindTheRunningCountAndCountsTheEntitysRecords) {
    const MachineState m = Machine();
    std::vector<DrawRecord> records;
    int32_t count = 41;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices);
    const DrawRecord source = Source(154);
    DrawRecord made = MadeRecord(source, 120);
    AppendRecord(out, source, made);
    AppendRecord(out, source, made);
    EXPECT_EQ(count, 43);
    EXPECT_EQ(out.Made, 2);
    EXPECT_EQ(records.size(), 2u);
}

TEST(SplitOutput, AFileOutputWritesEachRecordAtTheNextNumber) {
    TempDir dir;
    DrawingFile file;
    MakeWorkingFile(file, dir.Path + "/PTemp.tmp");
    const MachineState m = Machine();
    int32_t count = 3;
    SplitOutput out = FileOutput(m, file, count, MainPathChoices, "record 2 of Progmain.drw");
    const DrawRecord source = Source(151);
    DrawRecord made = MadeRecord(source, 210);
    made.Point[4] = SinglePoint{5, 6};
    AppendBound(out, source, made);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(RecordsOnDisk(file), 4);
    const DrawRecord back = ReadRecord(file, 4);
    EXPECT_EQ(back.EntityCode, 210);
    EXPECT_FLOAT_EQ(back.Point[4].X, 5);
    EXPECT_EQ(ReadRecord(file, 1).EntityCode, 0);
}

namespace {

// An output with neither file nor list, counting what it is given.
SplitOutput CountingOutput(const MachineState& machine, int32_t& count) {
    SplitOutput out;
    out.Machine = &machine;
    out.OutputCount = &count;
    return out;
}

}  // namespace

TEST(SplitOutput, AnOutputWithNeitherFileNorListOnlyCounts) {
    const MachineState m = Machine();
    int32_t count = 0;
    SplitOutput out = CountingOutput(m, count);
    const DrawRecord source = Source(151);
    AppendRecord(out, source, source);
    EXPECT_EQ(count, 1);
}

TEST(SplitOutput, OneEntityMakesNoMoreThanTheBoundAndTheFaultNamesIt) {
    const MachineState m = Machine();
    int32_t count = 0;
    SplitOutput out = CountingOutput(m, count);
    out.Place = "record 12 of Progmain.drw";
    const DrawRecord source = Source(151);
    for (int32_t i = 0; i < MostRecordsFromOneEntity; ++i) AppendRecord(out, source, source);
    EXPECT_EQ(FaultText([&] { AppendRecord(out, source, source); }),
              "Cannot split record 12 of Progmain.drw (code 151): it makes more than 100000 records");
    EXPECT_EQ(count, MostRecordsFromOneEntity);
}

// A walk names the place by its parts; the text is the same as a place given whole.
TEST(SplitOutput, APlaceGivenByItsPartsIsNamedInTheFault) {
    const MachineState m = Machine();
    int32_t count = 0;
    SplitOutput out = CountingOutput(m, count);
    const std::string file = "Progmain.drw";
    out.PlaceNumber = 12;
    out.PlaceFile = &file;
    const DrawRecord source = Source(151);
    EXPECT_EQ(FaultText([&] { SplitFault(out, source, "no pitch"); }),
              "Cannot split record 12 of Progmain.drw (code 151): no pitch");
    out.Place = "record 3 of Shape.drw";
    EXPECT_EQ(FaultText([&] { SplitFault(out, source, "no pitch"); }),
              "Cannot split record 3 of Shape.drw (code 151): no pitch");
    SplitOutput bare;
    EXPECT_EQ(FaultText([&] { SplitFault(bare, source, "no pitch"); }), "Cannot split the entity (code 151): no pitch");
}

TEST(SplitOutput, AMadeRecordTakesTheCodeItsNameTheCarriedWordsAndToolAOnly) {
    const DrawRecord made = MadeRecord(Source(153), 130);
    EXPECT_EQ(made.EntityCode, 130);
    EXPECT_EQ(made.EntityName.Trimmed(), "Arc Profile");
    EXPECT_EQ(made.CarryWord1, 7);
    EXPECT_EQ(made.CarryWord2, 9);
    EXPECT_EQ(made.ToolA.Letter.Text(), "A");
    EXPECT_EQ(made.LeadIn.LeadKind, 0);
    EXPECT_EQ(made.After.ActionCode, 0);
}

// The table of a line's Side: ArcTurn with a sweep of +1 counter-clockwise and -1 clockwise.
TEST(LineSide, FollowsTheTableOfSideDirectionAndConvention) {
    const MachineState one = Machine(1);
    const MachineState other = Machine(0);
    EXPECT_EQ(LineSide(one, -1, true), -1);
    EXPECT_EQ(LineSide(other, -1, true), 1);
    EXPECT_EQ(LineSide(one, -1, false), 1);
    EXPECT_EQ(LineSide(other, -1, false), -1);
    EXPECT_EQ(LineSide(one, 1, true), 1);
    EXPECT_EQ(LineSide(other, 1, true), -1);
    EXPECT_EQ(LineSide(one, 1, false), -1);
    EXPECT_EQ(LineSide(other, 1, false), 1);
    for (bool ccw : {true, false}) {
        EXPECT_EQ(LineSide(one, 0, ccw), 0);
        EXPECT_EQ(LineSide(other, 0, ccw), 0);
    }
}

TEST(LineSide, AnySideOtherThanOneAndMinusOneLeavesZero) {
    const MachineState one = Machine(1);
    EXPECT_EQ(LineSide(one, 2, true), 0);
    EXPECT_EQ(LineSide(one, -3, false), 0);
}

TEST(CounterClockwise, BothDimensionsAboveZeroOrBothNot) {
    EXPECT_TRUE(CounterClockwise(10, 5));
    EXPECT_TRUE(CounterClockwise(-10, -5));
    EXPECT_TRUE(CounterClockwise(0, -5));
    EXPECT_FALSE(CounterClockwise(-10, 5));
    EXPECT_FALSE(CounterClockwise(10, 0));
}

TEST(MadeSegments, ALineHoldsItsEndsTheUnroundedMiddleTheRoundedLengthAndDirection) {
    DrawRecord line;
    // From (0, 0) to (1.00003, 2.00001): the middle (0.500015, 1.000005) is kept as it is;
    // the length sqrt(1.00003^2 + 2.00001^2) = 2.2360974... rounds to 2.2361, the direction
    // atan(2.00001 / 1.00003) = 63.4343... degrees rounds to 63.434.
    SetLineSegment(line, PlanePoint{0, 0}, PlanePoint{1.00003, 2.00001});
    EXPECT_FLOAT_EQ(line.Point[2].X, 0.500015f);
    EXPECT_FLOAT_EQ(line.Point[2].Y, 1.000005f);
    EXPECT_FLOAT_EQ(line.Point[3].X, 1.00003f);
    EXPECT_FLOAT_EQ(line.Value[1], 2.2361f);
    EXPECT_FLOAT_EQ(line.Value[10], 63.434f);
}

TEST(MadeSegments, AnArcHoldsItsPointAtHalfTheSweepRounded) {
    DrawRecord arc;
    // Centre (10, 10), radius 5, from 0 over +90: half the sweep is at 45 degrees, (10 + 5 cos
    // 45, 10 + 5 sin 45) = (13.5355339, 13.5355339) rounded to 13.5355.
    SetArcSegment(arc, PlanePoint{15, 10}, PlanePoint{10, 15}, PlanePoint{10, 10}, 5, 0, 90);
    EXPECT_FLOAT_EQ(arc.Point[1].X, 15);
    EXPECT_FLOAT_EQ(arc.Point[2].X, 13.5355f);
    EXPECT_FLOAT_EQ(arc.Point[2].Y, 13.5355f);
    EXPECT_FLOAT_EQ(arc.Point[3].Y, 15);
    EXPECT_FLOAT_EQ(arc.Point[4].X, 10);
    EXPECT_FLOAT_EQ(arc.Value[1], 5);
    EXPECT_FLOAT_EQ(arc.Value[10], 0);
    EXPECT_FLOAT_EQ(arc.Value[11], 90);
}

TEST(HitCounts, ALineHasTheTruncatedQuotientPlusOneHitsSpreadEvenly) {
    const MachineState m = Machine();
    int32_t count = 0;
    std::vector<DrawRecord> records;
    const SplitOutput out = ListOutput(m, records, count, MainPathChoices);
    const DrawRecord source = Source(154);
    // 21 / 5 = 4.2: 4 + 1 = 5 hits, pitch 21 / 4 = 5.25.
    EXPECT_EQ(LineHits(out, source, 21, 5), 5);
    EXPECT_DOUBLE_EQ(ActualPitch(out, source, 21, 5), 5.25);
    // 20 / 5 = 4 exactly: 5 hits at the pitch asked for.
    EXPECT_EQ(LineHits(out, source, 20, 5), 5);
}

TEST(HitCounts, AnArcCountsOnItsToolPathAndItsStepIsRoundedToThreeDecimals) {
    const MachineState m = Machine();
    int32_t count = 0;
    std::vector<DrawRecord> records;
    const SplitOutput out = ListOutput(m, records, count, MainPathChoices);
    const DrawRecord source = Source(152);
    // Path radius 12, sweep -180: length 12 * 2 * 3.14159265 / 2 = 37.6991118; pitch 5:
    // floor(7.5398) + 1 = 8 hits; step -180 / 7 = -25.7142857, rounded -25.714.
    EXPECT_EQ(ArcHits(out, source, 12, -180, 5), 8);
    EXPECT_DOUBLE_EQ(ArcStep(out, source, -180, 8), -25.714);
}

TEST(HitCounts, APathShorterThanItsPitchIsAFaultNamingTheRecordNotADivisionByZero) {
    const MachineState m = Machine();
    int32_t count = 0;
    std::vector<DrawRecord> records;
    const SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    const DrawRecord source = Source(154);
    const int32_t hits = LineHits(out, source, 3, 5);
    EXPECT_EQ(hits, 1);
    EXPECT_EQ(FaultText([&] { ActualPitch(out, source, 3, hits); }),
              "Cannot split record 7 of Progmain.drw (code 154): a punched path of length 3 is shorter than its "
              "pitch: it has one hit, and its pitch divides by 0");
    EXPECT_EQ(FaultText([&] { ArcStep(out, source, 90, 1); }),
              "Cannot split record 7 of Progmain.drw (code 154): a punched arc of sweep 90 is shorter than its "
              "pitch: it has one hit, and its step divides by 0");
}

TEST(HitCounts, APitchOfZeroIsAFault) {
    const MachineState m = Machine();
    int32_t count = 0;
    std::vector<DrawRecord> records;
    const SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 3 of Progmain.drw");
    const DrawRecord source = Source(151);
    EXPECT_EQ(FaultText([&] { LineHits(out, source, 10, 0); }),
              "Cannot split record 3 of Progmain.drw (code 151): a punched path of length 10 has a pitch of 0");
    EXPECT_NE(FaultText([&] { ArcHits(out, source, 10, 0, 5); }).find("a punched arc has a sweep of 0"),
              std::string::npos);
}

TEST(HitCounts, ACountBeyondSixteenBitsIsAFaultNamingTheRecord) {
    const MachineState m = Machine();
    int32_t count = 0;
    std::vector<DrawRecord> records;
    const SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 5 of Progmain.drw");
    const DrawRecord source = Source(151);
    EXPECT_EQ(CountCell(out, source, 32767, "hits"), 32767);
    EXPECT_EQ(FaultText([&] { CountCell(out, source, 40000, "hits"); }),
              "Cannot split record 5 of Progmain.drw (code 151): hits of 40000 does not fit a count");
}

TEST(ShapeLeads, AStraightLeadRecordIsMarkedOnlyOnTheSingleShapePath) {
    const MachineState m = Machine(1);
    DrawRecord shape = Source(154);
    shape.Point[4] = SinglePoint{100, 50};
    shape.Value[1] = 40;
    shape.Value[2] = 20;
    shape.Side = -1;
    shape.LeadIn.LeadKind = 1;
    shape.LeadIn.LeadLength = 5;
    shape.LeadIn.LeadAngle = 180;
    shape.LeadOut.LeadKind = 1;
    shape.LeadOut.LeadLength = 5;
    shape.LeadOut.LeadAngle = 180;
    for (const SplitChoices choices : {MainPathChoices, SingleShapeChoices}) {
        std::vector<DrawRecord> records;
        int32_t count = 0;
        SplitOutput out = ListOutput(m, records, count, choices);
        EXPECT_TRUE(WriteShapeLead(out, shape, 1, true));
        EXPECT_TRUE(WriteShapeLead(out, shape, 2, true));
        ASSERT_EQ(records.size(), 2u);
        // The lead-in meets the outline at the middle of the right end, (120, 50), from 5 mm
        // at 180: it runs from (115, 50) to (120, 50), towards the part, at 0 degrees.
        bindtest::ExpectPoint(records[0].Point[1], 115, 50);
        bindtest::ExpectPoint(records[0].Point[3], 120, 50);
        EXPECT_FLOAT_EQ(records[0].Value[1], 5);
        EXPECT_FLOAT_EQ(records[0].Value[10], 0);
        EXPECT_EQ(records[0].Side, -1);
        EXPECT_EQ(records[0].Count[8], choices.MarkLeads ? 1 : 0);
        EXPECT_EQ(records[1].Count[8], choices.MarkLeads ? 2 : 0);
        EXPECT_EQ(records[0].After.ActionCode, 0);
        EXPECT_EQ(records[1].After.ActionCode, 2);
    }
}

TEST(ShapeLeads, OnlyALeadKindOfExactlyOneIsWritten) {
    const MachineState m = Machine(1);
    DrawRecord shape = Source(156);
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices);
    for (int16_t kind : {int16_t(-1), int16_t(0), int16_t(2), int16_t(3)}) {
        shape.LeadIn.LeadKind = kind;
        EXPECT_FALSE(WriteShapeLead(out, shape, 1, true));
    }
    EXPECT_TRUE(records.empty());
}

TEST(ShapeLeads, TheAfterGoesOnTheLastSegmentOnlyWithoutALeadOut) {
    DrawRecord shape = Source(152);
    shape.LeadOut.LeadKind = 0;
    EXPECT_TRUE(AfterOnLastSegment(shape));
    shape.LeadOut.LeadKind = 1;
    EXPECT_FALSE(AfterOnLastSegment(shape));
    shape.LeadOut.LeadKind = 2;
    EXPECT_FALSE(AfterOnLastSegment(shape));
}
