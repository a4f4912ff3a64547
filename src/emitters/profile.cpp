#include "emitters/profile.h"

#include "job/run_state.h"

namespace tvx {

// Profile cutting is written by the machines with a cutting head; a punch job has none.
void EmitMove(RunState&, DrawRecord&) {}
void EmitProfiledLine(RunState&, DrawRecord&) {}
void EmitProfiledArc(RunState&, DrawRecord&) {}
void UpdateCutDirection(RunState&) {}

}  // namespace tvx
