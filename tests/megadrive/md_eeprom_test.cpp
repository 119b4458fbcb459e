#include "megadrive/md_cartridge_rig.h"
#include "megadrive/md_eeprom_games.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>

namespace {

struct ROW {
    const char* code;
    int addressBits;
    uint32_t sizeMask;
    uint32_t sdaIn;
    uint32_t sdaOut;
    uint32_t scl;
    int sdaInBit;
    int sdaOutBit;
    int sclBit;
};

constexpr std::array<ROW, 24> kRows{
    {{"T-81406", 8, 0xFF, 0x200001, 0x200001, 0x200000, 0, 0, 0},
     {"T-081276", 8, 0xFF, 0x200001, 0x200001, 0x200000, 0, 0, 0},
     {"T-81033", 8, 0xFF, 0x200001, 0x200001, 0x200001, 0, 1, 1},
     {"T-081326", 8, 0xFF, 0x200001, 0x200001, 0x200001, 0, 1, 1},
     {"T-081586", 8, 0x7FF, 0x200001, 0x200001, 0x200000, 0, 0, 0},
     {"T-81576", 16, 0x1FFF, 0x200001, 0x200001, 0x200000, 0, 0, 0},
     {"T-81476", 16, 0x1FFF, 0x200001, 0x200001, 0x200000, 0, 0, 0},
     {"T-50446", 7, 0x7F, 0x200001, 0x200001, 0x200001, 7, 7, 6},
     {"T-50516", 7, 0x7F, 0x200001, 0x200001, 0x200001, 7, 7, 6},
     {"T-50176", 7, 0x7F, 0x200001, 0x200001, 0x200001, 7, 7, 6},
     {"T-50396", 7, 0x7F, 0x200001, 0x200001, 0x200001, 7, 7, 6},
     {"T-50606", 7, 0x7F, 0x200001, 0x200001, 0x200001, 7, 7, 6},
     {"MK-1215", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"T-12046", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"T-12053", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"G-4060", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"00001211-00", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"MK-1228", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"G-5538", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"PR-1993", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"00004076-00", 7, 0x7F, 0x200001, 0x200001, 0x200001, 0, 0, 1},
     {"00000000-00", 8, 0x7FF, 0x300000, 0x380001, 0x300000, 0, 7, 1},
     {"T-120146-50", 16, 0x1FFF, 0x300000, 0x380001, 0x300000, 0, 7, 1},
     {"T-120106", 7, 0x7F, 0x300000, 0x380001, 0x300000, 0, 7, 1}}
};

constexpr ROW kSplitPart{"T-120096", 8, 0x3FF, 0x300000, 0x380001, 0x300000, 0, 7, 1};

// A row of each kind of part and of each wiring.
std::vector<ROW> DistinctRows() {
    return {kRows[0],  kRows[2],  kRows[4],  kRows[5],  kRows[7],
            kRows[12], kRows[21], kRows[22], kRows[23], kSplitPart};
}

enum ACCESS { kBytes, kWords };

// The program's side of the two lines, by byte or by word accesses.
class EepromRig : public CartridgeRig {
public:
    explicit EepromRig(const ROW& wiring, ACCESS width = kBytes)
        : CartridgeRig(
              ImageRig(0x10000).Ram(0x200000, 0x203FFF).Product(std::string(" ") + wiring.code))
        , row(wiring)
        , access(width) {
        Sda(1);
        Scl(1);
    }

    void Sda(int level) {
        sda = level;
        Drive(row.sdaIn);
    }

    void Scl(int level) {
        scl = level;
        Drive(row.scl);
    }

    // Both, by one write where the wiring has them together.
    void Both(int sdaLevel, int sclLevel) {
        sda = sdaLevel;
        scl = sclLevel;
        Drive(row.sdaIn);
        if (row.sdaIn != row.scl) {
            Drive(row.scl);
        }
    }

    int Line() {
        const int bit = row.sdaOutBit + (access == kWords && row.sdaOut % 2 == 0 ? 8 : 0);
        const int value = access == kWords ? Word(row.sdaOut & ~1u) : Byte(row.sdaOut);
        EXPECT_EQ(value & ~(1 << bit), 0);
        return value >> bit & 1;
    }

