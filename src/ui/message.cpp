#include "ui/message.h"

#include <cstdio>

#include "common/fault.h"
#include "ui/progress.h"

namespace tvx {

void ShowMessage(const std::string& title, const std::string& text) {
    // The box stands over the progress window, which is taken down first so that the text is
    // not mixed with the bar on a terminal.
    HideProgress();
    const std::string shown = MessageBoxText(title, text);
    std::fwrite(shown.data(), 1, shown.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

}  // namespace tvx
