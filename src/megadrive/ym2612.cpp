// The YM2612's life: clock, reset and states.
#include "megadrive/ym2612.h"

#include "machine/state_piece.h"
#include "megadrive/ym2612_private.h"
#include "megadrive/ym2612_tables.h"
#include "megadrive/ym2612_tick.h"

#include <algorithm>
#include <memory>

namespace {

constexpr uint32_t kAllOnes = ~0u;

void ClearChannels(YM2612& ym) {
    ym.channels = {};
    ym.channel3 = {};
    ym.ssgSlots = 0;
    for (YM2612_CHANNEL& channel : ym.channels) {
        for (YM2612_SLOT& slot : channel.slots) {
            slot.volume = kYm2612Silent;
            slot.volOut = static_cast<uint32_t>(kYm2612Silent);
        }
    }
}

void WriteRegister(YM2612& ym, uint32_t reg, uint8_t value) {
    for (const uint32_t port : {0u, 2u}) {
        Ym2612Write(ym, port, static_cast<uint8_t>(reg));
        Ym2612Write(ym, port + 1, value);
    }
}

// --- state --------------------------------------------------------------------------------------

template <typename Visit>
void RateFields(YM2612_RATE& rate, Visit& visit) {
    visit(rate.shift);
    visit(rate.select);
}

template <typename Visit>
void SlotFields(YM2612_SLOT& slot, Visit& visit) {
    visit(slot.dt);
    visit(slot.mul);
    visit(slot.ar);
    visit(slot.d1r);
    visit(slot.d2r);
    visit(slot.rr);
    visit(slot.ksrShift);
    visit(slot.ksr);
    visit(slot.phase);
    visit(slot.phaseStep);
    visit(slot.state);
    visit(slot.tl);
    visit(slot.volume);
    visit(slot.sl);
    visit(slot.volOut);
    RateFields(slot.attack, visit);
    RateFields(slot.decay, visit);
    RateFields(slot.sustain, visit);
    RateFields(slot.release, visit);
    visit(slot.ssg);
    visit(slot.ssgInverted);
    visit(slot.keyOn);
    visit(slot.amMask);
}

template <typename Visit>
void PitchFields(YM2612_PITCH& pitch, Visit& visit) {
    visit(pitch.blockFnum);
    visit(pitch.keyCode);
    visit(pitch.fc);
}

template <typename Visit>
void ChannelFields(YM2612_CHANNEL& channel, Visit& visit) {
    for (YM2612_SLOT& slot : channel.slots) {
        SlotFields(slot, visit);
    }
    visit(channel.algorithm);
    visit(channel.feedback);
    visit(channel.operator1Out);
    visit(channel.pms);
    visit(channel.ams);
    visit(channel.leftMask);
    visit(channel.rightMask);
    PitchFields(channel.pitch, visit);
}

// Every field in the order of the piece.
template <typename Visit>
void Fields(YM2612& ym, Visit& visit) {
    for (YM2612_CHANNEL& channel : ym.channels) {
        ChannelFields(channel, visit);
    }
    visit(ym.address);
    visit(ym.irq);
    visit(ym.irqMask);
    visit(ym.status);
    visit(ym.timerA);
    visit(ym.timerACount);
    visit(ym.timerB);
    visit(ym.timerBCount);
    visit(ym.mode);
    visit(ym.fnHighLatch);
    for (YM2612_PITCH& pitch : ym.channel3) {
        PitchFields(pitch, visit);
    }
    visit(ym.channel3Latch);
    visit(ym.lfoCounter);
    visit(ym.lfoIncrement);
    visit(ym.lfoAm);
    visit(ym.lfoPm);
    visit(ym.egCounter);
    visit(ym.egTimer);
    visit(ym.egTimerAdd);
    visit(ym.egTimerOverflow);
    visit(ym.csmKey);
    visit(ym.dacOut);
    visit(ym.dacEnabled);
    visit(ym.tickCount);
    visit(ym.channelOut);
}

void Sanitize(YM2612_SLOT& slot) {
    constexpr uint32_t kHighestRate = 31 * 2 + 32;
    constexpr uint32_t kHighestLevel = 127 * 8;
    constexpr uint8_t kRowBits = 0xF8; // rows of the steps begin at multiples of 8
    slot.dt &= 7;
    slot.mul = std::min(slot.mul, 30u);
    slot.ar = std::min(slot.ar, kHighestRate);
    slot.d1r = std::min(slot.d1r, kHighestRate);
    slot.d2r = std::min(slot.d2r, kHighestRate);
    slot.rr = std::min(slot.rr, kHighestRate);
    slot.ksrShift &= 3;
    slot.ksr &= 31;
    if (slot.state > Ym2612Envelope::kAttack) {
        slot.state = Ym2612Envelope::kOff;
    }
    slot.tl = std::min(slot.tl, kHighestLevel);
    slot.volume = std::clamp(slot.volume, 0, kYm2612Silent);
    slot.sl = std::min<uint32_t>(slot.sl, kYm2612SustainLevel.back());
    slot.volOut = std::min(slot.volOut, kHighestLevel + uint32_t{kYm2612Silent});
    for (YM2612_RATE* rate : {&slot.attack, &slot.decay, &slot.sustain, &slot.release}) {
        rate->shift &= 15;
        rate->select = std::min<uint8_t>(rate->select & kRowBits, kYm2612StepNever);
    }
    slot.ssg &= 15;
    slot.ssgInverted &= kYm2612SsgAttack;
    slot.keyOn &= 1;
    slot.amMask = slot.amMask != 0 ? kAllOnes : 0;
}

void Sanitize(YM2612_PITCH& pitch) {
    pitch.blockFnum &= 0x3FFF;
    pitch.keyCode &= 31;
    pitch.fc = std::min(pitch.fc, Ym2612PhaseStepOf(4095, 7));
}

void Sanitize(YM2612_CHANNEL& channel) {
    constexpr int32_t kPeak = 8192;
    for (YM2612_SLOT& slot : channel.slots) {
        Sanitize(slot);
    }
    channel.algorithm &= 7;
    channel.feedback = std::min<uint8_t>(channel.feedback, 13);
    for (int32_t& output : channel.operator1Out) {
        output = std::clamp(output, -kPeak, kPeak);
    }
    channel.pms &= (kYm2612LfoDepths - 1) * kYm2612LfoPositions;
    channel.ams = std::min<uint8_t>(channel.ams, 8);
    channel.leftMask = channel.leftMask != 0 ? kAllOnes : 0;
    channel.rightMask = channel.rightMask != 0 ? kAllOnes : 0;
    Sanitize(channel.pitch);
}

// Brings a loaded record into the ranges that the chip itself keeps to.
void Sanitize(YM2612& ym) {
    constexpr int32_t kDacPeak = 128 * 64;
    for (YM2612_CHANNEL& channel : ym.channels) {
        Sanitize(channel);
    }
    for (YM2612_PITCH& pitch : ym.channel3) {
        Sanitize(pitch);
    }
    ym.address &= 0x1FF;
    ym.irq &= 1;
    ym.irqMask &= kYm2612TimerA | kYm2612TimerB;
    ym.status &= kYm2612TimerA | kYm2612TimerB;
    ym.timerA &= 1023;
    ym.timerACount = std::clamp(ym.timerACount, 0, 1024);
    ym.timerB &= 255;
    ym.timerBCount = std::clamp(ym.timerBCount, 0, 256 * 16);
    ym.fnHighLatch &= 63;
    ym.channel3Latch &= 63;
    ym.lfoAm &= 127;
    ym.lfoPm &= kYm2612LfoPositions - 1;
    ym.egTimerAdd = kYm2612EgTimerAdd;
    ym.egTimerOverflow = kYm2612EgTimerOverflow;
    ym.egTimer %= ym.egTimerOverflow;
    ym.csmKey &= 1;
    ym.dacOut = std::clamp(ym.dacOut, -kDacPeak, kDacPeak);
    ym.dacEnabled &= kYm2612DacOn;
    ym.tickCount %= kYm2612ClocksPerSample;
}

// Recomputes the fields that aren't in the piece.
void Rebuild(YM2612& ym) {
    ym.recalculate = true;
    ym.egQuiet = 0;
    ym.ssgSlots = 0;
    uint32_t bit = 1;
    for (const YM2612_CHANNEL& channel : ym.channels) {
        for (const YM2612_SLOT& slot : channel.slots) {
            ym.ssgSlots |= (slot.ssg & kYm2612SsgOn) != 0 ? bit : 0;
            bit <<= 1;
        }
    }
}

} // namespace

