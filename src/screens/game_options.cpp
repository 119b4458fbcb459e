#include "screens/game_options.h"

#include "base/text.h"
#include "facts/game_gear_facts.h"
#include "facts/mega_drive_facts.h"
#include "facts/sms_facts.h"
#include "formats/game_file.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/manager.h"
#include "gui/text_box.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <mutex>

namespace {

// Units.
constexpr int32_t kHeight = 25;
constexpr int32_t kListHeight = 260; // of an open list

std::wstring Wide(const char* text) {
    return WideFromUtf8(text);
}

} // namespace

CGameOptions::CGameOptions(GHOSTMANAGER_WINDOW* panelWindow, uint16_t machineSystem)
    : parent(panelWindow)
    , system(machineSystem) {}

CGameOptions::~CGameOptions() {
    for (GHOSTMANAGER_WINDOW* const window : windows) {
        CGhostManager::Get().DestroyWindow(window);
    }
}

const MACHINE_OPTION& CGameOptions::OptionAt(size_t offset) const {
    const auto options = FindMachineFacts(system)->options;
    const auto found =
        std::find_if(options.begin(), options.end(),
                     [&](const MACHINE_OPTION& option) { return option.offset == offset; });
    assert(found != options.end());
    return *found;
}

CGhostTextBox* CGameOptions::AddLabel(const std::wstring& text) {
    auto* const label = new CGhostTextBox(parent, 0, L"TEXT_RIGHT", text, {});
    Own(label->window);
    return label;
}

CGhostDropList* CGameOptions::AddDropList(const std::wstring& toolTip) {
    auto* const list = new CGhostDropList(parent, 0, L"DROPLIST", L"", kListHeight, {});
    list->SetToolTip(toolTip);
    Own(list->window);
    return list;
}

CGameOptions::LIST& CGameOptions::AddList(size_t offset, const std::wstring& toolTip) {
    const MACHINE_OPTION& option = OptionAt(offset);
    lists.push_back(std::make_unique<LIST>());
    LIST& row = *lists.back();
    row.option = &option;
    row.label = AddLabel(Wide(option.label));
    row.list = AddDropList(toolTip);
    for (const OPTION_VALUE& value : option.values) {
        if (value.label != nullptr) {
            row.list->AddItem(Wide(value.label));
            row.bytes.push_back(value.byte);
        }
    }
    Choose(row, option.initial);
    return row;
}

CGameOptions::BOX& CGameOptions::AddBox(size_t offset, const std::wstring& toolTip) {
    const MACHINE_OPTION& option = OptionAt(offset);
    boxes.push_back(std::make_unique<BOX>());
    BOX& row = *boxes.back();
    row.option = &option;
    row.box = new CGhostCheckBox(parent, 0, L"CHECKBOX", Wide(option.label), 0, {});
    row.box->SetToolTip(toolTip);
    row.box->SetChecked(option.initial != 0);
    Own(row.box->window);
    return row;
}

void CGameOptions::Place(const LIST& list, int32_t x, int32_t y, int32_t labelWidth, int32_t listX,
                         int32_t listWidth) {
    list.label->SetPos(x, y, labelWidth, kHeight);
    list.list->SetPos(listX, y, listWidth, kHeight);
}

void CGameOptions::Choose(const LIST& list, uint8_t byte) {
    const auto found = std::find(list.bytes.begin(), list.bytes.end(), byte);
    list.list->SetSelected(
        found != list.bytes.end() ? static_cast<int32_t>(found - list.bytes.begin()) : 0, false);
}

void CGameOptions::GetConfig(std::filesystem::path& biosName, uint32_t& biosIndex,
                             OptionBlock& bytes) {
    biosName.clear();
    biosIndex = 0;
    for (const auto& row : lists) {
        const int32_t chosen = row->list->Selected();
        if (chosen >= 0 && static_cast<size_t>(chosen) < row->bytes.size()) {
            bytes[row->option->offset] = row->bytes[static_cast<size_t>(chosen)];
        }
    }
    for (const auto& row : boxes) {
        bytes[row->option->offset] = row->box->IsChecked() ? 1 : 0;
    }
}

