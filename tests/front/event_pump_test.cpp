// The window's events and the tables that they change; events are pushed into the device library's
// queue.
#include "front/event_pump.h"
#include "front/joysticks.h"
#include "front/sdl_fixture.h"
#include "settings/input_frame.h"

#include <vector>

namespace {

constexpr uint32_t kKeyA = 4;
constexpr uint32_t kKeyReturn = 40;
constexpr uint32_t kKeyTab = 43;
constexpr uint32_t kLeftCtrl = 224;
constexpr uint32_t kLeftShift = 225;
constexpr uint32_t kLeftAlt = 226;
constexpr uint32_t kF2 = 59;
constexpr uint32_t kF3 = 60;
constexpr uint32_t kF4 = 61;
constexpr uint32_t kF5 = 62;
constexpr uint32_t kF6 = 63;
constexpr uint32_t kF11 = 68;

class EventPumpTest : public SdlTest {
protected:
    static void Push(SDL_Event event) { ASSERT_EQ(SDL_PushEvent(&event), 1); }

    static void Key(uint32_t scancode, bool down, uint16_t modifiers = KMOD_NONE,
                    bool repeat = false) {
        SDL_Event event{};
        event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
        event.key.repeat = repeat ? 1 : 0;
        event.key.keysym.scancode = static_cast<SDL_Scancode>(scancode);
        event.key.keysym.sym = SDL_GetKeyFromScancode(event.key.keysym.scancode);
        event.key.keysym.mod = modifiers;
        Push(event);
    }
    static void Press(uint32_t scancode, uint16_t modifiers = KMOD_NONE) {
        Key(scancode, true, modifiers);
        Key(scancode, false, modifiers);
    }
    static void WindowEvent(uint8_t kind) {
        SDL_Event event{};
        event.type = SDL_WINDOWEVENT;
        event.window.event = kind;
        Push(event);
    }
    static void Text(const char* text) {
        SDL_Event event{};
        event.type = SDL_TEXTINPUT;
        SDL_strlcpy(event.text.text, text, sizeof event.text.text);
        Push(event);
    }
    static void Move(int32_t x, int32_t y, int32_t dx, int32_t dy) {
        SDL_Event event{};
        event.type = SDL_MOUSEMOTION;
        event.motion.x = x;
        event.motion.y = y;
        event.motion.xrel = dx;
        event.motion.yrel = dy;
        Push(event);
    }
    static void Button(uint8_t button, bool down, int32_t x, int32_t y) {
        SDL_Event event{};
        event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        event.button.button = button;
        event.button.x = x;
        event.button.y = y;
        Push(event);
    }
    static void Wheel(int32_t y, bool flipped = false) {
        SDL_Event event{};
        event.type = SDL_MOUSEWHEEL;
        event.wheel.y = y;
        event.wheel.direction = flipped ? SDL_MOUSEWHEEL_FLIPPED : SDL_MOUSEWHEEL_NORMAL;
        Push(event);
    }
    static void Drop(uint32_t type, const char* text) {
        SDL_Event event{};
        event.type = type;
        event.drop.file = text != nullptr ? SDL_strdup(text) : nullptr;
        Push(event);
    }
    static void Audio(uint32_t type, uint32_t number, bool capture = false) {
        SDL_Event event{};
        event.type = type;
        event.adevice.which = number;
        event.adevice.iscapture = capture ? 1 : 0;
        Push(event);
    }

