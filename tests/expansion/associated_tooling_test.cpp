// The placing of an entity's library tooling on AssTool.drw: the tool's drawing from its size
// folder, its radius-punch arcs made hits, turned from its stored angle to the entity's, moved
// onto the entity, with the entity's action after it on the last record.
#include <gtest/gtest.h>

#include "common/numeric.h"
#include "common/paths.h"
#include "expansion/pass_support.h"
#include "expansion/passes.h"
#include "tooling/library.h"

using namespace tvx;
using namespace tvx::passtest;

namespace {

// An inside rectangle 20 x 10 at (100, 50), turned to `angle`, with library tool 7 and a stop
// after it.
DrawRecord Rectangle(float angle) {
    DrawRecord r = Entity(156);
    r.Value[1] = 10;
    r.Value[2] = 20;
    r.Value[10] = angle;
    r.Point[4] = SinglePoint{100, 50};
    r.ToolA = Tool("U", 10, 7);
    r.After = AfterAction{1, 0};
    return r;
}

DrawRecord Hit(float x, float y) {
    DrawRecord r = Entity(210);
    r.Point[4] = SinglePoint{x, y};
    r.ToolA = Tool("A");
    return r;
}

// Tool 7 of the entity's library, stored at `stored` degrees, and its drawing.
void Library(PassFixture& f, const DrawRecord& entity, const char* stored, const std::vector<DrawRecord>& drawing) {
    WriteAllLines(JobShapePath(f.State, entity, LookupFileMode),
                  {std::string("\"HOOK\",7,") + stored + ",90,\"7.drw\"", "******"});
    WriteDrawing(JobShapePath(f.State, entity, ToolDrawingMode), drawing);
}

// A point turned about the origin and moved, as the placing stores it.
SinglePoint Placed(float x, float y, double turn, const SinglePoint& at) {
    double tx = x, ty = y;
    if (turn != 0) RotatePoint(0, 0, tx, ty, turn);
    const SinglePoint t{ToSingle(tx), ToSingle(ty)};
    return SinglePoint{ToSingle(static_cast<double>(t.X) + at.X), ToSingle(static_cast<double>(t.Y) + at.Y)};
}

}  // namespace

TEST(MakeAssociatedTooling, TheToolDrawingIsTurnedMovedAndGivenTheActionAfter) {
    PassFixture f;
    DrawRecord entity = Rectangle(30);
    DrawRecord mark = Entity(350);
    mark.Point[4] = SinglePoint{1, 1};
    Library(f, entity, "0", {Header(4), Hit(10, 0), mark, Hit(0, 10)});
    MakeAssociatedTooling(f.State, entity);

    const std::vector<DrawRecord> placed = ReadDrawing(f.Path("AssTool.drw"));
    ASSERT_EQ(placed.size(), 4u);
    // Turned by 30 (the entity's 30 less the stored 0) and moved by (100, 50).
    EXPECT_NEAR(placed[1].Point[4].X, 108.660254, 1e-4);
    EXPECT_NEAR(placed[1].Point[4].Y, 55.0, 1e-4);
    const SinglePoint first = Placed(10, 0, 30, entity.Point[4]);
    EXPECT_EQ(placed[1].Point[4].X, first.X);
    EXPECT_EQ(placed[1].Point[4].Y, first.Y);
    EXPECT_EQ(placed[1].After.ActionCode, 0);
    // A reposition is turned with the drawing but not moved.
    double mx = 1, my = 1;
    RotatePoint(0, 0, mx, my, 30);
    EXPECT_EQ(placed[2].Point[4].X, ToSingle(mx));
    EXPECT_EQ(placed[2].Point[4].Y, ToSingle(my));
    // The last record takes the entity's stop.
    EXPECT_NEAR(placed[3].Point[4].X, 95.0, 1e-4);
    EXPECT_NEAR(placed[3].Point[4].Y, 58.660254, 1e-4);
    EXPECT_EQ(placed[3].After.ActionCode, 1);
    // The header is moved as well, and keeps its count.
    EXPECT_EQ(placed[0].RecordCount, 4);
    EXPECT_EQ(placed[0].Point[4].X, 100.0f);
    EXPECT_EQ(placed[0].Point[4].Y, 50.0f);

    const LoopState& loop = f.State.Loop;
    EXPECT_TRUE(loop.ToolingActive);
    EXPECT_EQ(loop.ToolingIndex, 1);
    ASSERT_TRUE(IsOpen(loop.ToolingDrawing));
    EXPECT_EQ(loop.ToolingDrawing.Path, f.Path("AssTool.drw"));
}

