#include "tools/drawing_tool.h"

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawjson.h"

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

}  // namespace tvx
