// `torvanex library`: path, list and fits.
#include "tools/library_tool.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/installation.h"
#include "test_support.h"

using namespace tvx;

namespace {

struct Said {
    int Status = -1;
    std::string Out;
    std::string Err;
};

Said List(const std::string& place) {
    std::ostringstream out, err;
    Said said;
    said.Status = LibraryListCommand(place, out, err);
    said.Out = out.str();
    said.Err = err.str();
    return said;
}

Said Fits(const std::string& place, const std::string& number, const std::string& angle) {
    std::ostringstream out, err;
    Said said;
    said.Status = LibraryFitsCommand(place, number, angle, out, err);
    said.Out = out.str();
    said.Err = err.str();
    return said;
}

Said Path(const LibraryPathOptions& options) {
    std::ostringstream out, err;
    Said said;
    try {
        said.Status = LibraryPathCommand(options, out, err);
    } catch (const RunEnd& end) {
        said.Status = end.Status;
        err << end.Text;
    }
    said.Out = out.str();
    said.Err = err.str();
    return said;
}

// The last line of a text that ends with a line end.
std::string LastLine(const std::string& text) {
    std::string t = text;
    if (!t.empty() && t.back() == '\n') t.pop_back();
    const auto at = t.rfind('\n');
    return at == std::string::npos ? t : t.substr(at + 1);
}

// A library folder with a Tooling.lkp of the given content.
std::string LibraryFolder(const TempDir& dir, const std::string& content) {
    const std::string folder = dir.Path + "/Rectangle/Outside/20x50/Full Library";
    MakeDirectory(folder);
    WriteFileAtomically(folder + "/Tooling.lkp", content);
    return folder;
}

const char* const ThreeTools =
    "\"Square 20\",7,45,90,\"7b.drw\"\r\n"
    "\"Round 10\",4,0,0,\"4.drw\"\r\n"
    "\"Square 20 old\",7,0,90,\"7a.drw\"\r\n"
    "******\r\n";

// An installation of one machine "M1" of the given kind; not a full installation, so that no
// material is read.
void OneMachine(const Installation& in, const std::string& kind) {
    in.Config("1", "");
    in.MachineList({"1,\"Maker\",\"M1\",\"\",\"\"", "******"});
    in.Machine("M1", kind);
}

int RunTorvanex(const TempDir& dir, const std::string& arguments) {
    const std::string command = std::string("'") + TORVANEX_EXE + "' " + arguments + " >'" + dir.Path + "/stdout' 2>'" +
                                dir.Path + "/stderr'";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

// ---- list -----------------------------------------------------------------------------------

TEST(LibraryList, PrintsTheEntriesSortedByFileAndWhichWinsForANumberListedTwice) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    const Said said = List(folder);
    EXPECT_EQ(said.Status, 0) << said.Err;
    EXPECT_EQ(said.Out, folder + "/Tooling.lkp: 3 entries, sorted by file as a run reads them\n"
                                 "number 4: \"Round 10\", angle 0, step 360, file \"4.drw\"\n"
                                 "number 7: \"Square 20 old\", angle 0, step 90, file \"7a.drw\"\n"
                                 "number 7: \"Square 20\", angle 45, step 90, file \"7b.drw\"\n"
                                 "Number 7 is listed 2 times: a run takes the last of them, \"Square 20\" with file "
                                 "\"7b.drw\".\n");
}

TEST(LibraryList, TakesTheLookupFileItselfToo) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    EXPECT_EQ(List(folder + "/Tooling.lkp").Out, List(folder).Out);
}

TEST(LibraryList, EmptyListSaysThatTheDefaultEntryIsTaken) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, "******\r\n");
    const Said said = List(folder);
    EXPECT_EQ(said.Status, 0);
    EXPECT_EQ(said.Out,
              folder + "/Tooling.lkp has no entries: every tool number gives the default entry (angle 0, step 0.5).\n");
}

