// The pieces of the kerf pass: the offsets of lines and arcs, the meetings of two offset pieces,
// the corner arc and the trims.
#include "kerf/kerf.h"

#include <gtest/gtest.h>

#include <cmath>

#include "common/fault.h"
#include "kerf/kerf_support.h"

using namespace tvx;
using namespace tvx::kerftest;

// ---- OffsetLine ---------------------------------------------------------------------------------

TEST(OffsetLine, SideMinusOneMovesTheLineToTheLeftOfItsDirection) {
    DrawRecord r = Line(0, 0, 10, 0, -1);
    OffsetLine(Machine(), r, KerfRadius);
    ExpectEnds(r, 0, 3.175, 10, 3.175);
}

TEST(OffsetLine, SideOneMovesTheLineToTheRightOfItsDirection) {
    DrawRecord r = Line(0, 0, 10, 0, 1);
    OffsetLine(Machine(), r, KerfRadius);
    ExpectEnds(r, 0, -3.175, 10, -3.175);
}

TEST(OffsetLine, ADiagonalLineMovesSquareToItsDirection) {
    DrawRecord r = Line(0, 0, 3, 4, 1);
    OffsetLine(Machine(), r, 5);
    // Direction 53.13 degrees; to the right is -36.87 degrees: (4, -3) for a distance of 5.
    ExpectEnds(r, 4, -3, 7, 1, 1e-3);
}

TEST(OffsetLine, SideZeroLeavesTheRecordUnchanged) {
    DrawRecord r = Line(0, 0, 10, 0, 0);
    r.EntityName = "Something";
    r.FollowFlag = -1;
    const std::string before = Bytes(r);
    OffsetLine(Machine(), r, KerfRadius);
    EXPECT_EQ(Bytes(r), before);
}

TEST(OffsetLine, ASideOtherThanOneOrMinusOneKeepsThePlaceButBecomesALineProfileWithoutSide) {
    DrawRecord r = Line(1, 2, 11, 2, 2);
    r.EntityName = "Something";
    r.FollowFlag = -1;
    OffsetLine(Machine(), r, KerfRadius);
    EXPECT_EQ(r.EntityCode, 120);
    EXPECT_EQ(r.EntityName.Trimmed(), "Line Profile");
    ExpectEnds(r, 1, 2, 11, 2, 0);
    EXPECT_EQ(r.Side, 0);
    EXPECT_EQ(r.FollowFlag, 0);
}

TEST(OffsetLine, TheOffsetFormIsALineProfileWithItsLengthAndDirectionAsTheyWere) {
    DrawRecord r = Line(0, 0, 0, 10, 1);
    r.EntityCode = 521;
    r.EntityName = "Something";
    r.FollowFlag = -1;
    r.Value[1] = 12.5f;  // not the length of its ends: kept as it is
    r.Value[10] = 90;
    OffsetLine(Machine(), r, KerfRadius);
    EXPECT_EQ(r.EntityCode, 120);
    EXPECT_EQ(r.EntityName.Trimmed(), "Line Profile");
    ExpectEnds(r, 3.175, 0, 3.175, 10);
    EXPECT_EQ(r.Value[1], 12.5f);
    EXPECT_EQ(r.Value[10], 90.0f);
    EXPECT_EQ(r.Side, 0);
    EXPECT_EQ(r.FollowFlag, 0);
}

// ---- OffsetArc ----------------------------------------------------------------------------------

TEST(OffsetArc, ATurnAwayFromTheCentreGrowsTheRadius) {
    // TurnSense 1: Side 1 on a counter-clockwise arc turns +1.
    const MachineState m = Machine(1);
    DrawRecord a = Arc(5, 6, 10, 0, 90, 1, m);
    int16_t flag = 0;
    OffsetArc(m, a, KerfRadius, flag);
    EXPECT_EQ(a.Value[1], ToSingle(13.175));
    EXPECT_EQ(flag, 0);
}

TEST(OffsetArc, ATurnTowardsTheCentreShrinksTheRadius) {
    // TurnSense 0: Side 1 on a counter-clockwise arc turns -1.
    const MachineState m = Machine(0);
    DrawRecord a = Arc(5, 6, 10, 0, 90, 1, m);
    int16_t flag = 0;
    OffsetArc(m, a, KerfRadius, flag);
    EXPECT_EQ(a.Value[1], ToSingle(10 - 3.175));
    EXPECT_EQ(flag, 0);
}

