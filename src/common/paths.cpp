#include "common/paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "common/fault.h"
#include "common/numtext.h"

namespace tvx {
namespace fs = std::filesystem;

std::string NativePath(std::string_view path) {
    std::string out(path);
    std::replace(out.begin(), out.end(), '\\', '/');
    return out;
}

namespace {

bool Exists(const std::string& native) {
    std::error_code ec;
    return fs::exists(fs::path(native), ec);
}

// Looks a name up in a directory without regard to case.
bool FindInDirectory(const std::string& directory, const std::string& name, std::string& found) {
    std::error_code ec;
    const fs::path dir = directory.empty() ? fs::path(".") : fs::path(directory);
    fs::directory_iterator it(dir, ec);
    if (ec) return false;
    const std::string wanted = Upper(name);
    std::string best;
    for (const auto& entry : it) {
        const std::string candidate = entry.path().filename().string();
        if (Upper(candidate) == wanted && (best.empty() || candidate < best)) best = candidate;
    }
    if (best.empty()) return false;
    found = best;
    return true;
}

}  // namespace

std::string FindPath(std::string_view path) {
    const std::string native = NativePath(path);
    if (native.empty() || Exists(native)) return native;
    // Walk the components, matching each without regard to case where it is not exact.
    std::string result;
    size_t pos = 0;
    if (native[0] == '/') {
        result = "/";
        pos = 1;
    }
    bool lost = false;
    while (pos <= native.size()) {
        size_t next = native.find('/', pos);
        if (next == std::string::npos) next = native.size();
        const std::string part = native.substr(pos, next - pos);
        const bool last = next == native.size();
        if (!part.empty()) {
            const std::string dirSoFar = result;
            std::string candidate = dirSoFar + part;
            if (!lost && !Exists(candidate) && part != "." && part != "..") {
                std::string found;
                if (FindInDirectory(dirSoFar, part, found)) candidate = dirSoFar + found;
                else lost = true;
            }
            result = candidate;
            if (!last) result += "/";
        } else if (!last && !result.empty() && result.back() != '/') {
            result += "/";
        }
        if (last) break;
        pos = next + 1;
    }
    if (!native.empty() && native.back() == '/' && (result.empty() || result.back() != '/')) result += "/";
    return result;
}

bool FileExists(std::string_view path) {
    std::error_code ec;
    return fs::is_regular_file(fs::path(FindPath(path)), ec);
}

bool DirectoryExists(std::string_view path) {
    std::error_code ec;
    std::string native = FindPath(path);
    if (native.empty()) return false;
    return fs::is_directory(fs::path(native), ec);
}

void CopyFileTo(std::string_view source, std::string_view destination) {
    const std::string from = FindPath(source);
    if (!FileExists(from)) FileFault("File not found", std::string(source));
    std::error_code ec;
    fs::copy_file(from, FindPath(destination), fs::copy_options::overwrite_existing, ec);
    if (ec) FileFault("Cannot copy to file", std::string(destination));
}

void CopyFileAtomically(std::string_view source, std::string_view destination) {
    const std::string from = FindPath(source);
    if (!FileExists(from)) FileFault("File not found", std::string(source));
    const std::string to = FindPath(destination);
    const std::string temporary = to + ".part";
    std::error_code ec;
    fs::copy_file(from, temporary, fs::copy_options::overwrite_existing, ec);
    if (ec) {
        fs::remove(temporary, ec);
        FileFault("Cannot write file", std::string(destination));
    }
    fs::rename(temporary, to, ec);
    if (ec) {
        fs::remove(temporary, ec);
        FileFault("Cannot write file", std::string(destination));
    }
}

void DeleteFile(std::string_view path) {
    const std::string found = FindPath(path);
    std::error_code ec;
    if (!fs::is_regular_file(found, ec) || !fs::remove(found, ec)) FileFault("File not found", std::string(path));
}

void DeleteIfExists(std::string_view path) {
    const std::string found = FindPath(path);
    std::error_code ec;
    if (fs::is_regular_file(found, ec)) fs::remove(found, ec);
}

void MakeDirectory(std::string_view path) {
    std::error_code ec;
    const std::string native = FindPath(path);
    if (fs::is_directory(native, ec)) return;
    fs::create_directories(native, ec);
    if (ec) FileFault("Cannot make directory", std::string(path));
}

bool WildcardMatch(std::string_view pattern, std::string_view name) {
    const std::string p = Upper(pattern);
    const std::string n = Upper(name);
    size_t pi = 0, ni = 0, star = std::string::npos, mark = 0;
    while (ni < n.size()) {
        if (pi < p.size() && (p[pi] == '?' || p[pi] == n[ni])) {
            ++pi;
            ++ni;
        } else if (pi < p.size() && p[pi] == '*') {
            star = pi++;
            mark = ni;
        } else if (star != std::string::npos) {
            pi = star + 1;
            ni = ++mark;
        } else {
            return false;
        }
    }
    while (pi < p.size() && p[pi] == '*') ++pi;
    return pi == p.size();
}

namespace {

// Entries of a directory that match a pattern, files or directories, sorted by name without
// regard to case.
std::vector<std::string> ListEntries(std::string_view directory, std::string_view pattern, bool directories) {
    std::vector<std::string> names;
    std::error_code ec;
    const std::string dir = FindPath(directory);
    fs::directory_iterator it(dir.empty() ? fs::path(".") : fs::path(dir), ec);
    if (ec) return names;
    for (const auto& entry : it) {
        if (directories ? !entry.is_directory(ec) : !entry.is_regular_file(ec)) continue;
        const std::string name = entry.path().filename().string();
        if (WildcardMatch(pattern, name)) names.push_back(name);
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        const std::string ua = Upper(a), ub = Upper(b);
        return ua != ub ? ua < ub : a < b;
    });
    return names;
}

}  // namespace

std::vector<std::string> ListFiles(std::string_view directory, std::string_view pattern) {
    return ListEntries(directory, pattern, false);
}

std::vector<std::string> ListDirectories(std::string_view directory, std::string_view pattern) {
    return ListEntries(directory, pattern, true);
}

void RenameFile(std::string_view from, std::string_view to) {
    std::error_code ec;
    fs::rename(FindPath(from), NativePath(to), ec);
    if (ec) FileFault("Cannot rename file", std::string(from));
}

bool DriveReady(std::string_view path) {
    const std::string first(path.substr(0, std::min<size_t>(2, path.size())));
    if (first.empty()) return false;
    std::error_code ec;
    fs::directory_iterator it(fs::path(FindPath(first)), ec);
    return !ec;
}

std::string WithSeparator(std::string_view directory) {
    std::string d(directory);
    if (d.empty() || (d.back() != '\\' && d.back() != '/')) d += '\\';
    return d;
}

}  // namespace tvx
