#include "emitters/profile.h"

#include <gtest/gtest.h>

#include <cmath>

#include "common/fault.h"
#include "drawing/binding.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

std::vector<std::string> Blocks() {
    return {"CANNED_MOVE=TRUE",          "G0[X_AXIS][Y_AXIS]", "******", "CANNED_PROFILED_MOVE=TRUE", "PM", "******",
            "CANNED_PROFILED_LINE=TRUE", "L",                  "******", "CANNED_PROFILED_ARC=TRUE",  "A",  "******",
            "CANNED_CUTSUB_CALL=TRUE",   "CC",                 "******", "LEADIN_SETTINGS=TRUE",      "LS", "******",
            "CANNED_RAMP_CALL=TRUE",     "RC",                 "******"};
}

void CuttingTool(DrawRecord& r) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = "P";
}

DrawRecord Move(float x, float y, const char* letter = "P") {
    DrawRecord r;
    r.EntityCode = 110;
    r.Point[3] = {x, y};
    r.ToolA.Present = -1;
    r.ToolA.Letter = letter;
    return r;
}

DrawRecord Line(const MachineState& m, float x1, float y1, float x2, float y2) {
    DrawRecord r;
    r.EntityCode = 120;
    r.EntityName = "Line Profile";
    r.Point[1] = {x1, y1};
    r.Point[3] = {x2, y2};
    double length = 0, angle = 0;
    XYToPolar(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1, length, angle);
    r.Value[1] = ToSingle(length);
    r.Value[10] = ToSingle(angle);
    CuttingTool(r);
    BindRecord(m, r);
    return r;
}

DrawRecord Arc(const MachineState& m, float cx, float cy, float radius, float start, float sweep) {
    DrawRecord r;
    r.EntityCode = 130;
    r.EntityName = "Arc Profile";
    r.Point[4] = {cx, cy};
    r.Value[1] = radius;
    r.Value[10] = start;
    r.Value[11] = sweep;
    r.Side = 1;
    CuttingTool(r);
    BindRecord(m, r);
    return r;
}

}  // namespace

TEST(EmitMove, CuttingHeadMoveUpdatesTheDirectionTwiceSoItsBlockHasNoTurn) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostMemo[15] = 10;
    t.PostMemo[16] = 10;
    f.State.Loop.CutPath.CutAngle = 90;
    DrawRecord move = Move(10.03f, 10);
    EmitMove(f.State, move);
    EXPECT_EQ(f.State.Loop.CutPath.CutTurn, 0.0f);
    EXPECT_EQ(t.PostMachine[22], 1.0f);
    EXPECT_EQ(t.PostMachine[1], 0.0f);
    EXPECT_EQ(f.Program(), "PM\r\n");
}

TEST(EmitMove, CuttingHeadMoveWithANegativeCornerLimitIsNeverSmooth) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[110] = -1;
    t.PostMemo[15] = 10;
    t.PostMemo[16] = 10;
    DrawRecord move = Move(10, 10);
    EmitMove(f.State, move);
    EXPECT_EQ(f.State.Loop.CutPath.CutTurn, 0.0f);
    EXPECT_EQ(t.PostMachine[22], 0.0f);
}

TEST(EmitMove, CuttingHeadMoveFarFromTheLastPositionBreaksThePathAtTheSecondUpdate) {
    JobFixture f(Blocks());
    f.State.Tables.PostParam[110] = 45;
    DrawRecord move = Move(100, 0);
    EmitMove(f.State, move);
    // The second update sees the move's own length as a gap: -9999 less 0 plus 360.
    EXPECT_EQ(f.State.Loop.CutPath.CutTurn, 9639.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[22], 0.0f);
}

TEST(EmitMove, MoveOfAnotherToolWritesTheMoveBlockAndKeepsThePosition) {
    JobFixture f(Blocks());
    DrawRecord move = Move(12.5f, 7, "A");
    EmitMove(f.State, move);
    EXPECT_EQ(f.State.Loop.CutPath.LastX, 12.5);
    EXPECT_EQ(f.State.Loop.CutPath.LastY, 7.0);
    EXPECT_EQ(f.State.Tables.PostParam[173], ToSingle(std::sqrt(12.5 * 12.5 + 49)));
    EXPECT_EQ(f.Program(), "G0X12.500Y7.000\r\n");
}

TEST(EmitMove, MissingMoveBlockAbortsTheRun) {
    JobFixture f({"CANNED_MOVE=FALSE", "******"});
    DrawRecord move = Move(1, 1, "A");
    try {
        EmitMove(f.State, move);
        FAIL() << "the run went on";
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\n'CANNED_MOVE' not found in Post-Processor\n\nProgram Aborted");
    }
}

TEST(EmitMove, MissingProfiledMoveBlockIsPassedOver) {
    JobFixture f({"CANNED_MOVE=TRUE", "G0", "******", "CANNED_PROFILED_MOVE=FALSE", "******"});
    DrawRecord move = Move(1, 1);
    EmitMove(f.State, move);
    EXPECT_EQ(f.Program(), "");
}

