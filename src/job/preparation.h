#pragma once
// The preparation of the job's drawing: the passes before the output files exist, and the
// opening of the drawing for the generation loop.
namespace tvx {

struct RunState;

void PrepareDrawing(RunState& state);
void OpenJobDrawing(RunState& state);

}  // namespace tvx
