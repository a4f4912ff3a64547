// Arbitrary bytes as the Tooling.lkp of a library folder. Reading the list never ends the run:
// a fault of the file gives no entries and the default entry. What is read is checked: the
// entries sorted by file, their angles and steps in range, the lookup giving the last entry of
// a number. The angle test runs on the entries' angles and steps with angles taken from the
// input's own bytes.
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "tooling/library.h"

namespace {

std::string Folder;

void RemoveFolder() {
    std::error_code ec;
    std::filesystem::remove_all(Folder, ec);
}

void MakeFolder() {
    Folder = (std::filesystem::temp_directory_path() / ("torvanex-fuzz-lkp-" + std::to_string(::getpid()))).string();
    RemoveFolder();
    std::atexit(RemoveFolder);
    tvx::MakeDirectory(Folder);
}

void Check(bool condition) {
    if (!condition) __builtin_trap();
}

// A single from four bytes of the input at `at` (wrapping round), any bits at all.
float SingleAt(std::string_view input, size_t at) {
    unsigned char bytes[4] = {0, 0, 0, 0};
    for (size_t i = 0; i < 4 && !input.empty(); ++i) bytes[i] = static_cast<unsigned char>(input[(at + i) % input.size()]);
    float value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

void CheckEntry(const tvx::ToolingEntry& e) {
    Check(e.ToolAngle >= 0.0f && e.ToolAngle <= 360.0f);
    // A step is at least a tenth and may be any size above it.
    Check(e.AngleStep >= 0.1f && std::isfinite(e.AngleStep));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (Folder.empty()) MakeFolder();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string file = Folder + "/Tooling.lkp";
    try {
        tvx::WriteFileAtomically(file, input);
    } catch (const tvx::RunEnd&) {
        return 0;
    }
    try {
        const tvx::ToolingList list = tvx::ReadToolingList(file);
        if (list.Broken) Check(list.Entries.empty() && !list.Reason.empty());
        for (size_t i = 0; i < list.Entries.size(); ++i) {
            CheckEntry(list.Entries[i]);
            if (i > 0) Check(!(list.Entries[i].ToolFile < list.Entries[i - 1].ToolFile));
        }

        // A few numbers: those of the first and last entries and some that are rarely listed.
        std::vector<int> numbers = {0, 1, -1, 32767, -32768, 40000};
        if (!list.Entries.empty()) {
            numbers.push_back(list.Entries.front().ToolNumber);
            numbers.push_back(list.Entries.back().ToolNumber);
        }
        for (const int number : numbers) {
            const tvx::ToolingEntry entry = tvx::LookupToolEntry(file, number);
            CheckEntry(entry);
            const tvx::ToolingEntry* last = nullptr;
            for (const auto& e : list.Entries)
                if (e.ToolNumber == number) last = &e;
            if (last) {
                Check(entry.ToolName == last->ToolName && entry.ToolFile == last->ToolFile);
                Check(entry.ToolAngle == last->ToolAngle && entry.AngleStep == last->AngleStep);
            } else {
                Check(entry.ToolName.empty() && entry.ToolNumber == 0 && entry.ToolAngle == 0 &&
                      entry.AngleStep == 0.5f && entry.ToolFile.empty());
            }
        }
        const int number = list.Entries.empty() ? 0 : list.Entries.back().ToolNumber;
        for (int field = 0; field <= 6; ++field) {
            const tvx::ToolingValue value = tvx::LookupTool(file, number, field);
            Check(std::isfinite(value.Number));
        }

        // The angle test, on the entries and on angles and steps of the input's bytes.
        const float wanted = SingleAt(input, 0);
        const float other = SingleAt(input, 4);
        for (const auto& e : list.Entries) {
            // An angle just below a full turn may be stored as the single 360, which the test
            // takes as 0; any other stored angle fits itself.
            if (e.ToolAngle < 360.0f) Check(tvx::ToolFitsAngle(e.ToolAngle, e.ToolAngle, e.AngleStep));
            (void)tvx::ToolFitsAngle(wanted, e.ToolAngle, e.AngleStep);
        }
        (void)tvx::ToolFitsAngle(wanted, other, SingleAt(input, 8));
        (void)tvx::ToolFitsAngle(wanted, static_cast<double>(other) * 1e300, static_cast<double>(wanted) * 1e-300);
    } catch (const tvx::RunEnd&) {
        // Nothing of the list may end the run.
        __builtin_trap();
    }
    return 0;
}
