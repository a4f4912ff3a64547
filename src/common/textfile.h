#pragma once
// Text files as the system reads and writes them: 8-bit bytes, never decoded; lines written
// with CR LF; lines read whole, ended by CR LF, LF or CR; list files read item by item in the
// comma-separated form with quoted or bare texts.
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// A text file open for input, in one of two forms that read alike. Held: its bytes are in
// memory (shared, so a definition read many times is read from disk once). Streamed: the file
// stays on disk and is read through a buffer of `StreamBufferSize` bytes, so that a text of
// any length costs the same memory. Either way every read behaves as a sequential read of the
// file as it was when opened, and `Pos` is the byte offset of the next read.
struct TextInput {
    std::string Path;                        // as opened, for messages
    std::shared_ptr<const std::string> Data; // held: the whole file
    size_t Pos = 0;
    bool Open = false;
    // Streamed: the file, its size when opened, and the bytes of the buffer from BufferStart.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> Stream{nullptr, &std::fclose};
    size_t Size = 0;
    size_t BufferStart = 0;
    std::string Buffer;
};

inline constexpr size_t StreamBufferSize = 1 << 16;

// Opens a file for input; a missing file is the file fault "File not found: <path>".
void OpenTextInput(TextInput& in, const std::string& path);
// Opens in-memory text for input, as if it were the file `path`.
void OpenTextInputFromData(TextInput& in, const std::string& path, std::shared_ptr<const std::string> data);
// Opens a file for input as a stream; a missing file is the same file fault.
void OpenTextStream(TextInput& in, const std::string& path);
bool IsStreamed(const TextInput& in);
void CloseText(TextInput& in);
bool AtEnd(const TextInput& in);
// Reads one whole line without its end. Reading at the end of the file is the fault
// "Input past end of file: <path>".
std::string ReadLine(TextInput& in);
// The same into an existing text, which keeps its storage.
void ReadLine(TextInput& in, std::string& line);
// Reads one item of a list line: a quoted text (up to the next quote; the rest up to the
// next comma or line end is passed over) or a bare text up to the next comma or line end,
// trimmed. An empty line gives one empty item.
std::string ReadItem(TextInput& in);
// Reads the whole file as lines (for small files: configuration, lists).
std::vector<std::string> ReadAllLines(const std::string& path);

// True when an item ends a list: "******" or an empty item.
bool IsListEnd(std::string_view item);

// A text file open for output, buffered.
struct TextOutput {
    std::string Path;
    // The stream's buffer, owned here so that it is large: a stream left to choose its own takes
    // a block of 4 KB and writes a long program in as many calls. Declared before the stream, so
    // that the stream is closed (and written out) before its buffer goes.
    std::unique_ptr<char[]> Buffer;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> File{nullptr, &std::fclose};
};

// Opens for output (emptying the file) or for appending. A file that cannot be made is the
// file fault "Cannot write file: <path>".
void OpenTextOutput(TextOutput& out, const std::string& path, bool append = false);
void CloseText(TextOutput& out);
bool IsOpen(const TextOutput& out);
// Writes text and CR LF.
void WriteLine(TextOutput& out, std::string_view text);
// Writes text without a line end.
void WriteText(TextOutput& out, std::string_view text);

// Writes a whole file of lines with CR LF ends.
void WriteAllLines(const std::string& path, const std::vector<std::string>& lines);
// Reads a whole file's bytes; a missing file is the file fault.
std::string ReadAllBytes(const std::string& path);
// Writes a whole file's bytes so that a reader never sees it half written: a temporary file
// beside it, then a rename.
void WriteFileAtomically(const std::string& path, std::string_view bytes);

}  // namespace tvx
