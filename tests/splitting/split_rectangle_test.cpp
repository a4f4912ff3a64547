// The rectangle (156): its plain outline, its outline for a profiling head, the eight ways of
// working its sides with one or two punches, and the choice among them. Every table is worked
// out by hand in the comment above it.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "splitting/rect_split_support.h"

using namespace tvx;
using namespace tvx::recttest;

namespace {

// The rectangle of most tests: centre (100, 50), L 40, H 20, no rotation, start corner
// Point[1] (80, 40). Its walk: P1 (80, 40), P2 = P1 + PolarToXY(40, 0) = (120, 40),
// P3 = P2 + PolarToXY(20, 90) = (120, 60), P4 = P3 + PolarToXY(40, 180) = (80, 60).
DrawRecord Sheet(double l = 40, double h = 20, double x1 = 80, double y1 = 40) {
    DrawRecord shape = Shape(156, 100, 50, l, h);
    shape.Point[1] = SinglePoint{static_cast<float>(x1), static_cast<float>(y1)};
    return shape;
}

// The sheet worked from inside (Side -1, Count[1] 0) with trims Value[3] 2.5, Value[4] 5 and
// Value[5] 3 for the pitches.
DrawRecord WorkedSheet(int16_t side) {
    DrawRecord shape = Sheet();
    shape.Side = side;
    shape.Value[3] = 2.5f;
    shape.Value[4] = 5;
    shape.Value[5] = 3;
    shape.After.ActionCode = 2;
    return shape;
}

// The fields of a worked side beyond its geometry: the trims, FollowFlag, the tool, After, and
// no leads.
void ExpectFields(const DrawRecord& r, float startTrim, float endTrim, int16_t follow, const char* letter,
                  bool after) {
    EXPECT_EQ(r.Value[3], startTrim);
    EXPECT_EQ(r.Value[4], endTrim);
    EXPECT_EQ(r.FollowFlag, follow);
    EXPECT_EQ(r.ToolA.Letter.Text(), letter);
    EXPECT_EQ(r.ToolB.Present, 0);
    EXPECT_EQ(r.After.ActionCode, after ? 2 : 0);
    EXPECT_EQ(r.LeadIn.LeadKind, 0);
    EXPECT_EQ(r.LeadOut.LeadKind, 0);
}

}  // namespace

// ---- The plain outline ----------------------------------------------------------------------------

// Four lines round the walk: P1 -> P2 40 at 0, P2 -> P3 20 at 90, P3 -> P4 40 at 180,
// P4 -> P1 20 at 270. Counter-clockwise; Side 1 gives -1 with convention 0 and 1 with
// convention 1. The first takes ToolB and LeadIn, the fourth LeadOut and After. The shape has
// no ToolA but the letter "P" of a profiling tool in it, so that binding keeps the made line's
// second tool (it clears it on a line whose ToolA is neither "P" nor "U").
TEST(SplitRectangleProfile, FourLinesFromTheStartCorner) {
    DrawRecord shape = Sheet();
    shape.Side = 1;
    shape.ToolA.Letter = "P";
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 3, 2, 0);
    shape.After.ActionCode = 1;
    shape.ToolB.Present = -1;
    shape.ToolB.Letter = "C";
    for (int16_t sense : {0, 1}) {
        const int side = sense == 1 ? 1 : -1;
        const std::vector<DrawRecord> r = Split(SplitRectangleProfile, shape, sense);
        ASSERT_EQ(r.size(), 4u);
        ExpectLine(r[0], 80, 40, 120, 40, 40, 0, side);
        ExpectLine(r[1], 120, 40, 120, 60, 20, 90, side);
        ExpectLine(r[2], 120, 60, 80, 60, 40, 180, side);
        ExpectLine(r[3], 80, 60, 80, 40, 20, 270, side);
        EXPECT_EQ(r[0].LeadIn.LeadKind, 1);
        EXPECT_EQ(r[0].ToolB.Letter.Text(), "C");
        EXPECT_EQ(r[0].LeadOut.LeadKind, 0);
        EXPECT_EQ(r[0].After.ActionCode, 0);
        ExpectNoSubRecords(r[1]);
        ExpectNoSubRecords(r[2]);
        EXPECT_EQ(r[3].LeadIn.LeadKind, 0);
        EXPECT_EQ(r[3].LeadOut.LeadKind, 3);
        EXPECT_EQ(r[3].After.ActionCode, 1);
        for (size_t i = 1; i < 4; ++i) EXPECT_EQ(r[i].ToolB.Present, 0);
    }
    // With a blank ToolA, the line is written without the second tool.
    shape.ToolA.Letter = " ";
    const std::vector<DrawRecord> r = Split(SplitRectangleProfile, shape);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].ToolB.Present, 0);
}

