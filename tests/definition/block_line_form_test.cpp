// Body lines worked in their runs, read once, print what the same lines read character by
// character print: blanks, braces, stray brackets, deferred names, words that print text or
// nothing, and lines that have no form ("@", layout tags).
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "definition/definition_cache.h"
#include "definition/engine_rig.h"
#include "state/run_state.h"

using namespace tvx;

namespace {

const std::vector<std::string> Words = {
    "X [M1] [FORMAT=D1] [CONV=X]", "E [P9] [FORMAT=NTZ D0] [CONV=E]", "T [S1] [CONV=*]", "NN [P0=-1] [CONV=*]",
    "BLOCK_NUMBER1 [P1] [FORMAT=D0] [CONV=N]", "******"};

std::string GenerateBody() {
    std::string line;
    for (int i = *rc::gen::inRange(0, 9); i > 0; --i)
        line += *rc::gen::element<std::string>("[X]", "[E]", "[T]", "[NN]", "[BLOCK_NUMBER1]", "[", "]", "{", "}", " ",
                                               "  ", "G01", "a b", "[]", "[X", "@L010", "[TOOL_LAYOUT]", "\xAC");
    return line;
}

}  // namespace

RC_GTEST_PROP(BlockLineForm, RunsPrintWhatTheCharactersPrint, ()) {
    std::vector<std::string> lines;
    for (int i = *rc::gen::inRange(1, 4); i > 0; --i) lines.push_back(GenerateBody());
    std::vector<std::string> pst = {"B=TRUE"};
    pst.insert(pst.end(), lines.begin(), lines.end());
    pst.push_back("******");
    const bool report = *rc::gen::arbitrary<bool>();
    std::vector<std::string> outputs;
    for (size_t kept : {size_t{4096}, size_t{0}}) {
        EngineRig rig(pst, Words, {}, {"1", "******"});
        rig.State.Engine.BlockLinesKept = kept;
        rig.State.Engine.ReportMode = report;
        rig.State.Tables.PostMachine[1] = 2.5f;
        rig.State.Tables.PostParam[9] = 0;
        rig.State.Tables.PostText[1] = "txt";
        std::string end = EngineRig::EndText([&] {
            for (int k = 0; k < 2; ++k) rig.Write("B");
        });
        // Each rig has a directory of its own: the messages name its files alike.
        for (size_t at; (at = end.find(rig.Dir.Path)) != std::string::npos;) end.replace(at, rig.Dir.Path.size(), "DIR");
        rig.State.Engine.ReportMode = false;
        rig.CloseAll();
        for (const auto& l : rig.Program()) end += "|" + l;
        for (const auto& l : rig.Report()) end += "#" + l;
        outputs.push_back(end);
    }
    RC_CLASSIFY(outputs[0].rfind("|", 0) == 0 || outputs[0].empty(), "printed");
    RC_ASSERT(outputs[0] == outputs[1]);
}

namespace {

// The forms kept with the lines of the held definition texts (the level copies of the
// definition share its text).
std::vector<const BlockLineForm*> HeldBodyForms(const RunState& state) {
    std::set<const DefinitionText*> texts;
    for (const auto& [key, text] : state.Engine.Cache.Files) texts.insert(text.get());
    std::vector<const BlockLineForm*> forms;
    for (const DefinitionText* text : texts)
        for (const auto& form : text->BodyForms)
            if (form) forms.push_back(form.get());
    return forms;
}

}  // namespace

TEST(BlockLineForm, LineWithAnAtSignOrALayoutTagHasNoForm) {
    EngineRig rig({"B=TRUE", "{[X]}@L010", "******"}, Words);
    rig.Write("B");
    const auto forms = HeldBodyForms(rig.State);
    rig.CloseAll();
    ASSERT_EQ(forms.size(), 1u);
    EXPECT_FALSE(forms[0]->Usable);
}

TEST(BlockLineForm, LineMetAgainIsReadOnceAndKeptWithItsHeldLine) {
    EngineRig rig({"B=TRUE", "G01[X]", "******"}, Words);
    rig.State.Tables.PostMachine[1] = 1;
    rig.Write("B");
    rig.State.Tables.PostMachine[1] = 2;
    rig.Write("B");
    EXPECT_EQ(HeldBodyForms(rig.State).size(), 1u);
    rig.CloseAll();
    EXPECT_TRUE(rig.State.Engine.BlockLines.empty());
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"G01X1.0", "G01X2.0"}));
}

TEST(BlockLineForm, LineOfAStreamedDefinitionIsKeptByItsText) {
    EngineRig rig({"B=TRUE", "G01[X]", "******"}, Words);
    rig.State.Engine.Cache.HeldSizeLimit = 0;
    ForgetDefinition(rig.State.Engine.Cache, rig.State.Job.PostFile);
    rig.State.Tables.PostMachine[1] = 1;
    rig.Write("B");
    rig.State.Tables.PostMachine[1] = 2;
    rig.Write("B");
    rig.CloseAll();
    EXPECT_EQ(rig.State.Engine.BlockLines.size(), 1u);
    EXPECT_EQ(rig.Program(), (std::vector<std::string>{"G01X1.0", "G01X2.0"}));
}
