#include "tooling/library.h"

// Placeholder bodies: the library is not read yet, every lookup gives the default entry.
namespace tvx {

ShapeFolderInfo ShapeFolder(const MachineState&, const DrawRecord&) { return {}; }
std::string ShapePath(const MachineState&, const DrawRecord&, int&, const std::string&, const std::string&) {
    return {};
}
std::string JobShapePath(const RunState&, const DrawRecord&, int) { return {}; }
ToolingEntry DefaultToolingEntry() { return {}; }
ToolingList ReadToolingList(const std::string&) { return {}; }
ToolingEntry LookupToolEntry(const std::string&, int) { return DefaultToolingEntry(); }
ToolingValue LookupTool(const std::string&, int, int) { return {}; }
bool ToolFitsAngle(float, double, double) { return false; }

}  // namespace tvx
