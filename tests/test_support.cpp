#include "test_support.h"

#include <atomic>
#include <unistd.h>

namespace tvx {

TempDir::TempDir() {
    static std::atomic<int> counter{0};
    const auto base = std::filesystem::temp_directory_path() /
                      ("torvanex-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::remove_all(base);
    std::filesystem::create_directories(base);
    Path = base.string();
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(Path, ec);
}

}  // namespace tvx
