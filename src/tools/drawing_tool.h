#pragma once
#include <ostream>
#include <string>

namespace tvx {

// `torvanex drawing dump FILE.drw`: the drawing as JSON on the stream.
int DrawingDumpCommand(const std::string& drawingPath, std::ostream& out);
// `torvanex drawing build FILE.json -o FILE.drw`.
int DrawingBuildCommand(const std::string& jsonPath, const std::string& drawingPath);

}  // namespace tvx
