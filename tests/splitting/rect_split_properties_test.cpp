// Properties of the splits of the radiused rectangle (155) and the rectangle (156) over random
// shapes within their defined range: every outline closes, each corner meets the sides beside
// it, a shape turned by an angle gives the turned records, and the hits of a worked side land on
// it.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "common/fault.h"
#include "drawing/property_support.h"
#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

using namespace tvx;

namespace {

using tvx::bindtest::Between;

constexpr double P = Pi;  // the system's pi, 3.14159265

// Made points are rounded to 4 decimals and stored as singles: two such points that stand for
// the same place are this close.
constexpr double Near = 3e-4;

double Signed(double low, double high) { return *rc::gen::element(1.0, -1.0) * Between(low, high, 100); }

// A shape about a random centre; the rotation has 3 decimals, as a drawing keeps it.
DrawRecord RandomShape(int16_t code, double rotation) {
    DrawRecord r;
    r.EntityCode = code;
    r.Point[4] = SinglePoint{static_cast<float>(Between(-1000, 1000, 100)), static_cast<float>(Between(-1000, 1000, 100))};
    r.Value[1] = static_cast<float>(Signed(2, 400));
    r.Value[2] = static_cast<float>(Signed(2, 400));
    const double smaller = std::min(std::fabs(r.Value[1]), std::fabs(r.Value[2]));
    if (code == 155) r.Value[3] = static_cast<float>(Between(0, smaller / 2, 100));
    r.Value[10] = static_cast<float>(rotation);
    r.Side = *rc::gen::element<int16_t>(-1, 0, 1);
    return r;
}

// The start corner of a rectangle: from the centre back half of L along the rotation and half of
// H across it.
void PlaceStartCorner(DrawRecord& r) {
    double ax = 0, ay = 0, bx = 0, by = 0;
    PolarToXY(r.Value[1] / 2.0, r.Value[10] + 180.0, ax, ay);
    PolarToXY(r.Value[2] / 2.0, r.Value[10] + 270.0, bx, by);
    r.Point[1] = SinglePoint{static_cast<float>(RoundTo(r.Point[4].X + ax + bx, 4)),
                             static_cast<float>(RoundTo(r.Point[4].Y + ay + by, 4))};
}

void Punch(ToolSpec& tool, const char* letter, double size1, double size2, int16_t workType, double angle) {
    tool.Present = -1;
    tool.Letter = letter;
    tool.Size[1] = static_cast<float>(size1);
    tool.Size[2] = static_cast<float>(size2);
    tool.WorkType = workType;
    tool.ToolAngle = static_cast<float>(angle);
}

using Routine = void (*)(SplitOutput&, const DrawRecord&);

std::vector<DrawRecord> Split(Routine routine, const DrawRecord& shape, int16_t turnSense) {
    const MachineState m = bindtest::Machine(turnSense);
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, MainPathChoices);
    routine(out, shape);
    return records;
}

double Gap(const SinglePoint& a, const SinglePoint& b) {
    return std::hypot(static_cast<double>(a.X) - b.X, static_cast<double>(a.Y) - b.Y);
}

// The outlines that run all the way round, each with what it needs of the shape.
struct Outline {
    const char* Name;
    int16_t Code;
    Routine Run;
};

const Outline Outlines[] = {
    {"SplitRadRectProfile", 155, SplitRadRectProfile},
    {"SplitRadRectRound", 155, SplitRadRectRound},
    {"SplitRadRectLeads", 155, SplitRadRectLeads},
    {"SplitRectangleProfile", 156, SplitRectangleProfile},
    {"SplitRectangleLeads", 156, SplitRectangleLeads},
    {"SplitRectangleOutside", 156, SplitRectangleOutside},
    {"SplitRectangleOutsideRotary", 156, SplitRectangleOutsideRotary},
    {"SplitRectangleOutsideTwoTools", 156, SplitRectangleOutsideTwoTools},
    {"SplitRectangleInsideRound", 156, SplitRectangleInsideRound},
    {"SplitRectangleInsideTwoRound", 156, SplitRectangleInsideTwoRound},
};

