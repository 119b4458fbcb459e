// Settings that hold for this run alone: set from the command line, and put back before the settings
// are saved.
//
// Process-wide; the main thread alone.
#pragma once

#include <string>

enum class RunSetting { kSet, kUnknown, kNoValue };

// Sets a setting from text, by its registered type, and remembers its old value.
[[nodiscard]] RunSetting SetForThisRun(const std::string& name, const std::string& value);

// What values a setting takes, after "is": "a whole number".
[[nodiscard]] std::string RunSettingValues(const std::string& name);

// Writes the settings file with the old values in place of those of this run, which stay in use. False with the reason.
[[nodiscard]] bool SaveWithoutRunSettings(std::string& error);

// Restores the old values, except of settings that have been changed again since.
void RestoreRunSettings();
