#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class Output;

/// A column of a table on the terminal.
struct TableColumn {
    std::string title;
    bool isText = true; ///< may be cut where room is short; others are printed whole or not at all
    bool toRight = false; ///< numbers stand at the right edge
};

/// Rows of values under titles, each column as wide as its widest value, or cut to fit a terminal.
class AlignedTable {
public:
    /// The value of a cell, as it stands in the data; good until the next call.
    using Cell = std::function<std::string_view(std::size_t row, std::size_t col)>;

    /// Measures every cell.
    AlignedTable(const std::vector<TableColumn>& columns, std::size_t rows, Cell cell);

    /// Makes the table at most `width` places wide: long texts are cut first, then columns are left
    /// out from the right. Returns the titles of those left out.
    std::vector<std::string> fitInto(std::size_t width);
    /// Tells whether a row is to stand out where colours may be used.
    using IsMarked = std::function<bool(std::size_t row)>;

    /// Prints titles, a line and the rows. Where it is styled the titles are bold, and marked rows
    /// have a colour.
    void print(Output& out, bool styled, const IsMarked& isMarked = {}) const;

private:
    struct Column {
        std::string title;
        bool toRight;
        std::size_t whole; ///< the widest of values and title
        std::size_t least; ///< cut as far as it can be
        std::size_t width; ///< as it is printed
    };

    [[nodiscard]] std::size_t columnsThatFit(std::size_t width) const;
    void shareRoom(std::size_t width);
    [[nodiscard]] std::string lineOf(std::size_t row) const;
    void appendCell(std::string& line, std::size_t col, std::string_view shownText) const;

    std::vector<Column> columns_;
    std::size_t rows_;
    Cell cell_;
};

/// Prints rows of texts under titles, as wide as the terminal allows; returns the titles of the
/// columns that were left out for want of room.
std::vector<std::string> printTexts(Output& out, const std::vector<TableColumn>& titles,
                                    const std::vector<std::vector<std::string>>& rows);
