#pragma once
// `torvanex try STEM ITEM...`: writes reserved words of a definition with chosen table
// values, as a job would, and shows the program text that comes out.
#include <ostream>
#include <string>
#include <vector>

namespace tvx {

struct RunState;

struct TryOptions {
    std::string Stem;                 // STEM.pst, STEM.wrd, STEM.lyt
    std::vector<std::string> Items;   // cells, flags and reserved words, left to right
    std::string SequenceFile;         // the job sequence for layouts; none when empty
    bool FormatPass = true;           // false: stop before the format pass (--raw)
};

struct TryResult {
    std::string Program;      // "Progmain.prg" after the format pass
    std::string RawProgram;   // the generated text, less its first and last line
    std::string Report;       // "Progmain.rpt"
    std::string Subroutines;  // "progsubs.sub" as written by the generation
    std::string Platino;      // "ProgPlatino.prg"
};

// Applies a cell or flag item ("PostParam[1]=5", "SubroutineOutput=1", ...) to the state;
// false when the item is none of these, that is a reserved word.
bool ApplyTryItem(RunState& state, const std::string& item);

// Runs the items in a temporary working directory, removed at the end. An abort or a fault
// of the run comes out as a RunEnd.
void RunTry(const TryOptions& options, TryResult& result);

// The subcommand: the program text on `out`; report, second program file and subroutine
// text on `err`; the exit status of a job.
int TryCommand(const TryOptions& options, std::ostream& out, std::ostream& err);

// The help text of the subcommand.
extern const char* const TryHelp;

}  // namespace tvx
