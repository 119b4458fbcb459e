#include "screens/browser_filters.h"

#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kRow = 25;
constexpr int32_t kListHeight = 240; // of an open list
constexpr int32_t kMenuWidth = 580;  // with its frame
constexpr int32_t kMenuHeight = 255;

struct PLAY_TYPE {
    const wchar_t* name;
    uint8_t mask;
};
constexpr PLAY_TYPE kPlayTypes[] = {
    {L"All",                   kEveryPlayType},
    {L"Single Player",         1             },
    {L"MultiPlayer Coop",      2             },
    {L"MultiPlayer Comp",      4             },
    {L"MultiPlayer TakeTurns", 8             },
};

struct REGION {
    const wchar_t* name;
    uint8_t box;
};
constexpr REGION kRegionBoxes[BrowserFilters::kRegions] = {
    {L"Europe", kRegionEurope},
    {L"Japan",  kRegionJapan },
    {L"USA",    kRegionUsa   },
    {L"Brazil", kRegionBrazil},
    {L"Korea",  kRegionKorea },
    {L"Other",  kRegionOther },
};

} // namespace

BrowserFilters::BrowserFilters(GHOSTMANAGER_WINDOW* parent, std::function<void()> whenChanged)
    : changed(std::move(whenChanged))
    , strip(new CGhostWindowEx(parent, 0, L"GAMELISTOPTIONS", L"",
                               CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , nameLabel(Label(strip->window, L"NAME: "))
    , name(new CGhostEdit(strip->window, 0, L"EDIT", L"", 0, {}))
    , menuButton(
          new CGhostButton(strip->window, 0, L"BUTTON", L"Filters", CGhostButton::kLatches, {}))
    , count(new CGhostTextBox(strip->window, 0, L"TEXT_RIGHT", L"", {}))
    , menu(new CGhostWindowEx(parent, 0, L"GAMELISTOPTIONS_MENUBG", L"",
                              CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {})) {
    name->SetToolTip(L"Shows the games whose title has this in it.");
    menuButton->SetToolTip(L"Favourites, recently played, years, players, regions.");
    MakeMenu();
    menu->SetVisible(false);
    signals.Watch(name->OnChange, [this](CGhostEdit*, const std::wstring&) { Changed(); });
    signals.Watch(menuButton->OnClick, [this](CGhostButton*, int, int, unsigned) {
        menu->SetVisible(!menu->IsVisible());
        menu->SetZOrder(-1);
        if (menu->IsVisible()) {
            show->SetFocus();
        }
    });
}

BrowserFilters::~BrowserFilters() {
    CGhostManager::Get().DestroyWindow(strip->window);
    CGhostManager::Get().DestroyWindow(menu->window);
}

CGhostTextBox* BrowserFilters::Label(GHOSTMANAGER_WINDOW* parent, const wchar_t* text) {
    return new CGhostTextBox(parent, 0, L"TEXT_RIGHT", text, {});
}

void BrowserFilters::MakeMenu() {
    GHOSTMANAGER_WINDOW* const within = menu->window;
    const auto list = [&] {
        return new CGhostDropList(within, 0, L"DROPLIST", L"", kListHeight, {});
    };
    showLabel = Label(within, L"SHOW: ");
    show = list();
    for (const wchar_t* const choice : {L"All games", L"Favourites", L"Recently played"}) {
        show->AddItem(choice);
    }
    show->SetToolTip(
        L"All games, those with a star, or those that you have played, the last one first.");
    yearLabel = Label(within, L"YEAR: ");
    year = new CGhostEdit(within, 0, L"EDIT", L"", 0, {});
    year->SetToolTip(L"A year, such as 1989, or years from and to, such as 1987-1990.");
    playTypeLabel = Label(within, L"PLAYTYPE: ");
    playType = list();
    for (const PLAY_TYPE& type : kPlayTypes) {
        playType->AddItem(type.name, -1, 0, type.mask);
    }
    groupLabel = Label(within, L"GROUP: ");
    group = list();
    group->AddItem(L"by GAME");
    group->AddItem(L"NONE");
    group->SetToolTip(
        L"One line for each game, or one for each title that it has in some country.");
    regionMode = list();
    regionMode->AddItem(L"Released in");
    regionMode->AddItem(L"Only Released in");
    for (CGhostDropList* const each : {show, playType, group, regionMode}) {
        each->SetSelected(0, false);
        signals.Watch(each->OnSelect, [this](CGhostDropList*, int, GHOSTLIST_ITEM*) { Changed(); });
    }
    signals.Watch(year->OnChange, [this](CGhostEdit*, const std::wstring&) { Changed(); });
    for (size_t i = 0; i < kRegions; ++i) {
        regions[i] = new CGhostCheckBox(within, 0, L"CHECKBOX", kRegionBoxes[i].name, 0, {});
        regions[i]->SetChecked(true);
        signals.Watch(regions[i]->OnChange, [this](CGhostCheckBox*, bool) { Changed(); });
    }
}

void BrowserFilters::Layout(int32_t x, int32_t y, int32_t width) {
    strip->SetPos(x, y, width, kHeight);
    const int32_t inner = strip->window->clientRect.width;
    nameLabel->SetPos(0, 0, 60, kRow);
    name->SetPos(68, 0, 240, kRow);
    menuButton->SetPos(320, 0, 100, kRow);
    count->SetPos(432, 0, inner - 432, kRow);

    menu->SetPos(x + 8, y + kHeight - 8, kMenuWidth, kMenuHeight);
    showLabel->SetPos(0, 10, 90, kRow);
    show->SetPos(98, 10, 220, kRow);
    yearLabel->SetPos(0, 45, 90, kRow);
    year->SetPos(98, 45, 120, kRow);
    groupLabel->SetPos(230, 45, 80, kRow);
    group->SetPos(318, 45, 170, kRow);
    playTypeLabel->SetPos(0, 80, 90, kRow);
    playType->SetPos(98, 80, 220, kRow);
    regionMode->SetPos(98, 115, 220, kRow);
    for (size_t i = 0; i < kRegions; ++i) {
        const auto column = static_cast<int32_t>(i % 3);
        const auto row = static_cast<int32_t>(i / 3);
        regions[i]->SetPos(98 + column * 130, 147 + row * 28, 120, kRow);
    }
}

void BrowserFilters::Changed() {
    menuButton->SetCaption(MenuFilters() ? L"Filters \x2022" : L"Filters");
    changed();
}

void BrowserFilters::CloseMenu() {
    menu->SetVisible(false);
    menuButton->SetDown(false);
}

void BrowserFilters::ClearName() {
    name->SetText(L"");
    Changed();
}

void BrowserFilters::SetVisible(bool visible) {
    strip->SetVisible(visible);
    if (!visible) {
        CloseMenu();
    }
}

void BrowserFilters::ShowCount(size_t games) {
    count->SetText(ShowingText(games));
}

bool BrowserFilters::MenuFilters() const {
    ROW_CHOICES choices = Choices();
    choices.name.clear();
    const ROW_CHOICES none;
    return Games() != ShownGames::kAll || choices.year != none.year ||
           choices.playTypes != none.playTypes || choices.regions != none.regions ||
           choices.regionMode != none.regionMode;
}

ShownGames BrowserFilters::Games() const {
    return static_cast<ShownGames>(std::max(show->Selected(), 0));
}

ROW_CHOICES BrowserFilters::Choices() const {
    ROW_CHOICES choices;
    choices.name = name->Text();
    choices.year = year->Text();
    choices.playTypes = kPlayTypes[static_cast<size_t>(std::max(playType->Selected(), 0))].mask;
    choices.group = static_cast<RowGroup>(std::max(group->Selected(), 0));
    choices.regionMode = static_cast<RegionMode>(std::max(regionMode->Selected(), 0));
    choices.regions = 0;
    for (size_t i = 0; i < kRegions; ++i) {
        choices.regions |= regions[i]->IsChecked() ? kRegionBoxes[i].box : uint8_t{0};
    }
    return choices;
}
