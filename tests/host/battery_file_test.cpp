#include "base/files.h"
#include "host/battery_file.h"
#include "host/frame_loop.h"
#include "host/host_fixture.h"
#include "host/session_saves.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kBatteryBytes = 100;

class BatteryFile : public HostTest {
protected:
    static TEST_BEHAVIOUR WithBattery() {
        TEST_BEHAVIOUR behaviour;
        behaviour.batteryBytes = kBatteryBytes;
        return behaviour;
    }

    [[nodiscard]] fs::path Folder() const { return home.Path() / "sms" / "saves"; }
    [[nodiscard]] fs::path Path() const { return Folder() / "game.a5a5a5a5a5a5.sav"; }
    void Put(const Bytes& bytes) const { home.Write("sms/saves/game.a5a5a5a5a5a5.sav", bytes); }

    static Bytes Content(const fs::path& path) {
        Bytes bytes;
        std::string error;
        EXPECT_TRUE(ReadFile(path, bytes, error)) << error;
        return bytes;
    }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        if (fs::exists(Folder())) {
            for (const auto& entry : fs::directory_iterator(Folder())) {
                names.push_back(entry.path().filename().string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // A session can be visited once its thread has opened it.
    static bool FillRunning(uint8_t value) {
        return Eventually([=] {
            return WithMachine(
                1, [=](CTestMachine& machine) { machine.battery.assign(kBatteryBytes, value); });
        });
    }

    static void Load(EMU_THREAD& session) { BatteryLoad(session.battery, MachineOf(session)); }
    static void PutBack(EMU_THREAD& session) {
        BatteryPutBack(session.battery, MachineOf(session));
    }

    static void Fill(EMU_THREAD& session, uint8_t value) {
        MachineOf(session).battery.assign(kBatteryBytes, value);
    }
};

TEST_F(BatteryFile, UntouchedMemoryMakesNoFile) {
    const auto session = Create(WithBattery());
    Load(*session);
    SessionSaveBattery(*session);
    EXPECT_TRUE(Names().empty());
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(BatteryFile, ChangedMemoryIsThereTheNextTime) {
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 0x42);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 0x42));

    const auto again = Create(WithBattery());
    Load(*again);
    EXPECT_EQ(MachineOf(*again).battery, Bytes(kBatteryBytes, 0x42));
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(BatteryFile, TwoImagesOfOneNameHaveTheirOwn) {
    const auto first = Create(WithBattery());
    const auto second = Create(WithBattery(), "GAME", 1, 0x01);
    for (EMU_THREAD* session : {first.get(), second.get()}) {
        Load(*session);
    }
    Fill(*first, 1);
    Fill(*second, 2);
    SessionSaveBattery(*first);
    SessionSaveBattery(*second);
    EXPECT_EQ(Names(),
              (std::vector<std::string>{"game.010101010101.sav", "game.a5a5a5a5a5a5.sav"}));
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 1));
}

TEST_F(BatteryFile, GameWithoutMemoryLeavesAFileAlone) {
    Put({1, 2, 3});
    const auto session = Create();
    Load(*session);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), (Bytes{1, 2, 3}));
    EXPECT_EQ(Names().size(), 1u);
}

TEST_F(BatteryFile, TheFileAsFoundIsKeptOnceASession) {
    Put(Bytes(kBatteryBytes, 7));
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 8);
    SessionSaveBattery(*session);
    Fill(*session, 9);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 9));
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.before.sav"), Bytes(kBatteryBytes, 7));
}

TEST_F(BatteryFile, WrongLengthIsSetAsideUnderTheFirstFreeName) {
    for (uint8_t round = 1; round <= 2; ++round) {
        Put(Bytes(round, round));
        const auto session = Create(WithBattery());
        Load(*session);
        EXPECT_EQ(MachineOf(*session).battery, Bytes(kBatteryBytes, 0xFF));
        EXPECT_EQ(TakeReports().size(), 1u);
        Fill(*session, 0x10);
        SessionSaveBattery(*session);
        EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 0x10));
    }
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.damaged-1.sav"), Bytes(1, 1));
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.damaged-2.sav"), Bytes(2, 2));
}

TEST_F(BatteryFile, OneThatCannotBeReadIsNeverTouched) {
    fs::create_directories(Path()); // a folder has that name
    const auto session = Create(WithBattery());
    Load(*session);
    EXPECT_EQ(TakeReports().size(), 1u);
    Fill(*session, 3);
    SessionSaveBattery(*session);
    EXPECT_TRUE(fs::is_directory(Path()));
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(BatteryFile, AFailedWriteIsToldOnceAndTriedAgainAtTheEnd) {
    const std::string blocker = "sms/saves";
    home.Write(blocker, Bytes{1}); // the folder cannot be made
    ASSERT_NE(Start(1, "Game", 1, WithBattery()), 0u);
    ASSERT_TRUE(FillRunning(5));
    EmuKeepBatteries();
    EXPECT_EQ(TakeReports().size(), 1u);
    EmuKeepBatteries();
    EXPECT_TRUE(TakeReports().empty());
    fs::remove(home.Path() / blocker);
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 5));
}

TEST_F(BatteryFile, WhatSomebodyElseWroteIsKept) {
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 1);
    SessionSaveBattery(*session);
    Put(Bytes(kBatteryBytes, 2));
    Fill(*session, 3);
    SessionSaveBattery(*session);
    EXPECT_EQ(TakeReports().size(), 1u);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 3));
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.other-1.sav"), Bytes(kBatteryBytes, 2));
}

