// Random programs that access everything they can reach at random cycles of the frame: the fast loop, in which the
// PPU is owed dots, against the plain one, on every kind of board.
#include "nes/nes_boards.h"

#include <random>
#include <string>

namespace {

constexpr uint16_t kAccumulated =
    0x0010; // a mix of every value read so far; written values use it too
constexpr uint16_t kInterrupts = 0x0011; // counts the interrupts
constexpr uint16_t kRoutineEnd = 0x00C0; // bytes of a routine; then it returns

class RandomProgram {
public:
    explicit RandomProgram(uint32_t seed)
        : random(seed) {
        // A visible picture from the start: character RAM, nametables, sprites, palette.
        program.Bytes({0xA2, 0xFF, 0x9A}); // LDX # TXS
        Fill(0x0000, 0x30);
        Fill(0x3F00, 1);
        program.Store(0x4014, static_cast<int>(kNesCodeStart >> 8));
        program.Store(0x2000, 0x80).Store(0x2001, 0x1E).Bytes({0x58}); // CLI
        const uint16_t loop = program.Here();
        while (program.Here() < kNesNmi - 0x20) {
            Poke();
        }
        program.Jump(loop);
        Routine(kNesNmi);
        Routine(kNesIrq);
    }

    [[nodiscard]] const NesProgram& Program() const { return program; }

private:
    uint32_t Below(uint32_t end) { return static_cast<uint32_t>(random() % end); }
    int Byte() { return static_cast<int>(Below(256)); }

    // Fills pages of PPU memory with bytes made by ADC and ROL.
    void Fill(int address, int pages) {
        program.PictureAddress(address).Lda(Byte()).Bytes({0xA0, pages, 0xA2, 0}); // LDY # LDX #
        program.Bytes({0x69, 0x35, 0x2A}).Sta(0x2007);                             // ADC # ROL
        program.Bytes({0xCA, 0xD0, 0xF7, 0x88, 0xD0, 0xF4}); // DEX BNE, DEY BNE
    }

    // Random accesses with A and X saved; acknowledges the interrupts of boards and chips.
    void Routine(uint16_t at) {
        program.At(at).Bytes({0x48, 0x8A, 0x48}); // PHA TXA PHA
        program.Bytes({0xE6, kInterrupts});       // INC
        program.Load(0x4015).Sta(0xE000).Sta(0xE001).Sta(0xD000);
        while (program.Here() < at + kRoutineEnd) {
            Poke();
        }
        program.Bytes({0x68, 0xAA, 0x68, 0x40}); // PLA TAX PLA RTI
    }

    void Poke() {
        Delay();
        switch (Below(12)) {
        case 8: WaitForInterrupt(); break;
        case 9: WaitForWhatNeverComes(); break;
        case 10: WaitForFlag(); break;
        case 0:
        case 1: Read(0x2000 + Below(0x2000)); break; // any mirror of the PPU's registers
        case 2:
        case 3: Write(PictureRegister()); break;
        case 4: Write(0x8000 + Below(0x8000)); break; // the board's registers
        case 5: Write(0x6000 + Below(0x2000)); break;
        case 6: Sound(); break;
        default: Memory(); break;
        }
    }

    // Up to eleven lines, or a few cycles.
    void Delay() {
        if (Below(3) == 0) {
            program.Bytes({0xA2, Byte(), 0xCA, 0xD0, 0xFD}); // LDX # DEX BNE
        } else {
            for (uint32_t count = Below(6); count != 0; --count) {
                program.Bytes({0xEA});
            }
        }
    }

    // As most games do between two frames; the loop may also be entered in an interrupt's routine.
    void WaitForInterrupt() {
        program.Store(0x2000, 0x80 | Byte()).Bytes({0x58, 0xA5, kInterrupts}); // CLI LDA
        if (Below(2) == 0) {
            program.Bytes({0xC5, kInterrupts, 0xF0, 0xFC}); // CMP BEQ
        } else {
            const uint16_t loop = program.Here();
            program.Bytes({0xEA, 0xC5, kInterrupts, 0xD0, 0x03}).Jump(loop); // NOP CMP BNE
        }
    }

