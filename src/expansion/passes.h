#pragma once
// The whole-drawing passes that bring a drawing into the form the generation loop walks. Each
// is given the path of a drawing and rewrites it in place.
#include <string>

namespace tvx {

struct RunState;
struct DrawRecord;

void MultipartExplode(RunState& state, const std::string& drawing);
void AssociativeToolingPass(RunState& state, const std::string& drawing);
void ShapePass(RunState& state, const std::string& drawing);
void GridPass(RunState& state, const std::string& drawing);
void CruciformPass(RunState& state, const std::string& drawing);
// Places the tooling drawing of an entity's library tool on AssTool.drw, for the generation
// loop to read next.
void MakeAssociatedTooling(RunState& state, DrawRecord& record);
// Turns a quarter arc of a radius punch into one hit, in place.
void ArcToPunch(const RunState& state, DrawRecord& record);
// Turns a grid stored with its axes exchanged into the plain form, in place.
void UnswapGrid(DrawRecord& record);
// True when a record is a quarter arc worked by a radius punch (code 130, letter "M", Side 1,
// a sweep of 90 either way).
bool IsRadiusPunchArc(const DrawRecord& record);

// Turns a part drawing by an angle about its origin.
void RotateDrawing(RunState& state, const std::string& drawing, double angle);
// The extent of a part drawing: its far corner into x and y.
void MeasurePart(RunState& state, const std::string& drawing, double& x, double& y);
// The cutter path of a drawing, written to the drawing's path with the extension "krf".
// Gives true when it failed.
bool KerfDrawing(RunState& state, const std::string& drawing);

}  // namespace tvx
