#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/multi_text.h"
#include "gui/slider.h"
#include "gui/text_box.h"
#include "screens/options.h"
#include "screens/panels_rig.h"

#include <map>
#include <set>

namespace {

class Options : public PanelsTest {
protected:
    CGUIOptions& Shown() { return PanelsTest::Shown<CGUIOptions>(); }
    void OpenOptions() { Open(kPanelOptions); }

    // Opens the list of a setting by a click and chooses by keys.
    void Choose(std::wstring_view setting, const std::wstring& text) {
        CGhostDropList* const list = Shown().ListOf(setting);
        for (const OPTION_ROW& row : OptionRows()) {
            if (row.setting == setting) {
                Click(Shown().TabButton(row.tab));
            }
        }
        Click(list->window);
        ASSERT_TRUE(list->IsOpen());
        Round();
        KeepPicture("open");
        PressKey(GHOSTGUIKey::kHome);
        for (int i = 0; i < list->Count() && list->Item(list->List()->Hot())->text != text; ++i) {
            PressKey(GHOSTGUIKey::kDown);
        }
        PressKey(GHOSTGUIKey::kReturn);
        EXPECT_EQ(list->Caption(), text);
    }
};

struct EXPECTED_ROW {
    OptionTab tab;
    const wchar_t* label;
    const wchar_t* setting;
    std::vector<std::wstring> values;
};

TEST_F(Options, HasEveryRowInItsOrderAndWithItsValues) {
    using enum OptionTab;
    const std::vector<std::wstring> onOff = {L"Enabled", L"Disabled"};
    const std::vector<std::wstring> scales = {L"Whole Multiples", L"As Large as Fits"};
    const std::vector<std::wstring> cuts = {L"Nothing", L"8 Dots Above, Below",
                                            L"8 Dots at the Sides", L"8 Dots at Each Edge",
                                            L"16 Dots at Each Edge"};
    const std::vector<EXPECTED_ROW> expected = {
        {kGeneral,  L"Start Emulated Video:",   L"emu_startfullscreen",      {L"3D TV", L"Fullscreen"}                         },
        {kGeneral,  L"Manage CPU Cores:",       L"app_managecpucores",       {L"System", L"Ombrelune"}                         },
        {kGeneral,  L"Screenshots:",            L"app_screenshotfull",       {L"Content", L"Content & Borders"}                },
        {kGeneral,
         L"Screenshots Show:",                  L"app_screenshotwindow",
         {L"Game's Picture", L"Window as Shown"}                                                                               },
        {kGeneral,  L"Screenshot Files:",       L"app_screenshotbmp",        {L"PNG", L"BMP"}                                  },
        {kGeneral,  L"Keys at the Start:",      L"app_keycard",              onOff                                             },
        {kGeneral,
         L"Fast Forward:",                      L"emu_fastforward",
         {L"2x", L"3x", L"4x", L"6x", L"8x", L"10x"}                                                                           },
        {kGeneral,
         L"Rewind Buffer:",                     L"emu_rewindbuffer",
         {L"128MB", L"256MB", L"512MB", L"768MB", L"1024MB"}                                                                   },
        {kGeneral,  L"Pause Without Focus:",    L"emu_pauseunfocused",       onOff                                             },
        {kGraphics, L"Fullscreen:",             L"app_fullscreen",           onOff                                             },
        {kGraphics,
         L"Windowed Dimensions:",               L"app_window_width",
         {L"1280x720 (16:9)", L"1280x960 (4:3)", L"1366x768 (16:9)", L"1440x900 (16:10)"}                                      },
        {kGraphics, L"Scaler:",                 L"emu_scaler",               {L"None", L"Edges, 2x", L"Edges, 4x", L"Soft, 4x"}},
        {kGraphics, L"Pixels:",                 L"emu_smooth",               {L"Sharp", L"Smooth"}                             },
        {kGraphics, L"Shown Picture:",          L"emu_crop",                 {L"As on a television", L"With its borders"}      },
        {kGraphics, L"Lighting Quality:",       L"app_lighting",             {L"High", L"Low"}                                 },
        {kGraphics, L"Anti Aliasing:",          L"app_antialias",            onOff                                             },
        {kGraphics, L"Anisotropic Filtering:",  L"app_anisotropicfiltering", onOff                                             },
        {kGraphics, L"VSYNC:",                  L"app_vsync",                onOff                                             },
        {kGraphics, L"Emulator 3D Filter:",     L"emu_gameroomfilter",       onOff                                             },
        {kPicture,  L"In a Window:",            L"video_integer_window",     scales                                            },
        {kPicture,  L"In Full Screen:",         L"video_integer_full",       scales                                            },
        {kPicture,  L"Shape:",                  L"video_aspect",             {L"As the Machine Says", L"4:3", L"Square Dots"}  },
        {kPicture,  L"CRT:",                    L"video_crt",                {}                                                },
        {kPicture,  L"Cut off, Master System:", L"sms_overscan_left",        cuts                                              },
        {kPicture,  L"Cut off, Game Gear:",     L"gamegear_overscan_left",   cuts                                              },
        {kPicture,  L"Cut off, Mega Drive:",    L"megadrive_overscan_left",  cuts                                              },
        {kPicture,  L"Cut off, NES:",           L"nes_overscan_left",        cuts                                              },
        {kPicture,  L"Cut off, System E:",      L"arcade_overscan_left",     cuts                                              },
        {kSound,
         L"Sample Rate:",                       L"audio_app_samplerate",
         {L"22050", L"44100", L"48000", L"96000", L"192000"}                                                                   },
        {kSound,    L"Sound Quality:",          L"audio_app_quality",        {L"Good", L"Very Good", L"Holy Shit!"}            },
        {kSound,    L"Cut Off Filter:",         L"emu_audiocutoff_enabled",  onOff                                             },
        {kSound,    L"Volume:",                 L"audio_volume",             {}                                                },
        {kSound,    L"Bass Boost:",             L"audio_boost_low",          {}                                                },
        {kSound,    L"Mid Boost:",              L"audio_boost_mid",          {}                                                },
        {kSound,    L"High Boost:",             L"audio_boost_high",         {}                                                },
    };
    OpenOptions();
    ASSERT_EQ(OptionRows().size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        const OPTION_ROW& row = OptionRows()[i];
        EXPECT_EQ(row.tab, expected[i].tab);
        EXPECT_EQ(std::wstring(row.label), expected[i].label);
        EXPECT_EQ(std::wstring(row.setting), expected[i].setting);
        EXPECT_NE(Settings().Find(row.setting), nullptr);
        CGhostDropList* const list = Shown().ListOf(row.setting);
        ASSERT_EQ(list == nullptr, expected[i].values.empty());
        EXPECT_EQ(Shown().SliderOf(row.setting) != nullptr, expected[i].values.empty());
        std::vector<std::wstring> values;
        for (int32_t item = 0; list != nullptr && item < list->Count(); ++item) {
            values.push_back(list->Item(item)->text);
        }
        EXPECT_EQ(values, expected[i].values);
    }
}

TEST_F(Options, EveryRowHasAHelpOfItsOwnThatIsOneSentence) {
    OpenOptions();
    std::set<std::wstring> helps;
    for (const OPTION_ROW& row : OptionRows()) {
        const std::wstring help = row.help;
        EXPECT_TRUE(helps.insert(help).second);
        EXPECT_EQ(help.find(L'.'), help.size() - 1);
        CGhostDropList* const list = Shown().ListOf(row.setting);
        const GHOSTMANAGER_WINDOW* const control =
            list != nullptr ? list->window : Shown().SliderOf(row.setting)->window;
        ASSERT_NE(control->toolTip, nullptr);
        EXPECT_EQ(*control->toolTip, help);
    }
}

TEST_F(Options, ShowTheStoredValues) {
    Settings().SetBool(L"emu_startfullscreen", true);
    Settings().SetInt(L"app_window_width", 1366);
    Settings().SetInt(L"app_window_height", 768);
    Settings().SetInt(L"audio_app_quality", 2);
    Settings().SetFloat(L"audio_volume", 0.5f);
    OpenOptions();
    EXPECT_EQ(Shown().ListOf(L"emu_startfullscreen")->Caption(), L"Fullscreen");
    EXPECT_EQ(Shown().ListOf(L"app_window_width")->Caption(), L"1366x768 (16:9)");
    EXPECT_EQ(Shown().ListOf(L"audio_app_quality")->Caption(), L"Holy Shit!");
    EXPECT_EQ(Shown().ListOf(L"emu_rewindbuffer")->Caption(), L"256MB");
    EXPECT_FLOAT_EQ(Shown().SliderOf(L"audio_volume")->Value(), 0.5f);
    EXPECT_FLOAT_EQ(Shown().SliderOf(L"audio_boost_low")->Value(), 1.25f / 2.0f);
}

TEST_F(Options, OverscanIsFourSettings) {
    Settings().SetInt(L"nes_overscan_top", 8);
    Settings().SetInt(L"nes_overscan_bottom", 8);
    Settings().SetInt(L"sms_overscan_left", 8);
    Settings().SetInt(L"sms_overscan_right", 3);
    OpenOptions();
    EXPECT_EQ(Shown().ListOf(L"nes_overscan_left")->Caption(), L"8 Dots Above, Below");
    EXPECT_EQ(Shown().ListOf(L"sms_overscan_left")->Caption(), L"8, 0, 3, 0") << "no choice's";
    EXPECT_EQ(Shown().ListOf(L"megadrive_overscan_left")->Caption(), L"Nothing");
    Click(Shown().TabButton(OptionTab::kPicture));
    Choose(L"megadrive_overscan_left", L"8 Dots at the Sides");
    Back();
    EXPECT_EQ(Settings().GetInt(L"megadrive_overscan_left"), 8);
    EXPECT_EQ(Settings().GetInt(L"megadrive_overscan_right"), 8);
    EXPECT_EQ(Settings().GetInt(L"megadrive_overscan_top"), 0);
    EXPECT_EQ(Settings().GetInt(L"sms_overscan_right"), 3) << "kept";
}

TEST_F(Options, AreWrittenWhenTheScreenClosesAndNotBefore) {
    OpenOptions();
    Choose(L"emu_startfullscreen", L"Fullscreen");
    Choose(L"app_window_width", L"1440x900 (16:10)");
    Choose(L"app_lighting", L"Low");
    Choose(L"audio_app_samplerate", L"96000");
    Choose(L"emu_fastforward", L"8x");
    EXPECT_FALSE(Settings().GetBool(L"emu_startfullscreen"));
    EXPECT_EQ(Settings().GetInt(L"app_window_width"), 1280);
    EXPECT_EQ(host.settingsChanges, 0);
    EXPECT_EQ(host.saves, 0);
    Back();
    EXPECT_EQ(menu->Panel(), nullptr);
    EXPECT_TRUE(Settings().GetBool(L"emu_startfullscreen"));
    EXPECT_EQ(Settings().GetInt(L"app_window_width"), 1440);
    EXPECT_EQ(Settings().GetInt(L"app_window_height"), 900);
    EXPECT_FALSE(Settings().GetBool(L"app_lighting"));
    EXPECT_EQ(Settings().GetInt(L"audio_app_samplerate"), 96000);
    EXPECT_EQ(Settings().GetInt(L"emu_fastforward"), 8);
    EXPECT_EQ(host.settingsChanges, 1);
    EXPECT_EQ(host.saves, 1);
}

// Each choice of each list goes to the settings and is shown again.
TEST_F(Options, EveryChoiceComesBack) {
    for (const OPTION_ROW& row : OptionRows()) {
        for (const OPTION_CHOICE& choice : row.choices) {
            OpenOptions();
            Choose(row.setting, choice.text);
            Back();
            OpenOptions();
            EXPECT_EQ(Shown().ListOf(row.setting)->Caption(), choice.text);
            Back();
        }
    }
}

TEST_F(Options, ChooseTheValuesThatTheirTextsSay) {
    OpenOptions();
    Choose(L"app_managecpucores", L"Ombrelune");
    Choose(L"app_screenshotfull", L"Content & Borders");
    Choose(L"app_fullscreen", L"Disabled");
    Choose(L"app_vsync", L"Disabled");
    Choose(L"app_antialias", L"Enabled");
    Choose(L"app_anisotropicfiltering", L"Enabled");
    Choose(L"emu_gameroomfilter", L"Enabled");
    Choose(L"emu_audiocutoff_enabled", L"Enabled");
    Choose(L"emu_rewindbuffer", L"1024MB");
    Choose(L"audio_app_quality", L"Good");
    Back();
    EXPECT_TRUE(Settings().GetBool(L"app_managecpucores"));
    EXPECT_TRUE(Settings().GetBool(L"app_screenshotfull"));
    EXPECT_FALSE(Settings().GetBool(L"app_fullscreen"));
    EXPECT_FALSE(Settings().GetBool(L"app_vsync"));
    EXPECT_TRUE(Settings().GetBool(L"app_antialias"));
    EXPECT_TRUE(Settings().GetBool(L"app_anisotropicfiltering"));
    EXPECT_TRUE(Settings().GetBool(L"emu_gameroomfilter"));
    EXPECT_TRUE(Settings().GetBool(L"emu_audiocutoff_enabled"));
    EXPECT_EQ(Settings().GetInt(L"emu_rewindbuffer"), 1024);
    EXPECT_EQ(Settings().GetInt(L"audio_app_quality"), 0);
}

TEST_F(Options, LeaveAStoredValueThatIsInNoList) {
    Settings().SetInt(L"app_window_width", 1920);
    Settings().SetInt(L"app_window_height", 1080);
    Settings().SetInt(L"audio_app_samplerate", 32000);
    Settings().SetInt(L"emu_fastforward", 5);
    Settings().SetInt(L"emu_rewindbuffer", 300);
    Settings().SetInt(L"audio_app_quality", 7);
    Settings().SetFloat(L"audio_boost_low", 3.5f);
    Settings().SetFloat(L"audio_volume", 0.123456f);
    OpenOptions();
    EXPECT_EQ(Shown().ListOf(L"app_window_width")->Caption(), L"1920x1080");
    EXPECT_EQ(Shown().ListOf(L"audio_app_samplerate")->Caption(), L"32000");
    EXPECT_EQ(Shown().ListOf(L"emu_fastforward")->Caption(), L"5x");
    EXPECT_EQ(Shown().ListOf(L"emu_rewindbuffer")->Caption(), L"300MB");
    // Looking at the choices and leaving them changes nothing either.
    Click(Shown().ListOf(L"emu_fastforward")->window);
    PressKey(GHOSTGUIKey::kDown);
    PressKey(GHOSTGUIKey::kEscape);
    EXPECT_EQ(Shown().ListOf(L"emu_fastforward")->Caption(), L"5x");
    Back();
    EXPECT_EQ(Settings().GetInt(L"app_window_width"), 1920);
    EXPECT_EQ(Settings().GetInt(L"app_window_height"), 1080);
    EXPECT_EQ(Settings().GetInt(L"audio_app_samplerate"), 32000);
    EXPECT_EQ(Settings().GetInt(L"emu_fastforward"), 5);
    EXPECT_EQ(Settings().GetInt(L"emu_rewindbuffer"), 300);
    EXPECT_EQ(Settings().GetInt(L"audio_app_quality"), 7);
    EXPECT_EQ(Settings().GetFloat(L"audio_boost_low"), 3.5f);
    EXPECT_EQ(Settings().GetFloat(L"audio_volume"), 0.123456f);
    EXPECT_EQ(host.settingsChanges, 0);
}

TEST_F(Options, SlidersActAtOnce) {
    OpenOptions();
    Click(Shown().TabButton(OptionTab::kSound));
    CGhostSlider* const volume = Shown().SliderOf(L"audio_volume");
    volume->SetFocus();
    Tick();
    PressKey(GHOSTGUIKey::kHome);
    EXPECT_EQ(Settings().GetFloat(L"audio_volume"), 0.0f);
    EXPECT_EQ(host.settingsChanges, 1);
    PressKey(GHOSTGUIKey::kEnd);
    EXPECT_EQ(Settings().GetFloat(L"audio_volume"), 1.0f);
    Shown().SliderOf(L"audio_boost_high")->SetFocus();
    Tick();
    PressKey(GHOSTGUIKey::kEnd);
    EXPECT_EQ(Settings().GetFloat(L"audio_boost_high"), 2.0f); // value * range + minimum
    PressKey(GHOSTGUIKey::kLeft);
    EXPECT_NEAR(Settings().GetFloat(L"audio_boost_high"), 1.99f, 0.001f);
    EXPECT_EQ(host.saves, 0);
    Back();
    EXPECT_EQ(host.saves, 1);
}

TEST_F(Options, ATabsClickShowsItsWindowAlone) {
    OpenOptions();
    for (const OptionTab tab :
         {OptionTab::kInput, OptionTab::kSound, OptionTab::kGraphics, OptionTab::kGeneral}) {
        for (int again = 0; again < 2; ++again) { // the second click leaves it down
            Click(Shown().TabButton(tab));
            Round();
            for (size_t i = 0; i < kOptionTabs; ++i) {
                const auto other = static_cast<OptionTab>(i);
                EXPECT_EQ(Shown().TabButton(other)->IsDown(), other == tab);
                EXPECT_EQ(Shown().TabWindow(other)->IsVisible(), other == tab);
            }
        }
    }
}

TEST_F(Options, ATabIsChosenByKeysAndByAController) {
    OpenOptions();
    EXPECT_EQ(Manager().FocusWindow(), Shown().TabButton(OptionTab::kGeneral)->window);
    PressKey(GHOSTGUIKey::kRight);
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_EQ(Shown().ShownTab(), OptionTab::kGraphics);
    Manager().Navigate(GUI_DIRECTION::kRight);
    Tick();
    Manager().ActivateFocus();
    Tick();
    Round();
    EXPECT_EQ(Shown().ShownTab(), OptionTab::kPicture);
    EXPECT_TRUE(Shown().TabButton(OptionTab::kPicture)->IsDown());
    EXPECT_FALSE(Shown().TabButton(OptionTab::kGraphics)->IsDown());
}

TEST_F(Options, TheFirstRowIsBelowTheTabs) {
    OpenOptions();
    PressKey(GHOSTGUIKey::kDown);
    EXPECT_EQ(Manager().FocusWindow(), Shown().ListOf(L"emu_startfullscreen")->window);
    PressKey(GHOSTGUIKey::kDown);
    EXPECT_EQ(Manager().FocusWindow(), Shown().ListOf(L"app_managecpucores")->window);
}

TEST_F(Options, TheRowThatHasTheFocusExplainsItself) {
    OpenOptions();
    EXPECT_EQ(Shown().Help()->Text(), L"");
    PressKey(GHOSTGUIKey::kDown);
    Round();
    KeepPicture("help");
    EXPECT_EQ(Shown().Help()->Text(), OptionRows().front().help);
    PressKey(GHOSTGUIKey::kUp);
    Round();
    EXPECT_EQ(Shown().Help()->Text(), L"");
}

TEST_F(Options, TheNoticeStandsInGeneralAndGraphicsWithNothingChanged) {
    OpenOptions();
    std::vector<std::wstring> seen;
    for (const OptionTab tab : {OptionTab::kGeneral, OptionTab::kGraphics, OptionTab::kSound}) {
        int notices = 0;
        const GHOSTMANAGER_WINDOW* at = Shown().TabWindow(tab)->window->firstChild;
        for (; at != nullptr; at = at->nextSibling) {
            const auto* const text = dynamic_cast<CGhostTextBox*>(at->handler);
            notices +=
                text != nullptr && at->visible &&
                        text->Text() == L"Some of these settings require a restart to become active"
                    ? 1
                    : 0;
        }
        EXPECT_EQ(notices, tab == OptionTab::kSound ? 0 : 1);
    }
}

// The sample rate and the display's buffer are made at the start; speed, sound quality and filter are read when a
// game starts. All else is read as it is used, or by the host's call.
TEST_F(Options, MarkWhatDoesNotActAtOnce) {
    OpenOptions();
    const std::map<std::wstring, std::wstring> expected = {
        {L"app_managecpucores",      L"after a restart"      },
        {L"app_antialias",           L"after a restart"      },
        {L"audio_app_samplerate",    L"after a restart"      },
        {L"emu_fastforward",         L"from the next game on"},
        {L"audio_app_quality",       L"from the next game on"},
        {L"emu_audiocutoff_enabled", L"from the next game on"},
    };
    for (const OPTION_ROW& row : OptionRows()) {
        const CGhostTextBox* const mark = Shown().MarkOf(row.setting);
        const auto found = expected.find(row.setting);
        EXPECT_EQ(mark != nullptr ? mark->Text() : L"",
                  found != expected.end() ? found->second : L"");
    }
}

// F11 while they are open.
TEST_F(Options, FollowASettingThatAKeyChanges) {
    ASSERT_TRUE(Settings().GetBool(L"app_fullscreen"));
    OpenOptions();
    Settings().SetBool(L"app_fullscreen", false);
    Round();
    EXPECT_EQ(Shown().ListOf(L"app_fullscreen")->Caption(), L"Disabled");
    Back();
    EXPECT_FALSE(Settings().GetBool(L"app_fullscreen")) << "it is not changed back";
}

} // namespace
