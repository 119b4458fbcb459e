#include "screens/battle_ground.h"

#include "base/random.h"
#include "base/text.h"
#include "base/version.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/multi_text.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/benchmark.h"
#include "screens/credits.h"
#include "screens/first_steps.h"
#include "screens/member_panel.h"
#include "screens/options.h"
#include "screens/rom_browser.h"
#include "screens/screen_host.h"
#include "screens/taglines.h"
#include "settings/settings.h"
#include "web/download_queue.h"
#include "web/service_texts.h"

#include <algorithm>
#include <iterator>

namespace {

// Units.
constexpr int32_t kBarHeight = 60;
constexpr int32_t kLogoSide = 48;
constexpr int32_t kSmallestWidth = 1280;
constexpr int32_t kSmallestHeight = 720;
constexpr int32_t kControlHeight = 25;

constexpr uint32_t kMenuWindow = 32; // of the bar, the logo and the area: they take no drag

constexpr std::array<const wchar_t*, kMenuPanels> kMenu = {L"PLAY GAMES", L"BENCHMARK", L"OPTIONS",
                                                           L"CREDITS", L"QUIT"};
constexpr std::array<const wchar_t*, kMenuPanels> kMenuHelps = {
    L"Your games, and some of our own", L"How fast the machines are on this computer",
    L"Picture, sound, keys and controllers", L"Who and what Ombrelune is made of",
    L"Ends Ombrelune; what is played is saved first"};

// Whether this version has run before. In place of a tagline a newcomer is told the two things that he needs.
constexpr const wchar_t* kRunOnce = L"app_720runonce";
constexpr const wchar_t* kWelcome =
    L"Welcome! PLAY GAMES has games of our own; drop yours on this window.";

void Show(GHOSTMANAGER_WINDOW* window, bool visible) {
    CGhostManager::Get().ShowWindow(window, visible);
}

std::wstring VersionText() {
    return WideFromUtf8(ProgramVersion()) + L"  ";
}

std::wstring NewsUrlOfSettings() {
    return NewsUrl({Settings().GetString(L"web_service"), Settings().GetString(L"web_images")});
}

} // namespace

CGUIBattleGround::CGUIBattleGround(ScreenHost& program)
    : host(program) {
    MakeWindows();
    AskForNews();
    PlaceBars();
    ShowMenu(true);
    const GUI_RECT whole = CGhostManager::Get().ScreenRect();
    if (whole.width < kSmallestWidth || whole.height < kSmallestHeight) {
        CGhostMessageBox::Show(L"Warning",
                               L"A display of at least 1280 by 720 is needed to show "
                               L"everything. You can go on, but some of it will be cut.");
    } else if (!Settings().GetBool(kRunOnce)) {
        tagline->SetText(kWelcome);
    }
    member->LoginAtStart();
}

CGUIBattleGround::~CGUIBattleGround() {
    *abandoned = 1;
    panel.reset();
    browser.reset();
    member.reset();
    steps.reset();
    CGhostManager& manager = CGhostManager::Get();
    manager.DestroyWindow(version->window);
    manager.DestroyWindow(topArea->window);
    manager.DestroyWindow(battleMain->window);
}

// The player may enter a service, or none, at any time.
void CGUIBattleGround::AskForNews() {
    const std::wstring url = NewsUrlOfSettings();
    SetNews(std::wstring(url.empty() ? kNoServiceText : kConnectingText));
    newsHeader->SetText(url.empty() ? L"First steps" : L"News");
    steps = url.empty() ? std::make_unique<FirstSteps>(battleMain->window, news->Text()) : nullptr;
    PlaceNews();
    ShowNews(newsHeader->IsVisible());
    if (url.empty()) {
        return;
    }
    host.Downloads().QueueRequest(
        url, L"", 0, abandoned,
        [this, url](const std::wstring& error, const std::wstring&, uint32_t, const AbortWord& gone,
                    const uint8_t* data, uint32_t size) {
            if (*gone != 0 || url != NewsUrlOfSettings()) {
                return; // the player has entered another service
            }
            if (const auto why = WhyNothingCame(url, error, data); !why.empty()) {
                SetNews(why);
                return;
            }
            const NEWS_ANSWER answer = ReadNews({data, size});
            SetNews(answer.news);
            if (answer.version > kProgramVersion) {
                CGhostMessageBox::Show(std::wstring(kNewVersionTitle),
                                       std::wstring(kNewVersionText));
            }
        });
}

