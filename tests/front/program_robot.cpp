#include "front/program_robot.h"

#include "facts/machine_facts.h"
#include "front/demos.h"
#include "gui/manager.h"
#include "gui/window.h"
#include "host/host_data.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <mutex>
#include <numeric>
#include <thread>

namespace fs = std::filesystem;

namespace {

// Keys that do something somewhere, those most often that lead far.
constexpr SDL_Scancode kKeys[] = {
    SDL_SCANCODE_RETURN, SDL_SCANCODE_RETURN,    SDL_SCANCODE_RETURN,   SDL_SCANCODE_RETURN,
    SDL_SCANCODE_ESCAPE, SDL_SCANCODE_ESCAPE,    SDL_SCANCODE_TAB,      SDL_SCANCODE_TAB,
    SDL_SCANCODE_UP,     SDL_SCANCODE_DOWN,      SDL_SCANCODE_LEFT,     SDL_SCANCODE_RIGHT,
    SDL_SCANCODE_DOWN,   SDL_SCANCODE_RIGHT,     SDL_SCANCODE_SPACE,    SDL_SCANCODE_F10,
    SDL_SCANCODE_E,      SDL_SCANCODE_Q,         SDL_SCANCODE_W,        SDL_SCANCODE_PAGEUP,
    SDL_SCANCODE_A,      SDL_SCANCODE_F,         SDL_SCANCODE_F2,       SDL_SCANCODE_F3,
    SDL_SCANCODE_F4,     SDL_SCANCODE_F5,        SDL_SCANCODE_F6,       SDL_SCANCODE_F7,
    SDL_SCANCODE_F8,     SDL_SCANCODE_F9,        SDL_SCANCODE_F11,      SDL_SCANCODE_HOME,
    SDL_SCANCODE_END,    SDL_SCANCODE_PAGEDOWN,  SDL_SCANCODE_PAGEDOWN, SDL_SCANCODE_X,
    SDL_SCANCODE_DELETE, SDL_SCANCODE_BACKSPACE, SDL_SCANCODE_LSHIFT,   SDL_SCANCODE_LCTRL,
};
constexpr int32_t kAnyScancode = 300; // and some beyond the keys of any keyboard

struct PLACE {
    int32_t x = 0;
    int32_t y = 0;
};

PLACE AnyPlace(Dice& dice) {
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(SDL_GL_GetCurrentWindow(), &width, &height);
    const int32_t x = dice.Below(width + 40) - 20; // beside the window too
    return {x, dice.Below(height + 40) - 20};
}

void MoveTo(PLACE place) {
    SDL_Event move{};
    move.type = SDL_MOUSEMOTION;
    move.motion.x = place.x;
    move.motion.y = place.y;
    SDL_PushEvent(&move);
}

void ButtonAt(PLACE place, int32_t button, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.button = static_cast<uint8_t>(button);
    event.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.button.x = place.x;
    event.button.y = place.y;
    SDL_PushEvent(&event);
}

void ClickAt(PLACE place, int32_t button) {
    MoveTo(place);
    ButtonAt(place, button, true);
    ButtonAt(place, button, false);
}

std::string At(PLACE place) {
    return std::to_string(place.x) + "," + std::to_string(place.y);
}

// Middles of the windows that take the focus, and of some others.
std::vector<PLACE> ShownWindows() {
    CGhostManager& manager = CGhostManager::Get();
    std::vector<const GHOSTMANAGER_WINDOW*> shown;
    manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
        if (window.handler != nullptr && window.width > 0 && window.height > 0) {
            shown.push_back(&window);
        }
    });
    std::vector<PLACE> places;
    places.reserve(shown.size());
    for (const GHOSTMANAGER_WINDOW* const window : shown) {
        GUI_RECT rect;
        if (manager.IsWindowVisible(window) && manager.GetScreenRect(window, &rect)) {
            const double density = manager.Density();
            places.push_back({static_cast<int32_t>((rect.x + rect.width / 2) * density),
                              static_cast<int32_t>((rect.y + rect.height / 2) * density)});
        }
    }
    return places;
}

