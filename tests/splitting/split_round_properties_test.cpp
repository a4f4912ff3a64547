// Properties of the splits of the circle, the Single-D, the Double-D and the obround over random
// valid shapes: every outline closes, every made arc's ends lie on its circle, a turned shape
// gives the turned records, and the hits of every punched line and arc, as binding places them,
// land on it.
//
// Tolerances: made coordinates are rounded to 4 decimals and stored as singles (a unit in the
// last place of a single is 6e-5 at 1000), and binding derives an arc's ends from a start angle
// and a sweep rounded to 3 decimals, which moves them by up to R * 0.001 degrees, R * 1.75e-5.
// Hence 5e-4 plus R * 3e-5 for a point.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/fault.h"
#include "drawing/property_support.h"
#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

using tvx::bindtest::Between;

using Routine = void (*)(SplitOutput&, const DrawRecord&);

constexpr double P = Pi;  // the system's pi, 3.14159265

float Single(double v) { return static_cast<float>(v); }

double PointTolerance(double radius) { return 5e-4 + std::fabs(radius) * 3e-5; }

DrawRecord RandomShape(int16_t code, double first, double second, double rotation) {
    DrawRecord r;
    r.EntityCode = code;
    r.Point[4] = {Single(Between(-1000, 1000, 100)), Single(Between(-1000, 1000, 100))};
    r.Value[1] = Single(first);
    r.Value[2] = Single(second);
    r.Value[10] = Single(rotation);
    r.Side = *rc::gen::element<int16_t>(-1, 0, 1);
    r.After.ActionCode = *rc::gen::element<int16_t>(0, 2);
    return r;
}

double RandomRotation() { return Between(0, 359.999, 1000); }

// A Single-D: R in 1 to 500, D in (0, 2R].
DrawRecord RandomSingleD(double rotation) {
    const double radius = Between(1, 500, 100);
    return RandomShape(152, radius, Between(0.01, 2 * radius, 100), rotation);
}

// A Double-D: R in 1 to 500, D in (0, 2R].
DrawRecord RandomDoubleD(double rotation) {
    const double radius = Between(1, 500, 100);
    return RandomShape(153, radius, Between(0.01, 2 * radius, 100), rotation);
}

// An obround of either sign of length and width, each 1 to 500 in size.
DrawRecord RandomObround(double rotation) {
    const double length = *rc::gen::element(1.0, -1.0) * Between(1, 500, 100);
    const double width = *rc::gen::element(1.0, -1.0) * Between(1, 500, 100);
    return RandomShape(154, length, width, rotation);
}

// An obround for the outline with leads, which joins the middle of its right-hand end: L above
// the size of W, W of either sign.
DrawRecord RandomLedObround(double rotation) {
    const double width = Between(1, 400, 100);
    const double length = width + Between(0.01, 300, 100);
    return RandomShape(154, length, *rc::gen::element(1.0, -1.0) * width, rotation);
}

void RandomLeads(DrawRecord& r) {
    r.LeadIn.LeadKind = *rc::gen::element<int16_t>(0, 1, 2, -1);
    r.LeadIn.LeadLength = Single(Between(0, 20, 100));
    r.LeadIn.LeadAngle = Single(RandomRotation());
    r.LeadOut.LeadKind = *rc::gen::element<int16_t>(0, 1, 2, -1);
    r.LeadOut.LeadLength = Single(Between(0, 20, 100));
    r.LeadOut.LeadAngle = Single(RandomRotation());
}

std::vector<DrawRecord> Split(Routine routine, const MachineState& m, const DrawRecord& shape,
                              SplitChoices choices = MainPathChoices) {
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(m, records, count, choices, "record 2 of Progmain.drw");
    routine(out, shape);
    return records;
}

double Distance(const SinglePoint& a, const SinglePoint& b) {
    return std::hypot(static_cast<double>(a.X) - b.X, static_cast<double>(a.Y) - b.Y);
}

