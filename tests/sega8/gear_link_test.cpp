// The link plug of the Game Gear, port by port.
#include "sega8/gear_link.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct PAIR {
    PAIR() {
        for (uint32_t i = 0; i < 2; ++i) {
            side[i].partner = &side[1 - i];
            side[i].nmi = &nmi[i];
            GearLinkReset(side[i]);
        }
    }
    void Tick(uint32_t clocks) {
        for (uint32_t i = 0; i < clocks; ++i) {
            GearLinkTick(side[0]);
            GearLinkTick(side[1]);
        }
    }

    GEAR_LINK side[2];
    uint32_t nmi[2] = {0, 0};
};

constexpr uint32_t kByte = 7457;
constexpr uint8_t kAll = kGearReceiveOn | kGearTransmitOn | kGearNmiOnByte;

} // namespace

TEST(GearLink, PortsStartAsPublished) {
    GEAR_LINK link;
    GearLinkReset(link);
    const uint8_t expected[7] = {0xC0, 0x7F, 0xFF, 0x00, 0xFF, 0x00, 0xFF};
    for (uint8_t port = 0; port < 7; ++port) {
        EXPECT_EQ(GearLinkRead(link, port), expected[port]) << int{port};
    }
}

TEST(GearLink, PortZeroShowsStartAndCountry) {
    GEAR_LINK link;
    link.startDown = true;
    EXPECT_EQ(GearLinkRead(link, 0), 0x40);
    link.japanese = true;
    EXPECT_EQ(GearLinkRead(link, 0), 0x00);
    link.startDown = false;
    EXPECT_EQ(GearLinkRead(link, 0), 0x80);
}

TEST(GearLink, OutputsReadBackAndInputsFloatHigh) {
    GEAR_LINK link;
    GearLinkReset(link);
    GearLinkWrite(link, 1, 0x05);
    EXPECT_EQ(GearLinkRead(link, 1), 0x7F) << "all lines are inputs, bit 7 is stored";
    GearLinkWrite(link, 2, 0xF0);
    EXPECT_EQ(GearLinkRead(link, 1), 0x75);
    GearLinkWrite(link, 1, 0x8A);
    EXPECT_EQ(GearLinkRead(link, 1), 0xFA);
    EXPECT_EQ(GearLinkRead(link, 2), 0xF0);
}

TEST(GearLink, CableCrossesTheLines) {
    const int cable[7] = {2, 3, 0, 1, 5, 4, 6};
    for (int line = 0; line < 7; ++line) {
        PAIR pair;
        GearLinkWrite(pair.side[0], 2, 0x80); // all outputs
        GearLinkWrite(pair.side[0], 1, static_cast<uint8_t>(0x7F & ~(1 << line)));
        EXPECT_EQ(GearLinkRead(pair.side[1], 1), 0x7F & ~(1 << cable[line])) << line;
    }
}

TEST(GearLink, LineThatNobodyDrivesReadsOne) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 1, 0x00); // but all lines are inputs
    EXPECT_EQ(GearLinkRead(pair.side[1], 1), 0x7F);
}

TEST(GearLink, FallingLineSixRaisesNmiWhereItIsLetIn) {
    PAIR pair;
    GearLinkWrite(pair.side[1], 2, 0x7F);
    GearLinkWrite(pair.side[0], 1, 0x7F);
    GearLinkWrite(pair.side[0], 2, 0xBF);
    EXPECT_EQ(pair.nmi[1], 0u);
    GearLinkWrite(pair.side[0], 1, 0x3F);
    EXPECT_EQ(pair.nmi[1], 1u);
    pair.nmi[1] = 0;
    GearLinkWrite(pair.side[0], 1, 0x3F);
    EXPECT_EQ(pair.nmi[1], 0u) << "only the edge";
    GearLinkWrite(pair.side[1], 2, 0xFF);
    GearLinkWrite(pair.side[0], 1, 0x7F);
    GearLinkWrite(pair.side[0], 1, 0x3F);
    EXPECT_EQ(pair.nmi[1], 0u) << "bit 7 keeps it out";
    EXPECT_EQ(pair.nmi[0], 0u);
}