void CGameOptions::ConfigureForGame(const CGameFile& /*game*/, uint32_t /*index*/) {}

void CGameOptions::SetVisible(bool visible) {
    for (GHOSTMANAGER_WINDOW* const window : windows) {
        CGhostManager::Get().ShowWindow(window, visible);
    }
}

// ---- Master System.

CGUISMSOptions::CGUISMSOptions(GHOSTMANAGER_WINDOW* panelWindow)
    : CGameOptions(panelWindow, kSystemMasterSystem) {
    console =
        &AddList(kSmsConsoleAt,
                 L"The console that the game runs on: its speed, its colours and its region.");
    biosLabel = AddLabel(L"BIOS:");
    bios = AddDropList(L"The program that a console of your own starts with, before the game.");
    inputs[0] = &AddList(kSmsPort1At, L"What is plugged into the first port.");
    inputs[1] = &AddList(kSmsPort2At, L"What is plugged into the second port.");
    glasses = &AddBox(kSmsGlassesAt,
                      L"Shows each eye's picture in turn, as the shutter glasses need it.");
    fmChip =
        &AddBox(kSmsFmChipAt, L"Fits the FM sound chip, which many games play richer music on.");
    bios->AddItem(L"None");
    bios->SetSelected(0, false);
    Layout();
}

void CGUISMSOptions::Clear() {
    const std::scoped_lock held(lock);
    foundBioses.clear();
    news = true;
}

void CGUISMSOptions::SetGame(const std::filesystem::path& path, const CGameFile& game) {
    constexpr uint8_t kConsoleBios = 3;
    for (uint32_t index = 0; index < game.NameCount(); ++index) {
        const uint8_t* bytes = nullptr;
        uint32_t length = 0;
        SMS_RECORD record{};
        NAME_VIEW name;
        if (!game.GetMachineRecord(index, bytes, length) || length != sizeof record ||
            !game.GetName(index, name)) {
            continue;
        }
        std::memcpy(&record, bytes, sizeof record);
        if (record.kind == kConsoleBios) {
            const std::scoped_lock held(lock);
            foundBioses.push_back({path, index, WideFromUtf8(name.title)});
            news = true;
        }
    }
}

void CGUISMSOptions::Update() {
    {
        const std::scoped_lock held(lock);
        if (!news) {
            return;
        }
        news = false;
        shownBioses = foundBioses;
    }
    const std::wstring before = bios->Caption();
    bios->Clear();
    bios->AddItem(L"None");
    int32_t chosen = 0;
    for (const BIOS& found : shownBioses) {
        const int32_t row = bios->AddItem(found.title);
        if (found.title == before) {
            chosen = row;
        }
    }
    bios->SetSelected(chosen, false);
}

void CGUISMSOptions::GetConfig(std::filesystem::path& biosName, uint32_t& biosIndex,
                               OptionBlock& bytes) {
    CGameOptions::GetConfig(biosName, biosIndex, bytes);
    const int32_t chosen = bios->Selected() - 1;
    if (chosen >= 0 && static_cast<size_t>(chosen) < shownBioses.size()) {
        const BIOS& found = shownBioses[static_cast<size_t>(chosen)];
        biosName = found.path;
        biosIndex = found.index;
    }
}

