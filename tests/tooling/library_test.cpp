// The tooling library: size folders, the paths of ShapePath, Tooling.lkp and the test of a
// tool at an angle.
#include "tooling/library.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "common/paths.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "test_support.h"

using namespace tvx;
namespace fs = std::filesystem;

namespace {

// A machine whose shapes library lies in a temporary folder.
struct LibraryRig {
    TempDir Dir;
    MachineState Machine;

    explicit LibraryRig(bool profile = false) {
        Machine.ShapesDir = Dir.Path + "\\Shapes\\M\\";
        Machine.CustomDir = Machine.ShapesDir + "Custom\\";
        Machine.MachineKind = profile ? 1 : 10;
        Machine.IsProfileMachine = profile;
        Machine.IsToolMachine = !profile;
    }

    // The path of a folder or file under the shapes library, as the system writes it.
    std::string Shapes(const std::string& rest) const { return Machine.ShapesDir + rest; }

    std::string Lookup(const std::string& content) {
        const std::string path = Dir.Path + "/Tooling.lkp";
        WriteFileAtomically(path, content);
        return path;
    }
};

DrawRecord Shape(int16_t code, float v1, float v2, float angle, int16_t side = 1) {
    DrawRecord r;
    r.EntityCode = code;
    r.Value[1] = v1;
    r.Value[2] = v2;
    r.Value[10] = angle;
    r.Side = side;
    return r;
}

void UseLibraryTool(DrawRecord& r, int16_t number) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = "U";
    r.ToolA.ToolNumber = number;
}

bool IsDirectory(const std::string& path) { return DirectoryExists(path); }

}  // namespace

// ---- Size folders ---------------------------------------------------------------------------

TEST(ShapeFolder, CircleOfRadiusFiveHasTheFolderTen) {
    LibraryRig rig;
    const ShapeFolderInfo info = ShapeFolder(rig.Machine, Shape(151, 5, 0, 33));
    EXPECT_EQ(info.Folder, rig.Shapes("Circle\\Outside\\10\\"));
    EXPECT_EQ(info.Angle, 0);
}

TEST(ShapeFolder, SideOfOneOrMoreIsOutsideAndAnyOtherInside) {
    LibraryRig rig;
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(151, 5, 0, 0, 2)).Folder, rig.Shapes("Circle\\Outside\\10\\"));
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(151, 5, 0, 0, 0)).Folder, rig.Shapes("Circle\\Inside\\10\\"));
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(151, 5, 0, 0, -1)).Folder, rig.Shapes("Circle\\Inside\\10\\"));
}

TEST(ShapeFolder, SizesAreAbsoluteRoundedToThreeDecimalsInFreeForm) {
    LibraryRig rig;
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(154, -12.34567f, 0.5f, 0)).Folder,
              rig.Shapes("Obround\\Outside\\12.346x0.5\\"));
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(151, 0.25f, 0, 0)).Folder, rig.Shapes("Circle\\Outside\\0.5\\"));
}

TEST(ShapeFolder, SingleDTakesTwiceTheRadiusAndTheFlatAndItsAngleToThreeDecimals) {
    LibraryRig rig;
    const ShapeFolderInfo info = ShapeFolder(rig.Machine, Shape(152, 10, 16, -90.12345f));
    EXPECT_EQ(info.Folder, rig.Shapes("Single-D\\Outside\\20x16\\"));
    EXPECT_DOUBLE_EQ(info.Angle, 269.877);
}

TEST(ShapeFolder, DoubleDAndObroundTakeTheirAngleThroughNorm180) {
    LibraryRig rig;
    const ShapeFolderInfo d = ShapeFolder(rig.Machine, Shape(153, 10, 16, 250, 0));
    EXPECT_EQ(d.Folder, rig.Shapes("Double-D\\Inside\\20x16\\"));
    EXPECT_DOUBLE_EQ(d.Angle, 70);
    const ShapeFolderInfo o = ShapeFolder(rig.Machine, Shape(154, 30, 10, 200));
    EXPECT_EQ(o.Folder, rig.Shapes("Obround\\Outside\\30x10\\"));
    EXPECT_DOUBLE_EQ(o.Angle, 20);
}

TEST(ShapeFolder, RectangleFiftyByTwentyAtZeroAndTwentyByFiftyAtNinetyShareFolderAndAngle) {
    LibraryRig rig;
    const ShapeFolderInfo wide = ShapeFolder(rig.Machine, Shape(156, 50, 20, 0));
    const ShapeFolderInfo tall = ShapeFolder(rig.Machine, Shape(156, 20, 50, 90));
    EXPECT_EQ(wide.Folder, rig.Shapes("Rectangle\\Outside\\20x50\\"));
    EXPECT_EQ(tall.Folder, wide.Folder);
    EXPECT_DOUBLE_EQ(wide.Angle, 90);
    EXPECT_DOUBLE_EQ(tall.Angle, wide.Angle);
}

