#include "front/event_pump.h"

#include "base/text.h"
#include "front/joysticks.h"
#include "settings/bindings.h"

#include <SDL.h>

#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <utility>

namespace {

constexpr uint32_t kFirstTextCharacter = 32;

// Rounds to the nearest, for moves of a fraction of the surface's pixels.
int32_t Scale(int32_t value, int32_t from, int32_t to) {
    if (from <= 0 || to <= 0 || from == to) {
        return value;
    }
    const int64_t product = int64_t{value} * to;
    const int64_t half = product < 0 ? -from / 2 : from / 2;
    return static_cast<int32_t>((product + half) / from);
}

// A record goes to the current owner of mouse and keys, the toolkit or the screen.
void AddRecord(PUMP_EVENTS& events, const GUI_INPUT& record) {
    (InputWalkingRoom() ? events.screen : events.gui).push_back(record);
}

// The character of a key: the library's key code, unless the key has none or is part of a chord.
uint32_t KeyCharacter(const SDL_Keysym& key) {
    if (key.sym <= 0 || (key.sym & SDLK_SCANCODE_MASK) != 0 ||
        (key.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0) {
        return 0;
    }
    const auto character = static_cast<wint_t>(key.sym);
    return (key.mod & KMOD_SHIFT) != 0 ? std::towupper(character) : character;
}

// A chord with alt, ctrl or the system key is the desktop's or a binding's, as Alt + F4 is.
void HandleProgramKey(const SDL_Keysym& key, PUMP_EVENTS& events) {
    const bool alt = (key.mod & KMOD_ALT) != 0;
    const bool otherChord = (key.mod & (KMOD_CTRL | KMOD_GUI)) != 0;
    for (const PROGRAM_KEY& row : ProgramKeys()) {
        const bool chordFits = row.alt ? alt : !alt && !otherChord;
        if (key.scancode == row.scancode && chordFits &&
            (row.whileWalking || !InputWalkingRoom())) {
            events.commands.push_back(row.command);
        }
    }
}

void HandleText(const char* text, PUMP_EVENTS& events) {
    const std::wstring wide = WideFromUtf8(text);
    const auto character = wide.empty() ? U'\0' : static_cast<char32_t>(wide.front());
    if (character < kFirstTextCharacter) {
        return;
    }
    GUI_INPUT record;
    record.kind = GuiInputKind::kText;
    record.character = character;
    AddRecord(events, record);
}

// The library reports every output that goes, with number 0 for one that wasn't open, which must not
// hide the number of an open one.
void HandleAudioDevice(const SDL_AudioDeviceEvent& event, PUMP_EVENTS& events) {
    if (event.iscapture == 0 && event.which != 0) {
        events.outputGone = event.which;
    }
}

void HandleDrop(const SDL_DropEvent& event, PUMP_EVENTS& events) {
    if (event.file != nullptr) {
        if (event.type == SDL_DROPFILE) {
            events.dropped.emplace_back(event.file);
        }
        SDL_free(event.file);
    }
}

// A release may belong to an earlier press, and a move says where the mouse is.
bool IsPress(const GUI_INPUT& record) {
    return record.kind != GuiInputKind::kMouseMove && record.kind != GuiInputKind::kMouseUp &&
           record.kind != GuiInputKind::kKeyUp;
}

} // namespace

EventPump::EventPump(Joysticks& joysticksInUse)
    : joysticks(joysticksInUse) {}

PUMP_EVENTS EventPump::Pump() {
    PUMP_EVENTS events;
    InputBeginPump();
    mouse.leftPressed = false;
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        HandleEvent(event, events);
    }
    if (std::exchange(forgetPresses, false)) {
        std::erase_if(events.gui, IsPress);
        std::erase_if(events.screen, IsPress);
        events.commands.clear();
        mouse.leftPressed = false;
    }
    return events;
}

void EventPump::SetWindowSize(int32_t width, int32_t height, int32_t drawableWidth,
                              int32_t drawableHeight) {
    windowWidth = width;
    windowHeight = height;
    surfaceWidth = drawableWidth;
    surfaceHeight = drawableHeight;
}

void EventPump::HandleEvent(const SDL_Event& event, PUMP_EVENTS& events) {
    switch (event.type) {
    case SDL_QUIT:
    case SDL_APP_TERMINATING: events.quit = true; break;
    case SDL_KEYDOWN:
    case SDL_KEYUP: HandleKey(event.key, events); break;
    case SDL_TEXTINPUT: HandleText(event.text.text, events); break;
    case SDL_MOUSEMOTION: HandleMotion(event.motion, events); break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: HandleButton(event.button, events); break;
    case SDL_MOUSEWHEEL: HandleWheel(event.wheel, events); break;
    case SDL_WINDOWEVENT: HandleWindow(event.window, events); break;
    case SDL_RENDER_TARGETS_RESET:
    case SDL_RENDER_DEVICE_RESET: events.graphicsReset = true; break;
    case SDL_AUDIODEVICEREMOVED: HandleAudioDevice(event.adevice, events); break;
    case SDL_DROPFILE:
    case SDL_DROPTEXT:
    case SDL_DROPBEGIN:
    case SDL_DROPCOMPLETE: HandleDrop(event.drop, events); break;
    default: joysticks.Handle(event); break;
    }
}

