#include "front/program_screen.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "front/event_pump.h"
#include "front/game_start.h"
#include "front/joysticks.h"
#include "front/notices.h"
#include "front/opened_game.h"
#include "front/pad_names.h"
#include "front/program_commands.h"
#include "front/resume_texts.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/window.h"
#include "host/host_data.h"
#include "library/game_source.h"
#include "screens/entry_box.h"
#include "screens/member_panel.h"
#include "screens/play_keys.h"
#include "screens/rom_browser.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <utility>

namespace {

constexpr uint32_t kEscape = 41; // scancodes
constexpr uint32_t kF10 = 67;

// Whether the toolkit closes something itself at escape, such as an open list.
bool ToolkitTakesEscape() {
    const GHOSTMANAGER_WINDOW* const top = CGhostManager::Get().ActiveTopWindow();
    return top != nullptr && top->owner != nullptr;
}

constexpr std::chrono::milliseconds kLongestGoodbye{500};

SERVICE_ADDRESSES ServiceOfSettings() {
    return {Settings().GetString(L"web_service"), Settings().GetString(L"web_images")};
}

bool IsSet(const CRoomObjects& objects, uint32_t key) {
    const auto& sets = objects.Televisions();
    return std::find(sets.begin(), sets.end(), key) != sets.end();
}

bool UsesMouse(const GUI_INPUT& event) {
    return event.kind == GuiInputKind::kMouseMove || event.kind == GuiInputKind::kMouseDown ||
           event.kind == GuiInputKind::kWheel;
}

} // namespace

ProgramScreen::ProgramScreen(const ROOM_SURROUNDINGS& surroundings, PROGRAM_CALLS programCalls)
    : calls(std::move(programCalls))
    , joysticks(surroundings.joysticks)
    , resumeGames(surroundings.resumeGames)
    , room(surroundings, {},
           {[this](ModeOrder order) { Obey(order); },
            [this](const GAME_FAILURE& failure) { ShowFailure(failure); },
            [this] { ToggleGameMenu(); }},
           ProgramMode::kMenu)
    , menu(*this)
    , overlay(*this)
    , adding({[this](const std::filesystem::path& file) { PlayFile(file); },
              [this](const std::vector<uint16_t>& systems) {
                  menu.LibraryChanged(systems);
                  if (room.Modes().Covered()) {
                      menu.TakeFocus();
                  }
              }}) {
    player.Open(ResolvePath(kPlayerDatabaseFile));
    AskToContinue();
}

void ProgramScreen::ShowFailure(const GAME_FAILURE& failure) {
    if (failure.starting) {
        CGhostMessageBox::Show(WideFromUtf8(kStartFailed), failure.reason.empty()
                                                               ? L"Its machine does not start."
                                                               : WideFromUtf8(failure.reason));
        return;
    }
    std::vector<MESSAGE_CHOICE> choices;
    if (!failure.label.texts.empty()) {
        choices.push_back({L"Restart", [this, failure] { Restart(failure); }});
    }
    choices.push_back({L"Library", [this, key = failure.key] { OfferLibrary(key); }});
    CGhostMessageBox::Show(WideFromUtf8(kStoppedTitle), WideFromUtf8(StoppedText(failure.reason)),
                           std::move(choices));
}

void ProgramScreen::Restart(const GAME_FAILURE& failure) {
    OPENED_GAME opened;
    std::string error;
    if (!OpenResumed(failure.label, opened, error)) {
        CGhostMessageBox::Show(WideFromUtf8(kStartFailed), WideFromUtf8(error));
        return;
    }
    PlayNow(failure.key, std::move(opened));
    FitScreens();
}

// For the set on which the game was. Menu and browser have ways of their own.
void ProgramScreen::OfferLibrary(uint32_t key) {
    if (!room.Modes().Covered()) {
        room.Face(key);
        wanted.push_back(ModeInput::kLoadGame);
    }
}

void ProgramScreen::AskToContinue() {
    if (resumeGames == nullptr || resumeGames->Left().empty()) {
        return;
    }
    std::vector<CONTINUE_GAME> games;
    games.reserve(resumeGames->Left().size());
    for (const LEFT_GAME& left : resumeGames->Left()) {
        const MACHINE_FACTS* const machine = FindMachineFacts(ResumeSystem(left.label));
        const SNAPSHOT_PICTURE& picture = left.label.picture;
        games.push_back({WideFromUtf8(ResumeTitle(left.label)),
                         WideFromUtf8(machine != nullptr ? machine->name : "Unknown machine"),
                         left.label.takenAt, picture.width, picture.height, picture.aspect,
                         picture.pixels});
    }
    continuing = std::make_unique<ContinueWindow>(std::move(games), std::time(nullptr));
}

