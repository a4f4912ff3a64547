#pragma once
// The tooling library: for each shape and size, a folder under the machine's shapes directory
// with the list of the tools that make it (Tooling.lkp) and the drawings of those tools.
//
// A size folder is named by the shape, its side and its sizes (absolute, rounded to 3
// decimals, in the free form of NumberText):
//   151 Circle\<Outside|Inside>\<diameter>
//   152 Single-D\<side>\<diameter>x<flat>          153 Double-D\<side>\<diameter>x<flat>
//   154 Obround\<side>\<width>x<length>             155 Rad-Rect\<side>\<width>x<length>r<radius>
//   156 Rectangle\<side>\<width>x<length>
//   171 CustomDir + <width>x<height>a<angle>        175 CustomDir + the record's trimmed text
// Under a size folder stands one folder per material (profile machines) or tool library (the
// others), which holds Tooling.lkp and the tool drawings <n>.drw; 0.drw, the shape's own
// drawing, stands in the size folder and is copied into the material or library folder.
#include <cstdint>
#include <string>
#include <vector>

#include "drawing/record.h"
#include "state/run_state.h"

namespace tvx {

// ---- Shape folders ----------------------------------------------------------------------------

// The modes of ShapePath: which path it gives.
inline constexpr int ShapeFolderMode = 0;         // the size folder itself
inline constexpr int ShapeOwnDrawingMode = -2;    // 0.drw of the size folder
inline constexpr int LibraryFolderMode = 1;       // the material or library folder under it
inline constexpr int LibraryOwnDrawingMode = 2;   // 0.drw of the material or library folder
inline constexpr int LookupFileMode = 3;          // Tooling.lkp of the material or library folder
inline constexpr int ToolDrawingMode = 4;         // <n>.drw of the material or library folder

// The size folder of a record and the angle its library tools are looked at: its path (with a
// trailing separator) and the shape's angle as the folder takes it (Norm360 or Norm180, the
// sizes of 155 and 156 exchanged so that the first is not above the second, a square's angle
// through Norm90). Empty Folder for a code that has no folder (anything but 151 to 156, 171,
// 175). Nothing is made on disk.
struct ShapeFolderInfo {
    std::string Folder;
    double Angle = 0;
};
ShapeFolderInfo ShapeFolder(const MachineState& machine, const DrawRecord& record);

// The path of a record's size folder, or of a file in it, by `mode` (the constants above).
// Folders that do not exist are made when asked for; modes 1 to 4 also make Tooling.lkp as
// "******" when it is missing and copy 0.drw in from the size folder when it is there and the
// copy is not. Mode 4 (and any mode above it) gives <n>.drw: n is ToolA.ToolNumber of a "U"
// tool with a number, else the value of `mode` as given; for a code 171 n is always the
// record's own ToolA.ToolNumber. `mode` is left holding n. An empty material counts as
// "Default", an empty library as "Full Library"; the folder is named by the material on a
// profile machine and by the library on any other. Empty for a code without a folder.
std::string ShapePath(const MachineState& machine, const DrawRecord& record, int& mode,
                      const std::string& material, const std::string& library);
// ShapePath under the job's material (Job.MaterialName) and the machine's tool library.
std::string JobShapePath(const RunState& state, const DrawRecord& record, int mode);

// The turn of a tooling drawing placed on an entity: Norm360 of the entity's angle (Value[10])
// less the angle the drawing is stored at, for the shapes 152 to 156 and the custom tools 171
// and 175; 0 for a circle, which has no angle, and for every other code.
double LibraryTurn(const DrawRecord& entity, double storedAngle);

// ---- Tooling.lkp ------------------------------------------------------------------------------

// One entry of a Tooling.lkp: the tool's name, its number (the key), the angle its drawing is
// stored at (Norm360, a single) and the step of the angles it also fits at (absolute, 0 counts
// as 360, below 0.1 counts as 0.1), and the file of its drawing.
struct ToolingEntry {
    std::string ToolName;
    int16_t ToolNumber = 0;
    float ToolAngle = 0;
    float AngleStep = 0.5f;
    std::string ToolFile;
};

// The entry returned when no entry matches: empty name, number 0, angle 0, step 0.5, no file.
ToolingEntry DefaultToolingEntry();

// The entries of a Tooling.lkp as the lookup reads them, normalised and sorted by ToolFile.
// A missing file is made as "******" and gives no entries. A fault of the file (a number out of
// range, a line cut short) gives `broken` true and no entries: a broken library behaves as an
// empty one. `reason` then says what was wrong and where, for people.
struct ToolingList {
    std::vector<ToolingEntry> Entries;
    bool Broken = false;
    std::string Reason;
};
ToolingList ReadToolingList(const std::string& file);

// The entry of a tool number: the last of the sorted entries with that number, else the
// default entry.
ToolingEntry LookupToolEntry(const std::string& file, int number);

// One field of a tool's entry: 1 ToolName, 2 ToolNumber, 3 ToolAngle, 4 AngleStep, 5 ToolFile.
// Numbers come in Number, texts in Text; a field outside 1 to 5 gives 0 and "".
struct ToolingValue {
    double Number = 0;
    std::string Text;
};
ToolingValue LookupTool(const std::string& file, int number, int field);

// True when a tool stored at `toolAngle` with the angle step `step` fits at the angle `wanted`:
// the angle itself, then every step upward below 360 and downward not below 0, in single
// precision, compared exactly.
bool ToolFitsAngle(float wanted, double toolAngle, double step);

}  // namespace tvx
