// The format pass over a generated program and subroutine text larger than the size limit of
// held definition files: read as streams, they give the bytes that the held texts give.
#include <gtest/gtest.h>

#include "common/paths.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "job/finishing.h"

using namespace tvx;

namespace {

constexpr int MainLines = 60000;  // about 1.6 MB of program
constexpr int SubLines = 45000;   // about 1.2 MB of subroutine text

struct Formatted {
    std::string Program;
    bool TemporaryHeld = false;
};

Formatted FormatLargeProgram(bool streamed) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "******"});
    DefinitionCache& cache = rig.State.Engine.Cache;
    if (!streamed) {
        cache.StreamWrittenFiles = false;
        cache.HeldSizeLimit = SIZE_MAX;
    }
    rig.State.Tables.PostParam[1] = 10;
    rig.State.Tables.PostParam[4] = 10;
    rig.CloseAll();
    std::string program = "PROGRAM_FORMAT=TRUE\r\n";
    for (int i = 0; i < MainLines; ++i) program += "[BLOCK_NUMBER1]G1 X" + std::to_string(i) + "\r\n";
    program += "[CALL SUBROUTINES]\r\nM30\r\n******\r\n";
    std::string subs = "SUBROUTINES=TRUE\r\n";
    for (int i = 0; i < SubLines; ++i) subs += "[BLOCK_NUMBER1]G2 Y" + std::to_string(i) + "\r\n";
    subs += "******\r\n";
    EXPECT_GT(program.size(), size_t{1} << 20);
    EXPECT_GT(subs.size(), size_t{1} << 20);
    WriteFileAtomically(rig.State.Job.ProgramFile, program);
    WriteFileAtomically(SubroutineFilePath(rig.State), subs);
    FormatPass(rig.State);
    Formatted result;
    result.Program = ReadAllBytes(rig.State.Job.ProgramFile);
    for (const auto& [key, text] : cache.Files)
        if (text->Path == rig.Path("Progmain.tmp")) result.TemporaryHeld = true;
    return result;
}

}  // namespace

TEST(FormatPass, GeneratedTextOverTheSizeLimitGivesTheBytesOfTheHeldText) {
    const Formatted streamed = FormatLargeProgram(true);
    const Formatted held = FormatLargeProgram(false);
    EXPECT_FALSE(streamed.TemporaryHeld);
    EXPECT_TRUE(held.TemporaryHeld);
    // Block numbers from 10 in steps of 10 through the program, on through the subroutine
    // text, then the rest of the program.
    std::string expected;
    int n = 10;
    for (int i = 0; i < MainLines; ++i, n += 10) expected += "N" + std::to_string(n) + "G1 X" + std::to_string(i) + "\r\n";
    for (int i = 0; i < SubLines; ++i, n += 10) expected += "N" + std::to_string(n) + "G2 Y" + std::to_string(i) + "\r\n";
    expected += "M30\r\n";
    EXPECT_EQ(held.Program.size(), expected.size());
    EXPECT_TRUE(held.Program == expected);
    EXPECT_EQ(streamed.Program.size(), held.Program.size());
    EXPECT_TRUE(streamed.Program == held.Program);
}

TEST(FamilyPasses, FamilyTenOverAProgramLongerThanTheReadBufferMovesEachG09LineUp) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    rig.CloseAll();
    rig.State.Tables.PostParam[9] = 10;
    std::vector<std::string> lines;
    for (int i = 1; i <= 30000; ++i) lines.push_back((i % 7 == 0 ? "G09 N" : "N") + std::to_string(i));
    WriteAllLines(rig.State.Job.ProgramFile, lines);
    WriteAllLines(rig.State.Job.PlatinoFile, {"SUB"});
    // Every seventh line is a G09 line: it changes places with the line above it; the
    // second program file's line follows at the end.
    std::string expected;
    for (int i = 1; i <= 30000; ++i) {
        if ((i + 1) % 7 == 0 && i + 1 <= 30000) continue;
        if (i % 7 == 0) expected += "G09 N" + std::to_string(i) + "\r\nN" + std::to_string(i - 1) + "\r\n";
        else expected += "N" + std::to_string(i) + "\r\n";
    }
    expected += "SUB\r\n";
    FamilyPasses(rig.State);
    EXPECT_GT(expected.size(), 2 * StreamBufferSize);
    EXPECT_TRUE(ReadAllBytes(rig.State.Job.ProgramFile) == expected);
    EXPECT_FALSE(FileExists(rig.State.Job.PlatinoFile));
}
