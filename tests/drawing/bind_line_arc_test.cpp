// Binding of lines and arcs in the plain and the worked form, trims and reversal. Expected
// values are worked out by hand in the comments; pi is 3.14159265.
#include <gtest/gtest.h>

#include "drawing/binding_support.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

using bindtest::Machine;
using bindtest::Made;
using bindtest::WorkingTool;
using bindtest::ExpectPoint;
using bindtest::Bytes;

constexpr double P = Pi;  // the system's pi, 3.14159265

// A line from (x1, y1) to (x2, y2), length and direction given as its writer would.
DrawRecord Line(int16_t code, float x1, float y1, float x2, float y2, float length, float direction) {
    DrawRecord r = Made(code);
    r.Point[1] = {x1, y1};
    r.Point[3] = {x2, y2};
    r.Value[1] = length;
    r.Value[10] = direction;
    return r;
}

DrawRecord Arc(int16_t code, float cx, float cy, float radius, float start, float sweep) {
    DrawRecord r = Made(code);
    r.Point[4] = {cx, cy};
    r.Value[1] = radius;
    r.Value[10] = start;
    r.Value[11] = sweep;
    return r;
}

// ---- Lines, plain form ---------------------------------------------------------------------------

TEST(BindLine, LineWithoutTrimsHasWorkingEndsEqualToDefiningEnds) {
    DrawRecord r = Line(120, 0, 0, 30, 40, 50, 53.130102f);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], 15, 20, 0);
    ExpectPoint(r.Point[5], 0, 0, 0);
    ExpectPoint(r.Point[6], 30, 40, 0);
    EXPECT_EQ(r.Value[5], 50.0f);
    ExpectPoint(r.Extent[1], 0, 0, 0);
    ExpectPoint(r.Extent[2], 30, 40, 0);
    ExpectPoint(r.Margin[1], -5, -5, 0);
    ExpectPoint(r.Margin[2], 35, 45, 0);
    EXPECT_EQ(r.Count[1], 0);  // a plain line carries no hits
}

TEST(BindLine, TrimsMoveTheWorkingEndsAndShortenTheWorkingLength) {
    // Start moved on by 10 along 0: (10,0). End moved back by 20 along 180: (80,0). 100 - 10 - 20.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[3] = 10;
    r.Value[4] = 20;
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 0, 0);
    ExpectPoint(r.Point[3], 100, 0, 0);
    ExpectPoint(r.Point[5], 10, 0);
    ExpectPoint(r.Point[6], 80, 0);
    EXPECT_EQ(r.Value[5], 70.0f);
    ExpectPoint(r.Extent[1], 0, 0);
    ExpectPoint(r.Extent[2], 100, 0);
    ExpectPoint(r.Margin[1], -5, -5);
    ExpectPoint(r.Margin[2], 105, 5);
}

TEST(BindLine, NegativeTrimLengthensTheLineAndTheBoxFollows) {
    // A trim of -10 at the start moves the working start back to (-10,0).
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[3] = -10;
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[5], -10, 0);
    EXPECT_EQ(r.Value[5], 110.0f);
    ExpectPoint(r.Extent[1], -10, 0);
}

TEST(BindLine, MiddlePointIsRoundedToFourDecimals) {
    // (0.00001 + 0.00002) / 2 = 0.000015 -> 0.0000 ; (1.23456 + 0) / 2 = 0.61728 -> 0.6173
    DrawRecord r = Line(120, 0.00001f, 1.23456f, 0.00002f, 0, 1.2, 270);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Point[2].X, 0.0f);
    EXPECT_EQ(r.Point[2].Y, static_cast<float>(0.6173));
}

TEST(BindLine, CutLinesBindAsALineProfile) {
    for (int16_t code : {521, 522, 110}) {
        DrawRecord r = Line(code, 0, 0, 100, 0, 100, 0);
        r.Value[3] = 10;
        BindRecord(Machine(), r);
        ExpectPoint(r.Point[5], 10, 0);
        EXPECT_EQ(r.Value[5], 90.0f);
    }
}

TEST(BindLine, RowOfHitsDerivesItsLengthAndDirectionFromItsEnds) {
    // From (0,0) to (30,40): length 50, direction atan(40/30) = 53.130102 -> 53.13 (3 decimals).
    // The pitch -5 runs against the length and is turned round.
    DrawRecord r = Made(220);
    r.Point[5] = {0, 0};
    r.Point[6] = {30, 40};
    r.Value[2] = -5;
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 0, 0, 0);
    ExpectPoint(r.Point[3], 30, 40, 0);
    ExpectPoint(r.Point[2], 15, 20, 0);
    EXPECT_EQ(r.Value[1], 50.0f);
    EXPECT_EQ(r.Value[10], static_cast<float>(53.13));
    EXPECT_EQ(r.Value[5], 50.0f);
    EXPECT_EQ(r.Value[2], 5.0f);
}

