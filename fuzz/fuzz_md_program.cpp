// Programs of both processors of the Mega Drive, made of random pieces, on both frame loops: picture and sound of every
// frame and the last state must be the same.
//
// The first byte picks cartridge and console, the second how many of the others are for the Z80. Each byte of these is
// a piece and takes its numbers from those after it. The pieces are what games do, so that a program goes on: writes to
// every chip, transfers of all kinds, waiting loops, the Z80's bus and reset, and now and then words of any kind.
#include "base/bytes.h"
#include "settings/settings.h"

#include "loops_fuzz.h"
#include "md_fuzz.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace {

constexpr int kFrames = 4;
constexpr size_t kImageBytes = 0x10000;
constexpr size_t kProgramEnd = 0x7000;
constexpr uint32_t kZ80Code = 0x8000;
constexpr uint32_t kZ80Bytes = 0x600;
constexpr uint32_t kControl = 0xC00004;
constexpr uint32_t kData = 0xC00000;

// The bytes of an input; 0 after its end.
class Numbers {
public:
    explicit Numbers(std::span<const uint8_t> bytesValue)
        : bytes(bytesValue) {}
    [[nodiscard]] bool IsAtEnd() const { return bytes.empty(); }
    uint32_t Byte() {
        if (bytes.empty()) {
            return 0;
        }
        const uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        return byte;
    }
    uint32_t Word() {
        const uint32_t high = Byte();
        return high << 8 | Byte();
    }

private:
    std::span<const uint8_t> bytes;
};

class Program68000 {
public:
    Program68000(std::vector<uint8_t>& imageValue, size_t start)
        : image(imageValue)
        , at(start) {}

    [[nodiscard]] size_t Here() const { return at; }
    void Words(std::initializer_list<uint32_t> words) {
        for (const uint32_t word : words) {
            image[at] = static_cast<uint8_t>(word >> 8);
            image[at + 1] = static_cast<uint8_t>(word);
            at += 2;
        }
    }
    void StoreWord(uint32_t address, uint32_t value) {
        Words({0x33FC, value & 0xFFFF, address >> 16, address & 0xFFFF});
    }
    void StoreByte(uint32_t address, uint32_t value) {
        Words({0x13FC, value & 0xFF, address >> 16, address & 0xFFFF});
    }
    void Register(uint32_t index, uint32_t value) {
        StoreWord(kControl, 0x8000 | index << 8 | (value & 0xFF));
    }
    void Command(uint32_t code, uint32_t address) {
        StoreWord(kControl, (code & 3) << 14 | (address & 0x3FFF));
        StoreWord(kControl, (code & 0x3C) << 2 | address >> 14);
    }
    void Transfer(uint32_t kind, uint32_t length, uint32_t source, uint32_t code,
                  uint32_t address) {
        Register(19, length);
        Register(20, length >> 8);
        Register(21, source);
        Register(22, source >> 8);
        Register(23, kind);
        Command(code | 0x20, address);
    }
    void TakeBus() { StoreWord(0xA11100, 0x100); }
    void GiveBus() { StoreWord(0xA11100, 0); }

private:
    std::vector<uint8_t>& image;
    size_t at;
};

// VRAM, CRAM or VSRAM.
uint32_t TargetOf(uint32_t number) {
    return number % 4 < 2 ? 1 : number % 4 == 2 ? 3 : 5;
}

