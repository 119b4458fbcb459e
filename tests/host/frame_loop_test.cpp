#include "base/audio_rate.h"
#include "base/files.h"
#include "base/random.h"
#include "host/frame_loop.h"
#include "host/host_fixture.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/static.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/allocation_counter.h"
#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <set>

namespace {

// The arguments of the last present and submit.
uint32_t gPresented = 0;
std::vector<int16_t> gSubmitted;
std::vector<std::string> gNotices;

class FrameLoop : public HostTest {
public:
    ~FrameLoop() override {
        HostSetNoticeSink(nullptr);
        if (session) {
            HostClose(session.get());
        }
    }

protected:
    FrameLoop() {
        gPresented = 0;
        gSubmitted.clear();
        gNotices.clear();
        HostSetNoticeSink([](const std::string& notice) { gNotices.push_back(notice); });
        Settings().SetInt(L"emu_rewindbuffer", 1);
        host = TestHost();
        host.present = [](EMU_THREAD* target, uint32_t length) {
            gPresented = length;
            HostPresent(target, length);
        };
        host.submitAudio = [](EMU_THREAD*, EMU_AUDIO_FRAME* audio) {
            gSubmitted.assign(audio->samples, audio->samples + size_t{audio->sampleCount} * 2);
        };
    }

    void Open(const TEST_BEHAVIOUR& behaviour = {}, uint16_t system = 1) {
        session = Create(behaviour, "Game", system);
        ASSERT_NE(session, nullptr);
        HostOpen(session.get());
        machine = &MachineOf(*session);
        loop = std::make_unique<FRAME_LOOP>();
    }

    // One round; returns the picture that it drew.
    const EMU_VIDEO_FRAME& Round(const HOTKEYS& keys = {}) {
        const EMU_VIDEO_FRAME* const drawn = HostGetVideoFrame(session.get());
        EmuRound(*session, host, *loop, keys);
        return *drawn;
    }

    // A step into a picture of the test's own; returns the machine frame that was drawn, 0 for none.
    uint32_t Step(bool rewind) {
        return EmuStep(*session, &input, &video, &sound.frame, rewind) ? video.pixels[0] & 0xFFFFFF
                                                                       : 0;
    }

    void OpenBare(const TEST_BEHAVIOUR& behaviour = {}) {
        session = Create(behaviour);
        ASSERT_NE(session, nullptr);
        machine = &MachineOf(*session);
        pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        video.pixels = pixels.get();
    }

    std::unique_ptr<EMU_THREAD> session;
    CTestMachine* machine = nullptr;
    std::unique_ptr<FRAME_LOOP> loop;
    EMU_HOST_CALLBACKS host{};
    AlignedBlock<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
};

constexpr HOTKEYS kForward{.fastForward = true};
constexpr HOTKEYS kRewind{.rewind = true};
constexpr HOTKEYS kSave{.saveState = true};
constexpr HOTKEYS kLoad{.loadState = true};

uint32_t FrameOf(const EMU_VIDEO_FRAME& video) {
    return video.pixels[0] & 0xFFFFFF;
}

bool HasGlyph(const EMU_VIDEO_FRAME& video, SpeedGlyph direction) {
    const uint32_t column = video.width / 2 - (direction == SpeedGlyph::kForward ? 26 : 6);
    const uint32_t shade = direction == SpeedGlyph::kForward ? 0xFFFFFFFF : 0xFF000000;
    return video.pixels[size_t{video.height / 2 - 10} * video.width + column] == shade;
}

} // namespace

TEST_F(FrameLoop, LengthIsReckonedInSinglePrecisionAndTruncated) {
    EXPECT_EQ(EmuFrameMicroseconds(735, 44100), 16666u);
    EXPECT_EQ(EmuFrameMicroseconds(882, 44100), 20000u);
    EXPECT_EQ(EmuFrameMicroseconds(44, 44100), 997u);
    EXPECT_EQ(EmuFrameMicroseconds(0, 44100), 0u);
    EXPECT_EQ(EmuFrameMicroseconds(4096, 0), 0u);
    EXPECT_EQ(EmuFrameMicroseconds(UINT32_MAX, 1), 4294967040u);
}

