// Properties of binding over random records: the hits of worked lines and arcs lie on the drawn
// geometry and run from the working start to the working end, a line's box holds its ends, and
// binding twice changes nothing beyond the rounding of a single.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "common/numeric.h"
#include "drawing/property_support.h"
#include "drawing/binding.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

using tvx::bindtest::Between;

constexpr double P = Pi;  // the system's pi, 3.14159265

void PunchTool(DrawRecord& r) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = *rc::gen::element<std::string>("A", "C", "E");
    r.ToolA.Size[1] = static_cast<float>(Between(1, 30, 10));
    r.ToolA.Size[2] = static_cast<float>(Between(1, 30, 10));
    r.ToolA.WorkType = *rc::gen::element<int16_t>(10, 11, 20, 21, 39);
}

// The hits that the line emitter places: the first at Point[5], each next one a step of
// PolarToXY(Value[2], Value[10]) further, summed in double precision.
std::vector<std::pair<double, double>> LineHits(const DrawRecord& r) {
    std::vector<std::pair<double, double>> hits;
    double x = r.Point[5].X;
    double y = r.Point[5].Y;
    double dx = 0;
    double dy = 0;
    PolarToXY(r.Value[2], r.Value[10], dx, dy);
    const int count = std::max<int>(1, r.Count[1]);
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            x += dx;
            y += dy;
        }
        hits.emplace_back(x, y);
    }
    return hits;
}

// The hits that the arc emitter places: hit i at Point[4] + PolarToXY(Value[5], Value[13] +
// i * Value[12]).
std::vector<std::pair<double, double>> ArcHits(const DrawRecord& r) {
    std::vector<std::pair<double, double>> hits;
    const int count = std::max<int>(1, r.Count[1]);
    for (int i = 0; i < count; ++i) {
        double dx = 0;
        double dy = 0;
        PolarToXY(r.Value[5], static_cast<double>(r.Value[13]) + i * static_cast<double>(r.Value[12]), dx, dy);
        hits.emplace_back(r.Point[4].X + dx, r.Point[4].Y + dy);
    }
    return hits;
}

// Checks that the hits lie on the line through (sx, sy) along `direction` and run from the
// working start, `from` along it, to `to`, one after the other.
void CheckHitsOnLine(const std::vector<std::pair<double, double>>& hits, double sx, double sy, double direction,
                     double from, double to) {
    const double ux = std::cos(direction * P / 180);
    const double uy = std::sin(direction * P / 180);
    double last = -1e300;
    for (const auto& [hx, hy] : hits) {
        const double along = (hx - sx) * ux + (hy - sy) * uy;
        const double across = -(hx - sx) * uy + (hy - sy) * ux;
        RC_ASSERT(std::fabs(across) <= 1e-3);
        RC_ASSERT(along >= from - 1e-3);
        RC_ASSERT(along <= to + 1e-3);
        RC_ASSERT(along > last);
        last = along;
    }
}

RC_GTEST_PROP(BindingProperties, WorkedLineHitsLieOnTheLineFromTheWorkingStartToTheWorkingEnd, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    DrawRecord r;
    r.EntityCode = *rc::gen::element<int16_t>(120, 521, 522);
    const double x1 = Between(-1000, 1000, 100);
    const double y1 = Between(-1000, 1000, 100);
    const double length = Between(1, 500, 100);
    const double direction = Between(0, 359.999);
    double dx = 0;
    double dy = 0;
    PolarToXY(length, direction, dx, dy);
    r.Point[1] = {static_cast<float>(x1), static_cast<float>(y1)};
    r.Point[3] = {static_cast<float>(x1 + dx), static_cast<float>(y1 + dy)};
    r.Value[1] = static_cast<float>(length);
    r.Value[10] = static_cast<float>(direction);
    const double startTrim = *rc::gen::element(0.0, Between(0, length / 4, 100));
    const double endTrim = *rc::gen::element(0.0, Between(0, length / 4, 100));
    r.Value[3] = static_cast<float>(startTrim);
    r.Value[4] = static_cast<float>(endTrim);
    r.Value[2] = static_cast<float>(Between(0.1, 60, 100));
    PunchTool(r);
    BindRecord(m, r);

    const double working = static_cast<double>(r.Value[1]) - r.Value[3] - r.Value[4];
    RC_ASSERT(r.Count[1] >= 1);
    RC_ASSERT(r.Value[2] > 0);
    // k whole pitches of the asked pitch fit: the pitch is never made smaller than asked, but
    // for the allowance.
    if (r.Count[1] >= 2) RC_ASSERT(std::fabs(r.Value[5] - working) <= 1e-3);
    const auto hits = LineHits(r);
    CheckHitsOnLine(hits, r.Point[1].X, r.Point[1].Y, r.Value[10], startTrim, startTrim + working);
    // The first hit at the working start, the last at the working end.
    double sx = 0, sy = 0, ex = 0, ey = 0;
    PolarToXY(startTrim, direction, sx, sy);
    RC_ASSERT(std::hypot(hits.front().first - (x1 + sx), hits.front().second - (y1 + sy)) <= 1e-3);
    if (r.Count[1] >= 2) {
        PolarToXY(length - endTrim, direction, ex, ey);
        RC_ASSERT(std::hypot(hits.back().first - (x1 + ex), hits.back().second - (y1 + ey)) <= 1e-3);
    }
}

