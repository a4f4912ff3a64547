#include "definition/reserved_word.h"

#include "common/numtext.h"
#include "definition/condition.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "state/run_state.h"

namespace tvx {

namespace {

// The truth of a reserved-word line's form: its condition evaluated now, or its fixed truth.
bool TruthOf(RunState& state, const TruthForm& form) {
    return form.Conditional ? EvaluateCondition(state, form.Condition) : form.True;
}

}  // namespace

bool LineTruth(RunState& state, const std::string& line) {
    auto& truths = state.Engine.Truths;
    TruthForm fresh;
    const TruthForm* form = nullptr;
    if (const auto known = truths.find(line); known != truths.end()) {
        form = &known->second;
    } else if (truths.size() < EngineState::TruthsKept) {
        form = &truths.emplace(line, ParseTruth(line)).first->second;
    } else {
        fresh = ParseTruth(line);
        form = &fresh;
    }
    return TruthOf(state, *form);
}

bool FindReservedWord(RunState& state, const std::string& word) {
    CloseInputChannel(state, ChannelDefinition);
    OpenDefinitionInput(state, ChannelDefinition, state.Job.PostFile);
    TextInput& in = state.Engine.DefinitionInput;
    if (!IsStreamed(in)) {
        // A held definition keeps the truth of each reserved-word line with the line.
        DefinitionText& text = HeldTextOf(state, ChannelDefinition);
        const int32_t found = FirstLineHolding(text, word);
        in.Pos = found < 0 ? text.Data->size() : text.After(found);
        if (AtEnd(in)) PostAbort(state, "Reserved Word - " + word + " not found in file " + state.Job.PostFile);
        if (text.Truths.empty()) text.Truths.resize(static_cast<size_t>(text.LineCount()));
        auto& truth = text.Truths[static_cast<size_t>(found)];
        if (!truth) truth = std::make_shared<const TruthForm>(ParseTruth(std::string(text.Line(found))));
        const std::shared_ptr<const TruthForm> kept = truth;
        return TruthOf(state, *kept);
    }
    std::string line;
    PassFirstLineHolding(state, ChannelDefinition, word, false, line);
    // The test is on the end of the file, not on the match: a match in the last line is
    // taken as not found, so that a reserved word without a body is never a block.
    if (AtEnd(state.Engine.DefinitionInput))
        PostAbort(state, "Reserved Word - " + word + " not found in file " + state.Job.PostFile);
    return LineTruth(state, line);
}

}  // namespace tvx
