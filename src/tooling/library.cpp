#include "tooling/library.h"

#include <algorithm>
#include <cmath>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config_files.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"

namespace tvx {

namespace {

constexpr const char* DefaultMaterial = "Default";
constexpr const char* FullLibrary = "Full Library";
constexpr const char* LookupFileName = "Tooling.lkp";
constexpr const char* OwnDrawingName = "0.drw";
constexpr const char* EmptyListLine = "******";

// A size of a folder name: absolute, rounded to 3 decimals.
double FolderSize(double value) { return RoundTo(std::fabs(value), 3); }

// The free-form text of a size or an angle in a folder name.
std::string FolderNumber(double value) { return NumberText(value, -1); }

// The side folder of a shape: outside for a Side of 1 or more.
const char* SideFolder(const DrawRecord& record) { return record.Side >= 1 ? "Outside\\" : "Inside\\"; }

// The drawing of a shape of this size, made from the entity: a header, then the entity moved
// so that its centre lies at the origin, without tools, leads or the action after it, bound.
void MakeOwnDrawing(const MachineState& machine, const DrawRecord& record, const std::string& path) {
    DrawRecord header;
    ClearRecord(header);
    header.EntityCode = 1;
    header.RecordCount = 2;

    DrawRecord shape;
    CopyRecord(record, shape);
    MoveRecord(shape, -static_cast<double>(record.Point[4].X), -static_cast<double>(record.Point[4].Y));
    ClearTool(shape.ToolA);
    ClearTool(shape.ToolB);
    ClearLead(shape.LeadIn);
    ClearLead(shape.LeadOut);
    ClearAfter(shape.After);
    BindRecord(machine, shape);

    const RecordBytes first = EncodeRecord(header);
    const RecordBytes second = EncodeRecord(shape);
    std::string bytes;
    bytes.reserve(2 * RecordLength);
    bytes.append(reinterpret_cast<const char*>(first.data()), first.size());
    bytes.append(reinterpret_cast<const char*>(second.data()), second.size());
    WriteFileAtomically(path, bytes);
}

// The size folder, made, with the shape's own drawing in it.
void MakeSizeFolder(const MachineState& machine, const DrawRecord& record, const std::string& folder,
                    bool withOwnDrawing) {
    MakeDirectory(folder);
    if (withOwnDrawing && !FileExists(folder + OwnDrawingName))
        MakeOwnDrawing(machine, record, folder + OwnDrawingName);
}

// The name of the folder under a size folder: the material on a profile machine, else the tool
// library; blank names take their defaults.
std::string LibraryName(const MachineState& machine, const std::string& material, const std::string& library) {
    if (machine.IsProfileMachine) {
        const std::string name = Trim(material);
        return name.empty() ? DefaultMaterial : name;
    }
    const std::string name = Trim(library);
    return name.empty() ? FullLibrary : name;
}

// The line number (from 1) of a byte offset of a text: CR LF, LF and CR each end a line.
int LineOfOffset(const std::string& text, size_t offset) {
    int line = 1;
    const size_t end = std::min(offset, text.size());
    for (size_t i = 0; i < end; ++i) {
        if (text[i] == '\n') ++line;
        else if (text[i] == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n')) ++line;
    }
    return line;
}

// Why a list could not be read, for people: the fault's own text stands behind the line.
struct ListFault {
    std::string Reason;
};

}  // namespace

// ---- Shape folders ----------------------------------------------------------------------------

ShapeFolderInfo ShapeFolder(const MachineState& machine, const DrawRecord& record) {
    ShapeFolderInfo info;
    const double angle = record.Value[10];
    switch (record.EntityCode) {
    case 151:
        info.Folder = machine.ShapesDir + "Circle\\" + SideFolder(record) +
                      FolderNumber(FolderSize(2.0 * static_cast<double>(record.Value[1]))) + "\\";
        info.Angle = 0;
        break;
    case 152:
    case 153: {
        const double diameter = FolderSize(2.0 * static_cast<double>(record.Value[1]));
        const double flat = FolderSize(record.Value[2]);
        info.Folder = machine.ShapesDir + (record.EntityCode == 152 ? "Single-D\\" : "Double-D\\") +
                      SideFolder(record) + FolderNumber(diameter) + "x" + FolderNumber(flat) + "\\";
        info.Angle = record.EntityCode == 152 ? RoundTo(Norm360(angle), 3) : Norm180(angle);
        break;
    }
    case 154:
        info.Folder = machine.ShapesDir + "Obround\\" + SideFolder(record) + FolderNumber(FolderSize(record.Value[1])) +
                      "x" + FolderNumber(FolderSize(record.Value[2])) + "\\";
        info.Angle = Norm180(angle);
        break;
    case 155:
    case 156: {
        double width = FolderSize(record.Value[1]);
        double length = FolderSize(record.Value[2]);
        // The narrower side comes first, so that a shape turned by a right angle shares the
        // folder of the upright one.
        info.Angle = Norm180(angle);
        if (width > length) {
            SwapValues(width, length);
            info.Angle = Norm180(angle - 90.0);
        }
        if (width == length) info.Angle = Norm90(info.Angle);
        info.Folder = machine.ShapesDir + (record.EntityCode == 155 ? "Rad-Rect\\" : "Rectangle\\") +
                      SideFolder(record) + FolderNumber(width) + "x" + FolderNumber(length);
        if (record.EntityCode == 155) info.Folder += "r" + FolderNumber(FolderSize(record.Value[3]));
        info.Folder += "\\";
        break;
    }
    case 171:
        info.Angle = RoundTo(Norm360(angle), 3);
        info.Folder = machine.CustomDir + FolderNumber(FolderSize(record.Value[1])) + "x" +
                      FolderNumber(FolderSize(record.Value[2])) + "a" + FolderNumber(info.Angle) + "\\";
        break;
    case 175:
        info.Angle = Norm360(angle);
        info.Folder = WithSeparator(machine.CustomDir + record.EntityText.Trimmed());
        break;
    default:
        break;
    }
    return info;
}

std::string ShapePath(const MachineState& machine, const DrawRecord& record, int& mode, const std::string& material,
                      const std::string& library) {
    const std::string folder = ShapeFolder(machine, record).Folder;
    if (folder.empty()) return {};
    if (mode < LibraryFolderMode) {
        const bool ownDrawing = mode == ShapeOwnDrawingMode;
        MakeSizeFolder(machine, record, folder, ownDrawing);
        return ownDrawing ? folder + OwnDrawingName : folder;
    }

    MakeSizeFolder(machine, record, folder, true);
    const std::string libraryFolder = folder + LibraryName(machine, material, library) + "\\";
    MakeDirectory(libraryFolder);
    const std::string lookup = libraryFolder + LookupFileName;
    if (!FileExists(lookup)) WriteAllLines(lookup, {EmptyListLine});
    const std::string ownDrawing = libraryFolder + OwnDrawingName;
    if (!FileExists(ownDrawing) && FileExists(folder + OwnDrawingName)) CopyFileTo(folder + OwnDrawingName, ownDrawing);

    switch (mode) {
    case LibraryFolderMode:
        return libraryFolder;
    case LibraryOwnDrawingMode:
        return ownDrawing;
    case LookupFileMode:
        return lookup;
    default:
        break;
    }
    // A tool's drawing: the number of the record's library tool, else the number asked for.
    if (record.EntityCode == 171) mode = record.ToolA.ToolNumber;
    else if (LetterIs(record.ToolA, 'U') && record.ToolA.ToolNumber != 0) mode = record.ToolA.ToolNumber;
    return libraryFolder + LongText(mode) + ".drw";
}

double LibraryTurn(const DrawRecord& entity, double storedAngle) {
    const int16_t c = entity.EntityCode;
    if ((c >= 152 && c <= 156) || c == 171 || c == 175)
        return Norm360(static_cast<double>(entity.Value[10]) - storedAngle);
    return 0;
}

std::string JobShapePath(const RunState& state, const DrawRecord& record, int mode) {
    return ShapePath(state.Machine, record, mode, state.Job.MaterialName, state.Machine.ToolLibrary);
}

// ---- Tooling.lkp ------------------------------------------------------------------------------

ToolingEntry DefaultToolingEntry() {
    ToolingEntry entry;
    entry.ToolName.clear();
    entry.ToolNumber = 0;
    entry.ToolAngle = 0;
    entry.AngleStep = 0.5f;
    entry.ToolFile.clear();
    return entry;
}

namespace {

// Reads the entries of an open list, in the order of the file. Any fault of the file comes out
// as a ListFault that names its line.
std::vector<ToolingEntry> ReadEntries(TextInput& in) {
    std::vector<ToolingEntry> entries;
    const std::string& text = *in.Data;
    auto lineAt = [&](size_t offset) { return "line " + LongText(LineOfOffset(text, offset)) + ": "; };
    while (!ListAtEnd(in)) {
        const size_t recordStart = in.Pos;
        std::string items[5];
        items[0] = ReadItem(in);
        if (IsListEnd(items[0])) break;
        size_t starts[5] = {recordStart, 0, 0, 0, 0};
        for (int i = 1; i < 5; ++i) {
            if (ListAtEnd(in))
                throw ListFault{lineAt(recordStart) + "the entry ends after " + LongText(i) + " of its 5 items"};
            starts[i] = in.Pos;
            items[i] = ReadItem(in);
        }
        // A number of the file; a value that the system cannot hold is a fault of the file.
        auto number = [&](int i, const char* field) {
            try {
                return LeadingNumber(items[i]);
            } catch (const RunEnd& end) {
                throw ListFault{lineAt(starts[i]) + field + " " + Trim(items[i]) + ": " + end.Text};
            }
        };
        auto single = [&](int i, const char* field, double value) {
            try {
                return ToSingle(value);
            } catch (const RunEnd& end) {
                throw ListFault{lineAt(starts[i]) + field + " " + Trim(items[i]) + ": " + end.Text};
            }
        };

        ToolingEntry entry;
        entry.ToolName = Trim(items[0]);
        int32_t toolNumber = 0;
        if (!RoundsIntoInt32(number(1, "tool number"), toolNumber) || toolNumber < -32768 || toolNumber > 32767)
            throw ListFault{lineAt(starts[1]) + "tool number " + Trim(items[1]) + " is beyond 16 bits"};
        entry.ToolNumber = static_cast<int16_t>(toolNumber);
        entry.ToolAngle = single(2, "tool angle", Norm360(number(2, "tool angle")));
        double step = std::fabs(number(3, "angle step"));
        if (step == 0) step = 360;
        if (step < 0.1) step = 0.1;
        entry.AngleStep = single(3, "angle step", step);
        entry.ToolFile = Trim(items[4]);
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace

ToolingList ReadToolingList(const std::string& file) {
    ToolingList list;
    if (!FileExists(file)) {
        // A library that has no list yet gets an empty one; a folder that cannot take it is no
        // fault either: there are no entries.
        try {
            WriteAllLines(file, {EmptyListLine});
        } catch (const RunEnd&) {
        }
        return list;
    }
    try {
        TextInput in;
        OpenTextInput(in, file);
        list.Entries = ReadEntries(in);
    } catch (const ListFault& fault) {
        list.Entries.clear();
        list.Broken = true;
        list.Reason = fault.Reason;
        return list;
    } catch (const RunEnd& end) {
        // The file is there but cannot be read.
        list.Entries.clear();
        list.Broken = true;
        list.Reason = end.Text;
        return list;
    }
    std::stable_sort(list.Entries.begin(), list.Entries.end(),
                     [](const ToolingEntry& a, const ToolingEntry& b) { return a.ToolFile < b.ToolFile; });
    return list;
}

ToolingEntry LookupToolEntry(const std::string& file, int number) {
    const ToolingList list = ReadToolingList(file);
    for (auto it = list.Entries.rbegin(); it != list.Entries.rend(); ++it)
        if (it->ToolNumber == number) return *it;
    return DefaultToolingEntry();
}

ToolingValue LookupTool(const std::string& file, int number, int field) {
    const ToolingEntry entry = LookupToolEntry(file, number);
    ToolingValue value;
    switch (field) {
    case 1:
        value.Text = entry.ToolName;
        break;
    case 2:
        value.Number = entry.ToolNumber;
        break;
    case 3:
        value.Number = entry.ToolAngle;
        break;
    case 4:
        value.Number = entry.AngleStep;
        break;
    case 5:
        value.Text = entry.ToolFile;
        break;
    default:
        break;
    }
    return value;
}

bool ToolFitsAngle(float wanted, double toolAngle, double step) {
    const float a = ToSingle(Norm360(toolAngle));
    double s = std::fabs(step);
    if (s == 0) s = 360;
    if (s < 0.1) s = 0.1;
    if (a == wanted) return true;
    // A step that is not a number, or beyond any turn, reaches no angle but the tool's own: the
    // first step up is far beyond 360 and the first step down far below 0.
    if (!(s <= 1e30)) return false;
    const float stepSingle = ToSingle(s);
    for (float v = ToSingle(static_cast<double>(a) + stepSingle); v < 360.0f;
         v = ToSingle(static_cast<double>(v) + stepSingle))
        if (v == wanted) return true;
    for (float v = ToSingle(static_cast<double>(a) - stepSingle); v >= 0.0f;
         v = ToSingle(static_cast<double>(v) - stepSingle))
        if (v == wanted) return true;
    return false;
}

}  // namespace tvx
