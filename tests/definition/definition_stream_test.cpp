// Definition files read as streams: which files stream, and searches that end where the
// searches over held texts end, end-of-file rules included.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <fstream>
#include <memory>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/called_blocks.h"
#include "definition/definition_cache.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "definition/reserved_word.h"
#include "state/run_state.h"
#include "test_support.h"

using namespace tvx;

namespace {

std::string GenerateFile() {
    const auto lines = *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "A", "A [P1] [CONV=A]", "AB [CONV=x]", "B A", "xA y", "A=TRUE", "CALL A", "[CALL A]", "******", "", " ", "AA B",
        "B [M1] [CONV=B]", "BA", "A\xAC z", "B=TRUE IF"));
    std::string text;
    for (const auto& line : lines) text += line + *rc::gen::element<std::string>("\r\n", "\n", "\r", "\r\n");
    if (!text.empty() && *rc::gen::arbitrary<bool>()) text.pop_back();
    return text;
}

std::string GenerateWord() { return *rc::gen::element<std::string>("A", "B", "AB", "BA", "C", "", "A ", "=TRUE"); }

void WriteBytes(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A run state whose definition channels read `path`: held, or streamed as over the size limit.
struct Reader {
    RunState State;
    Reader(const std::string& path, bool streamed) {
        State.Job.WordFile = path;
        if (streamed) State.Engine.Cache.HeldSizeLimit = 0;
        else State.Engine.Cache.HeldSizeLimit = SIZE_MAX;
    }
};

struct Stop {
    bool Fault = false;
    bool AtEnd = false;
    std::string Line;
    size_t Pos = 0;
    bool operator==(const Stop&) const = default;
};

}  // namespace

TEST(DefinitionStreams, SmallDefinitionFilesAreHeld) {
    TempDir dir;
    const std::string path = dir.Path + "/M.pst";
    WriteBytes(path, "A=TRUE\r\nx\r\n");
    DefinitionCache cache;
    EXPECT_FALSE(ReadAsStream(cache, path));
}

TEST(DefinitionStreams, FilesOverTheSizeLimitAreStreamed) {
    TempDir dir;
    const std::string path = dir.Path + "/M.pst";
    WriteBytes(path, std::string((size_t{1} << 20) + 1, 'x'));
    DefinitionCache cache;
    EXPECT_TRUE(ReadAsStream(cache, path));
    WriteBytes(path, std::string(size_t{1} << 20, 'x'));
    EXPECT_FALSE(ReadAsStream(cache, path));
}

TEST(DefinitionStreams, FileThatTheSystemWritesIsStreamedWhateverItsSize) {
    TempDir dir;
    const std::string path = dir.Path + "/Progsubs.sub";
    WriteBytes(path, "SUBROUTINES=TRUE\r\n");
    DefinitionCache cache;
    ForgetDefinition(cache, dir.Path + "/progsubs.sub");
    EXPECT_TRUE(ReadAsStream(cache, path));
    // Held again on purpose, it is held.
    HoldDefinition(cache, path, std::make_shared<const std::string>("SUBROUTINES=TRUE\r\n"));
    EXPECT_FALSE(ReadAsStream(cache, path));
}

TEST(DefinitionStreams, ChannelOfAWrittenFileReadsTheFileAsAStream) {
    EngineRig rig({"A=TRUE", "x", "******"}, {"******"});
    rig.CloseAll();
    // The subroutine file was written by the rig: level 5 reads it as a stream.
    OpenDefinitionInput(rig.State, ChannelSubroutines, SubroutineLevelPath(rig.State));
    EXPECT_TRUE(IsStreamed(rig.State.Engine.SubroutineInput));
    EXPECT_EQ(ReadLine(rig.State.Engine.SubroutineInput), "SUBROUTINES=TRUE");
    // The definition itself is held.
    OpenDefinitionInput(rig.State, ChannelDefinition, rig.State.Job.PostFile);
    EXPECT_FALSE(IsStreamed(rig.State.Engine.DefinitionInput));
    CloseAllFiles(rig.State);
}

TEST(DefinitionStreams, WordFoundOnlyInTheLastLineOfAStreamIsNotFound) {
    EngineRig rig({"A=TRUE", "x", "******", "B=TRUE"}, {"******"});
    rig.State.Engine.Cache.HeldSizeLimit = 0;
    ForgetDefinition(rig.State.Engine.Cache, rig.State.Job.PostFile);
    EXPECT_TRUE(FindReservedWord(rig.State, "A"));
    EXPECT_TRUE(IsStreamed(rig.State.Engine.DefinitionInput));
    EXPECT_EQ(EngineRig::EndText([&] { FindReservedWord(rig.State, "B"); }),
              AbortText("Reserved Word - B not found in file " + rig.State.Job.PostFile));
    EXPECT_EQ(EngineRig::EndText([&] { FindReservedWord(rig.State, "C"); }),
              AbortText("Reserved Word - C not found in file " + rig.State.Job.PostFile));
    CloseAllFiles(rig.State);
}

