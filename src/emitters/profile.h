#pragma once
// Emitters of the profile-cutting head: rapid moves and profiled lines and arcs, with the
// direction of cut kept from block to block.
namespace tvx {

struct RunState;
struct DrawRecord;

void EmitMove(RunState& state, DrawRecord& record);
void EmitProfiledLine(RunState& state, DrawRecord& record);
void EmitProfiledArc(RunState& state, DrawRecord& record);
void UpdateCutDirection(RunState& state);

}  // namespace tvx
