// Blocks of many sizes that live and die in any order, over several large pages, on two threads:
// none is given twice, none is written by another, and all of it goes back.

#include "tarn/BlockMemory.h"
#include "support/Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace {

struct Block {
    unsigned char* bytes;
    std::size_t size;
    unsigned char mark;
};

Block makeBlock(std::size_t size, unsigned char mark) {
    auto* const bytes = static_cast<unsigned char*>(Tarn::BlockMemory::allocate(size));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(void*), 0U);
    std::fill_n(bytes, size, mark);
    return {bytes, size, mark};
}

void drop(const Block& block) {
    ASSERT_TRUE(std::all_of(block.bytes, block.bytes + block.size,
                            [&block](unsigned char byte) { return byte == block.mark; }));
    Tarn::BlockMemory::release(block.bytes, block.size);
}

TEST(BlockMemory, BlocksKeepToThemselves) {
    constexpr std::size_t sizes[] = {1, 8, 16, 17, 48, 160, 161, 2048, 2304, 2305, 9000};
    constexpr int blocksOfThread = 30'000; // some twelve large pages
    std::vector<Block> handedOver;
    std::mutex mutex;
    const auto work = [&](std::uint64_t seed) {
        Random random{seed};
        std::vector<Block> own;
        for (int i = 0; i < blocksOfThread; ++i) {
            own.push_back(
                makeBlock(random.pick(sizes), static_cast<unsigned char>(random.below(256))));
            std::swap(own[random.below(static_cast<unsigned>(own.size()))], own.back());
            if (random.oneIn(3)) {
                drop(own.back());
                own.pop_back();
            }
        }
        const std::lock_guard lock{mutex};
        handedOver.insert(handedOver.end(), own.begin(), own.end());
    };
    std::thread other{work, 1};
    work(2);
    other.join();
    std::for_each(handedOver.begin(), handedOver.end(), drop); // some of them made elsewhere
}

} // namespace
