// A library tooling placed at generation time is posted: the loop reads AssTool.drw from its
// record 2 on, then goes on with the drawing.
#include <gtest/gtest.h>

#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "job/generation.h"
#include "job/job_fixture.h"
#include "job/job_start.h"
#include "tooling/library.h"

using namespace tvx;

namespace {

ToolSpec RoundPunch() {
    ToolSpec t;
    t.Present = -1;
    t.Letter = "A";
    t.ToolName = "RND";
    t.Size[1] = 5;
    t.WorkType = 10;
    return t;
}

DrawRecord Header(int32_t count) {
    DrawRecord r;
    r.EntityCode = 1;
    r.RecordCount = count;
    return r;
}

DrawRecord Hit(float x, float y) {
    DrawRecord r;
    r.EntityCode = 210;
    r.EntityName = "Punch";
    r.Point[4] = SinglePoint{x, y};
    r.ToolA = RoundPunch();
    BindRecord(MachineState{}, r);
    return r;
}

void Write(const std::string& path, const std::vector<DrawRecord>& records) {
    DrawingFile file;
    MakeWorkingFile(file, path);
    for (size_t i = 0; i < records.size(); ++i) WriteRecord(file, static_cast<int32_t>(i + 1), records[i]);
}

// A tool machine with an empty tool table, posting hits.
void PunchMachine(JobFixture& f) {
    WriteAllLines(f.State.Job.SeqFile, {"SEQUENCE", "******"});
    CountSequenceRows(f.State);
    f.State.Machine.StationCount = 20;
    f.State.Job.ToolTimes.assign(21, std::array<float, 5>{});
    f.State.Machine.MachineKind = 10;
    f.State.Machine.IsToolMachine = true;
    f.State.Machine.ShapesDir = f.Path("Shapes/");
    f.State.Machine.ToolLibrary = "Lib";
}

// An inside rectangle at (100, 50) tooled by library tool 7, stored at its own angle 0, whose
// tool drawing is the records given.
DrawRecord LibraryRectangle(JobFixture& f, const std::vector<DrawRecord>& drawing) {
    DrawRecord rectangle;
    rectangle.EntityCode = 156;
    rectangle.Value[1] = 10;
    rectangle.Value[2] = 20;
    rectangle.Point[4] = SinglePoint{100, 50};
    rectangle.ToolA.Present = -1;
    rectangle.ToolA.Letter = "U";
    rectangle.ToolA.ToolNumber = 7;
    WriteAllLines(JobShapePath(f.State, rectangle, LookupFileMode), {"\"HOOK\",7,0,90,\"7.drw\"", "******"});
    Write(JobShapePath(f.State, rectangle, ToolDrawingMode), drawing);
    return rectangle;
}

}  // namespace

TEST(GenerationLoop, APlacedLibraryToolingIsPostedBeforeTheDrawingGoesOn) {
    JobFixture f({"CANNED_PUNCH=TRUE", "P[X_AXIS][Y_AXIS]", "******"});
    PunchMachine(f);
    const DrawRecord rectangle = LibraryRectangle(f, {Header(3), Hit(5, 0), Hit(0, 5)});

    Write(f.Path("Progmain.drw"), {Header(3), rectangle, Hit(1, 2)});
    OpenDrawing(f.State.Loop.MainDrawing, f.Path("Progmain.drw"));
    f.State.Job.RecordTotal = 3;
    RunGenerationLoop(f.State);
    EXPECT_FALSE(f.State.Loop.ToolingActive);
    EXPECT_EQ(f.Program(), "PX105.000Y50.000\r\nPX100.000Y55.000\r\nPX1.000Y2.000\r\n");
}

// The loop goes on while the tooling stream is open: a tooling that the last record of the
// drawing starts is still posted.
TEST(GenerationLoop, AToolingStartedByTheLastRecordIsStillPosted) {
    JobFixture f({"CANNED_PUNCH=TRUE", "P[X_AXIS][Y_AXIS]", "******"});
    PunchMachine(f);
    const DrawRecord rectangle = LibraryRectangle(f, {Header(3), Hit(5, 0), Hit(0, 5)});
    Write(f.Path("Progmain.drw"), {Header(3), Hit(1, 2), rectangle});
    OpenDrawing(f.State.Loop.MainDrawing, f.Path("Progmain.drw"));
    f.State.Job.RecordTotal = 3;
    RunGenerationLoop(f.State);
    EXPECT_FALSE(f.State.Loop.ToolingActive);
    EXPECT_EQ(f.Program(), "PX1.000Y2.000\r\nPX105.000Y50.000\r\nPX100.000Y55.000\r\n");
}

// The stream ends at its first record of code 0, not at the tooling drawing's count: a record
// behind the count is read too, where the placing (which moves records up to the count) left it.
TEST(GenerationLoop, ARecordOfTheToolingDrawingBehindItsCountIsPostedUnmoved) {
    JobFixture f({"CANNED_PUNCH=TRUE", "P[X_AXIS][Y_AXIS]", "******"});
    PunchMachine(f);
    const DrawRecord rectangle = LibraryRectangle(f, {Header(2), Hit(5, 0), Hit(0, 5)});
    Write(f.Path("Progmain.drw"), {Header(2), rectangle});
    OpenDrawing(f.State.Loop.MainDrawing, f.Path("Progmain.drw"));
    f.State.Job.RecordTotal = 2;
    RunGenerationLoop(f.State);
    EXPECT_EQ(f.Program(), "PX105.000Y50.000\r\nPX0.000Y5.000\r\n");
}
