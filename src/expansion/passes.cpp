#include "expansion/passes.h"

#include "state/run_state.h"

namespace tvx {

// A multipart drawing reaches the generation loop as it is until its parts are flattened here.
void MultipartExplode(RunState&, const std::string&) {}

LibraryPasses PassesForLibrary(RunState& state) { return LibraryPasses{&state, &CruciformPass, &RotateDrawing}; }

}  // namespace tvx
