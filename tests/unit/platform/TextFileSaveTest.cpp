// Saving text files, at once and streamed: whole or not at all, whatever stands at the path.

#include "tarn/TextFile.h"
#include "unit/ChildProcess.h"
#include "unit/TemporaryFolder.h"

#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::string_literals;

using Names = std::set<std::string>;
using Style = TextFile::eEOLStyle;

constexpr uid_t nobody = 65534;

/// Runs a step without the rights of the superuser, who may do everything.
bool inPlainUsersChild(const std::function<bool()>& step) {
    return inChild([&] {
        if (geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) {
            _exit(2);
        }
        return step();
    });
}

struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status;
}

/// Every case runs for a plain save and for a streamed one.
class TextFileSave : public testing::TestWithParam<bool> {
protected:
    void SetUp() override { TextFile::setFlushToDisk(false); }
    void TearDown() override { TextFile::setFlushToDisk(true); }

    static bool save(const LightweightString<wchar_t>& path,
                     const std::vector<std::string>& lines = {"new"},
                     Style style = TextFile::eEOLStyleCRLF) {
        TextFile file;
        if (GetParam()) {
            file.stream(path, style);
        }
        for (const std::string& line : lines) {
            file.appendLine(line);
        }
        return file.save(path, style);
    }
    bool save(const std::string& name) const { return save(folder_.wide(name)); }

    TemporaryFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Both, TextFileSave, testing::Bool(), [](const auto& way) {
    return way.param ? std::string{"streamed"} : std::string{"plain"};
});

TEST_P(TextFileSave, LineEnds) {
    const std::vector<std::string> lines{"a", "", "b\0c\r"s};
    EXPECT_TRUE(save(folder_.wide("lf"), lines, TextFile::eEOLStyleLF));
    EXPECT_TRUE(save(folder_.wide("crlf"), lines, TextFile::eEOLStyleCRLF));
    EXPECT_TRUE(save(folder_.wide("cr"), lines, TextFile::eEOLStyleCR));
    EXPECT_TRUE(save(folder_.wide("none"), {}));
    EXPECT_EQ(folder_.read("lf"), "a\n\nb\0c\r\n"s);
    EXPECT_EQ(folder_.read("crlf"), "a\r\n\r\nb\0c\r\r\n"s);
    EXPECT_EQ(folder_.read("cr"), "a\r\rb\0c\r\r"s);
    EXPECT_EQ(folder_.read("none"), "");
    EXPECT_EQ(folder_.names(), (Names{"lf", "crlf", "cr", "none"}));
}

