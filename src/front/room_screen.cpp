#include "front/room_screen.h"

#include "audio/sound.h"
#include "base/text.h"
#include "display/gl.h"
#include "facts/machine_facts.h"
#include "front/event_pump.h"
#include "front/game_screen.h"
#include "front/game_start.h"
#include "front/joysticks.h"
#include "front/notices.h"
#include "front/object_files.h"
#include "front/program_title.h"
#include "front/resume_texts.h"
#include "front/room_sound.h"
#include "front/televisions.h"
#include "gui/manager.h"
#include "host/session.h"
#include "host/session_list.h"
#include "room/look_stick.h"
#include "room/room_place.h"
#include "room/standpoint.h"
#include "screens/play_keys.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <SDL_opengl.h>
#include <SDL_video.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

constexpr const wchar_t* kPlaceSetting = L"room_place";
constexpr uint32_t kNoSession = 0; // no set has this key
constexpr uint32_t kEscape = 41;   // scancodes
constexpr uint32_t kPageUp = 75;
constexpr uint32_t kPageDown = 78;
constexpr uint32_t kLeftShift = 225;
constexpr uint32_t kLeftButton = 1;
constexpr uint32_t kMiddleButton = 2;
constexpr uint64_t kFirstPad = (uint64_t{1} << kPadControls) - 1;
constexpr float kLongestStep = 0.1f;       // seconds, also after a pause
constexpr float kGuideIsHeld = 0.6f;       // seconds
constexpr int64_t kGeneralHint = 10000000; // microseconds that the hint to walk stays
constexpr int64_t kFullScreenHint = 4000000;
constexpr int64_t kPlayKeysHint = 20000000; // a game has to start first

bool ActionIsDown(std::wstring_view name) {
    return InputIsDown(kApplicationKey, name);
}

float ActionAxis(std::wstring_view less, std::wstring_view more) {
    return (ActionIsDown(more) ? 1.0f : 0.0f) - (ActionIsDown(less) ? 1.0f : 0.0f);
}

bool IsOfJoystick(uint32_t binding) {
    return binding >> 24 != 0;
}

// The key of an action as the player has bound it, or its joystick binding if that is asked for. Empty if the action
// has none of the kind.
std::wstring BindingNameOf(std::wstring_view action, bool ofJoystick) {
    const auto bound = Settings().GetInt2(L"INPUT " + std::wstring(action));
    for (const int32_t one : {bound.first, bound.second}) {
        const auto binding = static_cast<uint32_t>(one);
        if (binding != 0 && IsOfJoystick(binding) == ofJoystick) {
            return BindingName(binding);
        }
    }
    return {};
}

std::wstring ActionKeyName(std::wstring_view action) {
    return BindingNameOf(action, false);
}

// What a controller's player presses: the control, unless he has bound it or the action to something else. Empty if
// there is nothing.
std::wstring ActionPadName(std::wstring_view action, PadFamily family, PadControl control) {
    std::wstring own = action.empty() ? std::wstring() : BindingNameOf(action, true);
    if (!own.empty() || (InputPadsTaken() & PadBit(0, control)) != 0) {
        return own;
    }
    return PadControlName(family, control);
}

bool UsesMouse(const GUI_INPUT& event) {
    return event.kind == GuiInputKind::kMouseMove || event.kind == GuiInputKind::kMouseDown ||
           event.kind == GuiInputKind::kWheel;
}

float Aspect(const DRAW_TARGET& target) {
    return static_cast<float>(std::max(target.width, 1u)) /
           static_cast<float>(std::max(target.height, 1u));
}

} // namespace

// Presses are those of this round; a press that came and went within it counts.
struct RoomScreen::HANDS {
    WALK_INPUT walk;
    float lookX = 0.0f; // pixels of the mouse
    float lookY = 0.0f;
    STICK turn; // degrees a second
    int notches = 0;
    int nextSet = 0; // +1 the next, -1 the one before
    bool slowWheel = false;
    bool use = false;
    bool turnOff = false;
    bool toggleWalking = false;
    bool gameMenu = false;
    bool mainMenu = false;
    bool middle = false;
    bool click = false; // with a free mouse

