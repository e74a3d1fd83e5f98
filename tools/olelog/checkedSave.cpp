// Saving without loss. The table file cannot hold everything that a table can: lines end at 4095
// bytes, some bytes change, a first value "OLEDB" is taken for a header. What cannot be loaded is
// not saved, what changes is told.

#include "checkedSave.h"

#include "Command.h"
#include "files.h"
#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "ole/oledb/oledb.h"
#include "Output.h"
#include "shownText.h"
#include "tableFile.h"
#include "tarn/numbers.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t longestLine = 4095;
constexpr std::size_t mostTold = 20;
constexpr int mostLinks = 40;
constexpr int greatestTag = 255;

std::string_view valueOf(const oledb& table, unsigned row, unsigned col) {
    const char* const value = table.get_field(row, static_cast<int>(col));
    return value ? value : "";
}

/// Tells the first findings of a kind, and at the end how many more there were.
class Findings {
public:
    void tell(std::string_view text) {
        if (++count_ <= mostTold) {
            sayLine(text);
        }
    }
    void close() const {
        if (count_ > mostTold) {
            say("... and {} more of this kind", count_ - mostTold);
        }
    }
    [[nodiscard]] bool any() const { return count_ != 0; }

private:
    std::size_t count_ = 0;
};

// -- what cannot be saved

/// Bytes of a row's line in a table file.
std::size_t lineBytes(const dbrecord& row) {
    std::size_t bytes = row.nfields() == 0 ? 0 : row.nfields() - std::size_t{1};
    for (unsigned short i = 0; i < row.nfields(); ++i) {
        bytes += 2;
        for (const char c : row.getField(i).view()) {
            const bool takesTwo = c == '"' || c == '\n';
            bytes += c == '\r' ? 0U : takesTwo ? 2U : 1U;
        }
    }
    return bytes;
}

std::string whyUnsavable(const dbrecord& row) {
    const std::size_t bytes = lineBytes(row);
    if (bytes > longestLine) {
        return fmt::format("the row needs a line of {} bytes, and a table file's lines end at {}; "
                           "shorten its values or import fewer columns",
                           bytes, longestLine);
    }
    if (Tarn::trimmed(row.getField(0).view()) == "OLEDB") {
        return "the row's first value is \"OLEDB\", which in a table file begins a header; change "
               "that value";
    }
    return {};
}

bool tellUnsavableRows(const oledb& table, const RowOrigins& origins) {
    Findings findings;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        const std::string why = whyUnsavable(*table.get_record(row));
        if (!why.empty()) {
            findings.tell(origins.of(row) + ": " + why);
        }
    }
    findings.close();
    return findings.any();
}

/// Why a table that was loaded back is not the one that was saved; empty where it is.
std::string whyNotTheSame(oledb& saved, oledb& loaded) {
    dberror error;
    if (loaded.get_valid() == 0) {
        return "it cannot be loaded";
    }
    if (loaded.get_num_fields() != saved.get_num_fields()) {
        return fmt::format("{} of {} columns come back", loaded.get_num_fields(),
                           saved.get_num_fields());
    }
    for (unsigned col = 0; col < saved.get_num_fields(); ++col) {
        if (std::string_view{saved.get_fieldname(col)} != loaded.get_fieldname(col) ||
            saved.get_field_type(col) != loaded.get_field_type(col)) {
            return fmt::format("the column {} comes back as {}", inQuotes(saved.get_fieldname(col)),
                               inQuotes(loaded.get_fieldname(col)));
        }
    }
    if (loaded.get_num_records() != saved.get_num_records() || loaded.read_error_info(error)) {
        return fmt::format("{} of {} rows come back", loaded.get_num_records(),
                           saved.get_num_records());
    }
    return {};
}

// -- what changes

/// What the format does to a value; a line feed would otherwise be printed like a backslash and n.
std::string_view whatHappens(std::string_view before, std::string_view after) {
    const auto lineFeeds = [](std::string_view text) {
        return std::count(text.begin(), text.end(), '\n');
    };
    if (lineFeeds(after) > lineFeeds(before)) {
        return " (backslash and n become a line feed)";
    }
    if (before.find('\r') != std::string_view::npos) {
        return " (carriage returns are dropped)";
    }
    return Tarn::trimmed(before) == after ? " (blanks at the ends are dropped)" : "";
}

std::string change(std::string_view before, std::string_view after) {
    return fmt::format("{} comes back from a table file as {}{}", inQuotes(before), inQuotes(after),
                       whatHappens(before, after));
}

void tellChangedParameters(const oledb& saved, const oledb& loaded, Findings& findings) {
    for (unsigned i = 0; i < saved.get_num_params(); ++i) {
        const std::string_view name = saved.get_param_name(i);
        const char* const value = loaded.get_param_val(saved.get_param_name(i));
        if (!value) {
            findings.tell(fmt::format("parameter {}: gets lost in a table file", inQuotes(name)));
        } else if (std::string_view{value} != saved.get_param_val(saved.get_param_name(i))) {
            findings.tell(fmt::format("parameter {}: {}", shown(name),
                                      change(saved.get_param_val(saved.get_param_name(i)), value)));
        }
    }
}

void tellChangedValues(oledb& saved, const oledb& loaded, const RowOrigins& origins,
                       Findings& findings) {
    for (unsigned row = 0; row < saved.get_num_records(); ++row) {
        for (unsigned col = 0; col < saved.get_num_fields(); ++col) {
            const std::string_view before = valueOf(saved, row, col);
            const std::string_view after = valueOf(loaded, row, col);
            if (before != after) {
                findings.tell(fmt::format("{}: {}: {}", origins.of(row), saved.get_fieldname(col),
                                          change(before, after)));
            }
        }
    }
}

