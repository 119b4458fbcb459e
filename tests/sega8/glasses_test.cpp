// A game for the 3D glasses in a session: the machine holds every odd frame.
#include "formats/game_file.h"
#include "front/demos.h"
#include "host/frame_loop.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/session.h"
#include "library/convert.h"
#include "machines/machines.h"
#include "sega8/sms.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace {

constexpr uint32_t kFrames = 60;
constexpr uint32_t kMovesFrom = 20;   // from here on no picture is like the one before
constexpr size_t kGlyphFreeRows = 80; // at the top and at the bottom of every picture

class Glasses : public testing::Test {
protected:
    Glasses() {
        RegisterDefaultSettings(Settings());
        Settings().SetInt(L"emu_rewindbuffer", 0);
        EmuSetMachines(BuiltInMachines());
        host.getVideoFrame = HostGetVideoFrame;
        host.getInput = HostGetInput;
        host.submitAudio = [](EMU_THREAD*, EMU_AUDIO_FRAME*) {};
        host.present = [](EMU_THREAD* session, uint32_t) {
            HostPublishFrame(*session, *session->hostData);
        };
    }

    static std::unique_ptr<EMU_THREAD> Open(bool glasses) {
        const auto demo = std::find_if(Demos().begin(), Demos().end(), [](const DEMO& candidate) {
            return std::string_view(candidate.name) == "sms-bench";
        });
        CGameFile game;
        EXPECT_TRUE(BuildKnownGame(demo->system, demo->title, demo->image, {}, game));
        game.selectedName = 0;
        CGameFile* const games[2] = {&game, nullptr};
        SMS_OPTIONS options{};
        options.glasses = glasses ? 1 : 0;
        auto session = EmuCreateSession(1, games, &options, demo->title);
        session->showStatic = 0;
        return session;
    }

    // The picture without the rows that the glyph may cover.
    static std::vector<uint32_t> Rows(const EMU_VIDEO_FRAME& picture) {
        const size_t rows = kGlyphFreeRows * picture.width;
        const uint32_t* const end = picture.pixels + size_t{picture.width} * picture.height;
        std::vector<uint32_t> pixels(picture.pixels, picture.pixels + rows);
        pixels.insert(pixels.end(), end - rows, end);
        return pixels;
    }

    // Every frame as the machine draws it.
    static std::vector<std::vector<uint32_t>> Frames() {
        const auto session = Open(false);
        const auto pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.get();
        EMU_INPUT_STATE input{};
        SOUND_FRAME sound;
        std::vector<std::vector<uint32_t>> frames(1);
        for (uint32_t frame = 1; frame <= kFrames; ++frame) {
            EmuStep(*session, &input, &video, &sound.frame, false);
            frames.push_back(Rows(video));
        }
        return frames;
    }

    EMU_HOST_CALLBACKS host{};
};

} // namespace

// Fast forward shows the same eye's picture whenever its key is pressed.
TEST_F(Glasses, FastForwardShowsAnEvenFrameInEveryRound) {
    const std::vector<std::vector<uint32_t>> frames = Frames();
    for (uint32_t frame = kMovesFrom; frame <= kFrames; ++frame) {
        ASSERT_FALSE(frames[frame] == frames[frame - 1]) << frame;
    }
    for (uint32_t before = 0; before < 2; ++before) {
        const auto session = Open(true);
        HostOpen(session.get());
        FRAME_LOOP loop;
        for (uint32_t i = 0; i < before; ++i) {
            EmuRound(*session, host, loop, {});
        }
        for (uint32_t newest = before + 2; newest <= kFrames; newest += 2) {
            EmuRound(*session, host, loop, {.fastForward = true});
            const EMU_VIDEO_FRAME* const shown = HostTakeFrame(*session->hostData);
            ASSERT_NE(shown, nullptr) << "frozen at frame " << newest;
            EXPECT_TRUE(Rows(*shown) == frames[newest - newest % 2]) << newest;
        }
        HostClose(session.get());
    }
}
