#pragma once
// Binding: the evaluation of a record's derived fields from its defining ones.
//
// The writer of a drawing sets an entity's defining fields only; BindRecord computes the rest
// (derived points, the Extent and Margin boxes, the hits of a worked path) so that every reader
// can trust every field. Binding never reads a file. The only settings of the run that it reads
// are those of the machine: TurnSense (the turning convention of ArcTurn and of arc leads) and
// the machine's class (a combo machine profiles every path, so that its lines and arcs are
// never bound as rows of hits). Binding is idempotent: a record bound twice is the same record,
// apart from the rounding of a single; the one exception is the single rotated multipart, whose
// points are turned by its angle each time it is bound.
//
// All geometry runs in double precision on values read from singles; every store goes through
// ToSingle. A value beyond the range of a single is the run's "Overflow" fault (ToSingle).
#include <cstdint>

#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx {

// -1, 0 or +1: on which side of its path an arc turns. 0 unless side is 1 or -1; otherwise side
// times the sign of sweep (a sweep of 0 or more counts as +1, a negative one, or one that is not
// a number, as -1) times the convention factor, +1 when the machine's TurnSense is 1 and -1 for
// any other value.
int16_t ArcTurn(const MachineState& machine, int16_t side, double sweep);

// Derives every derived field of the record from its defining fields.
void BindRecord(const MachineState& machine, DrawRecord& record);

// The line family (110, 120, 220, 521, 522) and the arc family (130, 151, 230). BindRecord
// calls them after its common steps; they end by widening the boxes with the leads (LeadBox).
void BindLine(const MachineState& machine, DrawRecord& record);
void BindArc(const MachineState& machine, DrawRecord& record);

// Folds the start and end trims of a line (120, 521, 522: Value[3], Value[4]) or an arc (130:
// Value[8], Value[9]) into its defining points and angles, clears them and binds the record.
// Any other record is only bound. A second ApplyTrim does nothing more.
void ApplyTrim(const MachineState& machine, DrawRecord& record);

// Reverse the direction of a line or an arc: ends, trims and leads are exchanged, an arc lead's
// sign is flipped, and the record is bound again. Reversing twice gives the record back.
void ReverseLine(const MachineState& machine, DrawRecord& record);
void ReverseArc(const MachineState& machine, DrawRecord& record);

// ---- Leads ------------------------------------------------------------------------------------

// The arc of an arc lead (|LeadKind| 2 or more): its centre and radius, its start angle and
// signed sweep, and its two ends. The lead-in ends at the entity's start, the lead-out starts at
// the entity's end. Coordinates and the radius are rounded to 4 decimals, angles to 3.
struct LeadArc {
    double CentreX = 0, CentreY = 0;
    double Radius = 0;
    double StartAngle = 0;
    double Sweep = 0;
    double StartX = 0, StartY = 0;
    double EndX = 0, EndY = 0;
};

// Makes the lead-in (which 1) or the lead-out (which 2) of an entity into a record of its own:
// a "Line Profile" for a straight lead, an "Arc Profile" for an arc lead, with Count[8] = which,
// the entity's CarryWord1, CarryWord2 and ToolA, the entity's After on a lead-out, and bound.
// A lead of kind 0, or a which other than 1 and 2, gives a cleared record (EntityCode 0). The
// entity is not changed: the caller takes the After off the entity when the lead-out has it.
void MakeLeadRecord(const MachineState& machine, int which, const DrawRecord& entity, DrawRecord& record);

// The ends of a straight lead on a line, an arc or a shape, its length and its angle (the
// direction in which the head travels along it). Coordinates and the length are rounded to 4
// decimals, the angle to 3. A lead that is not straight, or of length 0, is a point.
void LeadLineEnds(int which, const DrawRecord& entity, double& startX, double& startY, double& endX,
                  double& endY, double& length, double& angle);

// The arc of an arc lead of the entity (see LeadArc).
void LeadArcData(const MachineState& machine, int which, const DrawRecord& entity, LeadArc& arc);

// LeadLineEnds for a shape (151 to 156): the lead meets the outline at the shape's start point.
void ShapeLeadEnds(int which, const DrawRecord& shape, double& startX, double& startY, double& endX,
                   double& endY, double& length, double& angle);

// Widens Extent and Margin of a line or an arc with its leads, LeadIn first, then LeadOut.
void LeadBox(const MachineState& machine, DrawRecord& record);

}  // namespace tvx
