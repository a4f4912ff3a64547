#include "emitters/paths.h"

#include <cmath>
#include <utility>

#include "common/numeric.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "drawing/binding.h"
#include "emitters/emit_common.h"
#include "emitters/profile.h"
#include "emitters/punch.h"
#include "expansion/passes.h"
#include "state/run_state.h"

namespace tvx {
namespace {

bool IsProfileLetter(const ToolSpec& tool) { return tool.Letter.Text() == "P"; }

// The tool's angle for a hit: normalised on a machine whose tool rotates, -999 otherwise.
double HitAngle(const RunState& state, const DrawRecord& record) {
    return state.Loop.ToolRotates ? Norm360(record.ToolA.ToolAngle) : -999.0;
}

// The cells of the point in work (wanted position and the same for CALC).
void SetStart(ValueTables& t, double x, double y) {
    t.PostMachine[10] = ToSingle(x);
    t.PostParam[10] = ToSingle(x);
    t.PostMachine[11] = ToSingle(y);
    t.PostParam[11] = ToSingle(y);
}

// The tool's turn from the angle last printed, 0 up to 360.
void SetToolTurn(ValueTables& t) {
    t.PostParam[164] = ToSingle(std::fabs(Norm360(static_cast<double>(t.PostMachine[12]) - t.PostMemo[12])));
}

// Writes the block found by the last search and closes the definition file.
void WriteFoundBlock(RunState& state) {
    WriteReservedBlock(state);
    CloseInputChannel(state, ChannelDefinition);
}

}  // namespace

void EmitLinePath(RunState& state, DrawRecord& record) {
    // A combo machine profiles every path, whatever tool the drawing names.
    if (state.Machine.IsComboMachine) record.ToolA.Letter = "P";
    if (IsProfileLetter(record.ToolA)) {
        EmitProfiledLine(state, record);
        return;
    }
    // No pitch, or fewer than two hits: one hit at the working start.
    if (ToSingle(std::fabs(static_cast<double>(record.Value[2]))) < 0.1 || record.Count[1] < 2) {
        CopyPoint(record.Point[5], record.Point[3]);
        // A row of hits takes both ends from its working ends: it shrinks to its start.
        if (record.EntityCode == 220) CopyPoint(record.Point[5], record.Point[6]);
        BindRecord(state.Machine, record);
        EmitPunch(state, record);
        return;
    }
    ValueTables& t = state.Tables;
    const double sx = ProgramLength(state, record.Point[5].X);
    const double sy = ProgramLength(state, record.Point[5].Y);
    const double ex = ProgramLength(state, record.Point[6].X);
    const double ey = ProgramLength(state, record.Point[6].Y);
    const double length = ProgramLength(state, record.Value[5]);
    const double pitch = ProgramLength(state, record.Value[2]);
    const double angle = HitAngle(state, record);

    t.PostMachine[1] = 1;
    SetStart(t, sx, sy);
    t.PostMachine[12] = ToSingle(angle);
    t.PostMachine[17] = ToSingle(angle);
    t.PostMachine[15] = ToSingle(ex);
    t.PostParam[15] = ToSingle(ex);
    t.PostMachine[16] = ToSingle(ey);
    t.PostParam[16] = ToSingle(ey);
    t.PostMachine[65] = record.Side;
    t.PostParam[30] = ToSingle(length);
    t.PostParam[31] = ToSingle(length);
    t.PostParam[32] = record.Value[10];
    t.PostParam[33] = ToSingle(pitch);
    t.PostParam[34] = record.Count[1];
    t.PostParam[35] = pitch > 0 ? 1.0f : 0.0f;

    t.PostMachine[13] = ToSingle(std::fabs(pitch));
    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, t.PostMachine[10], t.PostMachine[11]));
    t.PostParam[174] = ToSingle(length);
    t.PostParam[180] = ToSingle(pitch);
    SetToolTurn(t);

    // A nibbling cycle is asked for first, then a punched pattern, then the hits one by one.
    if (FindReservedWord(state, "CANNED_NIBBLED_LINE")) {
        WriteReservedBlock(state);
    } else if (FindReservedWord(state, "CANNED_PUNCHED_LINE")) {
        WriteReservedBlock(state);
    } else {
        CloseInputChannel(state, ChannelDefinition);
        PunchAlongLine(state, record);
    }
    CloseInputChannel(state, ChannelDefinition);
    EmitAfterAction(state, record);
}

