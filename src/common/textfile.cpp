#include "common/textfile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "common/fault.h"
#include "common/numtext.h"
#include "common/paths.h"

namespace tvx {

std::string ReadAllBytes(const std::string& path) {
    const std::string found = FindPath(path);
    std::ifstream file(found, std::ios::binary);
    if (!file || DirectoryExists(found)) FileFault("File not found", path);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void OpenTextInput(TextInput& in, const std::string& path) {
    OpenTextInputFromData(in, path, std::make_shared<const std::string>(ReadAllBytes(path)));
}

void OpenTextInputFromData(TextInput& in, const std::string& path, std::shared_ptr<const std::string> data) {
    in.Path = path;
    in.Data = std::move(data);
    in.Pos = 0;
    in.Open = true;
}

void CloseText(TextInput& in) {
    in.Data.reset();
    in.Pos = 0;
    in.Open = false;
}

bool AtEnd(const TextInput& in) { return !in.Data || in.Pos >= in.Data->size(); }

namespace {

void PastEnd(const TextInput& in) { FileFault("Input past end of file", in.Path); }

// Passes over one line end (CR LF, LF or CR) at the position, if there is one.
void SkipLineEnd(const std::string& d, size_t& pos) {
    if (pos < d.size() && d[pos] == '\r') {
        ++pos;
        if (pos < d.size() && d[pos] == '\n') ++pos;
    } else if (pos < d.size() && d[pos] == '\n') {
        ++pos;
    }
}

}  // namespace

void ReadLine(TextInput& in, std::string& line) {
    if (!in.Open) FileFault("File not open", in.Path);
    if (AtEnd(in)) PastEnd(in);
    const std::string& d = *in.Data;
    size_t end = in.Pos;
    while (end < d.size() && d[end] != '\r' && d[end] != '\n') ++end;
    line.assign(d, in.Pos, end - in.Pos);
    in.Pos = end;
    SkipLineEnd(d, in.Pos);
}

std::string ReadLine(TextInput& in) {
    std::string line;
    ReadLine(in, line);
    return line;
}

std::string ReadItem(TextInput& in) {
    if (!in.Open) FileFault("File not open", in.Path);
    const std::string& d = in.Data ? *in.Data : std::string();
    size_t& p = in.Pos;
    while (p < d.size() && (d[p] == ' ' || d[p] == '\t')) ++p;
    if (p >= d.size()) PastEnd(in);
    std::string item;
    if (d[p] == '"') {
        ++p;
        while (p < d.size() && d[p] != '"') item += d[p++];
        if (p < d.size()) ++p;  // closing quote
        while (p < d.size() && d[p] != ',' && d[p] != '\r' && d[p] != '\n') ++p;
    } else {
        while (p < d.size() && d[p] != ',' && d[p] != '\r' && d[p] != '\n') item += d[p++];
        item = Trim(item);
    }
    if (p < d.size() && d[p] == ',') ++p;
    else SkipLineEnd(d, p);
    return item;
}

std::vector<std::string> ReadAllLines(const std::string& path) {
    TextInput in;
    OpenTextInput(in, path);
    std::vector<std::string> lines;
    while (!AtEnd(in)) lines.push_back(ReadLine(in));
    return lines;
}

bool IsListEnd(std::string_view item) {
    const std::string t = Trim(item);
    return t.empty() || t == "******";
}

void OpenTextOutput(TextOutput& out, const std::string& path, bool append) {
    CloseText(out);
    const std::string native = FindPath(path);
    std::FILE* f = std::fopen(native.c_str(), append ? "ab" : "wb");
    if (!f) FileFault("Cannot write file", path);
    out.Path = path;
    out.File.reset(f);
    std::setvbuf(f, nullptr, _IOFBF, 1 << 16);
}

void CloseText(TextOutput& out) { out.File.reset(); }

bool IsOpen(const TextOutput& out) { return out.File != nullptr; }

void WriteText(TextOutput& out, std::string_view text) {
    if (!out.File) FileFault("File not open", out.Path);
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), out.File.get()) != text.size())
        FileFault("Cannot write file", out.Path);
}

void WriteLine(TextOutput& out, std::string_view text) {
    WriteText(out, text);
    WriteText(out, "\r\n");
}

void WriteAllLines(const std::string& path, const std::vector<std::string>& lines) {
    TextOutput out;
    OpenTextOutput(out, path);
    for (const auto& line : lines) WriteLine(out, line);
    CloseText(out);
}

void WriteFileAtomically(const std::string& path, std::string_view bytes) {
    const std::string native = FindPath(path);
    const std::string temporary = native + ".part";
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        if (!file) FileFault("Cannot write file", path);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!file) FileFault("Cannot write file", path);
    }
    RenameFile(temporary, native);
}

}  // namespace tvx
