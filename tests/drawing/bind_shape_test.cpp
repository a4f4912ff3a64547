// Binding of the shapes 152 to 156, plain and worked. Expected values are worked out by hand in
// the comments.
#include <gtest/gtest.h>

#include "drawing/binding_support.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

using bindtest::Machine;
using bindtest::ExpectPoint;
using bindtest::Bytes;

DrawRecord Shape(int16_t code, float cx, float cy, float first, float second, float rotation = 0) {
    DrawRecord r;
    r.EntityCode = code;
    r.Point[4] = {cx, cy};
    r.Value[1] = first;
    r.Value[2] = second;
    r.Value[10] = rotation;
    return r;
}

void ShapeTool(DrawRecord& r, const char* letter, float width, float length = 0, float angle = 0) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = letter;
    r.ToolA.Size[1] = width;
    r.ToolA.Size[2] = length;
    r.ToolA.WorkType = 10;
    r.ToolA.ToolAngle = angle;
}

// ---- Single-D ---------------------------------------------------------------------------------------

TEST(BindSingleD, FlatAboveTheCentre) {
    // r 10, h 15: the flat at y = 5, half length sqrt(100 - 25) = 8.6603. Left end at 150, right
    // at 30 + 360 = 390: sweep 240, middle of the arc at 270: (0,-10). Box the circle; margin
    // 10 + 10/100 all round. Value[5] the diameter 20.
    DrawRecord r = Shape(152, 0, 0, 10, 15);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 5);
    ExpectPoint(r.Point[2], 0, -10);
    ExpectPoint(r.Point[3], 0, 5);
    ExpectPoint(r.Point[5], 0, 5);
    ExpectPoint(r.Point[6], 0, 5);
    EXPECT_EQ(r.Value[5], 20.0f);
    ExpectPoint(r.Extent[1], -10, -10);
    ExpectPoint(r.Extent[2], 10, 10);
    ExpectPoint(r.Margin[1], -10.1, -10.1);
    ExpectPoint(r.Margin[2], 10.1, 10.1);
}

TEST(BindSingleD, PointsAreTurnedByTheRotation) {
    // Turned by 90 about the centre (100,100): (100,105) -> (95,100), (100,90) -> (110,100).
    DrawRecord r = Shape(152, 100, 100, 10, 15, 90);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 95, 100);
    ExpectPoint(r.Point[2], 110, 100);
}

TEST(BindSingleD, AcrossFlatOfTwiceTheRadiusHasAFlatOfLengthZero) {
    // h = 2r: half length 0, both ends at the top (0,10) at 90; the arc sweeps 360 from 90, its
    // middle at 270: (0,-10).
    DrawRecord r = Shape(152, 0, 0, 10, 20);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 10);
    ExpectPoint(r.Point[2], 0, -10);
}

TEST(BindSingleD, AcrossFlatBelowTheRadiusStillHasAFlat) {
    // h 5: the flat at y = -5, ends at 210 and 330, sweep 120, middle at 270: (0,-10).
    DrawRecord r = Shape(152, 0, 0, 10, 5);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, -5);
    ExpectPoint(r.Point[2], 0, -10);
    // h 0: the flat at the bottom, of length 0; the arc the whole circle from 270, middle (0,10).
    DrawRecord bottom = Shape(152, 0, 0, 10, 0);
    BindRecord(Machine(), bottom);
    ExpectPoint(bottom.Point[1], 0, -10);
    ExpectPoint(bottom.Point[2], 0, 10);
}

TEST(BindSingleD, AcrossFlatBeyondTheDiameterGivesNumbersNotNaN) {
    DrawRecord r = Shape(152, 0, 0, 10, 25);
    BindRecord(Machine(), r);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_TRUE(std::isfinite(r.Point[i].X));
        EXPECT_TRUE(std::isfinite(r.Point[i].Y));
    }
    ExpectPoint(r.Point[1], 0, 15);
}

TEST(BindSingleD, DimensionsAreTakenAsSizes) {
    DrawRecord r = Shape(152, 0, 0, -10, -15);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[1], 10.0f);
    EXPECT_EQ(r.Value[2], 15.0f);
    EXPECT_EQ(r.Value[5], 20.0f);
}

// ---- Double-D -------------------------------------------------------------------------------------

