#include "ui/progress.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace tvx {
namespace {

struct ProgressWindow {
    bool Visible = false;
    bool Terminal = false;
    std::string Label;
    int Percent = -1;
    std::chrono::steady_clock::time_point LastDrawn;
};

ProgressWindow& Window() {
    static ProgressWindow window;
    return window;
}

void Draw(ProgressWindow& w) {
    const int width = 30;
    const int filled = w.Percent * width / 100;
    std::string bar(static_cast<size_t>(filled), '#');
    bar.append(static_cast<size_t>(width - filled), '.');
    std::fprintf(stderr, "\r%s [%s] %3d%%", w.Label.c_str(), bar.c_str(), w.Percent);
    std::fflush(stderr);
    w.LastDrawn = std::chrono::steady_clock::now();
}

}  // namespace

void ShowProgress(const std::string& label) {
    ProgressWindow& w = Window();
    w.Terminal = ::isatty(STDERR_FILENO) != 0;
    w.Visible = true;
    w.Label = label;
    w.Percent = 0;
    if (w.Terminal) Draw(w);
}

void SetProgress(int percent) {
    ProgressWindow& w = Window();
    if (!w.Visible || !w.Terminal) return;
    if (percent < 0) percent = 0;
    if (percent > 100) percent = 100;
    if (percent == w.Percent) return;
    w.Percent = percent;
    const auto now = std::chrono::steady_clock::now();
    if (percent == 100 || now - w.LastDrawn >= std::chrono::milliseconds(200)) Draw(w);
}

void HideProgress() {
    ProgressWindow& w = Window();
    if (w.Visible && w.Terminal) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(w.Label.size()) + 40, "");
        std::fflush(stderr);
    }
    w.Visible = false;
}

}  // namespace tvx
