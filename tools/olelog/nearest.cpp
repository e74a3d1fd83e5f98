// Slips of the keyboard: which of the known names was meant.

#include "nearest.h"

#include "tarn/Ascii.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace {

/// How many characters have to be changed, put in or taken out to make one text the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> costs(b.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(costs[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed =
                diagonal + (Tarn::toLower(a[i]) == Tarn::toLower(b[j]) ? 0 : 1);
            diagonal = costs[j + 1];
            costs[j + 1] = std::min({changed, costs[j] + 1, diagonal + 1});
        }
    }
    return costs.back();
}

} // namespace

std::string nearestOf(std::string_view typed, const std::vector<std::string>& names) {
    std::string nearest;
    std::size_t least = typed.size() < 3 ? 2 : std::max<std::size_t>(typed.size() / 3, 2) + 1;
    for (const std::string& name : names) {
        const std::size_t steps = distance(typed, name);
        if (!name.empty() && steps < least) {
            least = steps;
            nearest = name;
        }
    }
    return nearest;
}
