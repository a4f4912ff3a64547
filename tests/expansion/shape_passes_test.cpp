// The associative tooling pass and the shape pass: the frame they share (the walk into
// PTemp.tmp, the copy back, the new count), the choice of each pass, and the measure of a part
// drawing's start.
#include <gtest/gtest.h>

#include "common/paths.h"
#include "expansion/passes.h"
#include "expansion/pass_support.h"

using namespace tvx;
using namespace tvx::passtest;

namespace {

// A drawing of nothing that either pass expands.
std::vector<DrawRecord> NothingToExpand() {
    std::vector<DrawRecord> records{Header(0)};
    DrawRecord move = Entity(110);
    move.Point[3] = SinglePoint{10, 20};
    records.push_back(move);
    DrawRecord hit = Entity(210);
    hit.Point[4] = SinglePoint{3.5f, 4.25f};
    hit.ToolA = Tool("A");
    records.push_back(hit);
    DrawRecord line = Entity(120);
    line.Point[5] = SinglePoint{1, 2};
    line.ToolA = Tool("P", 1);
    records.push_back(line);
    DrawRecord arc = Entity(130);
    arc.ToolA = Tool("B");
    arc.LeadIn.LeadKind = 1;  // leads count only with a profiling head
    records.push_back(arc);
    DrawRecord grid = Entity(225);
    grid.Count[1] = 3;
    grid.ToolA = Tool("C");
    records.push_back(grid);
    records.push_back(Entity(311));
    records.push_back(Entity(350));
    DrawRecord part = Entity(510);
    part.ToolA = Tool("U");  // a library letter on a multipart record is no library tool
    records.push_back(part);
    records[0].RecordCount = static_cast<int32_t>(records.size());
    return records;
}

std::string FileBytes(const std::string& path) { return ReadAllBytes(path); }

}  // namespace

TEST(AssociativeToolingPass, ADrawingWithNothingToExpandComesBackByteForByte) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, NothingToExpand());
    const std::string before = FileBytes(drawing);
    AssociativeToolingPass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), before);
    EXPECT_EQ(f.State.Job.WorkingCount, 9);
    EXPECT_FALSE(FileExists(f.Path("PTemp.tmp")));
}

TEST(ShapePass, ADrawingWithNothingToExpandComesBackByteForByte) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, NothingToExpand());
    const std::string before = FileBytes(drawing);
    ShapePass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), before);
    EXPECT_EQ(f.State.Job.WorkingCount, 9);
    EXPECT_FALSE(FileExists(f.Path("PTemp.tmp")));
}

TEST(ShapePass, AProfileLineWithoutLeadsStaysOneRecord) {
    PassFixture f;
    DrawRecord line = Entity(120);
    line.Point[1] = SinglePoint{0, 0};
    line.Point[3] = SinglePoint{10, 0};
    line.ToolA = Tool("P", 1);
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), line});
    ShapePass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0].RecordCount, 2);
    EXPECT_EQ(Bytes(after[1]), Bytes(line));
}

// The walk takes the records that the file holds: a count beyond them neither walks records of
// zeros nor adds them, and the count written back is what the walk made.
TEST(AssociativeToolingPass, ARecordCountBeyondTheFileEndsTheWalkAtTheLastRecordOnDisk) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    DrawRecord hit = Entity(210);
    hit.ToolA = Tool("A");
    WriteDrawing(drawing, {Header(10), hit, hit});
    AssociativeToolingPass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 3u);
    EXPECT_EQ(after[0].RecordCount, 3);
    EXPECT_EQ(f.State.Job.WorkingCount, 3);
}

TEST(ShapePass, ARecordCountBeyondTheFileEndsTheWalkAtTheLastRecordOnDisk) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2000000000), Entity(110)});
    ShapePass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0].RecordCount, 2);
}

// A drawing without records walks nothing, and record 1 is written with the count 0: a record
// of zeros.
TEST(ShapePass, ADrawingWithNoRecordsIsGivenARecordOneOfCountZero) {
    PassFixture f;
    const std::string drawing = f.Path("Empty.drw");
    WriteDrawing(drawing, {});
    ShapePass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(Bytes(after[0]), std::string(RecordLength, '\0'));
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
}

// A header that counts itself alone is walked and copied: the count stays 1.
TEST(AssociativeToolingPass, AHeaderAloneKeepsItsCountOfOne) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(1)});
    const std::string before = FileBytes(drawing);
    AssociativeToolingPass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), before);
    EXPECT_EQ(f.State.Job.WorkingCount, 1);
}

