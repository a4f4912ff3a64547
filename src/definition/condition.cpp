#include "definition/condition.h"

#include <cstdint>
#include <iterator>
#include <string_view>

#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/post_abort.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// The cell of a piece: P PostParam, M PostMachine, V the numeric PostVar. The cell number is
// the leading number of the characters collected behind the letter, rounded with halves to
// even; nothing collected is cell 0.
float CellValue(RunState& state, const ConditionPiece& piece) {
    const int32_t cell = ToInteger32(piece.Cell, "cell number");
    switch (piece.Table) {
        case 'P': return state.Tables.PostParam[cell];
        case 'M': return state.Tables.PostMachine[cell];
        default: return state.Tables.PostVar[cell];
    }
}

bool IsComparison(char c) { return c == '<' || c == '>' || c == '='; }

// The comparisons in the order they are looked for: the first found decides, at its first
// place; "<>" before "<" and ">", so that "1<>2" is not a less-than test of "1" and ">2".
constexpr std::string_view Operators[] = {"<>", "<=", ">=", "<", ">", "="};

bool Compare(int op, double left, double right) {
    switch (op) {
        case 0: return left != right;
        case 1: return left <= right;
        case 2: return left >= right;
        case 3: return left < right;
        case 4: return left > right;
        default: return left == right;
    }
}

bool IsBlankText(const std::string& text) { return text.find_first_not_of(' ') == std::string::npos; }

// A side made of the pieces [first, last) of a condition split at its comparison: plain when
// it is a single cell or texts alone (blanks around a cell do not count, as the reading of a
// number passes over them).
bool PlainSide(const std::vector<ConditionPiece>& pieces, size_t first, size_t last, ConditionSide& side) {
    std::string text;
    int cell = -1;
    bool blanksOnly = true;
    for (size_t i = first; i < last; ++i) {
        const ConditionPiece& p = pieces[i];
        if (p.Table != 0) {
            if (cell >= 0) return false;
            cell = static_cast<int>(i);
        } else {
            text += p.Literal;
            if (!IsBlankText(p.Literal)) blanksOnly = false;
        }
    }
    if (cell >= 0 && !blanksOnly) return false;
    side.Piece = cell;
    side.Number = cell >= 0 ? 0 : LeadingNumber(text);
    return true;
}

// Decides whether a condition is plain, and its sides.
void FindPlainComparison(ConditionForm& form) {
    // The comparison must be the only comparison text of the condition, whole in one piece.
    int at = -1;
    size_t position = 0;
    std::string comparison;
    for (size_t i = 0; i < form.Pieces.size(); ++i) {
        const std::string& text = form.Pieces[i].Literal;
        for (size_t j = 0; j < text.size(); ++j) {
            if (!IsComparison(text[j])) continue;
            if (at >= 0 && (static_cast<size_t>(at) != i || j != position + comparison.size())) return;
            if (at < 0) {
                at = static_cast<int>(i);
                position = j;
            }
            comparison += text[j];
        }
    }
    if (at < 0) return;
    int op = -1;
    for (int k = 0; k < 6; ++k)
        if (comparison == Operators[k]) op = k;
    if (op < 0) return;

    // The pieces of each side, with the comparison's piece split in two.
    std::vector<ConditionPiece> pieces(form.Pieces.begin(), form.Pieces.begin() + at);
    const std::string& split = form.Pieces[static_cast<size_t>(at)].Literal;
    pieces.push_back(ConditionPiece{0, split.substr(0, position), 0});
    const size_t leftEnd = pieces.size();
    pieces.push_back(ConditionPiece{0, split.substr(position + comparison.size()), 0});
    pieces.insert(pieces.end(), form.Pieces.begin() + at + 1, form.Pieces.end());
    // The sides name their cells by their places in the form's own pieces.
    auto own = [&](ConditionSide& side) {
        if (side.Piece < 0) return;
        side.Piece = side.Piece < at ? side.Piece : side.Piece - 1;
    };
    ConditionSide left;
    ConditionSide right;
    if (!PlainSide(pieces, 0, leftEnd, left)) return;
    if (!PlainSide(pieces, leftEnd, pieces.size(), right)) return;
    if (form.HasVal) {
        // VAL's text comes behind the right side: plain only when that side is blanks alone.
        bool blanks = true;
        for (size_t i = leftEnd; i < pieces.size(); ++i)
            if (pieces[i].Table != 0 || !IsBlankText(pieces[i].Literal)) blanks = false;
        if (!blanks) return;
        right = ConditionSide{-1, 0, true};
    }
    own(left);
    own(right);
    form.Left = left;
    form.Right = right;
    form.Operator = op;
    form.Plain = true;
}

}  // namespace

