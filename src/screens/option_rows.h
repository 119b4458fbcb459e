// What the options screen shows: a row for each setting, with its values, its help, and when a change takes effect.
//
// A stored value that is not in a row's list is kept until the player chooses another one.
#pragma once

#include <cstdint>
#include <span>
#include <string>

enum class OptionTab : uint8_t { kGeneral, kGraphics, kPicture, kSound, kInput };
inline constexpr size_t kOptionTabs = 5;

enum class OptionKind : uint8_t {
    kSwitch,     // a bool setting
    kNumber,     // an int setting
    kWindowSize, // two int settings: width and height
    kOverscan,   // four int settings: dots cut off at the left, above, at the right and below
    kSlider      // a float setting
};

// From when on a change acts, beside at once.
enum class OptionEffect : uint8_t { kAtOnce, kNextGame, kRestart };

struct OPTION_CHOICE {
    const wchar_t* text;
    int32_t value;      // 0 or 1 for a switch; a width in pixels; dots above and below
    int32_t second = 0; // a height in pixels; dots at the left and at the right
};

// The setting is `value * range + minimum`, the value being 0 to 1. The slider shows it in percent.
struct OPTION_SLIDER {
    const wchar_t* style;
    float minimum;
    float range;
};

struct OPTION_ROW {
    OptionTab tab;
    const wchar_t* label;
    OptionKind kind;
    const wchar_t*
        setting; // of an overscan the left edge's, in whose name others are put for "left"
    const wchar_t* secondSetting; // of a window's size; null: none
    std::span<const OPTION_CHOICE> choices;
    const wchar_t* unit; // after a stored number that is no choice
    OPTION_SLIDER slider;
    OptionEffect effect;
    const wchar_t* help; // one sentence
    bool ofRoom = false; // it changes the room's pictures, not the game's
};

// In the order of the screen, tab after tab.
[[nodiscard]] std::span<const OPTION_ROW> OptionRows();

// The index of the row's choice that the settings hold; -1 if it is none of them.
[[nodiscard]] int32_t StoredChoice(const OPTION_ROW& row);
// The stored value as a text: that of its choice, or the number itself.
[[nodiscard]] std::wstring StoredText(const OPTION_ROW& row);
// True when a setting has changed by it.
bool StoreChoice(const OPTION_ROW& row, int32_t choice);

// The slider's value, 0 to 1, for what the settings hold.
[[nodiscard]] float StoredSlider(const OPTION_ROW& row);
void StoreSlider(const OPTION_ROW& row, float value);
