#include "splitting/single_profile.h"

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "splitting/single_shape.h"
#include "splitting/split_output.h"
#include "state/run_state.h"

namespace tvx {

std::string ShapeDrawingPath(const RunState& state) { return state.Job.WorkDir + "Shape.drw"; }

void WriteWithLeads(SplitOutput& out, DrawRecord& entity, LeadedEntityChoices choices) {
    const MachineState& machine = *out.Machine;
    if (choices.FoldTrims) ApplyTrim(machine, entity);
    DrawRecord leaded;
    CopyRecord(entity, leaded);
    if (choices.AsArcProfile) {
        leaded.EntityCode = 130;
        leaded.EntityName = "Arc Profile";
    }
    DrawRecord lead;
    if (entity.LeadIn.LeadKind != 0) {
        MakeLeadRecord(machine, 1, leaded, lead);
        AppendRecord(out, entity, lead);
    }
    DrawRecord copy;
    CopyRecord(leaded, copy);
    ClearLead(copy.LeadIn);
    ClearLead(copy.LeadOut);
    ClearAfter(copy.After);
    AppendBound(out, entity, copy);
    if (entity.LeadOut.LeadKind != 0) {
        MakeLeadRecord(machine, 2, leaded, lead);
        AppendRecord(out, entity, lead);
    }
}

void SingleProfile(RunState& state, DrawRecord& record) {
    DrawingFile& shape = state.Loop.ShapeDrawing;
    MakeWorkingFile(shape, ShapeDrawingPath(state));
    shape.WriteBehind = true;  // read only once it is closed
    int32_t count = 0;
    SplitOutput out = FileOutput(state.Machine, shape, count, SingleShapeChoices, RecordPlace(state));
    WriteWithLeads(out, record, LeadedEntityChoices{true, false});
    CloseDrawing(shape);
}

}  // namespace tvx