TEST(OffsetArc, TheTurnFollowsTheSenseOfTheSweepInBothConventions) {
    struct Case {
        int16_t TurnSense;
        int16_t Side;
        double Sweep;
        double Radius;
    };
    const Case cases[] = {
        {1, 1, 90, 13.175},   {1, -1, 90, 6.825},   {1, 1, -90, 6.825},  {1, -1, -90, 13.175},
        {0, 1, 90, 6.825},    {0, -1, 90, 13.175},  {0, 1, -90, 13.175}, {0, -1, -90, 6.825},
        {5, 1, 90, 6.825},  // any TurnSense but 1 is the other convention
    };
    for (const Case& c : cases) {
        const MachineState m = Machine(c.TurnSense);
        DrawRecord a = Arc(0, 0, 10, 30, c.Sweep, c.Side, m);
        int16_t flag = 0;
        OffsetArc(m, a, KerfRadius, flag);
        EXPECT_NEAR(a.Value[1], c.Radius, 1e-5) << c.TurnSense << " " << c.Side << " " << c.Sweep;
    }
}

TEST(OffsetArc, TheOffsetFormIsAnArcProfileAboutTheSameCentreWithTheSameAngles) {
    const MachineState m = Machine(1);
    DrawRecord a = Arc(5, 6, 10, 30, -45, -1, m);
    a.EntityCode = 230;
    a.EntityName = "Something";
    int16_t flag = 0;
    OffsetArc(m, a, KerfRadius, flag);
    EXPECT_EQ(a.EntityCode, 130);
    EXPECT_EQ(a.EntityName.Trimmed(), "Arc Profile");
    ExpectPoint(a.Point[4], 5, 6, 0);
    EXPECT_EQ(a.Value[10], 30.0f);
    EXPECT_EQ(a.Value[11], -45.0f);
    EXPECT_EQ(a.Side, 0);
    EXPECT_EQ(a.Value[1], ToSingle(13.175));
    // Its ends follow the new radius.
    ExpectPoint(a.Point[1], 5 + 13.175 * std::cos(Pi / 6), 6 + 13.175 * std::sin(Pi / 6), 1e-3);
}

TEST(OffsetArc, SideZeroLeavesTheRecordUnchanged) {
    DrawRecord a = Arc(5, 6, 2, 30, 90, 0);
    a.EntityName = "Something";
    const std::string before = Bytes(a);
    int16_t flag = 0;
    OffsetArc(Machine(), a, KerfRadius, flag);
    EXPECT_EQ(Bytes(a), before);
    EXPECT_EQ(flag, 0);
}

TEST(OffsetArc, ASideOtherThanOneOrMinusOneKeepsTheRadiusButBecomesAnArcProfileWithoutSide) {
    DrawRecord a = Arc(5, 6, 10, 30, 90, 3);
    int16_t flag = 0;
    OffsetArc(Machine(), a, KerfRadius, flag);
    EXPECT_EQ(a.EntityCode, 130);
    EXPECT_EQ(a.Value[1], 10.0f);
    EXPECT_EQ(a.Side, 0);
    EXPECT_EQ(flag, 0);
}

TEST(OffsetArc, AnInsideArcThatCollapsesSetsTheFlagAndKeepsItsOldRadius) {
    const MachineState m = Machine(0);
    DrawRecord a = Arc(5, 6, 2, 0, 90, 1, m);
    int16_t flag = 0;
    OffsetArc(m, a, KerfRadius, flag);
    EXPECT_EQ(flag, -1);
    EXPECT_EQ(a.Value[1], 2.0f);
    EXPECT_EQ(a.EntityCode, 130);
    EXPECT_EQ(a.Side, 0);
}

TEST(OffsetArc, ARadiusExactlyEqualToTheOffsetCollapses) {
    const MachineState m = Machine(0);
    DrawRecord a = Arc(5, 6, 4, 0, 90, 1, m);
    int16_t flag = 0;
    OffsetArc(m, a, 4, flag);
    EXPECT_EQ(flag, -1);
    EXPECT_EQ(a.Value[1], 4.0f);
    // The kerf radius itself: the single 3.175 lies below the double, so it collapses too.
    DrawRecord b = Arc(5, 6, 3.175, 0, 90, 1, m);
    int16_t second = 0;
    OffsetArc(m, b, KerfRadius, second);
    EXPECT_EQ(second, -1);
}

