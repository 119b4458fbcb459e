#include "screens/rom_browser.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/list_view.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "library/game_source.h"
#include "room/image_decoder.h"
#include "screens/game_media.h"
#include "screens/key_line.h"
#include "screens/play_keys.h"
#include "screens/played_text.h"
#include "screens/screen_host.h"
#include "settings/settings.h"
#include "web/download_queue.h"
#include "web/media_archive.h"
#include "web/service_texts.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

// Units.
constexpr int32_t kMargin = 15;
constexpr int32_t kRightWidth = 510; // of the content area
constexpr int32_t kGap = 12;
constexpr int32_t kButton = 25;
constexpr int32_t kOptionsHeight = 124;
constexpr int32_t kStartHeight = 36;
constexpr int32_t kFlagColumn = 34;
constexpr int32_t kYearColumn = 56;
constexpr int32_t kStarColumn = 34;
constexpr int32_t kStarButton = 36;
constexpr int32_t kScrollbar = 24;
constexpr int32_t kListHeight = 240; // of an open drop list
constexpr int32_t kRoomButton = 120;
constexpr int32_t kHintFoot = 40; // from the list's lower edge to the top of the hint

constexpr uint64_t kOldMediaStays = 250; // milliseconds

constexpr const wchar_t* kSystemSetting = L"gamebrowser_cursystem";
constexpr const wchar_t* kSavesSetting = L"emu_autosaves";

// The columns of the list.
enum Column : int32_t { kTitle, kFlag1, kFlag2, kFlag3, kYear, kPath, kKey, kStar, kColumns };

// In the list's strip of images.
constexpr int32_t kKnownMark = 1;
constexpr int32_t kUnknownMark = 2;
constexpr int32_t kStarMark = 4;
constexpr int32_t kNoMark = -1;

struct SAVES {
    const wchar_t* name;
    int32_t value; // bit 0 load at start, bit 1 save at stop
};
constexpr SAVES kSaves[] = {
    {L"Auto Save & Load", 3},
    {L"Auto Load",        1},
    {L"Manual Only",      0},
};

// Kinds of requests to the web service.
constexpr uint32_t kAskGame = 1;
constexpr uint32_t kFetchCover = 2;

SERVICE_ADDRESSES ServiceOfSettings() {
    return {Settings().GetString(L"web_service"), Settings().GetString(L"web_images")};
}

// On the queue's thread: decoding a stranger's pictures may take a while.
bool CheckContent(std::span<const uint8_t> archive, std::wstring& error) {
    const PICTURE_CHECK check = {
        [](std::span<const uint8_t> file, PICTURE_SIZE& size) {
            return RoomImageSize(file, size.width, size.height);
        },
        [](std::span<const uint8_t> file) { return DecodeRoomImage(file).width != 0; }};
    std::string reason;
    const bool good = CheckMediaArchive(archive, check, reason);
    error = WideFromUtf8(reason);
    return good;
}

int32_t SelectorOf(uint16_t system) {
    const auto& machines = MachineFacts();
    const auto found =
        std::find_if(machines.begin(), machines.end(),
                     [&](const MACHINE_FACTS& machine) { return machine.system == system; });
    return found != machines.end() ? static_cast<int32_t>(found - machines.begin()) : 0;
}

std::wstring PlayTypeText(uint8_t types) {
    struct TYPE {
        uint8_t bit;
        const wchar_t* name;
    };
    constexpr TYPE kTypes[] = {
        {1, L"single player"     },
        {2, L"together"          },
        {4, L"against each other"},
        {8, L"taking turns"      },
    };
    std::wstring text;
    for (const TYPE& type : kTypes) {
        if ((types & type.bit) != 0) {
            text += (text.empty() ? L"" : L", ") + std::wstring(type.name);
        }
    }
    return text.empty() ? L"unknown" : text;
}

std::wstring RegionText(const std::wstring& letters) {
    struct REGION {
        wchar_t letter;
        const wchar_t* name;
    };
    constexpr REGION kRegions[] = {
        {L'E', L"Europe"},
        {L'U', L"USA"   },
        {L'B', L"Brazil"},
        {L'J', L"Japan" },
        {L'K', L"Korea" },
    };
    std::wstring text;
    for (const REGION& region : kRegions) {
        if (letters.find(region.letter) != std::wstring::npos) {
            text += (text.empty() ? L"" : L", ") + std::wstring(region.name);
        }
    }
    return text.empty() ? L"unknown" : text;
}