TEST(BindLine, RowOfHitsWithoutPitchKeepsAPositiveZero) {
    DrawRecord r = Made(220);
    r.Point[6] = {10, 0};
    BindRecord(Machine(), r);
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[2]), 0u);
}

TEST(BindLine, RowOfHitsOfLengthZeroKeepsItsPitchSign) {
    // A length of 0 has no sign: binding twice must not turn the pitch back and forth.
    DrawRecord r = Made(220);
    r.Point[5] = {3, 3};
    r.Point[6] = {3, 3};
    r.Value[2] = -4;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], -4.0f);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], -4.0f);
}

TEST(BindLine, DirectionThatRoundsToThreeSixtyIsStoredAsZero) {
    // From (0,0) to (1e4, -0.01): angle 360 - 0.0000573 -> 360.000 when rounded -> 0.
    DrawRecord r = Made(220);
    r.Point[6] = {10000, -0.01f};
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[10], 0.0f);
}

// ---- Lines, worked form ----------------------------------------------------------------------------

TEST(BindLineWorked, HitsAreSpreadEvenlySoTheLastLandsOnTheWorkingEnd) {
    // W = 100, pitch 30: 3 whole pitches fit, 4 hits, pitch 100/3.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 30;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 4);
    EXPECT_EQ(r.Value[2], static_cast<float>(100.0 / 3));
    EXPECT_EQ(r.Value[5], 100.0f);
    ExpectPoint(r.Point[5], 0, 0, 0);
    ExpectPoint(r.Point[6], 100, 0, 0);
}

TEST(BindLineWorked, PitchThatFitsExactlyIsKept) {
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 25;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[2], 25.0f);
}

TEST(BindLineWorked, HitsRunBetweenTheTrimmedEnds) {
    // Trims 10 and 10: W = 80 from (10,0) to (90,0); pitch 20: 5 hits.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 20;
    r.Value[3] = 10;
    r.Value[4] = 10;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[5], 80.0f);
    ExpectPoint(r.Point[5], 10, 0);
    ExpectPoint(r.Point[6], 90, 0);
}

TEST(BindLineWorked, PitchLongerThanTheLineIsOneHit) {
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 150;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
    EXPECT_EQ(r.Value[5], 0.0f);  // from the first hit to the last: none
    EXPECT_EQ(r.Value[2], 150.0f);
}

TEST(BindLineWorked, PitchBelowOneTenthIsNoPitch) {
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 0.05f;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
}

TEST(BindLineWorked, WithoutPitchTheCountGivesTheRow) {
    // Count 5 on W = 100: pitch 25. Bound again: the pitch gives the same count.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Count[1] = 5;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[2], 25.0f);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[2], 25.0f);
}

TEST(BindLineWorked, PitchOfOneTenthIsStillARow) {
    // W = 100, pitch 0.1: 1000 pitches, 1001 hits.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 0.1f;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1001);
}

TEST(BindLineWorked, CountIsCappedWithinSixteenBits) {
    // W = 10000, pitch 0.1: 100000 pitches would fit; the row takes 32766 at 10000/32766.
    DrawRecord r = Line(120, 0, 0, 10000, 0, 10000, 0);
    r.Value[2] = 0.1f;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 32767);
    EXPECT_EQ(r.Value[2], static_cast<float>(10000.0 / 32766));
}

TEST(BindLineWorked, TrimsLongerThanTheLineLeaveOneHit) {
    DrawRecord r = Line(120, 0, 0, 10, 0, 10, 0);
    r.Value[2] = 2;
    r.Value[3] = 8;
    r.Value[4] = 8;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
    EXPECT_EQ(r.Value[5], 0.0f);
}

TEST(BindLineWorked, RowOfHitsTurnsItsPitchAndCountsItsHits) {
    // (0,0) to (0,50): length 50, direction 90; pitch -10 turned to 10; 5 pitches, 6 hits.
    DrawRecord r = Made(220);
    r.Point[6] = {0, 50};
    r.Value[2] = -10;
    WorkingTool(r, "A", 8);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[10], 90.0f);
    EXPECT_EQ(r.Value[2], 10.0f);
    EXPECT_EQ(r.Count[1], 6);
    EXPECT_EQ(r.Value[5], 50.0f);
}