TEST(ShapeFolder, SquareAngleGoesThroughNorm90) {
    LibraryRig rig;
    const ShapeFolderInfo square = ShapeFolder(rig.Machine, Shape(156, 25, 25, 120));
    EXPECT_EQ(square.Folder, rig.Shapes("Rectangle\\Outside\\25x25\\"));
    EXPECT_DOUBLE_EQ(square.Angle, 30);
    DrawRecord radiused = Shape(155, 25, 25, 260);
    radiused.Value[3] = 4;
    const ShapeFolderInfo r = ShapeFolder(rig.Machine, radiused);
    EXPECT_EQ(r.Folder, rig.Shapes("Rad-Rect\\Outside\\25x25r4\\"));
    EXPECT_DOUBLE_EQ(r.Angle, 80);
}

TEST(ShapeFolder, RadiusedRectangleIsExchangedLikeTheRectangleAndNamesItsRadius) {
    LibraryRig rig;
    DrawRecord r = Shape(155, 60, 30, 30, 0);
    r.Value[3] = 2.5f;
    const ShapeFolderInfo info = ShapeFolder(rig.Machine, r);
    EXPECT_EQ(info.Folder, rig.Shapes("Rad-Rect\\Inside\\30x60r2.5\\"));
    EXPECT_DOUBLE_EQ(info.Angle, 120);  // Norm180(30 - 90)
}

TEST(ShapeFolder, ToolShapedHoleIsNamedByItsSizesAndAngleUnderCustom) {
    LibraryRig rig;
    const ShapeFolderInfo info = ShapeFolder(rig.Machine, Shape(171, 12.5f, 8, -45.00049f));
    EXPECT_EQ(info.Folder, rig.Shapes("Custom\\12.5x8a315\\"));
    EXPECT_DOUBLE_EQ(info.Angle, 315);
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(171, 10, 10, 12.3456f)).Folder, rig.Shapes("Custom\\10x10a12.346\\"));
}

TEST(ShapeFolder, LibraryShapeIsNamedByItsTrimmedTextUnderCustom) {
    LibraryRig rig;
    DrawRecord r = Shape(175, 10, 10, 400);
    r.EntityText = "  Bracket 7  ";
    const ShapeFolderInfo info = ShapeFolder(rig.Machine, r);
    EXPECT_EQ(info.Folder, rig.Shapes("Custom\\Bracket 7\\"));
    EXPECT_DOUBLE_EQ(info.Angle, 40);
}

TEST(ShapeFolder, LibraryShapeTextWithSeparatorsNamesAFolderBelowCustom) {
    LibraryRig rig;
    DrawRecord r = Shape(175, 10, 10, 0);
    r.EntityText = "Brackets\\Left/";
    EXPECT_EQ(ShapeFolder(rig.Machine, r).Folder, rig.Shapes("Custom\\Brackets\\Left/"));
    int mode = LibraryFolderMode;
    const std::string folder = ShapePath(rig.Machine, r, mode, "", "");
    EXPECT_TRUE(IsDirectory(rig.Shapes("Custom\\Brackets\\Left\\Full Library")));
    EXPECT_EQ(folder, rig.Shapes("Custom\\Brackets\\Left/Full Library\\"));
}

TEST(ShapeFolder, LibraryShapeWithoutTextIsCustomItself) {
    LibraryRig rig;
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(175, 10, 10, 0)).Folder, rig.Shapes("Custom\\"));
}

TEST(ShapeFolder, CodesWithoutAFolderGiveNothing) {
    LibraryRig rig;
    for (int16_t code : {0, 1, 110, 150, 157, 170, 172, 210, 500}) {
        EXPECT_EQ(ShapeFolder(rig.Machine, Shape(code, 5, 5, 0)).Folder, "") << code;
        int mode = LibraryFolderMode;
        EXPECT_EQ(ShapePath(rig.Machine, Shape(code, 5, 5, 0), mode, "", ""), "") << code;
    }
    EXPECT_FALSE(IsDirectory(rig.Shapes("")));
}

// ---- ShapePath ------------------------------------------------------------------------------

TEST(ShapePath, SizeFolderModeMakesTheFolderOnly) {
    LibraryRig rig;
    int mode = ShapeFolderMode;
    const std::string path = ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "");
    EXPECT_EQ(path, rig.Shapes("Circle\\Outside\\10\\"));
    EXPECT_TRUE(IsDirectory(path));
    EXPECT_FALSE(FileExists(path + "0.drw"));
    EXPECT_EQ(mode, ShapeFolderMode);
}

