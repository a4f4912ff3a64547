// Multipart sheets. A multipart drawing carries a layout record (code 500) naming a single
// part, a part record (code 510) that places copies of it in columns and rows, and cut lines
// between the copies (codes 521 and 522). A definition that cannot place parts as subprograms
// gets the drawing flattened here (MultipartExplode): every part record is replaced by real,
// moved copies of the part's entities. A definition that can gets the part once, as the
// drawing of a subprogram with its repeat data (MultipartSubprogram, for the generation loop).
#include <cstdint>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "state/run_state.h"
#include "ui/message.h"
#include "ui/progress.h"

namespace tvx {
namespace {

// The sibling files of a part that go with it into the work directory, by extension.
constexpr const char* PartExtensions[] = {"dxf", "drg", "drw", "prg", "nts", "inf",
                                          "nrp", "prt", "rpt", "usr", "seq", "stp"};

// The records of a drawing from 2 up to its RecordCount, read in one walk; a count beyond the
// records on disk ends at the last of them.
std::vector<DrawRecord> EntityRecords(DrawingFile& file, DrawRecord& header) {
    ReadRecord(file, 1, header);
    std::vector<DrawRecord> records;
    WalkDrawing(file, [&records](int32_t n, DrawRecord& record) {
        if (n >= 2) records.push_back(record);
    });
    return records;
}

// The parts directory: the machine's directory of the project.
std::string PartsDirectory(const RunState& state) {
    return state.Config.ProjectDir + state.Machine.MachineDirName + "\\";
}

// The part's drawing named by a layout record: its trimmed text and ".drw", in the parts
// directory unless the text holds a path of its own (a backslash).
std::string PartDrawingPath(const RunState& state, const DrawRecord& layout) {
    const std::string name = layout.EntityText.Trimmed();
    const std::string file = name + ".drw";
    return name.find('\\') == std::string::npos ? PartsDirectory(state) + file : file;
}

// Brings a present part into the work directory: every old Progpart file goes, then each of the
// part's sibling files that exists is copied to "Progpart." and its extension.
void TakePartFiles(RunState& state, const std::string& partDrawing) {
    const std::string& work = state.Job.WorkDir;
    {
        DrawingFile emptied;
        MakeWorkingFile(emptied, work + "Progpart.drw");
    }
    for (const std::string& name : ListFiles(NativePath(work), "Progpart.*")) DeleteFile(work + name);
    const std::string stem = partDrawing.substr(0, partDrawing.size() - 4);  // without ".drw"
    for (const char* extension : PartExtensions) {
        const std::string sibling = stem + "." + extension;
        if (FileExists(sibling)) CopyFileTo(sibling, work + "Progpart." + extension);
    }
}

// Turns a part drawing by the parts' angle when the angle is not 0 and the control cannot turn
// a part itself (the definition's MULTIPART_ANGLE_SUPPORT is false). The angle is looked at
// first: a part laid at 0 degrees never asks the definition.
void TurnPartForControl(RunState& state, const std::string& partDrawing, float angle) {
    if (angle == 0) return;
    const bool controlTurns = FindReservedWord(state, "MULTIPART_ANGLE_SUPPORT");
    CloseInputChannel(state, ChannelDefinition);
    if (!controlTurns) RotateDrawing(state, partDrawing, angle);
}

// The turning convention of a part file, told by the FollowFlag of its record 1 (after the
// older files' Side has been taken into it): 1 is the convention of a TurnSense of 1, anything
// else the other one.
bool PartTurnsLikeSenseOne(const DrawRecord& partHeader) { return partHeader.FollowFlag == 1; }

// The arcs whose turning direction (Side) a part of the other convention has mirrored.
bool IsTurningArc(int16_t code) { return code == 130 || code == 230; }

// What a copy that is walked backwards does with one record: a profile line is reversed with
// ReverseLine, an arc (profile or pattern) with ReverseArc; a record worked with a tool of the
// letter "Z" (Present, WorkType 10 or more) keeps its direction, like every other code.
enum class CopyTurn { Keep, Line, Arc };

CopyTurn TurnInReversedCopy(const DrawRecord& record) {
    if (LetterIs(record.ToolA, 'Z') && IsWorkedTool(record.ToolA)) return CopyTurn::Keep;
    if (record.EntityCode == 120) return CopyTurn::Line;
    if (IsTurningArc(record.EntityCode)) return CopyTurn::Arc;
    return CopyTurn::Keep;
}

// The place of one copy: the origin, the column's pitch along the parts' angle and the row's
// pitch along that angle plus 90.
void CopyPosition(const PartCopies& layout, const CopyPlace& place, double& x, double& y) {
    double cx = 0, cy = 0, rx = 0, ry = 0;
    PolarToXY(static_cast<double>(place.Column - 1) * layout.PitchX, layout.Angle, cx, cy);
    PolarToXY(static_cast<double>(place.Row - 1) * layout.PitchY, static_cast<double>(layout.Angle) + 90, rx, ry);
    x = static_cast<double>(layout.OriginX) + cx + rx;
    y = static_cast<double>(layout.OriginY) + cy + ry;
}

}  // namespace

void SetMultipartLayoutCells(ValueTables& t, const DrawRecord& record) {
    t.PostMachine[89] = record.Point[1].X;
    t.PostMachine[90] = record.Point[1].Y;
    t.PostMachine[85] = record.Value[1];
    t.PostMachine[86] = record.Value[2];
    t.PostMachine[87] = record.Count[1];
    t.PostMachine[88] = record.Count[2];
    if (t.PostMachine[87] == 1) t.PostMachine[85] = 0;
    if (t.PostMachine[88] == 1) t.PostMachine[86] = 0;
}

PartCopies CopiesOfPart(const DrawRecord& part) {
    PartCopies layout;
    layout.OriginX = part.Point[1].X;
    layout.OriginY = part.Point[1].Y;
    layout.Columns = part.Count[1];
    layout.Rows = part.Count[2];
    // A pitch that belongs to a count of 1 is 0.
    layout.PitchX = layout.Columns == 1 ? 0.0f : part.Value[1];
    layout.PitchY = layout.Rows == 1 ? 0.0f : part.Value[2];
    layout.Angle = part.Value[10];
    layout.Order = part.Count[6];
    return layout;
}

// The six orders of the copies, by Count[6] of the part record. Columns run along the parts'
// angle, rows across it; the copy's column and row count from 1.
//   0  column by column, each column from its first row to its last (the plain order);
//   1  the plain order walked backwards: from the last column's last row to the first's first;
//   2  column by column, the rows alternately up and down, so that the walk never jumps back;
//   3  row by row, each row from its first column to its last;
//   4  the row-by-row order walked backwards;
//   5  row by row, the columns alternately forward and back.
// Any other value is the plain order.
CopyPlace MultipartCopyPlace(int16_t order, int32_t columns, int32_t rows, int64_t k) {
    if (order < 0 || order > 5) order = 0;
    if (columns < 1 || rows < 1) return CopyPlace{};  // a layout without copies has no places
    const int64_t total = static_cast<int64_t>(columns) * rows;
    if (order == 1 || order == 4) k = total + 1 - k;
    CopyPlace place;
    const bool byRows = order >= 3;
    const int64_t inner = byRows ? columns : rows;
    const int64_t outerIndex = (k - 1) / inner;  // from 0
    int64_t innerIndex = (k - 1) % inner;        // from 0
    if ((order == 2 || order == 5) && outerIndex % 2 == 1) innerIndex = inner - 1 - innerIndex;
    if (byRows) {
        place.Row = static_cast<int32_t>(outerIndex + 1);
        place.Column = static_cast<int32_t>(innerIndex + 1);
    } else {
        place.Column = static_cast<int32_t>(outerIndex + 1);
        place.Row = static_cast<int32_t>(innerIndex + 1);
    }
    return place;
}

void MultipartCopy(const MachineState& machine, const DrawRecord& partRecord, const PartCopies& layout,
                   const CopyPlace& place, bool reversed, DrawRecord& copy) {
    double x = 0, y = 0;
    CopyPosition(layout, place, x, y);
    copy = partRecord;
    MoveRecord(copy, x, y, 4);
    if (reversed) {
        switch (TurnInReversedCopy(copy)) {
            case CopyTurn::Line: ReverseLine(machine, copy); break;
            case CopyTurn::Arc: ReverseArc(machine, copy); break;
            case CopyTurn::Keep: break;
        }
    }
    BindRecord(machine, copy);
}

// Makes a part drawing ready to be copied, in place. A part file is the CAM system's drawing of
// one part; before it is copied many times over the sheet it is cleaned of what a copy must not
// carry:
//   - a RecordCount beyond the records on disk is cut to the records there, so that a damaged
//     count does not put records of zeros into every copy;
//   - records of code 0 (unused) or 1 (a stray header) and of the multipart codes (500 and up)
//     are dropped: a single part holds no layout of its own, and such a record copied into a
//     flattened sheet would reach the generation loop as a layout;
//   - when anything was dropped or cut, the kept records are written back from record 2 on, in
//     their order, and record 1 gets the new count. Otherwise the file is not written.
// Geometry, tools and leads are left as they are: the copies are bound where they are placed.
void PartPrepare(RunState&, const std::string& drawing) {
    DrawingFile file;
    OpenDrawing(file, drawing);
    DrawRecord header;
    std::vector<DrawRecord> records = EntityRecords(file, header);
    const size_t before = records.size();
    std::erase_if(records, [](const DrawRecord& r) { return r.EntityCode < 2 || r.EntityCode >= 500; });
    const int32_t count = static_cast<int32_t>(records.size()) + 1;
    if (records.size() != before || header.RecordCount != count) {
        WriteRecords(file, 2, records.data(), records.size());
        header.RecordCount = count;
        WriteRecord(file, 1, header);
    }
    CloseDrawing(file);
}

void MultipartExplode(RunState& state, const std::string& drawing) {
    DrawingFile source;
    OpenDrawing(source, drawing);
    DrawRecord header;
    ReadRecord(source, 1, header);
    if (header.CarryWord1 < 500) {
        CloseDrawing(source);
        return;
    }
    const std::string tempPath = state.Job.WorkDir + "Explode.tmp";
    const std::string partPath = state.Job.WorkDir + "Progpart.drw";
    DrawingFile temp;
    MakeWorkingFile(temp, tempPath);
    // The copies of a sheet run to many thousands of records: nothing else reads the working
    // file while they are put there, so they are written in batches.
    temp.WriteBehind = true;
    int32_t made = 0;  // records put into the working file, record 1 included
    WriteRecord(temp, ++made, header);
    ShowProgress("Processing Multipart(s)");

    bool partPresent = true;
    bool alternate = false;
    DrawRecord copy;
    WalkDrawing(source, [&](int32_t n, DrawRecord& record) {
        if (n < 2) return;  // record 1 is in the working file already
        const int16_t code = record.EntityCode;
        if (code == 500) {
            alternate = record.Count[5] != 0;
            const std::string part = PartDrawingPath(state, record);
            if (!FileExists(part)) {
                partPresent = false;
            } else {
                TakePartFiles(state, part);
                PartPrepare(state, partPath);
                TurnPartForControl(state, partPath, record.Value[10]);
            }
        } else if (code == 510) {
            if (!partPresent || !FileExists(partPath)) return;
            const PartCopies layout = CopiesOfPart(record);
            DrawingFile partFile;
            OpenDrawing(partFile, partPath);
            DrawRecord partHeader;
            std::vector<DrawRecord> part = EntityRecords(partFile, partHeader);
            CloseDrawing(partFile);
            // An older part file tells its turning direction by a Side of 1 in record 1.
            if (partHeader.CarryWord1 < 1000 && partHeader.FollowFlag == 0 && partHeader.Side == 1) {
                partHeader.FollowFlag = 1;
                partHeader.Side = 0;
            }
            const bool machineSenseOne = state.Machine.TurnSense == 1;
            if (PartTurnsLikeSenseOne(partHeader) != machineSenseOne) {
                for (DrawRecord& r : part)
                    if (IsTurningArc(r.EntityCode)) r.Side = static_cast<int16_t>(-r.Side);
            }
            const int64_t copies = layout.Columns > 0 && layout.Rows > 0
                                       ? static_cast<int64_t>(layout.Columns) * layout.Rows
                                       : 0;
            if (static_cast<int64_t>(made) + copies * static_cast<int64_t>(part.size()) > INT32_MAX)
                RunFault("Too many records for one drawing: " + LongText(layout.Columns) + " x " +
                         LongText(layout.Rows) + " copies of " + partPath);
            for (int64_t k = 1; k <= copies; ++k) {
                const CopyPlace place = MultipartCopyPlace(layout.Order, layout.Columns, layout.Rows, k);
                const bool reversed = alternate && k % 2 == 0;
                const size_t size = part.size();
                for (size_t i = 0; i < size; ++i) {
                    const DrawRecord& from = reversed ? part[size - 1 - i] : part[i];
                    MultipartCopy(state.Machine, from, layout, place, reversed, copy);
                    WriteRecord(temp, ++made, copy);
                }
            }
        } else if (code == 521 || code == 522) {
            record.EntityCode = 120;
            record.EntityText = "";
            record.SpareWord = 0;
            WriteRecord(temp, ++made, record);
        } else if (code > 1 && code <= 1000) {
            WriteRecord(temp, ++made, record);
        }
        SetProgress(static_cast<int>(static_cast<double>(n) / header.RecordCount * 100));
    });
    RewriteFromTemp(source, temp, made);
    CloseDrawing(temp);
    CloseDrawing(source);
    DeleteFile(tempPath);
    state.Job.WorkingCount = made;
    if (!partPresent) ShowMessage("Torvanex", "Single Part Missing or Moved!\nRedo Multipart");
}

void MultipartSubprogram(RunState& state, DrawRecord& record, std::string& drawing) {
    ValueTables& t = state.Tables;
    // The layout's modal values print afresh.
    for (int i = 80; i <= 90; ++i) t.PostMemo[i] = -9999;
    SetMultipartLayoutCells(t, record);
    t.PostMachine[93] = record.Count[5];
    const std::string name = record.EntityText.Trimmed();
    drawing = state.Job.WorkDir + "progpart.drw";
    CopyFileTo(PartsDirectory(state) + name + ".drw", drawing);
    // The definition is asked whatever the angle: the control's word decides the turn.
    const bool controlTurns = FindReservedWord(state, "MULTIPART_ANGLE_SUPPORT");
    if (!controlTurns && record.Value[10] != 0) RotateDrawing(state, drawing, record.Value[10]);
    CloseInputChannel(state, ChannelDefinition);
    if (state.Machine.IsToolMachine) {
        AssociativeToolingPass(state, drawing);
        ShapePass(state, drawing);
        GridPass(state, drawing);
    }
    double x = 0, y = 0;
    MeasurePart(state, drawing, x, y);
    t.PostParam[89] = ToSingle(x);
    t.PostParam[90] = ToSingle(y);
    // The start as the turned part has it: the same distance from the origin, at its angle plus
    // the parts' angle.
    double distance = 0, angle = 0;
    XYToPolar(t.PostParam[89], t.PostParam[90], distance, angle);
    double px = 0, py = 0;
    PolarToXY(distance, angle + record.Value[10], px, py);
    t.PostParam[87] = ToSingle(px);
    t.PostParam[88] = ToSingle(py);
    // The next move takes a fresh position.
    t.PostMemo[91] = -1;
}

}  // namespace tvx
