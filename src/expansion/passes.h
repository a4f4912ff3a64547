#pragma once
// The whole-drawing passes that bring a drawing into the form the generation loop walks. Each
// is given the path of a drawing and rewrites it in place.
#include <string>

#include "splitting/radius_punch.h"
#include "splitting/split_output.h"

namespace tvx {

void MultipartExplode(RunState& state, const std::string& drawing);
void AssociativeToolingPass(RunState& state, const std::string& drawing);
void ShapePass(RunState& state, const std::string& drawing);
void GridPass(RunState& state, const std::string& drawing);
void CruciformPass(RunState& state, const std::string& drawing);
// Places the tooling drawing of an entity's library tool on AssTool.drw, for the generation
// loop to read next.
void MakeAssociatedTooling(RunState& state, DrawRecord& record);
// Turns a grid stored with its axes exchanged into the plain form, in place.
void UnswapGrid(DrawRecord& record);

// Turns every record of a drawing by an angle about the origin, with the rules of its tool's
// letter (a library tool that no longer fits, a fixed tool at an angle its symmetry does not
// allow, lose their tools), and binds each again.
void RotateDrawing(RunState& state, const std::string& drawing, double angle);
// The start point of a part drawing: the position of its first record from 2 on that has
// one, once the shapes of a scratch copy (WormTemp.drw) are split. 0, 0 for a missing drawing.
void MeasurePart(RunState& state, const std::string& drawing, double& x, double& y);
// The passes that the split of a library tool runs on its tooling drawing, for a split output.
LibraryPasses PassesForLibrary(RunState& state);

}  // namespace tvx
