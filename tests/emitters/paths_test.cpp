#include "emitters/paths.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "common/numeric.h"
#include "common/numtext.h"
#include "drawing/binding.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

// A definition with a block for every path word, each TRUE or FALSE as asked.
std::vector<std::string> Definition(bool nibbledLine, bool punchedLine, bool nibbledArc, bool punchedArc,
                                    bool gridA = false, bool gridX = false, bool gridY = false) {
    auto truth = [](bool b) { return b ? std::string("TRUE") : std::string("FALSE"); };
    return {"CANNED_PUNCH=TRUE", "H[X_AXIS][Y_AXIS]", "******",
            "CANNED_NIBBLED_LINE=" + truth(nibbledLine), "NL[PITCH]", "******",
            "CANNED_PUNCHED_LINE=" + truth(punchedLine), "PL[PITCH]", "******",
            "CANNED_NIBBLED_ARC=" + truth(nibbledArc), "NA[PITCH]", "******",
            "CANNED_PUNCHED_ARC=" + truth(punchedArc), "PA[PITCH]", "******",
            "CANNED_GRID_A=" + truth(gridA), "GA[VALUE30][VALUE31][VALUE33][VALUE34]", "******",
            "CANNED_GRID_X=" + truth(gridX), "GX[VALUE30][VALUE31][VALUE33][VALUE34]", "******",
            "CANNED_GRID_Y=" + truth(gridY), "GY[VALUE30][VALUE31][VALUE33][VALUE34]", "******",
            "CANNED_STOP=TRUE", "STOP", "******",
            "CANNED_PROFILED_MOVE=FALSE", "PM", "******",
            "LEADIN_SETTINGS=FALSE", "LS", "******",
            "CANNED_CUTSUB_CALL=FALSE", "CS", "******",
            "CANNED_RAMP_CALL=FALSE", "RC", "******",
            "CANNED_PROFILED_LINE=TRUE", "CUTLINE", "******",
            "CANNED_PROFILED_ARC=TRUE", "CUTARC", "******"};
}

std::vector<std::string> Words() {
    return {"BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "X_AXIS [M10] [FORMAT=D3] [CONV=X]",
            "Y_AXIS [M11] [FORMAT=D3] [CONV=Y]",        "PITCH [M13] [FORMAT=D3] [CONV=F]",
            "VALUE30 [P30] [FORMAT=D2] [CONV=I]",       "VALUE31 [P31] [FORMAT=D2] [CONV=J]",
            "VALUE33 [P33] [FORMAT=D0] [CONV=K]",       "VALUE34 [P34] [FORMAT=D0] [CONV=L]",
            "END_OF_WORDS [P0] [CONV=*]"};
}

std::vector<std::string> HitByHit() { return Definition(false, false, false, false); }

ToolSpec RoundPunch() {
    ToolSpec tool;
    tool.Present = -1;
    tool.Letter = "A";
    tool.ToolName = "RND5";
    tool.Size[1] = 5;
    tool.ToolNumber = 1;
    tool.WorkType = 10;
    return tool;
}

// A line of code 120 from (x1, y1) to (x2, y2) with a pitch, bound in the worked form.
DrawRecord Line(const MachineState& machine, double x1, double y1, double x2, double y2, double pitch,
                double startTrim = 0, double endTrim = 0) {
    DrawRecord r;
    r.EntityCode = 120;
    r.Point[1] = SinglePoint{ToSingle(x1), ToSingle(y1)};
    r.Point[3] = SinglePoint{ToSingle(x2), ToSingle(y2)};
    double length = 0;
    double angle = 0;
    XYToPolar(x2 - x1, y2 - y1, length, angle);
    r.Value[1] = ToSingle(length);
    r.Value[10] = ToSingle(angle);
    r.Value[2] = ToSingle(pitch);
    r.Value[3] = ToSingle(startTrim);
    r.Value[4] = ToSingle(endTrim);
    r.ToolA = RoundPunch();
    BindRecord(machine, r);
    return r;
}