DrawRecord ShapeFor(const Outline& outline, double rotation) {
    DrawRecord shape = RandomShape(outline.Code, rotation);
    if (outline.Code == 156) PlaceStartCorner(shape);
    const std::string name = outline.Name;
    if (name == "SplitRadRectRound" || name.find("Outside") != std::string::npos ||
        name.find("Inside") != std::string::npos) {
        Punch(shape.ToolA, "A", 5, 0, name.find("Rotary") != std::string::npos ? 20 : 10, 0);
        Punch(shape.ToolB, "C", 5, 3, 10, 0);
    }
    return shape;
}

// Turns a point about a centre by an angle.
void Turn(double cx, double cy, double x, double y, double angle, double& tx, double& ty) {
    const double c = std::cos(angle * P / 180);
    const double s = std::sin(angle * P / 180);
    tx = cx + (x - cx) * c - (y - cy) * s;
    ty = cy + (x - cx) * s + (y - cy) * c;
}

double AngleGap(double a, double b) {
    const double d = std::fabs(Norm360(a - b));
    return std::min(d, 360 - d);
}

}  // namespace

RC_GTEST_PROP(RectSplitProperties, EveryOutlineClosesAndEachPieceStartsWhereTheLastEnded, ()) {
    const Outline& outline = Outlines[*rc::gen::inRange<size_t>(0, std::size(Outlines))];
    const DrawRecord shape = ShapeFor(outline, Between(0, 359.999));
    const std::vector<DrawRecord> r = Split(outline.Run, shape, *rc::gen::element<int16_t>(0, 1));
    RC_ASSERT(r.size() == (outline.Code == 156 ? (std::string(outline.Name) == "SplitRectangleLeads" ? 5u : 4u)
                                               : (std::string(outline.Name) == "SplitRadRectLeads" ? 9u : 8u)));
    for (size_t i = 0; i < r.size(); ++i) {
        const DrawRecord& next = r[(i + 1) % r.size()];
        RC_ASSERT(Gap(r[i].Point[3], next.Point[1]) <= Near);
    }
}

RC_GTEST_PROP(RectSplitProperties, EveryCornerArcHasItsEndsOnItsCircleAndMeetsItsSides, ()) {
    // The first three outlines are the radiused rectangle's.
    const Outline& outline = Outlines[*rc::gen::inRange<size_t>(0, 3)];
    const DrawRecord shape = ShapeFor(outline, Between(0, 359.999));
    const std::vector<DrawRecord> r = Split(outline.Run, shape, 0);
    int corners = 0;
    for (size_t i = 0; i < r.size(); ++i) {
        if (r[i].EntityCode != 130) continue;
        ++corners;
        const double radius = r[i].Value[1];
        RC_ASSERT(std::fabs(radius - shape.Value[3]) <= 1e-6);
        RC_ASSERT(std::fabs(Gap(r[i].Point[1], r[i].Point[4]) - radius) <= Near);
        RC_ASSERT(std::fabs(Gap(r[i].Point[3], r[i].Point[4]) - radius) <= Near);
        RC_ASSERT(std::fabs(Gap(r[i].Point[2], r[i].Point[4]) - radius) <= Near);
        RC_ASSERT(std::fabs(std::fabs(r[i].Value[11]) - 90) <= 1e-6);
        // The sides beside it end and start on it.
        RC_ASSERT(Gap(r[i - 1].Point[3], r[i].Point[1]) <= Near);
        RC_ASSERT(Gap(r[(i + 1) % r.size()].Point[1], r[i].Point[3]) <= Near);
    }
    RC_ASSERT(corners == 4);
}

