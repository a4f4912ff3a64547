// Arbitrary text through the substitution and the evaluation of a CALC expression, with a
// fixed set of table values. An end of the run (a cell beyond a table's bound, an overflow)
// is an allowed outcome; a crash, a sanitizer report or an endless loop is not.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/fault.h"
#include "definition/calc.h"
#include "state/run_state.h"

namespace {

void FillTables(tvx::RunState& state) {
    auto& t = state.Tables;
    t.PostParam[0] = 4;
    t.PostParam[1] = 0.5f;
    t.PostParam[2] = -3;
    t.PostParam[3] = 10000000.0f;
    t.PostParam[4] = 0.00001f;
    t.PostParam[9] = 100.0001f;
    t.PostParam[300] = -123.4567f;
    t.PostMachine[0] = 1;
    t.PostMachine[1] = -0.5f;
    t.PostMachine[2] = 3.4e38f;
    t.PostMachine[100] = 100;
    t.PostMachine[200] = 3.14159265f;
    t.PostUserText[0] = "ABC";
    t.PostUserText[1] = "12.5mm";
    t.PostUserText[2] = "  -3 x";
    t.PostUserText[3] = "1E30";
    t.PostUserText[4] = "&HFF";
    t.PostUserText[201] = "7";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tvx::RunState state;
    FillTables(state);
    std::string expr(reinterpret_cast<const char*>(data), size);
    try {
        tvx::SubstituteCalc(state, expr);
        (void)tvx::EvaluateCalc(state, expr);
    } catch (const tvx::RunEnd&) {
    }
    // The evaluator also sees texts that were never substituted.
    try {
        (void)tvx::EvaluateCalc(state, std::string(reinterpret_cast<const char*>(data), size));
    } catch (const tvx::RunEnd&) {
    }
    return 0;
}
