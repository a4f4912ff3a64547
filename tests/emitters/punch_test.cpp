#include "emitters/punch.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

std::vector<std::string> Blocks() {
    return {"CANNED_PUNCH=TRUE", "P[X_AXIS][Y_AXIS]", "******",
            "CANNED_REPOSITION=TRUE", "R[VALUE30]", "******",
            "CANNED_DWELL=TRUE", "D[VALUE30]", "******",
            "CANNED_STOP=TRUE", "S", "******",
            "CANNED_OPT_STOP=TRUE", "O", "******",
            "CANNED_PART_CHUTE=TRUE", "C[X_AXIS][Y_AXIS]", "******",
            "CANNED_PARTCHUTE=TRUE", "PC[VALUE30]", "******",
            "CANNED_SHEET_MANIPULATION=TRUE", "SM[VALUE36][VALUE37]", "******"};
}

DrawRecord Hit(float x, float y) {
    DrawRecord r;
    r.EntityCode = 210;
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{x, y};
    r.ToolA.Present = -1;
    r.ToolA.Letter = "A";
    return r;
}

DrawRecord Mark(int16_t code, float x, float y) {
    DrawRecord r;
    r.EntityCode = code;
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{x, y};
    return r;
}

}  // namespace

TEST(EmitPunch, TwoHitsAtOnePointPrintBothCoordinatesAgain) {
    JobFixture f(Blocks());
    DrawRecord a = Hit(10, 20);
    EmitPunch(f.State, a);
    EmitPunch(f.State, a);
    EXPECT_EQ(f.Program(), "PX10.000Y20.000\r\nPX10.000Y20.000\r\n");
}

TEST(EmitPunch, SetsPositionDistanceAndRotationCells) {
    JobFixture f(Blocks());
    f.State.Loop.ToolRotates = true;
    DrawRecord a = Hit(30, 40);
    a.ToolA.ToolAngle = 370;
    f.State.Tables.PostMemo[12] = 20;
    EmitPunch(f.State, a);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostMachine[15], 30.0f);
    EXPECT_EQ(t.PostParam[16], 40.0f);
    EXPECT_EQ(t.PostMachine[12], 10.0f);
    EXPECT_EQ(t.PostMachine[17], 10.0f);
    EXPECT_EQ(t.PostParam[173], 50.0f);  // 3-4-5 from the position 0, 0
    EXPECT_EQ(t.PostParam[174], 0.0f);
    EXPECT_EQ(t.PostParam[164], 350.0f);  // Norm360(10 - 20)
}

TEST(EmitPunch, AToolThatDoesNotRotateHasAngleMinus999) {
    JobFixture f(Blocks());
    DrawRecord a = Hit(1, 1);
    a.ToolA.ToolAngle = 45;
    EmitPunch(f.State, a);
    EXPECT_EQ(f.State.Tables.PostMachine[12], -999.0f);
}

TEST(EmitPunch, ImperialOutputGivesWholeInches) {
    JobFixture f(Blocks());
    f.State.Machine.ImperialOutput = true;
    DrawRecord a = Hit(100, 50.8f);  // 3.937 and 2 inches, whole: 4 and 2
    EmitPunch(f.State, a);
    EXPECT_EQ(f.Program(), "PX4.000Y2.000\r\n");
}

TEST(EmitPunch, MissingBlockAbortsWithQuotedWord) {
    JobFixture f({"CANNED_PUNCH=FALSE", "******"});
    DrawRecord a = Hit(1, 1);
    try {
        EmitPunch(f.State, a);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\n'CANNED_PUNCH' not found in Post-Processor\n\nProgram Aborted");
    }
}

TEST(EmitDwell, DwellTimeZeroWritesNoBlock) {
    JobFixture f(Blocks());
    DrawRecord d = Mark(311, 0, 0);
    EmitDwell(f.State, d);
    d.Value[1] = 1.25f;
    EmitDwell(f.State, d);
    EXPECT_EQ(f.Program(), "DV1.25\r\n");
}

TEST(EmitSheetManipulation, TurnOf45WritesTheBlockWithMinusOne) {
    JobFixture f(Blocks());
    DrawRecord m = Mark(355, 0, 0);
    m.Value[10] = 45;
    EmitSheetManipulation(f.State, m);
    EXPECT_EQ(f.State.Tables.PostParam[36], -1.0f);
    EXPECT_EQ(f.State.Tables.PostParam[37], -1.0f);
    EXPECT_EQ(f.Program(), "SMA-1B-1\r\n");
}

TEST(EmitSheetManipulation, NoTurnAndSwitchesOfOneAreDropped) {
    JobFixture f(Blocks());
    DrawRecord m = Mark(355, 0, 0);
    m.Count[1] = 1;
    m.Count[2] = 1;
    EmitSheetManipulation(f.State, m);
    EXPECT_EQ(f.Program(), "");
}

TEST(EmitSheetManipulation, SwitchesAndTurnsGiveTheirCodes) {
    JobFixture f(Blocks());
    DrawRecord m = Mark(355, 0, 0);
    m.Count[1] = -1;
    m.Count[2] = -1;
    EmitSheetManipulation(f.State, m);  // turn 0, both set: written, flip 2, turn -1
    m.Value[10] = 270;
    m.Count[1] = 0;
    EmitSheetManipulation(f.State, m);  // B only: 1; turn 270: 2
    m.Value[10] = -180;
    m.Count[2] = 0;
    EmitSheetManipulation(f.State, m);  // neither: -1; turn 180: 1
    EXPECT_EQ(f.Program(), "SMA-1B2\r\nSMA2B1\r\nSMA1B-1\r\n");
}

