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

void Widen(Box& box, const Box& more) {
    if (more.Empty) return;
    if (box.Empty) {
        box = more;
        return;
    }
    box.LowX = std::min(box.LowX, more.LowX);
    box.LowY = std::min(box.LowY, more.LowY);
    box.HighX = std::max(box.HighX, more.HighX);
    box.HighY = std::max(box.HighY, more.HighY);
}

bool Touch(const Box& a, const Box& b) {
    return !a.Empty && !b.Empty && a.LowX <= b.HighX && b.LowX <= a.HighX && a.LowY <= b.HighY &&
           b.LowY <= a.HighY;
}

// Runs of consecutive pieces of a walk with their common box.
constexpr size_t RunLength = 32;

struct Run {
    size_t First = 0;
    size_t End = 0;
    Box Bounds;
};

std::vector<Run> MakeRuns(const std::vector<Box>& boxes) {
    std::vector<Run> runs;
    for (size_t first = 0; first < boxes.size(); first += RunLength) {
        Run run;
        run.First = first;
        run.End = std::min(boxes.size(), first + RunLength);
        for (size_t i = run.First; i < run.End; ++i) Widen(run.Bounds, boxes[i]);
        runs.push_back(run);
    }
    return runs;
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
Meeting LastOfWalk(const std::vector<Chord>& outer, const std::vector<Chord>& inner) {
    Meeting m;
    if (outer.empty() || inner.empty()) return m;
    const PairOutcome last = MeetPieces(outer.back(), inner.back(), true);
    m.X = last.X;
    m.Y = last.Y;
    for (size_t i = outer.size(); i-- > 0;) {
        for (size_t j = inner.size(); j-- > 0;) {
            const PairOutcome o =
                (i + 1 == outer.size() && j + 1 == inner.size()) ? last : MeetPieces(outer[i], inner[j], true);
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
// point of both pieces.
Meeting WalkBoxedRuns(const std::vector<Chord>& outer, const std::vector<Chord>& inner) {
    std::vector<Box> outerBoxes;
    outerBoxes.reserve(outer.size());
    for (const Chord& c : outer) outerBoxes.push_back(ChordBox(c));
    std::vector<Box> innerBoxes;
    innerBoxes.reserve(inner.size());
    for (const Chord& c : inner) innerBoxes.push_back(ChordBox(c));
    const std::vector<Run> outerRuns = MakeRuns(outerBoxes);
    const std::vector<Run> innerRuns = MakeRuns(innerBoxes);
    std::vector<const Run*> near;
    for (const Run& outerRun : outerRuns) {
        near.clear();
        for (const Run& innerRun : innerRuns)
            if (Touch(outerRun.Bounds, innerRun.Bounds)) near.push_back(&innerRun);
        if (near.empty()) continue;
        for (size_t i = outerRun.First; i < outerRun.End; ++i) {
            const Box& box = outerBoxes[i];
            for (const Run* innerRun : near) {
                if (!Touch(box, innerRun->Bounds)) continue;
                for (size_t j = innerRun->First; j < innerRun->End; ++j) {
                    if (!Touch(box, innerBoxes[j])) continue;
                    const PairOutcome o = MeetPieces(outer[i], inner[j], true);
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
    std::vector<Chord> chords;
    if (!IsArc(entity)) {
        chords.push_back(MakeChord(entity.Point[1].X, entity.Point[1].Y, entity.Point[3].X, entity.Point[3].Y));
        return chords;
    }
    double sweep = entity.Value[11];
    if (sweep > 360) sweep = 360;
    if (sweep < -360) sweep = -360;
    const int32_t count = ArcChordCount(sweep);
    if (count == 0) return chords;
    const double cx = entity.Point[4].X;
    const double cy = entity.Point[4].Y;
    const double radius = entity.Value[1];
    const double start = entity.Value[10];
    const double step = sweep / count;
    // The ends of the chords, at start + k steps for k from 0 to count.
    std::vector<double> xs(static_cast<size_t>(count) + 1);
    std::vector<double> ys(static_cast<size_t>(count) + 1);
    for (int32_t k = 0; k <= count; ++k) {
        double dx = 0;
        double dy = 0;
        PolarToXY(radius, start + k * step, dx, dy);
        xs[static_cast<size_t>(k)] = cx + dx;
        ys[static_cast<size_t>(k)] = cy + dy;
    }
    chords.reserve(static_cast<size_t>(count));
    for (int32_t i = 1; i <= count; ++i) {
        const size_t k = static_cast<size_t>(fromEnd ? count - i + 1 : i);
        chords.push_back(MakeChord(xs[k - 1], ys[k - 1], xs[k], ys[k]));
    }
    return chords;
}

Meeting MeetEntities(const DrawRecord& first, const DrawRecord& second, MeetingSearch search) {
    if (!IsArc(first) && !IsArc(second)) {
        // Two lines: their parameters alone decide, a parameter of -0.5 counting as inside.
        const PairOutcome o = MeetPieces(WalkChords(first, false).front(), WalkChords(second, false).front(), false);
        if (o.Kind == PairKind::Parallel) return Meeting{};
        return FromOutcome(o.Kind == PairKind::Met ? 2 : 1, o);
    }
    const std::vector<Chord> outer = WalkChords(first, true);
    const std::vector<Chord> inner = WalkChords(second, false);
    return search == MeetingSearch::EveryPair ? WalkEveryPair(outer, inner) : WalkBoxedRuns(outer, inner);
}

Meeting MeetEntitiesReference(const DrawRecord& first, const DrawRecord& second) {
    return MeetEntities(first, second, MeetingSearch::EveryPair);
}

}  // namespace tvx
