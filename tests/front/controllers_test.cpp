// Game controllers from the device library to actions, with virtual devices.
#include "front/virtual_joystick.h"

namespace {

using Codes = std::set<uint32_t>;
using Actions = std::set<std::wstring>;

constexpr uint16_t kHatPadModel = 1; // mapped as the tests say
constexpr uint16_t kAxisPadModel = 2;

using Controllers = JoystickRounds;

// A fully pressed control and the actions that it triggers; `*` is the number of the player, 1 or
// 2.
struct CONTROL_ROW {
    const char* what;
    int button; // -1: an axis
    int axis;
    int value;
    std::vector<std::wstring> actions;
    std::vector<std::wstring> firstPlayers = {}; // in the room, where only the first player walks
};

const std::vector<CONTROL_ROW>& ControlRows() {
    // clang-format off
    static const std::vector<std::wstring> up = {
        L"NES P* UP", L"SMS P* UP", L"GG P* UP", L"Arcade P* UP", L"MEGADRIVE P* UP"};
    static const std::vector<std::wstring> down = {
        L"NES P* DOWN", L"SMS P* DOWN", L"GG P* DOWN", L"Arcade P* DOWN", L"MEGADRIVE P* DOWN"};
    static const std::vector<std::wstring> left = {
        L"NES P* LEFT", L"SMS P* LEFT", L"GG P* LEFT", L"Arcade P* LEFT", L"MEGADRIVE P* LEFT"};
    static const std::vector<std::wstring> right = {
        L"NES P* RIGHT", L"SMS P* RIGHT", L"GG P* RIGHT", L"Arcade P* RIGHT", L"MEGADRIVE P* RIGHT"};
    static const std::vector<CONTROL_ROW> rows = {
        {"pad up", 11, 0, 0, up, {L"Move Forward"}},
        {"pad down", 12, 0, 0, down, {L"Move Back"}},
        {"pad left", 13, 0, 0, left, {L"Move Left"}},
        {"pad right", 14, 0, 0, right, {L"Move Right"}},
        {"stick up", -1, 1, -32768, up},
        {"stick down", -1, 1, 32767, down},
        {"stick left", -1, 0, -32768, left},
        {"stick right", -1, 0, 32767, right},
        {"south", 0, 0, 0, {L"NES P* BUTTONA", L"SMS P* BUTTON1", L"GG P* BUTTON1",
                            L"Arcade P* BUTTON1", L"MEGADRIVE P* BUTTONB"}, {L"Use"}},
        {"east", 1, 0, 0, {L"SMS P* BUTTON2", L"GG P* BUTTON2", L"Arcade P* BUTTON2",
                           L"MEGADRIVE P* BUTTONC"}},
        {"west", 2, 0, 0, {L"NES P* BUTTONB", L"SMS P* BUTTON3", L"Arcade P* BUTTON3",
                           L"MEGADRIVE P* BUTTONA"}},
        {"north", 3, 0, 0, {L"SMS P* BUTTON4", L"Arcade P* BUTTON4", L"MEGADRIVE P* BUTTONY"},
                            {L"Turn Off"}},
        {"back", 4, 0, 0, {L"NES P* SELECT", L"Arcade Insert Coin*", L"MEGADRIVE P* MODE"}},
        {"start", 6, 0, 0, {L"NES P* START", L"SMS PAUSE", L"GG P* START", L"Arcade Start*",
                            L"MEGADRIVE P* START"}},
        {"left shoulder", 9, 0, 0, {L"SMS P* BUTTON5", L"Arcade P* BUTTON5",
                                    L"MEGADRIVE P* BUTTONX"}, {L"Slow Movement"}},
        {"right shoulder", 10, 0, 0, {L"SMS P* BUTTON6", L"Arcade P* BUTTON6",
                                      L"MEGADRIVE P* BUTTONZ"}},
        {"guide", 5, 0, 0, {}},
        {"left thumb", 7, 0, 0, {}},
        {"right thumb", 8, 0, 0, {}, {L"Saved States"}},
        {"right stick", -1, 2, 32767, {}},
    };
    // clang-format on
    return rows;
}

Actions ForPlayer(const std::vector<std::wstring>& actions, wchar_t number) {
    Actions names;
    for (std::wstring name : actions) {
        if (const size_t star = name.find(L'*'); star != std::wstring::npos) {
            name[star] = number;
        }
        names.insert(name);
    }
    return names;
}

TEST_F(Controllers, EveryControlOfAControllerActsByDefault) {
    const VirtualJoystick first(kController);
    const VirtualJoystick second(kController);
    joysticks.Open();
    const VirtualJoystick* const controllers[] = {&first, &second};
    for (uint32_t player = 0; player < 2; ++player) {
        EXPECT_TRUE(joysticks.Places()[player].controller);
        EXPECT_EQ(joysticks.Places()[player].player, player);
        for (const CONTROL_ROW& row : ControlRows()) {
            if (row.button >= 0) {
                controllers[player]->Button(row.button, true);
            } else {
                controllers[player]->Axis(row.axis, row.value);
            }
            Round();
            Actions expected = ForPlayer(row.actions, player == 0 ? L'1' : L'2');
            if (player == 0) {
                expected.insert(row.firstPlayers.begin(), row.firstPlayers.end());
            }
            EXPECT_EQ(ActionsDown(), expected) << row.what << " of player " << player + 1;
            if (row.button >= 0) {
                controllers[player]->Button(row.button, false);
            } else {
                controllers[player]->Axis(row.axis, 0);
            }
            Round();
            EXPECT_TRUE(ActionsDown().empty()) << row.what;
        }
    }
}

TEST_F(Controllers, TheTriggersTurnTimeFromHalfTheirWayOn) {
    const VirtualJoystick first(kController);
    const VirtualJoystick second(kController);
    joysticks.Open();
    // The raw axis goes from -32768 at rest to 32767; its half is 0.
    constexpr int kLeftTrigger = 4;
    constexpr int kRightTrigger = 5;
    first.Axis(kLeftTrigger, -1000);
    second.Axis(kLeftTrigger, 32767);
    second.Axis(kRightTrigger, 32767);
    Round();
    EXPECT_TRUE(ActionsDown().empty());
    first.Axis(kLeftTrigger, 1000);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Rewind"});
    first.Axis(kLeftTrigger, -1000);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Rewind"}) << "it doesn't flutter about the half";
    first.Axis(kLeftTrigger, -32768);
    first.Axis(kRightTrigger, 32767);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Fast Forward"});
}

TEST_F(Controllers, TheStickHasADeadZoneAndHoldsOnWithinIt) {
    const VirtualJoystick pad(kController);
    joysticks.Open();
    struct ROW {
        int value; // of the x axis, thousandths of its whole way
        bool left;
        bool right;
    };
    const ROW rows[] = {
        {390,   false, false},
        {410,   false, true }, // beyond the dead zone
        {320,   false, true }, // still held
        {290,   false, false},
        {390,   false, false}, // not yet again
        {-390,  false, false},
        {-410,  true,  false},
        {-310,  true,  false},
        {-290,  false, false},
        {1000,  false, true },
        {-1000, true,  false}, // to the other side in one step
        {350,   false, false},
    };
    for (const ROW& row : rows) {
        pad.Axis(0, row.value * 32767 / 1000);
        Round();
        EXPECT_EQ(InputIsDown(kTestSession, L"NES P1 LEFT"), row.left) << row.value;
        EXPECT_EQ(InputIsDown(kTestSession, L"NES P1 RIGHT"), row.right) << row.value;
    }
}

TEST_F(Controllers, AStickPushedCornerwisePressesBothDirections) {
    const VirtualJoystick pad(kController);
    joysticks.Open();
    pad.Axis(0, 23170); // full deflection at 45 degrees
    pad.Axis(1, -23170);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 RIGHT"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 UP"));
    for (const uint32_t code : {401u, 402u}) {
        EXPECT_FALSE(BindingIsDown(JoystickBinding(0, code), false)) << "codes begin at 28000";
    }
}

