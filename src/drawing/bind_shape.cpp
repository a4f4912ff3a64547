// Binding of the shapes 152 to 156.
#include "drawing/binding.h"

namespace tvx {

void BindShape(const MachineState& machine, DrawRecord& record) {
    (void)machine;
    (void)record;
}

}  // namespace tvx
