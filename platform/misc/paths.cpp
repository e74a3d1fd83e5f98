// Paths and the folders that the module knows.

#include "misc/paths.h"

#include "tarn/StringFunctions.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#if !defined(_WIN32)
#include <pwd.h>
#include <unistd.h>
#endif

namespace {

#if defined(_WIN32)
constexpr std::string_view separators = "/\\";
#else
constexpr std::string_view separators = "/";
#endif

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string withSeparator(std::string_view folder) {
    std::string path{folder};
    if (separators.find(path.back()) == std::string_view::npos) {
        path += '/';
    }
    return path;
}

#if defined(_WIN32)

std::string userFolder() {
    const std::string_view folder = environment("APPDATA");
    return folder.empty() ? "./" : withSeparator(folder) + "ole\\";
}

#else

/// The home folder from the system's list of users, for services that run without HOME.
std::string listedHome() {
    std::array<char, 16384> storage{};
    passwd entry{};
    passwd* found = nullptr;
    const int error = getpwuid_r(getuid(), &entry, storage.data(), storage.size(), &found);
    return error == 0 && found && found->pw_dir ? found->pw_dir : "";
}

std::string userFolder() {
    const std::string_view configured = environment("XDG_CONFIG_HOME");
    if (configured.starts_with('/')) { // a relative one is to be ignored
        return withSeparator(configured) + "ole/";
    }
    std::string home{environment("HOME")};
    if (home.empty()) {
        home = listedHome();
    }
    return home.empty() ? "./" : withSeparator(home) + ".config/ole/";
}

#endif

} // namespace

bool fileExists(const LightweightString<wchar_t>& path) {
    std::error_code ignored;
    return std::filesystem::exists(pathToBytes(path).c_str(), ignored);
}

LightweightString<wchar_t> stripPathAndExt(const LightweightString<wchar_t>& path) {
    std::wstring_view name = path.view();
    const std::size_t folder = name.find_last_of(L"/\\");
    if (folder != std::wstring_view::npos) {
        name.remove_prefix(folder + 1);
    }
    const std::size_t dot = name.rfind(L'.');
    const bool hasExtension = dot != std::wstring_view::npos && dot != 0;
    return LightweightString<wchar_t>{hasExtension ? name.substr(0, dot) : name};
}

LightweightString<wchar_t> getPrefsDirectory(iSettings::eType /*type*/) {
    const std::string_view configured = environment("OLE_PREFS_DIR");
    return pathFromBytes(configured.empty() ? userFolder() : withSeparator(configured));
}
