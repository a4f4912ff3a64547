#include "tools/drawing_tool.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <bit>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"
#include "drawing/record.h"
#include "test_support.h"

using namespace tvx;

namespace {

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

// Runs the executable with the arguments, stdout and stderr into files of the directory;
// gives the exit status.
int RunTorvanex(const std::string& dir, const std::string& arguments) {
    const std::string command = std::string("'") + TORVANEX_EXE + "' " + arguments + " >'" + dir + "/stdout' 2>'" +
                                dir + "/stderr'";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string SampleDrawing() { return std::string(TORVANEX_TEST_DATA) + "/../examples/drawings/sample-punch.json"; }

}  // namespace

TEST(DrawingCommands, DumpWritesTheJsonOfAFile) {
    TempDir dir;
    DrawRecord r;
    r.EntityCode = 1;
    r.RecordCount = 1;
    WriteFileAtomically(dir.Path + "/a.drw", Bytes(r));
    std::ostringstream out;
    EXPECT_EQ(DrawingDumpCommand(dir.Path + "/a.drw", out), 0);
    EXPECT_EQ(out.str().substr(0, 31), "[\n  {\n    \"EntityCode\": 1,\n    ");
    EXPECT_EQ(out.str().substr(out.str().size() - 7), "\n  }\n]\n");
    EXPECT_EQ(DrawingFromJson(out.str(), "out.json"), Bytes(r));
}

TEST(DrawingCommands, DumpOfAMissingFileIsAFileFaultAndMakesNoFile) {
    TempDir dir;
    std::ostringstream out;
    try {
        DrawingDumpCommand(dir.Path + "/none.drw", out);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "File not found: " + dir.Path + "/none.drw");
    }
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/none.drw"));
    EXPECT_EQ(out.str(), "");
}

TEST(DrawingCommands, BuildWritesTheDrawing) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/a.json", R"([{"EntityCode": 1}])");
    EXPECT_EQ(DrawingBuildCommand(dir.Path + "/a.json", dir.Path + "/a.drw"), 0);
    DrawRecord r;
    r.EntityCode = 1;
    r.RecordCount = 1;
    EXPECT_EQ(ReadAllBytes(dir.Path + "/a.drw"), Bytes(r));
}

TEST(DrawingCommands, ABadBuildLeavesNoOutputFileBehind) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/a.json", R"([{"EntityCode": 1}, {"EntityCode": 99999}])");
    try {
        DrawingBuildCommand(dir.Path + "/a.json", dir.Path + "/a.drw");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, dir.Path + "/a.json: record 2, EntityCode: out of the range -32768 to 32767");
    }
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/a.drw"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path), std::filesystem::directory_iterator()), 1);
    // A drawing that was there already stays as it was.
    WriteFileAtomically(dir.Path + "/a.drw", "old");
    EXPECT_THROW(DrawingBuildCommand(dir.Path + "/a.json", dir.Path + "/a.drw"), RunEnd);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/a.drw"), "old");
}

TEST(DrawingExecutable, DumpAndBuildGiveBackTheSameBytes) {
    TempDir dir;
    DrawRecord a;
    a.EntityCode = 1;
    a.RecordCount = 3;
    a.EntityText = "ALU \xac 2";
    DrawRecord b;
    b.EntityCode = 210;
    b.EntityName = "Punch";
    b.Point[4] = SinglePoint{0.1f, -0.0f};
    b.Value[7] = std::bit_cast<float>(0x7fa00001u);
    b.Spare[2] = RawCell{1, 0, 255, 7};
    ParseToolString("E,RECT 10 X 5,10,5,0,0,3,21,0,90,2", b.ToolA);
    DrawRecord c;
    c.EntityCode = 350;
    c.After = AfterAction{2, 1.5f};
    const std::string original = Bytes(a) + Bytes(b) + Bytes(c);
    WriteFileAtomically(dir.Path + "/a.drw", original);
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing dump '" + dir.Path + "/a.drw'"), 0);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stderr"), "");
    std::filesystem::rename(dir.Path + "/stdout", dir.Path + "/a.json");
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing build '" + dir.Path + "/a.json' -o '" + dir.Path + "/b.drw'"), 0);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stdout"), "");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/b.drw"), original);
}

TEST(DrawingExecutable, ABadBuildEndsWithStatusTwoAndNoFile) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/a.json", R"([{}, {"ToolA": {"Letter": "AB"}}])");
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing build '" + dir.Path + "/a.json' -o '" + dir.Path + "/a.drw'"), 2);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stderr"),
              dir.Path + "/a.json: record 2, ToolA.Letter: the text has 2 characters, the field holds 1\n");
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/a.drw"));
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/a.drw.part"));
}

TEST(DrawingExecutable, ADumpOfABadSizeEndsWithStatusTwoAndNoOutput) {
    TempDir dir;
    WriteFileAtomically(dir.Path + "/a.drw", std::string(1000, 'x'));
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing dump '" + dir.Path + "/a.drw'"), 2);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stdout"), "");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stderr"),
              dir.Path + "/a.drw: the size of a drawing must be a multiple of 518 bytes, not 1000 bytes\n");
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing dump '" + dir.Path + "/none.drw'"), 2);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stderr"), "File not found: " + dir.Path + "/none.drw\n");
}

TEST(DrawingExecutable, TheSamplePunchDrawingBuildsAndReadsBack) {
    TempDir dir;
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing build '" + SampleDrawing() + "' -o '" + dir.Path + "/s.drw'"), 0);
    const std::string bytes = ReadAllBytes(dir.Path + "/s.drw");
    ASSERT_EQ(bytes.size(), 8u * 518);
    const DrawRecord first = DecodeRecord(bytes.substr(0, 518));
    EXPECT_EQ(first.RecordCount, 8);
    EXPECT_EQ(first.EntityText.Trimmed(), "MILD STEEL 1.5");
    EXPECT_EQ(first.Value[1], 2500.0f);
    EXPECT_EQ(first.Value[2], 1250.0f);
    EXPECT_EQ(first.Value[3], 1.5f);
    const DrawRecord hit = DecodeRecord(bytes.substr(518, 518));
    EXPECT_EQ(hit.EntityCode, 210);
    EXPECT_EQ(hit.EntityName.Trimmed(), "Punch");
    EXPECT_EQ(hit.Point[4].X, 100.0f);
    EXPECT_EQ(hit.ToolA.Letter.Text(), "A");
    EXPECT_EQ(hit.ToolA.ToolName.Trimmed(), "RND 10");
    EXPECT_EQ(hit.ToolA.Size[1], 10.0f);
    EXPECT_EQ(hit.ToolA.ToolNumber, 1);
    EXPECT_EQ(hit.ToolA.WorkType, 10);
    EXPECT_EQ(hit.ToolA.StageIndex, 1);
    EXPECT_TRUE(IsPunchWork(hit.ToolA.WorkType));
    EXPECT_EQ(DecodeRecord(bytes.substr(5 * 518, 518)).EntityCode, 350);
    EXPECT_EQ(DecodeRecord(bytes.substr(7 * 518, 518)).EntityCode, 311);
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing dump '" + dir.Path + "/s.drw'"), 0);
    std::filesystem::rename(dir.Path + "/stdout", dir.Path + "/s.json");
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing build '" + dir.Path + "/s.json' -o '" + dir.Path + "/t.drw'"), 0);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/t.drw"), bytes);
}
