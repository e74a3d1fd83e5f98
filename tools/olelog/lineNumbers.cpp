// Line numbers in messages, as short as they can be said.

#include "lineNumbers.h"

#include "messages.h"

#include <cstddef>
#include <fmt/format.h>

std::string runsOf(const std::vector<unsigned>& lines) {
    std::string text;
    for (std::size_t i = 0; i < lines.size();) {
        std::size_t end = i + 1;
        while (end < lines.size() && lines[end] == lines[end - 1] + 1) {
            ++end;
        }
        text += text.empty() ? "" : ", ";
        text += end == i + 1 ? std::to_string(lines[i])
                             : fmt::format("{}-{}", lines[i], lines[end - 1]);
        i = end;
    }
    return text;
}

std::string andOtherLines(const std::vector<unsigned>& others) {
    return others.empty() ? ""
                          : fmt::format(" (and so in {}: {})", counted(others.size(), "other line"),
                                        runsOf(others));
}
