#include "common/textfile.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <filesystem>

#include "common/fault.h"
#include "common/paths.h"
#include "test_support.h"

using namespace tvx;

namespace {
TextInput FromText(const std::string& text) {
    TextInput in;
    OpenTextInputFromData(in, "memory.txt", std::make_shared<const std::string>(text));
    return in;
}
}  // namespace

TEST(TextInput, LinesEndWithCrLfLfOrCr) {
    TextInput in = FromText("a\r\nb\nc\rd");
    EXPECT_EQ(ReadLine(in), "a");
    EXPECT_EQ(ReadLine(in), "b");
    EXPECT_EQ(ReadLine(in), "c");
    EXPECT_FALSE(AtEnd(in));
    EXPECT_EQ(ReadLine(in), "d");
    EXPECT_TRUE(AtEnd(in));
}
TEST(TextInput, LastLineWithEndLeavesFileAtEnd) {
    TextInput in = FromText("one\r\ntwo\r\n");
    ReadLine(in);
    EXPECT_FALSE(AtEnd(in));
    ReadLine(in);
    EXPECT_TRUE(AtEnd(in));
}
TEST(TextInput, BytesAreNotDecoded) {
    TextInput in = FromText("\xac\r\n\xe2x\r\n");
    EXPECT_EQ(ReadLine(in), "\xac");
    EXPECT_EQ(ReadLine(in), "\xe2x");
}
TEST(TextInput, ReadingPastTheEndIsAFaultNamingTheFile) {
    TextInput in = FromText("x");
    ReadLine(in);
    try {
        ReadLine(in);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Input past end of file: memory.txt");
    }
}
TEST(TextInput, EmptyLinesAreLines) {
    TextInput in = FromText("\r\n\r\nx");
    EXPECT_EQ(ReadLine(in), "");
    EXPECT_EQ(ReadLine(in), "");
    EXPECT_EQ(ReadLine(in), "x");
}
TEST(ListItems, QuotedAndBareItems) {
    TextInput in = FromText("1,\"Maker, Inc\",  Dir1 ,\"Model\" ,note\r\n\"******\"\r\n");
    EXPECT_EQ(ReadItem(in), "1");
    EXPECT_EQ(ReadItem(in), "Maker, Inc");
    EXPECT_EQ(ReadItem(in), "Dir1");
    EXPECT_EQ(ReadItem(in), "Model");
    EXPECT_EQ(ReadItem(in), "note");
    const std::string end = ReadItem(in);
    EXPECT_TRUE(IsListEnd(end));
    EXPECT_TRUE(AtEnd(in));
}
TEST(ListItems, EmptyFirstItemEndsAList) {
    TextInput in = FromText("\r\nmore");
    EXPECT_EQ(ReadItem(in), "");
    EXPECT_TRUE(IsListEnd(""));
    EXPECT_TRUE(IsListEnd(" ****** "));
    EXPECT_FALSE(IsListEnd("*****"));
}
TEST(ListItems, ItemsRunAcrossLines) {
    TextInput in = FromText("a,b\r\nc");
    EXPECT_EQ(ReadItem(in), "a");
    EXPECT_EQ(ReadItem(in), "b");
    EXPECT_EQ(ReadItem(in), "c");
    EXPECT_TRUE(AtEnd(in));
}
TEST(ListItems, ReadingAnItemAtTheEndIsAFault) {
    TextInput in = FromText("a");
    ReadItem(in);
    EXPECT_THROW(ReadItem(in), RunEnd);
}

TEST(TextOutput, LinesAreWrittenWithCrLf) {
    TempDir dir;
    const std::string path = dir.Path + "/out.txt";
    TextOutput out;
    OpenTextOutput(out, path);
    WriteLine(out, "X1");
    WriteLine(out, std::string(1, '\0'));
    WriteLine(out, "\xac");
    CloseText(out);
    EXPECT_EQ(ReadAllBytes(path), std::string("X1\r\n\0\r\n\xac\r\n", 10));
}
TEST(TextOutput, AppendKeepsWhatWasThere) {
    TempDir dir;
    const std::string path = dir.Path + "/out.txt";
    WriteAllLines(path, {"a"});
    TextOutput out;
    OpenTextOutput(out, path, true);
    WriteLine(out, "b");
    CloseText(out);
    EXPECT_EQ(ReadAllBytes(path), "a\r\nb\r\n");
}
TEST(TextOutput, AtomicWriteLeavesNoTemporary) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/job.prg", "N1\r\n");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/job.prg"), "N1\r\n");
    EXPECT_EQ(ListFiles(dir.Path, "*").size(), 1u);
}

// Line ends are found among bytes that look like them (0x0B, 0x0C, 0x0E, 0x8A, 0x8D) at any
// place, also in the middle of a run of eight: the lines are those a byte-by-byte split gives.
RC_GTEST_PROP(TextInput, LinesAreSplitAtEveryLineEndAndNowhereElse, ()) {
    const std::string text = *rc::gen::container<std::string>(
        rc::gen::element<char>('a', ' ', '\r', '\n', '\x0B', '\x0C', '\x0E', '\x8A', '\x8D', '\0', 'z'));
    std::vector<std::string> expected;
    for (size_t i = 0; i < text.size();) {
        size_t end = i;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
        expected.push_back(text.substr(i, end - i));
        i = end;
        if (i < text.size() && text[i] == '\r') ++i;
        else if (i < text.size()) { ++i; continue; }
        if (i < text.size() && text[i] == '\n' && text[i - 1] == '\r') ++i;
    }
    TextInput in;
    OpenTextInputFromData(in, "bytes.txt", std::make_shared<const std::string>(text));
    std::vector<std::string> lines;
    while (!AtEnd(in)) lines.push_back(ReadLine(in));
    RC_ASSERT(lines == expected);
}
