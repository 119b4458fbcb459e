#include "front/joysticks.h"

#include "settings/bindings.h"

#include <SDL.h>

#include <algorithm>
#include <string_view>

namespace {

constexpr int kMostAxes = 32;
constexpr int kMostButtons = 64;
constexpr int kMostHats = 8;

constexpr uint32_t kSubsystems = SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER;

// The deflection of an axis that turns a control on, and the lower one that turns it off again.
struct THRESHOLD {
    int on;
    int off;
};
constexpr THRESHOLD kStick = {SDL_JOYSTICK_AXIS_MAX * 40 / 100, SDL_JOYSTICK_AXIS_MAX * 30 / 100};
constexpr THRESHOLD kTrigger = {SDL_JOYSTICK_AXIS_MAX / 2, SDL_JOYSTICK_AXIS_MAX * 40 / 100};

static_assert(SDL_HAT_UP == kHatUp && SDL_HAT_RIGHT == kHatRight && SDL_HAT_DOWN == kHatDown &&
              SDL_HAT_LEFT == kHatLeft);

// Which half of an axis a control is. The library doesn't tell it for buttons and triggers.
enum class Half : uint8_t { kNegative, kPositive, kEither };

struct BUTTON_CONTROL {
    SDL_GameControllerButton button;
    PadControl control;
    Half half; // if the button is an axis of the device
};

constexpr BUTTON_CONTROL kButtonControls[] = {
    {SDL_CONTROLLER_BUTTON_DPAD_UP,       kPadDpadUp,        Half::kNegative},
    {SDL_CONTROLLER_BUTTON_DPAD_DOWN,     kPadDpadDown,      Half::kPositive},
    {SDL_CONTROLLER_BUTTON_DPAD_LEFT,     kPadDpadLeft,      Half::kNegative},
    {SDL_CONTROLLER_BUTTON_DPAD_RIGHT,    kPadDpadRight,     Half::kPositive},
    {SDL_CONTROLLER_BUTTON_A,             kPadSouth,         Half::kEither  },
    {SDL_CONTROLLER_BUTTON_B,             kPadEast,          Half::kEither  },
    {SDL_CONTROLLER_BUTTON_X,             kPadWest,          Half::kEither  },
    {SDL_CONTROLLER_BUTTON_Y,             kPadNorth,         Half::kEither  },
    {SDL_CONTROLLER_BUTTON_LEFTSHOULDER,  kPadLeftShoulder,  Half::kEither  },
    {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, kPadRightShoulder, Half::kEither  },
    {SDL_CONTROLLER_BUTTON_BACK,          kPadBack,          Half::kEither  },
    {SDL_CONTROLLER_BUTTON_START,         kPadStart,         Half::kEither  },
    {SDL_CONTROLLER_BUTTON_GUIDE,         kPadGuide,         Half::kEither  },
    {SDL_CONTROLLER_BUTTON_RIGHTSTICK,    kPadRightClick,    Half::kEither  },
};

// A control that an axis turns on, deflected in the direction of `sign`.
struct AXIS_CONTROL {
    SDL_GameControllerAxis axis;
    PadControl control;
    int sign;
    THRESHOLD threshold;
};

constexpr AXIS_CONTROL kAxisControls[] = {
    {SDL_CONTROLLER_AXIS_LEFTY,        kPadStickUp,      -1, kStick  },
    {SDL_CONTROLLER_AXIS_LEFTY,        kPadStickDown,    1,  kStick  },
    {SDL_CONTROLLER_AXIS_LEFTX,        kPadStickLeft,    -1, kStick  },
    {SDL_CONTROLLER_AXIS_LEFTX,        kPadStickRight,   1,  kStick  },
    {SDL_CONTROLLER_AXIS_TRIGGERLEFT,  kPadLeftTrigger,  1,  kTrigger},
    {SDL_CONTROLLER_AXIS_TRIGGERRIGHT, kPadRightTrigger, 1,  kTrigger},
};

uint32_t HatDirection(int mask) {
    switch (mask) {
    case SDL_HAT_RIGHT: return 2;
    case SDL_HAT_DOWN: return 4;
    case SDL_HAT_LEFT: return 6;
    default: return 0;
    }
}

// The raw codes of what a control is bound to.
std::array<uint32_t, 2> CodesOf(const SDL_GameControllerButtonBind& bind, uint32_t place,
                                Half half) {
    switch (bind.bindType) {
    case SDL_CONTROLLER_BINDTYPE_BUTTON:
        if (bind.value.button >= 0 && bind.value.button < kMostButtons) {
            return {JoystickButtonCode(place, static_cast<uint32_t>(bind.value.button)), 0};
        }
        break;
    case SDL_CONTROLLER_BINDTYPE_AXIS:
        if (bind.value.axis >= 0 && bind.value.axis < kMostAxes) {
            const auto axis = static_cast<uint32_t>(bind.value.axis);
            return {half == Half::kPositive ? 0 : JoystickAxisCode(place, axis, false),
                    half == Half::kNegative ? 0 : JoystickAxisCode(place, axis, true)};
        }
        break;
    case SDL_CONTROLLER_BINDTYPE_HAT:
        if (bind.value.hat.hat >= 0 && bind.value.hat.hat < kMostHats) {
            return {JoystickHatCode(place, static_cast<uint32_t>(bind.value.hat.hat),
                                    HatDirection(bind.value.hat.hat_mask)),
                    0};
        }
        break;
    case SDL_CONTROLLER_BINDTYPE_NONE: break;
    }
    return {0, 0};
}

// Whether the mapping inverts the axis. The library says so only in the mapping's text, where an entry
// such as "lefty:a1~" ends in a tilde.
bool IsTurnedRound(SDL_GameController* controller, SDL_GameControllerAxis axis) {
    char* const text = SDL_GameControllerMapping(controller);
    if (text == nullptr) {
        return false;
    }
    const std::string_view mapping(text);
    const std::string key =
        std::string(",") + SDL_GameControllerGetStringForAxis(axis) + std::string(":");
    const size_t start = mapping.find(key);
    bool turned = false;
    if (start != std::string_view::npos) {
        const size_t end = mapping.find(',', start + key.size());
        const std::string_view entry = mapping.substr(0, end);
        turned = entry.ends_with('~');
    }
    SDL_free(text);
    return turned;
}

PadCodes ReadCodes(SDL_GameController* controller, uint32_t place) {
    PadCodes codes{};
    for (const BUTTON_CONTROL& row : kButtonControls) {
        codes[row.control] =
            CodesOf(SDL_GameControllerGetBindForButton(controller, row.button), place, row.half);
    }
    for (const AXIS_CONTROL& row : kAxisControls) {
        Half half = Half::kEither;
        if (row.axis == SDL_CONTROLLER_AXIS_LEFTX || row.axis == SDL_CONTROLLER_AXIS_LEFTY) {
            const bool negative = (row.sign < 0) != IsTurnedRound(controller, row.axis);
            half = negative ? Half::kNegative : Half::kPositive;
        }
        codes[row.control] =
            CodesOf(SDL_GameControllerGetBindForAxis(controller, row.axis), place, half);
    }
    return codes;
}

constexpr std::array kStickAxes = {SDL_CONTROLLER_AXIS_LEFTX, SDL_CONTROLLER_AXIS_LEFTY,
                                   SDL_CONTROLLER_AXIS_RIGHTX, SDL_CONTROLLER_AXIS_RIGHTY};

// The raw codes of a stick's axis, as far as it is an axis of the device.
struct HALF_CODES {
    std::array<uint32_t, 2> negative{};
    std::array<uint32_t, 2> positive{};
};

HALF_CODES ReadHalfCodes(SDL_GameController* controller, SDL_GameControllerAxis axis,
                         uint32_t place) {
    const SDL_GameControllerButtonBind bind = SDL_GameControllerGetBindForAxis(controller, axis);
    HALF_CODES codes{CodesOf(bind, place, Half::kNegative), CodesOf(bind, place, Half::kPositive)};
    if (IsTurnedRound(controller, axis)) {
        std::swap(codes.negative, codes.positive);
    }
    return codes;
}

uint32_t CutTo(int most, int count) {
    return static_cast<uint32_t>(std::clamp(count, 0, most));
}

} // namespace

