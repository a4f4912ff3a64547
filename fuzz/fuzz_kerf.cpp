// A fuzzed drawing through the kerf pass, in both turning conventions. Every outcome is a clean
// end (0 or -1) or a RunEnd (a value beyond a single is the Overflow fault); nothing crashes or
// runs on without end.
//
// Input: byte 0 the machine's TurnSense (bit 0); the rest the drawing, cut to 8 records. The
// search is the boxed one, as the job runs it (the every-pair walk of two full circles is some
// 13 million pairs a corner, too slow for a fuzzer's turn).
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "common/numtext.h"
#include "drawing/drawfile.h"
#include "kerf/kerf.h"
#include "state/run_state.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t MostRecords = 8;

std::string Root() {
    static const std::string root =
        (fs::temp_directory_path() / ("torvanex-fuzz-kerf-" + tvx::Trim(tvx::LongText(static_cast<int32_t>(::getpid())))))
            .string();
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
    {
        tvx::DrawingFile file;
        tvx::MakeWorkingFile(file, path);
        for (size_t i = 0; i < records.size(); ++i) tvx::WriteRecord(file, static_cast<int32_t>(i + 1), records[i]);
    }
    tvx::KerfDrawing(state, path, tvx::MeetingSearch::BoxedRuns);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > 1 + MostRecords * tvx::RecordLength) return 0;
    std::error_code ec;
    fs::remove_all(Root(), ec);
    fs::create_directories(Root(), ec);
    try {
        Run(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const tvx::RunEnd&) {
        // A fault of the run: the end that a damaged drawing may take.
    }
    return 0;
}
