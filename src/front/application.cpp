#include "front/application.h"

#include "audio/sound.h"
#include "base/bytes.h"
#include "base/random.h"
#include "front/commands.h"
#include "front/notices.h"
#include "front/play.h"
#include "front/processor_binder.h"
#include "front/program_title.h"
#include "front/run_settings.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_saves.h"
#include "library/systems.h"
#include "sega8/sms.h"

#include "display/gl.h"
#include "display/screen_reader.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"
#include <SDL.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

namespace {

constexpr int64_t kSecond = 1000000;            // microseconds
constexpr int64_t kCursorStays = 2 * kSecond;   // without a move
constexpr int64_t kPointerAims = 3 * kSecond;   // the same; then keys aim again
constexpr int64_t kHastyRound = 2000;           // microseconds; no display is that fast
constexpr uint32_t kHastyRoundsToDistrust = 30; // in a row
constexpr uint32_t kIdleMilliseconds = 1;
constexpr uint32_t kHiddenMilliseconds = 10;
constexpr int kTextScale = 2;
constexpr int kStatusX = 20; // of the two status lines, on a screen of 1280 by 720
constexpr int kStatusY = 43;
constexpr int kStatusStep = 20;
constexpr int kVirtualHeight = 720;
constexpr uint32_t kStatusColour = 0xFFFFE080;
constexpr uint32_t kNoticeColour = 0xFFFFFFFF;

std::atomic<uint32_t> gFramesPresented{0};
// For the light guns of both players: y << 32 | x in pixels of the picture; 0: nobody points, so the very
// first pixel counts as the one beside it.
std::atomic<uint64_t> gPointers[2]{};
thread_local bool gFrameIsMachines = false; // of the session thread: not television static

// Screen pixels of a dot of text.
int TextScale(uint32_t height) {
    return std::max(1, static_cast<int>(height) * kTextScale / kVirtualHeight);
}

int64_t Now() {
    return HostClock().nowMicroseconds();
}

// ---- The host's callbacks: those of host_data.h, with the sound channel and the pointer.

void OpenSession(EMU_THREAD* session) {
    HostOpen(session);
    CreateSoundChannel(*session);
}

void CloseSession(EMU_THREAD* session) {
    DestroySoundChannel(*session);
    HostClose(session);
}

EMU_INPUT_STATE* SessionInput(EMU_THREAD* session) {
    EMU_INPUT_STATE* const input = HostGetInput(session);
    if (input != nullptr && session->key == InputActiveKey()) {
        for (size_t player = 0; player < std::size(gPointers); ++player) {
            const uint64_t pointer = gPointers[player];
            input->pointer[player].x = static_cast<uint32_t>(pointer);
            input->pointer[player].y = static_cast<uint32_t>(pointer >> 32);
        }
    }
    return input;
}

EMU_VIDEO_FRAME* SessionPicture(EMU_THREAD* session) {
    gFrameIsMachines = session->showStatic == 0;
    return HostGetVideoFrame(session);
}

// The picture carries its number along, so that the display side knows what it shows.
void PresentFrame(EMU_THREAD* session, uint32_t microseconds) {
    EMU_HOST_DATA* const data = session->hostData;
    if (gFrameIsMachines) {
        const uint32_t number = ++gFramesPresented;
        if (data != nullptr) {
            StoreLittleEndian(data->frames[data->writeIndex].reserved, number);
        }
    }
    HostPresent(session, microseconds);
}

// The pixel of the picture's visible window under a place on the screen, y << 32 | x; 0 beside it.
uint64_t PointInPicture(const SESSION_PICTURE& session, bool crop, uint32_t screenWidth,
                        uint32_t screenHeight, const MOUSE_STATE& mouse) {
    const EMU_VIDEO_FRAME& picture = session.picture;
    const SCREEN_QUAD quad =
        PlaceFullScreen(picture, session.texture, crop, screenWidth, screenHeight);
    const int64_t x = int64_t{mouse.x} - quad.left;
    const int64_t y = int64_t{mouse.y} - quad.top;
    if (x < 0 || y < 0 || x >= quad.width || y >= quad.height || picture.visibleWidth == 0 ||
        picture.visibleHeight == 0) {
        return 0;
    }
    const int64_t shownWidth = crop ? picture.visibleWidth : picture.width;
    const int64_t shownHeight = crop ? picture.visibleHeight : picture.height;
    const int64_t left = crop ? 0 : picture.visibleX;
    const int64_t top = crop ? 0 : picture.visibleY;
    const int64_t column = x * shownWidth / quad.width - left;
    const int64_t row = y * shownHeight / quad.height - top;
    if (column < 0 || row < 0 || column >= picture.visibleWidth || row >= picture.visibleHeight) {
        return 0;
    }
    const uint64_t point = static_cast<uint64_t>(row / session.factor) << 32 |
                           static_cast<uint64_t>(column / session.factor);
    return std::max<uint64_t>(point, 1);
}

// Whether the game is played with a light gun in that player's port.
bool HasLightGun(const OPENED_GAME& opened, size_t player) {
    SMS_OPTIONS options{};
    std::memcpy(&options, opened.options.data(), sizeof options);
    return opened.game.Header().system == kSystemMasterSystem &&
           PadDeviceOf(options.devices[player]) == PadDevice::kLightPhaser;
}

// Letters of a line of text over the picture.
size_t LettersAcross(uint32_t width, uint32_t height) {
    const int margin = 2 * kStatusX * static_cast<int>(height) / kVirtualHeight;
    const int letters = (static_cast<int>(width) - margin) / (kTextCellWidth * TextScale(height));
    return static_cast<size_t>(std::max(letters, 8));
}

// A machine goes before what only draws it: a late frame is late sound. The system may refuse.
int StartSessionThread(int argument) {
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_HIGH);
    return BindProcessor(argument);
}

