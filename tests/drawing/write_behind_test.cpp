// The write-behind of a drawing handle: held records, when they reach the file, and the chunked
// change of a drawing in place.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "test_support.h"

using namespace tvx;

namespace {

DrawRecord Coded(int16_t code, int32_t count = 0) {
    DrawRecord r;
    r.EntityCode = code;
    r.RecordCount = count;
    return r;
}

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

uintmax_t SizeOf(const std::string& path) { return std::filesystem::file_size(path); }

// Record n of the file as another handle reads it.
int16_t CodeSeenElsewhere(const std::string& path, int32_t number) {
    DrawingFile other;
    OpenDrawing(other, path);
    const int16_t code = ReadRecord(other, number).EntityCode;
    CloseDrawing(other);
    return code;
}

// A working file with write-behind set, as a pass makes it.
void MakeHeld(DrawingFile& file, const std::string& path) {
    MakeWorkingFile(file, path);
    file.WriteBehind = true;
}

// A working file written behind, in a directory of its own.
struct HeldFile {
    TempDir Dir;
    std::string Path;
    DrawingFile File;
    explicit HeldFile(const std::string& name) : Path(Dir.Path + "/" + name) { MakeHeld(File, Path); }
};

}  // namespace

TEST(WriteBehind, HeldRecordsAreNotOnDiskUntilWritten) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    for (int n = 1; n <= 10; ++n) WriteRecord(f, n, Coded(static_cast<int16_t>(200 + n)));
    EXPECT_EQ(SizeOf(path), 0u);
    EXPECT_EQ(f.Held.size(), 10u * RecordLength);
    FlushDrawing(f);
    EXPECT_TRUE(f.Held.empty());
    EXPECT_EQ(SizeOf(path), 10u * RecordLength);
    EXPECT_EQ(CodeSeenElsewhere(path, 10), 210);
}

TEST(WriteBehind, HeldRecordsReadBackThroughTheSameHandle) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    WriteRecord(f, 1, Coded(1, 3));
    WriteRecord(f, 2, Coded(210));
    WriteRecord(f, 3, Coded(350));
    EXPECT_EQ(ReadRecord(f, 2).EntityCode, 210);
    EXPECT_EQ(ReadRecord(f, 3).EntityCode, 350);
    EXPECT_EQ(ReadRecordCount(f), 3);
    // The walk goes on holding after a read.
    WriteRecord(f, 4, Coded(220));
    EXPECT_EQ(ReadRecord(f, 4).EntityCode, 220);
    EXPECT_EQ(ReadRecord(f, 1).EntityCode, 1);
}

TEST(WriteBehind, AHeldRecordIsReplacedInPlace) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(1));
    WriteRecord(f, 2, Coded(210));
    WriteRecord(f, 3, Coded(350));
    WriteRecord(f, 2, Coded(311));  // a held number: replaced, the run does not grow
    WriteRecord(f, 1, Coded(1, 4));
    EXPECT_EQ(f.Held.size(), 3u * RecordLength);
    EXPECT_EQ(SizeOf(path), 0u);
    WriteRecord(f, 4, Coded(220));
    CloseDrawing(f);
    const std::string bytes = ReadAllBytes(path);
    ASSERT_EQ(bytes.size(), 4u * RecordLength);
    EXPECT_EQ(bytes.substr(0, RecordLength), Bytes(Coded(1, 4)));
    EXPECT_EQ(bytes.substr(RecordLength, RecordLength), Bytes(Coded(311)));
    EXPECT_EQ(bytes.substr(2 * RecordLength, RecordLength), Bytes(Coded(350)));
    EXPECT_EQ(bytes.substr(3 * RecordLength, RecordLength), Bytes(Coded(220)));
}

TEST(WriteBehind, AWriteElsewhereWritesTheHeldRunFirst) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(1));
    WriteRecord(f, 2, Coded(210));
    // Record 5 is neither held nor behind the run: the run goes to disk, record 5 starts a new
    // one.
    WriteRecord(f, 5, Coded(350));
    EXPECT_EQ(SizeOf(path), 2u * RecordLength);
    EXPECT_EQ(CodeSeenElsewhere(path, 2), 210);
    EXPECT_EQ(f.HeldFirst, 5);
    EXPECT_EQ(f.Held.size(), RecordLength);
    WriteRecord(f, 6, Coded(360));
    CloseDrawing(f);
    EXPECT_EQ(SizeOf(path), 6u * RecordLength);
    EXPECT_EQ(CodeSeenElsewhere(path, 3), 0);  // the gap reads as zeros
    EXPECT_EQ(CodeSeenElsewhere(path, 5), 350);
    EXPECT_EQ(CodeSeenElsewhere(path, 6), 360);
}

