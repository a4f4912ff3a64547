#pragma once
// The forms of reserved-word lines and their conditions, read once and kept for the run.
#include <string>
#include <vector>

namespace tvx {

// A condition read once: the pieces of its text (a text that stands as it is, or the plain
// text of a table cell), VAL, and the comparison. When each side is a single cell or a text
// of its own and the text holds one comparison, the sides are compared as numbers without
// making the text; any other condition is compared through its text.
struct ConditionPiece {
    char Table = 0;  // 'P', 'M' or 'V' for a cell, 0 for a text
    std::string Literal;
    double Cell = 0;
};
struct ConditionSide {
    int Piece = -1;      // the cell piece of the side, or -1 for a number
    double Number = 0;   // the side's text read as a number
    bool Val = false;    // the side is the last table value (VAL)
};
struct ConditionForm {
    std::string Line;  // the line in upper case, for the message
    bool HasCase = false;
    std::vector<ConditionPiece> Pieces;
    bool HasVal = false;
    bool Plain = false;
    int Operator = 0;  // the index of the comparison in the order they are looked for
    ConditionSide Left;
    ConditionSide Right;
};
// The truth a reserved-word line gives, read once: "=TRUE", and a condition behind "=TRUE IF".
struct TruthForm {
    bool True = false;
    bool Conditional = false;
    ConditionForm Condition;
};
}  // namespace tvx
