// States of any bytes, loaded into the Mega Drive with each kind of cartridge at 60 and 50 Hz, and a frame run
// after it; or a whole image of any bytes, run for two frames, with a program that goes wrong or not.
//
// The first byte picks the player. By 0x40 it picks the console, and the rest is an image; by 0x80 the rest is
// a whole state. As whole states are long, the rest is else a list of patches over a good one: the number of a
// piece, by 0x80 counted from the piece's end; two bytes of offset into it; two bytes of length; the bytes.
//
// Whatever the bytes, both frame loops must come to the same.
#include "settings/settings.h"

#include "md_fuzz.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <random>
#include <span>
#include <string_view>
#include <vector>

namespace {

constexpr uint8_t kWhole = 0x80;
constexpr uint8_t kImage = 0x40;
constexpr uint8_t kFromTheEnd = 0x80;
constexpr size_t kPatchHeader = 5;
constexpr size_t kChipPieces = 7; // board, 68000, Z80, video, PSG, FM, cartridge; the sound follows

// Vectors, the header, and the routines of the interrupts.
void PutFrame(std::vector<uint8_t>& image, const MD_FUZZ_CARTRIDGE& cartridge) {
    MdFuzzPutWords(image, 0, {0x00FF, 0xFF00, 0x0000, 0x0200}); // stack and start
    for (size_t vector = 8; vector < 0x100; vector += 4) {
        MdFuzzPutWords(image, vector, {0x0000, 0x0500});
    }
    MdFuzzPutWords(image, 0x70, {0x0000, 0x0400});
    MdFuzzPutWords(image, 0x78, {0x0000, 0x0440});
    MdFuzzPutHeader(image, cartridge);
    // In the line: another backdrop. In the blank: 64 words of the image into video memory.
    MdFuzzPutWords(image, 0x400, {0x33FC, 0x8725, 0x00C0, 0x0004, 0x4E73});
    MdFuzzPutWords(image, 0x440,
                   {0x33FC, 0x9340, 0x00C0, 0x0004, 0x33FC, 0x9400, 0x00C0, 0x0004, 0x33FC,
                    0x9500, 0x00C0, 0x0004, 0x33FC, 0x9608, 0x00C0, 0x0004, 0x33FC, 0x9700,
                    0x00C0, 0x0004, 0x23FC, 0x4000, 0x0080, 0x00C0, 0x0004, 0x4E73});
    MdFuzzPutWords(image, 0x500, {0x4E73});
}

// Shows the picture with both interrupts on, has the Z80 play the FM chip and reach through its window, and writes
// random numbers to RAM, the cartridge, the signal processor and VRAM forever.
void PutProgram(std::vector<uint8_t>& image) {
    constexpr uint16_t kRegisters[] = {0x8014, 0x8174, 0x8230, 0x832C, 0x8407, 0x855C, 0x8A13,
                                       0x8B03, 0x8C89, 0x8D2E, 0x8F02, 0x9011, 0x9185, 0x9206};
    size_t at = 0x200;
    for (const uint16_t value : kRegisters) {
        MdFuzzPutWords(image, at, {0x33FC, value, 0x00C0, 0x0004}); // move.w #value,control
        at += 8;
    }
    MdFuzzPutWords(image, at,
                   {0x33FC, 0x0100, 0x00A1, 0x1100, 0x33FC, 0x0100, 0x00A1, 0x1200, // Z80's bus
                    0x41F9, 0x0000, 0x0700, 0x43F9, 0x00A0, 0x0000,                 // lea, lea
                    0x303C, 0x003F, 0x12D8, 0x51C8, 0xFFFC, // copies 64 bytes
                    0x33FC, 0x0000, 0x00A1, 0x1200, 0x33FC, 0x0100, 0x00A1, 0x1200, // starts it
                    0x33FC, 0x0000, 0x00A1, 0x1100,                                 //
                    0x46FC, 0x2300, 0x2E3C, 0x1234, 0x5678,                         // sr; d7
                    0x2007, 0xE798, 0xB187, 0x0687, 0x3C6E, 0xF35F, // loop: the next random number
                    0x33C7, 0x00FF, 0x1000, 0x33C7, 0x0020, 0x0100, 0x13C7, 0x0020, 0x0001,
                    0x33C7, 0x00A1, 0x5000, 0x3439, 0x00A1, 0x5004, 0x3439, 0x0020, 0x0000,
                    0x33C7, 0x00C0, 0x0000, 0x3439, 0x00C0, 0x0004, 0x60C2}); // bra loop
    // di; ld sp; loop: inc a; ld (4000),a; ld (4001),a; ld (7F11),a; ld (6000),a; ld a,(8000); jr loop
    const uint8_t z80[] = {0xF3, 0x31, 0x00, 0x1F, 0x3C, 0x32, 0x00, 0x40, 0x32, 0x01, 0x40,
                           0x32, 0x11, 0x7F, 0x32, 0x00, 0x60, 0x3A, 0x00, 0x80, 0x18, 0xEE};
    std::copy(std::begin(z80), std::end(z80), image.begin() + 0x700);
}

FUZZ_PLAYER StartCartridge(const MD_FUZZ_CARTRIDGE& cartridge, uint8_t console) {
    // Noise after the program: a picture, and code for the signal processor.
    std::vector<uint8_t> image(0x10000);
    std::mt19937 random(3);
    for (uint8_t& byte : image) {
        byte = static_cast<uint8_t>(static_cast<uint32_t>(random()));
    }
    PutFrame(image, cartridge);
    PutProgram(image);
    return FuzzPlayer(MdFuzzStart(std::move(image), console), 3);
}

std::vector<FUZZ_PLAYER> StartAll() {
    RegisterDefaultSettings(Settings());
    MdBuildTables();
    std::vector<FUZZ_PLAYER> players;
    for (const MD_FUZZ_CARTRIDGE& cartridge : kMdFuzzCartridges) {
        players.push_back(StartCartridge(cartridge, kMdConsoleGenesis));
        players.push_back(StartCartridge(cartridge, kMdConsolePal));
    }
    return players;
}

std::vector<uint8_t> RunImage(const std::vector<uint8_t>& image, uint8_t console, bool plain) {
    const auto machine = MdFuzzStart(image, console);
    if (!machine) {
        return {};
    }
    machine->SetPlainLoop(plain);
    FuzzRunFrame(*machine);
    FuzzRunFrame(*machine);
    return FuzzSave(*machine);
}

std::vector<uint8_t> Patch(const std::vector<uint8_t>& good, std::span<const uint8_t> input) {
    std::vector<size_t> pieces = FuzzPieces(good);
    const size_t count = pieces.size();
    pieces.push_back(good.size());
    std::vector<uint8_t> state = good;
    while (input.size() > kPatchHeader) {
        const size_t piece = input[0] % kFromTheEnd % count;
        const size_t offset =
            LoadLittleEndian<uint16_t>(&input[1]) % (pieces[piece + 1] - pieces[piece]);
        const size_t length = LoadLittleEndian<uint16_t>(&input[3]);
        const bool fromTheEnd = (input[0] & kFromTheEnd) != 0;
        input = input.subspan(kPatchHeader);
        const auto bytes = input.first(std::min(length, input.size()));
        input = input.subspan(bytes.size());
        FuzzLay(state, fromTheEnd ? pieces[piece + 1] - offset : pieces[piece] + offset, bytes);
    }
    FuzzMendHeaders(state, good);
    return state;
}

// A machine keeps its chips within the bounds that it brings a state into, so that loading what it has saved
// changes none of them. Sound on its way may be dropped.
void RequireChipsAlike(const std::vector<uint8_t>& one, const std::vector<uint8_t>& two) {
    const auto chips = static_cast<std::ptrdiff_t>(FuzzPieces(one).at(kChipPieces));
    FuzzRequire(std::equal(one.begin(), one.begin() + chips, two.begin()));
}

void RunState(FUZZ_PLAYER& player, const std::vector<uint8_t>& state) {
    const std::vector<uint8_t> saved = FuzzState(player, state);
    RequireChipsAlike(saved, FuzzSave(*player.machine));
    if (auto& machine = static_cast<CMegaDrive&>(*player.machine); FuzzLoad(machine, state)) {
        machine.SetPlainLoop(true);
        FuzzRunFrame(machine);
        machine.SetPlainLoop(false);
        FuzzRequire(FuzzSave(machine) == saved);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<FUZZ_PLAYER> players = StartAll();
    if (size < 2) {
        return 0;
    }
    const std::span<const uint8_t> rest(data + 1, size - 1);
    const std::vector<uint8_t> bytes(rest.begin(), rest.end());
    if ((data[0] & kImage) != 0) {
        const uint8_t console = data[0] % 4;
        FuzzRequire(RunImage(bytes, console, false) == RunImage(bytes, console, true));
        return 0;
    }
    FUZZ_PLAYER& player = players[(data[0] & 0x3F) % players.size()];
    RunState(player, (data[0] & kWhole) != 0 ? bytes : Patch(player.good, rest));
    return 0;
}