// By a number of each row; equal ones keep their order.
template <typename KeyOf>
void Sort(std::vector<const GameListRow*>& rows, bool descending, KeyOf keyOf) {
    using Key = decltype(keyOf(*rows.front()));
    std::vector<std::pair<Key, const GameListRow*>> keys;
    keys.reserve(rows.size());
    for (const GameListRow* const row : rows) {
        keys.emplace_back(keyOf(*row), row);
    }
    std::ranges::stable_sort(keys, [descending](const auto& a, const auto& b) {
        return descending ? b.first < a.first : a.first < b.first;
    });
    std::ranges::transform(keys, rows.begin(), [](const auto& key) { return key.second; });
}

} // namespace

CGUIRomBrowser::CGUIRomBrowser(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program)
    : CGUIPanel(parentWindow)
    , host(program)
    , switcher(parentWindow, [this](int step) { SelectSystem(step, -1); })
    , filters(parentWindow, [this] { applyFilters = true; })
    , list(Own(new CGhostListView(parentWindow, 0, L"GAMELIST", 0, {})))
    , empty(Own(new CGhostTextBox(parentWindow, 0, L"TEXT_CENTER", L"", {})))
    , optionsWindow(
          Own(new CGhostWindowEx(parentWindow, 0, L"GAMEOPTIONS", L"",
                                 CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {})))
    , noOptions(new CGhostTextBox(optionsWindow->window, 0, L"TEXT",
                                  L"This machine has no options. These keys play it:", {}))
    , keys(new KeyLine(optionsWindow->window, 0))
    , content(parentWindow,
              {[this] { FetchContent(); },
               [this](int button, int32_t x, int32_t y) { host.CoverClick(button, x, y); },
               [this] { host.LookCloser(); }, [this] { host.TurnCovers(); }})
    , start(Own(new CGhostButton(parentWindow, 0, L"PLAYOFFLINE", L"START GAME", 0, {})))
    , star(Own(new CGhostButton(parentWindow, 0, L"BUTTON", L"\x2606", 0, {})))
    , gameRoom(Own(new CGhostButton(parentWindow, 0, L"BUTTON", L"GAME ROOM", 0, {})))
    , mainMenu(Own(new CGhostButton(parentWindow, 0, L"BUTTON", L"MAIN MENU", 0, {})))
    , savesLabel(Own(new CGhostTextBox(parentWindow, 0, L"TEXT_RIGHT", L"SAVES: ", {})))
    , saves(Own(new CGhostDropList(parentWindow, 0, L"DROPLIST", L"", kListHeight, {})))
    , scan([this] {
        if (active) {
            list->SetFocus();
        }
    })
    , catalogue(Hooks(), Settings().GetInt(kSystemSetting)) {
    MakeList();
    start->SetToolTip(L"Start the game");
    star->SetToolTip(
        L"Makes the game a favourite, or no longer (F, or a controller's left button)");
    gameRoom->SetToolTip(L"Walk in the room");
    mainMenu->SetToolTip(L"Options, benchmark, credits and the way out");
    saves->SetToolTip(
        L"Whether a game goes on where you left it, and is kept when you turn it off.");
    for (const SAVES& choice : kSaves) {
        saves->AddItem(choice.name);
    }
    signals.Watch(saves->OnSelect, [this](CGhostDropList*, int, GHOSTLIST_ITEM*) { StoreSaves(); });
    signals.Watch(start->OnClick, [this](CGhostButton*, int, int, unsigned) { StartSelected(); });
    signals.Watch(star->OnClick, [this](CGhostButton*, int, int, unsigned) { ToggleFavourite(); });
    signals.Watch(gameRoom->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { host.Take(ModeInput::kGameRoom); });
    signals.Watch(mainMenu->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { host.Take(ModeInput::kMainMenu); });
    signals.Watch(list->OnSelect,
                  [this](CGhostListView*, int row, GHOSTLISTVIEW_ITEM*) { Choose(RowOf(row)); });
    signals.Watch(list->OnChoose,
                  [this](CGhostListView*, int, GHOSTLISTVIEW_ITEM*) { StartSelected(); });
    signals.Watch(list->OnClick, [this](CGhostListView*, unsigned button, int row, int column,
                                        GHOSTLISTVIEW_ITEM*) {
        if (button == 1 && column == kStar && row >= 0) {
            ToggleFavourite(); // the click has chosen the row
        }
    });
    // A capital letter begins a title as ever.
    list->shortcut = [this](wchar_t character) {
        if (character != L'f') {
            return false;
        }
        ToggleFavourite();
        return true;
    };
    SetActive(false);
}

