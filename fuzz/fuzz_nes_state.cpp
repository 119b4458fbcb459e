// Loads arbitrary states into the NES with each of its boards and runs a frame; or loads an arbitrary image and runs
// two frames. The first byte selects the board, or an image with 0x40. With 0x80 the input is a whole state;
// otherwise, as states are long, it patches a valid state from the offset in the next two bytes.
#include "nes/nes.h"
#include "settings/settings.h"

#include "machine_fuzz.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace {

constexpr uint8_t kBoards[] = {0, 1, 2, 3, 4, 7, 9, 66, 73};

std::unique_ptr<CNES> Start(std::vector<uint8_t> image) {
    const std::array<uint8_t, kMachineOptionBytes> options{};
    return FuzzStart<CNES>(options, kSystemNes, std::move(image));
}

FUZZ_PLAYER StartBoard(uint8_t board, uint8_t characterBanks) {
    // Turns rendering on and writes a counter to RAM, board and PPU: LDA #1E; STA 2001; INX; TXA;
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
    return FuzzPlayer(Start(std::move(image)));
}

std::vector<FUZZ_PLAYER> StartAll() {
    RegisterDefaultSettings(Settings());
    std::vector<FUZZ_PLAYER> players;
    for (const uint8_t board : kBoards) {
        players.push_back(StartBoard(board, 0));
        players.push_back(StartBoard(board, 4));
    }
    return players;
}

void RunImage(const uint8_t* data, size_t size) {
    // The header's mark is fixed; all bytes after it are the input's.
    std::vector<uint8_t> image = {'N', 'E', 'S', 0x1A};
    image.insert(image.end(), data, data + size);
    if (const auto machine = Start(std::move(image))) {
        FuzzRunFrame(*machine);
        FuzzRunFrame(*machine);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<FUZZ_PLAYER> players = StartAll();
    constexpr uint8_t kWhole = 0x80;
    constexpr uint8_t kImage = 0x40;
    if (size < 4) {
        return 0;
    }
    if ((data[0] & kImage) != 0) {
        RunImage(data + 1, size - 1);
        return 0;
    }
    FUZZ_PLAYER& player = players[(data[0] & 0x3F) % players.size()];
    const std::span<const uint8_t> input(data, size);
    const size_t offset = LoadLittleEndian<uint16_t>(data + 1) % player.good.size();
    static_cast<void>(FuzzState(player, (data[0] & kWhole) != 0
                                            ? std::vector<uint8_t>(data + 1, data + size)
                                            : FuzzPatched(player.good, offset, input.subspan(3))));
    return 0;
}
