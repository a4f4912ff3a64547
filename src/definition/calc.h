#pragma once
// CALC expressions of word lines.
#include <optional>
#include <string>

namespace tvx {

struct RunState;

// Replaces the table references (Pn, Mn, Vn) of an expression by their number texts.
void SubstituteCalc(RunState& state, std::string& expr);
// Evaluates an expression strictly from left to right; nothing on a fault.
std::optional<double> EvaluateCalc(RunState& state, const std::string& expr);

}  // namespace tvx