TEST(GearLink, ByteArrivesAfterItsTime) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x5A);
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), kAll | kGearSendFull);
    pair.Tick(kByte - 1);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll);
    EXPECT_EQ(pair.nmi[1], 0u);
    pair.Tick(1);
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), kAll);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll | kGearReceived);
    EXPECT_EQ(pair.nmi[1], 1u);
    EXPECT_EQ(pair.nmi[0], 0u);
    EXPECT_EQ(GearLinkRead(pair.side[1], 4), 0x5A);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll) << "fetching clears the flag";
}

TEST(GearLink, BothDirectionsWorkAtOnce) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x11);
    GearLinkWrite(pair.side[1], 3, 0x22);
    pair.Tick(kByte);
    EXPECT_EQ(GearLinkRead(pair.side[0], 4), 0x22);
    EXPECT_EQ(GearLinkRead(pair.side[1], 4), 0x11);
}

TEST(GearLink, ByteThatWasNotFetchedIsOverwritten) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x11);
    pair.Tick(kByte);
    GearLinkWrite(pair.side[0], 3, 0x22);
    pair.Tick(kByte);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll | kGearReceived);
    EXPECT_EQ(GearLinkRead(pair.side[1], 4), 0x22);
}

TEST(GearLink, WriteWhileTheBufferIsFullIsLost) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x11);
    pair.Tick(kByte / 2);
    GearLinkWrite(pair.side[0], 3, 0x22);
    EXPECT_EQ(GearLinkRead(pair.side[0], 3), 0x11);
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), kAll | kGearSendFull);
    pair.Tick(kByte - kByte / 2); // the first byte takes no longer for it
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), kAll);
    EXPECT_EQ(GearLinkRead(pair.side[1], 4), 0x11);
    pair.Tick(kByte * 2);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll) << "and no second one follows";
}

TEST(GearLink, ByteWrittenWhileTheSenderIsOffIsKeptButNotSent) {
    PAIR pair;
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x11);
    GearLinkWrite(pair.side[0], 3, 0x22);
    EXPECT_EQ(GearLinkRead(pair.side[0], 3), 0x22);
    GearLinkWrite(pair.side[0], 5, kAll);
    pair.Tick(kByte * 2);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll);
}

TEST(GearLink, FlagsAndTimesAgreeAfterAnyState) {
    struct STATE_ROW {
        const char* what;
        bool linked;
        uint8_t serial;
        uint32_t sendClocks;
        uint32_t errorClocks;
        uint8_t expectedSerial; // as a program reads it
        uint32_t expectedSendClocks;
        uint32_t expectedErrorClocks;
    };
    constexpr uint8_t kOn = kGearReceiveOn | kGearTransmitOn;
    constexpr uint8_t kFull = kOn | kGearSendFull;
    constexpr uint8_t kError = kOn | kGearFrameError;
    constexpr uint32_t kLong = 0xFFFFFFFF;
    constexpr uint32_t kSlow = kByte * 16;
    const std::vector<STATE_ROW> rows = {
        {"full, no byte",   true,  kFull,      0,     0,     kOn,                   0,     0    },
        {"byte, not full",  true,  kOn,        100,   0,     kFull,                 100,   0    },
        {"error, partner",  true,  kError,     0,     50,    kOn,                   0,     0    },
        {"alone, no error", false, kOn,        0,     0,     kError,                0,     kByte},
        {"alone and well",  false, kOn,        0,     50,    kError,                0,     50   },
        {"too long",        false, 0xC0 | kOn, kLong, kLong, 0xC0 | kFull | kError, kSlow, kSlow},
    };
    for (const STATE_ROW& row : rows) {
        SCOPED_TRACE(row.what);
        PAIR pair;
        GEAR_LINK& link = pair.side[0];
        link.partner = row.linked ? &pair.side[1] : nullptr;
        link.serial = row.serial;
        link.sendClocks = row.sendClocks;
        link.errorClocks = row.errorClocks;
        GearLinkSanitize(link);
        EXPECT_EQ(GearLinkRead(link, 5), row.expectedSerial);
        EXPECT_EQ(link.sendClocks, row.expectedSendClocks);
        EXPECT_EQ(link.errorClocks, row.expectedErrorClocks);
    }
}