    [[nodiscard]] bool Move() const {
        return walk.right != 0.0f || walk.forward != 0.0f || lookX != 0.0f || lookY != 0.0f ||
               turn.x != 0.0f || turn.y != 0.0f || notches != 0;
    }
};

RoomScreen::RoomScreen(const ROOM_SURROUNDINGS& surroundings, std::vector<OPENED_GAME> openedGames,
                       ROOM_OWNER roomOwner, ProgramMode start)
    : around(surroundings)
    , games(std::move(openedGames), surroundings.resumeGames)
    , modes(start)
    , owner(std::move(roomOwner)) {
    StartRenderer();
    objects.Build([this](std::string_view file) { return renderer.LoadModel(file); });
    PlaceTelevisionSounds(objects);
    StandAtStart();
    ApplyModes();
}

void RoomScreen::StartRenderer() {
    renderer.InitRoom({[](const char* name) { return SDL_GL_GetProcAddress(name); }, ReadObjectFile,
                       PostReport, ReadBuiltInObject});
}

bool RoomScreen::WantsInput() const {
    return modes.Walking() && !Behind();
}

// A window that takes the input of all others, such as a message box, lies over the room, or one of the owner's.
bool RoomScreen::Behind() const {
    return playerWaits || CGhostManager::Get().ModalWindow() != nullptr;
}

Pointer RoomScreen::PointerWanted() const {
    const bool gun = fullScreen != nullptr && guns.InGame();
    return PointerFor({modes.Mode(), Behind(), mouseRests, padPoints, gun});
}

// Also while menu or browser cover it: the player comes back to that game.
std::string RoomScreen::PlayedTitle() const {
    const std::string game = selected.on ? games.TitleOn(selected.id) : std::string();
    const MACHINE_FACTS* const machine = FindMachineFacts(games.SystemOn(selected.id));
    return game.empty() || machine == nullptr ? std::string() : ::PlayedTitle(game, machine->name);
}

void RoomScreen::NotePointer(const SCREEN_INPUT& input, bool padUsed) {
    padPoints = padPoints || padUsed;
    if (std::ranges::any_of(input.events.gui, UsesMouse)) {
        mouseUsed = input.now;
        padPoints = false;
    }
    mouseRests = input.now - mouseUsed >= kMouseRests;
}

RoomScreen::~RoomScreen() {
    games.StopAll();
    if (around.resumeGames != nullptr) {
        Settings().SetString(kPlaceSetting, WideFromUtf8(RoomPlaceText(camera)));
    }
    SoundSetRoomVisible(false);
    around.televisions.ShowInRoom(false);
}

void RoomScreen::StartGames(size_t count) {
    for (const uint32_t key : objects.Televisions()) {
        if (key != 0 && count != 0) {
            --count;
            TurnOn(key);
        }
    }
}

void RoomScreen::TurnOn(uint32_t key) {
    if (!games.StartNext(key)) {
        PostReport("there is no game to play; drop one on the window");
    }
}

void RoomScreen::StandAt(VECTOR3 from, VECTOR3 at) {
    camera.SetUp(1.0f, from, at);
}

void RoomScreen::StandAtStart() {
    const std::string kept =
        around.resumeGames != nullptr ? Utf8FromWide(Settings().GetString(kPlaceSetting)) : "";
    if (const std::optional<ROOM_PLACE> place = ReadRoomPlace(kept, objects)) {
        StandAt(place->from, place->at);
    } else {
        camera.SetUp(1.0f);
    }
    visited = 0;
}

