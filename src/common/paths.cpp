#include "common/paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <unordered_map>
#include <vector>

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

// ---- What a run has learned of its folders ------------------------------------------------------
//
// While a lookup scope is open, each folder that a lookup needs is listed once: which names it
// holds, in their exact spelling, and whether each is a file or a folder. Every later lookup in
// that folder is answered from the listing, and the answers of FindPath are kept as well. The
// files that the system itself makes, renames or deletes update the listings (NoteFileMade,
// NoteFileGone); a folder it makes drops what was learned. Outside a scope every lookup asks the
// file system.

enum class EntryKind : unsigned char { File, Folder, Other };

struct FolderListing {
    std::unordered_map<std::string, EntryKind> Names;                 // exact name -> kind
    std::unordered_map<std::string, std::vector<std::string>> ByUpper;  // upper-case name -> exact names
};

struct LookupCache {
    int Scopes = 0;
    // Moved on by every change that a kept answer may depend on (LookupGeneration).
    uint64_t Generation = 1;
    std::unordered_map<std::string, FolderListing> Folders;  // by folder, as FolderKey gives it
    std::unordered_map<std::string, std::string> Found;      // FindPath's answers, by native path
};

LookupCache& Cache() {
    static LookupCache cache;
    return cache;
}

bool Caching() { return Cache().Scopes > 0; }

// A folder's key: "" for the current folder, otherwise the path without doubled or trailing '/'.
std::string FolderKey(std::string_view folder) {
    std::string key;
    for (const char c : folder)
        if (c != '/' || key.empty() || key.back() != '/') key += c;
    while (key.size() > 1 && key.back() == '/') key.pop_back();
    return key;
}

// Splits a native path into its folder's key and its last name. False when the last name is
// not a plain name (empty, "." or ".."): such a path is asked of the file system.
bool SplitName(const std::string& native, std::string& folder, std::string& name) {
    std::string path = native;
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        folder.clear();
        name = path;
    } else {
        folder = FolderKey(std::string_view(path).substr(0, slash == 0 ? 1 : slash));
        name = path.substr(slash + 1);
    }
    return !name.empty() && name != "." && name != "..";
}

void AddName(FolderListing& listing, const std::string& name, EntryKind kind) {
    const auto [it, added] = listing.Names.insert_or_assign(name, kind);
    (void)it;
    if (added) listing.ByUpper[Upper(name)].push_back(name);
}

void RemoveName(FolderListing& listing, const std::string& name) {
    if (listing.Names.erase(name) == 0) return;
    auto& names = listing.ByUpper[Upper(name)];
    names.erase(std::remove(names.begin(), names.end(), name), names.end());
}

// The listing of a folder, made on first need. A folder that cannot be listed holds nothing.
FolderListing& ListingOf(const std::string& key) {
    LookupCache& cache = Cache();
    auto it = cache.Folders.find(key);
    if (it != cache.Folders.end()) return it->second;
    FolderListing& listing = cache.Folders[key];
    std::error_code ec;
    fs::directory_iterator entries(key.empty() ? fs::path(".") : fs::path(key), ec);
    if (ec) return listing;
    for (const auto& entry : entries) {
        std::error_code kindError;
        const EntryKind kind = entry.is_regular_file(kindError) ? EntryKind::File
                               : entry.is_directory(kindError)  ? EntryKind::Folder
                                                                : EntryKind::Other;
        AddName(listing, entry.path().filename().string(), kind);
    }
    return listing;
}

// What stands at a native path: from the folder's listing while caching, else from the file
// system. False when nothing stands there.
bool KindAt(const std::string& native, EntryKind& kind) {
    std::string folder, name;
    if (Caching() && SplitName(native, folder, name)) {
        const FolderListing& listing = ListingOf(folder);
        const auto it = listing.Names.find(name);
        if (it == listing.Names.end()) return false;
        kind = it->second;
        return true;
    }
    std::error_code ec;
    const fs::file_status status = fs::status(fs::path(native), ec);
    if (ec || !fs::exists(status)) return false;
    kind = fs::is_regular_file(status) ? EntryKind::File : fs::is_directory(status) ? EntryKind::Folder : EntryKind::Other;
    return true;
}

bool Exists(const std::string& native) {
    EntryKind kind{};
    return KindAt(native, kind);
}

// Looks a name up in a directory without regard to case; of several spellings the first in
// byte order is taken.
bool FindInDirectory(const std::string& directory, const std::string& name, std::string& found) {
    std::string best;
    if (Caching()) {
        const FolderListing& listing = ListingOf(FolderKey(directory));
        const auto it = listing.ByUpper.find(Upper(name));
        if (it == listing.ByUpper.end()) return false;
        for (const std::string& candidate : it->second)
            if (best.empty() || candidate < best) best = candidate;
    } else {
        std::error_code ec;
        const fs::path dir = directory.empty() ? fs::path(".") : fs::path(directory);
        fs::directory_iterator it(dir, ec);
        if (ec) return false;
        const std::string wanted = Upper(name);
        for (const auto& entry : it) {
            const std::string candidate = entry.path().filename().string();
            if (Upper(candidate) == wanted && (best.empty() || candidate < best)) best = candidate;
        }
    }
    if (best.empty()) return false;
    found = best;
    return true;
}