    Joysticks joysticks;
    EventPump pump{joysticks};
};

std::vector<int32_t> WheelSteps(const PUMP_EVENTS& events) {
    std::vector<int32_t> steps;
    for (const GUI_INPUT& record : events.gui) {
        EXPECT_EQ(record.kind, GuiInputKind::kWheel);
        steps.push_back(record.wheel);
    }
    return steps;
}

TEST_F(EventPumpTest, ARoundWithoutEventsBringsNothing) {
    const PUMP_EVENTS events = pump.Pump();
    EXPECT_FALSE(events.quit || events.windowChanged || events.outputGone != 0);
    EXPECT_TRUE(events.commands.empty());
    EXPECT_TRUE(events.dropped.empty() && events.gui.empty() && events.screen.empty());
}

TEST_F(EventPumpTest, AKeyIsDownFromItsPressToItsRelease) {
    Key(kKeyA, true);
    (void)pump.Pump();
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
    (void)pump.Pump();
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
    Key(kKeyA, false);
    (void)pump.Pump();
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
}

TEST_F(EventPumpTest, PressesOfAStandstillAreForNobody) {
    Key(kKeyTab, true);
    Button(SDL_BUTTON_RIGHT, true, 1, 2);
    (void)pump.Pump();
    Key(kKeyTab, false); // releases of what was pressed before
    Button(SDL_BUTTON_RIGHT, false, 1, 2);
    Press(kKeyReturn);
    Press(kF5);
    Key(kKeyA, true); // still held after it
    Text("a");
    Wheel(1);
    Button(SDL_BUTTON_LEFT, true, 5, 6);
    Button(SDL_BUTTON_LEFT, false, 5, 6);
    Move(7, 8, 2, 2);
    SDL_Event quit{};
    quit.type = SDL_QUIT;
    Push(quit);
    pump.ForgetPresses();
    const PUMP_EVENTS events = pump.Pump();
    EXPECT_TRUE(events.quit) << "the window is closed all the same";
    EXPECT_TRUE(events.commands.empty());
    EXPECT_FALSE(pump.Mouse().leftPressed);
    EXPECT_EQ(pump.Mouse().x, 7);
    std::vector<GuiInputKind> kinds;
    for (const GUI_INPUT& record : events.gui) {
        kinds.push_back(record.kind);
    }
    using enum GuiInputKind;
    EXPECT_EQ(kinds, (std::vector{kKeyUp, kMouseUp, kKeyUp, kKeyUp, kMouseUp, kMouseMove}));
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
    Press(kKeyReturn);
    EXPECT_EQ(pump.Pump().gui.size(), 2u) << "the next round's presses count again";
}

TEST_F(EventPumpTest, APressShorterThanARoundIsSeenInThatRound) {
    Press(kKeyA);
    (void)pump.Pump();
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    EXPECT_TRUE(BindingIsDown(kKeyA, true));
    (void)pump.Pump();
    EXPECT_FALSE(BindingIsDown(kKeyA, true));
}

TEST_F(EventPumpTest, APressShorterThanARoundIsDownInTheNextFrame) {
    InputSetActiveKey(1);
    InputLooker looker;
    Press(64); // F7
    static_cast<void>(pump.Pump());
    static_cast<void>(pump.Pump());
    EXPECT_FALSE(InputIsDown(1, L"Save State"));
    {
        const InputFrame frame(looker, 1);
        EXPECT_TRUE(InputIsDown(1, L"Save State"));
    }
    const InputFrame frame(looker, 1);
    EXPECT_FALSE(InputIsDown(1, L"Save State"));
}

TEST_F(EventPumpTest, ChordsReachTheBindings) {
    Key(kLeftShift, true);
    Key(kKeyTab, true, KMOD_LSHIFT);
    (void)pump.Pump();
    EXPECT_EQ(ActionsDown(), std::set<std::wstring>{L"Rewind"});
    Key(kLeftShift, false);
    (void)pump.Pump();
    EXPECT_EQ(ActionsDown(), std::set<std::wstring>{L"Fast Forward"});
    for (const uint32_t modifier : {kLeftCtrl, kLeftAlt}) {
        Key(modifier, true);
        (void)pump.Pump();
        EXPECT_EQ(ActionsDown(), modifier == kLeftCtrl
                                     ? std::set<std::wstring>{L"Toggle Fast Forward"}
                                     : std::set<std::wstring>())
            << modifier;
        EXPECT_EQ(BindingIsDown(KeyboardBinding(kKeyTab, kModifierCtrl), false),
                  modifier == kLeftCtrl);
        Key(modifier, false);
        (void)pump.Pump();
        EXPECT_EQ(ActionsDown(), std::set<std::wstring>{L"Fast Forward"}) << modifier;
    }
}

TEST_F(EventPumpTest, ScancodesBeyondTheTableAreIgnored) {
    Key(SDL_NUM_SCANCODES, true);
    Key(1023, true);
    (void)pump.Pump();
    EXPECT_TRUE(JoystickCodes().empty());
}

using Commands = std::vector<ProgramCommand>;

TEST_F(EventPumpTest, EachFunctionKeyHasItsCommand) {
    struct ROW {
        uint32_t key;
        ProgramCommand command;
    };
    const ROW rows[] = {
        {kF2,  ProgramCommand::kToggleStatistics  },
        {kF3,  ProgramCommand::kToggleCrop        },
        {kF4,  ProgramCommand::kToggleCeilingLight},
        {kF5,  ProgramCommand::kToggleLinear      },
        {kF6,  ProgramCommand::kNextScaler        },
        {kF11, ProgramCommand::kToggleFullScreen  },
    };
    for (const ROW& row : rows) {
        Press(row.key);
        EXPECT_EQ(pump.Pump().commands, Commands{row.command}) << row.key;
    }
}

TEST_F(EventPumpTest, EveryPressOfARoundIsACommandInItsOrder) {
    Press(kF6);
    Press(kF5);
    Press(kF6);
    EXPECT_EQ(pump.Pump().commands,
              (Commands{ProgramCommand::kNextScaler, ProgramCommand::kToggleLinear,
                        ProgramCommand::kNextScaler}));
    EXPECT_TRUE(pump.Pump().commands.empty());
}

TEST_F(EventPumpTest, ARepeatIsNoCommand) {
    Key(kF5, true);
    EXPECT_EQ(pump.Pump().commands, Commands{ProgramCommand::kToggleLinear});
    Key(kF5, true, KMOD_NONE, true);
    Key(kF6, true, KMOD_NONE, true);
    Key(kKeyReturn, true, KMOD_LALT, true);
    const PUMP_EVENTS events = pump.Pump();
    EXPECT_TRUE(events.commands.empty());
    ASSERT_EQ(events.gui.size(), 3u) << "text fields want repeats";
    EXPECT_TRUE(events.gui[0].repeat);
}

TEST_F(EventPumpTest, FunctionKeysDoNothingWhileTheUserWalksTheRoom) {
    InputSetWalkingRoom(true);
    for (const uint32_t key : {kF2, kF3, kF5, kF6, kF11}) {
        Press(key);
    }
    EXPECT_TRUE(pump.Pump().commands.empty());
    EXPECT_TRUE(BindingIsDown(kF2, true)) << "the codes are set all the same";
}

TEST_F(EventPumpTest, TheCeilingLightIsSwitchedWhileTheUserWalksToo) {
    InputSetWalkingRoom(true);
    Press(kF4);
    EXPECT_EQ(pump.Pump().commands, Commands{ProgramCommand::kToggleCeilingLight});
}

TEST_F(EventPumpTest, FunctionKeysUnderAChordBelongToTheDesktop) {
    for (const uint16_t modifiers : {KMOD_LALT, KMOD_RCTRL, KMOD_LGUI}) {
        Press(kF4, modifiers);
        Press(kF6, modifiers);
        EXPECT_TRUE(pump.Pump().commands.empty()) << modifiers;
    }
    Press(kF4, KMOD_LSHIFT | KMOD_NUM | KMOD_CAPS);
    EXPECT_EQ(pump.Pump().commands, Commands{ProgramCommand::kToggleCeilingLight});
}

TEST_F(EventPumpTest, AltAndReturnSwitchTheWholeScreenAtAnyTime) {
    Press(kKeyReturn);
    EXPECT_TRUE(pump.Pump().commands.empty());
    Press(kKeyReturn, KMOD_RALT);
    EXPECT_EQ(pump.Pump().commands, Commands{ProgramCommand::kToggleFullScreen});
    InputSetWalkingRoom(true);
    Press(kKeyReturn, KMOD_LALT);
    EXPECT_EQ(pump.Pump().commands, Commands{ProgramCommand::kToggleFullScreen});
}

TEST_F(EventPumpTest, LosingTheKeyboardLetsKeysGo) {
    Key(kKeyA, true);
    Key(kLeftShift, true);
    Key(511, true); // among the codes of the first joystick
    (void)pump.Pump();
    InputButtonChanged(0, 3, true);
    WindowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    (void)pump.Pump();
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    EXPECT_TRUE(BindingIsDown(kKeyA, true)) << "it has been let go";
    EXPECT_FALSE(BindingIsDown(KeyboardBinding(kKeyA, kModifierShift), true));
    EXPECT_EQ(JoystickCodes(), std::set<uint32_t>{531}) << "joysticks stay";
}

TEST_F(EventPumpTest, ARepeatAfterTheLossDoesNotPressAgain) {
    Key(kKeyA, true);
    WindowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    Key(kKeyA, true, KMOD_NONE, true);
    (void)pump.Pump();
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    Key(kKeyA, true);
    (void)pump.Pump();
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
}

TEST_F(EventPumpTest, QuitAndClosingTheWindowEndTheProgram) {
    SDL_Event quit{};
    quit.type = SDL_QUIT;
    Push(quit);
    EXPECT_TRUE(pump.Pump().quit);
    EXPECT_FALSE(pump.Pump().quit);
    WindowEvent(SDL_WINDOWEVENT_CLOSE);
    EXPECT_TRUE(pump.Pump().quit);
}

TEST_F(EventPumpTest, AWindowThatShowsOtherwiseIsDrawnAgain) {
    for (const uint8_t kind : {SDL_WINDOWEVENT_SIZE_CHANGED, SDL_WINDOWEVENT_RESIZED,
                               SDL_WINDOWEVENT_EXPOSED, SDL_WINDOWEVENT_RESTORED}) {
        WindowEvent(kind);
        const PUMP_EVENTS events = pump.Pump();
        EXPECT_TRUE(events.windowChanged) << int{kind};
        EXPECT_FALSE(events.quit) << int{kind};
    }
    WindowEvent(SDL_WINDOWEVENT_MOVED);
    EXPECT_FALSE(pump.Pump().windowChanged);
}

TEST_F(EventPumpTest, AnOutputThatGoesIsNamed) {
    Audio(SDL_AUDIODEVICEREMOVED, 2);
    Audio(SDL_AUDIODEVICEREMOVED, 0); // the library's event for the device itself
    EXPECT_EQ(pump.Pump().outputGone, 2u);
    Audio(SDL_AUDIODEVICEADDED, 1);
    EXPECT_EQ(pump.Pump().outputGone, 0u);
}

TEST_F(EventPumpTest, MicrophonesDoNotMatter) {
    Audio(SDL_AUDIODEVICEREMOVED, 2, true);
    Audio(SDL_AUDIODEVICEADDED, 1, true);
    const PUMP_EVENTS events = pump.Pump();
    EXPECT_EQ(events.outputGone, 0u);
}

TEST_F(EventPumpTest, DroppedFilesAreListedInTheirOrder) {
    Drop(SDL_DROPBEGIN, nullptr);
    Drop(SDL_DROPFILE, "/games/one.sms");
    Drop(SDL_DROPTEXT, "not a file");
    Drop(SDL_DROPFILE, "/games/dos \xC3\xA9.zip");
    Drop(SDL_DROPCOMPLETE, nullptr);
    EXPECT_EQ(pump.Pump().dropped,
              (std::vector<std::string>{"/games/one.sms", "/games/dos \xC3\xA9.zip"}));
    EXPECT_TRUE(pump.Pump().dropped.empty());
}

TEST_F(EventPumpTest, KeysReachTheToolkitWithTheirCharacter) {
    Press(kKeyA);
    Key(kF2, true);
    Key(kKeyReturn, true);
    const std::vector<GUI_INPUT> gui = pump.Pump().gui;
    ASSERT_EQ(gui.size(), 4u);
    EXPECT_EQ(gui[0].kind, GuiInputKind::kKeyDown);
    EXPECT_EQ(gui[0].key, kKeyA);
    EXPECT_EQ(gui[0].character, uint32_t{'a'});
    EXPECT_FALSE(gui[0].repeat);
    EXPECT_EQ(gui[1].kind, GuiInputKind::kKeyUp);
    EXPECT_EQ(gui[1].key, kKeyA);
    EXPECT_EQ(gui[2].key, kF2);
    EXPECT_EQ(gui[2].character, 0u);
    EXPECT_EQ(gui[3].character, 13u);
}

TEST_F(EventPumpTest, ShiftMakesACapitalAndAChordHasNoCharacter) {
    struct ROW {
        uint16_t modifiers;
        uint32_t character;
    };
    for (const ROW row : {
             ROW{KMOD_LSHIFT, 'A'},
             ROW{KMOD_NUM,    'a'},
             ROW{KMOD_RCTRL,  0  },
             ROW{KMOD_LALT,   0  },
             ROW{KMOD_LGUI,   0  }
    }) {
        Key(kKeyA, true, row.modifiers);
        const std::vector<GUI_INPUT> gui = pump.Pump().gui;
        ASSERT_EQ(gui.size(), 1u);
        EXPECT_EQ(gui[0].character, row.character) << row.modifiers;
        Key(kKeyA, false);
        static_cast<void>(pump.Pump());
    }
}

TEST_F(EventPumpTest, TheFirstCharacterOfTextReachesTheToolkit) {
    struct ROW {
        const char* text;
        uint32_t character; // 0: no record
    };
    const ROW rows[] = {
        {"ab",               'a'    },
        {" ",                32     },
        {"\x1F",             0      },
        {"",                 0      },
        {"\xC3\xA9",         0xE9   },
        {"\xF0\x9F\x8E\xAE", 0x1F3AE},
    };
    for (const ROW& row : rows) {
        Text(row.text);
        const std::vector<GUI_INPUT> gui = pump.Pump().gui;
        ASSERT_EQ(gui.size(), row.character != 0 ? 1u : 0u) << row.text;
        if (row.character != 0) {
            EXPECT_EQ(gui[0].kind, GuiInputKind::kText);
            EXPECT_EQ(gui[0].character, row.character);
        }
    }
}

TEST_F(EventPumpTest, MouseMovesAndButtonsReachTheToolkit) {
    Move(100, 50, 3, -4);
    Button(SDL_BUTTON_RIGHT, true, 101, 51);
    Button(SDL_BUTTON_RIGHT, false, 102, 52);
    const std::vector<GUI_INPUT> gui = pump.Pump().gui;
    ASSERT_EQ(gui.size(), 3u);
    EXPECT_EQ(gui[0].kind, GuiInputKind::kMouseMove);
    EXPECT_EQ(gui[0].x, 100);
    EXPECT_EQ(gui[0].y, 50);
    EXPECT_EQ(gui[0].dx, 3);
    EXPECT_EQ(gui[0].dy, -4);
    EXPECT_EQ(gui[1].kind, GuiInputKind::kMouseDown);
    EXPECT_EQ(gui[1].button, 3u);
    EXPECT_EQ(gui[1].x, 101);
    EXPECT_EQ(gui[1].dx, 0);
    EXPECT_EQ(gui[2].kind, GuiInputKind::kMouseUp);
    EXPECT_EQ(gui[2].y, 52);
}

TEST_F(EventPumpTest, TheWheelGoesInStepsMinusOneUpAndPlusOneDown) {
    Wheel(1);
    EXPECT_EQ(WheelSteps(pump.Pump()), std::vector<int32_t>{-1});
    Wheel(-1);
    EXPECT_EQ(WheelSteps(pump.Pump()), std::vector<int32_t>{1});
    Wheel(3);
    EXPECT_EQ(WheelSteps(pump.Pump()), (std::vector<int32_t>{-1, -1, -1}));
    Wheel(2, true);
    EXPECT_EQ(WheelSteps(pump.Pump()), (std::vector<int32_t>{1, 1}));
    Wheel(0); // a horizontal step
    EXPECT_TRUE(pump.Pump().gui.empty());
}

TEST_F(EventPumpTest, ABrokenWheelDoesNotFloodTheToolkit) {
    Wheel(INT32_MIN, true);
    EXPECT_LE(pump.Pump().gui.size(), 100u);
}

TEST_F(EventPumpTest, WhileTheUserWalksTheRoomTheToolkitGetsNothing) {
    InputSetWalkingRoom(true);
    Move(5, 6, 7, 8);
    Wheel(1);
    Button(SDL_BUTTON_LEFT, true, 5, 6);
    Press(kKeyA);
    Text("a");
    const PUMP_EVENTS events = pump.Pump();
    EXPECT_TRUE(events.gui.empty());
    ASSERT_EQ(events.screen.size(), 6u);
    EXPECT_EQ(events.screen[0].dx, 7);
    EXPECT_EQ(events.screen[1].wheel, -1);
}

TEST_F(EventPumpTest, TheMouseIsWhereItWasLastSeen) {
    Move(30, 40, 0, 0);
    (void)pump.Pump();
    (void)pump.Pump();
    EXPECT_EQ(pump.Mouse().x, 30);
    EXPECT_EQ(pump.Mouse().y, 40);
    Button(SDL_BUTTON_LEFT, false, 31, 41);
    (void)pump.Pump();
    EXPECT_EQ(pump.Mouse().x, 31);
    EXPECT_EQ(pump.Mouse().y, 41);
}

TEST_F(EventPumpTest, MousePositionsAreInPixelsOfTheSurface) {
    pump.SetWindowSize(640, 480, 1280, 720);
    Move(320, 479, 10, 10);
    const std::vector<GUI_INPUT> gui = pump.Pump().gui;
    EXPECT_EQ(pump.Mouse().x, 640);
    EXPECT_EQ(pump.Mouse().y, 719) << "479 times 1.5 is 718.5";
    ASSERT_EQ(gui.size(), 1u);
    EXPECT_EQ(gui[0].x, 640);
    EXPECT_EQ(gui[0].dx, 20);
    EXPECT_EQ(gui[0].dy, 15);
    Move(-2, 0, -2, 0);
    (void)pump.Pump();
    EXPECT_EQ(pump.Mouse().x, -4) << "a drag may leave the window";
}

TEST_F(EventPumpTest, AWindowOfNoSizeScalesNothing) {
    pump.SetWindowSize(0, 0, 1280, 720);
    Move(3, 4, 0, 0);
    (void)pump.Pump();
    EXPECT_EQ(pump.Mouse().x, 3);
    pump.SetWindowSize(640, 480, 0, 0);
    Move(3, 4, 0, 0);
    (void)pump.Pump();
    EXPECT_EQ(pump.Mouse().y, 4);
}

TEST_F(EventPumpTest, TheLeftButtonIsHeldUntilItsRelease) {
    Button(SDL_BUTTON_LEFT, true, 0, 0);
    (void)pump.Pump();
    EXPECT_TRUE(pump.Mouse().left);
    EXPECT_TRUE(pump.Mouse().leftPressed);
    Button(SDL_BUTTON_RIGHT, false, 0, 0);
    (void)pump.Pump();
    EXPECT_TRUE(pump.Mouse().left);
    EXPECT_FALSE(pump.Mouse().leftPressed);
    Button(SDL_BUTTON_LEFT, false, 0, 0);
    (void)pump.Pump();
    EXPECT_FALSE(pump.Mouse().left);
}

TEST_F(EventPumpTest, AClickShorterThanARoundIsSeenInThatRound) {
    Button(SDL_BUTTON_LEFT, true, 0, 0);
    Button(SDL_BUTTON_LEFT, false, 0, 0);
    (void)pump.Pump();
    EXPECT_FALSE(pump.Mouse().left);
    EXPECT_TRUE(pump.Mouse().leftPressed);
    (void)pump.Pump();
    EXPECT_FALSE(pump.Mouse().leftPressed);
}

TEST_F(EventPumpTest, LosingTheKeyboardLetsTheTriggerGo) {
    Button(SDL_BUTTON_LEFT, true, 0, 0);
    (void)pump.Pump();
    WindowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    (void)pump.Pump();
    EXPECT_FALSE(pump.Mouse().left);
}

} // namespace
