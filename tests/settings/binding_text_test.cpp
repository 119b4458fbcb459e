// Bindings in words, and in the file of settings.
#include "settings/binding_text.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>

#include <cwchar>
#include <map>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

using Pair = std::pair<int32_t, int32_t>;

// The names are those that docs/PLAYING.md tells; the codes those of the USB HID tables.
// "+" is an axis under -28,000, as on the screens.
TEST(BindingText, ReadsKeysButtonsAndControlsByName) {
    std::map<std::string, uint32_t> cases;
    cases["Return"] = 40;
    cases["A"] = 4;
    cases["Up"] = 82;
    cases["Left Shift"] = 225;
    cases["Keypad 8"] = 96;
    cases["Keypad +"] = 87;
    cases["Digit 1"] = 30;
    cases["Digit 0"] = 39;
    cases["-"] = 45;
    cases["Key 300"] = 300;
    cases["Shift+Tab"] = 196651;
    cases["SHIFT + TAB"] = 196651;
    cases["shift+keypad+"] = 3 << 16 | 87;
    cases["Ctrl+R"] = 192 << 16 | 21;
    cases["Ctrl+5"] = 192 << 16 | 34;
    cases["None"] = 0;
    cases["Joy1 Button0"] = JoystickBinding(0, 528);
    cases["joy5 button63"] = JoystickBinding(4, 528 + 800 + 63);
    cases["Joy2 Axis1 +"] = JoystickBinding(1, 602);
    cases["Joy2 Axis1 -"] = JoystickBinding(1, 603);
    cases["Joy1 Hat0 Up"] = JoystickBinding(0, 464);
    cases["Joy1 Hat1 LEFT"] = JoystickBinding(0, 464 + 8 + 6);
    cases["Pad1 A"] = PadBinding(0, kPadSouth);
    cases["pad2 start"] = PadBinding(1, kPadStart);
    cases["Pad1 Right Trigger"] = PadBinding(0, kPadRightTrigger);
    cases["Pad1 Stick Up"] = PadBinding(0, kPadStickUp);
    for (const auto& [text, binding] : cases) {
        EXPECT_EQ(ReadBindingText(text), binding) << text;
    }
}

TEST(BindingText, KnowsNoOtherWords) {
    const std::vector<std::string> wrong = {"",
                                            "Retrun",
                                            "Shift+",
                                            "Alt+Tab",
                                            "5",
                                            "Shift+Ctrl+A",
                                            "Key 0",
                                            "Key 512",
                                            "Key",
                                            "Joy0 Button0",
                                            "Joy6 Button0",
                                            "Joy1 Button64",
                                            "Joy1 Axis32 +",
                                            "Joy1 Axis0",
                                            "Joy1 Hat0",
                                            "Joy1 Hat8 Up",
                                            "Joy1",
                                            "Joy99999999999 Button1",
                                            "Pad0 A",
                                            "Pad3 A",
                                            "Pad1",
                                            "Pad1 C",
                                            "Pad A",
                                            "Digit 12"};
    for (const std::string& text : wrong) {
        EXPECT_EQ(ReadBindingText(text), std::nullopt) << text;
    }
}

TEST(BindingText, EveryBindingIsReadAsItIsWritten) {
    std::vector<uint32_t> all{0};
    for (uint32_t scancode = 1; scancode < kKeyboardCodes; ++scancode) {
        for (const BindingModifier modifier : {kModifierNone, kModifierShift, kModifierCtrl}) {
            all.push_back(KeyboardBinding(scancode, modifier));
        }
    }
    for (uint32_t joystick = 0; joystick < 5; ++joystick) {
        for (uint32_t code = 400; code < 528 + 64; ++code) {
            all.push_back(JoystickBinding(joystick, code + 200 * joystick));
        }
    }
    for (uint32_t player = 0; player < kPadPlayers; ++player) {
        for (uint32_t control = 0; control < kPadControls; ++control) {
            all.push_back(PadBinding(player, static_cast<PadControl>(control)));
        }
    }
    std::set<std::string> texts;
    for (const uint32_t binding : all) {
        const std::string text = BindingText(binding);
        EXPECT_EQ(ReadBindingText(text), binding) << text;
        EXPECT_TRUE(texts.insert(text).second) << text;
    }
}

class BindingFile : public testing::Test {
protected:
    void SetUp() override { RegisterDefaultSettings(store); }

    // The lines of unknown words.
    std::vector<std::string> Load(const std::string& elements) {
        folder.Write("config.xml",
                     "<?xml version=\"1.0\" ?>\n<Settings>\n" + elements + "</Settings>\n");
        std::vector<std::string> unknown;
        std::string error;
        EXPECT_TRUE(LoadSettingsFile(store, error, &unknown)) << error;
        EXPECT_EQ(error, "");
        return unknown;
    }
    std::string Saved() {
        std::string error;
        EXPECT_TRUE(SaveSettingsFile(store, error)) << error;
        const auto bytes = folder.Read("config.xml");
        return {bytes.begin(), bytes.end()};
    }

    TemporaryHome folder;
    SettingsStore store;
};

TEST_F(BindingFile, MayHoldWordsAndNumbers) {
    EXPECT_THAT(Load("<int2 name=\"input nes p1 up\" value=\"Return\" value2=\"Pad1 A\"/>\n"
                     "<int2 name=\"input nes p1 down\" value=\"82\" value2=\"Shift+Tab\"/>\n"
                     "<int2 name=\"input nes p1 left\" value=\" 5 \" value2=\"+6\"/>\n"),
                ElementsAre());
    EXPECT_EQ(store.GetInt2(L"input nes p1 up"), (Pair{40, PadBinding(0, kPadSouth)}));
    EXPECT_EQ(store.GetInt2(L"input nes p1 down"), (Pair{82, 196651}));
    EXPECT_EQ(store.GetInt2(L"input nes p1 left"), (Pair{5, 6}));
}

TEST_F(BindingFile, KeepsItsWordsUntilTheBindingChanges) {
    Load("<int2 name=\"input nes p1 up\" value=\"rEtUrN\" value2=\"Pad1 A\"/>\n");
    EXPECT_THAT(Saved(), HasSubstr("\"input nes p1 up\" value=\"rEtUrN\" value2=\"Pad1 A\""));
    store.SetInt2(L"input nes p1 up", 40, 7);
    EXPECT_THAT(Saved(), HasSubstr("\"input nes p1 up\" value=\"rEtUrN\" value2=\"7\""));
}

TEST_F(BindingFile, NamesWrongWordsWithTheirLineAndKeepsThem) {
    const auto unknown = Load("<int2 name=\"input nes p1 down\" value=\"81\" value2=\"0\"/>\n"
                              "<int2 name=\"input nes p1 up\"\n value=\"Retrun\" value2=\"7\"/>\n"
                              "\n"
                              "<int2 name=\"input rewind\" value=\"R\" value2=\"Joy1 &amp;\"/>\n");
    const std::string path = (folder.Path() / "config.xml").string();
    EXPECT_THAT(
        unknown,
        ElementsAre(testing::StartsWith(path + ": line 4: \"Retrun\" of \"input nes p1 up\""),
                    testing::StartsWith(path + ": line 7: \"Joy1 &\" of \"input rewind\"")));
    EXPECT_EQ(store.GetInt2(L"input nes p1 up"), (Pair{82, 7})) << "the default of the wrong one";
    EXPECT_EQ(store.GetInt2(L"input rewind"), (Pair{21, 0}));
    const std::string saved = Saved();
    EXPECT_THAT(saved, HasSubstr("\"input nes p1 up\" value=\"Retrun\" value2=\"7\""));
    EXPECT_THAT(saved, HasSubstr("\"input rewind\" value=\"R\" value2=\"Joy1 &amp;\""));
    store.SetInt2(L"input rewind", 21, 8);
    EXPECT_THAT(Saved(), Not(HasSubstr("Joy1 &amp;")));
}

// What the program before these keys wrote: every action that it knew, player 2's unbound.
std::string OldFile(const std::set<std::wstring>& unknownThen, const std::wstring& changed = {},
                    uint32_t binding = 0) {
    std::string elements;
    for (const INPUT_ACTION& action : InputActions()) {
        if (unknownThen.contains(action.name)) {
            continue;
        }
        const std::wstring name = action.name;
        const bool second = name.find(L" P2 ") != std::wstring::npos;
        const uint32_t value = name == changed ? binding : second ? 0 : action.defaultBinding;
        elements += "<int2 name=\"input " + std::string(name.begin(), name.end()) + "\" value=\"" +
                    std::to_string(value) + "\" value2=\"0\"/>\n";
    }
    return elements;
}

const std::set<std::wstring> kNewActions = {
    L"Pause", L"Slow Motion", L"Frame Step",  L"Toggle Fast Forward",
    L"Reset", L"Mute",        L"Volume Down", L"Volume Up"};

TEST_F(BindingFile, OfAnOlderProgramGivesPlayerTwoHisKeys) {
    Load(OldFile(kNewActions));
    GiveNewKeys(store);
    for (const INPUT_ACTION& action : InputActions()) {
        EXPECT_EQ(store.GetInt2(BindingSetting(action)),
                  (Pair{static_cast<int32_t>(action.defaultBinding), 0}))
            << std::string(action.name, action.name + std::wcslen(action.name));
    }
}

TEST_F(BindingFile, OfAnOlderProgramKeepsWhatTheUserHasBound) {
    Load(OldFile(kNewActions, L"SMS P1 BUTTON1", 19)); // P
    GiveNewKeys(store);
    EXPECT_EQ(store.GetInt2(L"input sms p1 button1"), (Pair{19, 0}));
    EXPECT_EQ(store.GetInt2(L"input pause"), (Pair{0, 0})) << "a press would do both";
    EXPECT_EQ(store.GetInt2(L"input frame step"), (Pair{48, 0}));
    EXPECT_EQ(store.GetInt2(L"input sms p2 up"), (Pair{12, 0}));
}

TEST_F(BindingFile, PlayerTwoGetsNoKeysWhereOneIsTakenOrHeHasSome) {
    Load(OldFile(kNewActions, L"NES P1 UP", 12)); // I, as player 2's
    GiveNewKeys(store);
    EXPECT_EQ(store.GetInt2(L"input nes p2 up"), (Pair{0, 0}));
    EXPECT_EQ(store.GetInt2(L"input nes p2 down"), (Pair{0, 0}));
    EXPECT_EQ(store.GetInt2(L"input gg p2 up"), (Pair{12, 0}));
}

TEST_F(BindingFile, ThatKnowsTheNewKeysIsTakenAsItIs) {
    Load(OldFile({}, L"Pause", 0));
    GiveNewKeys(store);
    EXPECT_EQ(store.GetInt2(L"input pause"), (Pair{0, 0}));
    EXPECT_EQ(store.GetInt2(L"input nes p2 up"), (Pair{0, 0})) << "the user has cleared it";
}

TEST_F(BindingFile, WithoutBindingsLeavesTheDefaults) {
    Load("<int name=\"emu_rewindbuffer\" value=\"12\"/>");
    GiveNewKeys(store);
    EXPECT_EQ(store.GetInt2(L"input pause"), (Pair{19, 0}));
    EXPECT_EQ(store.GetInt2(L"input nes p2 up"), (Pair{12, 0}));
}

} // namespace
