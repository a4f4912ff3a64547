// The turn of a drawing about its origin: the geometry of every record, the angle of the
// entities that have one, and the rules by which a tool follows its entity or is taken off it.
#include <gtest/gtest.h>

#include <cmath>

#include "common/numeric.h"
#include "expansion/pass_support.h"
#include "expansion/passes.h"
#include "tooling/library.h"

using namespace tvx;
using namespace tvx::passtest;

namespace {

// Turns a drawing of a header and the one record given, and gives that record back.
DrawRecord Turned(PassFixture& f, const DrawRecord& record, double angle) {
    const std::string drawing = f.Path("Part.drw");
    WriteDrawing(drawing, {Header(2), record});
    RotateDrawing(f.State, drawing, angle);
    return ReadDrawing(drawing).at(1);
}

DrawRecord Hit(float x, float y, const ToolSpec& tool) {
    DrawRecord r = Entity(210);
    r.Point[4] = SinglePoint{x, y};
    r.ToolA = tool;
    return r;
}

DrawRecord LineFrom(float x1, float y1, float x2, float y2, const ToolSpec& tool) {
    DrawRecord r = Entity(120);
    r.Point[1] = SinglePoint{x1, y1};
    r.Point[3] = SinglePoint{x2, y2};
    r.Value[1] = ToSingle(std::hypot(x2 - x1, y2 - y1));
    r.ToolA = tool;
    return r;
}

}  // namespace

// ---- Geometry ---------------------------------------------------------------------------------

TEST(RotateDrawing, APointIsTurnedAboutTheOrigin) {
    PassFixture f;
    // (10, 0) by 30 degrees: 10 cos 30, 10 sin 30.
    DrawRecord hit = Turned(f, Hit(10, 0, Tool("A")), 30);
    EXPECT_NEAR(hit.Point[4].X, 8.660254, 1e-5);
    EXPECT_NEAR(hit.Point[4].Y, 5.0, 1e-5);
    // (0, 5) by -90: (5, 0).
    hit = Turned(f, Hit(0, 5, Tool("A")), -90);
    EXPECT_NEAR(hit.Point[4].X, 5.0, 1e-6);
    EXPECT_NEAR(hit.Point[4].Y, 0.0, 1e-6);
}

TEST(RotateDrawing, AllSixPointsOfARecordAreTurnedAsRotatePointTurnsThem) {
    PassFixture f;
    DrawRecord r = Entity(400);  // a code that binding leaves as it is
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{static_cast<float>(i), static_cast<float>(-2 * i)};
    const DrawRecord after = Turned(f, r, 47.5);
    for (int i = 1; i <= 6; ++i) {
        double x = r.Point[i].X, y = r.Point[i].Y;
        RotatePoint(0, 0, x, y, 47.5);
        EXPECT_EQ(after.Point[i].X, ToSingle(x)) << i;
        EXPECT_EQ(after.Point[i].Y, ToSingle(y)) << i;
    }
}

TEST(RotateDrawing, ALineIsTurnedAndBoundAgain) {
    PassFixture f;
    DrawRecord line = LineFrom(10, 0, 20, 0, ToolSpec{});
    line.Value[10] = 0;
    const DrawRecord after = Turned(f, line, 90);
    EXPECT_NEAR(after.Point[1].X, 0, 1e-6);
    EXPECT_NEAR(after.Point[1].Y, 10, 1e-6);
    EXPECT_NEAR(after.Point[3].Y, 20, 1e-6);
    EXPECT_EQ(after.Value[10], 90.0f);
    // Derived again from the turned ends: the middle, and the box.
    EXPECT_NEAR(after.Point[2].Y, 15, 1e-4);
    EXPECT_NEAR(after.Point[5].Y, 10, 1e-6);
}

TEST(RotateDrawing, RecordOneIsTurnedToo) {
    PassFixture f;
    DrawRecord header = Header(1);
    header.Point[1] = SinglePoint{10, 0};
    const std::string drawing = f.Path("Part.drw");
    WriteDrawing(drawing, {header});
    RotateDrawing(f.State, drawing, 90);
    const DrawRecord after = ReadDrawing(drawing).at(0);
    EXPECT_NEAR(after.Point[1].X, 0, 1e-6);
    EXPECT_NEAR(after.Point[1].Y, 10, 1e-6);
    EXPECT_EQ(after.RecordCount, 1);
}