std::string FindPathUncached(const std::string& native);

}  // namespace

LookupCacheScope::LookupCacheScope() {
    ++Cache().Scopes;
    ++Cache().Generation;
}

LookupCacheScope::~LookupCacheScope() {
    LookupCache& cache = Cache();
    ++cache.Generation;
    if (--cache.Scopes == 0) {
        cache.Folders.clear();
        cache.Found.clear();
    }
}

namespace {

// A file made or gone at a path: FindPath's kept answers go, and a listing of its folder learns it.
void NoteFileChange(std::string_view path, bool made) {
    if (!Caching()) return;
    LookupCache& cache = Cache();
    ++cache.Generation;
    cache.Found.clear();
    std::string folder, name;
    if (!SplitName(NativePath(path), folder, name)) return;
    const auto it = cache.Folders.find(folder);
    if (it == cache.Folders.end()) return;
    if (made) AddName(it->second, name, EntryKind::File);
    else RemoveName(it->second, name);
}

}  // namespace

void NoteFileMade(std::string_view path) { NoteFileChange(path, true); }

void NoteFileGone(std::string_view path) { NoteFileChange(path, false); }

void NoteFoldersChanged() {
    if (!Caching()) return;
    ++Cache().Generation;
    Cache().Folders.clear();
    Cache().Found.clear();
}

uint64_t LookupGeneration() { return Caching() ? Cache().Generation : 0; }

std::string FindPath(std::string_view path) {
    const std::string native = NativePath(path);
    if (!Caching()) return FindPathUncached(native);
    LookupCache& cache = Cache();
    const auto it = cache.Found.find(native);
    if (it != cache.Found.end()) return it->second;
    std::string found = FindPathUncached(native);
    cache.Found.emplace(native, found);
    return found;
}

namespace {

std::string FindPathUncached(const std::string& native) {
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

}  // namespace

bool FileExists(std::string_view path) {
    EntryKind kind{};
    return KindAt(FindPath(path), kind) && kind == EntryKind::File;
}

bool DirectoryExists(std::string_view path) {
    const std::string native = FindPath(path);
    if (native.empty()) return false;
    EntryKind kind{};
    // A path that ends in a separator names the folder itself.
    const std::string folder = native.size() > 1 && native.back() == '/' ? FolderKey(native) : native;
    return KindAt(folder, kind) && kind == EntryKind::Folder;
}

void CopyFileTo(std::string_view source, std::string_view destination) {
    const std::string from = FindPath(source);
    if (!FileExists(from)) FileFault("File not found", std::string(source));
    std::error_code ec;
    const std::string to = FindPath(destination);
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
    if (ec) FileFault("Cannot copy to file", std::string(destination));
    NoteFileMade(to);
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
    NoteFileMade(to);
}

void DeleteFile(std::string_view path) {
    const std::string found = FindPath(path);
    std::error_code ec;
    if (!FileExists(found) || !fs::remove(found, ec)) FileFault("File not found", std::string(path));
    NoteFileGone(found);
}

void DeleteIfExists(std::string_view path) {
    const std::string found = FindPath(path);
    std::error_code ec;
    if (FileExists(found)) {
        fs::remove(found, ec);
        NoteFileGone(found);
    }
}

void MakeDirectory(std::string_view path) {
    std::error_code ec;
    const std::string native = FindPath(path);
    if (DirectoryExists(native)) return;
    fs::create_directories(native, ec);
    NoteFoldersChanged();
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
    const std::string dir = FindPath(directory);
    if (Caching()) {
        const EntryKind wanted = directories ? EntryKind::Folder : EntryKind::File;
        for (const auto& [name, kind] : ListingOf(FolderKey(dir)).Names)
            if (kind == wanted && WildcardMatch(pattern, name)) names.push_back(name);
    } else {
        std::error_code ec;
        fs::directory_iterator it(dir.empty() ? fs::path(".") : fs::path(dir), ec);
        if (ec) return names;
        for (const auto& entry : it) {
            if (directories ? !entry.is_directory(ec) : !entry.is_regular_file(ec)) continue;
            const std::string name = entry.path().filename().string();
            if (WildcardMatch(pattern, name)) names.push_back(name);
        }
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
    const std::string source = FindPath(from);
    const std::string destination = NativePath(to);
    fs::rename(source, destination, ec);
    if (ec) FileFault("Cannot rename file", std::string(from));
    NoteFileGone(source);
    NoteFileMade(destination);
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
