#include "job/generation.h"

#include <gtest/gtest.h>

#include <cctype>

#include "common/fault.h"
#include "drawing/drawfile.h"
#include "job/job_fixture.h"
#include "job/job_start.h"

using namespace tvx;

namespace {

std::vector<std::string> PunchBlocks() { return {"CANNED_PUNCH=TRUE", "P[X_AXIS][Y_AXIS]", "******"}; }

ToolSpec Tool(const char* letter, const char* name, float size1, int16_t number, int16_t workType, float step = 0) {
    ToolSpec t;
    t.Present = -1;
    t.Letter = letter;
    t.ToolName = name;
    t.Size[1] = size1;
    t.ToolNumber = number;
    t.WorkType = workType;
    t.ToolStep = step;
    return t;
}

// Program.seq with the rows given, and a turret of stations 5 and 12 for rows 1 and 2.
void Turret(JobFixture& f, const std::vector<std::string>& rows, int16_t stations = 20) {
    std::vector<std::string> lines{"SEQUENCE"};
    lines.insert(lines.end(), rows.begin(), rows.end());
    lines.push_back("******");
    WriteAllLines(f.State.Job.SeqFile, lines);
    CountSequenceRows(f.State);
    auto& turret = f.State.Machine.TurretTools;
    turret.resize(3);
    turret[1].Station = 5;
    turret[1].ToolText1 = "Stn 5";
    turret[1].ToolText2 = "5";
    turret[2].Station = 12;
    turret[2].ToolText1 = "Stn 12";
    turret[2].ToolText2 = "12";
    f.State.Machine.StationCount = stations;
    f.State.Job.ToolTimes.assign(static_cast<size_t>(stations) + 1, std::array<float, 5>{});
}

}  // namespace

TEST(CountSequenceRows, TitleAndEndMarkGiveNoRows) {
    JobFixture f(PunchBlocks());
    WriteAllLines(f.State.Job.SeqFile, {"TITLE", "******"});
    CountSequenceRows(f.State);
    EXPECT_EQ(f.State.Job.SeqRowCount, 0);
}

TEST(CountSequenceRows, RowBegunOnTheLastLineIsNotCounted) {
    JobFixture f(PunchBlocks());
    WriteAllLines(f.State.Job.SeqFile, {"TITLE", "A,R,1,0,0,0,0,1,1", "A"});
    CountSequenceRows(f.State);
    EXPECT_EQ(f.State.Job.SeqRowCount, 1);
    WriteAllLines(f.State.Job.SeqFile, {"TITLE", "\"A\",\"R\",1,0,0,0,\"0\",1,1", "\"C\",\"S\",1,0,0,0,\"0\",1,2"});
    CountSequenceRows(f.State);
    EXPECT_EQ(f.State.Job.SeqRowCount, 2);
}

TEST(SelectTool, NoRowsFallThroughToStationRowZero) {
    JobFixture f(PunchBlocks());
    Turret(f, {});
    SelectTool(f.State, Tool("A", "RND10", 10, 1, 10));
    EXPECT_EQ(f.State.Tables.PostMachine[0], 0.0f);
    EXPECT_EQ(f.State.Tables.PostText[25], "");
}

TEST(SelectTool, FindsTheRowAndStepsTheTurretBothWays) {
    JobFixture f(PunchBlocks());
    Turret(f, {"A,RND10,10,0,0,0,0,1,1", "C,SQ20,20,0,0,0,idx,2,2"});
    ValueTables& t = f.State.Tables;
    t.PostParam[192] = -1;
    SelectTool(f.State, Tool("A", "RND10", 10, 1, 10));
    EXPECT_EQ(t.PostMachine[0], 5.0f);
    EXPECT_EQ(t.PostMachine[14], 5.0f);
    EXPECT_EQ(t.PostParam[184], 5.0f);
    EXPECT_EQ(t.PostParam[57], 5.0f);
    EXPECT_EQ(t.PostText[28], "5");
    EXPECT_EQ(t.PostText[26], "Stn 5");
    EXPECT_EQ(t.PostText[27], "RND10");
    t.PostMemo[0] = 12;  // the machine stands at station 12
    SelectTool(f.State, Tool("A", "RND10", 10, 1, 10));
    // 5 - 12 = -7, plus 20 stations is 13, more than half: the other way round, 7.
    EXPECT_EQ(t.PostParam[184], 7.0f);
    t.PostParam[192] = 0;
    SelectTool(f.State, Tool("A", "RND10", 10, 1, 10));
    EXPECT_EQ(t.PostParam[184], 13.0f);
    EXPECT_EQ(t.PostParam[57], 5.0f);  // the first tool's station stays
}

