#pragma once
// What the tests of the drawing passes share: a run on a temporary work directory (with a
// shapes library under it), drawings written and read whole, and the records they hold.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"
#include "state/run_state.h"
#include "test_support.h"

namespace tvx::passtest {

struct PassFixture {
    TempDir Dir;
    RunState State;

    PassFixture() {
        State.Job.WorkDir = Dir.Path + "/";
        State.Job.CurrentDir = Dir.Path + "/";
        State.Machine.MachineKind = 10;
        State.Machine.IsToolMachine = true;
        State.Machine.ShapesDir = Dir.Path + "/Shapes/";
        State.Machine.CustomDir = Dir.Path + "/Custom/";
        State.Machine.ToolLibrary = "Lib";
        State.Job.MaterialName = "STEEL";
    }
    std::string Path(const std::string& name) const { return Dir.Path + "/" + name; }
};

// A header record: code 1, the material's name, the count given.
inline DrawRecord Header(int32_t count) {
    DrawRecord r;
    r.EntityCode = 1;
    r.EntityText = "STEEL";
    r.RecordCount = count;
    return r;
}

inline ToolSpec Tool(const char* letter, int16_t workType = 10, int16_t number = 0) {
    ToolSpec t;
    t.Present = -1;
    t.Letter = letter;
    t.ToolName = std::string("TOOL ") + letter;
    t.Size[1] = 5;
    t.ToolNumber = number;
    t.WorkType = workType;
    return t;
}

inline DrawRecord Entity(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.EntityName = EntityNameOfCode(code);
    return r;
}

// Writes the records as a drawing, record 1 first; record 1's RecordCount is written as it
// stands.
inline void WriteDrawing(const std::string& path, const std::vector<DrawRecord>& records) {
    DrawingFile file;
    MakeWorkingFile(file, path);
    for (size_t i = 0; i < records.size(); ++i) WriteRecord(file, static_cast<int32_t>(i + 1), records[i]);
}

// Every record on disk, whatever RecordCount says.
inline std::vector<DrawRecord> ReadDrawing(const std::string& path) {
    DrawingFile file;
    OpenDrawing(file, path);
    std::vector<DrawRecord> records;
    const int32_t onDisk = RecordsOnDisk(file);
    for (int32_t n = 1; n <= onDisk; ++n) records.push_back(ReadRecord(file, n));
    return records;
}

// The 518 bytes of a record, to compare two records whole.
inline std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

}  // namespace tvx::passtest