TEST(RotateDrawing, TheEntitiesWithAnAngleTakeTheTurnNormalised) {
    PassFixture f;
    for (int16_t code : {225, 230, 171, 175}) {
        DrawRecord r = Entity(code);
        r.Value[10] = 300;
        EXPECT_EQ(Turned(f, r, 90).Value[10], 30.0f) << code;
    }
    DrawRecord shape = Entity(156);
    shape.Value[1] = 20;
    shape.Value[2] = 10;
    shape.Value[10] = 350;
    EXPECT_EQ(Turned(f, shape, 20).Value[10], 10.0f);
    DrawRecord move = Entity(110);
    move.Point[3] = SinglePoint{1, 0};
    move.Value[10] = 10;
    EXPECT_EQ(Turned(f, move, -30).Value[10], 340.0f);
}

TEST(RotateDrawing, OtherEntitiesKeepTheirValue10) {
    PassFixture f;
    for (int16_t code : {311, 312, 321, 350, 355, 400}) {
        DrawRecord r = Entity(code);
        r.Value[10] = 300;
        EXPECT_EQ(Turned(f, r, 90).Value[10], 300.0f) << code;
    }
}

TEST(RotateDrawing, TheWalkGoesUpToRecordCountOnly) {
    PassFixture f;
    const std::string drawing = f.Path("Part.drw");
    WriteDrawing(drawing, {Header(2), Hit(10, 0, Tool("A")), Hit(10, 0, Tool("A"))});
    RotateDrawing(f.State, drawing, 90);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    EXPECT_NEAR(after[1].Point[4].Y, 10, 1e-6);
    EXPECT_EQ(after[2].Point[4].X, 10.0f);  // behind the count: not turned
}

// ---- Tools ------------------------------------------------------------------------------------

TEST(RotateDrawing, ARecordWithoutAToolIsOnlyTurned) {
    PassFixture f;
    DrawRecord line = LineFrom(0, 0, 10, 0, Tool("B"));
    line.ToolA.Present = 0;  // a letter without a tool decides nothing
    const DrawRecord after = Turned(f, line, 45);
    EXPECT_EQ(after.ToolA.Letter.Text(), "B");
    EXPECT_EQ(after.Value[10], 45.0f);
}

// A fixed tool of fourfold symmetry cannot follow a line turned by 45 degrees: the line loses its
// tool and is then plain geometry.
TEST(RotateDrawing, ANonRotaryToolOfFourfoldSymmetryLosesTheToolAt45Degrees) {
    PassFixture f;
    for (const char* letter : {"B", "C", "M"}) {
        const DrawRecord after = Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), 45);
        EXPECT_EQ(after.ToolA.Present, 0) << letter;
        EXPECT_EQ(after.ToolA.Letter.Text(), " ") << letter;
        EXPECT_EQ(after.Value[10], 45.0f) << letter;
    }
}

TEST(RotateDrawing, FourfoldLettersKeepTheirToolAtRightAngles) {
    PassFixture f;
    for (const char* letter : {"B", "C", "M"})
        for (double angle : {0.0, 90.0, 180.0, 270.0, 360.0, -90.0, -270.0}) {
            const DrawRecord after = Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), angle);
            EXPECT_EQ(after.ToolA.Letter.Text(), letter) << letter << " " << angle;
        }
    // 450 is a right angle too, but beyond the angles that the rule names.
    EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, Tool("B")), 450).ToolA.Present, 0);
}

TEST(RotateDrawing, TwofoldLettersKeepTheirToolOnlyAtHalfTurns) {
    PassFixture f;
    for (const char* letter : {"D", "E", "F", "H", "J"}) {
        for (double angle : {0.0, 180.0, 360.0, -180.0})
            EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), angle).ToolA.Letter.Text(), letter)
                << letter << " " << angle;
        for (double angle : {90.0, 270.0, 45.0})
            EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), angle).ToolA.Present, 0) << letter << " " << angle;
    }
}

TEST(RotateDrawing, OnefoldLettersKeepTheirToolOnlyAtWholeTurns) {
    PassFixture f;
    for (const char* letter : {"G", "I", "K", "L", "S"}) {
        for (double angle : {0.0, 360.0, -360.0})
            EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), angle).ToolA.Letter.Text(), letter)
                << letter << " " << angle;
        for (double angle : {90.0, 180.0})
            EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, Tool(letter)), angle).ToolA.Present, 0) << letter << " " << angle;
    }
}

