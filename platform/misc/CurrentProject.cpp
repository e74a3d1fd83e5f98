// The open project's timecode settings. They need no destruction and no code to set up, so they may
// be read before `main` and after it.

#include "misc/CurrentProject.h"

#include <atomic>

namespace Tarn {
namespace {

constinit std::atomic<CurrentProject::FrameRate> frameRate{CurrentProject::FrameRate{}};
constinit std::atomic<bool> useDropFrame{false};
constinit std::atomic<unsigned long> reads{0};

} // namespace

CurrentProject::FrameRate CurrentProject::getFrameRate(Revision /*revision*/) {
    ++reads;
    return frameRate;
}

bool CurrentProject::getUseDropFrameTimecode() {
    ++reads;
    return useDropFrame;
}

void CurrentProject::setFrameRate(FrameRate rate) noexcept {
    frameRate = rate;
}

void CurrentProject::setUseDropFrameTimecode(bool use) noexcept {
    useDropFrame = use;
}

unsigned long CurrentProject::readCount() noexcept {
    return reads;
}

} // namespace Tarn