void PutPiece(Program68000& program, Numbers& numbers) {
    const uint32_t value = numbers.Word();
    switch (numbers.Byte() % 20) {
    case 0: program.Register(value % 19, numbers.Byte()); break;
    case 1: program.Register(1, value | 0x54); break; // the display is on
    case 2:
        program.Command(TargetOf(value), numbers.Word());
        for (uint32_t count = value >> 8 & 7; count != 0; --count) {
            program.StoreWord(kData, numbers.Word());
        }
        break;
    case 3: program.Transfer(0, value % 0x300, numbers.Word(), TargetOf(value >> 12), value); break;
    case 4: program.Transfer(0x7F, value % 0x200, value, 1, numbers.Word()); break; // from RAM
    case 5:
        program.Transfer(0x80, value % 0x200, 0, 1, numbers.Word());
        program.StoreWord(kData, value);
        break;
    case 6: program.Transfer(0xC0, value % 0x100, numbers.Word(), 0x10, value); break;
    case 7: program.Words({0x3039, 0x00C0, value & 0x0E, 0xD1B9, 0x00FF, 0x2100}); break;
    case 8: program.Words({0x3039, 0x00FF, 0x2002, 0xB079, 0x00FF, 0x2002, 0x67F8}); break;
    case 9: program.Words({0x0839, value & 7, 0x00C0, 0x0005, 0x67F6}); break;
    case 10: program.Words({0x343C, value % 0x400, 0x51CA, 0xFFFE}); break; // waits by counting
    case 11:
        program.TakeBus();
        program.Words({0x33F9, 0x00A1, 0x1100, 0x00FF, 0x2104});
        program.Words({0x13F9, 0x00A0, value % 0x2000, 0x00FF, 0x2106});
        program.StoreByte(0xA01F00 | (value & 0xFF), numbers.Byte());
        program.GiveBus();
        break;
    case 12:
        program.StoreWord(0xA11200, 0);
        program.Words({0x4E71, 0x4E71, 0x4E71});
        program.StoreWord(0xA11200, 0x100);
        break;
    case 13: program.StoreByte(0xC00011, value); break;
    case 14:
        program.TakeBus();
        program.StoreByte(0xA04000 | (value & 2), value >> 8);
        program.StoreByte(0xA04001 | (value & 2), numbers.Byte());
        program.GiveBus();
        break;
    case 15:
        program.StoreWord(0x200000 | (value & 0x1FE), value);
        program.Words({0x3039, 0x0020, value & 0x1FE, 0xD1B9, 0x00FF, 0x2108});
        break;
    case 16: // waits for the Z80, which writes there through its window
        program.Words({0x4239, 0x00FF, 0x8010, 0x4A39, 0x00FF, 0x8010, 0x67F8});
        break;
    case 17: program.Words({0x1239, 0x00FF, 0x2003, 0x0201, 0x0007, 0x0C01, 0x0002, 0x66F0}); break;
    case 18: program.Words({0x46FC, 0x2000 | (value & 0x0700)}); break;
    default:
        if (value % 32 == 0) {
            program.Words({numbers.Word(), numbers.Word()});
        } else { // arithmetic with the registers; stays at even addresses
            constexpr uint32_t kOpcodes[] = {0x5247, 0xE35F, 0xD047, 0x4840, 0xC0C7, 0xB187};
            program.Words({kOpcodes[value / 32 % 6]});
        }
        break;
    }
}

// Vectors; both interrupts count, and change the backdrop or the scroll.
void PutFrame(std::vector<uint8_t>& image) {
    MdFuzzPutWords(image, 0, {0x00FF, 0xFF00, 0x0000, 0x0200});
    for (size_t vector = 8; vector < 0x100; vector += 4) {
        MdFuzzPutWords(image, vector, {0x0000, 0x7600});
    }
    MdFuzzPutWords(image, 0x70, {0x0000, 0x7400});
    MdFuzzPutWords(image, 0x78, {0x0000, 0x7500});
    MdFuzzPutWords(image, 0x7400, {0x33FC, 0x8725, 0x00C0, 0x0004, 0x52B9, 0x00FF, 0x2000, 0x4E73});
    MdFuzzPutWords(image, 0x7500, {0x33FC, 0x8703, 0x00C0, 0x0004, 0x5279, 0x00FF, 0x2002, 0x4E73});
    MdFuzzPutWords(image, 0x7600, {0x54AF, 0x0002, 0x4E73}); // goes on after what is no instruction
}

void Put68000(std::vector<uint8_t>& image, Numbers numbers) {
    Program68000 program(image, 0x200);
    constexpr uint16_t kRegisters[] = {0x8014, 0x8174, 0x8230, 0x832C, 0x8407, 0x855C, 0x8A13,
                                       0x8B03, 0x8C89, 0x8D2E, 0x8F02, 0x9011, 0x9185, 0x9206};
    for (const uint16_t value : kRegisters) {
        program.StoreWord(kControl, value);
    }
    // A picture from the noise of the image, colours, and the Z80's program.
    program.Transfer(0, 0x4000, 0x4000, 1, 0);
    program.Transfer(0, 0x40, 0x5000, 3, 0);
    program.TakeBus();
    program.StoreWord(0xA11200, 0x100);
    program.Words({0x41F9, 0x0000, kZ80Code, 0x43F9, 0x00A0, 0x0000, 0x303C, kZ80Bytes - 1, 0x12D8,
                   0x51C8, 0xFFFC});
    program.StoreWord(0xA11200, 0);
    program.StoreWord(0xA11200, 0x100);
    program.GiveBus();
    program.Words({0x46FC, 0x2300});
    const size_t loop = program.Here();
    constexpr size_t kLongestPiece = 128;
    while (!numbers.IsAtEnd() && program.Here() < kProgramEnd - kLongestPiece) {
        PutPiece(program, numbers);
    }
    program.Words({0x6000, static_cast<uint32_t>(loop - program.Here() - 2) & 0xFFFF});
}

