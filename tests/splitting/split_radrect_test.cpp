// The radiused rectangle (155): its plain outline, its outline for a profiling head, the round
// punch, the clearing and the rim of a rectangular punch, and the choice among them. Every table
// is worked out by hand in the comment above it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/fault.h"
#include "splitting/rect_split_support.h"

using namespace tvx;
using namespace tvx::recttest;

namespace {

// The shape of most tests: centre (100, 50), L 40, H 20, corner radius 5, no rotation.
//   X0 - L/2 = 80, X0 + L/2 = 120, Y0 - H/2 = 40, Y0 + H/2 = 60; rx = ry = 5.
// The middle of a corner of radius 5 lies 5 * cos 45 = 3.5355339 from its centre along each
// axis, rounded to 4 decimals in the coordinate.
DrawRecord Plate() { return Shape(155, 100, 50, 40, 20, 5); }

constexpr double K = 3.5355339;  // 5 * cos 45

}  // namespace

// ---- The plain outline --------------------------------------------------------------------------

// L 40 and H 20 both above 0: counter-clockwise, corners start at 270, 0, 90, 180 and sweep +90.
// Machine convention 0, counter-clockwise, Side 1: the lines take -1, the arcs keep 1.
//   line 1  (85, 40) -> (115, 40)     30, 0      LeadIn, ToolB
//   corner 1 centre (115, 45) from 270: (115, 40) -> (120, 45), middle at 315 (118.5355, 41.4645)
//   line 2  (120, 45) -> (120, 55)    10, 90
//   corner 2 centre (115, 55) from 0:   (120, 55) -> (115, 60), middle at 45 (118.5355, 58.5355)
//   line 3  (115, 60) -> (85, 60)     30, 180
//   corner 3 centre (85, 55) from 90:   (85, 60) -> (80, 55), middle at 135 (81.4645, 58.5355)
//   line 4  (80, 55) -> (80, 45)      10, 270
//   corner 4 centre (85, 45) from 180:  (80, 45) -> (85, 40), middle at 225 (81.4645, 41.4645)
//                                                                 LeadOut, After
TEST(SplitRadRectProfile, FourSidesAndFourCornersFromTheBottomSide) {
    DrawRecord shape = Plate();
    shape.Side = 1;
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 2, 4, 0);
    shape.After.ActionCode = 2;
    shape.After.ActionValue = 1.5f;
    shape.ToolB.Present = -1;
    shape.ToolB.Letter = "B";
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 85, 40, 115, 40, 30, 0, -1);
    ExpectArc(r[1], 115, 45, 5, 270, 90, 115, 40, 115 + K, 45 - K, 120, 45, 1);
    ExpectLine(r[2], 120, 45, 120, 55, 10, 90, -1);
    ExpectArc(r[3], 115, 55, 5, 0, 90, 120, 55, 115 + K, 55 + K, 115, 60, 1);
    ExpectLine(r[4], 115, 60, 85, 60, 30, 180, -1);
    ExpectArc(r[5], 85, 55, 5, 90, 90, 85, 60, 85 - K, 55 + K, 80, 55, 1);
    ExpectLine(r[6], 80, 55, 80, 45, 10, 270, -1);
    ExpectArc(r[7], 85, 45, 5, 180, 90, 80, 45, 85 - K, 45 - K, 85, 40, 1);

    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    EXPECT_EQ(r[0].LeadIn.LeadLength, 3.0f);
    // Line 1 takes ToolB, but binding then clears a second tool on every record but a rectangle
    // or one whose ToolA is "P" or "U": as written, line 1 has none. (The first run showed that
    // the table above had left binding's first step out; the table was wrong.)
    EXPECT_EQ(r[0].ToolB.Present, 0);
    EXPECT_EQ(r[0].LeadOut.LeadKind, 0);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    for (int i = 1; i <= 6; ++i) {
        ExpectNoSubRecords(r[static_cast<size_t>(i)]);
        EXPECT_EQ(r[static_cast<size_t>(i)].ToolB.Present, 0);
    }
    EXPECT_EQ(r[7].LeadIn.LeadKind, 0);
    EXPECT_EQ(r[7].LeadOut.LeadKind, 2);
    EXPECT_EQ(r[7].After.ActionCode, 2);
    EXPECT_EQ(r[7].After.ActionValue, 1.5f);
    EXPECT_EQ(r[7].ToolB.Present, 0);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.ToolA.Present, 0);
        EXPECT_EQ(made.FollowFlag, 0);
    }
}

