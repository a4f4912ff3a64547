// Arbitrary text as the JSON of a drawing: it builds into whole records, or it is a fault of
// the run with its message, never anything else. A built drawing dumps and builds back to the
// same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "common/fault.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string bytes;
    try {
        bytes = tvx::DrawingFromJson(text, "fuzz.json");
    } catch (const tvx::RunEnd& end) {
        if (end.Status != tvx::ExitFault || end.Text.empty()) std::abort();
        return 0;
    }
    if (bytes.size() % tvx::RecordLength != 0) std::abort();
    if (tvx::DrawingFromJson(tvx::DrawingToJson(bytes, "fuzz.drw"), "fuzz.json") != bytes) std::abort();
    return 0;
}