void ProgramScreen::TakeChoice() {
    if (continuing == nullptr) {
        return;
    }
    continuing->Update();
    const ContinueChoice choice = continuing->Choice();
    if (choice == ContinueChoice::kNone) {
        return;
    }
    continuing.reset();
    if (choice == ContinueChoice::kForget) {
        resumeGames->Forget();
    } else if (choice == ContinueChoice::kContinue) {
        ContinueGames();
    }
}

// Those that cannot go on are told together; a machine that refuses its state is told later, by the room.
void ProgramScreen::ContinueGames() {
    std::string refused;
    bool goOn = false; // any of them
    uint32_t key = 0;
    ModeInput place = ModeInput::kContinueWalking;
    const std::vector<LEFT_GAME> games = resumeGames->Left(); // each leaves that list
    for (const LEFT_GAME& left : games) {
        if (const std::string error = GoOn(left); !error.empty()) {
            refused += (refused.empty() ? "" : "\n\n") + error;
            continue;
        }
        goOn = true;
        const std::string was = SnapshotText(left.label, kResumePlace);
        if (was == kResumeFullScreen || was == kResumeStanding) {
            key = left.key;
            place = was == kResumeFullScreen ? ModeInput::kContinueFullScreen
                                             : ModeInput::kContinueStanding;
        }
    }
    if (key != 0) {
        room.Face(key);
    }
    if (!refused.empty()) {
        CGhostMessageBox::Show(L"Error loading game", WideFromUtf8(refused));
    }
    if (goOn) {
        Go(place);
    }
}

// A line that says why it does not; else empty.
std::string ProgramScreen::GoOn(const LEFT_GAME& left) {
    OPENED_GAME opened;
    std::string error;
    if (left.key == 0 || !IsSet(room.Objects(), left.key)) {
        error = "is for a television that is not in the room";
    } else if (OpenResumed(left.label, opened, error)) {
        room.GoOn(left.key, std::move(opened), left);
        return {};
    }
    const std::string line =
        ResumeTitle(left.label) + " cannot go on: " + resumeGames->Refuse(left, error);
    PostReport(line);
    return line;
}

// The games that still run end with the room.
ProgramScreen::~ProgramScreen() {
    playTimes.Update({}, HostClock().nowMicroseconds());
    MemberLogin& member = menu.Member().Member();
    if (member.IsLoggedIn()) {
        reports.StopAll(ServiceOfSettings(), member.Credentials());
        member.Logout();
        static_cast<void>(downloads.WaitUntilIdle(kLongestGoodbye));
    }
}

bool ProgramScreen::Update(const SCREEN_INPUT& input) {
    for (const ModeInput request : std::exchange(wanted, {})) {
        Go(request);
    }
    TakeChoice();
    downloads.PumpRequests();
    // The room first, and each by the mode in which the round began: what leads from one to the other must not act in
    // both.
    const bool covered = room.Modes().Covered();
    // While dropped games are added nobody walks or plays: the mouse must reach the button that cancels.
    room.HoldPlayer(adding.IsShown());
    const bool roomNews = room.Update(input);
    CountPlayed();
    FitScreens();
    ReadKeys(input, covered);
    adding.Update(); // it may start a game
    room.HoldPlayer(adding.IsShown());
    if (states.Update(input) && CGhostManager::Get().ModalWindow() == nullptr) {
        room.Take(ModeInput::kSavedStates);
    }
    HoldGame(input.now);
    ShowFirstKeys(input.now);
    FitScreens();
    UpdateOverlay(input);
    menu.Update();
    KeepFocus();
    ReportPlay();
    return roomNews;
}

// Each wish finds the screens as the one before left them; a round that took long has several.
void ProgramScreen::Go(ModeInput input) {
    room.Take(input);
    FitScreens();
}

