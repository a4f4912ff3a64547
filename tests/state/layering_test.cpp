// The modules include downward only. The run's state (src/state) sits below every subsystem
// that reads it: it includes only the numeric and text helpers and the plain data of the
// lower modules (the record and file form of a drawing, the value tables, the engine's
// registers), and those data headers include nothing but the helpers and each other.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Each module by its height: a module includes its own headers, those of lower modules, and
// the run's state.
const std::map<std::string, int>& ModuleHeights() {
    static const std::map<std::string, int> heights = {
        {"common", 0},    {"ui", 1},        {"drawing", 2},   {"definition", 3},
        {"config", 4},    {"tooling", 5},   {"splitting", 6}, {"kerf", 6},
        {"expansion", 7}, {"emitters", 8},  {"job", 9},       {"tools", 10},
    };
    return heights;
}

// The plain data that the run's state is made of.
const std::set<std::string>& StateData() {
    static const std::set<std::string> data = {
        "drawing/record.h", "drawing/drawfile.h", "definition/tables.h", "definition/engine_state.h",
        "definition/definition_cache.h", "definition/line_forms.h",
    };
    return data;
}

struct Include {
    std::string File;    // relative to src/
    std::string Header;  // as written in the include
};

std::vector<Include> ProjectIncludes() {
    const fs::path src = fs::path(TORVANEX_TEST_DATA) / ".." / "src";
    const std::regex include(R"re(^\s*#\s*include\s+"([^"]+)")re");
    std::vector<Include> found;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        if (!entry.is_regular_file()) continue;
        const std::string ext = entry.path().extension().string();
        if (ext != ".h" && ext != ".cpp") continue;
        std::ifstream in(entry.path());
        const std::string file = fs::relative(entry.path(), src).generic_string();
        for (std::string line; std::getline(in, line);) {
            std::smatch m;
            if (std::regex_search(line, m, include)) found.push_back({file, m[1].str()});
        }
    }
    return found;
}

std::string ModuleOf(const std::string& path) {
    const auto slash = path.find('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

TEST(Layering, NoModuleIncludesAModuleAboveIt) {
    const auto includes = ProjectIncludes();
    ASSERT_FALSE(includes.empty());
    for (const Include& inc : includes) {
        const std::string from = ModuleOf(inc.File);
        const std::string to = ModuleOf(inc.Header);
        if (from.empty() || from == to || to == "state" || from == "state") continue;
        const auto a = ModuleHeights().find(from);
        const auto b = ModuleHeights().find(to);
        ASSERT_NE(a, ModuleHeights().end()) << "unknown module of " << inc.File;
        ASSERT_NE(b, ModuleHeights().end()) << "unknown module of " << inc.Header << " in " << inc.File;
        EXPECT_LE(b->second, a->second) << inc.File << " includes " << inc.Header << ", a module above it";
    }
}

TEST(Layering, NoModuleIncludesTheJobDriverButTheDriverAndTheCommands) {
    for (const Include& inc : ProjectIncludes()) {
        const std::string from = ModuleOf(inc.File);
        if (ModuleOf(inc.Header) == "job") {
            EXPECT_TRUE(from == "job" || from == "tools" || from.empty()) << inc.File << " includes " << inc.Header;
        }
    }
}

TEST(Layering, TheRunStateIsMadeOfPlainDataOnly) {
    for (const Include& inc : ProjectIncludes()) {
        const std::string from = ModuleOf(inc.File);
        const bool stateFile = from == "state";
        const bool dataFile = StateData().count(inc.File) != 0;
        if (!stateFile && !dataFile) continue;
        const std::string to = ModuleOf(inc.Header);
        EXPECT_TRUE(to == "common" || to == "state" || StateData().count(inc.Header) != 0)
            << inc.File << " includes " << inc.Header << ", which is not plain data of the run";
    }
}