TEST(WriteBehind, AWriteBeforeTheRunOfARecordAlreadyWrittenReplacesIt) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(1));
    WriteRecord(f, 2, Coded(210));
    FlushDrawing(f);
    WriteRecord(f, 3, Coded(350));
    WriteRecord(f, 2, Coded(311));  // written already: the held 3 goes first, then 2 is held
    WriteRecord(f, 3, Coded(360));  // behind the new run: joins it
    CloseDrawing(f);
    EXPECT_EQ(CodeSeenElsewhere(path, 2), 311);
    EXPECT_EQ(CodeSeenElsewhere(path, 3), 360);
    EXPECT_EQ(SizeOf(path), 3u * RecordLength);
}

TEST(WriteBehind, RecordsOnDiskCountsHeldRecords) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    EXPECT_EQ(RecordsOnDisk(f), 0);
    for (int n = 1; n <= 7; ++n) WriteRecord(f, n, Coded(210));
    EXPECT_EQ(RecordsOnDisk(f), 7);
    EXPECT_TRUE(f.Held.empty());
}

TEST(WriteBehind, CloseDrawingWritesHeldRecordsAndEndsTheWriteBehind) {
    HeldFile held("Shape.drw");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(120));
    WriteRecord(f, 2, Coded(130));
    CloseDrawing(f);
    EXPECT_FALSE(f.WriteBehind);
    EXPECT_TRUE(f.Held.empty());
    EXPECT_EQ(SizeOf(path), 2u * RecordLength);
    EXPECT_EQ(CodeSeenElsewhere(path, 2), 130);
}

TEST(WriteBehind, ReopeningWritesHeldRecordsAndEndsTheWriteBehind) {
    HeldFile held("Shape.drw");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(120));
    OpenDrawing(f, path);
    EXPECT_FALSE(f.WriteBehind);
    EXPECT_EQ(SizeOf(path), RecordLength);
    WriteRecord(f, 2, Coded(130));
    EXPECT_EQ(CodeSeenElsewhere(path, 2), 130);
}

TEST(WriteBehind, ARunOf256RecordsIsWrittenInOneGoAndTheNextRunStartsBehindIt) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    ASSERT_EQ(WriteBehindRecords, 256u);
    for (int n = 1; n <= 255; ++n) WriteRecord(f, n, Coded(static_cast<int16_t>(n)));
    EXPECT_EQ(SizeOf(path), 0u);
    WriteRecord(f, 256, Coded(256));
    EXPECT_EQ(SizeOf(path), 256u * RecordLength);
    EXPECT_TRUE(f.Held.empty());
    for (int n = 257; n <= 600; ++n) WriteRecord(f, n, Coded(static_cast<int16_t>(n)));
    EXPECT_EQ(SizeOf(path), 512u * RecordLength);
    EXPECT_EQ(f.HeldFirst, 513);
    EXPECT_EQ(f.Held.size(), 88u * RecordLength);
    CloseDrawing(f);
    EXPECT_EQ(SizeOf(path), 600u * RecordLength);
    DrawingFile g;
    OpenDrawing(g, path);
    for (int n = 1; n <= 600; ++n) ASSERT_EQ(ReadRecord(g, n).EntityCode, n) << n;
}

TEST(WriteBehind, WriteRecordsWritesTheHeldRunFirst) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    const std::string& path = held.Path;
    WriteRecord(f, 1, Coded(1));
    WriteRecord(f, 2, Coded(210));
    const std::vector<DrawRecord> over = {Coded(311), Coded(350)};
    WriteRecords(f, 2, over.data(), over.size());
    EXPECT_TRUE(f.Held.empty());
    EXPECT_EQ(CodeSeenElsewhere(path, 1), 1);
    EXPECT_EQ(CodeSeenElsewhere(path, 2), 311);
    EXPECT_EQ(CodeSeenElsewhere(path, 3), 350);
}

