// The multipart records of the generation loop: the list of parts met, the part walk and the
// end of a part.
#include <gtest/gtest.h>

#include "drawing/drawfile.h"
#include "job/generation.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

std::vector<std::string> MultipartBlocks() {
    return {"MULTIPART_LAYOUT=TRUE", "L[VALUE30]", "******", "MULTIPART_CALL=TRUE", "C", "******",
            "MULTIPART_END=TRUE", "E", "******", "CANNED_PUNCH=TRUE", "P[X_AXIS]", "******"};
}

DrawRecord Layout(const char* path) {
    DrawRecord r;
    r.EntityCode = 500;
    r.EntityText = path;
    r.Count[1] = 1;
    r.Count[2] = 1;
    return r;
}

ToolSpec Tool(const char* letter) {
    ToolSpec t;
    t.Present = -1;
    t.Letter = letter;
    t.ToolName = letter;
    t.Size[1] = 10;
    t.WorkType = 10;
    return t;
}

}  // namespace

TEST(Multipart, KnownPartOverwritesTheLastEntryAndTheLostPartCountsAsNew) {
    JobFixture f(MultipartBlocks());
    LoopState& loop = f.State.Loop;
    ValueTables& t = f.State.Tables;
    for (const char* path : {"JOB\\A", "JOB\\B"}) {
        loop.Record = Layout(path);
        DispatchRecord(f.State);
    }
    // Two new parts with no known part between them take the same kept number, 0.
    EXPECT_EQ(loop.PartNames, (std::vector<std::string>{"", "AA0", "BA0"}));
    EXPECT_EQ(loop.PartNumbers, (std::vector<int16_t>{0, 0, 0}));
    t.PostParam[81] = 7;
    loop.PartNumbers[1] = 3;
    loop.Record = Layout("JOB\\A");
    DispatchRecord(f.State);
    EXPECT_TRUE(loop.PartKnown);
    EXPECT_EQ(loop.NextPartNumber, 7);
    EXPECT_EQ(t.PostParam[81], 3.0f);
    EXPECT_EQ(t.PostParam[82], 1.0f);
    // The last entry (B) was overwritten by the known part.
    EXPECT_EQ(loop.PartNames, (std::vector<std::string>{"", "AA0", "AA0"}));
    loop.Record = Layout("JOB\\B");
    DispatchRecord(f.State);
    EXPECT_FALSE(loop.PartKnown);
    EXPECT_EQ(loop.PartNames.size(), 4u);
    EXPECT_EQ(t.PostParam[81], 7.0f);
    EXPECT_EQ(t.PostParam[82], 3.0f);
}

TEST(Multipart, LayoutTakesOneLevelOfThePathAndTheAngleIntoTheKey) {
    JobFixture f(MultipartBlocks());
    DrawRecord r = Layout("C:\\JOBS\\PART7");
    r.Value[10] = 90;
    r.Value[1] = 25;
    r.Count[1] = 3;
    f.State.Loop.Record = r;
    DispatchRecord(f.State);
    EXPECT_EQ(f.State.Tables.PostText[31], "JOBS\\PART7A90");
    EXPECT_EQ(f.State.Tables.PostMachine[85], 25.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[86], 0.0f);  // one part in Y: no pitch
    EXPECT_EQ(f.State.Tables.PostMachine[87], 3.0f);
}

TEST(Multipart, CallSubroutinesIsPrintedOnceAtTheEndOfTheFirstPart) {
    JobFixture f(MultipartBlocks());
    LoopState& loop = f.State.Loop;
    // A part drawing whose one record has a tool other than the tool in work.
    OpenDrawing(loop.PartDrawing, f.Path("part.drw"));
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 2;
    WriteRecord(loop.PartDrawing, 1, header);
    DrawRecord other;
    other.EntityCode = 210;
    other.ToolA = Tool("C");
    WriteRecord(loop.PartDrawing, 2, other);
    OpenDrawing(loop.MainDrawing, f.Path("main.drw"));
    WriteRecord(loop.MainDrawing, 1, header);
    f.State.Job.RecordTotal = 5;
    OpenSubroutineFile(f.State);
    for (int part = 0; part < 2; ++part) {
        loop.Record.ToolA = Tool("A");
        loop.PartIndex = 1;
        loop.PartRecordCount = 2;
        f.State.Engine.SubroutineOutput = true;
        EXPECT_TRUE(FetchRecord(f.State));
        EXPECT_FALSE(f.State.Engine.SubroutineOutput);
    }
    CloseDrawing(loop.PartDrawing);
    CloseDrawing(loop.MainDrawing);
    EXPECT_EQ(f.Program(), "[CALL SUBROUTINES]\r\nLV0.00\r\nC\r\nLV0.00\r\nC\r\n");
    EXPECT_EQ(ReadAllBytes(f.Path("progsubs.sub")), "SUBROUTINES=TRUE\r\nE\r\nE\r\n");
}

TEST(Multipart, PartRecordsOfTheToolInWorkAreWalkedAndOthersSkipped) {
    JobFixture f(MultipartBlocks());
    LoopState& loop = f.State.Loop;
    OpenDrawing(loop.PartDrawing, f.Path("part.drw"));
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 4;
    WriteRecord(loop.PartDrawing, 1, header);
    DrawRecord hit;
    hit.EntityCode = 210;
    hit.ToolA = Tool("C");
    WriteRecord(loop.PartDrawing, 2, hit);
    hit.ToolA = Tool("A");
    hit.Point[3] = SinglePoint{5, 5};
    WriteRecord(loop.PartDrawing, 3, hit);
    DrawRecord stop;
    stop.EntityCode = 321;  // no tool: the match stands as it was
    WriteRecord(loop.PartDrawing, 4, stop);
    loop.Record.ToolA = Tool("A");
    loop.PartIndex = 1;
    loop.PartRecordCount = 4;
    f.State.Engine.SubroutineOutput = true;
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.PartIndex, 3);
    EXPECT_EQ(loop.Record.Point[3].X, 5.0f);
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.PartIndex, 4);
    EXPECT_EQ(loop.Record.EntityCode, 321);
}

TEST(Multipart, FamilyTenWalksTheWholePart) {
    JobFixture f(MultipartBlocks());
    LoopState& loop = f.State.Loop;
    f.State.Tables.PostParam[9] = 10;
    OpenDrawing(loop.PartDrawing, f.Path("part.drw"));
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 2;
    WriteRecord(loop.PartDrawing, 1, header);
    DrawRecord hit;
    hit.EntityCode = 210;
    hit.ToolA = Tool("C");
    WriteRecord(loop.PartDrawing, 2, hit);
    loop.Record.ToolA = Tool("A");
    loop.PartIndex = 1;
    loop.PartRecordCount = 2;
    f.State.Engine.SubroutineOutput = true;
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_TRUE(loop.PartMatch);
    EXPECT_EQ(loop.Record.ToolA.Letter.Text(), "C");
}
