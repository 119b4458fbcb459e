// What is known of the chosen game, beside the list: its boxes and screenshots, and texts, by tabs.
//
// The boxes are a scene that the program draws in the window 3DBOX (kWindowBackgroundPass); clicks into it are
// told. Thread: main.
#pragma once

#include "gui/bitmap.h"
#include "screens/screen_panel.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CGhostButton;
class CGhostMultiText;
class CGhostTextBox;
class CGhostWindowEx;

enum class ContentTab : uint8_t { kCovers, kReviews, kHints, kTrivia, kMetaInfo };
inline constexpr size_t kContentTabs = 5;

struct CONTENT_EVENTS {
    std::function<void()> download; // `Content Available` was clicked
    std::function<void(int button, int32_t x, int32_t y)>
        cover; // a click in 3DBOX, units of its client area
    std::function<void()> closer; // the buttons that do the same for keys and controllers
    std::function<void()> turn;
};

class ContentArea {
public:
    ContentArea(GHOSTMANAGER_WINDOW* parent, CONTENT_EVENTS whatHappens);
    ~ContentArea();
    ContentArea(const ContentArea&) = delete;
    ContentArea& operator=(const ContentArea&) = delete;

    void Layout(int32_t x, int32_t y, int32_t width, int32_t height);
    void Update(); // once a round
    void SetVisible(bool visible);
    void ShowTab(ContentTab tab);

    // Screenshots of 200 by 150, at most five.
    void SetShots(std::vector<GUI_BITMAP> pictures);
    // Of REVIEWS, HINTS, TRIVIA or METAINFO.
    void SetText(ContentTab tab, const std::wstring& text);
    void OfferCovers(bool offer);  // the buttons that look closer at the boxes and turn them
    void OfferContent(bool offer); // the button `Content Available`
    void SayNoCover(bool say);     // in place of a box

    [[nodiscard]] ContentTab Tab() const { return shown; }
    [[nodiscard]] CGhostButton* TabButton(ContentTab tab) const {
        return tabs[static_cast<size_t>(tab)];
    }
    [[nodiscard]] CGhostButton* ContentButton() const { return content; }
    [[nodiscard]] const CGhostTextBox* NoCover() const { return noCover; }
    [[nodiscard]] CGhostButton* CloserButton() const { return closer; }
    [[nodiscard]] CGhostButton* TurnButton() const { return turn; }
    [[nodiscard]] CGhostMultiText* Text(ContentTab tab) const; // null for COVERS
    [[nodiscard]] CGhostWindowEx* Box() const { return box; }
    [[nodiscard]] size_t ShotCount() const { return shots.size(); }
    [[nodiscard]] CGhostWindowEx* Shot(size_t place) const { return shotWindows[place]; }

private:
    void LayoutShots();
    void StepShots(int by);
    [[nodiscard]] size_t ShotsThatFit() const;

    CONTENT_EVENTS events;
    std::array<CGhostButton*, kContentTabs> tabs{};
    CGhostWindowEx* boxBack;
    CGhostWindowEx* box;
    CGhostWindowEx* shotsBack;
    std::array<CGhostWindowEx*, 5> shotWindows{};
    CGhostButton* shotsLeft;
    CGhostButton* shotsRight;
    CGhostButton* content;
    CGhostButton* closer;
    CGhostButton* turn;
    CGhostTextBox* noCover;
    std::array<CGhostMultiText*, kContentTabs - 1> texts{};
    std::vector<GUI_BITMAP> shots;
    size_t firstShot = 0;
    ContentTab shown = ContentTab::kCovers;
    bool visible = true;
    bool offered = false;
    bool hasCovers = false;
    ScreenSignals signals;
};
