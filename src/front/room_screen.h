// RoomScreen: the room with its televisions. The player walks in it, looks at a set, starts a game on it, plays
// it full screen and comes back.
//
//   walking       keys, mouse and sticks move the camera; `Use` asks for a game for the set; `Turn Off` stops the
//                 game
//   standing      the mouse is free; a machine at which the player stands gets the input
//   full screen   one set's picture fills the window and its machine gets the input
// Escape, and a controller's guide button, lead back to walking from both; the guide button acts when it is released,
// as the owner's game menu opens when it is held. Back and start held together open it too. Which way leads where is told by
// ProgramModes, which this owns; while menu or browser cover the window the room only keeps its games.
// Without an owner, as the command `room` without the program's screens, `Use` at a set that is on shows it full
// screen, and at one that is off starts the next of the games that were given.
// While a message box or a window of the owner is open nobody walks or plays.
// Page Down and Page Up, and a controller's back button, put the player before the next set and the one before:
// also before those that a look does not choose where they stand.
//
// Thread: main, with the OpenGL context current.
#pragma once

#include "front/game_view.h"
#include "front/pad_chord.h"
#include "front/room_games.h"
#include "front/room_hints.h"
#include "front/screen.h"
#include "room/cover_view.h"
#include "room/picking.h"
#include "room/room_camera.h"
#include "room/room_objects.h"
#include "room/room_renderer.h"
#include "screens/program_modes.h"
#include "settings/input_frame.h"
#include "settings/pad_defaults.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

class GameScreen;
class Joysticks;
class Televisions;

// What outlives the screen. The view may change between rounds.
struct ROOM_SURROUNDINGS {
    Televisions& televisions;
    const Joysticks& joysticks;
    const GAME_VIEW& view;
    const bool& ceilingLight;
    ResumeGames* resumeGames = nullptr; // null: no game is kept for the next start
};

// Who shows menu and browser over the room.
struct ROOM_OWNER {
    std::function<void(ModeOrder order)> changed; // the mode may be another one now
    std::function<void(const GAME_FAILURE& failure)> failed;
    std::function<void()> menu = {}; // the player wants the game menu, or no longer
};

// How the player's keys, or the buttons of the controller in hand, are called.
struct HAND_NAMES {
    std::wstring mainMenu;
    std::wstring use;
    std::wstring turnOff;
    std::wstring leave;
};

class RoomScreen final : public Screen {
public:
    RoomScreen(const ROOM_SURROUNDINGS& surroundings, std::vector<OPENED_GAME> games,
               ROOM_OWNER owner = {}, ProgramMode start = ProgramMode::kWalking);
    ~RoomScreen() override; // ends the games, which go on with the next start

    // A game on each of the first `count` sets of the list that have a place.
    void StartGames(size_t count);

    [[nodiscard]] bool Update(const SCREEN_INPUT& input) override;
    void Draw(const DRAW_TARGET& target) override;
    [[nodiscard]] bool WantsInput() const override;
    [[nodiscard]] Pointer PointerWanted() const override;
    [[nodiscard]] std::string PlayedTitle() const override;
    [[nodiscard]] bool TakeDropped(OPENED_GAME& opened) override;
    void LoseGraphics() override { renderer.Release(); }
    void RenewGraphics() override { StartRenderer(); }
    void DrawInWindow(const WINDOW_PLACE& place, const DRAW_TARGET& target) override;

    // The boxes of a game, in the toolkit's window that asks for a scene; at most six. None: an empty window.
    void SetCovers(std::span<const COVER_IMAGE> images, bool withCabinet);
    // To be clicked on or turned over: the boxes are then drawn again.
    [[nodiscard]] CoverView& Covers() {
        coverNews = true;
        return coverView;
    }

    // Whether a line at the foot of the window says what the player can do.
    void ShowHints(bool show) { showsHints = show; }

    // Stands the player somewhere else.
    void StandAt(VECTOR3 from, VECTOR3 at);
    // Where he stood when the program last ended; at the door if that is not known, or something stands there now.
    void StandAtStart();

    // While something of the owner's has the keys nobody walks or plays.
    void HoldPlayer(bool hold) { playerWaits = hold; }

    // Goes where the player wants, and does what belongs to the room of it.
    ModeOrder Take(ModeInput input);