// A shape whose ToolA is not assigned but keeps the letter "P" of a profiling tool: binding
// keeps the second tool, and line 1 is written with the shape's ToolB; the other records have
// none.
TEST(SplitRadRectProfile, TheFirstLineTakesToolB) {
    DrawRecord shape = Plate();
    shape.ToolA.Letter = "P";
    shape.ToolB.Present = -1;
    shape.ToolB.Letter = "B";
    shape.ToolB.Size[1] = 3;
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    ASSERT_EQ(r.size(), 8u);
    EXPECT_EQ(r[0].ToolB.Present, -1);
    EXPECT_EQ(r[0].ToolB.Letter.Text(), "B");
    EXPECT_EQ(r[0].ToolB.Size[1], 3.0f);
    for (size_t i = 1; i < 8; ++i) EXPECT_EQ(r[i].ToolB.Present, 0);
}

// The same plate turned by 90 about its centre: (x, y) -> (100 - (y - 50), 50 + (x - 100)).
//   line 1   (85, 40) -> (115, 40) becomes (110, 35) -> (110, 65), 30 at 90
//   corner 1 centre (115, 45) becomes (105, 65); start 270 + 90 = 360, normalised 0;
//            from (110, 65) to (105, 70), middle at 45 (105 + K, 65 + K)
//   line 2   (120, 45) -> (120, 55) becomes (105, 70) -> (95, 70), 10 at 180
//   corner 4 centre (85, 45) becomes (105, 35); start 180 + 90 = 270; (110, 35) at its end
TEST(SplitRadRectProfile, TurnedByTheRotationAboutTheCentre) {
    DrawRecord shape = Shape(155, 100, 50, 40, 20, 5, 90);
    shape.Side = 1;
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 110, 35, 110, 65, 30, 90, -1);
    ExpectArc(r[1], 105, 65, 5, 0, 90, 110, 65, 105 + K, 65 + K, 105, 70, 1);
    ExpectLine(r[2], 105, 70, 95, 70, 10, 180, -1);
    ExpectArc(r[7], 105, 35, 5, 270, 90, 105, 30, 105 + K, 35 - K, 110, 35, 1);
}

// L -40, H 20: rx = -5, ry = 5; X0 - L/2 = 120, X0 + L/2 = 80. L not above 0 and H above 0:
// clockwise, corners start at 270, 180, 90, 0 and sweep -90. Convention 0, clockwise, Side -1:
// the lines take -1.
//   line 1  (115, 40) -> (85, 40)   30, 180
//   corner 1 centre (85, 45) from 270 by -90: (85, 40) -> (80, 45), middle at 225
//   line 2  (80, 45) -> (80, 55)    10, 90
//   corner 2 centre (85, 55) from 180: (80, 55) -> (85, 60), middle at 135
//   line 3  (85, 60) -> (115, 60)   30, 0
//   corner 3 centre (115, 55) from 90: (115, 60) -> (120, 55), middle at 45
//   line 4  (120, 55) -> (120, 45)  10, 270
//   corner 4 centre (115, 45) from 0: (120, 45) -> (115, 40), middle at 315
TEST(SplitRadRectProfile, AMirroredShapeRunsClockwise) {
    DrawRecord shape = Shape(155, 100, 50, -40, 20, 5);
    shape.Side = -1;
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 115, 40, 85, 40, 30, 180, -1);
    ExpectArc(r[1], 85, 45, 5, 270, -90, 85, 40, 85 - K, 45 - K, 80, 45, -1);
    ExpectLine(r[2], 80, 45, 80, 55, 10, 90, -1);
    ExpectArc(r[3], 85, 55, 5, 180, -90, 80, 55, 85 - K, 55 + K, 85, 60, -1);
    ExpectLine(r[4], 85, 60, 115, 60, 30, 0, -1);
    ExpectArc(r[5], 115, 55, 5, 90, -90, 115, 60, 115 + K, 55 + K, 120, 55, -1);
    ExpectLine(r[6], 120, 55, 120, 45, 10, 270, -1);
    ExpectArc(r[7], 115, 45, 5, 0, -90, 120, 45, 115 + K, 45 - K, 115, 40, -1);
}

// Both dimensions below 0: rx = ry = -5, counter-clockwise again, corners 90, 180, 270, 0.
//   line 1 (X0 - L/2 + rx, Y0 - H/2) = (120 - 5, 60) = (115, 60) -> (85, 60), 30 at 180
//   corner 1 centre (X0 + L/2 - rx, Y0 - H/2 + ry) = (85, 55), from 90 by +90: (85, 60) -> (80, 55)
TEST(SplitRadRectProfile, BothDimensionsNegativeRunCounterClockwise) {
    DrawRecord shape = Shape(155, 100, 50, -40, -20, 5);
    shape.Side = 1;
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape, 1);
    ASSERT_EQ(r.size(), 8u);
    // Convention 1, counter-clockwise, Side 1: the lines take 1.
    ExpectLine(r[0], 115, 60, 85, 60, 30, 180, 1);
    ExpectArc(r[1], 85, 55, 5, 90, 90, 85, 60, 85 - K, 55 + K, 80, 55, 1);
}

