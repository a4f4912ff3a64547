#include "tools/drawing_tool.h"

#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/textfile.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"
#include "state/run_state.h"
#include "tools/embedded_examples.h"

namespace tvx {

int DrawingDumpCommand(const std::string& drawingPath, std::ostream& out) {
    // The drawing is read as it stands: a dump never makes or changes a file.
    const std::string json = DrawingToJson(ReadAllBytes(drawingPath), drawingPath);
    out.write(json.data(), static_cast<std::streamsize>(json.size()));
    out.flush();
    if (!out) RunFault("Cannot write the JSON of " + drawingPath);
    return ExitClean;
}

int DrawingBuildCommand(const std::string& jsonPath, const std::string& drawingPath) {
    // The whole drawing is made in memory first, so a fault leaves no file behind.
    const std::string bytes = DrawingFromJson(ReadAllBytes(jsonPath), jsonPath);
    WriteFileAtomically(drawingPath, bytes);
    return ExitClean;
}

namespace {

// The records of an example installation's drawing.
std::vector<DrawRecord> ExampleDrawing(const std::string& example) {
    const std::string name = example + "/drawing.json";
    for (const EmbeddedFile& file : EmbeddedExamples()) {
        if (file.Path != name) continue;
        return DecodeRecords(DrawingFromJson(file.Bytes, name));
    }
    RunFault("No drawing of the example installation \"" + example + "\"");
}

// Writes the header and the records that `make(i, record)` fills in for i from 0, in batches
// through the file's write-behind.
template <typename Make>
void WriteRecordsMade(const std::string& path, DrawRecord header, int32_t records, Make make) {
    DrawingFile file;
    MakeWorkingFile(file, path);
    file.WriteBehind = true;
    header.RecordCount = records + 1;
    WriteRecord(file, 1, header);
    DrawRecord record;
    for (int32_t i = 0; i < records; ++i) {
        record = DrawRecord{};
        make(i, record);
        WriteRecord(file, i + 2, record);
    }
    CloseDrawing(file);
}

// The number of places of a grid along one side of the sheet: from margin to at most
// side - margin - size, pitch apart; at least one.
int32_t GridPlaces(float side, double margin, double size, double pitch) {
    const int32_t places = FloorToInteger32((static_cast<double>(side) - 2 * margin - size) / pitch) + 1;
    return places < 1 ? 1 : places;
}

SinglePoint PointAt(double x, double y) { return SinglePoint{ToSingle(x), ToSingle(y)}; }

// The punch job: hits with the tools of the example's hits in turn.
constexpr double HitPitch = 10;
constexpr double HitMargin = 30;  // more than half the largest tool of the example
constexpr int32_t HitsPerTool = 1000;

void WritePunchDrawing(int32_t records, const std::string& path) {
    const std::vector<DrawRecord> example = ExampleDrawing("punch");
    std::vector<ToolSpec> tools;
    for (const DrawRecord& record : example) {
        if (record.EntityCode != 210 || !record.ToolA.Present) continue;
        bool known = false;
        for (const ToolSpec& tool : tools) known = known || tool.ToolName.Trimmed() == record.ToolA.ToolName.Trimmed();
        if (!known) tools.push_back(record.ToolA);
    }
    if (tools.empty()) RunFault("The punch example's drawing has no hit with a tool");
    const DrawRecord& header = example.front();
    const int32_t columns = GridPlaces(header.Value[1], HitMargin, 0, HitPitch);
    const int32_t rows = GridPlaces(header.Value[2], HitMargin, 0, HitPitch);
    const MachineState machine;
    WriteRecordsMade(path, header, records, [&](int32_t i, DrawRecord& hit) {
        hit.EntityCode = 210;
        hit.EntityName = "Punch";
        CopyTool(tools[static_cast<size_t>(i / HitsPerTool) % tools.size()], hit.ToolA);
        const int32_t column = i % columns;
        const int32_t row = i / columns % rows;
        const SinglePoint at = PointAt(HitMargin + column * HitPitch, HitMargin + row * HitPitch);
        for (int p = 1; p <= 6; ++p) CopyPoint(at, hit.Point[p]);
        BindRecord(machine, hit);
    });
}

// The laser job: squares with rounded corners, each reached by a rapid move.
constexpr double OutlineSide = 10;
constexpr double OutlineRadius = 2;
constexpr double OutlinePitch = 20;
constexpr double OutlineMargin = 20;
constexpr int32_t OutlineRecords = 9;  // the move, four lines and four arcs

void WriteLaserDrawing(int32_t records, const std::string& path) {
    const std::vector<DrawRecord> example = ExampleDrawing("laser");
    const ToolSpec* profile = nullptr;
    for (const DrawRecord& record : example)
        if (profile == nullptr && record.EntityCode == 120 && record.ToolA.Present) profile = &record.ToolA;
    if (profile == nullptr) RunFault("The laser example's drawing has no profile line with a tool");
    const DrawRecord& header = example.front();
    const int32_t columns = GridPlaces(header.Value[1], OutlineMargin, OutlineSide, OutlinePitch);
    const int32_t rows = GridPlaces(header.Value[2], OutlineMargin, OutlineSide, OutlinePitch);
    const MachineState machine;
    const double s = OutlineSide;
    const double r = OutlineRadius;
    WriteRecordsMade(path, header, records, [&](int32_t i, DrawRecord& record) {
        const int32_t outline = i / OutlineRecords;
        const int32_t piece = i % OutlineRecords;
        const int32_t place = outline % (columns * rows);
        const double x = OutlineMargin + (place % columns) * OutlinePitch;
        const double y = OutlineMargin + (place / columns) * OutlinePitch;
        CopyTool(*profile, record.ToolA);
        if (piece == 0) {
            // From where the previous outline started and ended (the origin for the first).
            double fromX = 0;
            double fromY = 0;
            if (outline > 0) {
                const int32_t before = (outline - 1) % (columns * rows);
                fromX = OutlineMargin + (before % columns) * OutlinePitch + r;
                fromY = OutlineMargin + (before / columns) * OutlinePitch;
            }
            record.EntityCode = 110;
            record.EntityName = "Move";
            record.Point[1] = PointAt(fromX, fromY);
            record.Point[3] = PointAt(x + r, y);
            double length = 0;
            double angle = 0;
            XYToPolar(x + r - fromX, y - fromY, length, angle);
            record.Value[1] = ToSingle(RoundTo(length, 4));
            record.Value[10] = ToSingle(RoundTo(Norm360(angle), 3));
        } else if (piece % 2 == 1) {
            // The sides, anticlockwise from the end of the bottom left corner.
            const int side = piece / 2;  // 0 bottom, 1 right, 2 top, 3 left
            double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
            switch (side) {
                case 0: x1 = x + r; y1 = y; x2 = x + s - r; y2 = y; break;
                case 1: x1 = x + s; y1 = y + r; x2 = x + s; y2 = y + s - r; break;
                case 2: x1 = x + s - r; y1 = y + s; x2 = x + r; y2 = y + s; break;
                default: x1 = x; y1 = y + s - r; x2 = x; y2 = y + r;
            }
            record.EntityCode = 120;
            record.EntityName = "Line Profile";
            record.Point[1] = PointAt(x1, y1);
            record.Point[3] = PointAt(x2, y2);
            record.Value[1] = ToSingle(s - 2 * r);
            record.Value[10] = ToSingle(90.0 * side);
            record.Side = -1;
        } else {
            // The corners: bottom right, top right, top left, bottom left.
            const int corner = piece / 2 - 1;
            const double cx = corner == 0 || corner == 1 ? x + s - r : x + r;
            const double cy = corner == 0 || corner == 3 ? y + r : y + s - r;
            record.EntityCode = 130;
            record.EntityName = "Arc Profile";
            record.Point[4] = PointAt(cx, cy);
            record.Value[1] = ToSingle(r);
            record.Value[10] = ToSingle(Norm360(270.0 + 90.0 * corner));
            record.Value[11] = ToSingle(90);
            record.Side = -1;
        }
        BindRecord(machine, record);
    });
}

}  // namespace

void WriteGeneratedDrawing(const std::string& kind, int32_t records, const std::string& drawingPath) {
    if (records < 0 || records > MostGeneratedRecords)
        RunFault("A generated drawing holds 0 to " + LongText(MostGeneratedRecords) + " records, not " +
                 LongText(records));
    if (kind == "punch") return WritePunchDrawing(records, drawingPath);
    if (kind == "laser") return WriteLaserDrawing(records, drawingPath);
    RunFault("No generated drawing of the kind \"" + kind + "\" (there are: punch, laser)");
}

int DrawingGenerateCommand(const std::string& kind, const std::string& records, const std::string& drawingPath) {
    // A whole number of digits only: the count is not to be guessed from a text that merely
    // starts with one.
    const std::string count = Trim(records);
    bool digits = !count.empty() && count.size() <= 10;
    for (const char c : count) digits = digits && c >= '0' && c <= '9';
    const double value = digits ? LeadingNumber(count) : -1;
    if (!digits || value > MostGeneratedRecords)
        RunFault("The number of records is a whole number from 0 to " + LongText(MostGeneratedRecords) + ", not \"" +
                 records + "\"");
    WriteGeneratedDrawing(kind, TruncToInteger32(value, "records"), drawingPath);
    return ExitClean;
}

}  // namespace tvx