    void Start() {
        Sda(1);
        Scl(1);
        Sda(0);
        Scl(0);
    }

    void Stop() {
        Sda(0);
        Scl(1);
        Sda(1);
    }

    void Clock() {
        Scl(1);
        Scl(0);
    }

    void SendBits(int value, int count) {
        for (int bit = 7; bit > 7 - count; --bit) {
            Sda(value >> bit & 1);
            Clock();
        }
    }

    // True when the part acknowledges.
    bool Send(int value) {
        SendBits(value, 8);
        Sda(1);
        Scl(1);
        const bool acknowledged = Line() == 0;
        Scl(0);
        return acknowledged;
    }

    int Receive(bool more) {
        Sda(1);
        int value = 0;
        for (int i = 0; i < 8; ++i) {
            Scl(1);
            value = value << 1 | Line();
            Scl(0);
        }
        Sda(more ? 0 : 1);
        Clock();
        Sda(1);
        return value;
    }

    // Up to the data.
    void Address(uint32_t address) {
        Start();
        if (row.addressBits == 7) {
            EXPECT_TRUE(Send(static_cast<int>(address << 1)));
            return;
        }
        const bool wide = row.addressBits == 16;
        EXPECT_TRUE(Send(wide ? 0xA0 : static_cast<int>(0xA0 | address >> 8 << 1)));
        if (wide) {
            EXPECT_TRUE(Send(static_cast<int>(address >> 8)));
        }
        EXPECT_TRUE(Send(static_cast<int>(address & 0xFF)));
    }

    void Write(uint32_t address, const std::vector<int>& bytes) {
        Address(address);
        for (const int byte : bytes) {
            EXPECT_TRUE(Send(byte));
        }
        Stop();
    }

    std::vector<int> Continue(int count) {
        std::vector<int> bytes;
        for (int i = 0; i < count; ++i) {
            bytes.push_back(Receive(i + 1 < count));
        }
        Stop();
        return bytes;
    }

    // Up to the first bit of the data.
    void StartReading(uint32_t address) {
        if (row.addressBits == 7) {
            Start();
            EXPECT_TRUE(Send(static_cast<int>(address << 1 | 1)));
            return;
        }
        Address(address);
        Start();
        EXPECT_TRUE(
            Send(row.addressBits == 16 ? 0xA1 : static_cast<int>(0xA1 | address >> 8 << 1)));
    }

    std::vector<int> Read(uint32_t address, int count) {
        StartReading(address);
        return Continue(count);
    }

    const MD_EEPROM& Part() const { return *cart->eeprom; }

    ROW row;
    ACCESS access;
    int sda = 0;
    int scl = 0;

private:
    int LineBits(uint32_t address, uint32_t lineAddress, int bit, int level) const {
        if (access == kBytes) {
            return address == lineAddress ? level << bit : 0;
        }
        return (address & ~1u) == (lineAddress & ~1u)
                   ? level << (bit + (lineAddress % 2 == 0 ? 8 : 0))
                   : 0;
    }

    void Drive(uint32_t address) {
        const int value = LineBits(address, row.sdaIn, row.sdaInBit, sda) |
                          LineBits(address, row.scl, row.sclBit, scl);
        if (access == kWords) {
            PutWord(address & ~1u, value);
        } else {
            PutByte(address, value);
        }
    }
};

using Bytes = std::vector<int>;

} // namespace