bool RoomScreen::Update(const SCREEN_INPUT& input) {
    const float seconds =
        lastRound == 0
            ? 0.0f
            : std::min(static_cast<float>(input.now - lastRound) * 0.000001f, kLongestStep);
    lastRound = input.now;
    hintsSince = hintsSince == 0 ? input.now : hintsSince;

    CollectGames();
    NotePlace();
    HANDS hands = ReadHands(input, seconds);
    const bool gameMenu = hands.gameMenu && !modes.Covered();
    if (Behind()) {
        hands = {};
    }
    camera.SetAspect(Aspect(input.target));
    if (!modes.Covered()) {
        Walk(hands, seconds);
        if (modes.RoomVisible()) {
            ChooseSet(hands);
        }
        Act(hands);
    }
    if (gameMenu && owner.menu) {
        owner.menu();
    }
    // Ways are also gone between two rounds, such as those of the buttons.
    if (std::exchange(hintedMode, modes.Mode()) != modes.Mode()) {
        hintsSince = input.now;
    }
    ApplyModes();
    const bool turning = std::ranges::any_of(
        coverView.Slots(), [](const CoverView::SLOT& slot) { return slot.flipping; });
    coverView.Update(seconds);
    const bool boxNews = std::exchange(coverNews, false) || turning;
    if (modes.Covered()) {
        hints.Show({});
        return boxNews;
    }
    hints.Show(showsHints ? Hint(input.now) : std::vector<KEY_WORDS>());
    const bool pictureNews = fullScreen != nullptr && fullScreen->Update(input);
    return modes.RoomVisible() || pictureNews;
}

// Whether it leaves or opens the menu is known when it is released, or has been held long enough. Without a menu it
// leaves at once.
void RoomScreen::ReadGuide(HANDS& hands, bool down, float seconds) {
    if (modes.Covered() || Behind()) {
        guideCounts = false;
    } else if (down && !guideHeld) {
        guideCounts = owner.menu != nullptr;
        hands.toggleWalking = hands.toggleWalking || !guideCounts;
        guideFor = 0.0f;
    } else if (down && guideCounts) {
        guideFor += seconds;
        hands.gameMenu = hands.gameMenu || guideFor >= kGuideIsHeld;
        guideCounts = guideFor < kGuideIsHeld;
    } else if (!down && std::exchange(guideCounts, false)) {
        hands.toggleWalking = true;
    }
    guideHeld = down;
}

RoomScreen::HANDS RoomScreen::ReadHands(const SCREEN_INPUT& input, float seconds) {
    HANDS hands;
    const bool walking = modes.Walking();
    bool keysUsed = false;
    for (const GUI_INPUT& event : walking ? input.events.screen : input.events.gui) {
        keysUsed = true;
        switch (event.kind) {
        case GuiInputKind::kMouseMove:
            hands.lookX += static_cast<float>(event.dx);
            hands.lookY += static_cast<float>(event.dy);
            break;
        case GuiInputKind::kMouseDown:
            hands.use = hands.use || (walking && event.button == kLeftButton);
            hands.click = hands.click || (!walking && event.button == kLeftButton);
            hands.middle = hands.middle || event.button == kMiddleButton;
            break;
        case GuiInputKind::kWheel: hands.notches -= event.wheel; break;
        case GuiInputKind::kKeyDown:
            hands.toggleWalking = hands.toggleWalking || (event.key == kEscape && !event.repeat);
            hands.nextSet += event.key == kPageDown ? 1 : 0;
            hands.nextSet -= event.key == kPageUp ? 1 : 0;
            break;
        default: break;
        }
    }
    hands.slowWheel = BindingIsDown(kLeftShift, false);

    const InputFrame frame(looker, kApplicationKey);
    const PAD_STICKS sticks = around.joysticks.Sticks();
    const STICK way = WithoutDeadZone({sticks.leftX, sticks.leftY});
    hands.turn = LookRate({sticks.rightX, sticks.rightY});
    const float right = ActionAxis(L"Move Left", L"Move Right") + way.x;
    const float forward = ActionAxis(L"Move Back", L"Move Forward") - way.y;
    hands.walk = {std::clamp(right, -1.0f, 1.0f), std::clamp(forward, -1.0f, 1.0f),
                  ActionIsDown(L"Slow Movement")};

    const auto pressed = [](bool down, bool& held) {
        const bool press = down && !held;
        held = down;
        return press;
    };
    const uint64_t pads = InputPadsActing() & kFirstPad;
    hands.use = pressed(ActionIsDown(L"Use"), useHeld) || hands.use;
    hands.turnOff = pressed(ActionIsDown(L"Turn Off"), turnOffHeld);
    hands.nextSet += pressed((pads & PadBit(0, kPadBack)) != 0, nextSetHeld) ? 1 : 0;
    // While a machine is played its buttons are its own; the guide button belongs to no machine.
    const bool played = !modes.RoomVisible() || (!walking && selected.on);
    const auto padDown = [pads](PadControl control) { return (pads & PadBit(0, control)) != 0; };
    hands.toggleWalking = (pressed(padDown(kPadEast), leaveHeld) && !played) || hands.toggleWalking;
    hands.mainMenu = pressed(padDown(kPadStart), startHeld) && !played;
    hands.gameMenu = pressed(ActionIsDown(L"Game Menu"), menuHeld);
    // Of a walker these two act by themselves.
    const bool chord = menuChord.Update(InputPadsDown(), input.now);
    hands.gameMenu = hands.gameMenu || (chord && (played || Behind()));
    ReadGuide(hands, padDown(kPadGuide), seconds);

    const bool padUsed = InputPadsActing() != 0 || way.x != 0.0f || way.y != 0.0f ||
                         hands.turn.x != 0.0f || hands.turn.y != 0.0f;
    NotePointer(input, padUsed);
    if (padUsed) {
        padInHand = true;
    } else if (keysUsed) {
        padInHand = false;
    }
    return hands;
}