TEST(LibraryList, MissingLookupFileIsNotMade) {
    TempDir dir;
    const std::string folder = dir.Path + "/Lib";
    MakeDirectory(folder);
    const Said said = List(folder);
    EXPECT_EQ(said.Status, 2);
    EXPECT_EQ(said.Err, "No Tooling.lkp in " + folder + "\n");
    EXPECT_FALSE(FileExists(folder + "/Tooling.lkp"));
    EXPECT_EQ(List(dir.Path + "/nowhere").Err, "No Tooling.lkp in " + dir.Path + "/nowhere\n");
    EXPECT_EQ(List(dir.Path + "/nowhere").Status, 2);
}

TEST(LibraryList, BrokenFileSaysWhyAndThatARunTreatsItAsEmpty) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, "\"a\",1,0,90,\"a\"\r\n\"b\",2,0,90,\"b\"\r\n\"c\",40000,0,90,\"c\"\r\n");
    const Said said = List(folder);
    EXPECT_EQ(said.Status, 1);
    EXPECT_EQ(said.Out, "");
    EXPECT_EQ(said.Err, folder + "/Tooling.lkp is broken: line 3: tool number 40000 is beyond 16 bits\n"
                                 "A run treats it as an empty list: every tool number gives the default entry "
                                 "(angle 0, step 0.5).\n");
}

// ---- fits -----------------------------------------------------------------------------------

TEST(LibraryFits, ListedToolFitsAtItsStep) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    const Said said = Fits(folder, "7", "135");
    EXPECT_EQ(said.Status, 0) << said.Err;
    EXPECT_EQ(said.Out, "Tool 7: number 7: \"Square 20\", angle 45, step 90, file \"7b.drw\"\n"
                        "At the angle 135:\n"
                        "fits\n");
    EXPECT_EQ(LastLine(Fits(folder, "7", "100").Out), "does not fit");
    EXPECT_EQ(Fits(folder, "7", "100").Status, 0);
}

TEST(LibraryFits, UnlistedToolTakesTheDefaultEntry) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    const Said said = Fits(folder, "9", "0.5");
    EXPECT_EQ(said.Status, 0);
    EXPECT_EQ(said.Out, "Tool 9 is not listed: the default entry is taken (angle 0, step 0.5).\n"
                        "At the angle 0.5:\n"
                        "fits\n");
}

TEST(LibraryFits, StepZeroFitsOnlyTheOwnAngle) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    EXPECT_EQ(LastLine(Fits(folder, "4", "0").Out), "fits");
    EXPECT_EQ(LastLine(Fits(folder, "4", "90").Out), "does not fit");
}

TEST(LibraryFitsLiteral, FitsTakesTheAngleAsGivenWithoutNormalising) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    EXPECT_EQ(LastLine(Fits(folder, "7", "315").Out), "fits");
    EXPECT_EQ(LastLine(Fits(folder, "7", "-45").Out), "does not fit");
    EXPECT_EQ(LastLine(Fits(folder, "7", "405").Out), "does not fit");
}

TEST(LibraryFits, BrokenFileIsSaidAndTheDefaultEntryTaken) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, "\"c\",40000,0,90,\"c\"\r\n");
    const Said said = Fits(folder, "40", "0");
    EXPECT_EQ(said.Status, 0);
    EXPECT_EQ(said.Out, folder + "/Tooling.lkp is broken (line 1: tool number 40000 is beyond 16 bits): a run "
                                 "treats it as empty.\n"
                                 "Tool 40 is not listed: the default entry is taken (angle 0, step 0.5).\n"
                                 "At the angle 0:\n"
                                 "fits\n");
}

TEST(LibraryFits, MissingFolderOrLookupFileIsStatusTwo) {
    TempDir dir;
    const Said noFolder = Fits(dir.Path + "/nowhere", "1", "0");
    EXPECT_EQ(noFolder.Status, 2);
    EXPECT_EQ(noFolder.Err, "No folder " + dir.Path + "/nowhere\n");
    const Said noFile = Fits(dir.Path, "1", "0");
    EXPECT_EQ(noFile.Status, 2);
    EXPECT_EQ(noFile.Err, "No Tooling.lkp in " + dir.Path + "\n");
    EXPECT_FALSE(FileExists(dir.Path + "/Tooling.lkp"));
}