void PutZ80Piece(std::vector<uint8_t>& code, Numbers& numbers) {
    const auto add = [&](std::initializer_list<uint32_t> bytes) {
        for (const uint32_t byte : bytes) {
            code.push_back(static_cast<uint8_t>(byte));
        }
    };
    const uint32_t value = numbers.Byte();
    switch (numbers.Byte() % 16) {
    case 0:
    case 1:
        add({0x3E, 0x22 + value % 0x98, 0x32, value & 2, 0x40, 0x3E, numbers.Byte(), 0x32,
             1 | (value & 2), 0x40});
        break;
    case 2: add({0x3E, 0x28, 0x32, 0x00, 0x40, 0x3E, value, 0x32, 0x01, 0x40}); break;
    case 3: add({0x3E, value, 0x32, 0x11, 0x7F}); break;
    case 4: add({0x06, value, 0x10, 0xFE}); break; // djnz
    case 5: add({0x3A, 0x00, 0x40, 0xE6, 0x03, 0x28, 0xF9}); break;
    case 6: add({0x3A, value & 0x0F, 0x7F, 0x32, value, 0x1E}); break;
    case 7: add({0x3E, value, 0x32, 0x10, 0x80}); break;
    case 8: add({0x3A, value, 0x80, 0x32, value, 0x1E}); break;
    case 9: add({0x3E, value, 0x32, 0x00, 0x60}); break;
    case 10: add({0xFB, 0x76}); break; // ei; halt
    case 11: add({0xED, 0x5F, 0x32, value, 0x1F}); break;
    case 12: add({0xC5, 0xE5, 0x21, value, 0x1E, 0x34, 0xE1, 0xC1}); break;
    case 13: add({0x21, 0x00, 0x1E, 0x11, value, 0x1F, 0x01, 0x08, 0x00, 0xED, 0xB0}); break;
    case 14: add({0x3E, value, 0x32, 0x00, 0x7F}); break; // a word for the VDP
    default: add({value}); break;
    }
}

void PutZ80(std::vector<uint8_t>& image, Numbers numbers) {
    // im 1; ld sp; the window on the 68000's RAM; at 0x38 the interrupt counts.
    std::vector<uint8_t> code{0xF3, 0xED, 0x56, 0x31, 0xF0, 0x1F, 0xC3, 0x60, 0x00};
    code.resize(0x38);
    for (const int byte : {0xF5, 0x3A, 0x00, 0x1E, 0x3C, 0x32, 0x00, 0x1E, 0xF1, 0xFB, 0xC9}) {
        code.push_back(static_cast<uint8_t>(byte));
    }
    code.resize(0x60);
    for (uint32_t bit = 15; bit < 24; ++bit) {
        for (const uint32_t byte : {0x3EU, 0xFF8000U >> bit & 1, 0x32U, 0x00U, 0x60U}) {
            code.push_back(static_cast<uint8_t>(byte));
        }
    }
    const size_t loop = code.size();
    constexpr size_t kLongestPiece = 16;
    while (!numbers.IsAtEnd() && code.size() < kZ80Bytes - kLongestPiece) {
        PutZ80Piece(code, numbers);
    }
    for (const size_t byte : {size_t{0xC3}, loop & 0xFF, loop >> 8}) {
        code.push_back(static_cast<uint8_t>(byte));
    }
    std::copy(code.begin(), code.end(), image.begin() + kZ80Code);
}

std::vector<uint8_t> MakeImage(const MD_FUZZ_CARTRIDGE& cartridge, std::span<const uint8_t> input) {
    std::vector<uint8_t> image(kImageBytes);
    uint32_t noise = 1;
    for (uint8_t& byte : image) {
        noise = noise * 0x3C6EF35F + 0x12345;
        byte = static_cast<uint8_t>(noise >> 16 & noise >> 24);
    }
    const size_t forZ80 = input.size() * input[1] / 256;
    input = input.subspan(2);
    PutFrame(image);
    MdFuzzPutHeader(image, cartridge);
    PutZ80(image, Numbers(input.first(std::min(forZ80, input.size()))));
    Put68000(image, Numbers(input.subspan(std::min(forZ80, input.size()))));
    return image;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool kReady = [] {
        RegisterDefaultSettings(Settings());
        MdBuildTables();
        return true;
    }();
    if (!kReady || size < 3) {
        return 0;
    }
    const auto& cartridge = kMdFuzzCartridges[data[0] % std::size(kMdFuzzCartridges)];
    const uint8_t console = (data[0] & 0x80) != 0 ? kMdConsolePal : kMdConsoleGenesis;
    const std::vector<uint8_t> image = MakeImage(cartridge, std::span(data, size));
    FuzzLoops([&] { return MdFuzzStart(image, console); }, kFrames);
    return 0;
}
