#include "drawing/drawfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/textfile.h"
#include "test_support.h"

using namespace tvx;

namespace {

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

// The bytes of the encoded record from `offset`, `count` of them.
std::vector<int> At(const DrawRecord& r, size_t offset, size_t count) {
    const RecordBytes b = EncodeRecord(r);
    return std::vector<int>(b.begin() + static_cast<long>(offset), b.begin() + static_cast<long>(offset + count));
}

DrawRecord Coded(int16_t code, int32_t count = 0) {
    DrawRecord r;
    r.EntityCode = code;
    r.RecordCount = count;
    return r;
}

uintmax_t SizeOf(const std::string& path) { return std::filesystem::file_size(path); }

}  // namespace

TEST(DrawFile, ARecordIs518BytesWithSubRecordsOf99And12And6) {
    EXPECT_EQ(RecordLength, 518u);
    EXPECT_EQ(ToolSpecLength, 99u);
    EXPECT_EQ(LeadSpecLength, 12u);
    EXPECT_EQ(AfterActionLength, 6u);
    EXPECT_EQ(EncodeRecord(DrawRecord{}).size(), 518u);
}

TEST(DrawFile, EntityCodeAndPointFourStandAtTheirOffsets) {
    DrawRecord r;
    r.EntityCode = 210;
    r.Point[4] = SinglePoint{1.5f, 2};
    EXPECT_EQ(At(r, 0, 2), (std::vector<int>{0xD2, 0x00}));
    // 1.5 is 0x3FC00000 and 2 is 0x40000000, low byte first; Point[4] is at 102 + 3 * 8.
    EXPECT_EQ(At(r, 126, 8), (std::vector<int>{0x00, 0x00, 0xC0, 0x3F, 0x00, 0x00, 0x00, 0x40}));
    EXPECT_EQ(At(r, 118, 8), (std::vector<int>(8, 0)));  // Point[3]
    EXPECT_EQ(At(r, 134, 8), (std::vector<int>(8, 0)));  // Point[5]
}

TEST(DrawFile, HeaderFieldsStandAtTheirOffsets) {
    DrawRecord r;
    r.EntityCode = -2;
    r.EntityName = "N";
    r.EntityText = "T";
    r.SpareWord = 0x1234;
    r.RecordCount = 0x01020304;
    r.CarryWord1 = 500;
    r.CarryWord2 = -1;
    EXPECT_EQ(At(r, 0, 3), (std::vector<int>{0xFE, 0xFF, 'N'}));
    EXPECT_EQ(At(r, 19, 3), (std::vector<int>{' ', 'T', ' '}));
    EXPECT_EQ(At(r, 91, 3), (std::vector<int>{' ', 0x34, 0x12}));
    EXPECT_EQ(At(r, 94, 4), (std::vector<int>{0x04, 0x03, 0x02, 0x01}));
    EXPECT_EQ(At(r, 98, 4), (std::vector<int>{0xF4, 0x01, 0xFF, 0xFF}));
}

