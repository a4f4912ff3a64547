#pragma once
// What the property tests of binding and splitting share: numbers drawn on a grid of decimals,
// and the machines of binding_support.h.
#include <rapidcheck.h>

#include <cmath>
#include <cstdint>

#include "drawing/binding_support.h"

namespace tvx::bindtest {

// A number from low to high in steps of 1/scale.
inline double Between(double low, double high, double scale = 1000) {
    const auto lo = static_cast<int64_t>(std::ceil(low * scale));
    const auto hi = static_cast<int64_t>(std::floor(high * scale));
    return static_cast<double>(*rc::gen::inRange<int64_t>(lo, hi + 1)) / scale;
}

}  // namespace tvx::bindtest