void CGUIBattleGround::MakeWindows() {
    topArea = new CGhostWindowEx(nullptr, 0, L"TOPAREA", L"", kMenuWindow, {});
    logo = new CGhostWindowEx(topArea->window, 0, L"OMBRELUNE_LOGO", L"", kMenuWindow,
                              {false, 16, (kBarHeight - kLogoSide) / 2, kLogoSide, kLogoSide});
    name = new CGhostTextBox(topArea->window, 0, L"TEXT_TITLE", L"Ombrelune",
                             {false, 76, 16, 300, 28});
    version = new CGhostTextBox(nullptr, 0, L"TEXT_RIGHT", VersionText(), {});
    battleMain = new CGhostWindowEx(nullptr, 0, L"BATTLEMAIN", L"",
                                    CGhostWindowEx::kFrame | kMenuWindow, {});
    GHOSTMANAGER_WINDOW* const area = battleMain->window;
    for (int32_t id = 0; id < kMenuPanels; ++id) {
        CGhostButton*& button = buttons[static_cast<size_t>(id)];
        button = new CGhostButton(area, static_cast<uint32_t>(id), L"BUTTON",
                                  kMenu[static_cast<size_t>(id)], 0, {});
        button->SetToolTip(kMenuHelps[static_cast<size_t>(id)]);
        signals.Watch(button->OnClick,
                      [this, id](CGhostButton*, int, int, unsigned) { OnMenu(id); });
    }
    back = new CGhostButton(area, 0, L"BUTTON", L"BACK", 0, {});
    signals.Watch(back->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { host.Take(ModeInput::kBack); });
    tagline = new CGhostTextBox(area, 0, L"SECTIONTEXT", L"", {});
    member = std::make_unique<MemberPanel>(area, host);
    member->serviceChanged = [this] { AskForNews(); };
    newsHeader = new CGhostTextBox(area, 0, L"LARGEHEADERTEXT", L"News", {});
    news = new CGhostMultiText(area, 0, L"WINDOWOVERLAY",
                               L"Connecting to server to collect news...", {});
    signals.Watch(battleMain->OnResized,
                  [this](CGhostWindowEx*, int width, int height) { Layout(width, height); });
}

void CGUIBattleGround::Update() {
    const GUI_RECT whole = CGhostManager::Get().ScreenRect();
    if (whole.width != screen.width || whole.height != screen.height) {
        PlaceBars();
    }
    member->Update();
    if (panel != nullptr) {
        panel->Update();
    }
    if (browser != nullptr) {
        browser->Update();
    }
}

void CGUIBattleGround::PlaceBars() {
    screen = CGhostManager::Get().ScreenRect();
    topArea->SetPos(0, 0, screen.width, kBarHeight);
    version->SetPos(screen.width - 220, 0, 220, kControlHeight);
    battleMain->SetPos(0, kBarHeight, screen.width, screen.height - kBarHeight);
}

void CGUIBattleGround::Layout(int32_t width, int32_t height) {
    mainWindow = {0, 0, width, height};
    back->SetPos(15, 15, 100, kControlHeight);
    tagline->SetPos((width - 680) / 2, 0, 680, kControlHeight);
    int32_t x = (width - 800) / 2;
    for (CGhostButton* const button : buttons) {
        button->SetPos(x, 35, 140, kControlHeight);
        x += 160;
    }
    member->Layout();
    PlaceNews();
    if (panel != nullptr) {
        panel->Layout(width, height);
    }
    if (browser != nullptr) {
        browser->Layout(width, height);
    }
}

void CGUIBattleGround::PlaceNews() {
    const int32_t width = mainWindow.width - 410;
    const int32_t height = mainWindow.height - 115;
    newsHeader->SetPos(390, 70, width, kControlHeight);
    news->SetPos(390, 95, width, height);
    if (steps != nullptr) {
        steps->Layout(390, 95, width, height);
    }
}

