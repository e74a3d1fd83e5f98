// The system's file calls for text files. Every descriptor closes by itself when another program is
// started, and no terminal becomes the process's own.

#include "tarn/systemFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tarn {
namespace {

constexpr std::size_t firstPiece = std::size_t{64} * 1024;

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

/// Room for the whole file and one byte more, so that the end shows without growing.
std::size_t expectedSize(int file) noexcept {
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) {
        return firstPiece;
    }
    return static_cast<std::size_t>(status.st_size) + 1;
}

void resize(std::string& text, std::size_t size) {
    if (size > text.max_size()) {
        throw std::bad_alloc{};
    }
    text.resize(size);
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

bool readWhole(const char* path, std::string& contents) {
    const FileDescriptor file = openFile(path, O_RDONLY);
    if (!file.isOpen()) {
        return false;
    }
    resize(contents, expectedSize(file.get()));
    std::size_t used = 0;
    for (;;) {
        const ssize_t got = uninterrupted([&]() noexcept {
            return ::read(file.get(), contents.data() + used, contents.size() - used);
        });
        if (got <= 0) {
            contents.resize(used);
            return got == 0;
        }
        used += static_cast<std::size_t>(got);
        if (used == contents.size()) {
            resize(contents, 2 * used);
        }
    }
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
