// The split dispatch: the order of its tests, its table row by row, the leads of a profiled
// entity, and the explosions of the patterns, each worked out by hand in the comment above it.
//
// The machine is a tool machine of TurnSense 0. A record made by a split is bound before it is
// written: a Punch spreads Point[4] to its other points; a Linear Pattern without a worked tool
// keeps the hits and pitch it was given and takes its length and direction from its two ends.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/binding_support.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "splitting/radius_punch.h"
#include "splitting/split_dispatch.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"
#include "test_support.h"

using namespace tvx;

namespace {

using bindtest::Bytes;
using bindtest::ExpectPoint;
using bindtest::Machine;
using bindtest::WorkingTool;

using Routine = void (*)(SplitOutput&, const DrawRecord&);

// A record as a drawing holds it: CarryWord1 3, CarryWord2 4, the name of its code.
DrawRecord Entity(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.EntityName = EntityNameOfCode(code);
    r.CarryWord1 = 3;
    r.CarryWord2 = 4;
    return r;
}

DrawRecord Bound(const MachineState& m, DrawRecord r) {
    BindRecord(m, r);
    return r;
}

void GiveAfter(DrawRecord& r, int16_t code = 2, float value = 1.5f) {
    r.After.ActionCode = code;
    r.After.ActionValue = value;
}

void ExpectAfter(const DrawRecord& r, int16_t code = 2, float value = 1.5f) {
    EXPECT_EQ(r.After.ActionCode, code);
    EXPECT_EQ(r.After.ActionValue, value);
}

void ExpectNoAfter(const DrawRecord& r) {
    EXPECT_EQ(r.After.ActionCode, 0);
    EXPECT_EQ(r.After.ActionValue, 0.0f);
}

// A profiling tool (WorkType below 10) and a tool that works by hits (WorkType 10 or more).
void ProfilingTool(DrawRecord& r) { WorkingTool(r, "P", 0.2f, 0, 1); }
void PunchTool(DrawRecord& r, const char* letter = "B", float size = 5) { WorkingTool(r, letter, size, size, 10); }

// SplitRecord on a list; the source is changed where the dispatch changes it.
std::vector<DrawRecord> Split(const MachineState& m, DrawRecord& record) {
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    SplitRecord(out, record);
    EXPECT_EQ(count, static_cast<int32_t>(records.size()));
    EXPECT_EQ(out.Made, count);
    return records;
}

std::vector<DrawRecord> SplitCopy(const MachineState& m, DrawRecord record) { return Split(m, record); }

std::vector<DrawRecord> Routed(Routine routine, const MachineState& m, const DrawRecord& record) {
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    routine(out, record);
    return records;
}

void ExpectSameRecords(const std::vector<DrawRecord>& actual, const std::vector<DrawRecord>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i) EXPECT_EQ(Bytes(actual[i]), Bytes(expected[i])) << "record " << i;
}

void ExpectPunchAt(const DrawRecord& r, double x, double y, double tolerance = 1e-4) {
    EXPECT_EQ(r.EntityCode, 210);
    EXPECT_EQ(r.EntityName.Trimmed(), "Punch");
    ExpectPoint(r.Point[4], x, y, tolerance);
}

// A line from (0, 0) to (100, 0), bound.
DrawRecord Line(const MachineState& m) {
    DrawRecord r = Entity(120);
    r.Point[1] = {0, 0};
    r.Point[3] = {100, 0};
    r.Value[1] = 100;
    r.Value[10] = 0;
    return Bound(m, r);
}

// An arc about (0, 0) of radius 50 from `start` over `sweep`, on `side`.
DrawRecord Arc(const MachineState& m, float start, float sweep, int16_t side = 0) {
    DrawRecord r = Entity(130);
    r.Point[4] = {0, 0};
    r.Value[1] = 50;
    r.Value[10] = start;
    r.Value[11] = sweep;
    r.Side = side;
    return Bound(m, r);
}

// A circle about (50, 50) of radius 10, outside.
DrawRecord Circle(const MachineState& m) {
    DrawRecord r = Entity(151);
    r.Point[4] = {50, 50};
    r.Value[1] = 10;
    r.Value[10] = 0;
    r.Value[11] = 360;
    r.Side = 1;
    return Bound(m, r);
}

void StraightLeads(DrawRecord& r) {
    r.LeadIn.LeadKind = 1;
    r.LeadIn.LeadLength = 5;
    r.LeadIn.LeadAngle = 90;
    r.LeadOut.LeadKind = 1;
    r.LeadOut.LeadLength = 5;
    r.LeadOut.LeadAngle = 270;
}

}  // namespace

// ================================ Edge cases of the dispatch =================================

// A circle without a tool is passed on as an Arc Profile: only the code and the name change, and
// the leads and the After stay in the record for the later passes.
TEST(SplitRecord, CircleWithoutToolBecomesOneArcProfileKeepingLeadsAndAfter) {
    const MachineState m = Machine();
    DrawRecord circle = Circle(m);
    StraightLeads(circle);
    GiveAfter(circle);
    circle = Bound(m, circle);
    const DrawRecord source = circle;
    const std::vector<DrawRecord> r = Split(m, circle);
    ASSERT_EQ(r.size(), 1u);
    DrawRecord expected = source;
    expected.EntityCode = 130;
    expected.EntityName = "Arc Profile";
    EXPECT_EQ(Bytes(r[0]), Bytes(expected));
    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    EXPECT_EQ(r[0].LeadOut.LeadKind, 1);
    ExpectAfter(r[0]);
    EXPECT_EQ(Bytes(circle), Bytes(source));
}