TEST(BindDoubleD, EndsOfTheFlats) {
    // r 10, 12 across: half length sqrt(100 - 36) = 8; (-8,-6) and (8,6).
    DrawRecord r = Shape(153, 0, 0, 10, 12);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], -8, -6);
    ExpectPoint(r.Point[2], 8, 6);
    ExpectPoint(r.Point[3], -8, -6);
    ExpectPoint(r.Point[6], -8, -6);
    EXPECT_EQ(r.Value[5], 20.0f);
    ExpectPoint(r.Extent[1], -10, -10);
    ExpectPoint(r.Margin[2], 10.1, 10.1);
    // Turned by 90: (-8,-6) -> (6,-8); (8,6) -> (-6,8).
    DrawRecord turned = Shape(153, 0, 0, 10, 12, 90);
    BindRecord(Machine(), turned);
    ExpectPoint(turned.Point[1], 6, -8);
    ExpectPoint(turned.Point[2], -6, 8);
}

TEST(BindDoubleD, SmallShapeMarginIsWidenedToTheMinimum) {
    // r 1: margin 1.01 each way, 2.02 wide, 2.98 short of 5: +-2.5.
    DrawRecord r = Shape(153, 0, 0, 1, 1.5f);
    BindRecord(Machine(), r);
    ExpectPoint(r.Margin[1], -2.5, -2.5);
    ExpectPoint(r.Margin[2], 2.5, 2.5);
}

// ---- Obround -------------------------------------------------------------------------------------

TEST(BindObround, StraightLengthPointsAndTheBoxOfTheEndCircles) {
    // 40 by 10: straight 30; XYToPolar(15, 5): P1 (15,5), P2 (-15,-5). End circles at (+-15,0)
    // of radius 5: box (-20,-5)-(20,5); margin 2 beyond.
    DrawRecord r = Shape(154, 0, 0, 40, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[5], 30.0f);
    ExpectPoint(r.Point[1], 15, 5);
    ExpectPoint(r.Point[2], -15, -5);
    ExpectPoint(r.Point[3], 15, 5);
    ExpectPoint(r.Point[6], 15, 5);
    ExpectPoint(r.Extent[1], -20, -5);
    ExpectPoint(r.Extent[2], 20, 5);
    ExpectPoint(r.Margin[1], -22, -7);
    ExpectPoint(r.Margin[2], 22, 7);
}

TEST(BindObround, NegativeHeightGivesTheSameStraightAndMirrorsThePoints) {
    // Signs differ: 40 + (-10) = 30; XYToPolar(15, -5): P1 (15,-5).
    DrawRecord r = Shape(154, 0, 0, 40, -10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[5], 30.0f);
    EXPECT_EQ(r.Value[2], -10.0f);  // the plain form keeps the sign
    ExpectPoint(r.Point[1], 15, -5);
    ExpectPoint(r.Extent[1], -20, -5);
    ExpectPoint(r.Extent[2], 20, 5);
}

TEST(BindObround, NegativeLengthWithPositiveHeight) {
    // -40 + 10 = -30: P1 at (-15,5).
    DrawRecord r = Shape(154, 0, 0, -40, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[5], -30.0f);
    ExpectPoint(r.Point[1], -15, 5);
    ExpectPoint(r.Extent[2], 20, 5);
}

TEST(BindObround, TurnedByNinety) {
    DrawRecord r = Shape(154, 0, 0, 40, 10, 90);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], -5, 15);
    ExpectPoint(r.Point[2], 5, -15);
    ExpectPoint(r.Extent[1], -5, -20);
    ExpectPoint(r.Extent[2], 5, 20);
}

TEST(BindObround, EqualDimensionsMakeACircle) {
    DrawRecord r = Shape(154, 0, 0, 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[5], 0.0f);
    ExpectPoint(r.Point[1], 0, 5);
    ExpectPoint(r.Extent[1], -5, -5);
    ExpectPoint(r.Extent[2], 5, 5);
}

// ---- Radiused rectangle and rectangle --------------------------------------------------------------

