#include "definition/layouts.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "definition/engine_rig.h"

using namespace tvx;

using Lines = std::vector<std::string>;

namespace {

const Lines LayoutPst = {"HEAD=TRUE", "START", "[TOOL_LAYOUT]", "END", "******", ""};
const Lines LayoutWrd = {"TNAME [S27] [CONV=*]", "SIZE [P60] [FORMAT=D1] [CONV=S]", "STN [S25] [CONV=T]", "******"};
const Lines LayoutLyt = {"TOOL_LAYOUT=TRUE", "A1[TNAME] [SIZE]", "B1B-[TNAME] [STN]", "******"};

void Tools(RunState& state) {
    auto& tools = state.Machine.TurretTools;
    tools.resize(3);
    tools[1].ToolText1 = "label1";
    tools[1].ToolText2 = "01";
    tools[2].ToolText1 = "label2";
    tools[2].ToolText2 = "02";
}

}  // namespace

TEST(Layouts, TemplateLinePrintsOnceForEachJobSequenceLine) {
    EngineRig rig(LayoutPst, LayoutWrd, LayoutLyt,
                  {"Title", "A1,RO10,10,0,0,0,0,1,1", "B1,SQ5,5,5,0,0,0,2,2", "******"});
    Tools(rig.State);
    rig.Write("HEAD");
    EXPECT_EQ(rig.State.Engine.LayoutMode, 0);
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"START", "RO10 S10.0", "B-SQ5 02", "END"}));  // the S text replaces the CONV text
    const ValueTables& t = rig.State.Tables;
    EXPECT_EQ(t.PostParam[60], 5.0f);
    EXPECT_EQ(t.PostParam[61], 5.0f);
    EXPECT_EQ(t.PostParam[66], 2.0f);
    EXPECT_EQ(t.PostParam[69], 2.0f);
    EXPECT_EQ(t.PostText[26], "label2");
    EXPECT_EQ(t.PostText[25], "");  // read by [S25]
}

TEST(Layouts, EmptyJobSequencePrintsNoLayoutLine) {
    EngineRig rig(LayoutPst, LayoutWrd, LayoutLyt, {"Title", "******"});
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"START", "END"}));
}

TEST(Layouts, StarsWithBlanksAroundThemEndTheLayout) {
    EngineRig rig(LayoutPst, LayoutWrd, LayoutLyt, {"Title", "A1,RO10,10,0,0,0,0,1,1", "  ******  ", "A1,XX,1,0,0,0,0,1,1"});
    Tools(rig.State);
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"START", "RO10 S10.0", "END"}));
}

TEST(Layouts, TagInFrontOfTheLayoutTagPrintsOnItsOwnLineAndTextBehindIsLost) {
    EngineRig rig({"HEAD=TRUE", "X[HDR][TOOL_LAYOUT] gone", "END", "******", ""},
                  {"HDR [P1] [FORMAT=D0] [CONV=H]", "TNAME [S27] [CONV=*]", "******"}, {"TOOL_LAYOUT=TRUE", "A1=[TNAME]", "******"},
                  {"Title", "A1,RO10,10,0,0,0,0,1,1", "******"});
    Tools(rig.State);
    rig.State.Tables.PostParam[1] = 7;
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"XH7", "=RO10", "END"}));
}

TEST(Layouts, KeyIsTheFirstTwoCharactersAndTheSearchGoesOnIntoLaterSections) {
    EngineRig rig({"HEAD=TRUE", "[TURRET_LAYOUT]", "******", ""}, {"TNAME [S27] [CONV=*]", "******"},
                  {"TOOL_LAYOUT=TRUE", "A1tool [TNAME]", "******", "TURRET_LAYOUT=TRUE", "A1turret [TNAME]", "******",
                   "C1later [TNAME]", "******"},
                  {"Title", "A1x,RO10,10,0,0,0,0,1,1", "C1,SQ5,5,5,0,0,0,2,2", "******"});
    Tools(rig.State);
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (Lines{"turret RO10", "later SQ5"}));
}

