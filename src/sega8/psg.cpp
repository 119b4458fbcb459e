#include "sega8/psg.h"

#include "machine/state_piece.h"

#include <algorithm>
#include <bit>
#include <memory>

namespace {

constexpr size_t kTones = 3;
constexpr size_t kNoise = 3;

// By attenuation, in steps of 2 dB from full level. Settled.
constexpr std::array<int32_t, 16> kToneVolume{3276, 2602, 2067, 1642, 1304, 1036, 823, 656,
                                              519,  412,  327,  260,  206,  164,  130, 0};
constexpr std::array<int32_t, 16> kNoiseVolume{8191, 6507, 5168, 4105, 3261, 2590, 2057, 1642,
                                               1298, 1031, 819,  650,  516,  410,  326,  0};

// A byte at the sound port. A latch byte selects a register and has its low four bits; a data byte
// has the high six bits of a period, or the whole value of another register.
constexpr uint8_t kLatchByte = 0x80;
constexpr uint32_t kLatchChannelShift = 5;
constexpr uint8_t kLatchChannelMask = 3;
constexpr uint8_t kLatchVolume = 0x10;
constexpr uint8_t kLatchPeriodBits = 0x0F;
constexpr uint8_t kDataPeriodBits = 0x3F;
constexpr uint32_t kDataPeriodShift = 4;

constexpr uint8_t kAttenuationMask = 0x0F;
constexpr uint8_t kNoiseControlMask = 0x0F;
constexpr uint16_t kPeriodMask = 0x3FF;
constexpr uint16_t kPeriodHigh = kDataPeriodBits << kDataPeriodShift;
constexpr uint8_t kNoiseRateMask = 3;
constexpr uint8_t kNoiseRateFromTone = 3;
constexpr uint8_t kNoiseIsWhite = 4;

void AdvanceTones(PSG& psg) {
    for (size_t i = 0; i < kTones; ++i) {
        if (--psg.counter[i] < 1) {
            psg.output[i] = -psg.output[i];
            psg.counter[i] = psg.period[i];
            // A constant level; games play samples by changing its attenuation.
            if (psg.period[i] < 2) {
                psg.output[i] = 1;
            }
        }
    }
}

void ShiftNoise(PSG& psg) {
    const bool white = (psg.noiseControl & kNoiseIsWhite) != 0;
    const uint32_t bit =
        white ? static_cast<uint32_t>(std::popcount(psg.lfsr & psg.lfsrTaps)) & 1 : psg.lfsr & 1;
    psg.lfsr = psg.lfsr >> 1 | bit << psg.lfsrShift;
}

void AdvanceNoise(PSG& psg) {
    if (--psg.counter[kNoise] < 1) {
        const uint8_t rate = psg.noiseControl & kNoiseRateMask;
        psg.counter[kNoise] = rate == kNoiseRateFromTone ? psg.period[2] : 16 << rate;
        psg.noiseToggle ^= 1;
        if (psg.noiseToggle != 0) {
            ShiftNoise(psg);
        }
    }
    psg.noiseOutput = psg.lfsr & 1;
}

// The levels of the channels, tones first.
std::array<int32_t, 4> Levels(const PSG& psg) {
    std::array<int32_t, 4> levels{};
    for (size_t i = 0; i < kTones; ++i) {
        levels[i] = kToneVolume[psg.attenuation[i]] * psg.output[i];
    }
    levels[kNoise] = psg.noiseOutput != 0 ? kNoiseVolume[psg.attenuation[kNoise]] : 0;
    return levels;
}

struct PSG_PAIR {
    int16_t left;
    int16_t right;
};

PSG_PAIR Mix(const PSG& psg) {
    const std::array<int32_t, 4> levels = Levels(psg);
    int32_t left = 0;
    int32_t right = 0;
    if (psg.stereo) {
        for (size_t i = 0; i < levels.size(); ++i) {
            left += psg.leftEnable[i] != 0 ? levels[i] : 0;
            right += psg.rightEnable[i] != 0 ? levels[i] : 0;
        }
    } else {
        left = levels[0] + levels[1] + levels[2] + levels[3];
        right = left;
    }
    return {static_cast<int16_t>(left), static_cast<int16_t>(right)};
}

// Whether the next pair leaves a tone as it is: its level is constant.
bool IsConstant(const PSG& psg, size_t tone) {
    return psg.period[tone] < 2 && psg.output[tone] == 1 && psg.counter[tone] == psg.period[tone];
}

// Pairs before the next one in which a channel changes.
uint32_t QuietPairs(const PSG& psg) {
    int32_t quiet = psg.counter[kNoise] - 1;
    for (size_t i = 0; i < kTones; ++i) {
        if (!IsConstant(psg, i)) {
            quiet = std::min(quiet, psg.counter[i] - 1);
        }
    }
    return quiet > 0 ? static_cast<uint32_t>(quiet) : 0;
}

void RunQuietPairs(PSG& psg, uint32_t pairs) {
    for (size_t i = 0; i < kTones; ++i) {
        if (!IsConstant(psg, i)) {
            psg.counter[i] -= static_cast<int32_t>(pairs);
        }
    }
    psg.counter[kNoise] -= static_cast<int32_t>(pairs);
    psg.noiseOutput = psg.lfsr & 1;
    const PSG_PAIR pair = Mix(psg);
    psg.pairs->AddRun(pair.left, pair.right, pairs);
}

void WriteRegister(PSG& psg, uint8_t value, bool isLatch) {
    const size_t channel = psg.latchChannel;
    if (psg.latchIsVolume) {
        psg.attenuation[channel] = value & kAttenuationMask;
    } else if (channel == kNoise) {
        psg.noiseControl = value & kNoiseControlMask;
        psg.lfsr = 1u << psg.lfsrShift;
    } else if (isLatch) {
        psg.period[channel] =
            static_cast<uint16_t>((psg.period[channel] & kPeriodHigh) | (value & kLatchPeriodBits));
    } else {
        psg.period[channel] = static_cast<uint16_t>((psg.period[channel] & kLatchPeriodBits) |
                                                    (value & kDataPeriodBits) << kDataPeriodShift);
    }
}

// The fields in the order of the piece; `visit` reads or writes them.
template <typename Visit>
void Fields(PSG& psg, Visit& visit) {
    visit(psg.clock);
    visit(psg.divider);
    visit(psg.attenuation);
    visit(psg.counter);
    visit(psg.output);
    visit(psg.noiseOutput);
    visit(psg.period);
    visit(psg.noiseControl);
    visit(psg.latchChannel);
    visit(psg.latchIsVolume);
    visit(psg.lfsr);
    visit(psg.noiseToggle);
    visit(psg.stereo);
    visit(psg.leftEnable);
    visit(psg.rightEnable);
    visit(psg.lfsrShift);
    visit(psg.lfsrTaps);
}

// Brings loaded fields into the ranges that the chip keeps.
void Sanitize(PSG& psg) {
    psg.divider %= kPsgClocksPerPair;
    for (size_t i = 0; i < 4; ++i) {
        psg.attenuation[i] &= kAttenuationMask;
        psg.counter[i] = std::clamp(psg.counter[i], 0, int32_t{kPeriodMask});
        psg.leftEnable[i] &= 1;
        psg.rightEnable[i] &= 1;
    }
    for (size_t i = 0; i < kTones; ++i) {
        psg.output[i] = psg.output[i] < 0 ? -1 : 1;
        psg.period[i] &= kPeriodMask;
    }
    psg.noiseOutput &= 1;
    psg.noiseControl &= kNoiseControlMask;
    psg.noiseToggle &= 1;
    psg.latchChannel &= kLatchChannelMask;
}

} // namespace

