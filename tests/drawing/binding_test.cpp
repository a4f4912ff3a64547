// Binding: the common steps, ArcTurn and the small families (marks, hits, grids, boxes,
// multiparts). Expected values are worked out by hand in the comments.
#include "drawing/binding.h"

#include <gtest/gtest.h>

#include "drawing/binding_support.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "drawing/drawfile.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

using bindtest::Machine;
using bindtest::Made;
using bindtest::WorkingTool;
using bindtest::ExpectPoint;
using bindtest::Bytes;

// ---- ArcTurn ------------------------------------------------------------------------------------

TEST(ArcTurn, IsZeroUnlessTheSideIsOneOrMinusOne) {
    for (int16_t turnSense : {0, 1, 2}) {
        const MachineState m = Machine(turnSense);
        for (int16_t side : {0, 2, -2, 100}) {
            EXPECT_EQ(ArcTurn(m, side, 90), 0);
            EXPECT_EQ(ArcTurn(m, side, -90), 0);
        }
    }
}

TEST(ArcTurn, EverySideSweepAndConventionCombination) {
    // side * sign(sweep) * factor; factor +1 only for TurnSense 1; a sweep of 0 counts as +1.
    struct Case {
        int16_t side;
        double sweep;
        int16_t turnSense;
        int16_t expected;
    };
    const Case cases[] = {
        {1, 90, 1, 1},    {1, 0, 1, 1},    {1, -90, 1, -1},   {-1, 90, 1, -1}, {-1, 0, 1, -1}, {-1, -90, 1, 1},
        {1, 90, 0, -1},   {1, 0, 0, -1},   {1, -90, 0, 1},    {-1, 90, 0, 1},  {-1, 0, 0, 1},  {-1, -90, 0, -1},
        {1, 90, 2, -1},   {1, -90, 2, 1},  {-1, 90, 2, 1},    {-1, -90, 2, -1}, {1, 90, -1, -1}, {-1, -90, -1, -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ArcTurn(Machine(c.turnSense), c.side, c.sweep), c.expected)
            << "side " << c.side << " sweep " << c.sweep << " TurnSense " << c.turnSense;
    }
}

TEST(ArcTurn, NegativeZeroSweepCountsAsPositive) {
    EXPECT_EQ(ArcTurn(Machine(1), 1, -0.0), 1);
}

// ---- Common steps ---------------------------------------------------------------------------------

TEST(BindRecord, StopOfCode322KeepsWhatItsWriterStored) {
    DrawRecord r = Made(322);
    r.Point[3] = {12.5f, 7.25f};
    r.Point[4] = {1, 2};
    r.Value[1] = 3;
    r.Count[1] = -1;
    r.Extent[1] = {99, 98};
    r.Margin[2] = {-4, -5};
    const std::string before = Bytes(r);
    BindRecord(Machine(), r);
    EXPECT_EQ(Bytes(r), before);
}

TEST(BindRecord, RoundToolLetterAIsBoundToAngleAndStepZero) {
    DrawRecord r = Made(210);
    WorkingTool(r, "A", 10);
    r.ToolA.ToolAngle = 45;
    r.ToolA.ToolStep = 15;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.ToolA.ToolAngle, 0.0f);
    EXPECT_EQ(r.ToolA.ToolStep, 0.0f);
}

TEST(BindRecord, SecondToolLetterAOnARectangleIsAlsoZeroed) {
    DrawRecord r = Made(156);
    r.ToolB.Present = -1;
    r.ToolB.Letter = "A";
    r.ToolB.ToolAngle = 30;
    r.ToolB.ToolStep = 2;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.ToolB.Present, -1);
    EXPECT_EQ(r.ToolB.ToolAngle, 0.0f);
    EXPECT_EQ(r.ToolB.ToolStep, 0.0f);
}

TEST(BindRecord, ToolAnglesAreNormalised) {
    DrawRecord r = Made(156);
    WorkingTool(r, "E", 10, 5);
    r.ToolA.ToolAngle = -90;
    r.ToolB.Present = -1;
    r.ToolB.Letter = "E";
    r.ToolB.ToolAngle = 450;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.ToolA.ToolAngle, 270.0f);
    EXPECT_EQ(r.ToolB.ToolAngle, 90.0f);
}

