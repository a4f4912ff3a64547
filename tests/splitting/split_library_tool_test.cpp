// The split of a library tool: the tooling drawing of the entity's size and tool is copied to
// PITooling.drw in the work directory, its radius-punch arcs made hits, turned to the entity's
// angle, the entity's After moved to its last worked record, and its records moved onto the
// entity and appended.
//
// The rig is a tool machine with its shapes library and custom folder in a temporary folder, the
// tool library "Main" and the material "Steel": a tool machine names the folder under a size
// folder by its tool library.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/paths.h"
#include "common/textfile.h"
#include "drawing/binding.h"
#include "drawing/binding_support.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "expansion/passes.h"
#include "splitting/split_dispatch.h"
#include "splitting/split_output.h"
#include "state/run_state.h"
#include "test_support.h"
#include "tooling/library.h"

using namespace tvx;

namespace {

using bindtest::Bytes;
using bindtest::ExpectPoint;

using RotateFunction = void (*)(RunState&, const std::string&, double);

// What the test turn was asked: how often, and the last angle.
int TurnCalls = 0;
double TurnAngle = 0;

void RecordTurn(RunState&, const std::string&, double angle) {
    ++TurnCalls;
    TurnAngle = angle;
}

struct LibraryRig {
    TempDir Dir;
    RunState State;

    LibraryRig() {
        State.Machine.MachineKind = 10;
        State.Machine.IsToolMachine = true;
        State.Machine.ShapesDir = Dir.Path + "\\Shapes\\";
        State.Machine.CustomDir = Dir.Path + "\\Custom\\";
        State.Machine.ToolLibrary = "Main";
        State.Job.MaterialName = "Steel";
        State.Job.WorkDir = Dir.Path + "\\Work\\";
        MakeDirectory(State.Job.WorkDir);
        TurnCalls = 0;
        TurnAngle = 0;
    }

    std::string Working() const { return State.Job.WorkDir + "PITooling.drw"; }

    // The tooling drawing of the entity's tool: a header with the record count, then the records.
    // Its Tooling.lkp gets the line given.
    void Place(const DrawRecord& entity, const std::vector<DrawRecord>& records, const std::string& lookupLine,
               std::optional<int32_t> recordCount = std::nullopt) {
        const std::string drawing = JobShapePath(State, entity, ToolDrawingMode);
        const std::string lookup = JobShapePath(State, entity, LookupFileMode);
        WriteAllLines(lookup, {lookupLine, "******"});
        DrawingFile file;
        MakeWorkingFile(file, drawing);
        DrawRecord header;
        header.EntityCode = 1;
        header.RecordCount = recordCount.value_or(static_cast<int32_t>(records.size()) + 1);
        WriteRecord(file, 1, header);
        for (size_t i = 0; i < records.size(); ++i) WriteRecord(file, static_cast<int32_t>(i) + 2, records[i]);
        CloseDrawing(file);
    }

    std::vector<DrawRecord> Split(DrawRecord& entity, RotateFunction rotate = RecordTurn) {
        std::vector<DrawRecord> records;
        int32_t count = 0;
        SplitOutput out = ListOutput(State.Machine, records, count, MainPathChoices, "record 4 of Progmain.drw");
        out.Library = PassesForLibrary(State);
        out.Library.Rotate = rotate;
        SplitRecord(out, entity);
        EXPECT_EQ(count, static_cast<int32_t>(records.size()));
        EXPECT_FALSE(FileExists(Working()));
        return records;
    }
};

// A library shape (175) named "Bracket", tool 7 of the library, at (100, 50), turned by 30.
DrawRecord Bracket(float angle = 30) {
    DrawRecord r;
    r.EntityCode = 175;
    r.EntityText = "Bracket";
    r.CarryWord1 = 3;
    r.CarryWord2 = 4;
    r.Point[4] = {100, 50};
    r.Value[1] = 40;
    r.Value[2] = 20;
    r.Value[10] = angle;
    r.ToolA.Present = -1;
    r.ToolA.Letter = "U";
    r.ToolA.ToolNumber = 7;
    r.After.ActionCode = 2;
    r.After.ActionValue = 1.5f;
    return r;
}

// The line of Tooling.lkp for tool 7 stored at `angle`.
std::string ToolSeven(const std::string& angle) { return "\"Bracket tool\",7," + angle + ",90,\"7.drw\""; }

// A record of a tooling drawing as its writer leaves it, with the words 9 and 8.
DrawRecord Piece(int16_t code, float x, float y, bool tool) {
    DrawRecord r;
    r.EntityCode = code;
    r.EntityName = EntityNameOfCode(code);
    r.CarryWord1 = 9;
    r.CarryWord2 = 8;
    r.Point[4] = {x, y};
    if (tool) {
        r.ToolA.Present = -1;
        r.ToolA.Letter = "B";
        r.ToolA.Size[1] = 3;
        r.ToolA.Size[2] = 3;
        r.ToolA.WorkType = 10;
    }
    return r;
}

DrawRecord Line(float x1, float y1, float x2, float y2, bool tool) {
    DrawRecord r = Piece(120, 0, 0, tool);
    r.Point[1] = {x1, y1};
    r.Point[3] = {x2, y2};
    double length = 0, direction = 0;
    XYToPolar(x2 - x1, y2 - y1, length, direction);
    r.Value[1] = ToSingle(length);
    r.Value[10] = ToSingle(direction);
    r.Value[2] = 5;
    return r;
}

}  // namespace

