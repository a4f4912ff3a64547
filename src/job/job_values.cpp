#include "job/job_values.h"

#include <ctime>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/textfile.h"
#include "config/config.h"
#include "definition/post_abort.h"
#include "state/run_state.h"

namespace tvx {

void ReadDrawingHeader(RunState& state, const DrawRecord& header) {
    JobState& job = state.Job;
    job.RecordTotal = header.RecordCount;
    job.MaterialName = header.EntityText.Trimmed();
    job.SheetX = header.Value[1];
    job.SheetY = header.Value[2];
    job.SheetZ = header.Value[3];
    for (int i = 1; i <= 4; ++i) job.SheetValues[static_cast<size_t>(i)] = header.Value[6 + i];
    job.SheetExtra = header.Value[16];
    job.MaterialText = MaterialValueText(ReadMaterialField(state, job.MaterialName, 11));
}

void ClockTexts(const RunState& state, std::string& date, std::string& time) {
    if (!state.Job.FixedClock.empty()) {
        const std::string& c = state.Job.FixedClock;
        date = c.substr(0, 10);
        time = c.size() > 11 ? c.substr(11, 5) : std::string();
        return;
    }
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    date = PadLong(local.tm_mday, 2) + "-" + PadLong(local.tm_mon + 1, 2) + "-" + PadLong(local.tm_year + 1900, 4);
    // The time is read a second time, as the date and the time are two readings of the clock.
    const std::time_t later = std::time(nullptr);
    std::tm localLater{};
    localtime_r(&later, &localLater);
    time = PadLong(localLater.tm_hour, 2) + ":" + PadLong(localLater.tm_min, 2);
}

namespace {

// A sheet value as text: in inches with two places on an imperial machine.
std::string SheetText(const RunState& state, float value) {
    if (state.Machine.ImperialUnits) return Trim(PlainText(RoundTo(value / 25.4, 2)));
    return Trim(PlainText(value));
}

void ReadTimingFile(RunState& state) {
    TextInput tme;
    OpenTextInput(tme, state.Machine.MachineStem + "tme");
    ValueTables& t = state.Tables;
    for (;;) {
        const std::string line = ReadLine(tme);
        if (line == "******") break;
        const auto comma = line.find(',');
        const auto colon = line.find(':');
        if (comma == std::string::npos || colon == std::string::npos)
            MessageEnd(MessageTitle, "'ILLEGAL FORMAT IN TIMING FILE'\n\nProgram Aborted");
        const std::string letter = line.substr(0, 1);
        const std::string indexText = comma >= 1 ? line.substr(1, comma - 1) : std::string();
        const int32_t index = ToInteger32(LeadingNumber(indexText), "timing file index");
        const float value = ToSingle(LeadingNumber(line.substr(colon + 1)));
        if (letter == "P") t.PostParam[index] = value;
        else if (letter == "M") t.PostMachine[index] = value;
        else if (letter == "V") t.PostVar[index] = value;
    }
}

void ReadUserFile(RunState& state) {
    TextInput usr;
    OpenTextInput(usr, state.Job.WorkDir + "program.usr");
    for (int i = 1;; ++i) {
        const std::string line = ReadLine(usr);
        if (Holds(line, "******")) break;
        const auto comma = line.find(',');
        state.Tables.PostUserText[i] = comma == std::string::npos ? line : line.substr(comma + 1);
    }
}

}  // namespace

void InitJobValues(RunState& state) {
    JobState& job = state.Job;
    ValueTables& t = state.Tables;
    job.ToolTimes.assign(static_cast<size_t>(state.Machine.StationCount < 0 ? 0 : state.Machine.StationCount) + 1,
                         std::array<float, 5>{});
    t.PostMachine[100] = 100;
    t.PostMachine[101] = 100;
    t.PostMemo[100] = 100;
    t.PostMemo[101] = 100;

    t.PostText[1] = Trim(job.JobTitle);
    t.PostText[2] = Trim(job.JobName);
    t.PostText[22] = Trim(state.Machine.MachineMaker);
    t.PostText[24] = Trim(MaterialValueText(ReadMaterialField(state, job.MaterialName, 1)));
    t.PostText[5] = Trim(job.MaterialName);
    t.PostText[23] = Trim(job.MaterialText);

    TextInput seq;
    OpenTextInput(seq, job.SeqFile);
    t.PostText[13] = AtEnd(seq) ? std::string() : Trim(ReadItem(seq));
    CloseText(seq);
    std::string date, time;
    ClockTexts(state, date, time);
    t.PostText[14] = date;
    t.PostText[15] = time;

    ReadTimingFile(state);
    ReadUserFile(state);

    t.PostText[3] = SheetText(state, job.SheetX);
    t.PostText[4] = SheetText(state, job.SheetY);
    t.PostText[18] = SheetText(state, job.SheetZ);
    for (int i = 1; i <= 4; ++i) t.PostText[5 + i] = SheetText(state, job.SheetValues[static_cast<size_t>(i)]);

    for (int cell : {3, 4, 18, 6, 7, 8, 9})
        t.PostUserText[100 + cell] = Trim(PlainText(LeadingNumber(t.PostText[cell])));
}

}  // namespace tvx