const EMU_HOST_CALLBACKS kCallbacks = {OpenSession,        CloseSession,    SessionPicture,
                                       PresentFrame,       HostSubmitAudio, SessionInput,
                                       StartSessionThread, ReleaseProcessor};

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
    InputClearAll(); // whatever was held when a window closed before
    joysticks.Open();

    std::vector<std::string> words;
    title = ProgramTitle();
    if (!window.Open(WindowOptionsFromSettings(), title, words, error) || !GlStart(error)) {
        Release();
        return false;
    }
    SeedRandom(static_cast<uint32_t>(Now() / 1000));
    text = std::make_unique<OverlayText>();
    if (!text->Init()) {
        words.emplace_back("the graphics driver has no memory for text; messages come here alone");
    }
    SDL_StopTextInput(); // no text field has the focus, and an input method would swallow the keys
    followDisplay = window.FollowsDisplay();
    HostSetReportSink(PostReport);
    HostSetNoticeSink(PostNotice);
    for (const std::string& word : words) {
        PostReport(word);
    }
    StartSound();
    EmuSetHost(kCallbacks);
    InputSetActiveKey(kFrontTelevision);
    InputSetWalkingRoom(false);
    SoundSetRoomVisible(false);
    roundStart = rateStart = cursorMoved = Now();
    news = true;
    started = true;
    // Last, since every thread that this one makes inherits it: the pump, the device and the graphics
    // driver's workers keep all processors, and session threads bind themselves.
    processor = BindProcessor(0);
    // A round holds locks that the sound pump waits for, so it must not be put off by other programs.
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
    // Without a display SDL may fall back to a driver that draws where nobody sees it; that is for
    // those who ask for it.
    const char* const driver = SDL_GetCurrentVideoDriver();
    if (SDL_GetHint(SDL_HINT_VIDEODRIVER) == nullptr && driver != nullptr &&
        (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0)) {
        error = "no display is there";
        return false;
    }
    return true;
}

