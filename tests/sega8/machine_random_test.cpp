// Random programs that access everything they can reach at random clocks of the frame: the fast loops of the 8-bit
// machines, in which the chips around the Z80 owe clocks, against the plain ones.
#include "sega8/game_gear.h"
#include "sega8/machine_rig.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"

#include "support/machine_states.h"
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kAccumulated = 0xC010; // a mix of every value read so far; written values use it too
constexpr int kInterrupts = 0xC011;  // counts the interrupts
constexpr uint16_t kInterrupt = 0x38;
constexpr uint16_t kNmi = 0x66;
constexpr uint16_t kStart = 0x80;
constexpr uint16_t kRoutine =
    0x400; // of the interrupt, after the first KB, which a mapper never switches
constexpr size_t kBankBytes = 0x4000;
constexpr size_t kBanks = 4;

constexpr int kVCounter = 0x7E;

// What a program may access on a machine.
struct PORT_MAP {
    std::vector<int> videoPorts; // data ports of the VDPs; the control port is the next one
    std::vector<int> soundPorts;
    std::vector<int> readPorts;  // any others
    std::vector<int> writePorts; // any others
};

PORT_MAP SmsPorts() {
    PORT_MAP map;
    map.videoPorts = {0xBE, 0x80};
    map.soundPorts = {0x7F, 0x40};
    map.readPorts = {0x7F, 0xC0, 0xDC, 0xDD, 0xF2, 0x41};
    map.writePorts = {0x3F, 0xF0, 0xF1, 0xF1, 0xF1, 0xF2};
    return map;
}

PORT_MAP GearPorts() {
    PORT_MAP map;
    map.videoPorts = {0xBE, 0x80};
    map.soundPorts = {0x7F, 0x40, 6};
    map.readPorts = {0x7F, 0xC0, 0xDC, 0, 1, 2, 3, 4, 5};
    map.writePorts = {0x3F, 1, 2, 3, 5};
    return map;
}

PORT_MAP ArcadePorts() {
    PORT_MAP map;
    map.videoPorts = {0xBA, 0xBE};
    map.soundPorts = {0x7B, 0x7E, 0x7F};
    map.readPorts = {0xE0, 0xE1, 0xF2, 0xF3, 0xF8};
    map.writePorts = {0xF7, 0xFA};
    return map;
}

class RandomProgram {
public:
    RandomProgram(uint32_t seed, PORT_MAP map)
        : random(seed)
        , ports(std::move(map)) {
        program.Bytes({0xF3, 0xED, 0x56, 0x31, 0xF0, 0xDF, 0xC3, kStart, 0}); // DI; IM 1; LD SP; JP
        program.At(kInterrupt).Bytes({0xC3, kRoutine & 0xFF, kRoutine >> 8});
        program.At(kNmi).Bytes({0xED, 0x45}); // RETN
        program.At(kStart);
        for (const int port : ports.videoPorts) {
            StartVideo(port);
        }
        program.Bytes({0xFB}); // EI
        const int loop = program.Here();
        Pokes(kRoutine - 0x80);
        program.Bytes({0xC3, kSecondPart & 0xFF, kSecondPart >> 8});
        Routine();
        program.At(kSecondPart);
        Pokes(kBankBytes - 0x100);
        program.Bytes({0xC3, loop & 0xFF, loop >> 8});
    }

    // The same program in every bank.
    [[nodiscard]] std::vector<uint8_t> Image() const {
        std::vector<uint8_t> image;
        image.reserve(kBanks * kBankBytes);
        const std::vector<uint8_t> bank = program.Image(kBankBytes);
        for (size_t i = 0; i < kBanks; ++i) {
            image.insert(image.end(), bank.begin(), bank.end());
        }
        return image;
    }

private:
    static constexpr uint16_t kSecondPart = 0x600;

