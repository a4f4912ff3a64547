// Speed of the definition engine on the commonest work of a job: one CANNED_PUNCH block of
// five tags written from a 300-line definition and a 200-line word file, as an emitter asks
// for it (find, write, close).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

std::string CrLf(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\r\n";
    return text;
}

// A definition of some forty blocks, CANNED_PUNCH about in the middle.
std::vector<std::string> MakeDefinition() {
    std::vector<std::string> lines;
    auto block = [&](const std::string& word, const std::vector<std::string>& body) {
        lines.push_back(word + "=TRUE");
        lines.insert(lines.end(), body.begin(), body.end());
        lines.push_back("******");
    };
    lines.push_back("PROGRAM_START=TRUE");
    lines.push_back("%");
    lines.push_back("[BLOCK_NUMBER1]G90G71[FEED_RATE]");
    lines.push_back("******");
    int n = 0;
    while (lines.size() < 140) {
        block("CANNED_SPECIAL_" + std::to_string(n++),
              {"[BLOCK_NUMBER1]G[MOVE_G][X_AXIS][Y_AXIS]", "[BLOCK_NUMBER1][TOOL_WORD][SPEED_WORD]", "(STAGE " + std::to_string(n) + ")",
               "[BLOCK_NUMBER1]M[M_CODE_" + std::to_string(n % 20) + "]"});
    }
    block("CANNED_PUNCH", {"[BLOCK_NUMBER1][PUNCH_G][X_AXIS][Y_AXIS][C_AXIS][TOOL_WORD]"});
    while (lines.size() < 296) {
        block("SHAPE_MACRO_" + std::to_string(n++),
              {"[BLOCK_NUMBER1]G[MOVE_G][X_AXIS][Y_AXIS]", "[BLOCK_NUMBER1]G65P[MACRO_NO]", "[CALC_WORD_" + std::to_string(n % 30) + "]"});
    }
    lines.resize(296);
    lines.push_back("PROGRAM_END=TRUE");
    lines.push_back("[BLOCK_NUMBER1]M30");
    lines.push_back("******");
    lines.push_back("%");
    return lines;
}

// A word file of 200 lines: the words of CANNED_PUNCH stand in file order among the others.
std::vector<std::string> MakeWords() {
    std::vector<std::string> lines;
    lines.push_back("BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]");
    lines.push_back("BLOCK_NUMBER2 [P2] [FORMAT=D0] [CONV=O]");
    for (int i = 0; i < 40; ++i) lines.push_back("M_CODE_" + std::to_string(i) + " [P" + std::to_string(100 + i) + "] [FORMAT=D0] [CONV=*]");
    lines.push_back("PUNCH_G [M20=1] [CONV=G] [SET=M21=0]");
    lines.push_back("MOVE_G [M20=0] [CONV=G0]");
    lines.push_back("X_AXIS [M1] [FORMAT=D3] [CONV=X]");
    lines.push_back("Y_AXIS [M2] [FORMAT=D3] [CONV=Y]");
    lines.push_back("C_AXIS [M12] [FORMAT=D3] [CONV=C]");
    for (int i = 0; i < 60; ++i)
        lines.push_back("CALC_WORD_" + std::to_string(i) + " [P30] [CALC=P31*2+" + std::to_string(i) + "] [FORMAT=D2] [CONV=Q]");
    lines.push_back("TOOL_WORD [M0] [FORMAT=P2D0] [CONV=T] [SET=M12=-999]");
    lines.push_back("SPEED_WORD [P50] [FORMAT=D0] [CONV=S]");
    lines.push_back("FEED_RATE [P51] [FORMAT=D0] [CONV=F]");
    lines.push_back("MACRO_NO [P52] [FORMAT=D0] [CONV=*]");
    while (lines.size() < 199) lines.push_back("SPARE_" + std::to_string(lines.size()) + " [P200] [FORMAT=D1] [CONV=Z]");
    lines.push_back("******");
    return lines;
}

void BM_CannedPunch(benchmark::State& bench) {
    const std::string dir = (std::filesystem::temp_directory_path() / ("torvanex-bench-" + std::to_string(::getpid()))).string();
    std::filesystem::create_directories(dir);
    WriteFileAtomically(dir + "/machine.pst", CrLf(MakeDefinition()));
    WriteFileAtomically(dir + "/machine.wrd", CrLf(MakeWords()));
    RunState state;
    state.Job.WorkDir = dir + "/";
    state.Job.CurrentDir = dir + "/";
    state.Machine.MachineStem = dir + "/machine.";
    SetDefinitionFiles(state);
    OpenEngineOutput(state, state.Engine.ProgramOutput, "/dev/null");
    ValueTables& t = state.Tables;
    t.PostParam[1] = 10;
    t.PostParam[4] = 10;
    t.PostMachine[0] = 7;
    int64_t i = 0;
    for (auto _ : bench) {
        // A new hit: X and Y always move, the angle now and then.
        t.PostMachine[1] = static_cast<float>(100 + (i % 997)) + 0.25f;
        t.PostMachine[2] = static_cast<float>(50 + (i % 331)) + 0.5f;
        t.PostMachine[12] = static_cast<float>((i / 8) % 4) * 90.0f;
        if (FindReservedWord(state, "CANNED_PUNCH")) WriteReservedBlock(state);
        CloseInputChannel(state, ChannelDefinition);
        ++i;
    }
    bench.SetItemsProcessed(bench.iterations());
    CloseAllFiles(state);
    std::filesystem::remove_all(dir);
}

}  // namespace

BENCHMARK(BM_CannedPunch);
BENCHMARK_MAIN();