TEST(BindRadiusedRectangle, WritersPointsStayAndTheBoxIsTheRectangle) {
    DrawRecord r = Shape(155, 0, 0, 40, 20);
    r.Value[3] = -3;
    r.Point[1] = {-17, -10};
    r.Point[2] = {20, -7};
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[3], 3.0f);
    ExpectPoint(r.Point[1], -17, -10, 0);
    ExpectPoint(r.Point[2], 20, -7, 0);
    ExpectPoint(r.Point[3], -17, -10, 0);
    ExpectPoint(r.Point[5], -17, -10, 0);
    ExpectPoint(r.Extent[1], -20, -10);
    ExpectPoint(r.Extent[2], 20, 10);
    ExpectPoint(r.Margin[1], -25, -15);
    ExpectPoint(r.Margin[2], 25, 15);
}

TEST(BindRectangle, RectangleAtZeroDegreesHasABoxEqualToItsOutline) {
    DrawRecord r = Shape(156, 100, 50, 40, 20);
    r.Point[1] = {1, 2};
    BindRecord(Machine(), r);
    ExpectPoint(r.Extent[1], 80, 40);
    ExpectPoint(r.Extent[2], 120, 60);
    ExpectPoint(r.Margin[1], 75, 35);
    ExpectPoint(r.Margin[2], 125, 65);
    // No point is derived.
    ExpectPoint(r.Point[1], 1, 2, 0);
    ExpectPoint(r.Point[2], 0, 0, 0);
    ExpectPoint(r.Point[3], 0, 0, 0);
}

TEST(BindRectangle, TurnedRectanglesBox) {
    // At 90: 20 wide, 40 high. At 45: half of each side 20 cos 45 + 10 sin 45 = 21.2132.
    DrawRecord upright = Shape(156, 100, 50, 40, 20, 90);
    BindRecord(Machine(), upright);
    ExpectPoint(upright.Extent[1], 90, 30);
    ExpectPoint(upright.Extent[2], 110, 70);
    DrawRecord slanted = Shape(156, 100, 50, 40, 20, 45);
    BindRecord(Machine(), slanted);
    ExpectPoint(slanted.Extent[1], 78.7868, 28.7868);
    ExpectPoint(slanted.Extent[2], 121.2132, 71.2132);
}

// ---- Worked form ------------------------------------------------------------------------------------

TEST(BindShapeWorked, ShapeWithoutAToolIgnoresTheToolsSizes) {
    DrawRecord plain = Shape(156, 100, 50, 40, 20);
    BindRecord(Machine(), plain);
    DrawRecord noTool = Shape(156, 100, 50, 40, 20);
    noTool.ToolA.Size[1] = 100;
    noTool.ToolA.Size[2] = 100;
    noTool.ToolA.WorkType = 10;  // Present 0: no tool
    BindRecord(Machine(), noTool);
    EXPECT_EQ(noTool.Side, 0);
    EXPECT_EQ(noTool.Value[1], 40.0f);
    ExpectPoint(noTool.Extent[1], plain.Extent[1].X, plain.Extent[1].Y, 0);
    ExpectPoint(noTool.Margin[2], plain.Margin[2].X, plain.Margin[2].Y, 0);
    DrawRecord profiled = Shape(156, 100, 50, 10, 5);
    ShapeTool(profiled, "C", 100, 100);
    profiled.ToolA.WorkType = 5;
    BindRecord(Machine(), profiled);
    EXPECT_EQ(profiled.Value[1], 10.0f);
    EXPECT_EQ(profiled.Side, 0);
}

TEST(BindShapeWorked, SideZeroBecomesInsideAndTheBoxFollowsTheToolsPath) {
    // Inside, a 5 by 5 tool: 2.5 in from each side: 35 by 15 about (100,50).
    DrawRecord inside = Shape(156, 100, 50, 40, 20);
    ShapeTool(inside, "C", 5, 5);
    BindRecord(Machine(), inside);
    EXPECT_EQ(inside.Side, -1);
    ExpectPoint(inside.Extent[1], 82.5, 42.5);
    ExpectPoint(inside.Extent[2], 117.5, 57.5);
    // Outside: 2.5 out: 45 by 25.
    DrawRecord outside = Shape(156, 100, 50, 40, 20);
    outside.Side = 1;
    ShapeTool(outside, "C", 5, 5);
    BindRecord(Machine(), outside);
    ExpectPoint(outside.Extent[1], 77.5, 37.5);
    ExpectPoint(outside.Extent[2], 122.5, 62.5);
}

