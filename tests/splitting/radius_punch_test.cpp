// The quarter arc of a radius punch: which arcs count, and the one hit that replaces them.
#include <gtest/gtest.h>

#include "drawing/binding.h"
#include "drawing/binding_support.h"
#include "drawing/record.h"
#include "splitting/radius_punch.h"

using namespace tvx;

namespace {

using bindtest::Bytes;
using bindtest::Machine;
using bindtest::WorkingTool;

// An arc about (10, 20) of radius 5 from 0 degrees over `sweep`, outside, worked by an "M" tool.
DrawRecord Corner(float sweep) {
    DrawRecord r = bindtest::Made(130);
    r.CarryWord1 = 3;
    r.CarryWord2 = 4;
    r.Point[4] = {10, 20};
    r.Value[1] = 5;
    r.Value[10] = 0;
    r.Value[11] = sweep;
    r.Side = 1;
    WorkingTool(r, "M", 10, 10, 10);
    r.After.ActionCode = 2;
    r.After.ActionValue = 1.5f;
    BindRecord(Machine(), r);
    return r;
}

}  // namespace

TEST(IsRadiusPunchArc, QuarterArcEitherWayOnSideOneWithAnMToolCounts) {
    EXPECT_TRUE(IsRadiusPunchArc(Corner(90)));
    EXPECT_TRUE(IsRadiusPunchArc(Corner(-90)));
    EXPECT_TRUE(IsRadiusPunchArc(Corner(89.999999f)));  // 90 as a single
    EXPECT_FALSE(IsRadiusPunchArc(Corner(89.99999f)));  // a single just below 90
}

TEST(IsRadiusPunchArc, SideMustBeExactlyOne) {
    for (const int16_t side : {0, -1, 2}) {
        DrawRecord r = Corner(90);
        r.Side = side;
        EXPECT_FALSE(IsRadiusPunchArc(r)) << side;
    }
}

TEST(IsRadiusPunchArc, OnlyTheLetterMAndOnlyAnArcCount) {
    for (const char* letter : {"m", "B", "U", " "}) {
        DrawRecord r = Corner(90);
        r.ToolA.Letter = letter;
        EXPECT_FALSE(IsRadiusPunchArc(r)) << letter;
    }
    DrawRecord circle = Corner(90);
    circle.EntityCode = 151;
    EXPECT_FALSE(IsRadiusPunchArc(circle));
    EXPECT_FALSE(IsRadiusPunchArc(Corner(90.01f)));
    EXPECT_FALSE(IsRadiusPunchArc(Corner(180)));
}

// The hit stands at the arc's working start, keeps the arc's tool and nothing else: not the
// carried words, not the After.
TEST(ArcToPunch, OneHitAtTheArcsWorkingStartWithItsToolAndNothingElse) {
    const MachineState m = Machine();
    const DrawRecord arc = Corner(90);
    DrawRecord r = arc;
    ArcToPunch(m, r);
    DrawRecord expected;
    ClearRecord(expected);
    expected.EntityCode = 210;
    expected.EntityName = "Punch";
    expected.Point[4] = arc.Point[5];
    CopyTool(arc.ToolA, expected.ToolA);
    BindRecord(m, expected);
    EXPECT_EQ(Bytes(r), Bytes(expected));
    EXPECT_EQ(r.Point[4].X, 15.0f);
    EXPECT_EQ(r.Point[4].Y, 20.0f);
    EXPECT_EQ(r.CarryWord2, 0);
    EXPECT_EQ(r.After.ActionCode, 0);
}
