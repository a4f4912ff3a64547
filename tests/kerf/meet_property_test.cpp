// The boxed meeting search against the every-pair walk: for random lines and arcs near a shared
// corner both give the same class and the same point, bit for bit.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "common/numeric.h"
#include "drawing/record.h"
#include "kerf/kerf.h"

using namespace tvx;

namespace {

uint64_t Bits(double d) {
    uint64_t u;
    std::memcpy(&u, &d, sizeof u);
    return u;
}

// Evenly over the whole range, whatever the size of the run.
int Even(int lo, int hi) { return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(lo, hi + 1)); }
double Scaled(int lo, int hi, double scale) { return Even(lo, hi) * scale; }

// One of 0 to n - 1.
int Pick(int n) { return Even(0, n - 1); }

// A radius: mostly ordinary, some tiny, some huge.
double Radius() {
    switch (Pick(10)) {
        case 0: return Scaled(1, 1000, 1e-4);        // tiny: up to 0.1
        case 1: return Scaled(1, 1000, 1000.0);      // huge: up to a million
        default: return Scaled(1, 20000, 0.01);      // up to 200
    }
}

// A sweep: mostly a few degrees, some under one degree, a few of a full turn or more; either
// sense.
double Sweep() {
    double sweep = 0;
    switch (Pick(20)) {
        case 0: sweep = Scaled(0, 999, 0.001); break;           // under a degree: no chords
        case 1: sweep = Scaled(3000, 4200, 0.1); break;          // 300 to 420 degrees
        case 2: sweep = Scaled(1, 45, 2.0); break;               // whole degrees
        default: sweep = Scaled(10, 400, 0.1); break;            // 1 to 40 degrees
    }
    return *rc::gen::arbitrary<bool>() ? sweep : -sweep;
}

DrawRecord LineFrom(double x1, double y1, double x2, double y2) {
    DrawRecord r;
    r.EntityCode = 120;
    r.Point[1] = SinglePoint{ToSingle(x1), ToSingle(y1)};
    r.Point[3] = SinglePoint{ToSingle(x2), ToSingle(y2)};
    return r;
}

DrawRecord ArcAbout(double cx, double cy, double radius, double start, double sweep) {
    DrawRecord r;
    r.EntityCode = 130;
    r.Point[4] = SinglePoint{ToSingle(cx), ToSingle(cy)};
    r.Value[1] = ToSingle(radius);
    r.Value[10] = ToSingle(Norm360(start));
    r.Value[11] = ToSingle(sweep);
    return r;
}

// A point near the corner (0, 0) on the scale of the pieces.
double Jitter() { return Scaled(-500, 500, 0.002); }

// The first piece, ending near the corner.
DrawRecord FirstPiece(bool arc, double& direction) {
    direction = Scaled(0, 3599, 0.1);
    if (!arc) {
        const double length = Scaled(1, 5000, 0.01);
        double dx = 0, dy = 0;
        PolarToXY(length, direction + 180, dx, dy);
        return LineFrom(dx + Jitter(), dy + Jitter(), Jitter(), Jitter());
    }
    const double radius = Radius();
    const double sweep = Sweep();
    const double endAngle = Scaled(0, 3599, 0.1);
    double dx = 0, dy = 0;
    PolarToXY(radius, endAngle, dx, dy);
    return ArcAbout(-dx + Jitter(), -dy + Jitter(), radius, endAngle - sweep, sweep);
}

// The second piece, starting near the corner; some are made parallel, concentric or touching.
DrawRecord SecondPiece(bool arc, const DrawRecord& first, double direction) {
    const int special = Pick(6);
    if (!arc) {
        double length = Scaled(1, 5000, 0.01);
        double angle = Scaled(0, 3599, 0.1);
        if (first.EntityCode == 120 && special == 0) {
            // Exactly parallel: the first again, or the first reversed.
            if (*rc::gen::arbitrary<bool>()) return first;
            return LineFrom(first.Point[3].X, first.Point[3].Y, first.Point[1].X, first.Point[1].Y);
        }
        if (first.EntityCode == 120 && special <= 2) {
            // Nearly parallel to the first: the same way or the opposite way.
            angle = direction + (special == 1 ? 0 : 180);
            double dx = 0, dy = 0;
            PolarToXY(length, angle, dx, dy);
            const double x1 = first.Point[3].X;
            const double y1 = first.Point[3].Y + (*rc::gen::arbitrary<bool>() ? 0.0 : Jitter());
            return LineFrom(x1, y1, x1 + dx, y1 + dy);
        }
        double dx = 0, dy = 0;
        PolarToXY(length, angle, dx, dy);
        const double x1 = Jitter();
        const double y1 = Jitter();
        return LineFrom(x1, y1, x1 + dx, y1 + dy);
    }
    double radius = Radius();
    const double sweep = Sweep();
    double startAngle = Scaled(0, 3599, 0.1);
    if (first.EntityCode == 130 && special == 0) {
        // Concentric with the first, of its radius or another.
        if (*rc::gen::arbitrary<bool>()) radius = first.Value[1];
        return ArcAbout(first.Point[4].X, first.Point[4].Y, radius, startAngle, sweep);
    }
    if (first.EntityCode == 130 && special == 1) {
        // Touching the first's circle from outside.
        double dx = 0, dy = 0;
        PolarToXY(static_cast<double>(first.Value[1]) + radius, startAngle, dx, dy);
        return ArcAbout(first.Point[4].X + dx, first.Point[4].Y + dy, radius, startAngle + 180, sweep);
    }
    double dx = 0, dy = 0;
    PolarToXY(radius, startAngle, dx, dy);
    return ArcAbout(-dx + Jitter(), -dy + Jitter(), radius, startAngle, sweep);
}