TEST(DrawFile, ArrayFieldsStandAtTheirOffsets) {
    DrawRecord r;
    r.Point[1] = SinglePoint{-1, 10};      // 0xBF800000, 0x41200000
    r.Point[6] = SinglePoint{0.5f, 90};    // 0x3F000000, 0x42B40000
    r.Value[1] = 2500;                     // 0x451C4000
    r.Value[20] = -1;
    r.Count[1] = 258;                      // 0x0102
    r.Count[8] = -1;
    r.Spare[1] = RawCell{1, 2, 3, 4};
    r.Spare[2] = RawCell{5, 6, 7, 8};
    r.Side = -1;
    r.FollowFlag = 1;
    r.Extent[1] = SinglePoint{1.5f, 0};
    r.Extent[2] = SinglePoint{0, 2};
    r.Margin[1] = SinglePoint{10, 0};
    r.Margin[2] = SinglePoint{0, 0.5f};
    EXPECT_EQ(At(r, 102, 8), (std::vector<int>{0, 0, 0x80, 0xBF, 0, 0, 0x20, 0x41}));
    EXPECT_EQ(At(r, 142, 8), (std::vector<int>{0, 0, 0, 0x3F, 0, 0, 0xB4, 0x42}));
    EXPECT_EQ(At(r, 150, 4), (std::vector<int>{0, 0x40, 0x1C, 0x45}));
    EXPECT_EQ(At(r, 226, 4), (std::vector<int>{0, 0, 0x80, 0xBF}));
    EXPECT_EQ(At(r, 230, 2), (std::vector<int>{0x02, 0x01}));
    EXPECT_EQ(At(r, 244, 2), (std::vector<int>{0xFF, 0xFF}));
    EXPECT_EQ(At(r, 246, 8), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(At(r, 254, 4), (std::vector<int>{0xFF, 0xFF, 0x01, 0x00}));
    EXPECT_EQ(At(r, 258, 4), (std::vector<int>{0, 0, 0xC0, 0x3F}));
    EXPECT_EQ(At(r, 270, 4), (std::vector<int>{0, 0, 0, 0x40}));
    EXPECT_EQ(At(r, 274, 4), (std::vector<int>{0, 0, 0x20, 0x41}));
    EXPECT_EQ(At(r, 286, 4), (std::vector<int>{0, 0, 0, 0x3F}));
}

TEST(DrawFile, ToolFieldsStandAtTheirOffsets) {
    DrawRecord r;
    r.ToolA.Present = -1;
    r.ToolA.Letter = "A";
    r.ToolA.ToolName = "RND";
    r.ToolA.Size[1] = 10;
    r.ToolA.Size[4] = 0.5f;
    r.ToolA.ToolNumber = 7;
    r.ToolA.WorkType = 10;
    r.ToolA.ToolStep = 1.5f;
    r.ToolA.ToolAngle = 90;
    r.ToolA.StageIndex = 65536 + 2;
    r.ToolB.Present = 1;
    r.ToolB.Letter = "P";
    r.ToolB.StageIndex = -1;
    EXPECT_EQ(At(r, 290, 6), (std::vector<int>{0xFF, 0xFF, 'A', 'R', 'N', 'D'}));
    EXPECT_EQ(At(r, 356, 5), (std::vector<int>{' ', 0, 0, 0x20, 0x41}));
    EXPECT_EQ(At(r, 369, 4), (std::vector<int>{0, 0, 0, 0x3F}));
    EXPECT_EQ(At(r, 373, 4), (std::vector<int>{7, 0, 10, 0}));
    EXPECT_EQ(At(r, 377, 8), (std::vector<int>{0, 0, 0xC0, 0x3F, 0, 0, 0xB4, 0x42}));
    EXPECT_EQ(At(r, 385, 4), (std::vector<int>{2, 0, 1, 0}));
    EXPECT_EQ(At(r, 389, 4), (std::vector<int>{1, 0, 'P', ' '}));
    EXPECT_EQ(At(r, 484, 4), (std::vector<int>{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(DrawFile, LeadAndAfterFieldsStandAtTheirOffsets) {
    DrawRecord r;
    r.LeadIn = LeadSpec{-2, 1.5f, 90, 3};
    r.LeadOut = LeadSpec{1, 2, 0.5f, -2};
    r.After = AfterAction{2, 10};
    EXPECT_EQ(At(r, 488, 12),
              (std::vector<int>{0xFE, 0xFF, 0, 0, 0xC0, 0x3F, 0, 0, 0xB4, 0x42, 3, 0}));
    EXPECT_EQ(At(r, 500, 12), (std::vector<int>{1, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x3F, 0xFE, 0xFF}));
    EXPECT_EQ(At(r, 512, 6), (std::vector<int>{2, 0, 0, 0, 0x20, 0x41}));
}

TEST(DrawFile, DecodeReadsEachFieldFromItsOffset) {
    std::string b(518, '\0');
    b[0] = static_cast<char>(0x36);  // 310 = 0x0136
    b[1] = 0x01;
    b[2] = 'Q';
    b[94] = 5;
    b[229] = static_cast<char>(0xBF);  // Value[20] = -1: 00 00 80 BF at 226
    b[228] = static_cast<char>(0x80);
    b[292] = 'S';
    b[511] = 0x40;  // LeadOut.LeadSpare = 0x4000
    b[517] = 0x40;  // After.ActionValue = 0x40000000 = 2
    const DrawRecord r = DecodeRecord(b);
    EXPECT_EQ(r.EntityCode, 310);
    EXPECT_EQ(r.EntityName.Bytes[0], 'Q');
    EXPECT_EQ(r.EntityName.Bytes[1], '\0');  // bytes as they stand, not blanks
    EXPECT_EQ(r.RecordCount, 5);
    EXPECT_EQ(r.Value[20], -1.0f);
    EXPECT_EQ(r.ToolA.Letter.Text(), "S");
    EXPECT_EQ(r.LeadOut.LeadSpare, 0x4000);
    EXPECT_EQ(r.After.ActionValue, 2.0f);
}

TEST(DrawFile, OpeningAMissingDrawingMakesAnEmptyFile) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "\\Shape.drw");
    EXPECT_TRUE(IsOpen(f));
    EXPECT_TRUE(std::filesystem::exists(dir.Path + "/Shape.drw"));
    EXPECT_EQ(RecordsOnDisk(f), 0);
    CloseDrawing(f);
    EXPECT_FALSE(IsOpen(f));
    EXPECT_EQ(SizeOf(dir.Path + "/Shape.drw"), 0u);
}

TEST(DrawFile, ReadAndWriteByRecordNumberFromOne) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(1, 3));
    WriteRecord(f, 2, Coded(210));
    WriteRecord(f, 3, Coded(350));
    EXPECT_EQ(SizeOf(dir.Path + "/a.drw"), 3u * 518);
    EXPECT_EQ(ReadRecord(f, 2).EntityCode, 210);
    WriteRecord(f, 2, Coded(311));
    EXPECT_EQ(ReadRecord(f, 2).EntityCode, 311);
    EXPECT_EQ(ReadRecord(f, 3).EntityCode, 350);
    EXPECT_EQ(ReadRecord(f, 1).RecordCount, 3);
    CloseDrawing(f);
    const std::string bytes = ReadAllBytes(dir.Path + "/a.drw");
    EXPECT_EQ(bytes.substr(518, 518), Bytes(Coded(311)));
}

TEST(DrawFile, WritingOnePastTheEndExtendsTheFile) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(1));
    EXPECT_EQ(SizeOf(dir.Path + "/a.drw"), 518u);
    WriteRecord(f, 2, Coded(210));
    EXPECT_EQ(SizeOf(dir.Path + "/a.drw"), 1036u);
    EXPECT_EQ(RecordsOnDisk(f), 2);
}