TEST(MdEeprom, EveryRowIsFoundByItsCodeAndWiredAsListed) {
    std::vector<ROW> rows(kRows.begin(), kRows.end());
    rows.push_back(kSplitPart);
    for (const ROW& row : rows) {
        const EepromRig rig(row);
        ASSERT_EQ(rig.cart->cartKind, kMdCartEeprom) << row.code;
        const MD_EEPROM& part = rig.Part();
        EXPECT_EQ(part.addressBits, row.addressBits) << row.code;
        EXPECT_EQ(part.sizeMask, row.sizeMask) << row.code;
        EXPECT_EQ(part.pageMask, row.sizeMask) << row.code;
        EXPECT_EQ(part.sdaInAddress, row.sdaIn) << row.code;
        EXPECT_EQ(part.sdaOutAddress, row.sdaOut) << row.code;
        EXPECT_EQ(part.sclAddress, row.scl) << row.code;
        EXPECT_EQ(part.sdaInBit, row.sdaInBit) << row.code;
        EXPECT_EQ(part.sdaOutBit, row.sdaOutBit) << row.code;
        EXPECT_EQ(part.sclBit, row.sclBit) << row.code;
        EXPECT_TRUE(rig.Handled(0x3F0000));
        EXPECT_FALSE(rig.Handled(0x400000));
    }
}

TEST(MdEeprom, TableHas28RowsAndEndsWithAnEmptyCode) {
    const MD_EEPROM_GAME* games = MdEepromGames();
    for (int i = 0; i < 28; ++i) {
        EXPECT_NE(games[i].productCode[0], 0) << i;
    }
    EXPECT_EQ(games[28].productCode[0], 0);
    // Four rows share a code; the first of them wins.
    EXPECT_EQ(std::count_if(games, games + 28,
                            [](const MD_EEPROM_GAME& game) {
                                return std::string_view(game.productCode) == "00000000-00";
                            }),
              4);
    EXPECT_EQ(MdEepromFindGame("00000000-00"), games + 21);
}

TEST(MdEeprom, CodeIsFoundAnywhereInTheSixteenBytes) {
    for (const std::string_view code :
         {"T-81406", " T-81406 -00", "GM T-81406", "         T-81406"}) {
        ASSERT_NE(MdEepromFindGame(code), nullptr) << code;
        EXPECT_EQ(MdEepromFindGame(code), MdEepromGames());
    }
    for (const std::string_view code : {"", "T-8140", "t-81406", "T 81406", "                "}) {
        EXPECT_EQ(MdEepromFindGame(code), nullptr) << code;
    }
}

TEST(MdEeprom, CodeWithoutTheRamMarkIsAPlainCartridge) {
    const CartridgeRig rig{ImageRig(0x10000).Product(" T-81406")};
    EXPECT_EQ(rig.cart->cartKind, kMdCartPlain);
}

TEST(MdEeprom, FreshPartReadsAsOnes) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        EXPECT_EQ(rig.Read(0, 3), (Bytes{0xFF, 0xFF, 0xFF})) << row.code;
        EXPECT_EQ(MdCartSaveData(*rig.cart).size(), size_t{row.sizeMask} + 1);
    }
}

TEST(MdEeprom, BytesWrittenThroughTheLinesAreReadBack) {
    for (const ROW& row : DistinctRows()) {
        for (const ACCESS access : {kBytes, kWords}) {
            EepromRig rig(row, access);
            rig.Write(5, {0xA5, 0x00, 0xFF, 0x12});
            rig.Write(row.sizeMask, {0x3C});
            EXPECT_EQ(rig.Read(5, 4), (Bytes{0xA5, 0x00, 0xFF, 0x12})) << row.code << access;
            EXPECT_EQ(rig.Read(row.sizeMask, 1), Bytes{0x3C}) << row.code << access;
            EXPECT_EQ(rig.Part().data[6], 0x00);
            EXPECT_EQ(rig.Part().data[row.sizeMask], 0x3C);
            // The stop after the data wrote nothing.
            EXPECT_EQ(rig.Part().data[9], 0xFF);
        }
    }
}

TEST(MdEeprom, EveryAddressIsItsOwn) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        for (uint32_t address = 0; address <= row.sizeMask; address += 37) {
            rig.Write(address, {static_cast<int>((address * 11 + 3) & 0xFF)});
        }
        for (uint32_t address = 0; address <= row.sizeMask; address += 37) {
            ASSERT_EQ(rig.Read(address, 1), Bytes{static_cast<int>((address * 11 + 3) & 0xFF)})
                << row.code << ' ' << address;
        }
    }
}