TEST(DefinitionStreams, ReadingABlockOfAStreamPastTheEndIsAFault) {
    EngineRig rig({"A=TRUE", "x"}, {"******"});
    rig.State.Engine.Cache.HeldSizeLimit = 0;
    ForgetDefinition(rig.State.Engine.Cache, rig.State.Job.PostFile);
    EXPECT_TRUE(FindReservedWord(rig.State, "A"));
    std::string line;
    ReadDefinitionLine(rig.State, line);
    EXPECT_EQ(line, "x");
    EXPECT_EQ(EngineRig::EndText([&] { ReadDefinitionLine(rig.State, line); }),
              "Input past end of file: " + rig.State.Job.PostFile);
    CloseAllFiles(rig.State);
}

TEST(DefinitionStreams, WholeDefinitionStreamedWritesTheSameBlocks) {
    const std::vector<std::string> pst = {"HEAD=TRUE", "[X_AXIS]", "[CALL PART]", "[CALL SUBROUTINES]", "G0", "******",
                                          "PART=TRUE", "P",        "******",      ""};
    const std::vector<std::string> wrd = {"X_AXIS [M1] [FORMAT=D3] [CONV=X]", "******"};
    std::vector<std::string> outputs;
    for (bool streamed : {false, true}) {
        EngineRig rig(pst, wrd);
        WriteLine(rig.State.Engine.SubroutineFile, "L1");
        WriteLine(rig.State.Engine.SubroutineFile, "******");
        CloseEngineOutput(rig.State, rig.State.Engine.SubroutineFile);
        if (streamed) {
            rig.State.Engine.Cache.HeldSizeLimit = 0;
            for (const std::string& path : {rig.State.Job.PostFile, rig.State.Job.WordFile, rig.State.Job.SubFile1})
                ForgetDefinition(rig.State.Engine.Cache, path);
            CloseInputChannel(rig.State, ChannelWord);
            OpenDefinitionInput(rig.State, ChannelWord, rig.State.Job.WordFile);
            EXPECT_TRUE(IsStreamed(rig.State.Engine.WordInput));
        }
        rig.State.Tables.PostMachine[1] = 2.5f;
        rig.State.Tables.PostMemo[1] = 1;
        rig.Write("HEAD");
        rig.State.Tables.PostMachine[1] = 4;
        rig.Write("HEAD");
        rig.CloseAll();
        outputs.push_back(ReadAllBytes(rig.State.Job.ProgramFile));
    }
    // The axis, the called block, the subroutine text behind its first line, the caller's rest.
    EXPECT_EQ(outputs[0], "X2.500\r\nP\r\nL1\r\nG0\r\nX4.000\r\nP\r\nL1\r\nG0\r\n");
    EXPECT_EQ(outputs[1], outputs[0]);
}

// The searches of a streamed file stop where those of the held file stop.
RC_GTEST_PROP(DefinitionStreams, FirstLineSearchesOfAStreamEndAsThoseOfAHeldText, ()) {
    const std::string data = GenerateFile();
    TempDir dir;
    const std::string path = dir.Path + "/def.pst";
    WriteBytes(path, data);
    const std::string word = GenerateWord();
    const bool callable = *rc::gen::arbitrary<bool>();
    std::vector<Stop> stops;
    for (bool streamed : {false, true}) {
        Reader r(path, streamed);
        OpenDefinitionInput(r.State, ChannelDefinition, path);
        RC_ASSERT(IsStreamed(r.State.Engine.DefinitionInput) == (streamed && !data.empty()));
        Stop stop;
        PassFirstLineHolding(r.State, ChannelDefinition, word, callable, stop.Line);
        stop.AtEnd = AtEnd(r.State.Engine.DefinitionInput);
        stop.Pos = r.State.Engine.DefinitionInput.Pos;
        stops.push_back(stop);
    }
    RC_ASSERT(stops[1] == stops[0]);
}