void ProgramScreen::ReadKeys(const SCREEN_INPUT& input, bool covered) {
    // A window that takes the input of all others, such as a message box, has these keys too.
    const bool behind =
        CGhostMessageBox::Count() != 0 || CGhostManager::Get().ModalWindow() != nullptr;
    for (const GUI_INPUT& event : InputWalkingRoom() ? input.events.screen : input.events.gui) {
        if (event.kind != GuiInputKind::kKeyDown || event.repeat || behind) {
            continue;
        }
        if (event.key == kEscape && adding.IsShown()) {
            adding.GoBack();
        } else if (event.key == kF10) {
            Go(ModeInput::kMainMenu);
        } else if (event.key == kEscape && covered && !ToolkitTakesEscape()) {
            GoBack();
        }
    }
    const bool padsForMenus = !states.IsShown() && (covered || adding.IsShown() || behind);
    const PAD_PRESSES presses =
        pad.Update(!std::exchange(forgetPads, false) && padsForMenus, input.now);
    if (behind) {
        if (presses.guide) {
            overlay.CloseMenu();
        }
        return;
    }
    const bool nothingOver = !adding.IsShown();
    if (presses.back || presses.guide) {
        GoBack();
    }
    CGUIRomBrowser* const browser = menu.Browser();
    if (nothingOver && covered && browser != nullptr && browser->IsActive()) {
        if (presses.shoulder != 0) {
            browser->SelectSystem(presses.shoulder, -1);
        }
        if (presses.favourite) {
            browser->ToggleFavourite();
        }
        if (presses.start) {
            browser->StartSelected();
        }
    }
}

// It lies in the window's queue, for the next round.
void ProgramScreen::ForgetInput() {
    forgetPads = true;
    calls.forgetInput();
}

void ProgramScreen::CountPlayed() {
    playTimes.Update(room.Games().Playing(), HostClock().nowMicroseconds());
    if (const std::string message = player.TakeMessage(); !message.empty()) {
        PostReport(message);
    }
}

void ProgramScreen::GoBack() {
    if (adding.IsShown()) {
        adding.GoBack();
    } else if (!menu.TakeBack()) {
        Go(ModeInput::kBack);
    }
}

// Over nothing that takes the input itself.
void ProgramScreen::ToggleGameMenu() {
    const bool free = CGhostManager::Get().ModalWindow() == nullptr && !adding.IsShown();
    if (overlay.Menu() == nullptr && !free) {
        return;
    }
    const uint32_t key = room.Selected().id;
    overlay.ToggleMenu(
        {WideFromUtf8(room.Games().TitleOn(key)), room.Games().SystemOn(key), PadNamesNow()});
    if (overlay.Menu() != nullptr && room.Selected().on) {
        static_cast<void>(paused.Hold(key)); // one that still starts has nothing to lose
    }
}

PadNames ProgramScreen::PadNamesNow() const {
    if (!joysticks.HasController()) {
        return {};
    }
    return [this](std::wstring_view action) { return PadNameOfAction(joysticks.Family(), action); };
}

// Over the game that the player's hands are on.
void ProgramScreen::ShowFirstKeys(int64_t now) {
    KEYS_GAME game;
    const ProgramModes& modes = room.Modes();
    if (!modes.Covered() && !modes.Walking() && room.Selected().on && !adding.IsShown()) {
        const uint32_t key = room.Selected().id;
        const bool inHand = joysticks.HasController();
        const auto guide = [&](const wchar_t* how) {
            const wchar_t* const name = PadControlName(joysticks.Family(), kPadGuide);
            return inHand ? std::vector<std::wstring>{name + std::wstring(how)}
                          : std::vector<std::wstring>();
        };
        game = {key, room.Games().SerialOn(key), room.Games().SystemOn(key), PadNamesNow(), {}};
        game.ways = {
            {{KeyOfAction(L"Game Menu")}, L"menu",                                   guide(L" held")},
            {{L"Esc"},                    L"walk on; the game plays on without you", guide(L"")     }
        };
    }
    firstKeys.Update(game, now);
}

// A game waits while its menu is open.
void ProgramScreen::HoldGame(int64_t now) {
    if (overlay.Menu() == nullptr) {
        paused.LetGo();
    }
    paused.Update(now);
}

void ProgramScreen::Obey(ModeOrder order) {
    if (order == ModeOrder::kQuit) {
        calls.quit();
    } else if (order == ModeOrder::kSavedStates) {
        ShowSavedStates();
    }
}

// Of a game that runs; one that still starts has none.
void ProgramScreen::ShowSavedStates() {
    const uint32_t key = room.Selected().id;
    const uint32_t serial = room.Games().SerialOn(key);
    const std::vector<PLAYED_GAME> playing = room.Games().Playing();
    const auto game = std::find_if(playing.begin(), playing.end(),
                                   [&](const PLAYED_GAME& one) { return one.serial == serial; });
    if (game == playing.end()) {
        return;
    }
    paused.GoOn(); // from the menu; the states have their own pause
    states.Open({key, serial, room.Games().TitleOn(key), [this, played = *game] {
                     const int64_t now = HostClock().nowMicroseconds();
                     const int64_t seconds = player.Find(played.identity).secondsPlayed +
                                             playTimes.Untold(played.serial, now);
                     return static_cast<uint64_t>(std::max<int64_t>(seconds, 0));
                 }});
}

