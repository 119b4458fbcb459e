// Joysticks and game controllers from the device library to codes and actions, with virtual devices.
#include "front/event_pump.h"
#include "front/joysticks.h"
#include "front/sdl_fixture.h"

#include <cstring>
#include <vector>

namespace {

using Codes = std::set<uint32_t>;
using Actions = std::set<std::wstring>;

constexpr uint16_t kMaker = 0x1209;   // a vendor number for anybody's use
constexpr uint16_t kHatPadModel = 1;  // known to the library through `kHatPadMapping`
constexpr uint16_t kAxisPadModel = 2; // the same

// A device of the library's own making. It is held open, as only an open one can be moved.
class VirtualJoystick {
public:
    struct SHAPE {
        SDL_JoystickType type = SDL_JOYSTICK_TYPE_UNKNOWN;
        uint16_t axes = 2;
        uint16_t buttons = 4;
        uint16_t hats = 1;
        uint16_t model = 0;
        const char* name = nullptr;
    };

    explicit VirtualJoystick(const SHAPE& shape) {
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.type = static_cast<uint16_t>(shape.type);
        description.naxes = shape.axes;
        description.nbuttons = shape.buttons;
        description.nhats = shape.hats;
        description.vendor_id = shape.model != 0 ? kMaker : uint16_t{0};
        description.product_id = shape.model;
        description.name = shape.name;
        const int index = SDL_JoystickAttachVirtualEx(&description);
        joystick = SDL_JoystickOpen(index);
        EXPECT_NE(joystick, nullptr) << SDL_GetError();
        instance = SDL_JoystickInstanceID(joystick);
    }
    ~VirtualJoystick() {
        Unplug();
        if (joystick != nullptr && SDL_WasInit(SDL_INIT_JOYSTICK) != 0) {
            SDL_JoystickClose(joystick);
        }
    }
    VirtualJoystick(const VirtualJoystick&) = delete;
    VirtualJoystick& operator=(const VirtualJoystick&) = delete;

    void Axis(int axis, int value) const {
        EXPECT_EQ(SDL_JoystickSetVirtualAxis(joystick, axis, static_cast<int16_t>(value)), 0);
    }
    void Button(int button, bool down) const {
        EXPECT_EQ(SDL_JoystickSetVirtualButton(joystick, button, down ? 1 : 0), 0);
    }
    void Hat(int hat, int position) const {
        EXPECT_EQ(SDL_JoystickSetVirtualHat(joystick, hat, static_cast<uint8_t>(position)), 0);
    }
    void Unplug() const {
        for (int index = 0; index < SDL_NumJoysticks(); ++index) {
            if (SDL_JoystickGetDeviceInstanceID(index) == instance) {
                EXPECT_EQ(SDL_JoystickDetachVirtual(index), 0);
                return;
            }
        }
    }
    [[nodiscard]] SDL_JoystickID Instance() const { return instance; }

private:
    SDL_Joystick* joystick = nullptr;
    SDL_JoystickID instance = -1;
};

constexpr VirtualJoystick::SHAPE kPlain{};

// The library maps it itself: buttons 0 to 3 south, east, west, north, 4 back, 6 start, 9 and 10 the
// shoulders, 11 to 14 the pad up, down, left, right; axes 0 and 1 the left stick, 4 and 5 the
// triggers.
constexpr VirtualJoystick::SHAPE kController{
    SDL_JOYSTICK_TYPE_GAMECONTROLLER, 6, 15, 0, 0, nullptr};

class JoysticksTest : public SdlTest {
protected:
    void TearDown() override {
        joysticks.Close();
        SdlTest::TearDown();
    }
    void Round() { (void)pump.Pump(); }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const JOYSTICK& joystick : joysticks.Places()) {
            names.push_back(joystick.present ? joystick.name : "-");
        }
        return names;
    }

    Joysticks joysticks;
    EventPump pump{joysticks};
};

VirtualJoystick::SHAPE Named(const char* name) {
    VirtualJoystick::SHAPE shape;
    shape.name = name;
    return shape;
}

using Names = std::vector<std::string>;

TEST_F(JoysticksTest, NoneIsNoError) {
    joysticks.Open();
    Round();
    EXPECT_EQ(Names(), (::Names{"-", "-", "-", "-"}));
}

