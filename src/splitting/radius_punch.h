#pragma once
// The quarter arcs of a radius punch: a corner of 90 degrees worked by an "M" tool on the
// outside is made by one hit of that tool, not by a row of hits along the arc. The cruciform
// pass turns such arcs of a drawing into hits in place, the split dispatch does the same to a
// worked arc, and the generation loop to an arc that reaches it unchanged.
#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx {

// True when a record is a quarter arc worked by a radius punch: code 130, a sweep whose size,
// as a single, is exactly 90 (either way), Side exactly 1 and the letter "M".
bool IsRadiusPunchArc(const DrawRecord& record);

// Turns the arc into one Punch in place: a cleared record, code 210 "Punch", Point[4] the arc's
// Point[5], the arc's ToolA, bound. Everything else of the arc is lost.
void ArcToPunch(const MachineState& machine, DrawRecord& record);
inline void ArcToPunch(const RunState& state, DrawRecord& record) { ArcToPunch(state.Machine, record); }

}  // namespace tvx
