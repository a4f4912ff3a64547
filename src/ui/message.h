#pragma once
// A message box that informs and lets the run go on: its text goes to stderr as the box shows
// it (the title line, then the text), and the run carries on after it.
#include <string>

namespace tvx {

void ShowMessage(const std::string& title, const std::string& text);

}  // namespace tvx
