#include "base/audio_rate.h"
#include "host/host_data.h"
#include "host/host_fixture.h"

#include <cstring>
#include <random>

namespace {

class HostData : public HostTest {
public:
    ~HostData() override {
        HostClose(&session);
        SetAudioRate(44100);
    }

protected:
    HostData() {
        session.key = 12;
        session.frameWidth = 320;
        session.frameHeight = 240;
        HostOpen(&session);
        data = session.hostData;
        data->noSound = false;
    }

    void Publish(uint32_t number) {
        EMU_VIDEO_FRAME* const frame = HostGetVideoFrame(&session);
        frame->width = number;
        frame->height = 1;
        HostPublishFrame(session, *data);
    }

    // The number of the frame that the display takes; 0 for none.
    uint32_t Take() {
        const EMU_VIDEO_FRAME* const frame = HostTakeFrame(*data);
        return frame == nullptr ? 0 : frame->width;
    }

    void Submit(uint32_t pairs, int16_t value) {
        std::vector<int16_t> samples(size_t{pairs} * 2, value);
        EMU_AUDIO_FRAME audio{samples.data(), AudioRate(), pairs};
        HostSubmitAudio(&session, &audio);
    }

    [[nodiscard]] int16_t PendingSample(size_t byte) const {
        int16_t sample = 0;
        std::memcpy(&sample, data->pending.data() + byte, sizeof sample);
        return sample;
    }

    EMU_THREAD session;
    EMU_HOST_DATA* data = nullptr;
};

} // namespace

TEST_F(HostData, OpensWithClearedAlignedBuffers) {
    EXPECT_EQ(data->writeIndex, 2u);
    EXPECT_EQ(data->readIndex, 0u);
    EXPECT_EQ(data->pending.size(), size_t{44100} * 4 * 2);
    for (const EMU_VIDEO_FRAME& frame : data->frames) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(frame.pixels) % 32, 0u);
        EXPECT_EQ(frame.tvKey, 12u);
        EXPECT_EQ(frame.fresh, 0);
        EXPECT_TRUE(std::all_of(frame.pixels, frame.pixels + size_t{320} * 240,
                                [](uint32_t pixel) { return pixel == 0; }));
    }
}

TEST_F(HostData, BuffersOfASmallMachineStillHoldTheStatic) {
    EMU_THREAD small;
    small.frameWidth = 16;
    small.frameHeight = 16;
    HostOpen(&small);
    for (const EMU_VIDEO_FRAME& frame : small.hostData.load()->frames) {
        std::fill_n(frame.pixels, 256 * 192, 1u); // the address sanitizer watches
        EXPECT_EQ(frame.pixels[256 * 192 - 1], 1u);
    }
    HostClose(&small);
    EXPECT_EQ(small.hostData, nullptr);
}

TEST_F(HostData, ASessionThatWasNeverOpenedIsHarmless) {
    EMU_THREAD closed;
    EMU_AUDIO_FRAME audio{};
    EXPECT_EQ(HostGetVideoFrame(&closed), nullptr);
    EXPECT_EQ(HostGetInput(&closed), nullptr);
    HostPresent(&closed, 16667);
    HostSubmitAudio(&closed, &audio);
    HostClose(&closed);
}

TEST_F(HostData, InputIsZeroForEveryFrame) {
    EMU_INPUT_STATE* const input = HostGetInput(&session);
    input->pointer[0].x = 5;
    input->pointer[1].y = 6;
    EXPECT_EQ(HostGetInput(&session), input);
    EXPECT_EQ(input->pointer[0].x, 0u);
    EXPECT_EQ(input->pointer[1].y, 0u);
}

TEST_F(HostData, DisplayTakesEachPublishedFrameOnce) {
    for (uint32_t number = 1; number <= 10; ++number) {
        Publish(number);
        EXPECT_EQ(Take(), number);
        EXPECT_EQ(Take(), 0u);
    }
}

// From the start, by hand: frame 1 goes out of buffer 2; writing moves to 0, the read index, so reading
// moves to 1.
TEST_F(HostData, IndicesMoveAsToldFromTheStart) {
    Publish(1);
    EXPECT_EQ(data->writeIndex, 0u);
    EXPECT_EQ(data->readIndex, 1u);
    EXPECT_EQ(data->frames[2].fresh, 1);
    EXPECT_EQ(data->frames[2].shown, 0);
    EXPECT_EQ(Take(), 1u);
    EXPECT_EQ(data->readIndex, 2u);
    EXPECT_EQ(data->frames[2].fresh, 0);
    EXPECT_EQ(data->frames[2].shown, 1);
}

TEST_F(HostData, FramesNobodyTookAreCountedAsMissed) {
    // Three untaken frames; each moves on to a buffer that was never shown.
    Publish(1);
    Publish(2);
    Publish(3);
    EXPECT_EQ(session.statistics.framesMissed, 3u);
    EXPECT_EQ(Take(), 2u); // the older of the two waiting ones
    EXPECT_EQ(Take(), 3u);
    EXPECT_EQ(Take(), 0u);
}

