// The associative tooling pass and the shape pass: the frame they share (the walk into
// PTemp.tmp, the copy back, the new count), the choice of each pass, and the measure of a part
// drawing's start.
#include <gtest/gtest.h>

#include "common/fault.h"
#include "common/paths.h"
#include "expansion/passes.h"
#include "expansion/pass_support.h"
#include "splitting/split_dispatch.h"
#include "splitting/split_output.h"
#include "tooling/library.h"

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

// A single-D shape whose flat lies far outside its circle: it cannot be split.
DrawRecord UnsplittableSingleD() {
    DrawRecord singleD = Entity(152);
    singleD.Point[4] = SinglePoint{5, 5};
    singleD.Value[1] = 5;
    singleD.Value[2] = 30;
    return singleD;
}

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

// ---- With the split dispatch ----------------------------------------------------------------

namespace {

DrawRecord LeadedLine(int16_t leadIn, int16_t leadOut) {
    DrawRecord line = Entity(120);
    line.Point[1] = SinglePoint{0, 0};
    line.Point[3] = SinglePoint{10, 0};
    line.Value[1] = 10;
    line.ToolA = Tool("P", 1);
    line.LeadIn = LeadSpec{leadIn, 2, 270, 0};
    line.LeadOut = LeadSpec{leadOut, 2, 90, 0};
    line.After = AfterAction{1, 0};
    return line;
}

// A rectangle 20 x 10 about (100, 50) with a library tool whose drawing is missing: the split
// keeps it in the drawing, without its tools.
DrawRecord UntooledRectangle(int16_t corner) {
    DrawRecord r = Entity(156);
    r.Value[1] = 20;
    r.Value[2] = 10;
    r.Point[4] = SinglePoint{100, 50};
    r.Count[3] = corner;
    r.ToolA = Tool("U", 10, 7);
    return r;
}

std::vector<DrawRecord> Passed(PassFixture& f, const std::vector<DrawRecord>& records, void (*pass)(RunState&, const std::string&)) {
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, records);
    pass(f.State, drawing);
    std::vector<DrawRecord> after = ReadDrawing(drawing);
    after.resize(static_cast<size_t>(after.at(0).RecordCount));
    return after;
}

}  // namespace

TEST(ShapePass, AProfileLineWithALeadBecomesUpToThreeRecords) {
    PassFixture f;
    std::vector<DrawRecord> after = Passed(f, {Header(2), LeadedLine(1, 1)}, ShapePass);
    ASSERT_EQ(after.size(), 4u);
    EXPECT_EQ(after[0].RecordCount, 4);
    // Lead-in, the line without its leads and action, lead-out with the action.
    EXPECT_EQ(after[1].EntityCode, 120);
    EXPECT_EQ(after[1].Count[8], 1);
    EXPECT_EQ(after[2].EntityCode, 120);
    EXPECT_EQ(after[2].LeadIn.LeadKind, 0);
    EXPECT_EQ(after[2].After.ActionCode, 0);
    EXPECT_EQ(after[2].Point[3].X, 10.0f);
    EXPECT_EQ(after[3].Count[8], 2);
    EXPECT_EQ(after[3].After.ActionCode, 1);
    EXPECT_EQ(f.State.Job.WorkingCount, 4);

    after = Passed(f, {Header(2), LeadedLine(0, -1)}, ShapePass);
    ASSERT_EQ(after.size(), 3u);
    EXPECT_EQ(after[1].LeadOut.LeadKind, 0);
    EXPECT_EQ(after[2].Count[8], 2);
}

// The records behind an entity that grows are put behind its records, in the same order.
TEST(ShapePass, TheRecordsOfASplitStandWhereTheEntityStood) {
    PassFixture f;
    DrawRecord hit = Entity(210);
    hit.Point[4] = SinglePoint{1, 1};
    hit.ToolA = Tool("A");
    DrawRecord circle = Entity(151);
    circle.Point[4] = SinglePoint{5, 5};
    circle.Value[1] = 2;
    circle.ToolA = Tool("P", 1);  // a circle cut by a profiling head without leads: one arc
    DrawRecord dwell = Entity(311);
    dwell.Value[1] = 2;
    const std::vector<DrawRecord> after = Passed(f, {Header(5), hit, circle, LeadedLine(1, 0), dwell}, ShapePass);
    ASSERT_EQ(after.size(), 6u);
    EXPECT_EQ(Bytes(after[1]), Bytes(hit));
    EXPECT_EQ(after[2].EntityCode, 130);
    EXPECT_EQ(after[2].EntityName.Trimmed(), "Arc Profile");
    EXPECT_EQ(after[2].Point[4].X, 5.0f);
    EXPECT_EQ(after[3].Count[8], 1);
    EXPECT_EQ(after[4].EntityCode, 120);
    EXPECT_EQ(after[4].After.ActionCode, 0);
    EXPECT_EQ(Bytes(after[5]), Bytes(dwell));
}

