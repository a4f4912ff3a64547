// The split routines of the circle, the Single-D, the Double-D and the obround: plain outlines,
// outlines with straight leads, and punched paths. Every expected number is worked out by hand
// in the comment above it.
//
// Arithmetic that recurs:
//   - XYToPolar and PolarToXY share the system's pi, so a point taken to polar form and back is
//     the same point; cos 90 with that pi is 1.8e-9, nothing at 4 decimals.
//   - atan(6/8) = 36.8698977 degrees (with the system's pi: 36.86989769). So about a centre the
//     points (8, 6), (-8, 6), (-8, -6), (8, -6) lie at 36.8698977, 143.1301023, 216.8698977 and
//     323.1301023.
//   - A made record is bound before it is written. On a tool machine binding works a worked line
//     or arc out again from the pitch the split gave it (bind_line_arc.cpp): a line keeps the
//     hits and the pitch when the split's actual pitch divides its length; an open arc keeps its
//     hits and takes the step sweep / (hits - 1) unrounded; a whole circle (sweep 360) takes
//     360 / step hits, one fewer than the split wrote, since its last hit would fall on its
//     first; Value[3] of a worked arc becomes the step's length at the nominal radius, and
//     Value[5] of any line becomes its Value[1]. On a combo machine binding leaves the hits as
//     the split wrote them, so the tests read the split's own counts there. A punched shape is
//     bound on a tool machine, as the drawing it comes from, whichever machine splits it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/binding_support.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

using namespace tvx;

namespace {

using bindtest::ExpectPoint;
using bindtest::Machine;
using bindtest::WorkingTool;

using Routine = void (*)(SplitOutput&, const DrawRecord&);

MachineState ComboMachine(int16_t turnSense = 1) {
    MachineState m = Machine(turnSense);
    m.MachineKind = 40;
    m.IsToolMachine = false;
    m.IsComboMachine = true;
    return m;
}

// A shape as a drawing holds it, CarryWord1 3 and CarryWord2 4, not yet bound.
DrawRecord Shape(int16_t code, float cx, float cy, float first, float second, float rotation, int16_t side) {
    DrawRecord r;
    r.EntityCode = code;
    r.CarryWord1 = 3;
    r.CarryWord2 = 4;
    r.Point[4] = {cx, cy};
    r.Value[1] = first;
    r.Value[2] = second;
    r.Value[10] = rotation;
    r.Side = side;
    return r;
}

DrawRecord Bound(const MachineState& m, DrawRecord r) {
    BindRecord(m, r);
    return r;
}

std::vector<DrawRecord> Split(Routine routine, const MachineState& m, const DrawRecord& shape,
                              SplitChoices choices = MainPathChoices) {
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, choices, "record 7 of Progmain.drw");
    routine(out, shape);
    EXPECT_EQ(count, static_cast<int32_t>(records.size()));
    return records;
}

std::string FaultOf(const std::function<void()>& run, int& status) {
    try {
        run();
    } catch (const RunEnd& end) {
        status = end.Status;
        return end.Text;
    }
    status = ExitClean;
    return {};
}

void ExpectMadeFrom(const DrawRecord& r, int16_t code, const char* name) {
    EXPECT_EQ(r.EntityCode, code);
    EXPECT_EQ(r.EntityName.Trimmed(), name);
    EXPECT_EQ(r.CarryWord1, 3);
    EXPECT_EQ(r.CarryWord2, 4);
    EXPECT_EQ(r.ToolB.Present, 0);
}

// A line from (sx, sy) to (ex, ey) of the given length and direction and Side.
void ExpectLine(const DrawRecord& r, double sx, double sy, double ex, double ey, float length, float direction,
                int16_t side) {
    ExpectMadeFrom(r, 120, "Line Profile");
    ExpectPoint(r.Point[1], sx, sy);
    ExpectPoint(r.Point[2], (sx + ex) / 2, (sy + ey) / 2);
    ExpectPoint(r.Point[3], ex, ey);
    EXPECT_EQ(r.Value[1], length);
    EXPECT_EQ(r.Value[10], direction);
    EXPECT_EQ(r.Side, side);
}

// An arc about (cx, cy) of the given radius, start angle, sweep and Side, whose start and end
// binding puts at (sx, sy) and (ex, ey).
void ExpectArc(const DrawRecord& r, double cx, double cy, float radius, float start, float sweep, int16_t side,
               double sx, double sy, double ex, double ey) {
    ExpectMadeFrom(r, 130, "Arc Profile");
    ExpectPoint(r.Point[4], cx, cy);
    EXPECT_EQ(r.Value[1], radius);
    EXPECT_EQ(r.Value[10], start);
    EXPECT_EQ(r.Value[11], sweep);
    EXPECT_EQ(r.Side, side);
    ExpectPoint(r.Point[1], sx, sy);
    ExpectPoint(r.Point[3], ex, ey);
}

void ExpectNoSubRecords(const DrawRecord& r) {
    EXPECT_EQ(r.LeadIn.LeadKind, 0);
    EXPECT_EQ(r.LeadOut.LeadKind, 0);
    EXPECT_EQ(r.After.ActionCode, 0);
}

void ExpectAfter(const DrawRecord& r) {
    EXPECT_EQ(r.After.ActionCode, 2);
    EXPECT_EQ(r.After.ActionValue, 1.5f);
}

void GiveSubRecords(DrawRecord& r) {
    r.LeadIn.LeadKind = 1;
    r.LeadIn.LeadLength = 5;
    r.LeadIn.LeadAngle = 0;
    r.LeadOut.LeadKind = 2;
    r.LeadOut.LeadLength = 3;
    r.After.ActionCode = 2;
    r.After.ActionValue = 1.5f;
    r.ToolB.Present = -1;
    r.ToolB.Letter = "A";
}

// ================================ Outlines without a tool ==================================

// Single-D at (100, 50), R 10, D 16, rotation 0, Side 1, TurnSense 1. The flat lies at D - R = 6
// above the centre; h = sqrt(100 - 36) = 8: right (108, 56), left (92, 56). A = 143.1301023,
// B = 36.8698977 is not above A, so B = 396.8698977; sweep 253.7397954 -> 253.74. Start A + 0
// -> 143.13. First the arc, left to right, with the LeadIn: binding puts its ends at
// 143.13 and 396.87 (a ten-thousandth of a degree from the true ends: 1.8e-6 rad, 1.4e-5 at
// radius 10), so at (92, 56) and (108, 56). Then the flat from (108, 56) to (92, 56), length
// 16, direction 180, LineSide(1, counter-clockwise) = 1 on convention 1, with LeadOut and
// After. ToolB is dropped.
TEST(SplitSingleDProfile, ArcThenFlatWithTheSubRecordsOnTheFirstAndLast) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(152, 100, 50, 10, 16, 0, 1);
    GiveSubRecords(shape);
    const std::vector<DrawRecord> r = Split(SplitSingleDProfile, m, Bound(m, shape));
    ASSERT_EQ(r.size(), 2u);
    ExpectArc(r[0], 100, 50, 10, 143.13f, 253.74f, 1, 92, 56, 108, 56);
    ExpectPoint(r[0].Point[2], 100, 40);  // at 143.13 + 126.87 = 270
    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    EXPECT_EQ(r[0].LeadIn.LeadLength, 5.0f);
    EXPECT_EQ(r[0].LeadOut.LeadKind, 0);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    ExpectLine(r[1], 108, 56, 92, 56, 16, 180, 1);
    EXPECT_EQ(r[1].LeadIn.LeadKind, 0);
    EXPECT_EQ(r[1].LeadOut.LeadKind, 2);
    ExpectAfter(r[1]);
    EXPECT_EQ(r[1].Count[8], 0);
}

// The same Single-D turned by 90: the points (x, y) about the centre become (-y, x): right
// (100 - 6, 50 + 8) = (94, 58), left (94, 42). Start 143.1301023 + 90 = 233.1301023 -> 233.13.
TEST(SplitSingleDProfile, TurnedByItsRotation) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(152, 100, 50, 10, 16, 90, 1));
    const std::vector<DrawRecord> r = Split(SplitSingleDProfile, m, shape);
    ASSERT_EQ(r.size(), 2u);
    ExpectArc(r[0], 100, 50, 10, 233.13f, 253.74f, 1, 94, 42, 94, 58);
    ExpectLine(r[1], 94, 58, 94, 42, 16, 270, 1);
}