// L -40 from the start corner (120, 40): P2 = (80, 40), P3 = (80, 60), P4 = (120, 60). The walk
// runs clockwise, and LineSide sees it from the signs: Side 1, convention 0, clockwise: 1.
TEST(SplitRectangleProfile, AMirroredRectangleWalksClockwise) {
    DrawRecord shape = Sheet(-40, 20, 120, 40);
    shape.Side = 1;
    const std::vector<DrawRecord> r = Split(SplitRectangleProfile, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 120, 40, 80, 40, 40, 180, 1);
    ExpectLine(r[1], 80, 40, 80, 60, 20, 90, 1);
    ExpectLine(r[2], 80, 60, 120, 60, 40, 0, 1);
    ExpectLine(r[3], 120, 60, 120, 40, 20, 270, 1);
}

// ---- The outline for a profiling head ---------------------------------------------------------

// The path starts at the lead's end, the middle of the right side: (100, 50) + PolarToXY(20, 0)
// = (120, 50). P2 = (120, 60), P3 = P2 + PolarToXY(40, 180) = (80, 60), P4 = P3 +
// PolarToXY(20, 270) = (80, 40), P5 = P4 + PolarToXY(40, 0) = (120, 40), and back to P1.
//   lead-in  (123, 50) -> (120, 50)  3, 180
//   lines    (120, 50) -> (120, 60) 10, 90; (120, 60) -> (80, 60) 40, 180;
//            (80, 60) -> (80, 40) 20, 270; (80, 40) -> (120, 40) 40, 0; (120, 40) -> (120, 50) 10, 90
//   lead-out (120, 50) -> (122, 50)  2, 0, with After
TEST(SplitRectangleLeads, FiveLinesFromTheMiddleOfTheRightSide) {
    DrawRecord shape = Sheet();
    shape.Side = -1;
    Cutter(shape.ToolA);
    Lead(shape.LeadIn, 1, 3, 0);
    Lead(shape.LeadOut, 1, 2, 0);
    shape.After.ActionCode = 3;
    shape.ToolB.Present = -1;
    const std::vector<DrawRecord> r = Split(SplitRectangleLeads, shape);
    ASSERT_EQ(r.size(), 7u);
    // Side -1, convention 0, counter-clockwise: 1.
    ExpectLine(r[0], 123, 50, 120, 50, 3, 180, 1);
    ExpectLine(r[1], 120, 50, 120, 60, 10, 90, 1);
    ExpectLine(r[2], 120, 60, 80, 60, 40, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, 1);
    ExpectLine(r[4], 80, 40, 120, 40, 40, 0, 1);
    ExpectLine(r[5], 120, 40, 120, 50, 10, 90, 1);
    ExpectLine(r[6], 120, 50, 122, 50, 2, 0, 1);
    for (size_t i = 0; i < 6; ++i) ExpectNoSubRecords(r[i]);
    EXPECT_EQ(r[6].After.ActionCode, 3);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.ToolA.Letter.Text(), "P");
        EXPECT_EQ(made.ToolB.Present, 0);
        EXPECT_EQ(made.Count[8], 0);
    }
    const std::vector<DrawRecord> single = Split(SplitRectangleLeads, shape, 0, SingleShapeChoices);
    ASSERT_EQ(single.size(), 7u);
    EXPECT_EQ(single[0].Count[8], 1);
    EXPECT_EQ(single[6].Count[8], 2);
}

