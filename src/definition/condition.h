#pragma once
// The condition of a reserved-word line: "=TRUE IF [P9=11]". One comparison of a table value
// with a number or another table value; there is no "and" or "or".
#include <string>

#include "definition/line_forms.h"

namespace tvx {

struct RunState;

// The truth of the condition between the first "[" of the line and the next "]". The line
// comes back in upper case. A line without "[" ends the run with the message
// "<LINE> case not found in definition". In a condition the letter V stands for the numeric
// PostVar, not for the text table. Both sides are compared through the seven-digit text of
// the single, so 100.00001 equals 100. A cell number beyond a table's bound is a fault of
// the run.
bool EvaluateCondition(RunState& state, std::string& line);

// Reads a condition line into its form.
ConditionForm ParseCondition(const std::string& line);

// The truth of a condition's form, as EvaluateCondition gives it for its line.
bool EvaluateCondition(RunState& state, const ConditionForm& form);
// Reads a reserved-word line into its truth.
TruthForm ParseTruth(const std::string& line);

}  // namespace tvx
