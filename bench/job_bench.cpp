// Whole punch jobs, end to end: the demo installation with a generated drawing of N hits and a
// tool change every 1,000 hits. Reports records a second and the peak memory of the process
// after each size; the sizes run from small to large, so a flat peak shows that memory does
// not grow with the job.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "drawing/drawfile.h"
#include "job/post_main.h"
#include "tools/demo_tool.h"

namespace {

namespace fs = std::filesystem;

std::string Installation() {
    static std::string root;
    if (!root.empty()) return root;
    root = (fs::temp_directory_path() / ("torvanex-bench-job-" + std::to_string(::getpid()))).string();
    tvx::UnpackExample("punch", root);
    return root;
}

// The three tools of the demo's Program.seq, in turn.
tvx::ToolSpec DemoTool(int which) {
    tvx::ToolSpec t;
    t.Present = -1;
    t.WorkType = 10;
    t.StageIndex = 1;
    switch (which % 3) {
        case 0: t.Letter = "A"; t.ToolName = "RND 10"; t.Size[1] = 10; t.ToolNumber = 101; break;
        case 1: t.Letter = "C"; t.ToolName = "SQ 20"; t.Size[1] = 20; t.Size[2] = 20; t.ToolNumber = 102; break;
        default: t.Letter = "E"; t.ToolName = "RECT 40X10"; t.Size[1] = 40; t.Size[2] = 10; t.ToolNumber = 103; t.ToolStep = 90;
    }
    return t;
}

void WriteDrawing(const std::string& path, int hits) {
    tvx::DrawingFile file;
    tvx::MakeWorkingFile(file, path);
    tvx::DrawRecord header;
    header.EntityCode = 1;
    header.EntityText = "MILD STEEL 2.0";
    header.RecordCount = hits + 1;
    header.Value[1] = 2500;
    header.Value[2] = 1250;
    header.Value[3] = 2;
    tvx::WriteRecord(file, 1, header);
    tvx::DrawRecord hit;
    hit.EntityCode = 210;
    hit.EntityName = "Punch";
    for (int i = 0; i < hits; ++i) {
        hit.ToolA = DemoTool(i / 1000);
        const float x = static_cast<float>(10 + (i % 240) * 10);
        const float y = static_cast<float>(10 + (i / 240 % 120) * 10);
        for (int p = 1; p <= 6; ++p) hit.Point[p] = tvx::SinglePoint{x, y};
        tvx::WriteRecord(file, i + 2, hit);
    }
}

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void BM_PunchJob(benchmark::State& state) {
    const std::string root = Installation();
    const int hits = static_cast<int>(state.range(0));
    WriteDrawing(root + "/work/Progmain.drw", hits);
    for (auto _ : state) {
        if (tvx::RunJob(root + "/work") != 0) state.SkipWithError("the job did not end cleanly");
    }
    state.SetItemsProcessed(state.iterations() * hits);
    state.counters["peak_MB"] = static_cast<double>(PeakKilobytes()) / 1024.0;
}

}  // namespace

BENCHMARK(BM_PunchJob)->Arg(10000)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