TEST(MdEeprom, SequentialReadWrapsAtTheEndOfThePart) {
    for (const ROW& row : DistinctRows()) {
        if (row.addressBits == 8 && row.sizeMask > 0xFF) {
            continue;
        }
        EepromRig rig(row);
        rig.Write(0, {0x10, 0x11});
        rig.Write(row.sizeMask - 1, {0x20, 0x21});
        EXPECT_EQ(rig.Read(row.sizeMask - 1, 4), (Bytes{0x20, 0x21, 0x10, 0x11})) << row.code;
    }
}

TEST(MdEeprom, SequentialReadRunsOnFromTheFirstBlockOnly) {
    // The counter steps to the next block of 256, but what the device byte named is ORed to it.
    for (const ROW& row : {kRows[4], kRows[21], kSplitPart}) {
        EepromRig rig(row);
        rig.Write(0x0FF, {0x10});
        rig.Write(0x100, {0x20});
        rig.Write(0x1FF, {0x30});
        rig.Write(0x200, {0x40});
        EXPECT_EQ(rig.Read(0x0FF, 2), (Bytes{0x10, 0x20})) << row.code;
        EXPECT_EQ(rig.Read(0x1FF, 2), (Bytes{0x30, 0x20})) << row.code;
    }
}

TEST(MdEeprom, PageWriteWrapsAtTheEndOfThePage) {
    for (const ROW& row : DistinctRows()) {
        if (row.addressBits == 8 && row.sizeMask > 0xFF) {
            continue;
        }
        EepromRig rig(row);
        rig.Write(row.sizeMask - 1, {1, 2, 3, 4});
        EXPECT_EQ(rig.Read(row.sizeMask - 1, 2), (Bytes{1, 2})) << row.code;
        EXPECT_EQ(rig.Read(0, 3), (Bytes{3, 4, 0xFF})) << row.code;
    }
}

TEST(MdEeprom, CurrentReadGoesOnAfterTheLastByte) {
    for (const ROW& row : DistinctRows()) {
        if (row.addressBits == 7) {
            continue; // it has none: the address comes with every start
        }
        EepromRig rig(row);
        rig.Write(0x42, {1, 2, 3, 4, 5});
        EXPECT_EQ(rig.Read(0x41, 2), (Bytes{0xFF, 1}));
        rig.Start();
        EXPECT_TRUE(rig.Send(0xA1));
        EXPECT_EQ(rig.Continue(2), (Bytes{2, 3})) << row.code;
        rig.Write(0x43, {9});
        rig.Start();
        EXPECT_TRUE(rig.Send(0xA1));
        EXPECT_EQ(rig.Continue(1), Bytes{3}) << row.code;
    }
}

TEST(MdEeprom, SelectBitsBeyondThePartAreDropped) {
    struct SELECT {
        ROW row;
        int device;      // R/W clear
        uint32_t stored; // where a byte sent to word address 0x21 goes
    };

    const std::array<SELECT, 6> selects{
        {{kRows[0], 0xAE, 0x021}, // 256 bytes: none
         {kRows[4], 0xAE, 0x721}, // 2 KB: all three
         {kRows[4], 0xA8, 0x421},
         {kSplitPart, 0xAE, 0x321}, // 1 KB: two
         {kSplitPart, 0xA8, 0x021},
         {kRows[0], 0x50, 0x021}}  // the device code isn't looked at
    };
    for (const SELECT& select : selects) {
        EepromRig rig(select.row);
        rig.Start();
        EXPECT_TRUE(rig.Send(select.device));
        EXPECT_TRUE(rig.Send(0x21));
        EXPECT_TRUE(rig.Send(0x77));
        rig.Stop();
        EXPECT_EQ(rig.Part().data[select.stored], 0x77) << select.row.code << select.device;
        EXPECT_EQ(std::count(rig.Part().data.begin(), rig.Part().data.end(), 0xFF), 65535);
    }
}