TEST(MakeAssociatedTooling, TheTurnIsTheEntitysAngleLessTheStoredAngle) {
    PassFixture f;
    DrawRecord entity = Rectangle(10);
    Library(f, entity, "40", {Header(2), Hit(10, 0)});
    MakeAssociatedTooling(f.State, entity);
    const DrawRecord hit = ReadDrawing(f.Path("AssTool.drw")).at(1);
    // Norm360(10 - 40) = 330.
    const SinglePoint expected = Placed(10, 0, 330, entity.Point[4]);
    EXPECT_EQ(hit.Point[4].X, expected.X);
    EXPECT_EQ(hit.Point[4].Y, expected.Y);
    EXPECT_NEAR(hit.Point[4].Y, 45.0, 1e-4);
}

TEST(MakeAssociatedTooling, AToolStoredAtTheEntitysAngleIsOnlyMoved) {
    PassFixture f;
    DrawRecord entity = Rectangle(40);
    Library(f, entity, "40", {Header(2), Hit(10, 0)});
    MakeAssociatedTooling(f.State, entity);
    const DrawRecord hit = ReadDrawing(f.Path("AssTool.drw")).at(1);
    EXPECT_EQ(hit.Point[4].X, 110.0f);
    EXPECT_EQ(hit.Point[4].Y, 50.0f);
}

TEST(MakeAssociatedTooling, ACircleIsNeverTurned) {
    PassFixture f;
    DrawRecord circle = Entity(151);
    circle.Value[1] = 5;
    circle.Value[10] = 90;
    circle.Point[4] = SinglePoint{10, 20};
    circle.ToolA = Tool("U", 10, 7);
    Library(f, circle, "45", {Header(2), Hit(3, 0)});
    MakeAssociatedTooling(f.State, circle);
    const DrawRecord hit = ReadDrawing(f.Path("AssTool.drw")).at(1);
    EXPECT_EQ(hit.Point[4].X, 13.0f);
    EXPECT_EQ(hit.Point[4].Y, 20.0f);
}

// The marks 350 and 355 stay as they are: neither moved nor given the action after, even last.
TEST(MakeAssociatedTooling, RepositionsAndSheetMovesAreLeftWhereTheyAre) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    DrawRecord reposition = Entity(350);
    reposition.Point[4] = SinglePoint{5, 5};
    DrawRecord sheet = Entity(355);
    sheet.Point[1] = SinglePoint{7, 7};
    Library(f, entity, "0", {Header(4), Hit(1, 1), reposition, sheet});
    MakeAssociatedTooling(f.State, entity);
    const std::vector<DrawRecord> placed = ReadDrawing(f.Path("AssTool.drw"));
    ASSERT_EQ(placed.size(), 4u);
    EXPECT_EQ(Bytes(placed[2]), Bytes(reposition));
    EXPECT_EQ(Bytes(placed[3]), Bytes(sheet));
    EXPECT_EQ(placed[1].After.ActionCode, 0);  // the action after goes to record m only
}

TEST(MakeAssociatedTooling, ALastRecordWithAnActionOfItsOwnKeepsIt) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    DrawRecord last = Hit(2, 2);
    last.After = AfterAction{2, 1.5f};
    Library(f, entity, "0", {Header(2), last});
    MakeAssociatedTooling(f.State, entity);
    const DrawRecord placed = ReadDrawing(f.Path("AssTool.drw")).at(1);
    EXPECT_EQ(placed.After.ActionCode, 2);
    EXPECT_EQ(placed.After.ActionValue, 1.5f);
}

TEST(MakeAssociatedTooling, ExtentsAndMarginsAreMovedWithThePoints) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    DrawRecord dwell = Entity(400);  // a code that binding leaves as it is
    dwell.Extent[1] = SinglePoint{1, 2};
    dwell.Extent[2] = SinglePoint{3, 4};
    dwell.Margin[1] = SinglePoint{-1, -2};
    dwell.Margin[2] = SinglePoint{5, 6};
    for (int i = 1; i <= 6; ++i) dwell.Point[i] = SinglePoint{static_cast<float>(i), 0};
    Library(f, entity, "0", {Header(2), dwell});
    MakeAssociatedTooling(f.State, entity);
    const DrawRecord placed = ReadDrawing(f.Path("AssTool.drw")).at(1);
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(placed.Point[i].X, 100.0f + static_cast<float>(i)) << i;
    EXPECT_EQ(placed.Extent[1].X, 101.0f);
    EXPECT_EQ(placed.Extent[2].Y, 54.0f);
    EXPECT_EQ(placed.Margin[1].Y, 48.0f);
    EXPECT_EQ(placed.Margin[2].X, 105.0f);
}