// With a profiling tool the circle's leads become records of their own around the Arc Profile:
// a radial lead-in of 5 outward at 0 degrees from (65, 50) to the meeting point (60, 50), the
// circle without leads or After, and the lead-out from (60, 50) to (65, 50) with the After.
TEST(SplitRecord, CircleWithProfilingToolBecomesLeadInArcAndLeadOut) {
    const MachineState m = Machine();
    DrawRecord circle = Circle(m);
    ProfilingTool(circle);
    StraightLeads(circle);
    GiveAfter(circle);
    circle = Bound(m, circle);
    const DrawRecord source = circle;
    const std::vector<DrawRecord> r = Split(m, circle);
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[0].Count[8], 1);
    ExpectPoint(r[0].Point[1], 65, 50);
    ExpectPoint(r[0].Point[3], 60, 50);
    ExpectNoAfter(r[0]);
    EXPECT_EQ(r[1].EntityCode, 130);
    EXPECT_EQ(r[1].EntityName.Trimmed(), "Arc Profile");
    EXPECT_EQ(r[1].LeadIn.LeadKind, 0);
    EXPECT_EQ(r[1].LeadOut.LeadKind, 0);
    ExpectNoAfter(r[1]);
    EXPECT_EQ(r[2].EntityCode, 120);
    EXPECT_EQ(r[2].Count[8], 2);
    ExpectPoint(r[2].Point[1], 60, 50);
    ExpectPoint(r[2].Point[3], 65, 50);
    ExpectAfter(r[2]);
    for (const DrawRecord& record : r) EXPECT_EQ(record.ToolA.Letter.Text(), "P");
    // The circle itself is not changed: no trim applies to it.
    EXPECT_EQ(Bytes(circle), Bytes(source));
}

// Up to three: without a lead-out the circle is the last record, and it has no After then, since
// only a lead-out record takes the entity's After.
TEST(SplitRecord, CircleWithProfilingToolAndOnlyALeadInGivesTwoRecordsAndNoAfter) {
    const MachineState m = Machine();
    DrawRecord circle = Circle(m);
    ProfilingTool(circle);
    StraightLeads(circle);
    circle.LeadOut.LeadKind = 0;
    GiveAfter(circle);
    circle = Bound(m, circle);
    const std::vector<DrawRecord> r = Split(m, circle);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].Count[8], 1);
    EXPECT_EQ(r[1].EntityCode, 130);
    ExpectNoAfter(r[0]);
    ExpectNoAfter(r[1]);
}

TEST(SplitRecord, CircleWithProfilingToolAndNoLeadsIsOneArcProfile) {
    const MachineState m = Machine();
    DrawRecord circle = Circle(m);
    ProfilingTool(circle);
    circle = Bound(m, circle);
    const std::vector<DrawRecord> r = Split(m, circle);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 130);
}

// A Linear Pattern of one hit is one Punch at its start, and that one is also the last: it
// carries the After.
TEST(SplitRecord, LinearPatternOfOneHitGivesOnePunchCarryingAfter) {
    const MachineState m = Machine();
    DrawRecord row = Entity(220);
    row.Point[5] = {10, 20};
    row.Point[6] = {30, 20};
    row.Value[2] = 5;
    row.Count[1] = 1;
    GiveAfter(row);
    const std::vector<DrawRecord> r = Split(m, row);
    ASSERT_EQ(r.size(), 1u);
    ExpectPunchAt(r[0], 10, 20);
    ExpectAfter(r[0]);
}

// A quarter arc of sweep -90 worked by an "M" tool on Side 1 is one hit: the comparison is on
// the size of the sweep. The hit stands where ArcToPunch puts it, at the arc's Point[5] (its
// working start, (50, 0) for an arc of radius 50 about the origin from 0 degrees), the only
// position that the cruciform pass and the generation loop give such an arc as well; it keeps
// the tool and nothing else of the arc, not even the carried words.
TEST(SplitRecord, QuarterArcOfSweepMinus90WithMToolOnSide1IsOneHitWhereArcToPunchPutsIt) {
    const MachineState m = Machine();
    DrawRecord arc = Entity(130);
    arc.Point[4] = {0, 0};
    arc.Value[1] = 50;
    arc.Value[10] = 0;
    arc.Value[11] = -90;
    arc.Value[12] = 30;
    arc.Side = 1;
    PunchTool(arc, "M", 10);
    GiveAfter(arc);
    arc = Bound(m, arc);
    const DrawRecord source = arc;
    const std::vector<DrawRecord> r = Split(m, arc);
    ASSERT_EQ(r.size(), 1u);
    ExpectPunchAt(r[0], 50, 0);
    ExpectPoint(r[0].Point[4], source.Point[5].X, source.Point[5].Y, 0);
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "M");
    EXPECT_EQ(r[0].CarryWord1, 0);
    EXPECT_EQ(r[0].CarryWord2, 0);
    ExpectNoAfter(r[0]);
    DrawRecord expected = source;
    ArcToPunch(m, expected);
    EXPECT_EQ(Bytes(r[0]), Bytes(expected));
    EXPECT_EQ(Bytes(arc), Bytes(source));
}

// The same arc on Side 0 or -1 is exploded into hits: a step of 30 over 90 degrees is four hits,
// from 0 down to -90 at the radius 50.
TEST(SplitRecord, QuarterArcWithMToolOffSide1IsExplodedToHits) {
    const MachineState m = Machine();
    for (const int16_t side : {0, -1}) {
        DrawRecord arc = Entity(130);
        arc.Point[4] = {0, 0};
        arc.Value[1] = 50;
        arc.Value[10] = 0;
        arc.Value[11] = -90;
        arc.Value[12] = 30;
        arc.Side = side;
        PunchTool(arc, "M", 10);
        GiveAfter(arc);
        arc = Bound(m, arc);
        const std::vector<DrawRecord> r = Split(m, arc);
        ASSERT_EQ(r.size(), 4u) << "side " << side;
        ExpectPunchAt(r[0], 50, 0);
        ExpectPunchAt(r[1], 43.30127, -25);
        ExpectPunchAt(r[2], 25, -43.30127);
        ExpectPunchAt(r[3], 0, -50);
        ExpectNoAfter(r[2]);
        ExpectAfter(r[3]);
    }
}

// A sweep that is 90 only to about a ten-millionth is exactly 90 as a single: a corner.
TEST(SplitRecord, QuarterArcWhoseSweepIs90AsASingleIsOneHit) {
    const MachineState m = Machine();
    DrawRecord arc = Arc(m, 0, 89.999999f, 1);
    PunchTool(arc, "M", 10);
    arc.Value[12] = 30;
    arc = Bound(m, arc);
    EXPECT_EQ(SplitCopy(m, arc).size(), 1u);
}

