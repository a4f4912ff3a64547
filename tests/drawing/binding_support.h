#pragma once
// What the binding tests share: a machine of a turning sense, a made record, a worked tool, and
// the comparisons of a point and of a record's bytes.
#include <gtest/gtest.h>

#include <string>

#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx::bindtest {

inline MachineState Machine(int16_t turnSense = 0) {
    MachineState m;
    m.TurnSense = turnSense;
    m.MachineKind = 10;
    m.IsToolMachine = true;
    return m;
}

inline DrawRecord Made(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.EntityName = EntityNameOfCode(code);
    return r;
}

inline void WorkingTool(DrawRecord& r, const char* letter, float width, float length = 0, int16_t workType = 10) {
    r.ToolA.Present = -1;
    r.ToolA.Letter = letter;
    r.ToolA.Size[1] = width;
    r.ToolA.Size[2] = length;
    r.ToolA.WorkType = workType;
}

inline void ExpectPoint(const SinglePoint& p, double x, double y, double tolerance = 1e-4) {
    EXPECT_NEAR(p.X, x, tolerance);
    EXPECT_NEAR(p.Y, y, tolerance);
}

// The 518 bytes of a record, to compare two records whole.
inline std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

}  // namespace tvx::bindtest