// Only lines, arcs and shapes lose a fixed tool; a hit, a row or a grid keeps it at any angle.
TEST(RotateDrawing, AFixedToolIsTakenOffLinesArcsAndShapesOnly) {
    PassFixture f;
    EXPECT_EQ(Turned(f, Hit(1, 0, Tool("G")), 45).ToolA.Letter.Text(), "G");
    DrawRecord grid = Entity(225);
    grid.ToolA = Tool("D");
    grid.Count[1] = 2;
    grid.Count[2] = 2;
    grid.Value[2] = 5;
    grid.Value[4] = 5;
    EXPECT_EQ(Turned(f, grid, 45).ToolA.Letter.Text(), "D");
    DrawRecord arc = Entity(130);
    arc.Value[1] = 5;
    arc.Value[11] = 90;
    arc.ToolA = Tool("S");
    EXPECT_EQ(Turned(f, arc, 45).ToolA.Present, 0);
    for (int16_t code = 151; code <= 156; ++code) {
        DrawRecord shape = Entity(code);
        shape.Value[1] = 20;
        shape.Value[2] = 10;
        shape.Value[3] = 2;
        shape.ToolA = Tool("K");
        EXPECT_EQ(Turned(f, shape, 45).ToolA.Present, 0) << code;
    }
}

// The fixed letters take only ToolA off: a rectangle keeps its second tool.
TEST(RotateDrawing, AFixedToolThatCannotFollowLeavesToolB) {
    PassFixture f;
    DrawRecord shape = Entity(156);
    shape.Value[1] = 20;
    shape.Value[2] = 10;
    shape.ToolA = Tool("B");
    shape.ToolB = Tool("C");
    const DrawRecord after = Turned(f, shape, 45);
    EXPECT_EQ(after.ToolA.Present, 0);
    EXPECT_EQ(after.ToolB.Letter.Text(), "C");
}

TEST(RotateDrawing, ARotaryToolTakesTheTurnIntoItsAngle) {
    PassFixture f;
    for (const char* letter : {"B", "D", "G", "S"}) {
        ToolSpec tool = Tool(letter, 20);
        tool.ToolAngle = 10;
        const DrawRecord after = Turned(f, LineFrom(0, 0, 10, 0, tool), 45);
        EXPECT_EQ(after.ToolA.Letter.Text(), letter);
        EXPECT_EQ(after.ToolA.ToolAngle, 55.0f) << letter;
    }
    // Binding brings the sum into 0 up to 360.
    ToolSpec tool = Tool("M", 25);
    tool.ToolAngle = 300;
    EXPECT_EQ(Turned(f, Hit(1, 1, tool), 90).ToolA.ToolAngle, 30.0f);
}

TEST(RotateDrawing, AFixedToolKeepsItsAngle) {
    PassFixture f;
    ToolSpec tool = Tool("B", 10);
    tool.ToolAngle = 10;
    EXPECT_EQ(Turned(f, LineFrom(0, 0, 10, 0, tool), 90).ToolA.ToolAngle, 10.0f);
}

TEST(RotateDrawing, OtherLettersFollowTheirEntityUnchanged) {
    PassFixture f;
    ToolSpec tool = Tool("A", 10);
    const DrawRecord after = Turned(f, LineFrom(0, 0, 10, 0, tool), 33);
    EXPECT_EQ(after.ToolA.Letter.Text(), "A");
    EXPECT_EQ(after.ToolA.Present, -1);
}

// A profiling head's straight leads keep their direction against the entity: their angle takes
// the turn. Arc leads are placed by the entity's own geometry and stay as they are.
TEST(RotateDrawing, StraightLeadsOfAProfilingToolAreTurned) {
    PassFixture f;
    DrawRecord line = LineFrom(0, 0, 10, 0, Tool("P", 1));
    line.LeadIn = LeadSpec{1, 2, 100, 0};
    line.LeadOut = LeadSpec{-1, 2, 200, 0};
    DrawRecord after = Turned(f, line, 30);
    EXPECT_EQ(after.LeadIn.LeadAngle, 130.0f);
    EXPECT_EQ(after.LeadOut.LeadAngle, 230.0f);
    line.LeadIn = LeadSpec{2, 2, 100, 0};
    line.LeadOut = LeadSpec{-3, 2, 200, 0};
    after = Turned(f, line, 30);
    EXPECT_EQ(after.LeadIn.LeadAngle, 100.0f);
    EXPECT_EQ(after.LeadOut.LeadAngle, 200.0f);
}