// D = 2R: h = 0, both ends at (0, 10), A = B = 90, so B = 450 and the sweep is 360; the flat has
// length 0 (direction 0: XYToPolar of (0, 0)) and is written all the same.
TEST(SplitSingleDProfile, AcrossOfTheDiameterIsAWholeCircleAndAFlatOfLengthZero) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(152, 0, 0, 10, 20, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitSingleDProfile, m, shape);
    ASSERT_EQ(r.size(), 2u);
    ExpectArc(r[0], 0, 0, 10, 90, 360, 1, 0, 10, 0, 10);
    ExpectPoint(r[0].Point[2], 0, -10);
    ExpectLine(r[1], 0, 10, 0, 10, 0, 0, 1);
}

// D beyond 2R: R 10, D 25, the flat at 15 above the centre misses the circle; its half length
// would be the root of 100 - 225. Nothing is written; the run ends as a split fault.
TEST(SplitSingleDProfile, AcrossBeyondTheDiameterEndsTheRunAsAFault) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(152, 0, 0, 10, 25, 0, 1));
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    int status = 0;
    const std::string text = FaultOf([&] { SplitSingleDProfile(out, shape); }, status);
    EXPECT_EQ(status, ExitFault);
    EXPECT_EQ(text, "Cannot split record 7 of Progmain.drw (code 152): its flat lies outside its circle (radius 10)");
    EXPECT_TRUE(records.empty());
}

// Double-D at (0, 0), R 10, D 12, rotation 90, Side -1, TurnSense 1. h = sqrt(100 - 36) = 8.
// Before the turn: lower flat (-8, -6) to (8, -6), upper (8, 6) to (-8, 6). Arc 1 from (8, -6)
// at 323.1301023 to (8, 6) at 36.8698977 + 360: sweep 73.7397954 -> 73.74, start 323.13 + 90
// = 413.1301 -> 53.1301023 -> 53.13. Arc 2 from (-8, 6) at 143.1301023 to (-8, -6) at
// 216.8698977: sweep 73.74, start 233.13. Turned by 90, (x, y) becomes (-y, x): lower flat
// (6, -8) to (6, 8), direction 90; upper (-6, 8) to (-6, -8), direction 270; lines of Side
// LineSide(-1, counter-clockwise) = -1; arcs keep -1. LeadIn on the lower flat, LeadOut and
// After on arc 2.
TEST(SplitDoubleDProfile, FlatArcFlatArcTurnedByItsRotation) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(153, 0, 0, 10, 12, 90, -1);
    GiveSubRecords(shape);
    const std::vector<DrawRecord> r = Split(SplitDoubleDProfile, m, Bound(m, shape));
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 6, -8, 6, 8, 16, 90, -1);
    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    ExpectArc(r[1], 0, 0, 10, 53.13f, 73.74f, -1, 6, 8, -6, 8);
    ExpectNoSubRecords(r[1]);
    ExpectLine(r[2], -6, 8, -6, -8, 16, 270, -1);
    ExpectNoSubRecords(r[2]);
    ExpectArc(r[3], 0, 0, 10, 233.13f, 73.74f, -1, -6, -8, 6, -8);
    EXPECT_EQ(r[3].LeadIn.LeadKind, 0);
    EXPECT_EQ(r[3].LeadOut.LeadKind, 2);
    ExpectAfter(r[3]);
}

// D = 2R: h = 0; both flats are points, (0, -10) and (0, 10). Arc 1 from 270 to 90 + 360:
// sweep 180; arc 2 from 90 to 270: sweep 180.
TEST(SplitDoubleDProfile, AcrossOfTheDiameterGivesFlatsOfLengthZeroAndTwoHalfCircles) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(153, 0, 0, 10, 20, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitDoubleDProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 0, -10, 0, -10, 0, 0, 1);
    ExpectArc(r[1], 0, 0, 10, 270, 180, 1, 0, -10, 0, 10);
    ExpectLine(r[2], 0, 10, 0, 10, 0, 0, 1);
    ExpectArc(r[3], 0, 0, 10, 90, 180, 1, 0, 10, 0, -10);
}

// Obround at (10, 20), L 30, W 10, rotation 0, Side 1, TurnSense 1. S = 30 - 10 = 20;
// XYToPolar(10, 5) gives d = 11.1803 at a = 26.5651. P1 = centre + PolarToXY(d, 206.5651) =
// (0, 15); P2 = P1 + (20, 0) = (20, 15); P3 = P2 + (0, 10) = (20, 25); P4 = (0, 25). Radius 5.
// Arc 1 about (20, 20) from P2 at 270; arc 2 about (0, 20) from P4 at 90. S and W above 0:
// sweeps +180, counter-clockwise, lines of Side 1.
TEST(SplitObroundProfile, LineArcLineArcFromTheLowerLeftCorner) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(154, 10, 20, 30, 10, 0, 1);
    GiveSubRecords(shape);
    const std::vector<DrawRecord> r = Split(SplitObroundProfile, m, Bound(m, shape));
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 0, 15, 20, 15, 20, 0, 1);
    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    ExpectArc(r[1], 20, 20, 5, 270, 180, 1, 20, 15, 20, 25);
    ExpectPoint(r[1].Point[2], 25, 20);
    ExpectLine(r[2], 20, 25, 0, 25, 20, 180, 1);
    ExpectArc(r[3], 0, 20, 5, 90, 180, 1, 0, 25, 0, 15);
    ExpectPoint(r[3].Point[2], -5, 20);
    EXPECT_EQ(r[3].LeadOut.LeadKind, 2);
    ExpectAfter(r[3]);
}

// L -30, W 10 at (0, 0): the signs differ, S = L + W = -20. XYToPolar(-10, 5): a = 153.4349.
// P1 = PolarToXY(d, 333.4349) = (10, -5); P2 = P1 + PolarToXY(-20, 0) = (-10, -5); P3 = (-10, 5);
// P4 = P3 + PolarToXY(-20, 180) = (10, 5). Arc 1 about (-10, 0) from 270, arc 2 about (10, 0)
// from 90. S not above 0 and W above 0: sweeps -180, the path clockwise, and the lines of Side
// 1 take LineSide(1, clockwise) = -1 on convention 1. Binding puts the arcs' middles at 180 and
// 0: (-15, 0) and (15, 0).
TEST(SplitObroundProfile, NegativeLengthWithPositiveWidthSweepsMinus180) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(154, 0, 0, -30, 10, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 10, -5, -10, -5, 20, 180, -1);
    ExpectArc(r[1], -10, 0, 5, 270, -180, 1, -10, -5, -10, 5);
    ExpectPoint(r[1].Point[2], -15, 0);
    ExpectLine(r[2], -10, 5, 10, 5, 20, 0, -1);
    ExpectArc(r[3], 10, 0, 5, 90, -180, 1, 10, 5, 10, -5);
    ExpectPoint(r[3].Point[2], 15, 0);
}

// L = W = 10: S = 0. XYToPolar(0, 5) = 5 at 90: P1 = P2 = (0, -5), P3 = P4 = (0, 5). Both arcs
// about the centre, from 270 and from 90. S is not above 0 and W is: sweeps -180. The lines
// have length 0 and are written: the outline is a circle in two arcs.
TEST(SplitObroundProfile, WidthEqualToLengthIsACircleInTwoArcsAndTwoLinesOfLengthZero) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(154, 0, 0, 10, 10, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 0, -5, 0, -5, 0, 0, -1);
    ExpectArc(r[1], 0, 0, 5, 270, -180, 1, 0, -5, 0, 5);
    ExpectLine(r[2], 0, 5, 0, 5, 0, 0, -1);
    ExpectArc(r[3], 0, 0, 5, 90, -180, 1, 0, 5, 0, -5);
}

