// Fixture cases: each folder under fixtures/ holds a small definition (def.pst, def.wrd and
// def.lyt, with CR LF ends), optionally a Program.seq, the items to run (items.txt: one item
// a line as `torvanex try` takes them; lines starting with "#" are notes) and the expected
// text of each channel: program.txt (after the format pass), raw.txt (before it, less its
// first and last line), report.txt, subs.txt and platino.txt. A case is added by adding a
// folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "common/fault.h"
#include "common/textfile.h"
#include "tools/try_tool.h"

using namespace tvx;

namespace {

const std::string FixtureRoot = std::string(TORVANEX_TEST_DATA) + "/definition/fixtures";

std::vector<std::string> FixtureNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(FixtureRoot))
        if (entry.is_directory()) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string Printable(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c == '\r') out += "\\r";
        else if (c == '\n') out += "\\n\n";
        else if (c < 32 || c > 126) out += "\\x" + std::string(1, "0123456789ABCDEF"[c >> 4]) + "0123456789ABCDEF"[c & 15];
        else out += static_cast<char>(c);
    }
    return out;
}

class DefinitionFixture : public testing::TestWithParam<std::string> {};

}  // namespace

TEST_P(DefinitionFixture, EveryChannelHoldsTheExpectedText) {
    const std::string dir = FixtureRoot + "/" + GetParam();
    TryOptions options;
    options.Stem = dir + "/def";
    for (const std::string& line : ReadAllLines(dir + "/items.txt"))
        if (!line.empty() && line[0] != '#') options.Items.push_back(line);
    if (std::filesystem::exists(dir + "/Program.seq")) options.SequenceFile = dir + "/Program.seq";
    TryResult result;
    try {
        RunTry(options, result);
    } catch (const RunEnd& end) {
        FAIL() << "the run ended: " << end.Text;
    }
    const struct {
        const char* File;
        const std::string& Actual;
    } channels[] = {{"program.txt", result.Program},
                    {"raw.txt", result.RawProgram},
                    {"report.txt", result.Report},
                    {"subs.txt", result.Subroutines},
                    {"platino.txt", result.Platino}};
    for (const auto& channel : channels) {
        const std::string expected = ReadAllBytes(dir + "/" + channel.File);
        EXPECT_EQ(Printable(channel.Actual), Printable(expected)) << "channel " << channel.File;
    }
}

INSTANTIATE_TEST_SUITE_P(Fixtures, DefinitionFixture, testing::ValuesIn(FixtureNames()),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });
