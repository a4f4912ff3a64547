// The turn of a whole drawing about its origin. Geometry turns freely; a tool turns with its
// entity only as far as it can: a rotary tool takes the turn into its angle, a fixed tool keeps
// its entity only at the angles of its symmetry, a library tool only where its library says it
// fits. An entity that loses its tool is plain geometry from then on.
#include <cmath>
#include <initializer_list>
#include <string>

#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "state/run_state.h"
#include "tooling/library.h"

namespace tvx {
namespace {

// True when `turn` is exactly one of the angles.
bool OneOf(double turn, std::initializer_list<double> angles) {
    for (double a : angles)
        if (turn == a) return true;
    return false;
}

// The half turns and the right angles, each up to two whole turns.
bool IsHalfTurn(double turn) { return OneOf(turn, {0, 180, 360, 540, 720}); }
bool IsQuarterTurn(double turn) { return OneOf(turn, {0, 90, 180, 270, 360, 450, 540, 630, 720}); }

bool TakesAngle(int16_t code) {
    switch (code) {
        case 110:
        case 120:
        case 130:
        case 151:
        case 152:
        case 153:
        case 154:
        case 155:
        case 156:
        case 171:
        case 175:
        case 220:
        case 225:
        case 230: return true;
        default: return false;
    }
}

// The entities that are no longer worked when a fixed tool cannot follow them: lines, arcs and
// the shapes.
bool LosesFixedTool(int16_t code) { return code == 120 || code == 130 || (code >= 151 && code <= 156); }

// A tool of one of the fixed letters: a rotary tool takes the turn into its angle; a fixed tool
// at a turn that its symmetry does not allow is taken off a line, an arc or a shape.
void FixedLetterTool(DrawRecord& record, double angle, std::initializer_list<double> allowed) {
    ToolSpec& tool = record.ToolA;
    if (IsRotaryWork(tool.WorkType)) {
        tool.ToolAngle = ToSingle(static_cast<double>(tool.ToolAngle) + angle);
        return;
    }
    if (!OneOf(std::fabs(angle), allowed) && LosesFixedTool(record.EntityCode)) ClearTool(tool);
}

// A library tool stays where its library says it fits at the entity's new angle; on a tool
// machine a shape of enough symmetry keeps it at the turns of that symmetry whatever the
// library says. One that does not stay is taken off, both tools.
void LibraryTool(RunState& state, DrawRecord& record, double angle) {
    const std::string lookup = JobShapePath(state, record, LookupFileMode);
    const ToolingEntry entry = LookupToolEntry(lookup, record.ToolA.ToolNumber);
    bool stays = ToolFitsAngle(record.Value[10], entry.ToolAngle, entry.AngleStep);
    const double turn = std::fabs(angle);
    if (state.Machine.IsToolMachine) {
        switch (record.EntityCode) {
            case 152: stays = stays || OneOf(turn, {0, 360, 720}); break;
            case 153:
            case 154: stays = stays || IsHalfTurn(turn); break;
            case 155:
            case 156:
                stays = stays || (record.Value[1] == record.Value[2] ? IsQuarterTurn(turn) : IsHalfTurn(turn));
                break;
            default: break;
        }
    }
    if (!stays) {
        ClearTool(record.ToolA);
        ClearTool(record.ToolB);
    }
}

void TurnRecord(RunState& state, DrawRecord& record, double angle) {
    for (int i = 1; i <= 6; ++i) {
        double x = record.Point[i].X;
        double y = record.Point[i].Y;
        RotatePoint(0, 0, x, y, angle);
        record.Point[i].X = ToSingle(x);
        record.Point[i].Y = ToSingle(y);
    }
    if (TakesAngle(record.EntityCode)) record.Value[10] = AddAngles(record.Value[10], angle);
    if (record.ToolA.Present == 0) return;
    switch (record.ToolA.Letter.Bytes[0]) {
        case 'P':
            // A straight lead keeps its direction against the entity.
            for (LeadSpec* lead : {&record.LeadIn, &record.LeadOut})
                if (lead->LeadKind == 1 || lead->LeadKind == -1)
                    lead->LeadAngle = ToSingle(static_cast<double>(lead->LeadAngle) + angle);
            break;
        case 'U': LibraryTool(state, record, angle); break;
        case 'B':
        case 'C':
        case 'M': FixedLetterTool(record, angle, {0, 90, 180, 270, 360}); break;
        case 'D':
        case 'E':
        case 'F':
        case 'H':
        case 'J': FixedLetterTool(record, angle, {0, 180, 360}); break;
        case 'G':
        case 'I':
        case 'K':
        case 'L':
        case 'S': FixedLetterTool(record, angle, {0, 360}); break;
        default: break;
    }
}

}  // namespace

void RotateDrawing(RunState& state, const std::string& drawing, double angle) {
    DrawingFile file;
    OpenDrawing(file, drawing);
    const int32_t count = ReadRecordCount(file);
    const int32_t onDisk = RecordsOnDisk(file);
    const int32_t last = count < onDisk ? count : onDisk;
    ChangeInPlace(file, 1, last, [&state, angle](int32_t, DrawRecord& record) {
        TurnRecord(state, record, angle);
        BindRecord(state.Machine, record);
        return true;
    });
    CloseDrawing(file);
}

}  // namespace tvx