// L 10, W 30: both dimensions above 0, but S = 10 - 30 = -20 is not, so the sweeps are -180 and
// the path runs clockwise; the lines' Side follows that direction of the path: LineSide(1, cw)
// = -1. XYToPolar(-10, 15) = 18.0278 at 123.6901: P1 = PolarToXY(d, 303.6901) = (10, -15);
// P2 = P1 + PolarToXY(-20, 0) = (-10, -15); P3 = P2 + (0, 30) = (-10, 15); P4 = (10, 15). Arc 1
// about (-10, 0) from 270 over -180 (through (-25, 0)), arc 2 about (10, 0) from 90 over -180.
// Radius 15.
TEST(SplitObroundProfile, AWidthAboveTheLengthRunsClockwiseAndItsLinesSideFollowsTheSweep) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(154, 0, 0, 10, 30, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 10, -15, -10, -15, 20, 180, -1);
    ExpectArc(r[1], -10, 0, 15, 270, -180, 1, -10, -15, -10, 15);
    ExpectPoint(r[1].Point[2], -25, 0);
    ExpectLine(r[2], -10, 15, 10, 15, 20, 0, -1);
    ExpectArc(r[3], 10, 0, 15, 90, -180, 1, 10, 15, 10, -15);
}

// TurnSense 0: the lines of the counter-clockwise obround of Side 1 take LineSide(1, ccw) =
// 1 * 1 * -1 = -1; the arcs keep the shape's Side 1 as it stands.
TEST(SplitObroundProfile, OnlyTheLinesSideIsMappedNotTheArcs) {
    const MachineState m = Machine(0);
    const DrawRecord shape = Bound(m, Shape(154, 10, 20, 30, 10, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].Side, -1);
    EXPECT_EQ(r[1].Side, 1);
    EXPECT_EQ(r[2].Side, -1);
    EXPECT_EQ(r[3].Side, 1);
}

// A Side other than 1 and -1 gives the lines Side 0 and leaves the arcs' Side as it is.
TEST(SplitDoubleDProfile, ASideOtherThanOneGivesTheLinesSideZero) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(153, 0, 0, 10, 12, 0, 2));
    const std::vector<DrawRecord> r = Split(SplitDoubleDProfile, m, shape);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].Side, 0);
    EXPECT_EQ(r[1].Side, 2);
    EXPECT_EQ(r[2].Side, 0);
    EXPECT_EQ(r[3].Side, 2);
}

// ============================== Outlines for a profiling tool ================================

void ProfilingTool(DrawRecord& r) { WorkingTool(r, "P", 0.2f, 0, 1); }

// Single-D at (100, 50), R 10, D 16, Side 1, TurnSense 1, a profiling tool. The lead meets the
// flat's right end (108, 56). Lead-in of length 5 at angle 0: from (113, 56) to (108, 56),
// length 5, angle 0 + 180 = 180, Side LineSide(1, ccw) = 1. The flat from (108, 56) to (92, 56);
// the arc from 143.13 over 253.74; no After on it, since the lead-out is straight. Lead-out of
// length 4 at 90: from (108, 56) to (108, 60), angle 90, with the After. Count[8] 0 on the main
// path; 1 and 2 on the lead records of the single-shape path, which differs in nothing else.
TEST(SplitSingleDLeads, LeadInFlatArcLeadOut) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(152, 100, 50, 10, 16, 0, 1);
    ProfilingTool(shape);
    GiveSubRecords(shape);
    shape.LeadOut.LeadKind = 1;
    shape.LeadOut.LeadLength = 4;
    shape.LeadOut.LeadAngle = 90;
    shape = Bound(m, shape);
    for (const SplitChoices choices : {MainPathChoices, SingleShapeChoices}) {
        const std::vector<DrawRecord> r = Split(SplitSingleDLeads, m, shape, choices);
        ASSERT_EQ(r.size(), 4u);
        ExpectLine(r[0], 113, 56, 108, 56, 5, 180, 1);
        EXPECT_EQ(r[0].Count[8], choices.MarkLeads ? 1 : 0);
        EXPECT_EQ(r[0].ToolA.Letter.Text(), "P");
        ExpectNoSubRecords(r[0]);
        ExpectLine(r[1], 108, 56, 92, 56, 16, 180, 1);
        ExpectNoSubRecords(r[1]);
        EXPECT_EQ(r[1].Count[8], 0);
        ExpectArc(r[2], 100, 50, 10, 143.13f, 253.74f, 1, 92, 56, 108, 56);
        ExpectNoSubRecords(r[2]);
        EXPECT_EQ(r[2].Count[8], 0);
        ExpectLine(r[3], 108, 56, 108, 60, 4, 90, 1);
        EXPECT_EQ(r[3].Count[8], choices.MarkLeads ? 2 : 0);
        ExpectAfter(r[3]);
        EXPECT_EQ(r[3].LeadOut.LeadKind, 0);
    }
}

// The plain outline of a Single-D starts with its arc; the one for a profiling tool starts with
// its flat, from the right end where a lead would join.
TEST(SplitSingleDLeads, StartsWithTheFlatWhereThePlainOutlineStartsWithTheArc) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(152, 100, 50, 10, 16, 0, 1));
    const std::vector<DrawRecord> plain = Split(SplitSingleDProfile, m, shape);
    const std::vector<DrawRecord> leads = Split(SplitSingleDLeads, m, shape);
    ASSERT_EQ(plain.size(), 2u);
    ASSERT_EQ(leads.size(), 2u);
    EXPECT_EQ(plain[0].EntityCode, 130);
    EXPECT_EQ(leads[0].EntityCode, 120);
    ExpectPoint(leads[0].Point[1], 108, 56);
}

// Double-D at (0, 0), R 10, D 12, rotation 0, Side -1, TurnSense 1. The lead meets the lower
// flat's end (8, -6). Lead-in of length 3 at 270: from (8, -9) to (8, -6), angle 90, Side
// LineSide(-1, ccw) = -1. Arc 1 from 323.13 over 73.74 to (8, 6); the upper flat (8, 6) to
// (-8, 6); arc 2 from 143.13 over 73.74 to (-8, -6); the lower flat (-8, -6) to (8, -6), which
// takes the After, as there is no lead-out (LeadKind 0).
TEST(SplitDoubleDLeads, StartsAtTheEndOfTheLowerFlatAndEndsWithIt) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(153, 0, 0, 10, 12, 0, -1);
    GiveSubRecords(shape);
    shape.LeadIn.LeadLength = 3;
    shape.LeadIn.LeadAngle = 270;
    shape.LeadOut.LeadKind = 0;
    shape = Bound(m, shape);
    const std::vector<DrawRecord> r = Split(SplitDoubleDLeads, m, shape, SingleShapeChoices);
    ASSERT_EQ(r.size(), 5u);
    ExpectLine(r[0], 8, -9, 8, -6, 3, 90, -1);
    EXPECT_EQ(r[0].Count[8], 1);
    ExpectArc(r[1], 0, 0, 10, 323.13f, 73.74f, -1, 8, -6, 8, 6);
    ExpectLine(r[2], 8, 6, -8, 6, 16, 180, -1);
    ExpectArc(r[3], 0, 0, 10, 143.13f, 73.74f, -1, -8, 6, -8, -6);
    ExpectLine(r[4], -8, -6, 8, -6, 16, 0, -1);
    EXPECT_EQ(r[4].Count[8], 0);
    ExpectAfter(r[4]);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.LeadIn.LeadKind, 0);
        EXPECT_EQ(made.LeadOut.LeadKind, 0);
    }
}

// Obround at (0, 0), L 30, W 10, rotation 0, Side 1, TurnSense 1. S = 20; d, a from
// XYToPolar(10, 5). PA = (10, 5); PB = PA + PolarToXY(20, 180) = (-10, 5); PC = PB +
// PolarToXY(10, -90) = (-10, -5); PD = PC + (20, 0) = (10, -5). Right centre (10, 0), left
// centre (-10, 0), radius 5. Arc 1 about the right centre from 0 (the rotation) over +90: from
// (15, 0) to (10, 5), middle at 45: (13.5355, 3.5355). Line PA to PB. Arc 2 about the left
// centre from the angle of PB, 90, over 180: to (-10, -5). Line PC to PD. Arc 3 about the right
// centre from the angle of PD, 270, over 90: back to (15, 0), middle at 315. The lead meets the
// middle of the right end, PolarToXY(L / 2, 0) = (15, 0): the lead-in of length 2 at 0 from
// (17, 0) to (15, 0), angle 180; the lead-out of length 2 at 0 from (15, 0) to (17, 0) with the
// After.
TEST(SplitObroundLeads, TheRightEndIsTwoQuarterArcsAboutItsCentre) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(154, 0, 0, 30, 10, 0, 1);
    GiveSubRecords(shape);
    shape.LeadIn.LeadLength = 2;
    shape.LeadOut.LeadKind = 1;
    shape.LeadOut.LeadLength = 2;
    shape.LeadOut.LeadAngle = 0;
    shape = Bound(m, shape);
    const std::vector<DrawRecord> r = Split(SplitObroundLeads, m, shape);
    ASSERT_EQ(r.size(), 7u);
    ExpectLine(r[0], 17, 0, 15, 0, 2, 180, 1);
    ExpectArc(r[1], 10, 0, 5, 0, 90, 1, 15, 0, 10, 5);
    ExpectPoint(r[1].Point[2], 13.5355, 3.5355);
    ExpectLine(r[2], 10, 5, -10, 5, 20, 180, 1);
    ExpectArc(r[3], -10, 0, 5, 90, 180, 1, -10, 5, -10, -5);
    ExpectLine(r[4], -10, -5, 10, -5, 20, 0, 1);
    ExpectArc(r[5], 10, 0, 5, 270, 90, 1, 10, -5, 15, 0);
    ExpectPoint(r[5].Point[2], 13.5355, -3.5355);
    EXPECT_EQ(r[5].After.ActionCode, 0);
    ExpectLine(r[6], 15, 0, 17, 0, 2, 0, 1);
    ExpectAfter(r[6]);
    for (const DrawRecord& made : r) EXPECT_EQ(made.Count[8], 0);
}