RC_GTEST_PROP(BindingProperties, WorkedRowOfHitsRunsFromItsStartToItsEnd, ()) {
    const MachineState m = bindtest::Machine(0);
    DrawRecord r;
    r.EntityCode = 220;
    const double x1 = Between(-1000, 1000, 100);
    const double y1 = Between(-1000, 1000, 100);
    // The row's direction is kept to 3 decimals: over 80 mm that is at most 0.0007 off the line.
    const double length = Between(1, 80, 100);
    const double direction = Between(0, 359.999);
    double dx = 0;
    double dy = 0;
    PolarToXY(length, direction, dx, dy);
    r.Point[5] = {static_cast<float>(x1), static_cast<float>(y1)};
    r.Point[6] = {static_cast<float>(x1 + dx), static_cast<float>(y1 + dy)};
    r.Value[2] = static_cast<float>(*rc::gen::element(1.0, -1.0) * Between(0.1, 30, 100));
    PunchTool(r);
    BindRecord(m, r);
    const double end = std::hypot(static_cast<double>(r.Point[6].X) - r.Point[5].X,
                                  static_cast<double>(r.Point[6].Y) - r.Point[5].Y);
    const double realDirection = std::atan2(static_cast<double>(r.Point[6].Y) - r.Point[5].Y,
                                            static_cast<double>(r.Point[6].X) - r.Point[5].X) * 180 / P;
    const auto hits = LineHits(r);
    CheckHitsOnLine(hits, r.Point[5].X, r.Point[5].Y, realDirection, 0, end);
    if (r.Count[1] >= 2) {
        RC_ASSERT(std::hypot(hits.back().first - r.Point[6].X, hits.back().second - r.Point[6].Y) <= 1e-3);
    }
}

RC_GTEST_PROP(BindingProperties, WorkedArcHitsLieOnTheArcFromTheWorkingStartToTheWorkingEnd, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    DrawRecord r;
    r.EntityCode = *rc::gen::element<int16_t>(130, 230);
    const double cx = Between(-500, 500, 100);
    const double cy = Between(-500, 500, 100);
    const double radius = Between(1, 300, 100);
    const double start = Between(0, 359.999);
    const double sense = *rc::gen::element(1.0, -1.0);
    const double sweep = sense * *rc::gen::oneOf(rc::gen::just(360.0), rc::gen::map(rc::gen::inRange(1000, 359900), [](int v) {
                             return v / 1000.0;
                         }));
    r.Point[4] = {static_cast<float>(cx), static_cast<float>(cy)};
    r.Value[1] = static_cast<float>(radius);
    r.Value[10] = static_cast<float>(start);
    r.Value[11] = static_cast<float>(sweep);
    const double arcLength = std::fabs(sweep) * 2 * P * radius / 360;
    if (r.EntityCode == 130 && std::fabs(sweep) < 360) {
        r.Value[8] = static_cast<float>(*rc::gen::element(0.0, Between(0, arcLength / 4, 100)));
        r.Value[9] = static_cast<float>(*rc::gen::element(0.0, Between(0, arcLength / 4, 100)));
    }
    if (*rc::gen::arbitrary<bool>()) {
        r.Value[12] = static_cast<float>(Between(0.5, 60, 100));
    } else {
        r.Value[3] = static_cast<float>(Between(0.5, 30, 100));
    }
    PunchTool(r);
    BindRecord(m, r);
    const double centreX = r.Point[4].X;
    const double centreY = r.Point[4].Y;

    // The working arc, by the rule of the trims: lengths along the arc turned into degrees at
    // the radius, the results kept to 3 decimals.
    double workStart = r.Value[10];
    double workSweep = r.Value[11];
    if (r.Value[8] != 0 || r.Value[9] != 0) {
        const double perLength = 360 / (2 * P * r.Value[1]);
        const double t8 = static_cast<double>(r.Value[8]) * perLength;
        const double t9 = static_cast<double>(r.Value[9]) * perLength;
        if (r.Value[8] != 0) workStart = Norm360(RoundTo(Norm360(workStart + sense * t8), 3));
        workSweep = RoundTo(workSweep - sense * (t8 + t9), 3);
    }
    RC_ASSERT(std::fabs(r.Value[13] - workStart) <= 1e-3);
    RC_ASSERT(std::fabs(r.Value[14] - workSweep) <= 1e-3);
    const bool whole = std::fabs(workSweep) == 360;
    const auto hits = ArcHits(r);
    RC_ASSERT(r.Count[1] >= 1);
    double last = -1e9;
    for (const auto& [hx, hy] : hits) {
        RC_ASSERT(std::fabs(std::hypot(hx - centreX, hy - centreY) - radius) <= 1e-3);
        // How far round from the working start, in the sense of the sweep, as a length.
        double distance = 0;
        double angle = 0;
        XYToPolar(hx - centreX, hy - centreY, distance, angle);
        double turned = Norm360(sense * (angle - workStart)) * radius * P / 180;
        if (2 * P * radius - turned <= 1e-3) turned -= 2 * P * radius;  // the start, seen from just below 360
        RC_ASSERT(turned >= -1e-3);
        RC_ASSERT(turned <= std::fabs(workSweep) * radius * P / 180 + 1e-3);
        RC_ASSERT(turned > last);
        last = turned;
    }
    if (r.Count[1] >= 2) {
        const auto& [lx, ly] = hits.back();
        double ex = 0;
        double ey = 0;
        if (whole) {
            // The last hit one step before the first.
            PolarToXY(radius, workStart + workSweep - r.Value[12], ex, ey);
        } else {
            PolarToXY(radius, workStart + workSweep, ex, ey);
        }
        RC_ASSERT(std::hypot(lx - (centreX + ex), ly - (centreY + ey)) <= 1e-3);
    }
}

