#pragma once

#include <string>

/// The rule for key numbers, written down step by step.
inline std::string keyNumberByTheRule(const std::string& value) {
    std::string t = value.substr(0, 24);
    if (value.size() <= 14) {
        return std::string(15 - value.size(), '_') + t;
    }
    if (value.size() == 15) {
        return value;
    }
    std::size_t p = std::string::npos;
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (t[i] == '+' || t[i] == '&') {
            t[i] = '+';
            p = i;
        }
    }
    if (p == std::string::npos || p > t.size() - 3) {
        return "";
    }
    std::string result = "____________+" + t.substr(p + 1, 2);
    std::size_t to = 12;
    while (p > 0 && to > 0) {
        --p;
        if (t[p] != ' ' && t[p] != '-') {
            result[--to] = t[p];
        }
    }
    return result;
}