// L 30, W -10 at (0, 0): the signs differ, S = 30 - 10 = 20, so S is above 0 and W is not: the
// sweeps are -90, -180, -90 and the path is clockwise (lines of Side LineSide(1, cw) = -1).
// XYToPolar(10, -5): PA = (10, -5); PB = (-10, -5); PC = PB + PolarToXY(-10, -90) = (-10, 5);
// PD = (10, 5). Arc 1 about (10, 0) from 0 over -90 to (10, -5) = PA; arc 2 about (-10, 0) from
// 270 over -180 to (-10, 5) = PC; arc 3 about (10, 0) from 90 over -90 to (15, 0).
TEST(SplitObroundLeads, NegativeWidthRunsClockwise) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(154, 0, 0, 30, -10, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundLeads, m, shape);
    ASSERT_EQ(r.size(), 5u);
    ExpectArc(r[0], 10, 0, 5, 0, -90, 1, 15, 0, 10, -5);
    ExpectLine(r[1], 10, -5, -10, -5, 20, 180, -1);
    ExpectArc(r[2], -10, 0, 5, 270, -180, 1, -10, -5, -10, 5);
    ExpectLine(r[3], -10, 5, 10, 5, 20, 0, -1);
    ExpectArc(r[4], 10, 0, 5, 90, -90, 1, 10, 5, 15, 0);
}

// The first arc of the outline with leads starts at the rotation itself, whatever the signs:
// with L -30 and W 10 (S = -20) the far centre is the middle of PD (-10, -5) and PA (-10, 5),
// (-10, 0), and the first arc starts there at angle 0, at (-5, 0), while the lead meets the
// shape at PolarToXY(-15, 0) = (-15, 0). Such an outline does not close at its start; the
// outline with leads is made for an obround of L above |W|.
TEST(SplitObroundLeads, TheFirstArcStartsAtTheRotationEvenForANegativeLength) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(m, Shape(154, 0, 0, -30, 10, 0, 1));
    const std::vector<DrawRecord> r = Split(SplitObroundLeads, m, shape);
    ASSERT_EQ(r.size(), 5u);
    ExpectArc(r[0], -10, 0, 5, 0, -90, 1, -5, 0, -10, -5);
}

// LeadKind -1 is a straight lead elsewhere; here only exactly 1 is written. No lead record at
// all: the outline starts at the same point as with leads, and with a LeadOut of kind -1 the
// After goes on neither the outline nor a lead: it is lost.
TEST(SplitSingleDLeads, LeadKindMinusOneIsNotWrittenAndLosesTheAfter) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(152, 100, 50, 10, 16, 0, 1);
    GiveSubRecords(shape);
    shape.LeadIn.LeadKind = -1;
    shape.LeadOut.LeadKind = -1;
    shape.LeadOut.LeadLength = 4;
    shape = Bound(m, shape);
    const std::vector<DrawRecord> r = Split(SplitSingleDLeads, m, shape, SingleShapeChoices);
    ASSERT_EQ(r.size(), 2u);
    ExpectLine(r[0], 108, 56, 92, 56, 16, 180, 1);
    EXPECT_EQ(r[1].EntityCode, 130);
    for (const DrawRecord& made : r) ExpectNoSubRecords(made);
}

// An arc lead (kind 2) on the lead-out is dropped, and the After with it.
TEST(SplitObroundLeads, AnArcLeadOutIsDroppedAndTheAfterIsLost) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(154, 0, 0, 30, 10, 0, 1);
    GiveSubRecords(shape);
    shape.LeadIn.LeadKind = 0;
    shape = Bound(m, shape);
    const std::vector<DrawRecord> r = Split(SplitObroundLeads, m, shape);
    ASSERT_EQ(r.size(), 5u);
    for (const DrawRecord& made : r) ExpectNoSubRecords(made);
}

// Without any lead the outline starts where the leads would join it: the Double-D at the end
// of its lower flat, with and without a straight lead-in. (The first run of this test failed on
// the After of the outline alone: the test had given that shape no After; the test was wrong.)
TEST(SplitDoubleDLeads, NeitherLeadGivesTheOutlineAloneFromTheSameStart) {
    const MachineState m = Machine(1);
    DrawRecord bare = Shape(153, 0, 0, 10, 12, 0, -1);
    bare.After.ActionCode = 2;
    bare.After.ActionValue = 1.5f;
    bare = Bound(m, bare);
    DrawRecord led = Shape(153, 0, 0, 10, 12, 0, -1);
    led.LeadIn.LeadKind = 1;
    led.LeadIn.LeadLength = 3;
    led = Bound(m, led);
    const std::vector<DrawRecord> alone = Split(SplitDoubleDLeads, m, bare);
    const std::vector<DrawRecord> withLead = Split(SplitDoubleDLeads, m, led);
    ASSERT_EQ(alone.size(), 4u);
    ASSERT_EQ(withLead.size(), 5u);
    ExpectPoint(alone[0].Point[1], 8, -6);
    ExpectPoint(withLead[1].Point[1], 8, -6);
    ExpectPoint(withLead[0].Point[3], 8, -6);
    ExpectAfter(alone[3]);  // no lead-out: After on the lower flat
}

// A straight lead of length 0 is still a lead record, from the meeting point to itself. The
// Double-D at (0, 0), R 10, D 12, Side -1, TurnSense 1: the leads meet the end of the lower flat,
// (8, -6). Lead-in kind 1, length 0, angle 45: from (8, -6) to (8, -6), length 0, angle
// 45 + 180 = 225, Side LineSide(-1, ccw) = -1. Lead-out kind 1, length 0, angle 90: from (8, -6)
// to (8, -6), length 0, angle 90, with the After; the lower flat then has none.
TEST(SplitDoubleDLeads, AStraightLeadOfLengthZeroIsARecordFromThePointToItself) {
    const MachineState m = Machine(1);
    DrawRecord shape = Shape(153, 0, 0, 10, 12, 0, -1);
    shape.LeadIn = LeadSpec{1, 0, 45, 0};
    shape.LeadOut = LeadSpec{1, 0, 90, 0};
    shape.After.ActionCode = 2;
    shape.After.ActionValue = 1.5f;
    const std::vector<DrawRecord> r = Split(SplitDoubleDLeads, m, Bound(m, shape));
    ASSERT_EQ(r.size(), 6u);
    ExpectLine(r[0], 8, -6, 8, -6, 0, 225, -1);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    ExpectLine(r[4], -8, -6, 8, -6, 16, 0, -1);
    EXPECT_EQ(r[4].After.ActionCode, 0);
    ExpectLine(r[5], 8, -6, 8, -6, 0, 90, -1);
    ExpectAfter(r[5]);
}

