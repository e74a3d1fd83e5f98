// Moving and removing files, and the rows' memory.

#include "misc/OS.h"
#include "misc/paths.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <string>
#include <thread>

namespace {

class OSTest : public testing::Test {
protected:
    bool move(const char* from, const char* to, int replace) {
        return OS().moveFile(folder.wide(from), folder.wide(to), replace);
    }
    /// A file's contents, "(none)" when there is no such file.
    [[nodiscard]] std::string read(const std::string& name) const {
        return folder.names().count(name) != 0 ? folder.read(name) : "(none)";
    }
    bool remove(const char* name) { return OS().removeFile(folder.wide(name)); }

    TemporaryFolder folder;
};

TEST_F(OSTest, MoveWithoutReplacingLeavesAnExistingFileAlone) {
    folder.write("a", "new");
    folder.write("b", "old");
    EXPECT_FALSE(move("a", "b", 0));
    EXPECT_EQ(read("a") + read("b"), "newold");
    EXPECT_FALSE(move("a", "a", 0));
    EXPECT_EQ(read("a"), "new");
    EXPECT_TRUE(move("a", "c", 0));
    EXPECT_EQ(read("a") + read("c"), "(none)new");
    EXPECT_TRUE(move("c", "b", 1));
    EXPECT_EQ(read("c") + read("b"), "(none)new");
}

TEST_F(OSTest, MoveWithoutReplacingKeepsFoldersAndLinksToNowhere) {
    folder.write("a", "text");
    std::filesystem::create_directory(folder.path("folder"));
    std::filesystem::create_symlink("nowhere", folder.path("link"));
    EXPECT_FALSE(move("a", "folder", 0));
    EXPECT_FALSE(move("a", "link", 0));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_TRUE(move("folder", "moved", 0));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path("moved")));
    EXPECT_EQ(read("a"), "text");
}

TEST_F(OSTest, MovesAndRemovalsThatCannotBe) {
    for (const int replace : {0, 1}) {
        EXPECT_FALSE(move("missing", "b", replace));
        EXPECT_FALSE(OS().moveFile({}, folder.wide("b"), replace));
        folder.write("a", "text");
        EXPECT_FALSE(OS().moveFile(folder.wide("a"), {}, replace));
        EXPECT_FALSE(move("a", "nofolder/b", replace));
        EXPECT_EQ(read("a"), "text");
    }
    EXPECT_FALSE(remove("missing"));
    EXPECT_FALSE(OS().removeFile({}));
    std::filesystem::create_directory(folder.path("folder"));
    EXPECT_FALSE(remove("folder"));
    EXPECT_TRUE(fileExists(folder.wide("folder")));
}

TEST_F(OSTest, NamesOfAnyBytes) {
    const char* const name = "take \xff\xfe \xc3\xa9.ole";
    folder.write(name, "text");
    EXPECT_TRUE(fileExists(folder.wide(name)));
    EXPECT_TRUE(move(name, "caf\xe9", 0));
    EXPECT_EQ(read("caf\xe9"), "text");
    EXPECT_TRUE(remove("caf\xe9"));
    EXPECT_FALSE(fileExists(folder.wide("caf\xe9")));
}

TEST_F(OSTest, OnlyOneOfTwoMovesToTheSamePlaceSucceeds) {
    for (int i = 0; i < 100; ++i) {
        folder.write("1", "one");
        folder.write("2", "two");
        std::atomic<int> moved{0};
        std::thread other{[&] { moved += move("2", "target", 0) ? 2 : 0; }};
        moved += move("1", "target", 0) ? 1 : 0;
        other.join();
        ASSERT_TRUE(moved == 1 || moved == 2) << moved;
        ASSERT_EQ(read("target"), moved == 1 ? "one" : "two");
        ASSERT_EQ(read(moved == 1 ? "2" : "1"), moved == 1 ? "two" : "one");
        ASSERT_TRUE(remove("target"));
    }
}

TEST_F(OSTest, MemoryKeepsItsContents) {
    auto* block = static_cast<char*>(OS().reallocate(nullptr, 4));
    std::memcpy(block, "abc", 4);
    block = static_cast<char*>(OS().reallocate(block, 1000000));
    EXPECT_STREQ(block, "abc");
    const std::size_t tooMuch = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(OS().reallocate(block, tooMuch), std::bad_alloc);
    EXPECT_STREQ(block, "abc");
    EXPECT_EQ(OS().reallocate(block, 0), nullptr);
    EXPECT_EQ(OS().reallocate(nullptr, 0), nullptr);
}

} // namespace
