#pragma once
// Helpers shared by the tests: a temporary directory removed at the end of a test.
#include <filesystem>
#include <string>

namespace tvx {

struct TempDir {
    std::string Path;
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
};

}  // namespace tvx