TEST(WriteBehind, AHeldWriteOfABadNumberIsAFaultAtOnce) {
    HeldFile held("PTemp.tmp");
    DrawingFile& f = held.File;
    EXPECT_THROW(WriteRecord(f, 0, Coded(1)), RunEnd);
    EXPECT_TRUE(f.Held.empty());
    DrawingFile closed;
    closed.WriteBehind = true;
    EXPECT_THROW(WriteRecord(closed, 1, Coded(1)), RunEnd);
}

TEST(WriteBehind, WithoutTheFlagEveryWriteIsOnDiskAtOnce) {
    TempDir dir;
    const std::string path = dir.Path + "/a.drw";
    DrawingFile f;
    MakeWorkingFile(f, path);
    EXPECT_FALSE(f.WriteBehind);
    DrawingFile other;
    OpenDrawing(other, path);
    for (int n = 1; n <= 3; ++n) {
        WriteRecord(f, n, Coded(static_cast<int16_t>(200 + n)));
        EXPECT_TRUE(f.Held.empty());
        EXPECT_EQ(SizeOf(path), static_cast<uintmax_t>(n) * RecordLength);
        EXPECT_EQ(ReadRecord(other, n).EntityCode, 200 + n);
    }
}

TEST(ChangeInPlace, WritesBackOnlyTheChangedRecords) {
    TempDir dir;
    const std::string path = dir.Path + "/a.drw";
    DrawingFile f;
    OpenDrawing(f, path);
    for (int n = 1; n <= 600; ++n) WriteRecord(f, n, Coded(static_cast<int16_t>(n)));
    std::vector<int32_t> seen;
    ChangeInPlace(f, 2, 599, [&](int32_t n, DrawRecord& record) {
        seen.push_back(n);
        EXPECT_EQ(record.EntityCode, n);
        if (n % 3 != 0) return false;
        record.EntityCode = static_cast<int16_t>(1000 + n);
        return true;
    });
    CloseDrawing(f);
    ASSERT_EQ(seen.size(), 598u);
    EXPECT_EQ(seen.front(), 2);
    EXPECT_EQ(seen.back(), 599);
    DrawingFile g;
    OpenDrawing(g, path);
    for (int n = 1; n <= 600; ++n) {
        const int expected = n >= 2 && n <= 599 && n % 3 == 0 ? 1000 + n : n;
        ASSERT_EQ(ReadRecord(g, n).EntityCode, expected) << n;
    }
}

TEST(ChangeInPlace, AnUnchangedPartialLastRecordKeepsItsLength) {
    TempDir dir;
    const std::string path = dir.Path + "/a.drw";
    WriteFileAtomically(path, Bytes(Coded(1, 2)) + Bytes(Coded(210)).substr(0, 100));
    DrawingFile f;
    OpenDrawing(f, path);
    ChangeInPlace(f, 1, 2, [](int32_t n, DrawRecord& record) {
        if (n != 1) return false;
        record.RecordCount = 5;
        return true;
    });
    CloseDrawing(f);
    EXPECT_EQ(SizeOf(path), RecordLength + 100u);
}

TEST(ChangeInPlace, AnEmptyRangeReadsNothing) {
    TempDir dir;
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/a.drw");
    int calls = 0;
    ChangeInPlace(f, 2, 1, [&](int32_t, DrawRecord&) {
        ++calls;
        return true;
    });
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(RecordsOnDisk(f), 0);
}