// A corner radius of 0: still eight records, the corners of radius 0 at the rectangle's corners.
//   centre (0, 0), L 40, H 20: line 1 (-20, -10) -> (20, -10); corner 1 at (20, -10), from 270.
TEST(SplitRadRectProfile, ACornerRadiusOfZeroStillGivesEightRecords) {
    const DrawRecord shape = Shape(155, 0, 0, 40, 20, 0);
    const std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], -20, -10, 20, -10, 40, 0, 0);
    ExpectArc(r[1], 20, -10, 0, 270, 90, 20, -10, 20, -10, 20, -10, 0);
    for (size_t i = 1; i < 8; i += 2) EXPECT_EQ(r[i].Value[1], 0.0f);
}

// The Side of the corners is the shape's own; only the lines' is mapped by LineSide. With
// convention 0 and a counter-clockwise path, Side 1 gives the lines -1 while the arcs keep 1;
// a Side of 5 gives the lines 0 and the arcs 5.
TEST(SplitRadRectProfile, OnlyTheLinesSideIsMapped) {
    DrawRecord shape = Plate();
    shape.Side = 1;
    std::vector<DrawRecord> r = Split(SplitRadRectProfile, shape);
    for (size_t i = 0; i < 8; ++i) EXPECT_EQ(r[i].Side, i % 2 == 0 ? -1 : 1) << i;
    shape.Side = 5;
    r = Split(SplitRadRectProfile, shape);
    for (size_t i = 0; i < 8; ++i) EXPECT_EQ(r[i].Side, i % 2 == 0 ? 0 : 5) << i;
}

// ---- The outline for a profiling head ---------------------------------------------------------

// The path starts at the middle of the right side, (120, 50), where the leads join.
//   lead-in: LeadIn kind 1, length 3 at 0: from (123, 50) to (120, 50), length 3, angle 180
//   line 1   (120, 50) -> (120, 55)   5, 90
//   corner 1 centre (115, 55) from 0:   (120, 55) -> (115, 60)
//   line 2   (115, 60) -> (85, 60)    30, 180
//   corner 2 centre (85, 55) from 90:   (85, 60) -> (80, 55)
//   line 3   (80, 55) -> (80, 45)     10, 270
//   corner 3 centre (85, 45) from 180:  (80, 45) -> (85, 40)
//   line 4   (85, 40) -> (115, 40)    30, 0
//   corner 4 centre (115, 45) from 270: (115, 40) -> (120, 45)
//   line 5   (120, 45) -> (120, 50)   5, 90
//   lead-out: LeadOut kind 1, length 4 at 90: from (120, 50) to (120, 54), length 4, angle 90, After
// Side 1, convention 0, counter-clockwise: the lines (leads too) take -1, the corners 1.
TEST(SplitRadRectLeads, FromTheMiddleOfTheRightSideWithStraightLeads) {
    DrawRecord shape = Plate();
    shape.Side = 1;
    Cutter(shape.ToolA);
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 1, 4, 90);
    shape.After.ActionCode = 1;
    shape.ToolB.Present = -1;
    const std::vector<DrawRecord> r = Split(SplitRadRectLeads, shape);
    ASSERT_EQ(r.size(), 11u);
    ExpectLine(r[0], 123, 50, 120, 50, 3, 180, -1);
    ExpectLine(r[1], 120, 50, 120, 55, 5, 90, -1);
    ExpectArc(r[2], 115, 55, 5, 0, 90, 120, 55, 115 + K, 55 + K, 115, 60, 1);
    ExpectLine(r[3], 115, 60, 85, 60, 30, 180, -1);
    ExpectArc(r[4], 85, 55, 5, 90, 90, 85, 60, 85 - K, 55 + K, 80, 55, 1);
    ExpectLine(r[5], 80, 55, 80, 45, 10, 270, -1);
    ExpectArc(r[6], 85, 45, 5, 180, 90, 80, 45, 85 - K, 45 - K, 85, 40, 1);
    ExpectLine(r[7], 85, 40, 115, 40, 30, 0, -1);
    ExpectArc(r[8], 115, 45, 5, 270, 90, 115, 40, 115 + K, 45 - K, 120, 45, 1);
    ExpectLine(r[9], 120, 45, 120, 50, 5, 90, -1);
    ExpectLine(r[10], 120, 50, 120, 54, 4, 90, -1);
    for (size_t i = 0; i < 10; ++i) ExpectNoSubRecords(r[i]);
    EXPECT_EQ(r[10].After.ActionCode, 1);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.ToolA.Letter.Text(), "P");
        EXPECT_EQ(made.ToolB.Present, 0);
        EXPECT_EQ(made.LeadIn.LeadKind, 0);
        EXPECT_EQ(made.LeadOut.LeadKind, 0);
        EXPECT_EQ(made.Count[8], 0);
    }
}

