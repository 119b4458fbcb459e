#include "screens/option_rows.h"

#include "facts/machine_facts.h"
#include "settings/settings.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr OPTION_CHOICE kEnabledDisabled[] = {
    {L"Enabled",  1},
    {L"Disabled", 0},
};
constexpr OPTION_CHOICE kVideoStarts[] = {
    {L"3D TV",      0},
    {L"Fullscreen", 1},
};
constexpr OPTION_CHOICE kCoreManagers[] = {
    {L"System",    0},
    {L"Ombrelune", 1},
};
constexpr OPTION_CHOICE kScreenshots[] = {
    {L"Content",           0},
    {L"Content & Borders", 1},
};
constexpr OPTION_CHOICE kShotParts[] = {
    {L"Game's Picture",  0},
    {L"Window as Shown", 1},
};
constexpr OPTION_CHOICE kShotFiles[] = {
    {L"PNG", 0},
    {L"BMP", 1},
};
constexpr OPTION_CHOICE kSpeeds[] = {
    {L"2x",  2 },
    {L"3x",  3 },
    {L"4x",  4 },
    {L"6x",  6 },
    {L"8x",  8 },
    {L"10x", 10},
};
constexpr OPTION_CHOICE kRewindBuffers[] = {
    {L"128MB",  128 },
    {L"256MB",  256 },
    {L"512MB",  512 },
    {L"768MB",  768 },
    {L"1024MB", 1024},
};
constexpr OPTION_CHOICE kRecordMinutes[] = {
    {L"Nothing",    0 },
    {L"2 Minutes",  2 },
    {L"5 Minutes",  5 },
    {L"15 Minutes", 15},
    {L"60 Minutes", 60},
};
constexpr OPTION_CHOICE kWindowSizes[] = {
    {L"1280x720 (16:9)",  1280, 720},
    {L"1280x960 (4:3)",   1280, 960},
    {L"1366x768 (16:9)",  1366, 768},
    {L"1440x900 (16:10)", 1440, 900},
};
constexpr OPTION_CHOICE kScalers[] = {
    {L"None",      0},
    {L"Edges, 2x", 1},
    {L"Edges, 4x", 2},
    {L"Soft, 4x",  3},
};
constexpr OPTION_CHOICE kPixels[] = {
    {L"Sharp",  0},
    {L"Smooth", 1},
};
constexpr OPTION_CHOICE kCrops[] = {
    {L"As on a television", 1},
    {L"With its borders",   0},
};
constexpr OPTION_CHOICE kLighting[] = {
    {L"High", 1},
    {L"Low",  0},
};
constexpr OPTION_CHOICE kSampleRates[] = {
    {L"22050",  22050 },
    {L"44100",  44100 },
    {L"48000",  48000 },
    {L"96000",  96000 },
    {L"192000", 192000},
};
constexpr OPTION_CHOICE kSoundQualities[] = {
    {L"Good",       0},
    {L"Very Good",  1},
    {L"Holy Shit!", 2},
};

constexpr OPTION_CHOICE kScales[] = {
    {L"Whole Multiples",  1},
    {L"As Large as Fits", 0},
};
constexpr OPTION_CHOICE kAspects[] = {
    {L"As the Machine Says", 0},
    {L"4:3",                 1},
    {L"Square Dots",         2},
};
// The same on both sides of a direction: others are set in config.xml and with --overscan.
constexpr OPTION_CHOICE kOverscans[] = {
    {L"Nothing",              0,  0 },
    {L"8 Dots Above, Below",  8,  0 },
    {L"8 Dots at the Sides",  0,  8 },
    {L"8 Dots at Each Edge",  8,  8 },
    {L"16 Dots at Each Edge", 16, 16},
};

constexpr OPTION_SLIDER kNoSlider{nullptr, 0.0f, 0.0f};
constexpr OPTION_SLIDER kVolume{L"PROGRESSBAR_VOLUME", 0.0f, 1.0f};
constexpr OPTION_SLIDER kStrength{L"PROGRESSBAR", 0.0f, 1.0f};
constexpr OPTION_SLIDER kBoost{L"PROGRESSBAR", 0.0f, 2.0f};

