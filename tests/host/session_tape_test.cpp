#include "base/files.h"
#include "facts/sms_facts.h"
#include "host/archive.h"
#include "host/frame_loop.h"
#include "host/host_fixture.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/session_tape.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <random>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr uint32_t kKey = 3;
constexpr size_t kBatteryBytes = 32;

std::vector<std::string> gNotices;

// A machine whose whole state, picture and sound is a number that every input of every frame goes into. One that
// misses an input, or gets another, is not the same again.
class CInputMachine final : public CEmuSystem, public CBattery {
public:
    CInputMachine()
        : CEmuSystem(kKey, 8, 8)
        , battery(kBatteryBytes, 0xFF) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override { number = 1; }

    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override {
        ++frames;
        for (const auto& names : {std::span<const std::wstring_view>(kSmsConsoleActions),
                                  std::span<const std::wstring_view>(kSmsPlayerActions[0]),
                                  std::span<const std::wstring_view>(kSmsPlayerActions[1])}) {
            for (const std::wstring_view name : names) {
                Take(InputIsDown(sessionKey, name) ? 1 : 0);
            }
        }
        for (const auto& pointer : input->pointer) {
            Take(pointer.x);
            Take(pointer.y);
        }
        Take(battery[0]);
        battery[0] = static_cast<uint8_t>(number);
        if (frames == differsAt) {
            Take(7);
        }
        video->width = video->height = video->visibleWidth = video->visibleHeight = 8;
        std::fill_n(video->pixels, 64, 0xFF000000 | static_cast<uint32_t>(number));
        audio->sampleCount = 4 + static_cast<uint32_t>(number % 3);
        std::fill_n(audio->samples, size_t{audio->sampleCount} * 2, static_cast<int16_t>(number));
    }

    bool LoadState(const uint8_t* data, uint32_t size) override {
        if (size != sizeof number + battery.size()) {
            return false;
        }
        std::memcpy(&number, data, sizeof number);
        std::memcpy(battery.data(), data + sizeof number, battery.size());
        return true;
    }

    uint32_t StateSize() override { return static_cast<uint32_t>(sizeof number + battery.size()); }

    void WriteState(StateOut out) override {
        out.PutBytes(&number, sizeof number);
        out.PutBytes(battery.data(), battery.size());
    }

    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override { return battery; }
    bool SetBatteryContents(std::span<const uint8_t> bytes) override {
        battery.assign(bytes.begin(), bytes.end());
        return true;
    }

    uint64_t number = 1;
    uint32_t frames = 0;
    uint32_t differsAt = 0; // the frame of this machine at which it goes wrong; 0: never
    std::vector<uint8_t> battery;

private:
    // The prime of the 64-bit FNV hash.
    void Take(uint64_t value) { number = (number ^ value) * 1099511628211u; }
};

// A session of such a machine, with a player whose inputs are random.
class TapedSession {
public:
    explicit TapedSession(const SESSION_RECORDS& records, uint8_t memory = 0xFF) {
        session.key = kKey;
        session.system = kSystemMasterSystem;
        session.gameName = "Game";
        session.showStatic = 0;
        session.archivePath = ".\\sms\\saves\\game.zip";
        session.stateEntryName = "a5a5a5a5a5a5";
        auto made = std::make_unique<CInputMachine>();
        made->battery[0] = memory;
        session.machine = std::move(made);
        CGameFile game = MakeGame(kSystemMasterSystem);
        CGameFile* const games[2] = {&game, nullptr};
        TapeBegin(session, games, MakeOptions().data(), records);
        pixels = AllocateAligned<uint32_t>(EmuPicturePixels(session) + 64);
        video.pixels = pixels.get();
    }

    CInputMachine& Machine() { return dynamic_cast<CInputMachine&>(*session.machine); }