TEST(DrawFile, AReadPastTheEndGivesARecordOfZeros) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(210));
    const DrawRecord past = ReadRecord(f, 2);
    EXPECT_EQ(past.EntityCode, 0);
    EXPECT_EQ(Bytes(past), std::string(518, '\0'));  // zeros, texts included, not a cleared record
    EXPECT_EQ(Bytes(ReadRecord(f, 1000)), std::string(518, '\0'));
    EXPECT_EQ(SizeOf(dir.Path + "/a.drw"), 518u);  // reading does not extend the file
}

TEST(DrawFile, APartialLastRecordGivesItsBytesAndZerosAfter) {
    TempDir dir;
    const std::string first = Bytes(Coded(1, 2));
    std::string partial = Bytes(Coded(210)).substr(0, 100);
    partial[50] = 'x';
    WriteFileAtomically(dir.Path + "/a.drw", first + partial);
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    EXPECT_EQ(RecordsOnDisk(f), 2);
    const DrawRecord r = ReadRecord(f, 2);
    EXPECT_EQ(r.EntityCode, 210);
    EXPECT_EQ(Bytes(r), partial + std::string(418, '\0'));
    EXPECT_EQ(ReadRecord(f, 3).EntityCode, 0);
}

TEST(DrawFile, ARecordNumberBelowOneIsAFault) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    try {
        ReadRecord(f, 0);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Bad record number 0: " + dir.Path + "/a.drw");
    }
    EXPECT_THROW(WriteRecord(f, -1, Coded(1)), RunEnd);
}

TEST(DrawFile, AClosedDrawingCannotBeRead) {
    DrawingFile f;
    EXPECT_THROW(ReadRecord(f, 1), RunEnd);
    EXPECT_THROW(WriteRecord(f, 1, Coded(1)), RunEnd);
}

TEST(DrawFile, AWorkingFileStartsEmptyEvenOverAStaleLongerFile) {
    TempDir dir;
    const std::string path = dir.Path + "/PTemp.tmp";
    {
        DrawingFile stale;
        OpenDrawing(stale, path);
        for (int n = 1; n <= 5; ++n) WriteRecord(stale, n, Coded(static_cast<int16_t>(200 + n)));
    }
    EXPECT_EQ(SizeOf(path), 5u * 518);
    DrawingFile f;
    MakeWorkingFile(f, path);
    EXPECT_TRUE(IsOpen(f));
    EXPECT_EQ(SizeOf(path), 0u);
    WriteRecord(f, 1, Coded(1, 2));
    WriteRecord(f, 2, Coded(120));
    EXPECT_EQ(SizeOf(path), 2u * 518);
    EXPECT_EQ(ReadRecord(f, 3).EntityCode, 0);  // nothing of the stale records remains
}

TEST(DrawFile, AWorkingFileIsMadeWhereThereWasNone) {
    TempDir dir;
    DrawingFile f;
    MakeWorkingFile(f, dir.Path + "\\Shape.drw");
    EXPECT_TRUE(std::filesystem::exists(dir.Path + "/Shape.drw"));
    EXPECT_EQ(RecordsOnDisk(f), 0);
}