void Application::StartSound() {
    // Held until the end, so that outputs which come and go are told of while none is open.
    SDL_InitSubSystem(SDL_INIT_AUDIO);
    std::string error;
    if (!OpenSoundDevice(error)) {
        PostReport(error + "; playing without sound");
        return;
    }
    SoundSetVolume(Settings().GetFloat(L"audio_volume"));
    StartSoundPump();
}

// An output that goes takes its sound along; the next one that comes takes over.
void Application::WatchSound(const PUMP_EVENTS& events) {
    if (events.outputRemoved && SoundDeviceNumber() != 0 &&
        events.outputNumber == SoundDeviceNumber()) {
        StopSoundPump();
        SoundDeviceLost();
        PostReport("the sound device is gone; playing on without sound");
    }
    soundWanted |= events.outputAdded || events.outputRemoved;
    if (soundWanted && SoundDeviceNumber() == 0 && Now() - soundTried > kSecond) {
        soundWanted = false;
        soundTried = Now();
        std::string error;
        ReleaseThisThread(processor); // which the new threads would inherit
        if (OpenSoundDevice(error)) {
            StartSoundPump();
            PostNotice("Sound is back");
        }
        processor = BindProcessor(0);
    }
}

bool Application::Round() {
    // The 3D room is rendered here, and the camera kept for the pump.
    window.TellSize(pump);
    const PUMP_EVENTS events = pump.Pump();
    if (events.quit) {
        return false;
    }
    Apply(events);
    UploadPictures();
    EndDeadSessions();
    KeepBatteries();
    DrawTexts();
    if (window.IsVisible() && (followDisplay || news)) {
        Draw();
        // The toolkit's screens and its cursor are drawn here.
        window.Swap();
        news = false;
        CountRound();
    } else {
        WaitForNews();
    }
    const int64_t now = Now();
    frameTimeSeconds = static_cast<float>(now - roundStart) * 0.000001f;
    roundStart = now;
    return true;
}

void Application::Apply(const PUMP_EVENTS& events) {
    WatchSound(events);
    VIEW changed = view;
    changed.statistics ^= events.toggleStatistics;
    changed.crop ^= events.toggleCrop;
    changed.linear ^= events.toggleLinear;
    changed.scaler =
        static_cast<PictureScaler>((static_cast<uint32_t>(view.scaler) + events.scalerSteps) & 3);
    ceilingLight ^= events.toggleLight;
    if (events.toggleCrop) {
        PostNotice(changed.crop ? "Visible window" : "Whole picture");
    }
    if (events.toggleLinear) {
        PostNotice(changed.linear ? "Smooth pixels" : "Sharp pixels");
    }
    if (events.scalerSteps != 0) {
        static constexpr const char* kNames[] = {"No scaler", "Scaler: edges, 2x",
                                                 "Scaler: edges, 4x", "Scaler: soft, 4x"};
        PostNotice(kNames[static_cast<size_t>(changed.scaler)]);
    }
    SetView(changed);
    if (events.toggleFullScreen) {
        window.ToggleFullScreen();
    }
    news |= events.windowChanged || events.toggleFullScreen;
    for (const std::string& path : events.dropped) {
        PlayFile(path);
    }
    HideIdleCursor();
    AimPointer();
}

void Application::SetView(const VIEW& wanted) {
    news |= wanted.scaler != view.scaler || wanted.linear != view.linear ||
            wanted.crop != view.crop || wanted.statistics != view.statistics;
    view = wanted;
}

// Over a game the cursor is in the way when nobody moves it.
void Application::HideIdleCursor() {
    const int64_t now = Now();
    const MOUSE_STATE& mouse = pump.Mouse();
    if (mouse.x != lastMouse.x || mouse.y != lastMouse.y || mouse.left || mouse.leftPressed) {
        cursorMoved = now;
    }
    lastMouse = mouse;
    const bool show = now - cursorMoved < kCursorStays;
    if (show != cursorShown) {
        SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
        cursorShown = show;
    }
}