// Shows what the mode says: menu, panel or browser. The room leaves none of them open behind it, so the browser is made
// anew and knows what was played meanwhile.
void ProgramScreen::FitScreens() {
    const ProgramMode mode = room.Modes().Mode();
    if (mode == shownMode) {
        return;
    }
    shownMode = mode;
    menu.SetVisible(room.Modes().Covered());
    if (mode == ProgramMode::kBrowser && menu.CurrentPanel() != kPanelBrowser) {
        menu.OnMenu(kPanelBrowser);
        wanted.pop_back(); // the way has been gone
    } else if (mode != ProgramMode::kBrowser && mode != ProgramMode::kPanel) {
        menu.Back();
    }
}

// What had the focus may be gone, as a machine's options are with the next system. Without a focus a player without a
// mouse could go nowhere.
void ProgramScreen::KeepFocus() {
    const CGhostManager& manager = CGhostManager::Get();
    if (manager.FocusWindow() != nullptr || manager.ModalWindow() != nullptr) {
        return;
    }
    if (adding.IsShown()) {
        adding.Button()->SetFocus();
    } else if (room.Modes().Covered()) {
        menu.TakeFocus();
    }
}

void ProgramScreen::ReportPlay() {
    const MEMBER_CREDENTIALS& member = menu.Member().Member().Credentials();
    const SERVICE_ADDRESSES service = ServiceOfSettings();
    const RoomGames& games = room.Games();
    bool reported = false;
    for (const uint32_t key : room.Objects().Televisions()) {
        if (key != 0) {
            reported |= reports.Note(service, member, key, games.SerialOn(key), games.SystemOn(key),
                                     WideFromUtf8(games.TitleOn(key)));
        }
    }
    if (reported) {
        menu.Member().Member().Check(); // the report itself brings no answer
    }
}

void ProgramScreen::UpdateOverlay(const SCREEN_INPUT& input) {
    const ProgramModes& modes = room.Modes();
    const HAND_NAMES names = room.HandNames();
    OVERLAY_STATE state;
    state.shown = !modes.Covered();
    state.walking = modes.Walking();
    state.roomVisible = modes.RoomVisible();
    state.selected = room.Selected().id != 0;
    state.selectedOn = room.Selected().on;
    state.mouseUsed = std::any_of(input.events.gui.begin(), input.events.gui.end(), UsesMouse);
    state.mainMenu = names.mainMenu;
    state.use = names.use;
    state.turnOff = names.turnOff;
    state.attach = names.leave;
    overlay.Update(state);
}

// The set that the player stands before, or the first that is off; 0 with a message if there is none.
uint32_t ProgramScreen::SetForGame() const {
    const uint32_t key = room.SetForGame();
    if (key == 0) {
        CGhostMessageBox::Show(
            L"Error loading game",
            L"All televisions are on. Turn one off, or look at the one to play on.");
    }
    return key;
}

// A game of the library whose image is an archive is one of the games in that, which the player chooses if there are
// several.
void ProgramScreen::StartGame(GAME_TO_START game) {
    if (!HoldsArchive(game.game) || game.game.Header().system == kSystemArcade) {
        StartOn({}, std::move(game));
        return;
    }
    std::vector<ARCHIVED_GAME> games;
    std::string error;
    if (!ListArchivedGames(game.file, nullptr, games, error) || games.size() < 2) {
        StartArchived({}, std::move(game)); // which says what is wrong
        return;
    }
    std::vector<std::wstring> names;
    names.reserve(games.size());
    for (const ARCHIVED_GAME& archived : games) {
        names.push_back(WideFromUtf8(archived.entry));
    }
    const auto waiting = std::make_shared<GAME_TO_START>(std::move(game));
    EntryBox::Show(names)->OnChosen.connect([this, waiting, games](int row) {
        if (row >= 0) {
            StartArchived(games[static_cast<size_t>(row)].entry, std::move(*waiting));
        }
    });
}

