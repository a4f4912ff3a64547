#pragma once
// What the kerf tests share: made lines and arcs with their defining fields, bound, and small
// drawings written to a folder.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx::kerftest {

inline MachineState Machine(int16_t turnSense = 0) {
    MachineState m;
    m.TurnSense = turnSense;
    m.MachineKind = 1;
    m.IsProfileMachine = true;
    return m;
}

// A profile line from (x1, y1) to (x2, y2): its length and direction from its ends.
inline DrawRecord Line(double x1, double y1, double x2, double y2, int16_t side, const MachineState& m = Machine()) {
    DrawRecord r;
    r.EntityCode = 120;
    r.EntityName = "Line Profile";
    r.Point[1] = SinglePoint{ToSingle(x1), ToSingle(y1)};
    r.Point[3] = SinglePoint{ToSingle(x2), ToSingle(y2)};
    double length = 0;
    double direction = 0;
    XYToPolar(x2 - x1, y2 - y1, length, direction);
    r.Value[1] = ToSingle(length);
    r.Value[10] = ToSingle(direction);
    r.Side = side;
    BindRecord(m, r);
    return r;
}

// A profile arc about (cx, cy) of radius r from start through sweep.
inline DrawRecord Arc(double cx, double cy, double r, double start, double sweep, int16_t side,
                      const MachineState& m = Machine()) {
    DrawRecord a;
    a.EntityCode = 130;
    a.EntityName = "Arc Profile";
    a.Point[4] = SinglePoint{ToSingle(cx), ToSingle(cy)};
    a.Value[1] = ToSingle(r);
    a.Value[10] = ToSingle(start);
    a.Value[11] = ToSingle(sweep);
    a.Side = side;
    BindRecord(m, a);
    return a;
}

inline DrawRecord Header(int32_t count) {
    DrawRecord h;
    h.EntityCode = 1;
    h.EntityText = "MILD STEEL";
    h.RecordCount = count;
    h.Value[1] = 2500;
    h.Value[2] = 1250;
    return h;
}

// Writes a drawing: record 1 with RecordCount the number of records, then the entities.
inline void WriteDrawingFile(const std::string& path, const std::vector<DrawRecord>& entities) {
    DrawingFile file;
    MakeWorkingFile(file, path);
    WriteRecord(file, 1, Header(static_cast<int32_t>(entities.size()) + 1));
    for (size_t i = 0; i < entities.size(); ++i) WriteRecord(file, static_cast<int32_t>(i + 2), entities[i]);
}

// Every record of a drawing on disk, record 1 first.
inline std::vector<DrawRecord> ReadDrawingFile(const std::string& path) {
    DrawingFile file;
    OpenDrawing(file, path);
    const int32_t count = RecordsOnDisk(file);
    std::vector<DrawRecord> records;
    for (int32_t n = 1; n <= count; ++n) records.push_back(ReadRecord(file, n));
    return records;
}

inline void ExpectPoint(const SinglePoint& p, double x, double y, double tolerance = 1e-4) {
    EXPECT_NEAR(p.X, x, tolerance);
    EXPECT_NEAR(p.Y, y, tolerance);
}

inline void ExpectEnds(const DrawRecord& r, double x1, double y1, double x2, double y2, double tolerance = 1e-4) {
    ExpectPoint(r.Point[1], x1, y1, tolerance);
    ExpectPoint(r.Point[5], x1, y1, tolerance);
    ExpectPoint(r.Point[3], x2, y2, tolerance);
    ExpectPoint(r.Point[6], x2, y2, tolerance);
}

inline std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

}  // namespace tvx::kerftest
