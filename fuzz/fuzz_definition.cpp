// Arbitrary definitions through the engine: the input is split at its NUL bytes into a
// .pst, a .wrd and a .lyt; a fixed set of table values and a small job sequence stand
// ready; a few reserved words are written as emitters write them, then the closing lines and
// the format pass follow. Every outcome is output or an end of the run (a RunEnd); a crash,
// a sanitizer report or an endless loop is not.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "job/finishing.h"
#include "state/run_state.h"

namespace {

// One working directory for the whole run of the fuzzer, removed at its end.
struct FuzzDirectory {
    std::string Path;
    FuzzDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "torvanex-fuzz-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        tvx::WriteFileAtomically(pattern + "/Program.seq",
                                 "Title\r\nA1,RO10,10,0,0,0,0,3,1\r\nB1,SQ5,5,5,0,0,90,4,2\r\n  ******  \r\n");
        Path = pattern + "/";
    }
    ~FuzzDirectory() {
        std::error_code ec;
        std::filesystem::remove_all(Path, ec);
    }
};

const std::string& WorkDirectory() {
    static const FuzzDirectory dir;
    return dir.Path;
}

void FillTables(tvx::RunState& state) {
    auto& t = state.Tables;
    t.PostParam[1] = 10;
    t.PostParam[2] = 100;
    t.PostParam[4] = 10;
    t.PostParam[5] = 1;
    t.PostParam[3] = 0.5f;
    t.PostParam[6] = -2.5f;
    t.PostMachine[1] = 12.345f;
    t.PostMachine[2] = -7.5f;
    t.PostMachine[3] = 1;
    t.PostMemo[3] = 1;
    t.PostMachine[100] = t.PostMachine[101] = t.PostMemo[100] = t.PostMemo[101] = 100;
    t.PostVar[1] = 3;
    t.PostUserText[1] = "abc";
    t.PostUserText[2] = "2.5";
    t.PostText[5] = "ABCDE";
    t.PostText[25] = "T01";
    state.Machine.TurretTools.resize(3);
    state.Machine.TurretTools[1].ToolText1 = "one";
    state.Machine.TurretTools[2].ToolText2 = "two";
    state.Job.ToolTimes.assign(65, {});
}

// The reserved word of the first line of the .pst, up to its "=".
std::string FirstWord(const std::string& pst) {
    const size_t end = pst.find_first_of("=\r\n");
    return pst.substr(0, end == std::string::npos ? pst.size() : end);
}

void Run(const std::string& pst, const std::string& wrd, const std::string& lyt) {
    using namespace tvx;
    RunState state;
    JobState& job = state.Job;
    EngineState& e = state.Engine;
    const std::string& dir = WorkDirectory();
    job.WorkDir = dir;
    job.CurrentDir = dir;
    job.PostFile = dir + "def.pst";
    job.WordFile = dir + "def.wrd";
    job.LayoutFile = dir + "def.lyt";
    job.SubFile1 = dir + "Program.sb1";
    job.SubFile2 = dir + "Program.sb2";
    job.SubFile3 = dir + "Program.sb3";
    job.SeqFile = dir + "Program.seq";
    job.ProgramFile = dir + "Progmain.prg";
    job.ReportFile = dir + "Progmain.rpt";
    job.PlatinoFile = dir + "ProgPlatino.prg";
    FillTables(state);

    // The definition files are held in memory only: the disk is not needed for them.
    HoldDefinition(e.Cache, job.PostFile, std::make_shared<const std::string>(pst));
    const auto held = CachedDefinition(e.Cache, job.PostFile);
    HoldDefinitionText(e.Cache, job.SubFile1, held);
    HoldDefinitionText(e.Cache, job.SubFile2, held);
    HoldDefinitionText(e.Cache, job.SubFile3, held);
    HoldDefinition(e.Cache, job.WordFile, std::make_shared<const std::string>(wrd));
    HoldDefinition(e.Cache, job.LayoutFile, std::make_shared<const std::string>(lyt));
    try {
        OpenDefinitionInput(state, ChannelWord, job.WordFile);
        OpenEngineOutput(state, e.ProgramOutput, job.ProgramFile);
        OpenEngineOutput(state, e.ReportOutput, job.ReportFile);
        OpenEngineOutput(state, e.PlatinoOutput, job.PlatinoFile);
        OpenSubroutineFile(state);
        WriteLine(e.ProgramOutput, "PROGRAM_FORMAT=TRUE");
        const std::string words[] = {FirstWord(pst), "CANNED_PUNCH", "PROGRAM_START", "A", "B"};
        int written = 0;
        for (const std::string& word : words) {
            try {
                e.SubroutineOutput = written == 2;
                e.ReportMode = written == 3;
                if (FindReservedWord(state, word)) WriteReservedBlock(state);
                CloseInputChannel(state, ChannelDefinition);
            } catch (const RunEnd&) {
                // The next word starts on a clean footing, as a new run of the same job would.
                e.PostLevel = 0;
                e.LayoutMode = 0;
                for (int channel : {ChannelDefinition, ChannelLayout, ChannelSequence, ChannelLevel1, ChannelLevel2,
                                    ChannelLevel3, ChannelSubroutines})
                    CloseInputChannel(state, channel);
            }
            ++written;
        }
        e.SubroutineOutput = false;
        e.ReportMode = false;
        WriteLine(e.SubroutineFile, "[CALL SUBROUTINES]");
        WriteLine(e.SubroutineFile, "******");
        WriteLine(e.ProgramOutput, "[CALL SUBROUTINES]");
        WriteLine(e.ProgramOutput, "******");
        CloseAllFiles(state);
        FormatPass(state);
    } catch (const RunEnd&) {
    }
    CloseAllFiles(state);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t first = input.find('\0');
    const std::string pst = input.substr(0, first);
    std::string wrd;
    std::string lyt;
    if (first != std::string::npos) {
        const size_t second = input.find('\0', first + 1);
        wrd = input.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
        if (second != std::string::npos) lyt = input.substr(second + 1);
    }
    Run(pst, wrd, lyt);
    return 0;
}
