// The workload as files: the folder they lie in, and the three forms.

#include "Workload.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace bench {

namespace {

namespace fs = std::filesystem;

class Folder {
public:
    Folder() {
        const char* const given = std::getenv("OLE_BENCH_FOLDER");
        if (given) {
            path_ = given;
            return;
        }
        std::error_code failed;
        const fs::path memory{"/dev/shm"};
        const fs::path parent =
            fs::is_directory(memory, failed) ? memory : fs::temp_directory_path();
        path_ = parent / ("ole-bench-" + std::to_string(getpid()));
        fs::create_directory(path_);
        own_ = true;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        if (own_) {
            fs::remove_all(path_, ignored);
        }
    }
    [[nodiscard]] const fs::path& path() const noexcept { return path_; }

private:
    fs::path path_;
    bool own_ = false;
};

const fs::path& folder() {
    static const Folder theOne;
    return theOne.path();
}

std::string quoted(const std::string& text) {
    std::string result{'"'};
    for (const char c : text) {
        result.append(c == '"' ? 2 : 1, c);
    }
    return result += '"';
}

std::string withLineFeedsAs(std::string text, const char* replacement) {
    const std::size_t at = text.find('\n');
    return at == std::string::npos ? text : text.replace(at, 1, replacement);
}

std::string asCsv(const std::string& text) {
    return text.find_first_of(",\"\n") == std::string::npos ? text : quoted(text);
}

std::string asTable(const std::string& text) {
    return withLineFeedsAs(quoted(text), "\\n");
}

std::string asAle(const std::string& text) {
    return withLineFeedsAs(text, " ");
}

/// A line of something of every column.
template <class TextOf>
std::string joined(char separator, const char* lineEnd, TextOf textOf) {
    std::string line;
    for (std::size_t i = 0; i < columnCount; ++i) {
        line += textOf(i);
        line += separator;
    }
    line.pop_back();
    return line += lineEnd;
}

std::string heading(Form form, Identifier identifier) {
    const auto title = [identifier](std::size_t i) {
        const bool cookie = i == identifierColumn && identifier == Identifier::Cookie;
        return std::string{cookie ? "cookie" : columns[i].title};
    };
    if (form == Form::Csv) {
        return joined(',', "\n", title);
    }
    if (form == Form::Ale) {
        return "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nFPS\t24\n\nColumn\n" +
               joined('\t', "\n", title) + "Data\n";
    }
    // Readers only count the widths.
    return "\"OLEDB:Rev 1\"\r\n\"Owner:edit suite 2\"\r\n\"OLEDB\"\r\n" +
           joined(',', "\r\n", [](std::size_t) { return "\"32\""; }) +
           joined(',', "\r\n",
                  [](std::size_t i) {
                      return quoted(oledb_fieldtype_to_string(columns[i].type).c_str());
                  }) +
           joined(',', "\r\n", [&](std::size_t i) { return quoted(title(i)); });
}

std::string line(Form form, const Workload::Row& row) {
    switch (form) {
    case Form::Table:
        return joined(',', "\r\n", [&](std::size_t i) { return asTable(row[i]); });
    case Form::Ale:
        return joined('\t', "\n", [&](std::size_t i) { return asAle(row[i]); });
    default:
        return joined(',', "\n", [&](std::size_t i) { return asCsv(row[i]); });
    }
}

void write(const fs::path& path, Form form, unsigned rows, Identifier identifier) {
    Workload workload{identifier};
    std::ofstream file{path, std::ios::binary};
    file << heading(form, identifier);
    for (unsigned i = 0; i < rows; ++i) {
        file << line(form, workload.next());
    }
    file.close();
    if (!file) {
        throw std::runtime_error{"cannot write " + path.string()};
    }
}

} // namespace

std::string workloadFile(Form form, unsigned rows, Identifier identifier) {
    const char* const ending = form == Form::Table ? ".odb" : form == Form::Ale ? ".ale" : ".csv";
    const char* const kind = identifier == Identifier::Cookie ? "cookies-" : "log-";
    const fs::path path = folder() / (kind + std::to_string(rows) + ending);
    if (!fs::exists(path)) {
        const fs::path part =
            path.string() + ".part"; // a run that is cut short leaves no half file
        write(part, form, rows, identifier);
        fs::rename(part, path);
    }
    return path.string();
}

std::string outputFile(const std::string& name) {
    return (folder() / name).string();
}

} // namespace bench