TEST(BindLineWorked, RapidMoveCarriesNoHits) {
    DrawRecord r = Line(110, 0, 0, 100, 0, 100, 0);
    r.Value[2] = 10;
    r.Count[1] = 7;
    WorkingTool(r, "C", 10, 10);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 7);
    EXPECT_EQ(r.Value[5], 100.0f);
}

TEST(BindLineWorked, ComboMachineAndProfilingToolBindThePlainForm) {
    MachineState combo = Machine();
    combo.MachineKind = 40;
    combo.IsToolMachine = false;
    combo.IsComboMachine = true;
    DrawRecord onCombo = Line(120, 0, 0, 100, 0, 100, 0);
    onCombo.Value[2] = 30;
    WorkingTool(onCombo, "C", 10, 10);
    BindRecord(combo, onCombo);
    EXPECT_EQ(onCombo.Count[1], 0);
    EXPECT_EQ(onCombo.Value[2], 30.0f);

    DrawRecord profiled = Line(120, 0, 0, 100, 0, 100, 0);
    profiled.Value[2] = 30;
    WorkingTool(profiled, "P", 1, 0, 10);
    BindRecord(Machine(), profiled);
    EXPECT_EQ(profiled.Count[1], 0);
}

TEST(BindLineWorked, MarginReachesAsFarAsTheTool) {
    // A square tool of 10: half its diagonal, sqrt(200)/2 = 7.0711, beyond the line.
    DrawRecord square = Line(120, 0, 0, 100, 0, 100, 0);
    square.Value[2] = 10;
    WorkingTool(square, "C", 10, 10);
    BindRecord(Machine(), square);
    ExpectPoint(square.Margin[1], -7.0711, -7.0711);
    ExpectPoint(square.Margin[2], 107.0711, 7.0711);
    // A round tool of 20: 10. A small tool: never less than 5.
    DrawRecord round = square;
    WorkingTool(round, "A", 20);
    BindRecord(Machine(), round);
    ExpectPoint(round.Margin[1], -10, -10);
    DrawRecord small = square;
    WorkingTool(small, "A", 4);
    BindRecord(Machine(), small);
    ExpectPoint(small.Margin[1], -5, -5);
}

// ---- Arcs, plain form ------------------------------------------------------------------------------

TEST(BindArc, SweepOfThreeSixtyEndsWhereItStartsWithTheWholeCircumference) {
    // Centre (10,10), radius 5 from 0 over 360: start and end (15,10), middle (5,10).
    // Length (5 * 2 * 3.14159265) / (360 / 360) = 31.4159265.
    DrawRecord r = Arc(130, 10, 10, 5, 0, 360);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 15, 10, 0);
    ExpectPoint(r.Point[3], 15, 10, 0);
    EXPECT_EQ(r.Point[1].X, r.Point[3].X);
    EXPECT_EQ(r.Point[1].Y, r.Point[3].Y);
    ExpectPoint(r.Point[2], 5, 10);
    EXPECT_EQ(r.Value[2], static_cast<float>(31.4159265));
    ExpectPoint(r.Extent[1], 5, 5);
    ExpectPoint(r.Extent[2], 15, 15);
    ExpectPoint(r.Margin[1], 0, 0);
    ExpectPoint(r.Margin[2], 20, 20);
}

TEST(BindArc, LengthUsesPiWithEightDecimals) {
    // Radius 1000, sweep 90: (1000 * 2 * 3.14159265) / 4 = 1570.796325, where the full pi would
    // give 1570.7963268; the single holds the difference.
    DrawRecord r = Arc(130, 0, 0, 1000, 0, 90);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], static_cast<float>(1570.796325));
    EXPECT_NE(r.Value[2], static_cast<float>(1000 * 2 * 3.14159265358979 / 4));
}

TEST(BindArc, ArcBoxTakesTheAxisPointsItPasses) {
    // Radius 10 from 45 over 90: ends (7.0711, 7.0711) and (-7.0711, 7.0711), passes 90: (0,10).
    DrawRecord r = Arc(130, 0, 0, 10, 45, 90);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[1], 7.0711, 7.0711);
    ExpectPoint(r.Point[2], 0, 10);
    ExpectPoint(r.Point[3], -7.0711, 7.0711);
    ExpectPoint(r.Extent[1], -7.0711, 7.0711);
    ExpectPoint(r.Extent[2], 7.0711, 10);
    ExpectPoint(r.Margin[1], -12.0711, 2.0711);
    ExpectPoint(r.Margin[2], 12.0711, 15);
    // Length (10 * 2 * pi) / (360 / 90) = 15.70796325.
    EXPECT_EQ(r.Value[2], static_cast<float>(15.70796325));
}

