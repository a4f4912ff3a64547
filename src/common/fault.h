#pragma once
// How a run ends early. Every end of the run that is not a clean end travels as one RunEnd
// value up to the entry point, which prints its text to stderr and exits with its status.
#include <string>

namespace tvx {

enum ExitStatus : int {
    ExitClean = 0,   // the job ran to its end
    ExitAbort = 1,   // a message box ended the run (a definition fault, a missing word)
    ExitFault = 2,   // a fault of the run: a missing file, an index beyond a table's bound
    ExitSilent = 3,  // the run ended without a word
};

struct RunEnd {
    int Status = ExitClean;
    std::string Text;  // what stderr shows, without the final line end; empty for a silent end
};

// A fault of the run: says what failed and names the file or the index.
[[noreturn]] void RunFault(const std::string& what);
// The file fault: "File not found: <path>" and the like.
[[noreturn]] void FileFault(const std::string& what, const std::string& path);
// An index beyond a table's bound: "Index out of range: PostParam(301)".
[[noreturn]] void IndexFault(const std::string& table, long long index);
// A message box that ends the run: the title line where the box has one, then the text.
[[noreturn]] void MessageEnd(const std::string& title, const std::string& text);
// The end of the run without any message.
[[noreturn]] void SilentEnd();

// Text of a message box as it is shown on stderr.
std::string MessageBoxText(const std::string& title, const std::string& text);

}  // namespace tvx
