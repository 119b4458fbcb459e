// CGameOptions: the options of a system's machine, beside the list of its games. What the player chooses here goes
// into the option block of the game that he starts.
//
// The lists and boxes of a panel are rows of the machine's facts (`facts/machine_facts.h`), which say the label,
// the values and the byte of each.
// Thread: main, but for Clear and SetGame, which a scan's worker calls too; what they change is shown by Update.
// Lifetime: its owner deletes it, and that destroys its windows.
#pragma once

#include "base/ranked_mutex.h"
#include "facts/machine_facts.h"
#include "machines/machine_options.h"
#include "screens/screen_panel.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class CGameFile;
class CGhostCheckBox;
class CGhostDropList;
class CGhostTextBox;

class CGameOptions {
public:
    virtual ~CGameOptions();
    // A scan begins: what SetGame has collected is forgotten.
    virtual void Clear() {}
    // A game of the folder, found by the scan.
    virtual void SetGame(const std::filesystem::path& /*path*/, const CGameFile& /*game*/) {}
    // Fills the option block. A second game that the machine needs, such as a BIOS, is named by its file and the
    // index of its NAME record; without one the name stays empty.
    virtual void GetConfig(std::filesystem::path& biosName, uint32_t& biosIndex,
                           OptionBlock& bytes);
    // The player has chosen a game: presets, and only what its record allows.
    virtual void ConfigureForGame(const CGameFile& game, uint32_t index);
    virtual void Layout() = 0;
    virtual void SetVisible(bool visible);

    // Once a round, before the toolkit's tick.
    virtual void Update() {}

protected:
    // The controls go into this window, in coordinates of its client area.
    CGameOptions(GHOSTMANAGER_WINDOW* panelWindow, uint16_t machineSystem);

    struct LIST {
        const MACHINE_OPTION* option;
        CGhostTextBox* label;
        CGhostDropList* list;
        std::vector<uint8_t> bytes; // of the items
    };
    struct BOX {
        const MACHINE_OPTION* option;
        CGhostCheckBox* box;
    };

    // Makes the control of the option that lies at this byte.
    LIST& AddList(size_t offset, const std::wstring& toolTip);
    BOX& AddBox(size_t offset, const std::wstring& toolTip);
    static void Place(const LIST& list, int32_t x, int32_t y, int32_t labelWidth, int32_t listX,
                      int32_t listWidth);
    // Chooses the item of a byte, the first one if there is none.
    static void Choose(const LIST& list, uint8_t byte);
    [[nodiscard]] CGhostTextBox* AddLabel(const std::wstring& text);
    [[nodiscard]] CGhostDropList* AddDropList(const std::wstring& toolTip);

    GHOSTMANAGER_WINDOW* const parent;
    const uint16_t system;
    std::vector<std::unique_ptr<LIST>> lists;
    std::vector<std::unique_ptr<BOX>> boxes;
    ScreenSignals signals;

private:
    [[nodiscard]] const MACHINE_OPTION& OptionAt(size_t offset) const;
    void Own(GHOSTMANAGER_WINDOW* window) { windows.push_back(window); }

    std::vector<GHOSTMANAGER_WINDOW*> windows;
};

// The panel of a system in this window; null for one without options, as the arcade and the NES.
[[nodiscard]] std::unique_ptr<CGameOptions> MakeGameOptions(uint16_t system,
                                                            GHOSTMANAGER_WINDOW* panelWindow);

// `Console:`, `BIOS:`, `INPUT 1:`, `INPUT 2:`, 3D glasses and FM chip.
class CGUISMSOptions final : public CGameOptions {
public:
    explicit CGUISMSOptions(GHOSTMANAGER_WINDOW* panelWindow);

    void Clear() override;
    void SetGame(const std::filesystem::path& path,
                 const CGameFile& game) override; // keeps a console's BIOS
    void GetConfig(std::filesystem::path& biosName, uint32_t& biosIndex,
                   OptionBlock& bytes) override;
    void ConfigureForGame(const CGameFile& game, uint32_t index) override;
    void Layout() override;
    void Update() override;

    [[nodiscard]] CGhostDropList* Console() const { return console->list; }
    [[nodiscard]] CGhostDropList* Bios() const { return bios; }
    [[nodiscard]] CGhostDropList* Input(size_t port) const { return inputs[port]->list; }
    [[nodiscard]] CGhostCheckBox* Glasses() const { return glasses->box; }
    [[nodiscard]] CGhostCheckBox* FmChip() const { return fmChip->box; }

private:
    struct BIOS {
        std::filesystem::path path;
        uint32_t index = 0; // of its NAME record
        std::wstring title;
    };
    void AllowDevices(size_t port, uint32_t devices);

    const LIST* console = nullptr;
    const LIST* inputs[kMachinePlayers] = {};
    const BOX* glasses = nullptr;
    const BOX* fmChip = nullptr;
    CGhostTextBox* biosLabel = nullptr;
    CGhostDropList* bios = nullptr;
    std::vector<BIOS> shownBioses; // in the order of the list, whose first row is none of them

    RankedMutex<LockRank::kLeaf> lock;
    std::vector<BIOS> foundBioses; // under `lock`
    bool news = false;             // under `lock`
};

// `Console:`, `INPUT 1:`, `INPUT 2:`.
class CGUIMDOptions final : public CGameOptions {
public:
    explicit CGUIMDOptions(GHOSTMANAGER_WINDOW* panelWindow);
    void Layout() override;

    [[nodiscard]] CGhostDropList* Console() const { return lists[0]->list; }
    [[nodiscard]] CGhostDropList* Input(size_t port) const { return lists[1 + port]->list; }
};

// `GameGear Model:`, `Gear-To-Gear:`, `Full Display:`.
class CGUIGGOptions final : public CGameOptions {
public:
    explicit CGUIGGOptions(GHOSTMANAGER_WINDOW* panelWindow);
    void Layout() override;

    [[nodiscard]] CGhostDropList* Model() const { return lists[0]->list; }
    [[nodiscard]] CGhostDropList* Link() const { return lists[1]->list; }
    [[nodiscard]] CGhostDropList* FullDisplay() const { return lists[2]->list; }
};