TEST_F(FrameLoop, FastForwardSettingIsBounded) {
    EXPECT_EQ(EmuFastForwardSteps(-1), 2u);
    EXPECT_EQ(EmuFastForwardSteps(INT32_MIN), 2u);
    EXPECT_EQ(EmuFastForwardSteps(0), 0u);
    EXPECT_EQ(EmuFastForwardSteps(10), 10u);
    EXPECT_EQ(EmuFastForwardSteps(11), 10u);
}

TEST_F(FrameLoop, ARoundRunsOneFrameAndPresentsItsLength) {
    Open();
    const EMU_VIDEO_FRAME& drawn = Round();
    EXPECT_EQ(FrameOf(drawn), 1u);
    EXPECT_EQ(machine->runs, 1u);
    EXPECT_EQ(gPresented, 16666u);
    EXPECT_EQ(gSubmitted.size(), 1470u);
    EXPECT_EQ(gSubmitted[2], 101); // frame 1, second pair
    EXPECT_EQ(loop->sound.frame.sampleRate, AudioRate());
}

TEST_F(FrameLoop, AFrameWithoutSoundSubmitsNothingAndPresentsNoLength) {
    Open({.sampleCount = 0});
    gPresented = 1;
    Round();
    EXPECT_EQ(gPresented, 0u);
    EXPECT_TRUE(gSubmitted.empty());
}

TEST_F(FrameLoop, MoreSamplesThanTheBlockHoldsAreCut) {
    Open({.sampleCount = 0xFFFFFFFF});
    Round();
    EXPECT_EQ(gSubmitted.size(), 8192u);
}

TEST_F(FrameLoop, APictureLargerThanTheMachineDeclaredIsCut) {
    Open({.rotated = 1, .width = 320, .height = 5000, .visibleX = 300, .visibleWidth = 900});
    const EMU_VIDEO_FRAME& drawn = Round(kForward);
    EXPECT_EQ(drawn.height, 320u); // turned
    EXPECT_EQ(drawn.width, 240u);
    EXPECT_EQ(drawn.visibleY, 300u);
    EXPECT_EQ(drawn.visibleHeight, 20u);
}

TEST_F(FrameLoop, ARotatedPictureIsTurnedBeforeItIsPublished) {
    Open({.rotated = 1});
    const EMU_VIDEO_FRAME& drawn = Round();
    EXPECT_EQ(drawn.width, 240u);
    EXPECT_EQ(drawn.height, 320u);
    EXPECT_EQ(drawn.fresh, 1);
}

TEST_F(FrameLoop, AScreenshotIsTakenBeforeThePictureIsTurned) {
    Open({.rotated = 1});
    InputSetActiveKey(session->key);
    Press(L"Take ScreenShot", true);
    const EMU_VIDEO_FRAME& drawn = Round();
    EXPECT_EQ(drawn.width, 240u);
    Press(L"Take ScreenShot", false);
    Round();
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(home.Path() / "screenshots")) {
        files.push_back(entry.path());
    }
    ASSERT_EQ(files.size(), 1u);
    const auto png = home.Read("screenshots/" + files[0].filename().string());
    ASSERT_GT(png.size(), 54u);
    EXPECT_EQ(png[18] << 8 | png[19], 320); // the width, highest byte first
    EXPECT_EQ(png[22] << 8 | png[23], 240);
}

TEST_F(FrameLoop, FastForwardRunsSeveralFramesAndDrawsItsGlyph) {
    Settings().SetInt(L"emu_fastforward", 4);
    Open();
    const EMU_VIDEO_FRAME& drawn = Round(kForward);
    EXPECT_EQ(machine->runs, 4u);
    EXPECT_EQ(FrameOf(drawn), 4u);
    EXPECT_TRUE(HasGlyph(drawn, SpeedGlyph::kForward));
    EXPECT_EQ(session->rewind.rewindCount, 4u); // recorded as usual
    EXPECT_EQ(gSubmitted[0], 400);              // only the last frame is heard
}

