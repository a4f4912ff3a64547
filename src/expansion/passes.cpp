#include "expansion/passes.h"

#include "common/paths.h"
#include "state/run_state.h"

namespace tvx {

// The drawings of punch jobs reach the generation loop as they are: these passes leave a
// drawing unchanged until the shapes, tooling, grids and multiparts they expand are handled.
void MultipartExplode(RunState&, const std::string&) {}
void AssociativeToolingPass(RunState&, const std::string&) {}
void ShapePass(RunState&, const std::string&) {}
void RotateDrawing(RunState&, const std::string&, double) {}
// An entity worked by a library tooling produces nothing until its tooling drawing is placed:
// AssTool.drw is not made and the loop goes on with the next record.
void MakeAssociatedTooling(RunState&, DrawRecord&) {}

void MeasurePart(RunState&, const std::string&, double& x, double& y) {
    x = 0;
    y = 0;
}

// Without an offset to make, the cutter path is the drawing itself.
bool KerfDrawing(RunState&, const std::string& drawing) {
    std::string kerf = drawing.size() >= 3 ? drawing.substr(0, drawing.size() - 3) : drawing;
    CopyFileTo(drawing, kerf + "krf");
    return false;
}

}  // namespace tvx

namespace tvx {

LibraryPasses PassesForLibrary(RunState& state) { return LibraryPasses{&state, &CruciformPass, &RotateDrawing}; }

}  // namespace tvx
