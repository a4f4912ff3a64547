#include "expansion/passes.h"

#include "common/paths.h"
#include "state/run_state.h"

namespace tvx {

// A multipart drawing reaches the generation loop as it is until its parts are flattened here.
void MultipartExplode(RunState&, const std::string&) {}

// Without an offset to make, the cutter path is the drawing itself.
bool KerfDrawing(RunState&, const std::string& drawing) {
    std::string kerf = drawing.size() >= 3 ? drawing.substr(0, drawing.size() - 3) : drawing;
    CopyFileTo(drawing, kerf + "krf");
    return false;
}

LibraryPasses PassesForLibrary(RunState& state) { return LibraryPasses{&state, &CruciformPass, &RotateDrawing}; }

}  // namespace tvx
