// Settings that hold for this run alone: set from the command line, and put back before the settings
// are saved.
//
// Process-wide; the main thread alone.
#pragma once

#include <string>

enum class RunSetting { kSet, kUnknown, kNoValue };

// Sets a setting of the store from text, by the type it was registered with, and keeps what it was.
[[nodiscard]] RunSetting SetForThisRun(const std::string& name, const std::string& value);

// Puts back what was there before, except what has been changed again since.
void RestoreRunSettings();