    uint32_t Below(uint32_t end) { return static_cast<uint32_t>(random() % end); }
    int Byte() { return static_cast<int>(Below(256)); }
    int OneOf(std::span<const int> values) {
        return values[Below(static_cast<uint32_t>(values.size()))];
    }

    // Tables and patterns made by ADD and XOR, a palette, a visible picture.
    void StartVideo(int port) {
        const int control = port + 1;
        program.VdpRegister(control, 0, 0x06).VdpRegister(control, 1, 0xE0);
        program.VdpRegister(control, 10, 40 + Byte() % 100);
        program.Out(control, 0)
            .Out(control, 0x40)
            .Bytes({0x21, 0, 0x20, 0x3E, Byte()});           // LD HL; LD A
        program.Bytes({0xC6, 0x35, 0xAC, 0xD3, port, 0x2B}); // ADD; XOR H; OUT; DEC HL
        program.Bytes({0x5F, 0x7C, 0xB5, 0x7B, 0x20, 0xF4}); // LD E,A; LD A,H; OR L; LD A,E; JR NZ
        program.Out(control, 0).Out(control, 0xC0).Bytes({0x06, 64}); // LD B
        program.Bytes({0xC6, 0x1D, 0xD3, port, 0x10, 0xFA});          // ADD; OUT; DJNZ
    }

    // Of each interrupt: the status, which ends it, and a few accesses.
    void Routine() {
        program.At(kRoutine).Bytes(
            {0xF5, 0xC5, 0xE5, 0x21, kInterrupts & 0xFF, kInterrupts >> 8, 0x34});
        for (const int port : ports.videoPorts) {
            program.Bytes({0xDB, port + 1}); // IN
        }
        for (int count = 0; count < 4; ++count) {
            Nops();
            Access();
        }
        program.Bytes({0xE1, 0xC1, 0xF1, 0xFB, 0xC9});
    }

    void Pokes(size_t end) {
        while (program.Here() < end) {
            Delay();
            switch (Below(12)) {
            case 0: WaitForInterrupt(); break;
            case 1: WaitForStatus(); break;
            case 2: WaitForLine(); break;
            case 3: WaitForWhatNeverComes(); break;
            case 4: Block(); break;
            default: Access(); break;
            }
        }
    }

    void Access() {
        switch (Below(8)) {
        case 0: Read(OneOf(ports.readPorts)); break;
        case 1: Read(OneOf(ports.videoPorts) + static_cast<int>(Below(2))); break;
        case 2: Write(OneOf(ports.soundPorts)); break;
        case 3: Write(OneOf(ports.writePorts)); break;
        case 4: Write(OneOf(ports.videoPorts) + static_cast<int>(Below(2))); break;
        case 5: VideoAddress(); break;
        case 6: VideoRegister(); break;
        default: Memory(); break;
        }
    }

    void Nops() {
        for (uint32_t count = Below(6); count != 0; --count) {
            program.Bytes({0});
        }
    }

    // Up to fourteen lines, or a few clocks.
    void Delay() {
        if (Below(4) == 0) {
            program.Bytes({0x06, Byte(), 0x10, 0xFE}); // LD B; DJNZ
        } else {
            Nops();
        }
    }

    void Read(int port) {
        program.Bytes({0xDB, port, 0x21, kAccumulated & 0xFF, kAccumulated >> 8}); // IN; LD HL
        program.Bytes({0xAE, 0x07, 0x77}); // XOR (HL); RLCA; LD (HL),A
    }

    void LoadValue() {
        if (Below(2) == 0) {
            program.Bytes({0x3E, Byte()});
        } else {
            program.Bytes({0x3A, kAccumulated & 0xFF, kAccumulated >> 8});
        }
    }

    void Write(int port) {
        LoadValue();
        program.Bytes({0xD3, port});
    }

    void VideoAddress() {
        const int control = OneOf(ports.videoPorts) + 1;
        program.Out(control, Byte())
            .Out(control, OneOf(std::vector{0x00, 0x40, 0x40, 0xC0}) | (Byte() & 0x3F));
    }

