// Arbitrary bytes as one drawing record (the first 518 bytes; fewer are padded with zeros),
// bound on a fixed machine, then trimmed, reversed and given its lead records. Nothing may crash
// or run on without end: a grid of 32767 by 32767 hits is walked row by row, a worked path's
// count of hits is found by division and capped at 32767, and a sweep of 0 gives an arc of
// length 0. A value that leaves the range of a single is the run's overflow fault, the one end
// that binding may take.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/fault.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "state/run_state.h"

namespace {

const tvx::MachineState& FixedMachine() {
    static const tvx::MachineState machine = [] {
        tvx::MachineState m;
        m.MachineKind = 21;
        m.IsToolMachine = true;
        m.IsProfileMachine = true;
        m.TurnSense = 1;
        return m;
    }();
    return machine;
}

void Exercise(const tvx::DrawRecord& source) {
    const tvx::MachineState& machine = FixedMachine();
    tvx::DrawRecord record = source;
    tvx::BindRecord(machine, record);
    tvx::BindRecord(machine, record);
    // A worked path always leaves binding with one hit or more.
    const int16_t code = record.EntityCode;
    const bool path = code == 120 || code == 220 || code == 521 || code == 522 || code == 130 || code == 230;
    if (path && record.ToolA.Present != 0 && record.ToolA.WorkType >= 10 && record.ToolA.Letter.Bytes[0] != 'P' &&
        record.Count[1] < 1)
        std::abort();
    tvx::DrawRecord trimmed = source;
    tvx::ApplyTrim(machine, trimmed);
    tvx::ApplyTrim(machine, trimmed);
    tvx::DrawRecord reversed = source;
    if (reversed.EntityCode == 130 || reversed.EntityCode == 151 || reversed.EntityCode == 230)
        tvx::ReverseArc(machine, reversed);
    else
        tvx::ReverseLine(machine, reversed);
    tvx::DrawRecord lead;
    tvx::MakeLeadRecord(machine, 1, record, lead);
    tvx::MakeLeadRecord(machine, 2, record, lead);
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    tvx::ShapeLeadEnds(1, record, sx, sy, ex, ey, length, angle);
    tvx::LeadBox(machine, record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const tvx::DrawRecord record = tvx::DecodeRecord(bytes.substr(0, tvx::RecordLength));
    try {
        Exercise(record);
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault) std::abort();
    }
    return 0;
}
