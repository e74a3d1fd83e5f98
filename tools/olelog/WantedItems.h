#pragma once

#include "containerTasks.h"
#include "tableFile.h"
#include "tarn/Cookie.h"
#include "tarn/CookieSet.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

/// Items that a person asks for: cookies one by one, and those of a table's rows.
class WantedItems {
public:
    /// Takes the cookies; says which text is none, and then returns false.
    bool takeArguments(const std::vector<std::string>& texts);
    /// Takes those of the rows of a table, where one is named; the exit code where that cannot be
    /// done, which is said.
    std::optional<int> takeTable(const ItemSource& asked);

    /// Each once, in the order in which they came.
    [[nodiscard]] const CookieSet& cookies() const { return cookies_; }
    /// The first of some cookies, with the names that a table gives their items, behind a colon.
    [[nodiscard]] std::string behindColon(const CookieVec& cookies) const;
    /// Tells how many were asked for more than once.
    void tellRepeated() const;
    /// Findings where some were left out, as they stand for no item.
    [[nodiscard]] int exitCode() const;

private:
    bool takeCookie(const std::string& text, const std::string& place, std::string_view name = {});
    bool takeRows(const LoadedTable& loaded, const InputFile& file, ODBViewRep& rows);

    CookieSet cookies_;
    std::unordered_map<Cookie, std::string, CookieHash> names_; // of those that a table names
    unsigned repeated_ = 0;
    bool leftOut_ = false; // whether there were some of kind 'I'
};

/// Whether the request makes sense: something is asked for, and standard input only once. Says why
/// not; `doing` is what is to be done with the items, as "add".
bool asksForItems(const std::string& container, const ItemSource& items, std::string_view doing);