TEST(ShapePath, OwnDrawingModeGivesZeroDrwOfTheSizeFolderAndMakesIt) {
    LibraryRig rig;
    int mode = ShapeOwnDrawingMode;
    const std::string path = ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "");
    EXPECT_EQ(path, rig.Shapes("Circle\\Outside\\10\\0.drw"));
    EXPECT_TRUE(FileExists(path));
    EXPECT_FALSE(IsDirectory(rig.Shapes("Circle\\Outside\\10\\Full Library")));
}

TEST(ShapePath, LibraryFolderModeMakesTheFolderTheEmptyListAndCopiesTheOwnDrawing) {
    LibraryRig rig;
    int mode = LibraryFolderMode;
    const std::string path = ShapePath(rig.Machine, Shape(156, 50, 20, 0), mode, "Steel", "Punches");
    EXPECT_EQ(path, rig.Shapes("Rectangle\\Outside\\20x50\\Punches\\"));
    EXPECT_TRUE(IsDirectory(path));
    EXPECT_EQ(ReadAllBytes(path + "Tooling.lkp"), "******\r\n");
    EXPECT_TRUE(FileExists(rig.Shapes("Rectangle\\Outside\\20x50\\0.drw")));
    EXPECT_EQ(ReadAllBytes(path + "0.drw"), ReadAllBytes(rig.Shapes("Rectangle\\Outside\\20x50\\0.drw")));
    EXPECT_EQ(mode, LibraryFolderMode);
}

TEST(ShapePath, ModesTwoAndThreeGiveTheOwnDrawingAndTheList) {
    LibraryRig rig;
    int two = LibraryOwnDrawingMode;
    int three = LookupFileMode;
    EXPECT_EQ(ShapePath(rig.Machine, Shape(154, 30, 10, 0), two, "", "Lib"), rig.Shapes("Obround\\Outside\\30x10\\Lib\\0.drw"));
    EXPECT_EQ(ShapePath(rig.Machine, Shape(154, 30, 10, 0), three, "", "Lib"),
              rig.Shapes("Obround\\Outside\\30x10\\Lib\\Tooling.lkp"));
    EXPECT_TRUE(FileExists(rig.Shapes("Obround\\Outside\\30x10\\Lib\\Tooling.lkp")));
    EXPECT_TRUE(FileExists(rig.Shapes("Obround\\Outside\\30x10\\Lib\\0.drw")));
}

TEST(ShapePath, ToolDrawingModeTakesTheNumberOfALibraryTool) {
    LibraryRig rig;
    DrawRecord r = Shape(156, 20, 50, 0);
    UseLibraryTool(r, 7);
    int mode = ToolDrawingMode;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Rectangle\\Outside\\20x50\\Full Library\\7.drw"));
    EXPECT_EQ(mode, 7);
}

TEST(ShapePath, ToolDrawingModeTakesTheValueGivenWithoutALibraryToolNumber) {
    LibraryRig rig;
    DrawRecord r = Shape(156, 20, 50, 0);
    int mode = 12;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Rectangle\\Outside\\20x50\\Full Library\\12.drw"));
    EXPECT_EQ(mode, 12);
    UseLibraryTool(r, 0);
    mode = ToolDrawingMode;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Rectangle\\Outside\\20x50\\Full Library\\4.drw"));
    // A numbered tool of another letter is not a library tool.
    r.ToolA.Letter = "B";
    r.ToolA.ToolNumber = 9;
    mode = ToolDrawingMode;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Rectangle\\Outside\\20x50\\Full Library\\4.drw"));
}

TEST(ShapePath, ToolShapedHoleAlwaysTakesItsOwnToolNumber) {
    LibraryRig rig;
    DrawRecord r = Shape(171, 12, 8, 0);
    r.ToolA.ToolNumber = 3;  // no letter at all
    int mode = ToolDrawingMode;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Custom\\12x8a0\\Full Library\\3.drw"));
    EXPECT_EQ(mode, 3);
    r.ToolA.ToolNumber = 0;
    mode = ToolDrawingMode;
    EXPECT_EQ(ShapePath(rig.Machine, r, mode, "", ""), rig.Shapes("Custom\\12x8a0\\Full Library\\0.drw"));
    EXPECT_EQ(mode, 0);
}

TEST(ShapePath, ProfileMachineNamesTheFolderByTheMaterial) {
    LibraryRig rig(true);
    int mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "Steel 2mm", "Punches"),
              rig.Shapes("Circle\\Outside\\10\\Steel 2mm\\"));
    mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "Punches"), rig.Shapes("Circle\\Outside\\10\\Default\\"));
}