// The mouse as a light gun: where it points in the visible window, in the picture's pixels, with its
// left button as the trigger.
void Application::AimPointer() const {
    uint64_t pointer = 0;
    const auto found = pictures.find(InputActiveKey());
    if (found != pictures.end() && Now() - cursorMoved < kPointerAims) {
        pointer = PointInPicture(found->second.picture, view.crop, window.PixelWidth(),
                                 window.PixelHeight(), pump.Mouse());
    }
    const bool trigger = pointer != 0 && (pump.Mouse().left || pump.Mouse().leftPressed);
    for (size_t player = 0; player < lightGuns.size(); ++player) {
        gPointers[player] = lightGuns[player] ? pointer : 0;
        InputPointerTrigger(static_cast<uint32_t>(player), lightGuns[player] && trigger);
    }
}

// The session keeps its hands off the picture while the frame mutex is held.
void Application::UploadPictures() {
    std::vector<uint32_t> running;
    EmuForEachSession([&](EMU_THREAD& session) {
        EMU_HOST_DATA& data = *session.hostData;
        running.push_back(session.key);
        const std::scoped_lock hold(EmuFrameMutex());
        const EMU_VIDEO_FRAME* const frame = HostTakeFrame(data);
        if (frame == nullptr) {
            return;
        }
        TELEVISION& television = pictures[session.key];
        SESSION_PICTURE& picture = television.picture;
        if (television.serial != session.serial) {
            // Another game on the same television, perhaps of a machine with larger pictures.
            EndSessionPicture(picture);
            StartSessionPicture(picture, EmuPicturePixels(session));
            television.serial = session.serial;
        }
        if (!UploadPicture(*frame, picture, view.scaler)) {
            return;
        }
        if (session.key == InputActiveKey()) {
            ++picturesShown;
            frameShown = LoadLittleEndian<uint32_t>(frame->reserved);
            news = true;
            if (keepPicture) {
                kept.frame = *frame;
                kept.pixels.assign(frame->pixels,
                                   frame->pixels + size_t{frame->width} * frame->height);
                kept.frame.pixels = kept.pixels.data();
            }
        }
    });
    for (auto entry = pictures.begin(); entry != pictures.end();) {
        if (std::find(running.begin(), running.end(), entry->first) != running.end()) {
            ++entry;
            continue;
        }
        EndSessionPicture(entry->second.picture);
        entry = pictures.erase(entry);
        news = true;
    }
}

// A game that cannot go on is turned off, and the player is told why.
void Application::EndDeadSessions() {
    std::vector<uint32_t> dead;
    EmuForEachSession([&](const EMU_THREAD& session) {
        if (session.machine->ended) {
            dead.push_back(session.key);
        }
    });
    for (const uint32_t key : dead) {
        PostReport(EmuLastError());
        EmuStopSession(key);
        playing = playing && key != kFrontTelevision;
        window.SetTitle(ProgramTitle());
    }
}

void Application::KeepBatteries() {
    const int64_t now = Now();
    if (now - batteriesKept >= kSecond) {
        batteriesKept = now;
        EmuKeepBatteries();
    }
}

void Application::Draw() {
    const uint32_t width = window.PixelWidth();
    const uint32_t height = window.PixelHeight();
    const auto found = pictures.find(InputActiveKey());
    static const SESSION_PICTURE kNone{};
    DrawFullScreen(found != pictures.end() ? found->second.picture : kNone,
                   {view.crop, view.linear}, width, height);

    const int scale = TextScale(height);
    const auto place = [&](int at) { return at * static_cast<int>(height) / kVirtualHeight; };
    if (view.statistics) {
        text->Draw(frameRate, place(kStatusX), place(kStatusY), scale, kStatusColour);
        text->Draw(statistics, place(kStatusX), place(kStatusY + kStatusStep), scale,
                   kStatusColour);
    }
    int y = static_cast<int>(height) - place(kStatusY);
    for (auto line = shownLines.rbegin(); line != shownLines.rend(); ++line) {
        text->Draw(*line, place(kStatusX), y, scale, kNoticeColour);
        y -= place(kStatusStep) + scale;
    }
}

