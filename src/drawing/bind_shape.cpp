// Binding of the shapes 152 to 156: the Single-D, the Double-D, the obround, the radiused
// rectangle and the rectangle. Each is defined by its centre Point[4], two dimensions Value[1]
// and Value[2], the corner radius Value[3] of 155 and the rotation Value[10].
//
// Plain form: the key points are worked out at rotation 0 about the centre, turned by the
// rotation, rounded to 4 decimals and stored; then the boxes.
//   152: Point[1] the middle of the flat, Point[2] the middle of the arc, which runs
//        counter-clockwise from the left end of the flat through the far side of the circle to
//        the right end. A flat whose half length would be the root of a negative number (an
//        across-flat dimension beyond the diameter) has length 0.
//   153: Point[1] the left end of the lower flat, Point[2] the right end of the upper flat.
//   154: Value[5] the straight length; Point[1] and Point[2] the opposite ends of the straight
//        sides; the box is that of the two end circles.
//   155: Point[1] and Point[2] are the writer's; the box is that of the rectangle of the two
//        dimensions about the centre, and holds the writer's two points too.
//   156: no points; the box is that of the four corners.
//
// Worked form (a working tool, not a profiling one, on a machine that does not profile every
// path): Side 0 becomes -1 (inside); a tool larger than the shape makes the shape; the letters of
// the shapes' own punches fix the dimensions; and the box is that of the tool's path, half the
// tool's Size[2] outside an outside shape, inside an inside one. A Count[1] of 1 (one hit makes
// the shape) makes Extent the centre. Any combination not told here keeps the plain results.
//   Which tool size goes with which dimension: the tool's own turn, Norm360(ToolAngle +
//   ToolStep), is compared with the shape's rotation to a thousandth of a degree. Equal to the
//   rotation or its opposite: Size[1] with Value[1], Size[2] with Value[2]; a quarter turn off:
//   exchanged. Otherwise the round "A" and the square-ish "B" and "D" take Size[1] with Value[1]
//   all the same, and any other letter leaves the shape as it is and Count[1] at 0.
//   On the Single-D and Double-D, Value[1] is a radius: it is its diameter that a tool's size
//   is compared with, and a larger tool gives the radius of half its size.
//   Dimensions that "differ by less than a tolerance" differ by less than 0.01 mm.
#include <algorithm>
#include <cmath>

#include "common/numeric.h"
#include "drawing/bind_support.h"
#include "drawing/binding.h"

namespace tvx {
namespace {

using bind::PlaneBox;

constexpr double SizeTolerance = 0.01;  // mm

double Sign(double v) { return v > 0 ? 1.0 : (v < 0 ? -1.0 : 0.0); }

// Half the length of a flat at `offset` from the centre of a circle of radius r; 0 when the
// flat does not cut the circle.
double HalfChord(double r, double offset) { return std::sqrt(std::max(0.0, r * r - offset * offset)); }

// Turns (x, y) about the shape's centre by its rotation and stores it rounded.
void StoreTurned(DrawRecord& record, int index, double x, double y) {
    RotatePoint(record.Point[4].X, record.Point[4].Y, x, y, record.Value[10]);
    bind::StoreRounded(record.Point[index], x, y);
}

bool SameAngle(double a, double b) { return std::fabs(Norm180(a - b + 0.0005) - 0.0005) < 0.0005; }

// A tool larger than the shape makes the shape (see the rules at the top).
void FitToolToShape(DrawRecord& record) {
    const int16_t code = record.EntityCode;
    const ToolSpec& tool = record.ToolA;
    const double turn = Norm360(static_cast<double>(tool.ToolAngle) + tool.ToolStep);
    const double rotation = Norm360(record.Value[10]);
    double first = tool.Size[1];
    double second = tool.Size[2];
    if (SameAngle(turn, rotation)) {
        // Size[1] with Value[1], Size[2] with Value[2].
    } else if (SameAngle(turn, Norm360(rotation + 90))) {
        std::swap(first, second);
    } else if (!(LetterIs(tool, 'A') || LetterIs(tool, 'B') || LetterIs(tool, 'D'))) {
        record.Count[1] = 0;
        return;
    }
    const bool round = code == 152 || code == 153;
    // A dimension smaller than the tool's matching size takes that size, with its own sign.
    const double v1 = record.Value[1];
    const double size1 = round ? 2 * std::fabs(v1) : std::fabs(v1);
    if (size1 < std::fabs(first)) record.Value[1] = ToSingle(Sign(v1) * (round ? first / 2 : first));
    const double v2 = record.Value[2];
    if (std::fabs(v2) < std::fabs(second)) record.Value[2] = ToSingle(Sign(v2) * second);
}

// Widens or narrows a shape's measure by half the tool's Size[2]: the path of the tool's centre
// runs outside an outside shape and inside an inside one.
double ToolPathShift(const DrawRecord& record, bool worked) {
    if (!worked) return 0;
    const double half = record.ToolA.Size[2] / 2.0;
    return record.Side >= 1 ? half : -half;
}

void BindSingleD(DrawRecord& record) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double r = record.Value[1];
    const double h = record.Value[2];
    const double flatY = cy + (h - r);
    const double half = HalfChord(r, h - r);
    double distance = 0;
    double leftAngle = 0;
    double rightAngle = 0;
    XYToPolar(-half, h - r, distance, leftAngle);
    XYToPolar(half, h - r, distance, rightAngle);
    // The arc runs counter-clockwise from the left end to the right end.
    if (rightAngle <= leftAngle) rightAngle += 360;
    const double sweep = rightAngle - leftAngle;
    double dx = 0;
    double dy = 0;
    PolarToXY(r, Norm360(leftAngle + sweep / 2), dx, dy);
    StoreTurned(record, 1, cx, flatY);
    StoreTurned(record, 2, cx + dx, cy + dy);
    CopyPoint(record.Point[1], record.Point[3]);
    CopyPoint(record.Point[1], record.Point[5]);
    CopyPoint(record.Point[3], record.Point[6]);
}

void BindDoubleD(DrawRecord& record) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double r = record.Value[1];
    const double across = record.Value[2];
    const double half = HalfChord(r, across / 2);
    StoreTurned(record, 1, cx - half, cy - across / 2);
    StoreTurned(record, 2, cx + half, cy + across / 2);
    CopyPoint(record.Point[1], record.Point[3]);
    CopyPoint(record.Point[1], record.Point[5]);
    CopyPoint(record.Point[3], record.Point[6]);
}

