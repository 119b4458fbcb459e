// The one place where machines read the sound settings.
#pragma once

#include "machine/chip_sound.h"

// The current values of the program's rate, "audio_app_quality" and the three "emu_audiocutoff_"
// settings.
[[nodiscard]] SOUND_CHOICE SoundChoiceFromSettings();
