// The default settings and actions, listed a second time, so that an accidental change fails.
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct ROW {
    SettingType type;
    const wchar_t* name;
    double value; // 0 or 1 for a bool
};

constexpr SettingType kBool = SettingType::kBool;
constexpr SettingType kInt = SettingType::kInt;
constexpr SettingType kFloat = SettingType::kFloat;
constexpr SettingType kString = SettingType::kString;

constexpr ROW kRows[] = {
    {kBool,   L"app_720runonce",            0    },
    {kBool,   L"emu_startfullscreen",       0    },
    {kBool,   L"app_fullscreen",            1    },
    {kBool,   L"app_antialias",             0    },
    {kBool,   L"app_anisotropicfiltering",  0    },
    {kBool,   L"app_vsync",                 1    },
    {kBool,   L"app_lighting",              1    },
    {kBool,   L"app_screenshotfull",        0    },
    {kBool,   L"app_screenshotwindow",      0    },
    {kBool,   L"app_screenshotbmp",         0    },
    {kInt,    L"app_window_width",          1280 },
    {kInt,    L"app_window_height",         720  },
    {kString, L"app_window_place",          0    },
    {kBool,   L"app_keycard",               1    },
    {kInt,    L"app_keycards",              0    },
    {kBool,   L"app_managecpucores",        0    },
    {kInt,    L"gamebrowser_cursystem",     0    },
    {kString, L"room_place",                0    },
    {kBool,   L"library_keepsources",       0    },
    {kInt,    L"library_owngames",          0    },
    {kInt,    L"emu_fastforward",           2    },
    {kBool,   L"emu_gameroomfilter",        0    },
    {kInt,    L"emu_scaler",                0    },
    {kBool,   L"emu_smooth",                0    },
    {kBool,   L"emu_crop",                  1    },
    {kInt,    L"emu_rewindbuffer",          256  },
    {kInt,    L"emu_autosaves",             3    },
    {kBool,   L"emu_pauseunfocused",        0    },
    {kFloat,  L"megadrive_psgvolume",       1.25 },
    {kFloat,  L"megadrive_ymvolume",        1.0  },
    {kBool,   L"login_connectstartup",      0    },
    {kString, L"login_username",            0    },
    {kString, L"login_userpass",            0    },
    {kInt,    L"audio_app_quality",         1    },
    {kInt,    L"audio_app_samplerate",      44100},
    {kFloat,  L"audio_volume",              1.0  },
    {kInt,    L"emu_audiocutoff_low",       800  },
    {kInt,    L"emu_audiocutoff_high",      15000},
    {kBool,   L"emu_audiocutoff_enabled",   0    },
    {kFloat,  L"audio_boost_low",           1.25 },
    {kFloat,  L"audio_boost_mid",           1.0  },
    {kFloat,  L"audio_boost_high",          1.0  },
    {kBool,   L"video_integer_window",      1    },
    {kBool,   L"video_integer_full",        0    },
    {kInt,    L"video_aspect",              0    },
    {kFloat,  L"video_crt",                 0    },
    {kString, L"web_service",               0    },
    {kString, L"web_images",                0    },
    {kInt,    L"sms_overscan_left",         0    },
    {kInt,    L"sms_overscan_top",          0    },
    {kInt,    L"sms_overscan_right",        0    },
    {kInt,    L"sms_overscan_bottom",       0    },
    {kInt,    L"gamegear_overscan_left",    0    },
    {kInt,    L"gamegear_overscan_top",     0    },
    {kInt,    L"gamegear_overscan_right",   0    },
    {kInt,    L"gamegear_overscan_bottom",  0    },
    {kInt,    L"nes_overscan_left",         0    },
    {kInt,    L"nes_overscan_top",          0    },
    {kInt,    L"nes_overscan_right",        0    },
    {kInt,    L"nes_overscan_bottom",       0    },
    {kInt,    L"arcade_overscan_left",      0    },
    {kInt,    L"arcade_overscan_top",       0    },
    {kInt,    L"arcade_overscan_right",     0    },
    {kInt,    L"arcade_overscan_bottom",    0    },
    {kInt,    L"megadrive_overscan_left",   0    },
    {kInt,    L"megadrive_overscan_top",    0    },
    {kInt,    L"megadrive_overscan_right",  0    },
    {kInt,    L"megadrive_overscan_bottom", 0    },
};

struct ACTION {
    std::wstring name;
    uint32_t binding;
    uint32_t second = 0; // of the second player
};

void AddPlayers(std::vector<ACTION>& actions, const std::wstring& system,
                const std::vector<ACTION>& buttons) {
    for (const ACTION& button : buttons) {
        actions.push_back({system + L" P1 " + button.name, button.binding});
    }
    for (const ACTION& button : buttons) {
        actions.push_back({system + L" P2 " + button.name, button.second});
    }
}