// An arc of code 130 about (cx, cy), bound in the worked form with a step angle.
DrawRecord Arc(const MachineState& machine, double cx, double cy, double radius, double start, double sweep,
               double stepAngle) {
    DrawRecord r;
    r.EntityCode = 130;
    r.Point[4] = SinglePoint{ToSingle(cx), ToSingle(cy)};
    r.Value[1] = ToSingle(radius);
    r.Value[10] = ToSingle(start);
    r.Value[11] = ToSingle(sweep);
    r.Value[12] = ToSingle(stepAngle);
    r.ToolA = RoundPunch();
    BindRecord(machine, r);
    return r;
}

DrawRecord Grid(double x, double y, double rowPitch, double columnPitch, double angle, int16_t perRow,
                int16_t rows) {
    DrawRecord r;
    r.EntityCode = 225;
    r.Point[1] = SinglePoint{ToSingle(x), ToSingle(y)};
    r.Value[1] = 5;
    r.Value[3] = 5;
    r.Value[2] = ToSingle(rowPitch);
    r.Value[4] = ToSingle(columnPitch);
    r.Value[10] = ToSingle(angle);
    r.Count[1] = perRow;
    r.Count[2] = rows;
    r.ToolA = RoundPunch();
    return r;
}

struct Hit {
    double X = 0;
    double Y = 0;
};

// The hits of a program of "H" blocks, with a coordinate that was not printed kept from the
// block before.
std::vector<Hit> Hits(const std::string& program) {
    std::vector<Hit> hits;
    std::istringstream in(program);
    Hit at;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] != 'H') continue;
        const size_t x = line.find('X');
        const size_t y = line.find('Y');
        if (x != std::string::npos) at.X = LeadingNumber(line.substr(x + 1, y == std::string::npos ? std::string::npos : y - x - 1));
        if (y != std::string::npos) at.Y = LeadingNumber(line.substr(y + 1));
        hits.push_back(at);
    }
    return hits;
}

}  // namespace

// ---- Lines ----

TEST(EmitLinePath, OneHitOnALineWithAPitchFallsOnTheWorkingStartNotTheDrawnStart) {
    JobFixture f(HitByHit(), Words());
    // 10 long with a start trim of 5: the 5 left hold no pitch of 20, so one hit at (5, 0).
    DrawRecord r = Line(f.State.Machine, 0, 0, 10, 0, 20, 5);
    ASSERT_EQ(r.Count[1], 1);
    ASSERT_EQ(r.Point[5].X, 5.0f);
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "HX5.000\r\n");
}

TEST(EmitLinePath, OneHitOnARowOfHitsFallsOnItsStartNotItsEnd) {
    JobFixture f(HitByHit(), Words());
    DrawRecord r;
    r.EntityCode = 220;
    r.Point[5] = SinglePoint{10, 10};
    r.Point[6] = SinglePoint{13, 10};
    r.Value[2] = 5;
    r.ToolA = RoundPunch();
    BindRecord(f.State.Machine, r);
    ASSERT_EQ(r.Count[1], 1);
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "HX10.000Y10.000\r\n");
}

TEST(EmitLinePath, APitchOfExactlyOneTenthIsStillAPath) {
    JobFixture f(Definition(true, false, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 0, 0, 0.3, 0, 0.1);
    ASSERT_EQ(r.Count[1], 4);
    r.Value[2] = 0.1f;
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "NLF0.100\r\n");
}

TEST(EmitLinePath, APitchBelowOneTenthIsOneHit) {
    JobFixture f(Definition(true, false, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 1, 2, 1.3, 2, 0.1);
    r.Value[2] = 0.09f;
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "HX1.000Y2.000\r\n");
}

TEST(EmitLinePath, NibbledBlockWinsWhenBothLineWordsAreTrue) {
    JobFixture f(Definition(true, true, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 0, 0, 100, 0, 10);
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "NLF10.000\r\n");
}

