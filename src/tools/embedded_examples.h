#pragma once
// The example installations, built into the executable for the demo command.
#include <string_view>
#include <vector>

namespace tvx {

struct EmbeddedFile {
    std::string_view Path;   // relative to the examples folder, '/' separated; a folder ends in '/'
    std::string_view Bytes;
};

const std::vector<EmbeddedFile>& EmbeddedExamples();

}  // namespace tvx