TEST(BindArc, ClockwiseArcBoxAndNegativeLength) {
    // From 45 over -90: ends (7.0711, 7.0711) and (7.0711, -7.0711), passes 0: (10,0).
    DrawRecord r = Arc(130, 0, 0, 10, 45, -90);
    BindRecord(Machine(), r);
    ExpectPoint(r.Point[2], 10, 0);
    ExpectPoint(r.Point[3], 7.0711, -7.0711);
    ExpectPoint(r.Extent[1], 7.0711, -7.0711);
    ExpectPoint(r.Extent[2], 10, 7.0711);
    EXPECT_EQ(r.Value[2], static_cast<float>(-15.70796325));
}

TEST(BindArc, SweepOfZeroGivesLengthZeroInsteadOfDividingByIt) {
    DrawRecord r = Arc(130, 0, 0, 10, 30, 0);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], 0.0f);
    ExpectPoint(r.Point[1], r.Point[3].X, r.Point[3].Y, 0);
    ExpectPoint(r.Point[2], r.Point[1].X, r.Point[1].Y, 0);
}

TEST(BindArc, CircleIsWholeWhateverItsSweepHolds) {
    // 151 with no sweep: circumference 10 * 2 * pi = 62.831853; end = start; box of the circle.
    DrawRecord r = Arc(151, 0, 0, 10, 0, 0);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[2], static_cast<float>(62.831853));
    ExpectPoint(r.Point[1], 10, 0);
    ExpectPoint(r.Point[2], -10, 0);
    ExpectPoint(r.Point[3], 10, 0);
    ExpectPoint(r.Extent[1], -10, -10);
    ExpectPoint(r.Extent[2], 10, 10);
    EXPECT_EQ(r.Value[13], 0.0f);
    EXPECT_EQ(r.Value[14], 360.0f);
    // A clockwise circle: the sweep turns the other way, the length stays the circumference.
    DrawRecord cw = Arc(151, 0, 0, 10, 0, -360);
    BindRecord(Machine(), cw);
    EXPECT_EQ(cw.Value[14], -360.0f);
    EXPECT_EQ(cw.Value[2], static_cast<float>(62.831853));
}

TEST(BindArc, ArcPatternTurnsAStepAngleIntoAPitch) {
    // Radius 10 over 90, step 30 degrees, no pitch: length 15.70796325; pitch 30/90 * that.
    DrawRecord r = Arc(230, 0, 0, 10, 0, 90);
    r.Value[12] = 30;
    r.Count[1] = 4;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[5], 10.0f);
    EXPECT_EQ(r.Value[6], static_cast<float>(15.70796325));
    EXPECT_EQ(r.Value[13], 0.0f);
    EXPECT_EQ(r.Value[14], 90.0f);
    EXPECT_NEAR(r.Value[3], 5.23598775, 1e-6);
    EXPECT_EQ(r.Count[1], 4);  // a pattern without a working tool keeps its count
}

TEST(BindArc, ArcPatternKeepsAPitchItWasGiven) {
    DrawRecord r = Arc(230, 0, 0, 10, 0, 90);
    r.Value[12] = 30;
    r.Value[3] = 7;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[3], 7.0f);
}

TEST(BindArc, TrimsOfAnArcProfileAreLengthsAlongTheArc) {
    // Radius 10: 360 / (2 * pi * 10) = 5.72957795 degrees a unit. Start trim 1: 5.72957795 ->
    // start 5.730 (3 decimals). End trim 2: 11.4591559. Sweep 90 - 17.18873385 = 72.81126615 ->
    // 72.811.
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Value[8] = 1;
    r.Value[9] = 2;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[13], static_cast<float>(5.73));
    EXPECT_EQ(r.Value[14], static_cast<float>(72.811));
    // The drawn arc is untouched.
    ExpectPoint(r.Point[1], 10, 0);
    ExpectPoint(r.Point[3], 0, 10);
}

TEST(BindArc, TrimsOfAClockwiseArcMoveTheOtherWay) {
    // From 90 over -90: start 90 - 5.72957795 = 84.27042 -> 84.27; sweep -84.27042 -> -84.27.
    DrawRecord r = Arc(130, 0, 0, 10, 90, -90);
    r.Value[8] = 1;
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[13], static_cast<float>(84.27));
    EXPECT_EQ(r.Value[14], static_cast<float>(-84.27));
}