    // Mode 4 and the picture are mostly on.
    void VideoRegister() {
        const int control = OneOf(ports.videoPorts) + 1;
        const int number = Byte() % 11;
        int value = Byte();
        if (Below(4) != 0) {
            value |= number == 0 ? 0x04 : number == 1 ? 0x40 : 0;
        }
        program.VdpRegister(control, number, value);
    }

    // Work RAM and mapper registers: cartridge RAM, and banks, which all have the same program.
    void Memory() {
        const int address =
            Below(4) == 0 ? 0xFFFC + static_cast<int>(Below(4)) : 0xC100 + Byte() * 16;
        LoadValue();
        program.Bytes({0x32, address & 0xFF, address >> 8});
        program.Bytes({0x3A, address & 0xFF, 0x80 + Byte() % 0x60});
        program.Bytes({0x21, kAccumulated & 0xFF, kAccumulated >> 8, 0xAE, 0x77});
    }

    // Bytes to or from a VDP in consecutive instructions: OTIR, INIR.
    void Block() {
        const int length = 1 + Byte() % 40;
        program.Bytes({0x01, OneOf(ports.videoPorts), length, 0x21, Byte(), 0xC2});
        program.Bytes({0xED, Below(4) == 0 ? 0xB2 : 0xB3});
    }

    // As most games do between two frames.
    void WaitForInterrupt() {
        program.Bytes({0xF3}).VdpRegister(ports.videoPorts.back() + 1, 1, 0x60 | Byte());
        if (Below(2) == 0) {
            program.Bytes({0xFB, 0x76}); // EI; HALT
            return;
        }
        program.Bytes(
            {0x21, kInterrupts & 0xFF, kInterrupts >> 8, 0x7E, 0xFB}); // LD HL; LD A,(HL); EI
        program.Bytes({0xBE, 0x28, 0xFD});                             // CP (HL); JR Z
    }

    // For the frame flag, the overflow flag or a collision; the last two may not come in a frame.
    void WaitForStatus() {
        program.Bytes({0xF3, 0xDB, OneOf(ports.videoPorts) + 1});
        if (Below(2) == 0) {
            program.Bytes({0x07, 0x30, 0xFB}); // RLCA; JR NC
        } else {
            program.Bytes({0xE6, 0xE0, 0x28, 0xFA}); // AND; JR Z
        }
        program.Bytes({0xFB});
    }

    void WaitForLine() {
        const int line = Byte() % 0xC0;
        program.Bytes({0xDB, kVCounter, 0xFE, line, 0x20, 0xFA}); // IN; CP; JR NZ
    }

    // A loop whose rounds differ: it counts in a register, in memory, or by R.
    void WaitForWhatNeverComes() {
        switch (Below(3)) {
        case 0: program.Bytes({0x3E, Byte(), 0x3C, 0x20, 0xFD}); break; // LD A; INC A; JR NZ
        case 1: program.Bytes({0x21, 0x12, 0xC0, 0x34, 0x20, 0xFD}); break;
        default: program.Bytes({0xED, 0x5F, 0xE6, 0x3F, 0x20, 0xFA}); break; // LD A,R; AND; JR NZ
        }
    }

    std::mt19937 random;
    PORT_MAP ports;
    Program program;
};

struct CASE {
    const char* name;
    PORT_MAP (*ports)();
    std::unique_ptr<CEmuSystem> (*start)(const std::vector<uint8_t>& image);
    void (*usePlainLoop)(CEmuSystem& machine);
};

// The name of a case in a failure.
void PrintTo(const CASE& what, std::ostream* out) {
    *out << what.name;
}

template <typename Machine>
void UsePlainLoop(CEmuSystem& machine) {
    dynamic_cast<Machine&>(machine).SetPlainLoop(true);
}

