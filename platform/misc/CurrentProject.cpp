// The open project's timecode settings. They need no destruction and no code to set up, so they may
// be read before `main` and after it.

#include "misc/CurrentProject.h"

#include <atomic>
#include <bit>
#include <cstdint>

namespace Tarn {
namespace {

using FrameRate = CurrentProject::FrameRate;

/// The two halves of a rate in one word, so that they are always read together.
constexpr std::uint64_t packed(FrameRate rate) noexcept {
    return std::bit_cast<std::uint64_t>(rate);
}

constinit std::atomic<std::uint64_t> frameRate{packed(FrameRate{})};
constinit std::atomic<bool> useDropFrame{false};
constinit std::atomic<unsigned long> reads{0};

} // namespace

CurrentProject::FrameRate CurrentProject::getFrameRate(Revision /*revision*/) {
    ++reads;
    return std::bit_cast<FrameRate>(frameRate.load());
}

bool CurrentProject::getUseDropFrameTimecode() {
    ++reads;
    return useDropFrame;
}

void CurrentProject::setFrameRate(FrameRate rate) noexcept {
    frameRate = packed(rate);
}

void CurrentProject::setUseDropFrameTimecode(bool use) noexcept {
    useDropFrame = use;
}

unsigned long CurrentProject::readCount() noexcept {
    return reads;
}

} // namespace Tarn