TEST(EmitLinePath, PunchedBlockWhenTheDefinitionHasNoNibbling) {
    JobFixture f(Definition(false, true, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 0, 0, 100, 0, 10);
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "PLF10.000\r\n");
}

TEST(EmitLinePath, HitByHitWhenTheDefinitionHasNeitherBlock) {
    JobFixture f(HitByHit(), Words());
    // 30 long at a pitch of 10: four hits, the last on the end.
    DrawRecord r = Line(f.State.Machine, 10, 20, 40, 20, 10);
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "HX10.000Y20.000\r\nHX20.000\r\nHX30.000\r\nHX40.000\r\n");
}

TEST(EmitLinePath, SetsTheCellsOfThePath) {
    JobFixture f(Definition(true, false, false, false), Words());
    f.State.Loop.ToolRotates = true;
    // From (0, 0) up and right to (30, 40), 50 long; a start trim of 5 leaves 45 at a pitch of 9.
    DrawRecord r = Line(f.State.Machine, 0, 0, 30, 40, 9, 5);
    r.Side = -1;
    r.ToolA.Letter = "B";
    r.ToolA.ToolAngle = 30;
    f.State.Tables.PostMemo[12] = 50;
    ASSERT_EQ(r.Count[1], 6);
    EmitLinePath(f.State, r);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostMachine[1], 1.0f);
    EXPECT_EQ(t.PostMachine[10], 3.0f);
    EXPECT_EQ(t.PostParam[11], 4.0f);
    EXPECT_EQ(t.PostMachine[15], 30.0f);
    EXPECT_EQ(t.PostParam[16], 40.0f);
    EXPECT_EQ(t.PostMachine[12], 30.0f);
    EXPECT_EQ(t.PostMachine[17], 30.0f);
    EXPECT_EQ(t.PostMachine[65], -1.0f);
    // PostParam[30] is the after-action's value once the path is written.
    EXPECT_EQ(t.PostParam[30], 0.0f);
    EXPECT_EQ(t.PostParam[31], 45.0f);
    EXPECT_NEAR(t.PostParam[32], 53.130, 0.001);
    EXPECT_EQ(t.PostParam[33], 9.0f);
    EXPECT_EQ(t.PostParam[34], 6.0f);
    EXPECT_EQ(t.PostParam[35], 1.0f);
    EXPECT_EQ(t.PostMachine[13], 9.0f);
    EXPECT_EQ(t.PostParam[173], 5.0f);  // from the position 0, 0 to (3, 4)
    EXPECT_EQ(t.PostParam[174], 45.0f);
    EXPECT_EQ(t.PostParam[180], 9.0f);
    EXPECT_EQ(t.PostParam[164], 340.0f);  // Norm360(30 - 50)
}

TEST(EmitLinePath, ImperialOutputConvertsTheEndsLengthAndPitch) {
    JobFixture f(Definition(true, false, false, false), Words());
    f.State.Machine.ImperialOutput = true;
    DrawRecord r = Line(f.State.Machine, 25.4, 0, 254, 0, 25.4);
    EmitLinePath(f.State, r);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostMachine[10], 1.0f);
    EXPECT_EQ(t.PostMachine[15], 10.0f);
    EXPECT_EQ(t.PostParam[31], 9.0f);
    EXPECT_EQ(t.PostParam[33], 1.0f);
    EXPECT_EQ(t.PostMachine[13], 1.0f);
}

TEST(EmitLinePath, ARowRunningBackHasAPositivePitchFlagOfZero) {
    JobFixture f(Definition(true, false, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 0, 0, 50, 0, 10);
    r.Value[2] = -10;
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.State.Tables.PostParam[35], 0.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[13], 10.0f);
}