CGUIRomBrowser::~CGUIRomBrowser() {
    *abandoned = 1;
    catalogue.StopScan();
    catalogue.WaitForScan();
}

CATALOGUE_HOOKS CGUIRomBrowser::Hooks() {
    CATALOGUE_HOOKS hooks;
    hooks.storeSelector = [](int32_t selector) { Settings().SetInt(kSystemSetting, selector); };
    hooks.deletePanel = [this] { options.reset(); };
    hooks.clearPanes = [this] { ClearPanes(); };
    hooks.makePanel = [this](uint16_t system) { MakePanel(system); };
    hooks.keepSources = [] { return Settings().GetBool(L"library_keepsources"); };
    hooks.scanBegins = [this] {
        if (options != nullptr) {
            options->Clear();
        }
    };
    hooks.gameFound = [this](const std::filesystem::path& path, const CGameFile& game) {
        if (options != nullptr) {
            options->SetGame(path, game);
        }
    };
    ReadThroughIndex(libraryIndex, hooks);
    // By the first scan's worker, as a database takes its time to open. Without an index every file is read.
    hooks.loadBegins = [this, opened = false,
                        begin = hooks.loadBegins](const std::filesystem::path& folder) mutable {
        std::string ignored;
        opened = opened || libraryIndex.Open(ResolvePath(kLibraryIndexFile), ignored);
        begin(folder);
    };
    return hooks;
}

void CGUIRomBrowser::MakeList() {
    list->AddColumn(L"Name", 0);
    for (int32_t flag = 0; flag < 3; ++flag) {
        list->AddColumn(L"", kFlagColumn);
    }
    list->AddColumn(L"Year", kYearColumn, kAlignRight);
    list->AddColumn(L"", 0);
    list->AddColumn(L"", 0);
    list->AddColumn(L"\x2605", kStarColumn);
    list->SetSortable(kTitle);
    list->SetSortable(kYear);
    list->SetSortable(kStar);
}

void CGUIRomBrowser::SetActive(bool wanted) {
    active = wanted;
    filters.CloseMenu();
    switcher.SetVisible(active);
    filters.SetVisible(active);
    content.SetVisible(active);
    for (CGhostGUICommonFunc* const control : std::initializer_list<CGhostGUICommonFunc*>{
             list, optionsWindow, start, star, gameRoom, mainMenu, savesLabel, saves}) {
        control->SetVisible(active);
    }
    PlaceHint();
    scan.SetActive(active);
    if (!active) {
        return;
    }
    ShowKeys();
    const int32_t value = Settings().GetInt(kSavesSetting) & 3; // other bits mean nothing
    const auto* const found = std::find_if(std::begin(kSaves), std::end(kSaves),
                                           [&](const SAVES& one) { return one.value == value; });
    saves->SetSelected(found != std::end(kSaves) ? static_cast<int32_t>(found - kSaves) : -1,
                       false);
    if (found == std::end(kSaves)) {
        saves->SetCaption(L"Auto Save"); // which the settings' file alone can ask for
    }
    if (!scanned) {
        scanned = true;
        SelectSystem(0, -1);
        return;
    }
    // A game may have been played meanwhile.
    ShowPlayed();
    applyFilters |= filters.Games() != ShownGames::kAll;
}

void CGUIRomBrowser::StoreSaves() {
    const int32_t choice = saves->Selected();
    if (choice >= 0 && static_cast<size_t>(choice) < std::size(kSaves)) {
        Settings().SetInt(kSavesSetting, kSaves[choice].value);
    }
}

