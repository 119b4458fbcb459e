// The one place where machines read the sound settings.
#pragma once

#include "machine/chip_sound.h"

// The program's rate, "audio_app_quality" and the three "emu_audiocutoff_" settings, as they are now.
[[nodiscard]] SOUND_CHOICE SoundChoiceFromSettings();
