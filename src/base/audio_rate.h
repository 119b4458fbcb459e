// Sample pairs a second of the whole program: 44,100 until it is set, once, at program start from
// `audio_app_samplerate`. The sound device keeps its rate for the run, so a change of the setting
// takes effect at the next start. Set before any other thread runs.
#pragma once

#include <cstdint>

void SetAudioRate(uint32_t rate);
[[nodiscard]] uint32_t AudioRate();