// With no tool at all the outline with leads is the same as with a profiling tool, but for the
// tool the records carry.
TEST(SplitObroundLeads, NoToolGivesTheSameOutlineAsAProfilingTool) {
    const MachineState m = Machine(1);
    DrawRecord plain = Shape(154, 5, 5, 30, 10, 30, 1);
    GiveSubRecords(plain);
    plain.LeadOut.LeadKind = 1;
    DrawRecord profiled = plain;
    ProfilingTool(profiled);
    const std::vector<DrawRecord> a = Split(SplitObroundLeads, m, Bound(m, plain), SingleShapeChoices);
    const std::vector<DrawRecord> b = Split(SplitObroundLeads, m, Bound(m, profiled), SingleShapeChoices);
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) {
        DrawRecord left = a[i];
        DrawRecord right = b[i];
        ClearTool(left.ToolA);
        ClearTool(right.ToolA);
        EXPECT_EQ(bindtest::Bytes(left), bindtest::Bytes(right)) << "record " << i + 1;
    }
}

// ================================== Punched: the circle ====================================

DrawRecord PunchedCircle(float cx, float cy, float radius, float pitch, int16_t side, const char* letter,
                         float toolWidth) {
    DrawRecord r = Shape(151, cx, cy, radius, 0, 0, side);
    r.Value[3] = pitch;
    WorkingTool(r, letter, toolWidth, toolWidth);
    r.After.ActionCode = 2;
    r.After.ActionValue = 1.5f;
    return r;
}

// Outside circle at (50, 50), R 20, pitch 5, rotation 30, tool "B" of width 10 (r = 5),
// Count[2] -1. The path radius is 25; l = 25 * 2 * pi = 157.0796; n = floor(31.4159) + 1 = 32;
// one Arc Profile: centre (50, 50), Value[1] 20, Value[3] 5, Value[10] 30, Value[11] 360,
// Value[12] 360 / 31 = 11.612903 (not rounded to 3), Count[1] 32, Count[2] -1 (not "A"), Side 1,
// After.
// Bound on a tool machine: a whole circle of step 360/31 takes 31 hits; Value[3] becomes the
// step's length at radius 20: 2 * pi * 20 / 31 = 4.0537; the ends at 30: (67.3205, 60).
TEST(SplitCirclePunched, OutsideIsTheRimAtItsNominalRadius) {
    DrawRecord shape = PunchedCircle(50, 50, 20, 5, 1, "B", 10);
    shape.Value[10] = 30;
    shape.Count[2] = -1;
    {
        const MachineState combo = ComboMachine();
        const std::vector<DrawRecord> r = Split(SplitCirclePunched, combo, Bound(Machine(1), shape));
        ASSERT_EQ(r.size(), 1u);
        ExpectArc(r[0], 50, 50, 20, 30, 360, 1, 67.3205, 60, 67.3205, 60);
        EXPECT_EQ(r[0].Value[3], 5.0f);
        EXPECT_EQ(r[0].Value[12], ToSingle(360.0 / 31));
        EXPECT_EQ(r[0].Count[1], 32);
        EXPECT_EQ(r[0].Count[2], -1);
        EXPECT_EQ(r[0].FollowFlag, 0);
        ExpectAfter(r[0]);
    }
    const MachineState m = Machine(1);
    const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, Bound(Machine(1), shape));
    ASSERT_EQ(r.size(), 1u);
    ExpectArc(r[0], 50, 50, 20, 30, 360, 1, 67.3205, 60, 67.3205, 60);
    EXPECT_EQ(r[0].Count[1], 31);
    EXPECT_EQ(r[0].Value[12], ToSingle(360.0 / 31));
    EXPECT_NEAR(r[0].Value[3], 4.0537, 1e-4);
    EXPECT_EQ(r[0].Value[5], 20.0f);
    EXPECT_EQ(r[0].Value[13], 30.0f);
    EXPECT_EQ(r[0].Value[14], 360.0f);
    ExpectAfter(r[0]);
}

// Inside circle at (0, 0), R 10, pitch 3, tool "A" of width 4 (r = 2), Count[3] -1, Count[2] -1.
// n = floor(2 pi (10 - 2) / 3) + 1 = floor(16.755) + 1 = 17: no single hit. Path radius 8.
// Clearing: a Punch at the centre without After; rings while q < 8 - 1 = 7, q from 3 by 3:
//   q 3: l = 18.8496, m = floor(l / 2) + 1 = 10, Value[3] = l / 9 = 2.0944, Value[12] = 40;
//   q 6: l = 37.6991, m = floor(18.8496) + 1 = 19, Value[3] = l / 18 = 2.0944, Value[12] = 20;
//   q 9 is not below 7.
// Count[2] of the rings and the rim is 0: the tool is "A". The rim: l = 8 * 2 * pi = 50.2655,
// n = floor(16.755) + 1 = 17, Value[12] = 360 / 16 = 22.5, Value[3] 3, Side -1, After.
// Bound on a tool machine each whole circle has one hit fewer: rings 9 and 18, rim 16.
TEST(SplitCirclePunched, InsideWithClearingHitsTheCentreThenRingsThenTheRim) {
    DrawRecord shape = PunchedCircle(0, 0, 10, 3, -1, "A", 4);
    shape.Count[2] = -1;
    shape.Count[3] = -1;
    const int16_t combo[3] = {10, 19, 17};
    const int16_t tool[3] = {9, 18, 16};
    for (const bool onCombo : {true, false}) {
        const MachineState m = onCombo ? ComboMachine() : Machine(1);
        const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, Bound(Machine(1), shape));
        ASSERT_EQ(r.size(), 4u);
        ExpectMadeFrom(r[0], 210, "Punch");
        ExpectPoint(r[0].Point[4], 0, 0);
        EXPECT_EQ(r[0].After.ActionCode, 0);
        EXPECT_EQ(r[0].ToolA.Letter.Text(), "A");
        const float radii[2] = {3, 6};
        const float steps[2] = {40, 20};
        for (int i = 0; i < 2; ++i) {
            const DrawRecord& ring = r[static_cast<size_t>(i) + 1];
            ExpectMadeFrom(ring, 230, "Arc Pattern");
            ExpectPoint(ring.Point[4], 0, 0);
            EXPECT_EQ(ring.Value[1], radii[i]);
            EXPECT_NEAR(ring.Value[3], 2.0944, 1e-4);
            EXPECT_EQ(ring.Value[10], 0.0f);
            EXPECT_EQ(ring.Value[11], 360.0f);
            EXPECT_EQ(ring.Value[12], steps[i]);
            EXPECT_EQ(ring.Count[1], onCombo ? combo[i] : tool[i]);
            EXPECT_EQ(ring.Count[2], 0);
            EXPECT_EQ(ring.After.ActionCode, 0);
        }
        ExpectArc(r[3], 0, 0, 10, 0, 360, -1, 10, 0, 10, 0);
        EXPECT_EQ(r[3].Value[12], 22.5f);
        EXPECT_EQ(r[3].Count[1], onCombo ? combo[2] : tool[2]);
        EXPECT_EQ(r[3].Count[2], 0);
        EXPECT_EQ(r[3].FollowFlag, 0);
        if (onCombo) {
            EXPECT_EQ(r[3].Value[3], 3.0f);
        }
        ExpectAfter(r[3]);
    }
}

// Any letter but "A" keeps Count[2]: the same circle with a tool "C" gives the rings and the rim
// Count[2] -1.
TEST(SplitCirclePunched, LetterAClearsTheRotationFlagAndAnyOtherKeepsIt) {
    const MachineState m = Machine(1);
    DrawRecord shape = PunchedCircle(0, 0, 10, 3, -1, "C", 4);
    shape.Count[2] = -1;
    shape.Count[3] = -1;
    const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, Bound(Machine(1), shape));
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[1].Count[2], -1);
    EXPECT_EQ(r[2].Count[2], -1);
    EXPECT_EQ(r[3].Count[2], -1);
}

// Inside, a tool of the hole's size: R 5, tool width 10, r = 5 = R: one Punch at the centre with
// the tool and the After.
TEST(SplitCirclePunched, InsideAToolOfTheHolesSizeIsOneHit) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedCircle(7, 8, 5, 3, -1, "A", 10));
    const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectMadeFrom(r[0], 210, "Punch");
    ExpectPoint(r[0].Point[4], 7, 8);
    EXPECT_EQ(r[0].ToolA.Size[1], 10.0f);
    ExpectAfter(r[0]);
}

