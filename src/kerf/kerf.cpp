// The offsets, the corners and the walk of the kerf pass.
#include "kerf/kerf.h"

#include <algorithm>
#include <cmath>

#include "common/numeric.h"
#include "common/paths.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"

namespace tvx {
namespace {

bool IsProfilePiece(int16_t code) { return code == 120 || code == 130; }

// Two points within 0.1 of each other in X and in Y, each axis alone.
bool Near(double x1, double y1, double x2, double y2) { return std::fabs(x1 - x2) < 0.1 && std::fabs(y1 - y2) < 0.1; }

// The closed-path tie of two consecutive source records: both profile pieces, the second
// starting where the first ends, on the same Side.
bool Continuous(const DrawRecord& before, const DrawRecord& after) {
    return IsProfilePiece(before.EntityCode) && IsProfilePiece(after.EntityCode) &&
           Near(after.Point[5].X, after.Point[5].Y, before.Point[6].X, before.Point[6].Y) && before.Side == after.Side;
}

void SetPoint(SinglePoint& point, double x, double y) {
    point.X = ToSingle(x);
    point.Y = ToSingle(y);
}

// The start and the end of a line or an arc, with the derived start and end that follow them.
void SetEnds(DrawRecord& record, double startX, double startY, double endX, double endY) {
    SetPoint(record.Point[1], startX, startY);
    SetPoint(record.Point[5], startX, startY);
    SetPoint(record.Point[3], endX, endY);
    SetPoint(record.Point[6], endX, endY);
}

// The direction in which the first piece leaves the corner: a line's own direction, an arc's
// tangent at its end.
double TangentAtEnd(const DrawRecord& piece) {
    if (piece.EntityCode != 130) return piece.Value[10];
    const double endAngle = Norm360(static_cast<double>(piece.Value[10]) + piece.Value[11]);
    return piece.Value[11] < 0 ? Norm360(endAngle - 90) : Norm360(endAngle + 90);
}

void TrimToMeeting(const MachineState& machine, DrawRecord& record, const Meeting& meeting, int end) {
    if (record.EntityCode == 130) {
        TrimArc(machine, record, meeting.X, meeting.Y, end);
    } else {
        TrimLine(machine, record, meeting.X, meeting.Y, end);
    }
}

// The offset piece waiting for its corner with the next one: its record in the target, and the
// end and Side of the piece as drawn.
struct OpenPiece {
    DrawRecord Out;  // EntityCode 0: none
    int32_t OutNumber = 0;
    double CornerX = 0;
    double CornerY = 0;
    int16_t Side = 0;
};

void ClearPiece(OpenPiece& piece) {
    ClearRecord(piece.Out);
    piece.OutNumber = 0;
    piece.CornerX = 0;
    piece.CornerY = 0;
    piece.Side = 0;
}

// The path with its extension (what follows the last point of its last name) made ext.
std::string WithExtension(const std::string& path, const char* ext) {
    const size_t name = path.find_last_of("\\/");
    const size_t point = path.rfind('.');
    const bool hasExtension = point != std::string::npos && (name == std::string::npos || point > name);
    return (hasExtension ? path.substr(0, point) : path) + "." + ext;
}

}  // namespace

void OffsetLine(const MachineState& machine, DrawRecord& record, double radius) {
    if (record.Side == 0) return;
    double dx = 0;
    double dy = 0;
    // A Side other than -1 and 1 turns the line to neither side: it keeps its place.
    if (record.Side == -1) PolarToXY(radius, Norm360(static_cast<double>(record.Value[10]) + 90), dx, dy);
    if (record.Side == 1) PolarToXY(radius, Norm360(static_cast<double>(record.Value[10]) - 90), dx, dy);
    const double x1 = record.Point[1].X + dx;
    const double y1 = record.Point[1].Y + dy;
    const double x3 = record.Point[3].X + dx;
    const double y3 = record.Point[3].Y + dy;
    record.EntityCode = 120;
    record.EntityName = "Line Profile";
    SetEnds(record, x1, y1, x3, y3);
    record.Side = 0;
    record.FollowFlag = 0;
    BindRecord(machine, record);
}

void OffsetArc(const MachineState& machine, DrawRecord& record, double radius, int16_t& errorFlag) {
    if (record.Side == 0) return;
    const int16_t turn = ArcTurn(machine, record.Side, record.Value[11]);
    double newRadius = record.Value[1];
    if (turn < 0) {
        newRadius = newRadius - radius;
        if (newRadius <= 0) errorFlag = -1;
    } else if (turn > 0) {
        newRadius = newRadius + radius;
    }
    record.EntityCode = 130;
    record.EntityName = "Arc Profile";
    if (newRadius > 0) record.Value[1] = ToSingle(newRadius);
    record.Side = 0;
    BindRecord(machine, record);
}

void CornerArc(const MachineState& machine, const DrawRecord& first, const DrawRecord& second, double cornerX,
               double cornerY, double radius, DrawRecord& out) {
    const double startX = first.Point[6].X;
    const double startY = first.Point[6].Y;
    const double endX = second.Point[5].X;
    const double endY = second.Point[5].Y;
    double distance = 0;
    double startAngle = 0;
    double endAngle = 0;
    XYToPolar(startX - cornerX, startY - cornerY, distance, startAngle);
    XYToPolar(endX - cornerX, endY - cornerY, distance, endAngle);
    startAngle = RoundTo(startAngle, 4);
    endAngle = RoundTo(endAngle, 4);
    double sweep = RoundTo(endAngle - startAngle, 4);
    if (std::fabs(sweep) == 180) {
        // The two offsets are opposite: the sense comes from the path. A middle that lies within
        // 90 of the way the first piece leaves the corner turns the sweep round.
        const double tangent = TangentAtEnd(first);
        const double middle = Norm360(sweep < 0 ? startAngle - 90 : startAngle + 90);
        const double apart = Norm360(middle - tangent);
        if (apart <= 90 || apart >= 270) sweep = 0 - sweep;
    } else if (std::fabs(sweep) > 180) {
        sweep = sweep < 0 ? sweep + 360 : sweep - 360;
    }
    if (&out != &first) CopyRecord(first, out);
    ClearLead(out.LeadIn);
    ClearLead(out.LeadOut);
    ClearAfter(out.After);
    out.EntityCode = 130;
    out.EntityName = "Arc Profile";
    SetEnds(out, startX, startY, endX, endY);
    SetPoint(out.Point[4], cornerX, cornerY);
    out.Value[1] = ToSingle(radius);
    out.Value[10] = ToSingle(startAngle);
    out.Value[11] = ToSingle(sweep);
    out.Side = 0;
    out.FollowFlag = 0;
    BindRecord(machine, out);
}

void TrimLine(const MachineState& machine, DrawRecord& record, double x, double y, int end) {
    if (end == 1) SetPoint(record.Point[1], x, y);
    if (end == 2) SetPoint(record.Point[3], x, y);
    double length = 0;
    double direction = 0;
    XYToPolar(static_cast<double>(record.Point[3].X) - record.Point[1].X,
              static_cast<double>(record.Point[3].Y) - record.Point[1].Y, length, direction);
    record.Value[1] = ToSingle(length);
    record.Value[10] = ToSingle(direction);
    CopyPoint(record.Point[1], record.Point[5]);
    CopyPoint(record.Point[3], record.Point[6]);
    record.Side = 0;
    record.FollowFlag = 0;
    BindRecord(machine, record);
}

void TrimArc(const MachineState& machine, DrawRecord& record, double x, double y, int end) {
    const double cx = record.Point[4].X;
    const double cy = record.Point[4].Y;
    double startAngle = record.Value[10];
    double endAngle = Norm360(static_cast<double>(record.Value[10]) + record.Value[11]);
    double distance = 0;
    if (end == 1) XYToPolar(x - cx, y - cy, distance, startAngle);
    if (end == 2) XYToPolar(x - cx, y - cy, distance, endAngle);
    double sweep = endAngle - startAngle;
    if (record.Value[11] < 0) {
        if (sweep > 0) sweep -= 360;
    } else if (sweep < 0) {
        sweep += 360;
    }
    record.Value[10] = ToSingle(startAngle);
    record.Value[11] = ToSingle(sweep);
    BindRecord(machine, record);
}

int16_t KerfDrawing(RunState& state, const std::string& path, MeetingSearch search) {
    const MachineState& machine = state.Machine;
    DrawingFile source;
    OpenDrawing(source, WithExtension(path, "drw"));
    const std::string kerf = WithExtension(path, "krf");
    DeleteIfExists(kerf);
    // The target is written in batches: nothing else reads it before it is closed.
    DrawingFile target;
    MakeWorkingFile(target, kerf);
    target.WriteBehind = true;

    DrawRecord header;
    ReadRecord(source, 1, header);
    WriteRecord(target, 1, header);
    int32_t outCount = 1;
    int16_t errorFlag = 0;

    // Records behind the end of the file read as zeros: a damaged count does not make the walk
    // read them.
    const int32_t count = std::min(header.RecordCount, RecordsOnDisk(source));
    OpenPiece prev;
    ClearPiece(prev);
    // The walk holds three consecutive source records; each is read from the file once.
    DrawRecord before = header;
    DrawRecord current;
    if (count >= 2) ReadRecord(source, 2, current);
    for (int32_t n = 2; n <= count; ++n) {
        DrawRecord next;
        if (n < count) ReadRecord(source, n + 1, next);
        DrawRecord work;
        CopyRecord(current, work);
        if (!Continuous(before, current) && current.EntityCode == 120) BindRecord(machine, work);
        if (!(n < count && Continuous(current, next)) && current.EntityCode == 120) BindRecord(machine, work);

        double cornerX = 0;
        double cornerY = 0;
        switch (current.EntityCode) {
            case 110:
            case 355:
            case 360:
            case 365:
                // A move or the end of a part: no corner is made across it.
                ClearPiece(prev);
                break;
            case 120:
                OffsetLine(machine, work, KerfRadius);
                cornerX = current.Point[6].X;
                cornerY = current.Point[6].Y;
                break;
            case 130:
                OffsetArc(machine, work, KerfRadius, errorFlag);
                cornerX = current.Point[6].X;
                cornerY = current.Point[6].Y;
                break;
            default: break;
        }

        if (IsProfilePiece(prev.Out.EntityCode) && IsProfilePiece(work.EntityCode) &&
            Near(prev.CornerX, prev.CornerY, current.Point[5].X, current.Point[5].Y) && prev.Side == current.Side &&
            !Near(prev.Out.Point[6].X, prev.Out.Point[6].Y, work.Point[5].X, work.Point[5].Y)) {
            Meeting meeting = MeetEntities(prev.Out, work, search);
            if (meeting.Class == 1) {
                double distance = 0;
                double angle = 0;
                XYToPolar(meeting.X - prev.CornerX, meeting.Y - prev.CornerY, distance, angle);
                if (distance > 50 * KerfRadius) meeting.Class = 0;
            }
            if (meeting.Class == 1 || meeting.Class == 2) {
                TrimToMeeting(machine, prev.Out, meeting, 2);
                TrimToMeeting(machine, work, meeting, 1);
                WriteRecord(target, prev.OutNumber, prev.Out);
            } else {
                DrawRecord arc;
                CornerArc(machine, prev.Out, work, prev.CornerX, prev.CornerY, KerfRadius, arc);
                WriteRecord(target, ++outCount, arc);
            }
        }

        WriteRecord(target, ++outCount, work);
        if (IsProfilePiece(work.EntityCode)) {
            prev.Out = work;
            prev.OutNumber = outCount;
            prev.CornerX = cornerX;
            prev.CornerY = cornerY;
            prev.Side = current.Side;
        }
        before = current;
        current = next;
    }

    header.RecordCount = outCount;
    WriteRecord(target, 1, header);
    CloseDrawing(target);
    CloseDrawing(source);
    return errorFlag;
}

}  // namespace tvx