TEST(MdEeprom, SelectBitsOfA16BitPartAreNoAddress) {
    EepromRig rig(kRows[5]);
    rig.Start();
    EXPECT_TRUE(rig.Send(0xAE));
    EXPECT_TRUE(rig.Send(0xFF)); // three bits above the 13 of the part
    EXPECT_TRUE(rig.Send(0x21));
    EXPECT_TRUE(rig.Send(0x77));
    rig.Stop();
    EXPECT_EQ(rig.Part().data[0x1F21], 0x77);
    EXPECT_EQ(rig.Read(0x1F21, 1), Bytes{0x77});
}

TEST(MdEeprom, AcknowledgeIsTheNinthBitAlone) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        rig.Start();
        // Before the ninth clock the part lets the line go.
        for (int i = 0; i < 8; ++i) {
            rig.Sda(1);
            rig.Scl(1);
            EXPECT_EQ(rig.Line(), 1) << row.code << i;
            rig.Scl(0);
        }
        EXPECT_EQ(rig.Line(), 0) << row.code;
        rig.Scl(1);
        EXPECT_EQ(rig.Line(), 0) << row.code;
    }
}

TEST(MdEeprom, ReadWithoutAcknowledgeLetsTheLineGo) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        rig.Write(0, {0, 0, 0, 0});
        EXPECT_EQ(rig.Read(0, 1), Bytes{0});
        // A start alone wakes it again.
        rig.StartReading(0);
        EXPECT_EQ(rig.Receive(false), 0);
        EXPECT_EQ(rig.Part().state, kMdEepromStandBy);
        EXPECT_EQ(rig.Receive(true), 0xFF) << row.code;
        rig.Stop();
        EXPECT_EQ(rig.Part().state, kMdEepromIdle);
        EXPECT_EQ(rig.Read(0, 2), (Bytes{0, 0})) << row.code;
    }
}

TEST(MdEeprom, AskingTheLineTwiceMovesNothing) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        rig.Write(0, {0x01, 0x80, 0x55});
        static_cast<void>(rig.Read(0, 1));
        rig.StartReading(0);
        for (const int byte : {0x01, 0x80, 0x55}) {
            for (int bit = 7; bit >= 0; --bit) {
                EXPECT_EQ(rig.Line(), byte >> bit & 1) << row.code;
                rig.Scl(1);
                EXPECT_EQ(rig.Line(), byte >> bit & 1) << row.code;
                EXPECT_EQ(rig.Line(), byte >> bit & 1) << row.code;
                rig.Scl(0);
            }
            rig.Sda(0);
            rig.Clock();
            rig.Sda(1);
        }
    }
}

TEST(MdEeprom, StopAfterAnyBitStoresWholeBytesOnly) {
    for (const ROW& row : DistinctRows()) {
        for (int bits = 0; bits < 8; ++bits) {
            EepromRig rig(row);
            rig.Address(0x30);
            EXPECT_TRUE(rig.Send(0x5A));
            rig.SendBits(0x00, bits);
            rig.Stop();
            EXPECT_EQ(rig.Part().data[0x30], 0x5A) << row.code << bits;
            EXPECT_EQ(rig.Part().data[0x31], 0xFF) << row.code << bits;
            EXPECT_EQ(rig.Read(0x30, 2), (Bytes{0x5A, 0xFF})) << row.code << bits;
        }
    }
}

TEST(MdEeprom, StartAfterAnyBitBeginsAnew) {
    for (const ROW& row : DistinctRows()) {
        for (int bits = 0; bits < 9; ++bits) {
            // Within the first byte, and within data.
            EepromRig rig(row);
            rig.Write(0x11, {0x66});
            rig.Start();
            rig.SendBits(0xF0, std::min(bits, 8));
            EXPECT_EQ(rig.Read(0x11, 1), Bytes{0x66}) << row.code << bits;
            rig.Address(0x12);
            rig.SendBits(0x00, std::min(bits, 7));
            EXPECT_EQ(rig.Read(0x11, 2), (Bytes{0x66, 0xFF})) << row.code << bits;
        }
    }
}