// On the single-shape path the lead records carry Count[8]: 1 on the lead-in, 2 on the lead-out.
TEST(SplitRadRectLeads, LeadRecordsAreMarkedOnTheSingleShapePath) {
    DrawRecord shape = Plate();
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 1, 4, 90);
    const std::vector<DrawRecord> r = Split(SplitRadRectLeads, shape, 0, SingleShapeChoices);
    ASSERT_EQ(r.size(), 11u);
    EXPECT_EQ(r[0].Count[8], 1);
    for (size_t i = 1; i < 10; ++i) EXPECT_EQ(r[i].Count[8], 0);
    EXPECT_EQ(r[10].Count[8], 2);
}

// Without a lead-out record After goes on line 5 when LeadOut.LeadKind is 0, and is lost with an
// arc lead-out, which this path drops.
TEST(SplitRadRectLeads, AfterGoesOnTheLastLineWithoutALeadOutAndIsLostWithAnArcLeadOut) {
    DrawRecord shape = Plate();
    Cutter(shape.ToolA);
    shape.After.ActionCode = 3;
    std::vector<DrawRecord> r = Split(SplitRadRectLeads, shape);
    ASSERT_EQ(r.size(), 9u);
    EXPECT_EQ(r[8].After.ActionCode, 3);
    Lead(shape.LeadOut, 2, 4, 0);
    r = Split(SplitRadRectLeads, shape);
    ASSERT_EQ(r.size(), 9u);
    for (const DrawRecord& made : r) EXPECT_EQ(made.After.ActionCode, 0);
}

// A LeadKind of -1 is straight by the tests of the record, but this path asks for exactly 1.
TEST(SplitRadRectLeads, ALeadKindOfMinusOneIsNotWritten) {
    DrawRecord shape = Plate();
    Cutter(shape.ToolA);
    Lead(shape.LeadIn, -1, 3, 0);
    Lead(shape.LeadOut, -1, 3, 0);
    const std::vector<DrawRecord> r = Split(SplitRadRectLeads, shape);
    ASSERT_EQ(r.size(), 9u);
    ExpectLine(r[0], 120, 50, 120, 55, 5, 90, 0);
}

// Neither lead: the outline alone, from the same point (120, 50) as with leads.
TEST(SplitRadRectLeads, WithoutLeadsTheOutlineStartsAtTheSamePoint) {
    DrawRecord shape = Plate();
    Cutter(shape.ToolA);
    const std::vector<DrawRecord> r = Split(SplitRadRectLeads, shape);
    ASSERT_EQ(r.size(), 9u);
    ExpectLine(r[0], 120, 50, 120, 55, 5, 90, 0);
    ExpectLine(r[8], 120, 45, 120, 50, 5, 90, 0);
}

// The same shape starts at the bottom side without a tool and at the middle of the right side
// with a profiling one.
TEST(SplitRadRect, TheFirstSegmentDiffersWithAndWithoutATool) {
    DrawRecord shape = Plate();
    std::vector<DrawRecord> r = Split(SplitRadRect, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 85, 40, 115, 40, 30, 0, 0);
    Cutter(shape.ToolA);
    r = Split(SplitRadRect, shape);
    ASSERT_EQ(r.size(), 9u);
    ExpectLine(r[0], 120, 50, 120, 55, 5, 90, 0);
}

// ---- The round punch -----------------------------------------------------------------------------

// The plain outline of the plate with its round punch on every record; the first line takes no
// ToolB and no LeadIn, the last corner no LeadOut but the After. Side -1, convention 0,
// counter-clockwise: the lines take 1.
TEST(SplitRadRectRound, ThePlainOutlineWithThePunchAndOnlyTheAfter) {
    DrawRecord shape = Plate();
    shape.Side = -1;
    Punch(shape.ToolA, "A", 4);
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 1, 3, 0);
    shape.After.ActionCode = 1;
    shape.ToolB.Present = -1;
    const std::vector<DrawRecord> r = Split(SplitRadRectRound, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 85, 40, 115, 40, 30, 0, 1);
    ExpectArc(r[1], 115, 45, 5, 270, 90, 115, 40, 115 + K, 45 - K, 120, 45, -1);
    ExpectLine(r[6], 80, 55, 80, 45, 10, 270, 1);
    ExpectArc(r[7], 85, 45, 5, 180, 90, 80, 45, 85 - K, 45 - K, 85, 40, -1);
    for (size_t i = 0; i < 7; ++i) ExpectNoSubRecords(r[i]);
    EXPECT_EQ(r[7].LeadOut.LeadKind, 0);
    EXPECT_EQ(r[7].After.ActionCode, 1);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.ToolA.Letter.Text(), "A");
        EXPECT_EQ(made.ToolA.Size[1], 4.0f);
        EXPECT_EQ(made.ToolB.Present, 0);
    }
}

// ---- The match of angles ---------------------------------------------------------------------------