// The lead's angle gets the turn added as a plain sum, not brought into 0 up to 360.
TEST(RotateDrawing, ALeadAngleGetsTheTurnAddedWithoutNormalising) {
    PassFixture f;
    DrawRecord line = LineFrom(0, 0, 10, 0, Tool("P", 1));
    line.LeadIn = LeadSpec{1, 2, 300, 0};
    EXPECT_EQ(Turned(f, line, 90).LeadIn.LeadAngle, 390.0f);
    line.LeadIn = LeadSpec{1, 2, 10, 0};
    EXPECT_EQ(Turned(f, line, -90).LeadIn.LeadAngle, -80.0f);
}

TEST(RotateDrawing, LeadsOfOtherToolsAreNotTurned) {
    PassFixture f;
    DrawRecord line = LineFrom(0, 0, 10, 0, Tool("A", 1));
    line.LeadIn = LeadSpec{1, 2, 100, 0};
    EXPECT_EQ(Turned(f, line, 30).LeadIn.LeadAngle, 100.0f);
}

// ---- Library tools ----------------------------------------------------------------------------

namespace {

// A shape of the code with a library tool of number 7, at angle 0.
DrawRecord LibraryShape(int16_t code, float first = 20, float second = 10) {
    DrawRecord r = Entity(code);
    r.Value[1] = first;
    r.Value[2] = second;
    r.Value[3] = code == 155 ? 2.0f : 0.0f;
    r.EntityText = "HOOK";
    r.ToolA = Tool("U", 10, 7);
    r.ToolB = Tool("C");
    return r;
}

// Tooling.lkp of the record's size folder (as it stands after the turn) with tool 7 stored at
// `angle` with the step given.
void LibraryEntry(PassFixture& f, DrawRecord record, double turn, const char* angle, const char* step) {
    record.Value[10] = AddAngles(record.Value[10], turn);
    const std::string lookup = JobShapePath(f.State, record, LookupFileMode);
    WriteAllLines(lookup, {std::string("\"HOOK TOOL\",7,") + angle + "," + step + ",\"7.drw\"", "******"});
}

// True when the library tool of the shape stays through the turn, with tool 7 stored at 10
// degrees and fitting there only.
bool LibraryToolStays(PassFixture& f, const DrawRecord& shape, double turn) {
    LibraryEntry(f, shape, turn, "10", "0");
    const DrawRecord after = Turned(f, shape, turn);
    if (after.ToolA.Present == 0) {
        EXPECT_EQ(after.ToolB.Present, 0) << "both tools go";
        return false;
    }
    return true;
}

}  // namespace

TEST(RotateDrawing, ALibraryToolStaysWhereItsLibrarySaysItFits) {
    PassFixture f;
    // Stored at 10 with no other angle: a shape turned to 10 keeps it.
    for (int16_t code : {151, 152, 153, 154, 155, 156, 171, 175}) {
        EXPECT_TRUE(LibraryToolStays(f, LibraryShape(code), 10)) << code;
        EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code), 20)) << code;
    }
}

TEST(RotateDrawing, ALibraryToolThatDoesNotFitLosesBothTools) {
    PassFixture f;
    const DrawRecord shape = LibraryShape(156);
    LibraryEntry(f, shape, 45, "10", "0");
    const DrawRecord after = Turned(f, shape, 45);
    EXPECT_EQ(after.ToolA.Present, 0);
    EXPECT_EQ(after.ToolA.Letter.Text(), " ");
    EXPECT_EQ(after.ToolB.Present, 0);
    EXPECT_EQ(after.Value[10], 45.0f);
}

TEST(RotateDrawing, ALibraryToolFitsEveryStepFromItsStoredAngle) {
    PassFixture f;
    const DrawRecord shape = LibraryShape(154);
    LibraryEntry(f, shape, 100, "10", "90");
    EXPECT_EQ(Turned(f, shape, 100).ToolA.Letter.Text(), "U");
    LibraryEntry(f, shape, 101, "10", "90");
    EXPECT_EQ(Turned(f, shape, 101).ToolA.Present, 0);
}

