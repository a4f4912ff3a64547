// `torvanex drawing generate`: large drawings for measuring whole jobs.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "job/post_main.h"
#include "test_support.h"
#include "tools/demo_tool.h"
#include "tools/drawing_tool.h"

using namespace tvx;

namespace {

int RunTorvanex(const std::string& dir, const std::string& arguments) {
    const std::string command = std::string("'") + TORVANEX_EXE + "' " + arguments + " >'" + dir + "/stdout' 2>'" +
                                dir + "/stderr'";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::vector<DrawRecord> ReadDrawing(const std::string& path) {
    return DecodeRecords(ReadAllBytes(path));
}

bool Same(const SinglePoint& a, const SinglePoint& b) { return a.X == b.X && a.Y == b.Y; }

}  // namespace

TEST(DrawingGenerate, PunchHasTheExampleHeaderAndNHitsOnTheSheet) {
    TempDir dir;
    const std::string path = dir.Path + "/p.drw";
    WriteGeneratedDrawing("punch", 2500, path);
    EXPECT_EQ(std::filesystem::file_size(path), 2501u * RecordLength);
    const std::vector<DrawRecord> records = ReadDrawing(path);
    ASSERT_EQ(records.size(), 2501u);
    const DrawRecord& header = records[0];
    EXPECT_EQ(header.EntityCode, 1);
    EXPECT_EQ(header.RecordCount, 2501);
    EXPECT_EQ(header.EntityText.Trimmed(), "MILD STEEL 2.0");
    EXPECT_EQ(header.Value[1], 1250.0f);
    EXPECT_EQ(header.Value[2], 1000.0f);
    EXPECT_EQ(header.Value[3], 2.0f);
    for (size_t i = 1; i < records.size(); ++i) {
        const DrawRecord& hit = records[i];
        ASSERT_EQ(hit.EntityCode, 210) << i;
        EXPECT_EQ(hit.EntityName.Trimmed(), "Punch");
        // The largest tool of the example reaches 20 from its centre: it stays on the sheet.
        EXPECT_GE(hit.Point[1].X, 20.0f);
        EXPECT_GE(hit.Point[1].Y, 20.0f);
        EXPECT_LE(hit.Point[1].X, 1230.0f);
        EXPECT_LE(hit.Point[1].Y, 980.0f);
    }
    // The first hit: the example's first tool at the grid's first place.
    const DrawRecord& first = records[1];
    EXPECT_EQ(first.ToolA.ToolName.Trimmed(), "RND 10");
    EXPECT_EQ(first.ToolA.Letter.Text(), "A");
    EXPECT_EQ(first.ToolA.ToolNumber, 101);
    EXPECT_EQ(first.ToolA.WorkType, 10);
    EXPECT_EQ(first.ToolA.Size[1], 10.0f);
    for (int p = 1; p <= 6; ++p) EXPECT_TRUE(Same(first.Point[p], SinglePoint{30, 30})) << p;
    EXPECT_TRUE(Same(records[2].Point[1], SinglePoint{40, 30}));
    // Every 1,000 hits the next tool of the example's hits.
    EXPECT_EQ(records[1000].ToolA.ToolName.Trimmed(), "RND 10");
    EXPECT_EQ(records[1001].ToolA.ToolName.Trimmed(), "SQ 20");
    EXPECT_EQ(records[1001].ToolA.ToolNumber, 102);
    EXPECT_EQ(records[2001].ToolA.ToolName.Trimmed(), "RECT 40X10");
}

TEST(DrawingGenerate, LaserOutlinesAreClosedAndReachedByARapidMove) {
    TempDir dir;
    const std::string path = dir.Path + "/l.drw";
    WriteGeneratedDrawing("laser", 27, path);
    const std::vector<DrawRecord> records = ReadDrawing(path);
    ASSERT_EQ(records.size(), 28u);
    EXPECT_EQ(records[0].RecordCount, 28);
    EXPECT_EQ(records[0].EntityText.Trimmed(), "STAINLESS 2.0");
    EXPECT_EQ(records[0].Value[1], 3000.0f);
    EXPECT_EQ(records[0].Value[2], 1500.0f);
    const int16_t codes[] = {110, 120, 130, 120, 130, 120, 130, 120, 130};
    SinglePoint cutEnd{0, 0};
    for (size_t outline = 0; outline < 3; ++outline) {
        const DrawRecord& move = records[1 + outline * 9];
        ASSERT_EQ(move.EntityCode, 110);
        EXPECT_EQ(move.EntityName.Trimmed(), "Move");
        EXPECT_TRUE(Same(move.Point[1], cutEnd)) << outline;
        for (size_t piece = 0; piece < 9; ++piece) {
            const DrawRecord& r = records[1 + outline * 9 + piece];
            ASSERT_EQ(r.EntityCode, codes[piece]) << outline << " " << piece;
            EXPECT_EQ(r.ToolA.ToolName.Trimmed(), "LASER");
            EXPECT_EQ(r.ToolA.Letter.Text(), "P");
            if (piece > 0) {
                // Each piece starts where the one before it ended.
                const DrawRecord& before = records[outline * 9 + piece];
                EXPECT_TRUE(Same(r.Point[1], before.Point[3])) << outline << " " << piece;
                EXPECT_EQ(r.Side, -1);
            }
        }
        // The last corner closes the outline where its first side started.
        const DrawRecord& last = records[9 + outline * 9];
        EXPECT_TRUE(Same(last.Point[3], move.Point[3])) << outline;
        cutEnd = last.Point[3];
    }
    // The first outline: a square of 10 at (20, 20) with corners of radius 2.
    EXPECT_TRUE(Same(records[1].Point[3], SinglePoint{22, 20}));
    EXPECT_TRUE(Same(records[2].Point[3], SinglePoint{28, 20}));
    EXPECT_EQ(records[2].Value[1], 6.0f);
    EXPECT_EQ(records[2].Value[10], 0.0f);
    EXPECT_TRUE(Same(records[3].Point[4], SinglePoint{28, 22}));
    EXPECT_EQ(records[3].Value[1], 2.0f);
    EXPECT_EQ(records[3].Value[10], 270.0f);
    EXPECT_EQ(records[3].Value[11], 90.0f);
    EXPECT_TRUE(Same(records[3].Point[3], SinglePoint{30, 22}));
    // The second outline stands one pitch to the right; its move runs along the row.
    EXPECT_TRUE(Same(records[10].Point[3], SinglePoint{42, 20}));
    EXPECT_EQ(records[10].Value[1], 20.0f);
    EXPECT_EQ(records[10].Value[10], 0.0f);
}

TEST(DrawingGenerate, TheSameNumberGivesTheSameBytes) {
    TempDir dir;
    for (const std::string kind : {"punch", "laser"}) {
        WriteGeneratedDrawing(kind, 3000, dir.Path + "/a.drw");
        WriteGeneratedDrawing(kind, 3000, dir.Path + "/b.drw");
        EXPECT_EQ(ReadAllBytes(dir.Path + "/a.drw"), ReadAllBytes(dir.Path + "/b.drw")) << kind;
        // A longer drawing begins with the same entity records.
        WriteGeneratedDrawing(kind, 3001, dir.Path + "/c.drw");
        EXPECT_EQ(ReadAllBytes(dir.Path + "/c.drw").substr(RecordLength, 3000 * RecordLength),
                  ReadAllBytes(dir.Path + "/a.drw").substr(RecordLength))
            << kind;
    }
}

TEST(DrawingGenerate, NoRecordsGiveTheHeaderAlone) {
    TempDir dir;
    WriteGeneratedDrawing("laser", 0, dir.Path + "/z.drw");
    const std::vector<DrawRecord> records = ReadDrawing(dir.Path + "/z.drw");
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].RecordCount, 1);
}