TEST(ShapePath, OtherMachinesNameTheFolderByTheLibraryAndAnEmptyOneIsFullLibrary) {
    LibraryRig rig;
    int mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "Steel", "Punches"),
              rig.Shapes("Circle\\Outside\\10\\Punches\\"));
    mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "Steel", ""),
              rig.Shapes("Circle\\Outside\\10\\Full Library\\"));
}

TEST(ShapePath, JobShapePathTakesTheJobsMaterialAndTheMachinesLibrary) {
    LibraryRig rig;
    RunState state;
    state.Machine = rig.Machine;
    state.Machine.ToolLibrary = "Turret A";
    state.Job.MaterialName = "Alu";
    EXPECT_EQ(JobShapePath(state, Shape(151, 5, 0, 0), LookupFileMode),
              rig.Shapes("Circle\\Outside\\10\\Turret A\\Tooling.lkp"));
    state.Machine.IsProfileMachine = true;
    EXPECT_EQ(JobShapePath(state, Shape(151, 5, 0, 0), LibraryFolderMode), rig.Shapes("Circle\\Outside\\10\\Alu\\"));
}

TEST(ShapePath, OwnDrawingIsMadeFromTheFirstEntityOfTheSizeMovedToTheOrigin) {
    LibraryRig rig;
    DrawRecord r = Shape(156, 20, 50, 30);
    r.Point[4] = {100, 40};
    r.CarryWord2 = 5;
    UseLibraryTool(r, 7);
    r.LeadIn.LeadKind = 1;
    r.LeadIn.LeadLength = 3;
    r.After.ActionCode = 1;
    int mode = ShapeOwnDrawingMode;
    const std::string path = ShapePath(rig.Machine, r, mode, "", "");

    DrawingFile file;
    OpenDrawing(file, path);
    EXPECT_EQ(RecordsOnDisk(file), 2);
    const DrawRecord header = ReadRecord(file, 1);
    EXPECT_EQ(header.EntityCode, 1);
    EXPECT_EQ(header.RecordCount, 2);
    const DrawRecord shape = ReadRecord(file, 2);
    CloseDrawing(file);
    EXPECT_EQ(shape.EntityCode, 156);
    EXPECT_EQ(shape.Point[4].X, 0);
    EXPECT_EQ(shape.Point[4].Y, 0);
    EXPECT_FLOAT_EQ(shape.Value[1], 20);
    EXPECT_FLOAT_EQ(shape.Value[2], 50);
    EXPECT_FLOAT_EQ(shape.Value[10], 30);
    EXPECT_EQ(shape.CarryWord2, 5);
    EXPECT_EQ(shape.ToolA.Present, 0);
    EXPECT_EQ(shape.ToolA.ToolNumber, 0);
    EXPECT_EQ(shape.LeadIn.LeadKind, 0);
    EXPECT_EQ(shape.After.ActionCode, 0);
    // Bound about the origin: the box of the turned rectangle stands around 0, 0.
    EXPECT_LT(shape.Extent[1].X, 0);
    EXPECT_LT(shape.Extent[1].Y, 0);
    EXPECT_GT(shape.Extent[2].X, 0);
    EXPECT_GT(shape.Extent[2].Y, 0);
}

TEST(ShapePath, OwnDrawingOfTheSizeFolderIsKeptOnceMade) {
    LibraryRig rig;
    int mode = ShapeOwnDrawingMode;
    const std::string path = ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "");
    WriteFileAtomically(path, "kept");
    DrawRecord other = Shape(151, 5, 0, 0);
    other.Point[4] = {7, 7};
    mode = LibraryFolderMode;
    const std::string folder = ShapePath(rig.Machine, other, mode, "", "");
    EXPECT_EQ(ReadAllBytes(path), "kept");
    EXPECT_EQ(ReadAllBytes(folder + "0.drw"), "kept");
}

TEST(ShapePath, OwnDrawingAlreadyInTheLibraryFolderIsNotCopiedOver) {
    LibraryRig rig;
    int mode = LibraryFolderMode;
    const std::string folder = ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "");
    WriteFileAtomically(folder + "0.drw", "the library's own");
    WriteFileAtomically(folder + "Tooling.lkp", "\"Round 10\",4,0,90,\"4.drw\"\r\n");
    mode = LookupFileMode;
    ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", "");
    EXPECT_EQ(ReadAllBytes(folder + "0.drw"), "the library's own");
    EXPECT_EQ(ReadAllBytes(folder + "Tooling.lkp"), "\"Round 10\",4,0,90,\"4.drw\"\r\n");
}

// ---- Tooling.lkp ----------------------------------------------------------------------------

