#include "definition/layouts.h"

#include <algorithm>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

namespace tvx {

double NextLayoutField(std::string& line, std::string& field) {
    line = Trim(line);
    if (line.empty()) return 0;
    const size_t comma = line.find(',');
    if (comma != std::string::npos) {
        field = line.substr(0, comma);
        line = line.substr(comma + 1);
    } else {
        field = line;
    }
    return LeadingNumber(field);
}

bool FindLayoutWord(RunState& state, const std::string& word) {
    OpenDefinitionInput(state, ChannelLayout, state.Job.LayoutFile);
    std::string line;
    PassFirstLineHolding(state, ChannelLayout, word, false, line);
    if (AtEnd(state.Engine.LayoutInput))
        PostAbort(state, "Reserved Word - " + word + " not found in file " + state.Job.LayoutFile);
    return LineTruth(state, line);
}

void NextLayoutLine(RunState& state, int16_t& mode) {
    EngineState& e = state.Engine;
    ValueTables& t = state.Tables;
    std::string line = ReadLine(e.SequenceInput);
    if (Trim(line) == "******") {
        mode = 0;
        e.PostDefLine = "-9999";
        CloseInputChannel(state, ChannelLayout);
        CloseInputChannel(state, ChannelSequence);
        return;
    }
    const std::string copy = line;
    std::string field;
    NextLayoutField(line, field);
    NextLayoutField(line, field);
    t.PostText[27] = field;
    t.PostParam[60] = ToSingle(NextLayoutField(line, field));
    t.PostParam[61] = ToSingle(NextLayoutField(line, field));
    t.PostParam[62] = ToSingle(NextLayoutField(line, field));
    t.PostParam[63] = ToSingle(NextLayoutField(line, field));
    t.PostParam[64] = ToSingle(NextLayoutField(line, field));
    t.PostParam[66] = ToSingle(NextLayoutField(line, field));
    t.PostParam[69] = ToSingle(NextLayoutField(line, field));
    const int32_t tool = ToInteger32(LeadingNumber(field), "TurretTools index");
    const auto& tools = state.Machine.TurretTools;
    if (tool < 0 || static_cast<size_t>(tool) >= tools.size()) IndexFault("TurretTools", tool);
    t.PostText[25] = tools[static_cast<size_t>(tool)].ToolText2;
    t.PostText[26] = tools[static_cast<size_t>(tool)].ToolText1;
    line = copy;

    static const char* const words[] = {"TURRET_LAYOUT", "TOOL_LAYOUT", "REPORT_LAYOUT", "TIME_LAYOUT"};
    if (mode < 1 || mode > 4) RunFault("Layout mode out of range: " + WholeNumberText(mode));
    const std::string word = words[mode - 1];
    if (mode == 4) {
        const int32_t row = ToInteger32(static_cast<double>(t.PostParam[69]), "ToolTimes row");
        const auto& times = state.Job.ToolTimes;
        if (row < 0 || static_cast<size_t>(row) >= times.size()) IndexFault("ToolTimes", row);
        for (int i = 1; i <= 4; ++i) t.PostParam[203 + i] = times[static_cast<size_t>(row)][static_cast<size_t>(i)];
    }

    const std::string key = line.substr(0, 2);
    if (!FindLayoutWord(state, word))
        RunFault("Layout section " + word + " of file " + state.Job.LayoutFile +
                 " is false for the job sequence line: " + copy);
    for (;;) {
        if (AtEnd(e.LayoutInput))
            RunFault("Layout line of the key \"" + key + "\" not found behind " + word + " in file " +
                     state.Job.LayoutFile);
        const std::string layoutLine = ReadLine(e.LayoutInput);
        if (layoutLine.substr(0, 2) == key) {
            e.PostDefLine = layoutLine.substr(std::min<size_t>(2, layoutLine.size()));
            break;
        }
    }
    CloseInputChannel(state, ChannelLayout);
}

}  // namespace tvx