TEST(GearLink, NothingIsSentOrReceivedWhileSwitchedOff) {
    PAIR pair;
    GearLinkWrite(pair.side[1], 5, kAll);
    GearLinkWrite(pair.side[0], 3, 0x11);
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), 0);
    pair.Tick(kByte * 2);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kAll);
    GearLinkWrite(pair.side[0], 5, kGearTransmitOn);
    GearLinkWrite(pair.side[1], 5, kGearTransmitOn);
    GearLinkWrite(pair.side[0], 3, 0x11);
    pair.Tick(kByte);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kGearTransmitOn);
    EXPECT_EQ(GearLinkRead(pair.side[1], 4), 0xFF);
}

TEST(GearLink, NmiOnAByteOnlyWhereItIsAskedFor) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkWrite(pair.side[1], 5, kGearReceiveOn);
    GearLinkWrite(pair.side[0], 3, 1);
    pair.Tick(kByte);
    EXPECT_EQ(GearLinkRead(pair.side[1], 5), kGearReceiveOn | kGearReceived);
    EXPECT_EQ(pair.nmi[1], 0u);
}

TEST(GearLink, SlowerSpeedsTakeLonger) {
    EXPECT_EQ(GearLinkByteClocks(0x00), kByte);
    EXPECT_EQ(GearLinkByteClocks(0x40), kByte * 2);
    EXPECT_EQ(GearLinkByteClocks(0x80), kByte * 4);
    EXPECT_EQ(GearLinkByteClocks(0xC0), kByte * 16);
}

TEST(GearLink, ReceiverWithoutAPartnerSeesFrameErrors) {
    GEAR_LINK link;
    uint32_t nmi = 0;
    link.nmi = &nmi;
    GearLinkReset(link);
    GearLinkWrite(link, 5, kAll);
    EXPECT_EQ(GearLinkRead(link, 5), kAll | kGearFrameError);
    for (int trial = 0; trial < 3; ++trial) {
        for (uint32_t i = 0; i < kByte - 1; ++i) {
            GearLinkTick(link);
        }
        EXPECT_EQ(nmi, 0u);
        GearLinkTick(link);
        EXPECT_EQ(nmi, 1u);
        nmi = 0;
    }
    GearLinkWrite(link, 5, 0);
    for (uint32_t i = 0; i < kByte * 2; ++i) {
        GearLinkTick(link);
    }
    EXPECT_EQ(nmi, 0u);
    EXPECT_EQ(GearLinkRead(link, 5), 0);
}

TEST(GearLink, NoFrameErrorBetweenTwoConsoles) {
    PAIR pair;
    GearLinkWrite(pair.side[0], 5, kAll);
    EXPECT_EQ(GearLinkRead(pair.side[0], 5), kAll);
    pair.Tick(kByte * 2);
    EXPECT_EQ(pair.nmi[0], 0u);
}

TEST(GearLink, PartnerAndCountryOutliveAReset) {
    PAIR pair;
    pair.side[0].japanese = true;
    GearLinkWrite(pair.side[0], 5, kAll);
    GearLinkReset(pair.side[0]);
    EXPECT_EQ(pair.side[0].partner, &pair.side[1]);
    EXPECT_TRUE(pair.side[0].japanese);
    EXPECT_EQ(pair.side[0].serial, 0);
}