// The fifth line takes After only when LeadOut.LeadKind is 0; with an arc lead-out it is lost.
TEST(SplitRectangleLeads, TheFifthLineTakesAfterOnlyWithoutALeadOut) {
    DrawRecord shape = Sheet();
    Cutter(shape.ToolA);
    shape.After.ActionCode = 3;
    std::vector<DrawRecord> r = Split(SplitRectangleLeads, shape);
    ASSERT_EQ(r.size(), 5u);
    EXPECT_EQ(r[4].After.ActionCode, 3);
    Lead(shape.LeadOut, 2, 2, 0);
    r = Split(SplitRectangleLeads, shape);
    ASSERT_EQ(r.size(), 5u);
    for (const DrawRecord& made : r) EXPECT_EQ(made.After.ActionCode, 0);
}

// Leads of kind -1 are not written; without leads the outline starts at the same (120, 50).
TEST(SplitRectangleLeads, ALeadKindOfMinusOneIsNotWrittenAndTheStartStays) {
    DrawRecord shape = Sheet();
    Cutter(shape.ToolA);
    Lead(shape.LeadIn, -1, 3, 0);
    Lead(shape.LeadOut, -1, 3, 0);
    std::vector<DrawRecord> r = Split(SplitRectangleLeads, shape);
    ASSERT_EQ(r.size(), 5u);
    ExpectLine(r[0], 120, 50, 120, 60, 10, 90, 0);
    ClearLead(shape.LeadIn);
    ClearLead(shape.LeadOut);
    r = Split(SplitRectangleLeads, shape);
    ASSERT_EQ(r.size(), 5u);
    ExpectLine(r[0], 120, 50, 120, 60, 10, 90, 0);
}

// ---- Outside ---------------------------------------------------------------------------------------

// Round punch, Side 1: the four lines of the walk, each with Value[2] the shape's Value[4] (5),
// Value[3] and Value[4] the shape's Value[3] (2.5), FollowFlag 0 for the round tool.
// Binding then spreads the hits: along L the working length is 40 - 2.5 - 2.5 = 35, 35 / 5 = 7
// steps, 8 hits at 5 from (82.5, 40) to (117.5, 40); along H 15 / 5 = 3 steps, 4 hits.
TEST(SplitRectangleOutside, TheWalkWithThePitchAndBothTrims) {
    DrawRecord shape = WorkedSheet(1);
    Punch(shape.ToolA, "A", 5);
    const std::vector<DrawRecord> r = Split(SplitRectangleOutside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 120, 40, 40, 0, -1);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, -1);
    ExpectLine(r[2], 120, 60, 80, 60, 40, 180, -1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, -1);
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 2.5f, 2.5f, 0, "A", i == 3);
        EXPECT_EQ(r[i].Value[2], 5.0f);
        EXPECT_EQ(r[i].Count[1], i % 2 == 0 ? 8 : 4);
    }
    ExpectPoint(r[0].Point[5], 82.5, 40);
    ExpectPoint(r[0].Point[6], 117.5, 40);
}

// A square punch: FollowFlag -1. Turned by 90, from the start corner (90, 30): the axes are
// 90, 180, 270, 0; P2 = (90, 70), P3 = (70, 70), P4 = (70, 30).
TEST(SplitRectangleOutside, ASquarePunchFollowsAndTheWalkTurnsWithTheRotation) {
    DrawRecord shape = WorkedSheet(1);
    shape.Value[10] = 90;
    shape.Point[1] = SinglePoint{90, 30};
    Punch(shape.ToolA, "C", 5, 5);
    const std::vector<DrawRecord> r = Split(SplitRectangleOutside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 90, 30, 90, 70, 40, 90, -1);
    ExpectLine(r[1], 90, 70, 70, 70, 20, 180, -1);
    ExpectLine(r[2], 70, 70, 70, 30, 40, 270, -1);
    ExpectLine(r[3], 70, 30, 90, 30, 20, 0, -1);
    for (size_t i = 0; i < 4; ++i) ExpectFields(r[i], 2.5f, 2.5f, -1, "C", i == 3);
}

