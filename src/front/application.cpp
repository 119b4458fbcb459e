#include "front/application.h"

#include "audio/sound.h"
#include "base/helper_thread.h"
#include "base/random.h"
#include "base/text.h"
#include "display/gl.h"
#include "display/screen_reader.h"
#include "facts/machine_facts.h"
#include "front/appearance.h"
#include "front/game_screen.h"
#include "front/game_start.h"
#include "front/notices.h"
#include "front/opened_game.h"
#include "front/own_games.h"
#include "front/pad_names.h"
#include "front/picture_view.h"
#include "front/processor_binder.h"
#include "front/program_screen.h"
#include "front/program_title.h"
#include "front/resume_games.h"
#include "front/resume_texts.h"
#include "front/room_screen.h"
#include "front/run_settings.h"
#include "front/save_keeper.h"
#include "front/saved_states.h"
#include "front/session_callbacks.h"
#include "front/window_video.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "host/battery_file.h"
#include "host/frame_loop.h"
#include "host/host_data.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_list.h"
#include "screens/play_keys.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <SDL.h>

#include <cstring>
#include <utility>

namespace {

int64_t Now() {
    return HostClock().nowMicroseconds();
}

std::string MachineName(uint16_t system) {
    const MACHINE_FACTS* const machine = FindMachineFacts(system);
    return machine != nullptr ? machine->name : std::string();
}

// Also while the player is in the menu: he may look at the sets again at any moment.
void HoldScreenSaverOff(bool gameRuns) {
    if (gameRuns == (SDL_IsScreenSaverEnabled() == SDL_TRUE)) {
        if (gameRuns) {
            SDL_DisableScreenSaver();
        } else {
            SDL_EnableScreenSaver();
        }
    }
}

} // namespace

Application::Application() = default;

Application::~Application() {
    Stop();
}

bool Application::Start(std::string& error) {
    Stop();
    ProcessorBinderStart();
    if (!StartSdl(error)) {
        Release();
        return false;
    }
    InputClearAll(); // keys that were held when an earlier window closed
    joysticks.Open();

    std::vector<std::string> messages;
    ReadView();
    shownTitle = ProgramTitle();
    if (!window.Open(WindowOptionsFromSettings(), shownTitle, messages, error) ||
        !StartDrawing(error)) {
        Release();
        return false;
    }
    SeedRandom(static_cast<uint32_t>(Now() / 1000));
    SDL_StopTextInput(); // the toolkit asks for text when a field has the focus
    HostSetReportSink(PostReport);
    HostSetNoticeSink(PostNotice);
    for (const std::string& message : messages) {
        PostReport(message);
    }
    sound.Start(Now());
    InstallSessionCallbacks();
    EmuShowSpeedGlyphs(false);
    HostSetWindowShotSink(WindowShots::Ask);
    saveKeeper = std::make_unique<SaveKeeper>();
    InputSetActiveKey(kFrontTelevision);
    ShowGame();
    ChangeScreen();
    HandInputOver();
    SoundSetRoomVisible(false);
    pacer.Start(window.FollowsDisplay(), Now());
    started = true;
    // Last, since new threads inherit it: the pump, the device and the graphics driver's workers keep
    // all processors, and session threads bind themselves. Helpers let go of it.
    SetHelperBegins(BecomeHelper);
    processor = BindProcessor(0);
    // A round holds locks that the sound pump waits for, so other programs must not delay it.
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_HIGH);
    return true;
}

bool Application::StartSdl(std::string& error) {
    SDL_setenv("SDL_VIDEO_WINDOW_POS", "", 1);
    SDL_setenv("SDL_VIDEO_CENTERED", "1", 1);
    SDL_SetHint(SDL_HINT_APP_NAME, kProgramName);
    SDL_setenv("SDL_VIDEO_X11_WMCLASS", kWindowClass, 0);
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER) != 0) {
        error = std::string("no display: ") + SDL_GetError();
        return false;
    }
    sdlStarted = true;
    // Without a display SDL may fall back to an invisible driver, which is only for users who ask for it.
    const char* const driver = SDL_GetCurrentVideoDriver();
    if (SDL_GetHint(SDL_HINT_VIDEODRIVER) == nullptr && driver != nullptr &&
        (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0)) {
        error = "there is no display";
        return false;
    }
    return true;
}

