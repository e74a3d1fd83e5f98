#pragma once

// The log that every benchmark works on: rows of 20 columns as a day's camera reports fill them,
// about 240 bytes each in a table file. The same rows each time; the first n are the same for any
// number of them.

#include "ole/oledb/DBFieldTypes.h"

#include <array>
#include <cstdint>
#include <string>

namespace bench {

/// What the identifier column holds. Both kinds are unique and rise from row to row, so a sort by
/// the column restores the order in which the rows were loaded.
enum class Identifier { InkNumber, Cookie };

enum class Form { Table, Ale, Csv };

struct Column {
    const char* title; ///< in the log and in the files
    const char* field; ///< the field of a table that an import puts it into
    DBFieldTypes::eType type;
};

constexpr std::size_t columnCount = 20;
extern const std::array<Column, columnCount> columns;
constexpr std::size_t identifierColumn = 13;

/// The cookie of a row in the workload that has cookies.
std::string cookieOfRow(unsigned row);

/// Makes the rows, one after the other.
class Workload {
public:
    using Row = std::array<std::string, columnCount>;

    explicit Workload(Identifier identifier) : identifier_{identifier} {}
    /// The next row, good until the next call.
    const Row& next();

private:
    [[nodiscard]] std::uint64_t random() noexcept;
    [[nodiscard]] unsigned below(unsigned n) noexcept;
    [[nodiscard]] bool chance(unsigned percent) noexcept { return below(100) < percent; }
    template <class List>
    [[nodiscard]] const char* oneOf(const List& list) noexcept;
    [[nodiscard]] std::string words(std::size_t longest);
    [[nodiscard]] std::string clipName();
    [[nodiscard]] std::string description();
    void nextSetup();
    void nextTake();
    void fillRolls();
    void fillTimes();

    Identifier identifier_;
    Row row_;
    std::uint64_t state_ = 1;
    unsigned made_ = 0;
    unsigned setup_ = 0;
    unsigned take_ = 0;
    unsigned takes_ = 0;
    unsigned cameras_ = 1;
    unsigned camera_ = 0;
    unsigned clip_ = 0;
    unsigned foot_ = 1000;
    unsigned start_ = 0;
    unsigned length_ = 0;
    unsigned clock_ = 0;
    std::string scene_;
    std::string date_;
    const char* place_ = "";
};

/// A file of the first `rows` rows, written when it is first asked for.
std::string workloadFile(Form form, unsigned rows, Identifier identifier = Identifier::InkNumber);

/// A path for what a step writes. Both lie in a folder of the memory file system where there is
/// one, which goes when the program ends; OLE_BENCH_FOLDER names one that stays, for several runs.
std::string outputFile(const std::string& name);

} // namespace bench
