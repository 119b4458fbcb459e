// CGUIBattleGround: the main menu. It owns the bar at the head of the screen, the area below it, and the panel
// that the player has chosen.
//
//   number  panel
//   0       the browser
//   1       the benchmark
//   2       the options
//   3       the credits
//   4       none: the program ends
// A panel is made when it is chosen and ends with BACK, so each visit begins anew. The browser is made with its
// first visit and then kept, as a scan of its folder may run.
//
// Units: those of the virtual screen. Sizes follow the screen's with every Update.
// Thread: main. Order: made after the toolkit has its screen and its theme; Update once a round, before the
//   toolkit's tick.
#pragma once

#include "screens/screen_panel.h"
#include "web/download_list.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CGhostButton;
class CGhostMultiText;
class CGhostTextBox;
class CGhostWindowEx;
class CGUIRomBrowser;
class FirstSteps;
class MemberPanel;
class ScreenHost;

inline constexpr int32_t kNoPanel = -1;
enum MenuPanel : int32_t {
    kPanelBrowser = 0,
    kPanelBenchmark = 1,
    kPanelOptions = 2,
    kPanelCredits = 3,
    kPanelQuit = 4,
    kMenuPanels = 5
};

class CGUIBattleGround {
public:
    explicit CGUIBattleGround(ScreenHost& program);
    ~CGUIBattleGround();
    CGUIBattleGround(const CGUIBattleGround&) = delete;
    CGUIBattleGround& operator=(const CGUIBattleGround&) = delete;

    void Update();

    // All of it, when the room or a game has the screen. What is shown again takes the focus.
    void SetVisible(bool visible);

    // Puts the focus where the player most probably wants it.
    void TakeFocus();

    // These machines have new games: a browser that shows one of them, or else the first of them, is read anew.
    void LibraryChanged(const std::vector<uint16_t>& systems);

    // As a click on the menu button of that number does.
    void OnMenu(int32_t id);
    // The panel ends and the menu is there again: what the program does after BACK. Nothing without a panel.
    void Back();

    // What the player wants to leave may have something open of its own, such as the browser's filters; then that
    // is closed, and the result is true.
    [[nodiscard]] bool TakeBack();

    void SetNews(const std::wstring& text);

    [[nodiscard]] int32_t CurrentPanel() const { return current; }
    [[nodiscard]] CGUIPanel* Panel() const { return panel.get(); } // not the browser
    [[nodiscard]] CGUIRomBrowser* Browser() const {
        return browser.get();
    } // null before its first visit
    [[nodiscard]] CGhostButton* MenuButton(int32_t id) const {
        return buttons[static_cast<size_t>(id)];
    }
    [[nodiscard]] CGhostButton* BackButton() const { return back; }
    [[nodiscard]] const CGhostTextBox* Tagline() const { return tagline; }
    [[nodiscard]] MemberPanel& Member() const { return *member; }
    // In the place of the news; null with a web service.
    [[nodiscard]] const FirstSteps* Steps() const { return steps.get(); }
    [[nodiscard]] const CGhostTextBox* NewsHeader() const { return newsHeader; }
    [[nodiscard]] const CGhostMultiText* News() const { return news; }
    [[nodiscard]] CGhostWindowEx* MainWindow() const { return battleMain; }

private:
    void MakeWindows();
    void AskForNews();
    void PlaceBars();
    void Layout(int32_t width, int32_t height);
    void PlaceNews();
    void ShowMenu(bool visible);
    void ShowNews(bool visible);
    void ShowPanel(int32_t id, bool show);
    void ShowBrowser(bool show);
    void NewTagline();

    ScreenHost& host;
    CGhostWindowEx* topArea = nullptr;
    CGhostWindowEx* logo = nullptr;
    CGhostTextBox* name = nullptr;
    CGhostTextBox* version = nullptr;
    CGhostWindowEx* battleMain = nullptr;
    std::array<CGhostButton*, kMenuPanels> buttons{};
    CGhostButton* back = nullptr;
    CGhostTextBox* tagline = nullptr;
    CGhostTextBox* newsHeader = nullptr;
    CGhostMultiText* news = nullptr;
    GUI_RECT mainWindow; // the client area of BATTLEMAIN, from (0, 0)
    GUI_RECT screen;     // that the bars were placed for
    std::unique_ptr<MemberPanel> member;
    std::unique_ptr<FirstSteps> steps;
    std::unique_ptr<CGUIPanel> panel;
    std::unique_ptr<CGUIRomBrowser> browser;
    int32_t current = kNoPanel;
    AbortWord abandoned = std::make_shared<std::atomic<uint32_t>>(0);
    ScreenSignals signals;
};
