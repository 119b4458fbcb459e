#include "machine/sound_settings.h"

#include "base/audio_rate.h"
#include "settings/settings.h"

SOUND_CHOICE SoundChoiceFromSettings() {
    const SettingsStore& settings = Settings();
    SOUND_CHOICE choice;
    choice.rate = AudioRate();
    choice.quality = settings.GetInt(L"audio_app_quality");
    choice.cutoff = settings.GetBool(L"emu_audiocutoff_enabled");
    choice.cutoffLow = settings.GetInt(L"emu_audiocutoff_low");
    choice.cutoffHigh = settings.GetInt(L"emu_audiocutoff_high");
    return choice;
}
