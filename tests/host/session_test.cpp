#include "base/files.h"
#include "host/host_fixture.h"
#include "host/session.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <thread>

namespace fs = std::filesystem;

namespace {

class Session : public HostTest {};

std::mutex gLogLock;
std::vector<std::string> gLog;

void Log(const std::string& line) {
    const std::scoped_lock hold(gLogLock);
    gLog.push_back(line);
}

uint32_t CountSessions() {
    uint32_t count = 0;
    EmuForEachSession([&](EMU_THREAD&) { ++count; });
    return count;
}

} // namespace

TEST_F(Session, StartReturnsRisingSerials) {
    const uint32_t first = Start(1);
    const uint32_t second = Start(2);
    EXPECT_GE(first, 1u);
    EXPECT_EQ(second, first + 1);
}

TEST_F(Session, RecordIsFilledAsTold) {
    Settings().SetInt(L"emu_autosaves", 0);
    const auto session = Create({}, "Some Game");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->key, 3u);
    EXPECT_EQ(session->machine->sessionKey, 3u);
    EXPECT_EQ(session->system, 1u);
    EXPECT_EQ(session->gameName, "Some Game");
    EXPECT_EQ(session->archivePath, ".\\sms\\saves\\some game.zip");
    EXPECT_EQ(session->stateEntryName, "a5a5a5a5a5a5");
    EXPECT_EQ(session->frameWidth, 320u);
    EXPECT_EQ(session->frameHeight, 240u);
    EXPECT_EQ(session->staticFrames, 0u);
    EXPECT_EQ(session->rewind.rewindHead, nullptr);
    EXPECT_EQ(session->hostData, nullptr);
    EXPECT_EQ(session->stopRequested, 0);
    EXPECT_EQ(MachineOf(*session).resets, 1u); // by its own Init
}

TEST_F(Session, ATitleCannotLeaveTheFolder) {
    const auto session = Create({}, "..\\..\\ETC/Passwd:?");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->archivePath, ".\\sms\\saves\\.._.._etc_passwd__.zip");
}

TEST_F(Session, LowerCaseIsOfAsciiAlone) {
    const auto session = Create({}, "\xC3\x84RGER");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->archivePath, ".\\sms\\saves\\\xC3\x84rger.zip");
}

TEST_F(Session, ArcadeSavesLieAtTheRootOfTheDrive) {
    const auto session = Create({}, "Game", 6);
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->archivePath, "\\saves\\game.zip");
    EXPECT_EQ(ResolvePath(session->archivePath), home.Path() / "saves" / "game.zip");
}

TEST_F(Session, AGameWithoutASelectedImageIsNamedByItsHeader) {
    CGameFile game = MakeGame(1);
    game.selectedName = -1;
    game.ComputeHeaderHash();
    CGameFile* const games[2] = {&game, nullptr};
    const auto session = EmuCreateSession(3, games, nullptr, "Game");
    ASSERT_NE(session, nullptr);
    const uint8_t* const hash = game.Header().headerHash;
    EXPECT_EQ(session->stateEntryName, HexText(std::span(hash, 6)));
    EXPECT_NE(session->stateEntryName, "000000000000");
}

// The entry is named by the piece with the selected variant's number, for arcade games like all others;
// without such a piece, by the hash of the records.
TEST_F(Session, AnArcadeGameIsNamedByItsPieceOrElseByItsHeader) {
    CGameFile game = MakeGame(6, 0x3C);
    for (const char* const title : {"First", "Second"}) {
        game.AddNameFromTitle(title, 1, 1, {});
    }
    game.ComputeHeaderHash();
    const uint8_t* const hash = game.Header().headerHash;
    char header[13];
    std::snprintf(header, sizeof header, "%02x%02x%02x%02x%02x%02x", unsigned{hash[0]},
                  unsigned{hash[1]}, unsigned{hash[2]}, unsigned{hash[3]}, unsigned{hash[4]},
                  unsigned{hash[5]});
    EXPECT_STRNE(header, "000000000000");
    EXPECT_STRNE(header, "3c3c3c3c3c3c");
    CGameFile* const games[2] = {&game, nullptr};
    for (const int32_t picked : {0, 1}) {
        game.selectedName = picked;
        const auto session = EmuCreateSession(3, games, nullptr, "Game");
        ASSERT_NE(session, nullptr);
        EXPECT_EQ(session->archivePath, "\\saves\\game.zip");
        EXPECT_EQ(session->stateEntryName, picked == 0 ? "3c3c3c3c3c3c" : header);
    }
}

