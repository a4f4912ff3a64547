// Lead geometry: where a lead-in and a lead-out meet their entity, the lead records made from
// them, and the room the leads take in the entity's boxes.
//
// The side of an arc lead. The sign of an arc lead's LeadKind is its side of the path, and it
// means the same side for a lead-in as for a lead-out: with TurnSense 0 (or any setting other
// than 1) a negative sign puts the lead's centre to the right of the direction of travel (the
// tangent less 90) and a positive one to the left (the tangent plus 90); TurnSense 1 is the
// mirror of that. So a lead-in and a lead-out of one sign lie on the same side of the path, and
// when the entity is reversed, which flips the sign and exchanges the leads, each lead keeps its
// place on the sheet. This is ArcTurn's convention: the centre lies at the tangent plus
// 90 * -(sign * factor), factor being ArcTurn's convention factor.
//
// The lead arc is tangent to the entity at the meeting point and runs the way the head travels:
// a lead-in turns towards the entity's start and arrives along the entity's direction there, a
// lead-out leaves the entity's end along its direction and turns away. A quarter-circle lead
// (|LeadKind| 2) sweeps 90 degrees, a half-circle one (3 or more) 180; the radius is the size of
// LeadLength.
#include <cmath>
#include <cstdlib>

#include "common/numeric.h"
#include "drawing/bind_support.h"
#include "drawing/binding.h"

