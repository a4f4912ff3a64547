#include "emitters/shapes.h"

#include <gtest/gtest.h>

#include <array>
#include <cctype>

#include "common/fault.h"
#include "definition/definition_files.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "job/generation.h"
#include "job/job_fixture.h"
#include "splitting/single_profile.h"

using namespace tvx;

namespace {

using Emitter = void (*)(RunState&, DrawRecord&);

const char* const ShapeWords[] = {
    "SHAPE_DIAMETER_CUT",     "SHAPE_DIAMETER_PUNCHED",     "SHAPE_OBROUND_CUT",      "SHAPE_OBROUND_PUNCHED",
    "SHAPE_RECTANGLE_CUT",    "SHAPE_RECTANGLE_PUNCHED",    "SHAPE_SQUARE_CUT",       "SHAPE_SQUARE_PUNCHED",
    "SHAPE_RADRECTANGLE_CUT", "SHAPE_RADRECTANGLE_PUNCHED", "SHAPE_RADSQUARE_CUT",    "SHAPE_RADSQUARE_PUNCHED",
    "SHAPE_SINGLED_CUT",      "SHAPE_SINGLED_PUNCHED",      "SHAPE_DOUBLED_CUT",      "SHAPE_DOUBLED_PUNCHED",
};

// The text a shape word's block prints: the word in small letters, with blanks for underscores.
std::string BlockText(const std::string& word) {
    std::string text;
    for (char c : word) text += c == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// A definition with every shape word, true or false, the stop block and the profile blocks.
std::vector<std::string> ShapeDefinition(bool truth) {
    std::vector<std::string> lines;
    for (const char* word : ShapeWords) {
        lines.push_back(std::string(word) + (truth ? "=TRUE" : "=FALSE"));
        if (truth) lines.push_back(BlockText(word));
        lines.push_back("******");
    }
    for (const char* line : {"CANNED_STOP=TRUE", "stop", "******", "CANNED_MOVE=TRUE", "G0", "******",
                             "CANNED_PROFILED_MOVE=TRUE", "PM", "******", "CANNED_PROFILED_LINE=TRUE", "L", "******",
                             "CANNED_PROFILED_ARC=TRUE", "A", "******"})
        lines.push_back(line);
    return lines;
}

// A shape cut by the profiling head: centre (11, 12), dimensions 10 and 4, corner radius 1.5,
// rotation 30, inside.
DrawRecord Shape(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.Point[4] = SinglePoint{11, 12};
    r.Value[1] = 10;
    r.Value[2] = 4;
    r.Value[3] = 1.5f;
    r.Value[10] = 30;
    r.Side = -1;
    r.ToolA.Present = -1;
    r.ToolA.Letter = "P";
    r.ToolA.WorkType = 1;
    return r;
}

// What an emitter must leave in the cells; Untouched for a cell it must not set.
struct Cells {
    float First, Second, Corner, Lead;
};

constexpr float Untouched = -7;

void ExpectCells(Emitter emit, int16_t code, const std::string& word, const Cells& want) {
    JobFixture f(ShapeDefinition(true));
    ValueTables& t = f.State.Tables;
    t.PostParam[103] = Untouched;
    t.PostParam[104] = Untouched;
    t.PostParam[109] = 100;
    DrawRecord r = Shape(code);
    emit(f.State, r);
    EXPECT_EQ(t.PostParam[15], 11.0f);
    EXPECT_EQ(t.PostParam[16], 12.0f);
    EXPECT_EQ(t.PostParam[100], want.First);
    EXPECT_EQ(t.PostParam[101], want.Second);
    EXPECT_EQ(t.PostParam[102], 30.0f);
    EXPECT_EQ(t.PostParam[103], want.Corner);
    EXPECT_EQ(t.PostParam[104], want.Lead);
    EXPECT_EQ(t.PostParam[106], -1.0f);
    EXPECT_FALSE(f.State.Loop.ShapeActive);
    EXPECT_EQ(f.Program(), BlockText(word) + "\r\n");
}

// Sets the largest lead and the shape's Side, runs the emitter and gives the lead value.
float LeadValue(Emitter emit, int16_t code, float value1, int16_t side, float largest) {
    JobFixture f(ShapeDefinition(true));
    f.State.Tables.PostParam[109] = largest;
    DrawRecord r = Shape(code);
    r.Value[1] = value1;
    r.Side = side;
    emit(f.State, r);
    return f.State.Tables.PostParam[104];
}

// The word whose block an emitter writes for a shape of the two dimensions.
std::string WordWritten(Emitter emit, int16_t code, float value1, float value2) {
    JobFixture f(ShapeDefinition(true));
    DrawRecord r = Shape(code);
    r.Value[1] = value1;
    r.Value[2] = value2;
    emit(f.State, r);
    return f.Program();
}

struct Row {
    const char* Name;
    Emitter Emit;
    int16_t Code;
};

const Row AllEmitters[] = {
    {"DiameterCut", EmitShapeDiameterCut, 151},
    {"DiameterPunched", EmitShapeDiameterPunched, 151},
    {"SingleDCut", EmitShapeSingleDCut, 152},
    {"SingleDPunched", EmitShapeSingleDPunched, 152},
    {"DoubleDCut", EmitShapeDoubleDCut, 153},
    {"DoubleDPunched", EmitShapeDoubleDPunched, 153},
    {"ObroundCut", EmitShapeObroundCut, 154},
    {"ObroundPunched", EmitShapeObroundPunched, 154},
    {"RadRectangleCut", EmitShapeRadRectangleCut, 155},
    {"RadRectanglePunched", EmitShapeRadRectanglePunched, 155},
    {"RectangleCut", EmitShapeRectangleCut, 156},
    {"RectanglePunched", EmitShapeRectanglePunched, 156},
};

}  // namespace

// ---- The cells of each emitter ------------------------------------------------------------

TEST(ShapeCells, DiameterCutTakesTheDiameterTwiceAndTheRadiusAsItsLead) {
    ExpectCells(EmitShapeDiameterCut, 151, "SHAPE_DIAMETER_CUT", {20, 20, Untouched, 10});
}
TEST(ShapeCells, DiameterPunchedHasNoLead) {
    ExpectCells(EmitShapeDiameterPunched, 151, "SHAPE_DIAMETER_PUNCHED", {20, 20, Untouched, Untouched});
}
TEST(ShapeCells, ObroundCutTakesBothDimensionsAndHalfTheFirstAsItsLead) {
    ExpectCells(EmitShapeObroundCut, 154, "SHAPE_OBROUND_CUT", {10, 4, Untouched, 5});
}
TEST(ShapeCells, ObroundPunchedHasNoLead) {
    ExpectCells(EmitShapeObroundPunched, 154, "SHAPE_OBROUND_PUNCHED", {10, 4, Untouched, Untouched});
}
TEST(ShapeCells, RectangleCutTakesBothDimensionsAndHalfTheFirstAsItsLead) {
    ExpectCells(EmitShapeRectangleCut, 156, "SHAPE_RECTANGLE_CUT", {10, 4, Untouched, 5});
}
TEST(ShapeCells, RectanglePunchedHasNoLead) {
    ExpectCells(EmitShapeRectanglePunched, 156, "SHAPE_RECTANGLE_PUNCHED", {10, 4, Untouched, Untouched});
}
TEST(ShapeCells, RadRectangleCutAlsoTakesTheCornerRadius) {
    ExpectCells(EmitShapeRadRectangleCut, 155, "SHAPE_RADRECTANGLE_CUT", {10, 4, 1.5f, 5});
}
TEST(ShapeCells, RadRectanglePunchedTakesTheCornerRadiusAndNoLead) {
    ExpectCells(EmitShapeRadRectanglePunched, 155, "SHAPE_RADRECTANGLE_PUNCHED", {10, 4, 1.5f, Untouched});
}
TEST(ShapeCells, SingleDCutTakesTheDiameterAndTheHeightAndTheRadiusAsItsLead) {
    ExpectCells(EmitShapeSingleDCut, 152, "SHAPE_SINGLED_CUT", {20, 4, Untouched, 10});
}
TEST(ShapeCells, SingleDPunchedHasNoLead) {
    ExpectCells(EmitShapeSingleDPunched, 152, "SHAPE_SINGLED_PUNCHED", {20, 4, Untouched, Untouched});
}
TEST(ShapeCells, DoubleDCutTakesTheDiameterAndTheFlatsAndTheRadiusAsItsLead) {
    ExpectCells(EmitShapeDoubleDCut, 153, "SHAPE_DOUBLED_CUT", {20, 4, Untouched, 10});
}
TEST(ShapeCells, DoubleDPunchedHasNoLead) {
    ExpectCells(EmitShapeDoubleDPunched, 153, "SHAPE_DOUBLED_PUNCHED", {20, 4, Untouched, Untouched});
}

TEST(ShapeCells, SideOfTheShapeGoesToCell106ForEveryEmitter) {
    for (const Row& row : AllEmitters) {
        JobFixture f(ShapeDefinition(true));
        DrawRecord r = Shape(row.Code);
        r.Side = 1;
        row.Emit(f.State, r);
        EXPECT_EQ(f.State.Tables.PostParam[106], 1.0f) << row.Name;
    }
}

TEST(ShapeCells, BlockForAShapeLeavesPostMachineUntouched) {
    for (const Row& row : AllEmitters) {
        JobFixture f(ShapeDefinition(true));
        ValueTables& t = f.State.Tables;
        for (int i = 0; i <= 200; ++i) t.PostMachine[i] = static_cast<float>(i) + 0.5f;
        const ValueTables before = t;
        DrawRecord r = Shape(row.Code);
        row.Emit(f.State, r);
        for (int i = 0; i <= 200; ++i) EXPECT_EQ(t.PostMachine[i], before.PostMachine[i]) << row.Name << " " << i;
    }
}

// ---- The lead value ---------------------------------------------------------------------------

TEST(ShapeLead, LeadOnACircleHasNoCap) {
    EXPECT_EQ(LeadValue(EmitShapeDiameterCut, 151, 10, -1, 3), 10.0f);
}

TEST(ShapeLead, LeadOfEveryOtherCutShapeIsHeldToTheLargestLead) {
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, 20, -1, 3), 3.0f);
    EXPECT_EQ(LeadValue(EmitShapeRectangleCut, 156, 20, -1, 3), 3.0f);
    EXPECT_EQ(LeadValue(EmitShapeRadRectangleCut, 155, 20, -1, 3), 3.0f);
    EXPECT_EQ(LeadValue(EmitShapeSingleDCut, 152, 20, -1, 3), 3.0f);
    EXPECT_EQ(LeadValue(EmitShapeDoubleDCut, 153, 20, -1, 3), 3.0f);
}

TEST(ShapeLead, LeadEqualToTheLargestIsKept) {
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, 6, -1, 3), 3.0f);
    EXPECT_EQ(LeadValue(EmitShapeSingleDCut, 152, 3, -1, 3), 3.0f);
}

TEST(ShapeLead, CapComesBeforeTheSign) {
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, 20, 1, 3), -3.0f);
    // A lead already negative is below any cap.
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, -20, 1, 3), 10.0f);
}

TEST(ShapeLead, SideOfOneGivesANegativeLeadAndOnlyMinusOneAPositiveOne) {
    EXPECT_EQ(LeadValue(EmitShapeDiameterCut, 151, 10, 1, 100), -10.0f);
    EXPECT_EQ(LeadValue(EmitShapeDiameterCut, 151, 10, -1, 100), 10.0f);
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, 10, 2, 100), -5.0f);
    EXPECT_EQ(LeadValue(EmitShapeObroundCut, 154, 10, -2, 100), -5.0f);
}

TEST(ShapeLead, SideOfZeroCountsAsNotMinusOne) {
    EXPECT_EQ(LeadValue(EmitShapeDiameterCut, 151, 10, 0, 100), -10.0f);
    EXPECT_EQ(LeadValue(EmitShapeRectangleCut, 156, 10, 0, 100), -5.0f);
}