TEST_F(Session, AnUnknownSystemFailsButStopsTheOldSessionFirst) {
    ASSERT_NE(Start(1), 0u);
    EXPECT_EQ(Start(1, "Other", 3), 0u);
    EXPECT_NE(EmuLastError().find('3'), std::string::npos);
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, AMachineThatCannotBeMadeFails) {
    EXPECT_EQ(Start(1, "Game", 5), 0u);
    EXPECT_FALSE(EmuLastError().empty());
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, AFailedInitLeavesNothingBehind) {
    EmuSetLastError("stale");
    EXPECT_EQ(Start(1, "Game", 1, {.failInit = 1}), 0u);
    EXPECT_EQ(EmuLastError(), "this game cannot be run");
    EXPECT_EQ(CTestMachine::gLive, 0);
    EXPECT_EQ(EmuRunningThreads(), 0u);
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, AnEndedMachineKeepsItsReason) {
    std::string reason;
    EXPECT_FALSE(EmuHasEnded(1, reason)) << "nothing runs";
    ASSERT_NE(Start(1, "Game", 1, {.endsAtFrame = 2}), 0u);
    EXPECT_TRUE(Eventually([&] { return EmuHasEnded(1, reason); }));
    EXPECT_EQ(reason, "the program has gone wrong");
    EXPECT_EQ(Start(2, "Game", 1, {.failInit = 1}), 0u);
    ASSERT_NE(Start(2), 0u);
    reason.clear();
    EXPECT_TRUE(EmuHasEnded(1, reason));
    EXPECT_EQ(reason, "the program has gone wrong") << "starts have reasons of their own";
    EXPECT_FALSE(EmuHasEnded(2, reason));
}

TEST_F(Session, AMachineThatEndsLeavesTheReasonOfAFailedStart) {
    ASSERT_NE(Start(1, "Game", 1, {.endsAtFrame = 1}), 0u); // which comes after the static
    EmuSetLastError("of a failed start");
    std::string reason;
    EXPECT_TRUE(Eventually([&] { return EmuHasEnded(1, reason); }));
    EXPECT_EQ(EmuLastError(), "of a failed start");
}

TEST_F(Session, AStartClearsTheLastError) {
    EmuSetLastError("stale");
    ASSERT_NE(Start(1), 0u);
    EXPECT_EQ(EmuLastError(), "");
}

TEST_F(Session, MissingGamesFailWithoutStoppingAnything) {
    ASSERT_NE(Start(1), 0u);
    CGameFile* const none[2] = {nullptr, nullptr};
    EXPECT_EQ(EmuStartSession(1, none, nullptr, "Game"), 0u);
    EXPECT_EQ(EmuStartSession(1, nullptr, nullptr, "Game"), 0u);
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, WithoutAHostNothingStarts) {
    EMU_HOST_CALLBACKS partial = TestHost();
    partial.present = nullptr;
    EmuSetHost(partial);
    EXPECT_EQ(Start(1), 0u);
    EXPECT_FALSE(EmuLastError().empty());
    EmuSetHost(TestHost());
}

TEST_F(Session, StoppingAKeyWithoutASessionIsFalse) {
    ASSERT_NE(Start(1), 0u);
    EXPECT_FALSE(EmuStopSession(2, SessionEnd::kTurnedOff));
    EXPECT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, ResettingAKeyWithoutASessionIsFalse) {
    EXPECT_FALSE(EmuResetSession(1));
}

TEST_F(Session, ResetReachesTheMachineAndBringsNoStaticBack) {
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] {
        bool running = false;
        WithMachine(1, [&](CTestMachine& machine) { running = machine.frame > 10; });
        return running;
    }));
    EXPECT_TRUE(EmuResetSession(1));
    EmuForEachSession([](EMU_THREAD& session) {
        EXPECT_EQ(MachineOf(session).resets, 2u);
        EXPECT_EQ(session.showStatic, 0);
        EXPECT_EQ(session.staticFrames, 70u);
    });
}

