// A fuzzed drawing through the passes that expand it: the associative tooling pass and the shape
// pass, then a turn of the result and the measure of its start. A fuzzed Tooling.lkp and a
// fuzzed tool drawing stand in the library folder of every entity of the drawing that has one,
// in a temporary installation made anew for each input. Every outcome is a clean end or a
// RunEnd; nothing crashes or runs on without end.
//
// Input: byte 0 the machine and the turn; bytes 1-2 the length of the drawing (little-endian),
// the drawing; bytes 3-4 behind it the length of Tooling.lkp, its text; the rest the tool
// drawing. Drawings are cut to 12 records.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "fuzz_support.h"
#include "state/run_state.h"
#include "tooling/library.h"

namespace {

using tvx::fuzz::TakePiece;

constexpr size_t MostRecords = 12;

std::string Root() {
    static const std::string root = tvx::fuzz::FuzzRoot("passes");
    return root;
}

// The records of a fuzzed drawing. A text that could climb out of the installation (a custom
// tool's folder is named by its text) loses its points.
std::vector<tvx::DrawRecord> Records(std::string_view bytes) {
    std::vector<tvx::DrawRecord> records;
    for (size_t at = 0; at < bytes.size() && records.size() < MostRecords; at += tvx::RecordLength) {
        tvx::DrawRecord record = tvx::DecodeRecord(bytes.substr(at, tvx::RecordLength));
        std::string text = record.EntityText.Text();
        for (char& c : text)
            if (c == '.' || c == '\0') c = '_';
        record.EntityText = text;
        records.push_back(record);
    }
    return records;
}

void WriteText(const std::string& path, std::string_view text) {
    if (std::FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
    }
}

void Run(std::string_view input) {
    const unsigned char flags = static_cast<unsigned char>(input[0]);
    input.remove_prefix(1);
    const std::vector<tvx::DrawRecord> drawing = Records(TakePiece(input));
    const std::string_view lookup = TakePiece(input);
    const std::vector<tvx::DrawRecord> tooling = Records(input);

    tvx::RunState state;
    const std::string root = Root() + "/";
    state.Job.WorkDir = root;
    state.Job.CurrentDir = root;
    state.Job.MaterialName = "STEEL";
    state.Machine.ShapesDir = root + "Shapes/";
    state.Machine.CustomDir = root + "Custom/";
    state.Machine.ToolLibrary = "Lib";
    state.Machine.TurnSense = (flags & 1) != 0 ? 1 : 0;
    switch ((flags >> 1) & 3) {
        case 0: state.Machine.MachineKind = 10; break;
        case 1: state.Machine.MachineKind = 25; break;
        case 2: state.Machine.MachineKind = 41; break;
        default: state.Machine.MachineKind = 1; break;
    }
    const int16_t kind = state.Machine.MachineKind;
    state.Machine.IsToolMachine = kind >= 10 && kind < 40;
    state.Machine.IsComboMachine = kind >= 40 && kind < 50;
    state.Machine.IsProfileMachine = kind % 10 != 0 && kind < 40;

    // The library: the fuzzed list and tool drawing in the folder of every entity that has one.
    for (const tvx::DrawRecord& record : drawing) {
        const std::string list = tvx::JobShapePath(state, record, tvx::LookupFileMode);
        if (list.empty()) continue;
        WriteText(list, lookup);
        tvx::fuzz::WriteFuzzDrawing(tvx::JobShapePath(state, record, tvx::ToolDrawingMode), tooling);
    }
    const std::string path = root + "Progmain.drw";
    tvx::fuzz::WriteFuzzDrawing(path, drawing);
    tvx::AssociativeToolingPass(state, path);
    tvx::ShapePass(state, path);
    tvx::RotateDrawing(state, path, static_cast<double>(flags >> 3) * 22.5);
    double x = 0, y = 0;
    tvx::MeasurePart(state, path, x, y);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > 3 * MostRecords * tvx::RecordLength) return 0;
    return tvx::fuzz::RunInFreshRoot(Root(), data, size, Run);
}
