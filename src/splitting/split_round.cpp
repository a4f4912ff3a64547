// The split routines of the round shapes: the circle (151) worked by a punch, and the Single-D
// (152), the Double-D (153) and the obround (154) as plain outlines, as outlines for a profiling
// head with straight leads of their own, and as rows of hits of a punch.
//
// Each shape's points are built by one function (SingleDPoints, DoubleDPoints, ObroundPoints);
// the plain, lead and punched forms only lay their segments on those points, in their own order.
// The obround's outline is walked from one of two corners: from the lower left (the plain and
// the punched outline) or, where a lead joins it in the middle of the right-hand end, from the
// upper right.
//
// Rounding: made coordinates to 4 decimals, angles and sweeps to 3; the middle Point[2] of a
// line is not rounded (SetLineSegment).
//
// Punched paths: a shape of Side 1 or more is worked from outside, any other from inside; s is
// 1 outside and -1 inside. A worked line takes the Side LineSide gives for s, a worked arc s
// itself, and inside both carry FollowFlag -1. The hit counts are those of split_output.h: a
// path shorter than its pitch has one hit, and its pitch or step would divide by 0, which ends
// the run as a split fault.
#include <cmath>
#include <cstdint>
#include <string>

#include "common/numeric.h"
#include "common/numtext.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