TEST(BindArc, UntrimmedArcProfileHasWorkingAnglesOfItsOwn) {
    DrawRecord r = Arc(130, 0, 0, 10, 30, -45);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Value[13], 30.0f);
    EXPECT_EQ(r.Value[14], -45.0f);
}

TEST(BindArc, StraightLeadsOfACircleAreRadial) {
    // Outside: the lead's angle becomes the start angle 30.
    DrawRecord outside = Arc(151, 0, 0, 10, 30, 360);
    outside.Side = 1;
    outside.LeadIn = LeadSpec{1, 5, 0, 0};
    outside.LeadOut = LeadSpec{-1, 50, 77, 0};
    BindRecord(Machine(), outside);
    EXPECT_EQ(outside.LeadIn.LeadAngle, 30.0f);
    EXPECT_EQ(outside.LeadOut.LeadAngle, 30.0f);
    EXPECT_EQ(outside.LeadOut.LeadLength, 50.0f);
    // Inside: towards the centre, 30 + 180 = 210, and no longer than the radius.
    DrawRecord inside = Arc(151, 0, 0, 10, 30, 360);
    inside.Side = -1;
    inside.LeadIn = LeadSpec{1, 50, 0, 0};
    inside.LeadOut = LeadSpec{2, 50, 5, 0};  // an arc lead is left alone
    BindRecord(Machine(), inside);
    EXPECT_EQ(inside.LeadIn.LeadAngle, 210.0f);
    EXPECT_EQ(inside.LeadIn.LeadLength, 10.0f);
    EXPECT_EQ(inside.LeadOut.LeadAngle, 5.0f);
    EXPECT_EQ(inside.LeadOut.LeadLength, 50.0f);
}

// ---- Arcs, worked form ---------------------------------------------------------------------------

TEST(BindArcWorked, StepAngleGivesTheHitsFromStartToEnd) {
    // Radius 10 over 90, step 30: 3 steps, 4 hits; pitch 30 * (2 * pi * 10 / 360) = 5.23598775;
    // from the first hit to the last 3 * 5.23598775 = 15.70796325.
    DrawRecord r = Arc(230, 0, 0, 10, 0, 90);
    r.Value[12] = 30;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 4);
    EXPECT_EQ(r.Value[12], 30.0f);
    EXPECT_EQ(r.Value[5], 10.0f);
    EXPECT_NEAR(r.Value[3], 5.23598775, 1e-6);
    EXPECT_NEAR(r.Value[6], 15.70796325, 1e-5);
    ExpectPoint(r.Point[5], 10, 0);
    ExpectPoint(r.Point[6], 0, 10);
}

TEST(BindArcWorked, PitchGivesTheStepWhenThereIsNoStepAngle) {
    // Pitch 5 at radius 10 is 5 / 0.174532925 = 28.6479 degrees; 90 / 28.6479 = 3.14: 3 steps of
    // 30, 4 hits, actual pitch 5.23598775.
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Value[3] = 5;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 4);
    EXPECT_EQ(r.Value[12], 30.0f);
    EXPECT_NEAR(r.Value[3], 5.23598775, 1e-6);
}

TEST(BindArcWorked, StepIsSignedLikeTheSweep) {
    DrawRecord r = Arc(230, 0, 0, 10, 90, -90);
    r.Value[12] = 30;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 4);
    EXPECT_EQ(r.Value[12], -30.0f);
    EXPECT_NEAR(r.Value[6], -15.70796325, 1e-5);
}

TEST(BindArcWorked, WholeCircleHasItsLastHitOneStepBeforeTheFirst) {
    // Step 360/7: 7 hits, the last at 6 * 51.428571 = 308.571, one step short of 360.
    DrawRecord r = Arc(230, 0, 0, 10, 0, 360);
    r.Value[12] = static_cast<float>(360.0 / 7);
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 7);
    EXPECT_NEAR(r.Value[12], 360.0 / 7, 1e-5);
    EXPECT_NEAR(r.Value[13] + (r.Count[1] - 1) * r.Value[12], 360.0 - 360.0 / 7, 1e-3);
    // The end of the working sweep is its start.
    ExpectPoint(r.Point[6], r.Point[5].X, r.Point[5].Y, 0);
}

TEST(BindArcWorked, WholeCircleWrittenWithATwiceHitStartLosesTheDoubleHit) {
    // A ring of 8 hits at 360/(8-1) would hit its start twice: binding gives 7 at 360/7.
    DrawRecord r = Arc(230, 0, 0, 10, 0, 360);
    r.Value[12] = static_cast<float>(360.0 / 7);
    r.Count[1] = 8;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 7);
}

