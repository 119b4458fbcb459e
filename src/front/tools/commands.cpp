#include "front/tools/commands.h"

#include "base/audio_rate.h"
#include "base/text.h"
#include "front/terminal.h"
#include "settings/settings.h"

#include <string>

void ApplyAudioRate() {
    constexpr int32_t kLowestRate = 8000;
    constexpr int32_t kHighestRate = 192000;
    const int32_t rate = Settings().GetInt(L"audio_app_samplerate");
    if (rate >= kLowestRate && rate <= kHighestRate) {
        SetAudioRate(static_cast<uint32_t>(rate));
    } else {
        Complain("a sample rate of " + std::to_string(rate) + " is not possible; " +
                 std::to_string(AudioRate()) + " is used");
    }
}