TEST(EmitReposition, ZeroValue5TakesMinusValue2) {
    JobFixture f(Blocks());
    DrawRecord r = Mark(350, 500, 0);
    r.Value[1] = 100;
    r.Value[2] = 400;
    EmitReposition(f.State, r);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostParam[30], 100.0f);
    EXPECT_EQ(t.PostParam[31], 400.0f);
    EXPECT_EQ(t.PostParam[32], -400.0f);
    EXPECT_EQ(t.PostParam[59], 1.0f);
    EXPECT_EQ(t.PostParam[58], 100.0f);
    EXPECT_EQ(t.PostParam[180], 400.0f);
    EXPECT_EQ(t.PostMachine[10], 500.0f);
    EXPECT_EQ(t.PostParam[173], 500.0f);
}

TEST(EmitReposition, ZeroValue5AndValue2GiveZero) {
    JobFixture f(Blocks());
    DrawRecord r = Mark(350, 0, 0);
    EmitReposition(f.State, r);
    EXPECT_EQ(f.State.Tables.PostParam[32], 0.0f);
    EXPECT_EQ(f.State.Tables.PostParam[31], 0.0f);
}

TEST(EmitReposition, GivenValue5IsKept) {
    JobFixture f(Blocks());
    DrawRecord r = Mark(350, 0, 0);
    r.Value[2] = 400;
    r.Value[5] = 250;
    EmitReposition(f.State, r);
    EXPECT_EQ(f.State.Tables.PostParam[32], 250.0f);
}

TEST(EmitStop, StopWithCount2Of2MovesWithoutNotingThePosition) {
    JobFixture f(Blocks());
    DrawRecord s = Mark(321, 7, 8);
    s.Count[2] = 2;
    EmitStop(f.State, s);
    EXPECT_EQ(f.State.Tables.PostMachine[10], 7.0f);
    EXPECT_EQ(f.State.Tables.PostParam[11], 8.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[10], 0.0f);
    s.Count[2] = 1;
    EmitStop(f.State, s);
    EXPECT_EQ(f.State.Tables.PostMemo[10], 7.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[11], 8.0f);
}

TEST(EmitStop, StopWithoutPositionLeavesTheCells) {
    JobFixture f(Blocks());
    DrawRecord s = Mark(321, 7, 8);
    s.Count[1] = -1;
    EmitStop(f.State, s);
    EXPECT_EQ(f.State.Tables.PostMachine[10], 0.0f);
    EXPECT_EQ(f.Program(), "O\r\n");
}

TEST(EmitPartChute, FalseBlockAbortsWithoutQuotes) {
    JobFixture f({"CANNED_PART_CHUTE=FALSE", "******"});
    DrawRecord c = Mark(312, 1, 2);
    try {
        EmitPartChute(f.State, c);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Text, "Torvanex\nCANNED_PART_CHUTE not found in Post-Processor\n\nProgram Aborted");
    }
}

TEST(EmitPartChute, NotesThePositionAndTakesTheValueUnconverted) {
    JobFixture f(Blocks());
    f.State.Machine.ImperialOutput = true;
    DrawRecord c = Mark(312, 254, 508);
    c.Value[1] = 3;
    EmitPartChute(f.State, c);
    EXPECT_EQ(f.State.Tables.PostParam[30], 3.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[10], 10.0f);
    EXPECT_EQ(f.State.Tables.PostMemo[11], 20.0f);
    EXPECT_EQ(f.Program(), "CX10.000Y20.000\r\n");
}

TEST(EmitAfterAction, EachCodeAsksForItsWordAndAFalseWordIsPassedOver) {
    JobFixture f({"CANNED_STOP=TRUE", "S", "******", "CANNED_DWELL=FALSE", "D", "******", "CANNED_PARTCHUTE=TRUE",
                  "PC[VALUE30]", "******"});
    DrawRecord r = Hit(0, 0);
    r.After.ActionCode = 1;
    EmitAfterAction(f.State, r);
    r.After.ActionCode = 2;
    EmitAfterAction(f.State, r);
    r.After.ActionCode = 3;
    r.After.ActionValue = 4;
    EmitAfterAction(f.State, r);
    r.After.ActionCode = 9;
    EmitAfterAction(f.State, r);
    EXPECT_EQ(f.Program(), "S\r\nPCV4.00\r\n");
}

TEST(PunchAlongLine, HitsStepFromTheWorkingStart) {
    JobFixture f(Blocks());
    DrawRecord line;
    line.EntityCode = 220;
    line.Point[5] = SinglePoint{10, 10};
    line.Value[2] = 5;
    line.Value[10] = 0;
    line.Count[1] = 3;
    line.ToolA.Present = -1;
    PunchAlongLine(f.State, line);
    EXPECT_EQ(f.Program(), "PX10.000Y10.000\r\nPX15.000\r\nPX20.000\r\n");
}

TEST(PunchAlongArc, HitsStepAlongTheArcAndTheToolFollows) {
    JobFixture f(Blocks());
    f.State.Loop.ToolRotates = true;
    DrawRecord arc;
    arc.EntityCode = 230;
    arc.Point[4] = SinglePoint{0, 0};
    arc.Value[5] = 10;
    arc.Value[13] = 0;
    arc.Value[12] = 180;
    arc.Count[1] = 2;
    arc.Count[2] = 1;
    arc.ToolA.Present = -1;
    arc.ToolA.ToolAngle = 15;
    PunchAlongArc(f.State, arc);
    EXPECT_EQ(f.State.Tables.PostMachine[12], 195.0f);
    // The first hit's Y of 0 equals the memo and stays silent; the second lies at 180 degrees
    // with pi as 3.14159265: X -10 and a Y of a trace above 0, a change below half a thousandth.
    EXPECT_EQ(f.Program(), "PX10.000\r\nPX-10.000\r\n");
}