TEST_F(BatteryFile, AWriteThatFailedIsNotTakenForOneThatCameLater) {
    const auto session = Create(WithBattery());
    Load(*session);
    session->battery.refused = Bytes(kBatteryBytes, 1); // as after a failed write of it
    Fill(*session, 2);
    SessionSaveBattery(*session);
    Fill(*session, 1);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 1));
}

// The autosave holds the memory of its own time, which after a crash is older than the file's.
TEST_F(BatteryFile, TheFilesMemoryGoesBackOverTheAutosaves) {
    Put(Bytes(kBatteryBytes, 9));
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 5); // by the state
    PutBack(*session);
    EXPECT_EQ(MachineOf(*session).battery, Bytes(kBatteryBytes, 9));
}

TEST_F(BatteryFile, AFileOfAnotherLengthLeavesTheAutosavesMemory) {
    Put(Bytes(3, 9));
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 5);
    PutBack(*session);
    EXPECT_EQ(MachineOf(*session).battery, Bytes(kBatteryBytes, 5));
    TakeReports();
}

TEST_F(BatteryFile, WithoutAFileTheAutosavesMemoryStays) {
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 5);
    PutBack(*session);
    EXPECT_EQ(MachineOf(*session).battery, Bytes(kBatteryBytes, 5));
}

// What the game saved is not lost by going back in time, however often.
TEST_F(BatteryFile, WhatAStateOrRewindingTakesBackIsKept) {
    const fs::path former = Folder() / "game.a5a5a5a5a5a5.before-state.sav";
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 1); // by the game
    SessionSaveBattery(*session);
    EXPECT_FALSE(fs::exists(former));

    session->battery.rolledBack = true;
    Fill(*session, 2);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 2));
    EXPECT_EQ(Content(former), Bytes(kBatteryBytes, 1));

    session->battery.rolledBack = true; // further back: the file holds nothing that the game wrote
    Fill(*session, 3);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(former), Bytes(kBatteryBytes, 1));

    Fill(*session, 4); // by the game again
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(former), Bytes(kBatteryBytes, 1));
    session->battery.rolledBack = true;
    Fill(*session, 5);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(former), Bytes(kBatteryBytes, 4));
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(BatteryFile, GoingBackToTheSameMemoryCountsForNothing) {
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 1);
    SessionSaveBattery(*session);
    session->battery.rolledBack = true; // and the state held the same
    SessionSaveBattery(*session);
    Fill(*session, 2); // by the game
    SessionSaveBattery(*session);
    session->battery.rolledBack = true;
    Fill(*session, 1);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.before-state.sav"), Bytes(kBatteryBytes, 2));
}

TEST_F(BatteryFile, RewindingCountsAsGoingBack) {
    const auto session = Create(WithBattery());
    std::vector<uint32_t> pixels(size_t{320} * 240);
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.data();
    SOUND_FRAME sound;
    EMU_INPUT_STATE input{};
    ASSERT_TRUE(EmuStep(*session, &input, &video, &sound.frame, false));
    ASSERT_TRUE(EmuStep(*session, &input, &video, &sound.frame, false));
    EXPECT_FALSE(session->battery.rolledBack);
    ASSERT_TRUE(EmuStep(*session, &input, &video, &sound.frame, true));
    EXPECT_TRUE(session->battery.rolledBack);
}

TEST_F(BatteryFile, NothingIsWrittenWhereNobodyPlays) {
    Put(Bytes(kBatteryBytes, 7));
    EmuWriteBatteries(false);
    const auto session = Create(WithBattery());
    Load(*session);
    Fill(*session, 8);
    SessionSaveBattery(*session);
    EmuWriteBatteries(true);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 7));
    EXPECT_EQ(Names().size(), 1u);
}

TEST_F(BatteryFile, OneThatIsTooLongToBeReadIsNeverTouched) {
    const Bytes huge((size_t{1} << 20) + 1, 1);
    Put(huge);
    const auto session = Create(WithBattery());
    Load(*session);
    EXPECT_EQ(TakeReports().size(), 1u);
    Fill(*session, 3);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), huge);
    EXPECT_EQ(Names().size(), 1u);
}

TEST_F(BatteryFile, OneThatAppearsAfterTheStartIsSomebodyElses) {
    const auto session = Create(WithBattery());
    Load(*session);
    Put(Bytes(kBatteryBytes, 2));
    Fill(*session, 3);
    SessionSaveBattery(*session);
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 3));
    EXPECT_EQ(Content(Folder() / "game.a5a5a5a5a5a5.other-1.sav"), Bytes(kBatteryBytes, 2));
    EXPECT_EQ(TakeReports().size(), 1u);
}

TEST_F(BatteryFile, RunningGamesAreKeptWithoutAStop) {
    ASSERT_NE(Start(1, "Game", 1, WithBattery()), 0u);
    ASSERT_TRUE(FillRunning(5));
    EXPECT_TRUE(Eventually([&] {
        EmuKeepBatteries(); // repeated until the host has opened the session
        return fs::exists(Path());
    }));
    EXPECT_EQ(Content(Path()), Bytes(kBatteryBytes, 5));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

TEST_F(BatteryFile, EndedMachineKeepsItsMemoryAndMakesNoAutosave) {
    TEST_BEHAVIOUR behaviour = WithBattery();
    behaviour.endsAtFrame = 1;
    ASSERT_NE(Start(1, "Game", 1, behaviour), 0u);
    EXPECT_TRUE(Eventually([&] {
        bool ended = false;
        WithMachine(1, [&](const CTestMachine& machine) { ended = machine.ended; });
        return ended;
    }));
    ASSERT_TRUE(FillRunning(6));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.a5a5a5a5a5a5.sav"}));
}

} // namespace
