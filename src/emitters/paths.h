#pragma once
// Emitters of nibbled and punched paths: a line or an arc that a punch works as a row of hits,
// through the control's canned cycles or hit by hit; and grids of hits.
namespace tvx {

struct RunState;
struct DrawRecord;

void EmitLinePath(RunState& state, DrawRecord& record);
void EmitArcPath(RunState& state, DrawRecord& record);
void EmitGrid(RunState& state, DrawRecord& record);
void PunchGrid(RunState& state, const DrawRecord& record);

}  // namespace tvx
