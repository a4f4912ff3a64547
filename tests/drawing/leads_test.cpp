// Lead geometry: straight and arc leads on lines, arcs and shapes, lead records and the room the
// leads take in the boxes. Expected values are worked out by hand in the comments.
#include <gtest/gtest.h>

#include "drawing/binding_support.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

using bindtest::Machine;
using bindtest::Made;
using bindtest::ExpectPoint;
using bindtest::Bytes;

constexpr double P = Pi;  // the system's pi, 3.14159265

// The line (0,0)-(100,0), bound.
DrawRecord XLine(const MachineState& m) {
    DrawRecord r = Made(120);
    r.Point[1] = {0, 0};
    r.Point[3] = {100, 0};
    r.Value[1] = 100;
    r.Value[10] = 0;
    r.Side = 1;
    BindRecord(m, r);
    return r;
}

DrawRecord Arc(float cx, float cy, float radius, float start, float sweep) {
    DrawRecord r = Made(130);
    r.Point[4] = {cx, cy};
    r.Value[1] = radius;
    r.Value[10] = start;
    r.Value[11] = sweep;
    return r;
}

// ---- Straight leads -------------------------------------------------------------------------------

TEST(LeadLineEnds, StraightLeadOfLengthZeroIsALeadRecordFromAPointToItself) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{1, 0, 45, 0};
    DrawRecord lead;
    MakeLeadRecord(m, 1, e, lead);
    EXPECT_EQ(lead.EntityCode, 120);
    EXPECT_EQ(lead.EntityName.Trimmed(), "Line Profile");
    ExpectPoint(lead.Point[1], 0, 0, 0);
    ExpectPoint(lead.Point[3], 0, 0, 0);
    EXPECT_EQ(lead.Value[1], 0.0f);
    EXPECT_EQ(lead.Value[10], 225.0f);  // 45 + 180: the head travels towards the part
    EXPECT_EQ(lead.Count[8], 1);
}