// A grid of one row is one Linear Pattern, and the After is lost: only rows 2 and up take it.
TEST(SplitRecord, GridOfOneRowGivesOneLinearPatternAndLosesAfter) {
    const MachineState m = Machine();
    DrawRecord grid = Entity(225);
    grid.Point[5] = {0, 0};
    grid.Value[2] = 10;
    grid.Value[4] = 5;
    grid.Count[1] = 3;
    grid.Count[2] = 1;
    GiveAfter(grid);
    const std::vector<DrawRecord> r = Split(m, grid);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 220);
    EXPECT_EQ(r[0].EntityName.Trimmed(), "Linear Pattern");
    ExpectNoAfter(r[0]);
}

// A "U" tool on a record of code 500 or above is not library tooling: 500 and 510 are beyond the
// range of the dispatch and write nothing. Below 500 the same tool is library tooling, which,
// without a library, leaves the entity without its tools.
TEST(SplitRecord, LibraryLetterOnCode500OrAboveIsNotLibraryTooling) {
    const MachineState m = Machine();
    for (const int16_t code : {500, 510, 521}) {
        DrawRecord r = Entity(code);
        PunchTool(r, "U");
        EXPECT_TRUE(SplitCopy(m, r).empty()) << code;
    }
    DrawRecord below = Entity(499);
    PunchTool(below, "U");
    const std::vector<DrawRecord> r = SplitCopy(m, below);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 499);
    EXPECT_EQ(r[0].ToolA.Present, 0);
}

// ================================ The order of the tests =====================================

// The library test comes before the range test: a code below 120 with a "U" tool is library
// tooling too, and without a library it is kept, without its tools.
TEST(SplitRecord, LibraryToolingIsTestedBeforeTheRangeOfCodes) {
    const MachineState m = Machine();
    for (const int16_t code : {0, 100, 110, 119, 400}) {
        DrawRecord r = Entity(code);
        PunchTool(r, "U");
        r.ToolB = r.ToolA;
        const std::vector<DrawRecord> out = SplitCopy(m, r);
        ASSERT_EQ(out.size(), 1u) << code;
        EXPECT_EQ(out[0].EntityCode, code);
        EXPECT_EQ(out[0].ToolA.Present, 0);
        EXPECT_EQ(out[0].ToolA.Letter.Text(), " ");
        EXPECT_EQ(out[0].ToolB.Present, 0);
    }
}

// A "U" letter without Present is no tool: the line passes unchanged.
TEST(SplitRecord, LibraryLetterWithoutPresentIsNoLibraryTooling) {
    const MachineState m = Machine();
    DrawRecord line = Line(m);
    line.ToolA.Letter = "U";
    const std::vector<DrawRecord> r = SplitCopy(m, line);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(Bytes(r[0]), Bytes(line));
}

// The source is changed only where the dispatch says so: its tools are cleared when a library
// drawing is missing.
TEST(SplitRecord, MissingLibraryDrawingClearsTheToolsOfTheSource) {
    const MachineState m = Machine();
    DrawRecord shape = Entity(154);
    PunchTool(shape, "U");
    shape.ToolB = shape.ToolA;
    const std::vector<DrawRecord> r = Split(m, shape);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(shape.ToolA.Present, 0);
    EXPECT_EQ(shape.ToolB.Present, 0);
    EXPECT_EQ(Bytes(r[0]), Bytes(shape));
}

// ================================ The table, row by row ======================================

// Codes below 120 and above 355, and codes in range that the table does not name, write nothing.
TEST(SplitRecord, CodesOutOfRangeAndUnknownCodesInRangeWriteNothing) {
    const MachineState m = Machine();
    for (const int16_t code : {-1, 0, 100, 110, 119, 356, 400, 500, 121, 140, 150, 157, 171, 200, 211, 300, 310, 354}) {
        for (int tool = 0; tool < 3; ++tool) {
            DrawRecord r = Entity(code);
            if (tool == 1) ProfilingTool(r);
            if (tool == 2) PunchTool(r);
            EXPECT_TRUE(SplitCopy(m, r).empty()) << "code " << code << " tool " << tool;
        }
    }
}

// A pass keeps the derived fields of the working copy as they stand: nothing is bound again.
TEST(SplitRecord, PassedRecordsKeepTheirFieldsByteForByte) {
    const MachineState m = Machine();
    for (const int16_t code : {210, 311, 312, 321, 350, 355}) {
        for (int tool = 0; tool < 3; ++tool) {
            DrawRecord r = Entity(code);
            if (tool == 1) ProfilingTool(r);
            if (tool == 2) PunchTool(r);
            r.Point[4] = {10, 20};
            // Fields that binding would set otherwise.
            r.Point[1] = {-7, -7};
            r.Extent[1] = {99, 99};
            r.ToolB = r.ToolA;
            r.LeadIn.LeadKind = 1;
            GiveAfter(r);
            const DrawRecord source = r;
            const std::vector<DrawRecord> out = Split(m, r);
            ASSERT_EQ(out.size(), 1u) << code;
            EXPECT_EQ(Bytes(out[0]), Bytes(source)) << code;
            EXPECT_EQ(Bytes(r), Bytes(source)) << code;
        }
    }
}

TEST(SplitRecord, LineWithoutToolPassesUnchanged) {
    const MachineState m = Machine();
    DrawRecord line = Line(m);
    line.Value[3] = 10;  // a trim, not applied
    StraightLeads(line);
    GiveAfter(line);
    const DrawRecord source = line;
    const std::vector<DrawRecord> r = Split(m, line);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(Bytes(r[0]), Bytes(source));
    EXPECT_EQ(Bytes(line), Bytes(source));
}

TEST(SplitRecord, ArcWithoutToolPassesUnchanged) {
    const MachineState m = Machine();
    DrawRecord arc = Arc(m, 0, 90);
    arc.Value[8] = 5;
    GiveAfter(arc);
    const DrawRecord source = arc;
    const std::vector<DrawRecord> r = Split(m, arc);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(Bytes(r[0]), Bytes(source));
}

// A profiled line with a start trim of 10 and straight leads. ApplyTrim runs on the source: its
// start moves to (10, 0) and the trim is cleared, so the lead-in runs from (10, 5) to (10, 0),
// from the trimmed end. The entity written is the working copy taken before ApplyTrim: it keeps
// its trim and its start (0, 0), loses its leads and its After. The lead-out runs from (100, 0)
// to (100, -5) and carries the After.
TEST(SplitRecord, ProfiledLineLeadsStartFromTheTrimmedEndAndTheLineKeepsItsTrim) {
    const MachineState m = Machine();
    DrawRecord line = Entity(120);
    line.Point[1] = {0, 0};
    line.Point[3] = {100, 0};
    line.Value[1] = 100;
    line.Value[3] = 10;
    ProfilingTool(line);
    StraightLeads(line);
    GiveAfter(line);
    line = Bound(m, line);
    const DrawRecord before = line;
    const std::vector<DrawRecord> r = Split(m, line);
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[0].Count[8], 1);
    ExpectPoint(r[0].Point[1], 10, 5);
    ExpectPoint(r[0].Point[3], 10, 0);
    ExpectNoAfter(r[0]);

    DrawRecord entity = before;
    ClearLead(entity.LeadIn);
    ClearLead(entity.LeadOut);
    ClearAfter(entity.After);
    EXPECT_EQ(Bytes(r[1]), Bytes(entity));
    EXPECT_EQ(r[1].Value[3], 10.0f);

    EXPECT_EQ(r[2].EntityCode, 120);
    EXPECT_EQ(r[2].Count[8], 2);
    ExpectPoint(r[2].Point[1], 100, 0);
    ExpectPoint(r[2].Point[3], 100, -5);
    ExpectAfter(r[2]);

    // The source holds what ApplyTrim made of it.
    EXPECT_EQ(line.Value[3], 0.0f);
    ExpectPoint(line.Point[1], 10, 0, 0);
    EXPECT_EQ(line.Value[1], 90.0f);
}

// Without leads a profiled line is the line alone, without its After: the After goes only on a
// lead-out record.
TEST(SplitRecord, ProfiledLineWithoutLeadsIsTheLineWithoutItsAfter) {
    const MachineState m = Machine();
    DrawRecord line = Line(m);
    ProfilingTool(line);
    GiveAfter(line);
    line = Bound(m, line);
    const std::vector<DrawRecord> r = Split(m, line);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 120);
    ExpectNoAfter(r[0]);
}

// A profiled arc of radius 50 from 0 over 90 with a start trim of 10 (along the arc) and straight
// leads: the source is trimmed, its start now 10 / (2 pi 50 / 360) = 11.459 degrees on. The
// lead-in ends there; the arc written keeps its trim.
TEST(SplitRecord, ProfiledArcGetsItsLeadsFromTheTrimmedSource) {
    const MachineState m = Machine();
    DrawRecord arc = Entity(130);
    arc.Point[4] = {0, 0};
    arc.Value[1] = 50;
    arc.Value[10] = 0;
    arc.Value[11] = 90;
    arc.Value[8] = 10;
    ProfilingTool(arc);
    arc.LeadIn.LeadKind = 1;
    arc.LeadIn.LeadLength = 5;
    arc.LeadIn.LeadAngle = 0;
    GiveAfter(arc);
    arc = Bound(m, arc);
    const DrawRecord before = arc;
    const std::vector<DrawRecord> r = Split(m, arc);
    ASSERT_EQ(r.size(), 2u);
    double sx = 0, sy = 0;
    PolarToXY(50, arc.Value[10], sx, sy);
    EXPECT_NEAR(arc.Value[10], 11.459, 0.001);
    EXPECT_EQ(arc.Value[8], 0.0f);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[0].Count[8], 1);
    ExpectPoint(r[0].Point[3], sx, sy, 1e-3);
    ExpectPoint(r[0].Point[1], sx + 5, sy, 1e-3);
    EXPECT_EQ(r[1].EntityCode, 130);
    EXPECT_EQ(r[1].Value[8], 10.0f);
    EXPECT_EQ(r[1].Value[10], before.Value[10]);
    ExpectNoAfter(r[1]);
}

// A worked line becomes one Linear Pattern: the code and name change and the record is bound
// again as a row of hits from its working start to its working end.
TEST(SplitRecord, WorkedLineBecomesOneLinearPattern) {
    const MachineState m = Machine();
    DrawRecord line = Entity(120);
    line.Point[1] = {0, 0};
    line.Point[3] = {100, 0};
    line.Value[1] = 100;
    line.Value[2] = 10;
    line.Value[3] = 20;
    PunchTool(line);
    GiveAfter(line);
    line = Bound(m, line);
    const DrawRecord source = line;
    const std::vector<DrawRecord> r = Split(m, line);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 220);
    EXPECT_EQ(r[0].EntityName.Trimmed(), "Linear Pattern");
    ExpectPoint(r[0].Point[1], 20, 0);
    ExpectPoint(r[0].Point[3], 100, 0);
    EXPECT_EQ(r[0].Value[1], 80.0f);
    EXPECT_EQ(r[0].Count[1], 9);
    ExpectAfter(r[0]);
    DrawRecord expected = source;
    expected.EntityCode = 220;
    expected.EntityName = "Linear Pattern";
    BindRecord(m, expected);
    EXPECT_EQ(Bytes(r[0]), Bytes(expected));
    EXPECT_EQ(Bytes(line), Bytes(source));
}

// A worked arc that is not a radius corner is trimmed (on the working copy) and exploded: radius
// 50 from 0 over 90 at a step of 30 gives hits at 0, 30, 60 and 90 degrees; a start trim of
// 10 along the arc moves the first to 11.459 degrees. The source is not changed.
TEST(SplitRecord, WorkedArcIsTrimmedAndExplodedToHits) {
    const MachineState m = Machine();
    DrawRecord arc = Entity(130);
    arc.Point[4] = {0, 0};
    arc.Value[1] = 50;
    arc.Value[10] = 0;
    arc.Value[11] = 90;
    arc.Value[12] = 30;
    PunchTool(arc, "A", 10);
    GiveAfter(arc);
    arc = Bound(m, arc);
    std::vector<DrawRecord> r = SplitCopy(m, arc);
    ASSERT_EQ(r.size(), 4u);
    ExpectPunchAt(r[0], 50, 0);
    ExpectPunchAt(r[1], 43.30127, 25);
    ExpectPunchAt(r[2], 25, 43.30127);
    ExpectPunchAt(r[3], 0, 50);
    ExpectAfter(r[3]);

    arc.Value[8] = 10;
    arc = Bound(m, arc);
    const DrawRecord source = arc;
    r = Split(m, arc);
    ASSERT_FALSE(r.empty());
    double x = 0, y = 0;
    PolarToXY(50, 11.459, x, y);
    ExpectPunchAt(r[0], x, y, 1e-2);
    EXPECT_EQ(Bytes(arc), Bytes(source));
}

// A worked circle goes to the punched circle routine.
TEST(SplitRecord, WorkedCircleIsSplitAsAPunchedCircle) {
    const MachineState m = Machine();
    DrawRecord circle = Circle(m);
    PunchTool(circle, "A", 4);
    circle.Value[3] = 2;
    circle = Bound(m, circle);
    const std::vector<DrawRecord> r = SplitCopy(m, circle);
    ExpectSameRecords(r, Routed(SplitCirclePunched, m, circle));
    EXPECT_FALSE(r.empty());
}

// The shapes 152 to 154 go to one of three routines by their tool; 155 and 156 to one routine
// whatever their tool.
TEST(SplitRecord, ShapesGoToTheirRoutineByTool) {
    const MachineState m = Machine();
    struct Row {
        int16_t Code;
        Routine NoTool, Profiled, Worked;
    };
    const Row rows[] = {
        {152, SplitSingleDProfile, SplitSingleDLeads, SplitSingleDPunched},
        {153, SplitDoubleDProfile, SplitDoubleDLeads, SplitDoubleDPunched},
        {154, SplitObroundProfile, SplitObroundLeads, SplitObroundPunched},
        {155, SplitRadRect, SplitRadRect, SplitRadRect},
        {156, SplitRectangle, SplitRectangle, SplitRectangle},
    };
    for (const Row& row : rows) {
        for (int tool = 0; tool < 3; ++tool) {
            DrawRecord shape = Entity(row.Code);
            shape.Point[4] = {100, 50};
            shape.Value[1] = row.Code == 154 ? 30 : (row.Code >= 155 ? 40 : 10);
            shape.Value[2] = row.Code == 152 || row.Code == 153 ? 16 : (row.Code >= 155 ? 20 : 10);
            shape.Value[3] = row.Code == 155 ? 5 : 4;
            shape.Value[4] = 4;
            shape.Side = 1;
            if (tool == 1) ProfilingTool(shape);
            if (tool == 2) PunchTool(shape, "A", 2);
            StraightLeads(shape);
            GiveAfter(shape);
            shape = Bound(m, shape);
            const Routine routine = tool == 0 ? row.NoTool : (tool == 1 ? row.Profiled : row.Worked);
            const DrawRecord source = shape;
            SCOPED_TRACE(::testing::Message() << "code " << row.Code << " tool " << tool);
            std::vector<DrawRecord> r;
            try {
                r = Split(m, shape);
            } catch (const RunEnd& end) {
                FAIL() << end.Text;
            }
            EXPECT_FALSE(r.empty());
            ExpectSameRecords(r, Routed(routine, m, source));
            EXPECT_EQ(Bytes(shape), Bytes(source));
        }
    }
}

// The shape routines write to the output they are given, with its choices: the main path's
// choices leave the lead records unmarked.
TEST(SplitRecord, ShapeRoutinesTakeTheOutputsChoices) {
    const MachineState m = Machine();
    DrawRecord shape = Entity(154);
    shape.Point[4] = {0, 0};
    shape.Value[1] = 30;
    shape.Value[2] = 10;
    shape.Side = 1;
    ProfilingTool(shape);
    StraightLeads(shape);
    shape = Bound(m, shape);
    for (const SplitChoices choices : {MainPathChoices, SingleShapeChoices}) {
        std::vector<DrawRecord> records;
        int32_t count = 0;
        SplitOutput out = ListOutput(m, records, count, choices);
        DrawRecord copy = shape;
        SplitRecord(out, copy);
        ASSERT_FALSE(records.empty());
        EXPECT_EQ(records.front().Count[8], choices.MarkLeads ? 1 : 0);
    }
}

// 175 is library tooling whatever its tool; without a library its drawing counts as missing.
TEST(SplitRecord, LibraryShapeIsLibraryToolingWhateverItsTool) {
    const MachineState m = Machine();
    for (int tool = 0; tool < 3; ++tool) {
        DrawRecord r = Entity(175);
        if (tool == 1) ProfilingTool(r);
        if (tool == 2) PunchTool(r);
        const std::vector<DrawRecord> out = SplitCopy(m, r);
        ASSERT_EQ(out.size(), 1u);
        EXPECT_EQ(out[0].EntityCode, 175);
        EXPECT_EQ(out[0].ToolA.Present, 0);
    }
}

// The patterns are exploded with or without a tool.
TEST(SplitRecord, PatternsAreExplodedWithOrWithoutATool) {
    const MachineState m = Machine();
    for (int tool = 0; tool < 3; ++tool) {
        DrawRecord row = Entity(220);
        row.Point[5] = {0, 0};
        row.Value[2] = 10;
        row.Value[10] = 0;
        row.Count[1] = 3;
        DrawRecord grid = Entity(225);
        grid.Value[2] = 10;
        grid.Value[4] = 5;
        grid.Count[1] = 3;
        grid.Count[2] = 2;
        DrawRecord arcs = Entity(230);
        arcs.Value[5] = 20;
        arcs.Value[12] = 45;
        arcs.Count[1] = 5;
        for (DrawRecord* r : {&row, &grid, &arcs}) {
            if (tool == 1) ProfilingTool(*r);
            if (tool == 2) PunchTool(*r, "B", 1);
        }
        ExpectSameRecords(SplitCopy(m, row), Routed(ExplodeLinearPattern, m, row));
        ExpectSameRecords(SplitCopy(m, grid), Routed(ExplodeGridPattern, m, grid));
        ExpectSameRecords(SplitCopy(m, arcs), Routed(ExplodeArcPattern, m, arcs));
        EXPECT_EQ(SplitCopy(m, row).size(), 3u);
        EXPECT_EQ(SplitCopy(m, grid).size(), 2u);
        EXPECT_EQ(SplitCopy(m, arcs).size(), 5u);
    }
}