RC_GTEST_PROP(RectSplitProperties, AShapeTurnedByAnAngleGivesTheTurnedRecords, ()) {
    const Outline& outline = Outlines[*rc::gen::inRange<size_t>(0, std::size(Outlines))];
    const double angle = Between(0, 359.999);
    DrawRecord upright = ShapeFor(outline, 0);
    DrawRecord turned = upright;
    turned.Value[10] = static_cast<float>(angle);
    if (outline.Code == 156) PlaceStartCorner(turned);
    // A tool that stands on the rectangle's first axis at either turn.
    turned.ToolA.ToolAngle = static_cast<float>(angle);
    turned.ToolB.ToolAngle = static_cast<float>(angle);
    const std::vector<DrawRecord> a = Split(outline.Run, upright, 0);
    const std::vector<DrawRecord> b = Split(outline.Run, turned, 0);
    RC_ASSERT(a.size() == b.size());
    const double cx = upright.Point[4].X;
    const double cy = upright.Point[4].Y;
    for (size_t i = 0; i < a.size(); ++i) {
        RC_ASSERT(a[i].EntityCode == b[i].EntityCode);
        RC_ASSERT(a[i].Side == b[i].Side);
        for (int k : {1, 3, 4}) {
            if (k == 4 && a[i].EntityCode != 130) continue;
            double x = 0, y = 0;
            Turn(cx, cy, a[i].Point[k].X, a[i].Point[k].Y, angle, x, y);
            // A start corner placed anew (156) adds its own rounding to the walk's.
            RC_ASSERT(std::hypot(x - b[i].Point[k].X, y - b[i].Point[k].Y) <= 2 * Near);
        }
        if (a[i].EntityCode == 130) {
            RC_ASSERT(AngleGap(a[i].Value[10] + angle, b[i].Value[10]) <= 1e-3);
            RC_ASSERT(a[i].Value[11] == b[i].Value[11]);
        } else if (a[i].Value[1] >= 10) {
            RC_ASSERT(std::fabs(a[i].Value[1] - b[i].Value[1]) <= 2 * Near);
            RC_ASSERT(AngleGap(a[i].Value[10] + angle, b[i].Value[10]) <= 3e-3);
        }
    }
}

RC_GTEST_PROP(RectSplitProperties, TheHitsOfAWorkedSideLandOnIt, ()) {
    struct Worked {
        int16_t Code;
        Routine Run;
        bool Rotary;
    };
    static const Worked routines[] = {
        {156, SplitRectangleOutside, false},        {156, SplitRectangleOutsideRotary, true},
        {156, SplitRectangleOutsideTwoTools, false}, {156, SplitRectangleInsideRound, false},
        {156, SplitRectangleInside, false},          {156, SplitRectangleInsideRotary, true},
        {156, SplitRectangleInsideTwoTools, false},  {156, SplitRectangleInsideTwoRound, false},
        {155, SplitRadRectEdges, false},             {155, SplitRadRectEdgesRotary, true},
    };
    const Worked& w = routines[*rc::gen::inRange<size_t>(0, std::size(routines))];
    const double rotation = Between(0, 359.999);
    DrawRecord shape = RandomShape(w.Code, rotation);
    if (w.Code == 156) PlaceStartCorner(shape);
    const double smaller = std::min(std::fabs(shape.Value[1]), std::fabs(shape.Value[2]));
    // The tool stands on one of the shape's axes and is at most a quarter of its smaller side.
    const double toolAngle = Norm360(rotation + 90.0 * *rc::gen::inRange(0, 4));
    const std::string letterA = *rc::gen::element<std::string>("A", "C", "E");
    const std::string letterB = *rc::gen::element<std::string>("A", "C");
    Punch(shape.ToolA, letterA.c_str(), Between(0.5, smaller / 4, 100),
          Between(0.5, smaller / 4, 100), w.Rotary ? 20 : 10, toolAngle);
    Punch(shape.ToolB, letterB.c_str(), Between(0.5, smaller / 4, 100),
          Between(0.5, smaller / 4, 100), 10, toolAngle);
    if (w.Code == 156) {
        shape.Value[3] = static_cast<float>(Between(0, smaller / 8, 100));
        shape.Value[4] = static_cast<float>(Between(0.5, 30, 100));
        shape.Value[5] = static_cast<float>(Between(0.5, 30, 100));
    }
    const std::vector<DrawRecord> r = Split(w.Run, shape, 0);
    RC_ASSERT(r.size() == 4u);
    for (const DrawRecord& line : r) {
        RC_ASSERT(line.EntityCode == 120);
        RC_ASSERT(line.Count[1] >= 1);
        const double sx = line.Point[1].X;
        const double sy = line.Point[1].Y;
        const double length = Gap(line.Point[1], line.Point[3]);
        const double ux = length > 0 ? (line.Point[3].X - sx) / length : 1;
        const double uy = length > 0 ? (line.Point[3].Y - sy) / length : 0;
        // The hits as the line emitter places them: from Point[5], a step of PolarToXY(Value[2],
        // Value[10]) each; the direction is kept to 3 decimals.
        const double tolerance = 1e-3 + length * 1e-5;
        double dx = 0, dy = 0;
        PolarToXY(line.Value[2], line.Value[10], dx, dy);
        double x = line.Point[5].X;
        double y = line.Point[5].Y;
        for (int i = 0; i < line.Count[1]; ++i) {
            if (i > 0) {
                x += dx;
                y += dy;
            }
            const double along = (x - sx) * ux + (y - sy) * uy;
            const double across = -(x - sx) * uy + (y - sy) * ux;
            RC_ASSERT(std::fabs(across) <= tolerance);
            RC_ASSERT(along >= -tolerance);
            RC_ASSERT(along <= length + tolerance);
        }
    }
}

