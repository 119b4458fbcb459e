// CSEGAE: the System E arcade board. A Z80, two 8-bit VDPs that draw one picture, two PSGs, banked
// ROM and one of several control panels, selected by the board number of the game's record.
//
// Clock: the Z80 runs at 5.37 MHz, with two VDP ticks a clock; both PSGs at 10/15 of that.
// Units: `steering` 0..255 with the middle at 127; `throttle` 0..254; `dialSpeed` in dial counts a
//   frame.
// Games: the image has 32 KB for 0x0000-0x7FFF and up to 16 banks of 16 KB for 0x8000-0xBFFF;
//   missing parts read 0xFF. Boards 2, 5 and 6 have an encrypted program, which this machine does
//   not decrypt: such a game has its decrypted opcodes in a piece named "opcodes"
//   (docs/FORMATS.md). Init fails without it.
// Layers: the second VDP is the upper one; its transparent pixels show the first VDP.
// States: board, Z80, both VDPs, both PSGs. sound_frame.h says what is guaranteed about sound.
// Differs: docs/HARDWARE.md, "System E".
#pragma once

#include "facts/arcade_facts.h"
#include "machine/chip_sound.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "sega8/psg.h"
#include "sega8/vdp.h"
#include "sega8/z80.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

inline constexpr uint32_t kArcadeFixedBytes = 0x8000;
inline constexpr uint32_t kArcadeBankBytes = 0x4000;
inline constexpr uint32_t kArcadeBanks = 16;
inline constexpr uint32_t kArcadeRomBytes = kArcadeFixedBytes + kArcadeBanks * kArcadeBankBytes;

// Ports, of which all eight address lines count.
enum ArcadePort : uint8_t {
    kArcadePortPsg2 = 0x7B,
    kArcadePortPsg1 = 0x7E, // write; also 0x7F
    kArcadePortPsg1Mirror = 0x7F,
    kArcadePortVCounter = 0x7E, // read
    kArcadePortVdp1Data = 0xBA,
    kArcadePortVdp1Control = 0xBB, // read: status
    kArcadePortVdp2Data = 0xBE,
    kArcadePortVdp2Control = 0xBF, // read: status
    kArcadePortCoins = 0xE0,       // and start buttons
    kArcadePortJoystick = 0xE1,
    kArcadePortCoinSwitches = 0xF2,
    kArcadePortGameSwitches = 0xF3,
    kArcadePortBankLatch = 0xF7,
    kArcadePortPanel = 0xF8,      // value of the analog or dial panel
    kArcadePortPanelSelect = 0xFA // selects that value
};

// What a player holds down, a bit each. Coins and start buttons are in player 1's word.
enum ArcadeInput : uint32_t {
    kArcadeUp = 1u << 0,
    kArcadeDown = 1u << 1,
    kArcadeLeft = 1u << 2,
    kArcadeRight = 1u << 3,
    kArcadeButton1 = 1u << 8, // up to kArcadeButton1 << 5
    kArcadeButton2 = 1u << 9,
    kArcadeStart1 = 1u << 22,
    kArcadeStart2 = 1u << 23,
    kArcadeCoin1 = 1u << 26,
    kArcadeCoin2 = 1u << 27
};

// The control panel and its input of this frame.
struct ARCADE_PANEL {
    uint32_t board = kBoardJoystick; // ArcadeBoard
    uint32_t inputP1 = 0;            // ArcadeInput
    uint32_t inputP2 = 0;            // ArcadeInput; no port reads it
    uint8_t analogSelect = 0;
    uint8_t steering = 127;
    uint8_t throttle = 0;
    uint8_t dialSelect = 0; // 0..3
    int16_t dialSpeed = 0;
};

// Moves wheel, throttle and dial by one frame.
void ArcadePanelMove(ARCADE_PANEL& panel);
// Ports 0xE0 to 0xFB of the panel; 0 for any other port.
[[nodiscard]] uint8_t ArcadePanelRead(const ARCADE_PANEL& panel, uint8_t port);
// Port 0xFA.
void ArcadePanelSelect(ARCADE_PANEL& panel, uint8_t value);

struct ARCADE_BUS;

class CSEGAE : public CEmuSystem, public CInspection {
public:
    explicit CSEGAE(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] StateBlob SaveState(uint32_t& size) override;

    // What the Z80 would read as data, with no side effect.
    [[nodiscard]] uint8_t Peek(uint16_t address) const {
        return readWindows[address >> 14][address & 0x3FFF];
    }
    // "ram"; "vram", the two banks of the first chip and then those of the second; "palette", the
    // colour RAM of the first chip and then of the second one. Empty for any other name.
    [[nodiscard]] std::vector<uint8_t> Memory(std::string_view region) const;

    // The bus as the Z80 sees it; only the low byte of a port counts.
    [[nodiscard]] uint8_t PeekOpcode(uint16_t address) const {
        return opcodeWindows[address >> 14][address & 0x3FFF];
    }
    // Frames by the plain loop, which ticks every chip on every clock; for tests of the fast loop.
    void SetPlainLoop(bool plain) { plainLoop = plain; }

    void WriteMemory(uint16_t address, uint8_t value) {
        writeWindows[address >> 14][address & 0x3FFF] = value;
    }
    [[nodiscard]] uint8_t ReadPort(uint16_t port);
    void WritePort(uint16_t port, uint8_t value);

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

private:
    friend struct MACHINE_FIELDS; // of the tests: every field of a state

    [[nodiscard]] bool PrepareOpcodes(const CGameFile& game, size_t imageBytes);
    void ConnectChips();
    void RebuildMap();
    void ReadInput();
    void TickChips(ARCADE_BUS& bus);
    void TickSound();
    void RunSound();
    void RunFramePlain();
    void RunFrameFast();
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);

    ARCADE_PANEL panel;
    Z80 z80;
    VDP vdp1;
    VDP vdp2;
    PSG psg1;
    PSG psg2;
    ChipSound sound1; // of psg1
    ChipSound sound2;
    std::vector<uint8_t> rom;       // kArcadeRomBytes
    std::vector<uint8_t> opcodeRom; // as long as `rom`, or empty: opcodes come from `rom`
    // Offset in `opcodeRom` for fetches through the banked window. Boards have 0, 32,768 or 49,152
    // (open: no source tells what the last two select). An image with the layout of the ROM, the
    // only kind that is accepted, needs 0.
    uint32_t opcodeOffset = 0;
    uint32_t irqLine = 0;   // by vdp2
    uint32_t irqUnread = 0; // by vdp1; not connected
    bool plainLoop = false;
    uint32_t soundOwed = 0; // Z80 clocks that the PSGs have not run; 0 between frames
    uint32_t psgPhase = 0;  // in fifteenths of a PSG clock, 0..14
    uint8_t bankLatch = 0;  // port 0xF7
    std::array<uint8_t, 0x4000> ram{};
    std::array<uint8_t, size_t{4} * kVdpVramBytes> vram{}; // banks A, B of vdp1, then C, D of vdp2

    // By the upper two address bits.
    std::array<const uint8_t*, 4> readWindows{};
    std::array<const uint8_t*, 4> opcodeWindows{};
    std::array<uint8_t*, 4> writeWindows{};
    std::array<uint8_t, 0x4000> dummy{}; // for writes to ROM
};
