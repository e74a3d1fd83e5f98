// SQLite, used as its manual advises for bulk work: no journal, everything in memory, one
// transaction, statements prepared once, texts bound where they stand.

#include "Sqlite.h"

#include <cstring>
#include <fstream>
#include <sqlite3.h>
#include <stdexcept>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 20U;

[[noreturn]] void fail(sqlite3* db) {
    throw std::runtime_error{std::string{"SQLite: "} + sqlite3_errmsg(db)};
}

std::string contentsOf(const std::string& path) {
    std::ifstream file{path, std::ios::binary | std::ios::ate};
    std::string text(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file) {
        throw std::runtime_error{"cannot read " + path};
    }
    return text;
}

/// Cuts RFC 4180 text into values in place: each is a slice of the buffer, doubled quotes undone
/// where they stand.
class CsvReader {
public:
    explicit CsvReader(std::string& text) : at_{text.data()}, end_{at_ + text.size()} {}

    /// The values of the next record; false at the end.
    bool next(std::vector<std::string_view>& values) {
        values.clear();
        if (at_ == end_) {
            return false;
        }
        do {
            values.push_back(at_ != end_ && *at_ == '"' ? quoted() : plain());
        } while (separator());
        return true;
    }

private:
    std::string_view plain() {
        char* const start = at_;
        while (at_ != end_ && *at_ != ',' && *at_ != '\n' && *at_ != '\r') {
            ++at_;
        }
        return {start, static_cast<std::size_t>(at_ - start)};
    }
    std::string_view quoted() {
        char* const start = ++at_;
        char* to = start;
        for (;;) {
            auto* const quote =
                static_cast<char*>(std::memchr(at_, '"', static_cast<std::size_t>(end_ - at_)));
            if (!quote) {
                throw std::runtime_error{"CSV: a quote is not closed"};
            }
            const auto size = static_cast<std::size_t>(quote - at_);
            std::memmove(to, at_, size);
            to += size;
            at_ = quote + 1;
            if (at_ == end_ || *at_ != '"') {
                return {start, static_cast<std::size_t>(to - start)};
            }
            *to++ = *at_++;
        }
    }
    /// Passes what ends a value; true where another one follows in the record.
    bool separator() {
        if (at_ != end_ && *at_ == ',') {
            ++at_;
            return true;
        }
        at_ += at_ != end_ && *at_ == '\r' ? 1 : 0;
        at_ += at_ != end_ && *at_ == '\n' ? 1 : 0;
        return false;
    }

    char* at_;
    char* end_;
};

std::string createStatement(const std::vector<std::string_view>& names) {
    std::string sql{"CREATE TABLE log("};
    for (const std::string_view name : names) {
        sql.append("\"").append(name).append("\" TEXT,");
    }
    sql.back() = ')';
    return sql;
}

std::string insertStatement(std::size_t values) {
    std::string sql{"INSERT INTO log VALUES("};
    for (std::size_t i = 0; i < values; ++i) {
        sql += "?,";
    }
    sql.back() = ')';
    return sql;
}

/// The position of the first character that `is` wanted, the size for none.
template <class Is>
std::size_t firstThat(std::string_view text, Is is) {
    std::size_t at = 0;
    while (at < text.size() && !is(text[at])) {
        ++at;
    }
    return at;
}

void appendQuoted(std::string& out, std::string_view text, const char* lineFeed) {
    out += '"';
    for (;;) {
        const std::size_t at = firstThat(text, [](char c) { return c == '"' || c == '\n'; });
        out += text.substr(0, at);
        if (at == text.size()) {
            out += '"';
            return;
        }
        out += text[at] == '"' ? "\"\"" : lineFeed;
        text.remove_prefix(at + 1);
    }
}

} // namespace

void Sqlite::Close::operator()(sqlite3* db) const noexcept {
    sqlite3_close(db);
}

Sqlite::Sqlite() {
    sqlite3* db = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(":memory:", &db, flags, nullptr);
    db_.reset(db);
    if (result != SQLITE_OK) {
        fail(db);
    }
    run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA temp_store=MEMORY;"
        "PRAGMA locking_mode=EXCLUSIVE; PRAGMA cache_size=-1048576");
}

void Sqlite::run(const char* sql) {
    if (sqlite3_exec(db_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(db_.get());
    }
}

Sqlite::Statement Sqlite::prepare(const char* sql) {
    return {db_.get(), sql};
}

unsigned Sqlite::rows() {
    Statement count = prepare("SELECT count(*) FROM log");
    count.step();
    return static_cast<unsigned>(count.number(0));
}

Sqlite Sqlite::withCsv(const std::string& path) {
    Sqlite db;
    std::string text = contentsOf(path);
    CsvReader reader{text};
    std::vector<std::string_view> values;
    if (!reader.next(values)) {
        throw std::runtime_error{"no line of names in " + path};
    }
    db.run(createStatement(values).c_str());
    Statement insert = db.prepare(insertStatement(values.size()).c_str());
    db.run("BEGIN");
    while (reader.next(values)) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            insert.bind(static_cast<int>(i) + 1, values[i]);
        }
        insert.step();
    }
    db.run("COMMIT");
    return db;
}

template <class Append>
void Sqlite::writeRows(const std::string& path, Append append) {
    std::ofstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0); // the pieces are large
    file.open(path, std::ios::binary);
    Statement all = prepare("SELECT * FROM log");
    const int values = all.columnCount();
    std::string piece;
    const auto flush = [&] {
        file.write(piece.data(), static_cast<std::streamsize>(piece.size()));
        piece.clear();
    };
    while (all.step()) {
        for (int i = 0; i < values; ++i) {
            append(piece, all.text(i));
            piece += ',';
        }
        piece.back() = '\r';
        piece += '\n';
        if (piece.size() > pieceSize) {
            flush();
        }
    }
    flush();
    if (!file) {
        throw std::runtime_error{"cannot write " + path};
    }
}

void Sqlite::writeTable(const std::string& path) {
    writeRows(path,
              [](std::string& out, std::string_view text) { appendQuoted(out, text, "\\n"); });
}

void Sqlite::writeCsv(const std::string& path) {
    writeRows(path, [](std::string& out, std::string_view text) {
        const auto special = [](char c) { return c == ',' || c == '"' || c == '\r' || c == '\n'; };
        if (firstThat(text, special) == text.size()) {
            out += text;
            return;
        }
        appendQuoted(out, text, "\n");
    });
}

void Sqlite::Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Sqlite::Statement::Statement(sqlite3* db, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
    statement_.reset(statement);
    if (result != SQLITE_OK) {
        fail(db);
    }
}

void Sqlite::Statement::bind(int parameter, std::string_view text) {
    sqlite3_bind_text(statement_.get(), parameter, text.data(), static_cast<int>(text.size()),
                      SQLITE_STATIC);
}

bool Sqlite::Statement::step() {
    const int result = sqlite3_step(statement_.get());
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        fail(sqlite3_db_handle(statement_.get()));
    }
    sqlite3_reset(statement_.get());
    return false;
}

std::int64_t Sqlite::Statement::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string_view Sqlite::Statement::text(int column) const {
    const auto* const text = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return {text ? reinterpret_cast<const char*>(text) : "", static_cast<std::size_t>(size)};
}

int Sqlite::Statement::columnCount() const {
    return sqlite3_column_count(statement_.get());
}

} // namespace bench
