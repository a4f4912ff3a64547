#pragma once
// Emitters of whole shapes: a circle, Single-D, Double-D, obround, radiused rectangle or
// rectangle as one canned block of the definition when its shape word is true; otherwise the
// shape is split onto Shape.drw and the generation loop works its primitives off next.
//
// Cells given to the definition by every shape: PostParam[15], [16] the centre; [100], [101]
// the two dimensions; [102] the rotation; [103] the corner radius (radiused rectangle only);
// [104] the lead value (cut forms only, capped by PostParam[109] except on a circle, negative
// unless Side is -1); [106] Side. PostMachine is left alone.
namespace tvx {

struct RunState;
struct DrawRecord;

void EmitShapeDiameterCut(RunState& state, DrawRecord& record);
void EmitShapeDiameterPunched(RunState& state, DrawRecord& record);
void EmitShapeObroundCut(RunState& state, DrawRecord& record);
void EmitShapeObroundPunched(RunState& state, DrawRecord& record);
void EmitShapeRectangleCut(RunState& state, DrawRecord& record);
void EmitShapeRectanglePunched(RunState& state, DrawRecord& record);
void EmitShapeRadRectangleCut(RunState& state, DrawRecord& record);
void EmitShapeRadRectanglePunched(RunState& state, DrawRecord& record);
void EmitShapeSingleDCut(RunState& state, DrawRecord& record);
void EmitShapeSingleDPunched(RunState& state, DrawRecord& record);
void EmitShapeDoubleDCut(RunState& state, DrawRecord& record);
void EmitShapeDoubleDPunched(RunState& state, DrawRecord& record);

}  // namespace tvx
