#pragma once
// The split routines of the shapes: each takes the output (split_output.h) and the shape record,
// which it never changes, and appends the primitive records of the shape: Line Profile and Arc
// Profile records (plain, with leads, or with hit data for a punch), Punch, Arc Pattern and
// Grid Pattern records. Every made record is bound before it is written.
//
// Inside and outside: a shape's Side of 1 or more is outside, anything less inside. A tool is
// worked when ToolA.Present is non-zero and ToolA.WorkType is 10 or more.
#include <cstdint>

#include "drawing/record.h"
#include "splitting/split_output.h"

namespace tvx {

// ---- Outlines without a tool: LeadIn on the first segment, LeadOut and After on the last ------

void SplitSingleDProfile(SplitOutput& out, const DrawRecord& shape);    // 152: arc, then the flat
void SplitDoubleDProfile(SplitOutput& out, const DrawRecord& shape);    // 153: flat, arc, flat, arc
void SplitObroundProfile(SplitOutput& out, const DrawRecord& shape);    // 154: line, arc, line, arc
void SplitRadRectProfile(SplitOutput& out, const DrawRecord& shape);    // 155: four lines, four corners
void SplitRectangleProfile(SplitOutput& out, const DrawRecord& shape);  // 156: four lines from Point[1]

// ---- Outlines for a profiling tool: the path starts where the leads join it, and straight
// leads (LeadKind exactly 1) become Line Profile records of their own --------------------------

void SplitSingleDLeads(SplitOutput& out, const DrawRecord& shape);
void SplitDoubleDLeads(SplitOutput& out, const DrawRecord& shape);
void SplitObroundLeads(SplitOutput& out, const DrawRecord& shape);
void SplitRadRectLeads(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleLeads(SplitOutput& out, const DrawRecord& shape);

// ---- Shapes worked by a punch ------------------------------------------------------------------

void SplitCirclePunched(SplitOutput& out, const DrawRecord& shape);   // 151
void SplitSingleDPunched(SplitOutput& out, const DrawRecord& shape);  // 152
void SplitDoubleDPunched(SplitOutput& out, const DrawRecord& shape);  // 153
void SplitObroundPunched(SplitOutput& out, const DrawRecord& shape);  // 154

// ---- Radiused rectangle (155) ---------------------------------------------------------------

// The choice among the routines below by tool, Side, letter and Count[1].
void SplitRadRect(SplitOutput& out, const DrawRecord& shape);
// The plain outline worked by a round punch: no ToolB, no LeadIn or LeadOut; After on the last
// corner. Outside and inside alike.
void SplitRadRectRound(SplitOutput& out, const DrawRecord& shape);
// A rectangular punch clears the inside of a rectangle: one hit, a grid or a single row.
// Serves the rectangle (156) too.
void ClearRectByGrid(SplitOutput& out, const DrawRecord& shape);
// A rectangular punch rims the hole along its four sides.
void SplitRadRectEdges(SplitOutput& out, const DrawRecord& shape);
// The same with a tool that turns to each side.
void SplitRadRectEdgesRotary(SplitOutput& out, const DrawRecord& shape);

// The four axis angles of a rectangle: its rotation Value[10] and its three quarter turns, each
// normalised and rounded to 3.
void RectangleAxes(const DrawRecord& shape, double (&axis)[4]);

// The match of a tool's angle against the four axis angles of a rectangle (L Value[1], H
// Value[2], rotation Value[10]): the tool's extent along L (tL) and across it (tH), exchanged at
// the second and fourth axis, both 0 at any other angle. Not signed.
void MatchToolToRectangle(const DrawRecord& shape, const ToolSpec& tool, double& alongL, double& acrossL);

// ---- Rectangle (156) ----------------------------------------------------------------------------

// The choice among the routines below by the two tools, Side, Count[1] and the letters.
void SplitRectangle(SplitOutput& out, const DrawRecord& shape);
// The rows of that choice for a worked ToolA (the single-shape path takes the same rows).
void SplitRectangleWorked(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleOutside(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleOutsideRotary(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleOutsideTwoTools(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleInsideRound(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleInside(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleInsideRotary(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleInsideTwoTools(SplitOutput& out, const DrawRecord& shape);
void SplitRectangleInsideTwoRound(SplitOutput& out, const DrawRecord& shape);

}  // namespace tvx
