#include "splitting/single_shape.h"

#include <gtest/gtest.h>

#include <vector>

#include "common/fault.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "job/job_fixture.h"
#include "splitting/single_profile.h"
#include "splitting/single_shape_choice.h"
#include "splitting/split_shapes.h"

using namespace tvx;

namespace {

std::vector<std::string> NoBlocks() { return {"END=TRUE", "end", "******"}; }

// The records of Shape.drw as they lie on disk, up to the first of code 0.
std::vector<DrawRecord> ShapeRecords(RunState& state) {
    DrawingFile file;
    OpenDrawing(file, ShapeDrawingPath(state));
    std::vector<DrawRecord> records;
    for (int32_t n = 1; n <= RecordsOnDisk(file); ++n) {
        DrawRecord r = ReadRecord(file, n);
        if (r.EntityCode == 0) break;
        records.push_back(r);
    }
    return records;
}

int32_t ShapeRecordsOnDisk(RunState& state) {
    DrawingFile file;
    OpenDrawing(file, ShapeDrawingPath(state));
    return RecordsOnDisk(file);
}

ToolSpec Tool(const char* letter, int16_t workType) {
    ToolSpec t;
    t.Present = -1;
    t.Letter = letter;
    t.ToolName = "T";
    t.Size[1] = 4;
    t.Size[2] = 4;
    t.WorkType = workType;
    return t;
}

ToolSpec ProfilingTool() { return Tool("P", 1); }

// A circle of radius 10 about (50, 50), starting at 0 degrees, cut outside, with straight leads
// of 5 and a stop after it.
DrawRecord Circle(const MachineState& machine, const ToolSpec& tool, bool leads = true) {
    DrawRecord r;
    r.EntityCode = 151;
    r.Point[4] = SinglePoint{50, 50};
    r.Value[1] = 10;
    r.Value[11] = 360;
    r.Side = 1;
    r.ToolA = tool;
    if (leads) {
        r.LeadIn = LeadSpec{1, 5, 0, 0};
        r.LeadOut = LeadSpec{1, 5, 0, 0};
    }
    r.After = AfterAction{1, 0};
    BindRecord(machine, r);
    return r;
}

// A shape of the code with plain dimensions: centre (20, 30), 16 by 8 (Single-D and Double-D:
// radius 8 and 12 or 10 across), corner radius 2, rotation 0, outside, straight leads of 3.
DrawRecord Shape(const MachineState& machine, int16_t code, const ToolSpec& tool) {
    DrawRecord r;
    r.EntityCode = code;
    r.Point[4] = SinglePoint{20, 30};
    r.Value[1] = code == 152 || code == 153 ? 8.0f : 16.0f;
    r.Value[2] = code == 152 ? 12.0f : code == 153 ? 10.0f : 8.0f;
    r.Value[3] = 2;
    r.Side = 1;
    r.ToolA = tool;
    r.LeadIn = LeadSpec{1, 3, 0, 0};
    r.LeadOut = LeadSpec{1, 3, 0, 0};
    r.After = AfterAction{1, 0};
    BindRecord(machine, r);
    return r;
}

using Entry = void (*)(RunState&, const DrawRecord&);

struct EntryRow {
    const char* Name;
    Entry Run;
    int16_t Code;
};

const EntryRow Entries[] = {
    {"SingleCircle", SingleCircle, 151},   {"SingleSingleD", SingleSingleD, 152},
    {"SingleDoubleD", SingleDoubleD, 153}, {"SingleObround", SingleObround, 154},
    {"SingleRadRect", SingleRadRect, 155}, {"SingleRectangle", SingleRectangle, 156},
};

// The bytes of a record with its first tool taken away.
RecordBytes WithoutTool(DrawRecord r) {
    ClearTool(r.ToolA);
    return EncodeRecord(r);
}

}  // namespace

// ---- Which routine an entry point takes ----------------------------------------------------