// PTemp.tmp is made empty in the work directory: records of a stale longer file never come back.
TEST(ShapePass, AStaleWorkingFileLeavesNothingBehind) {
    PassFixture f;
    DrawRecord stale = Entity(210);
    stale.ToolA = Tool("A");
    WriteDrawing(f.Path("PTemp.tmp"), {Header(5), stale, stale, stale, stale});
    const std::string drawing = f.Path("Part.drw");
    WriteDrawing(drawing, {Header(2), Entity(110)});
    const std::string before = FileBytes(drawing);
    ShapePass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), before);
    EXPECT_FALSE(FileExists(f.Path("PTemp.tmp")));
}

// ---- MeasurePart ------------------------------------------------------------------------------

TEST(MeasurePart, AMissingDrawingStartsAtTheOrigin) {
    PassFixture f;
    double x = 5, y = 5;
    MeasurePart(f.State, f.Path("Missing.drw"), x, y);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    EXPECT_FALSE(FileExists(f.Path("WormTemp.drw")));
}

namespace {

// The start that MeasurePart finds in a drawing of a header and the records given.
SinglePoint Measured(PassFixture& f, const std::vector<DrawRecord>& records) {
    std::vector<DrawRecord> all{Header(static_cast<int32_t>(records.size()) + 1)};
    all.insert(all.end(), records.begin(), records.end());
    const std::string part = f.Path("Part.drw");
    WriteDrawing(part, all);
    double x = -1, y = -1;
    MeasurePart(f.State, part, x, y);
    return SinglePoint{static_cast<float>(x), static_cast<float>(y)};
}

// A record of the code with each point i at (i, 10 i), so that the point taken tells itself.
DrawRecord Numbered(int16_t code) {
    DrawRecord r = Entity(code);
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{static_cast<float>(i), static_cast<float>(10 * i)};
    return r;
}

}  // namespace

TEST(MeasurePart, EachCodeTellsItsPositionByItsOwnPoint) {
    PassFixture f;
    const std::vector<std::pair<int16_t, int>> table = {
        {110, 3}, {120, 5}, {130, 5}, {521, 5}, {522, 5}, {210, 4}, {220, 1}, {225, 1}, {230, 1}, {350, 4},
    };
    for (const auto& [code, point] : table) {
        const SinglePoint p = Measured(f, {Numbered(code)});
        EXPECT_EQ(p.X, static_cast<float>(point)) << code;
        EXPECT_EQ(p.Y, static_cast<float>(10 * point)) << code;
    }
}

TEST(MeasurePart, AStopWithoutCount2GivesNoStartAndTheWalkGoesOn) {
    PassFixture f;
    DrawRecord stop = Numbered(321);
    DrawRecord counted = Entity(321);
    counted.Count[2] = 1;
    counted.Point[4] = SinglePoint{7, 8};
    const SinglePoint p = Measured(f, {stop, counted, Numbered(210)});
    EXPECT_EQ(p.X, 7.0f);
    EXPECT_EQ(p.Y, 8.0f);
}

TEST(MeasurePart, RecordsThatTellNoPositionAreWalkedOver) {
    PassFixture f;
    const SinglePoint p = Measured(f, {Numbered(311), Numbered(312), Numbered(355), Numbered(322), Numbered(210)});
    EXPECT_EQ(p.X, 4.0f);
    EXPECT_EQ(p.Y, 40.0f);
}

TEST(MeasurePart, ADrawingWithoutAPositionStartsAtTheOrigin) {
    PassFixture f;
    const SinglePoint p = Measured(f, {Numbered(311)});
    EXPECT_EQ(p.X, 0.0f);
    EXPECT_EQ(p.Y, 0.0f);
}

TEST(MeasurePart, RecordOneIsNotAPosition) {
    PassFixture f;
    DrawRecord header = Numbered(110);
    header.RecordCount = 2;
    const std::string part = f.Path("Part.drw");
    WriteDrawing(part, {header, Numbered(210)});
    double x = 0, y = 0;
    MeasurePart(f.State, part, x, y);
    EXPECT_EQ(x, 4.0);
    EXPECT_EQ(y, 40.0);
}

// The shape pass runs on the scratch copy WormTemp.drw in the work directory; the part drawing
// itself is not touched.
TEST(MeasurePart, ThePartDrawingIsMeasuredOnAScratchCopy) {
    PassFixture f;
    DrawRecord circle = Numbered(151);
    circle.ToolA = Tool("A");
    const std::string part = f.Path("Part.drw");
    WriteDrawing(part, {Header(3), circle, Numbered(210)});
    const std::string before = FileBytes(part);
    double x = 0, y = 0;
    MeasurePart(f.State, part, x, y);
    EXPECT_EQ(FileBytes(part), before);
    EXPECT_TRUE(FileExists(f.Path("WormTemp.drw")));
}
