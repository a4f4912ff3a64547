// A whole job run on a fuzzed drawing against the fixed demo installation: every outcome is a
// clean end or a RunEnd with its message; nothing crashes or hangs.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "job/post_main.h"
#include "tools/demo_tool.h"

namespace {

std::string Installation() {
    static std::string root;
    if (!root.empty()) return root;
    namespace fs = std::filesystem;
    root = (fs::temp_directory_path() / ("torvanex-fuzz-job-" + std::to_string(::getpid()))).string();
    tvx::UnpackExample("punch", root);
    // Messages of the runs are not wanted on the fuzzer's screen.
    if (std::FILE* null = std::fopen("/dev/null", "w")) ::dup2(::fileno(null), 2);
    return root;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 518 * 64) return 0;
    const std::string root = Installation();
    // A custom tool's library folder is named by its record's text: a text that could climb out
    // of the installation loses its points.
    std::string bytes(reinterpret_cast<const char*>(data), size);
    for (size_t record = 0; record < bytes.size(); record += 518)
        for (size_t i = record + 20; i < record + 92 && i < bytes.size(); ++i)
            if (bytes[i] == '.') bytes[i] = '_';
    {
        std::ofstream drawing(root + "/work/Progmain.drw", std::ios::binary | std::ios::trunc);
        drawing.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    (void)tvx::RunJob(root + "/work");
    return 0;
}
