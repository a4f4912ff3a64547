#pragma once
// The single-shape path of a profiled line or arc with leads: its primitives are written to
// Shape.drw at generation time, and the generation loop works them off one by one.
#include <string>

namespace tvx {

struct RunState;
struct DrawRecord;

// Where Shape.drw lies: beside the job's drawing.
std::string ShapeDrawingPath(const RunState& state);

// Makes Shape.drw anew with the lead-in record (Count[8] 1), the entity itself without its
// leads and its After, and the lead-out record (Count[8] 2, with the entity's After). The
// entity's trims are folded into it first. No header record: the first primitive is record 1,
// and the end of the file reads as code 0. The file is closed on leaving.
void SingleProfile(RunState& state, DrawRecord& record);

}  // namespace tvx