bool Application::StartDrawing(std::string& error) {
    if (!GlStart(error)) {
        return false;
    }
    televisions.StartGraphics(LoadGlFunctions(SDL_GL_GetProcAddress));
    if (!overlay.Start()) {
        PostReport("the graphics driver has no memory for text; messages appear only here");
    }
    gui.Start(Target(), [this](const WINDOW_PLACE& place) {
        if (screen != nullptr) {
            screen->DrawInWindow(place, Target());
        }
    });
    return true;
}

void Application::EndDrawing() {
    speedMark.reset();
    gui.End();
    overlay.End();
}

// Games play on meanwhile: no machine knows of the context. Without a new one the program ends as if the window
// had been closed, which saves them.
bool Application::RenewGraphics() {
    const auto forScreens = [this](void (Screen::*what)()) {
        for (Screen* const one : {screen.get(), nextScreen.get()}) {
            if (one != nullptr) {
                (one->*what)();
            }
        }
    };
    forScreens(&Screen::LoseGraphics);
    EndDrawing();
    televisions.LoseGraphics();
    std::string error;
    if (!window.RenewContext(error) || !StartDrawing(error)) {
        PostReport(error);
        return false;
    }
    forScreens(&Screen::RenewGraphics);
    pacer.NoteNews();
    return true;
}

// Events first and drawing last: a picture then shows what the player has done until now, and the newest pictures of the
// machines. With the room drawn before the events, all of that would be seen a round later.
bool Application::Round() {
    ChangeScreen();
    HandInputOver();
    const PUMP_EVENTS events = pump.Pump();
    if (events.quit || quit) {
        return false;
    }
    if ((events.graphicsReset || window.ContextLost()) && !RenewGraphics()) {
        return false;
    }
    sound.Watch(events, Now());
    RunCommands(events);
    PlayDroppedFiles(events);
    const bool screenNews = UpdateScreen(events);
    ShowSavedStates(events);
    ShowPanel(events);
    StopEndedGame();
    volume.Update(PlayerHasKeys());
    WaitForFocus();
    RestartGame();
    HoldScreenSaverOff(!televisions.All().empty());
    ShowTitle();
    const bool overlayNews = UpdateOverlays(events);
    if (events.windowChanged || screenNews || overlayNews || WindowShots::Wanted()) {
        pacer.NoteNews();
    }
    DrawOrWait();
    pacer.EndRound(Now());
    return true;
}

void Application::ChangeScreen() {
    if (nextScreen != nullptr) {
        screen.reset(); // the two are not there together
        screen = std::move(nextScreen);
        pacer.NoteNews();
    }
}

// Before the events are read, so that all of them reach the same owner.
void Application::HandInputOver() {
    const bool toScreen = screen->WantsInput();
    InputSetWalkingRoom(toScreen);
    Window::PutPointer(screen->PointerWanted());
    window.TellSize(pump);
}

// What takes all input, such as a message box, takes these keys too.
void Application::RunCommands(const PUMP_EVENTS& events) {
    if (CGhostManager::Get().ModalWindow() != nullptr) {
        return;
    }
    for (const ProgramCommand command : events.commands) {
        RunCommand(command);
    }
}

void Application::RunCommand(ProgramCommand command) {
    static constexpr const char* kScalerNotices[] = {"No scaler", "Scaler: edges, 2x",
                                                     "Scaler: edges, 4x", "Scaler: soft, 4x"};
    switch (command) {
    case ProgramCommand::kToggleStatistics: view.statistics = !view.statistics; break;
    case ProgramCommand::kToggleCrop:
        view.crop = !view.crop;
        PostNotice(view.crop ? "Visible window" : "Whole picture");
        break;
    case ProgramCommand::kToggleCeilingLight: ceilingLight = !ceilingLight; break;
    case ProgramCommand::kToggleLinear:
        view.linear = !view.linear;
        PostNotice(view.linear ? "Smooth pixels" : "Sharp pixels");
        break;
    case ProgramCommand::kNextScaler:
        view.scaler = static_cast<PictureScaler>((static_cast<uint32_t>(view.scaler) + 1) & 3);
        PostNotice(kScalerNotices[static_cast<size_t>(view.scaler)]);
        break;
    case ProgramCommand::kToggleFullScreen:
        window.ToggleFullScreen();
        Settings().SetBool(L"app_fullscreen", window.FillsDisplay()); // as the option does
        pacer.NoteNews();
        break;
    }
    KeepView();
}