RC_GTEST_PROP(BindingProperties, LineExtentHoldsBothEnds, ()) {
    const MachineState m = bindtest::Machine(0);
    DrawRecord r;
    r.EntityCode = *rc::gen::element<int16_t>(110, 120, 220, 521, 522);
    for (int i : {1, 3, 5, 6})
        r.Point[i] = {static_cast<float>(Between(-5000, 5000, 10000)), static_cast<float>(Between(-5000, 5000, 10000))};
    r.Value[1] = static_cast<float>(Between(-100, 1000, 100));
    r.Value[10] = static_cast<float>(Between(0, 360, 100));
    r.Value[3] = static_cast<float>(Between(-50, 50, 100));
    r.Value[4] = static_cast<float>(Between(-50, 50, 100));
    BindRecord(m, r);
    const int ends[] = {r.EntityCode == 220 ? 5 : 1, r.EntityCode == 220 ? 6 : 3};
    for (int i : ends) {
        RC_ASSERT(r.Extent[1].X <= r.Point[i].X);
        RC_ASSERT(r.Extent[1].Y <= r.Point[i].Y);
        RC_ASSERT(r.Extent[2].X >= r.Point[i].X);
        RC_ASSERT(r.Extent[2].Y >= r.Point[i].Y);
        RC_ASSERT(r.Margin[1].X <= r.Point[i].X - 5 + 1e-3);
        RC_ASSERT(r.Margin[2].Y >= r.Point[i].Y + 5 - 1e-3);
    }
}

// Two singles equal up to the rounding of a single (and of the 4 decimals of a point).
bool Close(float a, float b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::fabs(static_cast<double>(a) - b) <= 2e-4 + 1e-6 * std::fabs(static_cast<double>(a));
}