// A turning tool: no pitch, both trims, FollowFlag -1, the tool turned to Norm360(direction -
// ToolStep) with ToolStep 30: 330, 60, 150, 240. Without a pitch binding gives one hit.
TEST(SplitRectangleOutsideRotary, EachSideTurnsTheTool) {
    DrawRecord shape = WorkedSheet(1);
    Punch(shape.ToolA, "C", 5, 5, 0, 20, 0, 30);
    const std::vector<DrawRecord> r = Split(SplitRectangleOutsideRotary, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 120, 40, 40, 0, -1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, -1);
    const float turned[] = {330, 60, 150, 240};
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 2.5f, 2.5f, -1, "C", i == 3);
        EXPECT_EQ(r[i].ToolA.ToolAngle, turned[i]) << i;
        EXPECT_EQ(r[i].Value[2], 0.0f);
        EXPECT_EQ(r[i].Count[1], 1);
    }
}

// ToolA round on the sides along L, ToolB square on those along H, placed in their ToolA.
// Lines 1, 3: Value[2] the shape's Value[4] (5), FollowFlag 0; lines 2, 4: no pitch, -1.
// With a round ToolB, lines 2, 4 take the shape's Value[5] (3) and FollowFlag 0; binding: 15 / 3 =
// 5 steps, 6 hits.
TEST(SplitRectangleOutsideTwoTools, EachToolWorksItsOwnSides) {
    DrawRecord shape = WorkedSheet(1);
    Punch(shape.ToolA, "A", 5);
    Punch(shape.ToolB, "C", 8, 3);
    std::vector<DrawRecord> r = Split(SplitRectangleOutsideTwoTools, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, -1);
    ExpectFields(r[0], 2.5f, 2.5f, 0, "A", false);
    ExpectFields(r[1], 2.5f, 2.5f, -1, "C", false);
    ExpectFields(r[2], 2.5f, 2.5f, 0, "A", false);
    ExpectFields(r[3], 2.5f, 2.5f, -1, "C", true);
    EXPECT_EQ(r[0].Value[2], 5.0f);
    EXPECT_EQ(r[1].Value[2], 0.0f);
    EXPECT_EQ(r[1].ToolA.Size[1], 8.0f);
    EXPECT_EQ(r[1].ToolA.Size[2], 3.0f);

    Punch(shape.ToolB, "A", 4);
    r = Split(SplitRectangleOutsideTwoTools, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectFields(r[1], 2.5f, 2.5f, 0, "A", false);
    EXPECT_EQ(r[1].Value[2], 3.0f);
    EXPECT_EQ(r[1].Count[1], 6);
    EXPECT_EQ(r[1].ToolA.Size[1], 4.0f);
}

// ---- Inside ----------------------------------------------------------------------------------------

// Round punch inside: the whole walk, Value[2] the shape's Value[4], FollowFlag -1. On the main
// path no trims: along L 40 / 5 = 8 steps, 9 hits; along H 20 / 5, 5 hits. On the single-shape
// path both trims 2.5, as outside: 8 and 4 hits. Side -1, convention 0, counter-clockwise: 1.
TEST(SplitRectangleInsideRound, TrimsOnlyOnTheSingleShapePath) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "A", 5);
    std::vector<DrawRecord> r = Split(SplitRectangleInsideRound, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 120, 40, 40, 0, 1);
    ExpectLine(r[2], 120, 60, 80, 60, 40, 180, 1);
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 0, 0, -1, "A", i == 3);
        EXPECT_EQ(r[i].Value[2], 5.0f);
        EXPECT_EQ(r[i].Count[1], i % 2 == 0 ? 9 : 5);
    }
    r = Split(SplitRectangleInsideRound, shape, 0, SingleShapeChoices);
    ASSERT_EQ(r.size(), 4u);
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 2.5f, 2.5f, -1, "A", i == 3);
        EXPECT_EQ(r[i].Count[1], i % 2 == 0 ? 8 : 4);
    }
}