void RoomScreen::Walk(const HANDS& hands, float seconds) {
    if (!modes.Walking()) {
        camera.Move({}, seconds);
        return;
    }
    camera.Look(hands.lookX, hands.lookY, hands.walk.slow);
    camera.Turn(hands.turn.x * seconds, hands.turn.y * seconds);
    if (hands.notches != 0) {
        camera.Zoom(hands.notches, hands.slowWheel);
    }
    camera.Move(hands.walk, seconds);
}

// What the player looks at; before a set that he was put before, that set.
void RoomScreen::ChooseSet(const HANDS& hands) {
    if (modes.Walking() && hands.nextSet != 0) {
        VisitSet(hands.nextSet);
    } else if (modes.Walking() && hands.Move()) {
        visited = 0;
    }
    const CRoomObject* const set = objects.Find(visited);
    Select(set != nullptr ? LookedAtSet(*set) : LookAt(objects, camera));
}

// A set whose game still starts counts as on: a second click on START GAME must not lead away from it.
void RoomScreen::Select(const LOOKED_AT& set) {
    selected = set;
    selected.on = selected.on || games.GunsOn(selected.id) != nullptr;
}

void RoomScreen::VisitSet(int step) {
    std::vector<uint32_t> sets;
    for (const uint32_t key : objects.Televisions()) {
        if (key != 0) {
            sets.push_back(key);
        }
    }
    if (sets.empty()) {
        return;
    }
    const auto count = static_cast<int>(sets.size());
    const auto at = std::find(sets.begin(), sets.end(), selected.id);
    const int from =
        at != sets.end() ? static_cast<int>(at - sets.begin()) : (step > 0 ? -1 : count);
    visited = sets[static_cast<size_t>(((from + step) % count + count) % count)];
    const STANDPOINT point = StandpointBefore(*objects.Find(visited));
    StandAt(point.from, point.at);
}

void RoomScreen::Act(const HANDS& hands) {
    // While a machine is played `Turn Off` is not read: its key may be one of the machine's.
    // While nobody plays, a click beside the interface takes the camera again.
    const bool takesCamera = hands.click && modes.Mode() == ProgramMode::kStanding &&
                             !selected.on && CGhostManager::Get().HoverWindow() == nullptr;
    if (hands.toggleWalking || (takesCamera && !hands.middle)) {
        Take(ModeInput::kLeave);
    } else if (hands.middle) {
        Take(ModeInput::kMiddleButton);
    } else if (hands.mainMenu && owner.changed) {
        Take(ModeInput::kMainMenu);
    } else if (modes.Walking() && hands.turnOff) {
        Take(ModeInput::kTurnOff);
    } else if (modes.Walking() && hands.use) {
        Use();
    }
}