TEST(BindRecord, SecondToolIsClearedExceptOnRectangleProfilingAndLibraryTooling) {
    const auto boundSecond = [](int16_t code, const char* letter) {
        DrawRecord r = Made(code);
        r.ToolA.Present = -1;
        r.ToolA.Letter = letter;
        r.ToolB.Present = -1;
        r.ToolB.Letter = "C";
        r.ToolB.ToolName = "SQ 10";
        BindRecord(Machine(), r);
        return r.ToolB;
    };
    const ToolSpec cleared = boundSecond(120, "C");
    EXPECT_EQ(cleared.Present, 0);
    EXPECT_EQ(cleared.Letter.Text(), " ");
    EXPECT_EQ(cleared.ToolName.Trimmed(), "");
    EXPECT_EQ(boundSecond(156, "C").Present, -1);
    EXPECT_EQ(boundSecond(120, "P").Present, -1);
    EXPECT_EQ(boundSecond(210, "U").Present, -1);
    EXPECT_EQ(boundSecond(999, "C").Present, 0);  // an unknown code still gets the common steps
}

// ---- Mark family ------------------------------------------------------------------------------

TEST(BindMark, PositionIsCopiedAndBoxesAreAroundIt) {
    for (int16_t code : {311, 312, 321, 350, 355}) {
        DrawRecord r = Made(code);
        r.Point[4] = {10, 20};
        BindRecord(Machine(), r);
        for (int i : {1, 2, 3, 5, 6}) ExpectPoint(r.Point[i], 10, 20, 0);
        ExpectPoint(r.Extent[1], 10, 20, 0);
        ExpectPoint(r.Extent[2], 10, 20, 0);
        ExpectPoint(r.Margin[1], 5, 15, 0);
        ExpectPoint(r.Margin[2], 15, 25, 0);
    }
}

// ---- Point family, 210 --------------------------------------------------------------------------

TEST(BindPunch, HitWithoutToolHasMarginHalfSizeFive) {
    DrawRecord r = Made(210);
    r.Point[4] = {100, 50};
    BindRecord(Machine(), r);
    for (int i : {1, 2, 3, 5, 6}) ExpectPoint(r.Point[i], 100, 50, 0);
    ExpectPoint(r.Extent[1], 100, 50, 0);
    ExpectPoint(r.Extent[2], 100, 50, 0);
    ExpectPoint(r.Margin[1], 95, 45, 0);
    ExpectPoint(r.Margin[2], 105, 55, 0);
}

TEST(BindPunch, ToolOfWidthSixGivesMarginHalfSizeThree) {
    DrawRecord r = Made(210);
    r.Point[4] = {100, 50};
    WorkingTool(r, "C", 6);
    BindRecord(Machine(), r);
    ExpectPoint(r.Margin[1], 97, 47, 0);
    ExpectPoint(r.Margin[2], 103, 53, 0);
}

TEST(BindPunch, ToolOfWidthFiveGivesMarginHalfSizeFive) {
    DrawRecord r = Made(210);
    r.Point[4] = {100, 50};
    WorkingTool(r, "C", 5);
    BindRecord(Machine(), r);
    ExpectPoint(r.Margin[1], 95, 45, 0);
    ExpectPoint(r.Margin[2], 105, 55, 0);
}

TEST(BindPunch, ProfilingToolDoesNotSetTheMargin) {
    DrawRecord r = Made(210);
    r.Point[4] = {0, 0};
    WorkingTool(r, "C", 40, 0, 5);  // WorkType below 10
    BindRecord(Machine(), r);
    ExpectPoint(r.Margin[1], -5, -5, 0);
    ExpectPoint(r.Margin[2], 5, 5, 0);
}

TEST(BindPunch, LargeToolGivesHalfItsWidth) {
    DrawRecord r = Made(210);
    r.Point[4] = {0, 0};
    WorkingTool(r, "A", 40);
    BindRecord(Machine(), r);
    ExpectPoint(r.Margin[1], -20, -20, 0);
    ExpectPoint(r.Margin[2], 20, 20, 0);
}

// ---- Point family, 225 ---------------------------------------------------------------------------

DrawRecord Grid(int16_t across, int16_t rows, float along, float between, float direction) {
    DrawRecord r = Made(225);
    r.Point[1] = {0, 0};
    r.Value[1] = 4;
    r.Value[3] = 4;
    r.Value[2] = along;
    r.Value[4] = between;
    r.Value[10] = direction;
    r.Count[1] = across;
    r.Count[2] = rows;
    return r;
}