TEST(BindArcWorked, WholeCircleFromAPitch) {
    // Pitch 5 at radius 10: 28.6479 degrees; 360 / 28.6479 = 12.57: 12 hits of 30 degrees.
    DrawRecord r = Arc(230, 0, 0, 10, 0, -360);
    r.Value[3] = 5;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 12);
    EXPECT_EQ(r.Value[12], -30.0f);
    EXPECT_NEAR(r.Value[3], 5.23598775, 1e-6);
}

TEST(BindArcWorked, StepWrittenToThreeDecimalsStillFits) {
    // 7 steps of 51.429 overrun 360 by 0.003 degrees: within the allowance, 7 hits.
    DrawRecord r = Arc(230, 0, 0, 10, 0, 360);
    r.Value[12] = 51.429f;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 7);
}

TEST(BindArcWorked, TrimmedArcIsWorkedBetweenItsTrimmedEnds) {
    // Trims 1 and 2 at radius 10: working start 5.73, sweep 72.811 (see the plain test). Step 10:
    // 7 steps, 8 hits, step 72.811 / 7 = 10.401571.
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Value[8] = 1;
    r.Value[9] = 2;
    r.Value[12] = 10;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 8);
    EXPECT_NEAR(r.Value[12], 72.811 / 7, 1e-5);
    ExpectPoint(r.Point[5], 10 * std::cos(5.73 * P / 180), 10 * std::sin(5.73 * P / 180));
    ExpectPoint(r.Point[6], 10 * std::cos(78.541 * P / 180), 10 * std::sin(78.541 * P / 180));
    // The drawn arc is untouched.
    ExpectPoint(r.Point[1], 10, 0);
}

TEST(BindArcWorked, WithoutStepOrPitchTheCountGivesTheRow) {
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Count[1] = 5;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[12], 22.5f);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 5);
    EXPECT_EQ(r.Value[12], 22.5f);
}

TEST(BindArcWorked, SweepOfZeroIsOneHit) {
    DrawRecord r = Arc(130, 0, 0, 10, 30, 0);
    r.Value[12] = 10;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
    EXPECT_EQ(r.Value[6], 0.0f);
}

TEST(BindArcWorked, StepLargerThanTheSweepIsOneHitThatStays) {
    DrawRecord r = Arc(130, 0, 0, 10, 0, 20);
    r.Value[12] = 30;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
    EXPECT_EQ(r.Value[12], 30.0f);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 1);
}

TEST(BindArcWorked, TinyStepIsCappedWithinSixteenBits) {
    DrawRecord r = Arc(230, 0, 0, 100, 0, 360);
    r.Value[12] = 0.0001f;
    WorkingTool(r, "A", 5);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 32767);
    BindRecord(Machine(), r);
    EXPECT_EQ(r.Count[1], 32767);
}

// ---- ApplyTrim --------------------------------------------------------------------------------------

TEST(ApplyTrim, LineTrimsAreFoldedIntoItsEnds) {
    // Start on by 10: (10,0); end back by 20: (80,0); length 100 - 30 = 70.
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[3] = 10;
    r.Value[4] = 20;
    ApplyTrim(Machine(), r);
    ExpectPoint(r.Point[1], 10, 0, 1e-6);
    ExpectPoint(r.Point[3], 80, 0, 1e-6);
    EXPECT_EQ(r.Value[1], 70.0f);
    EXPECT_EQ(r.Value[3], 0.0f);
    EXPECT_EQ(r.Value[4], 0.0f);
    ExpectPoint(r.Point[5], 10, 0, 1e-6);
    EXPECT_EQ(r.Value[5], 70.0f);
}

TEST(ApplyTrim, ArcTrimsAreFoldedIntoItsAngles) {
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Value[8] = 1;
    r.Value[9] = 2;
    ApplyTrim(Machine(), r);
    EXPECT_EQ(r.Value[8], 0.0f);
    EXPECT_EQ(r.Value[9], 0.0f);
    EXPECT_EQ(r.Value[10], static_cast<float>(5.73));
    EXPECT_EQ(r.Value[11], static_cast<float>(72.811));
    EXPECT_EQ(r.Value[13], static_cast<float>(5.73));
    ExpectPoint(r.Point[1], 10 * std::cos(5.73 * P / 180), 10 * std::sin(5.73 * P / 180));
}