std::unique_ptr<CEmuSystem> StartSms(const std::vector<uint8_t>& image, SmsConsole console,
                                     uint8_t fm, PadDevice device) {
    SMS_OPTIONS options{};
    options.console = console;
    options.fmChip = fm;
    options.devices[0] = OptionByte(device);
    CGameFile game = SmsGame(image);
    return StartMachine<CSMS>(options, game);
}

std::unique_ptr<CEmuSystem> StartSecondSms(const std::vector<uint8_t>& image) {
    return StartSms(image, kSms2Ntsc, 0, PadDevice::kJoypad);
}
std::unique_ptr<CEmuSystem> StartFirstSms(const std::vector<uint8_t>& image) {
    return StartSms(image, kSmsJapanese, 1, PadDevice::kPaddle);
}
std::unique_ptr<CEmuSystem> StartPalSms(const std::vector<uint8_t>& image) {
    return StartSms(image, kSms2Pal, 1, PadDevice::kLightPhaser);
}

std::unique_ptr<CEmuSystem> StartGear(const std::vector<uint8_t>& image, bool linked) {
    GEAR_OPTIONS options{};
    options.gearToGear = linked ? 1 : 0;
    options.fullDisplay = 1;
    CGameFile game = GearGame(image);
    return StartMachine<CGAMEGEAR>(options, game);
}
std::unique_ptr<CEmuSystem> StartOneGear(const std::vector<uint8_t>& image) {
    return StartGear(image, false);
}
std::unique_ptr<CEmuSystem> StartTwoGears(const std::vector<uint8_t>& image) {
    return StartGear(image, true);
}

std::unique_ptr<CEmuSystem> StartArcade(const std::vector<uint8_t>& image) {
    CGameFile game = ArcadeGame(image, kBoardAnalog);
    return StartMachine<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, game);
}

const CASE kCases[] = {
    {"Sms",             SmsPorts,    StartSecondSms, UsePlainLoop<CSMS>     },
    {"FirstSmsWithFm",  SmsPorts,    StartFirstSms,  UsePlainLoop<CSMS>     },
    {"PalSmsAndPhaser", SmsPorts,    StartPalSms,    UsePlainLoop<CSMS>     },
    {"GameGear",        GearPorts,   StartOneGear,   UsePlainLoop<CGAMEGEAR>},
    {"LinkedGameGears", GearPorts,   StartTwoGears,  UsePlainLoop<CGAMEGEAR>},
    {"SystemE",         ArcadePorts, StartArcade,    UsePlainLoop<CSEGAE>   },
};

FRAME_RESULT PlayFrame(CEmuSystem& machine, int frame) {
    auto rig = std::make_unique<MACHINE_RIG>();
    MACHINE_RIG::Press(L"SMS PAUSE", frame % 5 == 3);
    MACHINE_RIG::Press(L"SMS P1 UP", (frame / 8 & 1) != 0);
    MACHINE_RIG::Press(L"GG P1 START", (frame / 4 & 1) != 0);
    rig->Frame(machine);
    return {rig->pictureHash, rig->soundHash, rig->audio.sampleCount};
}