TEST(SelectTool, RotatingToolMatchesTheIdxRowAndAddsTheTimersOfTheStationInWork) {
    JobFixture f(PunchBlocks());
    Turret(f, {"A,RND10,10,0,0,0,0,1,1", "C,SQ20,20,0,0,0,idx,2,2"});
    ValueTables& t = f.State.Tables;
    t.PostMemo[0] = 5;
    for (int i = 204; i <= 207; ++i) t.PostParam[i] = static_cast<float>(i - 200);
    SelectTool(f.State, Tool("C", "SQ20", 20, 2, 20, 33));
    EXPECT_EQ(t.PostMachine[0], 12.0f);
    EXPECT_EQ(t.PostParam[67], 20.0f);
    EXPECT_EQ(t.PostParam[64], 33.0f);
    EXPECT_EQ(t.PostMemo[12], -999.0f);
    const auto& times = f.State.Job.ToolTimes[5];
    EXPECT_EQ(times[1], 4.0f);
    EXPECT_EQ(times[4], 7.0f);
}

TEST(SelectTool, AngleTextOfTheStepMustMatchTheRow) {
    JobFixture f(PunchBlocks());
    Turret(f, {"E,RECT,10,0,0,0,90,3,2"});
    SelectTool(f.State, Tool("E", "RECT", 10, 3, 10, 0));
    EXPECT_EQ(f.State.Tables.PostMachine[0], 0.0f);
    SelectTool(f.State, Tool("E", "RECT", 10, 3, 10, 90));
    EXPECT_EQ(f.State.Tables.PostMachine[0], 12.0f);
}

TEST(ToolChanged, NoToolIsNoChange) {
    JobFixture f(PunchBlocks());
    ToolSpec none;
    EXPECT_FALSE(ToolChanged(f.State, none));
    EXPECT_EQ(f.State.Tables.PostMachine[12], 0.0f);
}

TEST(ToolChanged, ChangeToARotatingToolKeepsItsMemo) {
    JobFixture f(PunchBlocks());
    f.State.Tables.PostMemo[17] = 5;
    EXPECT_TRUE(ToolChanged(f.State, Tool("C", "SQ", 10, 1, 20)));
    EXPECT_TRUE(f.State.Loop.ToolRotates);
    EXPECT_EQ(f.State.Tables.PostMachine[12], -999.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[17], 5.0f);
}

TEST(ToolChanged, ChangeToAFixedToolClearsTheAngleCells) {
    JobFixture f(PunchBlocks());
    f.State.Loop.ToolRotates = true;
    EXPECT_TRUE(ToolChanged(f.State, Tool("A", "RND", 10, 1, 10)));
    EXPECT_FALSE(f.State.Loop.ToolRotates);
    EXPECT_EQ(f.State.Tables.PostMemo[12], -999.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[17], -999.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[17], -999.0f);
}

TEST(ToolChanged, SameToolWithOtherPaddingIsNoChange) {
    JobFixture f(PunchBlocks());
    CopyTool(Tool("A", "RND", 10, 1, 10), f.State.Loop.CurrentTool);
    ToolSpec same = Tool("A", "  RND", 10, 1, 10);
    same.ToolAngle = 90;  // the angle is not compared
    same.WorkType = 11;   // nor the work type
    EXPECT_FALSE(ToolChanged(f.State, same));
}

