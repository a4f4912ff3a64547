#include "definition/calc.h"

#include <cmath>
#include <iterator>
#include <cstdint>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// The three table letters of an expression, in the order in which an operator resolves them.
enum Reference { RefV = 0, RefP = 1, RefM = 2, RefCount = 3 };

// The single of a referenced cell: P PostParam, M PostMachine, and for the text table V the
// leading number of its cell's text. The cell number is the leading number of the characters
// collected behind the letter, rounded with halves to even; nothing collected is cell 0.
float CellSingle(RunState& state, char table, double cellNumber) {
    const int32_t cell = ToInteger32(cellNumber, "cell number");
    switch (table) {
        case 'P': return state.Tables.PostParam[cell];
        case 'M': return state.Tables.PostMachine[cell];
        default: return ToSingle(LeadingNumber(state.Tables.PostUserText[cell]));
    }
}

bool IsCalcOperator(char c) { return c == '/' || c == '*' || c == '-' || c == '+' || c == '(' || c == ')'; }

bool IsDigitOrPoint(char c) { return (c >= '0' && c <= '9') || c == '.'; }

// What the evaluator keeps of an expression: digits, the point, the operators and the
// parentheses. Everything else falls out and separates nothing ("12A3" is 123).
bool IsKeptCharacter(char c) { return IsDigitOrPoint(c) || IsCalcOperator(c); }

[[noreturn]] void CalcOverflow(const std::string& expr) { RunFault("Overflow: CALC " + expr); }

}  // namespace

std::vector<CalcPiece> ParseCalcSubstitution(const std::string& expr) {
    const std::string text = Upper(expr);
    std::vector<CalcPiece> pieces;
    bool on[RefCount] = {false, false, false};
    // A buffer is emptied only when its reference is resolved: a reference that another letter
    // cuts off keeps its characters for the next reference of the same letter.
    std::string digits[RefCount];
    constexpr char Letters[RefCount] = {'V', 'P', 'M'};

    const auto literal = [&](char c) {
        if (pieces.empty() || pieces.back().Table != 0) pieces.emplace_back();
        pieces.back().Literal += c;
    };
    const auto resolve = [&](int reference) {
        CalcPiece piece;
        piece.Table = Letters[reference];
        piece.Cell = LeadingNumber(digits[reference]);
        pieces.push_back(std::move(piece));
        digits[reference].clear();
    };

    for (const char c : text) {
        if (c == 'V' || c == 'P' || c == 'M') {
            const int now = c == 'V' ? RefV : (c == 'P' ? RefP : RefM);
            for (int r = 0; r < RefCount; ++r) on[r] = r == now;
        } else if (IsCalcOperator(c)) {
            for (int r = 0; r < RefCount; ++r) {
                if (on[r]) resolve(r);
                on[r] = false;
            }
        } else {
            for (int r = 0; r < RefCount; ++r)
                if (on[r]) digits[r] += c;
        }
        // While no reference is in progress the character itself stands in the result;
        // blanks of the expression are left out (those of a cell's text stay).
        if (!on[RefV] && !on[RefP] && !on[RefM] && c != ' ') literal(c);
    }
    for (int r = 0; r < RefCount; ++r)
        if (on[r]) resolve(r);
    return pieces;
}

void SubstituteCalc(RunState& state, const std::vector<CalcPiece>& pieces, std::string& expr) {
    expr.clear();
    for (const CalcPiece& piece : pieces) {
        if (piece.Table == 0) expr += piece.Literal;
        else AppendPlainText(expr, CellSingle(state, piece.Table, piece.Cell));  // with its blank
    }
}

