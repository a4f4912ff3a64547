// A fuzzed multipart sheet and a fuzzed part drawing through the flattening of the sheet, in a
// temporary installation made anew for each input. Every outcome is a clean end or a RunEnd;
// nothing crashes or runs on without end.
//
// Input: byte 0 the machine (bit 0 TurnSense 1, bit 1 a control that turns parts, bit 2 every
// layout names the part "PART", bits 3-4 the machine's kind); bytes 1-2 the length of the sheet
// (little-endian), the sheet; the rest the part drawing. Drawings are cut to 12 records; a part
// record places at most 6 x 6 copies, so that a run stays small.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/textfile.h"
#include "definition/definition_files.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "fuzz_support.h"
#include "state/run_state.h"

namespace {

using tvx::fuzz::TakePiece;
using tvx::fuzz::WriteFuzzDrawing;

constexpr size_t MostRecords = 12;

std::string Root() {
    static const std::string root = tvx::fuzz::FuzzRoot("multipart");
    return root;
}

// The records of a fuzzed drawing. A text that could name a file outside the installation loses
// its separators and points; the counts of a part record stay small.
std::vector<tvx::DrawRecord> Records(std::string_view bytes, bool namePart) {
    std::vector<tvx::DrawRecord> records;
    for (size_t at = 0; at < bytes.size() && records.size() < MostRecords; at += tvx::RecordLength) {
        tvx::DrawRecord record = tvx::DecodeRecord(bytes.substr(at, tvx::RecordLength));
        std::string text = record.EntityText.Text();
        for (char& c : text)
            if (c == '.' || c == '\0' || c == '\\' || c == '/') c = '_';
        record.EntityText = text;
        if (record.EntityCode == 500 && namePart) record.EntityText = "PART";
        if (record.EntityCode == 510)
            for (int i = 1; i <= 2; ++i) record.Count[i] = static_cast<int16_t>(record.Count[i] % 7);
        records.push_back(record);
    }
    return records;
}

void Run(std::string_view input) {
    const unsigned char flags = static_cast<unsigned char>(input[0]);
    input.remove_prefix(1);
    const bool namePart = (flags & 4) != 0;
    std::vector<tvx::DrawRecord> sheet = Records(TakePiece(input), namePart);
    const std::vector<tvx::DrawRecord> part = Records(input, false);
    if (!sheet.empty()) sheet[0].CarryWord1 = 500;

    tvx::RunState state;
    const std::string root = Root() + "/";
    state.Job.WorkDir = root;
    state.Job.CurrentDir = root;
    state.Job.MaterialName = "STEEL";
    state.Config.ProjectDir = root + "projects/";
    state.Machine.MachineDirName = "MP";
    state.Machine.ShapesDir = root + "Shapes/";
    state.Machine.CustomDir = root + "Custom/";
    state.Machine.ToolLibrary = "Lib";
    state.Machine.TurnSense = (flags & 1) != 0 ? 1 : 0;
    const int16_t kinds[] = {10, 25, 1, 41};
    const int16_t kind = kinds[(flags >> 3) & 3];
    state.Machine.MachineKind = kind;
    state.Machine.IsToolMachine = kind >= 10 && kind < 40;
    state.Machine.IsComboMachine = kind >= 40 && kind < 50;
    state.Machine.IsProfileMachine = kind % 10 != 0 && kind < 40;
    tvx::WriteAllLines(root + "M.pst", {(flags & 2) != 0 ? "MULTIPART_ANGLE_SUPPORT=TRUE" : "MULTIPART_ANGLE_SUPPORT=FALSE",
                                        "******"});
    tvx::WriteAllLines(root + "M.wrd", {"END_OF_WORDS [P0] [CONV=*]"});
    tvx::WriteAllLines(root + "M.lyt", {"******"});
    state.Machine.MachineStem = root + "M.";
    tvx::SetDefinitionFiles(state);

    std::filesystem::create_directories(root + "projects/MP");
    WriteFuzzDrawing(root + "projects/MP/PART.drw", part);
    const std::string path = root + "Progmain.drw";
    WriteFuzzDrawing(path, sheet);
    tvx::MultipartExplode(state, path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > 3 * MostRecords * tvx::RecordLength) return 0;
    return tvx::fuzz::RunInFreshRoot(Root(), data, size, Run);
}
