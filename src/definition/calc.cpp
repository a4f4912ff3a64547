// Stand-in until the evaluator of its own branch arrives.
#include "definition/calc.h"

#include "common/numeric.h"
#include "common/numtext.h"
#include "job/run_state.h"

namespace tvx {

void SubstituteCalc(RunState& state, std::string& expr) {
    const std::string text = Upper(expr);
    std::string result;
    char flag = 0;
    std::string buffer;
    auto resolve = [&] {
        if (flag == 0) return;
        const int32_t n = ToInteger32(LeadingNumber(buffer), "CALC cell");
        if (flag == 'V') result += PlainText(ToSingle(LeadingNumber(state.Tables.PostUserText[n])));
        else if (flag == 'P') result += PlainText(state.Tables.PostParam[n]);
        else result += PlainText(state.Tables.PostMachine[n]);
        buffer.clear();
    };
    for (char c : text) {
        if (c == 'V' || c == 'P' || c == 'M') {
            if (flag != c) { resolve(); }
            flag = c;
        } else if (c == '/' || c == '*' || c == '-' || c == '+' || c == '(' || c == ')') {
            resolve();
            flag = 0;
        } else if (flag != 0) {
            buffer += c;
        }
        if (flag == 0 && c != ' ') result += c;
    }
    resolve();
    expr = result;
}

std::optional<double> EvaluateCalc(RunState& state, const std::string& expr) {
    std::string text;
    for (char c : expr)
        if ((c >= '0' && c <= '9') || c == '.' || c == '+' || c == '-' || c == '*' || c == '/' || c == '(' || c == ')')
            text += c;
    for (int round = 0; round < 10000; ++round) {
        int opens = 0, closes = 0;
        for (char c : text) {
            if (c == '(') ++opens;
            if (c == ')') ++closes;
        }
        if (opens != closes) {
            state.Engine.MathError = true;
            return std::nullopt;
        }
        const size_t lastOpen = text.rfind('(');
        std::string head, tail;
        size_t start = 0, end = text.size();
        if (lastOpen != std::string::npos) {
            const size_t close = text.find(')', lastOpen);
            if (close == std::string::npos) {
                state.Engine.MathError = true;
                return std::nullopt;
            }
            head = text.substr(0, lastOpen);
            tail = text.substr(close + 1);
            start = lastOpen + 1;
            end = close;
        }
        double operand[2] = {0, 0};
        char op[2] = {0, 0};
        int count = 0;
        std::string number;
        bool lastNumber = false;
        for (size_t i = start; i < end; ++i) {
            const char c = text[i];
            bool inNumber = true;
            if ((c >= '0' && c <= '9') || c == '.') {
                number += c;
                lastNumber = true;
            } else if (c == '-' && !lastNumber) {
                number += c;
                lastNumber = true;
            } else {
                op[count] = c;
                inNumber = false;
                lastNumber = false;
            }
            if (i + 1 == end) inNumber = false;
            if (!number.empty() && !inNumber) {
                operand[count++] = LeadingNumber(number);
                number.clear();
            }
            if (count == 2) {
                const double a = operand[0], b = operand[1];
                switch (op[0]) {
                    case '+': operand[0] = a + b; break;
                    case '-': operand[0] = a - b; break;
                    case '*': operand[0] = a * b; break;
                    case '/':
                        if (b == 0) {
                            state.Engine.MathError = true;
                            return std::nullopt;
                        }
                        operand[0] = a / b;
                        break;
                    default: break;
                }
                op[0] = op[1];
                count = 1;
            }
        }
        if (lastOpen == std::string::npos) return operand[0];
        std::string value = NumberText(operand[0], -1);
        if (value.find('E') != std::string::npos || value.find('D') != std::string::npos)
            value = NumberText(RoundTo(operand[0], 5), -1);
        text = head + value + tail;
    }
    state.Engine.MathError = true;
    return std::nullopt;
}

}  // namespace tvx