bool tellChanges(oledb& saved, oledb& loaded, const RowOrigins& origins) {
    Findings findings;
    tellChangedParameters(saved, loaded, findings);
    tellChangedValues(saved, loaded, origins, findings);
    findings.close();
    return findings.any();
}

// -- where it goes

/// The place behind symbolic links, also where nothing is there yet; links in a circle stay.
std::string withoutLinks(std::string path) {
    for (int i = 0; i < mostLinks; ++i) {
        std::string text(PATH_MAX, '\0');
        const ssize_t length = readlink(path.c_str(), text.data(), text.size());
        if (length < 0) {
            break;
        }
        text.resize(static_cast<std::size_t>(length));
        const std::size_t slash = path.rfind('/');
        const bool relative = text.front() != '/' && slash != std::string::npos;
        path = relative ? path.substr(0, slash + 1) + text : text;
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

/// The file that a table is to be saved in.
class Target {
public:
    explicit Target(const std::string& name)
        : name_{name}, path_{name == "-" ? name : withoutLinks(name)} {
        exists_ = name != "-" && stat(path_.c_str(), &status_) == 0;
        error_ = exists_ || name == "-" || errno == ENOENT ? 0 : errno;
    }

    [[nodiscard]] const std::string& path() const { return path_; }
    /// Standard output, devices and pipes take bytes and cannot be replaced.
    [[nodiscard]] bool isStream() const {
        return name_ == "-" || (exists_ && !S_ISREG(status_.st_mode) && !S_ISDIR(status_.st_mode));
    }
    [[nodiscard]] mode_t mode() const {
        return exists_ ? status_.st_mode & mode_t{07777} : usualMode();
    }
    /// 0, or the number of the error that stands in the way of replacing it.
    [[nodiscard]] int whyNotReplaceable() const {
        if (!exists_ || isStream()) {
            return error_;
        }
        if (S_ISDIR(status_.st_mode)) {
            return EISDIR;
        }
        return faccessat(AT_FDCWD, path_.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
    }
    /// Gives a new file the owner of the old one, where the system lets us.
    void copyOwner(const std::string& fresh) const {
        if (exists_ && chown(fresh.c_str(), status_.st_uid, status_.st_gid) != 0) {
            return; // only the super-user can give files away; the file is ours then
        }
    }

private:
    std::string name_;
    std::string path_;
    struct stat status_ {};
    bool exists_ = false;
    int error_ = 0; // why it cannot even be looked at
};

int cannotWrite(const std::string& name, int error) {
    say("{}: cannot be written: {}; nothing was changed", name == "-" ? "standard output" : name,
        reasonText(error));
    return exitFailure;
}

/// Writes the table into a file; 0, or an error number. A table without rows cannot tell success
/// from failure here: that shows when it is loaded back.
int writeTable(oledb& table, const std::string& path) {
    const SignalPause pause; // the module writes through a file that we cannot remove
    const auto filename = table.get_filename();
    table.set_filename(modulePath(path));
    errno = 0;
    const int rows = table.save_text();
    const int error = errno;
    table.set_filename(filename);
    if (rows != 0 || table.get_num_records() == 0) {
        return 0;
    }
    return error == 0 ? EIO : error;
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

/// Puts the checked file in its place; 0, or an error number.
int putInPlace(TemporaryFile& written, const Target& target) {
    if (target.isStream()) {
        return copyFile(written.path(), target.path());
    }
    target.copyOwner(written.path());
    if (chmod(written.path().c_str(), target.mode()) != 0 || !written.moveTo(target.path())) {
        return errno;
    }
    flushFolder(folderOf(target.path()));
    return 0;
}

} // namespace

bool takeTagsFromColumn(oledb& table, const RowOrigins& origins) {
    const int found = table.get_fieldnum("Tag");
    const auto col = static_cast<unsigned>(found);
    Findings findings;
    for (unsigned row = 0; found >= 0 && row < table.get_num_records(); ++row) {
        const std::string text{valueOf(table, row, col)};
        const int tag = std::clamp(Tarn::parseInt(text.c_str()), 0, greatestTag);
        if (!text.empty() && text != std::to_string(tag)) {
            findings.tell(fmt::format("{}: Tag: {} is no tag, and the column \"Tag\" of a table "
                                      "file keeps nothing else",
                                      origins.of(row), inQuotes(text)));
        }
        table.set_tag(row, tag);
        table.set_field(row, col, tag); // as saving will; it counts for the length of the row
    }
    findings.close();
    return !findings.any();
}

int saveChecked(oledb& table, const std::string& target, const RowOrigins& origins) {
    const Target place{target};
    if (const int error = place.whyNotReplaceable()) {
        return cannotWrite(target, error);
    }
    if (tellUnsavableRows(table, origins)) {
        say("{}: not written", target == "-" ? "standard output" : target);
        return exitFailure;
    }
    auto written = place.isStream() ? TemporaryFile::anywhere()
                                    : TemporaryFile::inFolder(folderOf(place.path()));
    if (!written) {
        return cannotWrite(target, errno);
    }
    written->close();
    if (const int error = writeTable(table, written->path())) {
        return cannotWrite(target, error);
    }
    const std::unique_ptr<oledb> loaded = loadTableQuietly(written->path());
    if (const std::string why = whyNotTheSame(table, *loaded); !why.empty()) {
        say("{}: not written, for the table would not come back whole: {}", target, why);
        return exitFailure;
    }
    const bool changed = tellChanges(table, *loaded, origins);
    if (const int error = putInPlace(*written, place)) {
        return cannotWrite(target, error);
    }
    return changed ? exitFindings : exitFine;
}