TEST_F(Controllers, AControllerFeedsTheCodesAsWell) {
    const VirtualJoystick plain(kPlain);
    const VirtualJoystick pad(kController);
    joysticks.Open();
    Round();
    pad.Button(0, true);
    pad.Axis(1, -32768);
    Round();
    const uint32_t button = JoystickBinding(1, JoystickButtonCode(1, 0));
    EXPECT_TRUE(BindingIsDown(button, false));
    EXPECT_TRUE(BindingIsDown(JoystickBinding(1, JoystickAxisCode(1, 1, false)), false));
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON1")) << "a plain joystick is no player";
}

TEST_F(Controllers, WhatAControllerHoldsAtTheStartActs) {
    const VirtualJoystick pad(kController);
    pad.Button(1, true);
    pad.Axis(0, -32768);
    SDL_JoystickUpdate();
    joysticks.Open();
    EXPECT_TRUE(InputIsDown(kTestSession, L"GG P1 BUTTON2"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"GG P1 LEFT"));
    EXPECT_FALSE(InputIsDown(kTestSession, L"GG P1 RIGHT"));
}

TEST_F(Controllers, AControllerMayArriveLater) {
    joysticks.Open();
    Round();
    const VirtualJoystick pad(kController);
    Round();
    EXPECT_EQ(joysticks.Places()[0].player, 0u);
    pad.Button(0, true);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON1"));
}