TEST(LibraryFits, ArgumentsThatAreNotNumbersAreSaidClearly) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    const Said number = Fits(folder, "seven", "0");
    EXPECT_EQ(number.Status, 1);
    EXPECT_EQ(number.Err, "The tool number \"seven\" is not a number.\n");
    const Said angle = Fits(folder, "7", "45deg");
    EXPECT_EQ(angle.Status, 1);
    EXPECT_EQ(angle.Err, "The angle \"45deg\" is not a number.\n");
    EXPECT_EQ(Fits(folder, "40000", "0").Err, "The tool number 40000 is beyond 16 bits.\n");
    EXPECT_EQ(Fits(folder, "40000", "0").Status, 1);
    EXPECT_EQ(Fits(folder, "7", "1E999").Status, 1);
    EXPECT_EQ(Fits(folder, "7", "1E300").Err, "The angle 1E300 is too large for a single.\n");
    EXPECT_EQ(Fits(folder, "7", "").Status, 1);
}

TEST(LibraryFits, NumbersAreReadAsTheSystemReadsThem) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    EXPECT_EQ(Fits(folder, " 7.0 ", "1.35D2").Out, Fits(folder, "7", "135").Out);
    EXPECT_EQ(LastLine(Fits(folder, "3.5", "0").Out), "fits");  // 3.5 rounds to 4, step 360 at 0
    EXPECT_EQ(Fits(folder, "3.5", "0").Out.rfind("Tool 4: ", 0), 0u);
}

// ---- path -----------------------------------------------------------------------------------

TEST(LibraryPath, PrintsTheSizeFolderItsAngleAndTheLibraryFolderAndMakesThem) {
    Installation in;
    OneMachine(in, "10");
    WriteFileAtomically(in.Root.Path + "/rect.json",
                        "{\"EntityCode\": 156, \"Value\": [50, 20, 0, 0, 0, 0, 0, 0, 0, 0], \"Side\": 1}");
    LibraryPathOptions options;
    options.EntityFile = in.Root.Path + "/rect.json";
    options.WorkDir = in.Start;
    const Said said = Path(options);
    ASSERT_EQ(said.Status, 0) << said.Err;
    const std::string size = in.Data + "\\Shapes\\M1\\Rectangle\\Outside\\20x50\\";
    EXPECT_EQ(said.Out, "the record (code 156)\n"
                        "  size folder:    " + size + "\n"
                        "  angle:          90\n"
                        "  library folder: " + size + "Full Library\\\n");
    EXPECT_TRUE(FileExists(size + "Full Library\\Tooling.lkp"));
    EXPECT_TRUE(FileExists(size + "0.drw"));
    EXPECT_TRUE(FileExists(size + "Full Library\\0.drw"));
}

TEST(LibraryPath, DrawingShowsEveryRecordWithASizeFolder) {
    Installation in;
    OneMachine(in, "10");
    WriteFileAtomically(in.Root.Path + "/drawing.json",
                        "[{\"EntityCode\": 1, \"EntityText\": \"Steel\"},"
                        " {\"EntityCode\": 151, \"Value\": [5]},"
                        " {\"EntityCode\": 210},"
                        " {\"EntityCode\": 171, \"Value\": [12, 8, 0, 0, 0, 0, 0, 0, 0, 30]}]");
    LibraryPathOptions options;
    options.EntityFile = in.Root.Path + "/drawing.json";
    options.WorkDir = in.Start;
    options.LibraryGiven = true;
    options.Library = "Turret A";
    const Said said = Path(options);
    ASSERT_EQ(said.Status, 0) << said.Err;
    const std::string shapes = in.Data + "\\Shapes\\M1\\";
    EXPECT_EQ(said.Out, "record 2 (code 151)\n"
                        "  size folder:    " + shapes + "Circle\\Inside\\10\\\n"
                        "  angle:          0\n"
                        "  library folder: " + shapes + "Circle\\Inside\\10\\Turret A\\\n"
                        "record 4 (code 171)\n"
                        "  size folder:    " + shapes + "Custom\\12x8a30\\\n"
                        "  angle:          30\n"
                        "  library folder: " + shapes + "Custom\\12x8a30\\Turret A\\\n");
}

