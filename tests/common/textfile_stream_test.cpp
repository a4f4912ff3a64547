// A text file read as a stream reads exactly as the same file held in memory.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <fstream>

#include "common/fault.h"
#include "common/textfile.h"
#include "test_support.h"

using namespace tvx;

namespace {

struct StreamFile {
    TempDir Dir;
    std::string Path;
    TextInput In;
    explicit StreamFile(const std::string& bytes) : Path(Dir.Path + "/stream.txt") {
        std::ofstream(Path, std::ios::binary) << bytes;
        OpenTextStream(In, Path);
    }
};

std::string FaultOf(TextInput& in) {
    try {
        ReadLine(in);
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        return end.Text;
    }
    return {};
}

}  // namespace

TEST(TextStream, LinesEndWithCrLfLfOrCr) {
    StreamFile f("a\r\nb\nc\rd\r\n");
    EXPECT_TRUE(IsStreamed(f.In));
    EXPECT_EQ(ReadLine(f.In), "a");
    EXPECT_EQ(ReadLine(f.In), "b");
    EXPECT_EQ(ReadLine(f.In), "c");
    EXPECT_FALSE(AtEnd(f.In));
    EXPECT_EQ(ReadLine(f.In), "d");
    EXPECT_TRUE(AtEnd(f.In));
}

TEST(TextStream, LastLineWithoutLineEndIsALine) {
    StreamFile f("one\r\ntwo");
    EXPECT_EQ(ReadLine(f.In), "one");
    EXPECT_FALSE(AtEnd(f.In));
    EXPECT_EQ(ReadLine(f.In), "two");
    EXPECT_TRUE(AtEnd(f.In));
}

TEST(TextStream, ReadingTheLastLineLeavesTheFileAtEnd) {
    // What the searches of the engine rely on: behind the last line the file is at its end,
    // so a word found in the last line is taken as not found.
    StreamFile f("A=TRUE\r\nbody\r\nB=TRUE\r\n");
    ReadLine(f.In);
    ReadLine(f.In);
    EXPECT_FALSE(AtEnd(f.In));
    EXPECT_EQ(ReadLine(f.In), "B=TRUE");
    EXPECT_TRUE(AtEnd(f.In));
}

TEST(TextStream, ReadingPastTheEndIsAFaultNamingTheFile) {
    StreamFile f("x\r\n");
    ReadLine(f.In);
    EXPECT_EQ(FaultOf(f.In), "Input past end of file: " + f.Path);
}

TEST(TextStream, EmptyFileIsAtEndAndReadingItIsAFault) {
    StreamFile f("");
    EXPECT_TRUE(AtEnd(f.In));
    EXPECT_EQ(FaultOf(f.In), "Input past end of file: " + f.Path);
}

TEST(TextStream, MissingFileIsAFileFault) {
    TempDir dir;
    TextInput in;
    try {
        OpenTextStream(in, dir.Path + "/none.txt");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "File not found: " + dir.Path + "/none.txt");
    }
    EXPECT_FALSE(in.Open);
}

TEST(TextStream, LineLongerThanTheBufferIsReadWhole) {
    std::string longLine(3 * StreamBufferSize + 17, 'x');
    for (size_t i = 0; i < longLine.size(); i += 997) longLine[i] = static_cast<char>('\xac');
    StreamFile f("a\r\n" + longLine + "\r\nb");
    EXPECT_EQ(ReadLine(f.In), "a");
    EXPECT_EQ(ReadLine(f.In), longLine);
    EXPECT_EQ(ReadLine(f.In), "b");
    EXPECT_TRUE(AtEnd(f.In));
    // Only a buffer's worth of the file is ever held.
    EXPECT_LE(f.In.Buffer.capacity(), 2 * StreamBufferSize);
}