TEST_F(JoysticksTest, WithoutTheLibraryThereAreNone) {
    SDL_Quit();
    Joysticks without;
    without.Close();
    EXPECT_EQ(without.PlaceOf(0), kNoJoystick);
}

TEST_F(JoysticksTest, ThoseAtTheStartTakeThePlacesInOrder) {
    const VirtualJoystick first(Named("first"));
    const VirtualJoystick second(Named("second"));
    joysticks.Open();
    EXPECT_EQ(Names(), (::Names{"first", "second", "-", "-"}));
    Round(); // the library announces them as arrivals, too
    EXPECT_EQ(Names(), (::Names{"first", "second", "-", "-"}));
    EXPECT_EQ(joysticks.PlaceOf(second.Instance()), 1u);
}

TEST_F(JoysticksTest, NamesAndCountsAreRead) {
    VirtualJoystick::SHAPE shape;
    shape.axes = 3;
    shape.buttons = 9;
    shape.hats = 2;
    shape.name = "Arcade stick";
    const VirtualJoystick stick(shape);
    joysticks.Open();
    const JOYSTICK& joystick = joysticks.Places()[0];
    EXPECT_TRUE(joystick.present);
    EXPECT_EQ(joystick.name, "Arcade stick");
    EXPECT_EQ(joystick.axes, 3u);
    EXPECT_EQ(joystick.buttons, 9u);
    EXPECT_EQ(joystick.hats, 2u);
    EXPECT_EQ(joystick.balls, 0u);
    EXPECT_FALSE(joystick.controller);
    EXPECT_EQ(joystick.player, kNoPlayer);
}

TEST_F(JoysticksTest, CountsAreCut) {
    VirtualJoystick::SHAPE shape;
    shape.axes = 40;
    shape.buttons = 100;
    shape.hats = 12;
    const VirtualJoystick stick(shape);
    joysticks.Open();
    EXPECT_EQ(joysticks.Places()[0].axes, 32u);
    EXPECT_EQ(joysticks.Places()[0].buttons, 64u);
    EXPECT_EQ(joysticks.Places()[0].hats, 8u);
    Round();
    stick.Axis(31, 32767);
    stick.Axis(32, 32767);
    stick.Button(63, true);
    stick.Button(64, true);
    stick.Hat(7, SDL_HAT_LEFT);
    stick.Hat(8, SDL_HAT_LEFT);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{400 + 63, 464 + 56 + 6, 528 + 63}));
}

TEST_F(JoysticksTest, TheFifthIsIgnored) {
    std::vector<std::unique_ptr<VirtualJoystick>> sticks;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        sticks.push_back(std::make_unique<VirtualJoystick>(Named(name)));
    }
    joysticks.Open();
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "2", "3", "4"}));
    EXPECT_EQ(joysticks.PlaceOf(sticks[4]->Instance()), kNoJoystick);
    sticks[4]->Button(0, true);
    sticks[3]->Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{528 + 600});
}

TEST_F(JoysticksTest, AnIgnoredOneStaysIgnoredWhenAPlaceIsFreed) {
    std::vector<std::unique_ptr<VirtualJoystick>> sticks;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        sticks.push_back(std::make_unique<VirtualJoystick>(Named(name)));
    }
    joysticks.Open();
    Round();
    sticks[1]->Unplug();
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "-", "3", "4"}));
    const VirtualJoystick late(Named("late"));
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "late", "3", "4"}));
}

TEST_F(JoysticksTest, WhatIsHeldAtTheStartIsDown) {
    const VirtualJoystick stick(kPlain);
    stick.Axis(1, -32768);
    stick.Button(2, true);
    stick.Hat(0, SDL_HAT_DOWN);
    SDL_JoystickUpdate();
    joysticks.Open();
    EXPECT_EQ(JoystickCodes(), (Codes{402, 464 + 4, 528 + 2}));
    for (const uint32_t released : {400u, 403u, 528u}) {
        EXPECT_FALSE(BindingIsDown(JoystickBinding(0, released), true)) << "nothing was let go";
    }
}

TEST_F(JoysticksTest, OneThatArrivesTakesTheLowestFreePlace) {
    const VirtualJoystick first(Named("first"));
    const VirtualJoystick second(Named("second"));
    const VirtualJoystick third(Named("third"));
    joysticks.Open();
    first.Unplug();
    second.Unplug();
    Round();
    EXPECT_EQ(Names(), (::Names{"-", "-", "third", "-"}));
    const VirtualJoystick fourth(Named("fourth"));
    Round();
    EXPECT_EQ(Names(), (::Names{"fourth", "-", "third", "-"}));
    fourth.Button(1, true);
    third.Button(1, true);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{529, 929})) << "events find the place, not the instance";
}