TEST(DrawingGenerate, AStaleLongerFileLeavesNothingBehind) {
    TempDir dir;
    WriteGeneratedDrawing("punch", 50, dir.Path + "/a.drw");
    WriteGeneratedDrawing("punch", 10, dir.Path + "/a.drw");
    EXPECT_EQ(std::filesystem::file_size(dir.Path + "/a.drw"), 11u * RecordLength);
}

TEST(DrawingGenerate, GeneratedDrawingsRunAsTheExamplesJobs) {
    for (const auto& [kind, records] : {std::pair<std::string, int32_t>{"punch", 2500}, {"laser", 900}}) {
        TempDir dir;
        ASSERT_TRUE(UnpackExample(kind, dir.Path));
        WriteGeneratedDrawing(kind, records, dir.Path + "/work/Progmain.drw");
        ASSERT_EQ(RunJob(dir.Path + "/work"), 0) << kind;
        const std::vector<std::string> program = ReadAllLines(dir.Path + "/work/Progmain.prg");
        EXPECT_GT(program.size(), static_cast<size_t>(records)) << kind;
    }
}

TEST(DrawingGenerate, TheExecutableWritesTheDrawingAndRefusesABadCount) {
    TempDir dir;
    ASSERT_EQ(RunTorvanex(dir.Path, "drawing generate --kind punch --records 40 -o '" + dir.Path + "/a.drw'"), 0);
    WriteGeneratedDrawing("punch", 40, dir.Path + "/b.drw");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/a.drw"), ReadAllBytes(dir.Path + "/b.drw"));
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stdout"), "");

    EXPECT_EQ(RunTorvanex(dir.Path, "drawing generate --kind punch --records 12x -o '" + dir.Path + "/c.drw'"), 2);
    EXPECT_NE(ReadAllBytes(dir.Path + "/stderr").find("12x"), std::string::npos);
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing generate --kind punch --records -3 -o '" + dir.Path + "/c.drw'"), 2);
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing generate --kind punch --records 2147483647 -o '" + dir.Path + "/c.drw'"),
              2);
    EXPECT_EQ(RunTorvanex(dir.Path, "drawing generate --kind plasma --records 3 -o '" + dir.Path + "/c.drw'"), 2);
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/c.drw"));
}
