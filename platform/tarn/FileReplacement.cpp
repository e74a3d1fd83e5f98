// Replacing a file whole or not at all. The order of the steps is what makes it safe: write, flush,
// close, each checked, then rename, then flush the folder that holds the name.

#include "tarn/FileReplacement.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tarn {
namespace {

constexpr int mostLinks = 40; // as many as the system itself follows
constexpr int mostNames = 100;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

/// What a symbolic link says; nothing for other files.
std::optional<std::string> linkText(const std::string& path) {
    std::string text(256, '\0');
    for (;;) {
        const ssize_t length = readlink(path.c_str(), text.data(), text.size());
        if (length < 0) {
            return std::nullopt;
        }
        if (static_cast<std::size_t>(length) < text.size()) {
            text.resize(static_cast<std::size_t>(length));
            return text;
        }
        text.resize(text.size() * 2);
    }
}

bool leadsToDevice(const std::string& path) noexcept {
    struct stat there {};
    return stat(path.c_str(), &there) == 0 && !S_ISREG(there.st_mode) && !S_ISDIR(there.st_mode);
}

/// The path behind symbolic links, also where nothing is there yet; empty for links in a circle.
std::string withoutLinks(std::string path) {
    if (leadsToDevice(path)) {
        return path; // what a link to an open pipe says is no name
    }
    for (int followed = 0; followed <= mostLinks; ++followed) {
        const auto text = linkText(path);
        if (!text) {
            return path;
        }
        const bool absolute = !text->empty() && text->front() == '/';
        path = absolute ? *text : folderOf(path) + *text;
    }
    return {};
}

bool sameFile(const struct stat& a, const struct stat& b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool leadsTo(const std::string& path, const struct stat& status) noexcept {
    struct stat there {};
    return stat(path.c_str(), &there) == 0 && sameFile(status, there);
}

/// A name that is hardly taken; what is left to chance, the exclusive opening finds out. It does
/// not end in ".tmp", a name that the saving of containers uses.
std::string siblingName() {
    static std::atomic<unsigned> calls{0};
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    char name[64];
    std::snprintf(name, sizeof(name), ".save-%lx-%x-%llx", static_cast<unsigned long>(getpid()),
                  ++calls, static_cast<unsigned long long>(ticks));
    return name;
}

} // namespace

FileReplacement::FileReplacement(const char* path, bool flush) : flush_{flush}, ok_{open(path)} {}

FileReplacement::~FileReplacement() {
    if (!sibling_.empty()) {
        unlink(sibling_.c_str());
    }
}

bool FileReplacement::open(const char* path) {
    struct stat status {};
    if (stat(path, &status) == 0) {
        return openExisting(path, status);
    }
    if (errno != ENOENT) {
        return false;
    }
    setTarget(withoutLinks(path));
    return !target_.empty() && openSibling(0666); // less what the user's mask takes away
}

bool FileReplacement::openExisting(const char* path, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        file_ = openFile(path, O_WRONLY); // fails for a folder
        return file_.isOpen();
    }
    setTarget(withoutLinks(path));
    if (target_ != path && !leadsTo(target_, status)) {
        return false;
    }
    if (faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) {
        return false;
    }
    return openSibling(0600) && copyPermissions(file_.get(), status);
}

void FileReplacement::setTarget(std::string target) {
    target_ = std::move(target);
    folder_ = folderOf(target_);
}

bool FileReplacement::openSibling(mode_t mode) {
    for (int i = 0; i < mostNames; ++i) {
        std::string path = folder_ + siblingName();
        file_ = openFile(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode);
        if (file_.isOpen()) {
            sibling_ = std::move(path);
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

void FileReplacement::write(std::string_view bytes) noexcept {
    ok_ = ok_ && writeWhole(file_.get(), bytes);
}

bool FileReplacement::commit() noexcept {
    ok_ = ok_ && (!flush_ || flushFile(file_.get()));
    ok_ = file_.close() && ok_;
    if (sibling_.empty()) {
        return ok_;
    }
    return ok_ && putInPlace();
}

bool FileReplacement::putInPlace() noexcept {
    if (std::rename(sibling_.c_str(), target_.c_str()) != 0) {
        return false;
    }
    sibling_.clear();
    return !flush_ || flushFolder(folder_.c_str());
}

} // namespace Tarn