// Square punch 10 by 6 at 0 inside: tL 10, tH 6. Each line stops short of its corner:
// d = 40 - 10 = 30 along L, 20 - 6 = 14 along H.
//   (80, 40) -> (110, 40) 30, 0; (120, 40) -> (120, 54) 14, 90;
//   (120, 60) -> (90, 60) 30, 180; (80, 60) -> (80, 46) 14, 270
// Value[4] the shape's Value[3] (2.5), no Value[3], no pitch, FollowFlag -1.
TEST(SplitRectangleInside, EachSideStopsOneToolLengthShortOfItsCorner) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "C", 10, 6);
    const std::vector<DrawRecord> r = Split(SplitRectangleInside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 110, 40, 30, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 54, 14, 90, 1);
    ExpectLine(r[2], 120, 60, 90, 60, 30, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 46, 14, 270, 1);
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 0, 2.5f, -1, "C", i == 3);
        EXPECT_EQ(r[i].Value[2], 0.0f);
    }
}

// L 15 from (92.5, 40): d = 15 - 10 = 5, less than the tool's 10, so the line runs 10:
// (92.5, 40) -> (102.5, 40). Along H d = 14: (107.5, 40) -> (107.5, 54).
TEST(SplitRectangleInside, ASideShorterThanTwoToolLengthsRunsOneToolLength) {
    DrawRecord shape = WorkedSheet(-1);
    shape.Value[1] = 15;
    shape.Point[1] = SinglePoint{92.5f, 40};
    Punch(shape.ToolA, "C", 10, 6);
    const std::vector<DrawRecord> r = Split(SplitRectangleInside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 92.5, 40, 102.5, 40, 10, 0, 1);
    ExpectLine(r[1], 107.5, 40, 107.5, 54, 14, 90, 1);
    ExpectLine(r[2], 107.5, 60, 97.5, 60, 10, 180, 1);
    ExpectLine(r[3], 92.5, 60, 92.5, 46, 14, 270, 1);
}

// L 20 with a tool of 10 along it: 20 - 10 = 10 by the first branch, and the tool's 10 by the
// second; the line runs 10 either way: (90, 40) -> (100, 40).
TEST(SplitRectangleInside, AToolSideOfHalfTheLengthRunsTheToolsExtent) {
    DrawRecord shape = WorkedSheet(-1);
    shape.Value[1] = 20;
    shape.Point[1] = SinglePoint{90, 40};
    Punch(shape.ToolA, "C", 10, 6);
    const std::vector<DrawRecord> r = Split(SplitRectangleInside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 90, 40, 100, 40, 10, 0, 1);
}

// L -40 from (120, 40): tL -10, d = -40 + 10 = -30, so line 1 runs from (120, 40) by
// PolarToXY(-30, 0) to (90, 40), 30 at 180. Line 2 from P2 (80, 40) by 14 at 90 to (80, 54);
// line 3 from P3 (80, 60) by PolarToXY(-30, 180) to (110, 60); line 4 from P4 (120, 60) to
// (120, 46). Clockwise: Side -1 with convention 0 gives -1.
TEST(SplitRectangleInside, AMirroredWidthRunsTheOtherWay) {
    DrawRecord shape = WorkedSheet(-1);
    shape.Value[1] = -40;
    shape.Point[1] = SinglePoint{120, 40};
    Punch(shape.ToolA, "C", 10, 6);
    const std::vector<DrawRecord> r = Split(SplitRectangleInside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 120, 40, 90, 40, 30, 180, -1);
    ExpectLine(r[1], 80, 40, 80, 54, 14, 90, -1);
    ExpectLine(r[2], 80, 60, 110, 60, 30, 0, -1);
    ExpectLine(r[3], 120, 60, 120, 46, 14, 270, -1);
}