TEST_F(Controllers, AControllerThatLeavesLetsItsActionsGoAndTheOtherKeepsItsPlayer) {
    const VirtualJoystick first(kController);
    const VirtualJoystick second(kController);
    joysticks.Open();
    first.Button(0, true);
    second.Button(0, true);
    Round();
    first.Unplug();
    Round();
    EXPECT_FALSE(InputIsDown(kTestSession, L"SMS P1 BUTTON1"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P2 BUTTON1"));
    const VirtualJoystick third(kController);
    Round();
    EXPECT_EQ(joysticks.Places()[0].player, 0u);
    EXPECT_EQ(joysticks.Places()[1].player, 1u);
    third.Button(1, true);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON2"));
}

TEST_F(Controllers, AThirdControllerIsAJoystickAlone) {
    const VirtualJoystick first(kController);
    const VirtualJoystick second(kController);
    const VirtualJoystick third(kController);
    joysticks.Open();
    EXPECT_TRUE(joysticks.Places()[2].controller);
    EXPECT_EQ(joysticks.Places()[2].player, kNoPlayer);
    third.Button(0, true);
    Round();
    EXPECT_TRUE(ActionsDown().empty());
    EXPECT_TRUE(BindingIsDown(JoystickBinding(2, JoystickButtonCode(2, 0)), false));
}

TEST_F(Controllers, ABoundActionListensToItsBindingsAlone) {
    const VirtualJoystick pad(kController);
    joysticks.Open();
    Settings().SetInt2(L"INPUT NES P1 BUTTONA", 22,
                       static_cast<int32_t>(JoystickBinding(0, JoystickButtonCode(0, 1))));
    Round();
    pad.Button(0, true);
    Round();
    EXPECT_FALSE(InputIsDown(kTestSession, L"NES P1 BUTTONA"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON1"));
    pad.Button(0, false);
    pad.Button(1, true);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"NES P1 BUTTONA"}) << "and east does nothing else now";
}

TEST_F(Controllers, ABoundAxisActsNoMoreAsTheStickThatItIs) {
    const VirtualJoystick pad(kController);
    joysticks.Open();
    // The code under -28000 of axis 0, which is the stick to the left.
    Settings().SetInt2(L"INPUT Use", 8, static_cast<int32_t>(JoystickBinding(0, 400)));
    Round();
    pad.Axis(0, -32768);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Use"});
    pad.Axis(0, 32767);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 RIGHT"));
    pad.Axis(0, 0);
    pad.Button(13, true);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 LEFT")) << "the pad still does";
}

// Adds a controller with the given model number to the library, before it is opened here.
void AddMapping(const VirtualJoystick& joystick, const std::string& controls) {
    char id[33];
    SDL_JoystickGetGUIDString(SDL_JoystickGetGUID(SDL_JoystickFromInstanceID(joystick.Instance())),
                              id, sizeof id);
    const std::string mapping = std::string(id) + ",Test controller," + controls;
    ASSERT_GE(SDL_GameControllerAddMapping(mapping.c_str()), 0) << SDL_GetError();
}

// Whether the control stops acting for `action` while `code` is bound, and acts again after.
void ExpectTakenBy(uint32_t code, const wchar_t* action) {
    EXPECT_TRUE(InputIsDown(kTestSession, action)) << code;
    Settings().SetInt2(L"INPUT Use", 8, static_cast<int32_t>(JoystickBinding(0, code)));
    InputBeginPump();
    EXPECT_FALSE(InputIsDown(kTestSession, action)) << code;
    Settings().SetInt2(L"INPUT Use", 8, 0);
    InputBeginPump();
}

TEST_F(Controllers, APadThatIsAHatIsTakenByTheHatsCodes) {
    VirtualJoystick::SHAPE shape;
    shape.model = kHatPadModel;
    const VirtualJoystick pad(shape);
    AddMapping(pad, "a:b0,dpup:h0.1,dpright:h0.2,dpdown:h0.4,dpleft:h0.8,");
    joysticks.Open();
    ASSERT_TRUE(joysticks.Places()[0].controller);
    struct ROW {
        int position;
        uint32_t code;
        const wchar_t* action;
    };
    const ROW rows[] = {
        {SDL_HAT_UP,    464, L"SMS P1 UP"   },
        {SDL_HAT_RIGHT, 466, L"SMS P1 RIGHT"},
        {SDL_HAT_DOWN,  468, L"SMS P1 DOWN" },
        {SDL_HAT_LEFT,  470, L"SMS P1 LEFT" },
    };
    for (const ROW& row : rows) {
        pad.Hat(0, row.position);
        Round();
        ExpectTakenBy(row.code, row.action);
    }
}

TEST_F(Controllers, AStickThatIsTurnedRoundIsTakenByTheOtherCode) {
    VirtualJoystick::SHAPE shape;
    shape.model = kAxisPadModel;
    const VirtualJoystick pad(shape);
    AddMapping(pad, "a:b0,leftx:a0,lefty:a1~,lefttrigger:b3,");
    joysticks.Open();
    ASSERT_TRUE(joysticks.Places()[0].controller);
    pad.Axis(1, 32767);
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{403});
    ExpectTakenBy(403, L"SMS P1 UP");
    pad.Axis(1, 0);
    pad.Axis(0, 32767);
    Round();
    ExpectTakenBy(401, L"SMS P1 RIGHT");
    pad.Button(3, true);
    Round();
    ExpectTakenBy(531, L"Rewind");
}

TEST_F(Controllers, APadThatIsTwoAxesIsTakenByItsHalves) {
    VirtualJoystick::SHAPE shape;
    shape.model = kAxisPadModel;
    const VirtualJoystick pad(shape);
    AddMapping(pad, "a:b0,dpup:-a1,dpdown:+a1,dpleft:-a0,dpright:+a0,");
    joysticks.Open();
    ASSERT_TRUE(joysticks.Places()[0].controller);
    pad.Axis(1, -32768);
    pad.Axis(0, 32767);
    Round();
    ExpectTakenBy(402, L"SMS P1 UP");
    ExpectTakenBy(401, L"SMS P1 RIGHT");
}

TEST_F(Controllers, ANewMappingOfAnOpenControllerCounts) {
    VirtualJoystick::SHAPE shape;
    shape.model = kHatPadModel;
    const VirtualJoystick pad(shape);
    AddMapping(pad, "a:b0,b:b1,");
    joysticks.Open();
    Settings().SetInt2(L"INPUT Use", 8, static_cast<int32_t>(JoystickBinding(0, 530)));
    pad.Button(0, true);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON1"));
    pad.Button(0, false);
    AddMapping(pad, "a:b2,b:b1,");
    Round();
    pad.Button(2, true);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Use"});
}

} // namespace
