#include "emitters/paths.h"

#include "job/run_state.h"

namespace tvx {

// Paths and grids of hits are not written yet: they fall through to nothing.
void EmitLinePath(RunState&, DrawRecord&) {}
void EmitArcPath(RunState&, DrawRecord&) {}
void EmitGrid(RunState&, DrawRecord&) {}
void PunchGrid(RunState&, const DrawRecord&) {}

}  // namespace tvx
