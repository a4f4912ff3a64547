#include "drawing/drawfile.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <vector>
#include <sys/types.h>

#include "common/fault.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/stdio_unlocked.h"
#include "common/textfile.h"

namespace tvx {

// Each field starts where the one before it ends, and the fields fill their record exactly.
static_assert(EntityCodeOffset == 0);
static_assert(EntityNameOffset == EntityCodeOffset + EntityCodeWidth);
static_assert(EntityTextOffset == EntityNameOffset + EntityNameWidth);
static_assert(SpareWordOffset == EntityTextOffset + EntityTextWidth);
static_assert(RecordCountOffset == SpareWordOffset + SpareWordWidth);
static_assert(CarryWord1Offset == RecordCountOffset + RecordCountWidth);
static_assert(CarryWord2Offset == CarryWord1Offset + CarryWord1Width);
static_assert(PointOffset == CarryWord2Offset + CarryWord2Width);
static_assert(ValueOffset == PointOffset + PointWidth);
static_assert(CountOffset == ValueOffset + ValueWidth);
static_assert(SpareOffset == CountOffset + CountWidth);
static_assert(SideOffset == SpareOffset + SpareWidth);
static_assert(FollowFlagOffset == SideOffset + SideWidth);
static_assert(ExtentOffset == FollowFlagOffset + FollowFlagWidth);
static_assert(MarginOffset == ExtentOffset + ExtentWidth);
static_assert(ToolAOffset == MarginOffset + MarginWidth);
static_assert(ToolBOffset == ToolAOffset + ToolAWidth);
static_assert(LeadInOffset == ToolBOffset + ToolBWidth);
static_assert(LeadOutOffset == LeadInOffset + LeadInWidth);
static_assert(AfterOffset == LeadOutOffset + LeadOutWidth);
static_assert(AfterOffset + AfterWidth == RecordLength && RecordLength == 518);

static_assert(PresentOffset == 0);
static_assert(LetterOffset == PresentOffset + PresentWidth);
static_assert(ToolNameOffset == LetterOffset + LetterWidth);
static_assert(SizeOffset == ToolNameOffset + ToolNameWidth);
static_assert(ToolNumberOffset == SizeOffset + SizeWidth);
static_assert(WorkTypeOffset == ToolNumberOffset + ToolNumberWidth);
static_assert(ToolStepOffset == WorkTypeOffset + WorkTypeWidth);
static_assert(ToolAngleOffset == ToolStepOffset + ToolStepWidth);
static_assert(StageIndexOffset == ToolAngleOffset + ToolAngleWidth);
static_assert(StageIndexOffset + StageIndexWidth == ToolSpecLength && ToolSpecLength == 99);

static_assert(LeadKindOffset == 0);
static_assert(LeadLengthOffset == LeadKindOffset + LeadKindWidth);
static_assert(LeadAngleOffset == LeadLengthOffset + LeadLengthWidth);
static_assert(LeadSpareOffset == LeadAngleOffset + LeadAngleWidth);
static_assert(LeadSpareOffset + LeadSpareWidth == LeadSpecLength && LeadSpecLength == 12);

static_assert(ActionCodeOffset == 0);
static_assert(ActionValueOffset == ActionCodeOffset + ActionCodeWidth);
static_assert(ActionValueOffset + ActionValueWidth == AfterActionLength && AfterActionLength == 6);

// The widths agree with the fields in memory.
static_assert(EntityNameWidth == decltype(DrawRecord::EntityName)::Size);
static_assert(EntityTextWidth == decltype(DrawRecord::EntityText)::Size);
static_assert(LetterWidth == decltype(ToolSpec::Letter)::Size);
static_assert(ToolNameWidth == decltype(ToolSpec::ToolName)::Size);
static_assert(PointWidth == decltype(DrawRecord::Point)::Bound * 8);
static_assert(ValueWidth == decltype(DrawRecord::Value)::Bound * 4);
static_assert(CountWidth == decltype(DrawRecord::Count)::Bound * 2);
static_assert(SpareWidth == decltype(DrawRecord::Spare)::Bound * sizeof(RawCell));
static_assert(ExtentWidth == decltype(DrawRecord::Extent)::Bound * 8);
static_assert(MarginWidth == decltype(DrawRecord::Margin)::Bound * 8);
static_assert(SizeWidth == decltype(ToolSpec::Size)::Bound * 4);

namespace {

using Bytes = unsigned char*;
using ConstBytes = const unsigned char*;

// The file is little-endian; on a little-endian host a field is its bytes as they stand.
constexpr bool HostIsLittleEndian = std::endian::native == std::endian::little;

void PutInt16(Bytes at, int16_t v) {
    const auto u = static_cast<uint16_t>(v);
    if constexpr (HostIsLittleEndian) {
        std::memcpy(at, &u, 2);
    } else {
        at[0] = static_cast<unsigned char>(u & 0xFF);
        at[1] = static_cast<unsigned char>(u >> 8);
    }
}

void PutInt32(Bytes at, int32_t v) {
    const auto u = static_cast<uint32_t>(v);
    if constexpr (HostIsLittleEndian) {
        std::memcpy(at, &u, 4);
    } else {
        for (int i = 0; i < 4; ++i) at[i] = static_cast<unsigned char>((u >> (8 * i)) & 0xFF);
    }
}

void PutSingle(Bytes at, float v) { PutInt32(at, static_cast<int32_t>(std::bit_cast<uint32_t>(v))); }

void PutPoint(Bytes at, const SinglePoint& p) {
    PutSingle(at, p.X);
    PutSingle(at + 4, p.Y);
}

template <size_t Width>
void PutText(Bytes at, const FixedText<Width>& text) {
    std::memcpy(at, text.Bytes.data(), Width);
}

int16_t GetInt16(ConstBytes at) {
    uint16_t u = 0;
    if constexpr (HostIsLittleEndian) std::memcpy(&u, at, 2);
    else u = static_cast<uint16_t>(at[0] | (at[1] << 8));
    return static_cast<int16_t>(u);
}

uint32_t GetWord32(ConstBytes at) {
    uint32_t u = 0;
    if constexpr (HostIsLittleEndian) std::memcpy(&u, at, 4);
    else
        for (int i = 3; i >= 0; --i) u = (u << 8) | at[i];
    return u;
}

int32_t GetInt32(ConstBytes at) { return static_cast<int32_t>(GetWord32(at)); }

float GetSingle(ConstBytes at) { return std::bit_cast<float>(GetWord32(at)); }

SinglePoint GetPoint(ConstBytes at) { return SinglePoint{GetSingle(at), GetSingle(at + 4)}; }

template <size_t Width>
void GetText(ConstBytes at, FixedText<Width>& text) {
    std::memcpy(text.Bytes.data(), at, Width);
}

void EncodeTool(Bytes at, const ToolSpec& tool) {
    PutInt16(at + PresentOffset, tool.Present);
    PutText(at + LetterOffset, tool.Letter);
    PutText(at + ToolNameOffset, tool.ToolName);
    for (int i = 1; i <= 4; ++i) PutSingle(at + SizeOffset + 4 * static_cast<size_t>(i - 1), tool.Size[i]);
    PutInt16(at + ToolNumberOffset, tool.ToolNumber);
    PutInt16(at + WorkTypeOffset, tool.WorkType);
    PutSingle(at + ToolStepOffset, tool.ToolStep);
    PutSingle(at + ToolAngleOffset, tool.ToolAngle);
    PutInt32(at + StageIndexOffset, tool.StageIndex);
}

void DecodeTool(ConstBytes at, ToolSpec& tool) {
    tool.Present = GetInt16(at + PresentOffset);
    GetText(at + LetterOffset, tool.Letter);
    GetText(at + ToolNameOffset, tool.ToolName);
    for (int i = 1; i <= 4; ++i) tool.Size[i] = GetSingle(at + SizeOffset + 4 * static_cast<size_t>(i - 1));
    tool.ToolNumber = GetInt16(at + ToolNumberOffset);
    tool.WorkType = GetInt16(at + WorkTypeOffset);
    tool.ToolStep = GetSingle(at + ToolStepOffset);
    tool.ToolAngle = GetSingle(at + ToolAngleOffset);
    tool.StageIndex = GetInt32(at + StageIndexOffset);
}

void EncodeLead(Bytes at, const LeadSpec& lead) {
    PutInt16(at + LeadKindOffset, lead.LeadKind);
    PutSingle(at + LeadLengthOffset, lead.LeadLength);
    PutSingle(at + LeadAngleOffset, lead.LeadAngle);
    PutInt16(at + LeadSpareOffset, lead.LeadSpare);
}

void DecodeLead(ConstBytes at, LeadSpec& lead) {
    lead.LeadKind = GetInt16(at + LeadKindOffset);
    lead.LeadLength = GetSingle(at + LeadLengthOffset);
    lead.LeadAngle = GetSingle(at + LeadAngleOffset);
    lead.LeadSpare = GetInt16(at + LeadSpareOffset);
}

void EncodeAfter(Bytes at, const AfterAction& after) {
    PutInt16(at + ActionCodeOffset, after.ActionCode);
    PutSingle(at + ActionValueOffset, after.ActionValue);
}

void DecodeAfter(ConstBytes at, AfterAction& after) {
    after.ActionCode = GetInt16(at + ActionCodeOffset);
    after.ActionValue = GetSingle(at + ActionValueOffset);
}

size_t Index0(int i) { return static_cast<size_t>(i - 1); }

}  // namespace

RecordBytes EncodeRecord(const DrawRecord& record) {
    RecordBytes bytes{};
    const Bytes b = bytes.data();
    PutInt16(b + EntityCodeOffset, record.EntityCode);
    PutText(b + EntityNameOffset, record.EntityName);
    PutText(b + EntityTextOffset, record.EntityText);
    PutInt16(b + SpareWordOffset, record.SpareWord);
    PutInt32(b + RecordCountOffset, record.RecordCount);
    PutInt16(b + CarryWord1Offset, record.CarryWord1);
    PutInt16(b + CarryWord2Offset, record.CarryWord2);
    for (int i = 1; i <= 6; ++i) PutPoint(b + PointOffset + 8 * Index0(i), record.Point[i]);
    for (int i = 1; i <= 20; ++i) PutSingle(b + ValueOffset + 4 * Index0(i), record.Value[i]);
    for (int i = 1; i <= 8; ++i) PutInt16(b + CountOffset + 2 * Index0(i), record.Count[i]);
    for (int i = 1; i <= 2; ++i)
        for (size_t k = 0; k < 4; ++k) b[SpareOffset + 4 * Index0(i) + k] = record.Spare[i][k];
    PutInt16(b + SideOffset, record.Side);
    PutInt16(b + FollowFlagOffset, record.FollowFlag);
    for (int i = 1; i <= 2; ++i) {
        PutPoint(b + ExtentOffset + 8 * Index0(i), record.Extent[i]);
        PutPoint(b + MarginOffset + 8 * Index0(i), record.Margin[i]);
    }
    EncodeTool(b + ToolAOffset, record.ToolA);
    EncodeTool(b + ToolBOffset, record.ToolB);
    EncodeLead(b + LeadInOffset, record.LeadIn);
    EncodeLead(b + LeadOutOffset, record.LeadOut);
    EncodeAfter(b + AfterOffset, record.After);
    return bytes;
}

void DecodeRecord(std::string_view bytes, DrawRecord& record) {
    // A whole record is read where it lies; a short one from a copy with zeros behind it.
    RecordBytes full;
    ConstBytes b = reinterpret_cast<ConstBytes>(bytes.data());
    if (bytes.size() < RecordLength) {
        full.fill(0);
        if (!bytes.empty()) std::memcpy(full.data(), bytes.data(), bytes.size());
        b = full.data();
    }
    record.EntityCode = GetInt16(b + EntityCodeOffset);
    GetText(b + EntityNameOffset, record.EntityName);
    GetText(b + EntityTextOffset, record.EntityText);
    record.SpareWord = GetInt16(b + SpareWordOffset);
    record.RecordCount = GetInt32(b + RecordCountOffset);
    record.CarryWord1 = GetInt16(b + CarryWord1Offset);
    record.CarryWord2 = GetInt16(b + CarryWord2Offset);
    for (int i = 1; i <= 6; ++i) record.Point[i] = GetPoint(b + PointOffset + 8 * Index0(i));
    for (int i = 1; i <= 20; ++i) record.Value[i] = GetSingle(b + ValueOffset + 4 * Index0(i));
    for (int i = 1; i <= 8; ++i) record.Count[i] = GetInt16(b + CountOffset + 2 * Index0(i));
    for (int i = 1; i <= 2; ++i)
        for (size_t k = 0; k < 4; ++k) record.Spare[i][k] = b[SpareOffset + 4 * Index0(i) + k];
    record.Side = GetInt16(b + SideOffset);
    record.FollowFlag = GetInt16(b + FollowFlagOffset);
    for (int i = 1; i <= 2; ++i) {
        record.Extent[i] = GetPoint(b + ExtentOffset + 8 * Index0(i));
        record.Margin[i] = GetPoint(b + MarginOffset + 8 * Index0(i));
    }
    DecodeTool(b + ToolAOffset, record.ToolA);
    DecodeTool(b + ToolBOffset, record.ToolB);
    DecodeLead(b + LeadInOffset, record.LeadIn);
    DecodeLead(b + LeadOutOffset, record.LeadOut);
    DecodeAfter(b + AfterOffset, record.After);
}

DrawRecord DecodeRecord(std::string_view bytes) {
    DrawRecord record;
    DecodeRecord(bytes, record);
    return record;
}

std::vector<DrawRecord> DecodeRecords(std::string_view bytes) {
    std::vector<DrawRecord> records((bytes.size() + RecordLength - 1) / RecordLength);
    for (size_t i = 0; i < records.size(); ++i) DecodeRecord(bytes.substr(i * RecordLength, RecordLength), records[i]);
    return records;
}

namespace {

void RequireOpen(const DrawingFile& file) {
    if (!file.File) FileFault("File not open", file.Path);
}

// The byte offset of record n; a number below 1 is the fault "Bad record number".
off_t RecordPosition(const DrawingFile& file, int32_t number) {
    if (number < 1) RunFault("Bad record number " + LongText(number) + ": " + file.Path);
    return static_cast<off_t>(number - 1) * static_cast<off_t>(RecordLength);
}

}  // namespace

void OpenDrawing(DrawingFile& file, const std::string& path) {
    CloseDrawing(file);
    const std::string native = FindPath(path);
    std::FILE* f = std::fopen(native.c_str(), "r+b");
    if (!f) {
        // A drawing that may not be written (a library on a read-only share) is opened for
        // reading; a missing one is made.
        if (FileExists(path)) {
            f = std::fopen(native.c_str(), "rb");
        } else {
            f = std::fopen(native.c_str(), "w+b");
            if (f) NoteFileMade(native);
        }
    }
    if (!f) FileFault("Cannot open file", path);
    // The buffer is given, not only its size: without one the C library takes the file system's
    // block size and a walk reads 4 KB at a time.
    if (!file.Buffer) file.Buffer = std::make_unique_for_overwrite<char[]>(DrawingBufferSize);
    std::setvbuf(f, file.Buffer.get(), _IOFBF, DrawingBufferSize);
    file.Path = path;
    file.File.reset(f);
    file.ReadPosition = -1;
}

void CloseDrawing(DrawingFile& file) {
    if (file.File) FlushDrawing(file);
    std::vector<unsigned char>().swap(file.Held);
    file.HeldFirst = 0;
    file.WriteBehind = false;
    file.File.reset();
    file.ReadPosition = -1;
}

bool IsOpen(const DrawingFile& file) { return file.File != nullptr; }

size_t ReadRecordBytes(DrawingFile& file, int32_t number, RecordBytes& bytes) {
    return ReadRecordRun(file, number, &bytes, 1);
}

size_t ReadRecordRun(DrawingFile& file, int32_t first, RecordBytes* records, size_t count) {
    if (count == 0) return 0;
    RequireOpen(file);
    FlushDrawing(file);
    const off_t position = RecordPosition(file, first);
    std::FILE* f = file.File.get();
    // The records of an array lie one behind the other, with nothing between them.
    static_assert(sizeof(RecordBytes) == RecordLength);
    unsigned char* const bytes = records[0].data();
    const size_t wanted = count * RecordLength;
    size_t got = 0;
    const bool inTurn = file.ReadPosition == static_cast<int64_t>(position);
    file.ReadPosition = -1;
    // A read of more than the stream's buffer goes straight into the records.
    if (inTurn || ::fseeko(f, position, SEEK_SET) == 0) got = ReadUnlocked(bytes, wanted, f);
    if (got == wanted) file.ReadPosition = static_cast<int64_t>(position) + static_cast<int64_t>(wanted);
    if (FailedUnlocked(f)) {
        ClearUnlocked(f);
        FileFault("Cannot read file", file.Path);
    }
    ClearUnlocked(f);
    if (got < wanted) std::fill(bytes + got, bytes + wanted, 0);
    return got;
}

void ReadRecord(DrawingFile& file, int32_t number, DrawRecord& record) {
    RecordBytes bytes;
    ReadRecordBytes(file, number, bytes);
    DecodeRecord(std::string_view(reinterpret_cast<const char*>(bytes.data()), RecordLength), record);
}

DrawRecord ReadRecord(DrawingFile& file, int32_t number) {
    DrawRecord record;
    ReadRecord(file, number, record);
    return record;
}

namespace {

// Writes the bytes of whole records from record number on, and flushes them so that every other
// handle of the file reads them at once.
void WriteBytesAt(DrawingFile& file, int32_t number, const unsigned char* bytes, size_t size) {
    RequireOpen(file);
    const off_t position = RecordPosition(file, number);
    std::FILE* f = file.File.get();
    file.ReadPosition = -1;
    if (::fseeko(f, position, SEEK_SET) != 0 || std::fwrite(bytes, 1, size, f) != size || std::fflush(f) != 0) {
        std::clearerr(f);
        FileFault("Cannot write file", file.Path);
    }
}

}  // namespace

void FlushDrawing(DrawingFile& file) {
    if (file.Held.empty()) return;
    // The run leaves the handle before it is written: a write that fails does not leave it
    // behind to be written again by the close that follows.
    std::vector<unsigned char> run;
    run.swap(file.Held);
    WriteBytesAt(file, file.HeldFirst, run.data(), run.size());
    run.clear();
    file.Held.swap(run);  // the next run reuses the room
}

void WriteRecordBytes(DrawingFile& file, int32_t number, const RecordBytes& bytes) {
    if (!file.WriteBehind) {
        WriteBytesAt(file, number, bytes.data(), RecordLength);
        return;
    }
    // A closed file or a number below 1 is a fault at once, not when the run is written.
    RequireOpen(file);
    RecordPosition(file, number);
    const int64_t held = static_cast<int64_t>(file.Held.size() / RecordLength);
    const int64_t offset = static_cast<int64_t>(number) - file.HeldFirst;
    if (held > 0 && offset >= 0 && offset < held) {
        std::copy(bytes.begin(), bytes.end(), file.Held.begin() + static_cast<std::ptrdiff_t>(offset * RecordLength));
        return;
    }
    if (held > 0 && offset != held) FlushDrawing(file);
    if (file.Held.empty()) {
        file.HeldFirst = number;
        file.Held.reserve(WriteBehindRecords * RecordLength);
    }
    file.Held.insert(file.Held.end(), bytes.begin(), bytes.end());
    if (file.Held.size() >= WriteBehindRecords * RecordLength) FlushDrawing(file);
}

void WriteRecord(DrawingFile& file, int32_t number, const DrawRecord& record) {
    WriteRecordBytes(file, number, EncodeRecord(record));
}

void CopyRecordBytes(DrawingFile& from, DrawingFile& to, int32_t first, int32_t last) {
    RecordBytes bytes;
    for (int64_t n = first; n <= last; ++n) {
        ReadRecordBytes(from, static_cast<int32_t>(n), bytes);
        WriteRecordBytes(to, static_cast<int32_t>(n), bytes);
    }
}

int16_t EntityCodeOf(const RecordBytes& bytes) { return GetInt16(bytes.data() + EntityCodeOffset); }

char ToolLetterOf(const RecordBytes& bytes) { return static_cast<char>(bytes[ToolAOffset + LetterOffset]); }

void WriteRecords(DrawingFile& file, int32_t first, const DrawRecord* records, size_t count) {
    if (file.File) FlushDrawing(file);
    if (count == 0) return;
    std::vector<unsigned char> bytes(count * RecordLength);
    for (size_t i = 0; i < count; ++i) {
        const RecordBytes one = EncodeRecord(records[i]);
        std::copy(one.begin(), one.end(), bytes.begin() + static_cast<std::ptrdiff_t>(i * RecordLength));
    }
    WriteBytesAt(file, first, bytes.data(), bytes.size());
}

int32_t RecordsOnDisk(DrawingFile& file) {
    RequireOpen(file);
    FlushDrawing(file);
    std::FILE* f = file.File.get();
    file.ReadPosition = -1;
    if (::fseeko(f, 0, SEEK_END) != 0) FileFault("Cannot read file", file.Path);
    const off_t size = ::ftello(f);
    if (size < 0) FileFault("Cannot read file", file.Path);
    const off_t records = (size + static_cast<off_t>(RecordLength) - 1) / static_cast<off_t>(RecordLength);
    return records > INT32_MAX ? INT32_MAX : static_cast<int32_t>(records);
}

void MakeWorkingFile(DrawingFile& file, const std::string& path) {
    CloseDrawing(file);
    TextOutput made;
    OpenTextOutput(made, path);
    CloseText(made);
    DeleteFile(path);
    OpenDrawing(file, path);
}

int32_t ReadRecordCount(DrawingFile& file) { return ReadRecord(file, 1).RecordCount; }

int32_t WalkDrawing(DrawingFile& file, const std::function<void(int32_t, DrawRecord&)>& visit) {
    const int32_t count = ReadRecordCount(file);
    if (count < 2) return 0;
    const int32_t onDisk = RecordsOnDisk(file);
    const int32_t last = count < onDisk ? count : onDisk;
    DrawRecord record;
    for (int64_t n = 1; n <= last; ++n) {
        ReadRecord(file, static_cast<int32_t>(n), record);
        visit(static_cast<int32_t>(n), record);
    }
    return last;
}

void ChangeInPlace(DrawingFile& file, int32_t first, int32_t last,
                   const std::function<bool(int32_t, DrawRecord&)>& change) {
    ChangeInPlace(file, first, last, [](int32_t, const RecordBytes&) { return true; }, change);
}

void ChangeInPlace(DrawingFile& file, int32_t first, int32_t last,
                   const std::function<bool(int32_t, const RecordBytes&)>& look,
                   const std::function<bool(int32_t, DrawRecord&)>& change) {
    constexpr int64_t Chunk = static_cast<int64_t>(WriteBehindRecords);
    std::vector<RecordBytes> chunk;
    std::vector<bool> changed;
    std::vector<unsigned char> run;
    DrawRecord record;
    for (int64_t from = first < 1 ? 1 : first; from <= last; from += Chunk) {
        const int64_t to = last - from < Chunk ? last : from + Chunk - 1;
        const size_t size = static_cast<size_t>(to - from + 1);
        chunk.resize(size);
        changed.assign(size, false);
        // The whole chunk is read before any record of it is changed.
        ReadRecordRun(file, static_cast<int32_t>(from), chunk.data(), size);
        for (size_t i = 0; i < size; ++i) {
            const auto n = static_cast<int32_t>(from + static_cast<int64_t>(i));
            if (!look(n, chunk[i])) continue;
            DecodeRecord(std::string_view(reinterpret_cast<const char*>(chunk[i].data()), RecordLength), record);
            if (!change(n, record)) continue;
            chunk[i] = EncodeRecord(record);
            changed[i] = true;
        }
        for (size_t i = 0; i < size;) {
            if (!changed[i]) {
                ++i;
                continue;
            }
            size_t end = i + 1;
            while (end < size && changed[end]) ++end;
            run.clear();
            for (size_t k = i; k < end; ++k) run.insert(run.end(), chunk[k].begin(), chunk[k].end());
            FlushDrawing(file);
            WriteBytesAt(file, static_cast<int32_t>(from + static_cast<int64_t>(i)), run.data(), run.size());
            i = end;
        }
    }
}

void RewriteFromTemp(DrawingFile& source, DrawingFile& temp, int32_t newCount, int32_t from) {
    // The records' bytes are copied as they stand, in batches: a record read and written again
    // would give the same bytes, and one write of many records replaces one flushed write each.
    // Records the working file does not hold (a count beyond its end) are written as zeros, as
    // a read of them would give.
    constexpr int32_t Batch = 256;
    FlushDrawing(temp);
    RequireOpen(temp);
    std::vector<unsigned char> bytes;
    for (int32_t first = from < 2 ? 2 : from; first <= newCount && first > 0; first += Batch) {
        const int32_t last = newCount - first < Batch ? newCount : first + Batch - 1;
        const size_t size = static_cast<size_t>(last - first + 1) * RecordLength;
        bytes.assign(size, 0);
        std::FILE* f = temp.File.get();
        temp.ReadPosition = -1;
        if (::fseeko(f, RecordPosition(temp, first), SEEK_SET) != 0) FileFault("Cannot read file", temp.Path);
        std::fread(bytes.data(), 1, size, f);
        if (std::ferror(f)) {
            std::clearerr(f);
            FileFault("Cannot read file", temp.Path);
        }
        std::clearerr(f);
        FlushDrawing(source);
        WriteBytesAt(source, first, bytes.data(), size);
        if (last == INT32_MAX) break;
    }
    WriteRecordCount(source, newCount);
}

void WriteRecordCount(DrawingFile& file, int32_t count) {
    DrawRecord record;
    ReadRecord(file, 1, record);
    record.RecordCount = count;
    WriteRecord(file, 1, record);
}

}  // namespace tvx
