// Whatever stands where the user's map file should, and whatever the preferences folder is: columns
// go where they go without a map. The file is read once a process, so each case has its own.

#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "support/Random.h"
#include "support/Tables.h"
#include "unit/ChildProcess.h"
#include "unit/TemporaryFolder.h"

#include <filesystem>
#include <sys/stat.h>

namespace {

/// Whether a column goes where it goes without a map, under a preferences folder.
bool plainUnder(const std::string& prefs) {
    return inChild([&] {
        alarm(20); // what waits for ever
        setenv("OLE_PREFS_DIR", prefs.c_str(), 1);
        const auto table = makeTable({"clip name", "reel"});
        return ALE::findODBColumnFor(*table, "Tape") == 1 &&
               ALE::findODBColumnFor(*table, "clip name") == 0;
    });
}

TEST(UserMapUnreadable, IsNone) {
    using Place = void (*)(const TemporaryFolder& folder, const std::string& file);
    const Place places[] = {
        [](auto&, auto& file) { std::filesystem::create_directory(file); },
        [](auto&, auto& file) { std::filesystem::create_symlink(file, file); },
        [](auto&, auto& file) { std::filesystem::create_symlink("/dev/zero", file); },
        [](auto&, auto& file) { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); },
        [](auto& folder, auto& file) {
            folder.write("ALEFieldMap.txt", "Tape=clip name\n");
            std::filesystem::permissions(file, std::filesystem::perms::none);
        },
        [](auto& folder, auto&) {
            Random random{1};
            std::string rubbish(1'000'000, '=');
            for (char& c : rubbish) {
                c = static_cast<char>(random.below(256));
            }
            folder.write("ALEFieldMap.txt", rubbish);
        },
        [](auto& folder, auto&) {
            folder.write("ALEFieldMap.txt", std::string(3'000'000, '\0') + "Tape=clip name");
        },
        [](auto& folder, auto&) {
            folder.write("ALEFieldMap.txt", std::string(3'000'000, '=') + "\n=\n==\n\xFF=\xFE");
        },
    };
    int n = 0;
    for (const Place place : places) {
        const TemporaryFolder folder;
        place(folder, folder.path("ALEFieldMap.txt"));
        const bool readByAll = n++ == 4 && geteuid() == 0; // no file is closed to root
        EXPECT_EQ(plainUnder(folder.path()), !readByAll) << "case " << n;
    }
    const TemporaryFolder folder;
    folder.write("file", "Tape=clip name\n");
    for (const std::string& prefs :
         {std::string{}, folder.path("file"), folder.path("missing"), std::string{"/dev/null"},
          std::string(100'000, 'x'), std::string{"\xFF\xFE%s%n"}}) {
        EXPECT_TRUE(plainUnder(prefs)) << prefs.substr(0, 100);
    }
}

} // namespace
