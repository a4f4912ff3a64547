#pragma once
// The finishing stage of a job: the generated text is passed once more through the engine.

namespace tvx {

struct RunState;

// The format pass: the generated program becomes the definition ("Progmain.tmp"), and the
// block PROGRAM_FORMAT that it holds is written anew to "Progmain.prg" in RenumberMode, so
// that block numbers and the other deferred tags are resolved.
void FormatPass(RunState& state);

}  // namespace tvx

namespace tvx {

// The closing blocks and marks directly after the loop.
void CloseProgram(RunState& state);
// The machine family's last passes: 1 (subroutines of G83 cycles), 9 (end mark), 10 (G09).
void FamilyPasses(RunState& state);
// Copies the program and the report to the job's names, each written whole or not at all.
void MakeJobCopies(RunState& state);

}  // namespace tvx
