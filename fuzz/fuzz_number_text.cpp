// Arbitrary text read as a leading number, and the number turned back into every text form.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const double value = tvx::LeadingNumber(text);
        for (int places = -1; places <= 7; ++places) {
            (void)tvx::NumberText(value, places);
            (void)tvx::NumberText(tvx::ToSingle(value), places);
        }
        (void)tvx::Norm360(value);
        (void)tvx::RoundTo(value, static_cast<int>(size % 9));
        double d = 0, a = 0;
        tvx::XYToPolar(value, static_cast<double>(size), d, a);
        (void)tvx::GetExtension(text);
        (void)tvx::StripExtension(text);
        (void)tvx::AfterColon(text);
    } catch (const tvx::RunEnd&) {
    }
    return 0;
}