TEST_F(HostData, ADisplayThatKeepsUpMissesNothingAfterTheFirstRound) {
    for (uint32_t number = 1; number <= 4; ++number) {
        Publish(number);
        Take();
    }
    const uint32_t missed = session.statistics.framesMissed;
    for (uint32_t number = 5; number <= 100; ++number) {
        Publish(number);
        Take();
    }
    EXPECT_EQ(session.statistics.framesMissed, missed);
}

TEST_F(HostData, AHeldFrameKeepsItsBufferAndIsNotPublished) {
    const EMU_VIDEO_FRAME* const before = HostGetVideoFrame(&session);
    data->frames[data->writeIndex].hold = 1;
    Publish(1);
    EXPECT_EQ(HostGetVideoFrame(&session), before);
    EXPECT_EQ(before->hold, 0); // cleared, so that the next one goes out
    EXPECT_EQ(Take(), 0u);
    EXPECT_EQ(session.statistics.framesMissed, 0u);
    Publish(2);
    EXPECT_EQ(Take(), 2u);
}

TEST_F(HostData, HoldOfTheNewBufferIsClearedByAPublish) {
    data->frames[0].hold = 1; // the buffer that is drawn into next
    Publish(1);
    EXPECT_EQ(data->frames[0].hold, 0);
}

TEST_F(HostData, AFrameWithoutMeasuresIsNotShown) {
    HostGetVideoFrame(&session)->width = 0;
    HostPublishFrame(session, *data);
    EXPECT_EQ(HostTakeFrame(*data), nullptr);
}

TEST_F(HostData, ReadAndWriteNeverMeetInAnyOrder) {
    std::mt19937 random(1);
    uint32_t published = 0;
    uint32_t taken = 0;
    uint32_t newestTaken = 0;
    for (uint32_t i = 0; i < 200000; ++i) {
        if (random() % 2 == 0) {
            HostGetVideoFrame(&session)->hold = random() % 8 == 0;
            Publish(++published);
        } else if (const uint32_t number = Take(); number != 0) {
            EXPECT_GT(number, newestTaken); // in order, none twice
            newestTaken = number;
            ++taken;
        }
        ASSERT_NE(data->readIndex, data->writeIndex);
        ASSERT_LT(data->readIndex, 3u);
        ASSERT_LT(data->writeIndex, 3u);
        ASSERT_EQ(data->frames[data->writeIndex].fresh, 0);
        ASSERT_EQ(data->frames[data->writeIndex].hold, 0);
    }
    EXPECT_GT(taken, 1000u);
    EXPECT_GT(session.statistics.framesMissed, 1000u);
}

TEST_F(HostData, SamplesAreAppended) {
    Submit(100, 1);
    Submit(50, 2);
    EXPECT_EQ(session.sound.soundBytes, 600u);
    EXPECT_EQ(PendingSample(0), 1);
    EXPECT_EQ(PendingSample(398), 1);
    EXPECT_EQ(PendingSample(400), 2);
    EXPECT_EQ(PendingSample(598), 2);
    EXPECT_EQ(session.statistics.soundRepositions, 0u);
}

TEST_F(HostData, ASilentSessionKeepsNoSamples) {
    data->noSound = true;
    Submit(100, 1);
    EXPECT_EQ(session.sound.soundBytes, 0u);
}

TEST_F(HostData, ExactlyOneSecondFits) {
    SetAudioRate(1000);
    EMU_THREAD slow;
    HostOpen(&slow);
    slow.hostData.load()->noSound = false;
    std::vector<int16_t> samples(2000, 3);
    EMU_AUDIO_FRAME audio{samples.data(), 1000, 500};
    HostSubmitAudio(&slow, &audio);
    HostSubmitAudio(&slow, &audio);
    EXPECT_EQ(slow.sound.soundBytes, 4000u);
    EXPECT_EQ(slow.statistics.soundRepositions, 0u);
    // One pair more: the newest 500 pairs then overwrite the end of the second.
    HostSubmitAudio(&slow, &audio);
    EXPECT_EQ(slow.sound.soundBytes, 4000u);
    EXPECT_EQ(slow.statistics.soundRepositions, 1u);
    // More than a second in one frame is cut to a second.
    audio.sampleCount = 1000;
    HostSubmitAudio(&slow, &audio);
    EXPECT_EQ(slow.sound.soundBytes, 4000u);
    audio.sampleCount = 0xFFFFFFF;
    EMU_AUDIO_FRAME most{samples.data(), 1000, 1001};
    samples.resize(2002);
    most.samples = samples.data();
    HostSubmitAudio(&slow, &most);
    EXPECT_EQ(slow.sound.soundBytes, 4000u);
    HostClose(&slow);
}

TEST_F(HostData, AFullBufferOverwritesItsEnd) {
    for (int16_t i = 0; i < 60; ++i) {
        Submit(735, i); // 60 x 735 pairs are one second to the byte
    }
    EXPECT_EQ(session.sound.soundBytes, 44100u * 4);
    Submit(700, 99);
    EXPECT_EQ(session.statistics.soundRepositions, 1u);
    EXPECT_EQ(session.sound.soundBytes, 44100u * 4);
    EXPECT_EQ(PendingSample(size_t{44100 - 700} * 4), 99);
    EXPECT_EQ(PendingSample(size_t{44100 - 700} * 4 - 2), 59);
    EXPECT_EQ(PendingSample(0), 0);
}