struct Joysticks::DEVICE {
    SDL_Joystick* joystick = nullptr;
    SDL_GameController* controller = nullptr;
    SDL_JoystickID instance = -1;
    std::array<bool, kPadControls> down{};
    std::array<HALF_CODES, kStickAxes.size()> stickCodes{}; // in the order of kStickAxes
};

Joysticks::Joysticks()
    : devices(std::make_unique<std::array<DEVICE, kJoystickPlaces>>()) {}

Joysticks::~Joysticks() {
    Close();
}

void Joysticks::Open() {
    if (opened) {
        return;
    }
    // Buttons go by position, so that every controller plays the same.
    SDL_SetHint(SDL_HINT_GAMECONTROLLER_USE_BUTTON_LABELS, "0");
    if (SDL_InitSubSystem(kSubsystems) != 0) {
        return;
    }
    opened = true;
    OpenArrived();
}

void Joysticks::Close() {
    if (!opened) {
        return;
    }
    for (uint32_t place = 0; place < kJoystickPlaces; ++place) {
        CloseAt(place);
    }
    ignored.clear();
    SDL_QuitSubSystem(kSubsystems);
    opened = false;
}

uint32_t Joysticks::PlaceOf(int32_t instance) const {
    for (uint32_t place = 0; place < kJoystickPlaces; ++place) {
        if (places[place].present && (*devices)[place].instance == instance) {
            return place;
        }
    }
    return kNoJoystick;
}

