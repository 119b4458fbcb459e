// Runs any bytes as a program of the NES, on both frame loops. The first byte selects the board; an image with bit 7
// set has character ROM.
#include "nes/nes.h"
#include "settings/settings.h"

#include "loops_fuzz.h"

#include <array>

namespace {

constexpr int kFrames = 5;
constexpr uint8_t kBoards[] = {0, 1, 2, 3, 4, 7, 9, 66, 73};
constexpr size_t kBank = 0x2000; // all with the same program, so that a switch leaves it there
constexpr size_t kBanks = 4;     // of 16 KB
constexpr size_t kHeader = 16;
constexpr size_t kCode = 0x100; // of a bank: where the input's bytes lie
constexpr size_t kNmi = 0x1F80; // INC 10; BIT 2002; RTI
constexpr size_t kIrq = 0x1F90; // PHA; LDA 4015; STA E000; STA E001; STA D000; PLA; RTI
constexpr uint16_t kAddress = 0xE000;

// LDX #FF; TXS; nametables and palette of a counter; sprites from page 2; NMI and picture on; CLI.
constexpr uint8_t kStart[] = {
    0xA2, 0xFF, 0x9A, 0xA9, 0x20, 0x8D, 0x06, 0x20, 0xA9, 0x00, 0x8D, 0x06, 0x20, 0xA0, 0x08, 0xA2,
    0x00, 0x8A, 0x8D, 0x07, 0x20, 0xE8, 0xD0, 0xF9, 0x88, 0xD0, 0xF6, 0xA9, 0x3F, 0x8D, 0x06, 0x20,
    0xA9, 0x00, 0x8D, 0x06, 0x20, 0xA2, 0x20, 0x8A, 0x8D, 0x07, 0x20, 0xCA, 0xD0, 0xF9, 0xA9, 0x02,
    0x8D, 0x14, 0x40, 0xA9, 0x90, 0x8D, 0x00, 0x20, 0xA9, 0x1E, 0x8D, 0x01, 0x20, 0x58};
constexpr uint8_t kNmiCode[] = {0xE6, 0x10, 0x2C, 0x02, 0x20, 0x40};
constexpr uint8_t kIrqCode[] = {0x48, 0xAD, 0x15, 0x40, 0x8D, 0x00, 0xE0, 0x8D,
                                0x01, 0xE0, 0x8D, 0x00, 0xD0, 0x68, 0x40};

std::vector<uint8_t> Bank(std::span<const uint8_t> input) {
    std::vector<uint8_t> bank(kBank, 0xEA); // NOP
    std::copy(std::begin(kStart), std::end(kStart), bank.begin());
    const auto bytes = input.first(std::min(input.size(), kNmi - kCode - 8));
    const auto end = std::copy(bytes.begin(), bytes.end(), bank.begin() + kCode);
    const uint8_t jump[] = {0x4C, kCode & 0xFF, (kAddress + kCode) >> 8};
    std::copy(std::begin(jump), std::end(jump), end + 3);
    std::copy(std::begin(kNmiCode), std::end(kNmiCode), bank.begin() + kNmi);
    std::copy(std::begin(kIrqCode), std::end(kIrqCode), bank.begin() + kIrq);
    StoreLittleEndian<uint16_t>(&bank[0x1FFA], kAddress + kNmi);
    StoreLittleEndian<uint16_t>(&bank[0x1FFC], kAddress);
    StoreLittleEndian<uint16_t>(&bank[0x1FFE], kAddress + kIrq);
    return bank;
}

std::vector<uint8_t> Image(uint8_t board, uint8_t characterBanks, std::span<const uint8_t> input) {
    std::vector<uint8_t> image = {'N', 'E', 'S', 0x1A, kBanks, characterBanks};
    image.push_back(static_cast<uint8_t>(board << 4 & 0xF0));
    image.push_back(board & 0xF0);
    image.resize(kHeader);
    const std::vector<uint8_t> bank = Bank(input);
    image.reserve(kHeader + (kBanks * 2 + characterBanks) * kBank);
    for (size_t i = 0; i < kBanks * 2; ++i) {
        image.insert(image.end(), bank.begin(), bank.end());
    }
    for (size_t i = 0; i < characterBanks * kBank; ++i) {
        image.push_back(static_cast<uint8_t>(i * 167 >> 3)); // patterns that differ
    }
    return image;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    RegisterDefaultSettings(Settings());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    constexpr uint8_t kCharacterRom = 0x80;
    const uint8_t board = kBoards[(data[0] & 0x7F) % std::size(kBoards)];
    const std::vector<uint8_t> image =
        Image(board, (data[0] & kCharacterRom) != 0 ? 4 : 0, {data + 1, size - 1});
    const std::array<uint8_t, kMachineOptionBytes> options{};
    FuzzLoops([&] { return FuzzStart<CNES>(options, kSystemNes, image); }, kFrames);
    return 0;
}