namespace tvx {
namespace {

// A worked shape is inside unless its Side is 1 or more.
bool IsInside(const DrawRecord& shape) { return shape.Side < 1; }

// s: 1 outside, -1 inside.
int16_t WorkedSide(const DrawRecord& shape) { return IsInside(shape) ? -1 : 1; }

double SignOf(double value) { return value > 0 ? 1.0 : (value < 0 ? -1.0 : 0.0); }

// The length of a made line from s to e, as SetLineSegment stores it.
double LengthOf(const PlanePoint& s, const PlanePoint& e) {
    double length = 0;
    double direction = 0;
    XYToPolar(e.X - s.X, e.Y - s.Y, length, direction);
    return RoundTo(length, 4);
}

// The centre of the tool's path about an arc of nominal radius R: R - T/2 inside, R + T/2
// outside, T being the tool's Size[2].
double ToolPathRadius(const DrawRecord& shape, double radius) {
    const double half = shape.ToolA.Size[2] / 2.0;
    return IsInside(shape) ? radius - half : radius + half;
}

// ---- Points of the shapes --------------------------------------------------------------------

// The half length of a flat at `offset` from the centre of a circle of radius r. A flat that
// misses the circle has none: the square root of a negative number cannot be taken.
double HalfFlat(const SplitOutput& out, const DrawRecord& shape, double r, double offset) {
    const double square = r * r - offset * offset;
    if (!(square >= 0))
        SplitFault(out, shape, "its flat lies outside its circle (radius " + Trim(PlainText(r)) + ")");
    return std::sqrt(square);
}

// An arc of a round shape that runs counter-clockwise about the centre from `from` to `to`
// (points of the shape before its rotation): the polar angles A and B of its ends, B raised by
// 360 while it is not above A, the sweep B - A rounded to 3, and the start A turned by the
// rotation (AddAngles) and rounded to 3.
struct FlatArc {
    double Start = 0;
    double Sweep = 0;
};

FlatArc ArcBetween(const PlanePoint& from, const PlanePoint& to, const PlanePoint& centre, double rotation) {
    const double a = AngleAbout(from, centre);
    double b = AngleAbout(to, centre);
    if (b <= a) b += 360;
    FlatArc arc;
    arc.Sweep = RoundTo(b - a, 3);
    arc.Start = RoundTo(AddAngles(a, rotation), 3);
    return arc;
}

// The Single-D: a circle of radius R = Value[1] cut by a flat at D - R above the centre, D =
// Value[2] being measured from the far side of the circle to the flat. The arc runs from the
// left end of the flat counter-clockwise through the far side to the right end.
struct SingleDShape {
    PlanePoint Centre;
    double Radius = 0;
    PlanePoint Left;   // ends of the flat, turned by the rotation and rounded
    PlanePoint Right;
    FlatArc Arc;
};

SingleDShape SingleDPoints(const SplitOutput& out, const DrawRecord& shape) {
    SingleDShape d;
    d.Centre = CentreOf(shape);
    d.Radius = shape.Value[1];
    const double across = shape.Value[2];
    const double rotation = shape.Value[10];
    const double half = HalfFlat(out, shape, d.Radius, across - d.Radius);
    const PlanePoint right{d.Centre.X + half, d.Centre.Y + across - d.Radius};
    const PlanePoint left{d.Centre.X - half, d.Centre.Y + across - d.Radius};
    d.Arc = ArcBetween(left, right, d.Centre, rotation);
    d.Right = TurnedAbout(right, d.Centre, rotation);
    d.Left = TurnedAbout(left, d.Centre, rotation);
    return d;
}

// The Double-D: a circle of radius R = Value[1] between two flats D = Value[2] apart. The lower
// flat runs left to right, the upper one right to left; arc 1 joins the end of the lower flat to
// the start of the upper one, arc 2 the end of the upper flat to the start of the lower one.
struct DoubleDShape {
    PlanePoint Centre;
    double Radius = 0;
    PlanePoint LowerStart, LowerEnd, UpperStart, UpperEnd;  // turned and rounded
    FlatArc First;
    FlatArc Second;
};

DoubleDShape DoubleDPoints(const SplitOutput& out, const DrawRecord& shape) {
    DoubleDShape d;
    d.Centre = CentreOf(shape);
    d.Radius = shape.Value[1];
    const double across = shape.Value[2];
    const double rotation = shape.Value[10];
    const double half = HalfFlat(out, shape, d.Radius, across / 2);
    const PlanePoint lowerStart{d.Centre.X - half, d.Centre.Y - across / 2};
    const PlanePoint lowerEnd{d.Centre.X + half, d.Centre.Y - across / 2};
    const PlanePoint upperStart{d.Centre.X + half, d.Centre.Y + across / 2};
    const PlanePoint upperEnd{d.Centre.X - half, d.Centre.Y + across / 2};
    d.First = ArcBetween(lowerEnd, upperStart, d.Centre, rotation);
    d.Second = ArcBetween(upperEnd, lowerStart, d.Centre, rotation);
    d.LowerStart = TurnedAbout(lowerStart, d.Centre, rotation);
    d.LowerEnd = TurnedAbout(lowerEnd, d.Centre, rotation);
    d.UpperStart = TurnedAbout(upperStart, d.Centre, rotation);
    d.UpperEnd = TurnedAbout(upperEnd, d.Centre, rotation);
    return d;
}

// The straight length of an obround of overall length L and width W: L - W when the signs of
// the two (each -1, 0 or 1) are equal, L + W otherwise; rounded to 4.
double StraightLength(const DrawRecord& shape) {
    const double length = shape.Value[1];
    const double width = shape.Value[2];
    return RoundTo(SignOf(length) == SignOf(width) ? length - width : length + width, 4);
}

// Where the walk round an obround starts.
enum class ObroundStart {
    LowerLeft,  // the plain and the punched outline: P1, P2, P3, P4
    UpperRight, // the outline that a lead joins in the middle of its right-hand end: PA, PB, PC, PD
};

// The obround of straight length S and width W = Value[2] about its centre, turned by Value[10].
// The four corners in the order of the walk, each a polar step from the one before and rounded
// to 4. The near end arc lies between corners 2 and 3 of the walk, the far one between corners
// 4 and 1; their centres are the middles of those corners, their start angles those of corners
// 2 and 4 about them (rounded to 3). The path runs counter-clockwise when S and W are both above
// 0 or both not, and an end arc then sweeps +180; otherwise the path is clockwise and -180.
struct ObroundShape {
    PlanePoint Corner[4];
    double Radius = 0;  // |W / 2|
    PlanePoint NearCentre, FarCentre;
    double NearStart = 0, FarStart = 0;
    bool CounterClockwise = true;
    double Sweep = 180;
};

ObroundShape ObroundPoints(const DrawRecord& shape, double straight, ObroundStart from) {
    const PlanePoint centre = CentreOf(shape);
    const double width = shape.Value[2];
    const double rotation = shape.Value[10];
    double diagonal = 0;
    double angle = 0;
    XYToPolar(straight / 2, width / 2, diagonal, angle);
    ObroundShape o;
    PlanePoint* k = o.Corner;
    if (from == ObroundStart::LowerLeft) {
        k[0] = PolarFrom(centre, diagonal, angle + 180 + rotation);
        k[1] = PolarFrom(k[0], straight, rotation);
        k[2] = PolarFrom(k[1], width, rotation + 90);
        k[3] = PolarFrom(k[2], straight, rotation + 180);
    } else {
        k[0] = PolarFrom(centre, diagonal, angle + rotation);
        k[1] = PolarFrom(k[0], straight, rotation + 180);
        k[2] = PolarFrom(k[1], width, rotation - 90);
        k[3] = PolarFrom(k[2], straight, rotation);
    }
    o.Radius = std::fabs(width / 2);
    o.NearCentre = MiddleRounded(k[1], k[2]);
    o.FarCentre = MiddleRounded(k[3], k[0]);
    o.NearStart = RoundTo(AngleAbout(k[1], o.NearCentre), 3);
    o.FarStart = RoundTo(AngleAbout(k[3], o.FarCentre), 3);
    o.CounterClockwise = CounterClockwise(straight, width);
    o.Sweep = o.CounterClockwise ? 180 : -180;
    return o;
}

// ---- Made segments -----------------------------------------------------------------------------

// A line of an outline from s to e; its Side is LineSide of `side` for the way the path runs.
DrawRecord OutlineLine(const SplitOutput& out, const DrawRecord& shape, const PlanePoint& s, const PlanePoint& e,
                       int16_t side, bool counterClockwise) {
    DrawRecord line = MadeRecord(shape, 120);
    SetLineSegment(line, s, e);
    line.Side = LineSide(*out.Machine, side, counterClockwise);
    return line;
}

// An arc of an outline; an arc's Side is not mapped.
DrawRecord OutlineArc(const DrawRecord& shape, const PlanePoint& s, const PlanePoint& e, const PlanePoint& centre,
                      double radius, const FlatArc& arc, int16_t side) {
    DrawRecord made = MadeRecord(shape, 130);
    SetArcSegment(made, s, e, centre, radius, arc.Start, arc.Sweep);
    made.Side = side;
    return made;
}

// The hits of a worked line of length l at pitch p: Count[1] hits, Value[2] the actual pitch,
// Value[5] the length.
void PunchLine(const SplitOutput& out, const DrawRecord& shape, DrawRecord& line, double length, double pitch) {
    const int32_t hits = LineHits(out, shape, length, pitch);
    const double actual = ActualPitch(out, shape, length, hits);
    line.Value[2] = ToSingle(actual);
    line.Value[5] = ToSingle(length);
    line.Count[1] = CountCell(out, shape, hits, "the hits of a punched line");
}

// The hits of a worked arc of signed sweep a whose tool path has the radius rp: Count[1] hits,
// Value[12] the angle step, signed like the sweep.
void PunchArc(const SplitOutput& out, const DrawRecord& shape, DrawRecord& arc, double pathRadius, double sweep,
              double pitch) {
    const int32_t hits = ArcHits(out, shape, pathRadius, sweep, pitch);
    arc.Value[12] = ToSingle(ArcStep(out, shape, sweep, hits));
    arc.Count[1] = CountCell(out, shape, hits, "the hits of a punched arc");
}

// A worked segment inside the shape follows the outline.
void FollowInside(const DrawRecord& shape, DrawRecord& segment) {
    if (IsInside(shape)) segment.FollowFlag = -1;
}

// One hit at the shape's centre, with the shape's After when `withAfter`.
void CentreHit(SplitOutput& out, const DrawRecord& shape, bool withAfter) {
    DrawRecord hit = MadeRecord(shape, 210);
    hit.Point[4] = shape.Point[4];
    if (withAfter) CopyAfter(shape.After, hit.After);
    AppendBound(out, shape, hit);
}

// The last segment of an outline with leads written as records: it takes the After when there
// is no lead-out at all.
void AppendLastBeforeLeadOut(SplitOutput& out, const DrawRecord& shape, DrawRecord& segment) {
    if (AfterOnLastSegment(shape)) CopyAfter(shape.After, segment.After);
    AppendBound(out, shape, segment);
}

}  // namespace

// ---- Outlines without a tool ----------------------------------------------------------------

void SplitSingleDProfile(SplitOutput& out, const DrawRecord& shape) {
    const SingleDShape d = SingleDPoints(out, shape);
    DrawRecord arc = OutlineArc(shape, d.Left, d.Right, d.Centre, d.Radius, d.Arc, shape.Side);
    CopyLead(shape.LeadIn, arc.LeadIn);
    AppendBound(out, shape, arc);
    DrawRecord flat = OutlineLine(out, shape, d.Right, d.Left, shape.Side, true);
    CopyLead(shape.LeadOut, flat.LeadOut);
    CopyAfter(shape.After, flat.After);
    AppendBound(out, shape, flat);
}

void SplitDoubleDProfile(SplitOutput& out, const DrawRecord& shape) {
    const DoubleDShape d = DoubleDPoints(out, shape);
    DrawRecord lower = OutlineLine(out, shape, d.LowerStart, d.LowerEnd, shape.Side, true);
    CopyLead(shape.LeadIn, lower.LeadIn);
    AppendBound(out, shape, lower);
    DrawRecord first = OutlineArc(shape, d.LowerEnd, d.UpperStart, d.Centre, d.Radius, d.First, shape.Side);
    AppendBound(out, shape, first);
    DrawRecord upper = OutlineLine(out, shape, d.UpperStart, d.UpperEnd, shape.Side, true);
    AppendBound(out, shape, upper);
    DrawRecord second = OutlineArc(shape, d.UpperEnd, d.LowerStart, d.Centre, d.Radius, d.Second, shape.Side);
    CopyLead(shape.LeadOut, second.LeadOut);
    CopyAfter(shape.After, second.After);
    AppendBound(out, shape, second);
}

void SplitObroundProfile(SplitOutput& out, const DrawRecord& shape) {
    const ObroundShape o = ObroundPoints(shape, StraightLength(shape), ObroundStart::LowerLeft);
    const bool ccw = o.CounterClockwise;
    DrawRecord first = OutlineLine(out, shape, o.Corner[0], o.Corner[1], shape.Side, ccw);
    CopyLead(shape.LeadIn, first.LeadIn);
    AppendBound(out, shape, first);
    DrawRecord near = OutlineArc(shape, o.Corner[1], o.Corner[2], o.NearCentre, o.Radius,
                                 FlatArc{o.NearStart, o.Sweep}, shape.Side);
    AppendBound(out, shape, near);
    DrawRecord second = OutlineLine(out, shape, o.Corner[2], o.Corner[3], shape.Side, ccw);
    AppendBound(out, shape, second);
    DrawRecord far = OutlineArc(shape, o.Corner[3], o.Corner[0], o.FarCentre, o.Radius,
                                FlatArc{o.FarStart, o.Sweep}, shape.Side);
    CopyLead(shape.LeadOut, far.LeadOut);
    CopyAfter(shape.After, far.After);
    AppendBound(out, shape, far);
}

// ---- Outlines for a profiling tool ------------------------------------------------------------

void SplitSingleDLeads(SplitOutput& out, const DrawRecord& shape) {
    const SingleDShape d = SingleDPoints(out, shape);
    WriteShapeLead(out, shape, 1, true);
    DrawRecord flat = OutlineLine(out, shape, d.Right, d.Left, shape.Side, true);
    AppendBound(out, shape, flat);
    DrawRecord arc = OutlineArc(shape, d.Left, d.Right, d.Centre, d.Radius, d.Arc, shape.Side);
    AppendLastBeforeLeadOut(out, shape, arc);
    WriteShapeLead(out, shape, 2, true);
}

void SplitDoubleDLeads(SplitOutput& out, const DrawRecord& shape) {
    const DoubleDShape d = DoubleDPoints(out, shape);
    WriteShapeLead(out, shape, 1, true);
    DrawRecord first = OutlineArc(shape, d.LowerEnd, d.UpperStart, d.Centre, d.Radius, d.First, shape.Side);
    AppendBound(out, shape, first);
    DrawRecord upper = OutlineLine(out, shape, d.UpperStart, d.UpperEnd, shape.Side, true);
    AppendBound(out, shape, upper);
    DrawRecord second = OutlineArc(shape, d.UpperEnd, d.LowerStart, d.Centre, d.Radius, d.Second, shape.Side);
    AppendBound(out, shape, second);
    DrawRecord lower = OutlineLine(out, shape, d.LowerStart, d.LowerEnd, shape.Side, true);
    AppendLastBeforeLeadOut(out, shape, lower);
    WriteShapeLead(out, shape, 2, true);
}

// The lead joins the obround in the middle of its right-hand end, so that end is made of two
// quarter arcs about its centre: the first starts at the rotation itself. The three arcs are
// given by their circles; binding derives their ends.
void SplitObroundLeads(SplitOutput& out, const DrawRecord& shape) {
    const ObroundShape o = ObroundPoints(shape, StraightLength(shape), ObroundStart::UpperRight);
    const bool ccw = o.CounterClockwise;
    const double quarter = ccw ? 90 : -90;
    WriteShapeLead(out, shape, 1, ccw);
    DrawRecord first = MadeRecord(shape, 130);
    SetArcByCentre(first, o.FarCentre, o.Radius, shape.Value[10], quarter);
    first.Side = shape.Side;
    AppendBound(out, shape, first);
    DrawRecord upper = OutlineLine(out, shape, o.Corner[0], o.Corner[1], shape.Side, ccw);
    AppendBound(out, shape, upper);
    DrawRecord near = MadeRecord(shape, 130);
    SetArcByCentre(near, o.NearCentre, o.Radius, o.NearStart, o.Sweep);
    near.Side = shape.Side;
    AppendBound(out, shape, near);
    DrawRecord lower = OutlineLine(out, shape, o.Corner[2], o.Corner[3], shape.Side, ccw);
    AppendBound(out, shape, lower);
    DrawRecord last = MadeRecord(shape, 130);
    SetArcByCentre(last, o.FarCentre, o.Radius, o.FarStart, quarter);
    last.Side = shape.Side;
    AppendLastBeforeLeadOut(out, shape, last);
    WriteShapeLead(out, shape, 2, ccw);
}

// ---- Shapes worked by a punch -----------------------------------------------------------------

// The tool is taken as round, of radius r = Size[1] / 2. Inside, a hole that the tool fills (R
// equal to r) or that is too small to walk (fewer than 2 hits on the path R - r at the pitch
// Value[3]; no pitch is one hit) is one hit at the centre. Otherwise, with Count[3] set, the
// middle is cleared from the centre outwards by a hit and rings of hits 1.5 r apart, each ring
// below the path radius less r / 2; then the rim is one whole-circle Arc Profile at the nominal
// radius. The rotation flag c of the rings and the rim is Count[2], or 0 for a round tool "A".
void SplitCirclePunched(SplitOutput& out, const DrawRecord& shape) {
    const bool inside = IsInside(shape);
    const double toolRadius = ToSingle(shape.ToolA.Size[1] / 2.0);
    const double radius = shape.Value[1];
    const double pitch = shape.Value[3];
    const int16_t rotationFlag = LetterIs(shape.ToolA, 'A') ? int16_t{0} : shape.Count[2];

    int32_t hits = 2;
    if (inside) hits = pitch > 0 ? ArcHits(out, shape, radius - toolRadius, 360, pitch) : 1;
    if (inside && (radius == toolRadius || hits < 2)) {
        CentreHit(out, shape, true);
        return;
    }
    const double pathRadius = inside ? radius - toolRadius : radius + toolRadius;

    if (inside && shape.Count[3] != 0) {
        CentreHit(out, shape, false);
        // Every turn writes a record, so that the output's bound on one entity's records ends
        // the rings of a damaged tool.
        for (double ring = 1.5 * toolRadius; ring < pathRadius - toolRadius / 2; ring += 1.5 * toolRadius) {
            DrawRecord pattern = MadeRecord(shape, 230);
            pattern.Point[4] = shape.Point[4];
            pattern.Value[1] = ToSingle(ring);
            const double length = ring * 2 * Pi;
            const int32_t ringHits = ArcHits(out, shape, ring, 360, toolRadius);
            const double steps = static_cast<double>(ringHits) - 1;
            const std::string tooSmall = "a clearing ring of radius " + Trim(PlainText(ring)) + " has one hit";
            pattern.Value[3] = ToSingle(std::fabs(SplitQuotient(out, shape, length, steps, tooSmall)));
            pattern.Value[11] = 360;
            pattern.Value[12] = ToSingle(SplitQuotient(out, shape, 360, steps, tooSmall));
            pattern.Count[1] = CountCell(out, shape, ringHits, "the hits of a clearing ring");
            pattern.Count[2] = rotationFlag;
            AppendBound(out, shape, pattern);
        }
    }

    const int32_t rimHits = ArcHits(out, shape, pathRadius, 360, pitch);
    DrawRecord rim = MadeRecord(shape, 130);
    SetArcByCentre(rim, CentreOf(shape), radius, shape.Value[10], 360);
    rim.Value[3] = shape.Value[3];
    const std::string shortRim = "a punched circle of path radius " + Trim(PlainText(pathRadius)) +
                                 " is shorter than its pitch: it has one hit, and its step divides by 0";
    rim.Value[12] = ToSingle(SplitQuotient(out, shape, 360, static_cast<double>(rimHits) - 1, shortRim));
    rim.Count[1] = CountCell(out, shape, rimHits, "the hits of a punched circle");
    rim.Count[2] = rotationFlag;
    rim.Side = shape.Side;
    CopyAfter(shape.After, rim.After);
    AppendBound(out, shape, rim);
}

namespace {

// A line of a Single-D or Double-D worked by a punch, from s to e, its hits at the shape's
// pitch Value[3]; inside it follows the outline.
DrawRecord WorkedFlat(const SplitOutput& out, const DrawRecord& shape, const PlanePoint& s, const PlanePoint& e) {
    DrawRecord line = OutlineLine(out, shape, s, e, WorkedSide(shape), true);
    PunchLine(out, shape, line, LengthOf(s, e), shape.Value[3]);
    FollowInside(shape, line);
    return line;
}

// An arc of a Single-D or Double-D worked by a punch, its hits counted on the tool's path.
DrawRecord WorkedRoundArc(const SplitOutput& out, const DrawRecord& shape, const PlanePoint& s, const PlanePoint& e,
                          const PlanePoint& centre, double radius, const FlatArc& arc) {
    DrawRecord made = OutlineArc(shape, s, e, centre, radius, arc, WorkedSide(shape));
    PunchArc(out, shape, made, ToolPathRadius(shape, radius), arc.Sweep, shape.Value[3]);
    FollowInside(shape, made);
    return made;
}

}  // namespace

// Inside, the Single-D punch "G" makes the shape in one hit, whatever its size.
void SplitSingleDPunched(SplitOutput& out, const DrawRecord& shape) {
    if (IsInside(shape) && LetterIs(shape.ToolA, 'G')) {
        CentreHit(out, shape, true);
        return;
    }
    const SingleDShape d = SingleDPoints(out, shape);
    DrawRecord arc = WorkedRoundArc(out, shape, d.Left, d.Right, d.Centre, d.Radius, d.Arc);
    AppendBound(out, shape, arc);
    DrawRecord flat = WorkedFlat(out, shape, d.Right, d.Left);
    CopyAfter(shape.After, flat.After);
    AppendBound(out, shape, flat);
}

// Inside, the Double-D punch "H" makes the shape in one hit.
void SplitDoubleDPunched(SplitOutput& out, const DrawRecord& shape) {
    if (IsInside(shape) && LetterIs(shape.ToolA, 'H')) {
        CentreHit(out, shape, true);
        return;
    }
    const DoubleDShape d = DoubleDPoints(out, shape);
    DrawRecord lower = WorkedFlat(out, shape, d.LowerStart, d.LowerEnd);
    AppendBound(out, shape, lower);
    DrawRecord first = WorkedRoundArc(out, shape, d.LowerEnd, d.UpperStart, d.Centre, d.Radius, d.First);
    AppendBound(out, shape, first);
    DrawRecord upper = WorkedFlat(out, shape, d.UpperStart, d.UpperEnd);
    AppendBound(out, shape, upper);
    DrawRecord second = WorkedRoundArc(out, shape, d.UpperEnd, d.LowerStart, d.Centre, d.Radius, d.Second);
    CopyAfter(shape.After, second.After);
    AppendBound(out, shape, second);
}

namespace {

// The Side of every line of a punched obround: that of an inside path for the way the outline
// runs, whether the shape is worked from inside or from outside.
int16_t ObroundLineSide(const SplitOutput& out, const ObroundShape& o) {
    return LineSide(*out.Machine, -1, o.CounterClockwise);
}

// One row of hits along the whole length L of the obround, from the left end to the right end:
// Value[1] is L, Value[2] the pitch as given, Value[5] the straight length S, Value[10] the
// rotation, Count[1] the shape's own count (binding's hits of the obround punch), FollowFlag
// -1, the shape's After.
void ObroundRow(SplitOutput& out, const DrawRecord& shape, const ObroundShape& o, double straight) {
    const PlanePoint centre = CentreOf(shape);
    const double length = shape.Value[1];
    const double rotation = shape.Value[10];
    DrawRecord row = MadeRecord(shape, 120);
    SetLineSegment(row, PolarFrom(centre, length / 2, rotation + 180), PolarFrom(centre, length / 2, rotation));
    row.Value[1] = ToSingle(length);
    row.Value[2] = shape.Value[3];
    row.Value[5] = ToSingle(straight);
    row.Value[10] = shape.Value[10];
    row.Count[1] = shape.Count[1];
    row.Side = ObroundLineSide(out, o);
    row.FollowFlag = -1;
    CopyAfter(shape.After, row.After);
    AppendBound(out, shape, row);
}

// A line of the rim of a punched obround: Value[1] and Value[5] are S, Value[2] the actual pitch.
void ObroundRimLine(SplitOutput& out, const DrawRecord& shape, const ObroundShape& o, const PlanePoint& s,
                    const PlanePoint& e, double straight) {
    DrawRecord line = MadeRecord(shape, 120);
    SetLineSegment(line, s, e);
    line.Value[1] = ToSingle(straight);
    PunchLine(out, shape, line, straight, shape.Value[3]);
    line.Side = ObroundLineSide(out, o);
    FollowInside(shape, line);
    AppendBound(out, shape, line);
}

// An end arc of the rim of a punched obround, its hits counted on the tool's path rp.
void ObroundRimArc(SplitOutput& out, const DrawRecord& shape, const ObroundShape& o, const PlanePoint& s,
                   const PlanePoint& e, const PlanePoint& centre, double start, double pathRadius, bool last) {
    DrawRecord arc = OutlineArc(shape, s, e, centre, o.Radius, FlatArc{start, o.Sweep}, WorkedSide(shape));
    PunchArc(out, shape, arc, pathRadius, o.Sweep, shape.Value[3]);
    FollowInside(shape, arc);
    if (last) CopyAfter(shape.After, arc.After);
    AppendBound(out, shape, arc);
}

}  // namespace

// S is Value[5] as binding left it, W is Value[2], L is Value[1], T the tool's Size[2], p the
// pitch Value[3]. Inside, a tool as wide as the shape makes it in one row along its length, and
// so does the obround punch "F" unless it is the shape's own length (one hit). Otherwise the rim:
// two lines and two end arcs on the tool path rp = |W / 2| - T / 2 inside, |W / 2| + T / 2
// outside; inside, a tool wider than a third of the width and narrower than half of it would
// leave a strip along the middle, so a middle row comes first.
void SplitObroundPunched(SplitOutput& out, const DrawRecord& shape) {
    const double straight = shape.Value[5];
    const double width = shape.Value[2];
    const double tool = shape.ToolA.Size[2];
    const ObroundShape o = ObroundPoints(shape, straight, ObroundStart::LowerLeft);
    const bool inside = IsInside(shape);

    if (inside && LetterIs(shape.ToolA, 'F')) {
        if (static_cast<double>(shape.ToolA.Size[1]) == static_cast<double>(shape.Value[1])) {
            CentreHit(out, shape, true);
        } else {
            ObroundRow(out, shape, o, straight);
        }
        return;
    }
    if (inside && tool == width) {
        ObroundRow(out, shape, o, straight);
        return;
    }

    const double halfWidth = std::fabs(width / 2);
    const double pathRadius = inside ? halfWidth - tool / 2 : halfWidth + tool / 2;
    if (inside && tool > width / 3 && tool < width / 2) {
        const PlanePoint centre = CentreOf(shape);
        const double rotation = shape.Value[10];
        DrawRecord middle = MadeRecord(shape, 120);
        SetLineSegment(middle, PolarFrom(centre, straight / 2, rotation),
                       PolarFrom(centre, straight / 2, rotation + 180));
        middle.Value[1] = ToSingle(straight);
        PunchLine(out, shape, middle, straight, shape.Value[3]);
        middle.Value[10] = ToSingle(Norm360(rotation + 180));
        middle.Side = ObroundLineSide(out, o);
        AppendBound(out, shape, middle);
    }
    ObroundRimLine(out, shape, o, o.Corner[0], o.Corner[1], straight);
    ObroundRimArc(out, shape, o, o.Corner[1], o.Corner[2], o.NearCentre, o.NearStart, pathRadius, false);
    ObroundRimLine(out, shape, o, o.Corner[2], o.Corner[3], straight);
    ObroundRimArc(out, shape, o, o.Corner[3], o.Corner[0], o.FarCentre, o.FarStart, pathRadius, true);
}

}  // namespace tvx
