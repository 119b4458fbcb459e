// A WAV file as samples for the Mega Drive's DAC.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// The player's own rate.
constexpr uint32_t kSampleRate = 8900; // Hz

// Takes 8 bits, one channel and that rate. The table is named after the file and ends with a zero, so
// no sample may be 0. `error` names the file.
[[nodiscard]] bool ConvertSamples(const std::filesystem::path& file, std::string& text,
                                  std::string& error);