void Application::ReadView() {
    const SettingsStore& settings = Settings();
    view.scaler =
        static_cast<PictureScaler>(static_cast<uint32_t>(settings.GetInt(L"emu_scaler")) & 3);
    view.linear = settings.GetBool(L"emu_smooth");
    view.crop = settings.GetBool(L"emu_crop");
}

// As the options do.
void Application::KeepView() const {
    SettingsStore& settings = Settings();
    settings.SetInt(L"emu_scaler", static_cast<int32_t>(view.scaler));
    settings.SetBool(L"emu_smooth", view.linear);
    settings.SetBool(L"emu_crop", view.crop);
}

void Application::PlayDroppedFiles(const PUMP_EVENTS& events) {
    if (!events.dropped.empty() && screen->TakeDroppedFiles(events.dropped)) {
        SDL_RaiseWindow(SDL_GL_GetCurrentWindow());
        return;
    }
    for (const std::string& path : events.dropped) {
        PlayDroppedFile(path);
    }
}

bool Application::UpdateScreen(const PUMP_EVENTS& events) {
    const bool screenNews = screen->Update({events, pump.Mouse(), Target(), Now()});
    const bool asCrt = CrtStrength() > 0.0f;
    const bool pictureNews =
        televisions.Upload(InputActiveKey(), asCrt ? PictureScaler::kNone : view.scaler, asCrt);
    return screenNews || pictureNews;
}

// The program's screen has its own.
void Application::ShowSavedStates(const PUMP_EVENTS& events) {
    if (states == nullptr || !states->Update({events, pump.Mouse(), Target(), Now()})) {
        return;
    }
    OpenSavedStates();
}

void Application::OpenSavedStates() {
    if (SAVED_STATES_GAME game = gameOfStates(); game.serial != 0) {
        NeedAppearance();
        states->Open(std::move(game));
    }
}

void Application::ShowPanel(const PUMP_EVENTS& events) {
    if (panel == nullptr) {
        return;
    }
    PANEL_GAME game;
    if (playing) {
        game = {kFrontTelevision,
                playedSerial,
                playedSystem,
                playedTitle + ", " + MachineName(playedSystem),
                {}};
        if (joysticks.HasController()) {
            game.padNames = [this](std::wstring_view action) {
                return PadNameOfAction(joysticks.Family(), action);
            };
        }
    }
    panel->Update({events, pump.Mouse(), Target(), Now()}, game);
    ShowFirstKeys(game.padNames);
}

void Application::ShowFirstKeys(const PadNames& padNames) {
    KEYS_GAME game;
    if (playing) {
        game = {kFrontTelevision, playedSerial, playedSystem, padNames, {}};
        KEY_WORDS menu{{KeyOfAction(L"Game Menu")}, L"menu", {}};
        if (padNames) {
            menu.pads = {PadControlName(joysticks.Family(), kPadGuide)};
        }
        game.ways = {
            std::move(menu),
            {{L"F11"},      L"full screen",                             {}},
            {{L"Alt + F4"}, L"leave; the next start goes on from here", {}}
        };
    }
    keys->Update(game, Now());
}

void Application::TakeFromPanel(ModeInput chosen) {
    switch (chosen) {
    case ModeInput::kSavedStates: OpenSavedStates(); break;
    case ModeInput::kResetGame: static_cast<void>(EmuResetSession(kFrontTelevision)); break;
    case ModeInput::kQuit: quit = true; break;
    default: break;
    }
}

void Application::ShowSpeed() {
    const int32_t speed = televisions.SpeedOf(InputActiveKey());
    if (speedMark == nullptr && (speed == 0 || speed == 1)) {
        return;
    }
    if (speedMark == nullptr) {
        NeedAppearance();
        speedMark = std::make_unique<SpeedMark>();
    }
    speedMark->Show(speed);
}

bool Application::UpdateOverlays(const PUMP_EVENTS& events) {
    ShowSpeed();
    const bool textNews = overlay.Update(Target(), view.statistics, pacer.RateText(), Now());
    const bool guiNews = gui.Update(events, Target(), Now());
    return textNews || guiNews;
}

void Application::DrawOrWait() {
    if (pacer.WantsDrawing(window.IsVisible())) {
        Draw();
        if (WindowShots::Wanted()) {
            shots.Take(ReadScreen(window.PixelWidth(), window.PixelHeight()), window.PixelWidth(),
                       window.PixelHeight());
        }
        window.Swap();
        pacer.CountSwap(Now());
    } else {
        FramePacer::Wait(window.IsVisible());
    }
}

