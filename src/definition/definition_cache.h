#pragma once
// Definition files held in memory. Each file is read from disk once and split into lines
// exactly as a sequential read splits it (CR LF, LF or CR); the searches of the engine look
// up what a read from the top would find and remember the answer per word. An entry is
// dropped when the system writes the file itself (the subroutine file, the temporary
// program), so that a search never sees old text.
// Only the small files of a definition are held. A file that the system writes during the run
// grows with the job, and so may any file over `HeldSizeLimit`: these are read as streams,
// and their searches read them from the top line by line.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tvx {

struct WordLineForm;
struct BlockLineForm;
struct TruthForm;

// One line of the .wrd that a word search stops at: a word line of the word, or a line that
// holds the word with no blank behind it, which cannot be parsed.
struct WordStop {
    int32_t Line = 0;
    bool Unparsable = false;
};

struct DefinitionText {
    uint64_t Serial = 0;                      // one for each text made in the run, never reused
    std::string Path;                         // as first opened, for messages
    std::shared_ptr<const std::string> Data;  // the whole file
    std::vector<size_t> LineStart;            // start of each line, then the size of the file
    std::vector<size_t> LineEnd;              // end of each line's text, before its line end

    // Remembered answers of the searches, per word.
    std::unordered_map<std::string, int32_t> FirstHolding;   // first line that holds the word
    std::unordered_map<std::string, int32_t> FirstCallable;  // ... and does not hold "CALL"
    std::unordered_map<std::string, std::vector<WordStop>> WordStops;
    // The forms of the lines read as word lines, by line, made at their first use.
    std::vector<std::shared_ptr<const WordLineForm>> Forms;
    // What the engine has learned of the lines read as body lines of blocks, by line: the
    // marks it tests each line for (LineMark), and the line's form in runs.
    std::vector<uint8_t> BodyMarks;
    std::vector<std::shared_ptr<const BlockLineForm>> BodyForms;
    // The truths of the lines found as reserved-word lines, by line.
    std::vector<std::shared_ptr<const TruthForm>> Truths;

    int32_t LineCount() const { return static_cast<int32_t>(LineEnd.size()); }
    std::string_view Line(int32_t index) const {
        return std::string_view(*Data).substr(LineStart[static_cast<size_t>(index)],
                                              LineEnd[static_cast<size_t>(index)] - LineStart[static_cast<size_t>(index)]);
    }
    // The read position behind a line: the start of the next one, or the end of the file.
    size_t After(int32_t index) const { return LineStart[static_cast<size_t>(index) + 1]; }
    // The first line that starts at a read position or behind it; LineCount() when none does.
    int32_t LineFrom(size_t pos) const {
        return static_cast<int32_t>(std::lower_bound(LineStart.begin(), LineStart.end() - 1, pos) - LineStart.begin());
    }
};

// The marks of a body line: known once looked at; the end-of-file byte 0xE2, a "[CALL ", the
// block end "******".
enum LineMark : uint8_t { MarkKnown = 1, MarkEndOfFile = 2, MarkCall = 4, MarkBlockEnd = 8 };
// The marks of a line of a held text, found at the first ask.
uint8_t BodyMarksOf(DefinitionText& text, int32_t line);

struct DefinitionCache {
    // Keyed by the path in upper case with '/' separators, as the file system of the
    // definitions does not tell upper from lower case.
    std::unordered_map<std::string, std::shared_ptr<DefinitionText>> Files;
    // The same entries by the path exactly as the engine passed it, for the quick case.
    std::unordered_map<std::string, std::shared_ptr<DefinitionText>> ByExactPath;
    // The entry the last lookup by exact path gave, for a definition opened again and again
    // by the same path; dropped with the exact paths whenever a file is forgotten.
    std::string LastPath;
    std::shared_ptr<DefinitionText> LastText;
    // Files that the system has written during the run, by key.
    std::unordered_set<std::string> Written;
    // A file over this many bytes is read as a stream.
    size_t HeldSizeLimit = size_t{1} << 20;
    // Whether a file that the system has written is read as a stream whatever its size.
    bool StreamWrittenFiles = true;
};

// Splits bytes into the lines of a definition text.
std::shared_ptr<DefinitionText> MakeDefinitionText(const std::string& path, std::shared_ptr<const std::string> data);

// The held text of a file, read from disk at the first use (a missing file is the file
// fault "File not found: <path>").
std::shared_ptr<DefinitionText> CachedDefinition(DefinitionCache& cache, const std::string& path);
// Holds the given bytes as the text of a file without reading the disk.
void HoldDefinition(DefinitionCache& cache, const std::string& path, std::shared_ptr<const std::string> data);
// Holds an existing text under a second path (a byte-for-byte copy of its file).
void HoldDefinitionText(DefinitionCache& cache, const std::string& path, std::shared_ptr<DefinitionText> text);
// Drops a file's entry and notes the file as written by the system: to be called whenever the
// file is written. Until it is held again, it is read as a stream.
void ForgetDefinition(DefinitionCache& cache, const std::string& path);
// Whether a file is to be read as a stream rather than held: it is not held now, and the
// system has written it or it is over the size limit.
bool ReadAsStream(DefinitionCache& cache, const std::string& path);
// The held text of a file as CachedDefinition gives it, or null for a file to be read as a
// stream.
std::shared_ptr<DefinitionText> HeldDefinitionOf(DefinitionCache& cache, const std::string& path);

// The searches, as a read from the top of the file would do them.
// First line holding `word` (a plain substring test), or -1.
int32_t FirstLineHolding(DefinitionText& text, const std::string& word);
// First line holding `name` and not holding "CALL", or -1.
int32_t FirstCallableLine(DefinitionText& text, const std::string& name);
// The lines of the .wrd at which a search for `word` stops, in file order.
const std::vector<WordStop>& WordStopsOf(DefinitionText& text, const std::string& word);
// Whether a line is a word line of `word`: the line holds the word, and the text from the
// line's start to the first blank at or behind the found place equals the word. A line that
// holds the word with no blank behind it gives `unparsable`.
bool IsWordLine(std::string_view line, std::string_view word, bool& unparsable);

}  // namespace tvx