// A turning tool 10 by 6 standing at 90 (ToolAngle 90, ToolStep 0): the match gives tL 6 and
// tH 10. d along L 40 - 6 = 34; along H 20 - 10 = 10, not less than 10: 10.
//   (80, 40) -> (114, 40); (120, 40) -> (120, 50); (120, 60) -> (86, 60); (80, 60) -> (80, 50)
// Each line turns the tool to its direction less 0: 0, 90, 180, 270.
TEST(SplitRectangleInsideRotary, StopsShortAndTurnsTheTool) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "E", 10, 6, 0, 20, 90, 0);
    const std::vector<DrawRecord> r = Split(SplitRectangleInsideRotary, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 114, 40, 34, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 50, 10, 90, 1);
    ExpectLine(r[2], 120, 60, 86, 60, 34, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 50, 10, 270, 1);
    const float turned[] = {0, 90, 180, 270};
    for (size_t i = 0; i < 4; ++i) {
        ExpectFields(r[i], 0, 2.5f, -1, "E", i == 3);
        EXPECT_EQ(r[i].ToolA.ToolAngle, turned[i]);
    }
}

// ToolA 10 by 6 on the sides along L (d 30), ToolB 4 by 12 at 0 on those along H: its tH is 12,
// d = 20 - 12 = 8 is less than 12, so 12.
//   (80, 40) -> (110, 40); (120, 40) -> (120, 52); (120, 60) -> (90, 60); (80, 60) -> (80, 48)
TEST(SplitRectangleInsideTwoTools, EachToolIsMatchedForItsOwnSides) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "C", 10, 6);
    Punch(shape.ToolB, "E", 4, 12);
    const std::vector<DrawRecord> r = Split(SplitRectangleInsideTwoTools, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 110, 40, 30, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 52, 12, 90, 1);
    ExpectLine(r[2], 120, 60, 90, 60, 30, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 48, 12, 270, 1);
    ExpectFields(r[0], 0, 2.5f, -1, "C", false);
    ExpectFields(r[1], 0, 2.5f, -1, "E", false);
    ExpectFields(r[2], 0, 2.5f, -1, "C", false);
    ExpectFields(r[3], 0, 2.5f, -1, "E", true);
    EXPECT_EQ(r[1].ToolA.Size[2], 12.0f);
}

// ToolA square on the sides along L: no pitch, FollowFlag -1; ToolB round on those along H:
// the shape's Value[5] (3) as pitch, FollowFlag 0. Whole sides, no trims; binding: 20 / 3 is
// 6.67, 6 steps of 3.3333, 7 hits.
TEST(SplitRectangleInsideTwoRound, WholeSidesThePitchOnlyForTheRoundTool) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "C", 10, 6);
    Punch(shape.ToolB, "A", 4);
    const std::vector<DrawRecord> r = Split(SplitRectangleInsideTwoRound, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 120, 40, 40, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, 1);
    ExpectLine(r[2], 120, 60, 80, 60, 40, 180, 1);
    ExpectLine(r[3], 80, 60, 80, 40, 20, 270, 1);
    ExpectFields(r[0], 0, 0, -1, "C", false);
    ExpectFields(r[1], 0, 0, 0, "A", false);
    ExpectFields(r[2], 0, 0, -1, "C", false);
    ExpectFields(r[3], 0, 0, 0, "A", true);
    EXPECT_EQ(r[0].Value[2], 0.0f);
    EXPECT_EQ(r[1].Count[1], 7);
    EXPECT_FLOAT_EQ(r[1].Value[2], static_cast<float>(20.0 / 6));
}

// ---- The choice ----------------------------------------------------------------------------------------

// A worked ToolA with a ToolB that only profiles: B worked needs WorkType 10 or more, so ToolA
// works all four sides alone.
TEST(SplitRectangle, AProfilingToolBLeavesToolAAlone) {
    DrawRecord shape = WorkedSheet(1);
    Punch(shape.ToolA, "A", 5);
    Cutter(shape.ToolB);
    const std::vector<DrawRecord> r = Split(SplitRectangle, shape);
    ASSERT_EQ(r.size(), 4u);
    for (const DrawRecord& made : r) {
        EXPECT_EQ(made.ToolA.Letter.Text(), "A");
        EXPECT_EQ(made.Value[2], 5.0f);
    }
}