constexpr OPTION_ROW Switch(OptionTab tab, const wchar_t* label, const wchar_t* setting,
                            std::span<const OPTION_CHOICE> choices, OptionEffect effect,
                            const wchar_t* help) {
    return {tab,     label, OptionKind::kSwitch, setting, nullptr,
            choices, L"",   kNoSlider,           effect,  help};
}

constexpr OPTION_ROW Number(OptionTab tab, const wchar_t* label, const wchar_t* setting,
                            std::span<const OPTION_CHOICE> choices, const wchar_t* unit,
                            OptionEffect effect, const wchar_t* help) {
    return {tab,     label, OptionKind::kNumber, setting, nullptr,
            choices, unit,  kNoSlider,           effect,  help};
}

constexpr OPTION_ROW Slider(const wchar_t* label, const wchar_t* setting,
                            const OPTION_SLIDER& slider, const wchar_t* help,
                            OptionTab tab = OptionTab::kSound) {
    return {tab, label,  OptionKind::kSlider,   setting, nullptr, {},
            L"", slider, OptionEffect::kAtOnce, help};
}

constexpr OPTION_ROW Overscan(uint16_t system, const wchar_t* label, const wchar_t* setting,
                              const wchar_t* help) {
    OPTION_ROW row{OptionTab::kPicture,
                   label,
                   OptionKind::kOverscan,
                   setting,
                   nullptr,
                   kOverscans,
                   L"",
                   kNoSlider,
                   OptionEffect::kAtOnce,
                   help};
    row.system = system;
    return row;
}

using enum OptionTab;
using enum OptionEffect;

