// Stand-in until the condition test of its own branch arrives.
#include "definition/condition.h"

#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/post_abort.h"
#include "job/run_state.h"

namespace tvx {

bool EvaluateCondition(RunState& state, std::string& line) {
    line = Upper(line);
    const size_t open = line.find('[');
    if (open == std::string::npos) PostAbort(state, line + " case not found in definition");
    const size_t close = line.find(']', open);
    std::string text = line.substr(open + 1, close == std::string::npos ? std::string::npos : close - open - 1);
    const size_t val = text.find("VAL");
    const bool withVal = val != std::string::npos;
    if (withVal) text.resize(val);
    std::string expression;
    char letter = 0;
    std::string digits;
    float last = 0;
    auto resolve = [&] {
        const int32_t n = ToInteger32(LeadingNumber(digits), "condition cell");
        if (letter == 'P') last = state.Tables.PostParam[n];
        else if (letter == 'M') last = state.Tables.PostMachine[n];
        else last = state.Tables.PostVar[n];
        expression += PlainText(last);
        letter = 0;
        digits.clear();
    };
    for (char c : text) {
        if (c == 'P' || c == 'M' || c == 'V') {
            if (letter != 0) resolve();
            letter = c;
        } else if (c == '<' || c == '>' || c == '=') {
            if (letter != 0) resolve();
            expression += c;
        } else if (letter != 0) {
            digits += c;
        } else {
            expression += c;
        }
    }
    if (letter != 0) resolve();
    if (withVal) expression += PlainText(last);
    for (const char* op : {"<>", "<=", ">=", "<", ">", "="}) {
        const size_t at = expression.find(op);
        if (at == std::string::npos) continue;
        const double left = LeadingNumber(expression.substr(0, at));
        const double right = LeadingNumber(expression.substr(at + std::string(op).size()));
        const std::string o = op;
        if (o == "<>") return left != right;
        if (o == "<=") return left <= right;
        if (o == ">=") return left >= right;
        if (o == "<") return left < right;
        if (o == ">") return left > right;
        return left == right;
    }
    return false;
}

}  // namespace tvx