TEST(TextStream, CrLfAcrossTheEdgeOfTheBufferIsOneLineEnd) {
    // The CR is the last byte of the first buffer, the LF the first of the second.
    std::string text(StreamBufferSize - 1, 'a');
    text += "\r\nb\r\n";
    StreamFile f(text);
    EXPECT_EQ(ReadLine(f.In), std::string(StreamBufferSize - 1, 'a'));
    EXPECT_EQ(ReadLine(f.In), "b");
    EXPECT_TRUE(AtEnd(f.In));
}

TEST(TextStream, CrAsTheLastByteOfTheBufferAndTheFileEndsTheLastLine) {
    std::string text(StreamBufferSize - 1, 'a');
    text += "\r";
    StreamFile f(text);
    EXPECT_EQ(ReadLine(f.In).size(), StreamBufferSize - 1);
    EXPECT_TRUE(AtEnd(f.In));
}

TEST(TextStream, ReadsFromTheTopAgainWhenTheReadPositionIsSetBack) {
    StreamFile f(std::string(StreamBufferSize + 5, 'q') + "\r\nlast\r\n");
    ReadLine(f.In);
    EXPECT_EQ(ReadLine(f.In), "last");
    EXPECT_TRUE(AtEnd(f.In));
    f.In.Pos = 0;
    EXPECT_FALSE(AtEnd(f.In));
    EXPECT_EQ(ReadLine(f.In).size(), StreamBufferSize + 5);
    EXPECT_EQ(ReadLine(f.In), "last");
}

TEST(TextStream, ListItemsReadAsFromAHeldFile) {
    StreamFile f("1,\"Maker, Inc\",  Dir1 ,\"Model\" ,note\r\nN50000A\r\n\"******\"");
    EXPECT_EQ(ReadItem(f.In), "1");
    EXPECT_EQ(ReadItem(f.In), "Maker, Inc");
    EXPECT_EQ(ReadItem(f.In), "Dir1");
    EXPECT_EQ(ReadItem(f.In), "Model");
    EXPECT_EQ(ReadItem(f.In), "note");
    EXPECT_EQ(ReadItem(f.In), "N50000A");
    EXPECT_EQ(ReadItem(f.In), "******");
    EXPECT_TRUE(AtEnd(f.In));
    EXPECT_THROW(ReadItem(f.In), RunEnd);
}

TEST(TextStream, ClosingReleasesTheFile) {
    StreamFile f("a\r\n");
    ReadLine(f.In);
    CloseText(f.In);
    EXPECT_FALSE(f.In.Open);
    EXPECT_FALSE(IsStreamed(f.In));
    EXPECT_EQ(f.In.Buffer.capacity(), std::string().capacity());
}

// Lines of any length around the size of the buffer, with every kind of line end: the stream
// gives the same lines, read positions and ends as the held file.
RC_GTEST_PROP(TextStream, ReadsAsTheHeldFile, ()) {
    const auto count = static_cast<size_t>(*rc::gen::inRange(0, 6));
    const auto lengths = *rc::gen::container<std::vector<size_t>>(
        count, rc::gen::oneOf(rc::gen::inRange<size_t>(0, 4),
                              rc::gen::inRange<size_t>(StreamBufferSize - 3, StreamBufferSize + 3)));
    std::string text;
    for (size_t n : lengths) {
        text += std::string(n, 'z');
        text += *rc::gen::element<std::string>("\r\n", "\n", "\r", "\r\n", "\n\r");
    }
    if (!text.empty() && *rc::gen::arbitrary<bool>()) text.pop_back();
    StreamFile f(text);
    TextInput held;
    OpenTextInputFromData(held, f.Path, std::make_shared<const std::string>(text));
    while (!AtEnd(held)) {
        RC_ASSERT(!AtEnd(f.In));
        RC_ASSERT(ReadLine(f.In) == ReadLine(held));
        RC_ASSERT(f.In.Pos == held.Pos);
    }
    RC_ASSERT(AtEnd(f.In));
}
