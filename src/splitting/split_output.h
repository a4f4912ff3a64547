#pragma once
// Where the records of a split go, and the arithmetic that every split routine shares.
//
// One body of split routines serves two paths. The passes over a drawing append the records of
// an entity to the pass's working file behind the running OutputCount; the single-shape path of
// the generation loop makes Shape.drw anew for one shape and counts its records from 1. The
// routines write only through a SplitOutput, and every way in which the two paths differ inside
// a routine is a named choice in SplitChoices, set by the caller. Which routine a shape gets is
// the caller's table (the split dispatch, or the single-shape entry points).
//
// Numbers: intermediate values are doubles; a store into a record rounds to a single. Made
// coordinates are rounded to 4 decimals, angles and sweeps to 3.
#include <cstdint>
#include <string>
#include <vector>

#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx {

// The choices in which the single-shape path differs from the passes inside a routine.
struct SplitChoices {
    // A straight lead record that a shape routine writes carries Count[8]: 1 on a lead-in, 2 on
    // a lead-out. The emitters tell the lead lines of Shape.drw by it; the passes leave it 0.
    bool MarkLeads = false;
    // SplitRectangleInsideRound also gives each line Value[3] and Value[4] (the source's
    // Value[3]), as the outside routines do.
    bool InsideRoundTrims = false;
};

inline constexpr SplitChoices MainPathChoices{false, false};
inline constexpr SplitChoices SingleShapeChoices{true, true};

// No entity of a drawing makes more records than this: a bound that keeps a damaged record (a
// tool of size 0, a pitch of a millionth) from writing without end. The largest real splits (a
// row of 32767 hits, a grid of 32767 rows) stay far below it.
inline constexpr int32_t MostRecordsFromOneEntity = 100000;

// What the split of a library tool needs from the passes above this module: the run (its
// working directory, the job's material and tool library) and the two passes that a tooling
// drawing goes through before it is placed, the cruciform pass and the turn of a drawing about
// its origin. An output without them splits a library tool as one whose drawing is missing.
struct LibraryPasses {
    RunState* Run = nullptr;
    void (*Cruciform)(RunState&, const std::string&) = nullptr;
    void (*Rotate)(RunState&, const std::string&, double) = nullptr;
};

struct SplitOutput {
    const MachineState* Machine = nullptr;
    // The random-access drawing that the records go to; when null they go to Records, and
    // when both are null they are only counted.
    DrawingFile* File = nullptr;
    std::vector<DrawRecord>* Records = nullptr;
    // The number of the last record written; each write adds 1 and writes there.
    int32_t* OutputCount = nullptr;
    SplitChoices Choices;
    // Where the entity in hand stands, for the text of a fault: "record 12 of Progmain.drw".
    std::string Place;
    // Or, for a walk over many entities, where it stands given by its parts (record PlaceNumber
    // of the file named PlaceFile), made into the text only when a fault names it. Place, when
    // set, goes first.
    int32_t PlaceNumber = 0;
    const std::string* PlaceFile = nullptr;
    // Records made from the entity in hand.
    int32_t Made = 0;
    LibraryPasses Library;
};

// An output to a random-access drawing.
SplitOutput FileOutput(const MachineState& machine, DrawingFile& file, int32_t& outputCount, SplitChoices choices,
                       std::string place);
// An output to a list of records (OutputCount counts them as well).
SplitOutput ListOutput(const MachineState& machine, std::vector<DrawRecord>& records, int32_t& outputCount,
                       SplitChoices choices, std::string place = {});

// Appends a record as it stands: OutputCount plus 1, then the record is written at that number.
// The records made from one entity are bounded by MostRecordsFromOneEntity.
void AppendRecord(SplitOutput& out, const DrawRecord& source, const DrawRecord& record);
// Binds a made record and appends it.
void AppendBound(SplitOutput& out, const DrawRecord& source, DrawRecord& record);

// Ends the run as a fault that names the entity and what was wrong with it:
// "Cannot split record 12 of Progmain.drw (code 154): <what>".
[[noreturn]] void SplitFault(const SplitOutput& out, const DrawRecord& source, const std::string& what);

// ---- Points --------------------------------------------------------------------------------

struct PlanePoint {
    double X = 0;
    double Y = 0;
};