// The records of an outline join end to start, and the last end meets the first start.
void CheckClosed(const std::vector<DrawRecord>& outline, double radius) {
    RC_ASSERT(!outline.empty());
    const double tolerance = PointTolerance(radius);
    for (size_t i = 0; i < outline.size(); ++i) {
        const DrawRecord& here = outline[i];
        const DrawRecord& next = outline[(i + 1) % outline.size()];
        RC_ASSERT(here.EntityCode == 120 || here.EntityCode == 130);
        RC_ASSERT(Distance(here.Point[3], next.Point[1]) <= tolerance);
    }
}

// Without the lead records (Count[8], set on the single-shape path).
std::vector<DrawRecord> OutlineOnly(const std::vector<DrawRecord>& records) {
    std::vector<DrawRecord> outline;
    for (const DrawRecord& r : records)
        if (r.Count[8] == 0) outline.push_back(r);
    return outline;
}

struct Plain {
    Routine routine;
    DrawRecord (*shape)(double rotation);
    bool leads;
};

Plain RandomPlainCase() {
    static const Plain cases[] = {
        {SplitSingleDProfile, RandomSingleD, false}, {SplitDoubleDProfile, RandomDoubleD, false},
        {SplitObroundProfile, RandomObround, false},  {SplitSingleDLeads, RandomSingleD, true},
        {SplitDoubleDLeads, RandomDoubleD, true},     {SplitObroundLeads, RandomLedObround, true},
    };
    return cases[*rc::gen::inRange<size_t>(0, std::size(cases))];
}

double ShapeSize(const DrawRecord& shape) {
    return std::max(std::fabs(static_cast<double>(shape.Value[1])), std::fabs(static_cast<double>(shape.Value[2])));
}

// ---- Outlines ------------------------------------------------------------------------------------

RC_GTEST_PROP(SplitRoundProperties, EveryOutlineClosesAndItsLeadsJoinIt, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    const Plain c = RandomPlainCase();
    DrawRecord shape = c.shape(RandomRotation());
    if (c.leads) RandomLeads(shape);
    BindRecord(m, shape);
    const std::vector<DrawRecord> records = Split(c.routine, m, shape, SingleShapeChoices);
    const std::vector<DrawRecord> outline = OutlineOnly(records);
    CheckClosed(outline, ShapeSize(shape));
    // A lead-in ends where the outline starts, a lead-out starts where it ends.
    const double tolerance = PointTolerance(ShapeSize(shape));
    if (records.front().Count[8] == 1)
        RC_ASSERT(Distance(records.front().Point[3], outline.front().Point[1]) <= tolerance);
    if (records.back().Count[8] == 2)
        RC_ASSERT(Distance(records.back().Point[1], outline.back().Point[3]) <= tolerance);
    // The After goes on the last record at most, and nowhere else.
    for (size_t i = 0; i + 1 < records.size(); ++i) RC_ASSERT(records[i].After.ActionCode == 0);
}

RC_GTEST_PROP(SplitRoundProperties, EveryMadeArcsEndsLieOnItsCircle, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    const Plain c = RandomPlainCase();
    DrawRecord shape = c.shape(RandomRotation());
    BindRecord(m, shape);
    for (const DrawRecord& r : Split(c.routine, m, shape)) {
        if (r.EntityCode != 130) continue;
        const double radius = std::fabs(static_cast<double>(r.Value[1]));
        RC_ASSERT(std::fabs(Distance(r.Point[1], r.Point[4]) - radius) <= 5e-4);
        RC_ASSERT(std::fabs(Distance(r.Point[3], r.Point[4]) - radius) <= 5e-4);
        RC_ASSERT(std::fabs(Distance(r.Point[2], r.Point[4]) - radius) <= 5e-4);
    }
}

double AngleGap(double a, double b) {
    const double gap = Norm360(a - b);
    return std::min(gap, 360 - gap);
}

SinglePoint TurnedPoint(const SinglePoint& p, const SinglePoint& centre, double turn) {
    double x = p.X;
    double y = p.Y;
    RotatePoint(centre.X, centre.Y, x, y, turn);
    return SinglePoint{Single(x), Single(y)};
}