TEST(ToolingList, MissingLookupFileIsMadeAndGivesTheDefaultEntryWithStepHalf) {
    TempDir dir;
    const std::string path = dir.Path + "/Tooling.lkp";
    const ToolingEntry entry = LookupToolEntry(path, 4);
    EXPECT_EQ(ReadAllBytes(path), "******\r\n");
    EXPECT_EQ(entry.ToolName, "");
    EXPECT_EQ(entry.ToolNumber, 0);
    EXPECT_EQ(entry.ToolAngle, 0);
    EXPECT_EQ(entry.AngleStep, 0.5f);
    EXPECT_EQ(entry.ToolFile, "");
    EXPECT_EQ(LookupTool(path, 4, 4).Number, 0.5);
}

TEST(ToolingList, MissingLookupFileInAFolderThatCannotTakeItGivesTheDefaultEntry) {
    TempDir dir;
    const std::string path = dir.Path + "/no such folder/Tooling.lkp";
    const ToolingList list = ReadToolingList(path);
    EXPECT_TRUE(list.Entries.empty());
    EXPECT_FALSE(list.Broken);
    EXPECT_FALSE(FileExists(path));
    EXPECT_EQ(LookupToolEntry(path, 0).AngleStep, 0.5f);
}

TEST(ToolingList, EntriesAreNormalisedAsTheyAreRead) {
    LibraryRig rig;
    const std::string path = rig.Lookup(
        "\"  Square 20  \",2.5,-90,-45,\" 2.drw \"\r\n"
        "Round 10,3.5,725,0,3.drw\r\n"
        "\"Tiny\",5,0,0.05,\"5.drw\"\r\n"
        "******\r\n");
    const ToolingList list = ReadToolingList(path);
    ASSERT_FALSE(list.Broken) << list.Reason;
    ASSERT_EQ(list.Entries.size(), 3u);
    const ToolingEntry& square = list.Entries[0];
    EXPECT_EQ(square.ToolName, "Square 20");
    EXPECT_EQ(square.ToolNumber, 2);  // halves go to the even neighbour
    EXPECT_EQ(square.ToolAngle, 270.0f);
    EXPECT_EQ(square.AngleStep, 45.0f);
    EXPECT_EQ(square.ToolFile, "2.drw");
    const ToolingEntry& round = list.Entries[1];
    EXPECT_EQ(round.ToolName, "Round 10");
    EXPECT_EQ(round.ToolNumber, 4);
    EXPECT_EQ(round.ToolAngle, 5.0f);
    EXPECT_EQ(round.AngleStep, 360.0f);
    EXPECT_EQ(list.Entries[2].AngleStep, 0.1f);
}

// The angle is normalised as the number it is read as, and only then kept as a single: 370.1
// becomes the single nearest 10.1, not 370.1 as a single less 360 (10.100006).
TEST(ToolingList, ToolAngleIsNormalisedBeforeItIsKeptAsASingle) {
    LibraryRig rig;
    const std::string path = rig.Lookup("\"a\",1,370.1,90,\"a.drw\"\r\n");
    EXPECT_EQ(LookupToolEntry(path, 1).ToolAngle, 10.1f);
    EXPECT_NE(LookupToolEntry(path, 1).ToolAngle, static_cast<float>(static_cast<double>(370.1f) - 360.0));
}

TEST(ToolingList, EntriesAreSortedByFileKeepingTheOrderOfOneFile) {
    LibraryRig rig;
    const std::string path = rig.Lookup(
        "\"c\",1,0,90,\"b.drw\"\r\n"
        "\"a\",2,0,90,\"a.drw\"\r\n"
        "\"d\",3,0,90,\"b.drw\"\r\n"
        "\"e\",4,0,90,\"B.drw\"\r\n");
    const ToolingList list = ReadToolingList(path);
    ASSERT_EQ(list.Entries.size(), 4u);
    EXPECT_EQ(list.Entries[0].ToolName, "e");  // byte order: capitals first
    EXPECT_EQ(list.Entries[1].ToolName, "a");
    EXPECT_EQ(list.Entries[2].ToolName, "c");
    EXPECT_EQ(list.Entries[3].ToolName, "d");
}

TEST(ToolingList, OfTwoEntriesWithOneNumberTheOneThatSortsLastWins) {
    LibraryRig rig;
    const std::string path = rig.Lookup(
        "\"later file\",7,0,90,\"z.drw\"\r\n"
        "\"earlier file\",7,45,180,\"a.drw\"\r\n"
        "\"other\",8,0,90,\"m.drw\"\r\n");
    EXPECT_EQ(LookupTool(path, 7, 1).Text, "later file");
    EXPECT_EQ(LookupTool(path, 7, 3).Number, 0);
    EXPECT_EQ(LookupTool(path, 7, 5).Text, "z.drw");
    EXPECT_EQ(LookupTool(path, 8, 4).Number, 90);
}

