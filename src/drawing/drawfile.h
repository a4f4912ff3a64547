#pragma once
// The file form of a drawing: random access, 518-byte records numbered from 1, no header
// outside the records. Integers are little-endian, singles IEEE 754 32-bit, texts 8-bit and
// blank padded. Every field is written and read by its own offset; the in-memory record has no
// bearing on the file.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/record.h"

namespace tvx {

// Lengths of the record and its sub-records.
inline constexpr size_t RecordLength = 518;
inline constexpr size_t ToolSpecLength = 99;
inline constexpr size_t LeadSpecLength = 12;
inline constexpr size_t AfterActionLength = 6;

// Offsets and widths of the record's fields.
inline constexpr size_t EntityCodeOffset = 0, EntityCodeWidth = 2;
inline constexpr size_t EntityNameOffset = 2, EntityNameWidth = 18;
inline constexpr size_t EntityTextOffset = 20, EntityTextWidth = 72;
inline constexpr size_t SpareWordOffset = 92, SpareWordWidth = 2;
inline constexpr size_t RecordCountOffset = 94, RecordCountWidth = 4;
inline constexpr size_t CarryWord1Offset = 98, CarryWord1Width = 2;
inline constexpr size_t CarryWord2Offset = 100, CarryWord2Width = 2;
inline constexpr size_t PointOffset = 102, PointWidth = 6 * 8;
inline constexpr size_t ValueOffset = 150, ValueWidth = 20 * 4;
inline constexpr size_t CountOffset = 230, CountWidth = 8 * 2;
inline constexpr size_t SpareOffset = 246, SpareWidth = 2 * 4;
inline constexpr size_t SideOffset = 254, SideWidth = 2;
inline constexpr size_t FollowFlagOffset = 256, FollowFlagWidth = 2;
inline constexpr size_t ExtentOffset = 258, ExtentWidth = 2 * 8;
inline constexpr size_t MarginOffset = 274, MarginWidth = 2 * 8;
inline constexpr size_t ToolAOffset = 290, ToolAWidth = ToolSpecLength;
inline constexpr size_t ToolBOffset = 389, ToolBWidth = ToolSpecLength;
inline constexpr size_t LeadInOffset = 488, LeadInWidth = LeadSpecLength;
inline constexpr size_t LeadOutOffset = 500, LeadOutWidth = LeadSpecLength;
inline constexpr size_t AfterOffset = 512, AfterWidth = AfterActionLength;

// Offsets and widths inside a ToolSpec.
inline constexpr size_t PresentOffset = 0, PresentWidth = 2;
inline constexpr size_t LetterOffset = 2, LetterWidth = 1;
inline constexpr size_t ToolNameOffset = 3, ToolNameWidth = 64;
inline constexpr size_t SizeOffset = 67, SizeWidth = 4 * 4;
inline constexpr size_t ToolNumberOffset = 83, ToolNumberWidth = 2;
inline constexpr size_t WorkTypeOffset = 85, WorkTypeWidth = 2;
inline constexpr size_t ToolStepOffset = 87, ToolStepWidth = 4;
inline constexpr size_t ToolAngleOffset = 91, ToolAngleWidth = 4;
inline constexpr size_t StageIndexOffset = 95, StageIndexWidth = 4;

// Offsets and widths inside a LeadSpec.
inline constexpr size_t LeadKindOffset = 0, LeadKindWidth = 2;
inline constexpr size_t LeadLengthOffset = 2, LeadLengthWidth = 4;
inline constexpr size_t LeadAngleOffset = 6, LeadAngleWidth = 4;
inline constexpr size_t LeadSpareOffset = 10, LeadSpareWidth = 2;

// Offsets and widths inside an AfterAction.
inline constexpr size_t ActionCodeOffset = 0, ActionCodeWidth = 2;
inline constexpr size_t ActionValueOffset = 2, ActionValueWidth = 4;

using RecordBytes = std::array<unsigned char, RecordLength>;

// The 518 bytes of a record.
RecordBytes EncodeRecord(const DrawRecord& record);
// A record from its bytes. Fewer than 518 bytes are the present bytes with zeros after them
// (a partial last record, or none at all past the end of a file); bytes beyond 518 are not
// looked at.
void DecodeRecord(std::string_view bytes, DrawRecord& record);
DrawRecord DecodeRecord(std::string_view bytes);
// Every record of a drawing's bytes, in order; a partial last record as DecodeRecord reads it.
std::vector<DrawRecord> DecodeRecords(std::string_view bytes);

// A drawing file open for random access.
struct DrawingFile {
    std::string Path;  // as opened, for messages
    // The stream's buffer, DrawingBufferSize bytes, kept from one opening to the next. It stands
    // before File so that it outlives the stream that uses it.
    std::unique_ptr<char[]> Buffer;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> File{nullptr, &std::fclose};
    // Where the stream stands after a read of this handle, -1 when not known: a read of the
    // next record in turn goes on without a seek, so that a walk is read through the buffer.
    int64_t ReadPosition = -1;
    // Write-behind, for a working file that no other handle reads while it is written: set by
    // its owner after opening, cleared by every opening and closing. WriteRecord then holds the
    // bytes of a run of consecutive records (HeldFirst on) instead of writing each at once; the
    // run is written in one write when it reaches WriteBehindRecords records, and before any
    // read, count or other write through this handle, by FlushDrawing and by CloseDrawing.
    // Records still held when the handle is dropped without FlushDrawing or CloseDrawing (a run
    // that ended in a fault) are never written.
    bool WriteBehind = false;
    std::vector<unsigned char> Held;
    int32_t HeldFirst = 0;
};

// The size of a drawing stream's buffer: a walk reads this much at a time.
inline constexpr size_t DrawingBufferSize = size_t{1} << 16;
// The most records a write-behind holds before it writes them.
inline constexpr size_t WriteBehindRecords = 256;

// Opens a drawing for random access, making an empty file when there is none; a file that may
// not be written is opened for reading only, and a write to it is the file fault "Cannot write
// file". A file that cannot be opened or made is the file fault "Cannot open file".
void OpenDrawing(DrawingFile& file, const std::string& path);
// Writes any held records and closes the file.
void CloseDrawing(DrawingFile& file);
// Writes the records that a write-behind holds, in one write; nothing to do without any.
void FlushDrawing(DrawingFile& file);
bool IsOpen(const DrawingFile& file);
// Reads record n (from 1). A record past the end of the file reads as zeros (EntityCode 0);
// a partial last record gives its present bytes and zeros after them.
void ReadRecord(DrawingFile& file, int32_t number, DrawRecord& record);
DrawRecord ReadRecord(DrawingFile& file, int32_t number);
// Reads the bytes of record n (from 1) as they stand, without decoding them: the bytes the file
// holds and zeros after them. Gives how many bytes the file held: RecordLength for a whole
// record, fewer for a partial last record, 0 past the end.
size_t ReadRecordBytes(DrawingFile& file, int32_t number, RecordBytes& bytes);
// Reads the bytes of `count` records from record `first` on in one read, as ReadRecordBytes
// reads each of them in turn: a record the file holds part of or none of has zeros after its
// bytes. Gives how many bytes the file held of them all.
size_t ReadRecordRun(DrawingFile& file, int32_t first, RecordBytes* records, size_t count);
// The bytes the file held of record `index` (from 0) of a run of which it held `got` bytes.
inline size_t HeldOfRun(size_t got, size_t index) {
    const size_t start = index * RecordLength;
    return got <= start ? 0 : (got - start < RecordLength ? got - start : RecordLength);
}
// Writes the bytes of record n as WriteRecord writes a record, write-behind included.
void WriteRecordBytes(DrawingFile& file, int32_t number, const RecordBytes& bytes);
// Writes the bytes of records first up to last of one drawing at the same numbers of another,
// as WriteRecordBytes writes them (a partial last record with zeros after it, a record past the
// end as zeros).
void CopyRecordBytes(DrawingFile& from, DrawingFile& to, int32_t first, int32_t last);

// A field of a record's bytes read where it lies, for a walk that looks at a few fields before
// it decodes a record.
int16_t EntityCodeOf(const RecordBytes& bytes);
// The letter of ToolA.
char ToolLetterOf(const RecordBytes& bytes);
// Writes record n (from 1); writing past the end extends the file. Without write-behind the
// record is flushed at once, so that every other handle of the file reads it. With it, a record
// at the number behind the held run joins the run, one at a held number replaces the held one,
// and any other number first writes the held run and then starts a new run.
void WriteRecord(DrawingFile& file, int32_t number, const DrawRecord& record);
// Writes count records from number first on, in one write (after any held records).
void WriteRecords(DrawingFile& file, int32_t first, const DrawRecord* records, size_t count);
// The number of records the file holds, a partial last record counted.
int32_t RecordsOnDisk(DrawingFile& file);

// Makes an empty working file and opens it for random access: opened for output so that it
// exists, closed, deleted and opened anew, so that nothing of a stale longer file remains.
void MakeWorkingFile(DrawingFile& file, const std::string& path);

// The working file into which a pass writes the new drawing while it walks the old one.
inline constexpr std::string_view PassTempName = "PTemp.tmp";

// The RecordCount of record 1.
int32_t ReadRecordCount(DrawingFile& file);
// The walk of a pass over a drawing: reads record 1 and its RecordCount; when that is below 2
// the drawing has nothing to walk and `visit` is not called; otherwise `visit(n, record)` is
// called for each record from 1 up to RecordCount, record 1 included. A RecordCount beyond the
// records on disk ends the walk at the last of them. Gives the number of records visited.
int32_t WalkDrawing(DrawingFile& file, const std::function<void(int32_t, DrawRecord&)>& visit);

// Changes records first up to last of a drawing in place, a chunk at a time: reads up to
// WriteBehindRecords records in turn, calls `change(n, record)` on each, then writes back each
// run of consecutive records for which it gave true, a run in one write. A record for which it
// gave false is not written. `change` sees each record as the file held it before the walk.
void ChangeInPlace(DrawingFile& file, int32_t first, int32_t last,
                   const std::function<bool(int32_t, DrawRecord&)>& change);
// The same for a change that only some records can need: `look(n, bytes)` is called on the bytes
// of every record in turn, and only a record for which it gives true is decoded and handed to
// `change`. A record that `look` passes over is neither decoded nor written.
void ChangeInPlace(DrawingFile& file, int32_t first, int32_t last,
                   const std::function<bool(int32_t, const RecordBytes&)>& look,
                   const std::function<bool(int32_t, DrawRecord&)>& change);

// The end of a pass that changed the number of records: copies records 2 up to newCount of the
// pass's working file back over the source, record by record, then writes newCount into the
// RecordCount of the source's record 1. Records of the source behind newCount stay on disk.
// With `from` above 2 the copy starts there: the records before it are known to stand in the
// source as they stand in the working file.
void RewriteFromTemp(DrawingFile& source, DrawingFile& temp, int32_t newCount, int32_t from = 2);
// Writes a count into the RecordCount of record 1, the rest of the record as it stands.
void WriteRecordCount(DrawingFile& file, int32_t count);

}  // namespace tvx