// A tool number that the library does not list takes the default entry: angle 0, step 0.5.
TEST(RotateDrawing, ALibraryToolWithoutAnEntryFitsEveryHalfDegree) {
    PassFixture f;
    EXPECT_EQ(Turned(f, LibraryShape(156), 33.5).ToolA.Letter.Text(), "U");
    EXPECT_EQ(Turned(f, LibraryShape(156), 33.25).ToolA.Present, 0);
}

TEST(RotateDrawing, OnAToolMachineASingleDKeepsItsLibraryToolAtWholeTurns) {
    PassFixture f;
    for (double turn : {0.0, 360.0, 720.0, -360.0, -720.0})
        EXPECT_TRUE(LibraryToolStays(f, LibraryShape(152), turn)) << turn;
    for (double turn : {180.0, 90.0, 540.0, 1080.0})
        EXPECT_FALSE(LibraryToolStays(f, LibraryShape(152), turn)) << turn;
}

TEST(RotateDrawing, OnAToolMachineADoubleDOrObroundKeepsItsLibraryToolAtHalfTurns) {
    PassFixture f;
    for (int16_t code : {153, 154}) {
        for (double turn : {0.0, 180.0, 360.0, 540.0, 720.0, -180.0})
            EXPECT_TRUE(LibraryToolStays(f, LibraryShape(code), turn)) << code << " " << turn;
        for (double turn : {90.0, 270.0, 900.0})
            EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code), turn)) << code << " " << turn;
    }
}

TEST(RotateDrawing, OnAToolMachineASquareKeepsItsLibraryToolAtRightAngles) {
    PassFixture f;
    for (int16_t code : {155, 156}) {
        for (double turn : {0.0, 90.0, 180.0, 270.0, 360.0, 450.0, 540.0, 630.0, 720.0, -90.0})
            EXPECT_TRUE(LibraryToolStays(f, LibraryShape(code, 12, 12), turn)) << code << " " << turn;
        for (double turn : {45.0, 810.0})
            EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code, 12, 12), turn)) << code << " " << turn;
    }
}

TEST(RotateDrawing, OnAToolMachineAnOblongKeepsItsLibraryToolAtHalfTurns) {
    PassFixture f;
    for (int16_t code : {155, 156}) {
        for (double turn : {0.0, 180.0, 360.0, 540.0, 720.0})
            EXPECT_TRUE(LibraryToolStays(f, LibraryShape(code, 20, 12), turn)) << code << " " << turn;
        for (double turn : {90.0, 270.0})
            EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code, 20, 12), turn)) << code << " " << turn;
    }
}

// Custom tools and circles have no turn of their own on a tool machine: only the library says.
TEST(RotateDrawing, CustomShapesAndCirclesKeepALibraryToolOnlyWhereItFits) {
    PassFixture f;
    for (int16_t code : {151, 171, 175})
        for (double turn : {180.0, 360.0})
            EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code), turn)) << code << " " << turn;
}

TEST(RotateDrawing, OffAToolMachineEveryLibraryToolStaysOnlyWhereItFits) {
    PassFixture f;
    f.State.Machine.MachineKind = 41;
    f.State.Machine.IsToolMachine = false;
    f.State.Machine.IsComboMachine = true;
    for (int16_t code : {152, 153, 154, 155, 156})
        EXPECT_FALSE(LibraryToolStays(f, LibraryShape(code, 12, 12), 360)) << code;
}

// The library is asked after the entity has taken its new angle: a custom box tool (171), whose
// folder is named by its angle, is looked up in the folder of the new angle.
TEST(RotateDrawing, ACustomBoxToolIsLookedUpInTheFolderOfItsNewAngle) {
    PassFixture f;
    const DrawRecord box = LibraryShape(171);
    // The folder at 10 says the tool fits only at 20; the folder at 0 has no entry (any half
    // degree fits).
    LibraryEntry(f, box, 10, "20", "0");
    EXPECT_EQ(Turned(f, box, 10).ToolA.Present, 0);
}

// The tool is tested at the entity's own new Value[10], not at the angle its folder takes
// (an obround's folder angle is within 0 and 180).
TEST(RotateDrawing, ALibraryToolIsTestedAtTheEntitysOwnNewAngle) {
    PassFixture f;
    const DrawRecord obround = LibraryShape(154);
    LibraryEntry(f, obround, 200, "20", "0");
    EXPECT_EQ(Turned(f, obround, 200).ToolA.Present, 0);
    LibraryEntry(f, obround, 200, "200", "0");
    EXPECT_EQ(Turned(f, obround, 200).ToolA.Letter.Text(), "U");
}