TEST(Layouts, TimeLayoutCopiesTheTimingRowOfTheStation) {
    EngineRig rig({"HEAD=TRUE", "[TIME_LAYOUT]", "******", ""}, {"HITS [P204] [FORMAT=D0] [CONV=H]", "******"},
                  {"TIME_LAYOUT=TRUE", "A1[HITS]", "******"}, {"Title", "A1,RO10,10,0,0,0,0,1,2", "******"});
    Tools(rig.State);
    rig.State.Job.ToolTimes[2] = {0, 17, 1, 2, 3};
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), Lines{"H17"});
    EXPECT_EQ(rig.State.Tables.PostParam[207], 3.0f);
}

TEST(Layouts, LayoutInReportModePrintsAnEmptyLineAtItsEnd) {
    EngineRig rig({"HEAD=TRUE", "[REPORT_LAYOUT]", "******", ""}, {"TNAME [S27] [CONV=*]", "******"},
                  {"REPORT_LAYOUT=TRUE", "A1Tool  [TNAME]", "******"}, {"Title", "A1,RO10,10,0,0,0,0,1,1", "******"});
    Tools(rig.State);
    rig.State.Engine.ReportMode = true;
    rig.Write("HEAD");
    rig.CloseAll();
    EXPECT_EQ(rig.Report(), (Lines{"", "Tool  RO10", ""}));
}

TEST(Layouts, MissingKeyIsAFaultOfTheRunWithAClearMessage) {
    EngineRig rig(LayoutPst, LayoutWrd, LayoutLyt, {"Title", "Z9,RO10,10,0,0,0,0,1,1", "******"});
    Tools(rig.State);
    try {
        rig.Write("HEAD");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_EQ(end.Text, "Layout line of the key \"Z9\" not found behind TOOL_LAYOUT in file " + rig.Path("def.lyt"));
    }
}

TEST(Layouts, FalseSectionIsAFaultOfTheRunWithAClearMessage) {
    EngineRig rig(LayoutPst, LayoutWrd, {"TOOL_LAYOUT=TRUE IF [P1=1]", "A1x", "******"},
                  {"Title", "A1,RO10,10,0,0,0,0,1,1", "******"});
    Tools(rig.State);
    try {
        rig.Write("HEAD");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        EXPECT_NE(end.Text.find("TOOL_LAYOUT"), std::string::npos);
    }
}

TEST(Layouts, SectionOnlyInTheLastLineOfTheLayoutFileIsNotFound) {
    EngineRig rig(LayoutPst, LayoutWrd, {"A1x", "******", "TOOL_LAYOUT=TRUE"}, {"Title", "A1,RO10,10,0,0,0,0,1,1", "******"});
    Tools(rig.State);
    EXPECT_EQ(EngineRig::EndText([&] { rig.Write("HEAD"); }),
              AbortText("Reserved Word - TOOL_LAYOUT not found in file " + rig.Path("def.lyt")));
}

TEST(Layouts, TurretToolIndexBeyondTheTableIsAnIndexFault) {
    EngineRig rig(LayoutPst, LayoutWrd, LayoutLyt, {"Title", "A1,RO10,10,0,0,0,0,1,7", "******"});
    Tools(rig.State);
    try {
        rig.Write("HEAD");
        FAIL();
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Text, "Index out of range: TurretTools(7)");
    }
}

TEST(NextLayoutField, ShortLineGivesItsLastFieldAgain) {
    std::string line = " 5, 7 ";
    std::string field = "old";
    EXPECT_EQ(NextLayoutField(line, field), 5.0);
    EXPECT_EQ(field, "5");
    EXPECT_EQ(NextLayoutField(line, field), 7.0);
    EXPECT_EQ(field, "7");
    EXPECT_EQ(NextLayoutField(line, field), 7.0);
    EXPECT_EQ(field, "7");
}

TEST(NextLayoutField, EmptyLineGivesZeroAndKeepsTheField) {
    std::string line = "   ";
    std::string field = "kept";
    EXPECT_EQ(NextLayoutField(line, field), 0.0);
    EXPECT_EQ(field, "kept");
}

TEST(NextLayoutField, FieldKeepsItsBlanksBeforeTheComma) {
    std::string line = "A1 , RO10 ,3";
    std::string field;
    NextLayoutField(line, field);
    EXPECT_EQ(field, "A1 ");
    NextLayoutField(line, field);
    EXPECT_EQ(field, "RO10 ");
    EXPECT_EQ(NextLayoutField(line, field), 3.0);
}
