// The cruciform pass as the other passes see it: the working count it holds.
#include <gtest/gtest.h>

#include "expansion/pass_support.h"
#include "expansion/passes.h"

using namespace tvx;
using namespace tvx::passtest;

TEST(CruciformPass, TheWorkingCountIsZeroWhenTheWalkIsOver) {
    PassFixture f;
    DrawRecord arc = Entity(130);
    arc.Side = 1;
    arc.Value[1] = 4;
    arc.Value[11] = -90;
    arc.ToolA = Tool("M");
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), arc});
    f.State.Job.WorkingCount = 9;
    CruciformPass(f.State, drawing);
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
    EXPECT_EQ(ReadDrawing(drawing).at(1).EntityCode, 210);
}
