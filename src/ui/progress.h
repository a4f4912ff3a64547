#pragma once
// The progress window of a run. On a terminal its label and a bar with the percentage are drawn
// on stderr, in place, a few times a second at most; when stderr is not a terminal nothing is
// shown. Nothing ever goes to stdout.
#include <string>

namespace tvx {

void ShowProgress(const std::string& label);
void SetProgress(int percent);
void HideProgress();

}  // namespace tvx