namespace {

bool IsChainOperator(char c) { return c == '/' || c == '*' || c == '-' || c == '+'; }

// The terms of an expression that is a plain chain; false for any other.
bool ChainTerms(const std::vector<CalcPiece>& pieces, std::vector<CalcTerm>& terms) {
    terms.clear();
    bool wantOperand = true;  // an operand is due, not an operator
    char pendingOperator = 0;
    for (const CalcPiece& piece : pieces) {
        if (piece.Table != 0) {
            if (!wantOperand) return false;
            terms.push_back(CalcTerm{pendingOperator, piece.Table, piece.Cell, 0});
            wantOperand = false;
            continue;
        }
        const std::string& text = piece.Literal;
        for (size_t i = 0; i < text.size();) {
            const char c = text[i];
            if (IsDigitOrPoint(c)) {
                if (!wantOperand) return false;
                size_t end = i;
                while (end < text.size() && IsDigitOrPoint(text[end])) ++end;
                terms.push_back(CalcTerm{pendingOperator, 0, 0, LeadingNumber(std::string_view(text).substr(i, end - i))});
                wantOperand = false;
                i = end;
            } else if (IsChainOperator(c)) {
                // An operator where an operand is due is a sign: not a plain chain.
                if (wantOperand) return false;
                pendingOperator = c;
                wantOperand = true;
                ++i;
            } else {
                return false;
            }
        }
    }
    return !terms.empty() && !wantOperand;
}

// The number that a cell's text reads as in the evaluator, or false when its text takes an
// exponent (or may: the range is kept safely inside the one of the plain form).
bool ChainCellValue(RunState& state, const CalcTerm& term, double& value) {
    const float single = CellSingle(state, term.Table, term.Cell);
    const double magnitude = std::fabs(static_cast<double>(single));
    if (single != 0 && (magnitude < 1e-4 || magnitude >= 9999999.0)) return false;
    value = NumberThroughPlainText(single);
    return true;
}

}  // namespace

CalcForm ParseCalc(const std::string& expr) {
    CalcForm form;
    form.Pieces = ParseCalcSubstitution(expr);
    form.Chain = ChainTerms(form.Pieces, form.Terms);
    return form;
}

std::optional<double> EvaluateCalc(RunState& state, const CalcForm& form) {
    if (form.Chain) {
        // The cells are read first, in the order of the substitution, which also reads every
        // cell before any operator is worked.
        double values[16];
        const size_t count = form.Terms.size();
        bool plain = count <= std::size(values);
        for (size_t i = 0; plain && i < count; ++i) {
            const CalcTerm& term = form.Terms[i];
            values[i] = term.Number;
            if (term.Table != 0 && !ChainCellValue(state, term, values[i])) plain = false;
        }
        double result = 0;
        for (size_t i = 0; plain && i < count; ++i) {
            const double value = values[i];
            switch (form.Terms[i].Operator) {
                case 0: result = value; break;
                case '+': result += value; break;
                case '-': result -= value; break;
                case '*': result *= value; break;
                default:
                    if (value == 0) {
                        state.Engine.MathError = true;
                        return std::nullopt;
                    }
                    result /= value;
                    break;
            }
            if (!std::isfinite(result)) plain = false;
        }
        if (plain && std::fabs(result) < 9.9999999999999e14) return result;
    }
    std::string expr;
    SubstituteCalc(state, form.Pieces, expr);
    return EvaluateCalc(state, expr);
}

void SubstituteCalc(RunState& state, std::string& expr) {
    const std::vector<CalcPiece> pieces = ParseCalcSubstitution(expr);
    SubstituteCalc(state, pieces, expr);
}