// A damaged record (dimensions, angles or tool sizes that are 0, huge, not finite or not a
// number) ends the split cleanly or as a fault of the run, never as a crash.
RC_GTEST_PROP(RectSplitProperties, ADamagedRecordEndsCleanlyOrAsAFault, ()) {
    const auto anyValue = [] {
        return static_cast<float>(*rc::gen::oneOf(
            rc::gen::element(0.0, -0.0, 1e30, -1e30, 3e38, static_cast<double>(std::numeric_limits<float>::infinity()),
                             -static_cast<double>(std::numeric_limits<float>::infinity()),
                             static_cast<double>(std::numeric_limits<float>::quiet_NaN())),
            rc::gen::map(rc::gen::inRange(-100000, 100000), [](int v) { return v / 100.0; })));
    };
    DrawRecord shape;
    shape.EntityCode = *rc::gen::element<int16_t>(155, 156);
    shape.Point[1] = SinglePoint{anyValue(), anyValue()};
    shape.Point[4] = SinglePoint{anyValue(), anyValue()};
    for (int i : {1, 2, 3, 4, 5, 10}) shape.Value[i] = anyValue();
    shape.Side = *rc::gen::element<int16_t>(-1, 0, 1, 2);
    shape.Count[1] = *rc::gen::element<int16_t>(0, 1);
    for (ToolSpec* tool : {&shape.ToolA, &shape.ToolB}) {
        tool->Present = *rc::gen::element<int16_t>(0, -1);
        tool->Letter = *rc::gen::element<std::string>("A", "C", "E", "M", "P");
        for (int i = 1; i <= 4; ++i) tool->Size[i] = anyValue();
        tool->WorkType = *rc::gen::element<int16_t>(1, 10, 20);
        tool->ToolAngle = anyValue();
        tool->ToolStep = anyValue();
    }
    shape.LeadIn.LeadKind = *rc::gen::element<int16_t>(0, 1);
    shape.LeadIn.LeadLength = anyValue();
    shape.LeadOut.LeadKind = *rc::gen::element<int16_t>(0, 1);
    shape.LeadOut.LeadLength = anyValue();
    const std::vector<Routine> routines = {SplitRadRect,        SplitRectangle,         SplitRadRectRound,
                                           ClearRectByGrid,     SplitRadRectEdges,      SplitRadRectEdgesRotary,
                                           SplitRectangleWorked, SplitRectangleLeads,   SplitRadRectLeads};
    const Routine routine = routines[*rc::gen::inRange<size_t>(0, routines.size())];
    try {
        const std::vector<DrawRecord> r = Split(routine, shape, 0);
        RC_ASSERT(r.size() <= 11u);
    } catch (const RunEnd& end) {
        RC_ASSERT(end.Status == ExitFault);
    }
}
