#pragma once
// Word lines of the .wrd file: the table tags, the number and text forms, the address text
// and the assignments that run when a line prints.
#include <cstdint>
#include <string>
#include <vector>

#include "definition/calc.h"
#include "definition/engine_state.h"

namespace tvx {

struct RunState;

// A tag found in a word line: absent, read (the text between its opening and the next "]"
// behind it), or open with no "]" behind it, which is a fault of the run when it is read.
struct LineTag {
    bool Present = false;
    bool Closed = false;
    std::string Inner;
    std::string Fault;  // the fault of reading an open tag
};

// A format as the engine works it: its letters in upper case, its flags taken out, and the
// numbers that stand in the rest. Faults that depend on the value (a character code out of
// range, a negative MAX) are raised when the format is applied.
struct FormatForm {
    std::string Whole;  // the format in upper case, for messages
    std::string Rest;   // the format with its flags taken out
    bool NTZ = false, ABS = false, NEG = false, INV = false, Angle = false, UpperCase = false, NOP = false,
         Plain = false, Down = false, Up = false, Character = false;
    bool HasCode = false;       // ASC with "(" and ")"
    bool CodeReversed = false;  // ")" in front of "("
    double Code = 0;
    double Decimals = -1;
    bool DecimalsFit = false;  // the decimals round into a whole number of 32 bits: Places
    int32_t Places = 0;
    double Pad = -1;
    bool HasMax = false;
    double MaxCount = 0;
};

// One assignment of a SET list: a table cell (letter and the number of its cell) given a
// source, which is a table cell or the text of a number.
struct SetAssignment {
    char TargetLetter = 0;  // 'M', 'P', 'V' or 0 for none
    double TargetCell = 0;
    char SourceLetter = 0;  // 'M', 'P', 'V' or 0 for the source text itself
    double SourceCell = 0;
    double SourceNumber = 0;  // the leading number of the source text
};

// A word line read once: what every tag of it says, so that a line met again is not read
// again. `Line` is the line as the engine holds it once its table tag is read ("[IF M" cut
// to "[M").
struct WordLineForm {
    std::string Line;
    bool NotWhen = false;
    LineTag NotWhenTag;
    bool WithIf = false;
    enum class Table : uint8_t { None, M, P, SV };
    Table Kind = Table::None;
    LineTag Tag;  // the M or P tag
    // M: the cell, whether the tag asks for the cell's value ("VAL"), and the number it tests.
    double Index = 0;
    bool IndexFits = true;   // the cell rounds into a whole number of 32 bits: IndexCell
    int32_t IndexCell = 0;
    bool MachineValue = false;
    double MachineNumber = 0;
    // P with "=": the cell and the number it is compared with.
    bool ParamEquals = false;
    double ParamCell = 0;
    double ParamNumber = 0;
    LineTag STag;
    LineTag VTag;
    // The rest of the line.
    bool Calc = false;
    bool CalcClosed = false;
    CalcForm CalcOf;
    bool NLZ = false;
    bool Format = false;
    bool FormatClosed = false;
    FormatForm FormatOf;
    bool SetCalc = false;
    bool Conv = false;
    LineTag ConvTag;
    bool Set = false;
    LineTag SetTag;
    std::vector<SetAssignment> SetList;
    bool Text = false;
    LineTag TextTag;
};

// Reads a word line into its form.
WordLineForm ParseWordLine(const std::string& line);
// The form of a line of a held word file, read at its first use.
const WordLineForm& WordLineFormOf(DefinitionText& text, int32_t line);
// Reads a format into its form.
FormatForm ParseFormat(const std::string& format);
// Reads a SET list into its assignments.
std::vector<SetAssignment> ParseSetList(const std::string& list);

// The table tag of a word line's form: `value` (the engine's PostValue), its cell in `index`
// and its verdict in `active`.
void ReadTagValue(RunState& state, const WordLineForm& form, PostValueType& index, PostValueType& value, bool& active);
// Applies a format's form to PostValue and sets the format flags.
void ApplyFormat(RunState& state, const FormatForm& format);
// Carries out the assignments of a SET list.
void ExecuteSetList(RunState& state, const std::vector<SetAssignment>& list);
// The address text of a printing line ([CONV=), or the text of a text cell it reads.
void ReadConvText(RunState& state, const WordLineForm& form, std::string& field);
// Carries out the line's [SET= list, if it has one.
void RunSetTag(RunState& state, const WordLineForm& form);
// The text of the line's [TEXT= tag, for a word asked for with ".text".
void ReadTextField(RunState& state, const WordLineForm& form, std::string& text);
// The text of a read tag; an open tag is its fault.
const std::string& TagInner(const LineTag& tag);

// "n=x": true when x as a single equals PostParam cell n exactly.
bool TestParamEquals(RunState& state, const std::string& equation);
// "MaMb...": true when any of the listed PostMachine cells differs from its memo by half a
// thousandth or more.
void AnyMachineChanged(RunState& state, const std::string& list, bool& result);
// Applies a format to PostValue and sets the format flags; the format is left in upper case
// with its flags taken out.
void ApplyFormat(RunState& state, std::string& format);
void ExecuteSetList(RunState& state, const std::string& list);

}  // namespace tvx