TEST(MdEeprom, StartOf7BitPartForgetsTheAddressAndThatOfOthersKeepsIt) {
    EepromRig seven(kRows[7]);
    static_cast<void>(seven.Read(0x40, 1));
    seven.Start();
    EXPECT_EQ(seven.Part().wordAddress, 0);
    EXPECT_EQ(seven.Part().state, kMdEepromShortWord);
    for (const ROW& row : {kRows[0], kRows[5]}) {
        EepromRig rig(row);
        static_cast<void>(rig.Read(0x40, 1));
        rig.Start();
        EXPECT_EQ(rig.Part().wordAddress, 0x41) << row.code;
        EXPECT_EQ(rig.Part().state, kMdEepromDevice);
    }
}

TEST(MdEeprom, ClocksWithoutAStartDoNothing) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        rig.Scl(0);
        EXPECT_FALSE(rig.Send(0xA0));
        EXPECT_FALSE(rig.Send(0x00));
        EXPECT_FALSE(rig.Send(0x00));
        EXPECT_FALSE(rig.Send(0x12));
        EXPECT_EQ(std::count(rig.Part().data.begin(), rig.Part().data.end(), 0xFF), 65536);
        rig.Sda(0);
        EXPECT_EQ(rig.Line(), 0);
        rig.Sda(1);
        EXPECT_EQ(rig.Line(), 1);
    }
}

TEST(MdEeprom, DataAndClockChangedByOneWriteAreTakenInOrder) {
    // The bit is put out together with the rising clock, and changed together with the falling one.
    for (const ROW& row : {kRows[2], kRows[7], kRows[12]}) {
        EepromRig rig(row);
        const auto send = [&](int byte) {
            for (int bit = 7; bit >= 0; --bit) {
                const int level = byte >> bit & 1;
                rig.Both(level, 1);
                rig.Both(1 - level, 0);
            }
            rig.Both(1, 1);
            EXPECT_EQ(rig.Line(), 0);
            rig.Both(0, 0);
        };
        rig.Start();
        if (row.addressBits == 7) {
            send(0x21 << 1);
        } else {
            send(0xA0);
            send(0x21);
        }
        send(0x9C);
        rig.Stop();
        EXPECT_EQ(rig.Part().data[0x21], 0x9C) << row.code;
    }
}

TEST(MdEeprom, LinesAtTwoAddressesTakeTwoWrites) {
    EepromRig rig(kRows[0]);
    rig.PutByte(0x200001, 0);
    EXPECT_EQ(rig.Part().sda, 0);
    EXPECT_EQ(rig.Part().scl, 1);
    rig.PutByte(0x200000, 0xFE); // its bit alone counts
    EXPECT_EQ(rig.Part().sda, 0);
    EXPECT_EQ(rig.Part().scl, 0);
    rig.PutByte(0x200000, 0xFF);
    EXPECT_EQ(rig.Part().sda, 0);
    EXPECT_EQ(rig.Part().scl, 1);
    // A word holds both.
    rig.PutWord(0x200000, 0x0001);
    EXPECT_EQ(rig.Part().sda, 1);
    EXPECT_EQ(rig.Part().scl, 0);
    rig.PutWord(0x200000, 0x0100);
    EXPECT_EQ(rig.Part().sda, 0);
    EXPECT_EQ(rig.Part().scl, 1);
}

TEST(MdEeprom, OtherAddressesAreRomAndTakeNoWrites) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        const std::vector<uint8_t> before = rig.Save();
        for (const uint32_t page : {0x200000u, 0x300000u, 0x380000u}) {
            for (uint32_t address = page; address < page + 8; ++address) {
                if (address != row.sdaOut) {
                    EXPECT_EQ(rig.Byte(address), rig.Rom(address)) << row.code << address;
                }
                if (address != row.sdaIn && address != row.scl) {
                    rig.PutByte(address, 0);
                }
                if (address % 2 == 0 && address != (row.sdaOut & ~1u)) {
                    EXPECT_EQ(rig.Word(address), rig.Rom(address) << 8 | rig.Rom(address + 1));
                }
                if (address % 2 == 0 && address != (row.sdaIn & ~1u) &&
                    address != (row.scl & ~1u)) {
                    rig.PutWord(address, 0);
                }
            }
        }
        EXPECT_EQ(rig.Save(), before) << row.code;
    }
}