// Rotation 30: the axes are 30, 120, 210, 300. A tool at 30 or 210 has Size[1] along L and
// Size[2] across; at 120 or 300 the two exchange; at any other angle both are 0. The tool's
// angle is ToolAngle + ToolStep.
TEST(MatchToolToRectangle, SizesGoWithTheAxisTheToolStandsOn) {
    const DrawRecord shape = Shape(155, 0, 0, 40, 20, 0, 30);
    ToolSpec tool;
    Punch(tool, "C", 10, 6);
    const double angles[][2] = {{30, 0}, {200, 10}, {120, 0}, {100, 200}, {45, 0}, {0, 0}};
    const double along[] = {10, 10, 6, 6, 0, 0};
    const double across[] = {6, 6, 10, 10, 0, 0};
    for (size_t i = 0; i < 6; ++i) {
        tool.ToolAngle = static_cast<float>(angles[i][0]);
        tool.ToolStep = static_cast<float>(angles[i][1]);
        double alongL = -1;
        double acrossL = -1;
        MatchToolToRectangle(shape, tool, alongL, acrossL);
        EXPECT_EQ(alongL, along[i]) << i;
        EXPECT_EQ(acrossL, across[i]) << i;
    }
}

// ---- Clearing by a rectangular punch -----------------------------------------------------------------

namespace {

// The plate as a hole (Side -1) to clear, with a punch of 10 along L by 6 across, corner radius 1.
DrawRecord HoleToClear(double l, double h, const char* letter = "C") {
    DrawRecord shape = Shape(155, 100, 50, l, h, 2);
    shape.Side = -1;
    shape.Count[1] = 1;
    Punch(shape.ToolA, letter, 10, 6, 1);
    shape.After.ActionCode = 2;
    return shape;
}

}  // namespace

// L 40, H 20, c 1; the tool at 0 matches the first axis: tL 10, tH 6.
//   AL = 40 - 2 = 38, AH = 20 - 2 = 18; sL = 10 - 2 = 8, sH = 6 - 2 = 4.
//   bL 10 < 40 and bH 6 < 20: a grid.
//   n: 38 / 8 = 4.75, floor 4, plus 1 = 5; pitch (40 - 10) / 4 = 7.5; span 30.
//   m: 18 / 4 = 4.5, floor 4, plus 1 = 5; pitch (20 - 6) / 4 = 3.5; span 14.
//   First hit: (100, 50) + PolarToXY(20 - 5, 180) + PolarToXY(10 - 3, -90) = (85, 43).
TEST(ClearRectByGrid, AGridOfHitsFillsTheHole) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(40, 20));
    ASSERT_EQ(r.size(), 1u);
    const DrawRecord& grid = r[0];
    EXPECT_EQ(grid.EntityCode, 225);
    EXPECT_EQ(grid.EntityName.Trimmed(), "Grid Pattern");
    ExpectPoint(grid.Point[1], 85, 43);
    EXPECT_EQ(grid.Value[1], 30.0f);
    EXPECT_EQ(grid.Value[2], 7.5f);
    EXPECT_EQ(grid.Value[3], 14.0f);
    EXPECT_EQ(grid.Value[4], 3.5f);
    EXPECT_EQ(grid.Value[10], 0.0f);
    EXPECT_EQ(grid.Count[1], 5);
    EXPECT_EQ(grid.Count[2], 5);
    EXPECT_EQ(grid.ToolA.Letter.Text(), "C");
    EXPECT_EQ(grid.After.ActionCode, 2);
    EXPECT_EQ(grid.CarryWord2, 9);
}

// L 26: AL = 24, 24 / 8 = 3 exactly: floor 3 plus 1 is 4, one less for a whole quotient: 3 hits,
// pitch (26 - 10) / 2 = 8, span 16; the first hit's X is 100 - (13 - 5) = 92.
TEST(ClearRectByGrid, AWholeQuotientOfThreeGivesThreeHitsNotFour) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(26, 20));
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].Count[1], 3);
    EXPECT_EQ(r[0].Value[2], 8.0f);
    EXPECT_EQ(r[0].Value[1], 16.0f);
    ExpectPoint(r[0].Point[1], 92, 43);
}

// L 10, H 6: bL 10 >= 10 and bH 6 >= 6: one Punch at the centre with the tool and After.
TEST(ClearRectByGrid, AHoleExactlyOfTheToolsSizeIsOnePunch) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(10, 6));
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 210);
    EXPECT_EQ(r[0].EntityName.Trimmed(), "Punch");
    ExpectPoint(r[0].Point[4], 100, 50);
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "C");
    EXPECT_EQ(r[0].After.ActionCode, 2);
}

// L 8, H 4, smaller than the tool: the same single Punch.
TEST(ClearRectByGrid, AShapeSmallerThanTheToolIsOnePunch) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(8, 4));
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 210);
}

