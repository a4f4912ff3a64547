#include "common/textfile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <iterator>

#include "common/fault.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/stdio_unlocked.h"

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
    CloseText(in);
    in.Path = path;
    in.Data = std::move(data);
    in.Open = true;
}

void OpenTextStream(TextInput& in, const std::string& path) {
    CloseText(in);
    const std::string found = FindPath(path);
    std::FILE* f = DirectoryExists(found) ? nullptr : std::fopen(found.c_str(), "rb");
    if (!f) FileFault("File not found", path);
    in.Stream.reset(f);
    // The reads go straight into the buffer of the input, not through a second one.
    std::setvbuf(f, nullptr, _IONBF, 0);
    long size = -1;
    if (std::fseek(f, 0, SEEK_END) == 0) size = std::ftell(f);
    if (size < 0 || std::fseek(f, 0, SEEK_SET) != 0) FileFault("File not found", path);
    in.Path = path;
    in.Size = static_cast<size_t>(size);
    in.Open = true;
}

bool IsStreamed(const TextInput& in) { return in.Stream != nullptr; }

void CloseText(TextInput& in) {
    in.Data.reset();
    in.Stream.reset();
    std::string().swap(in.Buffer);
    in.Size = 0;
    in.BufferStart = 0;
    in.Pos = 0;
    in.Open = false;
}

bool AtEnd(const TextInput& in) {
    if (in.Stream) return in.Pos >= in.Size;
    return !in.Data || in.Pos >= in.Data->size();
}

namespace {

void PastEnd(const TextInput& in) { FileFault("Input past end of file", in.Path); }

// Brings the byte at the read position of a stream into its buffer; false at the end of the
// file. A file that has become shorter since it was opened ends where its bytes end.
bool FillStream(TextInput& in) {
    if (in.Pos >= in.BufferStart && in.Pos - in.BufferStart < in.Buffer.size()) return true;
    if (in.Pos >= in.Size) return false;
    std::FILE* f = in.Stream.get();
    if (in.Pos != in.BufferStart + in.Buffer.size() &&
        (in.Pos > static_cast<size_t>(LONG_MAX) || std::fseek(f, static_cast<long>(in.Pos), SEEK_SET) != 0)) {
        in.Size = in.Pos;
        in.Buffer.clear();
        return false;
    }
    const size_t wanted = std::min(StreamBufferSize, in.Size - in.Pos);
    in.Buffer.resize(wanted);
    const size_t got = std::fread(in.Buffer.data(), 1, wanted, f);
    in.Buffer.resize(got);
    in.BufferStart = in.Pos;
    if (got < wanted) in.Size = in.Pos + got;
    return got > 0;
}

// The byte at the read position, or -1 at the end of the file.
int PeekByte(TextInput& in) {
    if (in.Stream)
        return FillStream(in) ? static_cast<unsigned char>(in.Buffer[in.Pos - in.BufferStart]) : -1;
    if (!in.Data || in.Pos >= in.Data->size()) return -1;
    return static_cast<unsigned char>((*in.Data)[in.Pos]);
}

// Passes over one line end (CR LF, LF or CR) at the read position, if there is one.
void SkipLineEnd(TextInput& in) {
    const int c = PeekByte(in);
    if (c == '\r') {
        ++in.Pos;
        if (PeekByte(in) == '\n') ++in.Pos;
    } else if (c == '\n') {
        ++in.Pos;
    }
}

bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

// The first line end (CR or LF) in [from, size) of the bytes, or size. Eight bytes are looked
// at together while none of them can be a line end.
size_t FindLineEnd(const char* bytes, size_t from, size_t size) {
    constexpr uint64_t Ones = 0x0101010101010101ull;
    constexpr uint64_t Highs = 0x8080808080808080ull;
    size_t i = from;
    while (i + 8 <= size) {
        uint64_t word = 0;
        std::memcpy(&word, bytes + i, sizeof word);
        const uint64_t lf = word ^ (Ones * '\n');
        const uint64_t cr = word ^ (Ones * '\r');
        // A byte of zero in either marks a line end among the eight (or, never missing one, a
        // byte behind it): the bytes are then looked at one by one.
        if ((((lf - Ones) & ~lf) | ((cr - Ones) & ~cr)) & Highs) break;
        i += 8;
    }
    while (i < size && !IsLineEnd(bytes[i])) ++i;
    return i;
}

// A line of a stream, which may run over any number of buffers.
void ReadStreamLine(TextInput& in, std::string& line) {
    line.clear();
    bool any = false;
    while (FillStream(in)) {
        any = true;
        const char* begin = in.Buffer.data() + (in.Pos - in.BufferStart);
        const char* end = in.Buffer.data() + in.Buffer.size();
        const char* stop = begin + FindLineEnd(begin, 0, static_cast<size_t>(end - begin));
        line.append(begin, stop);
        in.Pos += static_cast<size_t>(stop - begin);
        if (stop != end) break;
    }
    if (!any) PastEnd(in);
}

}  // namespace

void ReadLine(TextInput& in, std::string& line) {
    if (!in.Open) FileFault("File not open", in.Path);
    if (AtEnd(in)) PastEnd(in);
    if (in.Stream) {
        ReadStreamLine(in, line);
    } else {
        const std::string& d = *in.Data;
        const size_t end = FindLineEnd(d.data(), in.Pos, d.size());
        line.assign(d, in.Pos, end - in.Pos);
        in.Pos = end;
    }
    SkipLineEnd(in);
}

std::string ReadLine(TextInput& in) {
    std::string line;
    ReadLine(in, line);
    return line;
}

std::string ReadItem(TextInput& in) {
    if (!in.Open) FileFault("File not open", in.Path);
    int c = PeekByte(in);
    while (c == ' ' || c == '\t') {
        ++in.Pos;
        c = PeekByte(in);
    }
    if (c < 0) PastEnd(in);
    std::string item;
    if (c == '"') {
        ++in.Pos;
        while ((c = PeekByte(in)) >= 0 && c != '"') {
            item += static_cast<char>(c);
            ++in.Pos;
        }
        if (c >= 0) ++in.Pos;  // closing quote
        while ((c = PeekByte(in)) >= 0 && c != ',' && !IsLineEnd(static_cast<char>(c))) ++in.Pos;
    } else {
        while ((c = PeekByte(in)) >= 0 && c != ',' && !IsLineEnd(static_cast<char>(c))) {
            item += static_cast<char>(c);
            ++in.Pos;
        }
        item = Trim(item);
    }
    if (c == ',') ++in.Pos;
    else SkipLineEnd(in);
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
    NoteFileMade(native);
    out.Path = path;
    out.File.reset(f);
    constexpr size_t BufferSize = 1 << 16;
    if (!out.Buffer) out.Buffer = std::make_unique<char[]>(BufferSize);
    std::setvbuf(f, out.Buffer.get(), _IOFBF, BufferSize);
}

void CloseText(TextOutput& out) { out.File.reset(); }

bool IsOpen(const TextOutput& out) { return out.File != nullptr; }

void WriteText(TextOutput& out, std::string_view text) {
    if (!out.File) FileFault("File not open", out.Path);
    if (!text.empty() && WriteUnlocked(text.data(), text.size(), out.File.get()) != text.size())
        FileFault("Cannot write file", out.Path);
}

void WriteLine(TextOutput& out, std::string_view text) {
    if (!out.File) FileFault("File not open", out.Path);
    if ((!text.empty() && WriteUnlocked(text.data(), text.size(), out.File.get()) != text.size()) ||
        WriteUnlocked("\r\n", 2, out.File.get()) != 2)
        FileFault("Cannot write file", out.Path);
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
