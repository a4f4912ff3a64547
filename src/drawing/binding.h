#pragma once
// Placeholder until the binding module lands: binds the mark and point families only.
namespace tvx {
struct MachineState;
struct DrawRecord;
void BindRecord(const MachineState& machine, DrawRecord& record);
}  // namespace tvx
