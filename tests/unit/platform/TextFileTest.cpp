// Text files: cutting into lines, the current line, what cannot be loaded.

#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;

using Lines = std::vector<std::string>;

Lines linesOf(const TextFile& file) {
    Lines lines;
    for (unsigned i = 0; i < file.numLines(); ++i) {
        lines.emplace_back(file.lineView(i));
    }
    return lines;
}

class TextFileTest : public testing::Test {
protected:
    Lines load(const std::string& bytes, char terminator = '\n') {
        folder_.write("f", bytes);
        EXPECT_TRUE(file_.load(folder_.wide("f"), terminator, false));
        const Lines lines = linesOf(file_);
        EXPECT_TRUE(file_.load(folder_.wide("f"), terminator, true));
        EXPECT_EQ(linesOf(file_), lines) << "the conversion flag changed the lines";
        return lines;
    }

    TemporaryFolder folder_;
    TextFile file_;
};

TEST_F(TextFileTest, LineEnds) {
    const std::pair<std::string, Lines> cases[] = {
        {"", {}},
        {"\n", {""}},
        {"\r\n", {""}},
        {"\r", {""}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"a\r\n", {"a"}},
        {"a\nb", {"a", "b"}},
        {"a\r\nb\r", {"a", "b"}},
        {"a\n\nb\n\n", {"a", "", "b", ""}},
        {"a\r\r\nb\r\r", {"a\r", "b\r"}},
        {"a\rb\rc", {"a\rb\rc"}},
        {"a\n\rb\n", {"a", "\rb"}},
        {"\xef\xbb\xbfHeading\r\n", {"\xef\xbb\xbfHeading"}},
        {"a\0b\nc\0"s, {"a\0b"s, "c\0"s}},
    };
    for (const auto& [bytes, lines] : cases) {
        EXPECT_EQ(load(bytes), lines) << testing::PrintToString(bytes);
    }
}

TEST_F(TextFileTest, OtherTerminators) {
    EXPECT_EQ(load("a\rb\r\rc\n", '\r'), (Lines{"a", "b", "", "c\n"}));
    EXPECT_EQ(load("a;b\r;\n", ';'), (Lines{"a", "b", "\n"}));
    EXPECT_EQ(load("a\0\0b"s, '\0'), (Lines{"a", "", "b"}));
    EXPECT_EQ(load("a\xff"
                   "b",
                   '\xff'),
              (Lines{"a", "b"}));
}

TEST_F(TextFileTest, RandomBytesAgreeWithAPlainCutter) {
    std::mt19937 random{99};
    for (int round = 0; round < 400; ++round) {
        std::string bytes(random() % 40, ' ');
        std::generate(bytes.begin(), bytes.end(), [&] { return "ab\n\n\r"[random() % 5]; });
        Lines expected;
        for (std::string rest = bytes; !rest.empty();) {
            const std::size_t end = rest.find('\n');
            std::string line = rest.substr(0, end);
            rest = end == std::string::npos ? "" : rest.substr(end + 1);
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            expected.push_back(line);
        }
        ASSERT_EQ(load(bytes), expected) << testing::PrintToString(bytes);
    }
}

