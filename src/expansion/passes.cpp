#include "expansion/passes.h"

#include "state/run_state.h"

namespace tvx {

LibraryPasses PassesForLibrary(RunState& state) { return LibraryPasses{&state, &CruciformPass, &RotateDrawing}; }

}  // namespace tvx
