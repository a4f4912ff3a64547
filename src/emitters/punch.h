#pragma once
// Emitters of one block for one record: a hit, a reposition of the sheet, a dwell, a stop, a
// part chute, a sheet manipulation and the action after an entity; and the walks of a path
// hit by hit for a definition that has no block for the whole path.
namespace tvx {

struct RunState;
struct DrawRecord;

void EmitPunch(RunState& state, DrawRecord& record);
void EmitReposition(RunState& state, DrawRecord& record);
void EmitDwell(RunState& state, DrawRecord& record);
void EmitStop(RunState& state, DrawRecord& record);
void EmitPartChute(RunState& state, DrawRecord& record);
void EmitSheetManipulation(RunState& state, DrawRecord& record);
void EmitAfterAction(RunState& state, DrawRecord& record);
void PunchAlongLine(RunState& state, const DrawRecord& record);
void PunchAlongArc(RunState& state, const DrawRecord& record);

}  // namespace tvx