TEST(FamilyFiveToolCode, ShapesAndAngles) {
    JobFixture f(PunchBlocks());
    f.State.Tables.PostText[25] = "07";
    ToolSpec t = Tool("A", "RND", 10.5f, 1, 10);
    EXPECT_EQ(FamilyFiveToolCode(f.State, "A", t), "07101050");
    t.Size[2] = 20;
    t.ToolStep = 90;
    EXPECT_EQ(FamilyFiveToolCode(f.State, "B", t), "07301050");
    EXPECT_EQ(FamilyFiveToolCode(f.State, "D", t), "0740200001050");
    EXPECT_EQ(FamilyFiveToolCode(f.State, "F", t), "0770105002000");
    t.ToolStep = 180;
    EXPECT_EQ(FamilyFiveToolCode(f.State, "D", t), "0740105002000");
    EXPECT_EQ(FamilyFiveToolCode(f.State, "F", t), "0780105002000");
    t.ToolStep = 45;
    EXPECT_EQ(FamilyFiveToolCode(f.State, "B", t), "07907");
    EXPECT_EQ(FamilyFiveToolCode(f.State, "E", t), "07907");
}

TEST(PrepareRecord, RecordWithoutToolSelectsStationRowZeroWhenTheStationMoved) {
    JobFixture f(PunchBlocks());
    Turret(f, {"A,RND10,10,0,0,0,0,1,1"});
    f.State.Tables.PostMachine[0] = 5;
    f.State.Tables.PostMemo[0] = 3;
    f.State.Loop.Record.EntityCode = 311;
    PrepareRecord(f.State);
    EXPECT_EQ(f.State.Tables.PostMachine[0], 0.0f);
    // Without a move of the station the tool stays.
    f.State.Tables.PostMachine[0] = 5;
    f.State.Tables.PostMemo[0] = 5;
    PrepareRecord(f.State);
    EXPECT_EQ(f.State.Tables.PostMachine[0], 5.0f);
}

TEST(PrepareRecord, RoundToolLosesItsAngles) {
    JobFixture f(PunchBlocks());
    Turret(f, {});
    DrawRecord& r = f.State.Loop.Record;
    r.ToolA = Tool("A", "R", 5, 1, 10, 30);
    r.ToolA.ToolAngle = -30;
    r.ToolB = Tool("C", "S", 5, 1, 10, 30);
    r.ToolB.ToolAngle = 400;
    PrepareRecord(f.State);
    EXPECT_EQ(r.ToolA.ToolStep, 0.0f);
    EXPECT_EQ(r.ToolA.ToolAngle, 0.0f);
    EXPECT_EQ(r.ToolB.ToolAngle, 40.0f);
    EXPECT_EQ(r.ToolB.ToolStep, 30.0f);
}

TEST(GenerationLoop, DrawingOfRecordOneOnlyMakesOneFetchPastTheEnd) {
    JobFixture f(PunchBlocks());
    Turret(f, {});
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 1;
    OpenDrawing(f.State.Loop.MainDrawing, f.Path("Progmain.drw"));
    WriteRecord(f.State.Loop.MainDrawing, 1, header);
    f.State.Job.RecordTotal = 1;
    RunGenerationLoop(f.State);
    EXPECT_EQ(f.State.Loop.RecordIndex, 2);
    EXPECT_EQ(f.State.Loop.Record.EntityCode, 0);
    EXPECT_EQ(f.Program(), "");
}

TEST(GenerationLoop, RadiusArcOfMinus90IsPunchedAtItsWorkingStart) {
    std::vector<std::string> blocks = PunchBlocks();
    for (const char* line : {"CANNED_NIBBLED_ARC=TRUE", "ARC PATH", "******"}) blocks.push_back(line);
    JobFixture f(blocks);
    Turret(f, {});
    DrawRecord arc;
    arc.EntityCode = 130;
    arc.Side = 1;
    arc.Value[11] = -90;
    arc.Point[5] = SinglePoint{3, 4};
    arc.Point[3] = SinglePoint{9, 9};
    arc.ToolA = Tool("M", "RAD", 5, 1, 10);
    f.State.Loop.Record = arc;
    DispatchRecord(f.State);
    arc.Side = -1;
    f.State.Loop.Record = arc;
    DispatchRecord(f.State);  // the other turning direction is no corner: a path of the arc
    EXPECT_EQ(f.Program(), "PX3.000Y4.000\r\nARC PATH\r\n");
}

