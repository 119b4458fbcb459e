#include "front/volume_keys.h"

#include "audio/sound.h"
#include "front/notices.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

namespace {

constexpr const wchar_t* kVolume = L"audio_volume";
constexpr int kSteps = 10; // from silence to the full volume

float Volume() {
    return Settings().GetFloat(kVolume);
}

std::string VolumeNotice(int percent) {
    char text[64] = {};
    std::snprintf(text, sizeof text, "Volume %d %%", percent);
    return text;
}

} // namespace

void VolumeKeys::Update(bool act) {
    const InputFrame frame(looker, kApplicationKey);
    const auto pressed = [act](const wchar_t* action, bool& held) {
        const bool down = InputIsDown(kApplicationKey, action);
        return !std::exchange(held, down) && down && act;
    };
    const bool mute = pressed(L"Mute", muteHeld);
    const bool down = pressed(L"Volume Down", downHeld);
    const bool up = pressed(L"Volume Up", upHeld);
    if (mute) {
        ToggleMute();
    }
    if (down != up) {
        Change(up ? 1 : -1);
    }
    // A device that was opened meanwhile has the volume of the setting.
    if (muted && SoundVolume() != 0.0f) {
        Apply();
    }
}

void VolumeKeys::Apply() {
    muted = muted && Volume() == mutedAt;
    SoundSetVolume(muted ? 0.0f : Volume());
}

void VolumeKeys::ToggleMute() {
    muted = !muted;
    mutedAt = Volume();
    Apply();
    PostNotice(muted ? "Sound off" : "Sound on");
}

// A volume between two steps goes to the next one in that direction.
void VolumeKeys::Change(int steps) {
    const float at = std::clamp(Volume(), 0.0f, 1.0f) * kSteps;
    const float next = steps > 0 ? std::floor(at + 0.01f) + 1.0f : std::ceil(at - 0.01f) - 1.0f;
    const int step = std::clamp(static_cast<int>(next), 0, kSteps);
    muted = false;
    Settings().SetFloat(kVolume, static_cast<float>(step) / kSteps);
    Apply();
    PostNotice(VolumeNotice(step * 100 / kSteps));
}