void CGUIRomBrowser::SelectSystem(int direction, int32_t index) {
    if (direction == 0 && index < 0) {
        index =
            std::clamp(Settings().GetInt(kSystemSetting), 0, static_cast<int32_t>(kSystems) - 1);
    }
    if (catalogue.SwitchSystem(index, direction)) {
        switcher.Show(static_cast<size_t>(catalogue.Selector()));
    }
}

void CGUIRomBrowser::LibraryChanged(const std::vector<uint16_t>& systems) {
    if (systems.empty()) {
        return;
    }
    const bool shown =
        std::find(systems.begin(), systems.end(), catalogue.System()) != systems.end();
    readAnew = shown ? catalogue.Selector() : SelectorOf(systems.front());
}

void CGUIRomBrowser::ShowFirst(uint16_t system) {
    Settings().SetInt(kSystemSetting, SelectorOf(system));
}

void CGUIRomBrowser::MakePanel(uint16_t system) {
    options = MakeGameOptions(system, optionsWindow->window);
    if (options != nullptr) {
        options->SetVisible(true);
    }
    noOptions->SetVisible(options == nullptr);
    ShowKeys();
}

// The keys of the machine share the last row of its options, and begin right of the controls there.
void CGUIRomBrowser::ShowKeys() {
    const uint16_t system = catalogue.System();
    const int32_t x = options == nullptr              ? 0
                      : system == kSystemMasterSystem ? 320
                      : system == kSystemGameGear     ? 140
                                                      : 80;
    const int32_t y = options == nullptr ? 45 : 80;
    noOptions->SetPos(0, 10, optionsWindow->window->clientRect.width, kButton);
    keys->SetPos(x, y, optionsWindow->window->clientRect.width - x, kButton);
    keys->SetWords(PlayKeys(system));
}

void CGUIRomBrowser::ClearPanes() {
    chosen = nullptr;
    list->Clear();
    hint.clear();
    PlaceHint();
    listRows.clear();
    mediaReader.Forget();
    oldMedia = false;
    for (const ContentTab tab :
         {ContentTab::kReviews, ContentTab::kHints, ContentTab::kTrivia, ContentTab::kMetaInfo}) {
        content.SetText(tab, L"");
    }
    content.SetShots({});
    content.OfferContent(false);
    content.SayNoCover(false);
    ShowCovers({}, 0, false);
    start->SetEnabled(false);
    star->SetEnabled(false);
}

void CGUIRomBrowser::Update() {
    // The list reaches out from behind the open filters, and would take each step to the right or down from them.
    CGhostManager& manager = CGhostManager::Get();
    manager.SetTabStop(list->window,
                       !filters.Menu()->IsVisible() || manager.FocusWindow() == list->window);
    if (options != nullptr) {
        options->Update();
    }
    content.Update();
    if (catalogue.TakeFolderError()) {
        const MACHINE_FACTS* const facts = FindMachineFacts(catalogue.System());
        const std::filesystem::path folder =
            facts != nullptr ? HomeFolder() / facts->folder : HomeFolder();
        CGhostMessageBox::Show(kFolderErrorTitle,
                               kFolderErrorText + (L"\n\n" + WideFromUtf8(folder.string())));
    }
    if (scan.Update(catalogue)) {
        applyFilters = true;
    }
    if (applyFilters && !catalogue.ScanRuns()) {
        applyFilters = false;
        FillList();
    }
    if (std::optional<GAME_MEDIA> media = mediaReader.Take(); media && chosen != nullptr) {
        ShowMedia(std::move(*media));
    } else if (oldMedia && host.Milliseconds() - mediaAsked > kOldMediaStays) {
        DropOldMedia();
    }
    if (readAnew >= 0 && active && catalogue.State() == kScanIdle) {
        SelectSystem(0, std::exchange(readAnew, -1));
    }
}

PLAYER_RECORD CGUIRomBrowser::PlayedOf(const GameListRow& row) const {
    return host.Player().Find(row.identity);
}

