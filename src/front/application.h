// Application: the windowed program, from its start to its end.
//
// It owns the window, the joysticks, the sound device, the pictures of all sessions and what is drawn
// over them, and installs the host's callbacks. The toolkit's screens and the room are drawn by the
// same rounds; until they stand, one game fills the window.
//
// Thread: the main thread alone; one Application at a time.
// Order: Start, any number of rounds, Stop. A game may be started and turned off between rounds.
// Failure: only SDL or the window failing ends the program. Anything else that cannot be had is said in
// one line, and the program goes on without it.
#pragma once

#include "front/event_pump.h"
#include "front/joysticks.h"
#include "front/window.h"

#include "display/full_screen.h"
#include "display/overlay_text.h"
#include "display/picture_scaler.h"
#include "display/session_picture.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct OPENED_GAME;

// The session key of the television that fills the window.
inline constexpr uint32_t kFrontTelevision = 0;

class Application {
public:
    Application();
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    // False with a line that says what is missing; nothing is left behind then.
    [[nodiscard]] bool Start(std::string& error);

    // One round: events, pictures, drawing, swap. False when the program is to end.
    [[nodiscard]] bool Round();

    // Turns the game off, gives back what Start opened, in the order of the stop, and saves the settings.
    void Stop();

    // Puts a game in the place of the one that runs, which is turned off first, autosave included. False
    // with the reason when it cannot run; the window then stays empty.
    bool Play(const OPENED_GAME& game, std::string& error);

    // Opens and plays what the user named or dropped on the window; says what is wrong with it.
    void PlayFile(const std::string& path);

    // Ends the game, autosave included.
    void TurnOff();

    // Whether a game runs, from Play on. One whose machine cannot go on is turned off by the next round.
    [[nodiscard]] bool Playing() const { return playing; }

    // Picture frames of machines presented so far, television static left out.
    [[nodiscard]] static uint32_t FramesPresented();
    // The number of the frame that the window shows; 0 for static.
    [[nodiscard]] uint32_t FrameShown() const { return frameShown; }

    // Number of the upload that the window shows; 0 before the first picture.
    [[nodiscard]] uint64_t PicturesShown() const { return picturesShown; }

    // The window as composed by the last round, 0xFFRRGGBB, top row first.
    [[nodiscard]] std::vector<uint32_t> ReadWindow();
    [[nodiscard]] const Window& MainWindow() const { return window; }

    // The picture that the window shows, before scaling. Empty unless kept.
    struct KEPT_PICTURE {
        EMU_VIDEO_FRAME frame{};
        std::vector<uint32_t> pixels;
    };
    void KeepPicture(bool keep) { keepPicture = keep; }
    [[nodiscard]] const KEPT_PICTURE& Picture() const { return kept; }

    // How the picture is shown; keys change it as well.
    struct VIEW {
        PictureScaler scaler = PictureScaler::kNone;
        bool linear = false;
        bool crop = true; // the visible window of the picture, or the whole
        bool statistics = false;
    };
    void SetView(const VIEW& wanted);
    [[nodiscard]] const VIEW& View() const { return view; }

private:
    struct TELEVISION {
        SESSION_PICTURE picture;
        uint32_t serial = 0; // of the session that it shows
    };

    void Release();
    [[nodiscard]] bool StartSdl(std::string& error);
    void StartSound();
    void WatchSound(const PUMP_EVENTS& events);
    void Apply(const PUMP_EVENTS& events);
    void UploadPictures();
    void EndDeadSessions();
    void KeepBatteries();
    void AimPointer() const;
    void HideIdleCursor();
    void Draw();
    void DrawTexts();
    void CountRound();
    void WaitForNews();

    Window window;
    Joysticks joysticks;
    EventPump pump{joysticks};
    std::unique_ptr<OverlayText> text;       // ends before the context does
    std::map<uint32_t, TELEVISION> pictures; // by session key
    std::array<bool, 2> lightGuns{};         // a player's port has one
    VIEW view;
    KEPT_PICTURE kept;
    std::string statistics; // of the active session
    std::string frameRate;
    std::string title;
    std::vector<std::string> shownLines;
    uint64_t picturesShown = 0;
    int64_t roundStart = 0;  // microseconds
    int64_t rateStart = 0;   // microseconds, of the second being counted
    int64_t cursorMoved = 0; // microseconds
    uint32_t roundsThisSecond = 0;
    uint32_t hastyRounds = 0; // in a row, too short for a display that gives the beat
    float frameTimeSeconds = 0.0f;
    bool started = false;
    bool playing = false;
    bool sdlStarted = false;
    bool soundWanted = false;  // an output has come or gone while none is open
    int64_t soundTried = 0;    // microseconds, of the last attempt
    int64_t batteriesKept = 0; // microseconds, of the last look at them
    int processor = -1;        // the main thread's binding
    uint32_t frameShown = 0;
    bool followDisplay = false; // Swap waits for the display
    bool news = true;           // something to draw since the last swap
    bool keepPicture = false;
    bool ceilingLight = true; // of the room
    bool cursorShown = true;
    MOUSE_STATE lastMouse;
};
