#pragma once
// What the fuzz targets share: a temporary folder of the process made anew for each input, the
// pieces of an input, drawings written whole, and the run of one input, for which a RunEnd (a
// fault or a message of the run) is a clean outcome.
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "common/numtext.h"
#include "drawing/drawfile.h"

namespace tvx::fuzz {

// The temporary folder of a target in this process: "torvanex-fuzz-NAME-PID".
inline std::string FuzzRoot(std::string_view target) {
    return (std::filesystem::temp_directory_path() /
            ("torvanex-fuzz-" + std::string(target) + "-" + Trim(LongText(static_cast<int32_t>(::getpid())))))
        .string();
}

// A piece of the input, taken from the front: its 16-bit length (little-endian), then its bytes.
inline std::string_view TakePiece(std::string_view& rest) {
    if (rest.size() < 2) {
        rest = {};
        return {};
    }
    const size_t length = static_cast<unsigned char>(rest[0]) | (static_cast<size_t>(static_cast<unsigned char>(rest[1])) << 8);
    rest.remove_prefix(2);
    const size_t n = length < rest.size() ? length : rest.size();
    const std::string_view piece = rest.substr(0, n);
    rest.remove_prefix(n);
    return piece;
}

// Writes the records as a drawing, record 1 first.
inline void WriteFuzzDrawing(const std::string& path, const std::vector<DrawRecord>& records) {
    DrawingFile file;
    MakeWorkingFile(file, path);
    for (size_t i = 0; i < records.size(); ++i) WriteRecord(file, static_cast<int32_t>(i + 1), records[i]);
}

// Runs one input in the root made empty; the end of the run by a RunEnd is a clean outcome.
template <typename Run>
int RunInFreshRoot(const std::string& root, const unsigned char* data, size_t size, Run run) {
    std::error_code ec;
    std::filesystem::remove_all(root, ec);
    std::filesystem::create_directories(root, ec);
    try {
        run(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const RunEnd&) {
        // A fault of the run: the end that a damaged input may take.
    }
    return 0;
}

}  // namespace tvx::fuzz