// Those that the filters let through; of the recently played ones the last one first.
std::vector<const GameListRow*> CGUIRomBrowser::ChooseRows() {
    std::vector<const GameListRow*> found = catalogue.FilterRows(filters.Choices());
    const ShownGames games = filters.Games();
    if (games == ShownGames::kFavourites) {
        std::erase_if(found, [this](const GameListRow* row) { return !PlayedOf(*row).favourite; });
    } else if (games == ShownGames::kRecentlyPlayed) {
        std::erase_if(found,
                      [this](const GameListRow* row) { return PlayedOf(*row).lastPlayed == 0; });
        Sort(found, true, [this](const GameListRow& row) { return PlayedOf(row).lastPlayed; });
    }
    return found;
}

// Into the order that the player has chosen by a heading. Equal rows keep theirs.
void CGUIRomBrowser::PutInOrder(std::vector<const GameListRow*>& found) const {
    const bool descending = list->SortDescending();
    switch (list->SortColumn()) {
    case kTitle:
        Sort(found, descending, [](const GameListRow& row) { return row.titleRank; });
        break;
    case kYear: Sort(found, descending, [](const GameListRow& row) { return row.year; }); break;
    case kStar:
        Sort(found, descending,
             [this](const GameListRow& row) { return PlayedOf(row).favourite ? 0 : 1; });
        break;
    default: break;
    }
}

void CGUIRomBrowser::FillRow(const GameListRow& row, std::span<GHOSTLISTVIEW_ITEM> cells) const {
    const ROW_LINE line = LineOf(row);
    cells[kTitle].text = line.title;
    cells[kTitle].image = row.known ? kKnownMark : kUnknownMark;
    cells[kTitle].colourSet = static_cast<uint8_t>(line.statusColour);
    for (size_t flag = 0; flag < line.images.size(); ++flag) {
        cells[kFlag1 + flag].image = line.images[flag];
    }
    cells[kYear].text = line.year.data();
    cells[kPath].text = WideFromUtf8(line.path->string());
    cells[kPath].value = line.nameIndex;
    cells[kKey].text = line.contentKey;
    cells[kStar].image = PlayedOf(row).favourite ? kStarMark : kNoMark;
}

// The game that was chosen stays chosen if it is still shown. The order of the recently played games is their own until
// the player asks for another.
void CGUIRomBrowser::FillList() {
    const GameListRow* const before = chosen;
    if (std::exchange(listed, filters.Games()) != listed && listed == ShownGames::kRecentlyPlayed) {
        list->ForgetOrder();
    }
    listRows = ChooseRows();
    PutInOrder(listRows);
    GHOSTLISTVIEW_SOURCE source;
    source.fill = [this](int32_t row, std::span<GHOSTLISTVIEW_ITEM> cells) {
        FillRow(*listRows[static_cast<size_t>(row)], cells);
    };
    source.text = [this](int32_t row) {
        return std::wstring_view(listRows[static_cast<size_t>(row)]->title);
    };
    source.sort = [this](int32_t, bool) { FillList(); };
    list->SetRows(static_cast<int32_t>(listRows.size()), std::move(source));
    ShowCount();
    const auto kept = std::ranges::find(listRows, before);
    const bool stays = before != nullptr && kept != listRows.end();
    const int32_t first = listRows.empty() ? -1 : 0;
    list->SetSelected(stays ? static_cast<int32_t>(kept - listRows.begin()) : first, false);
    if (!stays) {
        Choose(RowOf(first));
    }
}

void CGUIRomBrowser::ShowCount() {
    filters.ShowCount(listRows.size());
    const MACHINE_FACTS* const facts = FindMachineFacts(catalogue.System());
    const bool none = catalogue.Rows().empty();
    hint = none && facts != nullptr
               ? L"No games yet. Drop game files or folders on this window, or "
                 L"put them into the folder \"" +
                     WideFromUtf8(facts->folder) + L"\"."
           : listRows.empty() ? L"Nothing fits the filters."
                              : L"Drop game files or folders on this window to add them.";
    PlaceHint();
}

// In the middle of an empty list; at the foot of one that has the room.
void CGUIRomBrowser::PlaceHint() {
    const GHOSTMANAGER_WINDOW& at = *list->window;
    const int32_t rows = list->RowCount();
    const int32_t free = at.height - list->HeaderHeight() - rows * list->RowHeight();
    empty->SetText(hint);
    empty->SetPos(at.x + 20, rows == 0 ? at.y + 60 : at.y + at.height - kHintFoot, at.width - 40,
                  kButton);
    empty->SetVisible(active && !hint.empty() && free >= 2 * kHintFoot);
}

