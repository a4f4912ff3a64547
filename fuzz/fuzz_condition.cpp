// Arbitrary reserved-word lines through the condition test, with a fixed set of table
// values. An end of the run (the missing "[" message, a cell beyond a table's bound, an
// overflow) is an allowed outcome; a crash, a sanitizer report or an endless loop is not.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/fault.h"
#include "definition/condition.h"
#include "state/run_state.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tvx::RunState state;
    auto& t = state.Tables;
    t.PostParam[0] = 4;
    t.PostParam[1] = 1.0000001f;
    t.PostParam[2] = 1;
    t.PostParam[9] = 100.00001f;
    t.PostParam[300] = -1e-20f;
    t.PostMachine[3] = -2;
    t.PostMachine[4] = 2.5f;
    t.PostMachine[200] = 3.4e38f;
    t.PostVar[3] = 7;
    t.PostVar[200] = -0.5f;
    t.PostUserText[3] = "1";
    std::string line(reinterpret_cast<const char*>(data), size);
    try {
        (void)tvx::EvaluateCondition(state, line);
    } catch (const tvx::RunEnd&) {
    }
    return 0;
}
