#include "host/session_saves.h"

#include "host/report.h"
#include "host/session.h"
#include "host/session_list.h"
#include "machine/battery.h"
#include "settings/settings.h"

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

// Calls `keep` for every session. Each is pinned alone: nobody who stops a session waits for the disk of another.
void ForEachPinned(void (*keep)(EMU_THREAD&)) {
    std::vector<uint32_t> keys;
    for (const SessionPin& session : PinSessions()) {
        keys.push_back(session->key);
    }
    for (const uint32_t key : keys) {
        if (const SessionPin session = PinSession(key); session != nullptr) {
            keep(*session);
        }
    }
}

} // namespace

bool SessionLoadSaves(EMU_THREAD& session, SESSION_RESUME&& resume) {
    CBattery* const memory = MemoryOf(session);
    if (memory != nullptr) {
        BatteryLoad(session.battery, *memory);
    }
    bool loaded = false;
    if (!resume.state.empty()) {
        loaded = EmuGiveState(session, resume.state);
        if (!loaded) {
            EmuSetLastError("the machine cannot go on from the state");
            return false;
        }
    } else if (AutosaveWanted(kAutosaveLoad)) {
        loaded = EmuLoadFromArchive(session);
        session.fromAutosave = loaded;
    }
    if (loaded && memory != nullptr) {
        BatteryPutBack(session.battery, *memory);
    }
    if (loaded) {
        session.battery.rolledBack = false; // this session has not written anything yet
    }
    ResumeBegin(session.resume, std::move(resume));
    return true;
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

std::optional<STATE_SNAPSHOT> SessionTakeResume(EMU_THREAD& session) {
    STATE_SNAPSHOT snapshot;
    if (session.resume.path.empty() || session.machine->ended ||
        !EmuTakeSnapshot(session, snapshot)) {
        return std::nullopt;
    }
    return snapshot;
}

void SessionEndResume(EMU_THREAD& session, bool goesOn, std::optional<STATE_SNAPSHOT>&& resume) {
    if (!goesOn || session.machine->ended) {
        ResumeDelete(session.resume);
    } else if (resume) {
        ResumeWrite(session.resume, std::move(*resume));
    }
}

void EmuKeepBatteries() {
    ForEachPinned(KeepBattery);
}

void EmuKeepResumeFiles() {
    ForEachPinned([](EMU_THREAD& session) {
        if (std::optional<STATE_SNAPSHOT> snapshot = SessionTakeResume(session)) {
            ResumeWrite(session.resume, std::move(*snapshot));
        }
    });
}
