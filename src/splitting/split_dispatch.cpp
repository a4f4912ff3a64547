// The split dispatch: which primitives an entity becomes, by its code and by its tool (none, a
// profiling tool of WorkType below 10, a tool that works it by hits, WorkType 10 or more), the
// explosion of the patterns into single hits and rows, and the placing of library tooling.
#include "splitting/split_dispatch.h"

#include <algorithm>
#include <string>
#include <utility>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "splitting/radius_punch.h"
#include "splitting/split_shapes.h"
#include "tooling/library.h"

namespace tvx {
namespace {

// The three columns of the dispatch table.
enum class Work { NoTool, Profiled, Worked };

Work WorkOf(const DrawRecord& record) {
    if (record.ToolA.Present == 0) return Work::NoTool;
    return record.ToolA.WorkType < 10 ? Work::Profiled : Work::Worked;
}

using ShapeRoutine = void (*)(SplitOutput&, const DrawRecord&);

// The shapes 152 to 156: one routine for each column.
struct ShapeRow {
    int16_t Code;
    ShapeRoutine NoTool;
    ShapeRoutine Profiled;
    ShapeRoutine Worked;
};

constexpr ShapeRow ShapeRows[] = {
    {152, SplitSingleDProfile, SplitSingleDLeads, SplitSingleDPunched},
    {153, SplitDoubleDProfile, SplitDoubleDLeads, SplitDoubleDPunched},
    {154, SplitObroundProfile, SplitObroundLeads, SplitObroundPunched},
    {155, SplitRadRect, SplitRadRect, SplitRadRect},
    {156, SplitRectangle, SplitRectangle, SplitRectangle},
};

void SplitShape(SplitOutput& out, const DrawRecord& shape) {
    for (const ShapeRow& row : ShapeRows) {
        if (row.Code != shape.EntityCode) continue;
        switch (WorkOf(shape)) {
            case Work::NoTool:
                row.NoTool(out, shape);
                return;
            case Work::Profiled:
                row.Profiled(out, shape);
                return;
            case Work::Worked:
                row.Worked(out, shape);
                return;
        }
    }
}

// A library tool takes the entity's place: any code below 500 with a "U" tool.
bool IsLibraryTooling(const DrawRecord& record) {
    return record.EntityCode < 500 && record.ToolA.Letter.Text() == "U" && record.ToolA.Present != 0;
}

// Appends the working copy as it stands, with the derived fields it has.
void Pass(SplitOutput& out, const DrawRecord& source, const DrawRecord& working) {
    AppendRecord(out, source, working);
}

void SetCode(DrawRecord& record, int16_t code) {
    record.EntityCode = code;
    record.EntityName = EntityNameOfCode(code);
}

// ---- Library tooling --------------------------------------------------------------------------

// The name of the working file that holds one library tooling drawing while it is placed.
constexpr const char* LibraryWorkingName = "PITooling.drw";

// The codes whose library drawing is turned to the entity's angle.
// The codes that take the entity's After when their own tool is there (a 110 takes it always).
bool TakesAfterWithTool(int16_t code) {
    switch (code) {
        case 120:
        case 130:
        case 151:
        case 152:
        case 153:
        case 154:
        case 155:
        case 156:
        case 210:
        case 220:
        case 225:
        case 230:
            return true;
        default:
            return false;
    }
}

// Moves the source's After onto the last worked record of the tooling drawing, walking back from
// its last record to record 2; with no such record the After is not placed.
void MoveAfterToLastWorked(const MachineState& machine, DrawingFile& file, int32_t last, const DrawRecord& source) {
    for (int32_t n = last; n >= 2; --n) {
        DrawRecord record;
        ReadRecord(file, n, record);
        const bool takes =
            record.EntityCode == 110 || (TakesAfterWithTool(record.EntityCode) && record.ToolA.Present != 0);
        if (!takes) continue;
        CopyAfter(source.After, record.After);
        BindRecord(machine, record);
        WriteRecord(file, n, record);
        return;
    }
}

}  // namespace

void SplitRecord(SplitOutput& out, DrawRecord& record) {
    DrawRecord working;
    CopyRecord(record, working);
    if (IsLibraryTooling(record)) {
        SplitLibraryTool(out, record);
        return;
    }
    // Codes out of range leave no trace here.
    if (record.EntityCode < 120 || record.EntityCode > 355) return;

    const MachineState& machine = *out.Machine;
    const Work work = WorkOf(record);
    switch (record.EntityCode) {
        case 120:
            if (work == Work::Worked) {
                SetCode(working, 220);
                BindRecord(machine, working);
                Pass(out, record, working);
            } else if (work == Work::Profiled) {
                ApplyTrim(machine, record);
                WriteLeadsTail(out, record, working);
            } else {
                Pass(out, record, working);
            }
            return;
        case 130:
            if (work == Work::Worked) {
                if (IsRadiusPunchArc(working)) {
                    ArcToPunch(machine, working);
                    AppendRecord(out, record, working);
                } else {
                    ApplyTrim(machine, working);
                    ExplodeArcPattern(out, working);
                }
            } else if (work == Work::Profiled) {
                ApplyTrim(machine, record);
                WriteLeadsTail(out, record, working);
            } else {
                Pass(out, record, working);
            }
            return;
        case 151:
            if (work == Work::Worked) {
                SplitCirclePunched(out, record);
            } else if (work == Work::Profiled) {
                SetCode(working, 130);
                WriteLeadsTail(out, record, working);
            } else {
                // Without a tool the leads stay in the record, for the later passes.
                SetCode(working, 130);
                Pass(out, record, working);
            }
            return;
        case 152:
        case 153:
        case 154:
        case 155:
        case 156:
            SplitShape(out, record);
            return;
        case 175:
            SplitLibraryTool(out, record);
            return;
        case 210:
        case 311:
        case 312:
        case 321:
        case 350:
        case 355:
            Pass(out, record, working);
            return;
        case 220:
            ExplodeLinearPattern(out, record);
            return;
        case 225:
            ExplodeGridPattern(out, record);
            return;
        case 230:
            ExplodeArcPattern(out, record);
            return;
        default:
            // Any other code in range writes nothing.
            return;
    }
}

void WriteLeadsTail(SplitOutput& out, const DrawRecord& source, DrawRecord& working) {
    const MachineState& machine = *out.Machine;
    if (source.LeadIn.LeadKind != 0) {
        DrawRecord lead;
        MakeLeadRecord(machine, 1, source, lead);
        AppendRecord(out, source, lead);
    }
    ClearLead(working.LeadIn);
    ClearLead(working.LeadOut);
    ClearAfter(working.After);
    AppendRecord(out, source, working);
    if (source.LeadOut.LeadKind != 0) {
        DrawRecord lead;
        MakeLeadRecord(machine, 2, source, lead);
        AppendRecord(out, source, lead);
    }
}

void ExplodeArcPattern(SplitOutput& out, const DrawRecord& source) {
    const double centreX = source.Point[4].X;
    const double centreY = source.Point[4].Y;
    const double radius = source.Value[5];
    const double step = source.Value[12];
    const double start = source.Value[13];
    const int32_t hits = source.Count[1];
    const bool toolFollows = source.Count[2] != 0;
    const double firstToolAngle = source.FollowFlag != 0 ? source.Value[15] : source.ToolA.ToolAngle;

    DrawRecord punch = MadeRecord(source, 210);
    for (int32_t i = 0; i < hits; ++i) {
        const double angle = i * step + start;
        double dx = 0;
        double dy = 0;
        PolarToXY(radius, angle, dx, dy);
        punch.Point[4] = SinglePoint{ToSingle(centreX + dx), ToSingle(centreY + dy)};
        punch.ToolA.ToolAngle = ToSingle(toolFollows ? i * step + firstToolAngle : firstToolAngle);
        if (i == hits - 1) CopyAfter(source.After, punch.After);
        AppendBound(out, source, punch);
    }
}

void ExplodeLinearPattern(SplitOutput& out, const DrawRecord& source) {
    double x = source.Point[5].X;
    double y = source.Point[5].Y;
    double stepX = 0;
    double stepY = 0;
    PolarToXY(source.Value[2], source.Value[10], stepX, stepY);
    // A count of 1 or less is one hit, at the start.
    const int32_t hits = std::max<int32_t>(source.Count[1], 1);

    DrawRecord punch = MadeRecord(source, 210);
    for (int32_t i = 0; i < hits; ++i) {
        punch.Point[4] = SinglePoint{ToSingle(x), ToSingle(y)};
        if (i == hits - 1) CopyAfter(source.After, punch.After);
        AppendBound(out, source, punch);
        x += stepX;
        y += stepY;
    }
}

void ExplodeGridPattern(SplitOutput& out, const DrawRecord& source) {
    double startX = source.Point[5].X;
    double startY = source.Point[5].Y;
    double along = source.Value[2];
    double across = source.Value[4];
    double angle = source.Value[10];
    int16_t hits = source.Count[1];
    int16_t rows = source.Count[2];
    if (source.Count[3] != 0) {
        // Exchanged axes: the rows run along the other axis, the other way.
        std::swap(along, across);
        std::swap(hits, rows);
        angle = Norm360(angle) - 90;
        along = 0 - along;
    }
    double rowLength = along * (static_cast<double>(hits) - 1);
    double rowDirection = angle;
    const double acrossDirection = Norm360(angle) + 90;
    if (rowLength < 0) {
        rowLength = 0 - rowLength;
        along = 0 - along;
        rowDirection = rowDirection + 180;
    }

    const auto placeRow = [&](DrawRecord& row) {
        double dx = 0;
        double dy = 0;
        PolarToXY(rowLength, rowDirection, dx, dy);
        row.Point[5] = SinglePoint{ToSingle(startX), ToSingle(startY)};
        row.Point[6] = SinglePoint{ToSingle(startX + dx), ToSingle(startY + dy)};
        row.Value[10] = ToSingle(rowDirection);
    };

    DrawRecord row = MadeRecord(source, 220);
    placeRow(row);
    row.Value[1] = ToSingle(rowLength);
    row.Value[2] = ToSingle(along);
    row.Count[1] = hits;
    AppendBound(out, source, row);
    // Each further row starts one step across from where the last one ended and runs back.
    for (int32_t n = 2; n <= rows; ++n) {
        double dx = 0;
        double dy = 0;
        PolarToXY(across, acrossDirection, dx, dy);
        startX = static_cast<double>(row.Point[3].X) + dx;
        startY = static_cast<double>(row.Point[3].Y) + dy;
        rowDirection = Norm360(rowDirection + 180);
        placeRow(row);
        if (n == rows) CopyAfter(source.After, row.After);
        AppendBound(out, source, row);
    }
}

void SplitLibraryTool(SplitOutput& out, DrawRecord& source) {
    const LibraryPasses& library = out.Library;
    const bool hasPasses = library.Run != nullptr && library.Cruciform != nullptr && library.Rotate != nullptr;
    std::string drawing;
    std::string working;
    double storedAngle = 0;
    if (hasPasses) {
        RunState& run = *library.Run;
        drawing = JobShapePath(run, source, ToolDrawingMode);
        const std::string lookup = JobShapePath(run, source, LookupFileMode);
        if (!lookup.empty()) storedAngle = LookupTool(lookup, source.ToolA.ToolNumber, 3).Number;
        // The working file is made empty up to its deletion; the copy of the drawing makes it.
        working = run.Job.WorkDir + LibraryWorkingName;
        DrawingFile emptied;
        MakeWorkingFile(emptied, working);
        CloseDrawing(emptied);
        DeleteIfExists(working);
    }
    if (Trim(drawing).empty() || !FileExists(drawing)) {
        // A missing library drawing leaves the entity in the job, without its tools.
        ClearTool(source.ToolA);
        ClearTool(source.ToolB);
        AppendRecord(out, source, source);
        return;
    }
    RunState& run = *library.Run;

    CopyFileTo(drawing, working);
    int32_t count = 0;
    {
        DrawingFile copy;
        OpenDrawing(copy, working);
        count = ReadRecordCount(copy);
        CloseDrawing(copy);
    }
    library.Cruciform(run, working);
    const double turn = LibraryTurn(source, storedAngle);
    if (turn != 0) library.Rotate(run, working, turn);

    DrawingFile file;
    OpenDrawing(file, working);
    if (count < 2) {
        CloseDrawing(file);
        DeleteFile(working);
        return;
    }
    // A count beyond the records on disk ends at the last of them, as every walk of a drawing.
    const int32_t last = std::min(count, RecordsOnDisk(file));
    if (source.After.ActionCode != 0) MoveAfterToLastWorked(*out.Machine, file, last, source);
    for (int32_t n = 2; n <= last; ++n) {
        DrawRecord record;
        ReadRecord(file, n, record);
        if (record.EntityCode == 350 || record.EntityCode == 355) continue;
        record.CarryWord2 = source.CarryWord2;
        MoveRecord(record, source.Point[4].X, source.Point[4].Y);
        AppendBound(out, source, record);
    }
    CloseDrawing(file);
    DeleteFile(working);
}

}  // namespace tvx
