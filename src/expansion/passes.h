#pragma once
// The whole-drawing passes that bring a drawing into the form the generation loop walks. Each
// is given the path of a drawing and rewrites it in place.
#include <string>

namespace tvx {

struct RunState;

void MultipartExplode(RunState& state, const std::string& drawing);
void AssociativeToolingPass(RunState& state, const std::string& drawing);
void ShapePass(RunState& state, const std::string& drawing);
void GridPass(RunState& state, const std::string& drawing);
void CruciformPass(RunState& state, const std::string& drawing);
// Turns a part drawing by an angle about its origin.
void RotateDrawing(RunState& state, const std::string& drawing, double angle);
// The extent of a part drawing: its far corner into x and y.
void MeasurePart(RunState& state, const std::string& drawing, double& x, double& y);
// The cutter path of a drawing, written to the drawing's path with the extension "krf".
// Gives true when it failed.
bool KerfDrawing(RunState& state, const std::string& drawing);

}  // namespace tvx
