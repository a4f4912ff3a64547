// Arbitrary bytes as one shape record (the first 518 bytes; fewer are padded with zeros), its
// code forced into 151 to 156 by the first byte, bound on a fixed machine and split by every
// routine that the passes and the single-shape path choose among for it, with both output
// choices. Nothing may crash, report to a sanitizer or run on without end: a damaged record
// ends as a fault of the run (a pitch of 0, a path shorter than its pitch, a count beyond 16
// bits, more records than one entity may make, a value beyond a single), the one end that
// splitting may take.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/fault.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
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
    return 0;
}