// Polls a status; each time that a flag has come it changes the colour of the picture. Two sprites collide in the lines 61
// to 68, where no event of the VDP ends a line.
std::vector<uint8_t> PollingImage(const std::vector<int>& videoPorts, int polled) {
    Program program;
    program.Bytes({0xF3, 0xED, 0x56, 0x31, 0xF0, 0xDF}); // DI; IM 1; LD SP
    for (const int port : videoPorts) {
        const int control = port + 1;
        program.VdpRegister(control, 0, 0x04).VdpRegister(control, 1, 0x40);
        program.VdpRegister(control, 2, 0xFF).VdpRegister(control, 5, 0xFF);
        program.VdpRegister(control, 6, 0xFB).VdpRegister(control, 10, 0xFF);
        program.Out(control, 0).Out(control, 0x40);
        program.Bytes({0x06, 32, 0x3E, 0xFF, 0xD3, port, 0x10, 0xFC}); // LD B; LD A; OUT; DJNZ
        program.Out(control, 0x00).Out(control, 0x7F);
        program.Out(port, 60).Out(port, 60).Out(port, 0xD0);
        program.Out(control, 0x80).Out(control, 0x7F);
        program.Out(port, 200).Out(port, 0).Out(port, 200).Out(port, 0);
    }
    const int loop = program.Here();
    program.Bytes({0xDB, polled, 0xE6, 0xE0, 0x28, 0xFA}); // IN; AND; JR Z
    const int shown = videoPorts.back();
    program.Out(shown + 1, 15)
        .Out(shown + 1, 0xC0)
        .Bytes({0x0C, 0x79, 0xD3, shown}); // INC C; LD A,C; OUT
    program.Bytes({0xC3, loop & 0xFF, loop >> 8});
    return program.Image(kBanks * kBankBytes);
}

class EverySega8Machine : public testing::TestWithParam<CASE> {};

} // namespace

TEST_P(EverySega8Machine, RandomAccessesAreTheSameFastAndPlain) {
    constexpr uint32_t kPrograms = 5;
    constexpr int kFrames = 40;
    const CASE& what = GetParam();
    std::vector<FRAME_RESULT> run;
    run.reserve(kPrograms * kFrames);
    for (uint32_t seed = 0; seed < kPrograms; ++seed) {
        const std::vector<uint8_t> image = RandomProgram(seed, what.ports()).Image();
        const auto fast = what.start(image);
        const auto plain = what.start(image);
        what.usePlainLoop(*plain);
        for (int frame = 0; frame < kFrames; ++frame) {
            const FRAME_RESULT one = PlayFrame(*fast, frame);
            const FRAME_RESULT two = PlayFrame(*plain, frame);
            ASSERT_EQ(one.picture, two.picture) << seed << ", frame " << frame;
            ASSERT_EQ(one.sound, two.sound) << seed << ", frame " << frame;
            ASSERT_TRUE(Save(*fast) == Save(*plain)) << seed << ", frame " << frame;
            run.push_back(one);
        }
    }
    ExpectALivelyRun(run);
}

TEST(Sega8Polling, EndsOnTheClockOfACollision) {
    struct Row {
        const char* name;
        std::vector<int> videoPorts;
        int polled;
        std::unique_ptr<CEmuSystem> (*start)(const std::vector<uint8_t>& image);
        void (*usePlainLoop)(CEmuSystem& machine);
    };
    const Row rows[] = {
        {"Master System",    {0xBE},       0xBF, StartSecondSms, UsePlainLoop<CSMS>  },
        {"System E, first",  {0xBA, 0xBE}, 0xBB, StartArcade,    UsePlainLoop<CSEGAE>},
        {"System E, second", {0xBA, 0xBE}, 0xBF, StartArcade,    UsePlainLoop<CSEGAE>},
    };
    for (const Row& row : rows) {
        const std::vector<uint8_t> image = PollingImage(row.videoPorts, row.polled);
        const auto fast = row.start(image);
        const auto plain = row.start(image);
        row.usePlainLoop(*plain);
        std::set<uint64_t> pictures;
        for (int frame = 0; frame < 30; ++frame) {
            const FRAME_RESULT one = PlayFrame(*fast, frame);
            const FRAME_RESULT two = PlayFrame(*plain, frame);
            ASSERT_EQ(one.picture, two.picture) << row.name << ", frame " << frame;
            ASSERT_TRUE(Save(*fast) == Save(*plain)) << row.name << ", frame " << frame;
            pictures.insert(one.picture);
        }
        EXPECT_GT(pictures.size(), 20U) << row.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Sega8, EverySega8Machine, testing::ValuesIn(kCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });
