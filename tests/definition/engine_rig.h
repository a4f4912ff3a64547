#pragma once
// A definition on disk and a fresh run state around it, for the engine's tests: the files
// are written with CR LF ends into a temporary directory that is also the work directory.
#include <string>
#include <vector>

#include "state/run_state.h"
#include "test_support.h"

namespace tvx {

// Lines joined with CR LF ends.
std::string CrLf(const std::vector<std::string>& lines);
// A text split at its CR LF ends (a last line without an end counts as a line).
std::vector<std::string> SplitCrLf(const std::string& text);

struct EngineRig {
    TempDir Dir;
    RunState State;

    // Writes def.pst and def.wrd (and def.lyt, Program.seq when given), forms the job's
    // files, opens the word file, the level copies and the outputs: program, report,
    // subroutine file ("SUBROUTINES=TRUE" first) and second program file.
    EngineRig(const std::vector<std::string>& pst, const std::vector<std::string>& wrd,
              const std::vector<std::string>& lyt = {}, const std::vector<std::string>& seq = {});

    std::string Path(const std::string& name) const { return Dir.Path + "/" + name; }

    // Find; write the block if true; close the definition's channel. Returns the truth.
    bool Write(const std::string& word);
    // Closes every channel, so that the outputs can be read.
    void CloseAll();
    // The lines of an output file, after CloseAll.
    std::vector<std::string> Program();
    std::vector<std::string> Report();
    std::vector<std::string> Subroutines();
    std::vector<std::string> Platino();
    // The message of an abort or fault that `body` ends with; "" when it ends cleanly.
    template <typename F>
    static std::string EndText(F&& body);
};

template <typename F>
std::string EngineRig::EndText(F&& body) {
    try {
        body();
    } catch (const RunEnd& end) {
        return end.Text;
    }
    return {};
}

// The text of a message box of the definition as a RunEnd carries it.
std::string AbortText(const std::string& message);

}  // namespace tvx