// ---- Square words -------------------------------------------------------------------------

TEST(ShapeWords, RectangleOfEqualSidesTakesTheSquareWord) {
    EXPECT_EQ(WordWritten(EmitShapeRectangleCut, 156, 8, 8), "shape square cut\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRectanglePunched, 156, 8, 8), "shape square punched\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRadRectangleCut, 155, 8, 8), "shape radsquare cut\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRadRectanglePunched, 155, 8, 8), "shape radsquare punched\r\n");
}

TEST(ShapeWords, RectangleOfUnequalSidesTakesTheRectangleWord) {
    EXPECT_EQ(WordWritten(EmitShapeRectangleCut, 156, 8, 8.001f), "shape rectangle cut\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRectanglePunched, 156, 8, 4), "shape rectangle punched\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRadRectangleCut, 155, 4, 8), "shape radrectangle cut\r\n");
    EXPECT_EQ(WordWritten(EmitShapeRadRectanglePunched, 155, 8, -8), "shape radrectangle punched\r\n");
}

TEST(ShapeWords, OtherShapesOfEqualDimensionsKeepTheirOwnWord) {
    EXPECT_EQ(WordWritten(EmitShapeObroundCut, 154, 8, 8), "shape obround cut\r\n");
    EXPECT_EQ(WordWritten(EmitShapeSingleDPunched, 152, 8, 8), "shape singled punched\r\n");
}

// ---- True and false words -------------------------------------------------------------------