TEST(BindShapeWorked, ToolLargerThanTheShapeMakesTheShape) {
    // Tool 12 by 8 turned like the shape (0, or 180): 10 by 6 becomes 12 by 8.
    for (float angle : {0.0f, 180.0f}) {
        DrawRecord r = Shape(156, 0, 0, 10, 6);
        ShapeTool(r, "E", 12, 8, angle);
        BindRecord(Machine(), r);
        EXPECT_EQ(r.Value[1], 12.0f);
        EXPECT_EQ(r.Value[2], 8.0f);
    }
    // A quarter turn off (90, or 270): Size[2] goes with Value[1] (8 < 10, kept) and Size[1]
    // with Value[2] (12 > 6, taken).
    for (float angle : {90.0f, 270.0f}) {
        DrawRecord r = Shape(156, 0, 0, 10, 6);
        ShapeTool(r, "E", 12, 8, angle);
        BindRecord(Machine(), r);
        EXPECT_EQ(r.Value[1], 10.0f);
        EXPECT_EQ(r.Value[2], 12.0f);
    }
    // The tool's turn is its angle plus its step, against the shape's rotation.
    DrawRecord stepped = Shape(156, 0, 0, 10, 6, 30);
    ShapeTool(stepped, "E", 12, 8, 20);
    stepped.ToolA.ToolStep = 10;
    BindRecord(Machine(), stepped);
    EXPECT_EQ(stepped.Value[1], 12.0f);
}

TEST(BindShapeWorked, ToolAtAnotherAngleMakesTheShapeOnlyForRoundAndSquarePunches) {
    DrawRecord other = Shape(156, 0, 0, 10, 6);
    ShapeTool(other, "E", 12, 8, 45);
    other.Count[1] = 3;
    BindRecord(Machine(), other);
    EXPECT_EQ(other.Value[1], 10.0f);
    EXPECT_EQ(other.Value[2], 6.0f);
    EXPECT_EQ(other.Count[1], 0);
    for (const char* letter : {"A", "B", "D"}) {
        DrawRecord r = Shape(156, 0, 0, 10, 6);
        ShapeTool(r, letter, 12, 8, 45);
        BindRecord(Machine(), r);
        EXPECT_EQ(r.Value[1], 12.0f) << letter;
        EXPECT_EQ(r.Value[2], 8.0f) << letter;
    }
}

TEST(BindShapeWorked, RoundTooLargeForASingleDGivesItsRadius) {
    // Diameter 20 against a round tool of 25: the radius becomes 12.5, the diameter 25.
    DrawRecord r = Shape(152, 0, 0, 10, 15);
    ShapeTool(r, "A", 25);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[1], 12.5f);
    EXPECT_EQ(r.Value[5], 25.0f);
    EXPECT_EQ(r.Value[2], 15.0f);
    EXPECT_EQ(r.Count[3], 0);
}

TEST(BindShapeWorked, SingleDPunchOverwritesTheShapeWithItsOwnSizes) {
    // A "G" of 24 by 18 on a Single-D of 20 across and 15: radius 12, 18, diameter 24.
    DrawRecord r = Shape(152, 0, 0, 10, 15);
    ShapeTool(r, "G", 24, 18);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[1], 12.0f);
    EXPECT_EQ(r.Value[2], 18.0f);
    EXPECT_EQ(r.Value[5], 24.0f);
    EXPECT_EQ(r.Count[3], -1);
    // A "G" smaller than the shape is the shape's punch all the same.
    DrawRecord small = Shape(152, 0, 0, 10, 15);
    ShapeTool(small, "G", 16, 12);
    BindRecord(Machine(), small);
    EXPECT_EQ(small.Value[1], 8.0f);
    EXPECT_EQ(small.Value[2], 12.0f);
}

TEST(BindShapeWorked, RoundPunchWithinToleranceOfAnObroundsHeightTakesItsSize) {
    DrawRecord r = Shape(154, 0, 0, 40, 10);
    ShapeTool(r, "A", 10.005f);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], 10.005f);
    DrawRecord far = Shape(154, 0, 0, 40, 10);
    ShapeTool(far, "A", 9.9f);
    BindRecord(Machine(), far);
    EXPECT_EQ(far.Value[2], 10.0f);
}

