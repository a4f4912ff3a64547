#pragma once
// Settings stages of the material and of the profiles.
#include <cstdint>
#include <string>

namespace tvx {

struct RunState;

// Applies the settings stage of an entity's tool before it is worked. The stage index may be
// changed; the letter comes back as it was.
void ApplySettingsStage(RunState& state, int32_t& stageIndex, const std::string& letter);
// Loads the material stage file "MtrlStg." + name into the tables.
void LoadMaterialStage(RunState& state, const std::string& name);

}  // namespace tvx
