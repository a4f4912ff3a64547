// The searches over held definition texts give what reading the file line by line gives,
// end-of-file rules included.
#include "definition/definition_cache.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "common/fault.h"
#include "common/textfile.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/engine_rig.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

// A small file of lines that hold, half hold or do not hold the words, with mixed line ends.
std::string GenerateFile() {
    const auto lines = *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "A", "A [P1] [CONV=A]", "AB [CONV=x]", "B A", "xA y", "A=TRUE", "CALL A", "[CALL A]", "******", "", " ", "AA B",
        "B [M1] [CONV=B]", "BA", "A\xAC z", "B=TRUE IF"));
    std::string text;
    for (const auto& line : lines) text += line + *rc::gen::element<std::string>("\r\n", "\n", "\r", "\r\n");
    if (!text.empty() && *rc::gen::arbitrary<bool>()) text.pop_back();
    return text;
}

std::string GenerateWord() { return *rc::gen::element<std::string>("A", "B", "AB", "BA", "C", "", "A ", "=TRUE"); }

TextInput OpenMemory(const std::string& data) {
    TextInput in;
    OpenTextInputFromData(in, "mem.txt", std::make_shared<const std::string>(data));
    return in;
}

// The start of each line, as a sequential read meets them.
std::vector<size_t> LineStarts(const std::string& data) {
    TextInput in = OpenMemory(data);
    std::vector<size_t> starts;
    while (!AtEnd(in)) {
        starts.push_back(in.Pos);
        ReadLine(in);
    }
    starts.push_back(data.size());
    return starts;
}

struct SearchEnd {
    bool Found = false;
    bool Fault = false;
    std::string Line;
    size_t Pos = 0;
    bool operator==(const SearchEnd&) const = default;
};

}  // namespace

RC_GTEST_PROP(DefinitionCache, LinesAreSplitAsASequentialRead, ()) {
    const std::string data = GenerateFile();
    const auto text = MakeDefinitionText("mem.txt", std::make_shared<const std::string>(data));
    TextInput in = OpenMemory(data);
    int32_t i = 0;
    while (!AtEnd(in)) {
        RC_ASSERT(i < text->LineCount());
        RC_ASSERT(std::string(text->Line(i)) == ReadLine(in));
        RC_ASSERT(text->After(i) == in.Pos);
        ++i;
    }
    RC_ASSERT(i == text->LineCount());
}

RC_GTEST_PROP(DefinitionCache, FirstHoldingLineIsWhereASequentialSearchStops, ()) {
    const std::string data = GenerateFile();
    const std::string word = GenerateWord();
    auto text = MakeDefinitionText("mem.txt", std::make_shared<const std::string>(data));
    // Twice: the remembered answer is the same.
    for (int round = 0; round < 2; ++round) {
        TextInput in = OpenMemory(data);
        std::string line;
        bool stopped = false;
        while (!AtEnd(in)) {
            line = ReadLine(in);
            if (line.find(word) != std::string::npos) {
                stopped = true;
                break;
            }
        }
        const int32_t found = FirstLineHolding(*text, word);
        RC_ASSERT((found >= 0) == stopped);
        if (stopped) {
            RC_ASSERT(std::string(text->Line(found)) == line);
            RC_ASSERT(text->After(found) == in.Pos);
        }
        // The callable search passes over lines that hold "CALL".
        TextInput call = OpenMemory(data);
        bool callStopped = false;
        while (!AtEnd(call)) {
            line = ReadLine(call);
            if (line.find(word) != std::string::npos && line.find("CALL") == std::string::npos) {
                callStopped = true;
                break;
            }
        }
        const int32_t callable = FirstCallableLine(*text, word);
        RC_ASSERT((callable >= 0) == callStopped);
        if (callStopped) RC_ASSERT(text->After(callable) == call.Pos);
    }
}

RC_GTEST_PROP(DefinitionCache, RollingWordSearchIsASequentialSearchWithOneRewind, ()) {
    const std::string data = GenerateFile();
    const std::vector<size_t> starts = LineStarts(data);
    RunState state;
    state.Job.WordFile = "mem.wrd";
    HoldDefinition(state.Engine.Cache, "mem.wrd", std::make_shared<const std::string>(data));
    OpenDefinitionInput(state, ChannelWord, "mem.wrd");
    const int searches = *rc::gen::inRange(1, 6);
    for (int n = 0; n < searches; ++n) {
        const std::string word = GenerateWord();
        const size_t start = starts[*rc::gen::inRange<size_t>(0, starts.size())];

        // The search as the words say it: read on, at the end once more from the top.
        SearchEnd expected;
        {
            TextInput in = OpenMemory(data);
            in.Pos = start;
            std::string line = "before";
            bool rewound = false;
            for (;;) {
                if (AtEnd(in)) {
                    if (rewound) break;
                    in.Pos = 0;
                    rewound = true;
                    continue;
                }
                line = ReadLine(in);
                bool unparsable = false;
                if (IsWordLine(line, word, unparsable) || unparsable) {
                    expected.Found = true;
                    expected.Fault = unparsable;
                    break;
                }
            }
            expected.Line = line;
            expected.Pos = in.Pos;
        }

        SearchEnd actual;
        state.Engine.PostWordLine = "before";
        state.Engine.WordInput.Pos = start;
        try {
            SearchWordLine(state, word);
        } catch (const RunEnd& end) {
            actual.Fault = true;
            RC_ASSERT(end.Status == static_cast<int>(ExitFault));
        }
        actual.Found = expected.Found;  // not a register of its own: told by the line
        actual.Line = state.Engine.PostWordLine;
        actual.Pos = state.Engine.WordInput.Pos;
        RC_ASSERT(actual == expected);
    }
}

TEST(DefinitionCache, WrittenFileIsReadAnewAfterItsEntryIsDropped) {
    EngineRig rig({"A=TRUE", "one", "******", ""}, {"******"});
    rig.State.Job.PostFile = rig.Path("gen.pst");
    WriteFileAtomically(rig.Path("gen.pst"), CrLf({"A=TRUE", "one", "******", ""}));
    rig.Write("A");
    OpenEngineOutput(rig.State, rig.State.Engine.PlatinoOutput, rig.Path("gen.pst"));
    WriteLine(rig.State.Engine.PlatinoOutput, "A=TRUE");
    WriteLine(rig.State.Engine.PlatinoOutput, "two");
    WriteLine(rig.State.Engine.PlatinoOutput, "******");
    WriteLine(rig.State.Engine.PlatinoOutput, "");
    CloseEngineOutput(rig.State, rig.State.Engine.PlatinoOutput);
    rig.Write("A");
    rig.CloseAll();
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"one", "two"}));
}

TEST(DefinitionCache, NamesDifferingInCaseShareAnEntry) {
    DefinitionCache cache;
    HoldDefinition(cache, "/x/Progsubs.sub", std::make_shared<const std::string>("a\r\n"));
    EXPECT_EQ(*CachedDefinition(cache, "/x/progsubs.sub")->Data, "a\r\n");
    ForgetDefinition(cache, "/x/PROGSUBS.SUB");
    EXPECT_TRUE(cache.Files.empty());
}