// A bound Arc Pattern of radius 20 about (5, 5) from 90 over 180 at a step of 60: four hits, at
// 90, 150, 210 and 270 degrees.
TEST(SplitRecord, BoundArcPatternIsExplodedAlongItsArc) {
    const MachineState m = Machine();
    DrawRecord arcs = Entity(230);
    arcs.Point[4] = {5, 5};
    arcs.Value[1] = 20;
    arcs.Value[10] = 90;
    arcs.Value[11] = 180;
    arcs.Value[12] = 60;
    arcs.Count[1] = 4;
    arcs = Bound(m, arcs);
    const std::vector<DrawRecord> r = SplitCopy(m, arcs);
    ASSERT_EQ(r.size(), 4u);
    ExpectPunchAt(r[0], 5, 25);
    ExpectPunchAt(r[1], 5 - 17.320508, 15);
    ExpectPunchAt(r[2], 5 - 17.320508, -5);
    ExpectPunchAt(r[3], 5, -15);
}

// Records go to a random-access drawing behind the count the output holds.
TEST(SplitRecord, RecordsAreAppendedBehindTheOutputCountOfAFile) {
    const MachineState m = Machine();
    TempDir dir;
    const std::string path = dir.Path + "/PTemp.tmp";
    DrawingFile file;
    MakeWorkingFile(file, path);
    int32_t count = 5;
    SplitOutput out = FileOutput(m, file, count, MainPathChoices, "record 2 of Progmain.drw");
    DrawRecord row = Entity(220);
    row.Point[5] = {0, 0};
    row.Value[2] = 10;
    row.Count[1] = 3;
    SplitRecord(out, row);
    EXPECT_EQ(count, 8);
    for (int32_t n = 6; n <= 8; ++n) {
        const DrawRecord r = ReadRecord(file, n);
        ExpectPunchAt(r, (n - 6) * 10.0, 0);
    }
    EXPECT_EQ(ReadRecord(file, 5).EntityCode, 0);
    CloseDrawing(file);
}

// ================================ Explosions worked by hand ==================================

// A Linear Pattern from (10, 20) at a pitch of 5 along 90 degrees, three hits: (10, 20),
// (10, 25), (10, 30). Each hit carries the words and the tool of the row; the After only the
// last.
TEST(ExplodeLinearPattern, HitsFromTheStartByThePitchAlongTheAngle) {
    const MachineState m = Machine();
    DrawRecord row = Entity(220);
    row.Point[5] = {10, 20};
    row.Value[2] = 5;
    row.Value[10] = 90;
    row.Count[1] = 3;
    PunchTool(row, "B", 3);
    row.ToolA.ToolAngle = 45;
    GiveAfter(row);
    const std::vector<DrawRecord> r = Routed(ExplodeLinearPattern, m, row);
    ASSERT_EQ(r.size(), 3u);
    ExpectPunchAt(r[0], 10, 20);
    ExpectPunchAt(r[1], 10, 25);
    ExpectPunchAt(r[2], 10, 30);
    for (const DrawRecord& hit : r) {
        EXPECT_EQ(hit.CarryWord1, 3);
        EXPECT_EQ(hit.CarryWord2, 4);
        EXPECT_EQ(hit.ToolA.Letter.Text(), "B");
        EXPECT_EQ(hit.ToolA.ToolAngle, 45.0f);
        // Bound: Point[4] is spread to the other points.
        ExpectPoint(hit.Point[1], hit.Point[4].X, hit.Point[4].Y, 0);
    }
    ExpectNoAfter(r[0]);
    ExpectNoAfter(r[1]);
    ExpectAfter(r[2]);
}

// The positions are summed in double precision and only stored as singles. Start 0.3 and a pitch
// of 0.1 (as singles) along 0 degrees, 1000 hits: hit k lies at the double sum 0.3f + k * 0.1f
// taken step by step; summed in singles it would drift by thousandths.
TEST(ExplodeLinearPattern, PositionsAreSummedInDoublePrecision) {
    const MachineState m = Machine();
    DrawRecord row = Entity(220);
    row.Point[5] = {0.3f, 0};
    row.Value[2] = 0.1f;
    row.Value[10] = 0;
    row.Count[1] = 1000;
    const std::vector<DrawRecord> r = Routed(ExplodeLinearPattern, m, row);
    ASSERT_EQ(r.size(), 1000u);
    double x = 0.3f;
    float drifting = 0.3f;
    bool driftSeen = false;
    for (size_t k = 0; k < r.size(); ++k) {
        EXPECT_EQ(r[k].Point[4].X, static_cast<float>(x)) << k;
        if (r[k].Point[4].X != drifting) driftSeen = true;
        x += static_cast<double>(0.1f);
        drifting += 0.1f;
    }
    EXPECT_TRUE(driftSeen);
    EXPECT_NEAR(r.back().Point[4].X, 100.2, 1e-4);
}

// A count of 0 or less still gives one hit, at the start, with the After.
TEST(ExplodeLinearPattern, CountOfZeroOrLessGivesOneHit) {
    const MachineState m = Machine();
    for (const int16_t hits : {0, -1, -32768}) {
        DrawRecord row = Entity(220);
        row.Point[5] = {7, 8};
        row.Value[2] = 5;
        row.Count[1] = hits;
        GiveAfter(row);
        const std::vector<DrawRecord> r = Routed(ExplodeLinearPattern, m, row);
        ASSERT_EQ(r.size(), 1u) << hits;
        ExpectPunchAt(r[0], 7, 8);
        ExpectAfter(r[0]);
    }
}

