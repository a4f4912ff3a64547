#pragma once
// The finishing stage of a job: the generated text is passed once more through the engine.

namespace tvx {

struct RunState;

// The format pass: the generated program becomes the definition ("Progmain.tmp"), and the
// block PROGRAM_FORMAT that it holds is written anew to "Progmain.prg" in RenumberMode, so
// that block numbers and the other deferred tags are resolved.
void FormatPass(RunState& state);

}  // namespace tvx
