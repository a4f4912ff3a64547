#include "definition/definition_files.h"

#include "common/fault.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "state/run_state.h"

namespace tvx {

void SetDefinitionFiles(RunState& state) {
    JobState& job = state.Job;
    EngineState& e = state.Engine;
    job.DrawingFile = job.WorkDir + "Progmain.drw";
    job.ProgramFile = job.WorkDir + "Progmain.prg";
    job.ReportFile = job.WorkDir + "Progmain.rpt";
    job.PlatinoFile = job.WorkDir + "ProgPlatino.prg";
    job.WordFile = state.Machine.MachineStem + "wrd";
    job.PostFile = state.Machine.MachineStem + "pst";
    job.LayoutFile = state.Machine.MachineStem + "lyt";
    OpenDefinitionInput(state, ChannelWord, job.WordFile);
    job.SubFile1 = job.WorkDir + "Program.sb1";
    job.SubFile2 = job.WorkDir + "Program.sb2";
    job.SubFile3 = job.WorkDir + "Program.sb3";
    e.PostLevel = 0;
    e.PostChannel = ChannelDefinition;
    for (const std::string* copy : {&job.SubFile1, &job.SubFile2, &job.SubFile3}) {
        ForgetDefinition(e.Cache, *copy);
        CopyFileTo(job.PostFile, *copy);
    }
    // The copies hold the same bytes as the definition: they share its held text (or, for a
    // definition too large to hold, are streams like it).
    if (!ReadAsStream(e.Cache, job.PostFile)) {
        const auto text = CachedDefinition(e.Cache, job.PostFile);
        for (const std::string* copy : {&job.SubFile1, &job.SubFile2, &job.SubFile3})
            HoldDefinitionText(e.Cache, *copy, text);
    }
    job.SeqFile = job.WorkDir + "Program.seq";
}

TextInput& InputChannel(RunState& state, int channel) {
    EngineState& e = state.Engine;
    switch (channel) {
        case ChannelDefinition: return e.DefinitionInput;
        case ChannelWord: return e.WordInput;
        case ChannelLayout: return e.LayoutInput;
        case ChannelSequence: return e.SequenceInput;
        case ChannelLevel1: return e.LevelInput1;
        case ChannelLevel2: return e.LevelInput2;
        case ChannelLevel3: return e.LevelInput3;
        case ChannelSubroutines: return e.SubroutineInput;
        default: break;
    }
    RunFault("Bad file number: " + WholeNumberText(channel));
}

void OpenDefinitionInput(RunState& state, int channel, const std::string& path) {
    EngineState& e = state.Engine;
    TextInput& in = InputChannel(state, channel);
    if (in.Open || (channel == ChannelSubroutines && IsOpen(e.SubroutineFile))) FileFault("File already open", path);
    auto text = HeldDefinitionOf(e.Cache, path);
    if (!text) {
        OpenTextStream(in, path);
        e.HeldTexts[static_cast<size_t>(channel)].reset();
        return;
    }
    OpenTextInputFromData(in, path, text->Data);
    e.HeldTexts[static_cast<size_t>(channel)] = std::move(text);
}

void CloseInputChannel(RunState& state, int channel) {
    CloseText(InputChannel(state, channel));
    state.Engine.HeldTexts[static_cast<size_t>(channel)].reset();
}

DefinitionText& HeldTextOf(RunState& state, int channel) {
    TextInput& in = InputChannel(state, channel);
    auto& held = state.Engine.HeldTexts[static_cast<size_t>(channel)];
    // The quick case: the engine opened the channel on the text it holds.
    if (held && in.Open && held->Data == in.Data && in.Data) return *held;
    if (!in.Open) FileFault("File not open", in.Path);
    if (IsStreamed(in)) RunFault("No held text on a streamed channel: " + in.Path);
    // A channel opened outside the engine has no held text yet: split what it reads.
    if (!held || held->Data != in.Data) held = MakeDefinitionText(in.Path, in.Data);
    return *held;
}

void PassFirstLineHolding(RunState& state, int channel, const std::string& word, bool callable, std::string& line) {
    TextInput& in = InputChannel(state, channel);
    if (!in.Open) FileFault("File not open", in.Path);
    const auto isCall = [callable](std::string_view text) { return callable && text.find("CALL") != std::string_view::npos; };
    if (IsStreamed(in)) {
        // Read from the top, as the engine always searched, until a line holds the word.
        in.Pos = 0;
        while (!AtEnd(in)) {
            ReadLine(in, line);
            if (line.find(word) != std::string::npos && !isCall(line)) return;
        }
        line.clear();
        return;
    }
    DefinitionText& text = HeldTextOf(state, channel);
    const int32_t found = callable ? FirstCallableLine(text, word) : FirstLineHolding(text, word);
    if (found < 0) {
        in.Pos = text.Data->size();
        line.clear();
    } else {
        in.Pos = text.After(found);
        line.assign(text.Line(found));
    }
}

void OpenEngineOutput(RunState& state, TextOutput& output, const std::string& path, bool append) {
    EngineState& e = state.Engine;
    if (&output == &e.SubroutineFile && e.SubroutineInput.Open) FileFault("File already open", path);
    ForgetDefinition(e.Cache, path);
    OpenTextOutput(output, path, append);
}

void CloseEngineOutput(RunState& state, TextOutput& output) {
    if (!IsOpen(output)) return;
    CloseText(output);
    ForgetDefinition(state.Engine.Cache, output.Path);
}

std::string SubroutineFilePath(const RunState& state) { return state.Job.CurrentDir + "progsubs.sub"; }
std::string SubroutineLevelPath(const RunState& state) { return state.Job.CurrentDir + "Progsubs.sub"; }

void OpenSubroutineFile(RunState& state) {
    OpenEngineOutput(state, state.Engine.SubroutineFile, SubroutineFilePath(state));
    WriteLine(state.Engine.SubroutineFile, "SUBROUTINES=TRUE");
}

void ForgetDefinitionFile(RunState& state, const std::string& path) { ForgetDefinition(state.Engine.Cache, path); }

void CloseAllFiles(RunState& state) {
    EngineState& e = state.Engine;
    for (int channel : {ChannelDefinition, ChannelWord, ChannelLayout, ChannelSequence, ChannelLevel1, ChannelLevel2,
                        ChannelLevel3, ChannelSubroutines})
        CloseInputChannel(state, channel);
    for (TextOutput* out : {&e.ProgramOutput, &e.ReportOutput, &e.SubroutineFile, &e.PlatinoOutput})
        CloseEngineOutput(state, *out);
}

}  // namespace tvx