const GameListRow* CGUIRomBrowser::RowOf(int32_t listRow) const {
    return listRow >= 0 && static_cast<size_t>(listRow) < listRows.size()
               ? listRows[static_cast<size_t>(listRow)]
               : nullptr;
}

void CGUIRomBrowser::Choose(const GameListRow* row) {
    chosen = row;
    start->SetEnabled(row != nullptr);
    ShowStar();
    metaHead.clear();
    metaTail.clear();
    if (row == nullptr) {
        mediaReader.Forget();
        oldMedia = false;
        content.SetShots({});
        content.SayNoCover(false);
        ShowCovers({}, 0, false);
        content.SetText(ContentTab::kMetaInfo, L"");
        ShowTexts({});
        content.OfferContent(false);
        return;
    }
    CGameFile game;
    std::string error;
    if (OpenGameFile(row->path, true, game, error)) {
        if (options != nullptr) {
            options->ConfigureForGame(game, row->nameIndex);
        }
        ReadMeta(*row, game);
        ShowPlayed();
    } else {
        content.SetText(ContentTab::kMetaInfo, WideFromUtf8(error));
        if (options != nullptr) {
            options->ConfigureForGame({}, 0); // nothing is known of it
        }
    }
    AskForMedia(*row);
    AskAboutGame(*row);
}

std::filesystem::path CGUIRomBrowser::MediaOf(const GameListRow& row) const {
    const MACHINE_FACTS* const facts = FindMachineFacts(catalogue.System());
    return facts != nullptr ? MediaArchivePath(facts->folder, row.contentKey)
                            : std::filesystem::path();
}

// What was read of the game before is shown until this is there, so that nothing flickers, but not for long.
void CGUIRomBrowser::AskForMedia(const GameListRow& row) {
    localTexts.reset();
    oldMedia = true;
    mediaAsked = host.Milliseconds();
    if (const MACHINE_FACTS* const facts = FindMachineFacts(catalogue.System())) {
        mediaReader.Ask(facts->folder, row.contentKey);
    }
}

// A slow disk lets the game wait for its own.
void CGUIRomBrowser::DropOldMedia() {
    oldMedia = false;
    content.SetShots({});
    content.SayNoCover(false);
    ShowCovers({}, 0, false);
    if (!told && !failed) {
        ShowTexts({});
    }
}

void CGUIRomBrowser::ShowMedia(GAME_MEDIA media) {
    oldMedia = false;
    if (!media.texts.empty()) {
        localTexts = ReadGameInformation(media.texts);
    }
    if (told && localTexts) {
        ShowTexts(WithLocalTexts(*told, *localTexts));
    } else if (!told && (localTexts || !failed)) {
        ShowTexts(localTexts.value_or(GAME_INFORMATION()));
    }
    content.SetShots(std::move(media.shots));
    content.SayNoCover(media.covers.empty());
    const int kind = catalogue.System() == kSystemGameGear ? 1 : 0;
    ShowCovers(std::move(media.covers), kind, catalogue.System() == kSystemArcade);
}

void CGUIRomBrowser::ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet) {
    content.OfferCovers(!covers.empty());
    host.ShowCovers(std::move(covers), kind, cabinet);
}

void CGUIRomBrowser::ShowTexts(const GAME_INFORMATION& information) {
    content.SetText(ContentTab::kHints, information.cheats);
    content.SetText(ContentTab::kReviews, information.reviews);
    content.SetText(ContentTab::kTrivia, information.trivia);
}

// Games of two systems may have one name.
bool CGUIRomBrowser::IsChosen(uint16_t system, const std::wstring& key) const {
    return chosen != nullptr && catalogue.System() == system && chosen->contentKey == key;
}