void RoomScreen::Use() {
    if (owner.changed) {
        Take(ModeInput::kUse);
        return;
    }
    const bool wasOn = selected.on;
    if (selected.id != 0 && !wasOn) {
        TurnOn(selected.id);
    }
    if (wasOn || Settings().GetBool(L"emu_startfullscreen")) {
        Take(ModeInput::kShowSet);
    }
}

ModeOrder RoomScreen::Take(ModeInput input) {
    const bool browser = owner.changed != nullptr;
    const MODE_FACTS facts{selected.id != 0, selected.on,
                           browser && Settings().GetBool(L"emu_startfullscreen")};
    const ModeOrder order = modes.Take(input, facts);
    switch (order) {
    case ModeOrder::kStopGame: StopSelected(); break;
    case ModeOrder::kResetCamera: StandAtStart(); break;
    case ModeOrder::kResetGame: static_cast<void>(EmuResetSession(selected.id)); break;
    default: break;
    }
    FitMode();
    if (browser) {
        owner.changed(order);
    }
    return order;
}

void RoomScreen::StopSelected() {
    games.Stop(selected.id);
    objects.TurnOff(selected.id);
    selected.on = false;
}

// The full-screen picture is there in its mode alone, and that mode only with a game.
void RoomScreen::FitMode() {
    if (modes.Mode() != ProgramMode::kFullScreen) {
        fullScreen.reset();
    } else if (fullScreen == nullptr && !ShowFullScreen(selected.id)) {
        static_cast<void>(modes.Take(ModeInput::kGameEnded, {}));
    }
}

bool RoomScreen::ShowFullScreen(uint32_t key) {
    const LightGun* const itsGuns = games.GunsOn(key);
    if (itsGuns == nullptr) {
        return false;
    }
    guns = *itsGuns;
    shownKey = key;
    fullScreen = std::make_unique<GameScreen>(around.televisions, around.view, guns, key);
    return true;
}

uint32_t RoomScreen::SetForGame() const {
    if (selected.id != 0) {
        return selected.id;
    }
    for (const uint32_t key : objects.Televisions()) {
        if (key != 0 && games.StateOf(key) == SetState::kOff) {
            return key;
        }
    }
    return 0;
}

void RoomScreen::Play(uint32_t key, OPENED_GAME&& opened) {
    const CRoomObject* const set = objects.Find(key);
    if (set == nullptr) {
        return;
    }
    games.Start(key, std::move(opened));
    if (fullScreen != nullptr && shownKey == key) {
        guns = *games.GunsOn(key);
    }
    Face(key);
}

void RoomScreen::GoOn(uint32_t key, OPENED_GAME&& opened, const LEFT_GAME& left) {
    games.GoOn(key, std::move(opened), left);
}

void RoomScreen::Face(uint32_t key) {
    const CRoomObject* const set = objects.Find(key);
    if (set == nullptr) {
        return;
    }
    if (visited != key) {
        visited = key;
        const STANDPOINT point = StandpointBefore(*set);
        StandAt(point.from, point.at);
    }
    Select(LookedAtSet(*set));
}

// In the resume file of the game that he plays: when it goes on he is there again.
void RoomScreen::NotePlace() {
    const ProgramMode mode = modes.Covered() ? modes.Before() : modes.Mode();
    PLACE place;
    if (mode == ProgramMode::kFullScreen || mode == ProgramMode::kStanding) {
        place.fullScreen = mode == ProgramMode::kFullScreen;
        place.key = place.fullScreen ? shownKey : selected.id;
        place.serial = games.SerialOn(place.key);
    }
    if (place.serial == 0) {
        place = {};
    }
    if (place == noted) {
        return;
    }
    if (noted.serial != 0 && games.SerialOn(noted.key) == noted.serial) {
        static_cast<void>(EmuSetResumeText(noted.key, kResumePlace, ""));
    }
    if (place.serial != 0) {
        static_cast<void>(EmuSetResumeText(place.key, kResumePlace,
                                           place.fullScreen ? kResumeFullScreen : kResumeStanding));
    }
    noted = place;
}

