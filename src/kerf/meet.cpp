// Where two offset pieces meet.
//
// The described walk tries chord pairs in a fixed order: the first entity's pieces in turn (an
// arc back from its end, next to the corner, first), and for each of them the second entity's
// pieces (an arc from its start). Every pair stores its point; a pair that meets outside its
// pieces sets class 1, a parallel pair class 0 at (-999, -999), and a pair that meets inside both
// pieces and inside both boxes sets class 2 and ends the walk. A pair that meets inside by its
// parameters but outside a box leaves the class as it was.
//
// So the answer of a walk is either its first class-2 pair, or, when there is none, the point of
// its last pair with the class of the last pair that set one. The boxed search finds the same
// answer without trying every pair: a class-2 pair has its point inside both boxes, so a pair of
// pieces whose boxes do not touch can never be one, and whole runs of chords are passed over by
// their common box. Every pair that is tried is tried by the same arithmetic as in the described
// walk, so the answer is the same, bit for bit.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "common/numeric.h"
#include "kerf/kerf.h"

namespace tvx {
namespace {

// The outcome of one pair of pieces.
enum class PairKind {
    Parallel,  // d exactly 0: class 0 at (-999, -999)
    Outside,   // a parameter beyond 1 by its absolute value: class 1
    Inside,    // inside by its parameters, outside a box: the class stays
    Met,       // inside by its parameters and inside both boxes: class 2
};

struct PairOutcome {
    PairKind Kind = PairKind::Parallel;
    double X = -999;
    double Y = -999;
};

// The meeting of two straight pieces, P1 to P2 and P3 to P4, by their parameters; boxes tells
// whether the point must also lie in both pieces' boxes to count as met.
PairOutcome MeetPieces(const Chord& a, const Chord& b, bool boxes) {
    PairOutcome out;
    const double d1x = a.X2 - a.X1;
    const double d1y = a.Y2 - a.Y1;
    const double d2x = b.X2 - b.X1;
    const double d2y = b.Y2 - b.Y1;
    const double d = d1x * d2y - d1y * d2x;
    if (d == 0) return out;
    const double ex = b.X1 - a.X1;
    const double ey = b.Y1 - a.Y1;
    const double s = (ex * d2y - ey * d2x) / d;
    const double t = (ex * d1y - ey * d1x) / d;
    out.X = a.X1 + s * d1x;
    out.Y = a.Y1 + s * d1y;
    if (std::fabs(s) > 1 || std::fabs(t) > 1) {
        out.Kind = PairKind::Outside;
    } else if (!boxes || (PointInBox(a.BoxX1, a.BoxY1, a.BoxX2, a.BoxY2, out.X, out.Y) &&
                          PointInBox(b.BoxX1, b.BoxY1, b.BoxX2, b.BoxY2, out.X, out.Y))) {
        out.Kind = PairKind::Met;
    } else {
        out.Kind = PairKind::Inside;
    }
    return out;
}

Chord MakeChord(double x1, double y1, double x2, double y2) {
    Chord c;
    c.X1 = x1;
    c.Y1 = y1;
    c.X2 = x2;
    c.Y2 = y2;
    // The box is told in singles: an end beyond their range is the run's Overflow fault.
    c.BoxX1 = ToSingle(x1);
    c.BoxY1 = ToSingle(y1);
    c.BoxX2 = ToSingle(x2);
    c.BoxY2 = ToSingle(y2);
    return c;
}

bool IsArc(const DrawRecord& record) { return record.EntityCode == 130; }

// A closed box of singles; Empty when it holds no point (or a bound that is not a number).
struct Box {
    float LowX = 0, LowY = 0, HighX = 0, HighY = 0;
    bool Empty = true;
};

Box ChordBox(const Chord& c) {
    Box box;
    if (std::isnan(c.BoxX1) || std::isnan(c.BoxY1) || std::isnan(c.BoxX2) || std::isnan(c.BoxY2)) return box;
    box.LowX = std::min(c.BoxX1, c.BoxX2);
    box.HighX = std::max(c.BoxX1, c.BoxX2);
    box.LowY = std::min(c.BoxY1, c.BoxY2);
    box.HighY = std::max(c.BoxY1, c.BoxY2);
    box.Empty = false;
    return box;
}

bool Touch(const Box& a, const Box& b) {
    return !a.Empty && !b.Empty && a.LowX <= b.HighX && b.LowX <= a.HighX && a.LowY <= b.HighY &&
           b.LowY <= a.HighY;
}

// The walk of one piece, its chords made on demand: a line is its one chord; an arc's chord i
// (from 0, in the order of the walk) runs between the ends at start + k steps and start + (k + 1)
// steps, k counted from the arc's start, or back from its end.
struct PieceWalk {
    bool Arc = false;
    Chord Line;
    double CentreX = 0, CentreY = 0, Radius = 0, Start = 0, Step = 0;
    int32_t Count = 0;
    bool FromEnd = false;
};

PieceWalk MakeWalk(const DrawRecord& entity, bool fromEnd) {
    PieceWalk walk;
    if (!IsArc(entity)) {
        walk.Line = MakeChord(entity.Point[1].X, entity.Point[1].Y, entity.Point[3].X, entity.Point[3].Y);
        walk.Count = 1;
        return walk;
    }
    double sweep = entity.Value[11];
    if (sweep > 360) sweep = 360;
    if (sweep < -360) sweep = -360;
    walk.Arc = true;
    walk.Count = ArcChordCount(sweep);
    walk.CentreX = entity.Point[4].X;
    walk.CentreY = entity.Point[4].Y;
    walk.Radius = entity.Value[1];
    walk.Start = entity.Value[10];
    walk.Step = walk.Count > 0 ? sweep / walk.Count : 0;
    walk.FromEnd = fromEnd;
    return walk;
}

// The end of an arc's walk at k steps from its start.
void EndAt(const PieceWalk& walk, int32_t k, double& x, double& y) {
    double dx = 0;
    double dy = 0;
    PolarToXY(walk.Radius, walk.Start + k * walk.Step, dx, dy);
    x = walk.CentreX + dx;
    y = walk.CentreY + dy;
}

// The step index at which chord i of the walk starts, in the arc's own sense.
int32_t FirstStep(const PieceWalk& walk, int32_t i) { return walk.FromEnd ? walk.Count - 1 - i : i; }

Chord ChordAt(const PieceWalk& walk, int32_t i) {
    if (!walk.Arc) return walk.Line;
    const int32_t k = FirstStep(walk, i);
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    EndAt(walk, k, x1, y1);
    EndAt(walk, k + 1, x2, y2);
    return MakeChord(x1, y1, x2, y2);
}

// Runs of consecutive chords of a walk with a box that holds the boxes of all their chords.
constexpr int32_t RunLength = 32;

struct Run {
    int32_t First = 0;
    int32_t End = 0;
    Box Bounds;
    std::vector<Chord> Chords;  // made when first needed
    std::vector<Box> Boxes;
};

// A box that holds every end of an arc's walk from step k1 to step k2: the box of the arc
// between those angles (its two ends and the quarter points between them), widened by far more
// than the error of the ends' arithmetic (pi of 8 decimals, the sums and the products), and
// told in singles by rounding, which keeps the order of the values.
Box ArcRunBox(const PieceWalk& walk, int32_t k1, double x1, double y1, int32_t k2, double x2, double y2) {
    double a1 = walk.Start + k1 * walk.Step;
    double a2 = walk.Start + k2 * walk.Step;
    if (a1 > a2) std::swap(a1, a2);
    double lowX = std::min(x1, x2), highX = std::max(x1, x2);
    double lowY = std::min(y1, y2), highY = std::max(y1, y2);
    const double r = walk.Radius;
    for (double quarter = std::ceil((a1 - 1e-6) / 90) * 90; quarter <= a2 + 1e-6; quarter += 90) {
        const double q = Norm360(quarter);
        const double qx = walk.CentreX + (q == 0 ? r : q == 180 ? -r : 0);
        const double qy = walk.CentreY + (q == 90 ? r : q == 270 ? -r : 0);
        lowX = std::min(lowX, qx);
        highX = std::max(highX, qx);
        lowY = std::min(lowY, qy);
        highY = std::max(highY, qy);
    }
    const double pad = std::fabs(r) * 1e-7 + (std::fabs(walk.CentreX) + std::fabs(walk.CentreY) + std::fabs(r)) * 1e-14;
    Box box;
    box.LowX = static_cast<float>(lowX - pad);
    box.HighX = static_cast<float>(highX + pad);
    box.LowY = static_cast<float>(lowY - pad);
    box.HighY = static_cast<float>(highY + pad);
    box.Empty = false;
    return box;
}

// True when the walk's chords can be made on demand: finite fields, and every end far inside the
// range of a single, so that no chord made or passed over would have ended the run with the
// Overflow fault.
bool CanWalkOnDemand(const PieceWalk& walk) {
    if (!walk.Arc) return true;
    const double limit = 1e37;
    return std::isfinite(walk.CentreX) && std::isfinite(walk.CentreY) && std::isfinite(walk.Radius) &&
           std::isfinite(walk.Start) && std::isfinite(walk.Step) && std::fabs(walk.Start) < 1e6 &&
           std::fabs(walk.CentreX) + std::fabs(walk.Radius) < limit &&
           std::fabs(walk.CentreY) + std::fabs(walk.Radius) < limit;
}

std::vector<Run> MakeRuns(const PieceWalk& walk) {
    std::vector<Run> runs;
    if (!walk.Arc) {
        Run run;
        run.First = 0;
        run.End = 1;
        run.Bounds = ChordBox(walk.Line);
        run.Chords.push_back(walk.Line);
        run.Boxes.push_back(run.Bounds);
        runs.push_back(std::move(run));
        return runs;
    }
    int32_t sharedStep = -1;
    double sharedX = 0;
    double sharedY = 0;
    for (int32_t first = 0; first < walk.Count; first += RunLength) {
        Run run;
        run.First = first;
        run.End = std::min(walk.Count, first + RunLength);
        // The steps the run's chords span, in the arc's own sense; a run shares an end with the
        // one before it.
        const int32_t k1 = FirstStep(walk, walk.FromEnd ? run.End - 1 : run.First);
        const int32_t k2 = FirstStep(walk, walk.FromEnd ? run.First : run.End - 1) + 1;
        double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        const int32_t shared = walk.FromEnd ? k2 : k1;
        if (!runs.empty() && shared == sharedStep) {
            (walk.FromEnd ? x2 : x1) = sharedX;
            (walk.FromEnd ? y2 : y1) = sharedY;
        } else {
            EndAt(walk, shared, walk.FromEnd ? x2 : x1, walk.FromEnd ? y2 : y1);
        }
        const int32_t other = walk.FromEnd ? k1 : k2;
        EndAt(walk, other, walk.FromEnd ? x1 : x2, walk.FromEnd ? y1 : y2);
        sharedStep = other;
        sharedX = walk.FromEnd ? x1 : x2;
        sharedY = walk.FromEnd ? y1 : y2;
        run.Bounds = ArcRunBox(walk, k1, x1, y1, k2, x2, y2);
        runs.push_back(std::move(run));
    }
    return runs;
}

void MakeRunChords(const PieceWalk& walk, Run& run) {
    if (!run.Chords.empty()) return;
    const size_t n = static_cast<size_t>(run.End - run.First);
    run.Chords.reserve(n);
    run.Boxes.reserve(n);
    if (!walk.Arc) {
        for (int32_t i = run.First; i < run.End; ++i) run.Chords.push_back(ChordAt(walk, i));
    } else {
        // The run's ends, each made once, from its lowest step up.
        const int32_t low = FirstStep(walk, walk.FromEnd ? run.End - 1 : run.First);
        double xs[RunLength + 1];
        double ys[RunLength + 1];
        for (size_t e = 0; e <= n; ++e) EndAt(walk, low + static_cast<int32_t>(e), xs[e], ys[e]);
        for (int32_t i = run.First; i < run.End; ++i) {
            const size_t e = static_cast<size_t>(FirstStep(walk, i) - low);
            run.Chords.push_back(MakeChord(xs[e], ys[e], xs[e + 1], ys[e + 1]));
        }
    }
    for (const Chord& c : run.Chords) run.Boxes.push_back(ChordBox(c));
}

Meeting FromOutcome(int16_t cls, const PairOutcome& outcome) {
    Meeting m;
    m.Class = cls;
    m.X = outcome.X;
    m.Y = outcome.Y;
    return m;
}

// The described walk: every pair in turn, the state carried from pair to pair.
Meeting WalkEveryPair(const std::vector<Chord>& outer, const std::vector<Chord>& inner) {
    Meeting m;
    for (const Chord& a : outer) {
        for (const Chord& b : inner) {
            const PairOutcome o = MeetPieces(a, b, true);
            m.X = o.X;
            m.Y = o.Y;
            switch (o.Kind) {
                case PairKind::Parallel: m.Class = 0; break;
                case PairKind::Outside: m.Class = 1; break;
                case PairKind::Inside: break;
                case PairKind::Met: m.Class = 2; return m;
            }
        }
    }
    return m;
}

// The answer of a walk that met nowhere: the last pair's point, and the class of the last pair
// that set one, found by walking the pairs backwards from the last.
Meeting LastOfWalk(const PieceWalk& outer, const PieceWalk& inner) {
    Meeting m;
    if (outer.Count == 0 || inner.Count == 0) return m;
    bool last = true;
    for (int32_t i = outer.Count; i-- > 0;) {
        const Chord a = ChordAt(outer, i);
        for (int32_t j = inner.Count; j-- > 0;) {
            const PairOutcome o = MeetPieces(a, ChordAt(inner, j), true);
            if (last) {
                m.X = o.X;
                m.Y = o.Y;
                last = false;
            }
            if (o.Kind == PairKind::Parallel) {
                m.Class = 0;
                return m;
            }
            if (o.Kind == PairKind::Outside) {
                m.Class = 1;
                return m;
            }
        }
    }
    return m;
}

// The boxed walk: the pairs in the same order, passing over those whose boxes cannot hold a
// point of both pieces. A run of chords is made only when its box touches a run of the other.
Meeting WalkBoxedRuns(const PieceWalk& outer, const PieceWalk& inner) {
    std::vector<Run> outerRuns = MakeRuns(outer);
    std::vector<Run> innerRuns = MakeRuns(inner);
    std::vector<Run*> near;
    for (Run& outerRun : outerRuns) {
        near.clear();
        for (Run& innerRun : innerRuns)
            if (Touch(outerRun.Bounds, innerRun.Bounds)) near.push_back(&innerRun);
        if (near.empty()) continue;
        MakeRunChords(outer, outerRun);
        for (size_t i = 0; i < outerRun.Chords.size(); ++i) {
            const Box& box = outerRun.Boxes[i];
            for (Run* innerRun : near) {
                if (!Touch(box, innerRun->Bounds)) continue;
                MakeRunChords(inner, *innerRun);
                for (size_t j = 0; j < innerRun->Chords.size(); ++j) {
                    if (!Touch(box, innerRun->Boxes[j])) continue;
                    const PairOutcome o = MeetPieces(outerRun.Chords[i], innerRun->Chords[j], true);
                    if (o.Kind == PairKind::Met) return FromOutcome(2, o);
                }
            }
        }
    }
    return LastOfWalk(outer, inner);
}

}  // namespace

int32_t ArcChordCount(double sweep) {
    double turn = std::fabs(sweep);
    if (std::isnan(turn)) return 0;
    if (turn > 360) turn = 360;
    return 10 * static_cast<int32_t>(std::trunc(turn));
}

std::vector<Chord> WalkChords(const DrawRecord& entity, bool fromEnd) {
    const PieceWalk walk = MakeWalk(entity, fromEnd);
    std::vector<Chord> chords;
    chords.reserve(static_cast<size_t>(walk.Count));
    for (int32_t i = 0; i < walk.Count; ++i) chords.push_back(ChordAt(walk, i));
    return chords;
}

Meeting MeetEntities(const DrawRecord& first, const DrawRecord& second, MeetingSearch search) {
    if (!IsArc(first) && !IsArc(second)) {
        // Two lines: their parameters alone decide, a parameter of -0.5 counting as inside.
        const PairOutcome o = MeetPieces(MakeWalk(first, false).Line, MakeWalk(second, false).Line, false);
        if (o.Kind == PairKind::Parallel) return Meeting{};
        return FromOutcome(o.Kind == PairKind::Met ? 2 : 1, o);
    }
    const PieceWalk outer = MakeWalk(first, true);
    const PieceWalk inner = MakeWalk(second, false);
    if (search == MeetingSearch::BoxedRuns && CanWalkOnDemand(outer) && CanWalkOnDemand(inner))
        return WalkBoxedRuns(outer, inner);
    return WalkEveryPair(WalkChords(first, true), WalkChords(second, false));
}

Meeting MeetEntitiesReference(const DrawRecord& first, const DrawRecord& second) {
    return MeetEntities(first, second, MeetingSearch::EveryPair);
}

}  // namespace tvx