// Inside, a hole too small to walk: R 5, r 2, pitch 20: n = floor(2 pi 3 / 20) + 1 =
// floor(0.942) + 1 = 1, below 2: one hit. A pitch of 0 gives n = 1 too.
TEST(SplitCirclePunched, InsideFewerThanTwoHitsOrNoPitchIsOneHit) {
    const MachineState m = Machine(1);
    for (const float pitch : {20.0f, 0.0f, -1.0f}) {
        const DrawRecord shape = Bound(Machine(1), PunchedCircle(0, 0, 5, pitch, -1, "A", 4));
        const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, shape);
        ASSERT_EQ(r.size(), 1u) << pitch;
        EXPECT_EQ(r[0].EntityCode, 210);
        ExpectAfter(r[0]);
    }
}

// Outside, a tool larger than the hole still takes the rim: R 5, tool 20 (r 10), pitch 5: the
// path radius 15, l = 94.2478, n = floor(18.85) + 1 = 19, Value[12] = 360 / 18 = 20.
TEST(SplitCirclePunched, OutsideAlwaysTakesTheRimEvenWithAToolLargerThanTheHole) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedCircle(0, 0, 5, 5, 1, "A", 20));
    const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectArc(r[0], 0, 0, 5, 0, 360, 1, 5, 0, 5, 0);
    EXPECT_EQ(r[0].Count[1], 19);
    EXPECT_EQ(r[0].Value[12], 20.0f);
}

// Count[3] 0 and a small tool: R 10, r 1 (width 2), pitch 2, Side 0 (inside): no clearing, the
// rim alone: path 9, l = 56.5487, n = floor(28.27) + 1 = 29, Value[12] = 360 / 28 = 12.857143,
// not rounded (the circle's own rule, unlike an arc's step of 3 decimals). The rim takes the
// source's Side as it stands, 0, and no FollowFlag.
TEST(SplitCirclePunched, WithoutClearingASmallToolGetsOnlyTheRim) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedCircle(0, 0, 10, 2, 0, "A", 2));
    const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 130);
    EXPECT_EQ(r[0].Count[1], 29);
    EXPECT_EQ(r[0].Value[12], ToSingle(360.0 / 28));
    EXPECT_EQ(r[0].Side, 0);
    EXPECT_EQ(r[0].FollowFlag, 0);
}

// Rings stop before the rim: r = 2, pitch 3. R 12: path radius 10, rings while q < 10 - 1 = 9:
// q = 3, 6; q = 9 is not below 9. R 12.01: the bound is 9.01 and q = 9 makes a third ring, 1.01
// from the rim's path.
TEST(SplitCirclePunched, ARingStopsBeforeTheRimButMayLieCloseToIt) {
    const MachineState m = Machine(1);
    for (const float radius : {12.0f, 12.01f}) {
        DrawRecord shape = PunchedCircle(0, 0, radius, 3, -1, "A", 4);
        shape.Count[3] = -1;
        const std::vector<DrawRecord> r = Split(SplitCirclePunched, m, Bound(Machine(1), shape));
        const size_t rings = radius == 12.0f ? 2 : 3;
        ASSERT_EQ(r.size(), rings + 2) << radius;
        for (size_t i = 1; i <= rings; ++i) EXPECT_EQ(r[i].Value[1], 3.0f * static_cast<float>(i));
        EXPECT_EQ(r.back().EntityCode, 130);
    }
}

// ================================ Punched: the Single-D ====================================

DrawRecord PunchedShape(int16_t code, float first, float second, float pitch, int16_t side, const char* letter,
                        float toolWidth, float toolLength) {
    DrawRecord r = Shape(code, 0, 0, first, second, 0, side);
    r.Value[3] = pitch;
    WorkingTool(r, letter, toolWidth, toolLength);
    r.After.ActionCode = 2;
    r.After.ActionValue = 1.5f;
    return r;
}

// Inside Single-D (Side 0, bound to -1) at (0, 0), R 10, D 16, pitch 4, tool "A" 2 x 2 (T 2),
// TurnSense 1. Points as in the plain outline: left (-8, 6), right (8, 6), start 143.13, sweep
// 253.74. The arc: path radius 10 - 1 = 9, length 9 * 2 pi / (360 / 253.74) = 39.8574, over 4
// = 9.96, n = 10; step 253.74 / 9 = 28.1933 -> 28.193. Side s = -1, FollowFlag -1. The flat
// from (8, 6) to (-8, 6), length 16, n = trunc(16 / 4) + 1 = 5, pitch 16 / 4 = 4, Value[5] 16,
// Side LineSide(-1, ccw) = -1, FollowFlag -1, After.
// Bound on a tool machine: the arc keeps 10 hits (253.74 / 28.193 = 9.0001) at the step
// 253.74 / 9 = 28.19333; Value[3] 28.19333 * 2 pi 10 / 360 = 4.92067; Value[5] the radius 10.
TEST(SplitSingleDPunched, InsideArcThenFlatWithHitsFollowingTheOutline) {
    const DrawRecord source = PunchedShape(152, 10, 16, 4, 0, "A", 2, 2);
    for (const bool onCombo : {true, false}) {
        const MachineState m = onCombo ? ComboMachine() : Machine(1);
        const std::vector<DrawRecord> r = Split(SplitSingleDPunched, m, Bound(Machine(1), source));
        ASSERT_EQ(r.size(), 2u);
        ExpectArc(r[0], 0, 0, 10, 143.13f, 253.74f, -1, -8, 6, 8, 6);
        EXPECT_EQ(r[0].Count[1], 10);
        EXPECT_EQ(r[0].FollowFlag, -1);
        EXPECT_EQ(r[0].After.ActionCode, 0);
        if (onCombo) {
            EXPECT_EQ(r[0].Value[12], 28.193f);
        } else {
            EXPECT_EQ(r[0].Value[12], ToSingle(static_cast<double>(253.74f) / 9));
            EXPECT_NEAR(r[0].Value[3], 4.9207, 1e-4);
            EXPECT_EQ(r[0].Value[5], 10.0f);
        }
        ExpectLine(r[1], 8, 6, -8, 6, 16, 180, -1);
        EXPECT_EQ(r[1].Value[2], 4.0f);
        EXPECT_EQ(r[1].Value[5], 16.0f);
        EXPECT_EQ(r[1].Count[1], 5);
        EXPECT_EQ(r[1].FollowFlag, -1);
        ExpectAfter(r[1]);
    }
}

// Inside, the Single-D punch "G" (20 x 16, the shape's own size) is one hit at the centre.
TEST(SplitSingleDPunched, InsideLetterGIsOneHitAtTheCentre) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedShape(152, 10, 16, 4, -1, "G", 20, 16));
    const std::vector<DrawRecord> r = Split(SplitSingleDPunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectMadeFrom(r[0], 210, "Punch");
    ExpectPoint(r[0].Point[4], 0, 0);
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "G");
    ExpectAfter(r[0]);
}

// Outside, "G" is no single hit: the arc's tool path is 10 + 16 / 2 = 18, length 18 * 2 pi *
// 253.74 / 360 = 79.7148, over 4 = 19.93, n = 20, step 253.74 / 19 = 13.3547 -> 13.355; Side
// s = 1, no FollowFlag. The flat: 5 hits at 4, Side LineSide(1, ccw) = 1.
TEST(SplitSingleDPunched, OutsideLetterGIsNotOneHit) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedShape(152, 10, 16, 4, 1, "G", 20, 16));
    const std::vector<DrawRecord> r = Split(SplitSingleDPunched, m, shape);
    ASSERT_EQ(r.size(), 2u);
    ExpectArc(r[0], 0, 0, 10, 143.13f, 253.74f, 1, -8, 6, 8, 6);
    EXPECT_EQ(r[0].Count[1], 20);
    EXPECT_EQ(r[0].Value[12], 13.355f);
    EXPECT_EQ(r[0].FollowFlag, 0);
    ExpectLine(r[1], 8, 6, -8, 6, 16, 180, 1);
    EXPECT_EQ(r[1].Count[1], 5);
    EXPECT_EQ(r[1].FollowFlag, 0);
    ExpectAfter(r[1]);
}

// A flat shorter than the pitch: R 10, D 16, pitch 20. The arc (path radius 9, length 39.857,
// n = floor(1.99) + 1 = 2) is written; the flat of length 16 has n = trunc(0.8) + 1 = 1 hit and
// its pitch 16 / 0 cannot be taken: the run ends as a fault that names the entity.
TEST(SplitSingleDPunched, APathShorterThanItsPitchEndsTheRunAsAFault) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedShape(152, 10, 16, 20, -1, "A", 2, 2));
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    int status = 0;
    const std::string text = FaultOf([&] { SplitSingleDPunched(out, shape); }, status);
    EXPECT_EQ(status, ExitFault);
    EXPECT_EQ(text,
              "Cannot split record 7 of Progmain.drw (code 152): a punched path of length 16 is shorter than its "
              "pitch: it has one hit, and its pitch divides by 0");
    EXPECT_EQ(records.size(), 1u);
}