// The index in an arrival may be stale when the event is read, and the library also announces those
// present at the start; for one that arrives while another leaves there may be no event at all. So
// after each arrival and departure the list is searched for joysticks that are neither open nor
// ignored.
void Joysticks::OpenArrived() {
    for (int index = 0; index < SDL_NumJoysticks(); ++index) {
        const SDL_JoystickID instance = SDL_JoystickGetDeviceInstanceID(index);
        if (instance < 0 || PlaceOf(instance) != kNoJoystick ||
            std::find(ignored.begin(), ignored.end(), instance) != ignored.end()) {
            continue;
        }
        const auto free = std::find_if(places.begin(), places.end(),
                                       [](const JOYSTICK& joystick) { return !joystick.present; });
        if (free != places.end()) {
            OpenAt(static_cast<uint32_t>(free - places.begin()), index);
        }
        if (PlaceOf(instance) == kNoJoystick) {
            ignored.push_back(instance);
        }
    }
}

void Joysticks::OpenAt(uint32_t place, int index) {
    SDL_Joystick* const handle = SDL_JoystickOpen(index);
    if (handle == nullptr) {
        return;
    }
    DEVICE& device = (*devices)[place];
    device = {};
    device.joystick = handle;
    device.instance = SDL_JoystickInstanceID(handle);
    JOYSTICK& joystick = places[place];
    joystick = {};
    joystick.present = true;
    const char* const name = SDL_JoystickName(handle);
    joystick.name = name != nullptr ? name : "";
    joystick.axes = CutTo(kMostAxes, SDL_JoystickNumAxes(handle));
    joystick.buttons = CutTo(kMostButtons, SDL_JoystickNumButtons(handle));
    joystick.hats = CutTo(kMostHats, SDL_JoystickNumHats(handle));
    joystick.balls = static_cast<uint32_t>(std::max(SDL_JoystickNumBalls(handle), 0));
    if (SDL_IsGameController(index) == SDL_TRUE) {
        OpenController(place, index);
    }
    TakeState(place);
}

