// Layout of a table on a terminal.
//
// Every column has a width at which nothing is cut, and a least one. When the room is short, as
// many columns as fit with their least widths are kept, from the left; the room that is left goes
// to the cut ones, the narrowest first, so that one long text cannot starve the others.

#include "AlignedTable.h"

#include "Output.h"
#include "Progress.h"
#include "shownText.h"
#include "terminal.h"

#include <algorithm>
#include <fmt/color.h>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t leastText = 12; // a timecode or a short name is whole
constexpr std::size_t leastTitle = 8;

} // namespace

AlignedTable::AlignedTable(const std::vector<TableColumn>& columns, std::size_t rows, Cell cell)
    : rows_{rows}, cell_{std::move(cell)} {
    Progress progress{"laying out"};
    for (std::size_t col = 0; col < columns.size(); ++col) {
        std::size_t widest = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            progress.at(col * rows + row, columns.size() * rows);
            widest = std::max(widest, widthWhenShown(cell_(row, col)));
        }
        const TableColumn& column = columns[col];
        const std::size_t whole = std::max(widest, widthWhenShown(column.title));
        const std::size_t values = column.isText ? std::min(widest, leastText) : widest;
        const std::size_t least = std::min(whole, std::max(values, leastTitle));
        columns_.push_back({shown(column.title), column.toRight, whole, least, whole});
    }
}

std::size_t AlignedTable::columnsThatFit(std::size_t width) const {
    std::size_t used = 0;
    std::size_t fitting = 0;
    for (const Column& column : columns_) {
        used += column.least + (fitting == 0 ? 0 : gap);
        if (used > width) {
            break;
        }
        ++fitting;
    }
    return fitting;
}

std::vector<std::string> AlignedTable::fitInto(std::size_t width) {
    const auto kept = static_cast<std::ptrdiff_t>(std::max<std::size_t>(columnsThatFit(width), 1));
    std::vector<std::string> leftOut;
    if (columns_.empty()) {
        return leftOut;
    }
    for (auto column = columns_.begin() + kept; column < columns_.end(); ++column) {
        leftOut.push_back(column->title);
    }
    columns_.erase(columns_.begin() + kept, columns_.end());
    columns_.front().least = std::min(columns_.front().least, width);
    shareRoom(width);
    return leftOut;
}

void AlignedTable::shareRoom(std::size_t width) {
    std::size_t room = width - gap * (columns_.size() - 1);
    for (Column& column : columns_) {
        column.width = column.least;
        room -= column.least;
    }
    while (room > 0) {
        Column* narrowest = nullptr;
        for (Column& column : columns_) {
            const bool cut = column.width < column.whole;
            if (cut && (!narrowest || column.width < narrowest->width)) {
                narrowest = &column;
            }
        }
        if (!narrowest) {
            return;
        }
        ++narrowest->width;
        --room;
    }
}

void AlignedTable::appendCell(std::string& line, std::size_t col,
                              std::string_view shownText) const {
    const Column& column = columns_[col];
    const std::string text = cutToWidth(shownText, column.width);
    const std::string padding(column.width - displayWidth(text), ' ');
    line += col == 0 ? "" : std::string(gap, ' ');
    line += column.toRight ? padding + text : text;
    if (!column.toRight && col + 1 < columns_.size()) {
        line += padding;
    }
}

std::string AlignedTable::lineOf(std::size_t row) const {
    std::string line;
    for (std::size_t col = 0; col < columns_.size(); ++col) {
        appendCell(line, col, shown(cell_(row, col)));
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

void AlignedTable::print(Output& out, bool styled, const IsMarked& isMarked) const {
    std::string titles;
    std::string underline;
    for (std::size_t col = 0; col < columns_.size(); ++col) {
        appendCell(titles, col, columns_[col].title);
        underline +=
            (col == 0 ? "" : std::string(gap, ' ')) + std::string(columns_[col].width, '-');
    }
    const auto printLine = [&](const std::string& line, const fmt::text_style& style) {
        out.write((styled ? fmt::format(style, "{}", line) : line) + '\n');
    };
    printLine(titles, fmt::emphasis::bold);
    printLine(underline, fmt::emphasis::faint);
    for (std::size_t row = 0; row < rows_ && !out.isClosed(); ++row) {
        const bool stands = styled && isMarked && isMarked(row);
        printLine(lineOf(row), stands ? fmt::fg(fmt::terminal_color::green) : fmt::text_style{});
    }
}

std::vector<std::string> printTexts(Output& out, const std::vector<TableColumn>& titles,
                                    const std::vector<std::vector<std::string>>& rows) {
    AlignedTable table{titles, rows.size(), [&rows](std::size_t row, std::size_t col) {
                           return std::string_view{rows[row][col]};
                       }};
    const auto width = terminalWidth();
    auto leftOut = width ? table.fitInto(*width) : std::vector<std::string>{};
    table.print(out, mayStyleOutput());
    return leftOut;
}
