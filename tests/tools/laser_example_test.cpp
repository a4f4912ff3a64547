// The laser example, checked independently of the program's own numbers: every arc block's
// start (where the block before it ended), end and centre (start plus I, J) lie on one circle
// within the printed precision.
#include <gtest/gtest.h>

#include <cmath>

#include "common/numtext.h"
#include "common/textfile.h"
#include "job/post_main.h"
#include "test_support.h"
#include "tools/demo_tool.h"

using namespace tvx;

namespace {

// The number behind an address letter in a block, if the block holds the letter.
bool Address(const std::string& block, char letter, double& value) {
    const auto at = block.find(letter);
    if (at == std::string::npos) return false;
    value = LeadingNumber(block.substr(at + 1));
    return true;
}

}  // namespace

TEST(LaserExample, ArcsStartAndEndOnTheCircleOfTheirCentre) {
    TempDir dir;
    ASSERT_TRUE(UnpackExample("laser", dir.Path));
    ASSERT_EQ(RunJob(dir.Path + "/work"), 0);
    const std::vector<std::string> lines = ReadAllLines(dir.Path + "/work/Progmain.prg");
    double x = 0, y = 0;
    int arcs = 0;
    for (const std::string& line : lines) {
        if (line.empty() || line[0] != 'N') continue;
        double ex = x, ey = y;
        const bool hasX = Address(line, 'X', ex);
        const bool hasY = Address(line, 'Y', ey);
        const bool arc = line.find("G02") != std::string::npos || line.find("G03") != std::string::npos;
        if (arc) {
            double i = 0, j = 0;
            ASSERT_TRUE(Address(line, 'I', i)) << line;
            ASSERT_TRUE(Address(line, 'J', j)) << line;
            const double cx = x + i, cy = y + j;
            const double startRadius = std::hypot(x - cx, y - cy);
            const double endRadius = std::hypot(ex - cx, ey - cy);
            EXPECT_NEAR(startRadius, endRadius, 0.002) << line;
            EXPECT_GT(startRadius, 0.0) << line;
            ++arcs;
        }
        if (hasX) x = ex;
        if (hasY) y = ey;
    }
    // The corner, the lead-in arc and four half circles of the contours; the two mounting holes
    // with their lead-in arcs (four), the two slots (three arcs each, the right-hand end in two
    // quarters) and the four corners of the rounded cut-out.
    EXPECT_EQ(arcs, 20);
}