TEST(EmitLinePath, TheActionAfterThePathFollowsItsBlock) {
    JobFixture f(Definition(true, false, false, false), Words());
    DrawRecord r = Line(f.State.Machine, 0, 0, 50, 0, 10);
    r.After.ActionCode = 1;
    EmitLinePath(f.State, r);
    EXPECT_EQ(f.Program(), "NLF10.000\r\nSTOP\r\n");
}

TEST(EmitLinePath, AComboMachineProfilesTheLineAndNeverFallsBackToHits) {
    JobFixture f(HitByHit(), Words());
    f.State.Machine.IsComboMachine = true;
    DrawRecord r = Line(f.State.Machine, 0, 0, 50, 0, 10);
    r.Count[1] = 6;
    r.Value[2] = 10;
    EmitLinePath(f.State, r);
    EXPECT_EQ(r.ToolA.Letter.Text(), "P");
    const std::string program = f.Program();
    EXPECT_EQ(program.find('H'), std::string::npos) << program;
    EXPECT_EQ(program.find("NL"), std::string::npos) << program;
}

// ---- Arcs ----

TEST(EmitArcPath, AFullCircleOfCountHitsHasItsLastHitOneStepBeforeTheFirst) {
    JobFixture f(HitByHit(), Words());
    DrawRecord r = Arc(f.State.Machine, 100, 100, 20, 0, 360, 90);
    ASSERT_EQ(r.Count[1], 4);
    EmitArcPath(f.State, r);
    EXPECT_EQ(f.Program(), "HX120.000Y100.000\r\nHX100.000Y120.000\r\nHX80.000Y100.000\r\nHX100.000Y80.000\r\n");
}

TEST(EmitArcPath, AFullCircleTakesItsOwnPitchAndTheLengthOfOneStep) {
    JobFixture f(Definition(false, false, true, false), Words());
    DrawRecord r = Arc(f.State.Machine, 0, 0, 10, 0, 360, 90);
    EmitArcPath(f.State, r);
    const ValueTables& t = f.State.Tables;
    // 2 * 10 * 3.14159265 / 4 and (360 - 90) * 62.831853 / 360 / 3.
    EXPECT_EQ(t.PostMachine[13], ToSingle(2 * 10 * 3.14159265 / 4));
    EXPECT_EQ(t.PostParam[180], ToSingle(270 * (2 * 10 * 3.14159265) / 360 / 3));
    EXPECT_EQ(t.PostParam[33], 360.0f);
    EXPECT_EQ(f.Program(), "NAF15.708\r\n");
}

TEST(EmitArcPath, OneHitArcIsPunchedAlone) {
    JobFixture f(Definition(false, false, true, true), Words());
    DrawRecord r = Arc(f.State.Machine, 5, 5, 10, 90, 5, 30);
    ASSERT_EQ(r.Count[1], 1);
    EmitArcPath(f.State, r);
    EXPECT_EQ(f.Program(), "HX5.000Y15.000\r\n");
}

TEST(EmitArcPath, NibbledBlockWinsAndKeepsTheArcsPitch) {
    JobFixture f(Definition(false, false, true, true), Words());
    f.State.Tables.PostMachine[13] = 7;
    DrawRecord r = Arc(f.State.Machine, 0, 0, 10, 0, 90, 30);
    EmitArcPath(f.State, r);
    // The pitch is the length of 30 degrees at radius 10.
    EXPECT_EQ(f.Program(), "NAF5.236\r\n");
    EXPECT_EQ(f.State.Tables.PostMachine[13], r.Value[3]);
}

TEST(EmitArcPath, PunchedBlockTakesTheLengthOfOneHitAndThePitchIsPutBack) {
    JobFixture f(Definition(false, false, false, true), Words());
    f.State.Tables.PostMachine[13] = 7;
    DrawRecord r = Arc(f.State.Machine, 0, 0, 10, 0, -90, 30);
    ASSERT_EQ(r.Count[1], 4);
    EmitArcPath(f.State, r);
    EXPECT_EQ(f.Program(), "PAF5.236\r\n");
    EXPECT_EQ(f.State.Tables.PostMachine[13], 7.0f);
    EXPECT_EQ(f.State.Tables.PostParam[180], ToSingle(-90 * (2 * 10 * 3.14159265) / 360 / 3));
    EXPECT_EQ(f.State.Tables.PostMachine[1], 3.0f);
}

