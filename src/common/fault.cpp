#include "common/fault.h"

#include "common/numtext.h"

namespace tvx {

void RunFault(const std::string& what) { throw RunEnd{ExitFault, what}; }

void FileFault(const std::string& what, const std::string& path) {
    throw RunEnd{ExitFault, what + ": " + path};
}

void IndexFault(const std::string& table, long long index) {
    throw RunEnd{ExitFault, "Index out of range: " + table + "(" + WholeNumberText(index) + ")"};
}

std::string MessageBoxText(const std::string& title, const std::string& text) {
    if (title.empty()) return text;
    return title + "\n" + text;
}

void MessageEnd(const std::string& title, const std::string& text) {
    throw RunEnd{ExitAbort, MessageBoxText(title, text)};
}

void SilentEnd() { throw RunEnd{ExitSilent, {}}; }

}  // namespace tvx
