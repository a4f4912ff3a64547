#include "tools/drawing_tool.h"

#include "common/fault.h"

namespace tvx {

int DrawingDumpCommand(const std::string&, std::ostream&) { RunFault("drawing dump is not built yet"); }
int DrawingBuildCommand(const std::string&, const std::string&) { RunFault("drawing build is not built yet"); }

}  // namespace tvx
