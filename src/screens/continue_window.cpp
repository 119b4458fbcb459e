#include "screens/continue_window.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iterator>
#include <utility>

namespace {

// Units.
constexpr int32_t kMargin = 16; // within the box
constexpr int32_t kHeadingHeight = 32;
constexpr int32_t kWordsHeight = 24;
constexpr int32_t kColumnGap = 16;
constexpr int32_t kRowGap = 12;
constexpr int32_t kTitleHeight = 26;
constexpr int32_t kDetailHeight = 20;
constexpr int32_t kButtonWidth = 120;
constexpr int32_t kButtonHeight = 28;
constexpr int32_t kButtonGap = 12;
constexpr int32_t kHeadHeight = kHeadingHeight + kWordsHeight + 12;
constexpr int32_t kFootHeight = 16 + kButtonHeight;

// A few games have room for larger pictures; they are all as wide as four to three.
struct CARD_GRID {
    int32_t columns;
    int32_t rows;
    int32_t width;
};

CARD_GRID GridOf(size_t count) {
    if (count <= 1) {
        return {1, 1, 480};
    }
    if (count <= 4) {
        return {static_cast<int32_t>(count), 1, count == 2 ? 360 : 280};
    }
    return {static_cast<int32_t>((count + 1) / 2), 2, 240};
}

int32_t PictureHeight(int32_t width) {
    return width * 3 / 4;
}

int32_t CardHeight(int32_t width) {
    return PictureHeight(width) + kTitleHeight + kDetailHeight;
}

// Cut where it does not fit, which three dots then say.
std::wstring Shortened(const wchar_t* styleName, const std::wstring& text, int32_t width) {
    GhostTextStyle style;
    CGhostTheme::Get().GetStyle(styleName, style);
    const int32_t room = width - style.textRect.left - style.textRect.right;
    if (MeasureText(style.font, text).width <= room) {
        return text;
    }
    std::wstring cut = text;
    while (!cut.empty() && MeasureText(style.font, cut + L"...").width > room) {
        cut.pop_back();
    }
    return cut + L"...";
}

// The picture as the display's pixels show it: each of its own as an even block, whatever the factor.
GUI_BITMAP Fit(const CONTINUE_GAME& game, int32_t boxWidth, int32_t boxHeight, double density) {
    GUI_BITMAP image;
    if (game.width == 0 || game.pixels.empty()) {
        return image;
    }
    const double aspect = std::clamp(static_cast<double>(game.aspect), 0.1, 10.0);
    image.width = std::clamp(static_cast<int32_t>(std::lround(boxHeight * aspect)), 1, boxWidth);
    image.height =
        std::clamp(static_cast<int32_t>(std::lround(image.width / aspect)), 1, boxHeight);
    image.density = density;
    image.pixelWidth = std::max(static_cast<int32_t>(std::lround(image.width * density)), 1);
    image.pixelHeight = std::max(static_cast<int32_t>(std::lround(image.height * density)), 1);
    const auto fromWidth = static_cast<int32_t>(game.width);
    const auto fromHeight = static_cast<int32_t>(game.height);
    const int32_t across = image.pixelWidth / fromWidth + 1;
    const int32_t down = image.pixelHeight / fromHeight + 1;
    std::vector<uint32_t> blocks;
    blocks.reserve(game.pixels.size() * static_cast<size_t>(across) * static_cast<size_t>(down));
    for (int32_t y = 0; y < fromHeight * down; ++y) {
        const uint32_t* const row =
            game.pixels.data() + size_t{game.width} * static_cast<size_t>(y / down);
        for (int32_t x = 0; x < fromWidth; ++x) {
            blocks.insert(blocks.end(), static_cast<size_t>(across), row[x]);
        }
    }
    image.pixels = ReducePixels(blocks, fromWidth * across, fromHeight * down, image.pixelWidth,
                                image.pixelHeight);
    return image;
}

std::wstring WordsFor(size_t games) {
    return games == 1
               ? std::wstring(L"This game was on when the program ended.")
               : L"These " + std::to_wstring(games) + L" games were on when the program ended.";
}

// Escape, and a controller's second button, at the window's buttons.
class Leaver : public CGhostGUIHandler {
public:
    explicit Leaver(ContinueWindow* owner)
        : window(owner) {}
    void Destroy() override { delete this; }
    void OnKeyDown(GHOSTGUIKey key) override {
        if (key == GHOSTGUIKey::kEscape) {
            window->GoBack();
        }
    }
    bool OnCancelKey() override {
        window->GoBack();
        return true;
    }

private:
    ContinueWindow* window;
};

} // namespace