TEST(ShapeBlock, TrueWordWritesTheBlockThenTheActionAfterTheShape) {
    JobFixture f(ShapeDefinition(true));
    DrawRecord r = Shape(154);
    r.After = AfterAction{1, 2.5f};
    EmitShapeObroundCut(f.State, r);
    EXPECT_EQ(f.State.Tables.PostParam[30], 2.5f);
    EXPECT_FALSE(f.State.Loop.ShapeActive);
    EXPECT_FALSE(IsOpen(f.State.Loop.ShapeDrawing));
    EXPECT_EQ(f.Program(), "shape obround cut\r\nstop\r\n");
}

TEST(ShapeBlock, FalseWordIsNoFailure) {
    for (const Row& row : AllEmitters) {
        JobFixture f(ShapeDefinition(false));
        DrawRecord r = Shape(row.Code);
        BindRecord(f.State.Machine, r);
        f.State.Loop.ShapeIndex = 9;
        EXPECT_NO_THROW(row.Emit(f.State, r)) << row.Name;
        EXPECT_TRUE(f.State.Loop.ShapeActive) << row.Name;
        EXPECT_EQ(f.State.Loop.ShapeIndex, 0) << row.Name;
        EXPECT_TRUE(IsOpen(f.State.Loop.ShapeDrawing)) << row.Name;
        EXPECT_EQ(f.Program(), "") << row.Name;
    }
}

TEST(ShapeBlock, EveryEmitterLeavesTheDefinitionFileClosedWhateverTheWord) {
    for (bool truth : {true, false}) {
        for (const Row& row : AllEmitters) {
            JobFixture f(ShapeDefinition(truth));
            DrawRecord r = Shape(row.Code);
            BindRecord(f.State.Machine, r);
            row.Emit(f.State, r);
            EXPECT_FALSE(InputChannel(f.State, ChannelDefinition).Open) << row.Name << (truth ? " true" : " false");
        }
    }
}

TEST(ShapeBlock, FalseWordMakesShapeDrawOfTheShapeAndOpensItForTheLoop) {
    JobFixture f(ShapeDefinition(false));
    DrawRecord circle = Shape(151);
    circle.Value[11] = 360;
    circle.LeadIn = LeadSpec{1, 4, 0, 0};
    BindRecord(f.State.Machine, circle);
    EmitShapeDiameterCut(f.State, circle);
    DrawingFile& shape = f.State.Loop.ShapeDrawing;
    ASSERT_TRUE(IsOpen(shape));
    EXPECT_EQ(shape.Path, ShapeDrawingPath(f.State));
    EXPECT_EQ(RecordsOnDisk(shape), 2);
    EXPECT_EQ(ReadRecord(shape, 1).EntityCode, 120);
    EXPECT_EQ(ReadRecord(shape, 2).EntityCode, 130);
    EXPECT_EQ(ReadRecord(shape, 3).EntityCode, 0);
}

// A profiled circle with two straight leads and a stop after it, in a drawing of its own: the
// definition has no block for it, so the loop works its lead-in, the circle and its lead-out.
TEST(ShapeBlock, FalseWordOpensShapeDrawAndTheLoopWalksIt) {
    JobFixture f(ShapeDefinition(false));
    WriteAllLines(f.State.Job.SeqFile, {"SEQUENCE", "******"});
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 2;
    DrawRecord circle = Shape(151);
    circle.Point[4] = SinglePoint{50, 50};
    circle.Value[1] = 10;
    circle.Value[10] = 0;
    circle.Value[11] = 360;
    circle.Side = 1;
    circle.LeadIn = LeadSpec{1, 5, 0, 0};
    circle.LeadOut = LeadSpec{1, 5, 0, 0};
    circle.After = AfterAction{1, 0};
    BindRecord(f.State.Machine, circle);
    OpenDrawing(f.State.Loop.MainDrawing, f.State.Job.DrawingFile);
    WriteRecord(f.State.Loop.MainDrawing, 1, header);
    WriteRecord(f.State.Loop.MainDrawing, 2, circle);
    f.State.Job.RecordTotal = 2;
    RunGenerationLoop(f.State);
    EXPECT_FALSE(f.State.Loop.ShapeActive);
    EXPECT_FALSE(IsOpen(f.State.Loop.ShapeDrawing));
    // Three records, then the record of code 0 that ends the stream.
    EXPECT_EQ(f.State.Loop.ShapeIndex, 4);
    EXPECT_EQ(f.State.Loop.RecordIndex, 3);
    EXPECT_EQ(f.Program(), "PM\r\nL\r\nPM\r\nA\r\nPM\r\nL\r\nstop\r\n");
}