TEST(MdEeprom, WordReadHasTheLineInTheByteOfItsAddress) {
    // All lines out lie at odd addresses, so a part of our own shows the other half.
    MD_EEPROM part;
    MdEepromInit(part, {8, 0xFF, 0xFF, 0, 0x200000, 0x200000, 0x200000, 0, 3, 1, 0});
    static_cast<void>(MdEepromWrite(part, 0x200000, 0x0100, true));
    EXPECT_EQ(MdEepromRead(part, true), 0x0800);
    EXPECT_EQ(MdEepromRead(part, false), 0x0008);
    part.sdaOutAddress = 0x200001;
    EXPECT_EQ(MdEepromRead(part, true), 0x0008);
}

TEST(MdEeprom, ResetEndsTheTransferAndKeepsTheContents) {
    for (const ROW& row : DistinctRows()) {
        EepromRig rig(row);
        rig.Write(3, {0x42});
        rig.Address(5);
        rig.SendBits(0, 3);
        rig.Sda(1);
        rig.Scl(1);
        MdCartReset(*rig.cart);
        const MD_EEPROM& part = rig.Part();
        EXPECT_EQ(part.sda + part.scl + part.oldSda + part.oldScl + part.cycle + part.rw, 0);
        EXPECT_EQ(part.slave | part.wordAddress, 0);
        EXPECT_EQ(part.state, kMdEepromIdle);
        EXPECT_EQ(rig.Read(3, 1), Bytes{0x42}) << row.code;
    }
}

TEST(MdEepromState, SavedAtAnyEdgeItGoesOnTheSame) {
    for (const ROW& row : DistinctRows()) {
        EepromRig plain(row);
        EepromRig moved(row);
        EepromRig spare(row);
        // A run of both; the second one goes on in another cartridge after every edge.
        const auto both = [&](const std::function<int(EepromRig&)>& step) {
            const int expected = step(plain);
            EXPECT_EQ(step(moved), expected) << row.code;
            const std::vector<uint8_t> block = moved.Save();
            EXPECT_EQ(block, plain.Save()) << row.code;
            EXPECT_EQ(spare.Load(block), block.size());
            moved.cart.swap(spare.cart);
        };
        const auto send = [&](int byte) {
            for (int bit = 7; bit >= 0; --bit) {
                both([&](EepromRig& rig) { return rig.Sda(byte >> bit & 1), 0; });
                both([](EepromRig& rig) { return rig.Scl(1), 0; });
                both([](EepromRig& rig) { return rig.Scl(0), 0; });
            }
            both([](EepromRig& rig) { return rig.Sda(1), rig.Scl(1), rig.Line(); });
            both([](EepromRig& rig) { return rig.Scl(0), rig.Line(); });
        };
        const auto start = [&] { both([](EepromRig& rig) { return rig.Start(), 0; }); };
        start();
        if (row.addressBits != 7) {
            send(0xA0);
        }
        if (row.addressBits == 16) {
            send(0x03);
        }
        send(row.addressBits == 7 ? 0x42 : 0x21);
        send(0x9C);
        send(0x63);
        start();
        send(row.addressBits == 7 ? 0x43 : 0xA1);
        for (int i = 0; i < 20; ++i) {
            both([](EepromRig& rig) { return rig.Sda(1), rig.Scl(1), rig.Line(); });
            both([&](EepromRig& rig) { return rig.Scl(0), rig.Sda(i == 7 ? 0 : 1), rig.Line(); });
        }
        const uint32_t address = row.addressBits == 16 ? 0x321 : 0x21;
        EXPECT_EQ(moved.Part().data[address], 0x9C) << row.code;
        EXPECT_EQ(moved.Part().data[address + 1], 0x63) << row.code;
    }
}