// L 10, H 20: the tool spans the width (bL 10 >= 10), not the height (6 < 20): one row up the
// middle, from (100, 50) + PolarToXY(10, -90) = (100, 40) to (100, 60); Value[1] 20, Value[10]
// Norm360(0 + 90) = 90, FollowFlag -1.
TEST(ClearRectByGrid, AToolSpanningTheWidthMakesOneRowUpTheHeight) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(10, 20));
    ASSERT_EQ(r.size(), 1u);
    ExpectLine(r[0], 100, 40, 100, 60, 20, 90, 0);
    EXPECT_EQ(r[0].FollowFlag, -1);
    EXPECT_EQ(r[0].After.ActionCode, 2);
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "C");
}

// H -20: H becomes 20 and the rotation 180; the row runs from (100, 50) + PolarToXY(10, 90) =
// (100, 60) to (100, 50) + PolarToXY(10, 270) = (100, 40), Value[10] Norm360(180 + 90) = 270.
TEST(ClearRectByGrid, AMirroredHeightTurnsTheRowAround) {
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(10, -20));
    ASSERT_EQ(r.size(), 1u);
    ExpectLine(r[0], 100, 60, 100, 40, 20, 270, 0);
    EXPECT_EQ(r[0].FollowFlag, -1);
}

// L 40, H 6: the tool spans the height: one row along the middle from (80, 50) to (120, 50),
// Value[1] 40, Value[10] the rotation 0; FollowFlag 65535 as a 16-bit field, -1 read as signed.
// With L -40 the row turns: from (120, 50) to (80, 50), Value[10] 180.
TEST(ClearRectByGrid, AToolSpanningTheHeightMakesOneRowAlongTheWidth) {
    std::vector<DrawRecord> r = Split(ClearRectByGrid, HoleToClear(40, 6));
    ASSERT_EQ(r.size(), 1u);
    ExpectLine(r[0], 80, 50, 120, 50, 40, 0, 0);
    EXPECT_EQ(r[0].FollowFlag, -1);
    EXPECT_EQ(static_cast<uint16_t>(r[0].FollowFlag), 65535);
    EXPECT_EQ(r[0].After.ActionCode, 2);
    r = Split(ClearRectByGrid, HoleToClear(-40, 6));
    ASSERT_EQ(r.size(), 1u);
    ExpectLine(r[0], 120, 50, 80, 50, 40, 180, 0);
}

// A tool at a quarter turn (ToolAngle 90) has tL 6 and tH 10. L 40, H 20:
//   sL = 6 - 2 = 4, sH = 10 - 2 = 8; n: 38 / 4 = 9.5 -> 10, pitch (40 - 6) / 9 = 3.7778;
//   m: 18 / 8 = 2.25 -> 3, pitch (20 - 10) / 2 = 5; first hit (100 - 17, 50 - 5) = (83, 45).
TEST(ClearRectByGrid, AToolAtAQuarterTurnExchangesItsSizes) {
    DrawRecord shape = HoleToClear(40, 20);
    shape.ToolA.ToolAngle = 90;
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, shape);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].Count[1], 10);
    EXPECT_EQ(r[0].Count[2], 3);
    EXPECT_FLOAT_EQ(r[0].Value[2], static_cast<float>(34.0 / 9));
    EXPECT_EQ(r[0].Value[4], 5.0f);
    ExpectPoint(r[0].Point[1], 83, 45);
}

// A tool at 45, matching no axis: tL = tH = 0, bL and bH 0: a grid whose steps are negative,
// sL = sH = -2 (c 1). Not guarded, and well defined: n from 38 / 2 = 19 exactly, 19 hits at
// (40 - 0) / 18; m from 18 / 2 = 9 exactly, 9 hits at 20 / 8 = 2.5; first hit
// (100, 50) + PolarToXY(20, 180) + PolarToXY(10, -90) = (80, 40).
TEST(ClearRectByGrid, AToolAngleMatchingNoAxisGivesAGridOfNegativeSteps) {
    DrawRecord shape = HoleToClear(40, 20);
    shape.ToolA.ToolAngle = 45;
    const std::vector<DrawRecord> r = Split(ClearRectByGrid, shape);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].Count[1], 19);
    EXPECT_EQ(r[0].Count[2], 9);
    EXPECT_FLOAT_EQ(r[0].Value[2], static_cast<float>(40.0 / 18));
    EXPECT_EQ(r[0].Value[4], 2.5f);
    ExpectPoint(r[0].Point[1], 80, 40);
}