// A worked inside radiused rectangle whose letter is not "A", "C" or "E" writes nothing, and
// Shape.drw is not touched: the emitter opens what the file held, the records of the shape
// before it, and the loop works them again.
TEST(ShapeBlock, RadRectOfAnUnknownLetterOpensWhatShapeDrawHeld) {
    JobFixture f(ShapeDefinition(false));
    DrawRecord circle = Shape(151);
    circle.Value[11] = 360;
    circle.LeadIn = LeadSpec{1, 4, 0, 0};
    BindRecord(f.State.Machine, circle);
    EmitShapeDiameterCut(f.State, circle);
    CloseDrawing(f.State.Loop.ShapeDrawing);
    f.State.Loop.ShapeActive = false;
    f.State.Loop.ShapeIndex = 2;

    DrawRecord rect = Shape(155);
    rect.ToolA.Letter = "D";
    rect.ToolA.WorkType = 10;
    EmitShapeRadRectanglePunched(f.State, rect);
    EXPECT_TRUE(f.State.Loop.ShapeActive);
    EXPECT_EQ(f.State.Loop.ShapeIndex, 0);
    DrawingFile& shape = f.State.Loop.ShapeDrawing;
    ASSERT_TRUE(IsOpen(shape));
    EXPECT_EQ(RecordsOnDisk(shape), 2);
    EXPECT_EQ(ReadRecord(shape, 1).EntityCode, 120);
    EXPECT_EQ(ReadRecord(shape, 2).EntityCode, 130);
}

TEST(ShapeBlock, RadRectOfAnUnknownLetterAsTheFirstShapeOpensAnEmptyShapeDraw) {
    JobFixture f(ShapeDefinition(false));
    DrawRecord rect = Shape(155);
    rect.ToolA.Letter = "B";
    rect.ToolA.WorkType = 10;
    EmitShapeRadRectangleCut(f.State, rect);
    EXPECT_TRUE(f.State.Loop.ShapeActive);
    ASSERT_TRUE(IsOpen(f.State.Loop.ShapeDrawing));
    EXPECT_EQ(RecordsOnDisk(f.State.Loop.ShapeDrawing), 0);
    EXPECT_EQ(ReadRecord(f.State.Loop.ShapeDrawing, 1).EntityCode, 0);
}

// ---- A fault of the split names the record ----------------------------------------------------

namespace {

// An inside obround punched with a pitch longer than its straight sides: each side has one hit,
// and its pitch divides by 0.
DrawRecord ObroundShorterThanItsPitch(const MachineState& machine) {
    DrawRecord r;
    r.EntityCode = 154;
    r.Point[4] = SinglePoint{100, 100};
    r.Value[1] = 20;
    r.Value[2] = 10;
    r.Value[3] = 50;
    r.Side = -1;
    r.ToolA.Present = -1;
    r.ToolA.Letter = "A";
    r.ToolA.Size[1] = 5;
    r.ToolA.Size[2] = 5;
    r.ToolA.WorkType = 10;
    BindRecord(machine, r);
    return r;
}

RunEnd EndOf(JobFixture& f, DrawRecord& r) {
    try {
        EmitShapeObroundPunched(f.State, r);
    } catch (const RunEnd& end) {
        return end;
    }
    return RunEnd{};
}

}  // namespace

TEST(ShapeSplitFault, PunchedObroundShorterThanItsPitchEndsTheRunNamingTheMainRecord) {
    JobFixture f(ShapeDefinition(false));
    f.State.Loop.RecordIndex = 7;
    DrawRecord r = ObroundShorterThanItsPitch(f.State.Machine);
    const RunEnd end = EndOf(f, r);
    EXPECT_EQ(end.Status, ExitFault);
    const std::string head = "Cannot split record 7 of Progmain.drw (code 154): ";
    EXPECT_EQ(end.Text.substr(0, head.size()), head) << end.Text;
}

TEST(ShapeSplitFault, FaultInsideAPartNamesTheRecordOfThePartDrawing) {
    JobFixture f(ShapeDefinition(false));
    f.State.Loop.RecordIndex = 7;
    f.State.Engine.SubroutineOutput = true;
    f.State.Loop.PartIndex = 3;
    f.State.Loop.PartDrawing.Path = f.Path("progpart.drw");
    DrawRecord r = ObroundShorterThanItsPitch(f.State.Machine);
    const RunEnd end = EndOf(f, r);
    EXPECT_EQ(end.Status, ExitFault);
    const std::string head = "Cannot split record 3 of progpart.drw (code 154): ";
    EXPECT_EQ(end.Text.substr(0, head.size()), head) << end.Text;
    f.State.Engine.SubroutineOutput = false;
}