TEST(EmitArcPath, HitByHitWhenTheDefinitionHasNeitherBlock) {
    JobFixture f(HitByHit(), Words());
    DrawRecord r = Arc(f.State.Machine, 0, 0, 10, 0, 90, 45);
    EmitArcPath(f.State, r);
    EXPECT_EQ(f.Program(), "HX10.000\r\nHX7.071Y7.071\r\nHX0.000Y10.000\r\n");
}

TEST(EmitArcPath, SetsTheCellsOfTheArc) {
    JobFixture f(Definition(false, false, true, false), Words());
    f.State.Loop.ToolRotates = true;
    DrawRecord r = Arc(f.State.Machine, 50, 60, 10, 90, 180, 60);
    r.ToolA.ToolAngle = 10;
    r.Count[2] = -1;
    r.FollowFlag = -1;
    r.Value[15] = 400;
    r.Side = 1;
    ASSERT_EQ(r.Count[1], 4);
    EmitArcPath(f.State, r);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostMachine[10], 50.0f);
    EXPECT_EQ(t.PostParam[11], 70.0f);
    EXPECT_EQ(t.PostMachine[15], 50.0f);
    EXPECT_EQ(t.PostMachine[16], 50.0f);
    EXPECT_EQ(t.PostParam[15], 50.0f);  // the centre, not the end
    EXPECT_EQ(t.PostParam[16], 60.0f);
    EXPECT_EQ(t.PostMachine[12], 40.0f);   // Norm360(400): the angle at the first hit follows
    EXPECT_EQ(t.PostMachine[17], 220.0f);  // 180 + 40, not normalised
    EXPECT_EQ(t.PostParam[50], 1.0f);
    EXPECT_EQ(t.PostParam[31], 90.0f);
    EXPECT_EQ(t.PostParam[32], 4.0f);
    EXPECT_EQ(t.PostParam[33], 180.0f);
    EXPECT_EQ(t.PostParam[35], 60.0f);
    EXPECT_EQ(t.PostMachine[65], 1.0f);
    EXPECT_EQ(t.PostMachine[35], -1.0f);
    EXPECT_EQ(t.PostMachine[1], 2.0f);
    EXPECT_EQ(t.PostParam[174], 0.0f);
    EXPECT_EQ(t.PostParam[163], ToSingle(10.0 / 3));
}

TEST(EmitArcPath, AComboMachineProfilesTheArcAndNeverFallsBackToHits) {
    JobFixture f(HitByHit(), Words());
    f.State.Machine.IsComboMachine = true;
    DrawRecord r = Arc(f.State.Machine, 0, 0, 10, 0, 90, 0);
    r.Count[1] = 4;
    r.Value[12] = 30;
    EmitArcPath(f.State, r);
    EXPECT_EQ(r.ToolA.Letter.Text(), "P");
    const std::string program = f.Program();
    EXPECT_EQ(program.find('H'), std::string::npos) << program;
}

// ---- Hits on the drawn geometry ----

