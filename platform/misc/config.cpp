// Integer settings: what the host sets, else the environment, else the default.
//
// Static initialisers read settings and static destructors may, so the store is made at first use
// and never destroyed.

#include "misc/config.h"

#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <charconv>
#include <cstdlib>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace {

struct Settings {
    std::mutex mutex;
    std::map<std::string, int, std::less<>> values;
};

Settings& settings() {
    static Settings& theOnes = *new Settings;
    return theOnes;
}

std::optional<int> setByHost(std::string_view key) {
    const std::lock_guard lock{settings().mutex};
    const auto found = settings().values.find(key);
    return found != settings().values.end() ? std::optional{found->second} : std::nullopt;
}

std::optional<int> wholeNumber(std::string_view text) {
    std::string_view digits = Tarn::trimmed(text);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') {
        digits.remove_prefix(1);
    }
    const char* const end = digits.data() + digits.size();
    int value = 0;
    const auto result = std::from_chars(digits.data(), end, value);
    return result.ec == std::errc{} && result.ptr == end ? std::optional{value} : std::nullopt;
}

std::optional<int> setInEnvironment(std::string_view key) {
    std::string name{"OLE_CONFIG_"};
    for (const char c : key) {
        name += Tarn::toUpper(c);
    }
    const char* const text = std::getenv(name.c_str());
    return text ? wholeNumber(text) : std::nullopt;
}

} // namespace

int config_int(const char* key, int defaultValue) {
    if (!key) {
        return defaultValue;
    }
    if (const auto value = setByHost(key)) {
        return *value;
    }
    return setInEnvironment(key).value_or(defaultValue);
}

void config_int_set(const char* key, int value) {
    if (!key) {
        return;
    }
    const std::lock_guard lock{settings().mutex};
    settings().values.insert_or_assign(key, value);
}