TEST(BindGrid, ThreeByTwoAtZeroDegreesWalksSerpentine) {
    // Row 1 along 0: (0,0) -> (20,0). Step of 20 along 90: (20,20). Row 2 back along 180:
    // (20,20) -> (0,20). Point[2] after row 1 (20,0); last hit (0,20); first hit of the last row
    // (20,20); box (0,0)-(20,20), middle (10,10); margin 5 all round, wide enough for both minima.
    DrawRecord r = Grid(3, 2, 10, 20, 0);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 0, 0);
    ExpectPoint(r.Point[2], 20, 0);
    ExpectPoint(r.Point[3], 0, 20);
    ExpectPoint(r.Point[4], 10, 10);
    ExpectPoint(r.Point[5], 0, 0, 0);
    ExpectPoint(r.Point[6], 20, 20);
    ExpectPoint(r.Extent[1], 0, 0);
    ExpectPoint(r.Extent[2], 20, 20);
    ExpectPoint(r.Margin[1], -5, -5);
    ExpectPoint(r.Margin[2], 25, 25);
}

TEST(BindGrid, ThreeByTwoAtNinetyDegrees) {
    // Row 1 along 90: (0,0) -> (0,20). Step of 20 along 180: (-20,20). Row 2 along 270:
    // -> (-20,0). Box (-20,0)-(0,20), middle (-10,10).
    DrawRecord r = Grid(3, 2, 10, 20, 90);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], 0, 20);
    ExpectPoint(r.Point[3], -20, 0);
    ExpectPoint(r.Point[4], -10, 10);
    ExpectPoint(r.Point[6], -20, 20);
    ExpectPoint(r.Extent[1], -20, 0);
    ExpectPoint(r.Extent[2], 0, 20);
    ExpectPoint(r.Margin[1], -25, -5);
    ExpectPoint(r.Margin[2], 5, 25);
}

TEST(BindGrid, ExchangedAxesWalkTheOtherAxisAndLeaveTheRecordAsStored) {
    // Exchanged: pitches 20 and 10, counts 2 and 3, direction Norm360(90 - 0) = 90, first pitch
    // -20. Step direction 180. Row 1 along 90 by -20: (0,-20); step (-10,-20). Row 2 along 270 by
    // -20: (-10,0); step (-20,0). Row 3 along 90 by -20: (-20,-20). Box (-20,-20)-(0,0).
    DrawRecord r = Grid(3, 2, 10, 20, 0);
    r.Count[3] = 1;
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], 0, -20);
    ExpectPoint(r.Point[3], -20, -20);
    ExpectPoint(r.Point[4], -10, -10);
    ExpectPoint(r.Point[6], -20, 0);
    ExpectPoint(r.Extent[1], -20, -20);
    ExpectPoint(r.Extent[2], 0, 0);
    EXPECT_EQ(r.Value[2], 10.0f);
    EXPECT_EQ(r.Value[4], 20.0f);
    EXPECT_EQ(r.Value[10], 0.0f);
    EXPECT_EQ(r.Count[1], 3);
    EXPECT_EQ(r.Count[2], 2);
    EXPECT_EQ(r.Count[3], 1);
}

TEST(BindGrid, ExchangedAxesAtThirtyDegreesTurnTheDirectionToSixty) {
    // Direction Norm360(90 - 30) = 60; one row of 2 hits (the exchanged counts 2 and 1): a step of
    // -10 along 60 from the origin: (-5, -8.6603).
    DrawRecord r = Grid(1, 2, 7, 10, 30);
    r.Count[3] = -1;
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[3], -5, -8.6603);
    ExpectPoint(r.Point[6], 0, 0);
}

TEST(BindGrid, OneHitPerRowMakesNoStepAndTheBoxIsTheColumnOfRowStarts) {
    // Count[1] 1: no step along a row; three rows 10 apart along 90: (0,0), (0,10), (0,20).
    DrawRecord r = Grid(1, 3, 10, 10, 0);
    r.Value[1] = 30;  // size s = 30: the first minimum is 15
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], 0, 0);
    ExpectPoint(r.Point[3], 0, 20);
    ExpectPoint(r.Point[6], 0, 20);
    ExpectPoint(r.Extent[1], 0, 0);
    ExpectPoint(r.Extent[2], 0, 20);
    // Margin X: -5..5 is 10 wide, short of 15 by 5: -7.5..7.5. Y: -5..25 is 30 wide, kept.
    ExpectPoint(r.Margin[1], -7.5, -5);
    ExpectPoint(r.Margin[2], 7.5, 25);
}

