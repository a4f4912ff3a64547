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