TEST_F(Session, MachineStartsAfterTheStatic) {
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] {
        bool running = false;
        WithMachine(1, [&](CTestMachine& machine) { running = machine.frame > 0; });
        return running;
    }));
    EmuForEachSession([](EMU_THREAD& session) { EXPECT_EQ(session.staticFrames, 70u); });
}

TEST_F(Session, CallbacksComeInTheirOrderOnTheirThreads) {
    gLog.clear();
    static std::atomic<std::thread::id> gSessionThread;
    static EMU_HOST_CALLBACKS base = TestHost();
    EMU_HOST_CALLBACKS host = base;
    host.threadStart = [](int argument) {
        Log("threadStart");
        gSessionThread = std::this_thread::get_id();
        return base.threadStart(argument);
    };
    host.open = [](EMU_THREAD* session) {
        Log(gSessionThread.load() == std::this_thread::get_id() ? "open" : "open elsewhere");
        base.open(session);
    };
    host.close = [](EMU_THREAD* session) {
        Log(gSessionThread.load() == std::this_thread::get_id() ? "close on its thread" : "close");
        EXPECT_EQ(session->stopRequested, 0);
        base.close(session);
    };
    host.threadEnd = [](int token) {
        Log("threadEnd");
        base.threadEnd(token);
    };
    EmuSetHost(host);
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    const std::scoped_lock hold(gLogLock);
    ASSERT_EQ(gLog.size(), 4u);
    EXPECT_EQ(gLog[0], "threadStart");
    EXPECT_EQ(gLog[1], "open");
    EXPECT_EQ(std::count(gLog.begin() + 2, gLog.end(), "close"), 1);
    EXPECT_EQ(std::count(gLog.begin() + 2, gLog.end(), "threadEnd"), 1);
}

// The record is gone before the thread releases its processor, and the stop did not wait for that.
TEST_F(Session, StopDoesNotWaitForThreadEnd) {
    static std::atomic<bool> gMayEnd;
    static EMU_HOST_CALLBACKS base = TestHost();
    gMayEnd = false;
    EMU_HOST_CALLBACKS host = base;
    host.threadEnd = [](int token) {
        EXPECT_TRUE(Eventually([] { return gMayEnd.load(); })) << "the stop waits for the thread";
        base.threadEnd(token);
    };
    EmuSetHost(host);
    ASSERT_NE(Start(1), 0u);
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_EQ(EmuRunningThreads(), 1u);
    EXPECT_EQ(CTestMachine::gLive, 0);
    gMayEnd = true;
    EXPECT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    EmuSetHost(base);
}

TEST_F(Session, SessionsThatTheHostHasNotOpenedAreNotVisited) {
    static std::atomic<bool> gOpening;
    static std::atomic<bool> gMayStart;
    static EMU_HOST_CALLBACKS base = TestHost();
    gOpening = gMayStart = false;
    EMU_HOST_CALLBACKS host = base;
    host.threadStart = [](int argument) {
        gOpening = true;
        EXPECT_TRUE(Eventually([] { return gMayStart.load(); })) << "the visit waits for the host";
        return base.threadStart(argument);
    };
    EmuSetHost(host);
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] { return gOpening.load(); }));
    EXPECT_EQ(CountSessions(), 0u);
    gMayStart = true;
    EXPECT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    EmuSetHost(base);
}

TEST_F(Session, NewSessionsAreAtTheHeadOfTheList) {
    ASSERT_NE(Start(1), 0u);
    ASSERT_NE(Start(2), 0u);
    ASSERT_TRUE(Eventually([] { return CountSessions() == 2; }));
    std::vector<uint32_t> keys;
    EmuForEachSession([&](EMU_THREAD& session) { keys.push_back(session.key); });
    EXPECT_EQ(keys, (std::vector<uint32_t>{2, 1}));
}

TEST_F(Session, StartingOnATakenKeySavesAndReplacesTheOldSession) {
    const uint32_t first = Start(1, "Old");
    ASSERT_TRUE(Eventually([] {
        bool running = false;
        WithMachine(1, [&](CTestMachine& machine) { running = machine.frame > 0; });
        return running;
    }));
    const uint32_t second = Start(1, "New");
    EXPECT_GT(second, first);
    EXPECT_TRUE(fs::exists(home.Path() / "sms" / "saves" / "old.zip"));
    ASSERT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EmuForEachSession([&](EMU_THREAD& session) { EXPECT_EQ(session.serial, second); });
}

TEST_F(Session, AutosaveResumesTheGameWithoutStatic) {
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] {
        bool running = false;
        WithMachine(1, [&](CTestMachine& machine) { running = machine.frame > 100; });
        return running;
    }));
    ASSERT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EmuForEachSession([](EMU_THREAD& session) {
        EXPECT_EQ(session.staticFrames, 0u);
        EXPECT_GT(MachineOf(session).frame, 100u);
    });
}

TEST_F(Session, AutosaveBitsAreLoadAndSave) {
    const fs::path archive = home.Path() / "sms" / "saves" / "game.zip";
    for (const int32_t bits : {0, 1}) {
        Settings().SetInt(L"emu_autosaves", bits);
        ASSERT_NE(Start(1), 0u);
        EmuStopSession(1, SessionEnd::kTurnedOff);
        EXPECT_FALSE(fs::exists(archive)) << bits;
    }
    Settings().SetInt(L"emu_autosaves", 2);
    ASSERT_NE(Start(1), 0u);
    EmuStopSession(1, SessionEnd::kTurnedOff);
    ASSERT_TRUE(fs::exists(archive));
    for (const auto& [bits, shown] : {
             std::pair{2, 1},
             {0, 1},
             {1, 0},
             {3, 0}
    }) {
        Settings().SetInt(L"emu_autosaves", bits & 1);
        CGameFile game = MakeGame(1);
        CGameFile* const games[2] = {&game, nullptr};
        // The static is over before the first frame if and only if the state was loaded.
        static std::atomic<int32_t> gStaticAtOpen;
        static EMU_HOST_CALLBACKS base = TestHost();
        EMU_HOST_CALLBACKS host = base;
        host.open = [](EMU_THREAD* session) {
            gStaticAtOpen = session->showStatic;
            base.open(session);
        };
        EmuSetHost(host);
        Settings().SetInt(L"emu_autosaves", bits);
        gStaticAtOpen = -1;
        ASSERT_NE(EmuStartSession(1, games, MakeOptions().data(), "Game"), 0u);
        EXPECT_TRUE(Eventually([] { return gStaticAtOpen >= 0; }));
        EXPECT_EQ(gStaticAtOpen, shown) << bits;
        Settings().SetInt(L"emu_autosaves", 0);
        EmuStopSession(1, SessionEnd::kTurnedOff);
        ASSERT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
        EmuSetHost(base);
    }
}

TEST_F(Session, StartAndStopAreReported) {
    gLog.clear();
    EmuSetSessionReport([](SessionReport what, uint32_t system, const std::string& name) {
        Log(std::to_string(static_cast<uint32_t>(what)) + " " + std::to_string(system) + " " +
            name);
    });
    ASSERT_NE(Start(1, "First"), 0u);
    ASSERT_NE(Start(1, "Second", 4), 0u);
    EXPECT_EQ(Start(2, "Third", 1, {.failInit = 1}), 0u);
    EmuStopSession(1, SessionEnd::kTurnedOff);
    EXPECT_EQ(gLog,
              (std::vector<std::string>{"4 1 First", "5 1 First", "4 4 Second", "5 4 Second"}));
}

TEST_F(Session, StatsAreOneLineForTheActiveSession) {
    InputSetActiveKey(7);
    EXPECT_EQ(EmuFormatStats(), "");
    ASSERT_NE(Start(1), 0u);
    EXPECT_EQ(EmuFormatStats(), "");
    Settings().SetInt(L"emu_autosaves", 0);
    static EMU_HOST_CALLBACKS base = TestHost();
    EMU_HOST_CALLBACKS host = base;
    EmuStopSession(1, SessionEnd::kTurnedOff);
    ASSERT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    host.present = [](EMU_THREAD*, uint32_t) { std::this_thread::yield(); };
    host.getVideoFrame = [](EMU_THREAD*) -> EMU_VIDEO_FRAME* { return nullptr; };
    EmuSetHost(host);
    ASSERT_NE(Start(7), 0u);
    ASSERT_TRUE(Eventually([] { return CountSessions() == 1; }));
    EmuRaiseSoundGap(12);
    EmuRaiseSoundGap(5);
    EmuForEachSession([](EMU_THREAD& session) {
        session.statistics.soundRepositions = 3;
        session.sound.soundBytes = 4096;
        session.statistics.framesMissed = 9;
        session.machine->debugValue = 0xFFFFFFFF;
    });
    EXPECT_EQ(EmuFormatStats(),
              "Sound Repos 3 | SoundBuffer 4096, Sound Min 12 | Frames Missed 9 | dw1=-1");
    EmuStopSession(7, SessionEnd::kTurnedOff);
    ASSERT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    EmuSetHost(base);
}

TEST_F(Session, TwoThreadsStoppingOneKeyBothFindItGone) {
    Settings().SetInt(L"emu_autosaves", 0);
    for (int round = 0; round < 50; ++round) {
        ASSERT_NE(Start(1), 0u);
        std::atomic<int32_t> stops{0};
        const auto stop = [&] {
            if (EmuStopSession(1, SessionEnd::kTurnedOff)) {
                ++stops;
            }
            EXPECT_EQ(CTestMachine::gLive, 0);
        };
        std::thread other(stop);
        stop();
        other.join();
        EXPECT_GE(stops, 1);
        EXPECT_LE(stops, 2);
    }
    EXPECT_EQ(gCounts.opens, gCounts.closes);
}

TEST_F(Session, StartsOnOneKeyFromManyThreadsLeaveOneSession) {
    Settings().SetInt(L"emu_autosaves", 0);
    for (int round = 0; round < 20; ++round) {
        std::vector<std::thread> starters;
        for (int i = 0; i < 4; ++i) {
            starters.emplace_back([&] { EXPECT_NE(Start(1), 0u); });
        }
        for (std::thread& starter : starters) {
            starter.join();
        }
        EXPECT_EQ(CTestMachine::gLive, 1);
    }
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(Session, ASessionThatIsStoppedAtOnceWasStillOpenedAndClosed) {
    const int32_t before = gCounts.opens;
    for (int i = 0; i < 20; ++i) {
        ASSERT_NE(Start(1), 0u);
        EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    }
    EXPECT_EQ(gCounts.opens, before + 20);
    EXPECT_EQ(gCounts.closes, gCounts.opens);
}

// The state after n frames must not depend on what else runs.
TEST_F(Session, SeveralSessionsRunThousandsOfFramesEachOnItsOwn) {
    Settings().SetInt(L"emu_rewindbuffer", 1);
    for (uint32_t key = 1; key <= 5; ++key) {
        ASSERT_NE(
            Start(key, "Game " + std::to_string(key), key % 2 == 0 ? 4 : 1, {.noisySound = 1}), 0u);
    }
    ASSERT_TRUE(Eventually([] {
        uint32_t done = 0;
        EmuForEachSession(
            [&](EMU_THREAD& session) { done += MachineOf(session).frame > 2000 ? 1u : 0u; });
        return done == 5;
    }));
    std::vector<uint8_t> state;
    uint32_t frames = 0;
    WithMachine(3, [&](CTestMachine& machine) {
        uint32_t size = 0;
        const StateBlob blob = machine.SaveState(size);
        state.assign(blob.get(), blob.get() + size);
        frames = machine.frame;
    });
    const auto alone = Create({.noisySound = 1});
    std::vector<uint32_t> pixels(size_t{320} * 240);
    std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.data();
    EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
    for (uint32_t i = 0; i < frames; ++i) {
        alone->machine->RunFrame(nullptr, &video, &audio);
    }
    uint32_t size = 0;
    const StateBlob blob = alone->machine->SaveState(size);
    EXPECT_EQ(state, std::vector<uint8_t>(blob.get(), blob.get() + size));
}