namespace tvx {
namespace {

const LeadSpec& LeadOf(const DrawRecord& entity, int which) { return which == 2 ? entity.LeadOut : entity.LeadIn; }

// A straight lead from or to the meeting point (see LeadLineEnds).
void StraightLead(int which, const LeadSpec& lead, double meetX, double meetY, double& startX, double& startY,
                  double& endX, double& endY, double& length, double& angle) {
    const bool straight = std::abs(static_cast<int>(lead.LeadKind)) == 1 && lead.LeadLength != 0;
    double dx = 0;
    double dy = 0;
    if (straight) PolarToXY(lead.LeadLength, lead.LeadAngle, dx, dy);
    if (which == 2) {
        // The lead-out leaves the entity's end.
        startX = meetX;
        startY = meetY;
        endX = meetX + dx;
        endY = meetY + dy;
        angle = lead.LeadAngle;
    } else {
        // The lead-in arrives at the entity's start, travelling towards the part.
        endX = meetX;
        endY = meetY;
        startX = meetX + dx;
        startY = meetY + dy;
        angle = Norm360(static_cast<double>(lead.LeadAngle) + 180);
    }
    length = lead.LeadLength;
    startX = bind::Round4(startX);
    startY = bind::Round4(startY);
    endX = bind::Round4(endX);
    endY = bind::Round4(endY);
    length = bind::Round4(length);
    angle = Norm360(RoundTo(angle, 3));
}

// The direction of travel along the entity where the lead meets it.
double TangentAt(int which, const DrawRecord& entity, double meetX, double meetY) {
    const int16_t code = entity.EntityCode;
    const double rotation = entity.Value[10];
    if (code == 130 || code == 151 || code == 230) {
        double start = 0;
        double sweep = 0;
        bind::ArcWorkingAngles(entity, start, sweep);
        const double at = which == 2 ? start + sweep : start;
        double tangent = sweep < 0 ? at - 90 : at + 90;
        // A negative radius puts the arc on the far side of its centre: it runs the other way.
        if (entity.Value[1] < 0) tangent += 180;
        return Norm360(tangent);
    }
    switch (code) {
        case 152:
            // The outline leaves the right end of its flat along the flat.
            return Norm360(rotation + 180);
        case 153: {
            // The first arc leaves the end of the lower flat counter-clockwise.
            double distance = 0;
            double angle = 0;
            XYToPolar(meetX - entity.Point[4].X, meetY - entity.Point[4].Y, distance, angle);
            return Norm360(angle + 90);
        }
        case 154:
        case 155:
        case 156: {
            // Up the right-hand side on a counter-clockwise outline, down it on a clockwise one.
            const bool counterClockwise = (entity.Value[1] > 0) == (entity.Value[2] > 0);
            return Norm360(rotation + (counterClockwise ? 90 : -90));
        }
        default:
            return Norm360(rotation);
    }
}

}  // namespace

void LeadLineEnds(int which, const DrawRecord& entity, double& startX, double& startY, double& endX, double& endY,
                  double& length, double& angle) {
    double entityStartX = 0, entityStartY = 0, entityEndX = 0, entityEndY = 0;
    bind::EntityEnds(entity, entityStartX, entityStartY, entityEndX, entityEndY);
    const double meetX = which == 2 ? entityEndX : entityStartX;
    const double meetY = which == 2 ? entityEndY : entityStartY;
    StraightLead(which, LeadOf(entity, which), meetX, meetY, startX, startY, endX, endY, length, angle);
}

void ShapeLeadEnds(int which, const DrawRecord& shape, double& startX, double& startY, double& endX, double& endY,
                   double& length, double& angle) {
    double meetX = 0;
    double meetY = 0;
    bind::ShapeMeetingPoint(shape, meetX, meetY);
    StraightLead(which, LeadOf(shape, which), meetX, meetY, startX, startY, endX, endY, length, angle);
}

void LeadArcData(const MachineState& machine, int which, const DrawRecord& entity, LeadArc& arc) {
    const LeadSpec& lead = LeadOf(entity, which);
    double entityStartX = 0, entityStartY = 0, entityEndX = 0, entityEndY = 0;
    bind::EntityEnds(entity, entityStartX, entityStartY, entityEndX, entityEndY);
    const double meetX = which == 2 ? entityEndX : entityStartX;
    const double meetY = which == 2 ? entityEndY : entityStartY;
    const double tangent = TangentAt(which, entity, meetX, meetY);

    const int kind = std::abs(static_cast<int>(lead.LeadKind));
    const double size = kind >= 3 ? 180.0 : (kind == 2 ? 90.0 : 0.0);
    const double sign = lead.LeadKind >= 0 ? 1.0 : -1.0;
    const double convention = machine.TurnSense == 1 ? 1.0 : -1.0;
    const double side = -sign * convention;  // +1: centre to the left of travel, -1: to the right
    const double radius = std::fabs(static_cast<double>(lead.LeadLength));

    double dx = 0;
    double dy = 0;
    PolarToXY(radius, tangent + 90 * side, dx, dy);
    const double centreX = meetX + dx;
    const double centreY = meetY + dy;
    // The angle of the meeting point as seen from the centre, and the lead's own turn: towards
    // the centre's side, so that the arc runs along the tangent at the meeting point.
    const double meetAngle = Norm360(tangent - 90 * side);
    const double sweep = side * size;
    double startAngle = 0;
    double startX = meetX, startY = meetY, endX = meetX, endY = meetY;
    if (which == 2) {
        startAngle = meetAngle;
        PolarToXY(radius, meetAngle + sweep, dx, dy);
        endX = centreX + dx;
        endY = centreY + dy;
    } else {
        startAngle = Norm360(meetAngle - sweep);
        PolarToXY(radius, startAngle, dx, dy);
        startX = centreX + dx;
        startY = centreY + dy;
    }
    arc.CentreX = bind::Round4(centreX);
    arc.CentreY = bind::Round4(centreY);
    arc.Radius = bind::Round4(radius);
    arc.StartAngle = Norm360(RoundTo(startAngle, 3));
    arc.Sweep = sweep;
    arc.StartX = bind::Round4(startX);
    arc.StartY = bind::Round4(startY);
    arc.EndX = bind::Round4(endX);
    arc.EndY = bind::Round4(endY);
}

void MakeLeadRecord(const MachineState& machine, int which, const DrawRecord& entity, DrawRecord& record) {
    // The entity is read from a copy: the record made may be the entity's own.
    const DrawRecord e = entity;
    const int kind = which == 1 || which == 2 ? std::abs(static_cast<int>(LeadOf(e, which).LeadKind)) : 0;
    if (kind == 0) {
        ClearRecord(record);
        return;
    }
    // The side of the path that the entity's cut keeps: an arc's turning sense, a line's side.
    const int16_t turn =
        e.EntityCode == 130 || e.EntityCode == 151 ? ArcTurn(machine, e.Side, e.Value[11]) : e.Side;
    if (kind == 1) {
        double startX = 0, startY = 0, endX = 0, endY = 0, length = 0, angle = 0;
        LeadLineEnds(which, e, startX, startY, endX, endY, length, angle);
        MakeChildRecord(e, 120, record);
        record.Point[1] = SinglePoint{ToSingle(startX), ToSingle(startY)};
        record.Point[3] = SinglePoint{ToSingle(endX), ToSingle(endY)};
        record.Value[1] = ToSingle(length);
        record.Value[10] = ToSingle(angle);
        record.Side = turn;
    } else {
        LeadArc arc;
        LeadArcData(machine, which, e, arc);
        MakeChildRecord(e, 130, record);
        record.Point[4] = SinglePoint{ToSingle(arc.CentreX), ToSingle(arc.CentreY)};
        record.Value[1] = ToSingle(arc.Radius);
        record.Value[10] = ToSingle(arc.StartAngle);
        record.Value[11] = ToSingle(arc.Sweep);
        record.Side = ArcTurn(machine, turn, arc.Sweep);
    }
    // Count[8] tells the emitters that the record is a lead.
    record.Count[8] = static_cast<int16_t>(which);
    if (which == 2) CopyAfter(e.After, record.After);
    BindRecord(machine, record);
}

void LeadBox(const MachineState& machine, DrawRecord& record) {
    double entityStartX = 0, entityStartY = 0, entityEndX = 0, entityEndY = 0;
    bind::EntityEnds(record, entityStartX, entityStartY, entityEndX, entityEndY);
    for (int which : {1, 2}) {
        const LeadSpec& lead = LeadOf(record, which);
        const int kind = std::abs(static_cast<int>(lead.LeadKind));
        if (kind == 1) {
            double dx = 0;
            double dy = 0;
            PolarToXY(lead.LeadLength, lead.LeadAngle, dx, dy);
            const double baseX = which == 2 ? entityEndX : entityStartX;
            const double baseY = which == 2 ? entityEndY : entityStartY;
            bind::WidenBoxes(record, bind::Round4(baseX + dx), bind::Round4(baseY + dy));
        } else if (kind >= 2) {
            LeadArc arc;
            LeadArcData(machine, which, record, arc);
            // The far end, and the axis points of the lead's circle that its arc passes.
            bind::PlaneBox box;
            box.Add(which == 2 ? arc.EndX : arc.StartX, which == 2 ? arc.EndY : arc.StartY);
            bind::AddArc(box, arc.CentreX, arc.CentreY, arc.Radius, arc.StartAngle, arc.Sweep);
            bind::WidenBoxes(record, box.LowX, box.LowY);
            bind::WidenBoxes(record, box.HighX, box.HighY);
        }
    }
}

}  // namespace tvx