TEST(LeadLineEnds, LeadInOnATrimmedLineStartsFromTheTrimmedEnd) {
    // The line starts, trimmed by 10, at (10,0); a lead of 5 at 90 starts at (10,5).
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.Value[3] = 10;
    e.LeadIn = LeadSpec{1, 5, 90, 0};
    BindRecord(m, e);
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    LeadLineEnds(1, e, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(sx, 10, 1e-9);
    EXPECT_NEAR(sy, 5, 1e-9);
    EXPECT_NEAR(ex, 10, 1e-9);
    EXPECT_NEAR(ey, 0, 1e-9);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(angle, 270);
    DrawRecord lead;
    MakeLeadRecord(m, 1, e, lead);
    ExpectPoint(lead.Point[1], 10, 5);
    ExpectPoint(lead.Point[3], 10, 0);
    EXPECT_EQ(lead.Value[1], 5.0f);
    EXPECT_EQ(lead.Value[10], 270.0f);
    EXPECT_EQ(lead.Side, 1);
}

TEST(LeadLineEnds, LeadOutLeavesTheTrimmedEndAlongItsAngle) {
    // End trimmed by 20: (80,0); a lead of 5 at 270 ends at (80,-5).
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.Value[4] = 20;
    e.LeadOut = LeadSpec{-1, 5, 270, 0};
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    LeadLineEnds(2, e, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(sx, 80, 1e-9);
    EXPECT_NEAR(sy, 0, 1e-9);
    EXPECT_NEAR(ex, 80, 1e-9);
    EXPECT_NEAR(ey, -5, 1e-9);
    EXPECT_EQ(angle, 270);
}

TEST(LeadLineEnds, ArcLeadIsNoStraightLead) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{2, 5, 90, 0};
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    LeadLineEnds(1, e, sx, sy, ex, ey, length, angle);
    EXPECT_EQ(sx, ex);
    EXPECT_EQ(sy, ey);
}

TEST(LeadLineEnds, LeadOnATrimmedArcMeetsItAtTheTrimmedStart) {
    // Radius 10 from 0 over 90, start trim 1: 5.72958 degrees, kept as 5.730; at radius 10:
    // (10 cos 5.73, 10 sin 5.73) = (9.95004, 0.99841) -> (9.9500, 0.9984).
    const MachineState m = Machine();
    DrawRecord e = Arc(0, 0, 10, 0, 90);
    e.Value[8] = 1;
    e.LeadIn = LeadSpec{1, 5, 0, 0};
    BindRecord(m, e);
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    LeadLineEnds(1, e, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(ex, 9.9500, 1e-9);
    EXPECT_NEAR(ey, 0.9984, 1e-9);
    EXPECT_NEAR(sx, 14.95, 1e-9);
    EXPECT_NEAR(sy, 0.9984, 1e-9);
}

TEST(ShapeLeadEnds, LeadsMeetEachShapeAtItsStartPoint) {
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    DrawRecord shape = Made(156);
    shape.Value[1] = 40;
    shape.Value[2] = 20;
    shape.LeadIn = LeadSpec{1, 5, 0, 0};
    // Rectangle 40 by 20 at 0: the middle of the right side (20,0); the lead starts at (25,0).
    ShapeLeadEnds(1, shape, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(ex, 20, 1e-9);
    EXPECT_NEAR(ey, 0, 1e-9);
    EXPECT_NEAR(sx, 25, 1e-9);
    EXPECT_EQ(angle, 180);
    // Turned by 90: (0,20).
    shape.Value[10] = 90;
    ShapeLeadEnds(1, shape, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(ex, 0, 1e-9);
    EXPECT_NEAR(ey, 20, 1e-9);
    // Single-D of radius 10 and 15 across: the flat at 5, half length sqrt(100 - 25) = 8.6603.
    DrawRecord singleD = Made(152);
    singleD.Value[1] = 10;
    singleD.Value[2] = 15;
    ShapeLeadEnds(2, singleD, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(sx, 8.6603, 1e-9);
    EXPECT_NEAR(sy, 5, 1e-9);
    // Double-D of radius 10 and 12 across the flats: (sqrt(100 - 36), -6) = (8, -6).
    DrawRecord doubleD = Made(153);
    doubleD.Value[1] = 10;
    doubleD.Value[2] = 12;
    ShapeLeadEnds(1, doubleD, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(ex, 8, 1e-9);
    EXPECT_NEAR(ey, -6, 1e-9);
    // Circle of radius 10 from 30 degrees: (8.6603, 5).
    DrawRecord circle = Made(151);
    circle.Value[1] = 10;
    circle.Value[10] = 30;
    ShapeLeadEnds(1, circle, sx, sy, ex, ey, length, angle);
    EXPECT_NEAR(ex, 8.6603, 1e-9);
    EXPECT_NEAR(ey, 5, 1e-9);
}

// ---- Lead records -------------------------------------------------------------------------------

TEST(MakeLeadRecord, LeadOutTakesTheEntitysAfterAndTheEntityIsNotChanged) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.CarryWord1 = 7;
    e.CarryWord2 = 8;
    e.ToolA.Present = -1;
    e.ToolA.Letter = "P";
    e.ToolA.WorkType = 1;
    e.After = AfterAction{2, 1.5f};
    e.LeadIn = LeadSpec{1, 5, 180, 0};
    e.LeadOut = LeadSpec{1, 5, 0, 0};
    const std::string before = Bytes(e);
    DrawRecord in;
    DrawRecord out;
    MakeLeadRecord(m, 1, e, in);
    MakeLeadRecord(m, 2, e, out);
    EXPECT_EQ(Bytes(e), before);
    EXPECT_EQ(in.After.ActionCode, 0);
    EXPECT_EQ(out.After.ActionCode, 2);
    EXPECT_EQ(out.After.ActionValue, 1.5f);
    EXPECT_EQ(out.Count[8], 2);
    for (const DrawRecord* lead : {&in, &out}) {
        EXPECT_EQ(lead->CarryWord1, 7);
        EXPECT_EQ(lead->CarryWord2, 8);
        EXPECT_EQ(lead->ToolA.Letter.Text(), "P");
        EXPECT_EQ(lead->LeadIn.LeadKind, 0);
        EXPECT_EQ(lead->LeadOut.LeadKind, 0);
    }
    // The lead-out runs from the end (100,0) to (105,0).
    ExpectPoint(out.Point[1], 100, 0);
    ExpectPoint(out.Point[3], 105, 0);
    ExpectPoint(out.Extent[2], 105, 0);
}

TEST(MakeLeadRecord, NoLeadGivesAnEmptyRecord) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    DrawRecord lead = e;
    MakeLeadRecord(m, 1, e, lead);
    EXPECT_EQ(Bytes(lead), Bytes(DrawRecord{}));
    e.LeadIn = LeadSpec{1, 5, 0, 0};
    MakeLeadRecord(m, 3, e, lead);
    EXPECT_EQ(lead.EntityCode, 0);
}

TEST(MakeLeadRecord, LeadRecordMayBeMadeInTheEntitysOwnRecord) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.LeadOut = LeadSpec{1, 5, 90, 0};
    MakeLeadRecord(m, 2, e, e);
    EXPECT_EQ(e.Count[8], 2);
    ExpectPoint(e.Point[1], 100, 0);
    ExpectPoint(e.Point[3], 100, 5);
}

TEST(MakeLeadRecord, ArcLeadOnALineIsAQuarterArcTangentToIt) {
    // TurnSense 0, lead-in of kind -2 and radius 5 at (0,0), travelling along 0: the centre lies
    // at the tangent less 90, (0,-5); the meeting point is at 90 from it; a clockwise quarter
    // from 180: the lead starts at (-5,-5). Side: ArcTurn(1, -90) with TurnSense 0 = 1.
    const MachineState m = Machine(0);
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{-2, 5, 0, 0};
    DrawRecord lead;
    MakeLeadRecord(m, 1, e, lead);
    EXPECT_EQ(lead.EntityCode, 130);
    EXPECT_EQ(lead.EntityName.Trimmed(), "Arc Profile");
    ExpectPoint(lead.Point[4], 0, -5);
    EXPECT_EQ(lead.Value[1], 5.0f);
    EXPECT_EQ(lead.Value[10], 180.0f);
    EXPECT_EQ(lead.Value[11], -90.0f);
    ExpectPoint(lead.Point[1], -5, -5);
    ExpectPoint(lead.Point[3], 0, 0);
    EXPECT_EQ(lead.Side, 1);
    EXPECT_EQ(lead.Count[8], 1);
}

TEST(MakeLeadRecord, ArcLeadWithTurnSenseOneIsTheMirror) {
    // The centre at the tangent plus 90, (0,5); counter-clockwise from 180 to 270.
    const MachineState m = Machine(1);
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{-2, 5, 0, 0};
    LeadArc arc;
    LeadArcData(m, 1, e, arc);
    EXPECT_NEAR(arc.CentreX, 0, 1e-9);
    EXPECT_NEAR(arc.CentreY, 5, 1e-9);
    EXPECT_EQ(arc.StartAngle, 180);
    EXPECT_EQ(arc.Sweep, 90);
    EXPECT_NEAR(arc.StartX, -5, 1e-9);
    EXPECT_NEAR(arc.StartY, 5, 1e-9);
}

TEST(MakeLeadRecord, LeadOutOfTheSameSignLiesOnTheSameSide) {
    // Lead-out of kind -2 at (100,0), TurnSense 0: centre (100,-5), from 90 over -90 to (105,-5).
    const MachineState m = Machine(0);
    DrawRecord e = XLine(m);
    e.LeadOut = LeadSpec{-2, 5, 0, 0};
    LeadArc arc;
    LeadArcData(m, 2, e, arc);
    EXPECT_NEAR(arc.CentreX, 100, 1e-9);
    EXPECT_NEAR(arc.CentreY, -5, 1e-9);
    EXPECT_EQ(arc.StartAngle, 90);
    EXPECT_EQ(arc.Sweep, -90);
    EXPECT_NEAR(arc.StartX, 100, 1e-9);
    EXPECT_NEAR(arc.StartY, 0, 1e-9);
    EXPECT_NEAR(arc.EndX, 105, 1e-9);
    EXPECT_NEAR(arc.EndY, -5, 1e-9);
}

TEST(MakeLeadRecord, HalfCircleLeadSweepsOneEighty) {
    const MachineState m = Machine(0);
    DrawRecord e = XLine(m);
    e.LeadOut = LeadSpec{3, 10, 0, 0};
    LeadArc arc;
    LeadArcData(m, 2, e, arc);
    // Kind +3, TurnSense 0: centre to the left, (100,10); from 270 over +180 to (100,20).
    EXPECT_NEAR(arc.CentreY, 10, 1e-9);
    EXPECT_EQ(arc.Sweep, 180);
    EXPECT_NEAR(arc.EndX, 100, 1e-9);
    EXPECT_NEAR(arc.EndY, 20, 1e-9);
}

TEST(MakeLeadRecord, ArcLeadOnACounterClockwiseArc) {
    // Arc of radius 10 from 0 over 90: at (10,0) it runs along 90. Lead-in kind 2, radius 5,
    // TurnSense 0: centre at the tangent plus 90 = 180 from the meeting point: (5,0). The
    // meeting point is at 0 from the centre; a counter-clockwise quarter from 270: starts (5,-5).
    const MachineState m = Machine(0);
    DrawRecord e = Arc(0, 0, 10, 0, 90);
    e.LeadIn = LeadSpec{2, 5, 0, 0};
    BindRecord(m, e);
    LeadArc arc;
    LeadArcData(m, 1, e, arc);
    EXPECT_NEAR(arc.CentreX, 5, 1e-9);
    EXPECT_NEAR(arc.CentreY, 0, 1e-9);
    EXPECT_EQ(arc.StartAngle, 270);
    EXPECT_EQ(arc.Sweep, 90);
    EXPECT_NEAR(arc.StartX, 5, 1e-9);
    EXPECT_NEAR(arc.StartY, -5, 1e-9);
}

TEST(MakeLeadRecord, ArcLeadOnAClockwiseArc) {
    // Arc of radius 10 from 90 over -90: at (0,10) it runs along 0. Lead-in kind 2, TurnSense 0:
    // centre at 90 from the meeting point, (0,15); from 180 over +90: starts (-5,15).
    const MachineState m = Machine(0);
    DrawRecord e = Arc(0, 0, 10, 90, -90);
    e.Side = 1;
    e.LeadIn = LeadSpec{2, 5, 0, 0};
    BindRecord(m, e);
    LeadArc arc;
    LeadArcData(m, 1, e, arc);
    EXPECT_NEAR(arc.CentreX, 0, 1e-9);
    EXPECT_NEAR(arc.CentreY, 15, 1e-9);
    EXPECT_EQ(arc.StartAngle, 180);
    EXPECT_NEAR(arc.StartX, -5, 1e-9);
    EXPECT_NEAR(arc.StartY, 15, 1e-9);
    // The lead record's side: the entity turns ArcTurn(1, -90) = 1 (TurnSense 0), the lead
    // ArcTurn(1, +90) = -1.
    DrawRecord lead;
    MakeLeadRecord(m, 1, e, lead);
    EXPECT_EQ(lead.Side, -1);
}

// Every arc lead, on lines and arcs of both turning senses, both conventions, both kinds and
// both signs, is tangent to its entity at the meeting point: its centre lies at its radius from
// the point, square to the entity's direction there, and the lead runs along that direction
// where it meets the entity.
TEST(LeadArcData, EveryArcLeadIsTangentToItsEntity) {
    struct Entity {
        DrawRecord record;
        double startX, startY, startDirection;
        double endX, endY, endDirection;
    };
    std::vector<Entity> entities;
    {
        DrawRecord line = Made(120);
        line.Point[1] = {10, 20};
        line.Point[3] = {10 + static_cast<float>(50 * std::cos(30 * P / 180)),
                         20 + static_cast<float>(50 * std::sin(30 * P / 180))};
        line.Value[1] = 50;
        line.Value[10] = 30;
        entities.push_back({line, 10, 20, 30, line.Point[3].X, line.Point[3].Y, 30});
    }
    // Counter-clockwise arc from 0 to 90, radius 10: (10,0) going 90, (0,10) going 180.
    entities.push_back({Arc(0, 0, 10, 0, 90), 10, 0, 90, 0, 10, 180});
    // Clockwise arc from 90 to 0: (0,10) going 0, (10,0) going 270.
    entities.push_back({Arc(0, 0, 10, 90, -90), 0, 10, 0, 10, 0, 270});
    for (int16_t turnSense : {0, 1}) {
        const MachineState m = Machine(turnSense);
        for (Entity entity : entities) {
            for (int16_t kind : {2, -2, 3, -3}) {
                for (int which : {1, 2}) {
                    DrawRecord e = entity.record;
                    e.LeadIn = LeadSpec{kind, 4, 0, 0};
                    e.LeadOut = LeadSpec{kind, 4, 0, 0};
                    BindRecord(m, e);
                    LeadArc arc;
                    LeadArcData(m, which, e, arc);
                    const double meetX = which == 1 ? entity.startX : entity.endX;
                    const double meetY = which == 1 ? entity.startY : entity.endY;
                    const double direction = which == 1 ? entity.startDirection : entity.endDirection;
                    SCOPED_TRACE("code " + std::to_string(e.EntityCode) + " TurnSense " + std::to_string(turnSense) +
                                 " kind " + std::to_string(kind) + " which " + std::to_string(which));
                    // At the radius from the meeting point, square to the direction.
                    const double cx = arc.CentreX - meetX;
                    const double cy = arc.CentreY - meetY;
                    EXPECT_NEAR(std::hypot(cx, cy), 4, 1e-3);
                    const double ux = std::cos(direction * P / 180);
                    const double uy = std::sin(direction * P / 180);
                    EXPECT_NEAR(cx * ux + cy * uy, 0, 1e-3);
                    // The lead's own end at the meeting point, and its direction of travel there.
                    const double meetAngle = which == 1 ? arc.StartAngle + arc.Sweep : arc.StartAngle;
                    double px = 0, py = 0;
                    PolarToXY(arc.Radius, meetAngle, px, py);
                    EXPECT_NEAR(arc.CentreX + px, meetX, 1e-3);
                    EXPECT_NEAR(arc.CentreY + py, meetY, 1e-3);
                    const double travel = Norm360(meetAngle + (arc.Sweep > 0 ? 90 : -90));
                    EXPECT_LT(std::fabs(Norm360(travel - direction + 180) - 180), 1e-3)
                        << "travel " << travel << " direction " << direction;
                    EXPECT_EQ(std::fabs(arc.Sweep), std::abs(kind) == 2 ? 90.0 : 180.0);
                    // The lead record, bound, ends (lead-in) or starts (lead-out) there.
                    DrawRecord lead;
                    MakeLeadRecord(m, which, e, lead);
                    const SinglePoint& at = which == 1 ? lead.Point[3] : lead.Point[1];
                    ExpectPoint(at, meetX, meetY, 1e-3);
                }
            }
        }
    }
}

TEST(LeadArcData, ReversedEntityHasItsLeadsExchangedAndTheArcLeadSignFlipped) {
    // The lead-in of kind -2 on (0,0)-(100,0), TurnSense 0, has its centre at (0,-5) and starts
    // at (-5,-5). Reversed, it is the lead-out of kind +2 at the end (0,0) of a line going 180:
    // centre at the tangent plus 90 = 270 from (0,0), the same (0,-5), ending at (-5,-5).
    for (int16_t turnSense : {0, 1}) {
        const MachineState m = Machine(turnSense);
        DrawRecord e = XLine(m);
        e.LeadIn = LeadSpec{-2, 5, 0, 4};
        e.LeadOut = LeadSpec{1, 7, 300, 9};
        BindRecord(m, e);
        LeadArc before;
        LeadArcData(m, 1, e, before);
        DrawRecord reversed = e;
        ReverseLine(m, reversed);
        EXPECT_EQ(reversed.LeadOut.LeadKind, 2);
        EXPECT_EQ(reversed.LeadOut.LeadSpare, 4);
        EXPECT_EQ(reversed.LeadIn.LeadKind, 1);
        EXPECT_EQ(reversed.LeadIn.LeadAngle, 300.0f);
        LeadArc after;
        LeadArcData(m, 2, reversed, after);
        EXPECT_NEAR(after.CentreX, before.CentreX, 1e-9);
        EXPECT_NEAR(after.CentreY, before.CentreY, 1e-9);
        EXPECT_NEAR(after.EndX, before.StartX, 1e-9);
        EXPECT_NEAR(after.EndY, before.StartY, 1e-9);
        EXPECT_EQ(after.Sweep, -before.Sweep);
        // The straight lead stays where it was too: from (100,0) at 300.
        double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
        LeadLineEnds(1, reversed, sx, sy, ex, ey, length, angle);
        EXPECT_NEAR(ex, 100, 1e-9);
        EXPECT_NEAR(sx, 100 + 7 * std::cos(300 * P / 180), 1e-4);
    }
}

TEST(LeadArcData, ReversedArcKeepsItsArcLeadInPlace) {
    // Arc of radius 10 from 0 over 90 with a lead-in of kind 2; reversed, the lead is the
    // lead-out of kind -2 at the same point, with the same centre and far end.
    for (int16_t turnSense : {0, 1}) {
        const MachineState m = Machine(turnSense);
        DrawRecord e = Arc(0, 0, 10, 0, 90);
        e.LeadIn = LeadSpec{2, 5, 0, 0};
        BindRecord(m, e);
        LeadArc before;
        LeadArcData(m, 1, e, before);
        ReverseArc(m, e);
        EXPECT_EQ(e.LeadOut.LeadKind, -2);
        LeadArc after;
        LeadArcData(m, 2, e, after);
        EXPECT_NEAR(after.CentreX, before.CentreX, 1e-9);
        EXPECT_NEAR(after.CentreY, before.CentreY, 1e-9);
        EXPECT_NEAR(after.EndX, before.StartX, 1e-9);
        EXPECT_NEAR(after.EndY, before.StartY, 1e-9);
    }
}

// ---- Boxes ---------------------------------------------------------------------------------------

TEST(LeadBox, StraightLeadsWidenTheBoxesToTheirFarEnds) {
    // Line (0,0)-(100,0): Extent (0,0)-(100,0), Margin (-5,-5)-(105,5). A lead-in of 20 at 90
    // reaches (0,20); a lead-out of 30 at 0 reaches (130,0).
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{1, 20, 90, 0};
    e.LeadOut = LeadSpec{-1, 30, 0, 0};
    BindRecord(m, e);
    ExpectPoint(e.Extent[1], 0, 0);
    ExpectPoint(e.Extent[2], 130, 20);
    ExpectPoint(e.Margin[1], -5, -5);
    ExpectPoint(e.Margin[2], 130, 20);
}

TEST(LeadBox, ArcLeadsWidenTheBoxesWithTheirFarEndAndTheirCircle) {
    // Lead-in kind -2, radius 5, TurnSense 0: centre (0,-5), from (-5,-5) clockwise to (0,0).
    // Lead-out kind 3, radius 10: centre (100,10), from 270 over 180 to (100,20), passing 0 at
    // (110,10).
    const MachineState m = Machine(0);
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{-2, 5, 0, 0};
    e.LeadOut = LeadSpec{3, 10, 0, 0};
    BindRecord(m, e);
    ExpectPoint(e.Extent[1], -5, -5);
    ExpectPoint(e.Extent[2], 110, 20);
    ExpectPoint(e.Margin[1], -5, -5);
    ExpectPoint(e.Margin[2], 110, 20);
}

TEST(LeadBox, LeadOfLengthZeroLeavesTheBoxes) {
    const MachineState m = Machine();
    DrawRecord e = XLine(m);
    e.LeadIn = LeadSpec{1, 0, 90, 0};
    BindRecord(m, e);
    ExpectPoint(e.Extent[2], 100, 0);
    ExpectPoint(e.Margin[2], 105, 5);
}

}  // namespace
