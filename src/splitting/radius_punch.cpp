#include "splitting/radius_punch.h"

#include <cmath>

#include "drawing/binding.h"

namespace tvx {

bool IsRadiusPunchArc(const DrawRecord& record) {
    return record.EntityCode == 130 && std::fabs(record.Value[11]) == 90.0f && record.Side == 1 &&
           record.ToolA.Letter.Text() == "M";
}

void ArcToPunch(const MachineState& machine, DrawRecord& record) {
    DrawRecord hit;
    ClearRecord(hit);
    hit.EntityCode = 210;
    hit.EntityName = "Punch";
    hit.Point[4] = record.Point[5];
    CopyTool(record.ToolA, hit.ToolA);
    BindRecord(machine, hit);
    CopyRecord(hit, record);
}

}  // namespace tvx
