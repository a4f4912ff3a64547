// The lookups of a run: each folder listed once, and what the system itself makes, renames and
// deletes seen at once.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "test_support.h"

using namespace tvx;

namespace {

// Makes a file behind the system's back, as another program would.
void MadeByAnotherProgram(const std::string& path) { std::ofstream(path) << "x"; }

}  // namespace

TEST(LookupCache, AFileTheSystemWritesIsFoundAtOnce) {
    TempDir dir;
    LookupCacheScope lookups;
    EXPECT_FALSE(FileExists(dir.Path + "/Stage.1"));
    WriteAllLines(dir.Path + "/Stage.1", {"x"});
    EXPECT_TRUE(FileExists(dir.Path + "/Stage.1"));
    EXPECT_TRUE(FileExists(dir.Path + "\\STAGE.1"));
    EXPECT_EQ(ListFiles(dir.Path, "stage.*"), (std::vector<std::string>{"Stage.1"}));
}

TEST(LookupCache, AFileTheSystemRenamesIsFoundUnderItsNewNameOnly) {
    TempDir dir;
    WriteAllLines(dir.Path + "/Old.txt", {"x"});
    LookupCacheScope lookups;
    EXPECT_TRUE(FileExists(dir.Path + "/Old.txt"));
    RenameFile(dir.Path + "/old.TXT", dir.Path + "/New.txt");
    EXPECT_FALSE(FileExists(dir.Path + "/Old.txt"));
    EXPECT_TRUE(FileExists(dir.Path + "/new.txt"));
    EXPECT_EQ(FindPath(dir.Path + "/NEW.TXT"), dir.Path + "/New.txt");
}

TEST(LookupCache, AFileTheSystemDeletesIsGoneAtOnce) {
    TempDir dir;
    WriteAllLines(dir.Path + "/Gone.txt", {"x"});
    LookupCacheScope lookups;
    EXPECT_TRUE(FileExists(dir.Path + "/Gone.txt"));
    DeleteFile(dir.Path + "/gone.txt");
    EXPECT_FALSE(FileExists(dir.Path + "/Gone.txt"));
    EXPECT_TRUE(ListFiles(dir.Path, "*").empty());
    DeleteIfExists(dir.Path + "/Gone.txt");  // nothing there: nothing happens
    WriteAllLines(dir.Path + "/Gone.txt", {"back"});
    EXPECT_TRUE(FileExists(dir.Path + "/Gone.txt"));
    DeleteIfExists(dir.Path + "/GONE.TXT");
    EXPECT_FALSE(FileExists(dir.Path + "/Gone.txt"));
}

TEST(LookupCache, CopiesAndDrawingsTheSystemMakesAreFoundAtOnce) {
    TempDir dir;
    WriteAllLines(dir.Path + "/a.txt", {"x"});
    LookupCacheScope lookups;
    EXPECT_FALSE(FileExists(dir.Path + "/b.txt"));
    EXPECT_FALSE(FileExists(dir.Path + "/c.txt"));
    EXPECT_FALSE(FileExists(dir.Path + "/d.drw"));
    EXPECT_FALSE(FileExists(dir.Path + "/e.txt"));
    CopyFileTo(dir.Path + "/a.txt", dir.Path + "/b.txt");
    CopyFileAtomically(dir.Path + "/a.txt", dir.Path + "/c.txt");
    DrawingFile drawing;
    OpenDrawing(drawing, dir.Path + "/d.drw");
    CloseDrawing(drawing);
    WriteFileAtomically(dir.Path + "/e.txt", "bytes");
    for (const char* name : {"/b.txt", "/c.txt", "/d.drw", "/e.txt"}) EXPECT_TRUE(FileExists(dir.Path + name)) << name;
    EXPECT_FALSE(FileExists(dir.Path + "/c.txt.part"));
    EXPECT_FALSE(FileExists(dir.Path + "/e.txt.part"));
}

TEST(LookupCache, AFolderTheSystemMakesIsFoundWithItsFiles) {
    TempDir dir;
    LookupCacheScope lookups;
    EXPECT_FALSE(DirectoryExists(dir.Path + "/Jobs/Week 1"));
    MakeDirectory(dir.Path + "\\Jobs\\Week 1");
    EXPECT_TRUE(DirectoryExists(dir.Path + "/jobs/week 1"));
    EXPECT_TRUE(DirectoryExists(dir.Path + "/Jobs/Week 1/"));
    WriteAllLines(dir.Path + "/Jobs/Week 1/JOB.prg", {"x"});
    EXPECT_TRUE(FileExists(dir.Path + "/JOBS/WEEK 1/job.PRG"));
    EXPECT_EQ(ListDirectories(dir.Path, "*"), (std::vector<std::string>{"Jobs"}));
}

TEST(LookupCache, ANameIsFoundWithoutRegardToCaseAsWithoutTheCache) {
    TempDir dir;
    // Two spellings of one name (the system's own writer would write the first one again).
    MadeByAnotherProgram(dir.Path + "/progsubs.SUB");
    MadeByAnotherProgram(dir.Path + "/PROGSUBS.sub");
    MakeDirectory(dir.Path + "/Data");
    const std::vector<std::string> asked{dir.Path + "/Progsubs.sub", dir.Path + "\\progsubs.sub",
                                         dir.Path + "/DATA/none.txt", dir.Path + "/data/", dir.Path + "/Missing/x"};
    std::vector<std::string> plain;
    for (const std::string& path : asked) plain.push_back(FindPath(path));
    LookupCacheScope lookups;
    for (size_t i = 0; i < asked.size(); ++i) {
        EXPECT_EQ(FindPath(asked[i]), plain[i]) << asked[i];
        EXPECT_EQ(FindPath(asked[i]), plain[i]) << asked[i] << " (asked again)";
    }
    // Of two spellings the first in byte order is taken.
    EXPECT_EQ(FindPath(dir.Path + "/Progsubs.sub"), dir.Path + "/PROGSUBS.sub");
}