TEST(SingleShapeChoice, ShapeWithNoToolIsToldLikeOneWithAProfilingToolByTheRoutinesWithLeads) {
    DrawRecord none;
    DrawRecord profiled;
    profiled.ToolA = ProfilingTool();
    for (const DrawRecord* r : {&none, &profiled}) {
        EXPECT_EQ(SingleCircleRoutine(*r), &WriteCirclePlain);
        EXPECT_EQ(SingleSingleDRoutine(*r), &SplitSingleDLeads);
        EXPECT_EQ(SingleDoubleDRoutine(*r), &SplitDoubleDLeads);
        EXPECT_EQ(SingleObroundRoutine(*r), &SplitObroundLeads);
        EXPECT_EQ(SingleRadRectRoutine(*r), &SplitRadRectLeads);
        EXPECT_EQ(SingleRectangleRoutine(*r), &SplitRectangleLeads);
    }
}

TEST(SingleShapeChoice, ToolOfWorkTypeNineIsNotWorked) {
    DrawRecord r;
    r.ToolA = Tool("A", 9);
    EXPECT_EQ(SingleCircleRoutine(r), &WriteCirclePlain);
    EXPECT_EQ(SingleObroundRoutine(r), &SplitObroundLeads);
}

TEST(SingleShapeChoice, WorkedShapesTakeThePunchRoutines) {
    DrawRecord r;
    r.ToolA = Tool("A", 10);
    EXPECT_EQ(SingleCircleRoutine(r), &SplitCirclePunched);
    EXPECT_EQ(SingleSingleDRoutine(r), &SplitSingleDPunched);
    EXPECT_EQ(SingleDoubleDRoutine(r), &SplitDoubleDPunched);
    EXPECT_EQ(SingleObroundRoutine(r), &SplitObroundPunched);
    EXPECT_EQ(SingleRectangleRoutine(r), &SplitRectangleWorked);
    r.ToolA = Tool("C", 20);
    EXPECT_EQ(SingleRectangleRoutine(r), &SplitRectangleWorked);
}

TEST(SingleShapeChoice, RadRectWithoutAWorkedToolTakesTheOutlineWithLeads) {
    DrawRecord r;
    r.Side = -1;
    r.ToolA = Tool("C", 5);
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectLeads);
}

TEST(SingleShapeChoice, OutsideRadRectTakesTheRoundOutlineWhateverTheLetter) {
    DrawRecord r;
    r.Side = 1;
    for (const char* letter : {"A", "C", "E", "D", "B", " "}) {
        r.ToolA = Tool(letter, 10);
        EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectRound) << letter;
    }
    r.Side = 2;
    r.ToolA = Tool("E", 20);
    r.Count[1] = 3;
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectRound);
}

TEST(SingleShapeChoice, InsideRadRectByLetterAndCount) {
    DrawRecord r;
    r.Side = 0;
    r.ToolA = Tool("A", 10);
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectRound);
    r.Count[1] = 2;
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectRound);

    r.ToolA = Tool("C", 10);
    r.Count[1] = 0;
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectEdges);
    r.ToolA = Tool("C", 20);  // a turning "C" rims like a fixed one
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectEdges);
    r.Count[1] = 1;
    EXPECT_EQ(SingleRadRectRoutine(r), &ClearRectByGrid);

    r.Side = -1;
    r.ToolA = Tool("E", 10);
    r.Count[1] = 0;
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectEdges);
    r.ToolA = Tool("E", 20);
    EXPECT_EQ(SingleRadRectRoutine(r), &SplitRadRectEdgesRotary);
    r.Count[1] = -1;
    EXPECT_EQ(SingleRadRectRoutine(r), &ClearRectByGrid);
    r.ToolA = Tool("E", 10);
    EXPECT_EQ(SingleRadRectRoutine(r), &ClearRectByGrid);
}

TEST(SingleShapeChoice, InsideRadRectOfAnyOtherLetterHasNoRoutine) {
    DrawRecord r;
    r.Side = -1;
    for (const char* letter : {"B", "D", "F", "M", "P", " "}) {
        r.ToolA = Tool(letter, 10);
        EXPECT_EQ(SingleRadRectRoutine(r), nullptr) << letter;
    }
}

// ---- Shape.drw ---------------------------------------------------------------------------------