TEST(GenerationLoop, RecordsWithoutAToolAreNotPunched) {
    JobFixture f(PunchBlocks());
    DrawRecord hit;
    hit.EntityCode = 210;
    f.State.Loop.Record = hit;
    DispatchRecord(f.State);
    hit.EntityCode = 171;
    f.State.Loop.Record = hit;
    DispatchRecord(f.State);
    EXPECT_EQ(f.Program(), "");
}

namespace {

// Every shape word true, each block printing its word in small letters.
std::vector<std::string> ShapeBlocks() {
    std::vector<std::string> lines;
    for (const char* word : {"SHAPE_DIAMETER_CUT", "SHAPE_DIAMETER_PUNCHED", "SHAPE_SINGLED_CUT",
                             "SHAPE_SINGLED_PUNCHED", "SHAPE_DOUBLED_CUT", "SHAPE_DOUBLED_PUNCHED",
                             "SHAPE_OBROUND_CUT", "SHAPE_OBROUND_PUNCHED", "SHAPE_RADRECTANGLE_CUT",
                             "SHAPE_RADRECTANGLE_PUNCHED", "SHAPE_RECTANGLE_CUT", "SHAPE_RECTANGLE_PUNCHED"}) {
        std::string text = word;
        for (char& c : text) c = c == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        lines.push_back(std::string(word) + "=TRUE");
        lines.push_back(text);
        lines.push_back("******");
    }
    return lines;
}

// The program that the dispatch of one shape record writes.
std::string ShapeDispatched(int16_t code, const ToolSpec& tool) {
    JobFixture f(ShapeBlocks());
    DrawRecord r;
    r.EntityCode = code;
    r.Value[1] = 10;
    r.Value[2] = 4;
    r.ToolA = tool;
    f.State.Loop.Record = r;
    DispatchRecord(f.State);
    EXPECT_FALSE(f.State.Loop.ShapeActive);
    EXPECT_FALSE(f.State.Loop.ToolingActive);
    return f.Program();
}

}  // namespace

TEST(DispatchShape, ProfilingLetterCallsTheCutEmitter) {
    const ToolSpec p = Tool("P", "LASER", 0, 1, 1);
    EXPECT_EQ(ShapeDispatched(151, p), "shape diameter cut\r\n");
    EXPECT_EQ(ShapeDispatched(152, p), "shape singled cut\r\n");
    EXPECT_EQ(ShapeDispatched(153, p), "shape doubled cut\r\n");
    EXPECT_EQ(ShapeDispatched(154, p), "shape obround cut\r\n");
    EXPECT_EQ(ShapeDispatched(155, p), "shape radrectangle cut\r\n");
    EXPECT_EQ(ShapeDispatched(156, p), "shape rectangle cut\r\n");
}

TEST(DispatchShape, AnyOtherLetterCallsThePunchedEmitter) {
    for (const char* letter : {"A", "C", "F", "M", " "}) {
        const ToolSpec t = Tool(letter, "PUNCH", 5, 1, 10);
        EXPECT_EQ(ShapeDispatched(151, t), "shape diameter punched\r\n") << letter;
        EXPECT_EQ(ShapeDispatched(152, t), "shape singled punched\r\n") << letter;
        EXPECT_EQ(ShapeDispatched(153, t), "shape doubled punched\r\n") << letter;
        EXPECT_EQ(ShapeDispatched(154, t), "shape obround punched\r\n") << letter;
        EXPECT_EQ(ShapeDispatched(155, t), "shape radrectangle punched\r\n") << letter;
        EXPECT_EQ(ShapeDispatched(156, t), "shape rectangle punched\r\n") << letter;
    }
}

TEST(DispatchShape, TheLetterChoosesAndNotTheWorkType) {
    // A punch work type with "P" is cut, a profiling one with "A" punched.
    EXPECT_EQ(ShapeDispatched(154, Tool("P", "X", 0, 1, 10)), "shape obround cut\r\n");
    EXPECT_EQ(ShapeDispatched(154, Tool("A", "X", 0, 1, 1)), "shape obround punched\r\n");
}

