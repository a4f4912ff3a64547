// Arbitrary bytes as one shape record (the first 518 bytes; fewer are padded with zeros), its
// code forced into 151 to 156 by the first byte, bound on a fixed machine and split by every
// routine that the passes and the single-shape path choose among for it, with both output
// choices, and by the split dispatch. The same bytes also go through the split dispatch as an
// entity of one of the codes it knows (or of its own code), as read and once bound, on a list
// and without a tooling library. Nothing may crash, report to a sanitizer or run on without end: a damaged record
// ends as a fault of the run (a pitch of 0, a path shorter than its pitch, a count beyond 16
// bits, more records than one entity may make, a value beyond a single), the one end that
// splitting may take.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "splitting/split_dispatch.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"
#include "state/run_state.h"

namespace {

using Routine = void (*)(tvx::SplitOutput&, const tvx::DrawRecord&);

const tvx::MachineState& FixedMachine(bool sense) {
    static const tvx::MachineState machines[2] = {[] {
                                                      tvx::MachineState m;
                                                      m.MachineKind = 21;
                                                      m.IsToolMachine = true;
                                                      m.TurnSense = 0;
                                                      return m;
                                                  }(),
                                                  [] {
                                                      tvx::MachineState m;
                                                      m.MachineKind = 21;
                                                      m.IsToolMachine = true;
                                                      m.TurnSense = 1;
                                                      return m;
                                                  }()};
    return machines[sense ? 1 : 0];
}

void Split(Routine routine, const tvx::MachineState& machine, const tvx::DrawRecord& shape, tvx::SplitChoices choices) {
    int32_t count = 0;
    // Neither a file nor a list: the records are only counted, so that a split of 100000
    // records stays cheap.
    tvx::SplitOutput out;
    out.Machine = &machine;
    out.OutputCount = &count;
    out.Choices = choices;
    out.Place = "record 2 of fuzz.drw";
    try {
        routine(out, shape);
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault) std::abort();
    }
    if (count != out.Made || count > tvx::MostRecordsFromOneEntity) std::abort();
}

// The split dispatch on a list, without a library: a library tool counts as one whose drawing is
// missing.
void Dispatch(const tvx::MachineState& machine, tvx::DrawRecord record) {
    std::vector<tvx::DrawRecord> records;
    int32_t count = 0;
    tvx::SplitOutput out = tvx::ListOutput(machine, records, count, tvx::MainPathChoices, "record 2 of fuzz.drw");
    try {
        tvx::SplitRecord(out, record);
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault) std::abort();
    }
    if (count != out.Made || count != static_cast<int32_t>(records.size()) || count > tvx::MostRecordsFromOneEntity)
        std::abort();
}

// The codes of the dispatch's table; the last entry keeps the record's own code.
constexpr int16_t DispatchCodes[] = {120, 130, 151, 152, 153, 154, 155, 156, 175, 210,
                                     220, 225, 230, 311, 350, 110, 500, 0};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    tvx::DrawRecord shape = tvx::DecodeRecord(bytes.substr(0, tvx::RecordLength));
    shape.EntityCode = static_cast<int16_t>(151 + data[0] % 6);
    const tvx::MachineState& machine = FixedMachine((data[0] / 6) % 2 != 0);
    try {
        tvx::BindRecord(machine, shape);
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault) std::abort();
        return 0;
    }
    static const Routine byCode[6][4] = {
        {tvx::SplitCirclePunched, tvx::SplitCirclePunched, tvx::SplitCirclePunched, tvx::SplitCirclePunched},
        {tvx::SplitSingleDProfile, tvx::SplitSingleDLeads, tvx::SplitSingleDPunched, tvx::SplitSingleDPunched},
        {tvx::SplitDoubleDProfile, tvx::SplitDoubleDLeads, tvx::SplitDoubleDPunched, tvx::SplitDoubleDPunched},
        {tvx::SplitObroundProfile, tvx::SplitObroundLeads, tvx::SplitObroundPunched, tvx::SplitObroundPunched},
        {tvx::SplitRadRect, tvx::SplitRadRectLeads, tvx::SplitRadRectProfile, tvx::SplitRadRectRound},
        {tvx::SplitRectangle, tvx::SplitRectangleLeads, tvx::SplitRectangleProfile, tvx::SplitRectangleWorked},
    };
    for (Routine routine : byCode[shape.EntityCode - 151]) {
        Split(routine, machine, shape, tvx::MainPathChoices);
        Split(routine, machine, shape, tvx::SingleShapeChoices);
    }
    Dispatch(machine, shape);

    constexpr size_t codeCount = sizeof(DispatchCodes) / sizeof(DispatchCodes[0]);
    tvx::DrawRecord entity = tvx::DecodeRecord(bytes.substr(0, tvx::RecordLength));
    const size_t pick = (data[0] / 12) % codeCount;
    if (pick + 1 < codeCount) entity.EntityCode = DispatchCodes[pick];
    Dispatch(machine, entity);
    try {
        tvx::BindRecord(machine, entity);
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault) std::abort();
        return 0;
    }
    Dispatch(machine, entity);
    return 0;
}
