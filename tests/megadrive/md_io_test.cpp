// The I/O chip and its pads, alone.
#include "megadrive/md_io.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr uint8_t kTh = 0x40;

MD_IO Start(uint8_t device) {
    MD_IO io;
    io.devices = {device, device};
    MdIoReset(io);
    MdWriteIo(io, 4, kTh, 0); // TH is an output
    return io;
}

void WriteTh(MD_IO& io, bool high, uint32_t now) {
    MdWriteIo(io, 1, high ? kTh : 0, now);
}

TEST(MdIo, VersionHasNoDiskDriveBitCleared) {
    MD_IO io;
    io.version = 0xC0;
    EXPECT_EQ(MdReadIo(io, 0), 0xE0);
    MdWriteIo(io, 0, 0x12, 0);
    EXPECT_EQ(MdReadIo(io, 0), 0xE0);
}

TEST(MdIo, RegistersAtReset) {
    const MD_IO io = Start(kMdDeviceNone);
    EXPECT_EQ(MdReadIo(io, 7), 0xFF);
    EXPECT_EQ(MdReadIo(io, 10), 0xFF);
    EXPECT_EQ(MdReadIo(io, 13), 0xFB);
    EXPECT_EQ(MdReadIo(io, 9), 0);
}

TEST(MdIo, EmptyPortReadsItsInputsHigh) {
    MD_IO io;
    io.devices = {kMdDeviceNone, kMdDeviceNone};
    MdIoReset(io);
    for (uint32_t port = 1; port <= 3; ++port) {
        EXPECT_EQ(MdReadIo(io, port), 0x7F) << port;
        MdWriteIo(io, 3 + port, 0x0F, 0);
        EXPECT_EQ(MdReadIo(io, port), 0x70) << port;
    }
}

TEST(MdIo, DataKeepsOutputsAndBitSevenOnly) {
    MD_IO io = Start(kMdDeviceNone);
    MdWriteIo(io, 4, 0x0F, 0);
    MdWriteIo(io, 1, 0xFF, 0);
    EXPECT_EQ(io.ioPorts[1], 0x8F);
    MdWriteIo(io, 4, 0x03, 0); // a pin that turns into an input loses what it drove
    EXPECT_EQ(io.ioPorts[1], 0x83);
    EXPECT_EQ(MdReadIo(io, 1) & 0x80, 0x80);
}

TEST(MdIo, SerialRegistersKeepWhatIsWrittenButForTheReceiver) {
    MD_IO io = Start(kMdDeviceNone);
    for (uint32_t port = 0; port < 3; ++port) {
        MdWriteIo(io, 7 + 3 * port, 0x5A, 0);
        MdWriteIo(io, 8 + 3 * port, 0x5A, 0);
        MdWriteIo(io, 9 + 3 * port, 0xFF, 0);
        EXPECT_EQ(MdReadIo(io, 7 + 3 * port), 0x5A);
        EXPECT_EQ(MdReadIo(io, 8 + 3 * port), 0);
        EXPECT_EQ(MdReadIo(io, 9 + 3 * port), 0xF8);
    }
}

struct BUTTON_ROW {
    const char* name;
    uint8_t MD_PAD::*button;
    uint8_t high; // with TH high
    uint8_t low;
};

constexpr BUTTON_ROW kThreeButtons[] = {
    {"none",  nullptr,        0x7F, 0x33},
    {"up",    &MD_PAD::up,    0x7E, 0x32},
    {"down",  &MD_PAD::down,  0x7D, 0x31},
    {"left",  &MD_PAD::left,  0x7B, 0x33},
    {"right", &MD_PAD::right, 0x77, 0x33},
    {"B",     &MD_PAD::b,     0x6F, 0x33},
    {"C",     &MD_PAD::c,     0x5F, 0x33},
    {"A",     &MD_PAD::a,     0x7F, 0x23},
    {"start", &MD_PAD::start, 0x7F, 0x13},
    {"X",     &MD_PAD::x,     0x7F, 0x33},
    {"mode",  &MD_PAD::mode,  0x7F, 0x33},
};

