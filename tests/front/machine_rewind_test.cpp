// Rewinding a game on each machine.
#include "front/opened_game.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/picture.h"
#include "host/rewind.h"
#include "machines/machines.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kFrames = 150;

class MachineRewind : public testing::TestWithParam<const char*> {
protected:
    MachineRewind() {
        RegisterDefaultSettings(Settings());
        Settings().SetInt(L"emu_rewindbuffer", 64);
        EmuSetMachines(BuiltInMachines());
        EmuMachines().buildTables();
        InputSetActiveKey(1);
        OPENED_GAME opened;
        EXPECT_TRUE(OpenDemo(GetParam(), opened));
        CGameFile* const games[2] = {&opened.game, nullptr};
        session = EmuCreateSession(1, games, opened.options.data(), opened.title);
        session->showStatic = 0;
        pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        video.pixels = pixels.get();
    }

    ~MachineRewind() override {
        for (const uint32_t key : kKeys) {
            InputKeyChanged(key, false);
        }
    }

    void Play(bool rewind) {
        for (const uint32_t key : kKeys) {
            InputKeyChanged(key, random() % 3 == 0);
        }
        EMU_INPUT_STATE input{};
        EXPECT_TRUE(EmuStep(*session, &input, &video, &sound.frame, rewind));
    }

    // As a state for an archive is written: into memory of its own.
    [[nodiscard]] Bytes Present() {
        uint32_t size = 0;
        const StateBlob blob = session->machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    [[nodiscard]] Bytes Newest() const {
        const REWIND_STACK& stack = session->rewind;
        return {stack.rewindHead.get(), stack.rewindHead.get() + stack.rewindHeadBytes};
    }

    static constexpr uint32_t kKeys[] = {82, 81, 80, 79, 4, 22, 29, 27, 40, 34, 30};

    TemporaryHome home;
    std::unique_ptr<EMU_THREAD> session;
    AlignedBlock<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
    SOUND_FRAME sound;
    std::mt19937 random{1};
};

} // namespace

// Also after a part of them has been played back, and new ones have come.
TEST_P(MachineRewind, EveryStateComesBackByteForByte) {
    std::vector<Bytes> states;
    for (uint32_t frame = 0; frame < 2 * kFrames; ++frame) {
        if (frame == kFrames) {
            for (uint32_t back = 0; back < kFrames / 2; ++back) {
                ASSERT_EQ(Newest(), states.back()) << "frame " << states.size();
                Play(true);
                states.pop_back();
            }
        }
        Play(false);
        states.push_back(Present());
    }
    while (session->rewind.rewindCount > 0) {
        ASSERT_EQ(Newest(), states.back()) << "frame " << states.size();
        RewindPop(session->rewind);
        states.pop_back();
    }
    EXPECT_TRUE(states.empty());
}

INSTANTIATE_TEST_SUITE_P(EveryMachine, MachineRewind,
                         testing::Values("sms-luciole", "gg-glimmer", "arcade-skywren", "nes-ecume",
                                         "md-mistral"));