RC_GTEST_PROP(DefinitionStreams, RollingWordSearchOfAStreamEndsAsThatOfAHeldText, ()) {
    const std::string data = GenerateFile();
    TempDir dir;
    const std::string path = dir.Path + "/def.wrd";
    WriteBytes(path, data);
    Reader held(path, false);
    Reader streamed(path, true);
    OpenDefinitionInput(held.State, ChannelWord, path);
    OpenDefinitionInput(streamed.State, ChannelWord, path);
    const int searches = *rc::gen::inRange(1, 6);
    for (int n = 0; n < searches; ++n) {
        const std::string word = GenerateWord();
        std::vector<Stop> stops;
        for (Reader* r : {&held, &streamed}) {
            Stop stop;
            r->State.Engine.PostWordLine = "before";
            try {
                SearchWordLine(r->State, word);
            } catch (const RunEnd& end) {
                stop.Fault = true;
                RC_ASSERT(end.Status == static_cast<int>(ExitFault));
            }
            stop.Line = r->State.Engine.PostWordLine;
            stop.Pos = r->State.Engine.WordInput.Pos;
            stop.AtEnd = AtEnd(r->State.Engine.WordInput);
            stops.push_back(stop);
        }
        RC_ASSERT(stops[1] == stops[0]);
    }
}

// Body lines read from a held text, whole and with their marks known from the first read,
// are the lines and positions of the same file read as a stream.
RC_GTEST_PROP(DefinitionStreams, BodyLinesOfAHeldTextAreThoseOfAStream, ()) {
    const auto pieces = *rc::gen::container<std::vector<std::string>>(
        rc::gen::element<std::string>("A", "x y", "******", "G0******1", "\xE2", "a\xE2z", "", " ", "\xAC", "[X]"));
    std::string data;
    for (const auto& piece : pieces) data += piece + *rc::gen::element<std::string>("\r\n", "\n", "\r", "");
    TempDir dir;
    const std::string path = dir.Path + "/def.pst";
    WriteBytes(path, data);
    const int rounds = *rc::gen::inRange(1, 3);
    std::vector<std::string> reads;
    for (bool streamed : {false, true}) {
        Reader r(path, streamed);
        std::string read;
        for (int round = 0; round < rounds; ++round) {
            OpenDefinitionInput(r.State, ChannelDefinition, path);
            r.State.Engine.PostChannel = ChannelDefinition;
            std::string line;
            for (;;) {
                const std::string end = EngineRig::EndText([&] { ReadDefinitionLine(r.State, line); });
                if (!end.empty()) {
                    read += "#" + std::string(end.rfind("Input past end of file", 0) == 0 ? "end" : end);
                    break;
                }
                read += "|" + line + "@" + std::to_string(r.State.Engine.DefinitionInput.Pos);
            }
            CloseInputChannel(r.State, ChannelDefinition);
        }
        reads.push_back(read);
    }
    RC_ASSERT(reads[0] == reads[1]);
}

namespace {

// A definition of the given bytes opened on the definition's channel at level 0, held or read
// as a stream.
struct BodyReader {
    TempDir Dir;
    std::unique_ptr<Reader> R;
    BodyReader(const std::string& bytes, bool streamed) {
        const std::string path = Dir.Path + "/def.pst";
        WriteBytes(path, bytes);
        R = std::make_unique<Reader>(path, streamed);
        OpenDefinitionInput(R->State, ChannelDefinition, path);
        R->State.Engine.PostChannel = ChannelDefinition;
    }
    ~BodyReader() { CloseInputChannel(R->State, ChannelDefinition); }
};

}  // namespace

TEST(DefinitionStreams, AHeldBodyLineIsTakenWithItsTextAndLine) {
    BodyReader body("A=TRUE\r\nG0\r\n******\r\n", false);
    Reader& r = *body.R;
    std::string line;
    ReadDefinitionLine(r.State, line);
    ReadDefinitionLine(r.State, line);
    EXPECT_EQ(line, "G0");
    ASSERT_NE(r.State.Engine.PostDefText, nullptr);
    EXPECT_EQ(r.State.Engine.PostDefIndex, 1);
    ReadDefinitionLine(r.State, line);
    EXPECT_EQ(BodyMarksOf(*r.State.Engine.PostDefText, r.State.Engine.PostDefIndex) & MarkBlockEnd, MarkBlockEnd);
}

TEST(DefinitionStreams, AStreamedBodyLineHasNoHeldText) {
    BodyReader body("A=TRUE\r\nG0\r\n", true);
    std::string line;
    ReadDefinitionLine(body.R->State, line);
    EXPECT_EQ(line, "A=TRUE");
    EXPECT_EQ(body.R->State.Engine.PostDefText, nullptr);
}
