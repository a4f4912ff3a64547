#include "emitters/stages.h"

#include "job/run_state.h"

namespace tvx {

// Settings stages belong to the profile-cutting machines; a punch job has none to apply.
void ApplySettingsStage(RunState&, int32_t&, const std::string&) {}
void LoadMaterialStage(RunState&, const std::string&) {}

}  // namespace tvx