void CGUIBattleGround::SetVisible(bool visible) {
    const bool appears = visible && !battleMain->IsVisible();
    for (GHOSTMANAGER_WINDOW* const window :
         {topArea->window, version->window, battleMain->window}) {
        Show(window, visible);
    }
    // Behind the room and a game it rests, and it is up to date when it is shown again.
    const bool browses = visible && current == kPanelBrowser;
    if (browser != nullptr && browser->IsActive() != browses) {
        browser->SetActive(browses);
    }
    if (appears) {
        TakeFocus();
    }
}

void CGUIBattleGround::TakeFocus() {
    if (panel != nullptr) {
        panel->TakeFocus();
    } else if (current == kPanelBrowser) {
        browser->TakeFocus();
    } else {
        buttons[kPanelBrowser]->SetFocus();
    }
}

void CGUIBattleGround::LibraryChanged(const std::vector<uint16_t>& systems) {
    if (browser != nullptr) {
        browser->LibraryChanged(systems);
    } else if (!systems.empty()) {
        CGUIRomBrowser::ShowFirst(systems.front());
    }
}

void CGUIBattleGround::ShowMenu(bool visible) {
    for (CGhostButton* const button : buttons) {
        Show(button->window, visible);
    }
    Show(tagline->window, visible);
    member->SetVisible(visible);
    ShowNews(visible);
    Show(back->window, !visible);
    if (visible) {
        NewTagline();
        buttons[static_cast<size_t>(std::max<int32_t>(current, kPanelBrowser))]->SetFocus();
    }
}

void CGUIBattleGround::ShowNews(bool visible) {
    Show(newsHeader->window, visible);
    Show(news->window, visible && steps == nullptr);
    if (steps != nullptr) {
        steps->SetVisible(visible);
    }
}

void CGUIBattleGround::NewTagline() {
    SeedRandom(static_cast<uint32_t>(host.Milliseconds()));
    tagline->SetText(Taglines()[static_cast<size_t>(RandomNumber()) % kTaglines]);
}

void CGUIBattleGround::OnMenu(int32_t id) {
    ShowMenu(false);
    current = id;
    ShowPanel(id, true);
    switch (id) {
    case kPanelBrowser: host.Take(ModeInput::kPlayGames); break;
    case kPanelQuit: host.Take(ModeInput::kQuit); break;
    default: host.Take(ModeInput::kOpenPanel); break;
    }
}

void CGUIBattleGround::Back() {
    if (current == kNoPanel) {
        return;
    }
    ShowPanel(current, false);
    ShowMenu(true);
    current = kNoPanel;
}

void CGUIBattleGround::ShowPanel(int32_t id, bool show) {
    panel.reset();
    if (id == kPanelBrowser) {
        ShowBrowser(show);
        return;
    }
    if (!show) {
        return;
    }
    switch (id) {
    case kPanelBenchmark: panel = std::make_unique<CGUIBenchmark>(battleMain->window, host); break;
    case kPanelOptions: panel = std::make_unique<CGUIOptions>(battleMain->window, host); break;
    case kPanelCredits: panel = std::make_unique<CGUICredits>(battleMain->window); break;
    default: break;
    }
    if (panel != nullptr) {
        panel->Layout(mainWindow.width, mainWindow.height);
        panel->TakeFocus();
    }
}

void CGUIBattleGround::ShowBrowser(bool show) {
    if (show && browser == nullptr) {
        browser = std::make_unique<CGUIRomBrowser>(battleMain->window, host);
        browser->Layout(mainWindow.width, mainWindow.height);
    }
    if (browser != nullptr) {
        browser->SetActive(show);
    }
    if (show) {
        browser->TakeFocus();
    }
}

bool CGUIBattleGround::TakeBack() {
    if (panel != nullptr) {
        return panel->TakeBack();
    }
    return browser != nullptr && browser->IsActive() && browser->TakeBack();
}

void CGUIBattleGround::SetNews(const std::wstring& text) {
    news->SetText(text);
}
