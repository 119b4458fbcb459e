// CGUIRomBrowser: the games of a system, and what is known of the chosen one.
//
// It is made once and then shown and hidden; the scan of the folder goes on while it is hidden. The games are
// those of the catalogue, in whose order the systems come. A row of the list is made when it is seen, and the pictures
// of the chosen game are read on a thread of their own (media_reader.h), so that no frame waits for a long list or a
// large picture.
//
// Thread: main. Units: those of the virtual screen, within the main window's client area.
#pragma once

#include "library/catalogue.h"
#include "library/library_index.h"
#include "library/player_database.h"
#include "screens/browser_filters.h"
#include "screens/content_area.h"
#include "screens/game_options.h"
#include "screens/media_reader.h"
#include "screens/scan_window.h"
#include "screens/screen_panel.h"
#include "screens/system_switcher.h"
#include "web/download_list.h"
#include "web/service_texts.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

class CGhostListView;
class CGhostWindowEx;
class KeyLine;
class ScreenHost;
struct GHOSTLISTVIEW_ITEM;

class CGUIRomBrowser final : public CGUIPanel {
public:
    CGUIRomBrowser(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program);
    ~CGUIRomBrowser() override;

    // Shows or hides everything. With the first time the system of the setting is scanned.
    void SetActive(bool active);
    [[nodiscard]] bool IsActive() const { return active; }

    // Picks a system: `index` 0 to 4, or -1 and a direction, -1 or +1; with 0 and -1 that of the setting. Does
    // nothing while a scan runs.
    void SelectSystem(int direction, int32_t index);

    // These machines have new games. The list is read anew when it is shown, for the system that it shows if that is
    // one of them, or else for the first of them.
    void LibraryChanged(const std::vector<uint16_t>& systems);
    // The system that the next browser shows first.
    static void ShowFirst(uint16_t system);

    void Layout(int32_t width, int32_t height) override;
    void Update() override;
    void TakeFocus() override;
    [[nodiscard]] bool TakeBack() override; // what a scan tells, the filters, the name to look for

    // As the button START GAME.
    void StartSelected();
    // Puts a star on the chosen game, or takes it off.
    void ToggleFavourite();

    [[nodiscard]] Catalogue& Library() { return catalogue; }
    [[nodiscard]] MediaReader& Media() { return mediaReader; }
    [[nodiscard]] CGhostListView* List() const { return list; }
    [[nodiscard]] BrowserFilters& Filters() { return filters; }
    [[nodiscard]] ContentArea& Content() { return content; }
    [[nodiscard]] SystemSwitcher& Switcher() { return switcher; }
    [[nodiscard]] ScanWindow& Scan() { return scan; }
    [[nodiscard]] CGameOptions* Options() const { return options.get(); }
    [[nodiscard]] const KeyLine& Keys() const { return *keys; }
    [[nodiscard]] const CGhostTextBox& NoOptions() const { return *noOptions; }
    [[nodiscard]] const CGhostTextBox& Hint() const { return *empty; }
    [[nodiscard]] CGhostButton* StartButton() const { return start; }
    [[nodiscard]] CGhostButton* StarButton() const { return star; }
    [[nodiscard]] CGhostButton* RoomButton() const { return gameRoom; }
    [[nodiscard]] CGhostButton* MenuButton() const { return mainMenu; }
    [[nodiscard]] CGhostDropList* Saves() const { return saves; }

private:
    [[nodiscard]] CATALOGUE_HOOKS Hooks();
    void MakeList();
    void MakePanel(uint16_t system);
    void ClearPanes();
    void FillList();
    void ShowKeys();
    void PlaceHint();
    void FillRow(const GameListRow& row, std::span<GHOSTLISTVIEW_ITEM> cells) const;
    void ShowCount();
    void Choose(const GameListRow* row);
    void ReadMeta(const GameListRow& row, const CGameFile& game);
    void ShowPlayed();
    void ShowStar();
    [[nodiscard]] std::vector<const GameListRow*> ChooseRows();
    void PutInOrder(std::vector<const GameListRow*>& found) const;
    [[nodiscard]] PLAYER_RECORD PlayedOf(const GameListRow& row) const;
    void AskForMedia(const GameListRow& row);
    void DropOldMedia();
    void ShowMedia(GAME_MEDIA media);
    void ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet);
    void ShowTexts(const GAME_INFORMATION& information);
    [[nodiscard]] std::filesystem::path MediaOf(const GameListRow& row) const;
    [[nodiscard]] bool IsChosen(uint16_t system, const std::wstring& key) const;
    void AskAboutGame(const GameListRow& row);
    void TakeInformation(const GAME_INFORMATION& information);
    void FetchContent();
    void StoreContent(const std::wstring& error, std::span<const uint8_t> archive,
                      int32_t revision);
    [[nodiscard]] const GameListRow* RowOf(int32_t listRow) const;
    void StoreSaves();
    [[nodiscard]] bool LeaveName();

    ScreenHost& host;
    SystemSwitcher switcher;
    BrowserFilters filters;
    CGhostListView* list;
    CGhostTextBox* empty; // over the list where it has no games
    CGhostWindowEx* optionsWindow;
    CGhostTextBox* noOptions; // on a machine without
    KeyLine* keys;            // that play the machine
    ContentArea content;
    CGhostButton* start;
    CGhostButton* star;
    CGhostButton* gameRoom;
    CGhostButton* mainMenu;
    CGhostTextBox* savesLabel;
    CGhostDropList* saves;
    std::unique_ptr<CGameOptions> options;
    ScanWindow scan;
    bool active = false;
    bool scanned = false;      // the first scan has begun
    bool applyFilters = false; // with the next Update
    int32_t readAnew = -1;     // the index of the system to scan when it can be; -1: none
    std::vector<const GameListRow*> listRows; // of the list, in its order; the catalogue's
    ShownGames listed = ShownGames::kAll;     // those that they are of
    const GameListRow* chosen = nullptr;
    std::wstring hint;     // tells how to add games, or that the filters let none through
    std::wstring metaHead; // of the chosen game: what comes before and after the times played
    std::wstring metaTail;
    std::optional<GAME_INFORMATION> localTexts; // in the chosen game's archive
    int32_t offeredRevision = 0;                // of its pictures on the service
    std::optional<GAME_INFORMATION> told;       // by the service about the chosen game
    bool failed = false;                        // it could not
    bool oldMedia = false;                      // what is shown is of the game before
    uint64_t mediaAsked = 0;                    // milliseconds of the host's clock
    AbortWord abandoned = std::make_shared<std::atomic<uint32_t>>(0);
    MediaReader mediaReader;
    LibraryIndex libraryIndex;
    Catalogue catalogue; // last: its worker calls the panel
};
