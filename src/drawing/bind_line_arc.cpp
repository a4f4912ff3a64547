// Binding of lines and arcs, their trims and their reversal.
//
// Plain form (no tool, a tool of WorkType below 10, a profiling tool "P", or any path on a combo
// machine, which profiles every path): the derived points, the working length and the boxes.
//
// Worked form (ToolA.Present non-zero and WorkType 10 or more, otherwise): the path is a row of
// hits, and binding also derives where the hits fall. The emitters place them without further
// thought: a line's hits at Point[5] + i * PolarToXY(Value[2], Value[10]) for i from 0 to
// Count[1] - 1; an arc's at Point[4] + PolarToXY(Value[5], Value[13] + i * Value[12]). The rules
// that binding keeps so that those hits are right:
//
// Lines (120, 220, 521, 522; a rapid move, 110, never carries hits):
//   - The hits run from the working start Point[5] to the working end Point[6], both on the
//     drawn line; W is the working length (Value[1] less the trims, Value[1] itself on a 220).
//   - The pitch asked for is the size of Value[2]. The number of whole pitches that fit in W is
//     k, and Count[1] = k + 1: the hits are spread evenly, the pitch is adjusted to W / k so that
//     the last hit lands on the working end, and the adjusted pitch goes back into Value[2],
//     with the sign of Value[1]. The same rule as the splitting of worked shapes.
//   - Whether a pitch fits is judged with a small allowance, so that binding again with the
//     adjusted pitch (stored as a single) finds the same k: a millionth of the count plus
//     0.005 mm of the length (never more than half a pitch).
//   - A pitch below 0.1 is no pitch, as for the line emitter: the row is then given by Count[1]
//     if that is 2 or more (Value[2] becomes W / (Count[1] - 1)), and is one hit otherwise.
//   - The adjusted pitch is never below 0.1 and k is at most 32766: a longer row is given fewer
//     hits at a larger pitch.
//   - Value[5] is the distance from the first hit to the last: W for two hits or more, 0 for a
//     single hit, which falls on the working start. A line whose trims leave nothing of it (W of
//     0, or of the other sign than Value[1]) is a single hit.
//
// Arcs (130, 230; a circle, 151, is worked by splitting and binds as in the plain form):
//   - The hits lie on the drawn arc: Value[5], the working radius, is Value[1]. Value[13] and
//     Value[14] are the working start angle and sweep (after the trims of a 130); Point[5] and
//     Point[6] the points at the start and the end of that sweep.
//   - The step asked for is an angle: the size of Value[12] when it is non-zero, otherwise the
//     pitch Value[3] turned into degrees at the radius, otherwise none. The angle comes first
//     because it is what places the hits; a writer that gives both (as the splitting of worked
//     shapes does, with a count found on the tool's own path) gets its step honoured.
//   - An open arc (a working sweep other than exactly 360 degrees) takes k whole steps in its
//     sweep and Count[1] = k + 1 hits, from its working start to its working end; Value[12]
//     becomes the sweep divided by k, signed like the sweep.
//   - A whole circle (a working sweep of exactly 360 degrees) takes Count[1] = k hits and the
//     step 360 / k: its last hit is one step before the first, and no hit falls twice on one
//     place.
//   - The allowance is as for lines, with 0.005 degrees in place of 0.005 mm. Without a step,
//     a Count[1] of 2 or more gives the row (sweep / (Count[1] - 1), or sweep / Count[1] on a
//     whole circle); otherwise the arc is a single hit. An arc of radius 0 or of working sweep 0
//     is a single hit. k is at most 32766 on an open arc and 32767 on a whole circle.
//   - Value[3] becomes the actual pitch, the length of one step at the radius; Value[6] the
//     signed length along the arc from the first hit to the last. A single hit keeps the step
//     that was asked for (signed like the sweep) so that binding again finds a single hit again.
//   - The margin of a worked path reaches as far as the tool does from a hit on its edge (half
//     a round tool's diameter, half the diagonal of any other), never less than the plain 5.
//
// Trims of an arc (130): Value[8] and Value[9] are lengths along the arc, like a line's Value[3]
// and Value[4]: a positive one shortens the arc at its start, at its end. Binding turns them into
// angles at the radius and derives Value[13] and Value[14] from them, each rounded to 3 decimals;
// ApplyTrim folds them into Value[10] and Value[11]; a reversal exchanges them with the ends.
//
// A sweep of 0 gives the arc length 0 rather than dividing by it.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "common/numeric.h"
#include "drawing/bind_support.h"
#include "drawing/binding.h"