std::optional<double> EvaluateCalc(RunState& state, const std::string& expr) {
    std::string text;
    text.reserve(expr.size());
    for (const char c : expr)
        if (IsKeptCharacter(c)) text += c;

    // Each round works the last "(" and its group, or, when no parenthesis is left, the whole
    // text. A round of a group takes away that "(" and so the rounds come to an end.
    for (;;) {
        size_t opens = 0;
        size_t closes = 0;
        size_t lastOpen = std::string::npos;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '(') {
                ++opens;
                lastOpen = i;
            } else if (text[i] == ')') {
                ++closes;
            }
        }
        if (opens != closes) {
            state.Engine.MathError = true;
            return std::nullopt;
        }

        const bool grouped = lastOpen != std::string::npos;
        std::string head;
        std::string tail;
        size_t start = 0;
        if (grouped) {
            head = text.substr(0, lastOpen);
            // The group ends at the first ")" behind its "(". When every ")" stands in front of
            // the last "(" (as in ")("), the group runs to the end of the text and nothing
            // follows it; the "(" taken away leaves the counts unequal for the next round,
            // which then ends in the fault of unbalanced parentheses.
            const size_t close = text.find(')', lastOpen);
            if (close != std::string::npos) tail = text.substr(close + 1);
            start = lastOpen + 1;
        }

        // Operand 1 has no value until the first number of the round is taken: a round that
        // meets no number leaves it without one.
        std::optional<double> operand1;
        double operand2 = 0;
        // The operator cell of an operand holds the operator that follows that operand.
        char operators[2] = {0, 0};
        int count = 0;
        // The number being read: a run of the text, as every character it takes follows the
        // one before and the first character that it does not take ends it.
        size_t numberStart = 0;
        size_t numberLength = 0;
        bool inNumber = false;
        bool lastWasNumber = false;

        for (size_t i = start; i < text.size(); ++i) {
            const char c = text[i];
            bool stop = false;
            if (IsDigitOrPoint(c)) {
                if (numberLength++ == 0) numberStart = i;
                inNumber = lastWasNumber = true;
            } else if (c == '-') {
                if (lastWasNumber) {
                    operators[count] = c;
                    inNumber = lastWasNumber = false;
                } else {
                    // A sign: it joins the number as a digit does ("--5" is the empty number
                    // minus 5, "5--2" is 5 minus -2).
                    if (numberLength++ == 0) numberStart = i;
                    inNumber = lastWasNumber = true;
                }
            } else if (c == '*' || c == '/' || c == '+') {
                operators[count] = c;
                inNumber = lastWasNumber = false;
            } else {
                // The ")" that ends the group. The text of a group's value put back into the
                // expression by an earlier round may hold the letter of an exponent ("1E+15"):
                // it stops the scan in the same way, since nothing takes it out again.
                inNumber = false;
                stop = true;
            }
            if (i + 1 == text.size()) inNumber = false;

            if (numberLength != 0 && !inNumber) {
                const double value = LeadingNumber(std::string_view(text).substr(numberStart, numberLength));
                numberLength = 0;
                ++count;
                if (count == 1) operand1 = value;
                else operand2 = value;
            }
            if (count == 2) {
                double result = *operand1;
                switch (operators[0]) {
                    case '+': result = *operand1 + operand2; break;
                    case '-': result = *operand1 - operand2; break;
                    case '*': result = *operand1 * operand2; break;
                    case '/':
                        if (operand2 == 0) {
                            state.Engine.MathError = true;
                            return std::nullopt;
                        }
                        result = *operand1 / operand2;
                        break;
                    default: break;  // never without an operator: a second number needs one
                }
                if (!std::isfinite(result)) CalcOverflow(expr);
                operand1 = result;
                operators[0] = operators[1];
                count = 1;
            }
            if (stop) break;
        }

        // The value goes back into the expression as its free-form text. A text with an
        // exponent makes the value rounded to 5 decimals and its text made anew; the rounded
        // value is also what a last round returns. A round without any number puts back no
        // text at all: an empty group vanishes.
        if (!grouped && operand1 && std::fabs(*operand1) < 9.9999999999999e14) {
            // The last round: a value below 1E+15 has a free-form text without an exponent
            // (a small value's exponent form reads as "0"), so it comes back as it is.
            return operand1;
        }
        std::string valueText;
        if (operand1) {
            valueText = NumberText(*operand1, -1);
            if (Holds(valueText, "E") || Holds(valueText, "D")) {
                operand1 = RoundTo(*operand1, 5);
                valueText = NumberText(*operand1, -1);
            }
        }
        text = head + valueText + tail;

        if (!grouped) return operand1;
    }
}

}  // namespace tvx