RC_GTEST_PROP(SplitRoundProperties, ATurnedShapeGivesTheTurnedRecords, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    const Plain c = RandomPlainCase();
    DrawRecord upright = c.shape(0);
    DrawRecord turned = upright;
    const double turn = RandomRotation();
    turned.Value[10] = Single(turn);
    BindRecord(m, upright);
    BindRecord(m, turned);
    const std::vector<DrawRecord> a = Split(c.routine, m, upright);
    const std::vector<DrawRecord> b = Split(c.routine, m, turned);
    RC_ASSERT(a.size() == b.size());
    const double tolerance = 2 * PointTolerance(ShapeSize(upright));
    const SinglePoint centre = upright.Point[4];
    for (size_t i = 0; i < a.size(); ++i) {
        RC_ASSERT(a[i].EntityCode == b[i].EntityCode);
        for (int k : {1, 3}) RC_ASSERT(Distance(TurnedPoint(a[i].Point[k], centre, turn), b[i].Point[k]) <= tolerance);
        RC_ASSERT(std::fabs(a[i].Value[1] - b[i].Value[1]) <= 3e-4);
        RC_ASSERT(a[i].Side == b[i].Side);
        if (a[i].EntityCode == 130) {
            RC_ASSERT(Distance(TurnedPoint(a[i].Point[4], centre, turn), b[i].Point[4]) <= tolerance);
            // Start angles are taken about rounded centres from rounded points: a point
            // 2e-4 off moves the angle by up to 2e-4 / R radians, 0.0115 / R degrees.
            const double radius = std::fabs(static_cast<double>(a[i].Value[1]));
            RC_ASSERT(AngleGap(a[i].Value[10] + turn, b[i].Value[10]) <= 0.002 + 0.03 / radius);
            RC_ASSERT(std::fabs(a[i].Value[11] - b[i].Value[11]) <= 0.0011);
        } else if (a[i].Value[1] >= 0.5) {
            // A line's direction comes from its rounded ends.
            RC_ASSERT(AngleGap(a[i].Value[10] + turn, b[i].Value[10]) <= 0.001 + 0.015 / a[i].Value[1]);
        }
    }
}

// ---- Punched paths ------------------------------------------------------------------------------

void PunchTool(DrawRecord& r, const char* letter, double width, double length) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = letter;
    r.ToolA.Size[1] = Single(width);
    r.ToolA.Size[2] = Single(length);
    r.ToolA.WorkType = *rc::gen::element<int16_t>(10, 11, 20, 21);
}

// A punched circle: R 5 to 150, a round or other tool 2 to 20 wide, pitch 0.5 to 5, with or
// without clearing.
DrawRecord PunchedCircle() {
    DrawRecord r = RandomShape(151, Between(5, 150, 100), 0, RandomRotation());
    const double tool = Between(2, 20, 100);
    PunchTool(r, (*rc::gen::element<std::string>("A", "C")).c_str(), tool, tool);
    r.Value[3] = Single(Between(0.5, 5, 100));
    r.Count[2] = *rc::gen::element<int16_t>(0, -1);
    r.Count[3] = *rc::gen::element<int16_t>(0, -1);
    return r;
}

// A punched Single-D or Double-D whose flats and arcs are each longer than the pitch: R 15 to
// 300; D from 0.2 R to 1.8 R (Single-D) or 0.8 R to 1.6 R (Double-D), so that each flat is at
// least 0.6 R long at each side of the middle and each arc sweeps 47 degrees or more; a tool of
// Size[2] at most R / 2 and at most D, so that binding keeps the shape's sizes; pitch 0.5 to 5.
DrawRecord PunchedRound(int16_t code) {
    const double radius = Between(15, 300, 100);
    const double across = code == 152 ? Between(0.2 * radius, 1.8 * radius, 100) : Between(0.8 * radius, 1.6 * radius, 100);
    DrawRecord r = RandomShape(code, radius, across, RandomRotation());
    const double tool = Between(1, std::min({20.0, radius / 2, across}), 100);
    PunchTool(r, (*rc::gen::element<std::string>("A", "C")).c_str(), tool, tool);
    r.Value[3] = Single(Between(0.5, 5, 100));
    return r;
}

