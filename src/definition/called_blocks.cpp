#include "definition/called_blocks.h"

#include "common/fault.h"
#include "common/numtext.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

namespace tvx {

void SelectDefinitionLevel(RunState& state, const std::string& bodyLine) {
    EngineState& e = state.Engine;
    switch (e.PostLevel) {
        case 0: e.PostChannel = ChannelDefinition; break;
        case 1: e.PostChannel = ChannelLevel1; e.PostLevelFile = state.Job.SubFile1; break;
        case 2: e.PostChannel = ChannelLevel2; e.PostLevelFile = state.Job.SubFile2; break;
        case 3: e.PostChannel = ChannelLevel3; e.PostLevelFile = state.Job.SubFile3; break;
        case 4:
            // Left level 5 (or called from level 3): back on the definition's own channel.
            e.PostChannel = ChannelDefinition;
            e.PostLevel = 0;
            break;
        case 5: e.PostChannel = ChannelSubroutines; e.PostLevelFile = SubroutineLevelPath(state); break;
        default: PostAbort(state, bodyLine + " - Too many levels of nesting in File : Post.sub");
    }
}

void StepBackLevel(RunState& state) {
    EngineState& e = state.Engine;
    if (e.PostLevel == 4) e.PostLevel = 1;
    e.PostLevel = static_cast<int16_t>(e.PostLevel - 1);
}

bool FindCalledWord(RunState& state, const std::string& name) {
    EngineState& e = state.Engine;
    OpenDefinitionInput(state, e.PostChannel, e.PostLevelFile);
    std::string line;
    PassFirstLineHolding(state, e.PostChannel, name, true, line);
    if (AtEnd(InputChannel(state, e.PostChannel))) PostAbort(state, "Reserved Word - " + name + " not found in file ");
    return LineTruth(state, line);
}

namespace {

// The held text of a channel and the line that starts at its read position, for a read that
// takes the line as the text was split; null when the channel is read as a stream, holds
// text the engine did not split, or is not at the start of a line.
DefinitionText* HeldLineAt(RunState& state, int channel, int32_t& index) {
    TextInput& in = InputChannel(state, channel);
    if (!in.Open || IsStreamed(in)) return nullptr;
    const auto& held = state.Engine.HeldTexts[static_cast<size_t>(channel)];
    if (!held || held->Data != in.Data || in.Pos >= held->Data->size()) return nullptr;
    index = held->LineFrom(in.Pos);
    if (index >= held->LineCount() || held->LineStart[static_cast<size_t>(index)] != in.Pos) return nullptr;
    return held.get();
}

}  // namespace

void ReadDefinitionLine(RunState& state, std::string& line) {
    EngineState& e = state.Engine;
    SelectDefinitionLevel(state, line);
    for (;;) {
        e.PostDefText = nullptr;
        e.PostDefIndex = -1;
        int32_t index = -1;
        if (DefinitionText* text = HeldLineAt(state, e.PostChannel, index)) {
            // A held line is taken whole, with what it holds known from its first read.
            const uint8_t marks = BodyMarksOf(*text, index);
            line.assign(text->Line(index));
            InputChannel(state, e.PostChannel).Pos = text->After(index);
            if (marks & MarkEndOfFile) line = std::string(1, '\x1A');
            else if (!(marks & MarkCall)) {
                e.PostDefText = text;
                e.PostDefIndex = index;
                return;
            }
        } else {
            ReadLine(InputChannel(state, e.PostChannel), line);
            // The end-of-file mark of paper-tape programs.
            if (line.find('\xE2') != std::string::npos) line = std::string(1, '\x1A');
        }
        const size_t call = line.find("[CALL ");
        if (call == std::string::npos) return;
        if (Holds(line, "[CALL SUBROUTINES")) e.PostLevel = 5;
        else e.PostLevel = static_cast<int16_t>(e.PostLevel + 1);
        SelectDefinitionLevel(state, line);
        const size_t close = line.find(']', call);
        if (close == std::string::npos) RunFault("Invalid procedure call: no ] behind \"[CALL \" in the line: " + line);
        const std::string name = line.substr(call + 6, close - call - 6);
        if (FindCalledWord(state, name)) continue;
        // A false block costs nothing: back to the caller's next line.
        CloseInputChannel(state, e.PostChannel);
        StepBackLevel(state);
        SelectDefinitionLevel(state, line);
    }
}

}  // namespace tvx