void EventPump::HandleKey(const SDL_KeyboardEvent& event, PUMP_EVENTS& events) {
    const bool down = event.type == SDL_KEYDOWN;
    const bool repeat = down && event.repeat != 0;
    const auto scancode = static_cast<uint32_t>(event.keysym.scancode);
    // A repeat does not reach the tables: it must not set again what the loss of keyboard focus has
    // cleared. Nor does the Return of Alt + Return, which is the program's and not a game's.
    const bool chord =
        event.keysym.scancode == SDL_SCANCODE_RETURN && (event.keysym.mod & KMOD_ALT) != 0 && down;
    if (!repeat && !chord && scancode < keysDown.size()) {
        keysDown[scancode] = down;
        InputKeyChanged(scancode, down);
    }
    if (down && !repeat) {
        HandleProgramKey(event.keysym, events);
    }
    GUI_INPUT record;
    record.kind = down ? GuiInputKind::kKeyDown : GuiInputKind::kKeyUp;
    record.repeat = repeat;
    record.key = scancode;
    record.character = KeyCharacter(event.keysym);
    AddRecord(events, record);
}

void EventPump::HandleButton(const SDL_MouseButtonEvent& event, PUMP_EVENTS& events) {
    const bool down = event.type == SDL_MOUSEBUTTONDOWN;
    mouse.x = ToDrawableX(event.x);
    mouse.y = ToDrawableY(event.y);
    if (event.button == SDL_BUTTON_LEFT) {
        mouse.left = down;
        mouse.leftPressed = mouse.leftPressed || down;
    }
    GUI_INPUT record = MouseRecord(down ? GuiInputKind::kMouseDown : GuiInputKind::kMouseUp);
    record.button = event.button;
    AddRecord(events, record);
}

void EventPump::HandleMotion(const SDL_MouseMotionEvent& event, PUMP_EVENTS& events) {
    mouse.x = ToDrawableX(event.x);
    mouse.y = ToDrawableY(event.y);
    GUI_INPUT record = MouseRecord(GuiInputKind::kMouseMove);
    record.dx = ToDrawableX(event.xrel);
    record.dy = ToDrawableY(event.yrel);
    AddRecord(events, record);
}

void EventPump::HandleWheel(const SDL_MouseWheelEvent& event, PUMP_EVENTS& events) {
    const int64_t steps =
        event.direction == SDL_MOUSEWHEEL_FLIPPED ? -int64_t{event.y} : int64_t{event.y};
    GUI_INPUT record = MouseRecord(GuiInputKind::kWheel);
    record.wheel = steps > 0 ? -1 : 1;
    constexpr int64_t kMostSteps = 64; // more in one event mean a broken device
    for (int64_t i = 0; i < std::min(std::abs(steps), kMostSteps); ++i) {
        AddRecord(events, record);
    }
}

void EventPump::HandleWindow(const SDL_WindowEvent& event, PUMP_EVENTS& events) {
    switch (event.event) {
    case SDL_WINDOWEVENT_CLOSE: events.quit = true; break;
    case SDL_WINDOWEVENT_FOCUS_GAINED: hasKeyboard = true; break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        hasKeyboard = false;
        LetGo();
        break;
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_RESIZED:
    case SDL_WINDOWEVENT_SIZE_CHANGED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED: events.windowChanged = true; break;
    default: break;
    }
}

// Another window has the keyboard now and will get the releases. Joysticks belong to no window.
void EventPump::LetGo() {
    for (uint32_t scancode = 0; scancode < keysDown.size(); ++scancode) {
        if (keysDown[scancode]) {
            InputKeyChanged(scancode, false);
        }
    }
    keysDown.reset();
    mouse.left = false;
}

int32_t EventPump::ToDrawableX(int32_t x) const {
    return Scale(x, windowWidth, surfaceWidth);
}

int32_t EventPump::ToDrawableY(int32_t y) const {
    return Scale(y, windowHeight, surfaceHeight);
}

GUI_INPUT EventPump::MouseRecord(GuiInputKind kind) const {
    GUI_INPUT record;
    record.kind = kind;
    record.x = mouse.x;
    record.y = mouse.y;
    return record;
}
