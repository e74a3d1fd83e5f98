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
        EXPECT_EQ(streamed(terminator), lines);
        return lines;
    }

    Lines streamed(char terminator) {
        TextFile file;
        EXPECT_TRUE(file.streamFrom(folder_.wide("f"), terminator));
        Lines lines;
        while (!file.atEnd()) {
            lines.emplace_back(file.nextLine());
        }
        EXPECT_EQ(file.nextLine(), "");
        EXPECT_FALSE(file.streamFailed());
        return lines;
    }

    TemporaryFolder folder_;
    TextFile file_;
};

TEST_F(TextFileTest, LineEnds) {
    const std::pair<std::string, Lines> cases[] = {
        {"", {}},
        {"\n", {""}},
        {"\r", {""}},
        {"a\r\nb\r", {"a", "b"}},
        {"a\r\r\nb\r\r", {"a\r", "b\r"}},
        {"a\rb\rc", {"a\rb\rc"}},
        {"\xef\xbb\xbfHeading\r\n", {"\xef\xbb\xbfHeading"}},
        {"a\0b\nc\0"s, {"a\0b"s, "c\0"s}},
    };
    for (const auto& [bytes, lines] : cases) {
        EXPECT_EQ(load(bytes), lines) << testing::PrintToString(bytes);
    }
}

// Lines lie across the pieces that a file is read in, or are longer than many of them.
TEST_F(TextFileTest, StreamedLinesOfAnyLength) {
    std::string bytes;
    for (const std::size_t length :
         {262'142U, 1U, 0U, 262'143U, 262'144U, 262'145U, 3'000'000U, 70U}) {
        bytes += std::string(length, static_cast<char>('a' + length % 23)) + "\r\n";
    }
    EXPECT_EQ(load(bytes).size(), 8U);
    EXPECT_EQ(load(bytes.substr(0, bytes.size() - 1)).back().size(), 70U);
}

TEST_F(TextFileTest, StreamingEndsInNothingFalse) {
    EXPECT_FALSE(file_.streamFrom(folder_.wide("missing"), '\n'));
    EXPECT_TRUE(file_.streamFailed() && file_.atEnd());
    EXPECT_TRUE(file_.streamFrom(folder_.wide(""), '\n')) << "a folder can be opened";
    EXPECT_EQ(file_.nextLine(), "");
    EXPECT_TRUE(file_.streamFailed());

    load("a\nb\n");
    EXPECT_TRUE(file_.streamFrom(folder_.wide("f"), '\n'));
    EXPECT_EQ(file_.nextLine(), "a");
    EXPECT_EQ(file_.numLines(), 0U);
    EXPECT_FALSE(file_.save({}, TextFile::eEOLStyleLF)) << "would leave a file without lines";
    EXPECT_EQ(folder_.read("f"), "a\nb\n");
    EXPECT_TRUE(file_.load(folder_.wide("f"), '\n', false));
    EXPECT_EQ(linesOf(file_), (Lines{"a", "b"}));
    EXPECT_EQ(file_.nextLine(), "a");
}

TEST_F(TextFileTest, OtherTerminators) {
    EXPECT_EQ(load("a\rb\r\rc\n", '\r'), (Lines{"a", "b", "", "c\n"}));
    EXPECT_EQ(load("a;b\r;\n", ';'), (Lines{"a", "b", "\n"}));
    EXPECT_EQ(load("a\0\0b"s, '\0'), (Lines{"a", "", "b"}));
    EXPECT_EQ(load("a\xff z", '\xff'), (Lines{"a", " z"}));
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

TEST_F(TextFileTest, AppendedLinesAndLinesBeyondTheLast) {
    load("a\r\nb");
    file_.appendLine("c\r");
    file_.appendLine(LightweightString<char>{});
    file_.appendLine("d\n");
    file_.appendLine(file_.lineView(0)); // a slice of the file itself
    EXPECT_EQ(linesOf(file_), (Lines{"a", "b", "c\r", "", "d\n", "a"}));
    EXPECT_FALSE(file_[3].isNull());
    EXPECT_TRUE(file_[6].isNull());
    EXPECT_TRUE(file_[0xFFFFFFFF].isNull());
    EXPECT_EQ(file_.lineView(6), "");
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

TEST_F(TextFileTest, NamesThatAreNoUTF8) {
    folder_.write("t\xe9l\xff", "a");
    EXPECT_EQ(linesOf(TextFile{folder_.wide("t\xe9l\xff"), true}), (Lines{"a"}));
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
    if (std::filesystem::exists("/proc/self/status")) { // the system tells no size for it
        ASSERT_TRUE(file_.load(L"/proc/self/status", '\n', true));
        EXPECT_TRUE(file_[0].startsWith("Name:"));
    }
}

} // namespace