// The point with each coordinate rounded to 4 decimals.
PlanePoint Rounded(double x, double y);
// The point plus PolarToXY(distance, angle), rounded to 4.
PlanePoint PolarFrom(const PlanePoint& from, double distance, double angle);
// The point turned about the centre by `turn` degrees, rounded to 4.
PlanePoint TurnedAbout(const PlanePoint& point, const PlanePoint& centre, double turn);
// The middle of two points, rounded to 4.
PlanePoint MiddleRounded(const PlanePoint& a, const PlanePoint& b);
// The polar angle of a point about a centre (not rounded).
double AngleAbout(const PlanePoint& point, const PlanePoint& centre);
PlanePoint CentreOf(const DrawRecord& shape);  // Point[4]

// ---- Made segments -------------------------------------------------------------------------

// -1, 0 or 1: the Side of a line of a shape's outline, from the shape's Side (outside, inside)
// and the way the outline runs: ArcTurn of the machine's turning sense with a sweep of +1 for a
// counter-clockwise path and -1 for a clockwise one. A Side other than 1 and -1 gives 0.
int16_t LineSide(const MachineState& machine, int16_t side, bool counterClockwise);
// A path counts as counter-clockwise when its two dimensions are both above 0 or both not.
bool CounterClockwise(double first, double second);

// The defining fields of a made Line Profile from s to e: Point[1] the start, Point[2] the
// middle (not rounded), Point[3] the end, Value[1] the length (polar radius of e - s, rounded to
// 4) and Value[10] the direction (its polar angle, rounded to 3).
void SetLineSegment(DrawRecord& line, const PlanePoint& s, const PlanePoint& e);
// The defining fields of a made Arc Profile: Point[1] the start, Point[2] the point at half the
// sweep (centre plus PolarToXY(radius, Norm360(start + sweep / 2)), rounded to 4), Point[3] the
// end, Point[4] the centre, Value[1] the radius, Value[10] the start angle, Value[11] the sweep.
void SetArcSegment(DrawRecord& arc, const PlanePoint& s, const PlanePoint& e, const PlanePoint& centre,
                   double radius, double startAngle, double sweep);
// An Arc Profile given by its circle only (Point[4], Value[1], Value[10], Value[11]): binding
// derives its start, middle and end.
void SetArcByCentre(DrawRecord& arc, const PlanePoint& centre, double radius, double startAngle, double sweep);

// A turning tool works a made line along it: ToolA.ToolAngle = Norm360(direction - ToolStep),
// rounded to 3.
void TurnToolAlongLine(DrawRecord& line);

// A made record of a source: ClearRecord, the code and its name, CarryWord1 and CarryWord2 and
// ToolA of the source (MakeChildRecord).
DrawRecord MadeRecord(const DrawRecord& source, int16_t code);

// ---- Hits of a worked path -----------------------------------------------------------------

// The hits of a worked line of length l at pitch p: the truncation of l / p, plus 1.
int32_t LineHits(const SplitOutput& out, const DrawRecord& source, double length, double pitch);
// The actual pitch of a line of n hits: l / (n - 1), so that the last hit lands on the end. A
// path shorter than its pitch has one hit and no pitch: that ends the run as a split fault.
double ActualPitch(const SplitOutput& out, const DrawRecord& source, double length, int32_t hits);
// The hits of a worked arc of signed sweep a and tool path radius rp at pitch p: its path length
// (rp * 2 * pi) / (360 / |a|), floored over p, plus 1.
int32_t ArcHits(const SplitOutput& out, const DrawRecord& source, double pathRadius, double sweep, double pitch);
// The angle step of an arc of n hits: a / (n - 1), rounded to 3, signed like the sweep.
double ArcStep(const SplitOutput& out, const DrawRecord& source, double sweep, int32_t hits);
// A quotient of the split whose divisor may be 0 on a damaged record: the fault names `what`.
double SplitQuotient(const SplitOutput& out, const DrawRecord& source, double numerator, double denominator,
                     const std::string& what);
// A count stored into a 16-bit Count cell: beyond its range the fault names the entity.
int16_t CountCell(const SplitOutput& out, const DrawRecord& source, double count, const std::string& what);

// ---- Leads of a shape cut by a profiling head ----------------------------------------------

// Writes the straight lead (which 1 lead-in, 2 lead-out) of a shape when its LeadKind is exactly
// 1: a Line Profile from the lead's start to its end (ShapeLeadEnds), Value[1] its length,
// Value[10] its angle, Side by LineSide, ToolA, Count[8] = which when the output marks leads.
// The lead-out takes the shape's After. Gives true when a record was written.
bool WriteShapeLead(SplitOutput& out, const DrawRecord& shape, int which, bool counterClockwise);
// Where the After of a shape with leads goes: on the lead-out record when LeadOut.LeadKind is 1,
// on the last outline segment when it is 0, and with any other kind on neither (it is lost).
bool AfterOnLastSegment(const DrawRecord& shape);

}  // namespace tvx