TEST(ToolingList, OfTwoEntriesOfOneFileAndNumberTheLaterLineWins) {
    LibraryRig rig;
    const std::string path = rig.Lookup("\"first\",7,0,90,\"a.drw\"\r\n\"second\",7,0,90,\"a.drw\"\r\n");
    EXPECT_EQ(LookupTool(path, 7, 1).Text, "second");
}

TEST(ToolingList, FieldsByNumberAndNothingOutsideOneToFive) {
    LibraryRig rig;
    const std::string path = rig.Lookup("\"Obround 30\",12,15.5,180,\"12.drw\"\r\n");
    EXPECT_EQ(LookupTool(path, 12, 1).Text, "Obround 30");
    EXPECT_EQ(LookupTool(path, 12, 2).Number, 12);
    EXPECT_EQ(LookupTool(path, 12, 3).Number, 15.5);
    EXPECT_EQ(LookupTool(path, 12, 4).Number, 180);
    EXPECT_EQ(LookupTool(path, 12, 5).Text, "12.drw");
    for (int field : {0, 6, -1}) {
        EXPECT_EQ(LookupTool(path, 12, field).Number, 0);
        EXPECT_EQ(LookupTool(path, 12, field).Text, "");
    }
    EXPECT_EQ(LookupTool(path, 13, 2).Number, 0);
    EXPECT_EQ(LookupTool(path, 13, 4).Number, 0.5);
}

TEST(ToolingList, ListEndsAtStarsAtAnEmptyFirstItemAndAtTheEndOfTheFile) {
    LibraryRig rig;
    EXPECT_EQ(ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a\"\r\n******\r\n\"b\",2,0,90,\"b\"\r\n")).Entries.size(), 1u);
    EXPECT_EQ(ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a\"\r\n\r\n\"b\",2,0,90,\"b\"\r\n")).Entries.size(), 1u);
    EXPECT_EQ(ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a\"\r\n,2,0,90,\"b\"\r\n")).Entries.size(), 1u);
    EXPECT_EQ(ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a\"\r\n\"b\",2,0,90,\"b\"")).Entries.size(), 2u);
    EXPECT_EQ(ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a\"\r\n   ")).Entries.size(), 1u);
    EXPECT_EQ(ReadToolingList(rig.Lookup("")).Entries.size(), 0u);
}

TEST(ToolingList, ShortLineInTheMiddleTakesItsLastItemsFromTheNextLine) {
    // Items are read one after another across line ends, as the list input reads them: a line
    // with four items takes the fifth from the start of the next line.
    LibraryRig rig;
    const ToolingList list = ReadToolingList(rig.Lookup("\"a\",1,0,90\r\n\"a.drw\"\r\n\"b\",2,0,90,\"b.drw\"\r\n"));
    ASSERT_FALSE(list.Broken) << list.Reason;
    ASSERT_EQ(list.Entries.size(), 2u);
    EXPECT_EQ(list.Entries[1].ToolName, "b");
    EXPECT_EQ(list.Entries[0].ToolFile, "a.drw");
    EXPECT_EQ(list.Entries[0].ToolNumber, 1);
}

TEST(ToolingList, NumberBeyondSixteenBitsBreaksTheListAndItBehavesAsAnEmptyOne) {
    LibraryRig rig;
    const std::string path = rig.Lookup(
        "\"a\",1,0,90,\"a.drw\"\r\n"
        "\"b\",2,0,90,\"b.drw\"\r\n"
        "\"c\",40000,0,90,\"c.drw\"\r\n");
    const ToolingList list = ReadToolingList(path);
    EXPECT_TRUE(list.Broken);
    EXPECT_TRUE(list.Entries.empty());
    EXPECT_EQ(list.Reason, "line 3: tool number 40000 is beyond 16 bits");
    const ToolingEntry entry = LookupToolEntry(path, 1);
    EXPECT_EQ(entry.ToolName, "");
    EXPECT_EQ(entry.AngleStep, 0.5f);
}

TEST(ToolingList, EntryCutShortAtTheEndOfTheFileBreaksTheList) {
    LibraryRig rig;
    const ToolingList list = ReadToolingList(rig.Lookup("\"a\",1,0,90,\"a.drw\"\r\n\"b\",2,0\r\n"));
    EXPECT_TRUE(list.Broken);
    EXPECT_TRUE(list.Entries.empty());
    EXPECT_EQ(list.Reason, "line 2: the entry ends after 3 of its 5 items");
}

