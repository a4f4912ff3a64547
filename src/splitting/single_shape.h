#pragma once
// The single-shape path: a shape that the machine's definition has no macro for is split at
// generation time onto Shape.drw, and the generation loop works its primitives off one by one.
// The geometry is that of the split routines (split_shapes.h); what differs from the passes:
//   - each entry point makes Shape.drw empty, counts its records from 1 and closes it;
//   - there is no plain outline: a shape with no tool is told by the routines with leads, like
//     one with a profiling tool, so that its first segment is where a lead would join;
//   - lead records carry Count[8] (1 lead-in, 2 lead-out) and the inside rectangle of a round
//     tool gives its lines Value[3] and Value[4] (SingleShapeChoices);
//   - the radiused rectangle has its own choice of routine for a worked tool.
#include <string>

namespace tvx {

struct RunState;
struct DrawRecord;

void SingleCircle(RunState& state, const DrawRecord& shape);
void SingleObround(RunState& state, const DrawRecord& shape);
void SingleDoubleD(RunState& state, const DrawRecord& shape);
void SingleSingleD(RunState& state, const DrawRecord& shape);
void SingleRadRect(RunState& state, const DrawRecord& shape);
void SingleRectangle(RunState& state, const DrawRecord& shape);
// A circle that is not worked by a punch: lead-in record, the circle as a whole Arc Profile
// (its leads and After cleared), lead-out record.
void SingleCirclePlain(RunState& state, const DrawRecord& shape);

// Where the record in work stands, for the text of a split fault: "record N of FILE", of the
// stream that the generation loop is reading (AssTool.drw, the part drawing while its
// subroutine is written, the job's drawing otherwise); FILE is the file's name alone.
std::string RecordPlace(const RunState& state);

}  // namespace tvx
