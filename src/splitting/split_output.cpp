#include "splitting/split_output.h"

#include <cmath>
#include <utility>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "drawing/binding.h"

namespace tvx {
namespace {

std::string Number(double value) { return Trim(PlainText(value)); }

SinglePoint Single(const PlanePoint& p) { return SinglePoint{ToSingle(p.X), ToSingle(p.Y)}; }

// A whole count from a quotient of the split: the integer part towards minus infinity (floor)
// or towards zero (truncation). A quotient that is not a number or beyond 32 bits is a fault.
int32_t WholeCount(const SplitOutput& out, const DrawRecord& source, double quotient, bool floor,
                   const std::string& what) {
    const double whole = floor ? std::floor(quotient) : std::trunc(quotient);
    if (!std::isfinite(whole) || whole < -2147483647.0 || whole > 2147483646.0)
        SplitFault(out, source, what + " cannot be counted (" + Number(quotient) + ")");
    return static_cast<int32_t>(whole);
}

}  // namespace

SplitOutput FileOutput(const MachineState& machine, DrawingFile& file, int32_t& outputCount, SplitChoices choices,
                       std::string place) {
    SplitOutput out;
    out.Machine = &machine;
    out.File = &file;
    out.OutputCount = &outputCount;
    out.Choices = choices;
    out.Place = std::move(place);
    return out;
}

SplitOutput ListOutput(const MachineState& machine, std::vector<DrawRecord>& records, int32_t& outputCount,
                       SplitChoices choices, std::string place) {
    SplitOutput out;
    out.Machine = &machine;
    out.Records = &records;
    out.OutputCount = &outputCount;
    out.Choices = choices;
    out.Place = std::move(place);
    return out;
}

void AppendRecord(SplitOutput& out, const DrawRecord& source, const DrawRecord& record) {
    if (out.Made >= MostRecordsFromOneEntity)
        SplitFault(out, source, "it makes more than " + LongText(MostRecordsFromOneEntity) + " records");
    ++out.Made;
    ++*out.OutputCount;
    if (out.File != nullptr) {
        WriteRecord(*out.File, *out.OutputCount, record);
    } else if (out.Records != nullptr) {
        out.Records->push_back(record);
    }
}

void AppendBound(SplitOutput& out, const DrawRecord& source, DrawRecord& record) {
    BindRecord(*out.Machine, record);
    AppendRecord(out, source, record);
}

void SplitFault(const SplitOutput& out, const DrawRecord& source, const std::string& what) {
    std::string place = out.Place;
    if (place.empty() && out.PlaceFile != nullptr) place = "record " + LongText(out.PlaceNumber) + " of " + *out.PlaceFile;
    if (place.empty()) place = "the entity";
    RunFault("Cannot split " + place + " (code " + IntegerText(source.EntityCode) + "): " + what);
}

// ---- Points ----------------------------------------------------------------------------------

PlanePoint Rounded(double x, double y) { return PlanePoint{RoundTo(x, 4), RoundTo(y, 4)}; }

PlanePoint PolarFrom(const PlanePoint& from, double distance, double angle) {
    double dx = 0, dy = 0;
    PolarToXY(distance, angle, dx, dy);
    return Rounded(from.X + dx, from.Y + dy);
}

PlanePoint TurnedAbout(const PlanePoint& point, const PlanePoint& centre, double turn) {
    double x = point.X, y = point.Y;
    RotatePoint(centre.X, centre.Y, x, y, turn);
    return Rounded(x, y);
}

PlanePoint MiddleRounded(const PlanePoint& a, const PlanePoint& b) { return Rounded((a.X + b.X) / 2, (a.Y + b.Y) / 2); }

double AngleAbout(const PlanePoint& point, const PlanePoint& centre) {
    double distance = 0, angle = 0;
    XYToPolar(point.X - centre.X, point.Y - centre.Y, distance, angle);
    return angle;
}

PlanePoint CentreOf(const DrawRecord& shape) { return PlanePoint{shape.Point[4].X, shape.Point[4].Y}; }

// ---- Made segments -----------------------------------------------------------------------------

int16_t LineSide(const MachineState& machine, int16_t side, bool counterClockwise) {
    return ArcTurn(machine, side, counterClockwise ? 1.0 : -1.0);
}

bool CounterClockwise(double first, double second) { return (first > 0) == (second > 0); }

void SetLineSegment(DrawRecord& line, const PlanePoint& s, const PlanePoint& e) {
    line.Point[1] = Single(s);
    line.Point[2] = Single(PlanePoint{(s.X + e.X) / 2, (s.Y + e.Y) / 2});
    line.Point[3] = Single(e);
    double length = 0, direction = 0;
    XYToPolar(e.X - s.X, e.Y - s.Y, length, direction);
    line.Value[1] = ToSingle(RoundTo(length, 4));
    line.Value[10] = ToSingle(RoundTo(direction, 3));
}

void SetArcByCentre(DrawRecord& arc, const PlanePoint& centre, double radius, double startAngle, double sweep) {
    arc.Point[4] = Single(centre);
    arc.Value[1] = ToSingle(radius);
    arc.Value[10] = ToSingle(startAngle);
    arc.Value[11] = ToSingle(sweep);
}

void SetArcSegment(DrawRecord& arc, const PlanePoint& s, const PlanePoint& e, const PlanePoint& centre,
                   double radius, double startAngle, double sweep) {
    arc.Point[1] = Single(s);
    arc.Point[2] = Single(PolarFrom(centre, radius, Norm360(startAngle + sweep / 2)));
    arc.Point[3] = Single(e);
    SetArcByCentre(arc, centre, radius, startAngle, sweep);
}

void TurnToolAlongLine(DrawRecord& line) {
    line.ToolA.ToolAngle = ToSingle(RoundTo(Norm360(static_cast<double>(line.Value[10]) - line.ToolA.ToolStep), 3));
}

DrawRecord MadeRecord(const DrawRecord& source, int16_t code) {
    DrawRecord made;
    MakeChildRecord(source, code, made);
    return made;
}

// ---- Hits of a worked path -----------------------------------------------------------------------

double SplitQuotient(const SplitOutput& out, const DrawRecord& source, double numerator, double denominator,
                     const std::string& what) {
    if (denominator == 0) SplitFault(out, source, what);
    return numerator / denominator;
}

int32_t LineHits(const SplitOutput& out, const DrawRecord& source, double length, double pitch) {
    const double quotient = SplitQuotient(out, source, length, pitch,
                                          "a punched path of length " + Number(length) + " has a pitch of 0");
    return WholeCount(out, source, quotient, false, "the hits of a punched path") + 1;
}

double ActualPitch(const SplitOutput& out, const DrawRecord& source, double length, int32_t hits) {
    return SplitQuotient(out, source, length, static_cast<double>(hits) - 1,
                         "a punched path of length " + Number(length) +
                             " is shorter than its pitch: it has one hit, and its pitch divides by 0");
}

int32_t ArcHits(const SplitOutput& out, const DrawRecord& source, double pathRadius, double sweep, double pitch) {
    const double part = SplitQuotient(out, source, 360, std::fabs(sweep), "a punched arc has a sweep of 0");
    const double length = (pathRadius * 2 * Pi) / part;
    const double quotient = SplitQuotient(out, source, length, pitch,
                                          "a punched arc of length " + Number(length) + " has a pitch of 0");
    return WholeCount(out, source, quotient, true, "the hits of a punched arc") + 1;
}

double ArcStep(const SplitOutput& out, const DrawRecord& source, double sweep, int32_t hits) {
    return RoundTo(SplitQuotient(out, source, sweep, static_cast<double>(hits) - 1,
                                 "a punched arc of sweep " + Number(sweep) +
                                     " is shorter than its pitch: it has one hit, and its step divides by 0"),
                   3);
}

int16_t CountCell(const SplitOutput& out, const DrawRecord& source, double count, const std::string& what) {
    if (!std::isfinite(count) || count < -32768 || count > 32767)
        SplitFault(out, source, what + " of " + Number(count) + " does not fit a count");
    return ToInteger16(count, what.c_str());
}

// ---- Leads -----------------------------------------------------------------------------------------

bool WriteShapeLead(SplitOutput& out, const DrawRecord& shape, int which, bool counterClockwise) {
    const LeadSpec& lead = which == 1 ? shape.LeadIn : shape.LeadOut;
    if (lead.LeadKind != 1) return false;
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    ShapeLeadEnds(which, shape, sx, sy, ex, ey, length, angle);
    DrawRecord line = MadeRecord(shape, 120);
    line.Point[1] = SinglePoint{ToSingle(sx), ToSingle(sy)};
    line.Point[2] = SinglePoint{ToSingle((sx + ex) / 2), ToSingle((sy + ey) / 2)};
    line.Point[3] = SinglePoint{ToSingle(ex), ToSingle(ey)};
    line.Value[1] = ToSingle(length);
    line.Value[10] = ToSingle(angle);
    line.Side = LineSide(*out.Machine, shape.Side, counterClockwise);
    if (out.Choices.MarkLeads) line.Count[8] = static_cast<int16_t>(which);
    if (which == 2) CopyAfter(shape.After, line.After);
    AppendBound(out, shape, line);
    return true;
}

bool AfterOnLastSegment(const DrawRecord& shape) { return shape.LeadOut.LeadKind == 0; }

}  // namespace tvx
