#pragma once
#include <string>

namespace tvx {

struct RunState;

// The title of the system's message boxes.
inline constexpr const char* MessageTitle = "Torvanex";

// Ends the run with the definition's message box: the message, two line feeds and
// "Program Aborted", in the exclamation style with the default title (exit status 1).
[[noreturn]] void PostAbort(RunState& state, const std::string& message);

}  // namespace tvx