TEST(ShapePass, AProfileLineOfAnotherLetterStaysOneRecordWithItsLeads) {
    PassFixture f;
    DrawRecord line = LeadedLine(1, 1);
    line.ToolA = Tool("B");
    const std::vector<DrawRecord> after = Passed(f, {Header(2), line}, ShapePass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(Bytes(after[1]), Bytes(line));
}

// The associative tooling pass leaves profiles with leads to the shape pass.
TEST(AssociativeToolingPass, AProfileLineWithALeadIsLeftAsItIs) {
    PassFixture f;
    const DrawRecord line = LeadedLine(1, 1);
    const std::vector<DrawRecord> after = Passed(f, {Header(2), line}, AssociativeToolingPass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(Bytes(after[1]), Bytes(line));
}

TEST(ShapePass, ACornerCodeIsAppliedToTheRectanglesCentre) {
    struct Case {
        int16_t Corner;
        float X, Y;
        int16_t After;
    };
    for (const Case& c : {Case{0, 100, 50, -1}, Case{1, 100, 50, -1}, Case{2, 100, -50, -1}, Case{3, -100, 50, -1},
                          Case{4, -100, -50, -1}, Case{-1, 100, 50, -1}}) {
        PassFixture f;
        const std::vector<DrawRecord> after = Passed(f, {Header(2), UntooledRectangle(c.Corner)}, ShapePass);
        ASSERT_EQ(after.size(), 2u);
        EXPECT_EQ(after[1].EntityCode, 156) << c.Corner;
        EXPECT_EQ(after[1].Point[4].X, c.X) << c.Corner;
        EXPECT_EQ(after[1].Point[4].Y, c.Y) << c.Corner;
        EXPECT_EQ(after[1].Count[3], c.After) << c.Corner;
        EXPECT_EQ(after[1].ToolA.Present, 0) << c.Corner;
    }
}

// A corner code outside -1 and 0 to 4 names no corner: the rectangle is split as it stands, its
// code kept.
TEST(ShapePass, ARectangleWithAnUnknownCornerCodeIsSplitAsItStands) {
    for (int16_t corner : {5, -2, 100}) {
        PassFixture f;
        const std::vector<DrawRecord> after = Passed(f, {Header(2), UntooledRectangle(corner)}, ShapePass);
        ASSERT_EQ(after.size(), 2u);
        EXPECT_EQ(after[1].Point[4].X, 100.0f) << corner;
        EXPECT_EQ(after[1].Point[4].Y, 50.0f) << corner;
        EXPECT_EQ(after[1].Count[3], corner);
    }
}

// The corner code is spent once: the rectangle that a walk gives back (here kept by a missing
// library drawing, then given its library tool again) is not mirrored by the next walk.
TEST(ShapePass, ARectangleWithCornerCode2WalkedTwiceIsMirroredOnce) {
    PassFixture f;
    std::vector<DrawRecord> after = Passed(f, {Header(2), UntooledRectangle(2)}, ShapePass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[1].Point[4].Y, -50.0f);
    DrawRecord again = after[1];
    again.ToolA = Tool("U", 10, 7);
    after = Passed(f, {Header(2), again}, ShapePass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[1].Point[4].Y, -50.0f);
    EXPECT_EQ(after[1].Count[3], -1);
}

// The normalised rectangle is put back into the drawing at its own number before it is split:
// where the drawing shrinks, it is still there behind the new count, with its tools.
TEST(ShapePass, TheNormalisedRectangleIsWrittenBackAtItsOwnNumber) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(3), Entity(172), UntooledRectangle(3)});
    ShapePass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 3u);
    EXPECT_EQ(after[0].RecordCount, 2);
    EXPECT_EQ(after[1].Point[4].X, -100.0f);
    EXPECT_EQ(after[1].ToolA.Present, 0);
    EXPECT_EQ(after[2].Point[4].X, -100.0f);
    EXPECT_EQ(after[2].Count[3], -1);
    EXPECT_EQ(after[2].ToolA.Letter.Text(), "U");
}

TEST(AssociativeToolingPass, ARectangleKeepsItsCornerCode) {
    PassFixture f;
    const std::vector<DrawRecord> after = Passed(f, {Header(2), UntooledRectangle(2)}, AssociativeToolingPass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[1].Count[3], 2);
    EXPECT_EQ(after[1].Point[4].Y, 50.0f);
}

// Record 1 is walked like any other record, but the drawing's own record 1 stays: only its
// count is written.
TEST(AssociativeToolingPass, RecordOneIsWalkedButKeepsItsFormApartFromTheCount) {
    PassFixture f;
    DrawRecord header = UntooledRectangle(0);
    header.RecordCount = 2;
    DrawRecord hit = Entity(210);
    hit.ToolA = Tool("A");
    const std::vector<DrawRecord> after = Passed(f, {header, hit}, AssociativeToolingPass);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(Bytes(after[0]), Bytes(header));
    EXPECT_EQ(Bytes(after[1]), Bytes(hit));
    EXPECT_EQ(f.State.Job.WorkingCount, 2);
}

namespace {

// A rectangle whose library tool "HOOK" places two hits, (10, 0) and (0, 4), turned by 90.
DrawRecord HookedRectangle(PassFixture& f) {
    DrawRecord rectangle = UntooledRectangle(0);
    rectangle.Value[10] = 90;
    rectangle.After = AfterAction{2, 0.5f};
    WriteAllLines(JobShapePath(f.State, rectangle, LookupFileMode), {"\"HOOK\",7,0,90,\"7.drw\"", "******"});
    DrawRecord first = Entity(210);
    first.Point[4] = SinglePoint{10, 0};
    first.ToolA = Tool("A");
    DrawRecord second = first;
    second.Point[4] = SinglePoint{0, 4};
    WriteDrawing(JobShapePath(f.State, rectangle, ToolDrawingMode), {Header(3), first, second});
    return rectangle;
}

}  // namespace

TEST(AssociativeToolingPass, ALibraryToolIsReplacedByItsPlacedDrawing) {
    PassFixture f;
    const DrawRecord rectangle = HookedRectangle(f);
    DrawRecord dwell = Entity(311);
    const std::vector<DrawRecord> after = Passed(f, {Header(3), rectangle, dwell}, AssociativeToolingPass);
    ASSERT_EQ(after.size(), 4u);
    // Turned by 90 and moved onto (100, 50); the action after on the last hit.
    EXPECT_NEAR(after[1].Point[4].X, 100, 1e-5);
    EXPECT_NEAR(after[1].Point[4].Y, 60, 1e-5);
    EXPECT_EQ(after[1].After.ActionCode, 0);
    EXPECT_NEAR(after[2].Point[4].X, 96, 1e-5);
    EXPECT_NEAR(after[2].Point[4].Y, 50, 1e-5);
    EXPECT_EQ(after[2].After.ActionCode, 2);
    EXPECT_EQ(after[3].EntityCode, 311);
    EXPECT_FALSE(FileExists(f.Path("PITooling.drw")));
}

TEST(AssociativeToolingPass, ShapesWithoutALibraryToolAreLeftToTheShapePass) {
    PassFixture f;
    DrawRecord circle = Entity(151);
    circle.Value[1] = 5;
    circle.ToolA = Tool("A");
    DrawRecord oblong = Entity(156);
    oblong.Value[1] = 5;
    oblong.Value[2] = 3;
    const std::vector<DrawRecord> after = Passed(f, {Header(3), circle, oblong}, AssociativeToolingPass);
    ASSERT_EQ(after.size(), 3u);
    EXPECT_EQ(Bytes(after[1]), Bytes(circle));
    EXPECT_EQ(Bytes(after[2]), Bytes(oblong));
}

// A shape split into a shape is split further on the next run: a rectangle whose library drawing
// is missing is kept without its tools by the first run and split into its outline by the
// second, which starts at the rectangle's first corner, Point[1].
TEST(MeasurePart, ALibraryRectangleWhoseDrawingIsMissingStartsAtItsFirstCorner) {
    PassFixture f;
    DrawRecord rectangle = UntooledRectangle(0);
    rectangle.Point[1] = SinglePoint{90, 45};
    const SinglePoint p = Measured(f, {rectangle});
    EXPECT_EQ(p.X, 90.0f);
    EXPECT_EQ(p.Y, 45.0f);
}

TEST(MeasurePart, ACustomToolWhoseDrawingIsMissingStartsAtItsPosition) {
    PassFixture f;
    DrawRecord custom = Numbered(175);
    custom.EntityText = "HOOK";
    custom.ToolA = Tool("U", 10, 7);
    const SinglePoint p = Measured(f, {custom});
    EXPECT_EQ(p.X, 4.0f);
    EXPECT_EQ(p.Y, 40.0f);
}