TEST(SingleShape, ShapeDrawHasNoHeaderAndIsRebuiltForEachShape) {
    JobFixture f(NoBlocks());
    SingleCircle(f.State, Circle(f.State.Machine, ProfilingTool()));
    std::vector<DrawRecord> first = ShapeRecords(f.State);
    ASSERT_EQ(first.size(), 3u);
    EXPECT_EQ(first[0].EntityCode, 120);  // the lead-in is record 1
    EXPECT_EQ(first[0].RecordCount, 0);
    EXPECT_FALSE(IsOpen(f.State.Loop.ShapeDrawing));

    // A shorter shape leaves nothing of the longer one behind it.
    SingleCircle(f.State, Circle(f.State.Machine, ProfilingTool(), false));
    EXPECT_EQ(ShapeRecordsOnDisk(f.State), 1);
    EXPECT_EQ(ShapeRecords(f.State)[0].EntityCode, 130);
}

TEST(SingleShape, CirclePlainIsAWholeArcProfileBetweenItsLeadRecords) {
    JobFixture f(NoBlocks());
    const DrawRecord circle = Circle(f.State.Machine, ProfilingTool());
    SingleCirclePlain(f.State, circle);
    std::vector<DrawRecord> r = ShapeRecords(f.State);
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[0].Count[8], 1);
    EXPECT_EQ(r[0].After.ActionCode, 0);
    // An outside circle's straight lead-in is radial: from 5 beyond the start to the start.
    EXPECT_EQ(r[0].Point[1].X, 65.0f);
    EXPECT_EQ(r[0].Point[1].Y, 50.0f);
    EXPECT_EQ(r[0].Point[3].X, 60.0f);
    EXPECT_EQ(r[0].Point[3].Y, 50.0f);

    EXPECT_EQ(r[1].EntityCode, 130);
    EXPECT_EQ(r[1].EntityName.Trimmed(), "Arc Profile");
    EXPECT_EQ(r[1].Count[8], 0);
    EXPECT_EQ(r[1].LeadIn.LeadKind, 0);
    EXPECT_EQ(r[1].LeadOut.LeadKind, 0);
    EXPECT_EQ(r[1].After.ActionCode, 0);
    EXPECT_EQ(r[1].Value[1], 10.0f);
    EXPECT_EQ(r[1].Value[11], 360.0f);
    EXPECT_EQ(r[1].Point[1].X, 60.0f);
    // Bound as an arc: its working radius is its radius.
    EXPECT_EQ(r[1].Value[5], 10.0f);

    EXPECT_EQ(r[2].EntityCode, 120);
    EXPECT_EQ(r[2].Count[8], 2);
    EXPECT_EQ(r[2].After.ActionCode, 1);
    EXPECT_EQ(r[2].Point[1].X, 60.0f);
    EXPECT_EQ(r[2].Point[3].X, 65.0f);
}

TEST(SingleShape, CircleWithoutLeadsIsTheArcAloneWithoutItsAfter) {
    JobFixture f(NoBlocks());
    SingleCirclePlain(f.State, Circle(f.State.Machine, ToolSpec{}, false));
    std::vector<DrawRecord> r = ShapeRecords(f.State);
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].EntityCode, 130);
    EXPECT_EQ(r[0].After.ActionCode, 0);
}

TEST(SingleShape, CircleWithNoToolGivesTheSameRecordsAsOneWithAProfilingTool) {
    JobFixture f(NoBlocks());
    SingleCircle(f.State, Circle(f.State.Machine, ToolSpec{}));
    const std::vector<DrawRecord> none = ShapeRecords(f.State);
    SingleCircle(f.State, Circle(f.State.Machine, ProfilingTool()));
    const std::vector<DrawRecord> profiled = ShapeRecords(f.State);
    ASSERT_EQ(none.size(), 3u);
    ASSERT_EQ(profiled.size(), none.size());
    for (size_t i = 0; i < none.size(); ++i) EXPECT_EQ(WithoutTool(none[i]), WithoutTool(profiled[i])) << i;
}