void Overwrite(const fs::path& file, Dice& dice, bool keepSize) {
    std::error_code code;
    const auto size = static_cast<uint64_t>(fs::file_size(file, code));
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    const bool within = keepSize && !code && size > 0 && size < INT32_MAX;
    stream.seekp(within ? dice.Below(static_cast<int32_t>(size)) : 0);
    for (int i = 0; i < 64; ++i) {
        stream.put(static_cast<char>(dice.Below(256)));
    }
}

// Files that the program has open would be another matter: the databases only at rest.
bool IsDatabase(const fs::path& file) {
    return file.filename().string().find(".db") != std::string::npos;
}

std::vector<fs::path> FilesBelow(const fs::path& folder, bool databases) {
    std::vector<fs::path> files;
    std::error_code code;
    for (fs::recursive_directory_iterator it(folder, code), end; !code && it != end;
         it.increment(code)) {
        std::error_code ignored;
        if (it->is_regular_file(ignored) && (databases || !IsDatabase(it->path()))) {
            files.push_back(it->path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::string HarmFile(const fs::path& file, Dice& dice) {
    std::error_code code;
    const auto size = fs::file_size(file, code);
    switch (dice.Below(6)) {
    case 0: fs::remove(file, code); return "removes " + file.filename().string();
    case 1: fs::resize_file(file, 0, code); return "empties " + file.filename().string();
    case 2:
        fs::resize_file(file, code ? 0 : size / 2, code);
        return "halves " + file.filename().string();
    case 3:
        fs::remove(file, code);
        fs::create_directory(file, code);
        return "a folder in the place of " + file.filename().string();
    case 4:
        Overwrite(file, dice, false);
        return "overwrites the head of " + file.filename().string();
    default: Overwrite(file, dice, true); return "overwrites within " + file.filename().string();
    }
}

// ---- The clock.

namespace {

struct ROBOT_TIME {
    std::mutex lock;
    int64_t base = 0; // microseconds, at `since`
    std::chrono::steady_clock::time_point since;
    std::thread::id main;
};

ROBOT_TIME& Time() {
    static ROBOT_TIME time;
    return time;
}

// Under the lock.
int64_t Reading(const ROBOT_TIME& time) {
    constexpr int64_t kRound = 3000000; // one that takes longer waits for a time
    const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(
                            std::chrono::steady_clock::now() - time.since)
                            .count();
    return time.base + std::max<int64_t>(passed - kRound, 0);
}

// However long: the clock may go on at once.
void Sleep(uint32_t) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// The end of a frame's wait is a loop that only reads the clock.
int64_t Now() {
    thread_local int64_t seen = -1;
    ROBOT_TIME& time = Time();
    int64_t now = 0;
    {
        const std::scoped_lock hold(time.lock);
        now = Reading(time);
    }
    if (now == seen && std::this_thread::get_id() != time.main) {
        Sleep(1);
    }
    seen = now;
    return now;
}

} // namespace

RobotClock::RobotClock() {
    Time().base = 1000000;
    Time().since = std::chrono::steady_clock::now();
    Time().main = std::this_thread::get_id();
    HostSetClock({Now, Sleep});
}

RobotClock::~RobotClock() {
    HostSetClock({});
}

void RobotClock::Go(int64_t microseconds) {
    ROBOT_TIME& time = Time();
    const std::scoped_lock hold(time.lock);
    time.base = Reading(time) + microseconds;
    time.since = std::chrono::steady_clock::now();
}

// ---- The hands.

const std::vector<RobotHand::DEED>& RobotHand::Deeds() {
    static const std::vector<DEED> deeds = {
        {"key",          26, &RobotHand::TapKey       },
        {"held key",     4,  &RobotHand::HoldKey      },
        {"click",        6,  &RobotHand::ClickAnywhere},
        {"window",       20, &RobotHand::ClickOnWindow},
        {"drag",         4,  &RobotHand::Drag         },
        {"wheel",        4,  &RobotHand::Wheel        },
        {"move",         6,  &RobotHand::Move         },
        {"text",         4,  &RobotHand::TypeText     },
        {"pad",          14, &RobotHand::Pad          },
        {"plug",         1,  &RobotHand::PlugPad      },
        {"resize",       1,  &RobotHand::Resize       },
        {"window event", 2,  &RobotHand::WindowEvent  },
        {"drop",         3,  &RobotHand::DropFiles    },
        {"harm",         2,  &RobotHand::HarmGames    },
    };
    return deeds;
}

std::string RobotHand::Act() {
    if (pad != nullptr && padButton >= 0 && !dice.OneIn(8)) {
        pad->Button(padButton, false);
        padButton = -1;
    }
    if (dice.OneIn(400)) {
        return CloseWindow();
    }
    const auto& deeds = Deeds();
    const int32_t sum =
        std::accumulate(deeds.begin(), deeds.end(), 0,
                        [](int32_t before, const DEED& deed) { return before + deed.weight; });
    int32_t drawn = dice.Below(sum);
    for (const DEED& deed : deeds) {
        if (drawn < deed.weight) {
            return std::string(deed.name) + " " + (this->*deed.act)();
        }
        drawn -= deed.weight;
    }
    return {};
}

void RobotHand::LetGo() {
    pad.reset();
    padButton = -1;
    held.clear();
}

std::string RobotHand::TapKey() {
    const SDL_Scancode key =
        dice.OneIn(12) ? static_cast<SDL_Scancode>(dice.Below(kAnyScancode)) : dice.Of(kKeys);
    Key(key, true);
    Key(key, false);
    return std::to_string(key);
}

// Or lets go of all that it holds.
std::string RobotHand::HoldKey() {
    if (held.size() >= 4 || (!held.empty() && dice.OneIn(2))) {
        for (const SDL_Scancode key : held) {
            Key(key, false);
        }
        held.clear();
        return "let go";
    }
    const SDL_Scancode key = dice.Of(kKeys);
    held.push_back(key);
    Key(key, true);
    return std::to_string(key);
}

std::string RobotHand::ClickAnywhere() {
    const PLACE place = AnyPlace(dice);
    const int32_t button = dice.OneIn(3) ? 1 + dice.Below(5) : 1;
    ClickAt(place, button);
    if (dice.OneIn(4)) {
        ClickAt(place, button);
    }
    return std::to_string(button) + " at " + At(place);
}

std::string RobotHand::ClickOnWindow() {
    const std::vector<PLACE> places = ShownWindows();
    if (places.empty()) {
        return "none";
    }
    const PLACE place = dice.Of(places);
    ClickAt(place, 1);
    if (dice.OneIn(4)) {
        ClickAt(place, 1);
    }
    return At(place);
}

std::string RobotHand::Drag() {
    const PLACE from = AnyPlace(dice);
    const PLACE to = AnyPlace(dice);
    MoveTo(from);
    ButtonAt(from, 1, true);
    MoveTo({(from.x + to.x) / 2, (from.y + to.y) / 2});
    MoveTo(to);
    if (!dice.OneIn(10)) { // sometimes the button comes up outside, and nobody is told
        ButtonAt(to, 1, false);
    }
    return At(from) + " to " + At(to);
}

std::string RobotHand::Wheel() {
    SDL_Event event{};
    event.type = SDL_MOUSEWHEEL;
    event.wheel.y = dice.OneIn(10) ? INT32_MIN : dice.Below(7) - 3;
    SDL_PushEvent(&event);
    return std::to_string(event.wheel.y);
}

std::string RobotHand::Move() {
    if (dice.OneIn(2)) {
        const PLACE place = AnyPlace(dice);
        MoveTo(place);
        return "to " + At(place);
    }
    const int32_t dx = dice.Below(600) - 300;
    const int32_t dy = dice.Below(300) - 150;
    MoveMouse(dx, dy);
    return "by " + At({dx, dy});
}

std::string RobotHand::TypeText() {
    constexpr const char* kTexts[] = {
        "l",    "\xC3\xA9",         "Gl", " ", "1989", "1987-1990", "\t",
        "\x7F", "\xF0\x9F\x99\x82", "%s", "f", "<&>"};
    const char* const text = dice.Of(kTexts);
    const int32_t times = dice.OneIn(10) ? 300 : 1;
    for (int32_t i = 0; i < times; ++i) {
        SDL_Event event{};
        event.type = SDL_TEXTINPUT;
        SDL_strlcpy(event.text.text, text, sizeof event.text.text);
        SDL_PushEvent(&event);
    }
    return std::string(text) + " " + std::to_string(times);
}

std::string RobotHand::Pad() {
    if (pad == nullptr) {
        return PlugPad();
    }
    if (dice.OneIn(6)) {
        const int axis = dice.Below(2);
        const int value = dice.OneIn(2) ? 0 : dice.Below(65536) - 32768;
        pad->Axis(axis, value);
        return "axis " + std::to_string(axis) + " " + std::to_string(value);
    }
    padButton = dice.Below(padButtons);
    pad->Button(padButton, true);
    return "button " + std::to_string(padButton);
}

std::string RobotHand::PlugPad() {
    padButton = -1;
    if (pad != nullptr) {
        pad.reset();
        return "unplugs";
    }
    const VirtualJoystick::SHAPE& shape = dice.OneIn(4) ? kPlain : kController;
    padButtons = shape.buttons;
    pad = std::make_unique<VirtualJoystick>(shape);
    return "plugs in";
}

std::string RobotHand::Resize() {
    constexpr PLACE kSizes[] = {
        {640, 360},
        {640, 480},
        {480, 360},
        {860, 360},
        {320, 240},
        {400, 900},
        {700, 400},
        {640, 400}
    };
    const PLACE size = dice.Of(kSizes);
    SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), size.x, size.y);
    return At(size);
}

std::string RobotHand::WindowEvent() {
    constexpr uint8_t kEvents[] = {SDL_WINDOWEVENT_FOCUS_LOST,   SDL_WINDOWEVENT_FOCUS_LOST,
                                   SDL_WINDOWEVENT_FOCUS_GAINED, SDL_WINDOWEVENT_EXPOSED,
                                   SDL_WINDOWEVENT_MINIMIZED,    SDL_WINDOWEVENT_RESTORED,
                                   SDL_WINDOWEVENT_LEAVE,        SDL_WINDOWEVENT_ENTER};
    SDL_Event event{};
    if (dice.OneIn(12)) {
        event.type = SDL_RENDER_DEVICE_RESET;
        SDL_PushEvent(&event);
        return "graphics reset";
    }
    event.type = SDL_WINDOWEVENT;
    event.window.event = dice.Of(kEvents);
    SDL_PushEvent(&event);
    return std::to_string(event.window.event);
}

std::string RobotHand::DropFiles() {
    std::string names = DropOne();
    for (int32_t more = dice.OneIn(6) ? dice.Below(5) : 0; more > 0; --more) {
        names += ", " + DropOne();
    }
    return names;
}

std::string RobotHand::DropOne() {
    fs::path file;
    switch (dice.Below(10)) {
    case 0: file = drops.Write("letter.txt", std::string_view("no game")); break;
    case 1: file = drops.Write("broken.game", std::string_view("GAME, or so it says")); break;
    case 2: file = drops.Path() / "nothing.sms"; break;
    case 3: file = drops.Write("short.nes", std::string_view("NES\x1A")); break;
    case 4:
        file = drops.Write("several/one.sms", LatchingRom());
        drops.Write("several/two.md", std::string_view("no game"));
        file = file.parent_path();
        break;
    case 5: file = drops.Write("latch.sms", LatchingRom()); break;
    default: {
        const DEMO& demo = dice.Of(Demos());
        const auto& extensions = FindMachineFacts(demo.system)->extensions;
        file = drops.Write(std::string(demo.name) +
                               (extensions.empty() ? ".bin" : std::string(extensions.front())),
                           demo.image);
        break;
    }
    }
    ProgramTest::Drop(file.string());
    return file.filename().string();
}

std::string RobotHand::HarmGames() {
    const std::vector<fs::path> files = FilesBelow(home, false);
    return files.empty() ? "nothing" : HarmFile(dice.Of(files), dice);
}

std::string RobotHand::HarmAtRest() {
    const std::vector<fs::path> files = FilesBelow(home, true);
    return files.empty() ? "nothing" : HarmFile(dice.Of(files), dice);
}

std::string RobotHand::CloseWindow() {
    SDL_Event event{};
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
    return "the window is closed";
}
