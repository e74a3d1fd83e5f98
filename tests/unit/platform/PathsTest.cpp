// Names cut out of paths, and the preferences folder.

#include "misc/paths.h"
#include "unit/EnvironmentVariable.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

std::string prefs() {
    return pathToBytes(getPrefsDirectory(iSettings::eUser)).c_str();
}

TEST(Paths, NameWithoutFoldersAndExtension) {
    // clang-format off
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"/a/b/name.odb", L"name"}, {L"C:\\a\\name.odb", L"name"}, {L"a\\b/c\\d/name", L"name"},
        {L"a.b/name", L"name"}, {L"name.tar.gz", L"name.tar"}, {L"name.", L"name"},
        {L"x/.hidden", L".hidden"}, {L"x/.hidden.odb", L".hidden"}, {L"x/..odb", L"."},
        {L"folder/", L""}, {L"", L""}, {nullptr, L""}, {L"\u65e5\u672c.odb", L"\u65e5\u672c"}};
    // clang-format on
    for (const auto& [path, name] : cases) {
        EXPECT_EQ(stripPathAndExt(path), name) << name;
    }
}

TEST(Paths, FileExistsForWhateverIsThere) {
    const TemporaryFolder folder;
    folder.write("file", "");
    std::filesystem::create_symlink("nowhere", folder.path("link"));
    EXPECT_TRUE(fileExists(folder.wide("file")));
    EXPECT_TRUE(fileExists(folder.wide()));
    EXPECT_TRUE(fileExists(L"/dev/null"));
    EXPECT_FALSE(fileExists(folder.wide("file/below")));
    EXPECT_FALSE(fileExists(folder.wide("none")));
    EXPECT_FALSE(fileExists(folder.wide("link")));
    EXPECT_FALSE(fileExists({}));
}

TEST(Paths, PreferencesFolderEndsInASeparator) {
    EnvironmentVariable own{"OLE_PREFS_DIR", nullptr};
    EnvironmentVariable configured{"XDG_CONFIG_HOME", nullptr};
    EnvironmentVariable home{"HOME", "/home/me"};
    struct Case {
        const char* own;
        const char* configured;
        const char* folder;
    };
    const Case cases[] = {{"/prefs", "/xdg", "/prefs/"},
                          {"/prefs/", "/xdg", "/prefs/"},
                          {"relative \xff", "/xdg", "relative \xff/"},
                          {"", "/xdg/", "/xdg/ole/"},
                          {nullptr, "not/absolute", "/home/me/.config/ole/"},
                          {nullptr, nullptr, "/home/me/.config/ole/"}};
    for (const Case& c : cases) {
        own.set(c.own);
        configured.set(c.configured);
        EXPECT_EQ(prefs(), c.folder);
    }
    home.set(nullptr);
    const std::string listed = prefs();
    EXPECT_TRUE(listed.ends_with("/.config/ole/") || listed == "./") << listed;
}

} // namespace
