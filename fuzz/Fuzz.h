#pragma once

// What every fuzzer shares: libraries' messages swallowed, files in a folder that is kept from one
// input to the next. Checks are those of GoogleTest; a failed one ends the program.

#include "MemoryCheck.h"
#include "support/Captured.h"
#include "support/Random.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

/// Each fuzzer defines this one: what holds for any input.
void fuzz(std::string_view input);

/// The folder of the files that a fuzzer reads and writes.
inline const TemporaryFolder& files() {
    static const TemporaryFolder folder;
    return folder;
}

inline LightweightString<wchar_t> written(const std::string& name, std::string_view bytes) {
    files().write(name, std::string{bytes});
    return files().wide(name);
}

inline std::unique_ptr<oledb> tableOfFields(const Texts& names) {
    Columns columns;
    for (const std::string& name : names) {
        columns.emplace_back(name.c_str());
    }
    return makeTable(columns);
}