// ---- A missing drawing --------------------------------------------------------------------

// No drawing of tool 7 in the library: the entity stays, without its tools, as it was otherwise.
TEST(SplitLibraryTool, MissingDrawingKeepsTheEntityWithoutItsTools) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    entity.ToolB = entity.ToolA;
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 1u);
    DrawRecord expected = Bracket();
    ClearTool(expected.ToolA);
    ClearTool(expected.ToolB);
    EXPECT_EQ(Bytes(r[0]), Bytes(expected));
    EXPECT_EQ(Bytes(entity), Bytes(expected));
    EXPECT_EQ(TurnCalls, 0);
    // The library folder was asked for, and made.
    EXPECT_TRUE(FileExists(rig.State.Machine.CustomDir + "Bracket\\Main\\Tooling.lkp"));
}

// A code that has no size folder gives a blank name: the same as a missing drawing.
TEST(SplitLibraryTool, BlankDrawingNameCountsAsMissing) {
    LibraryRig rig;
    DrawRecord line = Line(0, 0, 10, 0, false);
    line.ToolA.Present = -1;
    line.ToolA.Letter = "U";
    line.ToolA.ToolNumber = 7;
    const std::vector<DrawRecord> r = rig.Split(line);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[0].ToolA.Present, 0);
}

// Without the run's passes an output counts every library drawing as missing.
TEST(SplitLibraryTool, OutputWithoutLibraryPassesCountsTheDrawingAsMissing) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    rig.Place(entity, {Piece(210, 1, 2, true)}, ToolSeven("30"));
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(rig.State.Machine, records, count, MainPathChoices);
    SplitLibraryTool(out, entity);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].EntityCode, 175);
    EXPECT_EQ(records[0].ToolA.Present, 0);
}

// ---- Placing ---------------------------------------------------------------------------------

// A drawing of one record (a count below 2) writes nothing, and the After goes with it.
TEST(SplitLibraryTool, RecordCountBelowTwoWritesNothing) {
    for (const int32_t recordCount : {1, 0, -5}) {
        LibraryRig rig;
        DrawRecord entity = Bracket();
        rig.Place(entity, {Piece(210, 1, 2, true)}, ToolSeven("30"), recordCount);
        EXPECT_TRUE(rig.Split(entity).empty()) << recordCount;
    }
}

