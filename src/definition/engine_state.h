#pragma once
// Registers and file channels of the definition engine.
#include <string>

namespace tvx {

struct EngineState {
    // Set by a fault of a CALC expression; never cleared and not looked at elsewhere.
    bool MathError = false;
    // The text of the last message of PostAbort.
    std::string PostErrorText;
};

}  // namespace tvx