TEST_F(JoysticksTest, SeveralComingAndGoingInOneRoundEndWhereTheyShould) {
    const VirtualJoystick first(Named("first"));
    joysticks.Open();
    Round();
    const VirtualJoystick second(Named("second"));
    first.Unplug();
    const VirtualJoystick third(Named("third"));
    second.Unplug();
    Round();
    EXPECT_EQ(joysticks.PlaceOf(first.Instance()), kNoJoystick);
    EXPECT_EQ(joysticks.PlaceOf(second.Instance()), kNoJoystick);
    const uint32_t place = joysticks.PlaceOf(third.Instance());
    ASSERT_LT(place, kJoystickPlaces);
    third.Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{JoystickButtonCode(place, 0)});
}

TEST_F(JoysticksTest, OneThatLeavesLetsItsCodesGo) {
    const VirtualJoystick first(kPlain);
    const VirtualJoystick second(kPlain);
    joysticks.Open();
    first.Button(0, true);
    first.Axis(0, 32767);
    first.Hat(0, SDL_HAT_UP);
    second.Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{401, 464, 528, 728}));
    first.Unplug();
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{728});
    EXPECT_TRUE(BindingIsDown(JoystickBinding(0, 528), true));
}

TEST_F(JoysticksTest, ClosingLetsEverythingGo) {
    const VirtualJoystick plain(kPlain);
    const VirtualJoystick controller(kController);
    joysticks.Open();
    plain.Button(0, true);
    controller.Button(0, true);
    Round();
    EXPECT_FALSE(ActionsDown().empty());
    joysticks.Close();
    EXPECT_TRUE(JoystickCodes().empty());
    EXPECT_TRUE(ActionsDown().empty());
    EXPECT_EQ(Names(), (::Names{"-", "-", "-", "-"}));
    joysticks.Open();
    EXPECT_TRUE(joysticks.Places()[1].present);
}

TEST_F(JoysticksTest, AnAxisSetsItsCodesBeyond28000Alone) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    struct ROW {
        int value;
        Codes codes;
    };
    const ROW rows[] = {
        {28001,  {401}},
        {28000,  {}   },
        {-28000, {}   },
        {-28001, {400}},
        {-32768, {400}},
        {32767,  {401}},
        {0,      {}   },
    };
    for (const ROW& row : rows) {
        stick.Axis(0, row.value);
        Round();
        EXPECT_EQ(JoystickCodes(), row.codes) << row.value;
    }
}

TEST_F(JoysticksTest, EveryHatPositionSetsItsCodes) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    struct ROW {
        int position;
        std::vector<uint32_t> directions;
    };
    const ROW rows[] = {
        {SDL_HAT_UP,        {0}   },
        {SDL_HAT_RIGHTUP,   {1, 2}},
        {SDL_HAT_RIGHT,     {2}   },
        {SDL_HAT_RIGHTDOWN, {2, 4}},
        {SDL_HAT_DOWN,      {4}   },
        {SDL_HAT_LEFTDOWN,  {4, 6}},
        {SDL_HAT_LEFT,      {6}   },
        {SDL_HAT_LEFTUP,    {6, 0}},
        {SDL_HAT_CENTERED,  {}    },
    };
    for (const ROW& row : rows) {
        stick.Hat(0, row.position);
        Round();
        Codes expected;
        for (const uint32_t direction : row.directions) {
            expected.insert(464 + direction);
        }
        EXPECT_EQ(JoystickCodes(), expected) << row.position;
    }
}

TEST_F(JoysticksTest, AShortPressOfAButtonIsSeenInItsRound) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    Round();
    const uint32_t binding = JoystickBinding(0, 528);
    stick.Button(0, true);
    SDL_JoystickUpdate();
    stick.Button(0, false);
    Round();
    EXPECT_FALSE(BindingIsDown(binding, false));
    EXPECT_TRUE(BindingIsDown(binding, true));
    Round();
    EXPECT_FALSE(BindingIsDown(binding, true));
}

// Game controllers

