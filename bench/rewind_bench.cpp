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
#include <vector>

namespace {

constexpr const char* kGames[] = {"sms-luciole", "gg-glimmer", "arcade-skywren", "nes-ecume",
                                  "md-mistral"};
constexpr int kWarmUpFrames = 300;
constexpr int kTurns = 60;
constexpr int kFramesOfTurn = 60;

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

// Of a frame.
struct COST {
    double microseconds = 0.0;
    double instructions = 0.0;
};

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

COST Turn(Player& player, InstructionCounter& counter, int32_t mebibytes) {
    const int64_t start = ThreadProcessorTime();
    const uint64_t counted = counter.Count();
    player.Play(kFramesOfTurn, mebibytes);
    const auto instructions = static_cast<double>(counter.Count() - counted);
    const auto microseconds = static_cast<double>(ThreadProcessorTime() - start);
    return {microseconds / kFramesOfTurn, instructions / kFramesOfTurn};
}

// Two play the same in short turns, one of them with rewinding: each in every other turn, as the same machine may be a
// little slower where its memory lies elsewhere. The median of the turns' differences is free of most of the other load
// on the computer.
void Measure(Player& one, Player& two, InstructionCounter& counter, COST& plain, COST& more) {
    std::vector<double> plainTimes(kTurns);
    std::vector<double> moreTimes(kTurns);
    for (int turn = 0; turn < kTurns; ++turn) {
        const bool first = turn % 2 == 0;
        const COST with = Turn(first ? one : two, counter, 256);
        const COST without = Turn(first ? two : one, counter, 0);
        plainTimes[static_cast<size_t>(turn)] = without.microseconds;
        moreTimes[static_cast<size_t>(turn)] = with.microseconds - without.microseconds;
        plain.instructions += without.instructions / kTurns;
        more.instructions += (with.instructions - without.instructions) / kTurns;
    }
    plain.microseconds = Median(plainTimes);
    more.microseconds = Median(moreTimes);
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
    Player one(name);
    Player two(name);
    if (!one.Started() || !two.Started()) {
        std::fprintf(stderr, "%s cannot be started\n", name);
        return false;
    }
    one.Play(kWarmUpFrames, 0);
    two.Play(kWarmUpFrames, 0);
    COST plain;
    COST more;
    InstructionCounter counter;
    Measure(one, two, counter, plain, more);
    const REWIND_STACK& stack = one.Rewind();
    const double framesPerSecond = (kWarmUpFrames + kTurns * kFramesOfTurn) / one.SecondsPlayed();
    const double packed = static_cast<double>(stack.packedBytes) / (stack.rewindCount - 1);
    std::printf("%s\n", name);
    std::printf("    a state of %u bytes takes %.0f: 256 MiB are %.1f minutes\n",
                stack.rewindHeadBytes, packed, 256.0 * 1048576.0 / packed / framesPerSecond / 60.0);
    std::printf("    a frame takes %.1f us, and %.1f us more with rewinding: %.1f %%\n",
                plain.microseconds, more.microseconds,
                more.microseconds / plain.microseconds * 100.0);
    if (counter.Works()) {
        std::printf("    %.0f instructions, and %.0f more with rewinding: %.1f %%\n",
                    plain.instructions, more.instructions,
                    more.instructions / plain.instructions * 100.0);
    }
    std::printf("    the longest step back unpacks for %" PRId64 " us\n",
                LongestStepBack(one.Rewind()));
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
