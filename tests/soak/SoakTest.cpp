// A long session: random editing of one table after the other, each loaded from what the one before
// it saved, with views, chains of views and listeners that come and go, against the plain model.
// What is in use at the end is what was in use when the first table had gone, and a table that
// lives long does not grow. OLE_SOAK_SECONDS is the length of the run, 20 s without it;
// OLE_TEST_SEED begins it the same way.

#include "model/ViewSequence.h"
#include "support/LiveBytes.h"
#include "support/SettingsProcess.h"
#include "tarn/StringMemory.h"
#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <chrono>
#include <fstream>
#include <numeric>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int stepsBetweenSaves = 500;
constexpr std::size_t kilobyte = 1024;

double secondsToRun() {
    const char* const text = std::getenv("OLE_SOAK_SECONDS");
    return text ? std::strtod(text, nullptr) : 20;
}

std::size_t residentBytes() {
    std::size_t all = 0;
    std::size_t resident = 0;
    std::ifstream{"/proc/self/statm"} >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// What is in use but for the texts: one row can keep a whole chunk of texts.
double bytesBesideTexts() {
    return static_cast<double>(liveBytes() - Tarn::StringMemory::bytesHeld());
}

/// The mean of the quarter that begins at `quarter`.
double meanOf(const std::vector<double>& samples, std::size_t quarter) {
    const auto n = static_cast<std::ptrdiff_t>(samples.size() / 4);
    const auto from = samples.begin() + static_cast<std::ptrdiff_t>(quarter) * n;
    return std::accumulate(from, from + n, 0.0) / static_cast<double>(n);
}

class Session {
public:
    explicit Session(std::uint64_t seed) : random_{seed} {}

    /// One table's life.
    void edit(double seconds) {
        const auto end = Clock::now() + std::chrono::duration<double>{seconds};
        std::unique_ptr<oledb> table;
        if (saves != 0) {
            table = std::make_unique<oledb>(path_, INT_MAX, true);
        }
        ViewSequence sequence{random_, std::move(table)};
        samples.clear();
        while (Clock::now() < end || samples.size() < 100) {
            for (int i = 0; i < stepsBetweenSaves; ++i, ++steps) {
                sequence.step();
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "step " << steps << ": " << sequence.lastStep();
            }
            sequence.save(path_);
            ASSERT_FALSE(testing::Test::HasFailure()) << "saved after step " << steps;
            ++saves;
            samples.push_back(bytesBesideTexts());
        }
        sequence.finish();
    }

    unsigned long long steps = 0;
    unsigned long long saves = 0;
    std::vector<double> samples; ///< of the last life

private:
    Random random_;
    TemporaryFolder folder_;
    LightweightString<wchar_t> path_ = folder_.wide("table.odb");
};

TEST(Soak, ModelAgreesAndMemoryStaysFlat) {
    const char* const given = std::getenv("OLE_TEST_SEED");
    const std::uint64_t seed = given ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    SCOPED_TRACE("begin the same way with OLE_TEST_SEED=" + std::to_string(seed));
    TextFile::setFlushToDisk(false);
    const double seconds = secondsToRun();
    Session session{seed};
    std::size_t before = 0;
    std::size_t residentBefore = 0;
    unsigned lives = 0;
    for (const double part : {1. / 16, 1. / 16, 1. / 8, 1. / 4, 1. / 2}) {
        ASSERT_NO_FATAL_FAILURE(session.edit(seconds * part));
        if (++lives == 1) { // everything that is made once has been made
            session.samples.clear();
            session.samples.shrink_to_fit();
            before = liveBytes();
            residentBefore = residentBytes();
        }
    }
    const double early = meanOf(session.samples, 1);
    const double late = meanOf(session.samples, 3);
    session.samples.clear();
    session.samples.shrink_to_fit();
    const std::size_t after = liveBytes();
    const std::size_t residentAfter = residentBytes();
    std::printf("%.0f s, seed %llu: %llu steps, %llu saves, %llu loads, %u tables\n"
                "bytes allocated: %zu at the start, %zu at the end\n"
                "in the second quarter of the last table's life: %.0f, in the last: %.0f\n"
                "resident: %zu and %zu\n",
                seconds, static_cast<unsigned long long>(seed), session.steps, session.saves,
                session.saves + lives - 1, lives, before, after, early, late, residentBefore,
                residentAfter);
    EXPECT_LE(after, before + 4 * kilobyte);
    EXPECT_LE(late, early + 64 * kilobyte);
#if defined(OLE_TEST_ADDRESS_SANITIZER)
    std::puts("resident memory is not judged: the sanitizer keeps what was freed");
#else
    EXPECT_LE(residentAfter, residentBefore + 16 * kilobyte * kilobyte);
#endif
}

} // namespace

int main(int argc, char** argv) {
    // Every block that is freed is seen as free at once.
    return runWithSetting(argc, argv, "GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
}