void Ym2612SetClock(YM2612& ym, uint32_t clock) {
    ym.clock = clock;
    ym.tickCount = 0;
    ClearChannels(ym);
}

void Ym2612Reset(YM2612& ym) {
    ClearChannels(ym);
    ym.irqMask = kYm2612TimerA | kYm2612TimerB;
    ym.timerA = 0;
    ym.timerACount = 0;
    ym.timerB = 0;
    ym.timerBCount = 0;
    ym.fnHighLatch = 0;
    ym.channel3Latch = 0;
    ym.lfoCounter = 0;
    ym.lfoIncrement = 0;
    ym.lfoAm = 0;
    ym.lfoPm = 0;
    ym.egCounter = 0;
    ym.egQuiet = 0;
    ym.egTimer = 0;
    ym.egTimerAdd = kYm2612EgTimerAdd;
    ym.egTimerOverflow = kYm2612EgTimerOverflow;
    ym.csmKey = 0;
    ym.dacOut = 0;
    ym.dacEnabled = 0;
    ym.channelOut = {};
    WriteRegister(ym, kYm2612RegMode, kYm2612ClearA | kYm2612ClearB);
    for (uint32_t reg = kYm2612RegSides + 2; reg >= kYm2612RegSides; --reg) {
        WriteRegister(ym, reg, kYm2612Left | kYm2612Right);
    }
    for (uint32_t reg = kYm2612RegAlgorithm + 2; reg >= kYm2612RegMultiple; --reg) {
        WriteRegister(ym, reg, 0);
    }
    ym.address = 0;
}