namespace tvx {
namespace {

using bind::PlaneBox;

constexpr double LinePitchAllowance = 0.005;  // mm
constexpr double ArcStepAllowance = 0.005;    // degrees
constexpr double SmallestLinePitch = 0.1;     // the line emitter's one-hit limit
constexpr int32_t MostSteps = 32766;          // Count[1] stays within 16 bits

// The number of whole steps of `step` that fit in `span`, with the allowance told above, at most
// `most`. 0 when nothing fits or a value is not a number.
int32_t StepsThatFit(double span, double step, double allowance, int32_t most) {
    if (!(span > 0) || !(step > 0) || !std::isfinite(span) || !std::isfinite(step)) return 0;
    const double quotient = span / step;
    const double fit = quotient + quotient * 1.0e-6 + std::min(allowance / step, 0.5);
    if (!(fit < most)) return most;
    return static_cast<int32_t>(std::floor(fit));
}

double Middle(float a, float b) { return (static_cast<double>(a) + static_cast<double>(b)) / 2; }

// The clearance of a path's margin.
double PathClearance(bool worked, const DrawRecord& record) {
    return worked ? std::max(5.0, bind::ToolReach(record.ToolA)) : 5.0;
}

// The row of hits of a worked line (see the rules at the top).
void WorkLine(DrawRecord& record) {
    const double length = record.Value[1];
    if (length * static_cast<double>(record.Value[2]) < 0) record.Value[2] = -record.Value[2];
    const double sense = length < 0 ? -1.0 : 1.0;
    const double working = record.Value[5];
    const double asked = std::fabs(static_cast<double>(record.Value[2]));
    int32_t steps = 0;
    if (working * sense > 0 && std::isfinite(working)) {
        const double span = std::fabs(working);
        // No more steps than keep the adjusted pitch at 0.1 or more.
        const double spanTenths = std::floor(span * 10);
        const int32_t most = spanTenths < MostSteps ? static_cast<int32_t>(spanTenths) : MostSteps;
        if (asked >= SmallestLinePitch && std::isfinite(asked)) {
            steps = StepsThatFit(span, asked, LinePitchAllowance, MostSteps);
        } else if (record.Count[1] >= 2) {
            steps = record.Count[1] - 1;
        }
        steps = std::min(steps, most);
        if (steps >= 1) record.Value[2] = ToSingle(sense * span / steps);
    }
    if (steps < 1) {
        record.Count[1] = 1;
        record.Value[5] = 0;
    } else {
        record.Count[1] = static_cast<int16_t>(steps + 1);
    }
}

// The row of hits of a worked arc of working start a0 and sweep (see the rules at the top).
void WorkArc(DrawRecord& record, double start, double sweep) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double r = record.Value[1];
    record.Value[5] = record.Value[1];
    double dx = 0;
    double dy = 0;
    PolarToXY(r, start, dx, dy);
    bind::StoreRounded(record.Point[5], cx + dx, cy + dy);
    PolarToXY(r, Norm360(start + sweep), dx, dy);
    bind::StoreRounded(record.Point[6], cx + dx, cy + dy);

    const bool whole = std::fabs(record.Value[14]) == 360.0f;
    const double perDegree = 2 * Pi * std::fabs(r) / 360;  // length of one degree of arc
    double asked = 0;
    if (record.Value[12] != 0 && std::isfinite(record.Value[12])) {
        asked = std::fabs(static_cast<double>(record.Value[12]));
    } else if (record.Value[3] != 0 && perDegree > 0 && std::isfinite(perDegree)) {
        asked = std::fabs(static_cast<double>(record.Value[3])) / perDegree;
        if (!std::isfinite(asked)) asked = 0;
    }
    const double sense = sweep >= 0 ? 1.0 : -1.0;
    const double span = std::fabs(sweep);
    int32_t steps = 0;
    if (span > 0 && std::isfinite(span) && perDegree > 0 && std::isfinite(perDegree)) {
        if (asked > 0) {
            steps = StepsThatFit(span, asked, ArcStepAllowance, whole ? MostSteps + 1 : MostSteps);
        } else if (record.Count[1] >= 2) {
            steps = whole ? record.Count[1] : record.Count[1] - 1;
        }
    }
    int32_t hits = 1;
    double step = asked == 0 ? 0.0 : sense * asked;
    if (steps >= 1) {
        hits = whole ? steps : steps + 1;
        step = sweep / steps;
    }
    record.Count[1] = static_cast<int16_t>(hits);
    record.Value[12] = ToSingle(step);
    const double storedStep = record.Value[12];
    record.Value[3] = ToSingle(std::fabs(storedStep) * perDegree);
    record.Value[6] = ToSingle((hits - 1) * storedStep * (2 * Pi * r / 360));
}

}  // namespace

void BindLine(const MachineState& machine, DrawRecord& record) {
    const int16_t code = record.EntityCode;
    if (code == 220) {
        // A row of hits is defined by its ends.
        CopyPoint(record.Point[5], record.Point[1]);
        CopyPoint(record.Point[6], record.Point[3]);
        bind::StoreRounded(record.Point[2], Middle(record.Point[5].X, record.Point[6].X),
                           Middle(record.Point[5].Y, record.Point[6].Y));
        double length = 0;
        double direction = 0;
        XYToPolar(static_cast<double>(record.Point[6].X) - record.Point[5].X,
                  static_cast<double>(record.Point[6].Y) - record.Point[5].Y, length, direction);
        record.Value[1] = ToSingle(RoundTo(length, 4));
        record.Value[10] = bind::StoreAngle(RoundTo(direction, 3));
        record.Value[5] = record.Value[1];
        // The pitch runs the way of the length. A length of 0 has no sign.
        if (static_cast<double>(record.Value[1]) * record.Value[2] < 0) record.Value[2] = -record.Value[2];
    } else {
        bind::StoreRounded(record.Point[2], Middle(record.Point[1].X, record.Point[3].X),
                           Middle(record.Point[1].Y, record.Point[3].Y));
        CopyPoint(record.Point[1], record.Point[5]);
        CopyPoint(record.Point[3], record.Point[6]);
        record.Value[5] = record.Value[1];
        double dx = 0;
        double dy = 0;
        if (record.Value[3] != 0) {
            PolarToXY(record.Value[3], record.Value[10], dx, dy);
            bind::StoreRounded(record.Point[5], record.Point[1].X + dx, record.Point[1].Y + dy);
            record.Value[5] = ToSingle(static_cast<double>(record.Value[5]) - record.Value[3]);
        }
        if (record.Value[4] != 0) {
            PolarToXY(record.Value[4], static_cast<double>(record.Value[10]) + 180, dx, dy);
            bind::StoreRounded(record.Point[6], record.Point[3].X + dx, record.Point[3].Y + dy);
            record.Value[5] = ToSingle(static_cast<double>(record.Value[5]) - record.Value[4]);
        }
    }
    const bool worked = code != 110 && bind::IsWorkedPath(machine, record);
    if (worked) WorkLine(record);
    PlaneBox box;
    for (int i : {1, 3, 5, 6}) box.Add(record.Point[i]);
    bind::StoreBoxes(record, box, PathClearance(worked, record), {5});
    LeadBox(machine, record);
}

void BindArc(const MachineState& machine, DrawRecord& record) {
    const int16_t code = record.EntityCode;
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    const double r = record.Value[1];
    const double a = record.Value[10];
    const double s = bind::DrawnSweep(record);
    double dx = 0;
    double dy = 0;
    PolarToXY(r, a, dx, dy);
    bind::StoreRounded(record.Point[1], cx + dx, cy + dy);
    PolarToXY(r, Norm360(a + s / 2), dx, dy);
    bind::StoreRounded(record.Point[2], cx + dx, cy + dy);
    PolarToXY(r, Norm360(a + s), dx, dy);
    bind::StoreRounded(record.Point[3], cx + dx, cy + dy);
    CopyPoint(record.Point[1], record.Point[5]);
    CopyPoint(record.Point[3], record.Point[6]);
    // The signed length of the arc, with pi's eight decimals; a circle is whole.
    if (code == 151) {
        record.Value[2] = ToSingle(r * 2 * Pi);
    } else {
        record.Value[2] = s == 0 ? 0.0f : ToSingle((r * 2 * Pi) / (360 / s));
    }

    double start = a;
    double sweep = s;
    bind::ArcWorkingAngles(record, start, sweep);
    if (code == 230) {
        record.Value[5] = record.Value[1];
        record.Value[6] = record.Value[2];
        record.Value[13] = record.Value[10];
        record.Value[14] = record.Value[11];
        // A step given as an angle is also told as a length.
        if (record.Value[3] == 0 && s != 0)
            record.Value[3] = ToSingle(record.Value[12] / s * static_cast<double>(record.Value[6]));
    } else {
        record.Value[13] = ToSingle(start);
        record.Value[14] = ToSingle(sweep);
        // The working radius of a profiled arc is its radius; a worked arc sets it again below.
        if (code == 130) record.Value[5] = record.Value[1];
    }
    if (code == 151) {
        // A straight lead on a circle is radial: outward on an outside circle, inward on an
        // inside one, and then no longer than the radius.
        for (LeadSpec* lead : {&record.LeadIn, &record.LeadOut}) {
            if (std::abs(lead->LeadKind) != 1) continue;
            if (record.Side > 0) {
                lead->LeadAngle = bind::StoreAngle(record.Value[10]);
            } else {
                if (lead->LeadLength > record.Value[1]) lead->LeadLength = record.Value[1];
                lead->LeadAngle = bind::StoreAngle(static_cast<double>(record.Value[10]) + 180);
            }
        }
    }

    const bool worked = code != 151 && bind::IsWorkedPath(machine, record);
    if (worked) WorkArc(record, start, sweep);

    PlaneBox box;
    bind::AddArc(box, cx, cy, r, a, s);
    if (start != a || sweep != s) bind::AddArc(box, cx, cy, r, start, sweep);
    bind::StoreBoxes(record, box, PathClearance(worked, record), {5});
    LeadBox(machine, record);
}

