#include "emitters/punch.h"

#include <cmath>

#include "common/numeric.h"
#include "definition/reserved_word.h"
#include "definition/block_writer.h"
#include "definition/post_abort.h"
#include "drawing/binding.h"
#include "emitters/emit_common.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// The position cells of a point in work: wanted X and Y of the machine and the same values
// for the definition's CALC.
void SetWorkPoint(ValueTables& t, double x, double y) {
    t.PostMachine[10] = ToSingle(x);
    t.PostParam[10] = ToSingle(x);
    t.PostMachine[11] = ToSingle(y);
    t.PostParam[11] = ToSingle(y);
}

// A scratch hit made from a path: the path's carried words and its tool.
DrawRecord ScratchHit(const DrawRecord& path) {
    DrawRecord hit;
    ClearRecord(hit);
    hit.EntityCode = 210;
    hit.EntityName = "Punch";
    hit.CarryWord1 = path.CarryWord1;
    hit.CarryWord2 = path.CarryWord2;
    CopyTool(path.ToolA, hit.ToolA);
    return hit;
}

}  // namespace

void EmitPunch(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    const double angle = state.Loop.ToolRotates ? Norm360(record.ToolA.ToolAngle) : -999.0;
    const double x = ProgramLength(state, record.Point[3].X);
    const double y = ProgramLength(state, record.Point[3].Y);
    SetWorkPoint(t, x, y);
    t.PostMachine[15] = ToSingle(x);
    t.PostParam[15] = ToSingle(x);
    t.PostMachine[16] = ToSingle(y);
    t.PostParam[16] = ToSingle(y);
    t.PostMachine[12] = ToSingle(angle);
    t.PostMachine[17] = ToSingle(angle);
    // A hit in the same place as the last one must print its coordinates again.
    if (t.PostMachine[10] == t.PostMemo[10] && t.PostMachine[11] == t.PostMemo[11]) {
        t.PostMemo[10] = -999;
        t.PostMemo[11] = -999;
    }
    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, t.PostMachine[10], t.PostMachine[11]));
    t.PostParam[174] = 0;
    t.PostParam[164] = ToSingle(std::fabs(Norm360(static_cast<double>(t.PostMachine[12]) - t.PostMemo[12])));
    WriteRequiredBlock(state, "CANNED_PUNCH");
    EmitAfterAction(state, record);
}

void EmitReposition(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    t.PostParam[30] = ToSingle(ProgramLength(state, record.Point[4].X));
    t.PostParam[31] = ToSingle(ProgramLength(state, record.Point[4].Y));
    t.PostParam[32] = ToSingle(ProgramLength(state, record.Value[1]));
    t.PostParam[33] = ToSingle(ProgramLength(state, record.Value[2]));
    t.PostParam[34] = ToSingle(ProgramLength(state, record.Value[5]));
    SetWorkPoint(t, t.PostParam[30], t.PostParam[31]);
    t.PostMachine[15] = t.PostParam[30];
    t.PostParam[15] = t.PostParam[30];
    t.PostMachine[16] = t.PostParam[31];
    t.PostParam[16] = t.PostParam[31];
    if (t.PostParam[34] == 0) t.PostParam[34] = -t.PostParam[33];
    t.PostParam[30] = t.PostParam[32];
    t.PostParam[31] = t.PostParam[33];
    t.PostParam[32] = t.PostParam[34];
    t.PostParam[59] = ToSingle(static_cast<double>(t.PostParam[59]) + 1);
    if (t.PostParam[32] == 0) t.PostParam[32] = -t.PostParam[31];
    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, t.PostMachine[10], t.PostMachine[11]));
    t.PostParam[174] = 0;
    t.PostParam[180] = t.PostParam[31];
    WriteRequiredBlock(state, "CANNED_REPOSITION");
    t.PostParam[58] = ToSingle(static_cast<double>(t.PostParam[58]) + t.PostParam[30]);
}

void EmitDwell(RunState& state, DrawRecord& record) {
    if (!(record.Value[1] > 0)) return;
    state.Tables.PostParam[30] = record.Value[1];
    WriteRequiredBlock(state, "CANNED_DWELL");
}