TEST(OffsetArc, TheErrorFlagIsKeptByAnArcThatDoesNotCollapse) {
    const MachineState m = Machine(0);
    DrawRecord a = Arc(5, 6, 10, 0, 90, 1, m);
    int16_t flag = -1;
    OffsetArc(m, a, KerfRadius, flag);
    EXPECT_EQ(flag, -1);
}

// ---- MeetEntities: line and line ----------------------------------------------------------------

namespace {

DrawRecord Piece(double x1, double y1, double x2, double y2) { return Line(x1, y1, x2, y2, 0); }

void ExpectMeeting(const Meeting& m, int16_t cls, double x, double y, double tolerance = 1e-9) {
    EXPECT_EQ(m.Class, cls);
    EXPECT_NEAR(m.X, x, tolerance);
    EXPECT_NEAR(m.Y, y, tolerance);
}

// Both searches give the same meeting.
Meeting Meet(const DrawRecord& first, const DrawRecord& second) {
    const Meeting boxed = MeetEntities(first, second, MeetingSearch::BoxedRuns);
    const Meeting every = MeetEntitiesReference(first, second);
    EXPECT_EQ(boxed.Class, every.Class);
    EXPECT_EQ(boxed.X, every.X);
    EXPECT_EQ(boxed.Y, every.Y);
    return boxed;
}

}  // namespace

TEST(MeetLines, ParallelLinesMeetNowhere) {
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(0, 5, 10, 5)), 0, -999, -999, 0);
}

TEST(MeetLines, CollinearLinesHaveACrossProductOfZero) {
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(10, 0, 20, 0)), 0, -999, -999, 0);
}

TEST(MeetLines, LinesCrossingInsideBothAreClassTwo) {
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(5, -5, 5, 5)), 2, 5, 0);
}

TEST(MeetLines, AParameterOfMinusOneHalfCountsAsInside) {
    // s = -0.5 along the first, t = 0.5 along the second: no box test for two lines.
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(-5, -5, -5, 5)), 2, -5, 0);
}

TEST(MeetLines, AParameterBeyondOneAlongTheFirstIsClassOne) {
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(15, -5, 15, 5)), 1, 15, 0);
}

TEST(MeetLines, AParameterBeyondOneAlongTheSecondIsClassOne) {
    // t = 2.5.
    ExpectMeeting(Meet(Piece(0, 0, 10, 0), Piece(5, -25, 5, -15)), 1, 5, 0);
}

// ---- MeetEntities: with arcs --------------------------------------------------------------------

namespace {

// The slanted line x = 5 + 0.05 y crosses the circle of radius 10 about the origin twice, at
// angles that are no multiple of a tenth of a degree (so away from the ends of the chords).
constexpr double CrossingA = 1.0025;
const double UpperY = (-0.5 + std::sqrt(0.25 + 4 * CrossingA * 75)) / (2 * CrossingA);
const double LowerY = (-0.5 - std::sqrt(0.25 + 4 * CrossingA * 75)) / (2 * CrossingA);

}  // namespace

TEST(MeetLineArc, TheArcIsWalkedFromItsStart) {
    // The half circle from 270 to 90: the crossing below (near 297 degrees, by the arc's start)
    // comes first.
    const DrawRecord line = Piece(4, -20, 6, 20);
    const DrawRecord arc = Arc(0, 0, 10, 270, 180, 0);
    ExpectMeeting(Meet(line, arc), 2, 5 + 0.05 * LowerY, LowerY, 1e-4);
}

TEST(MeetArcLine, TheArcIsWalkedBackFromItsEnd) {
    const DrawRecord arc = Arc(0, 0, 10, 270, 180, 0);
    const DrawRecord line = Piece(4, -20, 6, 20);
    ExpectMeeting(Meet(arc, line), 2, 5 + 0.05 * UpperY, UpperY, 1e-4);
}

TEST(MeetArcArc, TwoCrossingArcsMeetWhereTheCirclesCross) {
    const DrawRecord first = Arc(0, 0, 10, 0, 90, 0);
    const DrawRecord second = Arc(9.7, 0, 10, 90, 90, 0);
    ExpectMeeting(Meet(first, second), 2, 4.85, std::sqrt(100 - 4.85 * 4.85), 1e-4);
}

TEST(MeetArcArc, ArcsThatCrossAtTheEndsOfTheirChordsCanFallBetweenTheBoxes) {
    // The circles cross at 60 and 120 degrees, an end of a chord of each walk. The point
    // reckoned in double lies just below the single ends that bound the chords' boxes, and no
    // other pair meets inside: the walk ends on its last pair, class 1.
    const DrawRecord first = Arc(0, 0, 10, 0, 90, 0);
    const DrawRecord second = Arc(10, 0, 10, 90, 90, 0);
    EXPECT_EQ(Meet(first, second).Class, 1);
}