// Something on a controller pressed fully, with the actions of player 1 and 2 that it stands for; an
// asterisk is the player's number.
struct CONTROL_ROW {
    const char* what;
    int button; // -1: an axis
    int axis;
    int value;
    std::vector<std::wstring> actions;
};

const std::vector<CONTROL_ROW>& ControlRows() {
    const std::vector<std::wstring> up = {L"NES P* UP", L"SMS P* UP", L"GG P* UP", L"Arcade P* UP",
                                          L"MEGADRIVE P* UP"};
    const std::vector<std::wstring> down = {L"NES P* DOWN", L"SMS P* DOWN", L"GG P* DOWN",
                                            L"Arcade P* DOWN", L"MEGADRIVE P* DOWN"};
    const std::vector<std::wstring> left = {L"NES P* LEFT", L"SMS P* LEFT", L"GG P* LEFT",
                                            L"Arcade P* LEFT", L"MEGADRIVE P* LEFT"};
    const std::vector<std::wstring> right = {L"NES P* RIGHT", L"SMS P* RIGHT", L"GG P* RIGHT",
                                             L"Arcade P* RIGHT", L"MEGADRIVE P* RIGHT"};
    static const std::vector<CONTROL_ROW> rows = {
        {"pad up",         11, 0, 0,      up                                                                                      },
        {"pad down",       12, 0, 0,      down                                                                                    },
        {"pad left",       13, 0, 0,      left                                                                                    },
        {"pad right",      14, 0, 0,      right                                                                                   },
        {"stick up",       -1, 1, -32768, up                                                                                      },
        {"stick down",     -1, 1, 32767,  down                                                                                    },
        {"stick left",     -1, 0, -32768, left                                                                                    },
        {"stick right",    -1, 0, 32767,  right                                                                                   },
        {"south",
         0,                    0,
         0,                               {L"NES P* BUTTONA", L"SMS P* BUTTON1", L"GG P* BUTTON1", L"Arcade P* BUTTON1",
          L"MEGADRIVE P* BUTTONB"}                                                                                     },
        {"east",
         1,                    0,
         0,                               {L"SMS P* BUTTON2", L"GG P* BUTTON2", L"Arcade P* BUTTON2", L"MEGADRIVE P* BUTTONC"}    },
        {"west",
         2,                    0,
         0,                               {L"NES P* BUTTONB", L"SMS P* BUTTON3", L"Arcade P* BUTTON3", L"MEGADRIVE P* BUTTONA"}   },
        {"north",          3,  0, 0,      {L"SMS P* BUTTON4", L"Arcade P* BUTTON4", L"MEGADRIVE P* BUTTONY"}                      },
        {"back",           4,  0, 0,      {L"NES P* SELECT", L"Arcade Insert Coin*", L"MEGADRIVE P* MODE"}                        },
        {"start",
         6,                    0,
         0,                               {L"NES P* START", L"SMS PAUSE", L"GG P* START", L"Arcade Start*", L"MEGADRIVE P* START"}},
        {"left shoulder",
         9,                    0,
         0,                               {L"SMS P* BUTTON5", L"Arcade P* BUTTON5", L"MEGADRIVE P* BUTTONX"}                      },
        {"right shoulder",
         10,                   0,
         0,                               {L"SMS P* BUTTON6", L"Arcade P* BUTTON6", L"MEGADRIVE P* BUTTONZ"}                      },
        {"guide",          5,  0, 0,      {}                                                                                      },
        {"left thumb",     7,  0, 0,      {}                                                                                      },
        {"right thumb",    8,  0, 0,      {}                                                                                      },
        {"right stick",    -1, 2, 32767,  {}                                                                                      },
    };
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

TEST_F(JoysticksTest, EveryControlOfAControllerActsByDefault) {
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
            EXPECT_EQ(ActionsDown(), ForPlayer(row.actions, player == 0 ? L'1' : L'2'))
                << row.what << " of player " << player + 1;
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

TEST_F(JoysticksTest, TheTriggersTurnTimeFromHalfTheirWayOn) {
    const VirtualJoystick first(kController);
    const VirtualJoystick second(kController);
    joysticks.Open();
    // The raw axis goes from -32768 at rest to 32767; its half is 0.
    constexpr int kLeft = 4;
    constexpr int kRight = 5;
    first.Axis(kLeft, -1000);
    second.Axis(kLeft, 32767);
    second.Axis(kRight, 32767);
    Round();
    EXPECT_TRUE(ActionsDown().empty());
    first.Axis(kLeft, 1000);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Rewind"});
    first.Axis(kLeft, -1000);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Rewind"}) << "it doesn't flutter about the half";
    first.Axis(kLeft, -32768);
    first.Axis(kRight, 32767);
    Round();
    EXPECT_EQ(ActionsDown(), Actions{L"Fast Forward"});
}

TEST_F(JoysticksTest, TheStickHasADeadZoneAndHoldsOnWithinIt) {
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
        {-1000, true,  false}, // across in one step
        {350,   false, false},
    };
    for (const ROW& row : rows) {
        pad.Axis(0, row.value * 32767 / 1000);
        Round();
        EXPECT_EQ(InputIsDown(kTestSession, L"NES P1 LEFT"), row.left) << row.value;
        EXPECT_EQ(InputIsDown(kTestSession, L"NES P1 RIGHT"), row.right) << row.value;
    }
}

TEST_F(JoysticksTest, AStickPushedCornerwiseGivesBothDirections) {
    const VirtualJoystick pad(kController);
    joysticks.Open();
    pad.Axis(0, 23170); // the whole way at 45 degrees
    pad.Axis(1, -23170);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 RIGHT"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"NES P1 UP"));
    for (const uint32_t code : {401u, 402u}) {
        EXPECT_FALSE(BindingIsDown(JoystickBinding(0, code), false)) << "codes begin at 28000";
    }
}

TEST_F(JoysticksTest, AControllerFeedsTheCodesAsWell) {
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

TEST_F(JoysticksTest, WhatAControllerHoldsAtTheStartActs) {
    const VirtualJoystick pad(kController);
    pad.Button(1, true);
    pad.Axis(0, -32768);
    SDL_JoystickUpdate();
    joysticks.Open();
    EXPECT_TRUE(InputIsDown(kTestSession, L"GG P1 BUTTON2"));
    EXPECT_TRUE(InputIsDown(kTestSession, L"GG P1 LEFT"));
    EXPECT_FALSE(InputIsDown(kTestSession, L"GG P1 RIGHT"));
}

TEST_F(JoysticksTest, AControllerMayArriveLater) {
    joysticks.Open();
    Round();
    const VirtualJoystick pad(kController);
    Round();
    EXPECT_EQ(joysticks.Places()[0].player, 0u);
    pad.Button(0, true);
    Round();
    EXPECT_TRUE(InputIsDown(kTestSession, L"SMS P1 BUTTON1"));
}

TEST_F(JoysticksTest, AControllerThatLeavesLetsItsActionsGoAndTheOtherKeepsItsPlayer) {
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

TEST_F(JoysticksTest, AThirdControllerIsAJoystickAlone) {
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

TEST_F(JoysticksTest, ABoundActionListensToItsBindingsAlone) {
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

TEST_F(JoysticksTest, ABoundAxisActsNoMoreAsTheStickThatItIs) {
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

// Tells the library of a controller with the given model number, before it is opened here.
void AddMapping(const VirtualJoystick& joystick, const std::string& controls) {
    char id[33];
    SDL_JoystickGetGUIDString(SDL_JoystickGetGUID(SDL_JoystickFromInstanceID(joystick.Instance())),
                              id, sizeof id);
    const std::string mapping = std::string(id) + ",Test controller," + controls;
    ASSERT_GE(SDL_GameControllerAddMapping(mapping.c_str()), 0) << SDL_GetError();
}

// Whether the control stops to act for `action` once `code` is bound, and acts again without.
void ExpectTakenBy(uint32_t code, const wchar_t* action) {
    EXPECT_TRUE(InputIsDown(kTestSession, action)) << code;
    Settings().SetInt2(L"INPUT Use", 8, static_cast<int32_t>(JoystickBinding(0, code)));
    InputBeginPump();
    EXPECT_FALSE(InputIsDown(kTestSession, action)) << code;
    Settings().SetInt2(L"INPUT Use", 8, 0);
    InputBeginPump();
}

TEST_F(JoysticksTest, APadThatIsAHatIsTakenByTheHatsCodes) {
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

TEST_F(JoysticksTest, AStickThatIsTurnedRoundIsTakenByTheOtherCode) {
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

TEST_F(JoysticksTest, APadThatIsTwoAxesIsTakenByItsHalves) {
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

TEST_F(JoysticksTest, ANewMappingOfAnOpenControllerCounts) {
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