// The box of a round shape (152, 153): the circle, with the tool's path in the worked form.
void RoundShapeBoxes(DrawRecord& record, bool worked) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double r = std::fabs(static_cast<double>(record.Value[1])) + ToolPathShift(record, worked);
    PlaneBox box;
    box.Add(cx - r, cy - r);
    box.Add(cx + r, cy + r);
    bind::StoreBoxes(record, box, r / 100, {5});
}

void BindObround(DrawRecord& record, bool worked) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double w = record.Value[1];
    const double h = record.Value[2];
    const double rotation = record.Value[10];
    // The straight length: a negative height gives the length between the arcs' centres.
    const double straight = RoundTo(Sign(w) == Sign(h) ? w - h : w + h, 4);
    record.Value[5] = ToSingle(straight);
    double distance = 0;
    double angle = 0;
    XYToPolar(straight / 2, h / 2, distance, angle);
    double dx = 0;
    double dy = 0;
    PolarToXY(distance, rotation + angle, dx, dy);
    bind::StoreRounded(record.Point[1], cx + dx, cy + dy);
    bind::StoreRounded(record.Point[2], cx - dx, cy - dy);
    CopyPoint(record.Point[1], record.Point[3]);
    CopyPoint(record.Point[1], record.Point[5]);
    CopyPoint(record.Point[3], record.Point[6]);
    // The two end circles.
    const double radius = std::fabs(h) / 2 + ToolPathShift(record, worked);
    PolarToXY(straight / 2, rotation, dx, dy);
    PlaneBox box;
    for (double side : {1.0, -1.0}) {
        box.Add(cx + side * dx - radius, cy + side * dy - radius);
        box.Add(cx + side * dx + radius, cy + side * dy + radius);
    }
    bind::StoreBoxes(record, box, 2, {5});
}

// The box of the rectangle of the two dimensions about the centre, turned by the rotation.
void AddRectangle(PlaneBox& box, const DrawRecord& record, double grow) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double w = std::fabs(static_cast<double>(record.Value[1])) + 2 * grow;
    const double h = std::fabs(static_cast<double>(record.Value[2])) + 2 * grow;
    const double rotation = record.Value[10];
    // From the centre to the first corner, then round the four sides.
    double ax = 0, ay = 0, bx = 0, by = 0;
    PolarToXY(w / 2, rotation + 180, ax, ay);
    PolarToXY(h / 2, rotation + 270, bx, by);
    double x = cx + ax + bx;
    double y = cy + ay + by;
    box.Add(x, y);
    const double lengths[4] = {w, h, w, h};
    for (int side = 0; side < 4; ++side) {
        PolarToXY(lengths[side], Norm360(rotation + 90.0 * side), ax, ay);
        x += ax;
        y += ay;
        box.Add(x, y);
    }
}