// Frames 1, 3, 5 and so on are held. From any frame and at any speed, every round shows its newest
// frame that is not held.
TEST_F(FrameLoop, FastForwardShowsTheNewestFrameThatIsNotHeld) {
    for (const uint32_t steps : {2u, 3u, 4u, 9u, 10u}) {
        for (uint32_t before = 0; before < 2; ++before) {
            Settings().SetInt(L"emu_fastforward", static_cast<int32_t>(steps));
            Open({.glasses = 1});
            EMU_HOST_DATA& data = *session->hostData;
            for (uint32_t i = 0; i < before; ++i) {
                Round();
            }
            for (uint32_t round = 1; round <= 6; ++round) {
                const uint32_t newest = before + round * steps;
                Round(kForward);
                const EMU_VIDEO_FRAME* const shown = HostTakeFrame(data);
                ASSERT_NE(shown, nullptr) << steps << " steps, round " << round;
                EXPECT_EQ(FrameOf(*shown), newest - newest % 2);
                EXPECT_TRUE(HasGlyph(*shown, SpeedGlyph::kForward));
                EXPECT_EQ(machine->runs, newest); // the set speed
                EXPECT_EQ(gSubmitted[0],
                          static_cast<int16_t>(newest * 100)); // the last frame's sound
                EXPECT_EQ(session->rewind.rewindCount, newest);
            }
            HostClose(session.get());
        }
    }
}

// One frame a round is normal play: every second frame is held.
TEST_F(FrameLoop, AFastRoundOfHeldFramesAloneIsHeld) {
    Settings().SetInt(L"emu_fastforward", 1);
    Open({.glasses = 1});
    EMU_HOST_DATA& data = *session->hostData;
    Round(kForward);
    EXPECT_EQ(HostTakeFrame(data), nullptr);
    Round(kForward);
    const EMU_VIDEO_FRAME* const shown = HostTakeFrame(data);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(FrameOf(*shown), 2u);
}

TEST_F(FrameLoop, APictureThatAHeldOneWasDrawnOverIsStillTurned) {
    Open({.glasses = 1, .rotated = 1});
    Round();
    const EMU_VIDEO_FRAME& drawn = Round(kForward); // frames 2 and 3
    EXPECT_EQ(FrameOf(drawn), 2u);
    EXPECT_EQ(drawn.width, 240u);
    EXPECT_EQ(drawn.height, 320u);
}

TEST_F(FrameLoop, FastForwardIsFixedForTheLifeOfTheSession) {
    Settings().SetInt(L"emu_fastforward", 3);
    Open();
    Settings().SetInt(L"emu_fastforward", 9);
    Round(kForward);
    EXPECT_EQ(machine->runs, 3u);
}

TEST_F(FrameLoop, FastForwardBeatsRewind) {
    Open();
    Round();
    const EMU_VIDEO_FRAME& drawn = Round({.fastForward = true, .rewind = true});
    EXPECT_EQ(FrameOf(drawn), 3u);
    EXPECT_EQ(session->rewind.rewindSteps, 0u);
}

TEST_F(FrameLoop, FastForwardOfZeroDrawsOnlyItsGlyphOverTheOldPicture) {
    Settings().SetInt(L"emu_fastforward", 0);
    Open();
    Round();
    Round();
    Round();
    for (int i = 0; i < 5; ++i) {
        const EMU_VIDEO_FRAME& drawn = Round(kForward);
        EXPECT_EQ(FrameOf(drawn), 3u); // in each of the three buffers
        EXPECT_TRUE(HasGlyph(drawn, SpeedGlyph::kForward));
        EXPECT_EQ(drawn.width, 320u);
    }
    EXPECT_EQ(machine->runs, 3u);
    EXPECT_EQ(gPresented, 16666u);
}