const JOYSTICK* Joysticks::Controller() const {
    const auto found = std::find_if(places.begin(), places.end(), [](const JOYSTICK& joystick) {
        return joystick.present && joystick.player == 0;
    });
    return found != places.end() ? &*found : nullptr;
}

// The library's codes for the four buttons go by position, so the family only names them.
PadFamily Joysticks::Family() const {
    const JOYSTICK* const controller = Controller();
    if (controller == nullptr) {
        return PadFamily::kLetters;
    }
    switch (SDL_GameControllerGetType((*devices)[PlaceIndex(*controller)].controller)) {
    case SDL_CONTROLLER_TYPE_PS3:
    case SDL_CONTROLLER_TYPE_PS4:
    case SDL_CONTROLLER_TYPE_PS5: return PadFamily::kShapes;
    case SDL_CONTROLLER_TYPE_NINTENDO_SWITCH_PRO: return PadFamily::kNintendo;
    default: return PadFamily::kLetters;
    }
}

PAD_STICKS Joysticks::Sticks() const {
    const JOYSTICK* const controller = Controller();
    if (controller == nullptr) {
        return {};
    }
    const DEVICE& device = (*devices)[PlaceIndex(*controller)];
    std::array<float, kStickAxes.size()> values{};
    for (size_t i = 0; i < values.size(); ++i) {
        const int16_t value = SDL_GameControllerGetAxis(device.controller, kStickAxes[i]);
        const HALF_CODES& codes = device.stickCodes[i];
        if (std::ranges::none_of(value < 0 ? codes.negative : codes.positive, InputCodeIsBound)) {
            values[i] = static_cast<float>(value) / static_cast<float>(SDL_JOYSTICK_AXIS_MAX);
        }
    }
    return {values[0], values[1], values[2], values[3]};
}

void Joysticks::ReadMapping(uint32_t place) {
    DEVICE& device = (*devices)[place];
    for (size_t i = 0; i < kStickAxes.size(); ++i) {
        device.stickCodes[i] = ReadHalfCodes(device.controller, kStickAxes[i], place);
    }
}

void Joysticks::OpenController(uint32_t place, int index) {
    SDL_GameController* const controller = SDL_GameControllerOpen(index);
    if (controller == nullptr) {
        return;
    }
    std::array<bool, kPadPlayers> playing{};
    for (const JOYSTICK& other : places) {
        if (other.present && other.player < kPadPlayers) {
            playing[other.player] = true;
        }
    }
    (*devices)[place].controller = controller;
    places[place].controller = true;
    ReadMapping(place);
    const auto free = std::find(playing.begin(), playing.end(), false);
    if (free != playing.end()) {
        places[place].player = static_cast<uint32_t>(free - playing.begin());
        InputAttachPad(places[place].player, ReadCodes(controller, place));
    }
}

void Joysticks::CloseAt(uint32_t place) {
    if (!places[place].present) {
        return;
    }
    InputDetachPad(places[place].player);
    InputClearJoystick(place);
    DEVICE& device = (*devices)[place];
    if (device.controller != nullptr) {
        SDL_GameControllerClose(device.controller);
    }
    SDL_JoystickClose(device.joystick);
    device = {};
    places[place] = {};
}

void Joysticks::Removed(int32_t instance) {
    std::erase(ignored, instance);
    if (const uint32_t place = PlaceOf(instance); place != kNoJoystick) {
        CloseAt(place);
    }
    OpenArrived();
}

