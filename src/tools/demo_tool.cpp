#include "tools/demo_tool.h"

#include <filesystem>
#include <fstream>
#include <set>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawjson.h"
#include "job/post_main.h"
#include "tools/embedded_examples.h"

namespace tvx {
namespace fs = std::filesystem;

namespace {

std::string Substitute(std::string_view bytes, const std::string& dir) {
    std::string text(bytes);
    const std::string mark = "@DIR@";
    for (size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + dir.size()))
        text.replace(at, mark.size(), dir);
    return text;
}

// A drawing kept in JSON: "NAME.drw.json", written as "NAME.drw".
const std::string JsonSuffix = ".json";
bool IsDrawingJson(const std::string& relative) {
    const std::string suffix = ".drw" + JsonSuffix;
    return relative.size() > suffix.size() &&
           relative.compare(relative.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void WriteBytes(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file) FileFault("Cannot write file", path.string());
}

}  // namespace

std::string ExampleNames() {
    std::set<std::string> names;
    for (const EmbeddedFile& file : EmbeddedExamples()) {
        const auto slash = file.Path.find('/');
        if (slash != std::string_view::npos && file.Path.substr(0, slash) != "drawings")
            names.insert(std::string(file.Path.substr(0, slash)));
    }
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    return list;
}

bool UnpackExample(const std::string& example, const std::string& directory) {
    const std::string prefix = example + "/";
    const fs::path root(directory);
    bool found = false;
    for (const EmbeddedFile& file : EmbeddedExamples()) {
        if (file.Path.substr(0, prefix.size()) != prefix) continue;
        found = true;
        const std::string relative(file.Path.substr(prefix.size()));
        if (relative.empty() || relative.back() == '/') {
            fs::create_directories(root / relative);
            continue;
        }
        const std::string bytes = Substitute(file.Bytes, directory);
        if (IsDrawingJson(relative)) {
            const std::string drawing = relative.substr(0, relative.size() - JsonSuffix.size());
            WriteBytes(root / drawing, DrawingFromJson(bytes, prefix + relative));
            continue;
        }
        if (relative == "drawing.json")
            WriteBytes(root / "work" / "Progmain.drw", DrawingFromJson(bytes, prefix + relative));
        WriteBytes(root / relative, bytes);
    }
    return found;
}

int DemoCommand(const std::string& example, const std::string& directory, std::ostream& out) {
    std::error_code ec;
    const fs::path root = fs::absolute(directory.empty() ? fs::path("torvanex-demo") : fs::path(directory), ec);
    const std::string dir = root.lexically_normal().string();
    if (!UnpackExample(example, dir))
        RunFault("No example installation named \"" + example + "\" (there are: " + ExampleNames() + ")");

    out << "Demo installation \"" << example << "\" unpacked into " << dir << "\n";
    out.flush();
    const int status = RunJob((root / "work").string());
    if (status != ExitClean) return status;
    const fs::path program = root / "work" / "Progmain.prg";
    out << "Program: " << program.string() << "\n";
    out << "Report:  " << (root / "work" / "Progmain.rpt").string() << "\n";
    out << "Copies under the job's name in " << (root / "jobs").string() << "\n\n";
    out << "First lines of the program:\n";
    const std::vector<std::string> lines = ReadAllLines(program.string());
    for (size_t i = 0; i < lines.size() && i < 20; ++i) out << "  " << lines[i] << "\n";
    if (lines.size() > 20) out << "  ... (" << lines.size() << " lines)\n";
    return ExitClean;
}

}  // namespace tvx