// Records 2 on are placed: each moved by the entity's Point[4] (100, 50), bound, with the
// entity's CarryWord2 and its own CarryWord1 and tool; the marks 350 and 355 are left out. The
// After goes to the last worked record (the hit at (5, 0)); the 311 mark behind it does not take
// it.
TEST(SplitLibraryTool, RecordsAreMovedOntoTheEntityAndTheMarksLeftOut) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    rig.Place(entity,
              {Line(0, 0, 20, 0, true), Piece(350, 1, 1, false), Piece(210, 5, 0, true), Piece(355, 2, 2, false),
               Piece(311, 3, 3, false)},
              ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 3u);

    EXPECT_EQ(r[0].EntityCode, 120);
    ExpectPoint(r[0].Point[1], 100, 50, 0);
    ExpectPoint(r[0].Point[3], 120, 50, 0);
    EXPECT_EQ(r[0].Count[1], 5);  // bound: a row of hits of pitch 5 over 20
    EXPECT_EQ(r[0].After.ActionCode, 0);

    EXPECT_EQ(r[1].EntityCode, 210);
    ExpectPoint(r[1].Point[4], 105, 50, 0);
    ExpectPoint(r[1].Point[1], 105, 50, 0);
    EXPECT_EQ(r[1].After.ActionCode, 2);
    EXPECT_EQ(r[1].After.ActionValue, 1.5f);

    EXPECT_EQ(r[2].EntityCode, 311);
    ExpectPoint(r[2].Point[4], 103, 53, 0);
    EXPECT_EQ(r[2].After.ActionCode, 0);

    for (const DrawRecord& record : r) {
        EXPECT_EQ(record.CarryWord1, 9);
        EXPECT_EQ(record.CarryWord2, 4);
    }
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "B");
}

// The move adds Point[4] to all six points and to both boxes, in single precision: a record that
// binding leaves alone (a code it does not know) shows the sums as they are. 0.1 + 0.2 as singles
// is the single nearest 0.3, 0.300000012.
TEST(SplitLibraryTool, PointsAndBoxesAreMovedInSinglePrecision) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    entity.Point[4] = {0.1f, 1000};
    DrawRecord odd = Piece(400, 0.2f, 0, false);
    for (int i = 1; i <= 6; ++i) odd.Point[i] = {0.2f, static_cast<float>(i)};
    odd.Extent[1] = {0.2f, -1};
    odd.Extent[2] = {0.2f, 1};
    odd.Margin[1] = {0.2f, -2};
    odd.Margin[2] = {0.2f, 2};
    rig.Place(entity, {odd}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 1u);
    const float x = 0.1f + 0.2f;
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(r[0].Point[i].X, x) << i;
        EXPECT_EQ(r[0].Point[i].Y, 1000.0f + i) << i;
    }
    EXPECT_EQ(r[0].Extent[1].X, x);
    EXPECT_EQ(r[0].Extent[1].Y, 999.0f);
    EXPECT_EQ(r[0].Extent[2].Y, 1001.0f);
    EXPECT_EQ(r[0].Margin[1].X, x);
    EXPECT_EQ(r[0].Margin[1].Y, 998.0f);
    EXPECT_EQ(r[0].Margin[2].Y, 1002.0f);
}

// ---- The After ------------------------------------------------------------------------------

// A rapid move (110) takes the After at once, tool or not, even before a worked record behind it
// in the walk back.
TEST(SplitLibraryTool, RapidMoveTakesTheAfterAtOnce) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    DrawRecord move = Piece(110, 0, 0, false);
    move.Point[1] = {0, 0};
    move.Point[3] = {5, 5};
    rig.Place(entity, {Piece(210, 1, 1, true), move, Piece(350, 0, 0, false)}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    EXPECT_EQ(r[1].EntityCode, 110);
    EXPECT_EQ(r[1].After.ActionCode, 2);
}

// The worked codes take it only with their own tool: the hit without a tool is passed over for
// the one with a tool before it.
TEST(SplitLibraryTool, WorkedCodesTakeTheAfterOnlyWithTheirOwnTool) {
    const int16_t codes[] = {120, 130, 151, 152, 153, 154, 155, 156, 210, 220, 225, 230};
    for (const int16_t code : codes) {
        LibraryRig rig;
        DrawRecord entity = Bracket();
        DrawRecord taker = Piece(code, 1, 1, true);
        taker.Value[1] = 4;
        taker.Value[2] = 2;
        taker.Value[11] = 90;
        taker.Count[1] = 2;
        taker.Count[2] = 1;
        rig.Place(entity, {taker, Piece(code, 2, 2, false), Piece(210, 3, 3, false)}, ToolSeven("30"));
        const std::vector<DrawRecord> r = rig.Split(entity);
        ASSERT_EQ(r.size(), 3u) << code;
        EXPECT_EQ(r[0].After.ActionCode, 2) << code;
        EXPECT_EQ(r[1].After.ActionCode, 0) << code;
        EXPECT_EQ(r[2].After.ActionCode, 0) << code;
    }
}