ConditionForm ParseCondition(const std::string& text) {
    ConditionForm form;
    form.Line = Upper(text);
    const std::string& line = form.Line;
    const size_t open = line.find('[');
    if (open == std::string::npos) return form;
    form.HasCase = true;
    // The condition runs to the next "]", or to the end of the line when it has none.
    const size_t close = line.find(']', open + 1);
    std::string condition =
        close == std::string::npos ? line.substr(open + 1) : line.substr(open + 1, close - open - 1);

    // VAL stands for the last table value of the condition; what follows it is dropped.
    const size_t val = condition.find("VAL");
    form.HasVal = val != std::string::npos;
    if (form.HasVal) condition.resize(val);

    // The comparison as text: each table reference becomes the plain text of its single.
    // A table letter always starts a new reference with an empty cell number; a reference
    // that another letter interrupts before any comparison character is dropped unresolved.
    char letter = 0;  // the letter of the reference in progress, 0 for none
    std::string digits;
    const auto literal = [&](char c) {
        if (form.Pieces.empty() || form.Pieces.back().Table != 0) form.Pieces.emplace_back();
        form.Pieces.back().Literal += c;
    };
    const auto resolve = [&] {
        form.Pieces.push_back(ConditionPiece{letter, std::string(), LeadingNumber(digits)});
        letter = 0;
        digits.clear();
    };
    for (const char c : condition) {
        if (c == 'P' || c == 'M' || c == 'V') {
            letter = c;
            digits.clear();
        } else if (IsComparison(c)) {
            if (letter != 0) resolve();
            literal(c);
        } else if (letter != 0) {
            digits += c;
        } else {
            literal(c);
        }
    }
    if (letter != 0) resolve();
    FindPlainComparison(form);
    return form;
}

TruthForm ParseTruth(const std::string& line) {
    TruthForm form;
    form.True = Holds(line, "=TRUE");
    form.Conditional = Holds(line, "=TRUE IF");
    if (form.Conditional) form.Condition = ParseCondition(line);
    return form;
}

bool EvaluateCondition(RunState& state, const ConditionForm& form) {
    if (!form.HasCase) PostAbort(state, form.Line + " case not found in definition");
    // The cells are read in the order of the text, the last one being VAL's value.
    float cells[8];
    float lastValue = 0;
    size_t count = 0;
    for (const ConditionPiece& piece : form.Pieces) {
        if (piece.Table == 0) continue;
        lastValue = CellValue(state, piece);
        if (count < std::size(cells)) cells[count] = lastValue;
        ++count;
    }
    if (form.Plain && count <= std::size(cells)) {
        // The place of a side's cell among the cells read.
        auto value = [&](const ConditionSide& side) {
            if (side.Val) return NumberThroughPlainText(lastValue);
            if (side.Piece < 0) return side.Number;
            size_t k = 0;
            for (int i = 0; i < side.Piece; ++i)
                if (form.Pieces[static_cast<size_t>(i)].Table != 0) ++k;
            return NumberThroughPlainText(cells[k]);
        };
        return Compare(form.Operator, value(form.Left), value(form.Right));
    }

    std::string text;
    for (const ConditionPiece& piece : form.Pieces) {
        if (piece.Table == 0) text += piece.Literal;
        else AppendPlainText(text, CellValue(state, piece));
    }
    if (form.HasVal) AppendPlainText(text, lastValue);
    for (int op = 0; op < 6; ++op) {
        const size_t at = text.find(Operators[op]);
        if (at == std::string::npos) continue;
        const double left = LeadingNumber(std::string_view(text).substr(0, at));
        const double right = LeadingNumber(std::string_view(text).substr(at + Operators[op].size()));
        return Compare(op, left, right);
    }
    return false;
}

bool EvaluateCondition(RunState& state, std::string& line) {
    const ConditionForm form = ParseCondition(line);
    line = form.Line;
    return EvaluateCondition(state, form);
}

}  // namespace tvx
