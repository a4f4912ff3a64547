#pragma once
// The C library's reads and writes of a file without the locking of the handle: the run has one
// thread. Where the library has no unlocked forms, the locked ones do the same work.
#include <cstddef>
#include <cstdio>

namespace tvx {

inline size_t ReadUnlocked(void* data, size_t size, std::FILE* file) {
#if defined(__GLIBC__)
    return fread_unlocked(data, 1, size, file);
#else
    return std::fread(data, 1, size, file);
#endif
}

inline size_t WriteUnlocked(const void* data, size_t size, std::FILE* file) {
#if defined(__GLIBC__)
    return fwrite_unlocked(data, 1, size, file);
#else
    return std::fwrite(data, 1, size, file);
#endif
}

inline bool FailedUnlocked(std::FILE* file) {
#if defined(__GLIBC__)
    return ferror_unlocked(file) != 0;
#else
    return std::ferror(file) != 0;
#endif
}

inline void ClearUnlocked(std::FILE* file) {
#if defined(__GLIBC__)
    clearerr_unlocked(file);
#else
    std::clearerr(file);
#endif
}

}  // namespace tvx