// The boxed search and the every-pair walk agree: the class, and the point bit for bit.
void ExpectSameMeeting(const DrawRecord& first, const DrawRecord& second) {
    const Meeting boxed = MeetEntities(first, second, MeetingSearch::BoxedRuns);
    const Meeting every = MeetEntitiesReference(first, second);
    RC_ASSERT(boxed.Class == every.Class);
    RC_ASSERT(Bits(boxed.X) == Bits(every.X));
    RC_ASSERT(Bits(boxed.Y) == Bits(every.Y));
}

// The number of chord pairs of the every-pair walk.
int64_t PairCount(bool firstArc, const DrawRecord& first, bool secondArc, const DrawRecord& second) {
    return static_cast<int64_t>(firstArc ? std::max(ArcChordCount(first.Value[11]), 1) : 1) *
           (secondArc ? std::max(ArcChordCount(second.Value[11]), 1) : 1);
}

}  // namespace

RC_GTEST_PROP(MeetEntitiesProperty, TheBoxedSearchGivesTheEveryPairAnswerBitForBit, ()) {
    const int kinds = Pick(4);
    const bool firstArc = (kinds & 1) != 0;
    const bool secondArc = (kinds & 2) != 0;
    double direction = 0;
    const DrawRecord first = FirstPiece(firstArc, direction);
    const DrawRecord second = SecondPiece(secondArc, first, direction);
    // Keep the every-pair walk short enough for every run of the tests.
    const int64_t pairs = PairCount(firstArc, first, secondArc, second);
    RC_PRE(pairs <= 2000000);
    RC_TAG(kinds, MeetEntitiesReference(first, second).Class);
    ExpectSameMeeting(first, second);
}

// Not a number in the fields of a piece: the same answer from both, NaN bits included.
RC_GTEST_PROP(MeetEntitiesProperty, PiecesThatAreNotNumbersGiveTheSameAnswer, ()) {
    const bool firstArc = *rc::gen::arbitrary<bool>();
    double direction = 0;
    DrawRecord first = FirstPiece(firstArc, direction);
    DrawRecord second = SecondPiece(true, first, direction);
    if (std::fabs(second.Value[11]) > 40) second.Value[11] = 20;
    const float nan = std::nanf("");
    switch (Pick(4)) {
        case 0: second.Point[4].X = nan; break;
        case 1: second.Value[1] = nan; break;
        case 2: first.Point[3].Y = nan; first.Point[4].Y = nan; break;
        default: second.Value[10] = nan; break;
    }
    ExpectSameMeeting(first, second);
}

// The same corners placed anywhere on a large sheet, and arcs of up to 90 degrees on both sides:
// the boxes of the runs must hold their chords far from the origin too.
RC_GTEST_PROP(MeetEntitiesProperty, CornersFarOnTheSheetGiveTheEveryPairAnswer, ()) {
    const int kinds = 1 + Pick(3);
    const bool firstArc = (kinds & 1) != 0;
    const bool secondArc = (kinds & 2) != 0;
    double direction = 0;
    DrawRecord first = FirstPiece(firstArc, direction);
    DrawRecord second = SecondPiece(secondArc, first, direction);
    if (Pick(2) == 0) {
        // Long arcs, as the corners of rounded outlines are.
        if (firstArc) first.Value[11] = ToSingle(first.Value[11] < 0 ? -Scaled(45, 90, 1.0) : Scaled(45, 90, 1.0));
        if (secondArc) second.Value[11] = ToSingle(second.Value[11] < 0 ? -Scaled(45, 90, 1.0) : Scaled(45, 90, 1.0));
    }
    const double x0 = Scaled(-30000, 30000, 0.1);
    const double y0 = Scaled(-30000, 30000, 0.1);
    MoveRecord(first, x0, y0);
    MoveRecord(second, x0, y0);
    const int64_t pairs = PairCount(firstArc, first, secondArc, second);
    RC_PRE(pairs <= 1000000);
    RC_TAG(kinds, MeetEntitiesReference(first, second).Class);
    ExpectSameMeeting(first, second);
}