// What stands over the picture; a change of it is news.
void Application::DrawTexts() {
    std::vector<std::string> lines;
    const size_t letters = LettersAcross(window.PixelWidth(), window.PixelHeight());
    for (const std::string& line : ProgramNotices().Lines(Now())) {
        for (size_t from = 0; from == 0 || from < line.size(); from += letters) {
            lines.push_back(line.substr(from, letters));
        }
    }
    news |= lines != shownLines;
    shownLines = lines;
    if (view.statistics) {
        statistics = EmuFormatStats();
    }
}

// The rate of the rounds, and whether a display that should give the beat does.
void Application::CountRound() {
    const int64_t now = Now();
    ++roundsThisSecond;
    if (now - rateStart >= kSecond) {
        frameRate = std::to_string(roundsThisSecond) + " frames/s";
        roundsThisSecond = 0;
        rateStart = now;
    }
    hastyRounds = now - roundStart < kHastyRound ? hastyRounds + 1 : 0;
    if (hastyRounds > kHastyRoundsToDistrust) {
        followDisplay = false;
    }
}

void Application::WaitForNews() {
    SDL_Delay(window.IsVisible() ? kIdleMilliseconds : kHiddenMilliseconds);
}

bool Application::Play(const OPENED_GAME& opened, std::string& error) {
    // Session start takes the games as they are and leaves them to their owner.
    auto& game = const_cast<CGameFile&>(opened.game);
    auto& bios = const_cast<CGameFile&>(opened.bios);
    CGameFile* const games[2] = {&game, opened.hasBios ? &bios : nullptr};
    EmuSetLastError("");
    for (size_t player = 0; player < lightGuns.size(); ++player) {
        lightGuns[player] = HasLightGun(opened, player);
    }
    playing = EmuStartSession(kFrontTelevision, games, opened.options.data(), opened.title) != 0;
    if (!playing) {
        window.SetTitle(ProgramTitle());
        const std::string reason = EmuLastError();
        error = "Error loading game" + (reason.empty() ? std::string() : ": " + reason);
        return false;
    }
    title = ProgramTitle() + "- " + opened.title;
    window.SetTitle(title);
    return true;
}

void Application::PlayFile(const std::string& path) {
    PLAY_OPTIONS options;
    options.game = path;
    OPENED_GAME opened;
    std::string error;
    if (OpenForPlay(options, opened, error) != kExitDone || !Play(opened, error)) {
        PostReport(error);
        return;
    }
    PostNotice(opened.title);
    SDL_RaiseWindow(SDL_GL_GetCurrentWindow());
}

void Application::TurnOff() {
    EmuStopSession(kFrontTelevision);
    playing = false;
    window.SetTitle(ProgramTitle());
}

uint32_t Application::FramesPresented() {
    return gFramesPresented;
}

// What was swapped is the display's; it is drawn once more.
std::vector<uint32_t> Application::ReadWindow() {
    Draw();
    return ReadScreen(window.PixelWidth(), window.PixelHeight());
}

// A game that fills the window is turned off with it, so that its autosave is there the next time: closing
// the window is the only way to turn it off.
void Application::Stop() {
    if (!started) {
        return;
    }
    started = false;
    TurnOff();
    Release();
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_NORMAL);
    ReleaseThisThread(processor);
    RestoreRunSettings();
    Settings().SetBool(L"app_720runonce", true);
    std::string error;
    if (!SaveSettingsFile(Settings(), error)) {
        Complain(error);
    }
}

// Gives back whatever has been opened, in the order of the stop.
void Application::Release() {
    joysticks.Close();
    // The room's objects and the toolkit go here.
    StopSoundPump();
    CloseSoundDevice();
    for (auto& [key, television] : pictures) {
        EndSessionPicture(television.picture);
    }
    pictures.clear();
    text.reset();
    window.Close();
    if (sdlStarted) {
        SDL_Quit();
        sdlStarted = false;
    }
    HostSetReportSink(nullptr);
    HostSetNoticeSink(nullptr);
}