TEST(BindGrid, MarginMinimumComesFromTheToolSizeWithAWorkingTool) {
    // One hit; margin -5..5 (10 wide). Without a tool the minima are s/2 = 2 and 5: kept. With a
    // tool of 40 by 10 the first minimum is 40/2 = 20: widened by 5 on each side.
    DrawRecord plain = Grid(1, 1, 10, 10, 0);
    BindRecord(Machine(), plain);
    ExpectPoint(plain.Margin[1], -5, -5);
    ExpectPoint(plain.Margin[2], 5, 5);
    DrawRecord tooled = Grid(1, 1, 10, 10, 0);
    WorkingTool(tooled, "E", 40, 10);
    BindRecord(Machine(), tooled);
    ExpectPoint(tooled.Margin[1], -10, -10);
    ExpectPoint(tooled.Margin[2], 10, 10);
}

TEST(BindGrid, HugeGridIsBoundQuickly) {
    // 32767 by 32767 hits: the walk goes row by row, not hit by hit.
    DrawRecord r = Grid(32767, 32767, 1, 1, 0);
    BindRecord(Machine(), r);
    // 32767 rows, odd: the last row runs like the first and ends at the far corner, (32766,
    // 32766) but for the drift of pi's eight decimals: each of the 16383 rows that run back along
    // 180 degrees climbs by 32766 * sin(3.14159265) = 32766 * 3.5898e-9, 1.927 in all.
    const double drift = 16383.0 * 32766.0 * std::sin(3.14159265);
    ExpectPoint(r.Point[3], 32766, 32766 + drift, 0.01);
    ExpectPoint(r.Extent[2], 32766, 32766 + drift, 0.01);
}

TEST(BindGrid, EvenNumberOfRowsEndsAtTheNearSide) {
    DrawRecord r = Grid(4, 4, 5, 5, 0);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[3], 0, 15);
    ExpectPoint(r.Point[6], 15, 15);
}

// ---- Box family ------------------------------------------------------------------------------------

DrawRecord BoxShape(int16_t code, float angle) {
    DrawRecord r = Made(code);
    r.Point[4] = {100, 50};
    r.Value[1] = 40;
    r.Value[2] = 10;
    r.Value[10] = angle;
    return r;
}

TEST(BindBoxShape, CentreIsCopiedAndBoxesAreHalfDimensionsAround) {
    for (int16_t code : {171, 175}) {
        DrawRecord r = BoxShape(code, 0);
        BindRecord(Machine(), r);
        for (int i : {1, 2, 3, 5, 6}) ExpectPoint(r.Point[i], 100, 50, 0);
        ExpectPoint(r.Extent[1], 80, 45, 0);
        ExpectPoint(r.Extent[2], 120, 55, 0);
        ExpectPoint(r.Margin[1], 78, 43, 0);
        ExpectPoint(r.Margin[2], 122, 57, 0);
    }
}

TEST(BindBoxShape, AnglesInTheUprightBandsExchangeWidthAndHeight) {
    for (float angle : {75.0f, 90.0f, 105.0f, 255.0f, 270.0f, 285.0f, -90.0f}) {
        DrawRecord r = BoxShape(171, angle);
        BindRecord(Machine(), r);
        ExpectPoint(r.Extent[1], 95, 30, 0);
        ExpectPoint(r.Extent[2], 105, 70, 0);
        ExpectPoint(r.Margin[1], 93, 28, 0);
        ExpectPoint(r.Margin[2], 107, 72, 0);
    }
}

TEST(BindBoxShape, EveryOtherAngleKeepsWidthAndHeightEvenAtFortyFive) {
    for (float angle : {0.0f, 15.0f, 45.0f, 74.9f, 105.1f, 180.0f, 254.9f, 285.1f, 345.0f}) {
        DrawRecord r = BoxShape(175, angle);
        BindRecord(Machine(), r);
        ExpectPoint(r.Extent[1], 80, 45, 0);
        ExpectPoint(r.Extent[2], 120, 55, 0);
    }
}

// ---- Multipart family ----------------------------------------------------------------------------

