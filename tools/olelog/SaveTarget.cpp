// Replacing a file whole: the new one is made beside it, and renamed over it.

#include "SaveTarget.h"

#include "files.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr int mostLinks = 40;

/// The place behind symbolic links, also where nothing is there yet; links in a circle stay.
std::string withoutLinks(std::string path) {
    struct stat there {};
    if (stat(path.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
        return path; // what a link to an open pipe says is no name
    }
    for (int i = 0; i < mostLinks; ++i) {
        std::string text(PATH_MAX, '\0');
        const ssize_t length = readlink(path.c_str(), text.data(), text.size());
        if (length < 0) {
            break;
        }
        text.resize(static_cast<std::size_t>(length));
        const std::size_t slash = path.rfind('/');
        const bool relative = text.front() != '/' && slash != std::string::npos;
        path.resize(relative ? slash + 1 : 0);
        path += text;
    }
    return path;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

int openTarget(const std::string& name) {
    return name == "-" ? dup(STDOUT_FILENO) : open(name.c_str(), O_WRONLY | O_CLOEXEC);
}

/// 0, or the number of the error that came.
int copyFile(const std::string& from, const std::string& to) {
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int target = openTarget(to);
    int error = source < 0 || target < 0 ? errno : copyAll(source, target);
    close(source);
    if (close(target) != 0 && error == 0) {
        error = errno;
    }
    return error == EPIPE ? 0 : error; // the reader has what it wanted
}

void flushFolder(const std::string& folder) {
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        fsync(file);
        close(file);
    }
}

/// Keeps other runs of the tool from replacing a file between a look at it and its replacement.
/// Where there is no such file, or its system has no locks, nothing is kept.
class ReplaceLock {
public:
    explicit ReplaceLock(const std::string& path)
        : file_{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)} {
        while (file_ >= 0 && flock(file_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~ReplaceLock() {
        if (file_ >= 0) {
            close(file_);
        }
    }
    ReplaceLock(const ReplaceLock&) = delete;
    ReplaceLock& operator=(const ReplaceLock&) = delete;

private:
    int file_;
};

bool isSame(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

SaveTarget::SaveTarget(const std::string& name)
    : name_{name}, path_{name == "-" ? name : withoutLinks(name)}, exists_{name != "-" &&
                                                                           stat(path_.c_str(),
                                                                                &status_) == 0},
      error_{exists_ || name == "-" || errno == ENOENT ? 0 : errno} {}

bool SaveTarget::isStream() const {
    return name_ == "-" || (exists_ && !S_ISREG(status_.st_mode) && !S_ISDIR(status_.st_mode));
}

mode_t SaveTarget::mode() const {
    return exists_ ? status_.st_mode & mode_t{07777} : usualMode();
}

int SaveTarget::whyNotWritable() const {
    if (!exists_ || isStream()) {
        return error_;
    }
    if (S_ISDIR(status_.st_mode)) {
        return EISDIR;
    }
    return faccessat(AT_FDCWD, path_.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

std::optional<TemporaryFile> SaveTarget::makeSibling() const {
    return isStream() ? TemporaryFile::anywhere() : TemporaryFile::inFolder(folderOf(path_));
}

int SaveTarget::take(TemporaryFile& written) const {
    if (isStream()) {
        return copyFile(written.path(), path_);
    }
    const ReplaceLock lock{path_};
    return isAsItWas() ? replaceBy(written) : changedMeanwhile;
}

bool SaveTarget::isAsItWas() const {
    struct stat now {};
    if (stat(path_.c_str(), &now) != 0) {
        return !exists_;
    }
    return exists_ && now.st_dev == status_.st_dev && now.st_ino == status_.st_ino &&
           now.st_size == status_.st_size && isSame(now.st_mtim, status_.st_mtim);
}

int SaveTarget::replaceBy(TemporaryFile& written) const {
    const bool owned =
        !exists_ || chown(written.path().c_str(), status_.st_uid, status_.st_gid) == 0;
    // A file that stays ours must not carry the set-id bits of another owner's.
    const mode_t wanted = mode() & (owned ? 07777 : 0777);
    if (chmod(written.path().c_str(), wanted) != 0 || !written.moveTo(path_)) {
        return errno;
    }
    flushFolder(folderOf(path_));
    return 0;
}
