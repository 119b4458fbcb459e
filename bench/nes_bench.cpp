// Cost of a frame of the whole NES, sound at the default quality included. A frame lasts 16.64 ms.
#include "nes/nes_console.h"
#include "settings/settings.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kFramesPerSecond = 1789773.0 / 29780.5;

// At 0xE000: sets up colours, nametables, 64 sprites and all sound channels; then reads, adds and writes memory in an
// endless loop.
constexpr uint8_t kSetUp[] = {
    0x2C, 0x02, 0x20, 0x10, 0xFB, 0x2C, 0x02, 0x20, 0x10, 0xFB, // BIT 2002; BPL, twice
    0xA9, 0x3F, 0x8D, 0x06, 0x20, 0xA9, 0x00, 0x8D, 0x06, 0x20, // 2006 = 3F00
    0xA2, 0x20, 0x8A, 0x8D, 0x07, 0x20, 0xCA, 0xD0, 0xF9,       // 32 colours
    0xA9, 0x20, 0x8D, 0x06, 0x20, 0xA9, 0x00, 0x8D, 0x06, 0x20, // 2006 = 2000
    0xA0, 0x04, 0xA2, 0x00,                                     // 4 x 256 bytes
    0x8A, 0x8D, 0x07, 0x20, 0xE8, 0xD0, 0xF9, 0x88, 0xD0, 0xF6, //
    0x8A, 0x0A, 0x69, 0x13, 0x9D, 0x00, 0x02, 0xE8, 0xD0, 0xF6, // sprites
};
struct Write {
    uint16_t address;
    uint8_t value;
};
constexpr Write kWrites[] = {
    {0x4015, 0x1F},
    {0x4000, 0xBF},
    {0x4002, 0x60},
    {0x4003, 0x09},
    {0x4004, 0xBA},
    {0x4006, 0xA0},
    {0x4007, 0x09},
    {0x4008, 0xFF},
    {0x400A, 0x80},
    {0x400B, 0x09},
    {0x400C, 0x3F},
    {0x400E, 0x05},
    {0x400F, 0x09},
    {0x4010, 0x4C},
    {0x4012, 0x00},
    {0x4013, 0x40},
    {0x4015, 0x1F},
};
constexpr uint8_t kLoop[] = {
    0xA5, 0x20, 0x69, 0x03, 0x85, 0x20, // LDA 20; ADC #3; STA 20
    0xA6, 0x21, 0xBD, 0x00, 0x03,       // LDX 21; LDA 0300,X
    0x5D, 0x00, 0x80, 0x9D, 0x00, 0x03, // EOR 8000,X; STA 0300,X
    0xE6, 0x21, 0xB1, 0x22, 0xD0, 0x02, // INC 21; LDA (22),Y; BNE
    0xEA, 0xEA, 0x20, 0x00, 0xF0,       // NOP; NOP; JSR F000
};
constexpr uint8_t kRoutine[] = {0x48, 0x0A, 0x4A, 0x68, 0x60}; // PHA; ASL; LSR; PLA; RTS
// Sprite DMA, and scrolls the picture by a pixel.
constexpr uint8_t kBlank[] = {0x48, 0xA9, 0x02, 0x8D, 0x14, 0x40, 0xAD, 0x02,
                              0x20, 0xE6, 0x30, 0xA5, 0x30, 0x8D, 0x05, 0x20,
                              0xA9, 0x00, 0x8D, 0x05, 0x20, 0x68, 0x40};
constexpr uint8_t kVectors[] = {0x00, 0xE8, 0x00, 0xE0, 0x20, 0xE8}; // the last is an RTI
constexpr size_t kBankBytes = 0x2000;

std::vector<uint8_t> Code(uint8_t mask) {
    std::vector<uint8_t> code(std::begin(kSetUp), std::end(kSetUp));
    const auto write = [&code](Write what) {
        for (const int byte :
             {0xA9, int{what.value}, 0x8D, what.address & 0xFF, what.address >> 8}) {
            code.push_back(static_cast<uint8_t>(byte));
        }
    };
    std::for_each(std::begin(kWrites), std::end(kWrites), write);
    write({0x2000, 0x90});
    write({0x2001, mask});
    const size_t loop = 0xE000 + code.size();
    code.insert(code.end(), std::begin(kLoop), std::end(kLoop));
    for (const size_t byte : {size_t{0x4C}, loop & 0xFF, loop >> 8}) {
        code.push_back(static_cast<uint8_t>(byte));
    }
    code.resize(kBankBytes, 0xEA);
    std::copy(std::begin(kBlank), std::end(kBlank), &code[0x0800]);
    code[0x0820] = 0x40;
    std::copy(std::begin(kRoutine), std::end(kRoutine), &code[0x1000]);
    std::copy(std::begin(kVectors), std::end(kVectors), &code[0x1FFA]);
    return code;
}

std::vector<uint8_t> Image(uint8_t board, uint8_t mask) {
    std::vector<uint8_t> image(16, 0);
    image[0] = 'N';
    image[1] = 'E';
    image[2] = 'S';
    image[3] = 0x1A;
    image[4] = 2;
    image[5] = 1;
    image[6] = static_cast<uint8_t>(board << 4);
    image[7] = board & 0xF0;
    const std::vector<uint8_t> code = Code(mask);
    for (int i = 0; i < 4; ++i) {
        image.insert(image.end(), code.begin(), code.end());
    }
    uint32_t noise = 1;
    for (size_t i = 0; i < kBankBytes; ++i) {
        noise = noise * 1664525 + 1013904223;
        image.push_back(static_cast<uint8_t>(noise >> 24));
    }
    return image;
}

void RunFrames(benchmark::State& state, uint8_t board, uint8_t mask, int32_t quality) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", quality);
    const auto nes = std::make_unique<NES_CONSOLE>();
    std::string error;
    if (!CartridgeLoad(nes->cartridge, Image(board, mask), error)) {
        std::abort();
    }
    NesConnect(*nes);
    NesReset(*nes);
    std::vector<uint32_t> pixels(size_t{kPpuWidth} * kPpuHeight);
    for (auto _ : state) {
        PpuBeginFrame(nes->ppu, pixels.data(), kPpuWidth);
        NesRunFrame(*nes);
        nes->sound.Flush();
        nes->sound.Consume(static_cast<int32_t>(nes->sound.Output().size()));
        benchmark::DoNotOptimize(pixels.data());
    }
    state.counters["x real time"] = benchmark::Counter(
        static_cast<double>(state.iterations()) / kFramesPerSecond, benchmark::Counter::kIsRate);
}

// A plain board, one that watches PPU addresses, and one that counts CPU cycles.
BENCHMARK_CAPTURE(RunFrames, Plain, 0, 0x1E, 1);
BENCHMARK_CAPTURE(RunFrames, PlainNearestSound, 0, 0x1E, 0);
BENCHMARK_CAPTURE(RunFrames, Scanline, 4, 0x1E, 1);
BENCHMARK_CAPTURE(RunFrames, Cycle, 73, 0x1E, 1);
BENCHMARK_CAPTURE(RunFrames, NoPicture, 0, 0x00, 1);

} // namespace
