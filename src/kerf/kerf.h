#pragma once
// Kerf compensation: the cutter path of a machine whose control cannot offset the cutter.
//
// Every profile line (120) and arc (130) that has a Side is offset by the cutter's radius, and
// the offset pieces are joined again at each corner: cut back to the point where they meet, or
// rounded by an arc about the drawn corner. The result is a new drawing beside the old one, with
// the extension "krf", in which no entity has a Side any more.
#include <cstdint>
#include <string>
#include <vector>

#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx {

// The offset distance. It is fixed in the system, never read from a setting.
inline constexpr double KerfRadius = 3.175;

// The offset form of a line, in place: moved by radius to the left (Side -1) or the right
// (Side 1) of its direction, made a "Line Profile" without Side. A Side of 0 leaves it as it is.
void OffsetLine(const MachineState& machine, DrawRecord& record, double radius);
// The offset form of an arc, in place: its radius grows or shrinks by radius as its Side and
// sense turn it away from or towards its centre. An arc that shrinks to nothing sets
// errorFlag to -1 and keeps its old radius. A Side of 0 leaves it as it is.
void OffsetArc(const MachineState& machine, DrawRecord& record, double radius, int16_t& errorFlag);

// How two offset pieces meet: class 2 a true meeting inside both, class 1 a meeting point outside
// them, class 0 none (parallel pieces, at (-999, -999)).
struct Meeting {
    int16_t Class = 0;
    double X = -999;
    double Y = -999;
};

// Which chord pairs of two pieces are tried. Both give the same meeting, bit for bit.
enum class MeetingSearch {
    EveryPair,  // every pair in the order of the walk: the described form, kept for the tests
    BoxedRuns,  // only the pairs whose boxes can hold a meeting, in the same order
};

// The join class of two offset pieces (lines and arcs, first then second) and their meeting
// point. Lines meet by their parameters; an arc is walked in chords of a tenth of a degree from
// the corner, and each chord is met as a line.
Meeting MeetEntities(const DrawRecord& first, const DrawRecord& second,
                     MeetingSearch search = MeetingSearch::BoxedRuns);
// The described walk, every chord pair in turn.
Meeting MeetEntitiesReference(const DrawRecord& first, const DrawRecord& second);

// The arc of radius about the corner from the end of first to the start of second, made on a
// copy of first: the tool and the carried words go with the path, the leads and the action after
// belong to its ends and are cleared.
void CornerArc(const MachineState& machine, const DrawRecord& first, const DrawRecord& second, double cornerX,
               double cornerY, double radius, DrawRecord& out);

// Moves one end of a line or an arc (end 1 the start, 2 the end) to the point.
void TrimLine(const MachineState& machine, DrawRecord& record, double x, double y, int end);
void TrimArc(const MachineState& machine, DrawRecord& record, double x, double y, int end);

// The cutter path of the drawing at path: its extension made "drw" for the source and "krf" for
// the target, an existing target deleted first. 0 when done, -1 when an inside arc collapsed
// (the target is written all the same). The meeting search is the caller's choice; the job uses
// the boxed one.
int16_t KerfDrawing(RunState& state, const std::string& path, MeetingSearch search = MeetingSearch::BoxedRuns);

// ---- The chords of a meeting, for the tests and the benchmark ----------------------------------

// One straight piece of a walk: a line, or a chord of an arc, from (X1, Y1) to (X2, Y2) in the
// sense of its entity, with its ends as singles for the box of PointInBox.
struct Chord {
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    float BoxX1 = 0, BoxY1 = 0, BoxX2 = 0, BoxY2 = 0;
};

// The number of chords of an arc's walk: 10 to each whole degree of its sweep (a sweep beyond a
// full turn counts as a full turn, one that is not a number as none).
int32_t ArcChordCount(double sweep);
// The pieces of an entity in the order its walk tries them: a line is one piece; an arc walked
// from its start (fromEnd false, the second entity of a meeting) or back from its end (the first).
std::vector<Chord> WalkChords(const DrawRecord& entity, bool fromEnd);

}  // namespace tvx
