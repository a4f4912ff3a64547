#pragma once
// Registers and file channels of the definition engine.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "common/textfile.h"
#include "definition/line_forms.h"
#include "definition/definition_cache.h"

namespace tvx {

// The engine's value register: a number, kept as the single or double it came as, or a text.
// The text "-9999" and the number -9999 mean no value.
struct PostValueType {
    enum class Kind : uint8_t { Text, Single, Double };
    Kind Type = Kind::Text;
    double Number = 0;
    std::string Text;
};

// The channels of the engine, by their fixed numbers.
enum EngineChannel : int {
    ChannelDefinition = 1,
    ChannelWord = 2,
    ChannelProgram = 3,
    ChannelReport = 4,
    ChannelLayout = 5,
    ChannelSequence = 6,
    ChannelLevel1 = 10,
    ChannelLevel3 = 13,
    ChannelLevel2 = 14,
    ChannelSubroutines = 17,
    ChannelPlatino = 18,
};

struct EngineState {
    // Set by a fault of a CALC expression; never cleared and not looked at elsewhere.
    bool MathError = false;
    // The text of the last message of PostAbort.
    std::string PostErrorText;

    // The line interpreter.
    std::string PostDefLine;   // the body line being read
    // The held text and line that PostDefLine was read from, while it stands as read there;
    // null for a line that came any other way.
    DefinitionText* PostDefText = nullptr;
    int32_t PostDefIndex = -1;
    std::string PostLine;      // the output line under construction
    PostValueType PostValue;   // the value of the word line in work
    std::string PostWordLine;  // the .wrd line in work
    int16_t NonBlankCount = 0;
    int16_t FieldCount = 0;
    bool FieldTextAdded = false;
    bool BlockNumber1Used = false;
    bool BlockNumber2Used = false;
    bool RenumberMode = false;      // the pass over the generated program
    bool ReportMode = false;        // PROGRAM_REPORT: lines go to the report as they stand
    bool SubroutineOutput = false;  // blocks go to the subroutine file
    int16_t LayoutMode = 0;         // 0 none, 1 turret, 2 tool, 3 report, 4 time layout

    // Called blocks: the level, its file and its channel.
    int16_t PostLevel = 0;
    std::string PostLevelFile;
    int PostChannel = ChannelDefinition;

    // Word lines.
    char TableLetter = 0;  // 'M', 'P', 'S' or 'V' of the last table tag, 0 before the first
    std::string TextFromS;
    std::string TextFromV;
    bool FormatNTZ = false;
    bool FormatNEG = false;
    bool FormatABS = false;
    bool FormatINV = false;
    bool FormatNOP = false;

    // Channels.
    TextInput DefinitionInput;    // 1: the definition at level 0
    TextInput WordInput;          // 2: the word file, one rolling position for the run
    // The line of the held word file that starts at the word channel's position, when the
    // engine last placed it there; checked against the position before it is trusted.
    int32_t WordLineHint = -1;
    TextOutput ProgramOutput;     // 3: the program
    TextOutput ReportOutput;      // 4: the report
    TextInput SequenceInput;      // 6: the job sequence, while a layout runs
    TextInput LevelInput1;        // 10: Program.sb1
    TextInput LevelInput3;        // 13: Program.sb3
    TextInput LevelInput2;        // 14: Program.sb2
    TextInput SubroutineInput;    // 17 read: the subroutine text at level 5
    TextOutput SubroutineFile;    // 17 written: "progsubs.sub"
    TextOutput PlatinoOutput;     // 18: the second program file
    TextInput LayoutInput;        // the layout file's own channel

    // The truths of reserved-word lines met, by the line's text (up to TruthsKept of them).
    std::unordered_map<std::string, TruthForm> Truths;
    static constexpr size_t TruthsKept = 4096;
    // The forms of body lines met, by the line's text (up to BlockLinesKept of them; with 0
    // every line is read character by character).
    std::unordered_map<std::string, BlockLineForm> BlockLines;
    size_t BlockLinesKept = 4096;

    // Definition files held in memory, and the held text that each open input channel reads.
    DefinitionCache Cache;
    std::array<std::shared_ptr<DefinitionText>, 20> HeldTexts;
};

}  // namespace tvx