// Of a game that no database knows, or that has no record, nothing is known, so everything is allowed.
void CGUISMSOptions::ConfigureForGame(const CGameFile& game, uint32_t index) {
    const uint8_t* bytes = nullptr;
    uint32_t length = 0;
    SMS_RECORD record{};
    NAME_RECORD name{};
    const bool recorded = game.GetMachineRecord(index, bytes, length) &&
                          length == sizeof record && game.GetRawName(index, name);
    if (recorded) {
        std::memcpy(&record, bytes, sizeof record);
    }
    const bool unknown = !recorded || name.reserved4 == 1;
    const auto allow = [&](const BOX& row, SmsFeature feature) {
        const bool has = (record.features & feature) != 0;
        row.box->SetEnabled(has || unknown);
        row.box->SetChecked(has);
    };
    allow(*glasses, kSmsFeatureGlasses);
    allow(*fmChip, kSmsFeatureFm);
    constexpr uint32_t kEveryDevice = 0xFF;
    const uint32_t presets[kMachinePlayers] = {record.input1, record.input2};
    for (size_t port = 0; port < kMachinePlayers; ++port) {
        AllowDevices(port, unknown ? kEveryDevice : presets[port]);
        if (unknown) {
            Choose(*inputs[port], static_cast<uint8_t>(presets[port]));
        }
    }
}

// Devices are bits. The first one that is allowed is chosen; a record that allows none has the joypad.
void CGUISMSOptions::AllowDevices(size_t port, uint32_t devices) {
    const LIST& row = *inputs[port];
    const uint32_t allowed = (devices & 0xFF) != 0 ? devices : OptionByte(PadDevice::kJoypad);
    int32_t first = -1;
    for (size_t i = 0; i < row.bytes.size(); ++i) {
        const bool fits = (row.bytes[i] & allowed) != 0;
        const auto item = static_cast<int32_t>(i);
        row.list->Item(item)->flags = fits ? 0 : GHOSTLIST_ITEM::kDisabled;
        first = first < 0 && fits ? item : first;
    }
    row.list->SetSelected(std::max(first, 0), false);
}

void CGUISMSOptions::Layout() {
    Place(*console, 0, 10, 70, 80, 150);
    biosLabel->SetPos(230, 10, 60, kHeight);
    bios->SetPos(300, 10, 380, kHeight);
    Place(*inputs[0], 0, 45, 70, 80, 260);
    Place(*inputs[1], 345, 45, 70, 420, 260);
    glasses->box->SetPos(80, 80, 110, kHeight);
    fmChip->box->SetPos(190, 80, 110, kHeight);
}

// ---- Mega Drive.

CGUIMDOptions::CGUIMDOptions(GHOSTMANAGER_WINDOW* panelWindow)
    : CGameOptions(panelWindow, kSystemMegaDrive) {
    AddList(kMdConsoleAt,
            L"The console that the game runs on; by itself the program reads it from the game.");
    AddList(kMdPort1At, L"What is plugged into the first port.");
    AddList(kMdPort2At, L"What is plugged into the second port.");
    Layout();
}

void CGUIMDOptions::Layout() {
    Place(*lists[0], 0, 10, 70, 80, 260);
    Place(*lists[1], 0, 45, 70, 80, 260);
    Place(*lists[2], 345, 45, 70, 420, 260);
}

// ---- Game Gear.

CGUIGGOptions::CGUIGGOptions(GHOSTMANAGER_WINDOW* panelWindow)
    : CGameOptions(panelWindow, kSystemGameGear) {
    AddList(kGearModelAt, L"The region of the console, which some games choose their language by.");
    AddList(kGearLinkAt, L"Plays on two consoles that are joined by the cable, side by side.");
    AddList(kGearFullDisplayAt,
            L"Shows the whole picture and not only the part on the small screen.");
    Layout();
}

void CGUIGGOptions::Layout() {
    Place(*lists[0], 0, 10, 130, 140, 200);
    Place(*lists[1], 0, 45, 130, 140, 200);
    Place(*lists[2], 345, 45, 110, 465, 215);
}

std::unique_ptr<CGameOptions> MakeGameOptions(uint16_t system, GHOSTMANAGER_WINDOW* panelWindow) {
    switch (system) {
    case kSystemMasterSystem: return std::make_unique<CGUISMSOptions>(panelWindow);
    case kSystemGameGear: return std::make_unique<CGUIGGOptions>(panelWindow);
    case kSystemMegaDrive: return std::make_unique<CGUIMDOptions>(panelWindow);
    default: return nullptr;
    }
}