TEST(PathHits, HitsOfALineWrittenOneByOneLandOnTheDrawnLine) {
    struct Case {
        double X1, Y1, X2, Y2, Pitch, StartTrim, EndTrim;
    };
    for (const Case& c : {Case{0, 0, 100, 0, 7, 0, 0}, Case{10, 20, 73.3, 81.9, 6.5, 3, 2},
                          Case{500, 200, 120, 340, 11, 0, 4.5}, Case{-5, 7, -5, -93, 3.3, 1, 1}}) {
        JobFixture f(HitByHit(), Words());
        DrawRecord r = Line(f.State.Machine, c.X1, c.Y1, c.X2, c.Y2, c.Pitch, c.StartTrim, c.EndTrim);
        EmitLinePath(f.State, r);
        const std::vector<Hit> hits = Hits(f.Program());
        double length = 0;
        double angle = 0;
        XYToPolar(c.X2 - c.X1, c.Y2 - c.Y1, length, angle);
        const double ux = (c.X2 - c.X1) / length;
        const double uy = (c.Y2 - c.Y1) / length;
        ASSERT_GE(hits.size(), 2u);
        for (const Hit& h : hits) {
            // Distance from the drawn line and position along it, from the defining fields only.
            const double along = (h.X - c.X1) * ux + (h.Y - c.Y1) * uy;
            const double across = -(h.X - c.X1) * uy + (h.Y - c.Y1) * ux;
            EXPECT_NEAR(across, 0, 0.002);
            EXPECT_GE(along, c.StartTrim - 0.002);
            EXPECT_LE(along, length - c.EndTrim + 0.002);
        }
        // The first and last hits fall on the working ends.
        EXPECT_NEAR((hits.front().X - c.X1) * ux + (hits.front().Y - c.Y1) * uy, c.StartTrim, 0.002);
        EXPECT_NEAR((hits.back().X - c.X1) * ux + (hits.back().Y - c.Y1) * uy, length - c.EndTrim, 0.002);
        const double spread = (length - c.StartTrim - c.EndTrim) / static_cast<double>(hits.size() - 1);
        // Evenly spread: the whole pitches that fit, stretched to the working length.
        const double steps = static_cast<double>(hits.size() - 1);
        EXPECT_GE(spread, c.Pitch - 0.002);
        EXPECT_LT(spread, c.Pitch * (steps + 1) / steps + 0.002);
    }
}

TEST(PathHits, HitsOfAnArcWrittenOneByOneLandOnTheDrawnArc) {
    struct Case {
        double Cx, Cy, R, Start, Sweep, Step;
    };
    for (const Case& c : {Case{0, 0, 50, 0, 90, 10}, Case{200, 100, 33.3, 45, -135, 7},
                          Case{10, -10, 12.5, 300, 120, 13}, Case{50, 50, 40, 10, 360, 25}}) {
        JobFixture f(HitByHit(), Words());
        DrawRecord r = Arc(f.State.Machine, c.Cx, c.Cy, c.R, c.Start, c.Sweep, c.Step);
        EmitArcPath(f.State, r);
        const std::vector<Hit> hits = Hits(f.Program());
        ASSERT_GE(hits.size(), 2u);
        for (const Hit& h : hits) {
            double distance = 0;
            double angle = 0;
            XYToPolar(h.X - c.Cx, h.Y - c.Cy, distance, angle);
            EXPECT_NEAR(distance, c.R, 0.003);
            // How far round the sweep the hit lies, in the sweep's own sense.
            const double turned = c.Sweep >= 0 ? Norm360(angle - c.Start) : Norm360(c.Start - angle);
            const double around = turned > 359.99 ? turned - 360 : turned;
            EXPECT_GE(around, -0.01);
            EXPECT_LE(around, std::fabs(c.Sweep) + 0.01);
        }
        double firstAngle = 0;
        double distance = 0;
        XYToPolar(hits.front().X - c.Cx, hits.front().Y - c.Cy, distance, firstAngle);
        EXPECT_NEAR(std::fabs(Norm360(firstAngle - c.Start + 180) - 180), 0, 0.01);
        if (std::fabs(c.Sweep) != 360) {
            double lastAngle = 0;
            XYToPolar(hits.back().X - c.Cx, hits.back().Y - c.Cy, distance, lastAngle);
            EXPECT_NEAR(std::fabs(Norm360(lastAngle - (c.Start + c.Sweep) + 180) - 180), 0, 0.01);
        }
    }
}

