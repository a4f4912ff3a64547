#pragma once
// CALC expressions of the definition: [CALC=expr] and [SETCALC=expr]. The evaluator has no
// operator precedence: the four operators are applied strictly from left to right, groups are
// worked from the innermost last one outwards, and each group's value goes back into the
// expression as text. Definitions rely on exactly this, so it must stay as it is.
#include <optional>
#include <string>
#include <vector>

namespace tvx {

struct RunState;

// Replaces the table references of an expression by the plain text of the cells: Pn and Mn
// by the single of PostParam and PostMachine, Vn by the leading number of the PostUserText
// cell's text, as a single. The expression comes back in upper case. A cell number beyond a
// table's bound is a fault of the run.
void SubstituteCalc(RunState& state, std::string& expr);

// What the substitution makes of an expression, read once: a text that stands as it is, or
// the plain text of a table cell ('V', 'P' or 'M', and the number read for its cell).
struct CalcPiece {
    char Table = 0;
    std::string Literal;
    double Cell = 0;
};
std::vector<CalcPiece> ParseCalcSubstitution(const std::string& expr);
// Puts the pieces together with the cells' texts of now.
void SubstituteCalc(RunState& state, const std::vector<CalcPiece>& pieces, std::string& expr);

// An expression read once. Most expressions are plain chains of operands (cells and numbers
// without a sign) joined by single operators, with no parentheses: for these the value of
// the substituted text is the chain worked from left to right on the numbers that the cells'
// texts read as, as long as no cell's text takes an exponent (whose letter the evaluator
// would drop). Such a chain is kept as its terms and worked without making the text; any
// other expression, or a chain whose cells leave that range or whose value needs the text
// (an overflow, a value from 1E+15 up), goes the way of the text.
struct CalcTerm {
    char Operator = 0;  // the operator in front of the term; 0 for the first
    char Table = 0;     // 'V', 'P' or 'M' for a cell, 0 for a number
    double Cell = 0;
    double Number = 0;
};
struct CalcForm {
    std::vector<CalcPiece> Pieces;
    bool Chain = false;
    std::vector<CalcTerm> Terms;
};
CalcForm ParseCalc(const std::string& expr);
// The value of an expression as SubstituteCalc and EvaluateCalc give it.
std::optional<double> EvaluateCalc(RunState& state, const CalcForm& form);

// The value of a substituted expression, or no value on a fault (unbalanced parentheses, a
// division by zero) or for an expression without any number. A fault sets MathError, which
// nothing ever clears.
std::optional<double> EvaluateCalc(RunState& state, const std::string& expr);

}  // namespace tvx