    void Run(uint32_t frames) {
        for (uint32_t i = 0; i < frames; ++i) {
            for (uint32_t key = 4; key < 40; ++key) { // letters and digits
                if (random() % 16 == 0) {
                    InputKeyChanged(key, random() % 2 == 0);
                }
            }
            if (random() % 8 == 0) {
                input.pointer[0] = {static_cast<uint32_t>(random() % 256),
                                    static_cast<uint32_t>(random() % 192)};
            }
            EmuStep(session, &input, &video, &sound.frame, false);
            numbers.push_back(Machine().number);
        }
    }

    // Runs on without a player.
    void Replay(uint32_t frames) {
        InputClearAll();
        input = {};
        for (uint32_t i = 0; i < frames; ++i) {
            EmuStep(session, &input, &video, &sound.frame, false);
            numbers.push_back(Machine().number);
        }
    }

    void StepBack() { EmuStep(session, &input, &video, &sound.frame, true); }

    EMU_THREAD session;
    std::vector<uint64_t> numbers; // of the machine after each frame
    EMU_INPUT_STATE input{};
    EMU_VIDEO_FRAME video{};
    SOUND_FRAME sound;
    AlignedBlock<uint32_t> pixels;
    std::mt19937 random{1};
};

class Tape : public HostTest {
protected:
    Tape() {
        gNotices.clear();
        HostSetNoticeSink([](const std::string& notice) { gNotices.push_back(notice); });
        InputSetActiveKey(kKey);
        Settings().SetInt(L"emu_recordminutes", 0);
        // The actions of both players have keys, the letters and digits.
        int32_t key = 4;
        for (const INPUT_ACTION& action : InputActions()) {
            if (std::wstring_view(action.name).starts_with(L"SMS ")) {
                Settings().SetInt2(BindingSetting(action), key++, 0);
            }
        }
    }
    ~Tape() override { HostSetNoticeSink(nullptr); }

    [[nodiscard]] std::filesystem::path File() const { return HomeFolder() / "a.recording"; }

    [[nodiscard]] SESSION_RECORDS ToFile() const {
        SESSION_RECORDS records;
        records.file = File();
        return records;
    }

    static std::shared_ptr<const RECORDING> Read(const std::filesystem::path& file) {
        std::vector<uint8_t> bytes;
        std::string error;
        auto recording = std::make_shared<RECORDING>();
        EXPECT_TRUE(ReadFile(file, bytes, error)) << error;
        EXPECT_TRUE(ReadRecording(bytes, *recording, error)) << error;
        return recording;
    }

    static SESSION_RECORDS Of(std::shared_ptr<const RECORDING> recording) {
        SESSION_RECORDS records;
        records.replay = std::move(recording);
        return records;
    }
};

} // namespace

TEST_F(Tape, ReplayHasEveryInputOfThePlayer) {
    TapedSession played(ToFile());
    played.Run(333);
    ASSERT_TRUE(TapeEnd(played.session));
    const auto recording = Read(File());
    EXPECT_EQ(recording->frames, 333u);

    TapedSession replayed(Of(recording));
    replayed.Replay(333);
    EXPECT_EQ(replayed.numbers, played.numbers);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kEqual);
    EXPECT_THAT(
        gNotices,
        testing::ElementsAre("333 frames replayed: pictures and sound are those of the recording"));
}

TEST_F(Tape, PlayersKeysDoNothingWhileARecordingPlaysAndActAfterIt) {
    TapedSession played(ToFile());
    played.Run(100);
    ASSERT_TRUE(TapeEnd(played.session));

    TapedSession replayed(Of(Read(File())));
    replayed.random.seed(99);
    replayed.Run(100);
    EXPECT_EQ(replayed.numbers, played.numbers);
    EXPECT_FALSE(replayed.session.tape->replay->Running());
    const uint64_t before = replayed.Machine().number;
    TapedSession other(Of(Read(File())));
    other.Run(100);
    ASSERT_EQ(other.Machine().number, before);
    replayed.Run(20);
    other.Replay(20);
    EXPECT_NE(replayed.Machine().number, other.Machine().number);
}

