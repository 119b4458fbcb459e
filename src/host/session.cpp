#include "host/session.h"

#include "base/files.h"
#include "base/text.h"
#include "host/archive.h"
#include "host/battery_file.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/rewind.h"
#include "host/session_private.h"

#include "formats/game_file.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace {

constexpr uint32_t kAutosaveLoad = 1; // bits of emu_autosaves
constexpr uint32_t kAutosaveSave = 2;

EMU_HOST_CALLBACKS gHost{};
EMU_THREAD* gSessions = nullptr; // under the list lock
std::atomic<uint32_t> gLastSerial{0};
std::atomic<uint32_t> gRunningThreads{0};
std::atomic<uint32_t> gSoundGapMs{0};
std::atomic<SESSION_REPORT_HOOK> gReport{nullptr};

// Real time, not the clock that pacing may run on: another thread is waited for.
void SleepMillisecond() {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

bool HostIsComplete() {
    return gHost.open != nullptr && gHost.close != nullptr && gHost.getVideoFrame != nullptr &&
           gHost.present != nullptr && gHost.submitAudio != nullptr && gHost.getInput != nullptr &&
           gHost.threadStart != nullptr && gHost.threadEnd != nullptr;
}

uint32_t Autosaves() {
    return static_cast<uint32_t>(Settings().GetInt(L"emu_autosaves"));
}

void Report(SessionReport what, const EMU_THREAD& session) {
    if (const SESSION_REPORT_HOOK hook = gReport.load(); hook != nullptr) {
        hook(what, session.system, session.gameName);
    }
}

EMU_THREAD* FindByKey(uint32_t key) {
    EMU_THREAD* session = gSessions;
    while (session != nullptr && session->key != key) {
        session = session->next;
    }
    return session;
}

bool IsListed(uint32_t serial) {
    for (const EMU_THREAD* session = gSessions; session != nullptr; session = session->next) {
        if (session->serial == serial) {
            return true;
        }
    }
    return false;
}

void Unlink(const EMU_THREAD* session) {
    EMU_THREAD** link = &gSessions;
    while (*link != session) {
        link = &(*link)->next;
    }
    *link = session->next;
}

// The first six bytes of the image's hash. A game without such an image is told by the hash of its
// header, as arcade games are everywhere else.
std::string StateEntryName(const CGameFile& game) {
    const uint8_t* identity = game.SelectedRomHash();
    if (identity == nullptr) {
        identity = game.Header().headerHash;
    }
    return LowerAscii(HexText(std::span(identity, 6)));
}

// A title becomes a plain file name first, so that no game can put its saves outside the folder.
std::string ArchivePath(const char* folder, const std::string& gameName) {
    return LowerAscii(std::string(folder) + "\\saves\\" + FileNameFromTitle(gameName) + ".zip");
}

// Puts the session at the head of the list and starts its thread. False when there is no thread to
// be had; the session is then in no list. Under the list lock.
bool Launch(EMU_THREAD* session) {
    session->next = gSessions;
    gSessions = session;
    ++gRunningThreads;
    try {
        std::thread(EmuThreadMain, session).detach();
    } catch (const std::exception& error) {
        --gRunningThreads;
        Unlink(session);
        EmuSetLastError(std::string("no thread can be started: ") + error.what());
        return false;
    }
    return true;
}

void WaitUntilGone(uint32_t serial) {
    while (true) {
        {
            const std::scoped_lock hold(SessionListLock());
            if (!IsListed(serial)) {
                return;
            }
        }
        SleepMillisecond();
    }
}

// The thread has acknowledged and the caller alone still stops this session.
void Free(EMU_THREAD* session) {
    const std::scoped_lock hold(SessionListLock());
    gHost.close(session);
    session->machine.reset();
    RewindClear(*session);
    Unlink(session);
    delete session; // NOLINT(cppcoreguidelines-owning-memory): the list holds bare records
}

} // namespace

EMU_THREAD::EMU_THREAD() = default;

EMU_THREAD::~EMU_THREAD() {
    RewindClear(*this);
}

SessionListMutex& SessionListLock() {
    static auto* lock = new SessionListMutex;
    return *lock;
}

const EMU_HOST_CALLBACKS& SessionHost() {
    return gHost;
}

void SessionThreadEnded() {
    --gRunningThreads;
}

uint32_t EmuRunningThreads() {
    return gRunningThreads;
}

void EmuSetSessionReport(SESSION_REPORT_HOOK hook) {
    gReport = hook;
}

void EmuSetHost(const EMU_HOST_CALLBACKS& callbacks) {
    gHost = callbacks;
    if (EmuMachines().buildTables != nullptr) {
        EmuMachines().buildTables();
    }
}

