// Arbitrary bytes as the .stn, .trt, .mch and .mtl files of a small fixed installation: the
// input is split at NUL bytes into those four files, in that order. Loading the start-up file,
// the machine and the material must end cleanly or with a RunEnd.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "state/run_state.h"

namespace {

std::string Root;

void RemoveRoot() {
    std::error_code ec;
    std::filesystem::remove_all(Root, ec);
}

void MakeInstallation() {
    Root = (std::filesystem::temp_directory_path() / ("torvanex-fuzz-config-" + std::to_string(::getpid()))).string();
    RemoveRoot();
    std::atexit(RemoveRoot);
    tvx::MakeDirectory(Root + "\\Start");
    tvx::MakeDirectory(Root + "\\Program");
    tvx::MakeDirectory(Root + "\\Data\\Data");
    tvx::MakeDirectory(Root + "\\Data\\Material\\M1");
    tvx::MakeDirectory(Root + "\\Projects\\M1\\P1");
    tvx::WriteAllLines(Root + "\\Start\\Torvanex.cfg",
                       {Root + "\\Program", Root + "\\Data", Root + "\\Projects", "1", "P1", "******"});
    tvx::WriteAllLines(Root + "\\Program\\Machine.lst", {"1,\"Maker\",\"M1\",\"Model\",\"Note\"", "******"});
    tvx::WriteAllLines(Root + "\\Program\\Torvadrw.exe", {"x"});
    tvx::WriteAllLines(Root + "\\Program\\Torvaprg.exe", {"x"});
    tvx::WriteAllLines(Root + "\\Data\\Data\\M1.prm", {"Parameters: YES"});
    tvx::WriteAllLines(Root + "\\Data\\Data\\M1.cms", {"Control: INTERMOTION 3"});
}

void WriteBytes(const std::string& path, std::string_view bytes) { tvx::WriteFileAtomically(path, bytes); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (Root.empty()) MakeInstallation();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::vector<std::string_view> parts;
    size_t start = 0;
    while (parts.size() < 3) {
        const size_t cut = input.find('\0', start);
        if (cut == std::string_view::npos) break;
        parts.push_back(input.substr(start, cut - start));
        start = cut + 1;
    }
    parts.push_back(input.substr(start));
    while (parts.size() < 4) parts.emplace_back();

    try {
        // An input of odd length makes the machine imperial.
        tvx::WriteAllLines(Root + "\\Data\\Data\\M1.msr", {size % 2 ? "Units: IMPERIAL" : "Units: METRIC"});
        WriteBytes(Root + "\\Data\\Data\\M1.stn", parts[0]);
        WriteBytes(Root + "\\Data\\Data\\M1.trt", parts[1]);
        WriteBytes(Root + "\\Data\\Data\\M1.mch", parts[2]);
        WriteBytes(Root + "\\Data\\Material\\M1\\Default.mtl", parts[3]);

        tvx::RunState state;
        state.Config.StartDir = Root + "\\Start";
        tvx::LoadStartupConfig(state);
        tvx::LoadMachine(state, state.Config.MachineNumber, state.Config.ProjectName);
        std::string material = "Default";
        tvx::LoadMaterial(state, material);
        for (int field = 0; field <= 31; ++field)
            (void)tvx::MaterialValueText(tvx::ReadMaterialField(state, material, field));
    } catch (const tvx::RunEnd&) {
    }
    return 0;
}