// Lines that just fill, overrun and far exceed the piece that is written at a time.
TEST_P(TextFileSave, LongFiles) {
    std::vector<std::string> lines;
    std::string expected;
    for (const std::size_t length :
         {250U, 262'000U, 262'142U, 262'143U, 262'144U, 262'145U, 1'000'000U, 0U}) {
        for (int i = 0; i < 5; ++i) {
            lines.emplace_back(length, static_cast<char>('a' + lines.size() % 26));
            expected += lines.back() + "\r\n";
        }
    }
    EXPECT_TRUE(save(folder_.wide("f"), lines));
    EXPECT_TRUE(folder_.read("f") == expected);
}

TEST_P(TextFileSave, ExistingRightsAndOwnersStayAndNewFilesFollowTheMask) {
    const mode_t before = umask(027);
    folder_.write("private", "old");
    chmod(folder_.path("private").c_str(), 0604);
    const uid_t owner = geteuid() == 0 ? nobody : geteuid(); // only the superuser gives files away
    ASSERT_EQ(chown(folder_.path("private").c_str(), owner, static_cast<gid_t>(-1)), 0);
    EXPECT_TRUE(save("private"));
    EXPECT_TRUE(save("fresh"));
    umask(before);
    EXPECT_EQ(statusOf(folder_.path("private")).st_mode & 07777, 0604U);
    EXPECT_EQ(statusOf(folder_.path("private")).st_uid, owner);
    EXPECT_EQ(statusOf(folder_.path("fresh")).st_mode & 07777, 0640U);
    EXPECT_EQ(folder_.read("private"), "new\r\n");
}

TEST_P(TextFileSave, SymbolicLinksAreFollowed) {
    namespace fs = std::filesystem;
    folder_.write("real", "old");
    fs::create_directory(folder_.path("sub"));
    fs::create_symlink("real", folder_.path("relative"));
    fs::create_symlink("../relative", folder_.path("sub/chain"));
    fs::create_symlink(folder_.path("later"), folder_.path("dangling"));
    EXPECT_TRUE(save("sub/chain"));
    EXPECT_TRUE(save("dangling"));
    EXPECT_EQ(folder_.read("real"), "new\r\n");
    EXPECT_EQ(folder_.read("later"), "new\r\n");
    for (const char* const link : {"relative", "sub/chain", "dangling"}) {
        EXPECT_TRUE(fs::is_symlink(folder_.path(link))) << link;
    }
    EXPECT_EQ(folder_.names(), (Names{"real", "relative", "sub", "dangling", "later"}));
    fs::create_symlink("circle", folder_.path("circle"));
    EXPECT_FALSE(save("circle"));
}

TEST_P(TextFileSave, WhatIsNoPlaceForAFile) {
    std::filesystem::create_directory(folder_.path("folder"));
    folder_.write("f", "old");
    for (const char* const name : {"folder", "folder/", "missing/f", "missing/", "f/x", "f/"}) {
        EXPECT_FALSE(save(name)) << name;
    }
    EXPECT_FALSE(save(LightweightString<wchar_t>{}));
    EXPECT_FALSE(save(folder_.wide(std::string(300, 'n'))));
    EXPECT_EQ(folder_.read("f"), "old");
    EXPECT_EQ(folder_.names(), (Names{"folder", "f"}));
}

// Without the superuser's rights: a fault here, with them, would put a file in the device's place
// and harm every program of the machine.
TEST_P(TextFileSave, DevicesAreWrittenDirectly) {
    EXPECT_TRUE(inPlainUsersChild([] { return save(L"/dev/null"); }));
    EXPECT_TRUE(inPlainUsersChild([] {
        TextFile::setFlushToDisk(true);
        return save(L"/dev/null");
    }));
    if (std::filesystem::is_character_file("/dev/full")) {
        EXPECT_FALSE(inPlainUsersChild([] { return save(L"/dev/full"); }));
    }
}

TEST_P(TextFileSave, PipesAreWrittenDirectly) {
    const std::string pipe = folder_.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string got;
    std::thread reader{[&] { got = folder_.read("pipe"); }};
    const std::string big(500'000, 'x');
    EXPECT_TRUE(save(folder_.wide("pipe"), {"a", big}));
    reader.join();
    EXPECT_TRUE(got == "a\r\n" + big + "\r\n");
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_P(TextFileSave, NoPermissionLeavesEverythingAsItWas) {
    folder_.write("readonly", "old");
    folder_.write("open", "old");
    chmod(folder_.path("readonly").c_str(), 0444);
    chmod(folder_.path("open").c_str(), 0666);
    chmod(folder_.path().c_str(), 0777);
    EXPECT_FALSE(inPlainUsersChild([&] { return save("readonly"); }));
    EXPECT_TRUE(inPlainUsersChild([&] { return save("open"); }));
    EXPECT_TRUE(inPlainUsersChild([&] { return save("fresh"); }));
    chmod(folder_.path().c_str(), 0555);
    EXPECT_FALSE(inPlainUsersChild([&] { return save("open"); }));
    EXPECT_FALSE(inPlainUsersChild([&] { return save("another"); }));
    chmod(folder_.path().c_str(), 0700);
    EXPECT_EQ(folder_.read("readonly"), "old");
    EXPECT_EQ(folder_.read("open"), "new\r\n");
    EXPECT_EQ(folder_.names(), (Names{"readonly", "open", "fresh"}));
}

// The disk is full, after some pieces have been written.
TEST_P(TextFileSave, FailureOnTheWayLeavesTheOldFile) {
    folder_.write("f", "old");
    const bool saved = inChildWithFullDisk(600'000, [&] {
        const bool small = save(folder_.wide("small"), {"fits"});
        return !small ||
               save(folder_.wide("f"), std::vector<std::string>(10'000, std::string(250, 'x')));
    });
    EXPECT_FALSE(saved);
    EXPECT_EQ(folder_.read("f"), "old");
    EXPECT_EQ(folder_.names(), (Names{"f", "small"}));
}

TEST_P(TextFileSave, AFileIsReplacedNotRewritten) {
    folder_.write("f", "old");
    std::ifstream reader{folder_.path("f")};
    const ino_t before = statusOf(folder_.path("f")).st_ino;
    EXPECT_TRUE(save("f"));
    EXPECT_NE(statusOf(folder_.path("f")).st_ino, before);
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(line, "old"); // who had it open still reads the old one whole
}

TEST(TextFilePath, EmptyMeansTheBoundOne) {
    const TemporaryFolder folder;
    folder.write("f", "a\nb");
    TextFile file{folder.wide("f"), true};
    file.appendLine("c");
    EXPECT_TRUE(file.save({}, TextFile::eEOLStyleLF));
    EXPECT_EQ(folder.read("f"), "a\nb\nc\n");
    EXPECT_FALSE(file.load(folder.wide("missing"), '\n', true));
    file.appendLine("d");
    EXPECT_TRUE(file.save({}, TextFile::eEOLStyleLF));
    EXPECT_EQ(folder.read("missing"), "d\n");
    TextFile streamed{folder.wide("s"), false};
    streamed.stream({}, TextFile::eEOLStyleCR);
    streamed.appendLine("e");
    EXPECT_TRUE(TextFile{std::move(streamed)}.save({}, TextFile::eEOLStyleCR));
    EXPECT_EQ(folder.read("s"), "e\r");
}

TEST(TextFileStream, LinesFromBeforeComeFirstAndLeaveMemory) {
    const TemporaryFolder folder;
    folder.write("f", "a\r\nb");
    TextFile file{folder.wide("f"), true};
    file.stream(folder.wide("f"), TextFile::eEOLStyleCRLF);
    EXPECT_EQ(file.numLines(), 0U);
    file.appendLine("c");
    EXPECT_EQ(file.numLines(), 0U);
    EXPECT_EQ(folder.read("f"), "a\r\nb"); // until the save
    EXPECT_TRUE(file.save({}, TextFile::eEOLStyleCRLF));
    EXPECT_EQ(folder.read("f"), "a\r\nb\r\nc\r\n");

    file.appendLine("in memory again");
    EXPECT_EQ(file.numLines(), 1U);
    EXPECT_TRUE(file.save(folder.wide("g"), TextFile::eEOLStyleLF));
    EXPECT_EQ(folder.read("g"), "in memory again\n");
}

TEST(TextFileStream, UnfinishedOnesLeaveNothingBehind) {
    const TemporaryFolder folder;
    folder.write("f", "old");
    const auto fill = [&](TextFile& file) {
        file.stream(folder.wide("f"), TextFile::eEOLStyleLF);
        for (int i = 0; i < 2000; ++i) {
            file.appendLine(std::string(250, 'x'));
        }
        EXPECT_EQ(folder.names().size(), 2U);
    };
    TextFile file;
    fill(file);
    EXPECT_TRUE(file.load(folder.wide("f"), '\n', true));
    EXPECT_EQ(folder.names(), (Names{"f"}));
    EXPECT_EQ(file.lineView(0), "old");
    fill(file);
    fill(file); // begins anew
    file = TextFile{};
    EXPECT_EQ(folder.names(), (Names{"f"}));
    EXPECT_EQ(folder.read("f"), "old");
}

TEST(TextFileStream, SaveMustNameTheSamePathAndStyle) {
    const TemporaryFolder folder;
    for (const bool otherPath : {true, false}) {
        TextFile file;
        file.stream(folder.wide("f"), TextFile::eEOLStyleLF);
        file.appendLine("a");
        EXPECT_FALSE(file.save(folder.wide(otherPath ? "g" : "f"),
                               otherPath ? TextFile::eEOLStyleLF : TextFile::eEOLStyleCRLF));
        EXPECT_EQ(folder.names(), Names{});
    }
}

} // namespace
