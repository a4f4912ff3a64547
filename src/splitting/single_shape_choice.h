#pragma once
// Which split routine each single-shape entry point gives a shape. A shape with no tool is told
// like one with a profiling tool, by the routines with leads; a worked shape (ToolA present,
// WorkType 10 or more) by the routines of a punch. The radiused rectangle has its own choice
// for a worked tool.
#include "drawing/record.h"
#include "splitting/split_output.h"

namespace tvx {

// A routine that writes the primitives of one shape to an output.
using SingleShapeRoutine = void (*)(SplitOutput& out, const DrawRecord& shape);

// A circle that no punch works, as a whole Arc Profile between its lead records.
void WriteCirclePlain(SplitOutput& out, const DrawRecord& shape);

SingleShapeRoutine SingleCircleRoutine(const DrawRecord& shape);
SingleShapeRoutine SingleSingleDRoutine(const DrawRecord& shape);
SingleShapeRoutine SingleDoubleDRoutine(const DrawRecord& shape);
SingleShapeRoutine SingleObroundRoutine(const DrawRecord& shape);
// Null for a worked inside shape whose letter is not "A", "C" or "E": nothing is written, and
// Shape.drw is left as it was.
SingleShapeRoutine SingleRadRectRoutine(const DrawRecord& shape);
SingleShapeRoutine SingleRectangleRoutine(const DrawRecord& shape);

}  // namespace tvx