TEST_F(FrameLoop, RewindWithoutABufferActsAsIfNotPressed) {
    for (const int32_t setting : {0, -5}) {
        Settings().SetInt(L"emu_rewindbuffer", setting);
        Open();
        Round();
        const EMU_VIDEO_FRAME& drawn = Round(kRewind);
        EXPECT_EQ(FrameOf(drawn), 2u);
        EXPECT_EQ(session->rewind.rewindCount, 0u);
        EXPECT_FALSE(HasGlyph(drawn, SpeedGlyph::kBack));
        HostClose(session.get());
    }
}

// States 1 to 5 are kept; going back loads each, newest first, and shows the frame after it.
TEST_F(FrameLoop, RewindPlaysHistoryBackwards) {
    OpenBare();
    for (uint32_t frame = 1; frame <= 5; ++frame) {
        EXPECT_EQ(Step(false), frame);
    }
    EXPECT_EQ(session->rewind.rewindCount, 5u);
    for (uint32_t taken = 1; taken <= 5; ++taken) {
        EXPECT_EQ(Step(true), 7 - taken);
        EXPECT_EQ(session->rewind.rewindSteps, taken);
        EXPECT_EQ(session->rewind.rewindCount, 5 - taken);
        EXPECT_TRUE(HasGlyph(video, SpeedGlyph::kBack));
    }
    EXPECT_EQ(session->rewind.rewindHead, nullptr);
}

TEST_F(FrameLoop, PlayGoesOnFromWhereRewindEnded) {
    OpenBare();
    for (int i = 0; i < 10; ++i) {
        Step(false);
    }
    Step(true);
    Step(true);
    EXPECT_EQ(Step(true), 9u); // state 8, and one frame on
    EXPECT_EQ(session->rewind.rewindCount, 7u);
    EXPECT_EQ(Step(false), 10u);
    EXPECT_EQ(session->rewind.rewindSteps, 0u);
    EXPECT_EQ(session->rewind.rewindCount, 8u); // recording continues on the remaining states
    EXPECT_EQ(Step(true), 11u);
    EXPECT_EQ(Step(true), 8u); // state 7, from before the rewind
}

TEST_F(FrameLoop, RewoundSoundIsTheLeftChannelReversed) {
    OpenBare({.sampleCount = 5});
    Step(false);
    Step(true); // state 1, and frame 2: left 200 to 204
    const std::vector<int16_t> heard(sound.frame.samples, sound.frame.samples + 10);
    EXPECT_EQ(heard, (std::vector<int16_t>{204, 204, 203, 203, 202, 202, 201, 201, 200, 200}));
}

TEST_F(FrameLoop, ReversingWorksForAnyNumberOfPairs) {
    for (uint32_t pairs = 0; pairs < 7; ++pairs) {
        std::vector<int16_t> samples;
        std::vector<int16_t> expected;
        for (uint32_t i = 0; i < pairs; ++i) {
            samples.insert(samples.end(), {static_cast<int16_t>(i), -1});
            const auto mirrored = static_cast<int16_t>(pairs - 1 - i);
            expected.insert(expected.end(), {mirrored, mirrored});
        }
        EMU_AUDIO_FRAME audio{samples.data(), 44100, pairs};
        EmuReverseSound(audio);
        EXPECT_EQ(samples, expected) << pairs;
    }
}

TEST_F(FrameLoop, WhenRewindRunsOutPictureAndSoundStay) {
    Open({.rotated = 1});
    Round();
    Round();
    Round(kRewind);
    const EMU_VIDEO_FRAME last = Round(kRewind);
    const std::vector<uint32_t> shown(last.pixels, last.pixels + size_t{320} * 240);
    const std::vector<int16_t> heard = gSubmitted;
    gSubmitted.clear();
    const uint32_t runs = machine->runs;
    for (int i = 0; i < 4; ++i) {
        const EMU_VIDEO_FRAME& drawn = Round(kRewind);
        EXPECT_EQ(std::vector<uint32_t>(drawn.pixels, drawn.pixels + size_t{320} * 240), shown);
        EXPECT_EQ(drawn.width, 240u); // turned once
        EXPECT_EQ(gSubmitted, heard);
        EXPECT_EQ(gPresented, 16666u);
    }
    EXPECT_EQ(machine->runs, runs);
    EXPECT_EQ(session->rewind.rewindCount, 0u);
}