TEST(MeetLineArc, ALineThatMissesTheArcKeepsTheLastChordsPointAsClassOne) {
    // The line y = 20 lies above the quarter circle: every chord meets its extension outside.
    const DrawRecord line = Piece(-5, 20, 5, 20);
    const DrawRecord arc = Arc(0, 0, 10, 0, 90, 0);
    const Meeting m = Meet(line, arc);
    EXPECT_EQ(m.Class, 1);
    // The last chord runs from 89.9 to 90 degrees; its line meets y = 20 far to the left.
    const std::vector<Chord> chords = WalkChords(arc, false);
    ASSERT_EQ(chords.size(), 900u);
    const Chord& last = chords.back();
    const double s = (20 - last.Y1) / (last.Y2 - last.Y1);
    EXPECT_NEAR(m.Y, 20, 1e-9);
    const double x = last.X1 + s * (last.X2 - last.X1);
    EXPECT_NEAR(m.X, x, 1e-6 * std::fabs(x));
}

TEST(MeetLineArc, AnArcOfUnderOneDegreeHasNoChordsAndMeetsNothing) {
    const DrawRecord line = Piece(5, -20, 5, 20);
    const DrawRecord arc = Arc(0, 0, 5, 359.5, 0.9, 0);
    EXPECT_TRUE(WalkChords(arc, false).empty());
    ExpectMeeting(Meet(line, arc), 0, -999, -999, 0);
    ExpectMeeting(Meet(arc, line), 0, -999, -999, 0);
}

TEST(WalkChords, TenChordsToTheWholeDegreeInTheSenseOfTheArc) {
    EXPECT_EQ(ArcChordCount(90), 900);
    EXPECT_EQ(ArcChordCount(-1.99), 10);
    EXPECT_EQ(ArcChordCount(0.99), 0);
    EXPECT_EQ(ArcChordCount(725), 3600);
    EXPECT_EQ(ArcChordCount(-INFINITY), 3600);
    EXPECT_EQ(ArcChordCount(NAN), 0);
    const DrawRecord arc = Arc(0, 0, 10, 0, 2, 0);
    const std::vector<Chord> fromStart = WalkChords(arc, false);
    const std::vector<Chord> fromEnd = WalkChords(arc, true);
    ASSERT_EQ(fromStart.size(), 20u);
    ASSERT_EQ(fromEnd.size(), 20u);
    EXPECT_NEAR(fromStart.front().X1, 10, 1e-9);
    EXPECT_NEAR(fromStart.front().Y1, 0, 1e-9);
    // Back from the end: the last chord first, still running the way of the arc.
    EXPECT_EQ(fromEnd.front().X1, fromStart.back().X1);
    EXPECT_EQ(fromEnd.front().Y2, fromStart.back().Y2);
    EXPECT_GT(fromEnd.front().Y2, fromEnd.front().Y1);
}

TEST(WalkChords, AChordEndBeyondTheRangeOfASingleIsTheOverflowFault) {
    DrawRecord arc;
    arc.EntityCode = 130;
    arc.Point[4] = SinglePoint{3e38f, 0};
    arc.Value[1] = 3e38f;
    arc.Value[10] = 0;
    arc.Value[11] = 10;
    try {
        WalkChords(arc, false);
        FAIL() << "no fault";
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text.rfind("Overflow: single", 0), 0u) << e.Text;
    }
}

// ---- CornerArc ----------------------------------------------------------------------------------

namespace {

// A first piece ending at angle a and a second starting at angle b about (cx, cy), at distance
// KerfRadius.
void EndsAbout(double cx, double cy, double a, double b, DrawRecord& first, DrawRecord& second) {
    double x = 0;
    double y = 0;
    PolarToXY(KerfRadius, a, x, y);
    first = Line(cx - 5, cy + y, cx + x, cy + y, 0);
    PolarToXY(KerfRadius, b, x, y);
    second = Line(cx + x, cy + y, cx + x + 5, cy + y, 0);
}

}  // namespace