// An arc shorter than its pitch: the Double-D R 10, D 12, pitch 15, tool 2 x 2 inside. The lower
// flat has n = trunc(16 / 15) + 1 = 2; arc 1 (path 9, length 9 * 2 pi * 73.74 / 360 = 11.5831)
// has n = floor(0.77) + 1 = 1 and its step 73.74 / 0 cannot be taken.
TEST(SplitDoubleDPunched, AnArcShorterThanItsPitchEndsTheRunAsAFault) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedShape(153, 10, 12, 15, -1, "A", 2, 2));
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    int status = 0;
    const std::string text = FaultOf([&] { SplitDoubleDPunched(out, shape); }, status);
    EXPECT_EQ(status, ExitFault);
    EXPECT_EQ(text.rfind("Cannot split record 7 of Progmain.drw (code 153): a punched arc of sweep 73.74", 0), 0u)
        << text;
    EXPECT_EQ(records.size(), 1u);
}

// ================================ Punched: the Double-D ====================================

// Inside Double-D at (0, 0), R 10, D 12, pitch 3, tool "A" 2 x 2, TurnSense 1. Lower flat
// (-8, -6) to (8, -6): length 16, n = trunc(5.33) + 1 = 6, pitch 16 / 5 = 3.2. Arc 1 from 323.13
// over 73.74: path 9, length 9 * 2 pi * 73.74 / 360 = 11.5831, over 3 = 3.86, n = 4, step
// 73.74 / 3 = 24.58. Upper flat (8, 6) to (-8, 6): 6 hits at 3.2. Arc 2 from 143.13: 4 hits at
// 24.58, After. Lines Side -1, arcs -1, all FollowFlag -1. The same on a tool machine: 16 / 3.2
// is 5 steps, 73.74 / 24.58 is 3.
TEST(SplitDoubleDPunched, InsideFlatArcFlatArcWithHits) {
    for (const bool onCombo : {true, false}) {
        const MachineState m = onCombo ? ComboMachine() : Machine(1);
        const DrawRecord shape = Bound(Machine(1), PunchedShape(153, 10, 12, 3, -1, "A", 2, 2));
        const std::vector<DrawRecord> r = Split(SplitDoubleDPunched, m, shape);
        ASSERT_EQ(r.size(), 4u);
        ExpectLine(r[0], -8, -6, 8, -6, 16, 0, -1);
        ExpectArc(r[1], 0, 0, 10, 323.13f, 73.74f, -1, 8, -6, 8, 6);
        ExpectLine(r[2], 8, 6, -8, 6, 16, 180, -1);
        ExpectArc(r[3], 0, 0, 10, 143.13f, 73.74f, -1, -8, 6, -8, -6);
        for (const size_t i : {0u, 2u}) {
            EXPECT_EQ(r[i].Count[1], 6);
            EXPECT_EQ(r[i].Value[2], 3.2f);
        }
        for (const size_t i : {1u, 3u}) {
            EXPECT_EQ(r[i].Count[1], 4);
            EXPECT_EQ(r[i].Value[12], 24.58f);
        }
        for (const DrawRecord& made : r) {
            EXPECT_EQ(made.FollowFlag, -1);
            EXPECT_EQ(made.ToolA.Letter.Text(), "A");
            EXPECT_EQ(made.ToolA.Size[2], 2.0f);
            EXPECT_EQ(made.LeadIn.LeadKind, 0);
        }
        ExpectAfter(r[3]);
        EXPECT_EQ(r[0].After.ActionCode, 0);
    }
}

// Inside, the Double-D punch "H" is one hit at the centre.
TEST(SplitDoubleDPunched, InsideLetterHIsOneHitAtTheCentre) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedShape(153, 10, 12, 3, -1, "H", 20, 12));
    const std::vector<DrawRecord> r = Split(SplitDoubleDPunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectMadeFrom(r[0], 210, "Punch");
    ExpectAfter(r[0]);
}

// Outside, "H" is not one hit: arcs on the path 10 + 12 / 2 = 16, length 16 * 2 pi * 73.74 /
// 360 = 20.5921, over 3 = 6.86, n = 7, step 73.74 / 6 = 12.29; lines 6 hits at 3.2; Side 1
// everywhere, no FollowFlag.
TEST(SplitDoubleDPunched, OutsideLetterHIsNotOneHit) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedShape(153, 10, 12, 3, 1, "H", 20, 12));
    const std::vector<DrawRecord> r = Split(SplitDoubleDPunched, m, shape);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[1].Count[1], 7);
    EXPECT_EQ(r[1].Value[12], 12.29f);
    EXPECT_EQ(r[0].Count[1], 6);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.Side, 1);
        EXPECT_EQ(made.FollowFlag, 0);
    }
}

// ================================= Punched: the obround ====================================

// Inside obround at (0, 0), L 40, W 20, pitch 5, tool "C" 5 x 5 (T 5, not above W / 3 = 6.67),
// TurnSense 1. Binding: S = Value[5] = 20. XYToPolar(10, 10): P1 = (-10, -10), P2 = (10, -10),
// P3 = (10, 10), P4 = (-10, 10); arc 1 about (10, 0) from 270, arc 2 about (-10, 0) from 90,
// radius 10, sweeps +180 (counter-clockwise). Path radius 10 - 2.5 = 7.5.
// Lines: Value[1] S = 20, n = trunc(20 / 5) + 1 = 5, pitch 20 / 4 = 5; Side by the sweep alone:
// LineSide(-1, ccw) = -1; FollowFlag -1. Arcs: length 7.5 * 2 pi / 2 = 23.5619, over 5 = 4.71,
// n = 5, step 180 / 4 = 45; Side s = -1; FollowFlag -1. After on arc 2.
TEST(SplitObroundPunched, InsideRimLineArcLineArc) {
    for (const bool onCombo : {true, false}) {
        const MachineState m = onCombo ? ComboMachine() : Machine(1);
        const DrawRecord shape = Bound(Machine(1), PunchedShape(154, 40, 20, 5, -1, "C", 5, 5));
        ASSERT_EQ(shape.Value[5], 20.0f);
        const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
        ASSERT_EQ(r.size(), 4u);
        ExpectLine(r[0], -10, -10, 10, -10, 20, 0, -1);
        ExpectArc(r[1], 10, 0, 10, 270, 180, -1, 10, -10, 10, 10);
        ExpectLine(r[2], 10, 10, -10, 10, 20, 180, -1);
        ExpectArc(r[3], -10, 0, 10, 90, 180, -1, -10, 10, -10, -10);
        for (const size_t i : {0u, 2u}) {
            EXPECT_EQ(r[i].Count[1], 5);
            EXPECT_EQ(r[i].Value[2], 5.0f);
            EXPECT_EQ(r[i].Value[5], 20.0f);
        }
        for (const size_t i : {1u, 3u}) {
            EXPECT_EQ(r[i].Count[1], 5);
            EXPECT_EQ(r[i].Value[12], 45.0f);
        }
        for (const DrawRecord& made : r) {
            EXPECT_EQ(made.FollowFlag, -1);
            EXPECT_EQ(made.ToolA.Letter.Text(), "C");
        }
        ExpectAfter(r[3]);
    }
}

// T 8 lies above W / 3 = 6.67 and below W / 2 = 10: a middle row first, from PolarToXY(S / 2,
// 0) = (10, 0) to (-10, 0): Value[1] S = 20, 5 hits at 5, Value[10] Norm360(0 + 180) = 180,
// Side -1 (by the sweep), FollowFlag unset, no After. Then the rim on the path 10 - 4 = 6: arcs
// of length 6 pi = 18.8496, over 5 = 3.77, n = 4, step 60.
TEST(SplitObroundPunched, InsideAToolBetweenAThirdAndAHalfOfTheWidthGetsAMiddleRow) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedShape(154, 40, 20, 5, -1, "C", 8, 8));
    const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
    ASSERT_EQ(r.size(), 5u);
    ExpectLine(r[0], 10, 0, -10, 0, 20, 180, -1);
    EXPECT_EQ(r[0].Count[1], 5);
    EXPECT_EQ(r[0].Value[2], 5.0f);
    EXPECT_EQ(r[0].FollowFlag, 0);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    EXPECT_EQ(r[2].Count[1], 4);
    EXPECT_EQ(r[2].Value[12], 60.0f);
    EXPECT_EQ(r[4].Count[1], 4);
    ExpectAfter(r[4]);
}

