#include "drawing/bind_support.h"

#include <algorithm>
#include <cmath>

#include "common/numeric.h"

namespace tvx::bind {

void PlaneBox::Add(double x, double y) {
    if (Empty) {
        LowX = HighX = x;
        LowY = HighY = y;
        Empty = false;
        return;
    }
    if (x < LowX) LowX = x;
    if (x > HighX) HighX = x;
    if (y < LowY) LowY = y;
    if (y > HighY) HighY = y;
}

double Round4(double value) { return RoundTo(value, 4); }

void StoreRounded(SinglePoint& point, double x, double y) {
    point.X = ToSingle(Round4(x));
    point.Y = ToSingle(Round4(y));
}

float StoreAngle(double angle) {
    const float stored = ToSingle(Norm360(angle));
    return stored >= 360.0f ? 0.0f : stored;
}

namespace {

// Widens [low, high] on both sides by half of what it lacks of the minimum.
void Widen(double& low, double& high, double minimum) {
    const double size = high - low;
    if (size < minimum) {
        const double missing = minimum - size;
        low -= missing / 2;
        high += missing / 2;
    }
}

}  // namespace

void StoreBoxes(DrawRecord& record, const PlaneBox& box, double clearance, std::initializer_list<double> minimums) {
    StoreRounded(record.Extent[1], box.LowX, box.LowY);
    StoreRounded(record.Extent[2], box.HighX, box.HighY);
    double lowX = box.LowX - clearance;
    double highX = box.HighX + clearance;
    double lowY = box.LowY - clearance;
    double highY = box.HighY + clearance;
    for (double minimum : minimums) {
        Widen(lowX, highX, minimum);
        Widen(lowY, highY, minimum);
    }
    StoreRounded(record.Margin[1], lowX, lowY);
    StoreRounded(record.Margin[2], highX, highY);
}

void WidenBoxes(DrawRecord& record, double x, double y) {
    const float sx = ToSingle(x);
    const float sy = ToSingle(y);
    const auto widen = [sx, sy](SinglePoint& low, SinglePoint& high) {
        if (sx < low.X) low.X = sx;
        if (sy < low.Y) low.Y = sy;
        if (sx > high.X) high.X = sx;
        if (sy > high.Y) high.Y = sy;
    };
    widen(record.Extent[1], record.Extent[2]);
    widen(record.Margin[1], record.Margin[2]);
}

void AddArc(PlaneBox& box, double cx, double cy, double r, double a, double s) {
    double x = 0;
    double y = 0;
    PolarToXY(r, a, x, y);
    box.Add(Round4(cx + x), Round4(cy + y));
    PolarToXY(r, a + s, x, y);
    box.Add(Round4(cx + x), Round4(cy + y));
    // A negative radius draws the arc on the far side of the centre.
    if (r < 0) {
        r = -r;
        a += 180;
    }
    const double axisX[4] = {cx + r, cx, cx - r, cx};
    const double axisY[4] = {cy, cy + r, cy, cy - r};
    for (int k = 0; k < 4; ++k) {
        const double axis = 90.0 * k;
        bool passed = std::fabs(s) >= 360;
        if (!passed) passed = s >= 0 ? Norm360(axis - a) <= s : Norm360(a - axis) <= -s;
        if (passed) box.Add(Round4(axisX[k]), Round4(axisY[k]));
    }
}

bool HasWorkingTool(const DrawRecord& record) { return IsWorkedTool(record.ToolA); }

bool IsWorkedPath(const MachineState& machine, const DrawRecord& record) {
    return HasWorkingTool(record) && !LetterIs(record.ToolA, 'P') && !machine.IsComboMachine;
}

double ToolReach(const ToolSpec& tool) {
    const double width = std::fabs(static_cast<double>(tool.Size[1]));
    if (LetterIs(tool, 'A')) return width / 2;
    const double length = std::fabs(static_cast<double>(tool.Size[2]));
    return std::sqrt(width * width + length * length) / 2;
}

bool IsLineCode(int16_t code) { return code == 110 || code == 120 || code == 220 || code == 521 || code == 522; }
bool IsArcCode(int16_t code) { return code == 130 || code == 151 || code == 230; }
bool IsShapeCode(int16_t code) { return code >= 151 && code <= 156; }

double DrawnSweep(const DrawRecord& record) {
    const double sweep = record.Value[11];
    if (record.EntityCode == 151) return sweep < 0 ? -360.0 : 360.0;
    return sweep;
}

void ArcWorkingAngles(const DrawRecord& record, double& start, double& sweep) {
    start = record.Value[10];
    sweep = DrawnSweep(record);
    if (record.EntityCode != 130) return;
    const double startTrim = record.Value[8];
    const double endTrim = record.Value[9];
    if (startTrim == 0 && endTrim == 0) return;
    const double radius = std::fabs(static_cast<double>(record.Value[1]));
    // Degrees for each unit of length along the arc.
    const double perLength = radius > 0 && std::isfinite(radius) ? 360.0 / (2 * Pi * radius) : 0.0;
    const double sense = sweep >= 0 ? 1.0 : -1.0;
    const double startTurn = startTrim * perLength;
    const double endTurn = endTrim * perLength;
    if (startTrim != 0) start = Norm360(RoundTo(Norm360(start + sense * startTurn), 3));
    sweep = RoundTo(sweep - sense * (startTurn + endTurn), 3);
}

void ShapeMeetingPoint(const DrawRecord& shape, double& x, double& y) {
    const double cx = shape.Point[4].X;
    const double cy = shape.Point[4].Y;
    const double r = shape.Value[1];
    const double second = shape.Value[2];
    const double rotation = shape.Value[10];
    double dx = 0;
    double dy = 0;
    switch (shape.EntityCode) {
        case 152:
            // The right end of the flat, at (h - r) above the centre; a flat that does not cut
            // the circle has length 0.
            x = cx + std::sqrt(std::max(0.0, r * r - (second - r) * (second - r)));
            y = cy + (second - r);
            RotatePoint(cx, cy, x, y, rotation);
            break;
        case 153:
            // The right end of the lower flat.
            x = cx + std::sqrt(std::max(0.0, r * r - (second / 2) * (second / 2)));
            y = cy - second / 2;
            RotatePoint(cx, cy, x, y, rotation);
            break;
        case 151:
            PolarToXY(r, rotation, dx, dy);
            x = cx + dx;
            y = cy + dy;
            break;
        default:
            // The middle of the side to the right.
            PolarToXY(r / 2, rotation, dx, dy);
            x = cx + dx;
            y = cy + dy;
            break;
    }
    x = Round4(x);
    y = Round4(y);
}

void EntityEnds(const DrawRecord& record, double& startX, double& startY, double& endX, double& endY) {
    const int16_t code = record.EntityCode;
    startX = record.Point[1].X;
    startY = record.Point[1].Y;
    endX = record.Point[3].X;
    endY = record.Point[3].Y;
    double dx = 0;
    double dy = 0;
    if (IsLineCode(code)) {
        const double direction = record.Value[10];
        if (record.Value[3] != 0) {
            PolarToXY(record.Value[3], direction, dx, dy);
            startX = Round4(startX + dx);
            startY = Round4(startY + dy);
        }
        if (record.Value[4] != 0) {
            PolarToXY(record.Value[4], direction + 180, dx, dy);
            endX = Round4(endX + dx);
            endY = Round4(endY + dy);
        }
    } else if (code == 130) {
        double start = 0;
        double sweep = 0;
        ArcWorkingAngles(record, start, sweep);
        const double cx = record.Point[4].X;
        const double cy = record.Point[4].Y;
        const double r = record.Value[1];
        if (record.Value[8] != 0) {
            PolarToXY(r, start, dx, dy);
            startX = Round4(cx + dx);
            startY = Round4(cy + dy);
        }
        if (record.Value[9] != 0) {
            PolarToXY(r, Norm360(start + sweep), dx, dy);
            endX = Round4(cx + dx);
            endY = Round4(cy + dy);
        }
    } else if (IsShapeCode(code)) {
        ShapeMeetingPoint(record, startX, startY);
        endX = startX;
        endY = startY;
    }
}

}  // namespace tvx::bind
