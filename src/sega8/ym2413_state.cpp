// States of the YM2413.
#include "machine/state_piece.h"
#include "sega8/ym2413.h"
#include "sega8/ym2413_private.h"
#include "sega8/ym2413_tables.h"

#include <algorithm>
#include <memory>

namespace {

template <typename Visit>
void RateFields(YM_RATE& rate, Visit& visit) {
    visit(rate.shift);
    visit(rate.select);
}

template <typename Visit>
void SlotFields(YM_SLOT& slot, Visit& visit) {
    visit(slot.ar);
    visit(slot.dr);
    visit(slot.rr);
    visit(slot.ksr);
    visit(slot.ksl);
    visit(slot.kscale);
    visit(slot.mul);
    visit(slot.phase);
    visit(slot.incr);
    visit(slot.fbOut);
    visit(slot.egType);
    visit(slot.state);
    visit(slot.tl);
    visit(slot.tll);
    visit(slot.volume);
    visit(slot.sl);
    RateFields(slot.attack, visit);
    RateFields(slot.decay, visit);
    RateFields(slot.release, visit);
    RateFields(slot.sustainRelease, visit);
    RateFields(slot.dump, visit);
    visit(slot.key);
    visit(slot.amMask);
    visit(slot.vib);
    visit(slot.wavetable);
}

// The fields in the order of the piece. Constants of YmInit are not among them.
template <typename Visit>
void Fields(YM2413& ym, Visit& visit) {
    visit(ym.instVol);
    visit(ym.instrument);
    visit(ym.rhythm);
    visit(ym.egCounter);
    visit(ym.egTimer);
    visit(ym.lfoAmCnt);
    visit(ym.lfoPmCnt);
    visit(ym.lfoAm);
    visit(ym.lfoPm);
    visit(ym.noiseRng);
    visit(ym.noiseP);
    visit(ym.tick);
    visit(ym.outMelody);
    visit(ym.outRhythm);
    for (YM_CHANNEL& channel : ym.channels) {
        visit(channel.blockFnum);
        visit(channel.fc);
        visit(channel.kslBase);
        visit(channel.kcode);
        visit(channel.sustain);
        visit(channel.fb);
        SlotFields(channel.slots[kYmModulator], visit);
        SlotFields(channel.slots[kYmCarrier], visit);
    }
}

void Sanitize(YM_RATE& rate) {
    rate.shift &= 15;
    constexpr uint8_t kRowBits = 0x78; // rows of the steps begin at multiples of 8
    rate.select = std::min<uint8_t>(rate.select & kRowBits, kYmStepLast);
}

void Sanitize(YM_SLOT& slot) {
    constexpr uint32_t kHighestRate = 15 * 4 + 16;
    slot.ar = std::min(slot.ar, kHighestRate);
    slot.dr = std::min(slot.dr, kHighestRate);
    slot.rr = std::min(slot.rr, kHighestRate);
    slot.ksr &= 2;
    slot.ksl &= 31;
    slot.kscale &= 15;
    slot.egType &= 1;
    if (slot.state > YmEnvelope::kDump) {
        slot.state = YmEnvelope::kOff;
    }
    slot.tl &= 127;
    slot.tll &= 255;
    slot.volume = std::clamp(slot.volume, 0, kYmSilent);
    slot.sl &= 127;
    for (YM_RATE* rate :
         {&slot.attack, &slot.decay, &slot.release, &slot.sustainRelease, &slot.dump}) {
        Sanitize(*rate);
    }
    slot.key &= kYmKeyMelody | kYmKeyRhythm;
    slot.wavetable &= kYmSineLength;
    for (int32_t& output : slot.fbOut) {
        output = std::clamp(output, -kYmWaves.tl[0], kYmWaves.tl[0]);
    }
}

// Brings loaded fields into the ranges that the chip keeps.
void Sanitize(YM2413& ym) {
    ym.rhythm &= kYmRhythmBits;
    ym.egTimer %= ym.egTimerOverflow;
    ym.lfoAmCnt %= kYmTremoloWrap;
    ym.lfoPm &= 7;
    ym.noiseP &= 0xFFFF;
    ym.tick %= kYmClocksPerSample;
    for (YM_CHANNEL& channel : ym.channels) {
        channel.blockFnum &= 0xFFF;
        channel.kslBase &= 127;
        channel.kcode &= 15;
        channel.fb &= 15;
        Sanitize(channel.slots[kYmModulator]);
        Sanitize(channel.slots[kYmCarrier]);
    }
}

} // namespace

uint32_t YmStateSize() {
    static const uint32_t kSize = [] {
        const auto ym = std::make_unique<YM2413>();
        return StatePieceSize([&](auto& visit) { Fields(*ym, visit); });
    }();
    return kSize;
}

StateOut YmSaveState(const YM2413& ym, StateOut out) {
    auto& fields =
        const_cast<YM2413&>(ym); // Fields lists them for reading and writing; saving changes none.
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, visit); });
}

uint32_t YmLoadState(YM2413& ym, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { Fields(ym, visit); });
    if (used != 0) {
        Sanitize(ym);
    }
    return used;
}
