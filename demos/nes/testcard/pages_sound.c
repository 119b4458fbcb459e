// The sound page: the channels one by one.
#include "common/sound.h"
#include "testcard/testcard.h"

extern const u8 kickAddress, kickLength; // sample.s

enum { kVoices = 10, kFramesOfVoice = 100 };

static const char* const kNames[kVoices] = {
    "PULSE 1, AN EIGHTH", "PULSE 1, A QUARTER",  "PULSE 1, A HALF",
    "PULSE 2, SWEEP UP",  "PULSE 2, SWEEP DOWN", "TRIANGLE",
    "NOISE, LONG",        "NOISE, SHORT",        "SAMPLE",
    "ALL OF THEM"};

static u8 voice, age, started;

void SoundLeave(void) {
    APU(0x15) = 0;
    started = 0;
}

void SoundDraw(void) {
    static u8 i;
    for (i = 0; i != kVoices; ++i) {
        PutText(CELL(6 + i * 2, 6), kNames[i]);
    }
    PutText(CELL(27, 3), "UP AND DOWN CHOOSE");
    voice = 0;
    age = 0;
    started = 0;
}

static void Pulse(u8 channel, u8 duty, u8 sweep, u8 note) {
    static u16 period;
    static u8 offset;
    offset = channel << 2;
    period = NotePeriod(note);
    APU(offset) = duty | 0x3A;
    APU(offset + 1) = sweep;
    APU(offset + 2) = (u8)period;
    APU(offset + 3) = 0x08 | period >> 8;
}

static void Triangle(u8 note) {
    static u16 period;
    period = NotePeriod(note);
    APU(0x08) = 0xFF;
    APU(0x0A) = (u8)period;
    APU(0x0B) = 0x08 | period >> 8;
}

static void Noise(u8 rate) {
    APU(0x0C) = 0x05; // decays
    APU(0x0E) = rate;
    APU(0x0F) = 0x08;
}

static void Sample(void) {
    APU(0x10) = 0x0C;
    APU(0x12) = kickAddress;
    APU(0x13) = kickLength;
    APU(0x15) = 0x0F;
    APU(0x15) = 0x1F;
}

// A step of the scale C E G C, four to a voice.
static void Start(u8 step) {
    static const u8 kScale[4] = {C4, E4, G4, C5};
    static u8 note;
    note = kScale[step];
    APU(0x15) = 0;
    APU(0x15) = 0x0F;
    switch (voice) {
    case 0: Pulse(0, 0x00, 0x08, note); break;
    case 1: Pulse(0, 0x40, 0x08, note); break;
    case 2: Pulse(0, 0x80, 0x08, note); break;
    case 3: Pulse(1, 0x80, 0x9C, C4); break;
    case 4: Pulse(1, 0x80, 0x94, C6); break;
    case 5: Triangle(note); break;
    case 6: Noise(4 + step * 3); break;
    case 7: Noise(0x84 + step * 2); break;
    case 8: Sample(); break;
    default:
        Pulse(0, 0x40, 0x08, note);
        Pulse(1, 0x80, 0x08, note + 7);
        Triangle(note);
        Noise(6);
        Sample();
        break;
    }
}

void SoundFrame(void) {
    static u8 i;
    if ((padPressed & kPadUp) != 0) {
        voice = voice == 0 ? kVoices - 1 : voice - 1;
        age = 0;
    } else if ((padPressed & kPadDown) != 0) {
        voice = voice == kVoices - 1 ? 0 : voice + 1;
        age = 0;
    }
    if (age % 25 == 0) {
        Start(age / 25);
    }
    i = voice;
    SPRITE(32, 47 + i * 16, '\\' - ' ', 0);
    if (++age == kFramesOfVoice) {
        age = 0;
        voice = voice == kVoices - 1 ? 0 : voice + 1;
    }
}