TEST(LibraryPath, ProfileMachineNamesTheFolderByTheMaterial) {
    Installation in;
    OneMachine(in, "1");
    WriteFileAtomically(in.Root.Path + "/circle.json", "{\"EntityCode\": 151, \"Value\": [5], \"Side\": 1}");
    LibraryPathOptions options;
    options.EntityFile = in.Root.Path + "/circle.json";
    options.WorkDir = in.Start;
    const std::string size = in.Data + "\\Shapes\\M1\\Circle\\Outside\\10\\";
    EXPECT_EQ(LastLine(Path(options).Out), "  library folder: " + size + "Default\\");
    options.MaterialGiven = true;
    options.Material = "Steel 2mm";
    EXPECT_EQ(LastLine(Path(options).Out), "  library folder: " + size + "Steel 2mm\\");
}

TEST(LibraryPath, NoRecordWithASizeFolderIsSaid) {
    Installation in;
    OneMachine(in, "10");
    WriteFileAtomically(in.Root.Path + "/punch.json", "{\"EntityCode\": 210}");
    LibraryPathOptions options;
    options.EntityFile = in.Root.Path + "/punch.json";
    options.WorkDir = in.Start;
    const Said said = Path(options);
    EXPECT_EQ(said.Status, 1);
    EXPECT_EQ(said.Err, "The record of " + options.EntityFile +
                            " has no size folder: only codes 151 to 156, 171 and 175 have one.\n");
}

TEST(LibraryPath, FaultsAreSaidInWords) {
    Installation in;
    WriteFileAtomically(in.Root.Path + "/bad.json", "{\"EntityCode\": ");
    LibraryPathOptions options;
    options.EntityFile = in.Root.Path + "/bad.json";
    options.WorkDir = in.Start;
    const Said bad = Path(options);
    EXPECT_EQ(bad.Status, 2);
    EXPECT_NE(bad.Err.find("not JSON"), std::string::npos) << bad.Err;
    WriteFileAtomically(in.Root.Path + "/ok.json", "{\"EntityCode\": 151}");
    options.EntityFile = in.Root.Path + "/ok.json";
    const Said noConfig = Path(options);
    EXPECT_EQ(noConfig.Status, 2);
    EXPECT_NE(noConfig.Err.find("Torvanex.cfg"), std::string::npos) << noConfig.Err;
}

// ---- The executable --------------------------------------------------------------------------

TEST(LibraryCommand, ExecutableRunsTheSubcommandsWithTheirStatus) {
    TempDir dir;
    const std::string folder = LibraryFolder(dir, ThreeTools);
    EXPECT_EQ(RunTorvanex(dir, "library fits '" + folder + "' 7 135"), 0);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stdout").substr(ReadAllBytes(dir.Path + "/stdout").size() - 5), "fits\n");
    EXPECT_EQ(RunTorvanex(dir, "library fits '" + folder + "' 7"), 1);
    EXPECT_EQ(RunTorvanex(dir, "library list '" + folder + "'"), 0);
    EXPECT_EQ(RunTorvanex(dir, "library list '" + dir.Path + "'"), 2);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/stderr"), "No Tooling.lkp in " + dir.Path + "\n");
    EXPECT_EQ(RunTorvanex(dir, "library --help"), 0);
    EXPECT_EQ(RunTorvanex(dir, "library path --help"), 0);
    EXPECT_NE(ReadAllBytes(dir.Path + "/stdout").find("Full Library"), std::string::npos);
}