// The same with a corner radius of 0: the steps are 0, and the hits along L cannot be counted.
// The run ends as a fault that names the entity.
TEST(ClearRectByGrid, StepsOfZeroEndTheRunWithAFaultNamingTheEntity) {
    DrawRecord shape = HoleToClear(40, 20);
    shape.ToolA.ToolAngle = 45;
    shape.ToolA.Size[4] = 0;
    const std::string text = FaultOf(ClearRectByGrid, shape);
    EXPECT_EQ(text.rfind("Cannot split record 7 of Progmain.drw (code 155): ", 0), 0u) << text;
    EXPECT_NE(text.find("steps 0"), std::string::npos) << text;
    // Through the choice as well.
    EXPECT_EQ(FaultOf(SplitRadRect, shape), text);
}

// A tool of size 0 at a matching angle: the same fault.
TEST(ClearRectByGrid, AToolOfSizeZeroEndsTheRunWithAFault) {
    DrawRecord shape = HoleToClear(40, 20);
    shape.ToolA.Size[1] = 0;
    shape.ToolA.Size[2] = 0;
    shape.ToolA.Size[4] = 0;
    EXPECT_EQ(FaultOf(ClearRectByGrid, shape).rfind("Cannot split record 7 of Progmain.drw (code 155): ", 0), 0u);
}

// A grid of more hits than a count holds ends as a fault, not as a wrapped count.
TEST(ClearRectByGrid, AGridBeyondACountEndsTheRunWithAFault) {
    DrawRecord shape = HoleToClear(400000, 20);
    shape.ToolA.Size[4] = 4.9f;  // sL = 10 - 9.8 = 0.2: 2000000 hits along L
    const std::string text = FaultOf(ClearRectByGrid, shape);
    EXPECT_EQ(text.rfind("Cannot split record 7 of Progmain.drw (code 155): the hits along the width", 0), 0u)
        << text;
}

// ---- The rim of a rectangular punch -----------------------------------------------------------------

// L 40, H 20, tool 10 by 6 at 0 with c 1: sL = 8. Side -1, convention 0, counter-clockwise:
// the lines take 1.
//   line 1 (80 + 8, 40) -> (120 - 8, 40) = (88, 40) -> (112, 40)   24, 0
//   line 2 (120, 40) -> (120, 60)                                    20, 90
//   line 3 (112, 60) -> (88, 60)                                     24, 180
//   line 4 (80, 60) -> (80, 40)                                      20, 270, After
TEST(SplitRadRectEdges, FourSidesThoseAlongLShortenedByTheStep) {
    DrawRecord shape = HoleToClear(40, 20);
    shape.Count[1] = 0;
    const std::vector<DrawRecord> r = Split(SplitRadRectEdges, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 88, 40, 112, 40, 24, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, 1);
    ExpectLine(r[2], 112, 60, 88, 60, 24, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, 1);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(r[i].FollowFlag, -1);
        EXPECT_EQ(r[i].ToolA.Letter.Text(), "C");
        EXPECT_EQ(r[i].ToolA.ToolAngle, 0.0f);
        EXPECT_EQ(r[i].After.ActionCode, i == 3 ? 2 : 0);
    }
}

// A tool that turns: shortened by Size[2] - 2c = 6 - 2 = 4, whatever its angle; each side turns
// the tool to Norm360(direction - ToolStep), with ToolStep 90: 270, 0, 90, 180.
//   line 1 (84, 40) -> (116, 40) 32, 0;  line 2 (120, 40) -> (120, 60) 20, 90;
//   line 3 (116, 60) -> (84, 60) 32, 180; line 4 (80, 60) -> (80, 40) 20, 270, After
TEST(SplitRadRectEdgesRotary, TheToolTurnsToEachSide) {
    DrawRecord shape = HoleToClear(40, 20, "E");
    shape.Count[1] = 0;
    shape.ToolA.WorkType = 20;
    shape.ToolA.ToolAngle = 45;  // no axis: a turning tool is not matched
    shape.ToolA.ToolStep = 90;
    const std::vector<DrawRecord> r = Split(SplitRadRectEdgesRotary, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 84, 40, 116, 40, 32, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, 1);
    ExpectLine(r[2], 116, 60, 84, 60, 32, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, 1);
    const float turned[] = {270, 0, 90, 180};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(r[i].ToolA.ToolAngle, turned[i]) << i;
        EXPECT_EQ(r[i].FollowFlag, -1);
        EXPECT_EQ(r[i].After.ActionCode, i == 3 ? 2 : 0);
    }
}

// L -40: the amount is negated, -4. Line 1 runs from (X0 - L/2 + s, 40) = (120 - 4, 40) to
// (80 + 4, 40), 32 at 180. The sides along H stay whole.
TEST(SplitRadRectEdgesRotary, AMirroredWidthNegatesTheShortening) {
    DrawRecord shape = HoleToClear(-40, 20, "E");
    shape.Count[1] = 0;
    shape.ToolA.WorkType = 20;
    const std::vector<DrawRecord> r = Split(SplitRadRectEdgesRotary, shape);
    ASSERT_EQ(r.size(), 4u);
    // Clockwise now: Side -1 with convention 0 gives -1.
    ExpectLine(r[0], 116, 40, 84, 40, 32, 180, -1);
    ExpectLine(r[1], 80, 40, 80, 60, 20, 90, -1);
}