// Needs the outline routines with leads of every shape.
TEST(SingleShape, ShapeWithNoToolGivesTheSameRecordsAsOneWithAProfilingTool) {
    for (const EntryRow& entry : Entries) {
        JobFixture f(NoBlocks());
        entry.Run(f.State, Shape(f.State.Machine, entry.Code, ToolSpec{}));
        const std::vector<DrawRecord> none = ShapeRecords(f.State);
        entry.Run(f.State, Shape(f.State.Machine, entry.Code, ProfilingTool()));
        const std::vector<DrawRecord> profiled = ShapeRecords(f.State);
        ASSERT_GE(none.size(), 3u) << entry.Name;
        ASSERT_EQ(profiled.size(), none.size()) << entry.Name;
        for (size_t i = 0; i < none.size(); ++i)
            EXPECT_EQ(WithoutTool(none[i]), WithoutTool(profiled[i])) << entry.Name << " " << i;
    }
}

// Needs the outline routines with leads of every shape.
TEST(SingleShape, StraightLeadRecordsOfEveryShapeCarryCount8) {
    for (const EntryRow& entry : Entries) {
        JobFixture f(NoBlocks());
        entry.Run(f.State, Shape(f.State.Machine, entry.Code, ProfilingTool()));
        const std::vector<DrawRecord> r = ShapeRecords(f.State);
        ASSERT_GE(r.size(), 3u) << entry.Name;
        EXPECT_EQ(r.front().EntityCode, 120) << entry.Name;
        EXPECT_EQ(r.front().Count[8], 1) << entry.Name;
        EXPECT_EQ(r.back().EntityCode, 120) << entry.Name;
        EXPECT_EQ(r.back().Count[8], 2) << entry.Name;
        EXPECT_EQ(r.back().After.ActionCode, 1) << entry.Name;
        for (size_t i = 1; i + 1 < r.size(); ++i) EXPECT_EQ(r[i].Count[8], 0) << entry.Name << " " << i;
    }
}

TEST(SingleShape, RadRectOfAnUnknownLetterLeavesShapeDrawAsItWas) {
    JobFixture f(NoBlocks());
    SingleCircle(f.State, Circle(f.State.Machine, ProfilingTool()));
    const std::vector<DrawRecord> before = ShapeRecords(f.State);
    DrawRecord rect = Shape(f.State.Machine, 155, Tool("D", 10));
    rect.Side = -1;
    SingleRadRect(f.State, rect);
    const std::vector<DrawRecord> after = ShapeRecords(f.State);
    ASSERT_EQ(after.size(), before.size());
    for (size_t i = 0; i < after.size(); ++i) EXPECT_EQ(EncodeRecord(after[i]), EncodeRecord(before[i])) << i;
}

TEST(SingleShape, RadRectOfAnUnknownLetterDoesNotEvenMakeShapeDraw) {
    JobFixture f(NoBlocks());
    DrawRecord rect = Shape(f.State.Machine, 155, Tool("D", 10));
    rect.Side = -1;
    SingleRadRect(f.State, rect);
    EXPECT_FALSE(FileExists(ShapeDrawingPath(f.State)));
}

// Needs the rectangle routines.
TEST(SingleShape, InsideRectangleOfARoundToolGivesItsLinesTheTrims) {
    JobFixture f(NoBlocks());
    DrawRecord rect = Shape(f.State.Machine, 156, Tool("A", 10));
    rect.Side = -1;
    rect.Value[3] = 1.25f;
    rect.Value[4] = 0.5f;
    BindRecord(f.State.Machine, rect);
    SingleRectangle(f.State, rect);
    const std::vector<DrawRecord> r = ShapeRecords(f.State);
    ASSERT_EQ(r.size(), 4u);
    for (const DrawRecord& line : r) {
        EXPECT_EQ(line.EntityCode, 120);
        EXPECT_EQ(line.Value[3], 1.25f);
        EXPECT_EQ(line.Value[4], 1.25f);
    }
}

// Needs the punched obround. The single-shape path asks for outside before the letter "F": an
// outside obround of the obround's own punch is rimmed like any other outside obround.
TEST(SingleShape, OutsideObroundOfItsOwnPunchIsRimmed) {
    JobFixture f(NoBlocks());
    ToolSpec tool = Tool("F", 10);
    tool.Size[1] = 16;
    tool.Size[2] = 8;
    DrawRecord obround = Shape(f.State.Machine, 154, tool);
    obround.Value[3] = 1;
    obround.LeadIn = LeadSpec{};
    obround.LeadOut = LeadSpec{};
    BindRecord(f.State.Machine, obround);
    SingleObround(f.State, obround);
    const std::vector<DrawRecord> r = ShapeRecords(f.State);
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].EntityCode, 120);
    EXPECT_EQ(r[1].EntityCode, 130);
    EXPECT_EQ(r[2].EntityCode, 120);
    EXPECT_EQ(r[3].EntityCode, 130);
    EXPECT_EQ(r[3].After.ActionCode, 1);
}

