#include "tools/try_tool.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_value.h"
#include "definition/reserved_word.h"
#include "job/finishing.h"
#include "state/run_state.h"

namespace tvx {

const char* const TryHelp =
    "Writes reserved words of a definition as a job would and prints the program text.\n"
    "Loads STEM.pst, STEM.wrd and STEM.lyt (the .lyt only when a layout is used). The items\n"
    "are taken from left to right:\n"
    "  PostParam[n]=v PostMachine[n]=v PostMemo[n]=v PostVar[n]=v   set a number cell\n"
    "  PostUserText[n]=text PostText[n]=text                        set a text cell\n"
    "  ToolText1[n]=text ToolText2[n]=text                          texts of turret tool n\n"
    "  ToolTimes[s,i]=v                                             timer i of station s\n"
    "  SubroutineOutput=1|0 ReportMode=1|0                          set or clear a flag\n"
    "  any other item                                               a reserved word: found,\n"
    "                                                               written if true, closed\n"
    "PROGRAM_REPORT is written with ReportMode set, as in a job. The program starts with\n"
    "PROGRAM_FORMAT=TRUE; \"progsubs.sub\" is opened before the first word unless P81 is 1;\n"
    "clearing SubroutineOutput with P80 at 0 prints [CALL SUBROUTINES] once, as a part's\n"
    "end does; at the end the closing lines are printed (\"******\" to the subroutine file\n"
    "unless P80 is 1, [CALL SUBROUTINES] if P80 is 2, \"******\" to the program) and the\n"
    "format pass resolves block numbers and deferred tags. PostMachine[100], [101] and their\n"
    "memos start at 100. A layout reads the job sequence given by --seq (Program.seq).\n"
    "As in a job, a word found only in the last line of the .pst, .wrd or .lyt counts as not\n"
    "found: end each file with a line such as \"******\".\n"
    "The finished program goes to stdout (CR LF). The report (channel 4), the second program\n"
    "file (channel 18) and the subroutine file (channel 17) go to stderr, each under a\n"
    "heading, when they hold lines. Working files lie in a temporary directory, removed at\n"
    "the end. Exit status: 0 done, 1 the definition's message box, 2 a fault of the run.";

namespace {

// A temporary working directory, removed with everything in it.
struct WorkingDirectory {
    std::string Path;
    WorkingDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "torvanex-try-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) FileFault("Cannot make directory", pattern);
        Path = pattern;
    }
    ~WorkingDirectory() {
        std::error_code ec;
        std::filesystem::remove_all(Path, ec);
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
};

bool StartsWith(const std::string& text, const std::string& start) { return text.compare(0, start.size(), start) == 0; }

// "Name[index]=value": the index text and the value, when the item has that form.
bool SplitCellItem(const std::string& item, const std::string& name, std::string& index, std::string& value) {
    if (!StartsWith(item, name + "[")) return false;
    const size_t close = item.find("]=", name.size() + 1);
    if (close == std::string::npos) return false;
    index = item.substr(name.size() + 1, close - name.size() - 1);
    value = item.substr(close + 2);
    return true;
}

int32_t ItemIndex(const std::string& text, const std::string& item) {
    if (!IsNumericText(text)) RunFault("Not a cell number in the item: " + item);
    return ToInteger32(LeadingNumber(text), "cell number");
}

bool IsTrueText(const std::string& value) { return LeadingNumber(value) != 0; }

std::string ReadIfExists(const std::string& path) { return FileExists(path) ? ReadAllBytes(path) : std::string(); }

// The text less its first line and its last line.
std::string InnerLines(const std::string& text) {
    const size_t first = text.find("\r\n");
    if (first == std::string::npos) return {};
    std::string inner = text.substr(first + 2);
    if (inner.size() < 2) return {};
    const size_t last = inner.size() > 2 ? inner.rfind("\r\n", inner.size() - 3) : std::string::npos;
    inner.resize(last == std::string::npos ? 0 : last + 2);
    return inner;
}

// What the job driver does around the blocks, for the items of one run.
struct TryRun {
    RunState& State;
    bool SubroutinesOpened = false;
    bool CallSubroutinesDue = true;

    void OpenSubroutinesOnce() {
        if (SubroutinesOpened) return;
        SubroutinesOpened = true;
        if (State.Tables.PostParam[81] != 1.0f) OpenSubroutineFile(State);
    }

    void Word(const std::string& word) {
        OpenSubroutinesOnce();
        EngineState& e = State.Engine;
        const bool report = word == "PROGRAM_REPORT";
        const bool reportBefore = e.ReportMode;
        if (report) e.ReportMode = true;
        if (FindReservedWord(State, word)) WriteReservedBlock(State);
        CloseInputChannel(State, ChannelDefinition);
        if (report) e.ReportMode = reportBefore;
    }

    void SubroutineFlag(bool on) {
        EngineState& e = State.Engine;
        const bool was = e.SubroutineOutput;
        e.SubroutineOutput = on;
        // The end of a part: the subroutines are called from where the first part ended.
        if (was && !on && State.Tables.PostParam[80] == 0.0f && CallSubroutinesDue) {
            WriteLine(e.ProgramOutput, "[CALL SUBROUTINES]");
            CallSubroutinesDue = false;
        }
    }