void EmitArcPath(RunState& state, DrawRecord& record) {
    if (state.Machine.IsComboMachine) record.ToolA.Letter = "P";
    if (IsProfileLetter(record.ToolA)) {
        EmitProfiledArc(state, record);
        return;
    }
    if (record.Count[1] == 1) {
        PunchAlongArc(state, record);
        return;
    }
    ValueTables& t = state.Tables;
    const double cx = ProgramLength(state, record.Point[4].X);
    const double cy = ProgramLength(state, record.Point[4].Y);
    const double sx = ProgramLength(state, record.Point[5].X);
    const double sy = ProgramLength(state, record.Point[5].Y);
    const double ex = ProgramLength(state, record.Point[6].X);
    const double ey = ProgramLength(state, record.Point[6].Y);
    const double r = ProgramLength(state, record.Value[5]);
    double pitch = ProgramLength(state, std::fabs(static_cast<double>(record.Value[3])));
    const double a0 = record.Value[13];
    const double step = record.Value[12];
    double sweep = record.Value[14];

    // The tool's angle: at the first hit when it follows the arc, else the tool's own.
    double angle = -999.0;
    t.PostParam[50] = 0;
    if (state.Loop.ToolRotates) {
        angle = (record.FollowFlag & record.Count[2]) != 0 ? Norm360(record.Value[15]) : Norm360(record.ToolA.ToolAngle);
        t.PostParam[50] = record.Count[2] != 0 ? 1.0f : 0.0f;
    }

    SetStart(t, sx, sy);
    t.PostMachine[12] = ToSingle(angle);
    t.PostMachine[15] = ToSingle(ex);
    t.PostMachine[16] = ToSingle(ey);
    t.PostParam[15] = ToSingle(cx);
    t.PostParam[16] = ToSingle(cy);
    t.PostMachine[17] = ToSingle(sweep + angle);  // not normalised
    t.PostParam[30] = ToSingle(r);
    t.PostParam[31] = ToSingle(a0);
    t.PostParam[32] = record.Count[1];
    t.PostParam[33] = ToSingle(sweep);
    t.PostParam[35] = ToSingle(step);
    t.PostMachine[65] = record.Side;
    t.PostMachine[35] = record.FollowFlag;
    t.PostMachine[1] = sweep < 0 ? 3.0f : 2.0f;

    // A whole circle's pitch is its own: the circumference shared by its hits.
    const bool whole = std::fabs(sweep) == 360;
    if (whole && record.Count[1] != 0) pitch = 2 * r * Pi / record.Count[1];
    const float keptPitch = t.PostMachine[13];
    t.PostMachine[13] = ToSingle(pitch);

    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, t.PostMachine[10], t.PostMachine[11]));
    t.PostParam[174] = 0;

    // The arc length of one hit: a whole circle's last hit is one step before its first.
    if (whole) sweep -= step;
    double hitLength = sweep * (2 * r * Pi) / 360;
    if (record.Count[1] > 1) hitLength /= record.Count[1] - 1;
    t.PostParam[180] = ToSingle(hitLength);

    SetToolTurn(t);
    if (record.Count[1] > 1) t.PostParam[163] = ToSingle(t.PostParam[50] * r / (record.Count[1] - 1));

    if (FindReservedWord(state, "CANNED_NIBBLED_ARC")) {
        WriteFoundBlock(state);
    } else {
        t.PostMachine[13] = ToSingle(std::fabs(hitLength));
        if (FindReservedWord(state, "CANNED_PUNCHED_ARC")) {
            WriteReservedBlock(state);
        } else {
            CloseInputChannel(state, ChannelDefinition);
            PunchAlongArc(state, record);
        }
        CloseInputChannel(state, ChannelDefinition);
        t.PostMachine[13] = keptPitch;
    }
    EmitAfterAction(state, record);
}