// A split that cannot be made ends the run with a fault that names the record and the drawing.
TEST(ShapePass, AShapeThatCannotBeSplitNamesItsRecordAndDrawing) {
    PassFixture f;
    const DrawRecord singleD = UnsplittableSingleD();
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(3), Entity(110), singleD});
    try {
        ShapePass(f.State, drawing);
        FAIL() << "the split went through";
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text.rfind("Cannot split record 3 of Progmain.drw (code 152): ", 0), 0u) << end.Text;
    }
}

// ---- The frame's cost: what a walk writes -------------------------------------------------------

namespace {

// A circle that a profiling head cuts without leads: the shape pass splits it into one arc.
DrawRecord CutCircle(float x) {
    DrawRecord circle = Entity(151);
    circle.Point[4] = SinglePoint{x, 5};
    circle.Value[1] = 2;
    circle.ToolA = Tool("P", 1);
    return circle;
}

DrawRecord Hit(float x) {
    DrawRecord hit = Entity(210);
    hit.Point[4] = SinglePoint{x, 1};
    hit.ToolA = Tool("A");
    return hit;
}

// The bytes a walk of the shape pass leaves, made the plain way: every record of the walk
// (a copied record, or the records of a split) put behind the last at its number of a whole
// new drawing, records 2 up to the new count of that written over the old drawing, and the new
// count in record 1.
std::string PlainRewrite(PassFixture& f, const std::string& drawing, const std::vector<bool>& splits) {
    std::string bytes = ReadAllBytes(drawing);
    const std::vector<DrawRecord> records = ReadDrawing(drawing);
    std::vector<DrawRecord> made;
    int32_t counter = 0;
    for (size_t i = 0; i < records.size(); ++i) {
        if (splits.at(i)) {
            DrawRecord record = records[i];
            SplitOutput out = ListOutput(f.State.Machine, made, counter, MainPathChoices);
            SplitRecord(out, record);
        } else {
            made.push_back(records[i]);
            ++counter;
        }
    }
    if (bytes.size() < made.size() * RecordLength) bytes.resize(made.size() * RecordLength, '\0');
    for (size_t i = 1; i < made.size(); ++i) bytes.replace(i * RecordLength, RecordLength, Bytes(made[i]));
    DrawRecord first = records.at(0);
    first.RecordCount = counter;
    bytes.replace(0, RecordLength, Bytes(first));
    return bytes;
}

// A drawing of `before` hits, the records given, `after` hits.
std::vector<DrawRecord> Around(int before, const std::vector<DrawRecord>& middle, int after) {
    std::vector<DrawRecord> records{Header(0)};
    for (int i = 0; i < before; ++i) records.push_back(Hit(static_cast<float>(i)));
    records.insert(records.end(), middle.begin(), middle.end());
    for (int i = 0; i < after; ++i) records.push_back(Hit(static_cast<float>(1000 + i)));
    records[0].RecordCount = static_cast<int32_t>(records.size());
    return records;
}

std::vector<bool> SplitsOf(const std::vector<DrawRecord>& records) {
    std::vector<bool> splits;
    for (const DrawRecord& r : records) splits.push_back(r.EntityCode == 151);
    return splits;
}

}  // namespace

// A walk that splits nothing makes no working file at all: with a work directory that cannot
// hold one, it still goes through.
TEST(ShapePass, AWalkThatSplitsNothingMakesNoWorkingFile) {
    PassFixture f;
    f.State.Job.WorkDir = f.Path("Missing/");
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, Around(600, {}, 0));
    const std::string before = FileBytes(drawing);
    ShapePass(f.State, drawing);
    AssociativeToolingPass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), before);
    EXPECT_EQ(f.State.Job.WorkingCount, 601);
}

// The split of a record in the middle gives the drawing that a rewrite of every record gives.
TEST(ShapePass, ASplitInTheMiddleGivesTheBytesOfAWholeRewrite) {
    for (const int before : {0, 1, 255, 256, 300, 700}) {
        PassFixture f;
        const std::string drawing = f.Path("Progmain.drw");
        const std::vector<DrawRecord> records = Around(before, {CutCircle(1), Hit(2), CutCircle(3)}, 300);
        WriteDrawing(drawing, records);
        const std::string expected = PlainRewrite(f, drawing, SplitsOf(records));
        ShapePass(f.State, drawing);
        EXPECT_EQ(FileBytes(drawing), expected) << before;
        EXPECT_EQ(f.State.Job.WorkingCount, static_cast<int32_t>(records.size())) << before;
        EXPECT_FALSE(FileExists(f.Path("PTemp.tmp")));
    }
}

