// The slots of saved states with a game on each machine.
#include "front/opened_game.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/picture.h"
#include "host/state_slots.h"
#include "machines/machines.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

class MachineSlots : public testing::Test {
protected:
    MachineSlots() {
        RegisterDefaultSettings(Settings());
        EmuSetMachines(BuiltInMachines());
    }

    static std::unique_ptr<EMU_THREAD> Create(const std::string& demo) {
        OPENED_GAME opened;
        EXPECT_TRUE(OpenDemo(demo, opened));
        CGameFile* const games[2] = {&opened.game, nullptr};
        auto session = EmuCreateSession(1, games, opened.options.data(), opened.title);
        EXPECT_NE(session, nullptr) << EmuLastError();
        if (session) {
            session->showStatic = 0;
        }
        return session;
    }

    static void Play(EMU_THREAD& session, int frames) {
        const AlignedBlock<uint32_t> pixels = AllocateAligned<uint32_t>(EmuPicturePixels(session));
        SOUND_FRAME sound;
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.get();
        for (int frame = 0; frame < frames; ++frame) {
            EMU_INPUT_STATE input{};
            EmuStep(session, &input, &video, &sound.frame, false);
        }
    }

    static Bytes StateOf(EMU_THREAD& session) {
        STATE_SNAPSHOT snapshot;
        EXPECT_TRUE(EmuTakeSnapshot(session, snapshot));
        return snapshot.state;
    }

    TemporaryHome home;
    std::string text;
};

} // namespace

TEST_F(MachineSlots, SaveLoadOverwriteDeleteAndAllUndosOnEveryMachine) {
    for (const std::string demo :
         {"sms-luciole", "gg-glimmer", "nes-ecume", "arcade-skywren", "md-mistral"}) {
        SCOPED_TRACE(demo);
        const std::unique_ptr<EMU_THREAD> session = Create(demo);
        ASSERT_NE(session, nullptr);
        const fs::path folder = SlotFolder(*session);
        Play(*session, 30);
        const Bytes first = StateOf(*session);
        ASSERT_TRUE(SaveToSlot(*session, 1, {1, 1}, text)) << text;
        Play(*session, 20);
        const Bytes second = StateOf(*session);
        ASSERT_NE(first, second);

        ASSERT_TRUE(LoadFromSlot(*session, 1, {2, 2}, text)) << text;
        EXPECT_EQ(StateOf(*session), first);
        Play(*session, 20);
        EXPECT_EQ(StateOf(*session), second) << "it goes on as it did";
        ASSERT_TRUE(UndoLoad(*session, {3, 3}, text)) << text;
        EXPECT_EQ(StateOf(*session), second);

        ASSERT_TRUE(SaveToSlot(*session, 1, {4, 4}, text)) << text;
        ASSERT_TRUE(UndoSlot(folder, 1, text)) << text;
        ASSERT_TRUE(LoadFromSlot(*session, 1, {5, 5}, text)) << text;
        EXPECT_EQ(StateOf(*session), first);
        ASSERT_TRUE(DeleteSlot(folder, 1, text)) << text;
        ASSERT_TRUE(UndoSlot(folder, 1, text)) << text;
        EXPECT_TRUE(ListSlots(folder).slots[0].readable);
    }
}

// A state without its chips, or with a few of them, is refused, and the game goes on.
TEST_F(MachineSlots, ACutStateLeavesEveryMachineAsItWas) {
    for (const std::string demo :
         {"sms-luciole", "gg-glimmer", "nes-ecume", "arcade-skywren", "md-mistral"}) {
        SCOPED_TRACE(demo);
        const std::unique_ptr<EMU_THREAD> session = Create(demo);
        ASSERT_NE(session, nullptr);
        Play(*session, 30);
        const Bytes state = StateOf(*session);
        Play(*session, 5);
        const Bytes was = StateOf(*session);
        for (const size_t length : {size_t{1}, size_t{5}, size_t{40}, state.size() / 4}) {
            EXPECT_FALSE(EmuGiveState(*session, std::span(state).first(length))) << length;
            EXPECT_EQ(StateOf(*session), was) << length;
        }
    }
}