void Application::Show(std::unique_ptr<Screen> next) {
    keys.reset();
    panel.reset();
    states.reset();
    nextScreen = std::move(next);
}

void Application::ShowGame() {
    Show(std::make_unique<GameScreen>(televisions, view, lightGun, kFrontTelevision));
    states = std::make_unique<SavedStates>();
    keys = std::make_unique<FirstKeys>([this] { NeedAppearance(); });
    panel = std::make_unique<GamePanel>(
        PANEL_CALLS{[this] { NeedAppearance(); }, [this] { TakeSettings(); }, SaveSettings,
                    [this](ModeInput chosen) { TakeFromPanel(chosen); }});
    gameOfStates = [this] {
        return SAVED_STATES_GAME{kFrontTelevision, playing ? playedSerial : 0, playedTitle, {}};
    };
}

void Application::NeedAppearance() {
    if (!appearanceLoaded) {
        LoadAppearance();
        appearanceLoaded = true;
    }
}

void Application::LeaveSavesAlone() {
    savesAlone = true;
    static_cast<void>(SetForThisRun("emu_autosaves", "0"));
    EmuWriteBatteries(false);
}

// Null if nobody plays.
ResumeGames* Application::KeepGames(ResumeKind kind) {
    if (resumeGames == nullptr && !savesAlone) {
        resumeGames = std::make_unique<ResumeGames>(kind);
    }
    return resumeGames.get();
}

ProgramScreen& Application::ShowProgram() {
    NeedAppearance();
    InstallOwnGames();
    auto program = std::make_unique<ProgramScreen>(
        ROOM_SURROUNDINGS{televisions, joysticks, view, ceilingLight,
                          KeepGames(ResumeKind::kProgram)},
        PROGRAM_CALLS{[this] { quit = true; }, [this] { TakeSettings(); }, SaveSettings,
                      [this] { pump.ForgetPresses(); }});
    ProgramScreen& shown = *program;
    Show(std::move(program));
    return shown;
}

// What is read where it is used, such as the room's filters, needs only another picture.
void Application::TakeSettings() {
    const bool followed = window.FollowsDisplay();
    window.Take(WindowOptionsFromSettings());
    if (window.FollowsDisplay() != followed) {
        pacer.Start(window.FollowsDisplay(), Now());
    }
    ReadView();
    volume.Apply();
    SoundReadBoosts();
    pacer.NoteNews();
}

void Application::SaveSettings() {
    std::string error;
    if (!SaveWithoutRunSettings(error)) {
        PostReport(error);
    }
}

RoomScreen& Application::ShowRoom(std::vector<OPENED_GAME> games) {
    NeedAppearance();
    auto room = std::make_unique<RoomScreen>(
        ROOM_SURROUNDINGS{televisions, joysticks, view, ceilingLight, KeepGames(ResumeKind::kRoom)},
        std::move(games));
    RoomScreen& shown = *room;
    Show(std::move(room));
    states = std::make_unique<SavedStates>();
    gameOfStates = [&shown] {
        const uint32_t key = shown.Selected().id;
        const RoomGames& sets = shown.Games();
        return SAVED_STATES_GAME{key, sets.SerialOn(key), sets.TitleOn(key), {}};
    };
    return shown;
}

DRAW_TARGET Application::Target() const {
    return {window.PixelWidth(), window.PixelHeight()};
}

// The screen of the room stops its own.
void Application::StopEndedGame() {
    std::string reason;
    if (EmuHasEnded(kFrontTelevision, reason)) {
        PostReport(reason);
        TurnOff();
        TellStopped(reason);
    }
}

// Not a black window: there is something to choose.
void Application::TellStopped(const std::string& reason) {
    if (panel == nullptr) {
        return;
    }
    NeedAppearance();
    stoppedBox =
        CGhostMessageBox::Show(WideFromUtf8(kStoppedTitle), WideFromUtf8(StoppedText(reason)),
                               {
                                   {L"Restart", [this] { restart = true; }},
                                   {L"Quit",    [this] { quit = true; }   },
    });
    if (stoppedBox != nullptr) {
        stoppedBox->OnClosed.connect([this](CGhostMessageBox*) { stoppedBox = nullptr; });
    }
}

// From the round, as it takes a while.
void Application::RestartGame() {
    if (!std::exchange(restart, false)) {
        return;
    }
    OPENED_GAME opened;
    std::string error;
    if (!OpenResumed(playedLabel, opened, error) || !Play(opened, error)) {
        PostReport(error);
    }
}

