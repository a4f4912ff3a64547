#include "definition/post_abort.h"

#include "common/fault.h"
#include "state/run_state.h"

namespace tvx {

void PostAbort(RunState& state, const std::string& message) {
    state.Engine.PostErrorText = message;
    MessageEnd(MessageTitle, message + "\n\nProgram Aborted");
}

}  // namespace tvx
