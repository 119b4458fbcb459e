// While one session waits, no other session, nor display or pump, waits for it.
#include "host/host_fixture.h"
#include "host/session_saves.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Runs on a thread of its own, since it may have to wait.
class Errand {
public:
    explicit Errand(std::function<void()> work)
        : thread([this, work = std::move(work)] {
            work();
            done = true;
        }) {}
    ~Errand() {
        if (thread.joinable()) {
            thread.join();
        }
    }
    Errand(const Errand&) = delete;
    Errand& operator=(const Errand&) = delete;

    [[nodiscard]] bool Done() const { return done; }

private:
    std::atomic<bool> done{false};
    std::thread thread; // last: it uses the members above
};

constexpr uint32_t kOther = 2; // the session that must not be held up

class Waiting : public HostTest {
public:
    // After any failure no thread is left waiting.
    ~Waiting() override {
        CTestMachine::gGateOpen = true;
        InputSetActiveKey(0);
    }

protected:
    Waiting() {
        Settings().SetInt(L"emu_rewindbuffer", 0);
        Settings().SetInt(L"emu_autosaves", 0);
        CTestMachine::gGateOpen = false;
    }

    static std::vector<uint32_t> Keys() {
        std::vector<uint32_t> keys;
        EmuForEachSession([&](EMU_THREAD& session) { keys.push_back(session.key); });
        return keys;
    }

    static uint32_t FramesOf(uint32_t key) {
        uint32_t frames = 0;
        EmuForEachSession([&](EMU_THREAD& session) {
            frames = session.key == key ? MachineOf(session).runs.load() : frames;
        });
        return frames;
    }

    static bool SomebodyWaits() {
        return Eventually([] { return CTestMachine::gWaiting == 1; });
    }

    // Ends the wait under test, so that a failing test still ends.
    std::function<void()> letGo = [] { CTestMachine::gGateOpen = true; };

    void ExpectDone(const Errand& errand) const {
        if (!Eventually([&] { return errand.Done(); })) {
            ADD_FAILURE() << "held up";
            letGo();
        }
    }

    // A visit of all sessions, as the pump's, and frames of the other session.
    void ExpectTheOtherPlaysOn() const {
        const Errand errand([] {
            const uint32_t before = FramesOf(kOther);
            EXPECT_TRUE(Eventually([&] { return FramesOf(kOther) > before + 5; }));
            EXPECT_TRUE(EmuResetSession(kOther));
            EXPECT_THAT(Keys(), testing::Contains(kOther));
        });
        ExpectDone(errand);
    }

    // Other keys' starts and stops.
    void ExpectOthersComeAndGo() {
        const Errand errand([this] {
            EXPECT_NE(Start(3, "Third"), 0u);
            EXPECT_TRUE(EmuStopSession(3, SessionEnd::kTurnedOff));
        });
        ExpectDone(errand);
    }
};

} // namespace

TEST_F(Waiting, ForAnInitHoldsNobodyUp) {
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_TRUE(Eventually([] { return Keys().size() == 1; }));
    std::atomic<uint32_t> serial{0};
    const Errand start([&] { serial = Start(1, "Game", 1, {.waitsInInit = 1}); });
    ASSERT_TRUE(SomebodyWaits());
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo();
    EXPECT_EQ(Keys(), std::vector<uint32_t>{kOther});
    CTestMachine::gGateOpen = true;
    EXPECT_TRUE(Eventually([] { return Keys() == std::vector<uint32_t>({1, kOther}); }));
    EXPECT_TRUE(Eventually([&] { return start.Done(); }));
    EXPECT_GT(serial, 2u) << "serials follow the list: the third session came first";
}

TEST_F(Waiting, ForAnAutosavesStateHoldsNobodyUp) {
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_NE(Start(1, "Game", 1, {.waitsInSave = 1}), 0u);
    ASSERT_TRUE(Eventually([] { return Keys().size() == 2; }));
    Settings().SetInt(L"emu_autosaves", 2);
    const Errand stop([] { EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff)); });
    ASSERT_TRUE(SomebodyWaits());
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo();
    EXPECT_FALSE(stop.Done());
    CTestMachine::gGateOpen = true;
    EXPECT_TRUE(Eventually([&] { return stop.Done(); }));
    EXPECT_TRUE(fs::exists(home.Path() / "sms" / "saves" / "game.zip"));
}

