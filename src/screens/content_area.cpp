#include "screens/content_area.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "gui/window_ex.h"
#include "screens/game_media.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kTabHeight = 28;
constexpr int32_t kShotsHeight = kShotHeight + 16;
constexpr int32_t kGap = 8;
constexpr int32_t kStep = 28; // width of the arrows beside the screenshots
constexpr int32_t kButtonWidth = 170;
constexpr int32_t kSmallButton = 120;

constexpr std::array<const wchar_t*, kContentTabs> kTabs = {L"COVERS", L"REVIEWS", L"HINTS",
                                                            L"TRIVIA", L"METAINFO"};
constexpr std::array<const wchar_t*, kContentTabs> kTabHelps = {
    L"The box and pictures of the game", L"What others think of the game",
    L"Help with the game, and codes", L"What few people know about the game",
    L"Year, regions, players, when you played it, and its file"};

} // namespace

ContentArea::ContentArea(GHOSTMANAGER_WINDOW* parent, CONTENT_EVENTS whatHappens)
    : events(std::move(whatHappens))
    , boxBack(new CGhostWindowEx(parent, 0, L"3DBOXBG", L"", CGhostWindowEx::kNoSignals, {}))
    , box(new CGhostWindowEx(boxBack->window, kWindowBackgroundPass, L"3DBOX", L"", 0, {}))
    , shotsBack(new CGhostWindowEx(parent, 0, L"3DBOX_SSHOTSBG", L"", 0, {}))
    , shotsLeft(new CGhostButton(shotsBack->window, 0, L"BUTTON2", L"\x2039", 0, {}))
    , shotsRight(new CGhostButton(shotsBack->window, 0, L"BUTTON2", L"\x203A", 0, {}))
    , content(new CGhostButton(boxBack->window, 0, L"BUTTON2", L"Content Available", 0, {}))
    , closer(new CGhostButton(boxBack->window, 0, L"BUTTON2", L"Look Closer", 0, {}))
    , turn(new CGhostButton(boxBack->window, 0, L"BUTTON2", L"Turn Over", 0, {}))
    , noCover(
          new CGhostTextBox(boxBack->window, 0, L"TEXT_CENTER", L"No pictures of this game", {})) {
    for (size_t i = 0; i < kContentTabs; ++i) {
        tabs[i] = new CGhostButton(parent, 0, L"BUTTON3", kTabs[i], CGhostButton::kLatches, {});
        signals.Watch(tabs[i]->OnClick, [this, i](CGhostButton*, int, int, unsigned) {
            ShowTab(static_cast<ContentTab>(i));
        });
    }
    for (CGhostMultiText*& text : texts) {
        text = new CGhostMultiText(parent, 0, L"WINDOWOVERLAY", L"", {});
    }
    for (CGhostWindowEx*& window : shotWindows) {
        window =
            new CGhostWindowEx(shotsBack->window, 0, L"SSHOT", L"", CGhostWindowEx::kNoSignals, {});
    }
    shotsLeft->SetToolTip(L"The screenshots before");
    shotsRight->SetToolTip(L"More screenshots");
    content->SetToolTip(L"Fetches the pictures of this game");
    closer->SetToolTip(L"Looks closer at each box in turn, as a click on it does");
    turn->SetToolTip(L"Shows the other side, as a click with the right mouse button does");
    for (size_t i = 0; i < kContentTabs; ++i) {
        tabs[i]->SetToolTip(kTabHelps[i]);
    }
    signals.Watch(box->OnDown, [this](CGhostWindowEx*, int x, int y, unsigned button) {
        events.cover(static_cast<int>(button), x, y);
    });
    signals.Watch(shotsBack->OnWheel,
                  [this](CGhostWindowEx*, int, int, bool up) { StepShots(up ? -1 : 1); });
    signals.Watch(shotsLeft->OnClick, [this](CGhostButton*, int, int, unsigned) { StepShots(-1); });
    signals.Watch(shotsRight->OnClick, [this](CGhostButton*, int, int, unsigned) { StepShots(1); });
    signals.Watch(closer->OnClick, [this](CGhostButton*, int, int, unsigned) { events.closer(); });
    signals.Watch(turn->OnClick, [this](CGhostButton*, int, int, unsigned) { events.turn(); });
    signals.Watch(content->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { events.download(); });
    SayNoCover(false);
    ShowTab(ContentTab::kCovers);
}

ContentArea::~ContentArea() {
    CGhostManager& manager = CGhostManager::Get();
    for (CGhostButton* const tab : tabs) {
        manager.DestroyWindow(tab->window);
    }
    for (CGhostMultiText* const text : texts) {
        manager.DestroyWindow(text->window);
    }
    manager.DestroyWindow(boxBack->window);
    manager.DestroyWindow(shotsBack->window);
}

