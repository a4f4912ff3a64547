#include "job/finishing.h"

#include "common/paths.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"

namespace tvx {

void FormatPass(RunState& state) {
    JobState& job = state.Job;
    EngineState& e = state.Engine;
    CloseInputChannel(state, ChannelWord);
    OpenDefinitionInput(state, ChannelWord, job.WordFile);
    const std::string temporary = job.WorkDir + "Progmain.tmp";
    CloseEngineOutput(state, e.ProgramOutput);
    ForgetDefinitionFile(state, temporary);
    CopyFileTo(job.ProgramFile, temporary);
    OpenEngineOutput(state, e.ProgramOutput, job.ProgramFile);
    job.PostFile = temporary;
    if (!FindReservedWord(state, "PROGRAM_FORMAT")) PostAbort(state, "'PROGRAM_FORMAT' not found in Post-Processor");
    e.RenumberMode = true;
    WriteReservedBlock(state);
    CloseAllFiles(state);
}

}  // namespace tvx

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/textfile.h"
#include "emitters/emit_common.h"

namespace tvx {

void CloseProgram(RunState& state) {
    ValueTables& t = state.Tables;
    EngineState& e = state.Engine;
    double distance = 0;
    double angle = 0;
    XYToPolar(static_cast<double>(t.PostParam[55]) - t.PostMemo[15], static_cast<double>(t.PostParam[56]) - t.PostMemo[16],
              distance, angle);
    t.PostParam[173] = ToSingle(distance);
    t.PostParam[174] = 0;
    WriteBlock(state, "PROGRAM_END");
    {
        const int32_t station = ToInteger32(t.PostMachine[0], "station");
        auto& times = state.Job.ToolTimes;
        if (station < 0 || static_cast<size_t>(station) >= times.size()) IndexFault("ToolTimes", station);
        for (int i = 1; i <= 4; ++i)
            times[static_cast<size_t>(station)][static_cast<size_t>(i)] =
                ToSingle(static_cast<double>(times[static_cast<size_t>(station)][static_cast<size_t>(i)]) + t.PostParam[203 + i]);
    }
    if (t.PostParam[80] != 1) {
        if (!IsOpen(e.SubroutineFile)) FileFault("Bad file number", "progsubs.sub");
        WriteLine(e.SubroutineFile, "******");
    }
    if (t.PostParam[80] == 2) WriteLine(e.ProgramOutput, "[CALL SUBROUTINES]");
    WriteLine(e.ProgramOutput, "******");
    e.ReportMode = true;
    WriteBlock(state, "PROGRAM_REPORT");
    e.ReportMode = false;
    CloseAllFiles(state);
}

namespace {

std::string Work(const RunState& state, const char* name) { return state.Job.WorkDir + name; }

// Writes the lines of a file to an output, each with CR LF, a line at a time.
void CopyLines(const std::string& path, TextOutput& out) {
    TextInput in;
    OpenTextStream(in, path);
    std::string line;
    while (!AtEnd(in)) {
        ReadLine(in, line);
        WriteLine(out, line);
    }
}

// The digits of a block number, without sign or blank.
std::string Digits(int64_t n) { return LongText(ToInteger32(static_cast<double>(n < 0 ? -n : n), "block number")); }

void FamilyOnePass(RunState& state) {
    const std::string program = Work(state, "Progmain.prg");
    const std::string temporary = Work(state, "Progmain.tmp");
    const std::string tail = Work(state, "Progend.prg");
    ForgetDefinitionFile(state, temporary);
    CopyFileTo(program, temporary);
    TextInput in;
    OpenTextStream(in, program);
    bool sawCycle = false;
    std::string line;
    for (;;) {
        line = ReadLine(in);
        if (Holds(line, "G83")) sawCycle = true;
        if (Holds(line, "G03")) break;
    }
    const auto blank = line.find(' ');
    const std::string numberText = line.size() > 1 ? line.substr(1, blank == std::string::npos ? std::string::npos : blank - 1) : "";
    int64_t n = static_cast<int64_t>(LeadingNumber(numberText)) + 1;
    if (!sawCycle) return;
    {
        TextOutput out;
        OpenTextOutput(out, tail);
        for (;;) {
            const std::string s = ReadLine(in);
            if (Holds(s, "N50000")) break;
            WriteLine(out, s);
        }
    }
    TextInput main;
    OpenTextStream(main, program);
    TextInput subs;
    OpenTextStream(subs, temporary);
    TextOutput mainOut;
    OpenTextOutput(mainOut, Work(state, "Nisshinbo.prg"));
    TextOutput subOut;
    OpenTextOutput(subOut, Work(state, "Nisshinbo.sub"));
    int64_t c = 40000;
    std::string m, t;
    for (;;) {
        std::string s = ReadLine(main);
        const bool last = Holds(s, "G03");
        const bool skip = s.empty() || s[0] == '%' || s[0] == 'T' || s[0] == ' ';
        if (!skip) {
            if (Holds(s, "G83")) {
                c += 10000;
                const std::string k = "N" + Digits(c);
                if (m.empty()) m = k;
                do {
                    if (!Holds(t, m)) t = ReadItem(subs);
                } while (!Holds(t, k));
                m = "N" + Digits(static_cast<int64_t>(LeadingNumber(k.substr(1))) + 10000);
                const int64_t first = n;
                int64_t lastBlock = n;
                for (;;) {
                    t = "N" + Digits(n) + (t.size() > 6 ? t.substr(6) : std::string());
                    WriteLine(subOut, t);
                    lastBlock = n;
                    if (AtEnd(subs)) break;
                    t = ReadItem(subs);
                    ++n;
                    if (Holds(t, m)) break;
                }
                const auto v = s.find('V');
                s = (v == std::string::npos ? s : s.substr(0, v + 1)) + Digits(first) + " W" + Digits(lastBlock);
            }
            WriteLine(mainOut, s);
        }
        if (last) break;
    }
    CloseText(mainOut);
    CloseText(subOut);
    CloseText(in);
    CloseText(main);
    CloseText(subs);
    TextOutput out;
    OpenTextOutput(out, program);
    for (const char* part : {"Nisshinbo.prg", "Nisshinbo.sub", "Progend.prg"}) CopyLines(Work(state, part), out);
}

void FamilyTenPass(RunState& state) {
    const std::string program = Work(state, "Progmain.prg");
    const std::string platino = state.Job.PlatinoFile;
    {
        TextOutput out;
        OpenTextOutput(out, program, true);
        CopyLines(platino, out);
    }
    DeleteFile(platino);
    {
        TextInput in;
        OpenTextStream(in, program);
        TextOutput out;
        OpenTextOutput(out, platino);
        std::string p = ReadLine(in);
        std::string q;
        while (!AtEnd(in)) {
            ReadLine(in, q);
            if (Holds(q, "G09")) std::swap(p, q);
            WriteLine(out, p);
            std::swap(p, q);
        }
        WriteLine(out, p);
    }
    CopyFileTo(platino, program);
    DeleteFile(platino);
}

}  // namespace

void FamilyPasses(RunState& state) {
    const float family = state.Tables.PostParam[9];
    if (family == 1) FamilyOnePass(state);
    if (family == 9) {
        TextOutput out;
        OpenTextOutput(out, Work(state, "Progmain.prg"), true);
        WriteText(out, std::string(1, '\x1a'));
    }
    if (family == 10) FamilyTenPass(state);
}

void MakeJobCopies(RunState& state) {
    CopyFileAtomically(state.Job.ProgramFile, state.Job.JobPath + ".prg");
    CopyFileAtomically(state.Job.ReportFile, state.Job.JobPath + ".rpt");
}

}  // namespace tvx