TEST(CornerArc, ASweepBeyondHalfATurnIsTakenTheShortWay) {
    DrawRecord first;
    DrawRecord second;
    DrawRecord out;
    EndsAbout(10, 20, 350, 10, first, second);  // 10 less 350: -340
    CornerArc(Machine(), first, second, 10, 20, KerfRadius, out);
    EXPECT_NEAR(out.Value[10], 350, 1e-4);
    EXPECT_NEAR(out.Value[11], 20, 1e-4);
    EndsAbout(10, 20, 10, 350, first, second);  // 340
    CornerArc(Machine(), first, second, 10, 20, KerfRadius, out);
    EXPECT_NEAR(out.Value[10], 10, 1e-4);
    EXPECT_NEAR(out.Value[11], -20, 1e-4);
}

TEST(CornerArc, AHalfTurnWhoseMiddleLiesAwayFromTheTangentKeepsItsSweep) {
    // A line running east (direction 0); the arc from 90 to 270 has its middle at 180.
    DrawRecord first = Line(0, 3.175, 10, 3.175, 0);
    DrawRecord second = Line(10, -3.175, 0, -3.175, 0);
    DrawRecord out;
    CornerArc(Machine(), first, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[10], 90.0f);
    EXPECT_EQ(out.Value[11], 180.0f);
}

TEST(CornerArc, AHalfTurnWhoseMiddleLiesWithinNinetyOfTheTangentIsReversed) {
    // A line running west (direction 180): the middle at 180 lies on the tangent.
    DrawRecord first = Line(20, 3.175, 10, 3.175, 0);
    DrawRecord second = Line(10, -3.175, 20, -3.175, 0);
    DrawRecord out;
    CornerArc(Machine(), first, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[10], 90.0f);
    EXPECT_EQ(out.Value[11], -180.0f);
}

TEST(CornerArc, AMiddleExactlyNinetyFromTheTangentCountsAsWithin) {
    // A line running north (direction 90), the middle at 180.
    DrawRecord first = Line(10, 3.175, 10, 3.175, 0);
    first.Value[10] = 90;
    DrawRecord second = Line(10, -3.175, 20, -3.175, 0);
    DrawRecord out;
    CornerArc(Machine(), first, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[11], -180.0f);
    // The same at direction 270.
    first.Value[10] = 270;
    CornerArc(Machine(), first, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[11], -180.0f);
}

TEST(CornerArc, TheTangentOfAnArcIsItsEndAngleTurnedByNinetyByItsSense) {
    DrawRecord second = Line(10, -3.175, 20, -3.175, 0);
    DrawRecord out;
    // Counter-clockwise, ending at 90: the tangent is 180, on the middle: reversed.
    DrawRecord ccw = Arc(10, 0, 3.175, 0, 90, 0);
    CornerArc(Machine(), ccw, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[10], 90.0f);
    EXPECT_EQ(out.Value[11], -180.0f);
    // Clockwise, ending at 90: the tangent is 0, away from the middle: kept.
    DrawRecord cw = Arc(10, 0, 3.175, 180, -90, 0);
    CornerArc(Machine(), cw, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[10], 90.0f);
    EXPECT_EQ(out.Value[11], 180.0f);
}

TEST(CornerArc, AnglesAndSweepAreRoundedToFourDecimals) {
    DrawRecord first;
    DrawRecord second;
    DrawRecord out;
    EndsAbout(0, 0, 12.345678, 101.23456, first, second);
    CornerArc(Machine(), first, second, 0, 0, KerfRadius, out);
    EXPECT_EQ(out.Value[10], ToSingle(12.3457));
    EXPECT_EQ(out.Value[11], ToSingle(RoundTo(101.2346 - 12.3457, 4)));
}

TEST(CornerArc, TheArcIsAnArcProfileAboutTheCornerOnACopyOfTheFirstPiece) {
    DrawRecord first = Line(0, 3.175, 10, 3.175, 0);
    first.CarryWord1 = 7;
    first.CarryWord2 = 8;
    first.ToolA.Present = -1;
    first.ToolA.Letter = "P";
    first.ToolA.ToolName = "LASER";
    first.ToolA.WorkType = 1;
    first.LeadIn.LeadKind = 1;
    first.LeadIn.LeadLength = 2;
    first.LeadOut.LeadKind = 1;
    first.LeadOut.LeadLength = 2;
    first.After.ActionCode = 2;
    first.After.ActionValue = 1.5f;
    first.FollowFlag = -1;
    first.Side = 1;
    const DrawRecord second = Line(13.175, 0, 13.175, -10, 0);
    DrawRecord out;
    CornerArc(Machine(), first, second, 10, 0, KerfRadius, out);
    EXPECT_EQ(out.EntityCode, 130);
    EXPECT_EQ(out.EntityName.Trimmed(), "Arc Profile");
    ExpectEnds(out, 10, 3.175, 13.175, 0);
    ExpectPoint(out.Point[4], 10, 0, 0);
    EXPECT_EQ(out.Value[1], ToSingle(KerfRadius));
    EXPECT_EQ(out.Value[10], 90.0f);
    EXPECT_EQ(out.Value[11], -90.0f);
    EXPECT_EQ(out.Side, 0);
    EXPECT_EQ(out.FollowFlag, 0);
    EXPECT_EQ(out.CarryWord1, 7);
    EXPECT_EQ(out.CarryWord2, 8);
    EXPECT_EQ(out.ToolA.ToolName.Trimmed(), "LASER");
    EXPECT_EQ(out.LeadIn.LeadKind, 0);
    EXPECT_EQ(out.LeadOut.LeadKind, 0);
    EXPECT_EQ(out.After.ActionCode, 0);
    EXPECT_EQ(out.After.ActionValue, 0.0f);
}