// ---- Grids ----

TEST(EmitGrid, AGridAtMinusNinetyChoosesTheNinetyBranch) {
    JobFixture f(Definition(false, false, false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, -90, 3, 2);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    // The Y word: pitches and counts exchanged, then the first pitch negated.
    EXPECT_EQ(f.Program(), "GYI-20.00J10.00K2L3\r\n");
}

TEST(EmitGrid, TheYWordAtTwoHundredSeventyNegatesTheSecondPitch) {
    JobFixture f(Definition(false, false, false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 270, 3, 2);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "GYI20.00J-10.00K2L3\r\n");
}

TEST(EmitGrid, TheXWordAtOneHundredEightyNegatesBothPitches) {
    JobFixture f(Definition(false, false, false, false, false, true, false), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 180, 3, 2);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "GXI-10.00J-20.00K3L2\r\n");
}

TEST(EmitGrid, TheAnyAngleWordComesFirst) {
    JobFixture f(Definition(false, false, false, false, true, true, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 90, 3, 2);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "GAI10.00J20.00K3L2\r\n");
}

TEST(EmitGrid, AnOddAngleWithoutTheAnyAngleWordIsPunchedHitByHit) {
    JobFixture f(Definition(false, false, false, false, false, true, true), Words());
    DrawRecord g = Grid(0, 0, 10, 10, 45, 2, 1);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "HX0.000Y0.000\r\nHX7.071Y7.071\r\n");
}

TEST(EmitGrid, ZeroPitchesGiveZeroInTheRowFlagAndOneInTheColumnFlag) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 0, 0, 0, 1, 1);
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.State.Tables.PostParam[39], 0.0f);
    EXPECT_EQ(f.State.Tables.PostParam[40], 1.0f);
}

TEST(EmitGrid, SetsTheCellsOfTheGrid) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    f.State.Loop.ToolRotates = true;
    DrawRecord g = Grid(100, 50, 10, -20, 30, 4, 3);
    g.ToolA.Letter = "B";
    g.ToolA.ToolAngle = 370;
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostMachine[12], 10.0f);
    EXPECT_EQ(t.PostMachine[17], 10.0f);
    EXPECT_EQ(t.PostMachine[10], 100.0f);
    EXPECT_EQ(t.PostParam[11], 50.0f);
    EXPECT_EQ(t.PostMachine[15], g.Point[6].X);
    EXPECT_EQ(t.PostParam[16], g.Point[6].Y);
    EXPECT_EQ(t.PostMachine[1], 1.0f);
    EXPECT_EQ(t.PostParam[31], -20.0f);
    EXPECT_EQ(t.PostParam[32], 30.0f);
    EXPECT_EQ(t.PostParam[33], 4.0f);
    EXPECT_EQ(t.PostParam[34], 3.0f);
    EXPECT_NEAR(t.PostParam[35], 8.66025, 1e-5);
    EXPECT_NEAR(t.PostParam[36], 5.0, 1e-5);
    EXPECT_NEAR(t.PostParam[37], 10.0, 1e-5);   // -20 at 120 degrees
    EXPECT_NEAR(t.PostParam[38], -17.3205, 1e-4);
    EXPECT_EQ(t.PostParam[39], 1.0f);
    EXPECT_EQ(t.PostParam[40], 0.0f);
    EXPECT_EQ(t.PostParam[41], 0.0f);
    EXPECT_EQ(t.PostParam[180], 10.0f);
    EXPECT_EQ(t.PostParam[181], -20.0f);
    EXPECT_EQ(t.PostParam[174], 0.0f);
}

TEST(EmitGrid, AGridWithExchangedAxesIsUnswappedFirst) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 0, 3, 2);
    g.Count[3] = -1;
    EmitGrid(f.State, g);
    // Pitches and counts exchanged, the direction 90 less itself, the first pitch negated.
    EXPECT_EQ(g.Count[3], 0);
    EXPECT_EQ(f.State.Tables.PostParam[41], 0.0f);
    EXPECT_EQ(f.State.Tables.PostParam[32], 90.0f);
    EXPECT_EQ(f.Program(), "GAI-20.00J10.00K2L3\r\n");
}

