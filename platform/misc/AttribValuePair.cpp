// Lines of settings files: attribute, separator, value.

#include "misc/AttribValuePair.h"

#include "tarn/trimmed.h"

namespace Tarn {

AttribValuePair::AttribValuePair(std::string_view line, std::string_view separator) {
    const std::size_t cut = line.find(separator);
    if (cut == std::string_view::npos) {
        return;
    }
    attribute_ = LightweightString<char>{trimmed(line.substr(0, cut))};
    value_ = LightweightString<char>{trimmed(line.substr(cut + separator.size()))};
}

} // namespace Tarn