TEST_F(Waiting, ForAFrameHoldsNobodyUp) {
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_NE(Start(1, "Game", 1, {.waitsInFrame = 1, .batteryBytes = 8}), 0u);
    ASSERT_TRUE(SomebodyWaits());
    const Errand reset([] { EXPECT_TRUE(EmuResetSession(1)); });
    const Errand keep([] { EmuKeepBatteries(); });
    const Errand stop([] { EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff)); });
    ASSERT_TRUE(Eventually([] {
        uint32_t waiters = 0;
        EmuForEachSession([&](EMU_THREAD& session) {
            waiters = session.key == 1 ? session.lockWaiters.load() : waiters;
        });
        return waiters == 3;
    }));
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo();
    CTestMachine::gGateOpen = true;
    EXPECT_TRUE(Eventually([&] { return reset.Done() && keep.Done() && stop.Done(); }));
}

namespace {

// A pipe in place of a file: its reader waits until the pipe is released, as for a slow disk.
class SlowFile {
public:
    explicit SlowFile(fs::path at)
        : path(std::move(at)) {
        fs::create_directories(path.parent_path());
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    }
    ~SlowFile() {
        LetGo();
        std::error_code ignored;
        if (fs::is_fifo(path, ignored)) {
            fs::remove(path, ignored);
        }
    }
    SlowFile(const SlowFile&) = delete;
    SlowFile& operator=(const SlowFile&) = delete;

    // Whether a read has begun. Only then can it be opened for writing.
    bool Reached() {
        writer = writer >= 0 ? writer : open(path.c_str(), O_WRONLY | O_NONBLOCK);
        return writer >= 0;
    }
    // The reader then gets an empty file.
    void LetGo() {
        if (Reached()) {
            close(std::exchange(writer, -1));
        }
    }

private:
    fs::path path;
    int writer = -1;
};

} // namespace

TEST_F(Waiting, ForAnAutosavesDiskHoldsNobodyUp) {
    CTestMachine::gGateOpen = true;
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] { return Keys().size() == 2; }));
    SlowFile archive(home.Path() / "sms" / "saves" / "game.zip");
    Settings().SetInt(L"emu_autosaves", 2);
    const Errand stop([] { EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff)); });
    letGo = [&] { archive.LetGo(); };
    ASSERT_TRUE(Eventually([&] { return archive.Reached(); }));
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo(); // with its own autosave
    EXPECT_TRUE(fs::exists(home.Path() / "sms" / "saves" / "third.zip"));
    EXPECT_FALSE(stop.Done());
    archive.LetGo();
    EXPECT_TRUE(Eventually([&] { return stop.Done(); }));
    EXPECT_TRUE(fs::is_regular_file(home.Path() / "sms" / "saves" / "game.zip"));
}

TEST_F(Waiting, ForAHotkeysDiskHoldsUpItsSessionAlone) {
    CTestMachine::gGateOpen = true;
    SlowFile archive(home.Path() / "sms" / "saves" / "game.zip");
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(Eventually([] { return Keys().size() == 2; }));
    letGo = [&] { archive.LetGo(); };
    InputSetActiveKey(1);
    Press(L"Save State", true);
    ASSERT_TRUE(Eventually([&] { return archive.Reached(); }));
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo();
    {
        const Errand reset([] { EXPECT_TRUE(EmuResetSession(1)); });
        ExpectDone(reset); // the machine is at a frame boundary
    }
    archive.LetGo();
    const uint32_t frames = FramesOf(1);
    EXPECT_TRUE(Eventually([&] { return FramesOf(1) > frames; }));
    Press(L"Save State", false);
}

TEST_F(Waiting, ForTheDiskOfAGamesMemoryHoldsNobodyUp) {
    CTestMachine::gGateOpen = true;
    ASSERT_NE(Start(kOther, "Other"), 0u);
    ASSERT_NE(Start(1, "Game", 1, {.batteryBytes = 8}), 0u);
    ASSERT_NE(Start(4, "Fourth"), 0u);
    ASSERT_TRUE(Eventually([] { return Keys().size() == 3; }));
    WithMachine(1, [](CTestMachine& machine) { machine.battery.assign(8, 5); });
    SlowFile file(home.Path() / "sms" / "saves" / "game.a5a5a5a5a5a5.sav");
    letGo = [&] { file.LetGo(); };
    const Errand keep([] { EmuKeepBatteries(); });
    ASSERT_TRUE(Eventually([&] { return file.Reached(); }));
    ExpectTheOtherPlaysOn();
    ExpectOthersComeAndGo();
    const Errand other([] { EXPECT_TRUE(EmuStopSession(4, SessionEnd::kTurnedOff)); });
    EXPECT_TRUE(Eventually([&] { return other.Done(); })) << "it was there when the look began";
    EXPECT_FALSE(keep.Done());
    const Errand stop([] { EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff)); });
    ASSERT_TRUE(Eventually([] { return Keys() == std::vector<uint32_t>{kOther}; }));
    EXPECT_FALSE(stop.Done()) << "freed while its memory is being written";
    file.LetGo();
    EXPECT_TRUE(Eventually([&] { return keep.Done() && stop.Done(); }));
}