// The texts that lie here are shown soon; those of the service's answer take their place, or are there before.
void CGUIRomBrowser::AskAboutGame(const GameListRow& row) {
    told.reset();
    failed = false;
    content.OfferContent(false);
    const std::wstring url = GameUrl(ServiceOfSettings(), row.contentKey);
    if (url.empty()) {
        return;
    }
    host.Downloads().QueueRequest(
        url, row.contentKey, kAskGame, abandoned,
        [this, url, system = catalogue.System()](const std::wstring& error, const std::wstring& key,
                                                 uint32_t, const AbortWord& gone,
                                                 const uint8_t* data, uint32_t size) {
            if (*gone != 0 || !IsChosen(system, key)) {
                return; // the player looks at another game by now
            }
            if (const std::wstring why = WhyNothingCame(url, error, data); why.empty()) {
                TakeInformation(ReadGameInformation({data, size}));
            } else {
                failed = true;
                if (!localTexts) {
                    ShowTexts(GameInformationFailure(why));
                }
            }
        });
}

void CGUIRomBrowser::TakeInformation(const GAME_INFORMATION& information) {
    told = information;
    ShowTexts(localTexts ? WithLocalTexts(information, *localTexts) : information);
    offeredRevision = information.cover;
    const std::optional<int32_t> revision = MediaRevision(MediaOf(*chosen));
    const bool reachable =
        !CoverUrl(ServiceOfSettings(), catalogue.System(), chosen->contentKey).empty();
    content.OfferContent(reachable && revision && ContentAvailable(information, *revision));
}

// The button `Content Available`.
void CGUIRomBrowser::FetchContent() {
    if (CGhostManager::Get().FocusWindow() == content.ContentButton()->window) {
        content.TabButton(ContentTab::kCovers)->SetFocus(); // as it goes
    }
    content.OfferContent(false);
    const std::wstring url =
        chosen != nullptr ? CoverUrl(ServiceOfSettings(), catalogue.System(), chosen->contentKey)
                          : std::wstring();
    if (url.empty()) {
        return;
    }
    host.Downloads().QueueRequest(
        url, chosen->contentKey, kFetchCover, abandoned,
        [this, url, system = catalogue.System(),
         revision = offeredRevision](const std::wstring& error, const std::wstring& key, uint32_t,
                                     const AbortWord& gone, const uint8_t* data, uint32_t size) {
            if (*gone == 0 && IsChosen(system, key)) {
                StoreContent(WhyNothingCame(url, error, data), {data, size}, revision);
            }
        },
        CheckContent);
}

void CGUIRomBrowser::StoreContent(const std::wstring& error, std::span<const uint8_t> archive,
                                  int32_t revision) {
    std::string reason = Utf8FromWide(error);
    if (error.empty() && StoreMediaArchive(MediaOf(*chosen), archive, revision, reason)) {
        AskForMedia(*chosen);
        return;
    }
    content.OfferContent(true); // to be tried again
    CGhostMessageBox::Show(L"Content Available", L"The pictures of " + chosen->title +
                                                     L" could not be fetched: " +
                                                     WideFromUtf8(reason));
}

void CGUIRomBrowser::ReadMeta(const GameListRow& row, const CGameFile& game) {
    std::wstring& text = metaHead;
    text = row.title + L"\n\n";
    text += L"Year: " + (row.year == 1900 ? std::wstring(L"unknown") : std::to_wstring(row.year)) +
            L"\n";
    text += L"Regions: " + RegionText(row.regions) + L"\n";
    text += L"Players: " + PlayTypeText(row.playTypes) + L"\n";
    text += std::wstring(L"In the database: ") + (row.known ? L"yes" : L"no") + L"\n\n";
    metaTail = L"\nFile: " + WideFromUtf8(row.path.filename().string()) + L"\n";
    for (uint32_t i = 0; i < game.RomCount(); ++i) {
        std::string name;
        ROM_RECORD rom{};
        if (game.GetRom(i, name, rom)) {
            metaTail += L"Image: " + WideFromUtf8(name) + L", " + std::to_wstring(rom.size) +
                        L" bytes\n" + WideFromUtf8(HexText(rom.sha256)) + L"\n";
        }
    }
}

void CGUIRomBrowser::ShowPlayed() {
    if (chosen != nullptr && !metaHead.empty()) {
        content.SetText(ContentTab::kMetaInfo, metaHead + PlayedText(PlayedOf(*chosen)) + metaTail);
    }
}

