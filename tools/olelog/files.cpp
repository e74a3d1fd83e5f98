// Files as the tool meets them: by path, as standard input, as pipes.

#include "files.h"

#include "messages.h"
#include "nearest.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t pieceBytes = 64 * std::size_t{1024};

/// An open file that closes by itself, unless it is standard input.
class OpenFile {
public:
    explicit OpenFile(const std::string& name)
        : number_{name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)} {}
    ~OpenFile() {
        if (number_ > STDIN_FILENO) {
            ::close(number_);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

/// 0, or the number of the error that stands in the way of reading.
int whyUnreadable(int file, struct stat& status) {
    if (file < 0 || fstat(file, &status) != 0) {
        return errno;
    }
    return S_ISDIR(status.st_mode) ? EISDIR : 0;
}

/// What a person can do about an error of the system, where that is not plain.
std::string_view advice(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return " (ask its owner to allow it, or use a copy in a folder of your own)";
    case EISDIR:
        return " (name a file in it)";
    case ENOSPC:
    case EDQUOT:
        return " (make room there, or write to another disk)";
    case EROFS:
        return " (write to another disk)";
    case EFBIG:
        return " (the limit for the size of files is reached; ulimit -f shows it)";
    default:
        return "";
    }
}

/// What helps a person who named a file that there is not: the folder that is missing, or the file
/// that was probably meant.
std::string hintForMissing(const std::string& name) {
    const std::filesystem::path path{name};
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    std::error_code failed;
    if (!std::filesystem::is_directory(folder, failed)) {
        return fmt::format("; there is no folder {}", folder.string());
    }
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry{folder, failed}, end; !failed && entry != end;
         entry.increment(failed)) {
        if (entry->is_regular_file(failed)) {
            names.push_back(entry->path().filename().string());
        }
    }
    const std::string nearest = nearestOf(path.filename().string(), names);
    return nearest.empty()
               ? ""
               : fmt::format("; did you mean {}?",
                             shown(path.has_parent_path() ? (folder / nearest).string() : nearest));
}

} // namespace

std::string reasonText(int error) {
    return error == 0 ? "unknown reason"
                      : std::generic_category().message(error).append(advice(error));
}

int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return 0;
}

int copyAll(int from, int to) {
    std::string piece(pieceBytes, '\0');
    for (;;) {
        const ssize_t got = ::read(from, piece.data(), piece.size());
        if (got == 0) {
            return 0;
        }
        if (got < 0 && errno != EINTR) {
            return errno;
        }
        const auto bytes = static_cast<std::size_t>(got < 0 ? 0 : got);
        if (const int error = writeAll(to, std::string_view{piece}.substr(0, bytes))) {
            return error;
        }
    }
}

LightweightString<wchar_t> modulePath(const std::string& path) {
    return pathFromBytes(path);
}

bool isSameFile(const std::string& input, const std::string& path) {
    struct stat in {};
    struct stat out {};
    if (path == "-" || stat(path.c_str(), &out) != 0) {
        return false;
    }
    const bool known = input == "-" ? fstat(STDIN_FILENO, &in) == 0 && S_ISREG(in.st_mode)
                                    : stat(input.c_str(), &in) == 0;
    return known && in.st_dev == out.st_dev && in.st_ino == out.st_ino;
}

std::optional<InputFile> InputFile::open(const std::string& name) {
    InputFile input;
    input.name_ = name == "-" ? "standard input" : name.empty() ? inQuotes(name) : name;
    input.path_ = name;
    if (name == "-" && isatty(STDIN_FILENO) != 0) {
        note("reading what is typed; control and D end it");
    }
    const OpenFile file{name};
    struct stat status {};
    if (const int error = whyUnreadable(file.number(), status)) {
        say("{}: cannot be read: {}{}", input.name_, reasonText(error),
            error == ENOENT ? hintForMissing(name) : "");
        return std::nullopt;
    }
    const bool readAgain = S_ISREG(status.st_mode) && name != "-";
    if (!readAgain && !input.takeCopy(file.number())) {
        return std::nullopt;
    }
    return input;
}

bool InputFile::takeCopy(int file) {
    auto copy = TemporaryFile::anywhere();
    const int error = copy ? copyAll(file, copy->file()) : errno;
    if (error != 0) {
        say("{}: cannot be read: {}", name_, reasonText(error));
        return false;
    }
    copy_.emplace(std::move(*copy));
    copy_->close();
    return true;
}
