#pragma once
// What the tests of the radiused rectangle (155) and the rectangle (156) share: a shape record,
// its tools, a split into a list of records, and the comparisons of a made line and a made arc.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "drawing/binding_support.h"
#include "drawing/record.h"
#include "splitting/split_output.h"
#include "splitting/split_shapes.h"

namespace tvx::recttest {

using bindtest::ExpectPoint;

// A shape of the code about the centre (x, y): width l, height h, corner radius c, rotation.
inline DrawRecord Shape(int16_t code, double x, double y, double l, double h, double c = 0, double rotation = 0) {
    DrawRecord r;
    r.EntityCode = code;
    r.CarryWord1 = 7;
    r.CarryWord2 = 9;
    r.Point[4] = SinglePoint{static_cast<float>(x), static_cast<float>(y)};
    r.Value[1] = static_cast<float>(l);
    r.Value[2] = static_cast<float>(h);
    r.Value[3] = static_cast<float>(c);
    r.Value[10] = static_cast<float>(rotation);
    return r;
}

// A tool that works by hits (WorkType 10 or more).
inline void Punch(ToolSpec& tool, const char* letter, float size1, float size2 = 0, float corner = 0,
                  int16_t workType = 10, float angle = 0, float step = 0) {
    tool.Present = -1;
    tool.Letter = letter;
    tool.Size[1] = size1;
    tool.Size[2] = size2;
    tool.Size[4] = corner;
    tool.WorkType = workType;
    tool.ToolAngle = angle;
    tool.ToolStep = step;
}

// A profiling tool (WorkType below 10).
inline void Cutter(ToolSpec& tool) {
    tool.Present = -1;
    tool.Letter = "P";
    tool.Size[1] = 0.2f;
    tool.WorkType = 1;
}

inline void Lead(LeadSpec& lead, int16_t kind, float length, float angle) {
    lead.LeadKind = kind;
    lead.LeadLength = length;
    lead.LeadAngle = angle;
}

using SplitRoutine = void (*)(SplitOutput&, const DrawRecord&);

// The records that a routine makes of the shape, as they are written.
inline std::vector<DrawRecord> Split(SplitRoutine routine, const DrawRecord& shape, int16_t turnSense = 0,
                                     SplitChoices choices = MainPathChoices) {
    const MachineState machine = bindtest::Machine(turnSense);
    std::vector<DrawRecord> records;
    int32_t count = 0;
    SplitOutput out = ListOutput(machine, records, count, choices, "record 7 of Progmain.drw");
    routine(out, shape);
    EXPECT_EQ(count, static_cast<int32_t>(records.size()));
    return records;
}

// The text of the fault with which a split ends, or "" when it ends cleanly.
inline std::string FaultOf(SplitRoutine routine, const DrawRecord& shape) {
    try {
        Split(routine, shape);
    } catch (const RunEnd& end) {
        EXPECT_EQ(end.Status, ExitFault);
        return end.Text;
    }
    return "";
}

// A made Line Profile from (x1, y1) to (x3, y3) of the length and direction, with its Side.
inline void ExpectLine(const DrawRecord& r, double x1, double y1, double x3, double y3, double length,
                       double direction, int side) {
    EXPECT_EQ(r.EntityCode, 120);
    EXPECT_EQ(r.EntityName.Trimmed(), "Line Profile");
    ExpectPoint(r.Point[1], x1, y1);
    ExpectPoint(r.Point[2], (x1 + x3) / 2, (y1 + y3) / 2);
    ExpectPoint(r.Point[3], x3, y3);
    EXPECT_NEAR(r.Value[1], length, 1e-4);
    EXPECT_NEAR(r.Value[10], direction, 1e-3);
    EXPECT_EQ(r.Side, side);
    EXPECT_EQ(r.CarryWord1, 7);
    EXPECT_EQ(r.CarryWord2, 9);
}

// A made Arc Profile about (cx, cy) of the radius, start angle and sweep, from (x1, y1) through
// (x2, y2) to (x3, y3), with its Side.
inline void ExpectArc(const DrawRecord& r, double cx, double cy, double radius, double start, double sweep,
                      double x1, double y1, double x2, double y2, double x3, double y3, int side) {
    EXPECT_EQ(r.EntityCode, 130);
    EXPECT_EQ(r.EntityName.Trimmed(), "Arc Profile");
    ExpectPoint(r.Point[4], cx, cy);
    EXPECT_NEAR(r.Value[1], radius, 1e-4);
    EXPECT_NEAR(r.Value[10], start, 1e-3);
    EXPECT_NEAR(r.Value[11], sweep, 1e-3);
    ExpectPoint(r.Point[1], x1, y1);
    ExpectPoint(r.Point[2], x2, y2);
    ExpectPoint(r.Point[3], x3, y3);
    EXPECT_EQ(r.Side, side);
    EXPECT_EQ(r.CarryWord1, 7);
    EXPECT_EQ(r.CarryWord2, 9);
}

// No lead and no After: what a middle record of a split carries.
inline void ExpectNoSubRecords(const DrawRecord& r) {
    EXPECT_EQ(r.LeadIn.LeadKind, 0);
    EXPECT_EQ(r.LeadOut.LeadKind, 0);
    EXPECT_EQ(r.After.ActionCode, 0);
}

}  // namespace tvx::recttest