TEST_F(Tape, BeginsWithTheMemoryThatTheGameHadAtPowerOn) {
    TapedSession played(ToFile(), 0x33);
    played.Run(70);
    ASSERT_TRUE(TapeEnd(played.session));
    const auto recording = Read(File());
    EXPECT_EQ(recording->memory.size(), kBatteryBytes);
    EXPECT_TRUE(recording->states.empty());
    TapedSession replayed(Of(recording));
    replayed.Replay(70);
    EXPECT_EQ(replayed.numbers, played.numbers);
}

TEST_F(Tape, ResetsAndLoadedStatesAreReplayed) {
    TapedSession played(ToFile());
    played.Run(50);
    ASSERT_TRUE(EmuSaveToArchive(played.session));
    played.Run(45);
    played.Machine().Reset();
    TapeNoteReset(played.session);
    played.Run(10);
    ASSERT_TRUE(EmuLoadFromArchive(played.session));
    played.Run(75);
    ASSERT_TRUE(TapeEnd(played.session));

    const auto recording = Read(File());
    EXPECT_EQ(recording->states.size(), 1u);
    EXPECT_EQ(recording->frames, 180u);
    TapedSession replayed(Of(recording));
    replayed.Replay(180);
    EXPECT_EQ(replayed.numbers, played.numbers);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kEqual);
}

TEST_F(Tape, RewindingIsReplayedAsTheStateInWhichItEnded) {
    Settings().SetInt(L"emu_rewindbuffer", 16);
    TapedSession played(ToFile());
    played.Run(130);
    for (int steps = 0; steps < 37; ++steps) {
        played.StepBack();
    }
    played.Run(100);
    ASSERT_TRUE(TapeEnd(played.session));

    TapedSession replayed(Of(Read(File())));
    replayed.Replay(230);
    EXPECT_EQ(replayed.numbers, played.numbers);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kEqual);
}

TEST_F(Tape, AStateBeforeTheFirstFrameIsWhereTheRecordingBegins) {
    TapedSession before({});
    before.Run(20);
    ASSERT_TRUE(EmuSaveToArchive(before.session));
    TapedSession played(ToFile());
    ASSERT_TRUE(EmuLoadFromArchive(played.session));
    played.Run(90);
    ASSERT_TRUE(TapeEnd(played.session));

    const auto recording = Read(File());
    ASSERT_EQ(recording->states.size(), 1u);
    EXPECT_EQ(recording->states[0].frame, 0u);
    TapedSession replayed(Of(recording));
    replayed.Replay(90);
    EXPECT_EQ(replayed.numbers, played.numbers);
}

// Pictures and sound are compared with every sixtieth frame.
TEST_F(Tape, ADifferenceNamesTheFirstComparedFrameAndTheLastEqualOne) {
    TapedSession played(ToFile());
    played.Run(300);
    ASSERT_TRUE(TapeEnd(played.session));

    TapedSession replayed(Of(Read(File())));
    replayed.Machine().differsAt = 130;
    replayed.Replay(300);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kDiffers);
    EXPECT_EQ(replayed.session.tape->replay->Result(),
              "the replay differs from the recording at frame 180 (picture); it was equal to frame "
              "120");
}

TEST_F(Tape, ADifferenceInTheLastFramesIsFoundInTheState) {
    TapedSession played(ToFile());
    played.Run(70);
    ASSERT_TRUE(TapeEnd(played.session));

    TapedSession replayed(Of(Read(File())));
    replayed.Machine().differsAt = 65;
    replayed.Replay(70);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kDiffers);
    EXPECT_THAT(replayed.session.tape->replay->Result(), HasSubstr("state of the machine"));
}

TEST_F(Tape, WhatWasNotEndedPlaysToItsLastWrittenChunk) {
    TapedSession played(ToFile());
    played.Run(150);
    TapeKeep(played.session); // as happens every second; then the power fails
    const auto recording = Read(File());
    EXPECT_EQ(recording->frames, 120u);

    TapedSession replayed(Of(recording));
    replayed.Replay(120);
    played.numbers.resize(120);
    EXPECT_EQ(replayed.numbers, played.numbers);
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kInterrupted);
    EXPECT_THAT(gNotices.back(), HasSubstr("was interrupted there, and is equal to frame 120"));
}