TEST(DispatchShape, LibraryToolingLetterMakesTheAssociatedToolingInstead) {
    for (int16_t code = 151; code <= 156; ++code)
        EXPECT_EQ(ShapeDispatched(code, Tool("U", "LIB", 0, 7, 10)), "") << code;
}

TEST(DispatchShape, ShapeWithoutAToolProducesNothing) {
    for (int16_t code = 151; code <= 156; ++code) EXPECT_EQ(ShapeDispatched(code, ToolSpec{}), "") << code;
}

TEST(DispatchShape, LibraryToolingEntityProducesNothingWithOrWithoutATool) {
    EXPECT_EQ(ShapeDispatched(175, Tool("U", "LIB", 0, 7, 10)), "");
    EXPECT_EQ(ShapeDispatched(175, ToolSpec{}), "");
}

// ---- Fetching from Shape.drw ------------------------------------------------------------------

namespace {

DrawRecord HitAt(float x, const ToolSpec& tool) {
    DrawRecord r;
    r.EntityCode = 210;
    r.Point[4] = SinglePoint{x, 0};
    r.ToolA = tool;
    return r;
}

// Shape.drw of the records given, with no header, opened for the loop as an emitter leaves it.
void StartShapeStream(JobFixture& f, const std::vector<DrawRecord>& records) {
    LoopState& loop = f.State.Loop;
    OpenDrawing(loop.ShapeDrawing, f.Path("Shape.drw"));
    for (size_t i = 0; i < records.size(); ++i) WriteRecord(loop.ShapeDrawing, static_cast<int32_t>(i + 1), records[i]);
    loop.ShapeActive = true;
    loop.ShapeIndex = 0;
}

}  // namespace

// Shape.drw comes before AssTool.drw, and the code 0 that ends it is not a record of its own: the
// same fetch goes on to the tooling's next record, and only after the tooling to the main drawing.
TEST(FetchRecord, EndOfShapeDrawFallsThroughToTheToolingStreamInTheSameFetch) {
    JobFixture f(PunchBlocks());
    LoopState& loop = f.State.Loop;
    const ToolSpec a = Tool("A", "RND", 10, 1, 10);
    StartShapeStream(f, {HitAt(1, a)});
    OpenDrawing(loop.ToolingDrawing, f.Path("AssTool.drw"));
    WriteRecord(loop.ToolingDrawing, 1, HitAt(2, a));
    loop.ToolingActive = true;
    loop.ToolingIndex = 0;
    OpenDrawing(loop.MainDrawing, f.Path("Progmain.drw"));
    WriteRecord(loop.MainDrawing, 2, HitAt(3, a));
    loop.RecordIndex = 1;

    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.Record.Point[4].X, 1.0f);
    EXPECT_EQ(loop.ShapeIndex, 1);
    ASSERT_TRUE(FetchRecord(f.State));  // Shape.drw's code 0, then AssTool.drw record 1
    EXPECT_FALSE(loop.ShapeActive);
    EXPECT_FALSE(IsOpen(loop.ShapeDrawing));
    EXPECT_EQ(loop.ShapeIndex, 2);
    EXPECT_EQ(loop.Record.Point[4].X, 2.0f);
    EXPECT_EQ(loop.RecordIndex, 1);
    ASSERT_TRUE(FetchRecord(f.State));  // AssTool.drw's code 0, then the main drawing's record 2
    EXPECT_FALSE(loop.ToolingActive);
    EXPECT_EQ(loop.Record.Point[4].X, 3.0f);
    EXPECT_EQ(loop.RecordIndex, 2);
    CloseDrawing(loop.MainDrawing);
}