// ---- The line or arc with leads ----------------------------------------------------------------

TEST(SingleProfile, TrimsAreFoldedIntoTheCallersRecordBeforeTheLeadsAreMade) {
    JobFixture f(NoBlocks());
    DrawRecord line;
    line.EntityCode = 120;
    line.Point[1] = SinglePoint{0, 0};
    line.Point[3] = SinglePoint{20, 0};
    line.Value[1] = 20;
    line.Value[3] = 2;
    line.Value[4] = 3;
    line.ToolA = ProfilingTool();
    line.LeadIn = LeadSpec{1, 4, 90, 0};
    BindRecord(f.State.Machine, line);
    SingleProfile(f.State, line);
    EXPECT_EQ(line.Value[3], 0.0f);
    EXPECT_EQ(line.Value[4], 0.0f);
    EXPECT_EQ(line.Point[1].X, 2.0f);
    const std::vector<DrawRecord> r = ShapeRecords(f.State);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].Count[8], 1);
    EXPECT_EQ(r[0].Point[3].X, 2.0f);
    EXPECT_EQ(r[1].EntityCode, 120);
    EXPECT_EQ(r[1].Point[1].X, 2.0f);
    EXPECT_EQ(r[1].Point[3].X, 17.0f);
    EXPECT_EQ(r[1].Value[3], 0.0f);
}

TEST(SingleProfile, ArcKeepsItsCodeWhereTheCircleBecomesAnArc) {
    JobFixture f(NoBlocks());
    SplitOutput out;
    std::vector<DrawRecord> records;
    int32_t count = 0;
    out = ListOutput(f.State.Machine, records, count, SingleShapeChoices);
    DrawRecord circle = Circle(f.State.Machine, ProfilingTool(), false);
    WriteWithLeads(out, circle, LeadedEntityChoices{false, false});
    WriteWithLeads(out, circle, LeadedEntityChoices{false, true});
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].EntityCode, 151);
    EXPECT_EQ(records[1].EntityCode, 130);
    EXPECT_EQ(count, 2);
    // Without FoldTrims the caller's record is not changed.
    EXPECT_EQ(EncodeRecord(circle), EncodeRecord(Circle(f.State.Machine, ProfilingTool(), false)));
}

// ---- Where a record stands ---------------------------------------------------------------------

TEST(RecordPlace, MainDrawingByItsNameAlone) {
    JobFixture f(NoBlocks());
    f.State.Loop.RecordIndex = 12;
    EXPECT_EQ(RecordPlace(f.State), "record 12 of Progmain.drw");
    f.State.Loop.MainDrawing.Path = "C:\\Jobs\\Work\\Progmain.drw";
    EXPECT_EQ(RecordPlace(f.State), "record 12 of Progmain.drw");
}

TEST(RecordPlace, PartDrawingWhileItsSubroutineIsWritten) {
    JobFixture f(NoBlocks());
    f.State.Loop.RecordIndex = 12;
    f.State.Loop.PartIndex = 4;
    f.State.Loop.PartDrawing.Path = f.Path("progpart.drw");
    f.State.Engine.SubroutineOutput = true;
    EXPECT_EQ(RecordPlace(f.State), "record 4 of progpart.drw");
    f.State.Engine.SubroutineOutput = false;
    EXPECT_EQ(RecordPlace(f.State), "record 12 of Progmain.drw");
}

TEST(RecordPlace, TheToolingStreamComesFirst) {
    JobFixture f(NoBlocks());
    f.State.Loop.RecordIndex = 12;
    f.State.Loop.PartIndex = 4;
    f.State.Engine.SubroutineOutput = true;
    f.State.Loop.ToolingActive = true;
    f.State.Loop.ToolingIndex = 2;
    EXPECT_EQ(RecordPlace(f.State), "record 2 of AssTool.drw");
    f.State.Engine.SubroutineOutput = false;
}