// States of 64 KiB of noise: the limit is used up to less than one of them.
TEST_F(FrameLoop, StackIsBoundedByTheSettingReadAfreshEachFrame) {
    OpenBare({.noisyState = 1, .stateBytes = 65536});
    constexpr uint64_t kStateAtMost = 65536 + 1024;
    const auto play = [&](int32_t mebibytes) {
        Settings().SetInt(L"emu_rewindbuffer", mebibytes);
        for (int i = 0; i < 40; ++i) {
            Step(false);
        }
        const uint64_t limit = RewindLimitBytes(mebibytes);
        EXPECT_LE(RewindBytes(session->rewind), limit);
        EXPECT_GT(RewindBytes(session->rewind), limit - kStateAtMost);
    };
    play(1);
    play(2);
    const uint32_t held = session->rewind.rewindCount;
    Settings().SetInt(L"emu_rewindbuffer", 0);
    Step(false);
    EXPECT_EQ(session->rewind.rewindCount, held); // nothing is saved, and nothing taken away
    Settings().SetInt(L"emu_rewindbuffer", 1);
    EXPECT_EQ(Step(true), 81u); // state 80: frame 81 had none
}

TEST_F(FrameLoop, AStateWithoutMemoryIsMissingAndSaidOnce) {
    OpenBare({.noisyState = 1, .stateBytes = 65536});
    Step(false);
    Step(false);
    {
        const AllocationLimit limit(0, 60000);
        EXPECT_EQ(Step(false), 3u);
        EXPECT_EQ(Step(false), 4u);
    }
    EXPECT_THAT(gNotices, testing::ElementsAre(
                              "There is not enough memory to record every frame for rewinding"));
    EXPECT_EQ(Step(false), 5u);
    EXPECT_EQ(session->rewind.rewindCount, 3u);
    EXPECT_EQ(Step(true), 6u); // state 5
    EXPECT_EQ(Step(true), 3u); // state 2
    EXPECT_EQ(Step(true), 2u);
    EXPECT_EQ(gNotices.size(), 1u);
}

TEST_F(FrameLoop, AStateThatCannotBeSavedIsNotPushed) {
    OpenBare({.failSave = 1});
    Step(false);
    EXPECT_EQ(session->rewind.rewindCount, 0u);
    EXPECT_EQ(session->rewind.rewindHead, nullptr);
}

TEST_F(FrameLoop, AStateThatCannotBeLoadedStillRunsAFrame) {
    OpenBare();
    Step(false);
    machine->behaviour.failLoad = 1;
    EXPECT_EQ(Step(true), 2u);
    EXPECT_EQ(session->rewind.rewindCount, 0u);
}

TEST_F(FrameLoop, StaticRunsSeventyFramesBeforeTheMachine) {
    Open({}, 4); // smaller than the static
    session->showStatic = 1;
    for (uint32_t frame = 1; frame <= 70; ++frame) {
        EXPECT_EQ(session->showStatic, 1);
        const EMU_VIDEO_FRAME& drawn = Round();
        EXPECT_EQ(drawn.width, 256u);
        EXPECT_EQ(drawn.height, 192u);
        EXPECT_EQ(drawn.visibleWidth, 256u);
        EXPECT_EQ(drawn.visibleHeight, 192u);
        EXPECT_EQ(drawn.visibleX, 0u);
        EXPECT_EQ(drawn.aspect, 1.33f);
        EXPECT_EQ(drawn.visibleAspect, 1.33f);
        EXPECT_EQ(session->staticFrames, frame);
        EXPECT_EQ(gSubmitted.size(), 44100u / 60 * 2);
    }
    EXPECT_EQ(session->showStatic, 0);
    EXPECT_EQ(machine->runs, 0u);
    EXPECT_EQ(FrameOf(Round()), 1u);
    EXPECT_EQ(session->staticFrames, 70u);
}

