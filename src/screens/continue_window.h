// ContinueWindow: the games that were on when the program last ended, with a picture of each, and whether they go on.
//
//   Continue   all of them go on, each on its set
//   Not Now    nothing changes; as escape, and a controller's button to go back
//   Forget     asks once more, and then they are forgotten
// It lies over the main menu and takes the input of all else. The owner asks for the choice every round, and ends the
// window when there is one.
//
// Thread: main.
#pragma once

#include "gui/bitmap.h"
#include "gui/geometry.h"
#include "screens/screen_panel.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CGhostButton;
class CGhostTextBox;
class CGhostWindowEx;

struct CONTINUE_GAME {
    std::wstring title;
    std::wstring machine;
    int64_t takenAt = 0;          // seconds since 1970
    uint32_t width = 0;           // of the picture, in pixels; 0 without one
    uint32_t height = 0;          //
    float aspect = 0;             // of the picture as it is shown
    std::vector<uint32_t> pixels; // 0xFFRRGGBB
};

enum class ContinueChoice : uint8_t { kNone, kContinue, kNotNow, kForget };

// A time as a player says it: "today 19:48", "yesterday 19:48", or with the date. Both in seconds since 1970.
[[nodiscard]] std::wstring WhenText(int64_t time, int64_t now);

class ContinueWindow {
public:
    static constexpr size_t kMostGames = 8; // that are shown; the room has no more sets

    // `now`: seconds since 1970.
    ContinueWindow(std::vector<CONTINUE_GAME> games, int64_t now);
    ~ContinueWindow();
    ContinueWindow(const ContinueWindow&) = delete;
    ContinueWindow& operator=(const ContinueWindow&) = delete;

    // Once a round, before the toolkit's tick.
    void Update();

    // As escape does.
    void GoBack();

    [[nodiscard]] ContinueChoice Choice() const { return choice; }
    // Whether it asks if the games are to be forgotten.
    [[nodiscard]] bool Asks() const { return asks; }
    [[nodiscard]] CGhostWindowEx* Box() const { return box; }
    [[nodiscard]] const CGhostTextBox* Heading() const { return heading; }
    [[nodiscard]] const CGhostTextBox* Words() const { return words; }
    [[nodiscard]] size_t Count() const { return cards.size(); }
    [[nodiscard]] const CGhostWindowEx* Screen(size_t place) const { return cards[place].screen; }
    [[nodiscard]] const GUI_BITMAP& Image(size_t place) const { return cards[place].image; }
    [[nodiscard]] const CGhostTextBox* Title(size_t place) const { return cards[place].title; }
    [[nodiscard]] const CGhostTextBox* Detail(size_t place) const {
        return cards[place].detail; // the machine and the time
    }
    [[nodiscard]] CGhostButton* ContinueButton() const { return goOn; }
    [[nodiscard]] CGhostButton* NotNowButton() const { return notNow; }
    [[nodiscard]] CGhostButton* ForgetButton() const { return forget; }

private:
    struct CARD {
        CONTINUE_GAME game;
        GUI_BITMAP image;                 // as large as it is shown
        CGhostWindowEx* screen = nullptr; // four to three, black around the picture
        CGhostWindowEx* picture = nullptr;
        CGhostTextBox* title = nullptr;
        CGhostTextBox* detail = nullptr;
    };

    void MakeCard(CONTINUE_GAME&& game, int64_t now);
    void MakeButtons();
    void Say();
    void Ask(bool whether);
    void Place();
    void PlaceButtons();
    static void PlaceCard(CARD& card, const GUI_RECT& place);

    std::vector<CARD> cards; // never changes, as the windows show its images
    size_t games;            // also those that are not shown
    CGhostWindowEx* dimmed;
    CGhostWindowEx* box;
    CGhostTextBox* heading;
    CGhostTextBox* words;
    CGhostButton* goOn;
    CGhostButton* notNow;
    CGhostButton* forget;
    GUI_RECT buttonRow; // in the box
    GUI_RECT screen;    // that it was placed for
    double density = 0;
    ContinueChoice choice = ContinueChoice::kNone;
    bool asks = false;
    ScreenSignals signals;
};
