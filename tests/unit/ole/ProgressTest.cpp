// How far reading and writing of large files is told to be.

#include "misc/SystemWatchdog.h"
#include "ole/interchange/ALE.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

struct Report {
    std::uint64_t done;
    std::uint64_t total;
};

/// Hears all reports while it lives.
class Reports {
public:
    Reports() {
        SystemWatchdog::setProgressObserver([this](std::uint64_t done, std::uint64_t total) {
            heard_.push_back({done, total});
        });
    }
    ~Reports() { SystemWatchdog::setProgressObserver({}); }

    /// What was heard of one operation; none may fall back, or pass the whole.
    std::vector<Report> take() {
        for (std::size_t i = 0; i < heard_.size(); ++i) {
            EXPECT_LE(heard_[i].done, heard_[i].total);
            EXPECT_EQ(heard_[i].total, heard_[0].total);
            EXPECT_TRUE(i == 0 || heard_[i - 1].done <= heard_[i].done) << i;
        }
        return std::exchange(heard_, {});
    }

private:
    std::vector<Report> heard_;
};

TEST(Progress, GrowsWhileFilesAreReadAndWritten) {
    constexpr unsigned rows = 50000;
    const TemporaryFolder folder;
    TextFile::setFlushToDisk(false);
    std::string log = "Heading\nColumn\nName\tNotes\nData\n";
    for (unsigned i = 0; i < rows; ++i) {
        log += std::to_string(i) + "\tprint\n";
    }
    folder.write("log", log);
    Reports reports;

    const auto table = makeTable({"Name", "Notes"});
    ASSERT_TRUE(ALE::fillODB(*table, folder.wide("log")));
    const auto imported = reports.take();
    ASSERT_GE(imported.size(), 10U);
    EXPECT_EQ(imported.back().total, rows + 4);
    EXPECT_EQ(imported.back().done, rows + 4);

    table->set_filename(folder.wide("saved"));
    ASSERT_EQ(table->save_text(), static_cast<int>(rows));
    const auto saved = reports.take();
    ASSERT_GE(saved.size(), 10U);
    EXPECT_EQ(saved.back().total, rows);
    EXPECT_EQ(saved.back().done, rows);

    const oledb loaded{folder.wide("saved"), static_cast<int>(rows), true};
    const auto read = reports.take();
    ASSERT_GE(read.size(), 4U);
    EXPECT_EQ(read.back().done, std::filesystem::file_size(folder.path("saved")));
    EXPECT_EQ(read.back().total, read.back().done);
    EXPECT_EQ(rowsOf(*table).back(), (Texts{std::to_string(rows - 1), "print"}));

    // What cannot be measured is not reported: neither an empty file nor a device.
    const oledb none{pathFromBytes("/dev/null"), 1, true};
    EXPECT_TRUE(reports.take().empty());
    TextFile::setFlushToDisk(true);
}

} // namespace
