#include "definition/condition.h"

#include <cstdint>
#include <string_view>

#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/post_abort.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// The value of cell `digits` of the table of `letter`: P PostParam, M PostMachine, V the
// numeric PostVar. The cell number is the leading number of the characters collected behind
// the letter, rounded with halves to even; nothing collected is cell 0.
float CellValue(RunState& state, char letter, const std::string& digits) {
    const int32_t cell = ToInteger32(LeadingNumber(digits), "cell number");
    switch (letter) {
        case 'P': return state.Tables.PostParam[cell];
        case 'M': return state.Tables.PostMachine[cell];
        default: return state.Tables.PostVar[cell];
    }
}

bool IsComparison(char c) { return c == '<' || c == '>' || c == '='; }

}  // namespace

bool EvaluateCondition(RunState& state, std::string& line) {
    line = Upper(line);
    const size_t open = line.find('[');
    if (open == std::string::npos) PostAbort(state, line + " case not found in definition");
    // The condition runs to the next "]", or to the end of the line when it has none.
    const size_t close = line.find(']', open + 1);
    std::string condition =
        close == std::string::npos ? line.substr(open + 1) : line.substr(open + 1, close - open - 1);

    // VAL stands for the last table value of the condition; what follows it is dropped.
    const size_t val = condition.find("VAL");
    const bool hasVal = val != std::string::npos;
    if (hasVal) condition.resize(val);

    // The comparison as text: each table reference becomes the plain text of its single.
    // A table letter always starts a new reference with an empty cell number; a reference
    // that another letter interrupts before any comparison character is dropped unresolved.
    std::string text;
    char letter = 0;  // the letter of the reference in progress, 0 for none
    std::string digits;
    float lastValue = 0;
    const auto resolve = [&] {
        lastValue = CellValue(state, letter, digits);
        text += PlainText(lastValue);
        letter = 0;
        digits.clear();
    };
    for (const char c : condition) {
        if (c == 'P' || c == 'M' || c == 'V') {
            letter = c;
            digits.clear();
        } else if (IsComparison(c)) {
            if (letter != 0) resolve();
            text += c;
        } else if (letter != 0) {
            digits += c;
        } else {
            text += c;
        }
    }
    if (letter != 0) resolve();
    if (hasVal) text += PlainText(lastValue);

    // The first operator found in this order decides, at its first place: "<>" before "<"
    // and ">", so that "1<>2" is not a less-than test of "1" and ">2".
    static constexpr std::string_view Operators[] = {"<>", "<=", ">=", "<", ">", "="};
    for (const std::string_view op : Operators) {
        const size_t at = text.find(op);
        if (at == std::string::npos) continue;
        const double left = LeadingNumber(std::string_view(text).substr(0, at));
        const double right = LeadingNumber(std::string_view(text).substr(at + op.size()));
        if (op == "<>") return left != right;
        if (op == "<=") return left <= right;
        if (op == ">=") return left >= right;
        if (op == "<") return left < right;
        if (op == ">") return left > right;
        return left == right;
    }
    return false;
}

}  // namespace tvx