TEST(LookupCache, AMissingFileIsLookedForInAFolderListedOnce) {
    TempDir dir;
    LookupCacheScope lookups;
    EXPECT_FALSE(FileExists(dir.Path + "/PnchStg.1"));
    // Another program's file is not seen during the run: the folder was listed already.
    MadeByAnotherProgram(dir.Path + "/PnchStg.1");
    EXPECT_FALSE(FileExists(dir.Path + "/PnchStg.1"));
}

TEST(LookupCache, OutsideAScopeEveryLookupAsksTheFileSystem) {
    TempDir dir;
    {
        LookupCacheScope lookups;
        EXPECT_FALSE(FileExists(dir.Path + "/Late.txt"));
    }
    MadeByAnotherProgram(dir.Path + "/Late.txt");
    EXPECT_TRUE(FileExists(dir.Path + "/Late.txt"));
    LookupCacheScope again;  // a new scope learns anew
    EXPECT_TRUE(FileExists(dir.Path + "/late.TXT"));
}

TEST(LookupCache, AFolderIsNotAFileAndAFileIsNotAFolder) {
    TempDir dir;
    MakeDirectory(dir.Path + "/Sub");
    WriteAllLines(dir.Path + "/File", {"x"});
    LookupCacheScope lookups;
    EXPECT_FALSE(FileExists(dir.Path + "/Sub"));
    EXPECT_TRUE(DirectoryExists(dir.Path + "/Sub"));
    EXPECT_FALSE(DirectoryExists(dir.Path + "/File"));
    EXPECT_TRUE(FileExists(dir.Path + "/File"));
    EXPECT_TRUE(DirectoryExists(dir.Path));
    EXPECT_FALSE(DirectoryExists(dir.Path + "/Sub/Deeper"));
}

TEST(LookupCache, DeletingAMissingFileIsStillTheFileFault) {
    TempDir dir;
    LookupCacheScope lookups;
    try {
        DeleteFile(dir.Path + "/none.txt");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Text, "File not found: " + dir.Path + "/none.txt");
    }
}

// ---- LookupGeneration ----------------------------------------------------------------------

TEST(LookupGeneration, OutsideAScopeItIsZero) {
    EXPECT_EQ(LookupGeneration(), 0u);
    TempDir dir;
    WriteAllLines(dir.Path + "/a.txt", {"x"});
    EXPECT_EQ(LookupGeneration(), 0u);
}

TEST(LookupGeneration, LookupsLeaveItAsItIs) {
    TempDir dir;
    WriteAllLines(dir.Path + "/a.txt", {"x"});
    LookupCacheScope lookups;
    const uint64_t at = LookupGeneration();
    EXPECT_NE(at, 0u);
    EXPECT_TRUE(FileExists(dir.Path + "/a.txt"));
    EXPECT_FALSE(FileExists(dir.Path + "/b.txt"));
    EXPECT_EQ(ListFiles(dir.Path, "*").size(), 1u);
    EXPECT_EQ(FindPath(dir.Path + "/A.TXT"), dir.Path + "/a.txt");
    EXPECT_EQ(LookupGeneration(), at);
}

TEST(LookupGeneration, EveryFileTheSystemMakesOrDeletesMovesItOn) {
    TempDir dir;
    LookupCacheScope lookups;
    uint64_t at = LookupGeneration();
    auto movedOn = [&at] {
        const uint64_t now = LookupGeneration();
        const bool moved = now != at;
        at = now;
        return moved;
    };
    WriteAllLines(dir.Path + "/PnchStg.3", {"******"});
    EXPECT_TRUE(movedOn());
    CopyFileTo(dir.Path + "/PnchStg.3", dir.Path + "/PnchStg.4");
    EXPECT_TRUE(movedOn());
    RenameFile(dir.Path + "/PnchStg.4", dir.Path + "/PnchStg.5");
    EXPECT_TRUE(movedOn());
    DeleteFile(dir.Path + "/PnchStg.5");
    EXPECT_TRUE(movedOn());
    {
        DrawingFile made;
        OpenDrawing(made, dir.Path + "/Shape.drw");
    }
    EXPECT_TRUE(movedOn());
    MakeDirectory(dir.Path + "/Folder");
    EXPECT_TRUE(movedOn());
    NoteFileMade(dir.Path + "/Other.txt");
    EXPECT_TRUE(movedOn());
    EXPECT_FALSE(movedOn());
}

// A number remembered in one scope is never the number of a later one.
TEST(LookupGeneration, ANewScopeHasANewNumber) {
    uint64_t first = 0;
    {
        LookupCacheScope lookups;
        first = LookupGeneration();
    }
    LookupCacheScope again;
    EXPECT_NE(LookupGeneration(), first);
    EXPECT_NE(LookupGeneration(), 0u);
}
