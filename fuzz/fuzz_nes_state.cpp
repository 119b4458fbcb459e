// States of any bytes, loaded into the NES with each of its boards, and a frame run after it; or a whole
// image of any bytes, run for two frames. The first byte picks the board, or the image by 0x40. A state
// is a whole one by 0x80, or, as whole states are long, a patch: bytes that are laid over the fields of a
// good one, from the offset that the next two bytes name.
#include "base/bytes.h"
#include "base/state_piece.h"
#include "front/settings/settings.h"
#include "library/game_file.h"
#include "nes/nes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

struct PLAYER {
    std::unique_ptr<CNES> machine;
    std::vector<uint8_t> good; // a state that loads
};

constexpr uint8_t kBoards[] = {0, 1, 2, 3, 4, 7, 9, 66, 73};

std::unique_ptr<CNES> Start(std::vector<uint8_t> image) {
    CGameFile game;
    game.Create(false, kSystemNes);
    MACHINE_RECORD raw{};
    std::memcpy(raw.bytes, "GDF0", 4);
    game.AddRom("v1.0", {}, static_cast<uint32_t>(image.size()));
    game.AddNameFromTitle("Fuzz", 1, 1, raw);
    game.LinkRom(0, 0);
    if (!game.SetData(std::move(image))) {
        return nullptr;
    }
    game.selectedName = 0;
    CGameFile* const games[2] = {&game, nullptr};
    const std::array<uint8_t, kMachineOptionBytes> options{};
    auto machine = std::make_unique<CNES>(1);
    return machine->Init(options.data(), games) ? std::move(machine) : nullptr;
}

PLAYER StartBoard(uint8_t board, uint8_t characterBanks) {
    // Shows the picture and writes what it counts to RAM, board and picture: LDA #1E; STA 2001; INX; TXA;
    // STA 0200,X; STA 8000,X; STA 2007; STA 6000,X; JMP.
    const uint8_t code[] = {0xA9, 0x1E, 0x8D, 0x01, 0x20, 0xE8, 0x8A, 0x9D, 0x00, 0x02, 0x9D,
                            0x00, 0x80, 0x8D, 0x07, 0x20, 0x9D, 0x00, 0x60, 0x4C, 0x05, 0xE0};
    std::vector<uint8_t> image(16 + 0x8000 + size_t{characterBanks} * 0x2000, 0x40);
    const uint8_t header[8] = {'N',
                               'E',
                               'S',
                               0x1A,
                               2,
                               characterBanks,
                               static_cast<uint8_t>(board << 4 & 0xF0),
                               static_cast<uint8_t>(board & 0xF0)};
    std::copy(std::begin(header), std::end(header), image.begin());
    std::fill_n(image.begin() + 8, 8, uint8_t{0});
    for (size_t bank = 16; bank < 16 + 0x8000; bank += 0x2000) {
        std::memcpy(&image[bank], code, sizeof code);
        StoreLittleEndian<uint16_t>(&image[bank + 0x1FFC], 0xE000);
    }
    PLAYER player{Start(std::move(image)), {}};
    if (!player.machine) {
        std::abort();
    }
    uint32_t size = 0;
    const StateBlob blob = player.machine->SaveState(size);
    player.good.assign(blob.get(), blob.get() + size);
    return player;
}

std::vector<PLAYER> StartAll() {
    RegisterDefaultSettings(Settings());
    std::vector<PLAYER> players;
    for (const uint8_t board : kBoards) {
        players.push_back(StartBoard(board, 0));
        players.push_back(StartBoard(board, 4));
    }
    return players;
}

// Puts every piece's version and size back, so that a patch reaches the fields of all chips.
void MendHeaders(std::vector<uint8_t>& state, const std::vector<uint8_t>& good) {
    for (size_t at = 0; at + kStatePieceHeader <= good.size();
         at += LoadLittleEndian<uint32_t>(good.data() + at + 1)) {
        std::memcpy(state.data() + at, good.data() + at, kStatePieceHeader);
    }
}

void RunFrame(CNES& machine) {
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

void RunImage(const uint8_t* data, size_t size) {
    // The mark is given; everything behind it is the input's.
    std::vector<uint8_t> image = {'N', 'E', 'S', 0x1A};
    image.insert(image.end(), data, data + size);
    if (const auto machine = Start(std::move(image))) {
        RunFrame(*machine);
        RunFrame(*machine);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<PLAYER> players = StartAll();
    constexpr uint8_t kWhole = 0x80;
    constexpr uint8_t kImage = 0x40;
    if (size < 4) {
        return 0;
    }
    if ((data[0] & kImage) != 0) {
        RunImage(data + 1, size - 1);
        return 0;
    }
    PLAYER& player = players[(data[0] & 0x3F) % players.size()];
    std::vector<uint8_t> state;
    if ((data[0] & kWhole) != 0) {
        state.assign(data + 1, data + size);
    } else {
        state = player.good;
        const size_t offset = (data[1] | size_t{data[2]} << 8) % state.size();
        const size_t count = std::min(size - 3, state.size() - offset);
        std::memcpy(state.data() + offset, data + 3, count);
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