    // Reads the flags of PPUSTATUS, or of a mirror of it, until one is set or an interrupt has come.
    void WaitForFlag() {
        const int status = 0x2002 + 8 * static_cast<int>(Below(0x400));
        program.Store(0x2000, 0x80 | Byte()).Bytes({0x58, 0xA6, kInterrupts}); // CLI LDX
        if (Below(2) == 0) {
            const int branch = Below(2) == 0 ? 0x30 : 0x70;       // BMI or BVS
            program.Absolute(0x2C, status).Bytes({branch, 0x04}); // BIT
            program.Bytes({0xE4, kInterrupts, 0xF0, 0xF7});       // CPX BEQ
        } else {
            const int flags = 0x20 << Below(3);
            program.Absolute(0xAD, status).Bytes({0x29, flags, 0xD0, 0x04}); // LDA AND BNE
            program.Bytes({0xE4, kInterrupts, 0xF0, 0xF5});                  // CPX BEQ
        }
    }

    // A loop whose rounds differ: it counts in a register, or in memory.
    void WaitForWhatNeverComes() {
        if (Below(2) == 0) {
            program.Bytes({0xA0, Byte(), 0xC8, 0xC4, kInterrupts, 0xD0, 0xFB}); // LDY # INY CPY BNE
        } else {
            program.Bytes({0xE6, 0x12, 0xA5, 0x12, 0xD0, 0xFA}); // INC LDA BNE
        }
    }

    // Rendering is switched rarely, on as often as off, so that pictures are drawn.
    uint16_t PictureRegister() {
        const uint32_t number = Below(8);
        return static_cast<uint16_t>(0x2000 + (number == 1 && Below(3) != 0 ? 7 : number));
    }

    void Read(uint32_t address) {
        program.Load(static_cast<int>(address))
            .Bytes({0x45, kAccumulated, 0x2A, 0x85, kAccumulated});
    }

    void Write(uint32_t address) {
        if (Below(2) == 0) {
            program.Lda(Byte());
        } else {
            program.Bytes({0xA5, kAccumulated});
        }
        // A read-modify-write instruction writes twice in consecutive cycles.
        program.Absolute(Below(6) == 0 ? 0xEE : 0x8D, static_cast<int>(address));
    }

    // Sample fetches hold the CPU; sprite DMA reads a page at once.
    void Sound() {
        switch (Below(3)) {
        case 0:
            program.Store(0x4010, 0x0F).Store(0x4012, 0x80).Store(0x4013, 0x02).Store(0x4015, 0x1F);
            break;
        case 1: Write(0x4000 + Below(0x18)); break;
        default: program.Store(0x4014, static_cast<int>(Below(8))); break;
        }
    }

    void Memory() {
        if (Below(2) == 0) {
            Write(0x0200 + Below(0x600));
        } else {
            Read(0x6000 + Below(0xA000));
        }
    }

    std::mt19937 random;
    NesProgram program;
};

class EveryNesBoard : public testing::TestWithParam<NES_BOARD_CASE> {};

} // namespace

TEST_P(EveryNesBoard, RandomAccessesAreTheSameFastAndPlain) {
    constexpr uint32_t kPrograms = 4;
    constexpr int kFrames = 30; // the first five fill the memory
    std::vector<FRAME_RESULT> run;
    for (uint32_t seed = 0; seed < kPrograms; ++seed) {
        const RandomProgram random(seed);
        const auto fast = StartNes(random.Program(), ImageOf(GetParam()));
        const auto plain = StartNes(random.Program(), ImageOf(GetParam()));
        plain->SetPlainLoop(true);
        for (int frame = 0; frame < kFrames; ++frame) {
            const FRAME_RESULT one = Play(*fast, frame, 1).front();
            const FRAME_RESULT two = Play(*plain, frame, 1).front();
            ASSERT_EQ(one.picture, two.picture) << seed << ", frame " << frame;
            ASSERT_EQ(one.sound, two.sound) << seed << ", frame " << frame;
            ASSERT_TRUE(Save(*fast) == Save(*plain)) << seed << ", frame " << frame;
            run.push_back(one);
        }
    }
    ExpectALivelyRun(run);
}

INSTANTIATE_TEST_SUITE_P(NesBoard, EveryNesBoard, testing::ValuesIn(kNesBoardCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });
