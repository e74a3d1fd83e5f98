// Names cut out of paths, and the preferences folder.

#include "misc/paths.h"
#include "unit/EnvironmentVariable.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

std::wstring stripped(const wchar_t* path) {
    return stripPathAndExt(path).c_str();
}

std::string prefs() {
    return pathToBytes(getPrefsDirectory(iSettings::eUser)).c_str();
}

TEST(Paths, NameWithoutFoldersAndExtension) {
    EXPECT_EQ(stripped(L"/a/b/name.odb"), L"name");
    EXPECT_EQ(stripped(L"C:\\a\\name.odb"), L"name");
    EXPECT_EQ(stripped(L"a\\b/c\\d/name"), L"name");
    EXPECT_EQ(stripped(L"a.b/name"), L"name") << "the dot belongs to a folder";
    EXPECT_EQ(stripped(L"name.tar.gz"), L"name.tar");
    EXPECT_EQ(stripped(L"name."), L"name");
    EXPECT_EQ(stripped(L"x/.hidden"), L".hidden");
    EXPECT_EQ(stripped(L"x/.hidden.odb"), L".hidden");
    EXPECT_EQ(stripped(L"x/..odb"), L".");
    EXPECT_EQ(stripped(L"folder/"), L"");
    EXPECT_EQ(stripped(L""), L"");
    EXPECT_EQ(stripped(nullptr), L"");
    EXPECT_EQ(stripped(L"\u65e5\u672c.odb"), L"\u65e5\u672c");
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
    EnvironmentVariable own{"OLE_PREFS_DIR", "/prefs"};
    EnvironmentVariable configured{"XDG_CONFIG_HOME", "/xdg"};
    EnvironmentVariable home{"HOME", "/home/me"};
    EXPECT_EQ(prefs(), "/prefs/");
    own.set("/prefs/");
    EXPECT_EQ(prefs(), "/prefs/");
    own.set("relative \xff");
    EXPECT_EQ(prefs(), "relative \xff/");
    own.set("");
    EXPECT_EQ(prefs(), "/xdg/ole/");
    own.set(nullptr);
    configured.set("/xdg/");
    EXPECT_EQ(prefs(), "/xdg/ole/");
    configured.set("not/absolute");
    EXPECT_EQ(prefs(), "/home/me/.config/ole/");
    configured.set(nullptr);
    EXPECT_EQ(prefs(), "/home/me/.config/ole/");
    home.set(nullptr);
    const std::string listed = prefs();
    EXPECT_TRUE(listed.ends_with("/.config/ole/") || listed == "./") << listed;
}

} // namespace