TEST(ChangeInPlace, ALookThatPassesARecordOverKeepsItFromTheChange) {
    TempDir dir;
    const std::string path = dir.Path + "/a.drw";
    DrawingFile f;
    OpenDrawing(f, path);
    for (int n = 1; n <= 300; ++n) WriteRecord(f, n, Coded(n % 7 == 0 ? 130 : 210));
    std::vector<int32_t> looked, changed;
    ChangeInPlace(
        f, 1, 300,
        [&](int32_t n, const RecordBytes& bytes) {
            looked.push_back(n);
            return EntityCodeOf(bytes) == 130;
        },
        [&](int32_t n, DrawRecord& record) {
            changed.push_back(n);
            EXPECT_EQ(record.EntityCode, 130);
            record.EntityCode = 210;
            record.Value[1] = static_cast<float>(n);
            return true;
        });
    CloseDrawing(f);
    EXPECT_EQ(looked.size(), 300u);
    ASSERT_EQ(changed.size(), 42u);
    EXPECT_EQ(changed.front(), 7);
    EXPECT_EQ(changed.back(), 294);
    DrawingFile g;
    OpenDrawing(g, path);
    for (int n = 1; n <= 300; ++n) {
        const DrawRecord r = ReadRecord(g, n);
        ASSERT_EQ(r.EntityCode, 210) << n;
        ASSERT_EQ(r.Value[1], n % 7 == 0 ? static_cast<float>(n) : 0.0f) << n;
    }
}

TEST(RecordBytes, AReadGivesTheBytesTheFileHoldsAndZerosAfterThem) {
    TempDir dir;
    const std::string path = dir.Path + "/a.drw";
    DrawRecord hit = Coded(210);
    hit.ToolA.Letter = "M";
    WriteFileAtomically(path, Bytes(Coded(1, 3)) + Bytes(hit) + Bytes(hit).substr(0, 100));
    DrawingFile f;
    OpenDrawing(f, path);
    RecordBytes bytes;
    EXPECT_EQ(ReadRecordBytes(f, 2, bytes), RecordLength);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), RecordLength), Bytes(hit));
    EXPECT_EQ(EntityCodeOf(bytes), 210);
    EXPECT_EQ(ToolLetterOf(bytes), 'M');
    EXPECT_EQ(ReadRecordBytes(f, 3, bytes), 100u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), RecordLength),
              Bytes(hit).substr(0, 100) + std::string(RecordLength - 100, '\0'));
    EXPECT_EQ(ReadRecordBytes(f, 4, bytes), 0u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), RecordLength), std::string(RecordLength, '\0'));
    EXPECT_EQ(ToolLetterOf(bytes), '\0');
}

// Raw records go through the write-behind as records do: held in runs, written at 256.
TEST(RecordBytes, ACopyOfRawRecordsIsHeldAsWrittenRecordsAre) {
    TempDir dir;
    DrawingFile source;
    OpenDrawing(source, dir.Path + "/a.drw");
    for (int n = 1; n <= 300; ++n) WriteRecord(source, n, Coded(static_cast<int16_t>(n)));
    DrawingFile temp;
    MakeHeld(temp, dir.Path + "/PTemp.tmp");
    CopyRecordBytes(source, temp, 1, 300);
    EXPECT_EQ(SizeOf(dir.Path + "/PTemp.tmp"), 256u * RecordLength);
    EXPECT_EQ(temp.HeldFirst, 257);
    EXPECT_EQ(temp.Held.size(), 44u * RecordLength);
    CloseDrawing(temp);
    EXPECT_EQ(ReadAllBytes(dir.Path + "/PTemp.tmp"), ReadAllBytes(dir.Path + "/a.drw"));
}

TEST(RecordBytes, ARewriteFromALaterRecordLeavesTheRecordsBeforeItAlone) {
    TempDir dir;
    DrawingFile source, temp;
    OpenDrawing(source, dir.Path + "/Progmain.drw");
    WriteRecord(source, 1, Coded(1, 4));
    for (int n = 2; n <= 4; ++n) WriteRecord(source, n, Coded(static_cast<int16_t>(300 + n)));
    MakeWorkingFile(temp, dir.Path + "/PTemp.tmp");
    for (int n = 1; n <= 5; ++n) WriteRecord(temp, n, Coded(static_cast<int16_t>(200 + n)));
    RewriteFromTemp(source, temp, 5, 4);
    EXPECT_EQ(ReadRecordCount(source), 5);
    EXPECT_EQ(ReadRecord(source, 1).EntityCode, 1);
    EXPECT_EQ(ReadRecord(source, 2).EntityCode, 302);
    EXPECT_EQ(ReadRecord(source, 3).EntityCode, 303);
    EXPECT_EQ(ReadRecord(source, 4).EntityCode, 204);
    EXPECT_EQ(ReadRecord(source, 5).EntityCode, 205);
}