TEST(BindShapeWorked, ObroundPunchFillsAnInsideObroundsLength) {
    // "F" of 20 by 10 inside 50 by 10: straight 40; (40 - 20) / (20 - 10) = 2, a whole number:
    // 1 + 2 - 1 = 2 hits.
    DrawRecord two = Shape(154, 0, 0, 50, 10);
    ShapeTool(two, "F", 20, 10);
    BindRecord(Machine(), two);
    EXPECT_EQ(two.Count[1], 2);
    // 55 by 10: straight 45; 2.5: 1 + 2 = 3 hits.
    DrawRecord three = Shape(154, 0, 0, 55, 10);
    ShapeTool(three, "F", 20, 10);
    BindRecord(Machine(), three);
    EXPECT_EQ(three.Count[1], 3);
    // 20.005 long: within the tolerance of the tool's 20: one hit, the length is the tool's,
    // and the box is the point at the centre.
    DrawRecord one = Shape(154, 5, 6, 20.005f, 10);
    ShapeTool(one, "F", 20, 10);
    BindRecord(Machine(), one);
    EXPECT_EQ(one.Value[1], 20.0f);
    EXPECT_EQ(one.Count[1], 1);
    ExpectPoint(one.Extent[1], 5, 6, 0);
    ExpectPoint(one.Extent[2], 5, 6, 0);
    // An inside obround's height is the tool's width.
    DrawRecord wide = Shape(154, 0, 0, 50, 12);
    ShapeTool(wide, "F", 20, 10);
    BindRecord(Machine(), wide);
    EXPECT_EQ(wide.Value[2], 10.0f);
    // Outside, the count is the writer's.
    DrawRecord outside = Shape(154, 0, 0, 50, 10);
    outside.Side = 1;
    outside.Count[1] = 7;
    ShapeTool(outside, "F", 20, 10);
    BindRecord(Machine(), outside);
    EXPECT_EQ(outside.Count[1], 7);
}

TEST(BindShapeWorked, CountOfOneMakesTheExtentThePointAtTheCentre) {
    DrawRecord r = Shape(156, 100, 50, 40, 20);
    r.Count[1] = 1;
    ShapeTool(r, "C", 5, 5);
    BindRecord(Machine(), r);
    ExpectPoint(r.Extent[1], 100, 50, 0);
    ExpectPoint(r.Extent[2], 100, 50, 0);
}

TEST(BindShapeWorked, WorkedDimensionsAreSizes) {
    DrawRecord r = Shape(156, 0, 0, -40, -20);
    ShapeTool(r, "C", 5, 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[1], 40.0f);
    EXPECT_EQ(r.Value[2], 20.0f);
}

TEST(BindShapeWorked, ComboMachineBindsThePlainForm) {
    MachineState combo = Machine();
    combo.IsComboMachine = true;
    combo.IsToolMachine = false;
    DrawRecord r = Shape(156, 0, 0, 10, 6);
    ShapeTool(r, "E", 12, 8);
    BindRecord(combo, r);
    EXPECT_EQ(r.Value[1], 10.0f);
    EXPECT_EQ(r.Side, 0);
}

TEST(BindShape, BoundTwiceIsTheSame) {
    std::vector<DrawRecord> records;
    records.push_back(Shape(152, 3, 4, 10, 15, 33));
    records.push_back(Shape(153, 3, 4, 10, 12, 210));
    records.push_back(Shape(154, 3, 4, -40, 10, 17));
    DrawRecord rad = Shape(155, 3, 4, 40, 20, 60);
    rad.Value[3] = -4;
    rad.Point[1] = {5, 6};
    records.push_back(rad);
    records.push_back(Shape(156, 3, 4, 40, 20, 75));
    DrawRecord worked152 = Shape(152, 0, 0, 10, 15);
    ShapeTool(worked152, "G", 24, 18);
    records.push_back(worked152);
    DrawRecord worked154 = Shape(154, 0, 0, 55, 12);
    ShapeTool(worked154, "F", 20, 10);
    records.push_back(worked154);
    DrawRecord worked156 = Shape(156, 0, 0, 10, 6, 90);
    ShapeTool(worked156, "E", 12, 8, 0);
    records.push_back(worked156);
    for (DrawRecord r : records) {
        BindRecord(Machine(), r);
        const std::string once = Bytes(r);
        BindRecord(Machine(), r);
        EXPECT_EQ(Bytes(r), once) << "code " << r.EntityCode;
    }
}

}  // namespace
