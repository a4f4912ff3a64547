// Whole jobs, end to end: the punch demo installation with a generated drawing of N hits and a
// tool change every 1,000 hits; the laser example with N shapes split on the spot. Reports records a second and the peak memory of the process
// after each size; the sizes run from small to large, so a flat peak shows that memory does
// not grow with the job.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "job/post_main.h"
#include "state/run_state.h"
#include "tools/demo_tool.h"

namespace {

namespace fs = std::filesystem;

std::string Installation(const std::string& example = "punch") {
    static std::map<std::string, std::string> roots;
    std::string& root = roots[example];
    if (!root.empty()) return root;
    root = (fs::temp_directory_path() / ("torvanex-bench-" + example + "-" + std::to_string(::getpid()))).string();
    tvx::UnpackExample(example, root);
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

// Makes the drawing empty and writes its record 1: the material and a sheet of x by y by 2.
void WriteHeader(tvx::DrawingFile& file, const std::string& path, const char* material, int records, float x,
                 float y) {
    tvx::MakeWorkingFile(file, path);
    tvx::DrawRecord header;
    header.EntityCode = 1;
    header.EntityText = material;
    header.RecordCount = records;
    header.Value[1] = x;
    header.Value[2] = y;
    header.Value[3] = 2;
    tvx::WriteRecord(file, 1, header);
}

void WriteDrawing(const std::string& path, int hits) {
    tvx::DrawingFile file;
    WriteHeader(file, path, "MILD STEEL 2.0", hits + 1, 2500, 1250);
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

// A laser sheet of N shapes that the definition has no macro for, so that each one is split on
// the spot onto Shape.drw and cut as profiled lines and arcs: circles, obrounds and rectangles
// in turn, each with a straight lead-in and lead-out.
void WriteShapeDrawing(const std::string& path, int shapes) {
    tvx::DrawingFile file;
    WriteHeader(file, path, "STAINLESS 2.0", shapes + 1, 3000, 1500);
    tvx::ToolSpec laser;
    laser.Present = -1;
    laser.Letter = "P";
    laser.ToolName = "LASER";
    laser.WorkType = 1;
    laser.StageIndex = 1;
    for (int i = 0; i < shapes; ++i) {
        tvx::DrawRecord shape;
        const int kind = i % 3;
        shape.EntityCode = static_cast<int16_t>(kind == 0 ? 151 : kind == 1 ? 154 : 156);
        const float x = static_cast<float>(20 + (i % 140) * 20);
        const float y = static_cast<float>(20 + (i / 140 % 70) * 20);
        shape.Point[4] = tvx::SinglePoint{x, y};
        shape.Value[1] = kind == 0 ? 5.0f : 12.0f;
        shape.Value[2] = 6;
        shape.Value[11] = kind == 0 ? 360.0f : 0.0f;
        shape.Side = -1;
        shape.ToolA = laser;
        shape.LeadIn.LeadKind = 1;
        shape.LeadIn.LeadLength = 2;
        shape.LeadOut.LeadKind = 1;
        shape.LeadOut.LeadLength = 1;
        shape.LeadOut.LeadAngle = 180;
        tvx::BindRecord(tvx::MachineState{}, shape);
        tvx::WriteRecord(file, i + 2, shape);
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

void BM_LaserShapeJob(benchmark::State& state) {
    const std::string root = Installation("laser");
    const int shapes = static_cast<int>(state.range(0));
    WriteShapeDrawing(root + "/work/Progmain.drw", shapes);
    for (auto _ : state) {
        if (tvx::RunJob(root + "/work") != 0) state.SkipWithError("the job did not end cleanly");
    }
    state.SetItemsProcessed(state.iterations() * shapes);
    state.counters["peak_MB"] = static_cast<double>(PeakKilobytes()) / 1024.0;
}

}  // namespace

BENCHMARK(BM_LaserShapeJob)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PunchJob)->Arg(10000)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
