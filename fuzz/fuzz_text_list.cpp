// Arbitrary bytes read as a text file: whole lines, then list items.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "common/fault.h"
#include "common/textfile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto bytes = std::make_shared<const std::string>(reinterpret_cast<const char*>(data), size);
    try {
        tvx::TextInput in;
        tvx::OpenTextInputFromData(in, "fuzz.txt", bytes);
        while (!tvx::AtEnd(in)) (void)tvx::ReadLine(in);
        tvx::OpenTextInputFromData(in, "fuzz.txt", bytes);
        while (!tvx::AtEnd(in)) {
            const std::string item = tvx::ReadItem(in);
            (void)tvx::IsListEnd(item);
        }
    } catch (const tvx::RunEnd&) {
    }
    return 0;
}