std::unique_ptr<EMU_THREAD> EmuCreateSession(uint32_t key, CGameFile* const games[2],
                                             const void* options, const std::string& gameName) {
    if (games == nullptr || games[0] == nullptr) {
        EmuSetLastError("no game was given");
        return nullptr;
    }
    const CGameFile& game = *games[0];
    const uint32_t system = game.Header().system;
    const MACHINE_ENTRY* const entry = EmuFindMachine(system);
    if (entry == nullptr) {
        EmuSetLastError("system number " + std::to_string(system) + " selects no machine");
        return nullptr;
    }
    std::unique_ptr<CEmuSystem> machine = entry->construct(key);
    if (!machine) {
        EmuSetLastError("the machine cannot be made");
        return nullptr;
    }
    EmuSetLastError({});
    if (!machine->Init(options, games)) {
        return nullptr;
    }
    auto session = std::make_unique<EMU_THREAD>();
    session->serial = ++gLastSerial;
    session->key = key;
    session->machine = std::move(machine);
    session->system = system;
    session->gameName = gameName;
    session->frameWidth = session->machine->width;
    session->frameHeight = session->machine->height;
    session->archivePath = ArchivePath(entry->folder, gameName);
    session->stateEntryName = StateEntryName(game);
    return session;
}

uint32_t EmuStartSession(uint32_t key, CGameFile* const games[2], const void* options,
                         const std::string& gameName) {
    if (!HostIsComplete()) {
        EmuSetLastError("no host is installed");
        return 0;
    }
    if (games == nullptr || games[0] == nullptr) {
        EmuSetLastError("no game was given");
        return 0;
    }
    std::unique_lock<SessionListMutex> list(SessionListLock(), std::defer_lock);
    while (true) {
        EmuStopSession(key);
        list.lock();
        if (FindByKey(key) == nullptr) {
            break;
        }
        // Another thread has started a game here since the stop.
        list.unlock();
    }
    std::unique_ptr<EMU_THREAD> session = EmuCreateSession(key, games, options, gameName);
    if (!session) {
        return 0;
    }
    Report(SessionReport::kStarted, *session);
    EmuLoadBattery(*session);
    if ((Autosaves() & kAutosaveLoad) != 0 && EmuLoadFromArchive(*session)) {
        EmuBatteryAfterState(*session);
    }
    const uint32_t serial = session->serial;
    if (!Launch(session.get())) {
        Report(SessionReport::kEnded, *session);
        return 0;
    }
    session.release(); // NOLINT(bugprone-unused-return-value): the list owns it now
    return serial;
}

bool EmuStopSession(uint32_t key) {
    EMU_THREAD* session = nullptr;
    uint32_t stoppedElsewhere = 0;
    {
        const std::scoped_lock list(SessionListLock());
        session = FindByKey(key);
        if (session == nullptr) {
            return false;
        }
        if (session->stopping) {
            stoppedElsewhere = session->serial;
        } else {
            session->stopping = true;
            const SessionHold hold(*session);
            if ((Autosaves() & kAutosaveSave) != 0 && !session->machine->ended) {
                EmuSaveToArchive(*session);
            }
            session->stopRequested = 1;
        }
    }
    if (stoppedElsewhere != 0) {
        WaitUntilGone(stoppedElsewhere);
        return true;
    }
    Report(SessionReport::kEnded, *session);
    while (session->stopRequested != 0) {
        SleepMillisecond();
    }
    // The thread may have run one more frame since the request.
    EmuSaveBattery(*session);
    Free(session);
    return true;
}

bool EmuResetSession(uint32_t key) {
    const std::scoped_lock list(SessionListLock());
    EMU_THREAD* const session = FindByKey(key);
    if (session == nullptr) {
        return false;
    }
    const SessionHold hold(*session);
    session->machine->Reset();
    return true;
}

void EmuForEachSession(const std::function<void(EMU_THREAD&)>& visit) {
    const std::scoped_lock list(SessionListLock());
    for (EMU_THREAD* session = gSessions; session != nullptr; session = session->next) {
        if (session->hostData != nullptr) {
            visit(*session);
        }
    }
}

std::string EmuFormatStats() {
    const std::scoped_lock list(SessionListLock());
    const EMU_THREAD* const session = FindByKey(InputActiveKey());
    if (session == nullptr) {
        return {};
    }
    const auto number = [](uint32_t value) { return static_cast<int>(value); };
    char text[160];
    std::snprintf(text, sizeof text,
                  "Sound Repos %d | SoundBuffer %d, Sound Min %d | Frames Missed %d | dw1=%d",
                  number(session->soundRepositions), number(session->soundBytes),
                  number(EmuSoundGapMs()), number(session->framesMissed),
                  number(session->machine->debugValue));
    return text;
}

void EmuRaiseSoundGap(uint32_t milliseconds) {
    uint32_t seen = gSoundGapMs;
    while (milliseconds > seen && !gSoundGapMs.compare_exchange_weak(seen, milliseconds)) {
    }
}

uint32_t EmuSoundGapMs() {
    return gSoundGapMs;
}
