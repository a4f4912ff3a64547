#pragma once
// The whole-drawing passes that bring a drawing into the form the generation loop walks. Each
// is given the path of a drawing and rewrites it in place.
#include <string>

#include "splitting/radius_punch.h"
#include "splitting/split_output.h"

namespace tvx {

// Flattens a multipart drawing in place: every part record (510) becomes real copies of its
// part's entities, moved to their places; cut lines (521, 522) become profile lines (120); the
// layout records go. A drawing whose record 1 has a CarryWord1 below 500 is left alone. A part
// that is not in the parts directory is reported at the end in a message box ("Single Part
// Missing or Moved!", "Redo Multipart"), and the run goes on with the drawing as it then is.
void MultipartExplode(RunState& state, const std::string& drawing);
// Makes the part drawing (Progpart.drw) ready to be copied, in place: a count beyond the file is
// cut, records that are no entity of a single part (codes below 2 and from 500 up) are dropped.
void PartPrepare(RunState& state, const std::string& drawing);
// For a part record (510) of the generation loop, where the definition places parts as
// subprograms: the layout's cells, the part's drawing copied to progpart.drw in the work
// directory (given back in `drawing`) and turned for a control that cannot turn parts, the
// punch passes on it, and its start point turned by the parts' angle.
void MultipartSubprogram(RunState& state, DrawRecord& record, std::string& drawing);
// The layout cells of a multipart record (codes 500 and 510): the origin, the pitches (0 where
// the count is 1) and the counts.
void SetMultipartLayoutCells(ValueTables& tables, const DrawRecord& record);

// The copies of a part record: origin, pitches (0 for a count of 1), counts, angle, order.
struct PartCopies {
    float OriginX = 0, OriginY = 0;
    float PitchX = 0, PitchY = 0;
    int16_t Columns = 0, Rows = 0;
    float Angle = 0;
    int16_t Order = 0;  // Count[6]
};
PartCopies CopiesOfPart(const DrawRecord& part);
// Where one copy stands in the layout: its column and row, from 1.
struct CopyPlace {
    int32_t Column = 1, Row = 1;
};
// The k-th copy (from 1 to columns x rows) in the order given by Count[6] of the part record.
CopyPlace MultipartCopyPlace(int16_t order, int32_t columns, int32_t rows, int64_t k);
// One record of a copy: the part's record moved to the copy's place (every coordinate rounded to
// 4 decimals), reversed when the copy is walked backwards, and bound.
void MultipartCopy(const MachineState& machine, const DrawRecord& partRecord, const PartCopies& layout,
                   const CopyPlace& place, bool reversed, DrawRecord& copy);
// What a walk over a drawing tells the cruciform pass that follows it: taken when the walk left
// every record as it stood, and then whether any record it walked is one the cruciform pass
// looks at. The cruciform pass has no need to walk a drawing of none.
struct CruciformCensus {
    bool Taken = false;
    bool Candidates = false;
};
// The records the cruciform pass looks at: arcs (130) of an "M" tool.
bool IsCruciformCandidate(int16_t code, char letter);
void AssociativeToolingPass(RunState& state, const std::string& drawing);
void AssociativeToolingPass(RunState& state, const std::string& drawing, CruciformCensus& census);
void ShapePass(RunState& state, const std::string& drawing);
void GridPass(RunState& state, const std::string& drawing);
void CruciformPass(RunState& state, const std::string& drawing);
void CruciformPass(RunState& state, const std::string& drawing, const CruciformCensus& census);
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
