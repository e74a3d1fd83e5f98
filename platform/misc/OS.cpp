// Memory and files, as the operating system gives them.
//
// Two processes may move a file to the same place at the same moment, so a move that must not
// replace leaves the test for an existing file to the system where the file system can do both in
// one step, and is a new link before the old name goes where it cannot.

#include "misc/OS.h"

#include "tarn/StringFunctions.h"
#include "tarn/systemFile.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t largest = std::numeric_limits<std::ptrdiff_t>::max();

/// Moves by a second name, which the system refuses to make over an existing file.
bool moveByLink(const char* from, const char* to) noexcept {
    if (link(from, to) == 0) {
        if (unlink(from) == 0) {
            return true;
        }
        unlink(to); // a move that fails leaves everything as it was
        return false;
    }
    if (errno == EEXIST) {
        return false;
    }
    // Folders, and some file systems, have no second names: look first, then move.
    struct stat found {};
    return lstat(to, &found) != 0 && errno == ENOENT && std::rename(from, to) == 0;
}

bool moveWithoutReplacing(const char* from, const char* to) noexcept {
#if defined(RENAME_NOREPLACE)
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) { // these two: this system cannot, another way may
        return false;
    }
#endif
    return moveByLink(from, to);
}

} // namespace

namespace Tarn {

void* OperatingSystem::reallocate(void* block, std::size_t bytes) {
    if (bytes == 0) {
        std::free(block);
        return nullptr;
    }
    void* const resized = bytes <= largest ? std::realloc(block, bytes) : nullptr;
    if (!resized) {
        throw std::bad_alloc{};
    }
    return resized;
}

bool OperatingSystem::removeFile(const LightweightString<wchar_t>& path) noexcept {
    try {
        return unlink(pathToBytes(path).c_str()) == 0;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool OperatingSystem::isRegularFile(const LightweightString<wchar_t>& path) {
    struct stat found {};
    return stat(pathToBytes(path).c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

bool OperatingSystem::copyPermissions(const LightweightString<wchar_t>& from,
                                      const LightweightString<wchar_t>& to) {
    struct stat model {};
    const FileDescriptor file = openFile(pathToBytes(to).c_str(), O_RDONLY);
    return file.isOpen() && stat(pathToBytes(from).c_str(), &model) == 0 &&
           Tarn::copyPermissions(file.get(), model);
}

bool OperatingSystem::moveFile(const LightweightString<wchar_t>& from,
                               const LightweightString<wchar_t>& to, int replace) noexcept {
    try {
        const LightweightString<char> source = pathToBytes(from);
        const LightweightString<char> target = pathToBytes(to);
        return replace == 0 ? moveWithoutReplacing(source.c_str(), target.c_str())
                            : std::rename(source.c_str(), target.c_str()) == 0;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace Tarn

Tarn::OperatingSystem& OS() noexcept {
    static Tarn::OperatingSystem system;
    return system;
}