TEST(MakeAssociatedTooling, RadiusPunchArcsOfTheToolDrawingBecomeHits) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    DrawRecord arc = Entity(130);
    arc.Side = 1;
    arc.Value[1] = 4;
    arc.Value[11] = 90;
    arc.Point[4] = SinglePoint{0, 0};
    arc.ToolA = Tool("M");
    Library(f, entity, "0", {Header(2), arc});
    MakeAssociatedTooling(f.State, entity);
    const DrawRecord hit = ReadDrawing(f.Path("AssTool.drw")).at(1);
    EXPECT_EQ(hit.EntityCode, 210);
    EXPECT_EQ(hit.ToolA.Letter.Text(), "M");
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
}

TEST(MakeAssociatedTooling, AMissingToolDrawingLeavesAssToolEmptyAndTheLoopAsItWas) {
    PassFixture f;
    DrawRecord stale = Hit(1, 1);
    WriteDrawing(f.Path("AssTool.drw"), {Header(2), stale});
    DrawRecord entity = Rectangle(0);
    MakeAssociatedTooling(f.State, entity);
    EXPECT_TRUE(FileExists(f.Path("AssTool.drw")));
    EXPECT_EQ(ReadAllBytes(f.Path("AssTool.drw")), "");
    EXPECT_FALSE(f.State.Loop.ToolingActive);
    EXPECT_EQ(f.State.Loop.ToolingIndex, 0);
    EXPECT_FALSE(IsOpen(f.State.Loop.ToolingDrawing));
}

// An entity without a size folder (a line) has no tool drawing: the name is blank.
TEST(MakeAssociatedTooling, AnEntityWithoutASizeFolderPlacesNothing) {
    PassFixture f;
    DrawRecord line = Entity(120);
    line.Point[3] = SinglePoint{10, 0};
    line.ToolA = Tool("U", 10, 7);
    MakeAssociatedTooling(f.State, line);
    EXPECT_EQ(ReadAllBytes(f.Path("AssTool.drw")), "");
    EXPECT_FALSE(f.State.Loop.ToolingActive);
}

// A tool drawing of its header alone counts as empty: nothing is moved, and the loop is told to
// read it at once (it reads its end).
TEST(MakeAssociatedTooling, AToolDrawingOfItsHeaderAloneSetsTheFlagsAtOnce) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    Library(f, entity, "0", {Header(1)});
    MakeAssociatedTooling(f.State, entity);
    const std::vector<DrawRecord> placed = ReadDrawing(f.Path("AssTool.drw"));
    ASSERT_EQ(placed.size(), 1u);
    EXPECT_EQ(Bytes(placed[0]), Bytes(Header(1)));
    EXPECT_TRUE(f.State.Loop.ToolingActive);
    EXPECT_EQ(f.State.Loop.ToolingIndex, 1);
}

// The tool's drawing is <n>.drw of the "U" tool's number; a library tool of number 0 takes the
// number that the drawing's mode stands for, 4.
TEST(MakeAssociatedTooling, ALibraryToolOfNumberZeroTakesDrawingFour) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    entity.ToolA.ToolNumber = 0;
    const std::string folder = JobShapePath(f.State, entity, LibraryFolderMode);
    WriteDrawing(folder + "4.drw", {Header(2), Hit(1, 0)});
    MakeAssociatedTooling(f.State, entity);
    EXPECT_EQ(ReadDrawing(f.Path("AssTool.drw")).at(1).Point[4].X, 101.0f);
}

// A walk of the placed drawing ends at its last record on disk: a count beyond it adds nothing.
TEST(MakeAssociatedTooling, ACountBeyondTheToolDrawingMovesOnlyTheRecordsOnDisk) {
    PassFixture f;
    DrawRecord entity = Rectangle(0);
    Library(f, entity, "0", {Header(50), Hit(1, 0)});
    MakeAssociatedTooling(f.State, entity);
    const std::vector<DrawRecord> placed = ReadDrawing(f.Path("AssTool.drw"));
    ASSERT_EQ(placed.size(), 2u);
    EXPECT_EQ(placed[1].Point[4].X, 101.0f);
    EXPECT_EQ(placed[1].After.ActionCode, 0);  // record 50 would take it: there is none
}

TEST(MakeAssociatedTooling, TheToolDrawingInTheLibraryIsNotChanged) {
    PassFixture f;
    DrawRecord entity = Rectangle(30);
    Library(f, entity, "0", {Header(2), Hit(10, 0)});
    const std::string source = JobShapePath(f.State, entity, ToolDrawingMode);
    const std::string before = ReadAllBytes(source);
    MakeAssociatedTooling(f.State, entity);
    EXPECT_EQ(ReadAllBytes(source), before);
}
