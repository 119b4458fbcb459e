#include "host/host_fixture.h"

#include "host/report.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>
#include <utility>

HOST_COUNTS HostTest::gCounts;

namespace {

std::atomic<int64_t> gNow{0};
std::mutex gReportLock;
std::vector<std::string> gReports;

int64_t FastNow() {
    return gNow += 20;
}

void FastSleep(uint32_t milliseconds) {
    gNow += int64_t{milliseconds} * 1000;
    std::this_thread::yield();
}

void KeepReport(const std::string& message) {
    const std::scoped_lock hold(gReportLock);
    gReports.push_back(message);
}

} // namespace

CGameFile MakeGame(uint16_t system, uint8_t identity) {
    CGameFile game;
    game.Create(false, system);
    Sha256Digest sha{};
    std::fill_n(sha.begin(), 6, identity);
    game.AddRom("piece", sha, 16);
    game.selectedName = 0;
    return game;
}

CTestMachine& MachineOf(EMU_THREAD& session) {
    return dynamic_cast<CTestMachine&>(*session.machine);
}

EMU_HOST_CALLBACKS HostTest::TestHost() {
    EMU_HOST_CALLBACKS host{};
    host.open = [](EMU_THREAD* session) {
        ++gCounts.opens;
        HostOpen(session);
        session->hostData.load()->noSound = false;
    };
    host.close = [](EMU_THREAD* session) {
        ++gCounts.closes;
        HostClose(session);
    };
    host.getVideoFrame = HostGetVideoFrame;
    host.present = [](EMU_THREAD* session, uint32_t length) {
        ++gCounts.presents;
        HostPresent(session, length);
    };
    host.submitAudio = [](EMU_THREAD* session, EMU_AUDIO_FRAME* audio) {
        ++gCounts.submits;
        HostSubmitAudio(session, audio);
    };
    host.getInput = HostGetInput;
    host.threadStart = [](int argument) {
        ++gCounts.threadStarts;
        return argument + 7;
    };
    host.threadEnd = [](int token) { gCounts.threadEnds += token == 7 ? 1 : 1000; };
    return host;
}

HostTest::HostTest() {
    RegisterDefaultSettings(Settings());
    InputClearAll();
    InputSetActiveKey(0);
    InputSetWalkingRoom(false);
    HostSetReportSink(KeepReport);
    HostSetClock({FastNow, FastSleep});
    EmuSetMachines(TestMachines());
    EmuSetHost(TestHost());
    TakeReports();
}

HostTest::~HostTest() {
    for (uint32_t key = 0; key < 16; ++key) {
        EmuStopSession(key, SessionEnd::kTurnedOff);
    }
    EXPECT_TRUE(Eventually([] { return EmuRunningThreads() == 0; }));
    EXPECT_EQ(CTestMachine::gLive, 0);
    EXPECT_EQ(CTestMachine::gCollisions, 0);
    EXPECT_EQ(gCounts.opens, gCounts.closes);
    EXPECT_EQ(gCounts.threadStarts, gCounts.threadEnds);
    HostSetReportSink(nullptr);
    HostSetClock({nullptr, nullptr});
    EmuSetSessionReport(nullptr);
}

uint32_t HostTest::Start(uint32_t key, const std::string& name, uint16_t system,
                         const TEST_BEHAVIOUR& behaviour, uint8_t identity) {
    CGameFile game = MakeGame(system, identity);
    CGameFile* const games[2] = {&game, nullptr};
    return EmuStartSession(key, games, MakeOptions(behaviour).data(), name);
}

std::unique_ptr<EMU_THREAD> HostTest::Create(const TEST_BEHAVIOUR& behaviour,
                                             const std::string& name, uint16_t system,
                                             uint8_t identity) {
    CGameFile game = MakeGame(system, identity);
    CGameFile* const games[2] = {&game, nullptr};
    auto session = EmuCreateSession(3, games, MakeOptions(behaviour).data(), name);
    if (session) {
        session->showStatic = 0;
    }
    return session;
}

bool HostTest::WithMachine(uint32_t key, const std::function<void(CTestMachine&)>& with) {
    bool found = false;
    EmuForEachSession([&](EMU_THREAD& session) {
        if (session.key == key) {
            const std::scoped_lock hold(session.lock);
            with(MachineOf(session));
            found = true;
        }
    });
    return found;
}

bool HostTest::Eventually(const std::function<bool()>& condition) {
    for (int32_t i = 0; i < 60000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

void HostTest::Press(std::wstring_view action, bool down) {
    constexpr uint32_t kLeftCtrl = 224;
    constexpr uint32_t kLeftShift = 225;
    for (const INPUT_ACTION& candidate : InputActions()) {
        if (action == candidate.name) {
            InputSetCode(kLeftShift, down && (candidate.defaultBinding >> 16) == kModifierShift);
            InputSetCode(kLeftCtrl, down && (candidate.defaultBinding >> 16) == kModifierCtrl);
            InputSetCode(candidate.defaultBinding & 0xFFFF, down);
            return;
        }
    }
    ADD_FAILURE() << "no such action";
}

std::vector<std::string> HostTest::TakeReports() {
    const std::scoped_lock hold(gReportLock);
    return std::exchange(gReports, {});
}