// Codes that are not worked never take it, with a tool or without: a 311 mark, a 175, a 500.
TEST(SplitLibraryTool, OtherCodesNeverTakeTheAfter) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    rig.Place(entity, {Piece(210, 1, 1, true), Piece(311, 2, 2, true), Piece(175, 3, 3, true)}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0].After.ActionCode, 2);
    EXPECT_EQ(r[1].After.ActionCode, 0);
    EXPECT_EQ(r[2].After.ActionCode, 0);
}

// When no record takes the After, it is lost: nothing of the placed drawing carries it.
TEST(SplitLibraryTool, AfterIsLostWhenNoRecordTakesIt) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    rig.Place(entity, {Piece(210, 1, 1, false), Piece(311, 2, 2, false), Piece(350, 3, 3, true)}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 2u);
    for (const DrawRecord& record : r) EXPECT_EQ(record.After.ActionCode, 0);
}

// An entity without an After leaves the After of the drawing's records as they are.
TEST(SplitLibraryTool, EntityWithoutAfterLeavesTheDrawingsOwn) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    ClearAfter(entity.After);
    DrawRecord own = Piece(210, 1, 1, true);
    own.After.ActionCode = 3;
    rig.Place(entity, {own, Piece(210, 2, 2, true)}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].After.ActionCode, 3);
    EXPECT_EQ(r[1].After.ActionCode, 0);
}

// ---- The turn and the cruciform pass ------------------------------------------------------

// The drawing is turned by Norm360 of the entity's angle less the angle it is stored at: 30 - 120
// is -90, turned as 270. At the stored angle itself there is no turn.
TEST(SplitLibraryTool, TurnIsTheEntitysAngleLessTheStoredAngle) {
    {
        LibraryRig rig;
        DrawRecord entity = Bracket(30);
        rig.Place(entity, {Piece(210, 1, 1, true)}, ToolSeven("120"));
        rig.Split(entity);
        EXPECT_EQ(TurnCalls, 1);
        EXPECT_DOUBLE_EQ(TurnAngle, 270);
    }
    {
        LibraryRig rig;
        DrawRecord entity = Bracket(30);
        rig.Place(entity, {Piece(210, 1, 1, true)}, ToolSeven("30"));
        rig.Split(entity);
        EXPECT_EQ(TurnCalls, 0);
    }
}

// A tool without an entry in Tooling.lkp is stored at 0: the turn is the entity's angle.
TEST(SplitLibraryTool, ToolWithoutAnEntryIsStoredAtZero) {
    LibraryRig rig;
    DrawRecord entity = Bracket(45);
    rig.Place(entity, {Piece(210, 1, 1, true)}, "\"Other\",8,10,90,\"8.drw\"");
    rig.Split(entity);
    EXPECT_EQ(TurnCalls, 1);
    EXPECT_DOUBLE_EQ(TurnAngle, 45);
}

// The shapes 152 to 156 and a tool-shaped hole (171) are turned; a circle (151) never is.
TEST(SplitLibraryTool, ShapesAreTurnedAndACircleIsNot) {
    for (const int16_t code : {151, 152, 153, 154, 155, 156, 171}) {
        LibraryRig rig;
        DrawRecord shape;
        shape.EntityCode = code;
        shape.Point[4] = {10, 10};
        shape.Value[1] = 10;
        shape.Value[2] = 16;
        shape.Value[3] = 2;
        shape.Value[10] = 90;
        shape.Side = 1;
        shape.ToolA.Present = -1;
        shape.ToolA.Letter = "U";
        shape.ToolA.ToolNumber = 7;
        rig.Place(shape, {Piece(210, 1, 1, true)}, ToolSeven("0"));
        const std::vector<DrawRecord> r = rig.Split(shape);
        ASSERT_EQ(r.size(), 1u) << code;
        EXPECT_EQ(TurnCalls, code == 151 ? 0 : 1) << code;
    }
}

