#pragma once
// Lines of the definition read once and kept for the run: the truths of reserved-word lines
// with their conditions, and the body lines of blocks.
#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

struct WordStop;

// A condition read once: the pieces of its text (a text that stands as it is, or the plain
// text of a table cell), VAL, and the comparison. When each side is a single cell or a text
// of its own and the text holds one comparison, the sides are compared as numbers without
// making the text; any other condition is compared through its text.
struct ConditionPiece {
    char Table = 0;  // 'P', 'M' or 'V' for a cell, 0 for a text
    std::string Literal;
    double Cell = 0;
};
struct ConditionSide {
    int Piece = -1;      // the cell piece of the side, or -1 for a number
    double Number = 0;   // the side's text read as a number
    bool Val = false;    // the side is the last table value (VAL)
};
struct ConditionForm {
    std::string Line;  // the line in upper case, for the message
    bool HasCase = false;
    std::vector<ConditionPiece> Pieces;
    bool HasVal = false;
    bool Plain = false;
    int Operator = 0;  // the index of the comparison in the order they are looked for
    ConditionSide Left;
    ConditionSide Right;
};
// The truth a reserved-word line gives, read once: "=TRUE", and a condition behind "=TRUE IF".
struct TruthForm {
    bool True = false;
    bool Conditional = false;
    ConditionForm Condition;
};
// A tag's word as the body line names it, read once: the word less ".text", whether the
// word's text is wanted, and which block number it steps. The stops of the word in the held
// word file are remembered with the serial of the file they were looked up in.
struct WordTag {
    std::string Tag;          // the tag as written
    std::string Word;         // the word it names
    bool TextWanted = false;  // "WORD.text"
    int BlockNumber = 0;      // 1 or 2 for BLOCK_NUMBER1 and BLOCK_NUMBER2
    bool Renumbered = false;  // holds "BLOCK_NUMBER": evaluated again in the pass over the program
    mutable uint64_t StopsSerial = 0;
    mutable const std::vector<WordStop>* Stops = nullptr;
};
// A body line of a block in runs: text outside tags, braces, and the tags that "]" closes.
// Only a line without "@" and without a layout tag has a form: an "@" depends on the
// alignment in force, and a layout tag leaves the line for the layout.
struct BlockToken {
    enum class Kind : uint8_t { Text, Brace, Tag };
    Kind Type = Kind::Text;
    std::string Text;       // the text, the brace, or the tag's name
    bool Blanks = false;    // a text that holds a blank
    bool Deferred = false;  // a tag whose name is left for the pass over the program
    WordTag Word;           // a tag's word, read once
};
struct BlockLineForm {
    bool Usable = false;
    std::vector<BlockToken> Tokens;
};

}  // namespace tvx
