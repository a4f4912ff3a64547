#pragma once
// Files and paths. Paths in the system's files use '\'; '\' and '/' are both separators here.
// A name that does not exist exactly is found without regard to case.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The path with every '\' turned into '/'.
std::string NativePath(std::string_view path);
// The path as it stands on disk: the exact name where it exists, else each component matched
// without regard to case; a component that is not found is kept as given.
std::string FindPath(std::string_view path);

bool FileExists(std::string_view path);

// While a scope is open (a run of a job holds one), what lookups learn of a folder is kept: each
// folder is listed once, and FindPath, FileExists, DirectoryExists and the listings answer from
// what was learned. The files that the system makes, renames and deletes keep it true: the
// functions here note their own changes, and a writer that makes a file by other means calls
// NoteFileMade. Files that another program changes in the meantime are not seen.
struct LookupCacheScope {
    LookupCacheScope();
    ~LookupCacheScope();
    LookupCacheScope(const LookupCacheScope&) = delete;
    LookupCacheScope& operator=(const LookupCacheScope&) = delete;
};
// A file made (or written anew) at a path as it stands on disk.
void NoteFileMade(std::string_view path);
// A file deleted at a path as it stands on disk.
void NoteFileGone(std::string_view path);
// Folders made: what was learned of folders is dropped.
void NoteFoldersChanged();
// A number that moves on whenever an answer of the kept lookups may change: with every file
// noted as made or gone, with folders made, and when a scope opens or closes. 0 while no scope
// is open: then nothing is kept, and an answer a caller remembers holds only for the moment it
// was asked. A caller that remembers an answer together with this number may use it again for
// as long as the number is the same and not 0.
uint64_t LookupGeneration();
bool DirectoryExists(std::string_view path);
// Copies a file, overwriting; a missing source is the file fault.
void CopyFileTo(std::string_view source, std::string_view destination);
// Deletes a file; a missing file is the file fault "File not found".
void DeleteFile(std::string_view path);
// Deletes a file if it is there.
void DeleteIfExists(std::string_view path);
// Makes a directory (and any missing parents); a directory that is there already is fine.
void MakeDirectory(std::string_view path);
// The names (not paths) of the files in a directory that match a wildcard pattern of '*'
// and '?', compared without regard to case, in name order.
std::vector<std::string> ListFiles(std::string_view directory, std::string_view pattern);
// The names of the subdirectories of a directory that match a wildcard pattern, in the same
// order as ListFiles. A directory that cannot be listed gives no names.
std::vector<std::string> ListDirectories(std::string_view directory, std::string_view pattern);
// Copies a file so that a reader never sees the copy half written: a temporary file beside the
// destination, then a rename. A missing source is the file fault; a destination that cannot be
// written is the fault "Cannot write file".
void CopyFileAtomically(std::string_view source, std::string_view destination);
// Renames a file, replacing the destination.
void RenameFile(std::string_view from, std::string_view to);
// True when a wildcard pattern matches a name, without regard to case.
bool WildcardMatch(std::string_view pattern, std::string_view name);
// True if a directory listing of the path's first two characters can be made.
bool DriveReady(std::string_view path);
// Appends a '\' when the text does not end in a separator.
std::string WithSeparator(std::string_view directory);

}  // namespace tvx
