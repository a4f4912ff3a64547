#include "definition/engine_rig.h"

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"

namespace tvx {

std::string CrLf(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\r\n";
    return text;
}

std::vector<std::string> SplitCrLf(const std::string& text) {
    std::vector<std::string> lines;
    size_t pos = 0;
    while (pos < text.size()) {
        const size_t end = text.find("\r\n", pos);
        if (end == std::string::npos) {
            lines.push_back(text.substr(pos));
            break;
        }
        lines.push_back(text.substr(pos, end - pos));
        pos = end + 2;
    }
    return lines;
}

EngineRig::EngineRig(const std::vector<std::string>& pst, const std::vector<std::string>& wrd,
                     const std::vector<std::string>& lyt, const std::vector<std::string>& seq) {
    WriteFileAtomically(Path("def.pst"), CrLf(pst));
    WriteFileAtomically(Path("def.wrd"), CrLf(wrd));
    if (!lyt.empty()) WriteFileAtomically(Path("def.lyt"), CrLf(lyt));
    if (!seq.empty()) WriteFileAtomically(Path("Program.seq"), CrLf(seq));
    State.Job.WorkDir = Dir.Path + "/";
    State.Job.CurrentDir = Dir.Path + "/";
    State.Machine.MachineStem = Dir.Path + "/def.";
    State.Job.ToolTimes.assign(65, {});
    SetDefinitionFiles(State);
    EngineState& e = State.Engine;
    OpenEngineOutput(State, e.ProgramOutput, State.Job.ProgramFile);
    OpenEngineOutput(State, e.ReportOutput, State.Job.ReportFile);
    OpenEngineOutput(State, e.PlatinoOutput, State.Job.PlatinoFile);
    OpenSubroutineFile(State);
}

bool EngineRig::Write(const std::string& word) {
    const bool truth = FindReservedWord(State, word);
    if (truth) WriteReservedBlock(State);
    CloseInputChannel(State, ChannelDefinition);
    return truth;
}

void EngineRig::CloseAll() { CloseAllFiles(State); }

std::vector<std::string> EngineRig::Program() { return SplitCrLf(ReadAllBytes(State.Job.ProgramFile)); }
std::vector<std::string> EngineRig::Report() { return SplitCrLf(ReadAllBytes(State.Job.ReportFile)); }
std::vector<std::string> EngineRig::Subroutines() { return SplitCrLf(ReadAllBytes(Path("progsubs.sub"))); }
std::vector<std::string> EngineRig::Platino() { return SplitCrLf(ReadAllBytes(State.Job.PlatinoFile)); }

std::string AbortText(const std::string& message) {
    return MessageBoxText(MessageTitle, message + "\n\nProgram Aborted");
}

}  // namespace tvx