void ApplyTrim(const MachineState& machine, DrawRecord& record) {
    const int16_t code = record.EntityCode;
    double dx = 0;
    double dy = 0;
    if (code == 130) {
        double start = 0;
        double sweep = 0;
        bind::ArcWorkingAngles(record, start, sweep);
        const double cx = record.Point[4].X;
        const double cy = record.Point[4].Y;
        const double r = record.Value[1];
        if (record.Value[8] != 0) {
            PolarToXY(r, start, dx, dy);
            record.Point[1] = SinglePoint{ToSingle(RoundTo(cx + dx, 8)), ToSingle(RoundTo(cy + dy, 8))};
        }
        if (record.Value[9] != 0) {
            PolarToXY(r, Norm360(start + sweep), dx, dy);
            record.Point[3] = SinglePoint{ToSingle(RoundTo(cx + dx, 8)), ToSingle(RoundTo(cy + dy, 8))};
        }
        record.Value[8] = 0;
        record.Value[9] = 0;
        record.Value[10] = ToSingle(start);
        record.Value[11] = ToSingle(sweep);
    } else if (code == 120 || code == 521 || code == 522) {
        const double direction = record.Value[10];
        if (record.Value[3] != 0) {
            PolarToXY(record.Value[3], direction, dx, dy);
            record.Point[1] = SinglePoint{ToSingle(RoundTo(record.Point[1].X + dx, 8)),
                                          ToSingle(RoundTo(record.Point[1].Y + dy, 8))};
        }
        if (record.Value[4] != 0) {
            PolarToXY(record.Value[4], direction + 180, dx, dy);
            record.Point[3] = SinglePoint{ToSingle(RoundTo(record.Point[3].X + dx, 8)),
                                          ToSingle(RoundTo(record.Point[3].Y + dy, 8))};
        }
        record.Value[1] = ToSingle(RoundTo(
            static_cast<double>(record.Value[1]) - (static_cast<double>(record.Value[3]) + record.Value[4]), 8));
        record.Value[3] = 0;
        record.Value[4] = 0;
    }
    BindRecord(machine, record);
}

namespace {

// An arc lead's sign is its side of the path: a reversal turns it over.
void FlipArcLeads(DrawRecord& record) {
    for (LeadSpec* lead : {&record.LeadIn, &record.LeadOut})
        if (std::abs(static_cast<int>(lead->LeadKind)) > 1) lead->LeadKind = static_cast<int16_t>(-lead->LeadKind);
}

void SwapPoints(SinglePoint& a, SinglePoint& b) {
    const SinglePoint held = a;
    CopyPoint(b, a);
    CopyPoint(held, b);
}

}  // namespace

void ReverseLine(const MachineState& machine, DrawRecord& record) {
    SwapPoints(record.Point[1], record.Point[3]);
    SwapPoints(record.Point[5], record.Point[6]);
    record.Value[10] = bind::StoreAngle(static_cast<double>(record.Value[10]) + 180);
    SwapValues(record.Value[3], record.Value[4]);
    record.Side = static_cast<int16_t>(-record.Side);
    FlipArcLeads(record);
    SwapLeads(record);
    BindRecord(machine, record);
}

void ReverseArc(const MachineState& machine, DrawRecord& record) {
    // The tool keeps its angle to the path: to the start, and at the first hit.
    double toolTurn = 0;
    double firstHitTurn = 0;
    if (IsRotaryWork(record.ToolA.WorkType) && record.ToolA.Present != 0) {
        toolTurn = static_cast<double>(record.ToolA.ToolAngle) - record.Value[10];
        if (record.Count[2] != 0) firstHitTurn = static_cast<double>(record.Value[15]) - record.Value[13];
    }
    SwapPoints(record.Point[1], record.Point[3]);
    SwapPoints(record.Point[5], record.Point[6]);
    record.Value[10] = bind::StoreAngle(static_cast<double>(record.Value[11]) + record.Value[10]);
    record.Value[13] = bind::StoreAngle(static_cast<double>(record.Value[13]) + record.Value[14]);
    record.Value[11] = -record.Value[11];
    record.Value[12] = -record.Value[12];
    record.Value[14] = -record.Value[14];
    // The trims stay at their ends of the arc.
    SwapValues(record.Value[8], record.Value[9]);
    if (IsPunchWork(record.ToolA.WorkType) && record.ToolA.Present != 0) {
        record.Value[15] = ToSingle(static_cast<double>(record.Value[13]) + firstHitTurn);
        record.ToolA.ToolAngle = ToSingle(static_cast<double>(record.Value[10]) + toolTurn);
    }
    // Side stays: the sweep's new sign keeps the arc on the same side.
    FlipArcLeads(record);
    SwapLeads(record);
    BindRecord(machine, record);
}

}  // namespace tvx