// An Arc Pattern about (100, 50) of radius 20 from 0 at a step of 30, four hits: at 0, 30, 60 and
// 90 degrees. Without the follow switch every hit keeps the tool's first angle, ToolA.ToolAngle
// 10; with it (Count[2]) the angle turns with the step: 10, 40, 70, 100.
TEST(ExplodeArcPattern, HitsAlongTheArcWithAndWithoutTheToolFollowing) {
    const MachineState m = Machine();
    DrawRecord arcs = Entity(230);
    arcs.Point[4] = {100, 50};
    arcs.Value[5] = 20;
    arcs.Value[12] = 30;
    arcs.Value[13] = 0;
    arcs.Count[1] = 4;
    PunchTool(arcs, "B", 3);
    arcs.ToolA.ToolAngle = 10;
    arcs.Value[15] = 77;  // not read without FollowFlag
    GiveAfter(arcs);
    for (const int16_t follow : {0, 1}) {
        arcs.Count[2] = follow;
        const std::vector<DrawRecord> r = Routed(ExplodeArcPattern, m, arcs);
        ASSERT_EQ(r.size(), 4u);
        ExpectPunchAt(r[0], 120, 50);
        ExpectPunchAt(r[1], 117.320508, 60);
        ExpectPunchAt(r[2], 110, 67.320508);
        ExpectPunchAt(r[3], 100, 70);
        for (int i = 0; i < 4; ++i) {
            EXPECT_FLOAT_EQ(r[i].ToolA.ToolAngle, follow != 0 ? 10.0f + 30.0f * i : 10.0f) << i;
            EXPECT_EQ(r[i].CarryWord2, 4);
        }
        ExpectNoAfter(r[2]);
        ExpectAfter(r[3]);
    }
}

// With FollowFlag the tool's first angle is Value[15]: 200, then 200 - 45 = 155 with a negative
// step, hits at 180 and 135 degrees about the origin at radius 10.
TEST(ExplodeArcPattern, FollowFlagTakesTheFirstToolAngleFromValue15) {
    const MachineState m = Machine();
    DrawRecord arcs = Entity(230);
    arcs.Value[5] = 10;
    arcs.Value[12] = -45;
    arcs.Value[13] = 180;
    arcs.Value[15] = 200;
    arcs.Count[1] = 2;
    arcs.FollowFlag = 1;
    PunchTool(arcs, "B", 3);
    arcs.ToolA.ToolAngle = 10;
    arcs.Count[2] = 0;
    std::vector<DrawRecord> r = Routed(ExplodeArcPattern, m, arcs);
    ASSERT_EQ(r.size(), 2u);
    ExpectPunchAt(r[0], -10, 0);
    ExpectPunchAt(r[1], -7.0710678, 7.0710678);
    EXPECT_FLOAT_EQ(r[0].ToolA.ToolAngle, 200);
    EXPECT_FLOAT_EQ(r[1].ToolA.ToolAngle, 200);
    arcs.Count[2] = 1;
    r = Routed(ExplodeArcPattern, m, arcs);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_FLOAT_EQ(r[0].ToolA.ToolAngle, 200);
    EXPECT_FLOAT_EQ(r[1].ToolA.ToolAngle, 155);
}

// A tool angle that turns past 360 is stored normalised by binding: 350 + 30 = 380 is 20.
TEST(ExplodeArcPattern, FollowingToolAngleIsNormalisedByBinding) {
    const MachineState m = Machine();
    DrawRecord arcs = Entity(230);
    arcs.Value[5] = 10;
    arcs.Value[12] = 30;
    arcs.Count[1] = 2;
    arcs.Count[2] = 1;
    PunchTool(arcs, "B", 3);
    arcs.ToolA.ToolAngle = 350;
    const std::vector<DrawRecord> r = Routed(ExplodeArcPattern, m, arcs);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_FLOAT_EQ(r[1].ToolA.ToolAngle, 20);
}

// A count of 0 or less gives no hit at all, and the After is lost with it.
TEST(ExplodeArcPattern, CountOfZeroOrLessGivesNoHit) {
    const MachineState m = Machine();
    for (const int16_t hits : {0, -1, -32768}) {
        DrawRecord arcs = Entity(230);
        arcs.Value[5] = 10;
        arcs.Value[12] = 30;
        arcs.Count[1] = hits;
        GiveAfter(arcs);
        EXPECT_TRUE(Routed(ExplodeArcPattern, m, arcs).empty()) << hits;
    }
}

namespace {

void ExpectRow(const DrawRecord& r, double sx, double sy, double ex, double ey, float length, float pitch,
               int16_t hits) {
    EXPECT_EQ(r.EntityCode, 220);
    EXPECT_EQ(r.EntityName.Trimmed(), "Linear Pattern");
    ExpectPoint(r.Point[5], sx, sy);
    ExpectPoint(r.Point[6], ex, ey);
    EXPECT_NEAR(r.Value[1], length, 1e-4);
    EXPECT_NEAR(r.Value[2], pitch, 1e-4);
    EXPECT_EQ(r.Count[1], hits);
    EXPECT_EQ(r.CarryWord1, 3);
    EXPECT_EQ(r.CarryWord2, 4);
}

DrawRecord Grid(float along, float across, float angle, int16_t hits, int16_t rows, int16_t exchanged = 0) {
    DrawRecord grid = Entity(225);
    grid.Point[5] = {0, 0};
    grid.Value[2] = along;
    grid.Value[4] = across;
    grid.Value[10] = angle;
    grid.Count[1] = hits;
    grid.Count[2] = rows;
    grid.Count[3] = exchanged;
    return grid;
}

}  // namespace

// A grid from (0, 0), pitch 10 along 0 degrees, 5 across, three hits to a row, three rows, in
// boustrophedon order: (0, 0) to (20, 0); from (20, 5) back to (0, 5); from (0, 10) to (20, 10).
// The After goes on the last row only.
TEST(ExplodeGridPattern, RowsRunBoustrophedonFromWhereTheLastEnded) {
    const MachineState m = Machine();
    DrawRecord grid = Grid(10, 5, 0, 3, 3);
    PunchTool(grid, "B", 3);
    GiveAfter(grid);
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, grid);
    ASSERT_EQ(r.size(), 3u);
    ExpectRow(r[0], 0, 0, 20, 0, 20, 10, 3);
    ExpectRow(r[1], 20, 5, 0, 5, 20, 10, 3);
    ExpectRow(r[2], 0, 10, 20, 10, 20, 10, 3);
    EXPECT_NEAR(r[0].Value[10], 0, 1e-4);
    EXPECT_NEAR(r[1].Value[10], 180, 1e-4);
    EXPECT_NEAR(r[2].Value[10], 0, 1e-4);
    ExpectNoAfter(r[0]);
    ExpectNoAfter(r[1]);
    ExpectAfter(r[2]);
    for (const DrawRecord& row : r) EXPECT_EQ(row.ToolA.Letter.Text(), "B");
}

