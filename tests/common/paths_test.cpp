#include "common/paths.h"

#include <gtest/gtest.h>

#include <fstream>

#include "common/fault.h"
#include "common/textfile.h"
#include "test_support.h"

using namespace tvx;

TEST(Paths, BackslashAndSlashAreBothSeparators) {
    TempDir dir;
    MakeDirectory(dir.Path + "\\Data\\Default");
    EXPECT_TRUE(DirectoryExists(dir.Path + "/Data/Default"));
    WriteAllLines(dir.Path + "\\Data\\Default\\a.txt", {"x"});
    EXPECT_TRUE(FileExists(dir.Path + "/Data/Default/a.txt"));
}
TEST(Paths, NamesAreFoundWithoutRegardToCaseWhenNotExact) {
    TempDir dir;
    WriteAllLines(dir.Path + "/progsubs.sub", {"SUBROUTINES=TRUE"});
    EXPECT_TRUE(FileExists(dir.Path + "/Progsubs.sub"));
    EXPECT_EQ(ReadAllLines(dir.Path + "\\PROGSUBS.SUB").at(0), "SUBROUTINES=TRUE");
    MakeDirectory(dir.Path + "/Data/Machine1");
    EXPECT_TRUE(DirectoryExists(dir.Path + "\\DATA\\machine1\\"));
}
TEST(Paths, ExactNameWinsOverOtherCase) {
    TempDir dir;
    std::ofstream(dir.Path + "/Job.txt") << "upper\r\n";
    std::ofstream(dir.Path + "/job.txt") << "lower\r\n";
    EXPECT_EQ(ReadAllLines(dir.Path + "/job.txt").at(0), "lower");
    EXPECT_EQ(ReadAllLines(dir.Path + "/Job.txt").at(0), "upper");
}
TEST(Paths, OpeningAMissingFileIsAFaultNamingTheFile) {
    TempDir dir;
    TextInput in;
    try {
        OpenTextInput(in, dir.Path + "\\Program.seq");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "File not found: " + dir.Path + "\\Program.seq");
    }
}
TEST(Paths, CopyDeleteAndExists) {
    TempDir dir;
    WriteAllLines(dir.Path + "/a.pst", {"PROGRAM_START=TRUE"});
    CopyFileTo(dir.Path + "/a.pst", dir.Path + "/Program.sb1");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/Program.sb1"), "PROGRAM_START=TRUE\r\n");
    DeleteFile(dir.Path + "/program.SB1");
    EXPECT_FALSE(FileExists(dir.Path + "/Program.sb1"));
    EXPECT_THROW(DeleteFile(dir.Path + "/Program.sb1"), RunEnd);
    EXPECT_THROW(CopyFileTo(dir.Path + "/none", dir.Path + "/x"), RunEnd);
    DeleteIfExists(dir.Path + "/none");
}
TEST(Paths, ListByWildcard) {
    TempDir dir;
    for (const char* name : {"PrflStg.1", "PrflStg.0", "prflstg.12", "MtrlStg.0", "PrflStgX"})
        WriteAllLines(dir.Path + "/" + name, {});
    const auto names = ListFiles(dir.Path, "PrflStg.*");
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "PrflStg.0");
    EXPECT_EQ(names[1], "PrflStg.1");
    EXPECT_EQ(names[2], "prflstg.12");
    EXPECT_TRUE(WildcardMatch("*.d?w", "Progmain.DRW"));
    EXPECT_FALSE(WildcardMatch("*.drw", "Progmain.drx"));
}
TEST(Paths, DriveReadyIsFalseWhenTheListingFails) {
    EXPECT_FALSE(DriveReady("Q:\\Projects"));
    EXPECT_FALSE(DriveReady(""));
    EXPECT_TRUE(DriveReady("./anything"));
}
TEST(Paths, WithSeparator) {
    EXPECT_EQ(WithSeparator("C:\\Data"), "C:\\Data\\");
    EXPECT_EQ(WithSeparator("/tmp/"), "/tmp/");
}
TEST(Paths, WritingFindsAnExistingFileOfOtherCase) {
    TempDir dir;
    WriteAllLines(dir.Path + "/Job.txt", {"first"});
    WriteAllLines(dir.Path + "/job.txt", {"second"});
    EXPECT_EQ(ListFiles(dir.Path, "*").size(), 1u);
    EXPECT_EQ(ReadAllLines(dir.Path + "/Job.txt").at(0), "second");
}
TEST(Paths, ListDirectoriesGivesSubdirectoriesOnlyInNameOrder) {
    TempDir dir;
    MakeDirectory(dir.Path + "/Zeta");
    MakeDirectory(dir.Path + "/alpha");
    MakeDirectory(dir.Path + "/Beta");
    WriteAllLines(dir.Path + "/Aaa.txt", {});
    const auto names = ListDirectories(dir.Path, "*");
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "alpha");
    EXPECT_EQ(names[1], "Beta");
    EXPECT_EQ(names[2], "Zeta");
    EXPECT_EQ(ListDirectories(dir.Path, "b*").size(), 1u);
    EXPECT_TRUE(ListDirectories(dir.Path + "/none", "*").empty());
}
TEST(Paths, AtomicCopyLeavesNoTemporaryAndNeedsTheDirectory) {
    TempDir dir;
    WriteAllLines(dir.Path + "/a.prg", {"N1"});
    CopyFileAtomically(dir.Path + "/a.prg", dir.Path + "/JOB.prg");
    EXPECT_EQ(ReadAllBytes(dir.Path + "/JOB.prg"), "N1\r\n");
    EXPECT_EQ(ListFiles(dir.Path, "*.part").size(), 0u);
    EXPECT_THROW(CopyFileAtomically(dir.Path + "/a.prg", dir.Path + "/missing/JOB.prg"), RunEnd);
    EXPECT_THROW(CopyFileAtomically(dir.Path + "/none.prg", dir.Path + "/JOB.prg"), RunEnd);
}