TEST(ToolingList, NumberTooLargeForTheSystemBreaksTheList) {
    LibraryRig rig;
    const ToolingList angle = ReadToolingList(rig.Lookup("\"a\",1,1E999,90,\"a.drw\"\r\n"));
    EXPECT_TRUE(angle.Broken);
    EXPECT_EQ(angle.Reason.rfind("line 1: tool angle 1E999", 0), 0u) << angle.Reason;
    const ToolingList step = ReadToolingList(rig.Lookup("\"a\",1,0,1E300,\"a.drw\"\r\n"));
    EXPECT_TRUE(step.Broken);
    EXPECT_EQ(step.Reason.rfind("line 1: angle step 1E300", 0), 0u) << step.Reason;
    EXPECT_EQ(LookupToolEntry(rig.Lookup("\"a\",1,0,1E300,\"a.drw\"\r\n"), 1).ToolName, "");
}

TEST(ToolingList, NegativeNumbersAndBareTextsAreRead) {
    LibraryRig rig;
    const ToolingList list = ReadToolingList(rig.Lookup("Left hand,-32768,0,90,x.drw\r\nNo number,abc,0,90,y.drw\r\n"));
    ASSERT_FALSE(list.Broken) << list.Reason;
    ASSERT_EQ(list.Entries.size(), 2u);
    EXPECT_EQ(list.Entries[0].ToolNumber, -32768);
    EXPECT_EQ(list.Entries[1].ToolNumber, 0);
    EXPECT_EQ(LookupTool(rig.Lookup("Left hand,-32768,0,90,x.drw\r\n"), -32768, 1).Text, "Left hand");
}

// ---- ToolFitsAngle ----------------------------------------------------------------------------

TEST(ToolFitsAngle, StepZeroFitsOnlyTheToolsOwnAngle) {
    EXPECT_TRUE(ToolFitsAngle(30.0f, 30, 0));
    for (float wanted : {0.0f, 29.5f, 30.5f, 90.0f, 210.0f, 330.0f, 390.0f})
        EXPECT_FALSE(ToolFitsAngle(wanted, 30, 0)) << wanted;
}

TEST(ToolFitsAngle, StepNinetyFitsEveryQuarterTurnBelowAFullTurn) {
    for (float wanted : {45.0f, 135.0f, 225.0f, 315.0f}) EXPECT_TRUE(ToolFitsAngle(wanted, 135, 90)) << wanted;
    for (float wanted : {0.0f, 90.0f, 405.0f, -45.0f}) EXPECT_FALSE(ToolFitsAngle(wanted, 135, 90)) << wanted;
    // The walks stay below 360 and not below 0: a full turn is never reached from 0.
    EXPECT_TRUE(ToolFitsAngle(0.0f, 270, 90));
    EXPECT_FALSE(ToolFitsAngle(360.0f, 0, 90));
}

TEST(ToolFitsAngle, ToolAngleIsNormalisedAndTheStepAbsolute) {
    EXPECT_TRUE(ToolFitsAngle(270.0f, -90, 0));
    EXPECT_TRUE(ToolFitsAngle(90.0f, 450, -180));
    EXPECT_TRUE(ToolFitsAngle(270.0f, 450, -180));
}

TEST(ToolFitsAngle, StepBelowATenthCountsAsATenth) {
    EXPECT_TRUE(ToolFitsAngle(0.1f, 0, 0.01));
    EXPECT_FALSE(ToolFitsAngle(0.01f, 0, 0.01));
}

TEST(ToolFitsAngle, SumsAreSinglesComparedExactly) {
    // Three steps of 0.1 in singles: 0.1f + 0.1f + 0.1f is not the single nearest 0.3.
    float v = 0.1f;
    v = v + 0.1f;
    v = v + 0.1f;
    EXPECT_TRUE(ToolFitsAngle(v, 0, 0.1));
    EXPECT_EQ(ToolFitsAngle(0.3f, 0, 0.1), v == 0.3f);
}

// A tool angle just below a full turn is 360 as a single. One step of 360 down from it reaches 0;
// a step above a full turn reaches nothing, up or down, and is not taken as a full turn.
TEST(ToolFitsAngle, StepAboveAFullTurnIsNotTakenAsAFullTurn) {
    EXPECT_TRUE(ToolFitsAngle(0.0f, 359.99999, 360));
    EXPECT_FALSE(ToolFitsAngle(0.0f, 359.99999, 400));
    EXPECT_FALSE(ToolFitsAngle(0.0f, 359.99999, 720));
    EXPECT_FALSE(ToolFitsAngle(0.0f, 359.99999, 1e300));
    EXPECT_TRUE(ToolFitsAngle(360.0f, 359.99999, 400));
}