// Exchanged axes (Count[3] 1): the pitches and the counts swap, the angle becomes the normalised
// angle less 90 and the pitch along the row changes sign. Pitch 10 along 0 degrees, 5 across, 3
// hits by 2 rows becomes pitch -5 along -90 degrees, 10 across, 2 hits by 3 rows. The row length
// -5 * 1 is negative: it and the pitch change sign and the row turns by 180, to 90. The rows step
// across along the normalised angle plus 90: 270 + 90 = 360. Rows: (0, 0) up to (0, 5); from
// (10, 5) down to (10, 0); from (20, 0) up to (20, 5).
TEST(ExplodeGridPattern, ExchangedAxesTurnTheAngleToTheNormalisedAngleLessNinety) {
    const MachineState m = Machine();
    DrawRecord grid = Grid(10, 5, 0, 3, 2, 1);
    GiveAfter(grid);
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, grid);
    ASSERT_EQ(r.size(), 3u);
    ExpectRow(r[0], 0, 0, 0, 5, 5, 5, 2);
    ExpectRow(r[1], 10, 5, 10, 0, 5, 5, 2);
    ExpectRow(r[2], 20, 0, 20, 5, 5, 5, 2);
    EXPECT_NEAR(r[0].Value[10], 90, 1e-4);
    EXPECT_NEAR(r[1].Value[10], 270, 1e-4);
    ExpectAfter(r[2]);
    for (const DrawRecord& row : r) EXPECT_EQ(row.Count[3], 0);
}

// A negative pitch along the row (no exchange): pitch -10, 3 hits, 2 rows, 5 across, angle 0.
// The row length -20 becomes 20, the pitch 10, and the row runs at 180: (0, 0) to (-20, 0). The
// rows step across at 0 + 90: the second row runs from (-20, 5) at 0 degrees to (0, 5).
TEST(ExplodeGridPattern, NegativeRowLengthTurnsTheRowBy180) {
    const MachineState m = Machine();
    DrawRecord grid = Grid(-10, 5, 0, 3, 2);
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, grid);
    ASSERT_EQ(r.size(), 2u);
    ExpectRow(r[0], 0, 0, -20, 0, 20, 10, 3);
    ExpectRow(r[1], -20, 5, 0, 5, 20, 10, 3);
    EXPECT_NEAR(r[0].Value[10], 180, 1e-4);
    EXPECT_NEAR(r[1].Value[10], 0, 1e-4);
}

// A grid at 30 degrees: the rows run along 30 and step across along 120. Two hits of pitch 10,
// two rows 5 apart: (0, 0) to (8.660254, 5); then from (8.660254 - 2.5, 5 + 4.330127) back along
// 210 to (-2.5, 4.330127).
TEST(ExplodeGridPattern, TurnedGridStepsAcrossAtTheAnglePlus90) {
    const MachineState m = Machine();
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, Grid(10, 5, 30, 2, 2));
    ASSERT_EQ(r.size(), 2u);
    ExpectRow(r[0], 0, 0, 8.660254, 5, 10, 10, 2);
    ExpectRow(r[1], 6.160254, 9.330127, -2.5, 4.330127, 10, 10, 2);
}

// A worked grid's rows are bound as rows of hits: the hits and pitch that binding finds for the
// row are those of the grid.
TEST(ExplodeGridPattern, WorkedRowsKeepTheGridsHitsAndPitch) {
    const MachineState m = Machine();
    DrawRecord grid = Grid(10, 5, 0, 4, 2);
    PunchTool(grid, "A", 3);
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, grid);
    ASSERT_EQ(r.size(), 2u);
    ExpectRow(r[0], 0, 0, 30, 0, 30, 10, 4);
    ExpectRow(r[1], 30, 5, 0, 5, 30, 10, 4);
}

// No rows, or fewer: still the first row, and no After. A row of no hits has the length
// 10 * (0 - 1) = -10: it runs 10 back, at 180.
TEST(ExplodeGridPattern, CountsOfZeroOrLessStillGiveTheFirstRow) {
    const MachineState m = Machine();
    for (const int16_t rows : {0, -3}) {
        DrawRecord grid = Grid(10, 5, 0, 3, rows);
        GiveAfter(grid);
        const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, grid);
        ASSERT_EQ(r.size(), 1u) << rows;
        ExpectRow(r[0], 0, 0, 20, 0, 20, 10, 3);
        ExpectNoAfter(r[0]);
    }
    const std::vector<DrawRecord> r = Routed(ExplodeGridPattern, m, Grid(10, 5, 0, 0, 1));
    ASSERT_EQ(r.size(), 1u);
    ExpectRow(r[0], 0, 0, -10, 0, 10, 10, 0);
}

// ================================ Damaged records ===========================================

// A damaged record never runs without end: a pattern of 32767 hits and a grid of 32767 rows are
// the most that a count cell holds and stay below the bound of one entity's records.
TEST(SplitRecord, LargestCountsStayWithinTheBound) {
    const MachineState m = Machine();
    DrawRecord row = Entity(220);
    row.Value[2] = 1;
    row.Count[1] = 32767;
    int32_t count = 0;
    SplitOutput out;
    out.Machine = &m;
    out.OutputCount = &count;
    SplitRecord(out, row);
    EXPECT_EQ(count, 32767);

    DrawRecord grid = Grid(1, 1, 0, 2, 32767);
    count = 0;
    out.Made = 0;
    SplitRecord(out, grid);
    EXPECT_EQ(count, 32767);
}

// Positions beyond a single end the run as a fault, never as undefined behaviour.
TEST(SplitRecord, PositionBeyondASingleIsAFaultOfTheRun) {
    const MachineState m = Machine();
    DrawRecord row = Entity(220);
    row.Point[5] = {3.0e38f, 0};
    row.Value[2] = 3.0e38f;
    row.Count[1] = 3;
    int32_t count = 0;
    SplitOutput out;
    out.Machine = &m;
    out.OutputCount = &count;
    try {
        SplitRecord(out, row);
        FAIL() << "no fault";
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
    }
}
