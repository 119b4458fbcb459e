#include "link.h"

#include "console.h"
#include "random.h"

__sfr __at 0x03 sendPort;
__sfr __at 0x04 receivePort;
__sfr __at 0x05 controlPort;

// 4,800 baud, both directions, an NMI for each byte received.
#define LINK_ENABLE    0x38
#define STATUS_FULL    0x01
#define STATUS_WAITING 0x02

// Bytes of the meeting; a pad has the top bit set.
#define BYTE_ASK    0x51
#define BYTE_ACCEPT 0x52
#define BYTE_START  0x53
#define BYTE_PAD    0x80
// A pad's byte also carries one bit that changes each frame, in the place of the start button.
#define BYTE_TURN 0x40

#define ASK_FRAMES  8  // between two askings
#define LOST_FRAMES 40 // without a byte the other side is gone

u8 linkQueue[8];
volatile u8 linkWritten;
volatile u8 linkBroken;
static u8 linkRead;
static u8 waitFrames;
static u8 asked;
static u8 turn;

void LinkOpen(void) {
    (void)receivePort;
    linkRead = linkWritten;
    linkBroken = 0;
    asked = 0;
    turn = 0;
    waitFrames = ASK_FRAMES;
    controlPort = LINK_ENABLE;
}

void LinkClose(void) {
    controlPort = 0;
}

static void Send(u8 value) {
    while (controlPort & STATUS_FULL) {
    }
    sendPort = value;
}

// The next byte received, 0 when there is none.
static u8 Receive(void) {
    if (linkRead == linkWritten)
        return 0;
    return linkQueue[linkRead++ & 7];
}

u8 LinkMeet(void) {
    if (linkBroken) {
        // No cable, or the other console is off: look again a little later.
        if (--waitFrames == 0)
            LinkOpen();
        return LINK_WAITING;
    }
    for (u8 value = Receive(); value != 0; value = Receive()) {
        if (value == BYTE_START)
            return LINK_GUEST;
        if (value == BYTE_ACCEPT && asked) {
            Send(BYTE_START);
            return LINK_HOST;
        }
        if (value != BYTE_ASK)
            continue;
        if (!asked) {
            Send(BYTE_ACCEPT);
            waitFrames = 4 * ASK_FRAMES;
        } else {
            // Both asked at once: each steps back for a time of its own.
            asked = 0;
            waitFrames = (u8)(16 + (Random() & 63));
        }
    }
    if (--waitFrames == 0) {
        waitFrames = ASK_FRAMES;
        asked = 1;
        Send(BYTE_ASK);
    }
    return LINK_WAITING;
}

u8 LinkExchange(u8 pad, u8* other) {
    Send((u8)(BYTE_PAD | turn | (pad & 0x3F)));
    const u8 begin = frameCount;
    while ((u8)(frameCount - begin) < LOST_FRAMES) {
        const u8 value = Receive();
        if ((value & BYTE_PAD) && (value & BYTE_TURN) == turn) {
            turn ^= BYTE_TURN;
            *other = value & 0x3F;
            return 1;
        }
        if (linkBroken)
            return 0;
    }
    return 0;
}
