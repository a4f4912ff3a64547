// End-to-end jobs. Each folder of tests/jobs holds an installation tree (tree/), the job's
// drawing in JSON (drawing.json, built into tree/work/Progmain.drw), and what the run must
// leave. Any other drawing of the tree (a tool drawing of the tooling library, for one) is kept
// in JSON beside the place of its .drw: "NAME.drw.json" anywhere under tree/ is built into
// "NAME.drw" in the same folder of the run's tree, and the JSON itself is not copied. What the
// run must leave: expected/status (the exit status), optional expected/stderr, optional
// expected/absent (paths that must not exist), optional expected/present (paths that must exist,
// for files whose bytes are not compared, such as a drawing kept beside the job), and every other file under expected/,
// compared byte for byte with the file of the same path in the run's tree. "@DIR@" in any
// file stands for the run's directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <unistd.h>

#include "common/paths.h"
#include "common/textfile.h"
#include "drawing/drawjson.h"
#include "job/post_main.h"
#include "test_support.h"

namespace fs = std::filesystem;
using namespace tvx;

namespace {

std::string ReadBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

std::string Substitute(std::string text, const std::string& dir) {
    const std::string mark = "@DIR@";
    for (size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + dir.size()))
        text.replace(at, mark.size(), dir);
    return text;
}

// A drawing kept in JSON in a job's tree: "NAME.drw.json", built into "NAME.drw".
const std::string JsonSuffix = ".json";
bool IsDrawingJson(const std::string& name) {
    const std::string suffix = ".drw" + JsonSuffix;
    return name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::vector<std::string> JobNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(fs::path(TORVANEX_TEST_DATA) / "jobs"))
        if (entry.is_directory() && fs::exists(entry.path() / "expected")) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Lays out a job's installation tree in root, "@DIR@" replaced by root.
void LayOutJob(const fs::path& source, const fs::path& root) {
    const std::string dir = root.string();
    for (const auto& entry : fs::recursive_directory_iterator(source / "tree")) {
        const fs::path target = root / fs::relative(entry.path(), source / "tree");
        const std::string name = entry.path().filename().string();
        if (entry.is_directory()) fs::create_directories(target);
        else if (name == ".keep") fs::create_directories(target.parent_path());
        else if (IsDrawingJson(name))
            WriteBytes(target.parent_path() / name.substr(0, name.size() - JsonSuffix.size()),
                       DrawingFromJson(Substitute(ReadBytes(entry.path()), dir), entry.path().string()));
        else WriteBytes(target, Substitute(ReadBytes(entry.path()), dir));
    }
}

// Writes the job's drawing into its work directory, as the CAM system does before each run.
void WriteJobDrawing(const fs::path& source, const fs::path& root) {
    if (fs::exists(source / "drawing.json")) {
        const std::string drawing = DrawingFromJson(ReadBytes(source / "drawing.json"), "drawing.json");
        WriteBytes(root / "work" / "Progmain.drw", drawing);
    }
}

// Captures what the run writes to stderr.
struct StderrCapture {
    fs::path File;
    int Saved = -1;
    explicit StderrCapture(const fs::path& file) : File(file) {
        std::fflush(stderr);
        Saved = dup(2);
        FILE* f = std::fopen(file.c_str(), "wb");
        dup2(fileno(f), 2);
        std::fclose(f);
    }
    std::string Finish() {
        std::fflush(stderr);
        dup2(Saved, 2);
        close(Saved);
        return ReadBytes(File);
    }
};

}  // namespace

class JobTest : public testing::TestWithParam<std::string> {};

