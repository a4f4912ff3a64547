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

// The row of library tooling in the punch example, worked out by hand: after the obround's hit
// at 850, 300 (tool 4) come the slot (tool 1 of Rectangle\Inside\10x40: a row from 0, -15 to
// 0, 15 at pitch 7.5, turned by 30 - 0 degrees and moved to 150, 450: from 157.5, 437.0096 along
// 120 degrees), the hole of 40 (twelve hits on radius 15 about 350, 450 from 0 degrees, 30
// apart) and the vent (a 3 x 3 grid of pitch 15 from 535, 435, row by row, back and forth).
TEST(DemoCommand, PunchExamplePlacesItsLibraryTooling) {
    TempDir dir;
    std::ostringstream out;
    ASSERT_EQ(DemoCommand("punch", dir.Path + "/demo", out), 0);
    const std::string program = ReadAllBytes(dir.Path + "/demo/work/Progmain.prg");
    const std::string row =
        "N390X850.000\r\n"
        "N400T1X157.500Y437.010\r\nN410X153.750Y443.505\r\nN420X150.000Y450.000\r\n"
        "N430X146.250Y456.495\r\nN440X142.500Y462.990\r\n"
        "N450X365.000Y450.000\r\nN460X362.990Y457.500\r\nN470X357.500Y462.990\r\n"
        "N480X350.000Y465.000\r\nN490X342.500Y462.990\r\nN500X337.010Y457.500\r\n"
        "N510X335.000Y450.000\r\nN520X337.010Y442.500\r\nN530X342.500Y437.010\r\n"
        "N540X350.000Y435.000\r\nN550X357.500Y437.010\r\nN560X362.990Y442.500\r\n"
        "N570X535.000Y435.000\r\nN580X550.000\r\nN590X565.000\r\n"
        "N600Y450.000\r\nN610X550.000\r\nN620X535.000\r\n"
        "N630Y465.000\r\nN640X550.000\r\nN650X565.000\r\n"
        "N660G04P0.50\r\n";
    EXPECT_NE(program.find(row), std::string::npos) << program;
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
