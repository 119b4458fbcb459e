// What rewinding costs with our own games, played with random keys: the memory that a state takes, how much of the past
// that makes, the work of a frame with and without it, and the time of a step back.
//
//     rewind_bench                        a table of all machines
//     rewind_bench GAME FRAMES MEBIBYTES  only plays, to be counted by valgrind
#include "base/instruction_counter.h"
#include "base/processor_time.h"
#include "front/opened_game.h"
#include "host/aligned_block.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/picture.h"
#include "host/rewind.h"
#include "host/session.h"
#include "machines/machines.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>

namespace {

constexpr const char* kGames[] = {"sms-luciole", "gg-glimmer", "arcade-skywren", "nes-ecume",
                                  "md-mistral"};
constexpr int kWarmUpFrames = 300;
constexpr int kTurns = 6;
constexpr int kFramesOfTurn = 600;

class Player {
public:
    explicit Player(const char* name) {
        if (OpenDemo(name, opened)) {
            CGameFile* const games[2] = {&opened.game, nullptr};
            session = EmuCreateSession(1, games, opened.options.data(), opened.title);
        }
        if (session != nullptr) {
            session->showStatic = 0;
            pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
            video.pixels = pixels.get();
        }
    }

    [[nodiscard]] bool Started() const { return session != nullptr; }
    [[nodiscard]] REWIND_STACK& Rewind() { return session->rewind; }

    void Play(int frames, int32_t mebibytes) {
        Settings().SetInt(L"emu_rewindbuffer", mebibytes);
        for (int frame = 0; frame < frames; ++frame) {
            if (frame % 16 == 0) {
                PressKeys();
            }
            EmuStep(*session, &input, &video, &sound.frame, false);
            pairs += sound.frame.sampleCount;
        }
    }

    [[nodiscard]] double SecondsPlayed() const {
        return static_cast<double>(pairs) / sound.frame.sampleRate;
    }

private:
    // Directions, buttons, start and coin of player 1 by their scancodes; each is down for a third of the time.
    void PressKeys() {
        for (const uint32_t key : {82u, 81u, 80u, 79u, 4u, 22u, 29u, 27u, 40u, 34u, 30u}) {
            InputKeyChanged(key, random() % 3 == 0);
        }
    }

    OPENED_GAME opened;
    std::unique_ptr<EMU_THREAD> session;
    AlignedBlock<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
    uint64_t pairs = 0;
    std::mt19937 random{1};
};

struct COST {
    int64_t microseconds = 0;
    uint64_t instructions = 0;
};

// In turns, so that other load on the computer affects both alike.
void Measure(Player& player, InstructionCounter& counter, COST& with, COST& without) {
    for (int turn = 0; turn < 2 * kTurns; ++turn) {
        COST& cost = turn % 2 == 0 ? with : without;
        const int64_t start = ThreadProcessorTime();
        const uint64_t counted = counter.Count();
        player.Play(kFramesOfTurn, turn % 2 == 0 ? 256 : 0);
        cost.instructions += counter.Count() - counted;
        cost.microseconds += ThreadProcessorTime() - start;
    }
}

int64_t LongestStepBack(REWIND_STACK& stack) {
    int64_t longest = 0;
    while (stack.rewindCount > 1) {
        const int64_t start = ThreadProcessorTime();
        RewindPop(stack);
        longest = std::max(longest, ThreadProcessorTime() - start);
    }
    return longest;
}

bool Report(const char* name) {
    Player player(name);
    if (!player.Started()) {
        std::fprintf(stderr, "%s cannot be started\n", name);
        return false;
    }
    player.Play(kWarmUpFrames, 0);
    COST with;
    COST without;
    InstructionCounter counter;
    Measure(player, counter, with, without);
    const REWIND_STACK& stack = player.Rewind();
    const double framesPerSecond =
        (kWarmUpFrames + 2 * kTurns * kFramesOfTurn) / player.SecondsPlayed();
    const double packed = static_cast<double>(stack.packedBytes) / (stack.rewindCount - 1);
    constexpr double kFrames = kTurns * kFramesOfTurn;
    const double plain = static_cast<double>(without.microseconds) / kFrames;
    const double more = static_cast<double>(with.microseconds) / kFrames - plain;
    std::printf("%s\n", name);
    std::printf("    a state of %u bytes takes %.0f: 256 MiB are %.1f minutes\n",
                stack.rewindHeadBytes, packed, 256.0 * 1048576.0 / packed / framesPerSecond / 60.0);
    std::printf("    a frame takes %.1f us, and %.1f us more with rewinding: %.1f %%\n", plain,
                more, more / plain * 100.0);
    if (counter.Works()) {
        const double counted = static_cast<double>(without.instructions) / kFrames;
        const double added = static_cast<double>(with.instructions) / kFrames - counted;
        std::printf("    %.0f instructions, and %.0f more with rewinding: %.1f %%\n", counted,
                    added, added / counted * 100.0);
    }
    std::printf("    the longest step back unpacks for %" PRId64 " us\n",
                LongestStepBack(player.Rewind()));
    std::fflush(stdout);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    RegisterDefaultSettings(Settings());
    EmuSetMachines(BuiltInMachines());
    EmuMachines().buildTables();
    InputSetActiveKey(1);
    if (argc == 4) {
        Player player(argv[1]);
        if (!player.Started()) {
            return 1;
        }
        player.Play(std::atoi(argv[2]), std::atoi(argv[3]));
        return 0;
    }
    bool done = true;
    for (const char* game : kGames) {
        done = Report(game) && done;
    }
    return done ? 0 : 1;
}