TEST(SplitRectangle, EachRowOfTheChoiceTakesItsRoutine) {
    struct Row {
        int16_t PresentA;
        int16_t WorkA;
        const char* LetterA;
        int16_t PresentB;
        int16_t WorkB;
        const char* LetterB;
        int16_t Side;
        int16_t Count1;
        SplitRoutine Expected;
    };
    const Row rows[] = {
        {0, 10, "C", -1, 10, "C", -1, 0, SplitRectangleProfile},
        {-1, 5, "C", -1, 10, "C", -1, 0, SplitRectangleLeads},
        {-1, 10, "C", -1, 10, "C", 1, 0, SplitRectangleOutsideTwoTools},
        {-1, 20, "C", 0, 10, "C", 1, 1, SplitRectangleOutsideRotary},
        {-1, 10, "C", -1, 9, "C", 2, 0, SplitRectangleOutside},
        {-1, 10, "C", -1, 10, "C", 0, 1, ClearRectByGrid},
        {-1, 10, "C", -1, 10, "A", -1, 0, SplitRectangleInsideTwoRound},
        {-1, 10, "A", -1, 10, "E", -1, 0, SplitRectangleInsideTwoRound},
        {-1, 10, "C", -1, 10, "E", -1, 0, SplitRectangleInsideTwoTools},
        {-1, 20, "A", 0, 10, "E", -1, 0, SplitRectangleInsideRotary},
        {-1, 10, "A", 0, 10, "E", -1, 0, SplitRectangleInsideRound},
        {-1, 10, "E", 0, 10, "E", 0, 0, SplitRectangleInside},
    };
    for (const Row& row : rows) {
        DrawRecord shape = WorkedSheet(row.Side);
        Punch(shape.ToolA, row.LetterA, 10, 6, 1, row.WorkA, 0, 15);
        shape.ToolA.Present = row.PresentA;
        Punch(shape.ToolB, row.LetterB, 4, 12, 1, row.WorkB);
        shape.ToolB.Present = row.PresentB;
        shape.Count[1] = row.Count1;
        const std::vector<DrawRecord> got = Split(SplitRectangle, shape);
        const std::vector<DrawRecord> expected = Split(row.Expected, shape);
        ASSERT_EQ(got.size(), expected.size()) << row.LetterA << row.LetterB << " " << row.Side;
        for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(bindtest::Bytes(got[i]), bindtest::Bytes(expected[i]));
        if (row.PresentA != 0 && row.WorkA >= 10) {
            const std::vector<DrawRecord> worked = Split(SplitRectangleWorked, shape);
            ASSERT_EQ(worked.size(), expected.size());
            for (size_t i = 0; i < got.size(); ++i)
                EXPECT_EQ(bindtest::Bytes(worked[i]), bindtest::Bytes(expected[i]));
        }
    }
}

// A tool whose angle matches no axis has no extent: d = 40 - 0 = 40, and the side runs to its
// corner: (80, 40) -> (120, 40). Nothing to guard, nothing to divide.
TEST(SplitRectangleInside, AToolMatchingNoAxisRunsTheWholeSide) {
    DrawRecord shape = WorkedSheet(-1);
    Punch(shape.ToolA, "C", 10, 6, 0, 10, 45);
    const std::vector<DrawRecord> r = Split(SplitRectangleInside, shape);
    ASSERT_EQ(r.size(), 4u);
    ExpectLine(r[0], 80, 40, 120, 40, 40, 0, 1);
    ExpectLine(r[1], 120, 40, 120, 60, 20, 90, 1);
}

// Clearing a rectangle whose punch matches no axis and has no corner radius: steps of 0 end the
// run with a fault that names the rectangle.
TEST(SplitRectangle, ClearingWithStepsOfZeroEndsTheRunWithAFault) {
    DrawRecord shape = WorkedSheet(-1);
    shape.Count[1] = 1;
    Punch(shape.ToolA, "C", 10, 6, 0, 10, 45);
    const std::string text = FaultOf(SplitRectangle, shape);
    EXPECT_EQ(text.rfind("Cannot split record 7 of Progmain.drw (code 156): ", 0), 0u) << text;
}
