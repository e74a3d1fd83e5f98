// Cutting a line at separators. `first` runs along the pieces: it is where the next piece begins.

#include "tarn/StringFunctions.h"

namespace Tarn {

void splitIf(std::string_view text, IsMatchingChar separator, std::vector<std::string_view>& pieces,
             int mode) {
    const std::size_t before = pieces.size();
    std::size_t first = !text.empty() && separator(text.front()) ? 1 : 0;
    std::size_t behindRun = first; // of separators that do not cut
    for (;;) {
        while (mode == eSplitMerging && behindRun != 0 && behindRun < text.size() &&
               separator(text[behindRun])) {
            ++behindRun;
        }
        const std::size_t cut = text.find(separator.character(), behindRun);
        if (cut == std::string_view::npos) {
            break;
        }
        pieces.push_back(text.substr(first, cut - first));
        first = cut + 1;
        behindRun = first;
    }
    if (first < text.size() || pieces.size() == before) {
        pieces.push_back(text.substr(first));
    }
}

void splitIf(const LightweightString<char>& text, IsMatchingChar separator,
             std::vector<LightweightString<char>>& pieces, int mode) {
    std::vector<std::string_view> slices;
    splitIf(text.view(), separator, slices, mode);
    pieces.reserve(pieces.size() + slices.size());
    for (const std::string_view slice : slices) {
        pieces.emplace_back(slice);
    }
}

} // namespace Tarn