void EmitStop(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    const double x = ProgramLength(state, record.Point[3].X);
    const double y = ProgramLength(state, record.Point[3].Y);
    if (record.Count[2] != 0) SetWorkPoint(t, x, y);
    WriteRequiredBlock(state, record.Count[1] != 0 ? "CANNED_OPT_STOP" : "CANNED_STOP");
    if (record.Count[2] == 1) {
        t.PostMemo[10] = ToSingle(x);
        t.PostMemo[11] = ToSingle(y);
    }
}

void EmitPartChute(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    const double x = ProgramLength(state, record.Point[3].X);
    const double y = ProgramLength(state, record.Point[3].Y);
    t.PostParam[30] = record.Value[1];
    SetWorkPoint(t, x, y);
    if (!WriteBlock(state, "CANNED_PART_CHUTE"))
        PostAbort(state, "CANNED_PART_CHUTE not found in Post-Processor");
    t.PostMemo[10] = ToSingle(x);
    t.PostMemo[11] = ToSingle(y);
}

void EmitSheetManipulation(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    const double turn = Norm360(record.Value[10]);
    const int a = record.Count[1];
    const int b = record.Count[2];
    // The drawing writes -1 for a set switch: only -1 has a complement of 0.
    if (turn == 0 && ~a != 0 && ~b != 0) return;
    if ((a & b) != 0) t.PostParam[37] = 2;
    else if (a != 0) t.PostParam[37] = 0;
    else if (b != 0) t.PostParam[37] = 1;
    else t.PostParam[37] = -1;
    if (turn == 90) t.PostParam[36] = 0;
    else if (turn == 180) t.PostParam[36] = 1;
    else if (turn == 270) t.PostParam[36] = 2;
    else t.PostParam[36] = -1;
    WriteRequiredBlock(state, "CANNED_SHEET_MANIPULATION");
}

void EmitAfterAction(RunState& state, DrawRecord& record) {
    state.Tables.PostParam[30] = record.After.ActionValue;
    const char* word = nullptr;
    switch (record.After.ActionCode) {
        case 1: word = "CANNED_STOP"; break;
        case 2: word = "CANNED_DWELL"; break;
        case 3: word = "CANNED_PARTCHUTE"; break;
        default: return;
    }
    // The definition file stays open behind the block; the next search closes it.
    if (FindReservedWord(state, word)) WriteReservedBlock(state);
}

void PunchAlongLine(RunState& state, const DrawRecord& record) {
    DrawRecord hit = ScratchHit(record);
    double x = record.Point[5].X;
    double y = record.Point[5].Y;
    double stepX = 0;
    double stepY = 0;
    PolarToXY(record.Value[2], record.Value[10], stepX, stepY);
    hit.Point[4] = SinglePoint{ToSingle(x), ToSingle(y)};
    BindRecord(state.Machine, hit);
    EmitPunch(state, hit);
    for (int i = 2; i <= record.Count[1]; ++i) {
        x += stepX;
        y += stepY;
        hit.Point[4] = SinglePoint{ToSingle(x), ToSingle(y)};
        BindRecord(state.Machine, hit);
        EmitPunch(state, hit);
    }
}

void PunchAlongArc(RunState& state, const DrawRecord& record) {
    DrawRecord hit = ScratchHit(record);
    for (int i = 0; i < record.Count[1]; ++i) {
        const double angle = static_cast<double>(record.Value[13]) + i * static_cast<double>(record.Value[12]);
        double dx = 0;
        double dy = 0;
        PolarToXY(record.Value[5], angle, dx, dy);
        hit.Point[4] = SinglePoint{ToSingle(record.Point[4].X + dx), ToSingle(record.Point[4].Y + dy)};
        hit.ToolA.ToolAngle = record.Count[2] != 0
                                  ? ToSingle(static_cast<double>(record.ToolA.ToolAngle) + i * static_cast<double>(record.Value[12]))
                                  : record.ToolA.ToolAngle;
        BindRecord(state.Machine, hit);
        EmitPunch(state, hit);
    }
}

}  // namespace tvx