// A game that could not start, and a machine that could not go on, leave a dark set.
void RoomScreen::CollectGames() {
    for (const GAME_FAILURE& failure : games.Collect()) {
        if (owner.failed) {
            owner.failed(failure);
        } else {
            PostReport(failure.starting ? StartFailedLine(failure.reason) : failure.reason);
        }
    }
    if (fullScreen != nullptr && games.GunsOn(shownKey) == nullptr) {
        selected.on = false;
        Take(ModeInput::kGameEnded);
    }
}

// What the rest of the program must know of the modes.
void RoomScreen::ApplyModes() {
    around.televisions.ShowInRoom(modes.RoomVisible());
    SoundSetRoomVisible(modes.RoomVisible());
    uint32_t played = kNoSession;
    // The button that closed a window, or started the game, reaches no machine until it is pressed again.
    constexpr uint64_t kChoosing = PadBit(0, kPadSouth) | PadBit(0, kPadEast) |
                                   PadBit(0, kPadStart) | PadBit(1, kPadSouth) |
                                   PadBit(1, kPadEast) | PadBit(1, kPadStart);
    const bool elsewhere = modes.Covered() || Behind();
    choosing = elsewhere || (choosing && (InputPadsDown() & kChoosing) != 0);
    if (!choosing) {
        played = modes.RoomVisible() ? selected.id : shownKey;
    }
    InputSetActiveKey(played);
    PlaceListener(camera);
}

// A set shows the pictures of the session that plays on it now, and none of the one before.
void RoomScreen::AttachPictures() {
    const auto& pictures = around.televisions.All();
    for (const uint32_t key : objects.Televisions()) {
        const uint32_t serial = games.SerialOn(key);
        const auto found = pictures.find(key);
        if (serial != 0 && found != pictures.end() && found->second.serial == serial &&
            found->second.picture.texture.glTexture != 0) {
            objects.Attach(key, found->second.picture);
        } else if (const CRoomObject* const set = objects.Find(key); set != nullptr && set->on) {
            objects.TurnOff(key);
        }
    }
}

void RoomScreen::Draw(const DRAW_TARGET& target) {
    AttachPictures();
    if (modes.Covered()) {
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        return;
    }
    if (fullScreen != nullptr) {
        fullScreen->Draw(target);
        return;
    }
    ROOM_SCENE scene;
    scene.screenWidth = target.width;
    scene.screenHeight = target.height;
    scene.projection = camera.Projection();
    scene.view = camera.View();
    scene.ceilingLight = around.ceilingLight;
    renderer.Draw(scene, objects);
}

void RoomScreen::SetCovers(std::span<const COVER_IMAGE> images, bool withCabinet) {
    std::vector<int> kinds;
    for (size_t slot = 0; slot < kMostCovers; ++slot) {
        const COVER_IMAGE image = slot < images.size() ? images[slot] : COVER_IMAGE();
        const bool whole = image.pixels.size() >= size_t{image.width} * image.height;
        renderer.SetCover(slot, whole ? image.pixels.data() : nullptr, image.width, image.height);
        if (slot < images.size()) {
            kinds.push_back(image.kind);
        }
    }
    coverView.SetCovers(kinds, withCabinet);
    hasCovers = !kinds.empty();
    coverNews = true;
}

void RoomScreen::DrawInWindow(const WINDOW_PLACE& place, const DRAW_TARGET& target) {
    if (!hasCovers) {
        return;
    }
    coverView.SetSize(static_cast<uint32_t>(place.width), static_cast<uint32_t>(place.height));
    renderer.DrawCovers(coverView, {place.x, place.y, place.width, place.height},
                        {place.seenX, place.seenY, place.seenWidth, place.seenHeight}, target.width,
                        target.height);
}

