// A fuzzed drawing through the kerf pass, in both turning conventions. Every outcome is a clean
// end (0 or -1) or a RunEnd (a value beyond a single is the Overflow fault); nothing crashes or
// runs on without end.
//
// Input: byte 0 the machine's TurnSense (bit 0); the rest the drawing, cut to 8 records. The
// search is the boxed one, as the job runs it (the every-pair walk of two full circles is some
// 13 million pairs a corner, too slow for a fuzzer's turn).
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/drawfile.h"
#include "fuzz_support.h"
#include "kerf/kerf.h"
#include "state/run_state.h"

namespace {


constexpr size_t MostRecords = 8;

std::string Root() {
    static const std::string root = tvx::fuzz::FuzzRoot("kerf");
    return root;
}

void Run(std::string_view input) {
    const unsigned char flags = static_cast<unsigned char>(input[0]);
    input.remove_prefix(1);
    std::vector<tvx::DrawRecord> records;
    for (size_t at = 0; at < input.size() && records.size() < MostRecords; at += tvx::RecordLength)
        records.push_back(tvx::DecodeRecord(input.substr(at, tvx::RecordLength)));
    if (records.empty()) return;

    tvx::RunState state;
    state.Machine.TurnSense = (flags & 1) != 0 ? 1 : 0;
    state.Machine.MachineKind = 1;
    state.Machine.IsProfileMachine = true;
    const std::string path = Root() + "/Progmain.drw";
    tvx::fuzz::WriteFuzzDrawing(path, records);
    tvx::KerfDrawing(state, path, tvx::MeetingSearch::BoxedRuns);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > 1 + MostRecords * tvx::RecordLength) return 0;
    return tvx::fuzz::RunInFreshRoot(Root(), data, size, Run);
}
