#include "tools/demo_tool.h"

#include <gtest/gtest.h>

#include <sstream>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "test_support.h"

using namespace tvx;

TEST(DemoCommand, UnpacksThePunchExampleAndRunsItsJob) {
    TempDir dir;
    std::ostringstream out;
    EXPECT_EQ(DemoCommand("punch", dir.Path + "/demo", out), 0);
    EXPECT_NE(out.str().find("First lines of the program:"), std::string::npos);
    const std::string program = ReadAllBytes(dir.Path + "/demo/work/Progmain.prg");
    EXPECT_EQ(program.substr(0, 20), "%\r\nO4711(BRACKET-01)");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/demo/jobs/BRACKET-01.prg"), program);
    EXPECT_TRUE(FileExists(dir.Path + "/demo/jobs/BRACKET-01.rpt"));
}

TEST(DemoCommand, ToolDrawingsKeptInJsonAreUnpackedAsDrawings) {
    TempDir dir;
    ASSERT_TRUE(UnpackExample("punch", dir.Path));
    const std::string folder = dir.Path + "/data/Shapes/TP30/Rectangle/Inside/10x40/Full Library/";
    ASSERT_TRUE(FileExists(folder + "1.drw"));
    EXPECT_FALSE(FileExists(folder + "1.drw.json"));
    EXPECT_TRUE(FileExists(folder + "Tooling.lkp"));
    // A header and one row of hits: two records of 518 bytes.
    const std::string drawing = ReadAllBytes(folder + "1.drw");
    EXPECT_EQ(drawing.size(), 2u * 518u);
    EXPECT_EQ(drawing.substr(0, 2), std::string("\x01\x00", 2));
    // The job's own drawing is still built from drawing.json, which stays beside it.
    EXPECT_TRUE(FileExists(dir.Path + "/work/Progmain.drw"));
    EXPECT_TRUE(FileExists(dir.Path + "/drawing.json"));
}

TEST(DemoCommand, UnknownExampleIsAFaultNamingTheExamples) {
    TempDir dir;
    std::ostringstream out;
    try {
        DemoCommand("lathe", dir.Path, out);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_NE(e.Text.find("punch"), std::string::npos);
    }
}
