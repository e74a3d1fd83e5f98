#pragma once

// As much of SQLite as the benchmarks need: a database in memory, set up for speed, prepared
// statements, and the log as a table `log` of text columns. A failure throws std::runtime_error.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

class Sqlite {
public:
    class Statement;

    Sqlite();
    /// Reads an RFC 4180 file with a line of names into `log`, in one transaction.
    static Sqlite withCsv(const std::string& path);

    void run(const char* sql);
    [[nodiscard]] Statement prepare(const char* sql);
    [[nodiscard]] unsigned rows();

    /// Write every row in load order: each value between quotes and line feeds as \n, with the
    /// table file's heading lines left out; or as RFC 4180. Both with CR LF.
    void writeTable(const std::string& path);
    void writeCsv(const std::string& path);

private:
    struct Close {
        void operator()(sqlite3* db) const noexcept;
    };
    template <class Append>
    void writeRows(const std::string& path, Append append);

    std::unique_ptr<sqlite3, Close> db_;
};

class Sqlite::Statement {
public:
    Statement(sqlite3* db, const char* sql);

    /// Binds a text that stays where it is until the statement is bound anew. From 1 on.
    void bind(int parameter, std::string_view text);
    /// Goes to the next row; false behind the last one, and the statement can be run again.
    bool step();
    [[nodiscard]] std::int64_t number(int column) const;
    [[nodiscard]] std::string_view text(int column) const;
    [[nodiscard]] int columnCount() const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

} // namespace bench