TEST_F(FrameLoop, StaticIsGreyNoiseAndOneSampleForBothChannels) {
    OpenBare();
    SeedRandom(5);
    EmuStaticFrame(*session, video, sound.frame);
    std::set<uint32_t> levels;
    for (uint32_t i = 0; i < 256 * 192; ++i) {
        const uint32_t grey = video.pixels[i] & 0xFF;
        ASSERT_EQ(video.pixels[i], 0xFF000000 | grey << 16 | grey << 8 | grey);
        levels.insert(grey);
    }
    EXPECT_EQ(levels.size(), 255u); // 0 to 254
    EXPECT_EQ(*levels.rbegin(), 254u);
    std::set<int16_t> samples;
    for (uint32_t i = 0; i < sound.frame.sampleCount; ++i) {
        ASSERT_EQ(sound.frame.samples[size_t{2} * i], sound.frame.samples[size_t{2} * i + 1]);
        samples.insert(sound.frame.samples[size_t{2} * i]);
    }
    EXPECT_GE(*samples.begin(), -1500);
    EXPECT_LE(*samples.rbegin(), 1499);
    EXPECT_LT(*samples.begin(), -1000);
    EXPECT_GT(*samples.rbegin(), 1000);
}

TEST_F(FrameLoop, StaticNeitherRewindsNorRecords) {
    OpenBare();
    session->showStatic = 1;
    EXPECT_TRUE(EmuStep(*session, &input, &video, &sound.frame, true));
    EXPECT_TRUE(EmuStep(*session, &input, &video, &sound.frame, false));
    EXPECT_EQ(machine->runs, 0u);
    EXPECT_EQ(session->rewind.rewindCount, 0u);
    EXPECT_EQ(session->staticFrames, 2u);
}

TEST_F(FrameLoop, StaticAtAnyRateStaysWithinItsBlock) {
    OpenBare();
    sound.frame.sampleRate = 1000000;
    EmuStaticFrame(*session, video, sound.frame);
    EXPECT_EQ(sound.frame.sampleCount, 4096u);
}

TEST_F(FrameLoop, SaveAndLoadWorkOnceForEachPress) {
    Open();
    const std::filesystem::path archive = ResolvePath(session->archivePath);
    Round();
    Round(kSave); // saves after frame 1
    ASSERT_TRUE(std::filesystem::exists(archive));
    std::filesystem::remove(archive);
    Round(kSave); // still held
    EXPECT_FALSE(std::filesystem::exists(archive));
    Round();
    Round(kSave); // frames 1 to 4 have run
    ASSERT_TRUE(std::filesystem::exists(archive));
    Round();
    EXPECT_EQ(FrameOf(Round(kLoad)), 5u); // state 4, and the frame after it
    EXPECT_EQ(FrameOf(Round(kLoad)), 6u); // held: no second load
    Round();
    EXPECT_EQ(FrameOf(Round(kLoad)), 5u);
}

TEST_F(FrameLoop, TheHotkeysSayWhatBecameOfTheState) {
    using testing::ElementsAre;
    Open();
    Round(kLoad);
    EXPECT_THAT(gNotices, ElementsAre("No saved state to load"));
    Round();
    Round(kSave);
    Round();
    Round(kLoad);
    EXPECT_THAT(gNotices, ElementsAre("No saved state to load", "State saved", "State loaded"));
    gNotices.clear();
    machine->behaviour.failLoad = 1;
    Round();
    Round(kLoad);
    EXPECT_THAT(gNotices, ElementsAre("The saved state cannot be loaded"));
    gNotices.clear();
    machine->behaviour.failSave = 1;
    Round(kSave);
    EXPECT_THAT(gNotices, ElementsAre()) << "a failed save is reported with its cause instead";
}

TEST_F(FrameLoop, LoadEndsTheStatic) {
    Open();
    Round(kSave);
    session->showStatic = 1;
    EXPECT_EQ(FrameOf(Round(kLoad)), 1u);
    EXPECT_EQ(session->showStatic, 0);
}

TEST_F(FrameLoop, AHeldPictureStaysInItsBuffer) {
    Open({.hold = 1});
    const EMU_VIDEO_FRAME* const first = &Round();
    EXPECT_EQ(HostGetVideoFrame(session.get()), first);
    machine->behaviour.hold = 0;
    EXPECT_EQ(&Round(), first);
    EXPECT_EQ(first->fresh, 1);
}