void Ym2612Run(YM2612& ym, uint32_t clocks) {
    clocks += ym.tickCount;
    Ym2612MakeSamples(ym, clocks / kYm2612ClocksPerSample);
    ym.tickCount = clocks % kYm2612ClocksPerSample;
}

// A timer that has set its flag sets it again to no effect.
uint32_t Ym2612ClocksToStatus(const YM2612& ym) {
    int32_t samples = 1 << 16;
    if ((ym.mode & kYm2612RunA) != 0 && (ym.mode & kYm2612FlagA) != 0 &&
        (ym.status & kYm2612TimerA) == 0) {
        samples = std::min(samples, ym.timerACount);
    }
    if ((ym.mode & kYm2612RunB) != 0 && (ym.mode & kYm2612FlagB) != 0 &&
        (ym.status & kYm2612TimerB) == 0) {
        samples = std::min(samples, ym.timerBCount);
    }
    return static_cast<uint32_t>(std::max(samples, 1)) * kYm2612ClocksPerSample - ym.tickCount;
}

uint32_t Ym2612StateSize() {
    static const uint32_t kSize = [] {
        const auto ym = std::make_unique<YM2612>();
        return StatePieceSize([&](auto& visit) { Fields(*ym, visit); });
    }();
    return kSize;
}

StateOut Ym2612SaveState(const YM2612& ym, StateOut out) {
    // Saving and loading share this list of fields. Saving does not change them.
    auto& fields = const_cast<YM2612&>(ym);
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, visit); });
}

uint32_t Ym2612LoadState(YM2612& ym, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { Fields(ym, visit); });
    if (used != 0) {
        Sanitize(ym);
        Rebuild(ym);
    }
    return used;
}