// On the set that the player looks at, or on the first that is off.
bool RoomScreen::TakeDropped(OPENED_GAME& opened) {
    const uint32_t key = fullScreen != nullptr ? shownKey : SetForGame();
    if (key == 0) {
        PostReport("all televisions are on; turn one off, or look at the one to play on");
        return true;
    }
    games.StartAndKeep(key, std::move(opened));
    if (fullScreen != nullptr) {
        guns = *games.GunsOn(key);
    }
    return true;
}

// The key of an action, or `key` where it has none, or what a controller's player presses.
std::wstring RoomScreen::NameOf(const wchar_t* action, PadControl control,
                                const wchar_t* key) const {
    std::wstring text;
    if (padInHand) {
        text = ActionPadName(action, around.joysticks.Family(), control);
    }
    if (text.empty()) {
        text = *key != L'\0' ? std::wstring(key) : ActionKeyName(action);
    }
    return text;
}

HAND_NAMES RoomScreen::HandNames() const {
    return {NameOf(L"", kPadStart, L"F10"), NameOf(L"Use", kPadSouth, L""),
            NameOf(L"Turn Off", kPadNorth, L""), NameOf(L"", kPadGuide, L"ESC")};
}

std::wstring RoomScreen::GameMenuName() const {
    const std::wstring own = padInHand ? BindingNameOf(L"Game Menu", true) : std::wstring();
    if (!own.empty()) {
        return own;
    }
    if (padInHand && (InputPadsTaken() & PadBit(0, kPadGuide)) == 0) {
        return std::wstring(PadControlName(around.joysticks.Family(), kPadGuide)) + L" held";
    }
    return ActionKeyName(L"Game Menu");
}

// What can be done, each with what the player presses; what he has no key for is left out.
std::vector<KEY_WORDS> RoomScreen::Hint(int64_t now) const {
    std::vector<KEY_WORDS> words;
    const auto say = [&](std::vector<std::wstring> keys, std::wstring does) {
        std::erase(keys, std::wstring());
        if (!keys.empty()) {
            words.push_back({std::move(keys), std::move(does)});
        }
    };
    const std::wstring back = NameOf(L"", kPadGuide, L"Esc");
    const std::wstring use = NameOf(L"Use", kPadSouth, L"");
    const std::wstring menu = owner.menu ? GameMenuName() : std::wstring();
    const bool told = owner.changed != nullptr; // the owner tells what can be done with a set
    const bool isNew = now - hintsSince < kGeneralHint;
    if (!modes.RoomVisible()) {
        if (now - hintsSince < kFullScreenHint) {
            say({back}, L"Back to the room");
            say({menu}, L"Menu");
        }
    } else if (!modes.Walking()) {
        if (now - hintsSince < kPlayKeysHint && selected.on && !padInHand) {
            words = PlayKeys(games.SystemOn(selected.id));
        }
        say({back}, selected.on ? L"Walk on" : L"or a click   walk on");
        say({menu}, L"Menu");
    } else if (selected.id != 0) {
        if (!told && selected.on) {
            say({use}, L"Play " + WideFromUtf8(games.TitleOn(selected.id)));
            say({NameOf(L"Turn Off", kPadNorth, L"")}, L"Turn off");
        } else if (!told) {
            say({use}, L"Turn on: " + WideFromUtf8(games.NextTitle()));
        }
    } else if (isNew && padInHand) {
        say({L"Left stick"}, L"Walk");
        say({L"Right stick"}, L"Look");
        say({NameOf(L"", kPadBack, L"Page Down")}, L"Next set");
    } else if (isNew) {
        say(DirectionKeys({L"Move Forward", L"Move Left", L"Move Back", L"Move Right"}), L"Walk");
        say({L"Mouse"}, L"Look");
        say({L"Page Down"}, L"Next set");
        say({L"Esc"}, L"Free the mouse");
    }
    return words;
}
