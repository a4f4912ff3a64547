#pragma once
// Registers and file channels of the definition engine.
namespace tvx {

struct EngineState {};

}  // namespace tvx