// Neither a window nor a field of the interface takes the keys: a game gets them, or the player walks.
bool Application::PlayerHasKeys() {
    return CGhostManager::Get().ModalWindow() == nullptr &&
           (InputWalkingRoom() || PinSession(InputActiveKey()));
}

// In every round while they wait, as one may have started meanwhile.
void Application::WaitForFocus() {
    const bool wait = !pump.HasKeyboard() && Settings().GetBool(L"emu_pauseunfocused");
    if (wait && !waitsForFocus) {
        PostNotice("Paused until you come back to this window");
    }
    if (wait || waitsForFocus) {
        EmuWaitForFocus(wait);
    }
    waitsForFocus = wait;
}

void Application::Draw() {
    const DRAW_TARGET target = Target();
    screen->Draw(target);
    Ortho2D(target.width, target.height); // the screen may have drawn in another projection
    gui.Draw();
    overlay.Draw(target);
}

bool Application::Play(const OPENED_GAME& opened, std::string& error) {
    lightGun.SetGame(opened);
    ResumeGames* const games = KeepGames(ResumeKind::kWindow);
    const GAME_RESUME resume =
        games != nullptr ? games->Start(kFrontTelevision, opened) : GAME_RESUME();
    playedSerial = StartGame(kFrontTelevision, opened, resume, error);
    playedTitle = opened.title;
    playedSystem = opened.game.Header().system;
    playedLabel.texts = ResumeTexts(kFrontTelevision, opened);
    playing = playedSerial != 0;
    if (!playing) {
        error = StartFailedLine(error);
        ShowTitle();
        return false;
    }
    ShowTitle();
    return true;
}

// Of the game that plays alone, or that the player of the room looks at.
void Application::ShowTitle() {
    std::string played = screen != nullptr ? screen->PlayedTitle() : std::string();
    if (playing) {
        played = PlayedTitle(playedTitle, MachineName(playedSystem));
    }
    const std::string wanted = played.empty() ? ProgramTitle() : played;
    if (wanted != shownTitle) {
        shownTitle = wanted;
        window.SetTitle(shownTitle);
    }
}

void Application::PlayDroppedFile(const std::string& path) {
    OPENED_GAME opened;
    std::string error;
    if (!OpenForPlaying(path, {}, opened, error)) {
        PostReport(error);
        return;
    }
    const std::string gameTitle = opened.title;
    if (!screen->TakeDropped(opened) && !Play(opened, error)) {
        PostReport(error);
        return;
    }
    PostNotice(gameTitle);
    SDL_RaiseWindow(SDL_GL_GetCurrentWindow());
}

void Application::TurnOff() {
    EmuStopSession(kFrontTelevision, SessionEnd::kTurnedOff);
    playing = false;
    ShowTitle();
}

// The swapped buffer is undefined, so the window is drawn again.
std::vector<uint32_t> Application::ReadWindow() {
    Draw();
    return ReadScreen(window.PixelWidth(), window.PixelHeight());
}

void Application::Stop() {
    if (!started) {
        return;
    }
    started = false;
    quit = false;
    EmuStopSession(kFrontTelevision, SessionEnd::kProgramEnds);
    playing = false;
    if (const std::optional<DESKTOP_RECT> place = window.PlaceByHand(); place && !savesAlone) {
        KeepInSettings(*place);
    }
    Release();
    WindowVideoFinish();
    resumeGames.reset();
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_NORMAL);
    ReleaseThisThread(processor);
    RestoreRunSettings();
    Settings().SetBool(L"app_720runonce", true);
    std::string error;
    if (!SaveSettingsFile(Settings(), error)) {
        PostReport(error);
    }
}

// Closes everything that is open, in the order of the stop.
void Application::Release() {
    saveKeeper.reset();
    sound.Stop(); // before the rest: its thread starts and ends parts of SDL, as the joysticks do
    joysticks.Close();
    if (stoppedBox != nullptr) {
        stoppedBox->Close();
    }
    keys.reset();
    panel.reset();
    states.reset();
    nextScreen.reset();
    screen.reset();
    Window::PutPointer(Pointer::kSeen);
    InputSetWalkingRoom(false);
    EndDrawing();
    televisions.End();
    window.Close();
    if (sdlStarted) {
        SDL_Quit();
        sdlStarted = false;
    }
    HostSetWindowShotSink(nullptr);
    EmuShowSpeedGlyphs(true);
    shots.Wait();
    HostSetReportSink(nullptr);
    HostSetNoticeSink(nullptr);
}