TEST_F(Tape, LoadingAStateTakesOver) {
    TapedSession played(ToFile());
    played.Run(100);
    ASSERT_TRUE(EmuSaveToArchive(played.session));
    ASSERT_TRUE(TapeEnd(played.session));

    TapedSession replayed(Of(Read(File())));
    replayed.Replay(40);
    ASSERT_TRUE(EmuLoadFromArchive(replayed.session));
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kTakenOver);
    EXPECT_THAT(gNotices.back(), StartsWith("you play on from frame 40"));
}

// Half a minute is dropped at a time, so there is up to half a minute more.
TEST_F(Tape, KeepsTheLastMinutesAndDropsWhatIsOlder) {
    Settings().SetInt(L"emu_recordminutes", 1);
    TapedSession played({});
    played.Run(9000 + 77);
    TapeSaveLastMinutes(played.session);
    ASSERT_EQ(gNotices.size(), 1u);
    ASSERT_THAT(gNotices[0], StartsWith("Recording: Game "));
    ASSERT_THAT(gNotices[0], EndsWith(".recording"));
    const auto recording =
        Read(HomeFolder() / "recordings" / gNotices[0].substr(std::strlen("Recording: ")));
    EXPECT_EQ(recording->frames, 3600u + 77);
    EXPECT_EQ(recording->states.size(), 1u);

    TapedSession replayed(Of(recording));
    replayed.Replay(recording->frames);
    EXPECT_TRUE(std::equal(replayed.numbers.begin(), replayed.numbers.end(),
                           played.numbers.end() - recording->frames));
    EXPECT_EQ(replayed.session.tape->replay->End(), ReplayEnd::kEqual);
}

TEST_F(Tape, WithoutTheSettingNothingIsKept) {
    TapedSession played({});
    EXPECT_EQ(played.session.tape, nullptr);
    played.Run(10);
    TapeSaveLastMinutes(played.session);
    EXPECT_THAT(gNotices, testing::ElementsAre("Nothing was recorded yet"));
}

TEST_F(Tape, AFileThatCannotBeWrittenIsReportedOnce) {
    SESSION_RECORDS records;
    records.file = HomeFolder() / "no such folder" / "a.recording";
    TapedSession played(records);
    EXPECT_EQ(TakeReports().size(), 1u);
    played.Run(100);
    TapeKeep(played.session);
    EXPECT_FALSE(TapeEnd(played.session));
    EXPECT_TRUE(TakeReports().empty());
}

// A session that plays a recording neither reads nor writes what the player has saved.
TEST_F(Tape, AReplayLeavesThePlayersMemoryAlone) {
    TEST_BEHAVIOUR behaviour;
    behaviour.batteryBytes = 16;
    ASSERT_NE(Start(kKey, "Game", 1, behaviour), 0u);
    WithMachine(kKey, [](CTestMachine& machine) { machine.battery.assign(16, 0x11); });
    EmuStopSession(kKey, SessionEnd::kTurnedOff);

    auto recording = std::make_shared<RECORDING>();
    recording->memory.assign(16, 0x77);
    recording->frames = 5;
    CGameFile game = MakeGame(1);
    CGameFile* const games[2] = {&game, nullptr};
    ASSERT_NE(
        EmuStartSession(kKey, games, MakeOptions(behaviour).data(), "Game", {}, Of(recording)), 0u);
    WithMachine(kKey, [](CTestMachine& machine) {
        EXPECT_EQ(machine.battery, std::vector<uint8_t>(16, 0x77));
    });
    Settings().SetInt(L"emu_autosaves", 0);
    EmuStopSession(kKey, SessionEnd::kTurnedOff);

    ASSERT_NE(Start(kKey, "Game", 1, behaviour), 0u);
    WithMachine(kKey, [](CTestMachine& machine) {
        EXPECT_EQ(machine.battery, std::vector<uint8_t>(16, 0x11));
    });
}
