#include "job/finishing.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

struct FinishFixture : JobFixture {
    FinishFixture() : JobFixture({"PROGRAM_END=TRUE", "******"}) { CloseAllFiles(State); }
    void Program(const std::vector<std::string>& lines) { WriteAllLines(State.Job.ProgramFile, lines); }
    std::vector<std::string> Lines() { return ReadAllLines(State.Job.ProgramFile); }
};

}  // namespace

TEST(FamilyPasses, FamilyOneWithoutG83StaysAsItWas) {
    FinishFixture f;
    f.State.Tables.PostParam[9] = 1;
    f.Program({"%", "N10G90", "N20G03", "N30M30"});
    const std::string before = ReadAllBytes(f.State.Job.ProgramFile);
    FamilyPasses(f.State);
    EXPECT_EQ(ReadAllBytes(f.State.Job.ProgramFile), before);
    EXPECT_FALSE(FileExists(f.Path("Nisshinbo.prg")));
}

TEST(FamilyPasses, FamilyOneMovesCycleBodiesIntoNumberedSubroutines) {
    FinishFixture f;
    f.State.Tables.PostParam[9] = 1;
    // The main program up to its G03 line, then the subroutine text with its marks N50000 and
    // N60000, six-character block numbers.
    f.Program({"%", "T1", "N0010 G90", "N0020 G83 V", "N0030 G83 V", "N0040 G03", "N50000A", "N00001X1",
               "N60000B", "N00002X2", "N00003X3"});
    FamilyPasses(f.State);
    // The G03 line gives the first subroutine block number: 40 + 1 = 41. The first G83 takes
    // N50000 and its line up to N60000 (41, 42), the second N60000 to the end (43, 44, 45).
    EXPECT_EQ(f.Lines(), (std::vector<std::string>{"N0010 G90", "N0020 G83 V41 W42", "N0030 G83 V43 W45",
                                                   "N0040 G03", "N41A", "N42X1", "N43B", "N44X2", "N45X3"}));
}

TEST(FamilyPasses, FamilyNineAppendsTheEndMarkWithoutLineEnd) {
    FinishFixture f;
    f.State.Tables.PostParam[9] = 9;
    f.Program({"N1"});
    FamilyPasses(f.State);
    EXPECT_EQ(ReadAllBytes(f.State.Job.ProgramFile), "N1\r\n\x1a");
}

TEST(FamilyPasses, FamilyTenMovesEachG09LineUpButNotTheFirst) {
    FinishFixture f;
    f.State.Tables.PostParam[9] = 10;
    f.Program({"G09 A", "N1", "N2", "G09 B"});
    WriteAllLines(f.State.Job.PlatinoFile, {"SUB1", "G09 C"});
    FamilyPasses(f.State);
    EXPECT_EQ(f.Lines(), (std::vector<std::string>{"G09 A", "N1", "G09 B", "N2", "G09 C", "SUB1"}));
    EXPECT_FALSE(FileExists(f.State.Job.PlatinoFile));
}

TEST(MakeJobCopies, CopiesNeedTheJobDirectory) {
    FinishFixture f;
    f.Program({"N1"});
    WriteAllLines(f.State.Job.ReportFile, {"R"});
    f.State.Job.JobPath = f.Path("missing/JOB");
    EXPECT_THROW(MakeJobCopies(f.State), RunEnd);
    f.State.Job.JobPath = f.Path("JOB");
    MakeJobCopies(f.State);
    EXPECT_EQ(ReadAllBytes(f.Path("JOB.prg")), "N1\r\n");
    EXPECT_EQ(ReadAllBytes(f.Path("JOB.rpt")), "R\r\n");
}