// Inside a part, Shape.drw is read into the part's look-ahead record and its records are matched
// against the tool in work like the part's own; its end goes on to the part's next record.
TEST(FetchRecord, ShapeDrawInsideAPartIsWalkedBeforeThePartDrawing) {
    JobFixture f(PunchBlocks());
    LoopState& loop = f.State.Loop;
    const ToolSpec a = Tool("A", "RND", 10, 1, 10);
    OpenDrawing(loop.PartDrawing, f.Path("part.drw"));
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 3;
    WriteRecord(loop.PartDrawing, 1, header);
    WriteRecord(loop.PartDrawing, 2, HitAt(20, a));
    WriteRecord(loop.PartDrawing, 3, HitAt(30, a));
    loop.PartIndex = 1;
    loop.PartRecordCount = 3;
    loop.Record.ToolA = a;
    f.State.Engine.SubroutineOutput = true;
    // The second record of the shape has another tool: the walk passes over it.
    StartShapeStream(f, {HitAt(1, a), HitAt(2, Tool("C", "SQ", 20, 2, 10))});

    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.Record.Point[4].X, 1.0f);
    EXPECT_EQ(loop.PartIndex, 1);
    // One fetch: Shape.drw's record 2 (no match), its code 0, then the part's record 2.
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_FALSE(loop.ShapeActive);
    EXPECT_EQ(loop.ShapeIndex, 3);
    EXPECT_EQ(loop.PartIndex, 2);
    EXPECT_EQ(loop.Record.Point[4].X, 20.0f);
    EXPECT_TRUE(f.State.Engine.SubroutineOutput);
    f.State.Engine.SubroutineOutput = false;
    CloseDrawing(loop.PartDrawing);
}

// Inside a part, a record of AssTool.drw with a tool is taken whatever its tool, while the stream
// is open; one without a tool is passed over. The part's records are matched against the tool of
// the record in work, which after the tooling is the tooling's last record taken, not the tool
// of the part record (510) that opened the part.
TEST(FetchRecord, AToolingInsideAPartIsTakenWhateverItsToolAndLeavesItsToolToMatch) {
    JobFixture f(PunchBlocks());
    LoopState& loop = f.State.Loop;
    const ToolSpec a = Tool("A", "RND", 10, 1, 10);
    const ToolSpec oblong = Tool("F", "OB", 5, 3, 10);
    OpenDrawing(loop.PartDrawing, f.Path("part.drw"));
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 4;
    WriteRecord(loop.PartDrawing, 1, header);
    WriteRecord(loop.PartDrawing, 2, HitAt(20, oblong));
    WriteRecord(loop.PartDrawing, 3, HitAt(30, a));
    WriteRecord(loop.PartDrawing, 4, HitAt(40, oblong));
    loop.PartIndex = 1;
    loop.PartRecordCount = 4;
    loop.Record.ToolA = a;
    f.State.Engine.SubroutineOutput = true;
    OpenDrawing(loop.ToolingDrawing, f.Path("AssTool.drw"));
    WriteRecord(loop.ToolingDrawing, 1, header);
    WriteRecord(loop.ToolingDrawing, 2, HitAt(1, Tool("C", "SQ", 20, 2, 10)));
    DrawRecord untooled = HitAt(2, ToolSpec{});
    untooled.EntityCode = 120;
    WriteRecord(loop.ToolingDrawing, 3, untooled);
    WriteRecord(loop.ToolingDrawing, 4, HitAt(3, oblong));
    loop.ToolingActive = true;
    loop.ToolingIndex = 1;

    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.Record.Point[4].X, 1.0f);
    EXPECT_EQ(loop.ToolingIndex, 2);
    EXPECT_TRUE(loop.PartMatch);
    // The untooled line is passed over within the same fetch.
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.Record.Point[4].X, 3.0f);
    EXPECT_EQ(loop.ToolingIndex, 4);
    EXPECT_EQ(loop.PartIndex, 1);
    // The stream's end, then the part's record 2, of the tool of the tooling's last record.
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_FALSE(loop.ToolingActive);
    EXPECT_FALSE(IsOpen(loop.ToolingDrawing));
    EXPECT_EQ(loop.PartIndex, 2);
    EXPECT_EQ(loop.Record.Point[4].X, 20.0f);
    // Record 3, of the tool that opened the part, is passed over.
    ASSERT_TRUE(FetchRecord(f.State));
    EXPECT_EQ(loop.PartIndex, 4);
    EXPECT_EQ(loop.Record.Point[4].X, 40.0f);
    f.State.Engine.SubroutineOutput = false;
    CloseDrawing(loop.PartDrawing);
}
