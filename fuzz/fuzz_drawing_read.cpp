// Arbitrary bytes as a drawing file: every record is read from disk and from memory, the
// drawing is walked, and a drawing of whole records is dumped as JSON and built back, which
// must give the same bytes.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "common/fault.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"
#include "drawing/record.h"

namespace {

// The scratch drawing of this process, removed when the process ends.
struct Scratch {
    std::string Path = "/tmp/fuzz_drawing_read_" + std::to_string(::getpid()) + ".drw";
    ~Scratch() { std::remove(Path.c_str()); }
};

const std::string& ScratchPath() {
    static const Scratch scratch;
    return scratch.Path;
}

std::string Bytes(const tvx::DrawRecord& r) {
    const tvx::RecordBytes b = tvx::EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    {
        std::ofstream file(ScratchPath(), std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    tvx::DrawingFile drawing;
    tvx::OpenDrawing(drawing, ScratchPath());
    const int32_t onDisk = tvx::RecordsOnDisk(drawing);
    for (int32_t n = 1; n <= onDisk + 1; ++n) {
        const tvx::DrawRecord fromDisk = tvx::ReadRecord(drawing, n);
        const size_t start = static_cast<size_t>(n - 1) * tvx::RecordLength;
        std::string expected = start < size ? bytes.substr(start, tvx::RecordLength) : std::string();
        expected.resize(tvx::RecordLength, '\0');
        if (Bytes(fromDisk) != expected) std::abort();
    }
    int32_t visits = 0;
    tvx::WalkDrawing(drawing, [&](int32_t, tvx::DrawRecord& r) {
        ++visits;
        (void)tvx::IsPunchWork(r.ToolA.WorkType);
        (void)tvx::IsDualWork(r.ToolA.WorkType);
    });
    if (visits > onDisk) std::abort();
    tvx::CloseDrawing(drawing);

    try {
        const std::string json = tvx::DrawingToJson(bytes, "fuzz.drw");
        if (size % tvx::RecordLength != 0) std::abort();
        if (tvx::DrawingFromJson(json, "fuzz.json") != bytes) std::abort();
    } catch (const tvx::RunEnd& end) {
        if (size % tvx::RecordLength == 0 || end.Status != tvx::ExitFault) std::abort();
    }
    return 0;
}
