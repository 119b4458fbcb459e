// Real sessions with the real pump and SDL's driver without a device: they start and stop while the
// pump visits them.

#include "audio/sound.h"
#include "host/host_data.h"
#include "host/host_fixture.h"
#include "settings/bindings.h"

#include <SDL.h>

#include <chrono>
#include <thread>

namespace {

class PumpedSessions : public HostTest {
protected:
    PumpedSessions() {
        SDL_setenv("SDL_AUDIODRIVER", "dummy", 1);
        EMU_HOST_CALLBACKS host = TestHost();
        host.open = [](EMU_THREAD* session) {
            HostOpen(session);
            CreateSoundChannel(*session);
        };
        host.close = [](EMU_THREAD* session) {
            DestroySoundChannel(*session);
            HostClose(session);
        };
        host.getVideoFrame = HostGetVideoFrame;
        host.getInput = HostGetInput;
        host.submitAudio = HostSubmitAudio;
        EmuSetHost(host);
    }
    ~PumpedSessions() override {
        StopSoundPump();
        CloseSoundDevice();
        InputSetActiveKey(0);
        EmuSetHost(TestHost());
    }
};

} // namespace

TEST_F(PumpedSessions, ComeAndGoWhileThePumpVisitsThem) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    StartSoundPump();
    for (uint32_t round = 0; round < 20; ++round) {
        for (uint32_t key = 1; key <= 3; ++key) {
            ASSERT_NE(Start(key), 0u) << EmuLastError();
        }
        InputSetActiveKey(round % 4);
        SoundSetRoomVisible(round % 2 == 0);
        if (round % 5 == 4) {
            CloseSoundDevice();
            ASSERT_TRUE(OpenSoundDevice(error)) << error;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        for (uint32_t key = 1; key <= 3; ++key) {
            EXPECT_TRUE(EmuStopSession(key, SessionEnd::kTurnedOff));
        }
    }
    uint32_t left = 0;
    EmuForEachSession([&left](EMU_THREAD&) { ++left; });
    EXPECT_EQ(left, 0u);
}