TEST(DrawFile, ADrawingOfRecordOneOnlyHasNothingToWalk) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(0, 1));
    int visits = 0;
    EXPECT_EQ(WalkDrawing(f, [&](int32_t, DrawRecord&) { ++visits; }), 0);
    EXPECT_EQ(visits, 0);
    WriteRecord(f, 1, Coded(0, 0));  // a count below 1 likewise
    EXPECT_EQ(WalkDrawing(f, [&](int32_t, DrawRecord&) { ++visits; }), 0);
    EXPECT_EQ(visits, 0);
    DrawingFile empty;
    OpenDrawing(empty, dir.Path + "/empty.drw");
    EXPECT_EQ(WalkDrawing(empty, [&](int32_t, DrawRecord&) { ++visits; }), 0);
    EXPECT_EQ(visits, 0);
}

TEST(DrawFile, AWalkVisitsRecordOneUpToRecordCount) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(0, 3));
    WriteRecord(f, 2, Coded(210));
    WriteRecord(f, 3, Coded(350));
    WriteRecord(f, 4, Coded(311));  // behind the count: out of reach
    std::vector<std::pair<int32_t, int16_t>> seen;
    EXPECT_EQ(WalkDrawing(f, [&](int32_t n, DrawRecord& r) { seen.emplace_back(n, r.EntityCode); }), 3);
    EXPECT_EQ(seen, (std::vector<std::pair<int32_t, int16_t>>{{1, 0}, {2, 210}, {3, 350}}));
}

TEST(DrawFile, AWalkEndsAtTheLastRecordOnDisk) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    WriteRecord(f, 1, Coded(0, 2000000000));
    WriteRecord(f, 2, Coded(210));
    int visits = 0;
    EXPECT_EQ(WalkDrawing(f, [&](int32_t, DrawRecord&) { ++visits; }), 2);
    EXPECT_EQ(visits, 2);
}

TEST(DrawFile, RewriteCopiesBackAndLeavesRecordsBehindTheNewCount) {
    TempDir dir;
    DrawingFile source, temp;
    OpenDrawing(source, dir.Path + "/Progmain.drw");
    DrawRecord header = Coded(0, 5);
    header.EntityText = "MILD STEEL";
    header.Value[1] = 2500;
    WriteRecord(source, 1, header);
    for (int n = 2; n <= 5; ++n) WriteRecord(source, n, Coded(static_cast<int16_t>(300 + n)));
    MakeWorkingFile(temp, dir.Path + "/PTemp.tmp");
    WriteRecord(temp, 1, header);
    WriteRecord(temp, 2, Coded(210));
    WriteRecord(temp, 3, Coded(220));
    RewriteFromTemp(source, temp, 3);
    const DrawRecord first = ReadRecord(source, 1);
    EXPECT_EQ(first.RecordCount, 3);
    EXPECT_EQ(first.EntityText.Trimmed(), "MILD STEEL");
    EXPECT_EQ(first.Value[1], 2500.0f);
    EXPECT_EQ(ReadRecord(source, 2).EntityCode, 210);
    EXPECT_EQ(ReadRecord(source, 3).EntityCode, 220);
    EXPECT_EQ(ReadRecord(source, 4).EntityCode, 304);  // still on disk, out of reach
    EXPECT_EQ(ReadRecord(source, 5).EntityCode, 305);
    EXPECT_EQ(RecordsOnDisk(source), 5);
}

TEST(DrawFile, RewriteGrowsTheSource) {
    TempDir dir;
    DrawingFile source, temp;
    OpenDrawing(source, dir.Path + "/Progmain.drw");
    WriteRecord(source, 1, Coded(0, 2));
    WriteRecord(source, 2, Coded(175));
    MakeWorkingFile(temp, dir.Path + "/" + std::string(PassTempName));
    WriteRecord(temp, 1, Coded(0, 2));
    for (int n = 2; n <= 4; ++n) WriteRecord(temp, n, Coded(120));
    RewriteFromTemp(source, temp, 4);
    EXPECT_EQ(RecordsOnDisk(source), 4);
    EXPECT_EQ(ReadRecordCount(source), 4);
    for (int n = 2; n <= 4; ++n) EXPECT_EQ(ReadRecord(source, n).EntityCode, 120);
}

TEST(DrawFile, ADrawingThatCannotBeOpenedIsAFileFault) {
    TempDir dir;
    std::filesystem::create_directory(dir.Path + "/Folder.drw");
    DrawingFile f;
    try {
        OpenDrawing(f, dir.Path + "/Folder.drw");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Cannot open file: " + dir.Path + "/Folder.drw");
    }
    EXPECT_FALSE(IsOpen(f));
}

TEST(DrawFile, NamesAreFoundWithoutRegardToCase) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/Progmain.drw");
    WriteRecord(f, 1, Coded(0, 1));
    CloseDrawing(f);
    OpenDrawing(f, dir.Path + "\\PROGMAIN.DRW");
    EXPECT_EQ(ReadRecordCount(f), 1);
    EXPECT_FALSE(std::filesystem::exists(dir.Path + "/PROGMAIN.DRW"));
}
