// The radiused rectangle (155): its plain outline, its outline for a profiling head, and the
// work of a punch on it. The clearing of a rectangle by a rectangular punch and the match of a
// tool's angle against a rectangle's sides live here too; the rectangle (156) shares both.
//
// The shape: centre Point[4], width L Value[1], height H Value[2], corner radius C Value[3],
// rotation Value[10]. L and H are signed: a negative one mirrors the outline, which then runs
// the other way round.
#include <cmath>
#include <string>

#include "common/numeric.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

namespace tvx {
namespace {

// ---- The outline ---------------------------------------------------------------------------------

// One piece of an outline, turned by the shape's rotation and rounded: a side (a line) or a
// corner (an arc of the corner radius).
struct OutlinePiece {
    bool Corner = false;
    PlanePoint Start;
    PlanePoint End;
    PlanePoint Centre;        // corners only
    double StartAngle = 0;    // corners only
};

// The outline of a radiused rectangle in the order of its plain form: side 1 along the bottom,
// corner 1, side 2 up the right, corner 2, side 3 along the top, corner 3, side 4 down the left,
// corner 4 (for positive L and H; a mirrored shape swaps the ends).
struct RadRectOutline {
    OutlinePiece Pieces[8];
    double Sweep = 0;          // of every corner: +90 counter-clockwise, -90 clockwise
    bool CounterClockwise = true;
    PlanePoint RightMiddle;    // the middle of side 2, where the path of a profiling head starts
};

RadRectOutline OutlineOf(const DrawRecord& shape) {
    const PlanePoint centre = CentreOf(shape);
    const double l = shape.Value[1];
    const double h = shape.Value[2];
    const double c = shape.Value[3];
    const double rotation = shape.Value[10];
    const double rx = l < 0 ? -c : c;
    const double ry = h < 0 ? -c : c;
    const double x0 = centre.X;
    const double y0 = centre.Y;

    // Before rotation: the four sides and the four corner centres.
    const PlanePoint sideStart[4] = {{x0 - l / 2 + rx, y0 - h / 2},
                                     {x0 + l / 2, y0 - h / 2 + ry},
                                     {x0 + l / 2 - rx, y0 + h / 2},
                                     {x0 - l / 2, y0 + h / 2 - ry}};
    const PlanePoint sideEnd[4] = {{x0 + l / 2 - rx, y0 - h / 2},
                                   {x0 + l / 2, y0 + h / 2 - ry},
                                   {x0 - l / 2 + rx, y0 + h / 2},
                                   {x0 - l / 2, y0 - h / 2 + ry}};
    const PlanePoint cornerCentre[4] = {{x0 + l / 2 - rx, y0 - h / 2 + ry},
                                        {x0 + l / 2 - rx, y0 + h / 2 - ry},
                                        {x0 - l / 2 + rx, y0 + h / 2 - ry},
                                        {x0 - l / 2 + rx, y0 - h / 2 + ry}};

    // Where each corner starts, by the signs of the two dimensions.
    static constexpr double StartsUpRight[4] = {270, 0, 90, 180};
    static constexpr double StartsDownRight[4] = {90, 0, 270, 180};
    static constexpr double StartsUpLeft[4] = {270, 180, 90, 0};
    static constexpr double StartsDownLeft[4] = {90, 180, 270, 0};
    const double* starts = l > 0 ? (h > 0 ? StartsUpRight : StartsDownRight) : (h > 0 ? StartsUpLeft : StartsDownLeft);

    RadRectOutline outline;
    outline.CounterClockwise = CounterClockwise(l, h);
    outline.Sweep = outline.CounterClockwise ? 90.0 : -90.0;
    for (int k = 0; k < 4; ++k) {
        OutlinePiece& side = outline.Pieces[2 * k];
        side.Start = TurnedAbout(sideStart[k], centre, rotation);
        side.End = TurnedAbout(sideEnd[k], centre, rotation);
        OutlinePiece& corner = outline.Pieces[2 * k + 1];
        corner.Corner = true;
        corner.Centre = TurnedAbout(cornerCentre[k], centre, rotation);
        corner.StartAngle = RoundTo(AddAngles(starts[k], rotation), 3);
    }
    // A corner runs from its side's end to the next side's start.
    for (int k = 0; k < 4; ++k) {
        outline.Pieces[2 * k + 1].Start = outline.Pieces[2 * k].End;
        outline.Pieces[2 * k + 1].End = outline.Pieces[(2 * k + 2) % 8].Start;
    }
    outline.RightMiddle = TurnedAbout(PlanePoint{x0 + l / 2, y0}, centre, rotation);
    return outline;
}

// What the first and the last record of an outline take from the shape besides the geometry.
struct OutlineEnds {
    bool LeadInAndToolB = false;  // the first: LeadIn and ToolB
    bool LeadOut = false;         // the last: LeadOut
    bool After = false;           // the last: After
};

// Writes one piece of an outline. A side's Side follows LineSide; a corner keeps the shape's.
void WritePiece(SplitOutput& out, const DrawRecord& shape, const RadRectOutline& outline,
                const OutlinePiece& piece, bool first, bool last, const OutlineEnds& ends) {
    DrawRecord made = MadeRecord(shape, piece.Corner ? 130 : 120);
    if (piece.Corner) {
        SetArcSegment(made, piece.Start, piece.End, piece.Centre, shape.Value[3], piece.StartAngle, outline.Sweep);
        made.Side = shape.Side;
    } else {
        SetLineSegment(made, piece.Start, piece.End);
        made.Side = LineSide(*out.Machine, shape.Side, outline.CounterClockwise);
    }
    if (first && ends.LeadInAndToolB) {
        CopyLead(shape.LeadIn, made.LeadIn);
        CopyTool(shape.ToolB, made.ToolB);
    }
    if (last && ends.LeadOut) CopyLead(shape.LeadOut, made.LeadOut);
    if (last && ends.After) CopyAfter(shape.After, made.After);
    AppendBound(out, shape, made);
}

// The outline from the start of side 1: four sides and four corners.
void WriteOutlineFromCorner(SplitOutput& out, const DrawRecord& shape, const OutlineEnds& ends) {
    const RadRectOutline outline = OutlineOf(shape);
    for (int i = 0; i < 8; ++i) WritePiece(out, shape, outline, outline.Pieces[i], i == 0, i == 7, ends);
}

// ---- A rectangular punch in a rectangle ------------------------------------------------------------

// How a rectangular punch stands in a rectangle: the usable spans, the tool's extents along L
// and across it and the steps that its corner radius leaves.
struct PunchInRectangle {
    double L = 0, H = 0;
    double Rotation = 0;
    double CornerRadius = 0;   // c, the punch's Size[4]
    double SpanL = 0, SpanH = 0;   // AL, AH: |L| - 2c, |H| - 2c
    double ExtentL = 0, ExtentH = 0;  // tL, tH, signed like L and H
    double StepL = 0, StepH = 0;      // sL, sH: the extents less 2c, signed like L and H
    double CoverL = 0, CoverH = 0;    // bL, bH: the extents before the sign
};

PunchInRectangle PunchIn(const DrawRecord& shape) {
    PunchInRectangle p;
    p.L = shape.Value[1];
    p.H = shape.Value[2];
    p.Rotation = shape.Value[10];
    p.CornerRadius = shape.ToolA.Size[4];
    p.SpanL = std::fabs(p.L) - 2 * p.CornerRadius;
    p.SpanH = std::fabs(p.H) - 2 * p.CornerRadius;
    MatchToolToRectangle(shape, shape.ToolA, p.ExtentL, p.ExtentH);
    p.StepL = p.ExtentL - 2 * p.CornerRadius;
    p.StepH = p.ExtentH - 2 * p.CornerRadius;
    p.CoverL = p.ExtentL;
    p.CoverH = p.ExtentH;
    if (p.L < 0) {
        p.ExtentL = -p.ExtentL;
        p.StepL = -p.StepL;
    }
    if (p.H < 0) {
        p.ExtentH = -p.ExtentH;
        p.StepH = -p.StepH;
    }
    return p;
}

// The hits of a grid along one dimension: one more than the whole steps in the usable span, and
// one less again when the span holds the steps exactly (the last hit would stand wholly within
// the one before). A step of 0 (a tool that matches no side, or one twice its corner radius) is
// a fault of the drawing.
int16_t GridHits(const SplitOutput& out, const DrawRecord& shape, double span, double step, const char* along) {
    const std::string dimension(along);
    const double quotient =
        SplitQuotient(out, shape, span, std::fabs(step),
                      "the punch steps 0 along the " + dimension +
                          " (its angle matches no side of the shape, or its size is twice its corner radius)");
    const double whole = std::floor(quotient);
    return CountCell(out, shape, whole == quotient ? whole : whole + 1, "the hits along the " + dimension);
}

// One row of hits through the centre: a line from `half` along `backward` to `half` along
// `forward`, of length twice `half`, whose direction is stored as `direction`.
void WriteClearingRow(SplitOutput& out, const DrawRecord& shape, double half, double backward, double forward,
                      double direction) {
    const PlanePoint centre = CentreOf(shape);
    DrawRecord row = MadeRecord(shape, 120);
    SetLineSegment(row, PolarFrom(centre, half, backward), PolarFrom(centre, half, forward));
    row.Value[1] = ToSingle(2 * half);
    row.Value[10] = ToSingle(direction);
    row.FollowFlag = -1;
    CopyAfter(shape.After, row.After);
    AppendBound(out, shape, row);
}

// ---- The rim of a rectangular punch --------------------------------------------------------------

// The four sides of the hole, those along L shortened at both ends by `shorten`; with a tool
// that turns, each side turns the tool to its own direction.
void WriteEdges(SplitOutput& out, const DrawRecord& shape, double shorten, bool toolTurns) {
    const PlanePoint centre = CentreOf(shape);
    const double l = shape.Value[1];
    const double h = shape.Value[2];
    const double rotation = shape.Value[10];
    const double x0 = centre.X;
    const double y0 = centre.Y;
    const PlanePoint ends[4][2] = {
        {{x0 - l / 2 + shorten, y0 - h / 2}, {x0 + l / 2 - shorten, y0 - h / 2}},
        {{x0 + l / 2, y0 - h / 2}, {x0 + l / 2, y0 + h / 2}},
        {{x0 + l / 2 - shorten, y0 + h / 2}, {x0 - l / 2 + shorten, y0 + h / 2}},
        {{x0 - l / 2, y0 + h / 2}, {x0 - l / 2, y0 - h / 2}},
    };
    const bool counterClockwise = CounterClockwise(l, h);
    for (int k = 0; k < 4; ++k) {
        DrawRecord line = MadeRecord(shape, 120);
        SetLineSegment(line, TurnedAbout(ends[k][0], centre, rotation), TurnedAbout(ends[k][1], centre, rotation));
        line.Side = LineSide(*out.Machine, shape.Side, counterClockwise);
        line.FollowFlag = -1;
        if (toolTurns) TurnToolAlongLine(line);
        if (k == 3) CopyAfter(shape.After, line.After);
        AppendBound(out, shape, line);
    }
}

}  // namespace

// ---- The outlines ----------------------------------------------------------------------------------

void SplitRadRectProfile(SplitOutput& out, const DrawRecord& shape) {
    WriteOutlineFromCorner(out, shape, OutlineEnds{true, true, true});
}

void SplitRadRectRound(SplitOutput& out, const DrawRecord& shape) {
    WriteOutlineFromCorner(out, shape, OutlineEnds{false, false, true});
}

void SplitRadRectLeads(SplitOutput& out, const DrawRecord& shape) {
    const RadRectOutline outline = OutlineOf(shape);
    // From the middle of side 2 round to it again: the upper half of side 2, the corners and
    // sides 3, 4 and 1 between them, and the lower half of side 2.
    OutlinePiece pieces[9];
    pieces[0] = outline.Pieces[2];
    pieces[0].Start = outline.RightMiddle;
    for (int i = 1; i <= 7; ++i) pieces[i] = outline.Pieces[(i + 2) % 8];
    pieces[8] = outline.Pieces[2];
    pieces[8].End = outline.RightMiddle;

    WriteShapeLead(out, shape, 1, outline.CounterClockwise);
    const OutlineEnds ends{false, false, AfterOnLastSegment(shape)};
    for (int i = 0; i < 9; ++i) WritePiece(out, shape, outline, pieces[i], i == 0, i == 8, ends);
    WriteShapeLead(out, shape, 2, outline.CounterClockwise);
}

// ---- The choice ------------------------------------------------------------------------------------

void SplitRadRect(SplitOutput& out, const DrawRecord& shape) {
    const ToolSpec& tool = shape.ToolA;
    if (tool.Present == 0) {
        SplitRadRectProfile(out, shape);
        return;
    }
    if (!IsWorkedTool(tool)) {
        SplitRadRectLeads(out, shape);
        return;
    }
    const bool clearing = shape.Count[1] != 0;
    if (LetterIs(tool, 'A')) {
        SplitRadRectRound(out, shape);
    } else if (shape.Side < 1 && LetterIs(tool, 'C')) {
        if (clearing) {
            ClearRectByGrid(out, shape);
        } else {
            SplitRadRectEdges(out, shape);
        }
    } else if (shape.Side < 1 && LetterIs(tool, 'E')) {
        if (clearing) {
            ClearRectByGrid(out, shape);
        } else if (IsRotaryWork(tool.WorkType)) {
            SplitRadRectEdgesRotary(out, shape);
        } else {
            SplitRadRectEdges(out, shape);
        }
    } else {
        // A punch that cannot work this shape is taken off it: the shape is cut as a plain outline.
        DrawRecord plain = shape;
        ClearTool(plain.ToolA);
        SplitRadRectProfile(out, plain);
    }
}

// ---- A rectangular punch ---------------------------------------------------------------------------

void RectangleAxes(const DrawRecord& shape, double (&axis)[4]) {
    for (int k = 0; k < 4; ++k) axis[k] = RoundTo(Norm360(static_cast<double>(shape.Value[10]) + 90.0 * k), 3);
}

void MatchToolToRectangle(const DrawRecord& shape, const ToolSpec& tool, double& alongL, double& acrossL) {
    double axis[4];
    RectangleAxes(shape, axis);
    const double toolAngle = RoundTo(Norm360(static_cast<double>(tool.ToolAngle) + tool.ToolStep), 3);
    alongL = 0;
    acrossL = 0;
    if (toolAngle == axis[0] || toolAngle == axis[2]) {
        alongL = tool.Size[1];
        acrossL = tool.Size[2];
    } else if (toolAngle == axis[1] || toolAngle == axis[3]) {
        alongL = tool.Size[2];
        acrossL = tool.Size[1];
    }
}

void ClearRectByGrid(SplitOutput& out, const DrawRecord& shape) {
    const PunchInRectangle p = PunchIn(shape);
    const bool coversL = p.CoverL >= std::fabs(p.L);
    const bool coversH = p.CoverH >= std::fabs(p.H);
    const bool shortL = p.CoverL < std::fabs(p.L);
    const bool shortH = p.CoverH < std::fabs(p.H);

    if (coversL && coversH) {
        // The tool covers the hole: one hit at the centre.
        DrawRecord punch = MadeRecord(shape, 210);
        punch.Point[4] = shape.Point[4];
        CopyAfter(shape.After, punch.After);
        AppendBound(out, shape, punch);
        return;
    }
    if (shortL && shortH) {
        const int16_t n = GridHits(out, shape, p.SpanL, p.StepL, "width");
        const int16_t m = GridHits(out, shape, p.SpanH, p.StepH, "height");
        const double pitchL = SplitQuotient(out, shape, p.L - p.ExtentL, n - 1.0,
                                            "the grid has a single hit along the width, and its pitch divides by 0");
        const double pitchH = SplitQuotient(out, shape, p.H - p.ExtentH, m - 1.0,
                                            "the grid has a single hit along the height, and its pitch divides by 0");
        double ax = 0, ay = 0, bx = 0, by = 0;
        PolarToXY(p.L / 2 - p.ExtentL / 2, p.Rotation + 180, ax, ay);
        PolarToXY(p.H / 2 - p.ExtentH / 2, p.Rotation - 90, bx, by);
        const PlanePoint centre = CentreOf(shape);
        const PlanePoint first = Rounded(centre.X + ax + bx, centre.Y + ay + by);

        DrawRecord grid = MadeRecord(shape, 225);
        grid.Point[1] = SinglePoint{ToSingle(first.X), ToSingle(first.Y)};
        grid.Value[1] = ToSingle(pitchL * (n - 1.0));
        grid.Value[2] = ToSingle(pitchL);
        grid.Value[3] = ToSingle(pitchH * (m - 1.0));
        grid.Value[4] = ToSingle(pitchH);
        grid.Value[10] = shape.Value[10];
        grid.Count[1] = n;
        grid.Count[2] = m;
        CopyAfter(shape.After, grid.After);
        AppendBound(out, shape, grid);
        return;
    }
    if (coversL && shortH) {
        // The tool spans the width: one row up the height, from bottom to top.
        const double rotation = p.H < 0 ? Norm360(p.Rotation + 180) : p.Rotation;
        WriteClearingRow(out, shape, std::fabs(p.H) / 2, rotation - 90, rotation + 90,
                         RoundTo(Norm360(rotation + 90), 3));
        return;
    }
    if (shortL && coversH) {
        // The tool spans the height: one row along the width, from left to right.
        const bool mirrored = p.L < 0;
        const double rotation = mirrored ? Norm360(p.Rotation + 180) : p.Rotation;
        WriteClearingRow(out, shape, std::fabs(p.L) / 2, rotation + 180, rotation,
                         mirrored ? RoundTo(rotation, 3) : rotation);
        return;
    }
    // A dimension that is not a number leaves no case: nothing is written.
}

void SplitRadRectEdges(SplitOutput& out, const DrawRecord& shape) {
    WriteEdges(out, shape, PunchIn(shape).StepL, false);
}

void SplitRadRectEdgesRotary(SplitOutput& out, const DrawRecord& shape) {
    // The tool turns to each side, so its extents are taken as they stand.
    const double step = static_cast<double>(shape.ToolA.Size[2]) - 2.0 * shape.ToolA.Size[4];
    WriteEdges(out, shape, shape.Value[1] < 0 ? -step : step, true);
}

}  // namespace tvx