void EmitGrid(RunState& state, DrawRecord& record) {
    // A profiling tool makes nothing of a grid.
    if (IsProfileLetter(record.ToolA)) return;
    UnswapGrid(record);
    ValueTables& t = state.Tables;
    const double angle = HitAngle(state, record);

    double a = record.Value[10];
    if (record.Count[3] != 0) {
        t.PostParam[41] = 1;
        a = Norm360(a + 90);
    } else {
        t.PostParam[41] = 0;
    }

    // The last point stays in the drawing's units.
    const double fx = ProgramLength(state, record.Point[5].X);
    const double fy = ProgramLength(state, record.Point[5].Y);
    const double rowPitch = ProgramLength(state, record.Value[2]);
    const double columnPitch = ProgramLength(state, record.Value[4]);

    double rowX = 0;
    double rowY = 0;
    PolarToXY(rowPitch, a, rowX, rowY);
    double columnX = 0;
    double columnY = 0;
    PolarToXY(columnPitch, a + 90, columnX, columnY);

    t.PostMachine[12] = ToSingle(angle);
    t.PostMachine[17] = ToSingle(angle);
    SetStart(t, fx, fy);
    t.PostMachine[15] = record.Point[6].X;
    t.PostParam[15] = record.Point[6].X;
    t.PostMachine[16] = record.Point[6].Y;
    t.PostParam[16] = record.Point[6].Y;
    t.PostMachine[1] = 1;
    t.PostParam[30] = ToSingle(rowPitch);
    t.PostParam[31] = ToSingle(columnPitch);
    t.PostParam[32] = ToSingle(a);
    t.PostParam[33] = record.Count[1];
    t.PostParam[34] = record.Count[2];
    t.PostParam[35] = ToSingle(rowX);
    t.PostParam[36] = ToSingle(rowY);
    t.PostParam[37] = ToSingle(columnX);
    t.PostParam[38] = ToSingle(columnY);
    // Not alike on purpose: a zero pitch is 0 in the first and 1 in the second.
    t.PostParam[39] = rowPitch > 0 ? 1.0f : 0.0f;
    t.PostParam[40] = columnPitch < 0 ? 0.0f : 1.0f;
    t.PostParam[180] = ToSingle(rowPitch);
    t.PostParam[181] = ToSingle(columnPitch);

    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, t.PostMachine[10], t.PostMachine[11]));
    t.PostParam[174] = 0;
    SetToolTurn(t);

    // The word that fits the grid's angle; the angle is taken as it stands, without normalising.
    const double b = std::fabs(a);
    bool written = false;
    if (FindReservedWord(state, "CANNED_GRID_A")) {
        WriteFoundBlock(state);
        written = true;
    } else if (b == 0 || b == 180 || b == 360) {
        if (FindReservedWord(state, "CANNED_GRID_X")) {
            if (b == 180) {
                t.PostParam[30] = -t.PostParam[30];
                t.PostParam[31] = -t.PostParam[31];
            }
            WriteFoundBlock(state);
            written = true;
        }
    } else if (b == 90 || b == 270) {
        if (FindReservedWord(state, "CANNED_GRID_Y")) {
            std::swap(t.PostParam[30], t.PostParam[31]);
            std::swap(t.PostParam[33], t.PostParam[34]);
            if (b == 90) t.PostParam[30] = -t.PostParam[30];
            else t.PostParam[31] = -t.PostParam[31];
            WriteFoundBlock(state);
            written = true;
        }
    }
    if (!written) {
        CloseInputChannel(state, ChannelDefinition);
        PunchGrid(state, record);
    }
    EmitAfterAction(state, record);
}

void PunchGrid(RunState& state, const DrawRecord& record) {
    double x = record.Point[5].X;
    double y = record.Point[5].Y;
    double p = record.Value[2];
    double q = record.Value[4];
    double a = record.Value[10];
    int32_t n = record.Count[1];
    int32_t m = record.Count[2];
    if (record.Count[3] != 0) {
        std::swap(p, q);
        std::swap(n, m);
        a = Norm360(a - 90);
        p = -p;
    }
    double length = (n - 1) * p;
    double d = a;
    const double e = Norm360(a + 90);
    // A row runs the way of its length.
    if (length < 0) {
        length = -length;
        p = -p;
        d = Norm360(d + 180);
    }

    DrawRecord row;
    ClearRecord(row);
    row.EntityCode = 220;
    row.EntityName = "Linear Pattern";
    row.CarryWord1 = record.CarryWord1;
    row.CarryWord2 = record.CarryWord2;
    CopyTool(record.ToolA, row.ToolA);
    row.Value[1] = ToSingle(length);
    row.Value[2] = ToSingle(p);
    row.Count[1] = static_cast<int16_t>(n);

    // Places the row from (x, y) along d, binds it and works it.
    auto workRow = [&]() {
        double dx = 0;
        double dy = 0;
        PolarToXY(length, d, dx, dy);
        row.Point[5] = SinglePoint{ToSingle(x), ToSingle(y)};
        row.Point[6] = SinglePoint{ToSingle(x + dx), ToSingle(y + dy)};
        row.Value[10] = ToSingle(d);
        BindRecord(state.Machine, row);
        EmitLinePath(state, row);
    };
    workRow();
    for (int32_t i = 2; i <= m; ++i) {
        // Each row starts where the last one ended, one column step on, and runs back.
        x = row.Point[3].X;
        y = row.Point[3].Y;
        d = Norm360(d + 180);
        double dx = 0;
        double dy = 0;
        PolarToXY(q, e, dx, dy);
        x += dx;
        y += dy;
        workRow();
    }
}

}  // namespace tvx