TEST(ApplyTrim, TwiceDoesNothingMore) {
    DrawRecord line = Line(120, 0, 0, 100, 0, 100, 0);
    line.Value[3] = 10;
    line.Value[4] = 20;
    DrawRecord arc = Arc(130, 0, 0, 10, 0, 90);
    arc.Value[8] = 1;
    arc.Value[9] = 2;
    DrawRecord hit = Made(210);
    hit.Point[4] = {1, 1};
    for (DrawRecord r : {line, arc, hit}) {
        ApplyTrim(Machine(), r);
        const std::string once = Bytes(r);
        ApplyTrim(Machine(), r);
        EXPECT_EQ(Bytes(r), once) << "code " << r.EntityCode;
    }
}

TEST(ApplyTrim, OtherRecordsAreOnlyBound) {
    DrawRecord r = Made(210);
    r.Point[4] = {4, 5};
    r.Value[3] = 9;
    ApplyTrim(Machine(), r);
    ExpectPoint(r.Point[3], 4, 5, 0);
    EXPECT_EQ(r.Value[3], 9.0f);
}

// ---- Reversal ------------------------------------------------------------------------------------------

TEST(ReverseLine, EndsTrimsSideAndLeadsAreExchanged) {
    DrawRecord r = Line(120, 0, 0, 100, 0, 100, 0);
    r.Value[3] = 10;
    r.Value[4] = 20;
    r.Side = 1;
    r.LeadIn = LeadSpec{1, 5, 90, 11};
    r.LeadOut = LeadSpec{-2, 3, 0, 22};
    BindRecord(Machine(), r);
    ReverseLine(Machine(), r);
    ExpectPoint(r.Point[1], 100, 0, 0);
    ExpectPoint(r.Point[3], 0, 0, 0);
    EXPECT_EQ(r.Value[10], 180.0f);
    EXPECT_EQ(r.Value[3], 20.0f);
    EXPECT_EQ(r.Value[4], 10.0f);
    EXPECT_EQ(r.Side, -1);
    // The old lead-out, its arc sign flipped, is the lead-in; the straight lead keeps its sign.
    EXPECT_EQ(r.LeadIn.LeadKind, 2);
    EXPECT_EQ(r.LeadIn.LeadSpare, 22);
    EXPECT_EQ(r.LeadOut.LeadKind, 1);
    EXPECT_EQ(r.LeadOut.LeadAngle, 90.0f);
    // The same working stretch: from (80,0) back to (10,0).
    ExpectPoint(r.Point[5], 80, 0);
    ExpectPoint(r.Point[6], 10, 0);
}

TEST(ReverseLine, TwiceGivesTheOriginal) {
    DrawRecord r = Line(120, 1.5f, 2.5f, 31.5f, 42.5f, 50, 53.130102f);
    r.Value[3] = 1;
    r.Value[4] = 2.5f;
    r.Side = -1;
    r.LeadIn = LeadSpec{3, 5, 0, 0};
    r.LeadOut = LeadSpec{1, 4, 200, 0};
    BindRecord(Machine(), r);
    DrawRecord twice = r;
    ReverseLine(Machine(), twice);
    ReverseLine(Machine(), twice);
    EXPECT_NEAR(twice.Value[10], r.Value[10], 1e-4);
    twice.Value[10] = r.Value[10];
    BindRecord(Machine(), twice);
    EXPECT_EQ(Bytes(twice), Bytes(r));
}

TEST(ReverseArc, SweepTurnsAndTheToolKeepsItsAngleToThePath) {
    // From 30 over 90 to from 120 over -90. A rotary punch at 40 (10 past the start) and a first
    // hit at 50 (20 past the working start): after, 130 and 140.
    DrawRecord r = Arc(130, 0, 0, 10, 30, 90);
    r.Side = 1;
    WorkingTool(r, "E", 10, 5, 20);
    r.ToolA.ToolAngle = 40;
    r.Count[2] = 1;
    r.Value[15] = 50;
    r.Value[12] = 30;
    r.LeadIn = LeadSpec{2, 5, 0, 0};
    BindRecord(Machine(), r);
    ReverseArc(Machine(), r);
    EXPECT_EQ(r.Value[10], 120.0f);
    EXPECT_EQ(r.Value[11], -90.0f);
    EXPECT_EQ(r.Value[13], 120.0f);
    EXPECT_EQ(r.Value[14], -90.0f);
    EXPECT_EQ(r.Value[12], -30.0f);
    EXPECT_EQ(r.Value[15], 140.0f);
    EXPECT_EQ(r.ToolA.ToolAngle, 130.0f);
    EXPECT_EQ(r.Side, 1);
    EXPECT_EQ(r.LeadOut.LeadKind, -2);
    EXPECT_EQ(r.LeadIn.LeadKind, 0);
    ExpectPoint(r.Point[1], 10 * std::cos(120 * P / 180), 10 * std::sin(120 * P / 180));
}

