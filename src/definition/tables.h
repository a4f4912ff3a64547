#pragma once
// The value tables: the only channel from the emitters to the definition. Indexed from 0;
// an index beyond a table's bound is a fault of the run naming the table and the index.
#include <array>
#include <string>

#include "common/fault.h"

namespace tvx {

template <typename T, int Upper>
struct ValueTable {
    const char* Name;
    std::array<T, Upper + 1> Cells{};

    T& operator[](long long index) {
        if (index < 0 || index > Upper) IndexFault(Name, index);
        return Cells[static_cast<size_t>(index)];
    }
    const T& operator[](long long index) const {
        if (index < 0 || index > Upper) IndexFault(Name, index);
        return Cells[static_cast<size_t>(index)];
    }
    static constexpr int Bound = Upper;
};

struct ValueTables {
    ValueTable<float, 300> PostParam{"PostParam"};      // P
    ValueTable<float, 200> PostMachine{"PostMachine"};  // M
    ValueTable<float, 200> PostMemo{"PostMemo"};        // memo of M
    ValueTable<float, 200> PostVar{"PostVar"};          // numeric V (conditions, SETCALC targets)
    ValueTable<std::string, 201> PostUserText{"PostUserText"};  // text V (tags, CALC, SET)
    ValueTable<std::string, 40> PostText{"PostText"};   // S
};

}  // namespace tvx