// A punched obround: W 4 to 200, L at least 6 longer, a tool of Size[2] up to half the width
// (the tool path of an end arc then has at least a quarter of the width as its radius), pitch
// 0.5 to 3; letters "A", "C" and the obround punch "F".
DrawRecord PunchedObround() {
    const double width = Between(4, 200, 100);
    const double length = width + Between(6, 300, 100);
    DrawRecord r = RandomShape(154, length, width, RandomRotation());
    const std::string letter = *rc::gen::element<std::string>("A", "C", "F");
    const double tool = Between(1, width / 2, 100);
    PunchTool(r, letter.c_str(), letter == "F" ? Between(width, length, 100) : tool, tool);
    r.Value[3] = Single(Between(0.5, 3, 100));
    return r;
}

// The hits the emitters place on a worked line: from Point[5] by PolarToXY(Value[2], Value[10]).
void CheckLineHits(const DrawRecord& r) {
    const double sx = r.Point[1].X;
    const double sy = r.Point[1].Y;
    const double length = Distance(r.Point[1], r.Point[3]);
    const double ux = length > 0 ? (r.Point[3].X - sx) / length : 0;
    const double uy = length > 0 ? (r.Point[3].Y - sy) / length : 0;
    double x = r.Point[5].X;
    double y = r.Point[5].Y;
    double dx = 0;
    double dy = 0;
    PolarToXY(r.Value[2], r.Value[10], dx, dy);
    const double tolerance = 2e-3;
    for (int i = 0; i < std::max<int>(1, r.Count[1]); ++i) {
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

// The hits the emitters place on a worked arc: Point[4] + PolarToXY(Value[5], Value[13] +
// i * Value[12]); on its circle, and within its sweep unless it is a whole circle.
void CheckArcHits(const DrawRecord& r) {
    const double radius = std::fabs(static_cast<double>(r.Value[1]));
    RC_ASSERT(std::fabs(std::fabs(static_cast<double>(r.Value[5])) - radius) <= 1e-4);
    const double sweep = r.Value[14];
    const bool whole = std::fabs(sweep) >= 360;
    for (int i = 0; i < std::max<int>(1, r.Count[1]); ++i) {
        const double angle = static_cast<double>(r.Value[13]) + i * static_cast<double>(r.Value[12]);
        double dx = 0;
        double dy = 0;
        PolarToXY(r.Value[5], angle, dx, dy);
        const double x = r.Point[4].X + dx;
        const double y = r.Point[4].Y + dy;
        RC_ASSERT(std::fabs(std::hypot(x - r.Point[4].X, y - r.Point[4].Y) - radius) <= 1e-3);
        if (!whole) {
            // How far the hit lies along the sweep from the arc's start.
            const double gone = sweep >= 0 ? Norm360(angle - r.Value[10] + 0.01) - 0.01
                                           : Norm360(r.Value[10] - angle + 0.01) - 0.01;
            RC_ASSERT(gone <= std::fabs(sweep) + 0.01);
        }
    }
}

RC_GTEST_PROP(SplitRoundProperties, PunchedHitsLandOnTheirLineOrArc, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    const int which = *rc::gen::inRange(0, 4);
    DrawRecord shape;
    Routine routine = nullptr;
    switch (which) {
        case 0:
            shape = PunchedCircle();
            routine = SplitCirclePunched;
            break;
        case 1:
            shape = PunchedRound(152);
            routine = SplitSingleDPunched;
            break;
        case 2:
            shape = PunchedRound(153);
            routine = SplitDoubleDPunched;
            break;
        default:
            shape = PunchedObround();
            routine = SplitObroundPunched;
            break;
    }
    BindRecord(m, shape);
    const std::vector<DrawRecord> records = Split(routine, m, shape);
    RC_ASSERT(!records.empty());
    RC_ASSERT(records.back().After.ActionCode == shape.After.ActionCode);
    for (const DrawRecord& r : records) {
        switch (r.EntityCode) {
            case 120:
                RC_ASSERT(r.Count[1] >= 1);
                CheckLineHits(r);
                break;
            case 130:
            case 230:
                RC_ASSERT(r.Count[1] >= 1);
                CheckArcHits(r);
                break;
            default:
                RC_ASSERT(r.EntityCode == 210);
                RC_ASSERT(Distance(r.Point[4], shape.Point[4]) == 0);
                break;
        }
    }
    // A punched outline (not a single hit, a row or a clearing) closes.
    std::vector<DrawRecord> rim;
    for (const DrawRecord& r : records)
        if (r.EntityCode == 120 || r.EntityCode == 130) rim.push_back(r);
    if (which != 0 && rim.size() >= 2) {
        if (rim.size() == 5) rim.erase(rim.begin());  // the obround's middle row
        CheckClosed(rim, ShapeSize(shape));
    }
}

// ---- Damaged records ----------------------------------------------------------------------------

float SpecialValue() {
    const float inf = std::numeric_limits<float>::infinity();
    return *rc::gen::element<float>(0.0f, -0.0f, 1.0f, -1.0f, 0.5f, 10.0f, 250.0f, -250.0f, 1e-7f, 1e7f, 3e38f,
                                    -3e38f, inf, -inf, std::numeric_limits<float>::quiet_NaN());
}

// Whatever a damaged shape holds (sizes of 0, negative or beyond a single's range, infinities,
// values that are not numbers), every routine either writes its records or ends the run as a
// fault of the run; none crashes or runs on without end.
RC_GTEST_PROP(SplitRoundProperties, DamagedShapesEndCleanlyOrAsAFault, ()) {
    const MachineState m = bindtest::Machine(*rc::gen::element<int16_t>(0, 1));
    DrawRecord shape;
    shape.EntityCode = *rc::gen::element<int16_t>(151, 152, 153, 154);
    shape.Point[4] = {SpecialValue(), SpecialValue()};
    for (int i : {1, 2, 3, 5, 10}) shape.Value[i] = SpecialValue();
    shape.Side = *rc::gen::element<int16_t>(-2, -1, 0, 1, 2);
    for (int i : {1, 2, 3}) shape.Count[i] = *rc::gen::element<int16_t>(0, -1, 1, 32767);
    shape.ToolA.Present = *rc::gen::element<int16_t>(0, -1);
    shape.ToolA.Letter = *rc::gen::element<std::string>("A", "C", "F", "G", "H", "P");
    shape.ToolA.Size[1] = SpecialValue();
    shape.ToolA.Size[2] = SpecialValue();
    shape.ToolA.WorkType = *rc::gen::element<int16_t>(1, 10, 20);
    shape.LeadIn.LeadKind = *rc::gen::element<int16_t>(0, 1, 2);
    shape.LeadIn.LeadLength = SpecialValue();
    shape.LeadOut.LeadKind = *rc::gen::element<int16_t>(0, 1, 2);
    shape.LeadOut.LeadLength = SpecialValue();
    try {
        BindRecord(m, shape);
    } catch (const RunEnd& end) {
        RC_ASSERT(end.Status == static_cast<int>(ExitFault));
        return;
    }
    static const Routine byCode[4][3] = {
        {SplitCirclePunched, SplitCirclePunched, SplitCirclePunched},
        {SplitSingleDProfile, SplitSingleDLeads, SplitSingleDPunched},
        {SplitDoubleDProfile, SplitDoubleDLeads, SplitDoubleDPunched},
        {SplitObroundProfile, SplitObroundLeads, SplitObroundPunched},
    };
    for (Routine routine : byCode[shape.EntityCode - 151]) {
        std::vector<DrawRecord> records;
        int32_t count = 0;
        SplitOutput out = ListOutput(m, records, count, SingleShapeChoices, "record 2 of Progmain.drw");
        try {
            routine(out, shape);
        } catch (const RunEnd& end) {
            RC_ASSERT(end.Status == static_cast<int>(ExitFault));
            RC_ASSERT(end.Text.rfind("Cannot split", 0) == 0 || end.Text.rfind("Overflow", 0) == 0);
        }
        RC_ASSERT(count <= MostRecordsFromOneEntity);
    }
}

}  // namespace
