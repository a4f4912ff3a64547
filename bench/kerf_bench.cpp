// The kerf pass on one sheet of 1,000 rounded rectangles, by the every-pair walk and by the boxed
// search. The two .krf files must be the same bytes (the bench ends with a failure if not); the
// counters tell both times and their ratio.
//
// Every corner of the sheet is a real meeting, never a tangent one, so that MeetEntities walks
// its chords: half of the rectangles have sides that bulge as arcs of 90 degrees, met at 45
// degrees by corner arcs of 90 degrees (arc to arc); the other half have straight sides met at
// 10 degrees by corner arcs of 70 degrees (line to arc, arc to line). Half of each kind are cut
// outside, half inside. Outside, the offsets of two arcs never cross, so the every-pair walk
// tries all 900 x 900 chord pairs of such a corner, the most that two arcs of 90 degrees can
// cost: some 1,600 million pairs for the sheet, several seconds, well under a minute.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/textfile.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "kerf/kerf.h"
#include "state/run_state.h"

namespace {

namespace fs = std::filesystem;

constexpr int Rectangles = 1000;

tvx::MachineState Machine() {
    tvx::MachineState m;
    m.TurnSense = 1;  // Side -1 is the left of the path, the inside of a counter-clockwise contour
    m.MachineKind = 1;
    m.IsProfileMachine = true;
    return m;
}

tvx::DrawRecord Line(const tvx::MachineState& m, double x1, double y1, double x2, double y2, int16_t side) {
    tvx::DrawRecord r;
    r.EntityCode = 120;
    r.EntityName = "Line Profile";
    r.Point[1] = tvx::SinglePoint{tvx::ToSingle(x1), tvx::ToSingle(y1)};
    r.Point[3] = tvx::SinglePoint{tvx::ToSingle(x2), tvx::ToSingle(y2)};
    double length = 0;
    double direction = 0;
    tvx::XYToPolar(x2 - x1, y2 - y1, length, direction);
    r.Value[1] = tvx::ToSingle(length);
    r.Value[10] = tvx::ToSingle(direction);
    r.Side = side;
    tvx::BindRecord(m, r);
    return r;
}

// The counter-clockwise arc of the given sweep from (x1, y1) to (x2, y2).
tvx::DrawRecord ArcThrough(const tvx::MachineState& m, double x1, double y1, double x2, double y2, double sweep,
                           int16_t side) {
    double chord = 0;
    double direction = 0;
    tvx::XYToPolar(x2 - x1, y2 - y1, chord, direction);
    const double half = sweep / 2 * tvx::Pi / 180;
    const double radius = chord / 2 / std::sin(half);
    double dx = 0;
    double dy = 0;
    tvx::PolarToXY(radius * std::cos(half), direction + 90, dx, dy);
    const double cx = (x1 + x2) / 2 + dx;
    const double cy = (y1 + y2) / 2 + dy;
    double distance = 0;
    double start = 0;
    tvx::XYToPolar(x1 - cx, y1 - cy, distance, start);
    tvx::DrawRecord r;
    r.EntityCode = 130;
    r.EntityName = "Arc Profile";
    r.Point[4] = tvx::SinglePoint{tvx::ToSingle(cx), tvx::ToSingle(cy)};
    r.Value[1] = tvx::ToSingle(radius);
    r.Value[10] = tvx::ToSingle(start);
    r.Value[11] = tvx::ToSingle(sweep);
    r.Side = side;
    tvx::BindRecord(m, r);
    return r;
}

// One rounded rectangle about (cx, cy), counter-clockwise from its bottom side.
void Rectangle(const tvx::MachineState& m, int kind, double cx, double cy, std::vector<tvx::DrawRecord>& out) {
    const double w = 20;
    const double h = 12;
    const double rc = 5;
    const int16_t side = kind < 2 ? 1 : -1;
    const bool bulging = kind % 2 == 0;
    // The corners of the straight or bulging sides, in turn.
    const double xs[8] = {cx - w + rc, cx + w - rc, cx + w, cx + w, cx + w - rc, cx - w + rc, cx - w, cx - w};
    const double ys[8] = {cy - h, cy - h, cy - h + rc, cy + h - rc, cy + h, cy + h, cy + h - rc, cy - h + rc};
    for (int i = 0; i < 8; ++i) {
        const int j = (i + 1) % 8;
        if (i % 2 == 0) {
            if (bulging) {
                out.push_back(ArcThrough(m, xs[i], ys[i], xs[j], ys[j], 90, side));
            } else {
                out.push_back(Line(m, xs[i], ys[i], xs[j], ys[j], side));
            }
        } else {
            out.push_back(ArcThrough(m, xs[i], ys[i], xs[j], ys[j], bulging ? 90 : 70, side));
        }
    }
}

std::string Folder(const char* name) {
    const fs::path dir =
        fs::temp_directory_path() / ("torvanex-kerf-bench-" + tvx::Trim(tvx::LongText(static_cast<int32_t>(::getpid())))) / name;
    fs::create_directories(dir);
    return dir.string();
}

void WriteSheet(const std::string& path) {
    const tvx::MachineState m = Machine();
    std::vector<tvx::DrawRecord> entities;
    for (int i = 0; i < Rectangles; ++i) {
        Rectangle(m, i % 4, 30 + (i % 40) * 60, 20 + (i / 40) * 40, entities);
    }
    tvx::DrawingFile file;
    tvx::MakeWorkingFile(file, path);
    tvx::DrawRecord header;
    header.EntityCode = 1;
    header.EntityText = "MILD STEEL 2.0";
    header.RecordCount = static_cast<int32_t>(entities.size()) + 1;
    header.Value[1] = 2500;
    header.Value[2] = 1250;
    header.Value[3] = 2;
    tvx::WriteRecord(file, 1, header);
    for (size_t i = 0; i < entities.size(); ++i) tvx::WriteRecord(file, static_cast<int32_t>(i) + 2, entities[i]);
}

double Seconds(tvx::MeetingSearch search, const std::string& path) {
    tvx::RunState state;
    state.Machine = Machine();
    const auto start = std::chrono::steady_clock::now();
    const int16_t result = tvx::KerfDrawing(state, path, search);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (result != 0) {
        std::fputs("kerf bench: the pass failed on the sheet\n", stderr);
        std::exit(1);
    }
    return took.count();
}

void BM_KerfSheet(benchmark::State& state) {
    const std::string every = Folder("every") + "/Sheet.drw";
    const std::string boxed = Folder("boxed") + "/Sheet.drw";
    WriteSheet(every);
    WriteSheet(boxed);
    double everySeconds = 0;
    double boxedSeconds = 0;
    for (auto _ : state) {
        everySeconds = Seconds(tvx::MeetingSearch::EveryPair, every);
        // The boxed pass is short: the best of a few runs.
        boxedSeconds = Seconds(tvx::MeetingSearch::BoxedRuns, boxed);
        for (int i = 0; i < 4; ++i) boxedSeconds = std::min(boxedSeconds, Seconds(tvx::MeetingSearch::BoxedRuns, boxed));
    }
    const std::string everyKerf = every.substr(0, every.size() - 3) + "krf";
    const std::string boxedKerf = boxed.substr(0, boxed.size() - 3) + "krf";
    if (tvx::ReadAllBytes(everyKerf) != tvx::ReadAllBytes(boxedKerf)) {
        std::fputs("kerf bench: the every-pair and the boxed .krf files differ\n", stderr);
        std::exit(1);
    }
    state.counters["every_pair_s"] = everySeconds;
    state.counters["boxed_s"] = boxedSeconds;
    state.counters["ratio"] = everySeconds / boxedSeconds;
    std::error_code ec;
    fs::remove_all(fs::path(every).parent_path().parent_path(), ec);
}
BENCHMARK(BM_KerfSheet)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