// Only what is held is set: setting a code to 0 would mark it as just released.
void Joysticks::TakeState(uint32_t place) {
    const DEVICE& device = (*devices)[place];
    const JOYSTICK& joystick = places[place];
    SDL_JoystickUpdate();
    for (uint32_t axis = 0; axis < joystick.axes; ++axis) {
        const int16_t value = SDL_JoystickGetAxis(device.joystick, static_cast<int>(axis));
        if (value != 0) {
            InputAxisMoved(place, axis, value);
        }
    }
    for (uint32_t hat = 0; hat < joystick.hats; ++hat) {
        const uint8_t position = SDL_JoystickGetHat(device.joystick, static_cast<int>(hat));
        if (position != SDL_HAT_CENTERED) {
            InputHatMoved(place, hat, position);
        }
    }
    for (uint32_t button = 0; button < joystick.buttons; ++button) {
        if (SDL_JoystickGetButton(device.joystick, static_cast<int>(button)) != 0) {
            InputButtonChanged(place, button, true);
        }
    }
    if (device.controller == nullptr) {
        return;
    }
    for (const BUTTON_CONTROL& row : kButtonControls) {
        ControllerButton(device.instance, static_cast<uint32_t>(row.button),
                         SDL_GameControllerGetButton(device.controller, row.button) != 0);
    }
    for (const AXIS_CONTROL& row : kAxisControls) {
        ControllerAxis(device.instance, static_cast<uint32_t>(row.axis),
                       SDL_GameControllerGetAxis(device.controller, row.axis));
    }
}

void Joysticks::Remapped(int32_t instance) {
    const uint32_t place = PlaceOf(instance);
    if (place != kNoJoystick && places[place].controller) {
        ReadMapping(place);
        InputSetPadCodes(places[place].player, ReadCodes((*devices)[place].controller, place));
    }
}

void Joysticks::SetControl(DEVICE& device, uint32_t player, PadControl control, bool down) {
    device.down[control] = down;
    InputPadChanged(player, control, down);
}

void Joysticks::ControllerButton(int32_t instance, uint32_t button, bool down) {
    const uint32_t place = PlaceOf(instance);
    if (place == kNoJoystick) {
        return;
    }
    for (const BUTTON_CONTROL& row : kButtonControls) {
        if (static_cast<uint32_t>(row.button) == button) {
            SetControl((*devices)[place], places[place].player, row.control, down);
        }
    }
}

void Joysticks::ControllerAxis(int32_t instance, uint32_t axis, int value) {
    const uint32_t place = PlaceOf(instance);
    if (place == kNoJoystick) {
        return;
    }
    DEVICE& device = (*devices)[place];
    for (const AXIS_CONTROL& row : kAxisControls) {
        if (static_cast<uint32_t>(row.axis) == axis) {
            const int limit = device.down[row.control] ? row.threshold.off : row.threshold.on;
            SetControl(device, places[place].player, row.control, value * row.sign > limit);
        }
    }
}

bool Joysticks::Handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_JOYAXISMOTION:
        InputAxisMoved(PlaceOf(event.jaxis.which), event.jaxis.axis, event.jaxis.value);
        return true;
    case SDL_JOYHATMOTION:
        InputHatMoved(PlaceOf(event.jhat.which), event.jhat.hat, event.jhat.value);
        return true;
    case SDL_JOYBUTTONDOWN:
    case SDL_JOYBUTTONUP:
        InputButtonChanged(PlaceOf(event.jbutton.which), event.jbutton.button,
                           event.type == SDL_JOYBUTTONDOWN);
        return true;
    case SDL_JOYDEVICEADDED: OpenArrived(); return true;
    case SDL_JOYDEVICEREMOVED: Removed(event.jdevice.which); return true;
    case SDL_CONTROLLERAXISMOTION:
        ControllerAxis(event.caxis.which, event.caxis.axis, event.caxis.value);
        return true;
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP:
        ControllerButton(event.cbutton.which, event.cbutton.button,
                         event.type == SDL_CONTROLLERBUTTONDOWN);
        return true;
    case SDL_CONTROLLERDEVICEREMAPPED: Remapped(event.cdevice.which); return true;
    default: return false;
    }
}
