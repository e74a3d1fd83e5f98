// Query patterns against texts: a byte of switches, the pattern, a line feed, the text. The search
// finds what the plain search finds, wherever the rules have one reading.

#include "support/SearchModel.h"

#include "Fuzz.h"

// Texts are searched in place, and may be copied once or twice at the start; a copy at each
// position would be work that grows with the square.
constexpr Bounds searching{.live = {100, 2}, .sum = {200, 4}, .blocks = {8, 0}};

void fuzz(std::string_view input) {
    const std::string all{input.substr(0, input.find('\0'))};
    if (all.empty()) {
        return;
    }
    const std::size_t end = std::min(all.find('\n'), all.size());
    const std::string pattern = all.substr(1, end < 1 ? 0 : end - 1);
    const std::string text = all.substr(std::min(end + 1, all.size()));
    SearchModel model;
    model.caseSensitive = (all[0] & 1) != 0;
    model.wholeWord = (all[0] & 2) != 0;
    model.timecode = (all[0] & 4) != 0;
    oledb table;
    table.caseSensitiveSearch = model.caseSensitive;
    table.wholeWordSearch = model.wholeWord;
    const int found = within(searching, input.size(), [&] {
        return table.found_in(text.c_str(), pattern.c_str(), model.timecode);
    });
    const int expected = agreed(model, text, pattern);
    ASSERT_TRUE(found == 0 || found == 1);
    ASSERT_TRUE(expected == -1 || found == expected) << expected;
}