TEST_P(JobTest, RunsAsExpected) {
    const fs::path source = fs::path(TORVANEX_TEST_DATA) / "jobs" / GetParam();
    TempDir run;
    const fs::path root = run.Path;
    const std::string dir = run.Path;
    LayOutJob(source, root);
    WriteJobDrawing(source, root);

    StderrCapture capture(root / "stderr.txt");
    const int status = RunJob((root / "work").string());
    const std::string errors = capture.Finish();

    const fs::path expected = source / "expected";
    const int wantedStatus = std::stoi(ReadBytes(expected / "status"));
    EXPECT_EQ(status, wantedStatus) << errors;
    if (fs::exists(expected / "stderr")) {
        EXPECT_EQ(errors, Substitute(ReadBytes(expected / "stderr"), dir));
    }
    if (fs::exists(expected / "absent")) {
        std::istringstream absent(ReadBytes(expected / "absent"));
        for (std::string path; std::getline(absent, path);)
            if (!path.empty()) {
                EXPECT_FALSE(fs::exists(root / path)) << path << " should not exist";
            }
    }
    if (fs::exists(expected / "present")) {
        std::istringstream present(ReadBytes(expected / "present"));
        for (std::string path; std::getline(present, path);)
            if (!path.empty()) {
                EXPECT_TRUE(fs::exists(root / path)) << path << " should exist";
            }
    }
    for (const auto& entry : fs::recursive_directory_iterator(expected)) {
        if (!entry.is_regular_file()) continue;
        const fs::path relative = fs::relative(entry.path(), expected);
        const std::string name = relative.string();
        if (name == "status" || name == "stderr" || name == "absent" || name == "present") continue;
        ASSERT_TRUE(fs::exists(root / relative)) << name << " was not written";
        EXPECT_EQ(ReadBytes(root / relative), Substitute(ReadBytes(entry.path()), dir)) << "in " << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Jobs, JobTest, testing::ValuesIn(JobNames()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });

namespace {

// Every file under root, by its path relative to root, with its bytes.
std::map<std::string, std::string> FilesUnder(const fs::path& root) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file()) files[fs::relative(entry.path(), root).string()] = ReadBytes(entry.path());
    return files;
}

// Sets an environment variable for the life of the value and puts the old value back after it.
struct EnvironmentSetting {
    std::string Name;
    bool HadValue = false;
    std::string OldValue;
    EnvironmentSetting(const std::string& name, const std::string& value) : Name(name) {
        if (const char* old = std::getenv(name.c_str())) {
            HadValue = true;
            OldValue = old;
        }
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    ~EnvironmentSetting() {
        if (HadValue) ::setenv(Name.c_str(), OldValue.c_str(), 1);
        else ::unsetenv(Name.c_str());
    }
    EnvironmentSetting(const EnvironmentSetting&) = delete;
    EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;
};

}  // namespace

// A job run a second time in the work directory of its first run, over every file the first run
// left there (the program, the report, PTemp.tmp, Progpart.*, the job's copies, the library
// folders), with only its drawing written anew, as the CAM system writes it for every run (the
// passes rewrite it in place), leaves the same bytes in every file as the first run.
class JobRunTwice : public testing::TestWithParam<std::string> {};

TEST_P(JobRunTwice, ASecondRunOverTheFirstRunsFilesLeavesTheSameBytes) {
    const fs::path source = fs::path(TORVANEX_TEST_DATA) / "jobs" / GetParam();
    TempDir run, captured;
    const fs::path root = run.Path;
    LayOutJob(source, root);
    EnvironmentSetting clock("TORVANEX_CLOCK", "21-11-2026 07:05");

    WriteJobDrawing(source, root);
    StderrCapture firstCapture(fs::path(captured.Path) / "first.txt");
    const int firstStatus = RunJob((root / "work").string());
    const std::string firstErrors = firstCapture.Finish();
    ASSERT_EQ(firstStatus, 0) << firstErrors;
    const std::map<std::string, std::string> first = FilesUnder(root);

    WriteJobDrawing(source, root);
    StderrCapture secondCapture(fs::path(captured.Path) / "second.txt");
    const int secondStatus = RunJob((root / "work").string());
    const std::string secondErrors = secondCapture.Finish();
    EXPECT_EQ(secondStatus, 0) << secondErrors;
    EXPECT_EQ(secondErrors, firstErrors);
    const std::map<std::string, std::string> second = FilesUnder(root);

    for (const auto& [path, bytes] : first) {
        const auto again = second.find(path);
        if (again == second.end()) {
            ADD_FAILURE() << path << " is gone after the second run";
            continue;
        }
        EXPECT_TRUE(again->second == bytes) << "in " << path << " (" << bytes.size() << " bytes, then "
                                            << again->second.size() << ")";
    }
    for (const auto& [path, bytes] : second)
        EXPECT_TRUE(first.count(path) == 1) << path << " was written only by the second run";
    // The job's outputs are among the files compared.
    EXPECT_EQ(first.count("work/Progmain.prg"), 1u);
    EXPECT_EQ(first.count("work/Progmain.rpt"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Jobs, JobRunTwice,
                         testing::Values("punch-basic", "punch-library-turned", "laser-moves-stages",
                                         "kerf-square-outside", "multipart-flat-2x2"),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });
