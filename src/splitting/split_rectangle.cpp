// The rectangle (156): the only shape that may carry two tools, ToolA for the sides along L
// (Value[1]) and ToolB for those along H (Value[2]). It is split only into lines.
//
// Every outline of it is one walk: from a start point, a leg of a given length along a given
// angle to each next corner, and from the last corner back to the start. The plain outline and
// the worked sides walk from the start corner Point[1]; the outline for a profiling head walks
// from the middle of the side to the right, where its leads join. The worked routines differ
// only in the rule that they give each side: which tool works it, which of the shape's values
// it carries, how its FollowFlag and tool angle are set, and whether it stops short of the
// corner.
#include <cmath>
#include <vector>

#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

namespace tvx {
namespace {

// ---- The walk --------------------------------------------------------------------------------------

struct Leg {
    double Length = 0;
    double Angle = 0;
};

// The corners of a walk: the start, then each leg's end, each rounded to 4. The outline's last
// side runs from the last corner back to the start.
std::vector<PlanePoint> WalkCorners(const PlanePoint& start, const std::vector<Leg>& legs) {
    std::vector<PlanePoint> corners{start};
    for (const Leg& leg : legs) corners.push_back(PolarFrom(corners.back(), leg.Length, leg.Angle));
    return corners;
}

PlanePoint StartCorner(const DrawRecord& shape) { return PlanePoint{shape.Point[1].X, shape.Point[1].Y}; }

// A side of the outline from s to e: length, direction, and Side by LineSide from the way the
// outline runs.
DrawRecord SideLine(const SplitOutput& out, const DrawRecord& shape, const PlanePoint& s, const PlanePoint& e) {
    DrawRecord line = MadeRecord(shape, 120);
    SetLineSegment(line, s, e);
    line.Side = LineSide(*out.Machine, shape.Side, CounterClockwise(shape.Value[1], shape.Value[2]));
    return line;
}

// ---- The worked sides ------------------------------------------------------------------------------

// Which of the shape's values a worked side carries as its pitch (Value[2]).
enum class SidePitch {
    None,
    SourceValue4,  // the shape's Value[4] on every side
    RoundToolOnly, // a side whose tool is round: the shape's Value[4] along L, Value[5] along H
};

// Which trims (Value[3], Value[4]) a worked side carries, both from the shape's Value[3].
enum class SideTrims {
    None,
    Both,
    EndOnly,
};

struct SideRule {
    bool SecondToolAcross = false;    // the sides along H take ToolB in their ToolA
    SidePitch Pitch = SidePitch::None;
    SideTrims Trims = SideTrims::None;
    bool FollowOffForRound = false;   // FollowFlag 0 on a side whose tool is round; otherwise -1
    bool ToolTurns = false;           // the tool turns to each side: ToolAngle = direction - ToolStep
    bool StopsShort = false;          // an inside side stops one tool length short of its corner
};

// How far an inside side runs from its corner: its length less the tool's extent along it, but
// never less in size than that extent, so that a side shorter than two tool lengths still has
// one tool length of travel.
double InsideRun(double sideLength, double toolExtent) {
    const double run = sideLength - toolExtent;
    return std::fabs(run) < std::fabs(toolExtent) ? toolExtent : run;
}

// The tool's extent along a side (k 0 to 3), by the match of its angle against the rectangle's,
// signed like the side's dimension.
double ExtentAlongSide(const DrawRecord& shape, const ToolSpec& tool, int k) {
    double alongL = 0;
    double acrossL = 0;
    MatchToolToRectangle(shape, tool, alongL, acrossL);
    if (k % 2 == 0) return shape.Value[1] < 0 ? -alongL : alongL;
    return shape.Value[2] < 0 ? -acrossL : acrossL;
}

void WriteWorkedSides(SplitOutput& out, const DrawRecord& shape, const SideRule& rule) {
    const double l = shape.Value[1];
    const double h = shape.Value[2];
    double axis[4];
    RectangleAxes(shape, axis);
    const std::vector<PlanePoint> corners = WalkCorners(StartCorner(shape), {{l, axis[0]}, {h, axis[1]}, {l, axis[2]}});
    for (int k = 0; k < 4; ++k) {
        const bool alongH = k % 2 == 1;
        const ToolSpec& tool = rule.SecondToolAcross && alongH ? shape.ToolB : shape.ToolA;
        const PlanePoint& start = corners[static_cast<size_t>(k)];
        PlanePoint end = corners[static_cast<size_t>((k + 1) % 4)];
        if (rule.StopsShort)
            end = PolarFrom(start, InsideRun(alongH ? h : l, ExtentAlongSide(shape, tool, k)), axis[k]);

        DrawRecord line = SideLine(out, shape, start, end);
        CopyTool(tool, line.ToolA);
        const bool round = LetterIs(tool, 'A');
        if (rule.Pitch == SidePitch::SourceValue4) line.Value[2] = shape.Value[4];
        if (rule.Pitch == SidePitch::RoundToolOnly && round) line.Value[2] = alongH ? shape.Value[5] : shape.Value[4];
        if (rule.Trims == SideTrims::Both) line.Value[3] = shape.Value[3];
        if (rule.Trims != SideTrims::None) line.Value[4] = shape.Value[3];
        line.FollowFlag = rule.FollowOffForRound && round ? 0 : -1;
        if (rule.ToolTurns) TurnToolAlongLine(line);
        if (k == 3) CopyAfter(shape.After, line.After);
        AppendBound(out, shape, line);
    }
}

}  // namespace

// ---- The outlines ----------------------------------------------------------------------------------

void SplitRectangleProfile(SplitOutput& out, const DrawRecord& shape) {
    const double l = shape.Value[1];
    const double h = shape.Value[2];
    const double rotation = shape.Value[10];
    const std::vector<PlanePoint> corners =
        WalkCorners(StartCorner(shape), {{l, rotation}, {h, rotation + 90}, {l, rotation + 180}});
    for (int k = 0; k < 4; ++k) {
        DrawRecord line = SideLine(out, shape, corners[static_cast<size_t>(k)], corners[static_cast<size_t>((k + 1) % 4)]);
        if (k == 0) {
            CopyTool(shape.ToolB, line.ToolB);
            CopyLead(shape.LeadIn, line.LeadIn);
        }
        if (k == 3) {
            CopyLead(shape.LeadOut, line.LeadOut);
            CopyAfter(shape.After, line.After);
        }
        AppendBound(out, shape, line);
    }
}

void SplitRectangleLeads(SplitOutput& out, const DrawRecord& shape) {
    const double l = shape.Value[1];
    const double h = shape.Value[2];
    const double rotation = shape.Value[10];
    // The path starts where the lead-in ends, whether or not a lead is written.
    double sx = 0, sy = 0, ex = 0, ey = 0, length = 0, angle = 0;
    ShapeLeadEnds(1, shape, sx, sy, ex, ey, length, angle);
    const std::vector<PlanePoint> corners = WalkCorners(
        PlanePoint{ex, ey}, {{h / 2, rotation + 90}, {l, rotation + 180}, {h, rotation + 270}, {l, rotation}});
    const bool counterClockwise = CounterClockwise(l, h);

    WriteShapeLead(out, shape, 1, counterClockwise);
    for (size_t k = 0; k < 5; ++k) {
        DrawRecord line = SideLine(out, shape, corners[k], corners[(k + 1) % 5]);
        if (k == 4 && AfterOnLastSegment(shape)) CopyAfter(shape.After, line.After);
        AppendBound(out, shape, line);
    }
    WriteShapeLead(out, shape, 2, counterClockwise);
}

// ---- The choice ------------------------------------------------------------------------------------

void SplitRectangle(SplitOutput& out, const DrawRecord& shape) {
    if (shape.ToolA.Present == 0) {
        SplitRectangleProfile(out, shape);
    } else if (!IsWorkedTool(shape.ToolA)) {
        SplitRectangleLeads(out, shape);
    } else {
        SplitRectangleWorked(out, shape);
    }
}

void SplitRectangleWorked(SplitOutput& out, const DrawRecord& shape) {
    const bool secondWorked = IsWorkedTool(shape.ToolB);
    const bool rotary = IsRotaryWork(shape.ToolA.WorkType);
    if (shape.Side >= 1) {
        if (secondWorked) {
            SplitRectangleOutsideTwoTools(out, shape);
        } else if (rotary) {
            SplitRectangleOutsideRotary(out, shape);
        } else {
            SplitRectangleOutside(out, shape);
        }
    } else if (shape.Count[1] != 0) {
        ClearRectByGrid(out, shape);
    } else if (secondWorked) {
        if (LetterIs(shape.ToolA, 'A') || LetterIs(shape.ToolB, 'A')) {
            SplitRectangleInsideTwoRound(out, shape);
        } else {
            SplitRectangleInsideTwoTools(out, shape);
        }
    } else if (rotary) {
        SplitRectangleInsideRotary(out, shape);
    } else if (LetterIs(shape.ToolA, 'A')) {
        SplitRectangleInsideRound(out, shape);
    } else {
        SplitRectangleInside(out, shape);
    }
}

// ---- The worked sides ------------------------------------------------------------------------------

void SplitRectangleOutside(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.Pitch = SidePitch::SourceValue4;
    rule.Trims = SideTrims::Both;
    rule.FollowOffForRound = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleOutsideRotary(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.Trims = SideTrims::Both;
    rule.ToolTurns = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleOutsideTwoTools(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.SecondToolAcross = true;
    rule.Pitch = SidePitch::RoundToolOnly;
    rule.Trims = SideTrims::Both;
    rule.FollowOffForRound = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleInsideRound(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.Pitch = SidePitch::SourceValue4;
    // The single-shape path gives these sides the trims of the outside ones.
    rule.Trims = out.Choices.InsideRoundTrims ? SideTrims::Both : SideTrims::None;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleInside(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.Trims = SideTrims::EndOnly;
    rule.StopsShort = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleInsideRotary(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.Trims = SideTrims::EndOnly;
    rule.ToolTurns = true;
    rule.StopsShort = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleInsideTwoTools(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.SecondToolAcross = true;
    rule.Trims = SideTrims::EndOnly;
    rule.StopsShort = true;
    WriteWorkedSides(out, shape, rule);
}

void SplitRectangleInsideTwoRound(SplitOutput& out, const DrawRecord& shape) {
    SideRule rule;
    rule.SecondToolAcross = true;
    rule.Pitch = SidePitch::RoundToolOnly;
    rule.FollowOffForRound = true;
    WriteWorkedSides(out, shape, rule);
}

}  // namespace tvx