TEST_F(FrameLoop, HotkeysReachTheActiveSessionAlone) {
    InputSetActiveKey(3);
    Press(L"Rewind", true);
    EXPECT_TRUE(EmuPollHotkeys(3).rewind);
    EXPECT_FALSE(EmuPollHotkeys(3).fastForward);
    EXPECT_FALSE(EmuPollHotkeys(4).rewind);
    Press(L"Rewind", false);
    Press(L"Fast Forward", true);
    EXPECT_TRUE(EmuPollHotkeys(3).fastForward);
    Press(L"Save State", true);
    Press(L"Load State", true);
    EXPECT_TRUE(EmuPollHotkeys(3).saveState);
    EXPECT_TRUE(EmuPollHotkeys(3).loadState);
    InputSetWalkingRoom(true);
    const HOTKEYS none = EmuPollHotkeys(3);
    EXPECT_FALSE(none.fastForward || none.rewind || none.saveState || none.loadState);
}

TEST_F(FrameLoop, ATapIsDownInOneFrameOfTheMachine) {
    Open();
    InputSetActiveKey(session->key);
    Press(L"SMS P1 BUTTON1", true);
    Press(L"SMS P1 BUTTON1", false);
    Round();
    EXPECT_EQ(machine->pressed, 1u);
    Round();
    EXPECT_EQ(machine->pressed, 1u);
    Press(L"SMS P1 BUTTON1", true);
    Press(L"SMS P1 BUTTON1", false);
    Round(kForward);
    EXPECT_EQ(machine->runs, 4u);
    EXPECT_EQ(machine->pressed, 2u) << "in one of the two frames of a fast round";
}

TEST_F(FrameLoop, ATapDuringStaticIsNotPlayedAfterwards) {
    Open();
    InputSetActiveKey(session->key);
    session->showStatic = 1;
    Press(L"SMS P1 BUTTON1", true);
    Press(L"SMS P1 BUTTON1", false);
    Round();
    session->showStatic = 0;
    Round();
    EXPECT_EQ(machine->runs, 1u);
    EXPECT_EQ(machine->pressed, 0u);
}

TEST_F(FrameLoop, ATapWhileFastForwardRunsNoFramesIsNotPlayedAfterwards) {
    Settings().SetInt(L"emu_fastforward", 0);
    Open();
    InputSetActiveKey(session->key);
    Round();
    Press(L"SMS P1 BUTTON1", true);
    Press(L"SMS P1 BUTTON1", false);
    Round(kForward);
    Round(kForward);
    Round();
    EXPECT_EQ(machine->runs, 2u);
    EXPECT_EQ(machine->pressed, 0u);
}

// On a very busy computer a session may pause for longer than a tap is kept, so several are made;
// without its own looker the session would see hardly one in a thousand.
TEST_F(FrameLoop, ATapOfAHotkeyActsOnce) {
    static std::atomic<uint32_t> saved{0};
    saved = 0;
    HostSetNoticeSink([](const std::string& notice) { saved += notice == "State saved" ? 1 : 0; });
    Start(3);
    InputSetActiveKey(3);
    uint32_t taps = 0;
    for (; taps < 5 && saved == 0; ++taps) {
        Press(L"Save State", true);
        Press(L"Save State", false);
        const int32_t end = gCounts.presents + 3;
        ASSERT_TRUE(Eventually([&] { return gCounts.presents >= end; }));
    }
    EmuStopSession(3, SessionEnd::kTurnedOff);
    EXPECT_EQ(saved, 1u) << taps << " taps";
}

TEST_F(FrameLoop, ASessionWithoutBuffersOnlyWaits) {
    session = Create();
    loop = std::make_unique<FRAME_LOOP>();
    gPresented = 1;
    EmuRound(*session, host, *loop, {});
    EXPECT_EQ(gPresented, 0u);
    EXPECT_EQ(MachineOf(*session).runs, 0u);
}