void ContentArea::Layout(int32_t x, int32_t y, int32_t width, int32_t height) {
    constexpr auto kCount = static_cast<int32_t>(kContentTabs);
    int32_t left = x;
    for (int32_t i = 0; i < kCount; ++i) {
        const int32_t right = x + width * (i + 1) / kCount;
        tabs[static_cast<size_t>(i)]->SetPos(left, y, right - left, kTabHeight);
        left = right;
    }
    const int32_t top = y + kTabHeight;
    for (CGhostMultiText* const text : texts) {
        text->SetPos(x, top, width, height - kTabHeight);
    }
    const int32_t boxHeight = height - kTabHeight - kGap - kShotsHeight;
    boxBack->SetPos(x, top, width, boxHeight);
    box->SetPos(0, 0, width, boxHeight);
    content->SetPos(width - kButtonWidth - kGap, boxHeight - kStep - kGap, kButtonWidth, kStep);
    noCover->SetPos(0, (boxHeight - kStep) / 2, width, kStep);
    const int32_t buttonY = boxHeight - kStep - kGap;
    closer->SetPos(kGap, buttonY, kSmallButton, kStep);
    turn->SetPos(2 * kGap + kSmallButton, buttonY, kSmallButton, kStep);
    shotsBack->SetPos(x, top + boxHeight + kGap, width, kShotsHeight);
    LayoutShots();
}

size_t ContentArea::ShotsThatFit() const {
    const int32_t inner = shotsBack->window->width - 2 * (kStep + kGap);
    return static_cast<size_t>(std::clamp((inner + kGap) / (kShotWidth + kGap), 1, 5));
}

// All that fit, in the middle; arrows at the ends when there are more.
void ContentArea::LayoutShots() {
    const size_t fit = ShotsThatFit();
    const size_t most = shots.size() > fit ? shots.size() - fit : 0;
    firstShot = std::min(firstShot, most);
    const size_t count = std::min(fit, shots.size());
    const int32_t width = shotsBack->window->width;
    const auto used = static_cast<int32_t>(count) * (kShotWidth + kGap) - kGap;
    int32_t x = (width - used) / 2;
    for (size_t i = 0; i < shotWindows.size(); ++i) {
        const bool seen = i < count;
        shotWindows[i]->SetVisible(seen);
        if (seen) {
            shotWindows[i]->SetBackgroundImage(&shots[firstShot + i]);
            shotWindows[i]->SetPos(x, kGap, kShotWidth, kShotHeight);
            x += kShotWidth + kGap;
        } else {
            shotWindows[i]->SetBackgroundImage(nullptr);
        }
    }
    const int32_t arrowY = (kShotsHeight - kStep) / 2;
    shotsLeft->SetPos(kGap / 2, arrowY, kStep, kStep);
    shotsRight->SetPos(width - kStep - kGap / 2, arrowY, kStep, kStep);
    shotsLeft->SetVisible(most > 0);
    shotsRight->SetVisible(most > 0);
    shotsLeft->SetEnabled(firstShot > 0);
    shotsRight->SetEnabled(firstShot < most);
}

void ContentArea::StepShots(int by) {
    if (by < 0 && firstShot == 0) {
        return;
    }
    firstShot = by < 0 ? firstShot - 1 : firstShot + 1;
    LayoutShots();
}

void ContentArea::SetShots(std::vector<GUI_BITMAP> pictures) {
    shots = std::move(pictures);
    shots.resize(std::min(shots.size(), shotWindows.size()));
    firstShot = 0;
    LayoutShots();
}

CGhostMultiText* ContentArea::Text(ContentTab tab) const {
    return tab == ContentTab::kCovers ? nullptr : texts[static_cast<size_t>(tab) - 1];
}

void ContentArea::SetText(ContentTab tab, const std::wstring& text) {
    if (CGhostMultiText* const panel = Text(tab); panel != nullptr && panel->Text() != text) {
        panel->SetText(text);
    }
}

void ContentArea::OfferCovers(bool offer) {
    hasCovers = offer;
    SetVisible(visible);
}

void ContentArea::OfferContent(bool offer) {
    offered = offer;
    content->SetVisible(offer);
}

void ContentArea::SayNoCover(bool say) {
    noCover->SetVisible(say);
}

void ContentArea::ShowTab(ContentTab tab) {
    shown = tab;
    SetVisible(visible);
}

// A key that was pressed on the chosen tab and taken away from it leaves the button up.
void ContentArea::Update() {
    if (CGhostButton* const tab = tabs[static_cast<size_t>(shown)]; visible && !tab->IsDown()) {
        tab->SetDown(true);
    }
}

void ContentArea::SetVisible(bool wanted) {
    visible = wanted;
    for (size_t i = 0; i < kContentTabs; ++i) {
        tabs[i]->SetVisible(visible);
        tabs[i]->SetDown(static_cast<ContentTab>(i) == shown);
    }
    for (size_t i = 0; i < texts.size(); ++i) {
        texts[i]->SetVisible(visible && static_cast<size_t>(shown) == i + 1);
    }
    const bool covers = visible && shown == ContentTab::kCovers;
    boxBack->SetVisible(covers);
    shotsBack->SetVisible(covers);
    content->SetVisible(covers && offered);
    closer->SetVisible(covers && hasCovers);
    turn->SetVisible(covers && hasCovers);
}
