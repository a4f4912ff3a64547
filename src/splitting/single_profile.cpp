#include "splitting/single_profile.h"

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "state/run_state.h"

namespace tvx {

std::string ShapeDrawingPath(const RunState& state) { return state.Job.WorkDir + "Shape.drw"; }

void SingleProfile(RunState& state, DrawRecord& record) {
    const MachineState& machine = state.Machine;
    // The trims are folded into the entity itself, so that the leads join its trimmed ends.
    ApplyTrim(machine, record);
    DrawRecord copy;
    CopyRecord(record, copy);

    DrawingFile& shape = state.Loop.ShapeDrawing;
    CloseDrawing(shape);
    MakeWorkingFile(shape, ShapeDrawingPath(state));
    int32_t count = 0;
    DrawRecord lead;
    if (record.LeadIn.LeadKind != 0) {
        MakeLeadRecord(machine, 1, record, lead);
        WriteRecord(shape, ++count, lead);
    }
    ClearLead(copy.LeadIn);
    ClearLead(copy.LeadOut);
    ClearAfter(copy.After);
    BindRecord(machine, copy);
    WriteRecord(shape, ++count, copy);
    if (record.LeadOut.LeadKind != 0) {
        MakeLeadRecord(machine, 2, record, lead);
        WriteRecord(shape, ++count, lead);
    }
    CloseDrawing(shape);
}

}  // namespace tvx