std::vector<ACTION> ExpectedActions() {
    std::vector<ACTION> actions = {
        {L"Move Forward",        26            },
        {L"Move Back",           22            },
        {L"Move Left",           4             },
        {L"Move Right",          7             },
        {L"Use",                 8             },
        {L"Turn Off",            20            },
        {L"Slow Movement",       44            },
        {L"Take ScreenShot",     69            },
        {L"Fast Forward",        43            },
        {L"Rewind",              196651        },
        {L"Load State",          65            },
        {L"Save State",          64            },
        {L"Saved States",        66            },
        {L"Game Menu",           58            },
        {L"Pause",               19            },
        {L"Slow Motion",         47            },
        {L"Frame Step",          48            },
        {L"Toggle Fast Forward", 192 << 16 | 43},
        {L"Reset",               192 << 16 | 21},
        {L"Mute",                39            },
        {L"Volume Down",         45            },
        {L"Volume Up",           46            },
    };
    AddPlayers(actions, L"NES",
               {
                   {L"UP",      82,  12},
                   {L"DOWN",    81,  14},
                   {L"LEFT",    80,  13},
                   {L"RIGHT",   79,  15},
                   {L"BUTTONB", 4,   9 },
                   {L"BUTTONA", 22,  10},
                   {L"SELECT",  229, 21},
                   {L"START",   40,  23}
    });
    const std::vector<ACTION> sixButtons = {
        {L"UP",      82, 12},
        {L"DOWN",    81, 14},
        {L"LEFT",    80, 13},
        {L"RIGHT",   79, 15},
        {L"BUTTON1", 4,  9 },
        {L"BUTTON2", 22, 10},
        {L"BUTTON3", 7,  11},
        {L"BUTTON4", 29, 25},
        {L"BUTTON5", 27, 5 },
        {L"BUTTON6", 6,  17}
    };
    actions.push_back({L"Arcade Insert Coin1", 34});
    actions.push_back({L"Arcade Insert Coin2", 35});
    actions.push_back({L"Arcade Start1", 30});
    actions.push_back({L"Arcade Start2", 31});
    AddPlayers(actions, L"Arcade", sixButtons);
    actions.push_back({L"SMS PAUSE", 44});
    actions.push_back({L"SMS RESET", 76});
    AddPlayers(actions, L"SMS", sixButtons);
    actions.push_back({L"MEGADRIVE PAUSE", 44});
    actions.push_back({L"MEGADRIVE RESET", 76});
    AddPlayers(actions, L"MEGADRIVE",
               {
                   {L"UP",      82, 12},
                   {L"DOWN",    81, 14},
                   {L"LEFT",    80, 13},
                   {L"RIGHT",   79, 15},
                   {L"START",   40, 23},
                   {L"MODE",    42, 21},
                   {L"BUTTONA", 29, 25},
                   {L"BUTTONB", 27, 5 },
                   {L"BUTTONC", 6,  17},
                   {L"BUTTONX", 4,  9 },
                   {L"BUTTONY", 22, 10},
                   {L"BUTTONZ", 7,  11}
    });
    AddPlayers(actions, L"GG",
               {
                   {L"UP",      82, 12},
                   {L"DOWN",    81, 14},
                   {L"LEFT",    80, 13},
                   {L"RIGHT",   79, 15},
                   {L"BUTTON1", 4,  9 },
                   {L"BUTTON2", 22, 10},
                   {L"START",   40, 23}
    });
    return actions;
}

// From the oldest to the newest, which is the order of registration.
std::vector<const Setting*> InOrder(const SettingsStore& store) {
    std::vector<const Setting*> settings;
    for (const Setting* setting = store.First(); setting != nullptr;
         setting = setting->next.get()) {
        settings.insert(settings.begin(), setting);
    }
    return settings;
}

TEST(SettingsTable, DefaultsAreInTheirOrderWithTheirTypesAndValues) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    const std::vector<const Setting*> settings = InOrder(store);
    ASSERT_EQ(settings.size(), std::size(kRows) + ExpectedActions().size());
    for (size_t i = 0; i < std::size(kRows); ++i) {
        const ROW& row = kRows[i];
        SCOPED_TRACE(std::string(row.name, row.name + std::wcslen(row.name)));
        EXPECT_EQ(settings[i]->name, row.name);
        EXPECT_EQ(settings[i]->type.load(), row.type);
        EXPECT_EQ(store.GetInt(row.name), row.type == kInt ? row.value : 0);
        EXPECT_EQ(store.GetBool(row.name), row.type == kBool && row.value == 1);
        EXPECT_EQ(static_cast<double>(store.GetFloat(row.name)),
                  row.type == kFloat ? row.value : 0.0);
        EXPECT_EQ(store.GetString(row.name), L"");
    }
}

TEST(SettingsTable, TheActionTableHasItsNamesOrderAndDefaults) {
    const std::vector<ACTION> expected = ExpectedActions();
    const std::span<const INPUT_ACTION> actions = InputActions();
    ASSERT_EQ(actions.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(actions[i].name, expected[i].name);
        EXPECT_EQ(actions[i].defaultBinding, expected[i].binding)
            << std::string(expected[i].name.begin(), expected[i].name.end());
    }
}

TEST(SettingsTable, BindingsFollowTheSettingsWithAPrimaryDefaultAndNoSecondary) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    const std::vector<const Setting*> settings = InOrder(store);
    const std::vector<ACTION> expected = ExpectedActions();
    ASSERT_EQ(settings.size(), std::size(kRows) + expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        const Setting& setting = *settings[std::size(kRows) + i];
        EXPECT_EQ(setting.type.load(), SettingType::kInt2);
        EXPECT_EQ(&setting, store.Find(L"INPUT " + expected[i].name));
        EXPECT_EQ(setting.intValue.load(), static_cast<int32_t>(expected[i].binding));
        EXPECT_EQ(setting.intValue2.load(), 0);
    }
}

} // namespace