TEST(ReverseArc, TrimsStayAtTheirEndsOfTheArc) {
    // Trims 1 at the start and 2 at the end of 0..90 at radius 10: working 5.73 to 78.541.
    // Reversed: from 90 over -90 with the trims exchanged: working start 90 - 11.4591559 =
    // 78.541, sweep -72.811.
    DrawRecord r = Arc(130, 0, 0, 10, 0, 90);
    r.Value[8] = 1;
    r.Value[9] = 2;
    BindRecord(Machine(), r);
    ReverseArc(Machine(), r);
    EXPECT_EQ(r.Value[8], 2.0f);
    EXPECT_EQ(r.Value[9], 1.0f);
    EXPECT_EQ(r.Value[13], static_cast<float>(78.541));
    EXPECT_EQ(r.Value[14], static_cast<float>(-72.811));
}

TEST(ReverseArc, TwiceGivesTheOriginal) {
    DrawRecord r = Arc(130, 5, -5, 12.5f, 30.5f, 100.25f);
    r.Value[8] = 0.5f;
    r.Value[9] = 1.25f;
    r.Side = -1;
    WorkingTool(r, "E", 10, 5, 20);
    r.ToolA.ToolAngle = 40;
    r.Count[2] = 1;
    r.Value[15] = 50;
    r.Value[12] = 10;
    r.LeadIn = LeadSpec{-3, 5, 0, 0};
    r.LeadOut = LeadSpec{1, 4, 12, 0};
    BindRecord(Machine(), r);
    DrawRecord twice = r;
    ReverseArc(Machine(), twice);
    ReverseArc(Machine(), twice);
    // The first hit's tool angle goes through two sums of singles: equal up to their rounding.
    EXPECT_NEAR(twice.Value[15], r.Value[15], 1e-4);
    twice.Value[15] = r.Value[15];
    EXPECT_EQ(Bytes(twice), Bytes(r));
}

TEST(ReverseArc, NonRotaryPunchTakesTheStartAngle) {
    // A punch that cannot rotate keeps no difference: its angle becomes the new start angle.
    DrawRecord r = Arc(130, 0, 0, 10, 30, 90);
    WorkingTool(r, "C", 10, 10, 10);
    r.ToolA.ToolAngle = 40;
    BindRecord(Machine(), r);
    ReverseArc(Machine(), r);
    EXPECT_EQ(r.ToolA.ToolAngle, 120.0f);
}

// ---- Idempotence ----------------------------------------------------------------------------------

TEST(BindLineArc, BoundTwiceIsTheSame) {
    std::vector<DrawRecord> records;
    DrawRecord line = Line(120, 1.25f, -3.5f, 80.5f, 40.125f, 89.1f, 26.9f);
    line.Value[3] = 2;
    line.Value[4] = 3.5f;
    line.LeadIn = LeadSpec{2, 4, 0, 0};
    line.LeadOut = LeadSpec{1, 3, 300, 0};
    records.push_back(line);
    DrawRecord worked = line;
    worked.Value[2] = 7.3f;
    WorkingTool(worked, "E", 10, 4, 20);
    records.push_back(worked);
    DrawRecord row = Made(220);
    row.Point[5] = {3, 4};
    row.Point[6] = {-70.25f, 33.5f};
    row.Value[2] = 6.1f;
    WorkingTool(row, "A", 6);
    records.push_back(row);
    DrawRecord arc = Arc(130, 10, 20, 35.5f, 200, -130);
    arc.Value[8] = 3;
    arc.Value[9] = -1;
    arc.Value[3] = 4.4f;
    arc.LeadIn = LeadSpec{-3, 6, 0, 0};
    records.push_back(arc);
    DrawRecord workedArc = arc;
    WorkingTool(workedArc, "A", 5);
    records.push_back(workedArc);
    DrawRecord ring = Arc(230, 0, 0, 40, 10, 360);
    ring.Value[3] = 3.3f;
    WorkingTool(ring, "C", 5, 5);
    records.push_back(ring);
    DrawRecord circle = Arc(151, 0, 0, 40, 10, -360);
    circle.LeadIn = LeadSpec{1, 50, 0, 0};
    records.push_back(circle);
    for (DrawRecord r : records) {
        BindRecord(Machine(), r);
        const std::string once = Bytes(r);
        BindRecord(Machine(), r);
        EXPECT_EQ(Bytes(r), once) << "code " << r.EntityCode;
    }
}

}  // namespace
