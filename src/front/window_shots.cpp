#include "front/window_shots.h"

#include "base/helper_thread.h"
#include "base/ranked_mutex.h"
#include "machine/emu_system.h"

#include <mutex>
#include <optional>
#include <utility>

namespace {

struct ASKED {
    RankedMutex<LockRank::kLeaf> lock;
    std::optional<SCREENSHOT_FACTS> facts;
};

ASKED& Asked() {
    static ASKED asked;
    return asked;
}

void Write(std::vector<uint32_t> pixels, uint32_t width, uint32_t height,
           const SCREENSHOT_FACTS& facts) {
    HelperBegins();
    EMU_VIDEO_FRAME frame{};
    frame.pixels = pixels.data();
    frame.width = width;
    frame.height = height;
    WriteScreenshotFile(frame, true, facts);
}

} // namespace

void WindowShots::Ask(const SCREENSHOT_FACTS& facts) {
    const std::scoped_lock hold(Asked().lock);
    Asked().facts = facts;
}

bool WindowShots::Wanted() {
    const std::scoped_lock hold(Asked().lock);
    return Asked().facts.has_value();
}

void WindowShots::Take(std::vector<uint32_t> pixels, uint32_t width, uint32_t height) {
    std::optional<SCREENSHOT_FACTS> facts;
    {
        const std::scoped_lock hold(Asked().lock);
        facts.swap(Asked().facts);
    }
    Wait();
    if (facts) {
        writer = std::thread(Write, std::move(pixels), width, height, *facts);
    }
}

void WindowShots::Wait() {
    if (writer.joinable()) {
        writer.join();
    }
}