void BindRadiusedRectangle(DrawRecord& record, bool worked) {
    record.Value[3] = std::fabs(record.Value[3]);
    CopyPoint(record.Point[1], record.Point[3]);
    CopyPoint(record.Point[1], record.Point[5]);
    PlaneBox box;
    AddRectangle(box, record, ToolPathShift(record, worked));
    box.Add(record.Point[1]);
    box.Add(record.Point[2]);
    bind::StoreBoxes(record, box, 5, {5});
}

void BindRectangle(DrawRecord& record, bool worked) {
    PlaneBox box;
    AddRectangle(box, record, ToolPathShift(record, worked));
    bind::StoreBoxes(record, box, 5, {5});
}

// The obround punch "F" inside an obround: the hits that fill its length.
int16_t ObroundHits(const DrawRecord& record) {
    const double length = record.ToolA.Size[1];
    const double width = record.ToolA.Size[2];
    if (std::fabs(static_cast<double>(record.Value[1]) - length) < SizeTolerance) return 1;
    const double toolStraight = length - width;
    if (!(std::fabs(toolStraight) > 0)) return 1;
    const double quotient = (static_cast<double>(record.Value[5]) - length) / toolStraight;
    if (!std::isfinite(quotient) || quotient < 1) return 1;
    if (quotient > 32767) return 32767;
    const double whole = std::trunc(quotient);
    const double hits = whole == quotient ? whole : whole + 1;
    return static_cast<int16_t>(std::clamp(hits, 1.0, 32767.0));
}

}  // namespace

void BindShape(const MachineState& machine, DrawRecord& record) {
    const int16_t code = record.EntityCode;
    const bool worked = bind::IsWorkedPath(machine, record);
    if (code == 152 || code == 153) {
        record.Value[1] = std::fabs(record.Value[1]);
        record.Value[2] = std::fabs(record.Value[2]);
        record.Value[5] = ToSingle(2.0 * record.Value[1]);
    } else if (worked) {
        record.Value[2] = std::fabs(record.Value[2]);
        record.Value[1] = std::fabs(record.Value[1]);
    }
    const ToolSpec& tool = record.ToolA;
    if (worked) {
        if (record.Side == 0) record.Side = -1;
        FitToolToShape(record);
        if (code == 152 && LetterIs(tool, 'G') &&
            (tool.Size[1] != record.Value[5] || tool.Size[2] != record.Value[2])) {
            // The Single-D punch makes the shape of its own size.
            record.Value[1] = ToSingle(tool.Size[1] / 2.0);
            record.Value[2] = tool.Size[2];
        }
        if (code == 152 || code == 153) record.Value[5] = ToSingle(2.0 * record.Value[1]);
        if (code == 154 && LetterIs(tool, 'A') &&
            std::fabs(static_cast<double>(record.Value[2]) - tool.Size[1]) < SizeTolerance)
            record.Value[2] = tool.Size[1];
        if (code == 154 && LetterIs(tool, 'F')) {
            if (std::fabs(static_cast<double>(record.Value[1]) - tool.Size[1]) < SizeTolerance)
                record.Value[1] = tool.Size[1];
            if (record.Value[2] != tool.Size[2] && record.Side <= 0) record.Value[2] = tool.Size[2];
        }
    }
    switch (code) {
        case 152:
            BindSingleD(record);
            RoundShapeBoxes(record, worked);
            if (worked) record.Count[3] = LetterIs(tool, 'A') ? 0 : -1;
            break;
        case 153:
            BindDoubleD(record);
            RoundShapeBoxes(record, worked);
            break;
        case 154:
            BindObround(record, worked);
            if (worked && LetterIs(tool, 'F') && record.Side < 1) record.Count[1] = ObroundHits(record);
            break;
        case 155:
            BindRadiusedRectangle(record, worked);
            break;
        default:
            BindRectangle(record, worked);
            break;
    }
    if (worked && record.Count[1] == 1) {
        // One hit makes the shape: it is drawn at the centre.
        CopyPoint(record.Point[4], record.Extent[1]);
        CopyPoint(record.Point[4], record.Extent[2]);
    }
}

}  // namespace tvx