constexpr OPTION_ROW kRows[] = {
    Switch(kGeneral, L"Start Emulated Video:", L"emu_startfullscreen", kVideoStarts, kAtOnce,
           L"Whether a game begins on the television in the room or fills the whole window."),
    Switch(kGeneral, L"Manage CPU Cores:", L"app_managecpucores", kCoreManagers, kRestart,
           L"Who spreads running games over the processor's cores: your system, or Ombrelune, "
           L"which gives each game a core of its own."),
    Switch(kGeneral, L"Screenshots:", L"app_screenshotfull", kScreenshots, kAtOnce,
           L"Whether a screenshot shows only the game's picture or also the border that a "
           L"television hides."),
    Switch(
        kGeneral, L"Screenshots Show:", L"app_screenshotwindow", kShotParts, kAtOnce,
        L"Whether a screenshot holds the dots of the machine or the window with everything in it."),
    Switch(kGeneral, L"Screenshot Files:", L"app_screenshotbmp", kShotFiles, kAtOnce,
           L"The kind of a screenshot's file: only PNG notes the game, its machine and the time."),
    Switch(kGeneral, L"Keys at the Start:", L"app_keycard", kEnabledDisabled, kAtOnce,
           L"Shows the keys of the machine for some seconds in the first games that you start."),
    Number(kGeneral, L"Fast Forward:", L"emu_fastforward", kSpeeds, L"x", kNextGame,
           L"How many times faster a game runs while you hold the key of Fast Forward."),
    Number(kGeneral, L"Rewind Buffer:", L"emu_rewindbuffer", kRewindBuffers, L"MB", kAtOnce,
           L"The memory that each running game may use to remember its past: more of it lets you "
           L"rewind further."),
    Switch(kGeneral, L"Pause Without Focus:", L"emu_pauseunfocused", kEnabledDisabled, kAtOnce,
           L"Whether games wait while another window has the keyboard."),
    Number(kGeneral, L"Remember Play:", L"emu_recordminutes", kRecordMinutes, L" Minutes",
           kNextGame,
           L"How much of what you just played can be saved as a recording, which plays it again "
           L"exactly."),

    Switch(kGraphics, L"Fullscreen:", L"app_fullscreen", kEnabledDisabled, kAtOnce,
           L"Whether Ombrelune fills the whole display or runs in a window."),
    {kGraphics, L"Windowed Dimensions:", OptionKind::kWindowSize, L"app_window_width",
       L"app_window_height", kWindowSizes, L"", kNoSlider, kAtOnce,
       L"The size of the window in pixels while it does not fill the display."},
    Switch(kGraphics, L"Lighting Quality:", L"app_lighting", kLighting, kAtOnce,
           L"High lights the room with its lamp and its screens; Low shows everything "
           L"equally bright, which suits slow graphics cards."),
    Switch(kGraphics, L"Anti Aliasing:", L"app_antialias", kEnabledDisabled, kRestart,
           L"Smooths the edges of the furniture in the room, at some cost to the graphics card."),
    Switch(kGraphics, L"Anisotropic Filtering:", L"app_anisotropicfiltering", kEnabledDisabled,
           kAtOnce, L"Keeps floor and walls sharp where you see them at a flat angle."),
    Switch(kGraphics, L"VSYNC:", L"app_vsync", kEnabledDisabled, kAtOnce,
           L"Waits for the display before each picture, so that moving pictures do not tear."),
    Switch(kGraphics, L"Emulator 3D Filter:", L"emu_gameroomfilter", kEnabledDisabled, kAtOnce,
           L"Smooths the pictures of televisions that are far away in the room."),

    Switch(kPicture, L"In a Window:", L"video_integer_window", kScales, kAtOnce,
           L"Whether every row of a game's picture is as many whole pixels high as all others, "
           L"with a border "
           L"around it, or the picture fills the window."),
    Switch(kPicture, L"In Full Screen:", L"video_integer_full", kScales, kAtOnce,
           L"The same while Ombrelune fills the whole display."),
    Number(kPicture, L"Shape:", L"video_aspect", kAspects, L"", kAtOnce,
           L"How wide the picture of a game is: as its machine's was on a television, 4:3, or with "
           L"dots "
           L"that are as wide as high."),
    Slider(L"CRT:", L"video_crt", kStrength,
           L"How strongly a game over the whole window looks as on a picture tube, in percent; 0 "
           L"is plain.",
           kPicture),
    Number(kPicture, L"Scaler:", L"emu_scaler", kScalers, L"", kAtOnce,
           L"Enlarges the picture of a game that fills the window before it is drawn: along its "
           L"edges, or softly; F6 steps through them."),
    Switch(kPicture, L"Pixels:", L"emu_smooth", kPixels, kAtOnce,
           L"Whether the pixels of a game that fills the window have sharp edges or flow into each "
           L"other; F5 does the same."),
    Switch(kPicture, L"Shown Picture:", L"emu_crop", kCrops, kAtOnce,
           L"Whether you see the part of the picture that a television shows, or all of it; F3 "
           L"does the same."),
    Overscan(
        kSystemMasterSystem, L"Cut off, Master System:", L"sms_overscan_left",
        L"What is cut off at the edges of the Master System's picture, as a television hides it."),
    Overscan(kSystemGameGear, L"Cut off, Game Gear:", L"gamegear_overscan_left",
             L"What is cut off at the edges of the Game Gear's picture, which its own screen shows "
             L"whole."),
    Overscan(
        kSystemMegaDrive, L"Cut off, Mega Drive:", L"megadrive_overscan_left",
        L"What is cut off at the edges of the Mega Drive's picture, as a television hides it."),
    Overscan(kSystemNes, L"Cut off, NES:", L"nes_overscan_left",
             L"What is cut off at the edges of the NES's picture: many games leave garbage in the "
             L"outermost 8 dots."),
    Overscan(kSystemArcade, L"Cut off, System E:", L"arcade_overscan_left",
             L"What is cut off at the edges of the arcade board's picture, which its own screen "
             L"shows whole."),

    Number(kSound, L"Sample Rate:", L"audio_app_samplerate", kSampleRates, L"", kRestart,
           L"How many samples of sound go to your sound card each second; most cards run at "
           L"48000."),
    Number(kSound, L"Sound Quality:", L"audio_app_quality", kSoundQualities, L"", kNextGame,
           L"How carefully the sound chips' output is brought to the sample rate: better quality "
           L"takes more of the processor."),
    Switch(kSound, L"Cut Off Filter:", L"emu_audiocutoff_enabled", kEnabledDisabled, kNextGame,
           L"Takes away the highest tones, as the loudspeaker of a television of the time did."),
    Slider(L"Volume:", L"audio_volume", kVolume, L"How loud everything is, in percent."),
    Slider(L"Bass Boost:", L"audio_boost_low", kBoost,
           L"How strong the low tones are, in percent of what the machine makes."),
    Slider(L"Mid Boost:", L"audio_boost_mid", kBoost,
           L"How strong the middle tones are, in percent of what the machine makes."),
    Slider(L"High Boost:", L"audio_boost_high", kBoost,
           L"How strong the high tones are, in percent of what the machine makes."),
};