TEST(UpdateCutDirection, GapOfExactlyFiveHundredthsDoesNotBreakThePath) {
    JobFixture f(Blocks());
    f.State.Tables.PostParam[110] = 95;
    f.State.Loop.CutPath.CutAngle = 90;
    DrawRecord line = Line(f.State.Machine, 0.05f, 0, 10.05f, 0);
    EmitProfiledLine(f.State, line);
    EXPECT_EQ(f.State.Loop.CutPath.CutTurn, 90.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[22], 1.0f);
}

TEST(UpdateCutDirection, GapJustOverFiveHundredthsBreaksThePath) {
    JobFixture f(Blocks());
    f.State.Tables.PostParam[110] = 95;
    f.State.Loop.CutPath.CutAngle = 90;
    DrawRecord line = Line(f.State.Machine, 0.06f, 0, 10.06f, 0);
    EmitProfiledLine(f.State, line);
    EXPECT_EQ(f.State.Loop.CutPath.CutTurn, 9639.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[22], 0.0f);
    EXPECT_EQ(f.State.Loop.CutPath.CutAngle, 0.0f);
}

TEST(EmitProfiledLine, ClosedSquareTurnsAtEachCornerAgainstTheCornerLimit) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[110] = 45;
    const MachineState& m = f.State.Machine;
    DrawRecord sides[] = {Line(m, 0, 0, 10, 0), Line(m, 10, 0, 10, 10), Line(m, 10, 10, 0, 10), Line(m, 0, 10, 0, 0)};
    const float turns[] = {0, 90, 90, 90};
    const float smooth[] = {1, 0, 0, 0};
    const float directions[] = {0, 90, 180, 270};
    for (int i = 0; i < 4; ++i) {
        EmitProfiledLine(f.State, sides[i]);
        EXPECT_EQ(t.PostMachine[23], turns[i]) << i;
        EXPECT_EQ(t.PostMachine[22], smooth[i]) << i;
        EXPECT_EQ(f.State.Loop.CutPath.CutAngle, directions[i]) << i;
        EXPECT_EQ(t.PostMachine[1], 1.0f);
        // PostParam[30] is taken by the action after the entity; 31 keeps the length.
        EXPECT_EQ(t.PostParam[31], 10.0f);
    }
    EXPECT_EQ(f.State.Loop.CutPath.LastX, 0.0);
    EXPECT_EQ(f.State.Loop.CutPath.LastY, 0.0);
    EXPECT_EQ(f.Program(), "PM\r\nL\r\nPM\r\nL\r\nPM\r\nL\r\nPM\r\nL\r\n");
}

TEST(EmitProfiledLine, MissingLineBlockAbortsTheRun) {
    JobFixture f({"CANNED_PROFILED_MOVE=FALSE", "******", "CANNED_PROFILED_LINE=FALSE", "******"});
    DrawRecord line = Line(f.State.Machine, 0, 0, 10, 0);
    try {
        EmitProfiledLine(f.State, line);
        FAIL() << "the run went on";
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\n'CANNED_PROFILED_LINE' not found in Post-Processor\n\nProgram Aborted");
    }
}

TEST(EmitProfiledArc, TangentArcAfterALineGoesOnSmoothly) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[110] = 5;
    DrawRecord line = Line(f.State.Machine, 10, -10, 10, 0);
    EmitProfiledLine(f.State, line);
    DrawRecord arc = Arc(f.State.Machine, 0, 0, 10, 0, 90);
    EmitProfiledArc(f.State, arc);
    EXPECT_EQ(t.PostMachine[1], 2.0f);
    EXPECT_EQ(t.PostMachine[23], 0.0f);
    EXPECT_EQ(t.PostMachine[22], 1.0f);
    EXPECT_EQ(f.State.Loop.CutPath.CutAngle, 180.0f);
    EXPECT_EQ(t.PostParam[36], 10.0f);
    EXPECT_EQ(t.PostParam[31], 0.0f);
    EXPECT_EQ(t.PostParam[33], 90.0f);
    EXPECT_EQ(t.PostParam[15], 0.0f);
    EXPECT_EQ(t.PostMachine[15], 0.0f);
    EXPECT_EQ(t.PostMachine[16], 10.0f);
    EXPECT_EQ(t.PostParam[174], ToSingle(90.0 * 2 * 10 * 3.14159265 / 360));
    EXPECT_NEAR(t.PostParam[173], 14.1421356, 1e-5);
    EXPECT_EQ(f.State.Loop.CutPath.LastX, 0.0);
    EXPECT_EQ(f.State.Loop.CutPath.LastY, 10.0);
}