void CGUIRomBrowser::ShowStar() {
    const bool favourite = chosen != nullptr && PlayedOf(*chosen).favourite;
    star->SetEnabled(chosen != nullptr && chosen->identity.system != 0);
    star->SetCaption(favourite ? L"\x2605" : L"\x2606");
}

// The game stays in the list of favourites until that is chosen again, so that a slip can be put right.
void CGUIRomBrowser::ToggleFavourite() {
    if (chosen != nullptr) {
        host.Player().SetFavourite(chosen->identity, !PlayedOf(*chosen).favourite);
        ShowStar();
        list->Refresh(); // all variants of one image have the star
    }
}

void CGUIRomBrowser::StartSelected() {
    if (chosen == nullptr) {
        return;
    }
    GAME_TO_START wanted;
    std::string error;
    if (!OpenGameFile(chosen->path, false, wanted.game, error)) {
        CGhostMessageBox::Show(L"Error loading game", WideFromUtf8(error));
        return;
    }
    wanted.file = chosen->path;
    wanted.game.selectedName = static_cast<int32_t>(chosen->nameIndex);
    wanted.title = Utf8FromWide(chosen->title);
    wanted.options = DefaultMachineOptions(wanted.game);
    if (options != nullptr) {
        std::filesystem::path second;
        uint32_t secondIndex = 0;
        options->GetConfig(second, secondIndex, wanted.options);
        if (!second.empty()) {
            if (!OpenGameFile(second, false, wanted.second, error)) {
                CGhostMessageBox::Show(L"Error loading game", WideFromUtf8(error));
                return;
            }
            wanted.secondFile = second;
            wanted.second.selectedName = static_cast<int32_t>(secondIndex);
            wanted.hasSecond = true;
        }
    }
    host.StartGame(std::move(wanted));
}

void CGUIRomBrowser::Layout(int32_t width, int32_t height) {
    const int32_t rightX = width - kMargin - kRightWidth;
    const int32_t leftWidth = rightX - kMargin - 16;
    gameRoom->SetPos(kMargin + leftWidth - kRoomButton, 15, kRoomButton, kButton);
    mainMenu->SetPos(kMargin + leftWidth - kRoomButton, 47, kRoomButton, kButton);
    switcher.Layout(kMargin + (leftWidth - SystemSwitcher::kWidth) / 2, kMargin - 3);
    filters.Layout(kMargin, 136, leftWidth);
    const int32_t listTop = 136 + BrowserFilters::kHeight + 4;
    const int32_t optionsTop = height - kMargin - kOptionsHeight;
    list->SetPos(kMargin, listTop, leftWidth, optionsTop - kGap - listTop);
    list->SetColumnWidth(kTitle,
                         leftWidth - 3 * kFlagColumn - kYearColumn - kStarColumn - kScrollbar);
    list->SetColumnWidth(kStar, kStarColumn);
    PlaceHint();
    optionsWindow->SetPos(kMargin, optionsTop, leftWidth, kOptionsHeight);
    if (options != nullptr) {
        options->Layout();
    }
    ShowKeys();
    const int32_t startTop = height - kMargin - kStartHeight;
    content.Layout(rightX, kMargin, kRightWidth, startTop - kGap - kMargin);
    start->SetPos(rightX, startTop, 190, kStartHeight);
    star->SetPos(rightX + 202, startTop + 5, kStarButton, kButton);
    savesLabel->SetPos(rightX + 240, startTop + 5, 66, kButton);
    saves->SetPos(rightX + 310, startTop + 5, kRightWidth - 310, kButton);
}

void CGUIRomBrowser::TakeFocus() {
    if (!scan.TakeFocus()) {
        list->SetFocus();
    }
}

// One thing at a time, the nearest first.
bool CGUIRomBrowser::TakeBack() {
    if (scan.TakeBack()) {
        return true;
    }
    if (filters.Menu()->IsVisible()) {
        filters.CloseMenu();
        list->SetFocus();
        return true;
    }
    return LeaveName();
}

// Who looks for a name first wants another one, and then none.
bool CGUIRomBrowser::LeaveName() {
    CGhostEdit* const name = filters.Name();
    if (CGhostManager::Get().FocusWindow() != name->window) {
        return false;
    }
    if (name->Text().empty()) {
        list->SetFocus();
    } else {
        filters.ClearName();
    }
    return true;
}