TEST(EmitGrid, ExchangedAxesThatTheUnswappingPassesOverTurnTheAngleAndSetTheFlag) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 0, 3, 2);
    g.ToolA.Present = 1;
    g.Count[3] = 2;  // no bit in common with Present
    EmitGrid(f.State, g);
    EXPECT_EQ(g.Count[3], 2);
    EXPECT_EQ(f.State.Tables.PostParam[41], 1.0f);
    EXPECT_EQ(f.State.Tables.PostParam[32], 90.0f);
}

TEST(EmitGrid, AProfilingToolOnAGridProducesNothingNotEvenTheAfterAction) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 0, 3, 2);
    g.ToolA.Letter = "P";
    g.After.ActionCode = 1;
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "");
}

TEST(EmitGrid, TheActionAfterTheGridFollowsItsBlock) {
    JobFixture f(Definition(false, false, false, false, true), Words());
    DrawRecord g = Grid(0, 0, 10, 20, 0, 3, 2);
    g.After.ActionCode = 1;
    BindRecord(f.State.Machine, g);
    EmitGrid(f.State, g);
    EXPECT_EQ(f.Program(), "GAI10.00J20.00K3L2\r\nSTOP\r\n");
}

TEST(PunchGrid, AGridOfOddRowsWalksBackAndForthAndEndsAtTheFarCorner) {
    JobFixture f(HitByHit(), Words());
    DrawRecord g = Grid(0, 0, 10, 5, 0, 3, 3);
    BindRecord(f.State.Machine, g);
    PunchGrid(f.State, g);
    EXPECT_EQ(f.Program(),
              "HX0.000Y0.000\r\nHX10.000\r\nHX20.000\r\n"
              "HY5.000\r\nHX10.000\r\nHX0.000\r\n"
              "HY10.000\r\nHX10.000\r\nHX20.000\r\n");
}

TEST(PunchGrid, AGridOfEvenRowsEndsAtTheNearSide) {
    JobFixture f(HitByHit(), Words());
    DrawRecord g = Grid(0, 0, 10, 5, 0, 3, 2);
    BindRecord(f.State.Machine, g);
    PunchGrid(f.State, g);
    const std::vector<Hit> hits = Hits(f.Program());
    ASSERT_EQ(hits.size(), 6u);
    EXPECT_EQ(hits.back().X, 0.0);
    EXPECT_EQ(hits.back().Y, 5.0);
}

TEST(PunchGrid, ANegativeRowPitchRunsTheFirstRowBackwards) {
    JobFixture f(HitByHit(), Words());
    DrawRecord g = Grid(50, 0, -10, 5, 0, 2, 2);
    BindRecord(f.State.Machine, g);
    PunchGrid(f.State, g);
    EXPECT_EQ(f.Program(), "HX50.000\r\nHX40.000\r\nHY5.000\r\nHX50.000\r\n");
}

TEST(PunchGrid, ExchangedAxesWalkTheOtherWay) {
    JobFixture f(HitByHit(), Words());
    DrawRecord g = Grid(0, 0, 10, 5, 90, 2, 3);
    g.ToolA.Present = 1;
    g.Count[3] = 2;
    // p, q = 5, 10 exchanged and p negated: -5; n, m = 3, 2; a = 0. The row of 3 at -5 runs
    // at 180 from (0, 0) to (-10, 0); the second row 10 up at 90, back to (0, 10).
    PunchGrid(f.State, g);
    EXPECT_EQ(f.Program(), "HX0.000Y0.000\r\nHX-5.000\r\nHX-10.000\r\nHY10.000\r\nHX-5.000\r\nHX0.000\r\n");
}
