#include "host/session.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/game_file.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/session_list.h"
#include "host/session_private.h"
#include "host/session_saves.h"
#include "host/turns.h"

#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace {

using KeyTurn = Turn<uint32_t, LockRank::kSessionKey>;

EMU_HOST_CALLBACKS gHost{};
std::atomic<uint32_t> gRunningThreads{0};
std::atomic<SESSION_REPORT_HOOK> gReport{nullptr};

// Held for the whole of a start or stop, so that a key never has two sessions.
Turns<uint32_t, LockRank::kSessionKey>& Keys() {
    static auto* keys = new Turns<uint32_t, LockRank::kSessionKey>;
    return *keys;
}

// Real time, not the replaceable clock of pacing: this waits for another thread.
void SleepMillisecond() {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

bool HostIsComplete() {
    return gHost.open != nullptr && gHost.close != nullptr && gHost.getVideoFrame != nullptr &&
           gHost.present != nullptr && gHost.submitAudio != nullptr && gHost.getInput != nullptr &&
           gHost.threadStart != nullptr && gHost.threadEnd != nullptr;
}

void Report(SessionReport what, const EMU_THREAD& session) {
    if (const SESSION_REPORT_HOOK hook = gReport.load(); hook != nullptr) {
        hook(what, session.system, session.gameName);
    }
}

// The first six bytes of the image's hash. A game without such an image is identified by the hash of
// its header, as arcade games are everywhere else.
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

// `.\folder\saves\name.zip` becomes `.\folder\saves\name.0123456789ab`.
std::string BatteryStem(const EMU_THREAD& session) {
    const std::string& archive = session.archivePath;
    return archive.substr(0, archive.rfind('.') + 1) + session.stateEntryName;
}

// Lists the session and starts its thread. The list then owns it. Returns the serial; 0 if no thread
// can be started, and the session is then not in the list.
uint32_t Launch(std::unique_ptr<EMU_THREAD>& session) {
    const std::scoped_lock list(SessionListLock());
    LinkSession(*session);
    ++gRunningThreads;
    try {
        std::thread(EmuThreadMain, session.get()).detach();
    } catch (const std::exception& error) {
        --gRunningThreads;
        UnlinkSession(*session);
        EmuSetLastError(std::string("no thread can be started: ") + error.what());
        return 0;
    }
    return session.release()->serial;
}

// The state is from the frame boundary at which the stop was requested; the thread may run one more
// frame. False if a wanted autosave could not be written.
bool RequestStop(EMU_THREAD& session, SessionEnd end) {
    TAKEN_STATE autosave;
    {
        const SessionHold hold(session);
        if (end == SessionEnd::kTurnedOff) {
            autosave = SessionTakeAutosave(session);
        }
        session.stopRequested = 1;
    }
    return autosave.bytes == nullptr || EmuStoreState(session, autosave);
}

// The session's thread has ended. Slow work is done after the session has left the list. Whoever has pinned
// the session and holds its lock may use `hostData`.
void Free(std::unique_ptr<EMU_THREAD> session, bool goesOn) {
    // Now, as the host still has the picture; the game's own memory is that of the same frame.
    std::optional<STATE_SNAPSHOT> resume;
    if (goesOn) {
        resume = SessionTakeResume(*session);
    }
    {
        const std::scoped_lock list(SessionListLock());
        const SessionHold hold(*session);
        gHost.close(session.get());
        UnlinkSession(*session);
    }
    while (session->pins != 0) {
        SleepMillisecond();
    }
    SessionSaveBattery(*session);
    SessionEndResume(*session, goesOn, std::move(resume));
}

// The caller has the key's turn, so nobody else can free the session.
bool StopInTurn(uint32_t key, SessionEnd end) {
    EMU_THREAD* session = nullptr;
    {
        const std::scoped_lock list(SessionListLock());
        session = FindSession(key);
    }
    if (session == nullptr) {
        return false;
    }
    const bool saved = RequestStop(*session, end);
    Report(SessionReport::kEnded, *session);
    while (session->stopRequested != 0) {
        SleepMillisecond();
    }
    Free(std::unique_ptr<EMU_THREAD>(session), end == SessionEnd::kProgramEnds || !saved);
    return true;
}

} // namespace

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
        EmuSetLastError("no machine has the system number " + std::to_string(system));
        return nullptr;
    }
    std::unique_ptr<CEmuSystem> machine = entry->construct(key);
    if (!machine) {
        EmuSetLastError("the machine cannot be constructed");
        return nullptr;
    }
    EmuSetLastError({});
    if (!machine->Init(options, games)) {
        return nullptr;
    }
    auto session = std::make_unique<EMU_THREAD>();
    session->key = key;
    session->machine = std::move(machine);
    session->system = system;
    session->gameName = gameName;
    session->frameWidth = session->machine->width;
    session->frameHeight = session->machine->height;
    session->archivePath = ArchivePath(entry->folder, gameName);
    session->stateEntryName = StateEntryName(game);
    session->battery.stem = BatteryStem(*session);
    return session;
}

uint32_t EmuStartSession(uint32_t key, CGameFile* const games[2], const void* options,
                         const std::string& gameName, SESSION_RESUME resume) {
    if (!HostIsComplete()) {
        EmuSetLastError("no host is installed");
        return 0;
    }
    if (games == nullptr || games[0] == nullptr) {
        EmuSetLastError("no game was given");
        return 0;
    }
    const KeyTurn turn(Keys(), key);
    StopInTurn(key, SessionEnd::kTurnedOff);
    std::unique_ptr<EMU_THREAD> session = EmuCreateSession(key, games, options, gameName);
    if (!session) {
        return 0;
    }
    Report(SessionReport::kStarted, *session);
    const bool loaded = SessionLoadSaves(*session, std::move(resume));
    const uint32_t serial = loaded ? Launch(session) : 0;
    if (serial == 0) {
        Report(SessionReport::kEnded, *session);
    }
    return serial;
}

bool EmuStopSession(uint32_t key, SessionEnd end) {
    const KeyTurn turn(Keys(), key);
    return StopInTurn(key, end);
}

bool EmuSetResumeText(uint32_t key, std::string_view name, std::string_view value) {
    const SessionPin session = PinSession(key);
    if (!session) {
        return false;
    }
    ResumeSetText(session->resume, name, value);
    return true;
}

bool EmuHasEnded(uint32_t key, std::string& reason) {
    const SessionPin session = PinSession(key);
    if (!session || !session->machine->ended) {
        return false;
    }
    const SessionHold hold(*session);
    reason = session->machine->endReason;
    return true;
}

bool EmuResetSession(uint32_t key) {
    const SessionPin session = PinSession(key);
    if (!session) {
        return false;
    }
    const SessionHold hold(*session);
    session->machine->Reset();
    return true;
}

bool EmuPauseSession(uint32_t key, bool paused) {
    const SessionPin session = PinSession(key);
    if (!session) {
        return false;
    }
    session->paused = paused;
    return true;
}

void EmuWaitForFocus(bool waits) {
    EmuForEachSession([waits](EMU_THREAD& session) { session.waitsForFocus = waits; });
}