TEST(EmitProfiledArc, NegativeSweepIsKindThreeAndALongSweepNegatesTheRadius) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    DrawRecord arc = Arc(f.State.Machine, 0, 0, 5, 90, -270);
    EmitProfiledArc(f.State, arc);
    EXPECT_EQ(t.PostMachine[1], 3.0f);
    EXPECT_EQ(t.PostParam[36], -5.0f);
    EXPECT_EQ(t.PostParam[174], ToSingle(-270.0 * 2 * 5 * 3.14159265 / 360));
    // Leaves at the start heading 0 (90 less 90), ends heading 0 less 270, that is 90.
    EXPECT_EQ(f.State.Loop.CutPath.CutAngle, 90.0f);
    EXPECT_EQ(t.PostMachine[65], ArcTurn(f.State.Machine, 1, -270));
    EXPECT_EQ(f.Program(), "PM\r\nA\r\n");
}

TEST(EmitProfiledArc, ArcWithLeadsMakesNoBlockAndGoesThroughShapeDrawing) {
    JobFixture f(Blocks());
    DrawRecord arc = Arc(f.State.Machine, 0, 0, 10, 0, 90);
    arc.LeadIn = LeadSpec{1, 5, 270, 0};
    arc.LeadOut = LeadSpec{1, 3, 180, 0};
    arc.After = AfterAction{1, 0};
    BindRecord(f.State.Machine, arc);
    EmitProfiledArc(f.State, arc);
    EXPECT_TRUE(f.State.Loop.ShapeActive);
    EXPECT_EQ(f.State.Loop.ShapeIndex, 0);
    ASSERT_TRUE(IsOpen(f.State.Loop.ShapeDrawing));
    const int16_t codes[] = {120, 130, 120, 0};
    const int16_t marks[] = {1, 0, 2, 0};
    for (int i = 0; i < 4; ++i) {
        DrawRecord r = ReadRecord(f.State.Loop.ShapeDrawing, i + 1);
        EXPECT_EQ(r.EntityCode, codes[i]) << i;
        EXPECT_EQ(r.Count[8], marks[i]) << i;
        EXPECT_EQ(r.LeadIn.LeadKind, 0) << i;
        EXPECT_EQ(r.LeadOut.LeadKind, 0) << i;
    }
    // The lead-in runs from 5 below the arc's start up to it.
    DrawRecord in = ReadRecord(f.State.Loop.ShapeDrawing, 1);
    EXPECT_EQ(in.Point[1].X, 10.0f);
    EXPECT_EQ(in.Point[1].Y, -5.0f);
    EXPECT_EQ(in.Point[3].Y, 0.0f);
    EXPECT_EQ(ReadRecord(f.State.Loop.ShapeDrawing, 2).After.ActionCode, 0);
    EXPECT_EQ(ReadRecord(f.State.Loop.ShapeDrawing, 3).After.ActionCode, 1);
    EXPECT_EQ(f.Program(), "");
}

TEST(EmitProfiledLine, SubroutineFamilyDistanceGrowsFromTheLastMove) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[9] = 10;
    DrawRecord move = Move(0, 0);
    EmitMove(f.State, move);
    DrawRecord first = Line(f.State.Machine, 10, 0, 20, 0);
    EmitProfiledLine(f.State, first);
    EXPECT_EQ(t.PostParam[173], 10.0f);
    DrawRecord second = Line(f.State.Machine, 20, 0, 30, 0);
    EmitProfiledLine(f.State, second);
    EXPECT_EQ(t.PostParam[173], 20.0f);
    EXPECT_EQ(f.State.Loop.CutPath.LastX, 0.0);
    EXPECT_EQ(f.Program(), "PM\r\nPM\r\nCC\r\nL\r\nPM\r\nCC\r\nL\r\n");
}

TEST(EmitProfiledLine, SubroutineFamilyLeadInWritesLeadSettingsAndACornerAsksForTheRamp) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[9] = 10;
    t.PostMachine[197] = -1;
    t.PostMachine[170] = 1;
    f.State.Loop.CutPath.CutAngle = 90;
    DrawRecord lead = Line(f.State.Machine, 0, 0, 10, 0);
    lead.Count[8] = 1;
    EmitProfiledLine(f.State, lead);
    EXPECT_EQ(f.Program(), "LS\r\nCC\r\nL\r\nRC\r\n");
}

TEST(EmitProfiledLine, SubroutineFamilyReloadMarkAppliesTheToolsStage) {
    JobFixture f(Blocks());
    ValueTables& t = f.State.Tables;
    t.PostParam[9] = 10;
    t.PostParam[8] = -999;
    WriteAllLines(f.Path("PrflStg.4"), {"P40,3", "******"});
    DrawRecord line = Line(f.State.Machine, 0, 0, 10, 0);
    line.ToolA.StageIndex = 4;
    EmitProfiledLine(f.State, line);
    EXPECT_EQ(t.PostParam[40], 3.0f);
    EXPECT_EQ(t.PostParam[8], 4.0f);
}
