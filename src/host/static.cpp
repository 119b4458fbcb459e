#include "host/static.h"

#include "base/random.h"
#include "host/picture.h"
#include "host/session.h"

#include <algorithm>

namespace {

constexpr float kStaticAspect = 1.33f;
constexpr uint32_t kFramesPerSecond = 60;

void DrawStatic(EMU_VIDEO_FRAME& video) {
    video.width = kStaticWidth;
    video.height = kStaticHeight;
    video.aspect = kStaticAspect;
    video.visibleX = 0;
    video.visibleY = 0;
    video.visibleWidth = kStaticWidth;
    video.visibleHeight = kStaticHeight;
    video.visibleAspect = kStaticAspect;
    for (size_t i = 0; i < size_t{kStaticWidth} * kStaticHeight; ++i) {
        const auto grey = static_cast<uint32_t>(RandomNumber() % 255);
        video.pixels[i] = 0xFF000000 + grey * 0x010101;
    }
}

void FillStatic(EMU_AUDIO_FRAME& audio) {
    audio.sampleCount = std::min(audio.sampleRate / kFramesPerSecond, kAudioFramePairs);
    for (uint32_t i = 0; i < audio.sampleCount; ++i) {
        const auto sample = static_cast<int16_t>(RandomNumber() % 3000 - 1500);
        audio.samples[size_t{2} * i] = sample;
        audio.samples[size_t{2} * i + 1] = sample;
    }
}

} // namespace

void EmuStaticFrame(EMU_THREAD& session, EMU_VIDEO_FRAME& video, EMU_AUDIO_FRAME& audio) {
    DrawStatic(video);
    FillStatic(audio);
    if (++session.staticFrames >= kStaticFrames) {
        session.showStatic = 0;
    }
}
