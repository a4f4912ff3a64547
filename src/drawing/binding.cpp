#include "drawing/binding.h"

#include "job/run_state.h"

namespace tvx {

void BindRecord(const MachineState&, DrawRecord& record) {
    if (record.EntityCode == 210 || record.EntityCode == 311 || record.EntityCode == 312 ||
        record.EntityCode == 321 || record.EntityCode == 350 || record.EntityCode == 355) {
        for (int i : {1, 2, 3, 5, 6}) record.Point[i] = record.Point[4];
    }
}

}  // namespace tvx