    // The set that the player looks at, or else the first that is off; 0 when all are on.
    [[nodiscard]] uint32_t SetForGame() const;
    // A game on a set, before which the player then stands.
    void Play(uint32_t key, OPENED_GAME&& opened);
    // A game that was on when the program ended goes on. The player stays where he is; Face leads him to its set.
    void GoOn(uint32_t key, OPENED_GAME&& opened, const LEFT_GAME& left);
    // Stands the player before the set, which is then the selected one.
    void Face(uint32_t key);

    [[nodiscard]] const ProgramModes& Modes() const { return modes; }
    // The set that the player looks at, or whose picture fills the window.
    [[nodiscard]] const LOOKED_AT& Selected() const { return selected; }
    [[nodiscard]] HAND_NAMES HandNames() const;
    [[nodiscard]] const CRoomCamera& Camera() const { return camera; }
    [[nodiscard]] const CRoomObjects& Objects() const { return objects; }
    [[nodiscard]] const RoomGames& Games() const { return games; }
    // What the line at the foot of the window says.
    [[nodiscard]] const std::wstring& HintText() const { return hints.Text(); }
    [[nodiscard]] const ROOM_COUNTERS& Counters() const { return renderer.Counters(); }

private:
    struct HANDS; // what the player's hands did in a round
    // Where the player is: at the set of this session, or elsewhere.
    struct PLACE {
        uint32_t serial = 0; // 0: elsewhere
        uint32_t key = 0;
        bool fullScreen = false;
        [[nodiscard]] bool operator==(const PLACE&) const = default;
    };

    void StartRenderer();
    [[nodiscard]] bool Behind() const;
    [[nodiscard]] HANDS ReadHands(const SCREEN_INPUT& input, float seconds);
    void ReadGuide(HANDS& hands, bool down, float seconds);
    void Walk(const HANDS& hands, float seconds);
    void ChooseSet(const HANDS& hands);
    void VisitSet(int step);
    void Act(const HANDS& hands);
    void Use();
    void NotePointer(const SCREEN_INPUT& input, bool padUsed);
    void Select(const LOOKED_AT& set);
    void StopSelected();
    void FitMode();
    bool ShowFullScreen(uint32_t key);
    void TurnOn(uint32_t key);
    void CollectGames();
    void ApplyModes();
    void AttachPictures();
    void NotePlace();
    [[nodiscard]] std::wstring NameOf(const wchar_t* action, PadControl control,
                                      const wchar_t* key) const;
    [[nodiscard]] std::wstring GameMenuName() const;
    [[nodiscard]] std::vector<KEY_WORDS> Hint(int64_t now) const;

    ROOM_SURROUNDINGS around;
    RoomGames games;
    CRoomObjects objects;
    RoomRenderer renderer;
    CRoomCamera camera;
    ProgramModes modes;
    LOOKED_AT selected;
    ROOM_OWNER owner;
    RoomHints hints;
    CoverView coverView;
    std::unique_ptr<GameScreen> fullScreen; // while one set fills the window
    LightGun guns;                          // of that set's game
    InputLooker looker;
    PadChord menuChord;
    uint32_t visited = 0;  // the set before which the player was put, until he moves
    uint32_t shownKey = 0; // of the set that fills the window
    int64_t lastRound = 0; // microseconds of the host's clock; 0 before the first
    PLACE noted;
    int64_t hintsSince = 0; // of the mode that follows
    ProgramMode hintedMode = ProgramMode::kWalking;
    int64_t mouseUsed = -kMouseRests;
    bool useHeld = false;
    bool turnOffHeld = false;
    bool leaveHeld = false;
    bool menuHeld = false;
    bool startHeld = false;
    bool guideHeld = false;
    bool guideCounts = false; // the press began here, and has not been used
    float guideFor = 0.0f;    // seconds that it has been held
    bool nextSetHeld = false;
    bool padInHand = false; // after the keyboard and the mouse
    bool padPoints = false; // after the mouse
    bool mouseRests = true;
    bool playerWaits = false; // something of the owner's lies over the room
    bool choosing = false;    // the input is elsewhere, or a button is still held from there
    bool showsHints = true;
    bool hasCovers = false;
    bool coverNews = false; // the boxes look different since the last round
};
