// States of any bytes, loaded into each of the 8-bit machines of Sega, and a frame run after it. The first
// byte picks the machine; the rest is a state, or, as whole states are long, a patch: bytes that are
// laid over the fields of a good one, from the offset before its end that the next two bytes name.
#include "base/bytes.h"
#include "base/state_piece.h"
#include "library/game_file.h"
#include "sega8/game_gear.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

struct PLAYER {
    std::unique_ptr<CEmuSystem> machine;
    std::vector<uint8_t> good; // a state that loads
};

CGameFile MakeGame(uint16_t system, uint32_t board) {
    // Counts through video memory and RAM: inc hl; ld (hl),a; out (0xBE),a; inc a; jr.
    std::vector<uint8_t> image = {0x23, 0x77, 0xD3, 0xBE, 0x3C, 0x18, 0xF9};
    image.resize(0xC000, 0);
    CGameFile game;
    game.Create(false, system);
    MACHINE_RECORD raw{};
    ARC_RECORD record{};
    std::memcpy(record.tag, system == kSystemArcade ? "ARC0" : "GDF0", 4);
    record.board = board;
    std::memcpy(raw.bytes, &record, sizeof record);
    game.AddRom("v1.0", {}, static_cast<uint32_t>(image.size()));
    game.AddNameFromTitle("Fuzz", 1, 1, raw);
    game.LinkRom(0, 0);
    if (!game.SetData(std::move(image))) {
        std::abort();
    }
    game.selectedName = 0;
    return game;
}

template <typename Machine, typename Options>
PLAYER Start(const Options& options, uint16_t system, uint32_t board = 0) {
    PLAYER player{std::make_unique<Machine>(1), {}};
    CGameFile game = MakeGame(system, board);
    CGameFile* const games[2] = {&game, nullptr};
    if (!player.machine->Init(&options, games)) {
        std::abort();
    }
    uint32_t size = 0;
    const StateBlob blob = player.machine->SaveState(size);
    player.good.assign(blob.get(), blob.get() + size);
    return player;
}

std::vector<PLAYER> StartAll() {
    std::vector<PLAYER> players;
    players.push_back(Start<CSMS>(
        SMS_OPTIONS{
            kSms2Pal, 1, 1, {2,                4},
               {                }
    },
        kSystemMasterSystem));
    players.push_back(Start<CSMS>(
        SMS_OPTIONS{
            kSms1Ntsc, 0, 0, {8,                16},
               {                }
    },
        kSystemMasterSystem));
    players.push_back(Start<CGAMEGEAR>(GEAR_OPTIONS{}, kSystemGameGear));
    players.push_back(Start<CGAMEGEAR>(GEAR_OPTIONS{0, 1, 1, {}}, kSystemGameGear));
    players.push_back(Start<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, kSystemArcade, 1));
    players.push_back(Start<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, kSystemArcade, 4));
    return players;
}

// Puts every piece's version and size back, so that a patch reaches the fields of all chips.
void MendHeaders(std::vector<uint8_t>& state, const std::vector<uint8_t>& good) {
    for (size_t at = 0; at + kStatePieceHeader <= good.size();
         at += LoadLittleEndian<uint32_t>(good.data() + at + 1)) {
        std::memcpy(state.data() + at, good.data() + at, kStatePieceHeader);
    }
}

void RunFrame(CEmuSystem& machine) {
    // Just as much as the host allocates, so that the sanitizer sees a write behind it.
    const auto pixels = std::make_unique<uint32_t[]>(size_t{machine.width} * machine.height);
    const auto samples = std::make_unique<int16_t[]>(size_t{kAudioFramePairs} * 2);
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.get();
    EMU_AUDIO_FRAME audio{};
    audio.samples = samples.get();
    audio.sampleRate = 44100;
    EMU_INPUT_STATE input{};
    machine.RunFrame(&input, &video, &audio);
    if (video.width > machine.width || video.height > machine.height ||
        audio.sampleCount > kAudioFramePairs) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<PLAYER> players = StartAll();
    constexpr uint8_t kWhole = 0x80; // of the first byte: the rest is the state itself
    if (size < 4) {
        return 0;
    }
    PLAYER& player = players[(data[0] & 0x7F) % players.size()];
    std::vector<uint8_t> state;
    if ((data[0] & kWhole) != 0) {
        state.assign(data + 1, data + size);
    } else {
        state = player.good;
        // Counted from the end, where the chips are.
        const size_t offset = (data[1] | size_t{data[2]} << 8) % state.size();
        const size_t count = std::min(size - 3, offset);
        std::memcpy(state.data() + state.size() - offset, data + 3, count);
        MendHeaders(state, player.good);
    }
    static_cast<void>(player.machine->LoadState(state.data(), static_cast<uint32_t>(state.size())));
    RunFrame(*player.machine);
    uint32_t savedSize = 0;
    const StateBlob saved = player.machine->SaveState(savedSize);
    if (savedSize != player.good.size() || !player.machine->LoadState(saved.get(), savedSize)) {
        std::abort();
    }
    return 0;
}