RC_GTEST_PROP(BindingProperties, BindingTwiceChangesNothingBeyondTheRoundingOfASingle, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1, 2));
    DrawRecord r;
    r.EntityCode = *rc::gen::element<int16_t>(110, 120, 130, 151, 171, 175, 210, 220, 225, 230, 311, 312, 321, 322,
                                              350, 355, 500, 510, 521, 522, 999);
    for (int i = 1; i <= 6; ++i)
        r.Point[i] = {static_cast<float>(Between(-2000, 2000, 100)), static_cast<float>(Between(-2000, 2000, 100))};
    for (int i = 1; i <= 20; ++i) r.Value[i] = static_cast<float>(Between(-50, 50, 100));
    r.Value[1] = static_cast<float>(Between(0.5, 300, 100));
    r.Value[2] = static_cast<float>(Between(-40, 40, 100));
    r.Value[4] = static_cast<float>(Between(-40, 40, 100));
    r.Value[10] = static_cast<float>(Between(0, 359.99, 100));
    r.Value[11] = static_cast<float>(*rc::gen::element(360.0, -360.0, Between(-359, 359, 100)));
    for (int i = 1; i <= 8; ++i) r.Count[i] = *rc::gen::inRange<int16_t>(-2, 40);
    if (r.EntityCode == 500 || r.EntityCode == 510) {
        // A single turned part is turned again each time: not for this property.
        if (r.Count[1] == 1 && r.Count[2] == 1) r.Value[10] = 0;
    }
    r.Side = *rc::gen::inRange<int16_t>(-1, 2);
    if (*rc::gen::arbitrary<bool>()) PunchTool(r);
    r.ToolA.ToolAngle = static_cast<float>(Between(-720, 720, 100));
    r.LeadIn = LeadSpec{*rc::gen::inRange<int16_t>(-3, 4), static_cast<float>(Between(0, 20, 100)),
                        static_cast<float>(Between(0, 359, 100)), 0};
    r.LeadOut = LeadSpec{*rc::gen::inRange<int16_t>(-3, 4), static_cast<float>(Between(0, 20, 100)),
                         static_cast<float>(Between(0, 359, 100)), 0};
    BindRecord(m, r);
    DrawRecord twice = r;
    BindRecord(m, twice);
    for (int i = 1; i <= 6; ++i) {
        RC_ASSERT(Close(r.Point[i].X, twice.Point[i].X));
        RC_ASSERT(Close(r.Point[i].Y, twice.Point[i].Y));
    }
    for (int i = 1; i <= 20; ++i) RC_ASSERT(Close(r.Value[i], twice.Value[i]));
    for (int i = 1; i <= 8; ++i) RC_ASSERT(r.Count[i] == twice.Count[i]);
    for (int i = 1; i <= 2; ++i) {
        RC_ASSERT(Close(r.Extent[i].X, twice.Extent[i].X));
        RC_ASSERT(Close(r.Extent[i].Y, twice.Extent[i].Y));
        RC_ASSERT(Close(r.Margin[i].X, twice.Margin[i].X));
        RC_ASSERT(Close(r.Margin[i].Y, twice.Margin[i].Y));
    }
    RC_ASSERT(r.ToolA.ToolAngle == twice.ToolA.ToolAngle);
    RC_ASSERT(r.LeadIn.LeadAngle == twice.LeadIn.LeadAngle);
    RC_ASSERT(r.LeadIn.LeadLength == twice.LeadIn.LeadLength);
}

RC_GTEST_PROP(BindingProperties, ReversingTwiceGivesTheOriginal, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    DrawRecord r;
    const bool arc = *rc::gen::arbitrary<bool>();
    r.EntityCode = arc ? 130 : 120;
    r.Point[1] = {static_cast<float>(Between(-500, 500, 100)), static_cast<float>(Between(-500, 500, 100))};
    r.Point[3] = {static_cast<float>(Between(-500, 500, 100)), static_cast<float>(Between(-500, 500, 100))};
    r.Point[4] = r.Point[1];
    r.Value[1] = static_cast<float>(Between(1, 300, 100));
    r.Value[10] = static_cast<float>(Between(0, 359.99, 100));
    r.Value[11] = static_cast<float>(Between(-359, 359, 100));
    r.Value[3] = static_cast<float>(Between(0, 5, 100));
    r.Value[4] = static_cast<float>(Between(0, 5, 100));
    r.Value[8] = static_cast<float>(Between(0, 1, 100));
    r.Side = *rc::gen::inRange<int16_t>(-1, 2);
    r.LeadIn = LeadSpec{*rc::gen::inRange<int16_t>(-3, 4), 5, 30, 0};
    r.LeadOut = LeadSpec{*rc::gen::inRange<int16_t>(-3, 4), 6, 60, 0};
    BindRecord(m, r);
    DrawRecord twice = r;
    if (arc) {
        ReverseArc(m, twice);
        ReverseArc(m, twice);
    } else {
        ReverseLine(m, twice);
        ReverseLine(m, twice);
    }
    for (int i = 1; i <= 6; ++i) {
        RC_ASSERT(Close(r.Point[i].X, twice.Point[i].X));
        RC_ASSERT(Close(r.Point[i].Y, twice.Point[i].Y));
    }
    for (int i = 1; i <= 20; ++i) {
        // The trimmed angles are kept to 3 decimals: a start angle that came back a single's
        // rounding away may round to the next thousandth.
        const double tolerance = i == 13 || i == 14 ? 1.5e-3 : 0;
        RC_ASSERT(Close(r.Value[i], twice.Value[i]) || Close(Norm360(r.Value[i]), Norm360(twice.Value[i])) ||
                  std::fabs(Norm180(static_cast<double>(r.Value[i]) - twice.Value[i] + 90) - 90) <= tolerance);
    }
    RC_ASSERT(r.Side == twice.Side);
    RC_ASSERT(r.LeadIn.LeadKind == twice.LeadIn.LeadKind);
    RC_ASSERT(r.LeadOut.LeadKind == twice.LeadOut.LeadKind);
    RC_ASSERT(r.LeadIn.LeadLength == twice.LeadIn.LeadLength);
}

}  // namespace