TEST_F(TextFileTest, HugeLinesAndManyLines) {
    const std::string huge(3'000'000, 'x');
    EXPECT_EQ(load(huge + "\r\n" + huge), (Lines{huge, huge}));
    std::string many;
    for (int i = 0; i < 200'000; ++i) {
        many += std::to_string(i) + "\n";
    }
    folder_.write("many", many);
    ASSERT_TRUE(file_.load(folder_.wide("many"), '\n', false));
    ASSERT_EQ(file_.numLines(), 200'000U);
    EXPECT_EQ(file_.lineView(199'999), "199999");
    EXPECT_EQ(file_.lineView(123'456), "123456");
}

TEST_F(TextFileTest, CurrentLine) {
    EXPECT_TRUE(file_.atEnd());
    EXPECT_EQ(file_.nextLine(), "");
    load("a\n\nc\n");
    EXPECT_EQ(file_.nextLine(), "a");
    EXPECT_EQ(file_.nextLine(), ""); // a blank line counts as one
    EXPECT_EQ(file_.line(), 2U);
    EXPECT_EQ(file_.nextLine(), "c");
    EXPECT_TRUE(file_.atEnd());
    EXPECT_EQ(file_.nextLine(), "");
    EXPECT_EQ(file_.line(), 3U);
    file_.setLine(0);
    EXPECT_EQ(file_.nextLine(), "a");
    file_.setLine(77);
    EXPECT_EQ(file_.line(), 3U);
    file_.appendLine("d");
    EXPECT_EQ(file_.nextLine(), "d");
    load("z");
    EXPECT_EQ(file_.line(), 0U);
}

TEST_F(TextFileTest, LinesBeyondTheLast) {
    load("a\n\n");
    EXPECT_EQ(file_[0], "a");
    EXPECT_FALSE(file_[1].isNull());
    EXPECT_TRUE(file_[2].isNull());
    EXPECT_TRUE(file_[0xFFFFFFFF].isNull());
    EXPECT_EQ(file_.lineView(2), "");
}

TEST_F(TextFileTest, AppendedLinesKeepTheirBytes) {
    load("a\r\nb");
    file_.appendLine("c\r");
    file_.appendLine(LightweightString<char>{});
    file_.appendLine("d\n");
    file_.appendLine(file_.lineView(0)); // a slice of the file itself
    EXPECT_EQ(linesOf(file_), (Lines{"a", "b", "c\r", "", "d\n", "a"}));
}

TEST_F(TextFileTest, WhatCannotBeLoadedLeavesNoLines) {
    for (const std::string name : {"missing", "folder", "folder/x", "f/x", ""}) {
        load("a\nb");
        std::filesystem::create_directory(folder_.path("folder"));
        const LightweightString<wchar_t> path =
            name.empty() ? LightweightString<wchar_t>{} : folder_.wide(name);
        EXPECT_FALSE(file_.load(path, '\n', true)) << name;
        EXPECT_EQ(file_.numLines(), 0U);
        EXPECT_TRUE(file_.atEnd());
        EXPECT_EQ(TextFile(path, true).numLines(), 0U);
    }
}

TEST_F(TextFileTest, PathAtConstruction) {
    folder_.write("f", "a\nb\n");
    EXPECT_EQ(TextFile(folder_.wide("f"), false).numLines(), 0U);
    EXPECT_EQ(linesOf(TextFile{folder_.wide("f"), true}), (Lines{"a", "b"}));
}

TEST_F(TextFileTest, NamesThatAreNoUTF8) {
    folder_.write("t\xe9"
                  "l\xff",
                  "a");
    EXPECT_EQ(linesOf(TextFile{folder_.wide("t\xe9"
                                            "l\xff"),
                               true}),
              (Lines{"a"}));
}

TEST_F(TextFileTest, PipesAndDevicesAreReadToTheirEnd) {
    const std::string pipe = folder_.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string big(300'000, 'x'); // more than a pipe holds
    std::thread writer{[&] { std::ofstream{pipe} << "a\n" << big << "\nb"; }};
    EXPECT_TRUE(file_.load(folder_.wide("pipe"), '\n', true));
    writer.join();
    EXPECT_EQ(linesOf(file_), (Lines{"a", big, "b"}));
    EXPECT_TRUE(file_.load(L"/dev/null", '\n', true));
    EXPECT_EQ(file_.numLines(), 0U);
}

// The system tells no size for such files.
TEST_F(TextFileTest, FilesOfUnknownSize) {
    if (!std::filesystem::exists("/proc/self/status")) {
        GTEST_SKIP() << "no /proc";
    }
    ASSERT_TRUE(file_.load(L"/proc/self/status", '\n', true));
    EXPECT_TRUE(file_[0].startsWith("Name:"));
}

TEST_F(TextFileTest, MovingTakesEverything) {
    load("a\r\nb");
    file_.nextLine();
    TextFile moved{std::move(file_)};
    EXPECT_EQ(linesOf(moved), (Lines{"a", "b"}));
    EXPECT_EQ(moved.line(), 1U);
    file_ = TextFile{}; // as good as new
    file_.appendLine("c\r");
    EXPECT_EQ(linesOf(file_), (Lines{"c\r"}));
    file_ = std::move(moved);
    EXPECT_EQ(linesOf(file_), (Lines{"a", "b"}));
}

} // namespace
