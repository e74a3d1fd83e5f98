// Moving and removing files, and the rows' memory.

#include "misc/OS.h"
#include "misc/paths.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <string>

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

TEST_F(OSTest, MovingReplacesOnlyWhereAsked) {
    folder.write("a", "new");
    folder.write("b", "old");
    std::filesystem::create_directory(folder.path("folder"));
    std::filesystem::create_symlink("nowhere", folder.path("link"));
    for (const char* const taken : {"a", "b", "folder", "link"}) {
        EXPECT_FALSE(move("a", taken, 0)) << taken;
    }
    EXPECT_EQ(read("a") + read("b"), "newold");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_TRUE(move("a", "b", 1));
    EXPECT_EQ(read("a") + read("b"), "(none)new");
    EXPECT_TRUE(move("b", "c", 0));
    EXPECT_EQ(read("c"), "new");
    EXPECT_TRUE(move("folder", "moved", 0));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path("moved")));
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