// The radius-punch arcs of the drawing are made hits by the cruciform pass before it is placed:
// a quarter arc of an "M" tool on Side 1 about (0, 0) from 0 degrees at radius 5 becomes a hit at
// its start (5, 0), then moved to (105, 50).
TEST(SplitLibraryTool, RadiusPunchArcsOfTheDrawingBecomeHits) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    DrawRecord arc = Piece(130, 0, 0, true);
    arc.ToolA.Letter = "M";
    arc.Value[1] = 5;
    arc.Value[10] = 0;
    arc.Value[11] = 90;
    arc.Side = 1;
    BindRecord(rig.State.Machine, arc);
    rig.Place(entity, {arc}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 210);
    ExpectPoint(r[0].Point[4], 105, 50);
    EXPECT_EQ(r[0].ToolA.Letter.Text(), "M");
    EXPECT_EQ(r[0].After.ActionCode, 2);
}

// Through the dispatch: a Single-D with a "U" tool is placed from its size folder in the shapes
// library, the folder Single-D\Outside\20x16\Main\.
TEST(SplitLibraryTool, ShapeWithALibraryToolIsPlacedFromItsSizeFolder) {
    LibraryRig rig;
    DrawRecord shape;
    shape.EntityCode = 152;
    shape.Point[4] = {10, 20};
    shape.Value[1] = 10;
    shape.Value[2] = 16;
    shape.Side = 1;
    shape.ToolA.Present = -1;
    shape.ToolA.Letter = "U";
    shape.ToolA.ToolNumber = 3;
    const std::string drawing = JobShapePath(rig.State, shape, ToolDrawingMode);
    EXPECT_EQ(drawing, rig.State.Machine.ShapesDir + "Single-D\\Outside\\20x16\\Main\\3.drw");
    rig.Place(shape, {Piece(210, 1, 1, true), Piece(210, 2, 2, true)}, "\"D tool\",3,0,360,\"3.drw\"");
    const std::vector<DrawRecord> r = rig.Split(shape);
    ASSERT_EQ(r.size(), 2u);
    ExpectPoint(r[0].Point[4], 11, 21, 0);
    ExpectPoint(r[1].Point[4], 12, 22, 0);
    EXPECT_EQ(TurnCalls, 0);
}

// A record count beyond the records of the file ends at the last record on disk.
TEST(SplitLibraryTool, RecordCountBeyondTheFileEndsAtItsLastRecord) {
    LibraryRig rig;
    DrawRecord entity = Bracket();
    rig.Place(entity, {Piece(210, 1, 1, true), Piece(210, 2, 2, true)}, ToolSeven("30"), 2000000000);
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[1].After.ActionCode, 2);
}

// PITooling.drw is made anew for each entity: a stale longer file of an earlier split leaves
// nothing behind.
TEST(SplitLibraryTool, StaleWorkingFileLeavesNothingBehind) {
    LibraryRig rig;
    {
        DrawingFile stale;
        MakeWorkingFile(stale, rig.Working());
        for (int32_t n = 1; n <= 10; ++n) WriteRecord(stale, n, Piece(210, 9, 9, true));
        CloseDrawing(stale);
    }
    DrawRecord entity = Bracket();
    rig.Place(entity, {Piece(210, 1, 1, true)}, ToolSeven("30"), 10);
    const std::vector<DrawRecord> r = rig.Split(entity);
    ASSERT_EQ(r.size(), 1u);
    ExpectPoint(r[0].Point[4], 101, 51, 0);
}

// With the run's own turn: the drawing stored at 30 is placed on an entity at 120, a turn of 90
// about the drawing's origin before the move. The hit at (10, 0) turns to (0, 10) and lands on
// (100, 60); the line from (0, 0) to (20, 0) turns to run up from (100, 50) to (100, 70).
TEST(SplitLibraryTool, DrawingIsTurnedAboutItsOriginBeforeItIsMoved) {
    LibraryRig rig;
    DrawRecord entity = Bracket(120);
    rig.Place(entity, {Line(0, 0, 20, 0, true), Piece(210, 10, 0, true)}, ToolSeven("30"));
    const std::vector<DrawRecord> r = rig.Split(entity, RotateDrawing);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].EntityCode, 120);
    ExpectPoint(r[0].Point[1], 100, 50);
    ExpectPoint(r[0].Point[3], 100, 70);
    EXPECT_NEAR(r[0].Value[10], 90, 1e-3);
    EXPECT_EQ(r[1].EntityCode, 210);
    ExpectPoint(r[1].Point[4], 100, 60);
    EXPECT_EQ(r[1].After.ActionCode, 2);
}
