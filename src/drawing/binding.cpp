// The dispatch of binding and the small families: marks, single hits, grids of hits, boxes of
// library shapes and multipart layouts. Lines and arcs are bound in bind_line_arc.cpp, the
// shapes 152 to 156 in bind_shape.cpp.
#include "drawing/binding.h"

#include <algorithm>
#include <cmath>

#include "common/numeric.h"
#include "drawing/bind_support.h"

namespace tvx {

void BindShape(const MachineState& machine, DrawRecord& record);  // bind_shape.cpp

namespace {

using bind::PlaneBox;

// Copies Point[4] to the five other points.
void SpreadCentre(DrawRecord& record) {
    const SinglePoint centre = record.Point[4];
    for (int i : {1, 2, 3, 5, 6}) CopyPoint(centre, record.Point[i]);
}

// Marks (311, 312, 321, 350, 355): Point[4] is the position.
void BindMark(DrawRecord& record) {
    SpreadCentre(record);
    const SinglePoint p = record.Point[4];
    record.Extent[1] = p;
    record.Extent[2] = p;
    record.Margin[1] = SinglePoint{ToSingle(p.X - 5.0), ToSingle(p.Y - 5.0)};
    record.Margin[2] = SinglePoint{ToSingle(p.X + 5.0), ToSingle(p.Y + 5.0)};
}

// A single hit (210) at Point[4]. Its margin reaches 5 beyond the hit, or half the tool's width
// for a working tool wider than 5: so a tool of width 6 gets 3, less than the 5 of no tool, and
// that is kept as it is.
void BindPunch(DrawRecord& record) {
    SpreadCentre(record);
    const SinglePoint p = record.Point[4];
    record.Extent[1] = p;
    record.Extent[2] = p;
    double half = 5;
    if (bind::HasWorkingTool(record) && record.ToolA.Size[1] > 5) half = record.ToolA.Size[1] / 2.0;
    record.Margin[1] = SinglePoint{ToSingle(p.X - half), ToSingle(p.Y - half)};
    record.Margin[2] = SinglePoint{ToSingle(p.X + half), ToSingle(p.Y + half)};
}

// A grid of hits (225), walked as the machine works it: row by row, each row back the way the
// one before came. The walk is followed row by row; within a row the hits lie on a straight
// run, so the row's end is its start plus the number of steps times the step, and the box takes
// the two ends. A grid of 32767 by 32767 hits thus costs 32767 rows, not a billion steps.
void BindGrid(DrawRecord& record) {
    const double size = std::max(static_cast<double>(record.Value[1]), static_cast<double>(record.Value[3]));
    double alongPitch = record.Value[2];
    double acrossPitch = record.Value[4];
    int32_t inRow = record.Count[1];
    int32_t rows = record.Count[2];
    double direction = record.Value[10];
    if (record.Count[3] != 0) {
        // Exchanged axes: the walk runs along the other axis; the record itself stays as stored.
        std::swap(alongPitch, acrossPitch);
        std::swap(inRow, rows);
        direction = Norm360(90 - static_cast<double>(record.Value[10]));
        alongPitch = 0 - alongPitch;
    }
    // A grid has at least one row; a row of fewer than two hits takes no step.
    if (rows < 1) rows = 1;
    const int32_t steps = inRow >= 2 ? inRow - 1 : 0;

    double x = record.Point[1].X;
    double y = record.Point[1].Y;
    PlaneBox box;
    box.Add(x, y);
    double rowDirection = direction;
    const double stepDirection = Norm360(direction + 90);
    double afterFirstX = x, afterFirstY = y;
    double lastRowX = x, lastRowY = y;
    for (int32_t row = 1; row <= rows; ++row) {
        if (row == rows) {
            lastRowX = x;
            lastRowY = y;
        }
        double dx = 0;
        double dy = 0;
        PolarToXY(alongPitch, rowDirection, dx, dy);
        x += steps * dx;
        y += steps * dy;
        box.Add(x, y);
        if (row == 1) {
            afterFirstX = x;
            afterFirstY = y;
        }
        if (row != rows) {
            PolarToXY(acrossPitch, stepDirection, dx, dy);
            x += dx;
            y += dy;
            box.Add(x, y);
        }
        rowDirection = Norm360(rowDirection + 180);
    }
    bind::StoreRounded(record.Point[2], afterFirstX, afterFirstY);
    bind::StoreRounded(record.Point[3], x, y);
    bind::StoreRounded(record.Point[4], (box.LowX + box.HighX) / 2, (box.LowY + box.HighY) / 2);
    bind::StoreRounded(record.Point[6], lastRowX, lastRowY);
    CopyPoint(record.Point[1], record.Point[5]);

    // The margin: 5 all round, then widened to at least half the hit's size (with a working
    // tool, half the larger of the tool's two sizes), then to at least 5.
    double first = size / 2;
    if (bind::HasWorkingTool(record))
        first = std::max(static_cast<double>(record.ToolA.Size[1]), static_cast<double>(record.ToolA.Size[2])) / 2;
    bind::StoreBoxes(record, box, 5, {first, 5});
}

// Boxes of a tool-shaped hole (171) or a library shape (175): a cheap box by bands of the angle,
// not the box of the turned outline. From 75 to 105 and from 255 to 285 degrees, both ends
// included, width and height are exchanged; every other angle takes them as they stand. The
// angle is first brought into 0 up to 360, and the dimensions count by their size.
void BindBoxShape(DrawRecord& record) {
    SpreadCentre(record);
    double width = std::fabs(static_cast<double>(record.Value[1]));
    double height = std::fabs(static_cast<double>(record.Value[2]));
    const double angle = Norm360(record.Value[10]);
    if ((angle >= 75 && angle <= 105) || (angle >= 255 && angle <= 285)) std::swap(width, height);
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    record.Extent[1] = SinglePoint{ToSingle(cx - width / 2), ToSingle(cy - height / 2)};
    record.Extent[2] = SinglePoint{ToSingle(cx + width / 2), ToSingle(cy + height / 2)};
    record.Margin[1] = SinglePoint{ToSingle(cx - (width / 2 + 2)), ToSingle(cy - (height / 2 + 2))};
    record.Margin[2] = SinglePoint{ToSingle(cx + (width / 2 + 2)), ToSingle(cy + (height / 2 + 2))};
}

// A multipart layout (500) or part (510). Only a single part can be turned: a layout of more
// than one part loses its angle. A single part with an angle has its points 2 to 6 turned about
// its origin, Point[1], each time it is bound. The box starts from the deliberately unequal
// 100000 and -10000 and is narrowed by the six points with strict comparisons.
void BindMultipart(DrawRecord& record) {
    if (record.Count[1] != 1 || record.Count[2] != 1) {
        record.Value[10] = 0;
        return;
    }
    const double turn = record.Value[10];
    if (turn == 0) return;
    const double ox = record.Point[1].X;
    const double oy = record.Point[1].Y;
    for (int i = 2; i <= 6; ++i) {
        double x = record.Point[i].X;
        double y = record.Point[i].Y;
        RotatePoint(ox, oy, x, y, turn);
        bind::StoreRounded(record.Point[i], x, y);
    }
    SinglePoint low{100000.0f, 100000.0f};
    SinglePoint high{-10000.0f, -10000.0f};
    for (int i = 1; i <= 6; ++i) {
        const SinglePoint p = record.Point[i];
        if (p.X < low.X) low.X = p.X;
        if (p.Y < low.Y) low.Y = p.Y;
        if (p.X > high.X) high.X = p.X;
        if (p.Y > high.Y) high.Y = p.Y;
    }
    record.Extent[1] = low;
    record.Extent[2] = high;
    record.Margin[1] = low;
    record.Margin[2] = high;
}

}  // namespace

int16_t ArcTurn(const MachineState& machine, int16_t side, double sweep) {
    if (side != 1 && side != -1) return 0;
    const int sense = sweep >= 0 ? 1 : -1;
    const int convention = machine.TurnSense == 1 ? 1 : -1;
    return static_cast<int16_t>(side * sense * convention);
}

void BindRecord(const MachineState& machine, DrawRecord& record) {
    // A second tool matters only on a rectangle, for profiling and for library tooling: a stale
    // one must never reach an emitter.
    const bool keepsSecond =
        record.EntityCode == 156 || LetterIs(record.ToolA, 'U') || LetterIs(record.ToolA, 'P');
    if (!keepsSecond) ClearTool(record.ToolB);
    record.ToolA.ToolAngle = bind::StoreAngle(record.ToolA.ToolAngle);
    record.ToolB.ToolAngle = bind::StoreAngle(record.ToolB.ToolAngle);
    // A round tool has no orientation; the zeros make two round tools compare equal.
    for (ToolSpec* tool : {&record.ToolA, &record.ToolB}) {
        if (LetterIs(*tool, 'A')) {
            tool->ToolStep = 0;
            tool->ToolAngle = 0;
        }
    }
    switch (record.EntityCode) {
        case 110:
        case 120:
        case 220:
        case 521:
        case 522:
            BindLine(machine, record);
            break;
        case 130:
        case 151:
        case 230:
            BindArc(machine, record);
            break;
        case 152:
        case 153:
        case 154:
        case 155:
        case 156:
            BindShape(machine, record);
            break;
        case 171:
        case 175:
            BindBoxShape(record);
            break;
        case 210:
            BindPunch(record);
            break;
        case 225:
            BindGrid(record);
            break;
        case 311:
        case 312:
        case 321:
        case 350:
        case 355:
            BindMark(record);
            break;
        case 500:
        case 510:
            BindMultipart(record);
            break;
        default:
            break;
    }
}

}  // namespace tvx
