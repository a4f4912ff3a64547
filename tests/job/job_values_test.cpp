#include "job/job_values.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

struct ValuesFixture : JobFixture {
    ValuesFixture() : JobFixture({"PROGRAM_START=TRUE", "******"}) {
        State.Job.JobTitle = " Title ";
        State.Job.JobName = "JOB";
        State.Job.FixedClock = "21-11-2026 07:05";
        State.Machine.StationCount = 4;
        WriteAllLines(State.Job.SeqFile, {"\"SEQ TITLE\",x", "******"});
        WriteAllLines(State.Job.WorkDir + "program.usr", {"1,ONE", "no comma", "3,a,b", "******"});
        Timing({"******"});
    }
    void Timing(const std::vector<std::string>& lines) { WriteAllLines(State.Machine.MachineStem + "tme", lines); }
};

}  // namespace

TEST(InitJobValues, TextsOfTheJobAndTheClock) {
    ValuesFixture f;
    InitJobValues(f.State);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostText[1], "Title");
    EXPECT_EQ(t.PostText[2], "JOB");
    EXPECT_EQ(t.PostText[13], "SEQ TITLE");
    EXPECT_EQ(t.PostText[14], "21-11-2026");
    EXPECT_EQ(t.PostText[15], "07:05");
    EXPECT_EQ(t.PostMachine[100], 100.0f);
    EXPECT_EQ(t.PostMemo[101], 100.0f);
    EXPECT_EQ(f.State.Job.ToolTimes.size(), 5u);
}

TEST(InitJobValues, UserFileLinesGiveTheTextBehindTheFirstComma) {
    ValuesFixture f;
    InitJobValues(f.State);
    EXPECT_EQ(f.State.Tables.PostUserText[1], "ONE");
    EXPECT_EQ(f.State.Tables.PostUserText[2], "no comma");
    EXPECT_EQ(f.State.Tables.PostUserText[3], "a,b");
}

TEST(InitJobValues, UserFileOfMoreThan201LinesIsAnIndexFault) {
    ValuesFixture f;
    std::vector<std::string> lines(202, "x,y");
    lines.push_back("******");
    WriteAllLines(f.State.Job.WorkDir + "program.usr", lines);
    try {
        InitJobValues(f.State);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Index out of range: PostUserText(202)");
    }
}

TEST(InitJobValues, TimingLinesAssignByTheirLetter) {
    ValuesFixture f;
    f.Timing({"P12,Speed:3.5", "M7,Angle:-2", "V3,Flag:1", "X9,Other:5", "******"});
    InitJobValues(f.State);
    EXPECT_EQ(f.State.Tables.PostParam[12], 3.5f);
    EXPECT_EQ(f.State.Tables.PostMachine[7], -2.0f);
    EXPECT_EQ(f.State.Tables.PostVar[3], 1.0f);
}

TEST(InitJobValues, TimingCommaBehindTheColonStillCountsTheFirstComma) {
    ValuesFixture f;
    // The colon stands before the comma: the index text is "4:7" (leading number 4), the
    // value is behind the colon: "7,x" reads 7.
    f.Timing({"P4:7,x", "******"});
    InitJobValues(f.State);
    EXPECT_EQ(f.State.Tables.PostParam[4], 7.0f);
    f.Timing({"P5,a:2,5", "******"});
    InitJobValues(f.State);
    EXPECT_EQ(f.State.Tables.PostParam[5], 2.0f);  // "2,5" reads 2
}

TEST(InitJobValues, TimingLineWithoutCommaOrColonIsIllegal) {
    ValuesFixture f;
    f.Timing({"P4 no colon", "******"});
    try {
        InitJobValues(f.State);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\n'ILLEGAL FORMAT IN TIMING FILE'\n\nProgram Aborted");
    }
}

TEST(InitJobValues, TimingFileWithoutEndMarkRunsIntoTheEndOfTheFile) {
    ValuesFixture f;
    f.Timing({"P4,a:1"});
    try {
        InitJobValues(f.State);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Input past end of file: " + f.State.Machine.MachineStem + "tme");
    }
}

TEST(InitJobValues, TimingIndexAboveTheTableIsAFault) {
    ValuesFixture f;
    f.Timing({"M201,x:1", "******"});
    EXPECT_THROW(InitJobValues(f.State), RunEnd);
}

TEST(InitJobValues, SheetTextsMetricAndImperial) {
    ValuesFixture f;
    DrawRecord header;
    header.RecordCount = 1;
    header.Value[1] = 2500;
    header.Value[2] = 1250.5f;
    header.Value[3] = 1.5f;
    header.Value[7] = 0.25f;
    ReadDrawingHeader(f.State, header);
    InitJobValues(f.State);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(t.PostText[3], "2500");
    EXPECT_EQ(t.PostText[4], "1250.5");
    EXPECT_EQ(t.PostText[18], "1.5");
    EXPECT_EQ(t.PostText[6], ".25");
    EXPECT_EQ(t.PostUserText[103], "2500");
    EXPECT_EQ(t.PostUserText[106], ".25");
    f.State.Machine.ImperialUnits = true;
    InitJobValues(f.State);
    EXPECT_EQ(t.PostText[3], "98.43");  // 2500 / 25.4 = 98.4252, two places
    EXPECT_EQ(t.PostText[18], ".06");
}

TEST(ClockTexts, DateAndTimeForms) {
    RunState state;
    std::string date, time;
    ClockTexts(state, date, time);
    ASSERT_EQ(date.size(), 10u);
    EXPECT_EQ(date[2], '-');
    EXPECT_EQ(date[5], '-');
    ASSERT_EQ(time.size(), 5u);
    EXPECT_EQ(time[2], ':');
}
