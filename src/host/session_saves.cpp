#include "host/session_saves.h"

#include "host/session.h"
#include "host/session_list.h"
#include "machine/battery.h"
#include "settings/settings.h"

#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t kAutosaveLoad = 1; // bits of emu_autosaves
constexpr uint32_t kAutosaveSave = 2;

bool AutosaveWanted(uint32_t bit) {
    return (static_cast<uint32_t>(Settings().GetInt(L"emu_autosaves")) & bit) != 0;
}

// Null for a machine without memory of its own.
CBattery* MemoryOf(const EMU_THREAD& session) {
    return dynamic_cast<CBattery*>(session.machine.get());
}

void KeepBattery(EMU_THREAD& session) {
    const CBattery* const memory = MemoryOf(session);
    if (memory == nullptr) {
        return;
    }
    std::optional<BATTERY_WRITE> write;
    {
        const SessionHold hold(session);
        write = BatteryDue(session.battery, memory->BatteryContents());
    }
    if (write) {
        const bool written = BatteryWrite(*write);
        const SessionHold hold(session);
        BatteryWritten(session.battery, std::move(*write), written);
    }
}

} // namespace

void SessionLoadSaves(EMU_THREAD& session) {
    CBattery* const memory = MemoryOf(session);
    if (memory != nullptr) {
        BatteryLoad(session.battery, *memory);
    }
    if (!AutosaveWanted(kAutosaveLoad) || !EmuLoadFromArchive(session)) {
        return;
    }
    if (memory != nullptr) {
        BatteryPutBack(session.battery, *memory);
    }
    session.battery.rolledBack = false; // this session has not written anything yet
}

TAKEN_STATE SessionTakeAutosave(EMU_THREAD& session) {
    // A machine that cannot go on would only end again when resumed.
    if (!AutosaveWanted(kAutosaveSave) || session.machine->ended) {
        return {};
    }
    return EmuTakeState(session);
}

void SessionSaveBattery(EMU_THREAD& session) {
    if (const CBattery* const memory = MemoryOf(session); memory != nullptr) {
        BatterySave(session.battery, *memory);
    }
}

void EmuKeepBatteries() {
    std::vector<uint32_t> keys;
    for (const SessionPin& session : PinSessions()) {
        keys.push_back(session->key);
    }
    // Pinned one at a time: nobody who stops a session waits for the disk of another.
    for (const uint32_t key : keys) {
        if (const SessionPin session = PinSession(key); session != nullptr) {
            KeepBattery(*session);
        }
    }
}