// ---- TrimLine and TrimArc -----------------------------------------------------------------------

TEST(TrimLine, TheEndMovesAndTheLengthAndDirectionFollow) {
    DrawRecord r = Line(0, 0, 10, 0, 0);
    r.FollowFlag = -1;
    TrimLine(Machine(), r, 8, 0, 2);
    ExpectEnds(r, 0, 0, 8, 0, 0);
    EXPECT_EQ(r.Value[1], 8.0f);
    EXPECT_EQ(r.Value[10], 0.0f);
    EXPECT_EQ(r.FollowFlag, 0);
    EXPECT_EQ(r.Side, 0);
}

TEST(TrimLine, TheStartMovesAndTheLengthAndDirectionFollow) {
    DrawRecord r = Line(0, 0, 10, 0, 0);
    TrimLine(Machine(), r, 7, -4, 1);
    ExpectEnds(r, 7, -4, 10, 0, 0);
    EXPECT_EQ(r.Value[1], 5.0f);
    EXPECT_NEAR(r.Value[10], 53.1301, 1e-3);
}

TEST(TrimArc, AMovedStartTakesItsAngleAndTheSweepFollows) {
    DrawRecord a = Arc(0, 0, 10, 0, 90, 0);
    double x = 0;
    double y = 0;
    PolarToXY(10, 30, x, y);
    TrimArc(Machine(), a, x, y, 1);
    EXPECT_NEAR(a.Value[10], 30, 1e-4);
    EXPECT_NEAR(a.Value[11], 60, 1e-4);
    ExpectPoint(a.Point[1], x, y, 1e-4);
    ExpectPoint(a.Point[3], 0, 10, 1e-4);
}

TEST(TrimArc, AMovedEndTakesItsAngleAndTheSweepFollows) {
    DrawRecord a = Arc(0, 0, 10, 0, 90, 0);
    double x = 0;
    double y = 0;
    PolarToXY(10, 45, x, y);
    TrimArc(Machine(), a, x, y, 2);
    EXPECT_EQ(a.Value[10], 0.0f);
    EXPECT_NEAR(a.Value[11], 45, 1e-4);
    ExpectPoint(a.Point[3], x, y, 1e-4);
}

TEST(TrimArc, ACounterClockwiseSweepBelowZeroGainsAFullTurn) {
    DrawRecord a = Arc(0, 0, 10, 350, 20, 0);
    double x = 0;
    double y = 0;
    PolarToXY(10, 5, x, y);
    TrimArc(Machine(), a, x, y, 2);  // 5 less 350: -345
    EXPECT_EQ(a.Value[10], 350.0f);
    EXPECT_NEAR(a.Value[11], 15, 1e-4);
}

TEST(TrimArc, AClockwiseSweepAboveZeroLosesAFullTurn) {
    DrawRecord a = Arc(0, 0, 10, 10, -20, 0);
    double x = 0;
    double y = 0;
    PolarToXY(10, 355, x, y);
    TrimArc(Machine(), a, x, y, 2);  // 355 less 10: 345
    EXPECT_EQ(a.Value[10], 10.0f);
    EXPECT_NEAR(a.Value[11], -15, 1e-4);
    DrawRecord b = Arc(0, 0, 10, 10, -20, 0);
    PolarToXY(10, 5, x, y);
    TrimArc(Machine(), b, x, y, 1);  // 350 less 5: 345
    EXPECT_NEAR(b.Value[10], 5, 1e-4);
    EXPECT_NEAR(b.Value[11], -15, 1e-4);
}
