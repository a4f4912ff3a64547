// How the records of a shape split for a punch become hits: what binding makes of a made segment
// that carries no pitch, of a whole circle's hit count, and what the arc emitter does with the
// action after an arc of one hit. The end-to-end jobs punch-shape-macros and
// punch-shape-clearing show the same in a whole program.
#include <gtest/gtest.h>

#include <vector>

#include "drawing/binding.h"
#include "drawing/binding_support.h"
#include "emitters/paths.h"
#include "job/job_fixture.h"
#include "splitting/split_shapes.h"

using namespace tvx;
using bindtest::ExpectPoint;

namespace {

// An inside radiused rectangle 40 x 30, corner radius 5, centre (800, 200), worked by a round
// punch of 10.
DrawRecord RoundPunchedRadRect() {
    DrawRecord shape = bindtest::Made(155);
    shape.Point[4] = SinglePoint{800, 200};
    shape.Value[1] = 40;
    shape.Value[2] = 30;
    shape.Value[3] = 5;
    shape.Side = -1;
    bindtest::WorkingTool(shape, "A", 10, 10);
    return shape;
}

std::vector<DrawRecord> Split(void (*routine)(SplitOutput&, const DrawRecord&), const DrawRecord& shape,
                              const MachineState& machine) {
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(machine, records, count, SingleShapeChoices);
    routine(out, shape);
    return records;
}

}  // namespace

TEST(ShapeHits, EachSegmentOfARoundPunchedRadRectIsOneHitAtItsStartForWantOfAPitch) {
    const MachineState machine = bindtest::Machine(1);
    const std::vector<DrawRecord> records = Split(SplitRadRectRound, RoundPunchedRadRect(), machine);
    ASSERT_EQ(records.size(), 8u);
    // Line 1 (785, 185), corner 1 about (815, 190) from 270, line 2 (820, 190), corner 2 about
    // (815, 210) from 0, line 3 (815, 215), corner 3 about (785, 210) from 90, line 4 (780, 210),
    // corner 4 about (785, 190) from 180.
    const double starts[8][2] = {{785, 185}, {815, 185}, {820, 190}, {820, 210},
                                 {815, 215}, {785, 215}, {780, 210}, {780, 190}};
    for (size_t i = 0; i < records.size(); ++i) {
        const DrawRecord& r = records[i];
        EXPECT_EQ(r.Count[1], 1) << i;
        ExpectPoint(r.Point[5], starts[i][0], starts[i][1]);
        if (r.EntityCode == 120) {
            EXPECT_EQ(r.Value[2], 0.0f) << i;
        } else {
            // The one hit of an arc lies at its start angle on its radius.
            EXPECT_EQ(r.Value[5], 5.0f) << i;
            EXPECT_EQ(r.Value[12], 0.0f) << i;
        }
    }
}

TEST(ShapeHits, AWholeCircleRimOfNHitsFromTheSplitIsBoundToNMinusOneHits) {
    // Inside circle R 20 at (200, 100), pitch 10, a round punch of 10: the rim's path radius is
    // 15, l = 94.2478, n = floor(9.42) + 1 = 10 with a step of 360 / 9 = 40; the whole circle
    // keeps 9 hits, its last one step before the first.
    const MachineState machine = bindtest::Machine(1);
    DrawRecord shape = bindtest::Made(151);
    shape.Point[4] = SinglePoint{200, 100};
    shape.Value[1] = 20;
    shape.Value[3] = 10;
    shape.Value[11] = 360;
    shape.Side = -1;
    bindtest::WorkingTool(shape, "A", 10, 10);
    const std::vector<DrawRecord> records = Split(SplitCirclePunched, shape, machine);
    ASSERT_EQ(records.size(), 1u);
    const DrawRecord& rim = records[0];
    EXPECT_EQ(rim.EntityCode, 130);
    EXPECT_EQ(rim.Count[1], 9);
    EXPECT_EQ(rim.Value[12], 40.0f);
    EXPECT_EQ(rim.Value[5], 20.0f);  // the hits lie on the nominal radius
    ExpectPoint(rim.Point[5], 220, 100);
}

TEST(EmitArcPath, AnArcOfOneHitWritesItsHitButNotTheActionAfterIt) {
    JobFixture f({"CANNED_PUNCH=TRUE", "H[X_AXIS][Y_AXIS]", "******", "CANNED_DWELL=TRUE", "DWELL", "******",
                  "CANNED_NIBBLED_ARC=FALSE", "NA", "******", "CANNED_PUNCHED_ARC=FALSE", "PA", "******",
                  "CANNED_STOP=TRUE", "STOP", "******"},
                 {"X_AXIS [M10] [FORMAT=D3] [CONV=X]", "Y_AXIS [M11] [FORMAT=D3] [CONV=Y]",
                  "END_OF_WORDS [P0] [CONV=*]"});
    const std::vector<DrawRecord> records = Split(SplitRadRectRound, RoundPunchedRadRect(), f.State.Machine);
    ASSERT_EQ(records.size(), 8u);
    DrawRecord corner = records[7];
    corner.After = AfterAction{2, 1.5f};
    ASSERT_EQ(corner.Count[1], 1);
    EmitArcPath(f.State, corner);
    // The hit at (780, 190) and no dwell: an arc of one hit is punched alone, and the scratch
    // hit that carries it has no action after it.
    EXPECT_EQ(f.Program(), "HX780.000Y190.000\r\n");
}
