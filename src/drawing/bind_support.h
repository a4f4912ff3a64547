#pragma once
// Pieces shared by the binding files: boxes, the margin rule, rounded stores and the working
// geometry of lines and arcs. Not for use outside binding.
#include <cstdint>
#include <initializer_list>

#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx::bind {

// Lowest and highest X and Y of the points added so far. A point that is not a number leaves
// a box that already holds a point as it is.
struct PlaneBox {
    bool Empty = true;
    double LowX = 0, LowY = 0, HighX = 0, HighY = 0;
    void Add(double x, double y);
    void Add(const SinglePoint& p) { Add(p.X, p.Y); }
};

// A derived coordinate: rounded to 4 decimals.
double Round4(double value);
// Stores a derived point rounded to 4 decimals.
void StoreRounded(SinglePoint& point, double x, double y);
// Stores an angle as a single in 0 up to, not including, 360 (a value that becomes 360 when it
// is rounded to a single is stored as 0).
float StoreAngle(double angle);

// Extent becomes the box, each corner rounded to 4 decimals. Margin is the box less and plus the
// clearance; then, for each minimum in turn, a width or a height below it is widened on both
// sides by half of what is missing.
void StoreBoxes(DrawRecord& record, const PlaneBox& box, double clearance, std::initializer_list<double> minimums);
// Lowers Extent[1] and Margin[1] and raises Extent[2] and Margin[2] where the point lies outside.
void WidenBoxes(DrawRecord& record, double x, double y);

// The box of the arc of centre (cx, cy), radius r, from angle a over the signed sweep s: its two
// ends and each of the four axis points of its circle that the sweep passes.
void AddArc(PlaneBox& box, double cx, double cy, double r, double a, double s);

// The tool works the entity by hits: ToolA.Present non-zero and WorkType 10 or more.
bool HasWorkingTool(const DrawRecord& record);
// A line or arc bound as a row of hits: a working tool that is not a profiling tool ("P"), on
// a machine that is not a combo machine (a combo machine profiles every path).
bool IsWorkedPath(const MachineState& machine, const DrawRecord& record);
// How far a tool reaches from the point of a hit: half the diameter of a round tool ("A"), half
// the diagonal of any other, whatever its angle.
double ToolReach(const ToolSpec& tool);

bool IsLineCode(int16_t code);   // 110, 120, 220, 521, 522
bool IsArcCode(int16_t code);    // 130, 151, 230
bool IsShapeCode(int16_t code);  // 151 to 156

// The sweep that the arc's geometry is drawn with: Value[11], but a circle (151) is always whole,
// 360 turning the way of Value[11] (+360 when it is 0).
double DrawnSweep(const DrawRecord& record);
// The working start angle and signed sweep of an arc after its trims (Value[13] and Value[14]
// of a bound arc). Code 130: Value[8] and Value[9] are lengths along the arc that shorten it at
// its start and its end (a negative one lengthens it); turned into angles at the radius, the
// start moves on by the start trim in the sense of the sweep and the sweep loses both, each
// result rounded to 3 decimals. An arc of radius 0 takes no trim. Other arcs: Value[10] and the
// drawn sweep as they stand.
void ArcWorkingAngles(const DrawRecord& record, double& start, double& sweep);

// The start and end of the entity where leads meet it: the trimmed ends of a line, the trimmed
// ends of an arc (130, 230), the outline's start point of a shape (151 to 156, both ends), and
// Point[1], Point[3] of any other record.
void EntityEnds(const DrawRecord& record, double& startX, double& startY, double& endX, double& endY);
// The meeting point of a shape's outline and its leads.
void ShapeMeetingPoint(const DrawRecord& shape, double& x, double& y);

}  // namespace tvx::bind