void PsgInit(PSG& psg, uint32_t clock, int model, bool stereo) {
    psg.clock = clock;
    psg.stereo = stereo;
    if (model >= 1 && model <= 3) {
        psg.lfsrShift = 15;
        psg.lfsrTaps = 9;
    } else if (model >= 4 && model <= 6) {
        psg.lfsrShift = 14;
        psg.lfsrTaps = 3;
    }
}

void PsgReset(PSG& psg) {
    psg.divider = 0;
    psg.attenuation.fill(kAttenuationMask);
    psg.counter.fill(0);
    psg.output.fill(1);
    psg.noiseOutput = 0;
    psg.period.fill(0);
    psg.noiseControl = 0;
    psg.latchChannel = 0;
    psg.latchIsVolume = false;
    psg.lfsr = 0;
    psg.noiseToggle = 0;
    psg.leftEnable.fill(1);
    psg.rightEnable.fill(1);
}

void PsgMakePair(PSG& psg) {
    AdvanceTones(psg);
    AdvanceNoise(psg);
    const PSG_PAIR pair = Mix(psg);
    psg.pairs->Add(pair.left, pair.right);
}

void PsgRun(PSG& psg, uint32_t clocks) {
    clocks += psg.divider;
    psg.divider = clocks % kPsgClocksPerPair;
    uint32_t pairs = clocks / kPsgClocksPerPair;
    while (pairs != 0) {
        const uint32_t quiet = std::min(pairs, QuietPairs(psg));
        if (quiet != 0) {
            RunQuietPairs(psg, quiet);
        } else {
            PsgMakePair(psg);
        }
        pairs -= std::max(quiet, 1u);
    }
}

void PsgWrite(PSG& psg, uint8_t value) {
    const bool isLatch = (value & kLatchByte) != 0;
    if (isLatch) {
        psg.latchChannel = value >> kLatchChannelShift & kLatchChannelMask;
        psg.latchIsVolume = (value & kLatchVolume) != 0;
    }
    WriteRegister(psg, value, isLatch);
}

// Settled: 0 enables every channel.
void PsgStereoWrite(PSG& psg, uint8_t value) {
    const uint8_t mask = value == 0 ? uint8_t{0xFF} : value;
    for (size_t i = 0; i < 4; ++i) {
        psg.leftEnable[i] = mask >> (4 + i) & 1;
        psg.rightEnable[i] = mask >> i & 1;
    }
}

uint32_t PsgStateSize() {
    static const uint32_t kSize = [] {
        const auto psg = std::make_unique<PSG>();
        return StatePieceSize([&](auto& visit) { Fields(*psg, visit); });
    }();
    return kSize;
}

StateOut PsgSaveState(const PSG& psg, StateOut out) {
    auto& fields =
        const_cast<PSG&>(psg); // Fields lists them for reading and writing; saving changes none.
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, visit); });
}

uint32_t PsgLoadState(PSG& psg, const uint8_t* data, uint32_t size) {
    const uint32_t clock = psg.clock;
    const bool stereo = psg.stereo;
    const uint32_t lfsrShift = psg.lfsrShift;
    const uint32_t lfsrTaps = psg.lfsrTaps;
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { Fields(psg, visit); });
    // The board sets the wiring, not the state.
    psg.clock = clock;
    psg.stereo = stereo;
    psg.lfsrShift = lfsrShift;
    psg.lfsrTaps = lfsrTaps;
    if (used != 0) {
        Sanitize(psg);
    }
    return used;
}
