// Everything at once from several threads, for the sanitizers and the check for leftovers.
#include "host/host_fixture.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

namespace {

class Stress : public HostTest {};

constexpr uint32_t kKeys = 4;

std::chrono::seconds Duration() {
    const char* const text =
        std::getenv("OMBRELUNE_STRESS_SECONDS"); // NOLINT(concurrency-mt-unsafe)
    return std::chrono::seconds(text != nullptr ? std::max(1, std::atoi(text))
                                                : 3); // NOLINT(cert-err34-c)
}

} // namespace

TEST_F(Stress, StartStopResetRewindAndSaveAtRandom) {
    Settings().SetInt(L"emu_rewindbuffer", 1);
    std::atomic<bool> stop{false};
    std::atomic<uint32_t> starts{0};
    std::atomic<uint32_t> stops{0};
    std::atomic<uint32_t> resets{0};
    std::vector<std::thread> threads;

    for (uint32_t seed = 0; seed < 3; ++seed) {
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            while (!stop) {
                const uint32_t key = 1 + random() % kKeys;
                switch (random() % 4) {
                case 0:
                    // Two keys of one name share an archive.
                    starts += Start(key, "Game " + std::to_string(key / 2), key % 2 == 0 ? 4 : 1,
                                    {.noisySound = 1}, static_cast<uint8_t>(key)) != 0
                                  ? 1u
                                  : 0u;
                    break;
                case 1: stops += EmuStopSession(key, SessionEnd::kTurnedOff) ? 1u : 0u; break;
                case 2: resets += EmuResetSession(key) ? 1u : 0u; break;
                default:
                    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 20));
                    break;
                }
            }
        });
    }
    // The display, the pump and the statistics line.
    threads.emplace_back([&] {
        uint64_t shown = 0;
        while (!stop) {
            {
                EmuForEachSession([&](EMU_THREAD& session) {
                    const std::scoped_lock hold(EmuFrameMutex());
                    const EMU_VIDEO_FRAME* const frame = HostTakeFrame(*session.hostData.load());
                    shown += frame == nullptr ? 0 : frame->pixels[0] + frame->width;
                });
            }
            EmuForEachSession([](EMU_THREAD& session) {
                const std::scoped_lock hold(EmuSoundMutex());
                session.hostData.load()->syncBias = session.sound.soundBytes > 4000 ? 1 : -1;
                session.sound.soundBytes = 0;
            });
            EXPECT_LT(EmuFormatStats().size(), 160u);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        EXPECT_GT(shown, 0u);
    });

    // The user: random hotkeys on random sessions.
    std::mt19937 random(99);
    const auto end = std::chrono::steady_clock::now() + Duration();
    constexpr const wchar_t* kActions[] = {L"Save State", L"Load State", L"Rewind", L"Fast Forward",
                                           L"Take ScreenShot"};
    while (std::chrono::steady_clock::now() < end) {
        InputSetActiveKey(1 + random() % kKeys);
        const wchar_t* const action = kActions[random() % 50 == 0 ? 4 : random() % 4];
        Press(action, true);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 10));
        Press(action, false);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 5));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_GT(starts, 0u);
    EXPECT_GT(stops, 0u);
    EXPECT_GT(resets, 0u);
    for (uint32_t key = 1; key <= kKeys; ++key) {
        EmuStopSession(key, SessionEnd::kTurnedOff);
    }
    for (const std::string& report : TakeReports()) {
        ADD_FAILURE() << report; // nothing was damaged, refused or unwritable
    }
    RecordProperty("starts", static_cast<int>(starts));
    RecordProperty("resets", static_cast<int>(resets));
}