TEST(BindMultipart, LayoutOfTwoByOneWithAnAngleLosesTheAngle) {
    DrawRecord r = Made(500);
    r.Count[1] = 2;
    r.Count[2] = 1;
    r.Value[10] = 30;
    r.Point[2] = {10, 0};
    r.Extent[1] = {7, 7};
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[10], 0.0f);
    ExpectPoint(r.Point[2], 10, 0, 0);  // not turned
    ExpectPoint(r.Extent[1], 7, 7, 0);  // binding ended before the box
}

TEST(BindMultipart, SinglePartWithoutAngleIsLeftAsItIs) {
    DrawRecord r = Made(510);
    r.Count[1] = 1;
    r.Count[2] = 1;
    r.Point[2] = {10, 0};
    r.Extent[2] = {3, 3};
    const std::string before = Bytes(r);
    BindRecord(Machine(), r);
    EXPECT_EQ(Bytes(r), before);
}

TEST(BindMultipart, SinglePartPointsAreTurnedAboutTheOrigin) {
    // Turned by 90 about (0,0): (10,0) -> (0,10), (10,10) -> (-10,10); the others stay at the
    // origin. Box of the six points: (-10,0)-(0,10); Margin the same.
    DrawRecord r = Made(510);
    r.Count[1] = 1;
    r.Count[2] = 1;
    r.Value[10] = 90;
    r.Point[2] = {10, 0};
    r.Point[3] = {10, 10};
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 0, 0);
    ExpectPoint(r.Point[2], 0, 10);
    ExpectPoint(r.Point[3], -10, 10);
    ExpectPoint(r.Extent[1], -10, 0);
    ExpectPoint(r.Extent[2], 0, 10);
    ExpectPoint(r.Margin[1], -10, 0);
    ExpectPoint(r.Margin[2], 0, 10);
}

TEST(BindMultipart, BoxStartsFromTheUnequalValues) {
    // All six points at (200000, 200000): nothing is below 100000, so Extent[1] keeps it.
    DrawRecord far = Made(500);
    far.Count[1] = 1;
    far.Count[2] = 1;
    far.Value[10] = 360;
    for (int i = 1; i <= 6; ++i) far.Point[i] = {200000, 200000};
    BindRecord(Machine(), far);
    ExpectPoint(far.Extent[1], 100000, 100000, 0);
    ExpectPoint(far.Extent[2], 200000, 200000, 0);
    // All at (-20000, -20000): nothing is above -10000, so Extent[2] keeps it.
    DrawRecord low = far;
    for (int i = 1; i <= 6; ++i) low.Point[i] = {-20000, -20000};
    BindRecord(Machine(), low);
    ExpectPoint(low.Extent[1], -20000, -20000, 0);
    ExpectPoint(low.Extent[2], -10000, -10000, 0);
}

TEST(BindMultipart, SinglePartIsTurnedAgainEachTimeItIsBound) {
    DrawRecord r = Made(510);
    r.Count[1] = 1;
    r.Count[2] = 1;
    r.Value[10] = 90;
    r.Point[2] = {10, 0};
    BindRecord(Machine(), r);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], -10, 0);
}

// ---- Idempotence of the small families ------------------------------------------------------------

TEST(BindRecord, SmallFamiliesBoundTwiceAreTheSame) {
    std::vector<DrawRecord> records;
    DrawRecord mark = Made(350);
    mark.Point[4] = {3.5f, -2.25f};
    records.push_back(mark);
    DrawRecord hit = Made(210);
    hit.Point[4] = {1, 2};
    WorkingTool(hit, "E", 12, 4, 20);
    hit.ToolA.ToolAngle = 400;
    records.push_back(hit);
    DrawRecord grid = Grid(5, 3, 7.5f, 12.25f, 33);
    grid.Point[1] = {10.125f, 20.5f};
    records.push_back(grid);
    DrawRecord swapped = grid;
    swapped.Count[3] = -1;
    records.push_back(swapped);
    records.push_back(BoxShape(175, 80));
    DrawRecord layout = Made(500);
    layout.Count[1] = 3;
    layout.Count[2] = 2;
    layout.Value[10] = 12;
    records.push_back(layout);
    for (DrawRecord r : records) {
        BindRecord(Machine(), r);
        const std::string once = Bytes(r);
        BindRecord(Machine(), r);
        EXPECT_EQ(Bytes(r), once) << "code " << r.EntityCode;
    }
}

}  // namespace