// The test for the middle row is strict at both ends: T = W / 2 (W 20, T 10) and T = W / 3
// (W 30, T 10) give the rim alone.
TEST(SplitObroundPunched, AToolOfExactlyHalfOrAThirdOfTheWidthGetsNoMiddleRow) {
    const MachineState m = ComboMachine();
    const DrawRecord half = Bound(Machine(1), PunchedShape(154, 40, 20, 2, -1, "C", 10, 10));
    const DrawRecord third = Bound(Machine(1), PunchedShape(154, 60, 30, 2, -1, "C", 10, 10));
    EXPECT_EQ(Split(SplitObroundPunched, m, half).size(), 4u);
    EXPECT_EQ(Split(SplitObroundPunched, m, third).size(), 4u);
}

// T equal to W (20 x 20 tool "C"): one row from PolarToXY(L / 2, 180) = (-20, 0) to (20, 0),
// Value[1] L = 40, Value[2] the pitch 5, Value[10] the rotation 0, Count[1] the source's own 7,
// FollowFlag -1, Side -1, After. Binding makes Value[5] the line's Value[1], 40; on a tool
// machine it also counts the row's hits at the pitch: 40 / 5 = 8 steps, 9 hits.
TEST(SplitObroundPunched, InsideAToolAsWideAsTheShapeIsOneRowAlongItsLength) {
    DrawRecord source = PunchedShape(154, 40, 20, 5, -1, "C", 20, 20);
    source.Count[1] = 7;
    for (const bool onCombo : {true, false}) {
        const MachineState m = onCombo ? ComboMachine() : Machine(1);
        const DrawRecord shape = Bound(Machine(1), source);
        const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
        ASSERT_EQ(r.size(), 1u);
        ExpectLine(r[0], -20, 0, 20, 0, 40, 0, -1);
        EXPECT_EQ(r[0].Value[2], 5.0f);
        EXPECT_EQ(r[0].Count[1], onCombo ? 7 : 9);
        EXPECT_EQ(r[0].FollowFlag, -1);
        ExpectAfter(r[0]);
    }
}

// Inside, the obround punch "F" of the shape's own length (40 x 20) is one hit at the centre.
TEST(SplitObroundPunched, InsideLetterFOfTheShapesLengthIsOneHit) {
    const MachineState m = Machine(1);
    const DrawRecord shape = Bound(Machine(1), PunchedShape(154, 40, 20, 5, -1, "F", 40, 20));
    const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectMadeFrom(r[0], 210, "Punch");
    ExpectAfter(r[0]);
}

// Inside, a shorter "F" (30 x 20) in an obround of L 65, W 20 (S 45): the row along the length
// whatever T is: from (-32.5, 0) to (32.5, 0), Value[1] 65, Value[2] 5, Count[1] binding's hits
// of the obround punch: (45 - 30) / (30 - 20) = 1.5, one more than 1: 2.
TEST(SplitObroundPunched, InsideLetterFShorterThanTheShapeIsTheRowWhateverTheToolsWidth) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedShape(154, 65, 20, 5, -1, "F", 30, 20));
    ASSERT_EQ(shape.Count[1], 2);
    const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
    ASSERT_EQ(r.size(), 1u);
    ExpectLine(r[0], -32.5, 0, 32.5, 0, 65, 0, -1);
    EXPECT_EQ(r[0].Value[2], 5.0f);
    EXPECT_EQ(r[0].Count[1], 2);
    EXPECT_EQ(r[0].FollowFlag, -1);
    ExpectAfter(r[0]);
}

// Outside: the rim on the path 10 + 2.5 = 12.5, arcs of length 12.5 pi = 39.2699, over 5 = 7.85,
// n = 8, step 180 / 7 = 25.714. Lines still take their Side by the sweep as if inside: -1 on
// convention 1 (1 on convention 0); arcs take s = 1; no FollowFlag.
TEST(SplitObroundPunched, OutsideIsTheRimAndTheLinesSideDoesNotDependOnIt) {
    for (const int16_t sense : {int16_t{1}, int16_t{0}}) {
        const MachineState m = ComboMachine(sense);
        const DrawRecord shape = Bound(Machine(sense), PunchedShape(154, 40, 20, 5, 1, "C", 5, 5));
        const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
        ASSERT_EQ(r.size(), 4u);
        const int16_t lineSide = sense == 1 ? -1 : 1;
        ExpectLine(r[0], -10, -10, 10, -10, 20, 0, lineSide);
        ExpectArc(r[1], 10, 0, 10, 270, 180, 1, 10, -10, 10, 10);
        ExpectLine(r[2], 10, 10, -10, 10, 20, 180, lineSide);
        ExpectArc(r[3], -10, 0, 10, 90, 180, 1, -10, 10, -10, -10);
        EXPECT_EQ(r[1].Count[1], 8);
        EXPECT_EQ(r[1].Value[12], 25.714f);
        EXPECT_EQ(r[3].Count[1], 8);
        EXPECT_EQ(r[0].Count[1], 5);
        EXPECT_EQ(r[0].Value[2], 5.0f);
        for (const DrawRecord& made : r) EXPECT_EQ(made.FollowFlag, 0);
        ExpectAfter(r[3]);
    }
}

// Outside, the obround punch "F", even one of the shape's own size (40 x 20), is no single hit:
// the one-hit and row tests are for inside only. The rim as above, on the path 10 + 20 / 2 =
// 20: arcs of length 20 pi = 62.8319, over 5 = 12.57, n = 13, step 180 / 12 = 15.
TEST(SplitObroundPunched, OutsideLetterFIsNotOneHit) {
    const MachineState m = ComboMachine();
    const DrawRecord shape = Bound(Machine(1), PunchedShape(154, 40, 20, 5, 1, "F", 40, 20));
    const std::vector<DrawRecord> r = Split(SplitObroundPunched, m, shape);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[1].Count[1], 13);
    EXPECT_EQ(r[1].Value[12], 15.0f);
    ExpectAfter(r[3]);
}

// ================================= Damaged records =========================================

// A tool of width 0 inside a circle to be cleared: the first ring of radius 1.5 * 0 = 0 would
// count its hits over the tool's radius 0. The run ends as a fault instead.
TEST(SplitCirclePunched, ClearingWithAToolOfWidthZeroEndsAsAFault) {
    const MachineState m = Machine(1);
    DrawRecord shape = PunchedCircle(0, 0, 10, 3, -1, "A", 0);
    shape.Count[3] = -1;
    shape = Bound(m, shape);
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    int status = 0;
    const std::string text = FaultOf([&] { SplitCirclePunched(out, shape); }, status);
    EXPECT_EQ(status, ExitFault);
    EXPECT_EQ(text, "Cannot split record 7 of Progmain.drw (code 151): a punched arc of length 0 has a pitch of 0");
    EXPECT_EQ(count, 1);  // the centre hit
}

// A damaged tool of width 0.0001 in a hole of radius 100: rings 0.000075 apart, each with more
// hits than the one before (m = floor(2 pi q / r) + 1 = 9.42 k + 1 on the k-th ring). The rings
// stop at the first whose count no longer fits a count, k = 3477 (m = 32770), long before the bound on
// an entity's records; the run ends as a fault.
TEST(SplitCirclePunched, RingsOfADamagedToolStopAsAFault) {
    const MachineState m = Machine(1);
    DrawRecord shape = PunchedCircle(0, 0, 100, 3, -1, "A", 0.0001f);
    shape.Count[3] = -1;
    shape = Bound(m, shape);
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices, "record 7 of Progmain.drw");
    int status = 0;
    const std::string text = FaultOf([&] { SplitCirclePunched(out, shape); }, status);
    EXPECT_EQ(status, ExitFault);
    EXPECT_NE(text.find("the hits of a clearing ring"), std::string::npos) << text;
    EXPECT_GT(count, 3000);
    EXPECT_LT(count, 4000);
}

}  // namespace
