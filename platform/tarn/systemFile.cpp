// The system's file calls for text files. Every descriptor closes by itself when another program is
// started, and no terminal becomes the process's own.

#include "tarn/systemFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tarn {
namespace {

/// Repeats a call that a signal interrupted.
template <class Call>
auto uninterrupted(Call call) noexcept {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) {
            return result;
        }
    }
}

} // namespace

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : number_{std::exchange(other.number_, -1)} {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    FileDescriptor taken{std::move(other)};
    std::swap(number_, taken.number_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    close();
}

bool FileDescriptor::close() noexcept {
    // After an interruption the descriptor is gone all the same; closing again could hit another.
    return isOpen() && (::close(std::exchange(number_, -1)) == 0 || errno == EINTR);
}

FileDescriptor openFile(const char* path, int flags, mode_t mode) noexcept {
    return FileDescriptor{
        uninterrupted([=]() noexcept { return ::open(path, flags | O_CLOEXEC | O_NOCTTY, mode); })};
}

ssize_t readSome(int file, char* to, std::size_t size) noexcept {
    return uninterrupted([=]() noexcept { return ::read(file, to, size); });
}

bool writeWhole(int file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([=]() noexcept { return ::write(file, bytes.data(), bytes.size()); });
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool flushFile(int file) noexcept {
    const bool flushed = uninterrupted([=]() noexcept { return fsync(file); }) == 0;
    return flushed || errno == EINVAL || errno == EROFS || errno == ENOTSUP;
}

bool flushFolder(const char* path) noexcept {
    const FileDescriptor folder = openFile(path, O_RDONLY | O_DIRECTORY);
    return folder.isOpen() ? flushFile(folder.get()) : errno == EACCES;
}

bool copyPermissions(int file, const struct stat& other) noexcept {
    struct stat fresh {};
    if (fstat(file, &fresh) != 0) {
        return false;
    }
    const bool foreign = fresh.st_uid != other.st_uid || fresh.st_gid != other.st_gid;
    const bool given = !foreign || fchown(file, other.st_uid, other.st_gid) == 0;
    // A file that stays with another owner must not carry that owner's set-id bits.
    const mode_t wanted = other.st_mode & (given ? 07777 : 0777);
    // Where all files have the same permissions, the system may refuse to set any.
    return fchmod(file, wanted) == 0 || (fresh.st_mode & 07777) == wanted;
}

} // namespace Tarn