std::wstring WhenText(int64_t time, int64_t now) {
    constexpr int64_t kDay = 24 * 60 * 60;
    const auto then = static_cast<std::time_t>(time);
    const auto today = static_cast<std::time_t>(now);
    const auto yesterday = static_cast<std::time_t>(now - kDay);
    std::tm at{};
    std::tm day{};
    if (localtime_r(&then, &at) == nullptr) {
        return {};
    }
    const auto isOn = [&](std::time_t date) {
        return localtime_r(&date, &day) != nullptr && day.tm_year == at.tm_year &&
               day.tm_yday == at.tm_yday;
    };
    const wchar_t* const form = isOn(today)       ? L"today %H:%M"
                                : isOn(yesterday) ? L"yesterday %H:%M"
                                                  : L"%Y-%m-%d %H:%M";
    wchar_t text[64];
    return std::wcsftime(text, std::size(text), form, &at) != 0 ? text : L"";
}

ContinueWindow::ContinueWindow(std::vector<CONTINUE_GAME> continued, int64_t now)
    : games(continued.size())
    , dimmed(new CGhostWindowEx(nullptr, 0, L"MESSAGEBOXBG", L"", CGhostWindowEx::kNoSignals, {}))
    , box(new CGhostWindowEx(dimmed->window, 0, L"PLEASEWAITBG", L"",
                             CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , heading(new CGhostTextBox(box->window, 0, L"TEXT_TITLE", L"", {}))
    , words(new CGhostTextBox(box->window, 0, L"TEXT_SMALL", L"", {})) {
    continued.resize(std::min(continued.size(), kMostGames));
    cards.reserve(continued.size());
    for (CONTINUE_GAME& game : continued) {
        MakeCard(std::move(game), now);
    }
    MakeButtons();
    Place();
    CGhostManager::Get().TakeInput(dimmed->window);
    Ask(false);
}

ContinueWindow::~ContinueWindow() {
    CGhostManager::Get().DestroyWindow(dimmed->window);
}

void ContinueWindow::MakeCard(CONTINUE_GAME&& game, int64_t now) {
    CARD card;
    card.screen = new CGhostWindowEx(box->window, 0, L"SSHOT", L"", CGhostWindowEx::kNoSignals, {});
    card.picture =
        new CGhostWindowEx(card.screen->window, 0, L"SSHOT", L"", CGhostWindowEx::kNoSignals, {});
    card.title = new CGhostTextBox(box->window, 0, L"TEXT", L"", {});
    card.detail = new CGhostTextBox(box->window, 0, L"TEXT_SMALL",
                                    game.machine + L", " + WhenText(game.takenAt, now), {});
    card.game = std::move(game);
    cards.push_back(std::move(card));
}

void ContinueWindow::MakeButtons() {
    const auto make = [this](const wchar_t* caption, const wchar_t* help, auto action) {
        auto* const button = new CGhostButton(box->window, 0, L"BUTTON", caption, 0, {});
        button->SetToolTip(help);
        button->next = new Leaver(this);
        signals.Watch(button->OnClick, [action](CGhostButton*, int, int, unsigned) { action(); });
        return button;
    };
    goOn = make(L"Continue", L"Turns them all on as they were, each on its television",
                [this] { choice = ContinueChoice::kContinue; });
    notNow = make(L"Not Now",
                  L"Asks again at the next start; a game stays until another is played "
                  L"on its television",
                  [this] { GoBack(); });
    forget = make(L"Forget", L"Deletes where these games were", [this] {
        if (asks) {
            choice = ContinueChoice::kForget;
        } else {
            Ask(true);
        }
    });
}

void ContinueWindow::GoBack() {
    if (asks) {
        Ask(false);
    } else {
        choice = ContinueChoice::kNotNow;
    }
}

void ContinueWindow::Ask(bool whether) {
    asks = whether;
    heading->SetText(asks         ? L"Forget where you were?"
                     : games == 1 ? L"Continue your game?"
                                  : L"Continue your games?");
    words->SetText(asks ? L"The games stay, and so do the states that you saved."
                        : WordsFor(games));
    goOn->SetVisible(!asks);
    PlaceButtons();
    notNow->SetCaption(asks ? L"Keep" : L"Not Now");
    (asks ? notNow : goOn)->SetFocus();
}

void ContinueWindow::Update() {
    const CGhostManager& manager = CGhostManager::Get();
    if (manager.ScreenRect() != screen || manager.Density() != density) {
        Place();
    }
}

void ContinueWindow::Place() {
    const CGhostManager& manager = CGhostManager::Get();
    screen = manager.ScreenRect();
    density = manager.Density();
    dimmed->SetPos(0, 0, screen.width, screen.height);
    const CARD_GRID grid = GridOf(cards.size());
    const int32_t cardHeight = CardHeight(grid.width);
    const int32_t inner = grid.columns * (grid.width + kColumnGap) - kColumnGap;
    const int32_t cardsHeight = grid.rows * (cardHeight + kRowGap) - kRowGap;
    const GUI_EDGES frame = box->FrameEdges();
    const int32_t width = inner + 2 * kMargin + frame.left + frame.right;
    const int32_t height =
        kHeadHeight + cardsHeight + kFootHeight + 2 * kMargin + frame.top + frame.bottom;
    box->SetPos((screen.width - width) / 2, (screen.height - height) / 2, width, height);
    heading->SetPos(kMargin, kMargin, inner, kHeadingHeight);
    words->SetPos(kMargin, kMargin + kHeadingHeight, inner, kWordsHeight);
    int32_t place = 0;
    for (CARD& card : cards) {
        PlaceCard(card, {kMargin + place % grid.columns * (grid.width + kColumnGap),
                         kMargin + kHeadHeight + place / grid.columns * (cardHeight + kRowGap),
                         grid.width, cardHeight});
        ++place;
    }
    buttonRow = {kMargin, kMargin + kHeadHeight + cardsHeight + kFootHeight - kButtonHeight, inner,
                 kButtonHeight};
    PlaceButtons();
}

// While it asks, Forget is no longer where it was, so that a double click does not forget.
void ContinueWindow::PlaceButtons() {
    const std::vector<CGhostButton*> row =
        asks ? std::vector{forget, notNow} : std::vector{goOn, notNow, forget};
    const auto count = static_cast<int32_t>(row.size());
    const int32_t width = count * (kButtonWidth + kButtonGap) - kButtonGap;
    int32_t x = buttonRow.x + (buttonRow.width - width) / 2;
    for (CGhostButton* const button : row) {
        button->SetPos(x, buttonRow.y, kButtonWidth, kButtonHeight);
        x += kButtonWidth + kButtonGap;
    }
}

// The picture in the middle of its screen.
void ContinueWindow::PlaceCard(CARD& card, const GUI_RECT& place) {
    const int32_t high = PictureHeight(place.width);
    card.image = Fit(card.game, place.width, high, CGhostManager::Get().Density());
    card.screen->SetPos(place.x, place.y, place.width, high);
    card.picture->SetBackgroundImage(&card.image);
    card.picture->SetPos((place.width - card.image.width) / 2, (high - card.image.height) / 2,
                         card.image.width, card.image.height);
    card.picture->SetVisible(!card.image.pixels.empty());
    card.title->SetText(Shortened(L"TEXT", card.game.title, place.width));
    card.title->SetPos(place.x, place.y + high, place.width, kTitleHeight);
    card.detail->SetPos(place.x, place.y + high + kTitleHeight, place.width, kDetailHeight);
}