// ---- The choice ----------------------------------------------------------------------------------------

// "E" with Count[1] 0: rotary work takes the turning tool, other work the same sides with the
// tool fixed (the shortening of the fixed tool is by the match of angles: 10 - 2 = 8; of the
// turning one Size[2] - 2c = 4). The tool stands at ToolAngle -80 + ToolStep 80 = 0.
// Turning: line 2 (direction 90) turns the tool to 90 - 80 = 10. Fixed: the tool's angle as
// copied, -80, which binding stores normalised as 280. (The first run showed 270 where the
// first version of this test, with ToolAngle -90, expected -90 as copied: binding normalises a
// tool's angle, and the expectation was wrong.)
TEST(SplitRadRect, AnEToolWithoutClearingRimsWithATurningToolOnlyOnRotaryWork) {
    DrawRecord shape = HoleToClear(40, 20, "E");
    shape.Count[1] = 0;
    shape.ToolA.ToolStep = 80;
    shape.ToolA.ToolAngle = -80;
    shape.ToolA.WorkType = 20;
    std::vector<DrawRecord> r = Split(SplitRadRect, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 84, 40, 116, 40, 32, 0, 1);
    EXPECT_EQ(r[1].ToolA.ToolAngle, 10.0f);
    shape.ToolA.WorkType = 10;
    r = Split(SplitRadRect, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 88, 40, 112, 40, 24, 0, 1);
    EXPECT_EQ(r[1].ToolA.ToolAngle, 280.0f);
}

// An outside shape with a square punch loses the punch and is cut as a plain outline: the
// first line has LeadIn, no record has a tool. The corner radius of this hole is 2: line 1 runs
// from (80 + 2, 40) to (120 - 2, 40), 36. (The first version of this test took the plate's 5.)
TEST(SplitRadRect, AnOutsideShapeWithASquarePunchLosesThePunch) {
    DrawRecord shape = HoleToClear(40, 20, "C");
    shape.Side = 1;
    Lead(shape.LeadIn, 1, 3, 0);
    shape.ToolB.Present = -1;
    const std::vector<DrawRecord> r = Split(SplitRadRect, shape);
    ASSERT_EQ(r.size(), 8u);
    ExpectLine(r[0], 82, 40, 118, 40, 36, 0, -1);
    EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
    EXPECT_EQ(r[0].ToolB.Present, 0);
    for (const DrawRecord& made : r) EXPECT_EQ(made.ToolA.Present, 0);
    EXPECT_EQ(r[7].After.ActionCode, 2);
}

// Every row of the choice.
TEST(SplitRadRect, EachRowOfTheChoiceTakesItsRoutine) {
    struct Row {
        int16_t Present;
        int16_t WorkType;
        int16_t Side;
        const char* Letter;
        int16_t Count1;
        SplitRoutine Expected;
        bool ToolCleared;
    };
    const Row rows[] = {
        {0, 10, -1, "C", 0, SplitRadRectProfile, false},
        {-1, 5, -1, "C", 0, SplitRadRectLeads, false},
        {-1, 10, 1, "A", 0, SplitRadRectRound, false},
        {-1, 10, 2, "C", 1, SplitRadRectProfile, true},
        {-1, 10, -1, "A", 1, SplitRadRectRound, false},
        {-1, 10, 0, "C", 0, SplitRadRectEdges, false},
        {-1, 10, -1, "C", 1, ClearRectByGrid, false},
        {-1, 10, -1, "E", 1, ClearRectByGrid, false},
        {-1, 20, -1, "E", 0, SplitRadRectEdgesRotary, false},
        {-1, 10, -1, "E", 0, SplitRadRectEdges, false},
        {-1, 20, -1, "C", 0, SplitRadRectEdges, false},
        {-1, 10, -1, "M", 0, SplitRadRectProfile, true},
    };
    for (const Row& row : rows) {
        DrawRecord shape = HoleToClear(40, 20, row.Letter);
        shape.ToolA.Present = row.Present;
        shape.ToolA.WorkType = row.WorkType;
        shape.ToolA.ToolStep = 15;
        shape.Side = row.Side;
        shape.Count[1] = row.Count1;
        DrawRecord expectedShape = shape;
        if (row.ToolCleared) ClearTool(expectedShape.ToolA);
        const std::vector<DrawRecord> got = Split(SplitRadRect, shape);
        const std::vector<DrawRecord> expected = Split(row.Expected, expectedShape);
        ASSERT_EQ(got.size(), expected.size()) << row.Letter << " " << row.Side << " " << row.Count1;
        for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(bindtest::Bytes(got[i]), bindtest::Bytes(expected[i]));
    }
}