void ProgramScreen::StartArchived(const std::string& entry, GAME_TO_START game) {
    CGameFile inside;
    std::string title;
    std::string note;
    std::string error;
    if (!OpenGame(game.file, {nullptr, entry}, inside, title, note, error)) {
        CGhostMessageBox::Show(L"Error loading game", WideFromUtf8(error));
        return;
    }
    game.game = std::move(inside);
    game.title = std::move(title);
    StartOn(entry, std::move(game));
}

void ProgramScreen::StartOn(const std::string& entry, GAME_TO_START game) {
    const uint32_t key = SetForGame();
    if (key == 0) {
        return;
    }
    OPENED_GAME opened;
    opened.game = std::move(game.game);
    opened.file = game.file.string();
    opened.entry = entry;
    opened.bios = std::move(game.second);
    opened.secondFile = game.secondFile.string();
    opened.hasBios = game.hasSecond;
    opened.title = std::move(game.title);
    opened.options = game.options;
    ApplyPatchBeside(opened);
    room.Play(key, std::move(opened));
    wanted.push_back(ModeInput::kGameStarted);
}

bool ProgramScreen::TakeDroppedFiles(const std::vector<std::string>& files) {
    continuing.reset(); // as "Not Now": the player has something else in mind
    states.Close();
    overlay.CloseMenu(); // it would keep the input from the window that opens
    adding.Add({files.begin(), files.end()});
    return true;
}

void ProgramScreen::PlayFile(const std::filesystem::path& file) {
    OPENED_GAME opened;
    std::string error;
    if (!OpenForPlaying(file.string(), {}, opened, error)) {
        CGhostMessageBox::Show(L"Error loading game", WideFromUtf8(error));
        return;
    }
    const uint32_t key = SetForGame();
    if (key == 0) {
        return;
    }
    PostNotice(opened.title + ": in your games");
    PlayNow(key, std::move(opened));
}

// The way to a started game leads through the browser. Who stands before a set, or sees its picture alone, stays there.
void ProgramScreen::PlayNow(uint32_t key, OPENED_GAME&& opened) {
    const ProgramMode mode = room.Modes().Mode();
    if (mode == ProgramMode::kPanel) {
        room.Take(ModeInput::kBack);
        menu.Back();
    }
    if (mode == ProgramMode::kPanel || mode == ProgramMode::kMenu) {
        room.Take(ModeInput::kPlayGames); // before the set is faced, as it leads to the door
    }
    room.Play(key, std::move(opened));
    if (mode == ProgramMode::kWalking) {
        room.Take(ModeInput::kUse);
    }
    room.Take(ModeInput::kGameStarted);
}

void ProgramScreen::ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet) {
    std::vector<COVER_IMAGE> images;
    images.reserve(covers.size() + 1);
    if (cabinet) {
        images.emplace_back(); // the first place is before the cabinet
    }
    for (const GUI_BITMAP& cover : covers) {
        images.push_back({cover.pixels, static_cast<uint32_t>(cover.pixelWidth),
                          static_cast<uint32_t>(cover.pixelHeight), kind});
    }
    room.SetCovers(images, cabinet);
}

void ProgramScreen::CoverClick(int button, int32_t x, int32_t y) {
    const double density = CGhostManager::Get().Density();
    room.Covers().CoverClick(button, static_cast<int32_t>(x * density),
                             static_cast<int32_t>(y * density));
}

std::vector<SCREEN_JOYSTICK> ProgramScreen::Joysticks() const {
    std::vector<SCREEN_JOYSTICK> present;
    for (uint32_t number = 0; number < kJoystickPlaces; ++number) {
        const JOYSTICK& joystick = joysticks.Places()[number];
        if (joystick.present) {
            present.push_back(
                {number, WideFromUtf8(joystick.name), joystick.axes, joystick.buttons,
                 joystick.hats,
                 joystick.player == kNoPlayer ? -1 : static_cast<int32_t>(joystick.player)});
        }
    }
    return present;
}

std::wstring ProgramScreen::UseOfKey(uint32_t scancode) const {
    if (scancode == kF10) {
        return L"main menu";
    }
    for (const PROGRAM_KEY& row : ProgramKeys()) {
        if (row.scancode == scancode && !row.alt) {
            return WideFromUtf8(row.name);
        }
    }
    return {};
}

bool ProgramScreen::OpenBenchmarkGame(CGameFile& game) const {
    OPENED_GAME opened;
    if (!OpenDemo("sms-bench", opened)) {
        return false;
    }
    game = std::move(opened.game);
    return true;
}

uint64_t ProgramScreen::Milliseconds() const {
    return static_cast<uint64_t>(HostClock().nowMicroseconds() / 1000);
}