struct STORED {
    int32_t value;
    int32_t second;
    bool even = true; // an overscan with two equal edges in each direction
    bool operator==(const STORED&) const = default;
};

struct EDGES {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

std::wstring EdgeName(const OPTION_ROW& row, const wchar_t* edge) {
    std::wstring name = row.setting;
    name.resize(name.size() - std::wstring_view(L"left").size());
    return name + edge;
}

EDGES StoredEdges(const OPTION_ROW& row) {
    const auto edge = [&](const wchar_t* name) { return Settings().GetInt(EdgeName(row, name)); };
    return {edge(L"left"), edge(L"top"), edge(L"right"), edge(L"bottom")};
}

void StoreEdges(const OPTION_ROW& row, const EDGES& edges) {
    Settings().SetInt(EdgeName(row, L"left"), edges.left);
    Settings().SetInt(EdgeName(row, L"top"), edges.top);
    Settings().SetInt(EdgeName(row, L"right"), edges.right);
    Settings().SetInt(EdgeName(row, L"bottom"), edges.bottom);
}

STORED Stored(const OPTION_ROW& row) {
    const SettingsStore& settings = Settings();
    switch (row.kind) {
    case OptionKind::kSwitch: return {settings.GetBool(row.setting) ? 1 : 0, 0};
    case OptionKind::kWindowSize:
        return {settings.GetInt(row.setting), settings.GetInt(row.secondSetting)};
    case OptionKind::kOverscan: {
        const EDGES edges = StoredEdges(row);
        return {edges.top, edges.left, edges.top == edges.bottom && edges.left == edges.right};
    }
    default: return {settings.GetInt(row.setting), 0};
    }
}

} // namespace

std::span<const OPTION_ROW> OptionRows() {
    return kRows;
}

int32_t StoredChoice(const OPTION_ROW& row) {
    const STORED stored = Stored(row);
    const auto found =
        std::find_if(row.choices.begin(), row.choices.end(), [&](const OPTION_CHOICE& choice) {
            return STORED{choice.value, choice.second} == stored;
        });
    return found == row.choices.end() ? -1 : static_cast<int32_t>(found - row.choices.begin());
}

std::wstring StoredText(const OPTION_ROW& row) {
    if (const int32_t choice = StoredChoice(row); choice >= 0) {
        return row.choices[static_cast<size_t>(choice)].text;
    }
    if (row.kind == OptionKind::kOverscan) {
        const EDGES edges = StoredEdges(row);
        return std::to_wstring(edges.left) + L", " + std::to_wstring(edges.top) + L", " +
               std::to_wstring(edges.right) + L", " + std::to_wstring(edges.bottom);
    }
    const auto [value, second, even] = Stored(row);
    return row.kind == OptionKind::kWindowSize
               ? std::to_wstring(value) + L"x" + std::to_wstring(second)
               : std::to_wstring(value) + row.unit;
}

bool StoreChoice(const OPTION_ROW& row, int32_t choice) {
    if (choice < 0 || static_cast<size_t>(choice) >= row.choices.size() ||
        choice == StoredChoice(row)) {
        return false;
    }
    const OPTION_CHOICE& chosen = row.choices[static_cast<size_t>(choice)];
    SettingsStore& settings = Settings();
    switch (row.kind) {
    case OptionKind::kSwitch: settings.SetBool(row.setting, chosen.value != 0); break;
    case OptionKind::kWindowSize:
        settings.SetInt(row.setting, chosen.value);
        settings.SetInt(row.secondSetting, chosen.second);
        break;
    case OptionKind::kOverscan:
        StoreEdges(row, {chosen.second, chosen.value, chosen.second, chosen.value});
        break;
    default: settings.SetInt(row.setting, chosen.value); break;
    }
    return true;
}

float StoredSlider(const OPTION_ROW& row) {
    const float stored = Settings().GetFloat(row.setting);
    return std::clamp((stored - row.slider.minimum) / row.slider.range, 0.0f, 1.0f);
}

void StoreSlider(const OPTION_ROW& row, float value) {
    Settings().SetFloat(row.setting, value * row.slider.range + row.slider.minimum);
}
