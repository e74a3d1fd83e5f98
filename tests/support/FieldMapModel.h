#pragma once

// Field maps as lists of texts, and their text form read step by step.

#include "ole/interchange/FieldMap.h"
#include "support/Tables.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <strings.h>

/// Entries, "+name" or, when hidden, "-name".
inline Texts entriesOf(const FieldMap& map) {
    Texts entries;
    for (int i = 0; i < map.count(); ++i) {
        entries.push_back((map.isVisible(i) ? "+" : "-") + std::string{map[i].c_str()});
    }
    return entries;
}

/// How a text is read, written down step by step.
inline Texts readInto(Texts entries, const std::string& text, const Texts& fields) {
    const auto append = [&](int field, bool visible) {
        const auto at = static_cast<std::size_t>(field);
        const auto isIt = [&](const auto& e) { return !strcasecmp(&e[1], fields[at].c_str()); };
        if (at < fields.size() && std::none_of(entries.begin(), entries.end(), isIt)) {
            entries.push_back((visible ? "+" : "-") + fields[at]);
        }
    };
    for (std::size_t p = 0, next = 0; p < text.size(); p = next) {
        int number = 0;
        if (std::sscanf(text.substr(p, 3).c_str(), "%d", &number) != 1) {
            break;
        }
        if (number != 0 && std::abs(number) < 256) {
            append(std::abs(number) - 1, number > 0);
        }
        next = std::min(text.find_first_not_of("0123456789-", p), text.size());
        next += next < text.size() && text[next] == ' ' ? 1 : 0;
        if (next == p) {
            break;
        }
    }
    const bool none = entries.empty();
    for (int i = 0; none && i < static_cast<int>(fields.size()); ++i) {
        append(i, true);
    }
    return entries;
}