TEST(MdPad, ThreeButtonsByTh) {
    for (const BUTTON_ROW& row : kThreeButtons) {
        MD_IO io = Start(kMdDevice3Button);
        if (row.button != nullptr) {
            io.pads[0].*row.button = 1;
        }
        WriteTh(io, true, 0);
        EXPECT_EQ(MdReadIo(io, 1), row.high) << row.name;
        WriteTh(io, false, 10);
        EXPECT_EQ(MdReadIo(io, 1), row.low) << row.name;
    }
}

TEST(MdPad, SecondPortHasItsOwn) {
    MD_IO io = Start(kMdDevice3Button);
    io.pads[1].up = 1;
    MdWriteIo(io, 5, kTh, 0);
    MdWriteIo(io, 2, kTh, 0);
    WriteTh(io, true, 0);
    EXPECT_EQ(MdReadIo(io, 1), 0x7F);
    EXPECT_EQ(MdReadIo(io, 2), 0x7E);
}

// What a six-button pad returns after each write of TH, low and high in turn.
std::vector<uint8_t> Sequence(MD_IO& io, uint32_t count, uint32_t interval) {
    std::vector<uint8_t> values;
    for (uint32_t i = 0; i < count; ++i) {
        WriteTh(io, i % 2 != 0, (i + 1) * interval);
        values.push_back(MdReadIo(io, 1));
    }
    return values;
}

TEST(MdPad, SixButtonsInEightSteps) {
    MD_IO io = Start(kMdDevice6Button);
    const std::vector<uint8_t> expected = {0x33, 0x7F, 0x33, 0x7F, 0x30, 0x7F, 0x3F, 0x7F};
    EXPECT_EQ(Sequence(io, 8, 100), expected);
}

TEST(MdPad, SixButtonsNamedOneByOne) {
    struct ROW {
        const char* name;
        uint8_t MD_PAD::*button;
        uint32_t step; // of the sequence above, from 0
        uint8_t value;
    };
    // Four rises make the count 4, which is taken modulo 4: the eighth write begins the sequence again.
    constexpr ROW kRows[] = {
        {"A in the third low",      &MD_PAD::a,     4, 0x20},
        {"start in the third low",  &MD_PAD::start, 4, 0x10},
        {"A in the fourth low",     &MD_PAD::a,     6, 0x2F},
        {"start in the fourth low", &MD_PAD::start, 6, 0x1F},
        {"Z",                       &MD_PAD::z,     5, 0x7E},
        {"Y",                       &MD_PAD::y,     5, 0x7D},
        {"X",                       &MD_PAD::x,     5, 0x7B},
        {"mode",                    &MD_PAD::mode,  5, 0x77},
        {"B with them",             &MD_PAD::b,     5, 0x6F},
        {"C with them",             &MD_PAD::c,     5, 0x5F},
        {"up is not among them",    &MD_PAD::up,    7, 0x7E},
    };
    for (const ROW& row : kRows) {
        MD_IO io = Start(kMdDevice6Button);
        io.pads[0].*row.button = 1;
        EXPECT_EQ(Sequence(io, 8, 100)[row.step], row.value) << row.name;
    }
}

TEST(MdPad, SlowReadsNeverReachTheOtherButtons) {
    MD_IO io = Start(kMdDevice6Button);
    io.pads[0].z = 1;
    for (const uint8_t value : Sequence(io, 32, kMdPadTimeout + 1)) {
        EXPECT_TRUE(value == 0x33 || value == 0x7F) << int{value};
    }
}

TEST(MdPad, TimeoutIsLongerThanItsCount) {
    MD_IO io = Start(kMdDevice6Button);
    io.pads[0].z = 1;
    EXPECT_EQ(Sequence(io, 6, kMdPadTimeout)[5], 0x7E);
}

TEST(MdPad, CountSurvivesTheWrapOfTheClock) {
    MD_IO io = Start(kMdDevice6Button);
    io.pads[0].z = 1;
    const uint32_t start = 0xFFFFFF00;
    io.padLastWrite[0] = start;
    for (uint32_t i = 0; i < 6; ++i) {
        WriteTh(io, i % 2 != 0, start + (i + 1) * 0x40);
    }
    EXPECT_EQ(MdReadIo(io, 1), 0x7E);
}

} // namespace