TEST(ToolFitsAngle, HugeOrUnreadableStepsFitOnlyTheOwnAngle) {
    EXPECT_TRUE(ToolFitsAngle(10.0f, 10, 1e300));
    EXPECT_FALSE(ToolFitsAngle(20.0f, 10, 1e300));
    EXPECT_FALSE(ToolFitsAngle(20.0f, 10, std::nan("")));
    EXPECT_FALSE(ToolFitsAngle(20.0f, std::nan(""), 10));
}

TEST(ToolFitsAngle, AngleJustBelowAFullTurnIsTheSingle360AndStepsDownFromThere) {
    // 359.99999999 becomes the single 360: a step of 360 reaches 0 from it, one of 400 nothing.
    const double almost = 359.99999999;
    EXPECT_TRUE(ToolFitsAngle(360.0f, almost, 400));
    EXPECT_FALSE(ToolFitsAngle(0.0f, almost, 400));
    EXPECT_TRUE(ToolFitsAngle(0.0f, almost, 360));
    EXPECT_TRUE(ToolFitsAngle(270.0f, almost, 90));
}

TEST(ShapeFolder, AngleJustBelowAFullTurnRoundsToThreeSixtyInThreeDecimals) {
    // Norm360 first, then 3 decimals: 359.9996 becomes 360, not 0.
    LibraryRig rig;
    EXPECT_DOUBLE_EQ(ShapeFolder(rig.Machine, Shape(152, 10, 16, 359.9996f)).Angle, 360);
    EXPECT_EQ(ShapeFolder(rig.Machine, Shape(171, 10, 16, 359.9996f)).Folder, rig.Shapes("Custom\\10x16a360\\"));
}

TEST(ShapePath, ModesBelowOneOtherThanMinusTwoGiveTheSizeFolder) {
    LibraryRig rig;
    for (int given : {-1, -3, -100}) {
        int mode = given;
        EXPECT_EQ(ShapePath(rig.Machine, Shape(151, 5, 0, 0), mode, "", ""), rig.Shapes("Circle\\Outside\\10\\")) << given;
        EXPECT_EQ(mode, given);
    }
    EXPECT_FALSE(FileExists(rig.Shapes("Circle\\Outside\\10\\0.drw")));
}

TEST(ShapePath, BlankNamesAreTrimmedAndTakeTheirDefaults) {
    LibraryRig profile(true);
    int mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(profile.Machine, Shape(151, 5, 0, 0), mode, "   ", ""), profile.Shapes("Circle\\Outside\\10\\Default\\"));
    mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(profile.Machine, Shape(151, 5, 0, 0), mode, " Alu ", ""), profile.Shapes("Circle\\Outside\\10\\Alu\\"));
    LibraryRig tool;
    mode = LibraryFolderMode;
    EXPECT_EQ(ShapePath(tool.Machine, Shape(151, 5, 0, 0), mode, "", "  "), tool.Shapes("Circle\\Outside\\10\\Full Library\\"));
}

TEST(ToolingList, TinyStepCountsAsATenthNotAsNothingAndALargeStepIsKept) {
    // The step is normalised before it is kept as a single: 1E-50 is below a tenth, not 0.
    LibraryRig rig;
    const ToolingList list = ReadToolingList(rig.Lookup("\"a\",1,0,1E-50,\"a\"\r\n\"b\",2,0,720,\"b\"\r\n"));
    ASSERT_EQ(list.Entries.size(), 2u);
    EXPECT_EQ(list.Entries[0].AngleStep, 0.1f);
    EXPECT_EQ(list.Entries[1].AngleStep, 720.0f);
}

TEST(ToolingList, AngleJustBelowAFullTurnIsKeptAsTheSingle360) {
    LibraryRig rig;
    const ToolingList list = ReadToolingList(rig.Lookup("\"a\",1,359.99999999,90,\"a\"\r\n"));
    ASSERT_EQ(list.Entries.size(), 1u);
    EXPECT_EQ(list.Entries[0].ToolAngle, 360.0f);
}

// A placed tooling drawing turns by the entity's angle less its stored angle, normalised, for the
// shapes 152 to 156 and the custom tools; a circle and any other code do not turn.
TEST(LibraryTurn, ShapesAndCustomToolsTurnByTheirAngleLessTheStoredOne) {
    DrawRecord entity;
    entity.Value[10] = 10;
    for (int16_t code : {152, 153, 154, 155, 156, 171, 175}) {
        entity.EntityCode = code;
        EXPECT_EQ(LibraryTurn(entity, 340), 30.0) << code;
    }
    for (int16_t code : {151, 120, 130, 172, 210}) {
        entity.EntityCode = code;
        EXPECT_EQ(LibraryTurn(entity, 340), 0.0) << code;
    }
}
