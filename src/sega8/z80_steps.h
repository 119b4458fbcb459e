// The steps of a Z80's queue, one a clock. Their values are saved in states.
//
// "Low" and "High" are the bytes of regs[regIndex], "WzLow" and "WzHigh" those of wz; "T" is the
// low byte of temp. Steps that also end the instruction say so. Any other value is an idle clock.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>

enum class Z80Step : uint8_t {
    kIdle = 0,
    kFetch = 1,  // opcode fetch at PC
    kStart = 2,  // first clock of an instruction; an interrupt starts here
    kSample = 3, // the chip may release the bus
    kSampleAndEnd = 4,
    kSampleAgain = 5, // as kSample, before the second and later accesses
    kEnd = 6,         // the instruction is over; interrupts are sampled

    kPortToLow = 90,
    kPortToHigh = 91,
    kPortToWzLow = 92,
    kPortToT = 93,
    kLowToPort = 94,
    kHighToPort = 95,
    kTToPort = 96,
    kPortToLowFlags = 97, // also sets the flags of IN r,(C)
    kPortToHighFlags = 98,
    kPortToTFlags = 99,

    kOperandToWzLow = 100, // read at PC; PC + 1
    kOperandToWzHigh = 101,
    kOperandToLow = 102,
    kOperandToHigh = 103,
    kOperandToT = 104,
    kDisplacement = 105,     // signed, added to wz
    kTempHighToNext = 108,   // high byte of temp to wz + 1
    kTToMemoryFirst = 109,   // as kTToMemory, in the middle of an exchange
    kTToMemory = 110,        // to wz
    kLowToMemoryFirst = 111, // as kLowToMemory, with a high byte to follow
    kHighToNext = 112,       // to wz + 1
    kLowToMemory = 113,
    kHighToMemory = 114,
    kMemoryToLowFirst = 120, // as kMemoryToLow, with a high byte to follow
    kNextToHigh = 121,       // from wz + 1
    kMemoryToLow = 122,
    kMemoryToHigh = 123,
    kMemoryToT = 124,
    kMemoryToWzLow = 125,
    kPushWzLow = 130,
    kPushWzHigh = 131,
    kPushLow = 132,
    kPushHigh = 133,
    kPopWzLow = 134,
    kPopWzHigh = 135,
    kPopLow = 136,
    kPopHigh = 137,

    kAnd = 140, // A with WzLow, then the end; so are the others up to kCompare
    kOr = 141,
    kXor = 142,
    kCompare = 143,
    kJumpRelative = 144, // PC += WzLow, signed; then the end
    kIncrementT = 145,
    kDecrementT = 146,
    kAdd = 147, // A with WzLow, then the end; so are the others up to kSubtractCarry
    kAddCarry = 148,
    kSubtract = 149,
    kSubtractCarry = 150,

    kLdi = 151,
    kLdir = 152,
    kCpi = 153,
    kOuti = 154,
    kBit = 155,
    kSet = 156,
    kRlc = 159,
    kRes = 160,
    kOtir = 161,
    kBitIndexed = 162,
    kRld = 163,
    kRrd = 164,
    kLdd = 165,
    kLddr = 166,
    kOutd = 167,
    kOtdr = 168,
    kIni = 169,
    kInir = 170,
    kSrl = 171,
    kCpir = 172,
    kRl = 173,
    kRr = 174,
    kRrc = 175,
    kSla = 176,
    kCpd = 177,
    kCpdr = 178,
    kInd = 179,
    kIndr = 180,
    kSra = 181,
    kSll = 182,

    kIndexedOpcode = 199, // last byte of DD CB and FD CB, read as data
    kDecodeIndexed = 200,
    kDecode = 0xFE
};

inline constexpr uint32_t kZ80TemplateSize = 20;

using Z80TemplateSteps = std::array<Z80Step, kZ80TemplateSize>;

// True for a clock on which nothing happens unless busHold is set.
constexpr bool Z80IsWait(Z80Step step) {
    return step == Z80Step::kIdle || step == Z80Step::kSample || step == Z80Step::kSampleAgain;
}

// The remaining clocks of an instruction, one step each.
struct Z80Template {
    Z80TemplateSteps steps{};
    uint32_t actions = 0; // bit n: step n is not a wait

    constexpr Z80Template() = default;
    constexpr explicit Z80Template(const Z80TemplateSteps& list)
        : steps(list) {
        for (uint32_t i = 0; i < kZ80TemplateSize; ++i) {
            actions |= Z80IsWait(steps[i]) ? 0U : 1U << i;
        }
    }
    constexpr explicit Z80Template(Z80Step only)
        : Z80Template(Z80TemplateSteps{only}) {}
    template <std::same_as<Z80Step>... Steps>
    constexpr Z80Template(Z80Step first, Z80Step second, Steps... others)
        : Z80Template(Z80TemplateSteps{first, second, others...}) {}
};
