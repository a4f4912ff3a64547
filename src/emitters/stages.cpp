#include "emitters/stages.h"

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "emitters/emit_common.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// The family value under which the settings stages write their subroutines.
constexpr float SubroutineFamily = 100;

bool InSubroutineFamily(const RunState& state) { return state.Tables.PostParam[9] == SubroutineFamily; }

// The file of a stage: the material stages by their letter, the cutting stages by "P", every
// other letter a punch stage.
std::string StageFileName(const std::string& letter, int32_t stage) {
    if (letter == "Z") return "MtrlStg.0";
    if (letter == "Y") return "MtrlStg.1";
    if (letter == "X") return "MtrlStg.2";
    if (letter == "W") return "MtrlStg.3";
    const std::string digits = Trim(PlainText(stage));
    if (letter == "P") return "PrflStg." + digits;
    return "PnchStg." + digits;
}

// The M cell whose changes a material stage writes as a subroutine marker; -1 for none.
int SubroutineCell(const std::string& letter) {
    if (letter == "Z") return 159;
    if (letter == "Y") return 197;
    if (letter == "X") return 198;
    if (letter == "W") return 199;
    return -1;
}

std::string SetWord(const std::string& letter) {
    if (letter == "Z") return "CANNED_PIERCESUB_SET";
    if (letter == "Y") return "CANNED_LEADSUB_SET";
    if (letter == "X") return "CANNED_PATHSUB_SET";
    return "CANNED_SPECIAL_SET";
}

std::string InitWord(const std::string& letter) {
    if (letter == "Z") return "CANNED_PIERCESUB_INIT";
    if (letter == "Y") return "CANNED_LEADSUB_INIT";
    if (letter == "X") return "CANNED_PATHSUB_INIT";
    if (letter == "W") return "CANNED_SPECIAL_INIT";
    return "CANNED_CUTSUB_INIT";
}

// One line of a stage file: a letter, an index, a comma and the value.
struct StageLine {
    char Letter = 0;
    int32_t Index = 0;
    std::string Value;
};

// Splits a stage line. A line without a comma ends the run at once, without a word.
StageLine SplitStageLine(const std::string& line) {
    const auto comma = line.find(',');
    if (comma == std::string::npos) SilentEnd();
    StageLine out;
    out.Letter = line.empty() ? '\0' : line[0];
    out.Index = ToInteger32(LeadingNumber(std::string_view(line).substr(1, comma - 1)), "stage index");
    out.Value = line.substr(comma + 1);
    return out;
}

// The plain assignment of a stage line to its table; other letters are passed over.
void AssignStageLine(ValueTables& t, const StageLine& line) {
    switch (line.Letter) {
        case 'V': t.PostVar[line.Index] = ToSingle(LeadingNumber(line.Value)); break;
        case 'S': t.PostText[line.Index] = line.Value; break;
        case 'P': t.PostParam[line.Index] = ToSingle(LeadingNumber(line.Value)); break;
        case 'M': t.PostMachine[line.Index] = ToSingle(LeadingNumber(line.Value)); break;
        default: break;
    }
}

// Reads the lines of an open stage file up to its end mark "******". With `letter` set (the
// subroutine family), an M line of the letter's own cell writes the letter's SET block when
// its value is new, and a value of 0 there ends the reading.
void ReadStageLines(RunState& state, TextInput& in, const std::string* letter) {
    ValueTables& t = state.Tables;
    const int cell = letter != nullptr ? SubroutineCell(*letter) : -1;
    // The letters' markers, local to one reading. Only the pierce marker is compared, for every
    // letter: for the other letters it stays empty, so that each value but 0 writes its block.
    float pierceMarker = 0;
    float ownMarker = 0;
    if (cell >= 0) {
        if (*letter == "Z") pierceMarker = 1;
        else ownMarker = 1;
    }
    std::string text;
    for (;;) {
        ReadLine(in, text);
        if (text == "******") break;
        const StageLine line = SplitStageLine(text);
        if (cell >= 0 && line.Letter == 'M' && line.Index == cell) {
            const float value = ToSingle(LeadingNumber(line.Value));
            if (value == 0) break;
            if (value != pierceMarker) {
                if (*letter == "Z") pierceMarker = value;
                else ownMarker = value;
                WriteBlock(state, SetWord(*letter));
            }
        }
        AssignStageLine(t, line);
    }
    (void)ownMarker;
}

}  // namespace

void LoadMaterialStage(RunState& state, const std::string& name) {
    const std::string path = state.Job.WorkDir + "MtrlStg." + name;
    if (!FileExists(path)) return;
    TextInput in;
    OpenTextInput(in, path);
    ReadStageLines(state, in, nullptr);
    CloseText(in);
}

void ApplySettingsStage(RunState& state, int32_t& stage, const std::string& letter) {
    ValueTables& t = state.Tables;
    StageState& s = state.Loop.Stages;
    // A punch letter is no change of letter.
    s.StageLetter = letter;
    if (s.StageLetter != "Z" && s.StageLetter != "P") s.StageLetter = s.PreviousStageLetter;
    // A cutting stage of 0 asks for the stage in force.
    if (s.StageLetter == "P" && stage <= 0) {
        s.StageLetter = s.PreviousStageLetter;
        stage = s.CurrentStage;
    }
    if (t.PostParam[8] == -999) s.CurrentStage = -1;
    if (s.CurrentStage == stage && s.PreviousStageLetter == s.StageLetter) {
        t.PostParam[6] = 0;
        return;
    }
    t.PostParam[8] = ToSingle(stage);

    const bool material = letter == "Z" || letter == "Y" || letter == "X" || letter == "W";
    const bool punch = !material && letter != "P";
    // A punch stage without its file leaves the settings in force. A job without punch stage
    // files asks for one with every record: the answer for the stage last found missing is kept
    // for as long as no file has been made or deleted.
    if (punch && s.MissingAt != 0 && s.MissingAt == LookupGeneration() && s.MissingStage == stage &&
        s.MissingIn == state.Job.WorkDir)
        return;
    const std::string path = state.Job.WorkDir + StageFileName(letter, stage);
    if (punch && !FileExists(path)) {
        s.MissingStage = stage;
        s.MissingIn = state.Job.WorkDir;
        s.MissingAt = LookupGeneration();
        return;
    }
    TextInput in;
    OpenTextInput(in, path);

    const bool subroutines = InSubroutineFamily(state);
    if (subroutines) WriteBlock(state, InitWord(letter));
    ReadStageLines(state, in, subroutines ? &letter : nullptr);
    if (subroutines) {
        if (letter == "Z" && t.PostMachine[159] > 0) WriteBlock(state, "CANNED_PIERCESUB_SET");
        if (letter == "P") WriteBlock(state, "CANNED_CUTSUB_SET");
    }
    CloseText(in);

    t.PostParam[6] = 1;
    s.CurrentStage = stage;
    s.PreviousStageLetter = s.StageLetter;
    // The subroutine file takes every stage of the preload, also one met before.
    if (subroutines) s.CurrentStage = -1;
}

}  // namespace tvx
