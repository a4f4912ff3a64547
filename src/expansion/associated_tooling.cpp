// The placing of one entity's library tooling at generation time: the tool's drawing from the
// library, its radius-punch arcs made hits, turned from the angle it is stored at to the
// entity's and moved onto the entity, becomes AssTool.drw, which the generation loop then reads
// before it goes on with the drawing it was walking.
#include <string>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "state/run_state.h"
#include "tooling/library.h"

namespace tvx {
namespace {

// Moves every record of the placed drawing but the repositions and sheet moves (350, 355) onto
// the entity, gives the last record the entity's action after it when it has none of its own,
// and binds each. The walk ends at the last record the file holds.
void PlaceOnEntity(RunState& state, DrawingFile& file, const DrawRecord& entity) {
    const int32_t count = ReadRecordCount(file);
    const int32_t onDisk = RecordsOnDisk(file);
    const int32_t last = count < onDisk ? count : onDisk;
    const SinglePoint& at = entity.Point[4];
    ChangeInPlace(file, 1, last, [&](int32_t n, DrawRecord& record) {
        if (record.EntityCode == 350 || record.EntityCode == 355) return false;
        MoveRecord(record, at.X, at.Y);
        if (n == count && record.After.ActionCode == 0) CopyAfter(entity.After, record.After);
        BindRecord(state.Machine, record);
        return true;
    });
}

}  // namespace

void MakeAssociatedTooling(RunState& state, DrawRecord& record) {
    const std::string toolDrawing = JobShapePath(state, record, ToolDrawingMode);
    const std::string lookup = JobShapePath(state, record, LookupFileMode);
    const double stored = LookupTool(lookup, record.ToolA.ToolNumber, 3).Number;
    const std::string placed = state.Job.WorkDir + "AssTool.drw";
    {
        DrawingFile made;
        MakeWorkingFile(made, placed);
    }
    // Without a drawing the entity makes nothing, and the loop goes on where it was.
    if (Trim(toolDrawing).empty() || !FileExists(toolDrawing)) return;
    CopyFileTo(toolDrawing, placed);
    CruciformPass(state, placed);
    const double turn = LibraryTurn(record, stored);
    if (turn != 0) RotateDrawing(state, placed, turn);
    {
        DrawingFile file;
        OpenDrawing(file, placed);
        // A drawing of its header alone counts as empty: the loop reads its end at once.
        if (ReadRecordCount(file) >= 2) PlaceOnEntity(state, file, record);
    }
    LoopState& loop = state.Loop;
    OpenDrawing(loop.ToolingDrawing, placed);
    loop.ToolingActive = true;
    // The loop adds 1 before each read: the first record it reads is record 2, behind the header.
    loop.ToolingIndex = 1;
}

}  // namespace tvx