    void Closing() {
        OpenSubroutinesOnce();
        EngineState& e = State.Engine;
        // A job's generation never ends inside a part or a report.
        SubroutineFlag(false);
        e.ReportMode = false;
        if (State.Tables.PostParam[80] != 1.0f) WriteLine(e.SubroutineFile, "******");
        if (State.Tables.PostParam[80] == 2.0f) WriteLine(e.ProgramOutput, "[CALL SUBROUTINES]");
        WriteLine(e.ProgramOutput, "******");
        CloseAllFiles(State);
    }
};

}  // namespace

bool ApplyTryItem(RunState& state, const std::string& item) {
    ValueTables& t = state.Tables;
    std::string index, value;
    if (SplitCellItem(item, "PostParam", index, value)) {
        t.PostParam[ItemIndex(index, item)] = ToSingle(LeadingNumber(value));
    } else if (SplitCellItem(item, "PostMachine", index, value)) {
        t.PostMachine[ItemIndex(index, item)] = ToSingle(LeadingNumber(value));
    } else if (SplitCellItem(item, "PostMemo", index, value)) {
        t.PostMemo[ItemIndex(index, item)] = ToSingle(LeadingNumber(value));
    } else if (SplitCellItem(item, "PostVar", index, value)) {
        t.PostVar[ItemIndex(index, item)] = ToSingle(LeadingNumber(value));
    } else if (SplitCellItem(item, "PostUserText", index, value)) {
        t.PostUserText[ItemIndex(index, item)] = value;
    } else if (SplitCellItem(item, "PostText", index, value)) {
        t.PostText[ItemIndex(index, item)] = value;
    } else if (SplitCellItem(item, "ToolText1", index, value) || SplitCellItem(item, "ToolText2", index, value)) {
        const int32_t n = ItemIndex(index, item);
        auto& tools = state.Machine.TurretTools;
        if (n < 0 || n > 1000) IndexFault("TurretTools", n);
        if (tools.size() <= static_cast<size_t>(n)) tools.resize(static_cast<size_t>(n) + 1);
        (StartsWith(item, "ToolText1") ? tools[static_cast<size_t>(n)].ToolText1 : tools[static_cast<size_t>(n)].ToolText2) =
            value;
        tools[static_cast<size_t>(n)].Loaded = true;
    } else if (SplitCellItem(item, "ToolTimes", index, value)) {
        const size_t comma = index.find(',');
        if (comma == std::string::npos) RunFault("ToolTimes takes a station and a timer: " + item);
        const int32_t row = ItemIndex(index.substr(0, comma), item);
        const int32_t column = ItemIndex(index.substr(comma + 1), item);
        auto& times = state.Job.ToolTimes;
        if (row < 0 || static_cast<size_t>(row) >= times.size()) IndexFault("ToolTimes", row);
        if (column < 0 || column > 4) IndexFault("ToolTimes", column);
        times[static_cast<size_t>(row)][static_cast<size_t>(column)] = ToSingle(LeadingNumber(value));
    } else if (StartsWith(item, "ReportMode=")) {
        state.Engine.ReportMode = IsTrueText(item.substr(11));
    } else {
        return false;
    }
    return true;
}

void RunTry(const TryOptions& options, TryResult& result) {
    WorkingDirectory work;
    RunState state;
    JobState& job = state.Job;
    job.WorkDir = work.Path + "/";
    job.CurrentDir = work.Path + "/";
    state.Machine.MachineStem = options.Stem + ".";
    job.ToolTimes.assign(65, {});
    for (int cell : {100, 101}) {
        state.Tables.PostMachine[cell] = 100;
        state.Tables.PostMemo[cell] = 100;
    }
    SetDefinitionFiles(state);
    if (!options.SequenceFile.empty()) CopyFileTo(options.SequenceFile, job.SeqFile);
    EngineState& e = state.Engine;
    OpenEngineOutput(state, e.ProgramOutput, job.ProgramFile);
    OpenEngineOutput(state, e.ReportOutput, job.ReportFile);
    OpenEngineOutput(state, e.PlatinoOutput, job.PlatinoFile);
    WriteLine(e.ProgramOutput, "PROGRAM_FORMAT=TRUE");

    TryRun run{state};
    for (const std::string& item : options.Items) {
        if (StartsWith(item, "SubroutineOutput=")) run.SubroutineFlag(IsTrueText(item.substr(17)));
        else if (!ApplyTryItem(state, item)) run.Word(item);
    }
    run.Closing();

    result.RawProgram = InnerLines(ReadAllBytes(job.ProgramFile));
    result.Subroutines = ReadIfExists(SubroutineFilePath(state));
    if (options.FormatPass) {
        FormatPass(state);
        result.Program = ReadAllBytes(job.ProgramFile);
    }
    result.Report = ReadIfExists(job.ReportFile);
    result.Platino = ReadIfExists(job.PlatinoFile);
}

int TryCommand(const TryOptions& options, std::ostream& out, std::ostream& err) {
    TryResult result;
    RunTry(options, result);
    const std::string& program = options.FormatPass ? result.Program : result.RawProgram;
    out.write(program.data(), static_cast<std::streamsize>(program.size()));
    out.flush();
    auto show = [&](const char* heading, const std::string& text) {
        if (text.empty()) return;
        err << "--- " << heading << " ---\n";
        err.write(text.data(), static_cast<std::streamsize>(text.size()));
    };
    show("report (Progmain.rpt)", result.Report);
    show("second program file (ProgPlatino.prg)", result.Platino);
    const std::string frame = "SUBROUTINES=TRUE\r\n******\r\n";
    if (result.Subroutines != frame && result.Subroutines != "SUBROUTINES=TRUE\r\n")
        show("subroutine file (progsubs.sub)", result.Subroutines);
    return ExitClean;
}

}  // namespace tvx