TEST(ShapePass, ASplitOfTheLastRecordGivesTheBytesOfAWholeRewrite) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    const std::vector<DrawRecord> records = Around(400, {CutCircle(1)}, 0);
    WriteDrawing(drawing, records);
    const std::string expected = PlainRewrite(f, drawing, SplitsOf(records));
    ShapePass(f.State, drawing);
    EXPECT_EQ(FileBytes(drawing), expected);
}

// A partial last record is written whole, with zeros behind its bytes, as the copy back of a
// rewrite writes it; also when nothing is split.
TEST(ShapePass, APartialLastRecordComesBackWholeWhetherOrNotAnythingIsSplit) {
    for (const bool split : {false, true}) {
        PassFixture f;
        const std::string drawing = f.Path("Progmain.drw");
        std::vector<DrawRecord> records = Around(3, {}, 0);
        if (split) records.insert(records.begin() + 2, CutCircle(1));
        records[0].RecordCount = static_cast<int32_t>(records.size()) + 1;
        WriteDrawing(drawing, records);
        WriteFileAtomically(drawing, FileBytes(drawing) + Bytes(Hit(9)).substr(0, 300));
        const std::string expected =
            PlainRewrite(f, drawing, SplitsOf(ReadDrawing(drawing)));
        ShapePass(f.State, drawing);
        EXPECT_EQ(FileBytes(drawing).size(), (records.size() + 1) * RecordLength) << split;
        EXPECT_EQ(FileBytes(drawing), expected) << split;
    }
}

// A drawing that shrinks keeps the records behind its new count, and a record that a split
// leaves unchanged in its place ahead of the first change is not written again.
TEST(AssociativeToolingPass, ADrawingThatShrinksKeepsItsOldRecordsBehindTheNewCount) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    DrawRecord empty = UntooledRectangle(0);
    // A library drawing of its header alone places nothing: the entity goes.
    WriteAllLines(JobShapePath(f.State, empty, LookupFileMode), {"\"HOOK\",7,0,90,\"7.drw\"", "******"});
    WriteDrawing(JobShapePath(f.State, empty, ToolDrawingMode), {Header(1)});
    const std::vector<DrawRecord> records = Around(300, {empty}, 5);
    WriteDrawing(drawing, records);
    const std::string before = FileBytes(drawing);
    AssociativeToolingPass(f.State, drawing);
    const std::string after = FileBytes(drawing);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(ReadDrawing(drawing).at(0).RecordCount, static_cast<int32_t>(records.size()) - 1);
    // Records 2 to 301 as they were, then the five hits one place up, then the last hit again.
    EXPECT_EQ(after.substr(RecordLength, 300 * RecordLength), before.substr(RecordLength, 300 * RecordLength));
    EXPECT_EQ(after.substr(301 * RecordLength, 5 * RecordLength), before.substr(302 * RecordLength, 5 * RecordLength));
    EXPECT_EQ(after.substr(306 * RecordLength), before.substr(306 * RecordLength));
}

// A split that fails leaves the working file as far as it was written: the records before the
// split in whole runs of 256, as a walk that wrote every record leaves it.
TEST(ShapePass, AFailedSplitLeavesTheWorkingFileAsAWholeRewriteLeavesIt) {
    PassFixture f;
    const DrawRecord singleD = UnsplittableSingleD();
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, Around(599, {singleD}, 3));
    try {
        ShapePass(f.State, drawing);
        FAIL() << "the split went through";
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Text.rfind("Cannot split record 601 of Progmain.drw (code 152): ", 0), 0u) << end.Text;
    }
    EXPECT_EQ(FileBytes(f.Path("PTemp.tmp")), FileBytes(drawing).substr(0, 512 * RecordLength));
}

// A walk that changed the drawing takes no census: the cruciform pass walks what it left.
TEST(CruciformCensus, AToolingWalkThatReplacesARecordTakesNone) {
    PassFixture f;
    const DrawRecord rectangle = HookedRectangle(f);
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), rectangle});
    CruciformCensus census;
    census.Candidates = true;  // from an earlier walk: taken anew
    AssociativeToolingPass(f.State, drawing, census);
    EXPECT_FALSE(census.Taken);
    EXPECT_FALSE(census.Candidates);
    EXPECT_EQ(ReadDrawing(drawing).size(), 3u);
}
