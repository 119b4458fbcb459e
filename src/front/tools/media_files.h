// Pictures and sound as files: PNG and WAV.
#pragma once

#include "machine/emu_system.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The visible window of a picture as a PNG of 24 bits a pixel; the same picture makes the same bytes.
// Empty for a picture without pixels.
[[nodiscard]] std::vector<uint8_t> PngOfFrame(const EMU_VIDEO_FRAME& frame);

// Interleaved stereo as a WAV file of 16 bits a sample.
[[nodiscard]] std::vector<uint8_t> WavOfSamples(std::span<const int16_t> samples, uint32_t rate);
