#include "emitters/profile.h"

#include <cmath>

#include "common/numeric.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/post_abort.h"
#include "definition/reserved_word.h"
#include "drawing/binding.h"
#include "emitters/emit_common.h"
#include "emitters/punch.h"
#include "emitters/stages.h"
#include "state/run_state.h"
#include "splitting/single_profile.h"

namespace tvx {
namespace {

// The gap above which a block does not join the one before it.
constexpr float PathGap = 0.05f;

double Distance(double dx, double dy) {
    double distance = 0;
    double angle = 0;
    XYToPolar(dx, dy, distance, angle);
    return distance;
}

bool HasLeads(const DrawRecord& record) { return record.LeadIn.LeadKind != 0 || record.LeadOut.LeadKind != 0; }

// An entity with leads is worked as its primitives: lead-in, entity, lead-out, from Shape.drw.
void WorkThroughShapeDrawing(RunState& state, DrawRecord& record) {
    LoopState& loop = state.Loop;
    loop.ShapeActive = true;
    loop.ShapeIndex = 0;
    SingleProfile(state, record);
    CloseDrawing(loop.ShapeDrawing);
    OpenDrawing(loop.ShapeDrawing, ShapeDrawingPath(state));
}

// Finds a word and, when it is true, writes its block and the action after the entity; the
// definition file is left for the next search to close.
bool WriteBlockWithAction(RunState& state, const std::string& word, DrawRecord& record) {
    if (!FindReservedWord(state, word)) return false;
    WriteReservedBlock(state);
    EmitAfterAction(state, record);
    return true;
}

// The blocks of a profiled line or arc. The subroutine-calling family (10) writes its move,
// lead settings, cutting subroutine call, block and ramp, and leaves the last position alone;
// every other family writes a move if it has one and the block, which it must have.
void WriteProfiledBlocks(RunState& state, DrawRecord& record, const std::string& word, bool arc, double endX,
                         double endY) {
    ValueTables& t = state.Tables;
    if (t.PostParam[9] == 10) {
        if (t.PostParam[111] > PathGap) WriteBlock(state, "CANNED_PROFILED_MOVE");
        if (record.Count[8] == 1 && t.PostMachine[197] == -1) {
            WriteBlock(state, "LEADIN_SETTINGS");
        } else if (t.PostParam[8] == -999) {
            ApplySettingsStage(state, record.ToolA.StageIndex, record.ToolA.Letter.Text());
        }
        UpdateCutDirection(state);
        WriteBlockWithAction(state, "CANNED_CUTSUB_CALL", record);
        WriteBlockWithAction(state, word, record);
        if (t.PostMachine[170] > 0 && t.PostMachine[22] == 0 && FindReservedWord(state, "CANNED_RAMP_CALL"))
            WriteReservedBlock(state);
        return;
    }
    WriteBlock(state, "CANNED_PROFILED_MOVE");
    UpdateCutDirection(state);
    if (!FindReservedWord(state, word)) PostAbort(state, "'" + word + "' not found in Post-Processor");
    WriteReservedBlock(state);
    if (arc) EmitAfterAction(state, record);
    CloseInputChannel(state, ChannelDefinition);
    state.Loop.CutPath.LastX = endX;
    state.Loop.CutPath.LastY = endY;
    if (!arc) EmitAfterAction(state, record);
}

}  // namespace

void UpdateCutDirection(RunState& state) {
    ValueTables& t = state.Tables;
    CutPathState& cut = state.Loop.CutPath;
    if (t.PostParam[111] > PathGap) cut.CutAngle = -9999;
    const float kind = t.PostMachine[1];
    double a = 0;
    bool known = true;
    if (kind == 0 || kind == 1) {
        double distance = 0;
        XYToPolar(static_cast<double>(t.PostMachine[15]) - t.PostMachine[10],
                  static_cast<double>(t.PostMachine[16]) - t.PostMachine[11], distance, a);
    } else if (kind == 2) {
        a = Norm360(static_cast<double>(t.PostParam[31]) + 90);
    } else if (kind == 3) {
        a = Norm360(static_cast<double>(t.PostParam[31]) - 90);
    } else {
        known = false;
    }
    if (known) {
        double d = static_cast<double>(cut.CutAngle) - a;
        if (d > 180) d -= 360;
        if (d < -180) d += 360;
        cut.CutTurn = ToSingle(std::fabs(d));
        t.PostMachine[22] = cut.CutTurn > t.PostParam[110] ? 0.0f : 1.0f;
        cut.CutAngle = ToSingle(kind == 0 || kind == 1 ? a : a + t.PostParam[33]);
    }
    cut.CutAngle = ToSingle(Norm360(cut.CutAngle));
    t.PostMachine[23] = cut.CutTurn;
    t.PostParam[111] = ToSingle(Distance(static_cast<double>(t.PostMachine[10]) - t.PostMemo[15],
                                         static_cast<double>(t.PostMachine[11]) - t.PostMemo[16]));
}

void EmitMove(RunState& state, DrawRecord& record) {
    ValueTables& t = state.Tables;
    const float x = ToSingle(ProgramLength(state, record.Point[3].X));
    const float y = ToSingle(ProgramLength(state, record.Point[3].Y));
    t.PostMachine[1] = 0;
    t.PostMachine[10] = x;
    t.PostMachine[15] = x;
    t.PostParam[10] = x;
    t.PostParam[15] = x;
    t.PostMachine[11] = y;
    t.PostMachine[16] = y;
    t.PostParam[11] = y;
    t.PostParam[16] = y;
    t.PostParam[173] = ToSingle(DistanceFromLastPosition(state, x, y));
    t.PostParam[174] = 0;
    UpdateCutDirection(state);
    if (record.ToolA.Letter.Text() != "P") {
        if (!FindReservedWord(state, "CANNED_MOVE")) PostAbort(state, "'CANNED_MOVE' not found in Post-Processor");
        WriteReservedBlock(state);
        EmitAfterAction(state, record);
    } else {
        // A move of the cutting head: the path goes on from here, with no turn.
        UpdateCutDirection(state);
        WriteBlockWithAction(state, "CANNED_PROFILED_MOVE", record);
    }
    CloseInputChannel(state, ChannelDefinition);
    state.Loop.CutPath.LastX = x;
    state.Loop.CutPath.LastY = y;
}

void EmitProfiledLine(RunState& state, DrawRecord& record) {
    ApplyTrim(state.Machine, record);
    if (HasLeads(record)) {
        WorkThroughShapeDrawing(state, record);
        return;
    }
    ValueTables& t = state.Tables;
    const CutPathState& cut = state.Loop.CutPath;
    const float sx = ToSingle(ProgramLength(state, record.Point[1].X));
    const float sy = ToSingle(ProgramLength(state, record.Point[1].Y));
    const float ex = ToSingle(ProgramLength(state, record.Point[3].X));
    const float ey = ToSingle(ProgramLength(state, record.Point[3].Y));
    const float length = ToSingle(ProgramLength(state, record.Value[5]));
    const float pitch = ToSingle(ProgramLength(state, record.Value[2]));
    const float angle = ToSingle(state.Loop.ToolRotates ? Norm360(record.ToolA.ToolAngle) : -999.0);

    t.PostMachine[1] = 1;
    t.PostMachine[10] = sx;
    t.PostMachine[11] = sy;
    t.PostParam[10] = sx;
    t.PostParam[11] = sy;
    t.PostMachine[12] = angle;
    t.PostMachine[17] = angle;
    t.PostMachine[15] = ex;
    t.PostMachine[16] = ey;
    t.PostParam[15] = ex;
    t.PostParam[16] = ey;
    t.PostMachine[65] = record.Side;

    t.PostParam[30] = length;
    t.PostParam[31] = length;
    t.PostParam[32] = record.Value[10];
    t.PostParam[33] = pitch;
    t.PostParam[34] = record.Count[1];
    t.PostParam[35] = pitch > 0 ? 1.0f : 0.0f;

    t.PostParam[173] = ToSingle(Distance(static_cast<double>(sx) - cut.LastX, static_cast<double>(sy) - cut.LastY));
    t.PostParam[174] = length;
    t.PostParam[180] = pitch;
    t.PostParam[164] = ToSingle(std::fabs(Norm360(static_cast<double>(t.PostMachine[12]) - t.PostMemo[12])));
    t.PostParam[111] = t.PostParam[173];

    WriteProfiledBlocks(state, record, "CANNED_PROFILED_LINE", false, ex, ey);
}

void EmitProfiledArc(RunState& state, DrawRecord& record) {
    ApplyTrim(state.Machine, record);
    if (HasLeads(record)) {
        WorkThroughShapeDrawing(state, record);
        return;
    }
    ValueTables& t = state.Tables;
    const CutPathState& cut = state.Loop.CutPath;
    const float sx = ToSingle(ProgramLength(state, record.Point[1].X));
    const float sy = ToSingle(ProgramLength(state, record.Point[1].Y));
    const float ex = ToSingle(ProgramLength(state, record.Point[3].X));
    const float ey = ToSingle(ProgramLength(state, record.Point[3].Y));
    const float cx = ToSingle(ProgramLength(state, record.Point[4].X));
    const float cy = ToSingle(ProgramLength(state, record.Point[4].Y));
    const float radius = ToSingle(ProgramLength(state, record.Value[5]));
    const float pitch = ToSingle(ProgramLength(state, std::fabs(static_cast<double>(record.Value[3]))));
    const float startAngle = record.Value[13];
    const float sweep = record.Value[14];
    const float step = record.Value[12];

    double angle = -999;
    if (state.Loop.ToolRotates) {
        // The tool follows the arc when the entity asks for it and the row turns its hits.
        angle = Norm360((record.FollowFlag & record.Count[2]) != 0 ? record.Value[15] : record.ToolA.ToolAngle);
        t.PostParam[50] = record.Count[2] != 0 ? 1.0f : 0.0f;
    } else {
        t.PostParam[50] = 0;
    }

    t.PostMachine[10] = sx;
    t.PostMachine[11] = sy;
    t.PostParam[10] = sx;
    t.PostParam[11] = sy;
    t.PostMachine[12] = ToSingle(angle);
    t.PostMachine[15] = ex;
    t.PostMachine[16] = ey;
    t.PostParam[15] = cx;
    t.PostParam[16] = cy;
    t.PostMachine[17] = ToSingle(Norm360(static_cast<double>(sweep) + angle));

    t.PostParam[30] = radius;
    t.PostParam[36] = std::fabs(static_cast<double>(sweep)) > 180 ? -radius : radius;
    t.PostParam[31] = startAngle;
    t.PostParam[32] = record.Count[1];
    t.PostParam[33] = sweep;
    t.PostParam[35] = step;
    t.PostMachine[65] = ArcTurn(state.Machine, record.Side, sweep);
    t.PostMachine[35] = record.FollowFlag;
    t.PostMachine[1] = sweep < 0 ? 3.0f : 2.0f;
    t.PostMachine[13] = pitch;

    t.PostParam[173] = ToSingle(Distance(static_cast<double>(ex) - sx, static_cast<double>(ey) - sy));
    t.PostParam[174] = ToSingle(static_cast<double>(sweep) * 2 * radius * Pi / 360);
    t.PostParam[180] = pitch;
    t.PostParam[164] = ToSingle(std::fabs(Norm360(static_cast<double>(t.PostMachine[12]) - t.PostMemo[12])));
    if (record.Count[1] > 1)
        t.PostParam[163] = ToSingle(static_cast<double>(t.PostParam[50]) * radius / (record.Count[1] - 1));
    t.PostParam[111] = ToSingle(Distance(static_cast<double>(sx) - cut.LastX, static_cast<double>(sy) - cut.LastY));

    WriteProfiledBlocks(state, record, "CANNED_PROFILED_ARC", true, ex, ey);
}

}  // namespace tvx
