#include "sega8/system_e.h"

#include "facts/arcade_facts.h"
#include "formats/game_file.h"
#include "machine/machine_image.h"
#include "machine/read_buttons.h"
#include "machine/sound_frame.h"
#include "machine/sound_settings.h"
#include "machine/state_piece.h"
#include "machine/state_pieces.h"
#include "sega8/catch_up.h"
#include "sega8/game_image.h"
#include "sega8/z80_idle.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <utility>

namespace {

constexpr uint32_t kPsgClock = 3579545; // Hz
constexpr int kPsgModel = 1;
constexpr double kPsgGain = 0.7;
constexpr uint32_t kVdpTicksPerClock = 2; // of the Z80
// The PSGs run at 10/15 of the Z80's clock.
constexpr uint32_t kPsgPhasePerZ80Clock = 10;
constexpr uint32_t kPsgPhasePerPsgClock = 15;
constexpr uint32_t kImageLimit = 0x100000;
constexpr uint32_t kPaletteBytes = 32; // of colour RAM

// Bits of the bank latch.
constexpr uint8_t kShowB = 0x80;      // vdp1 shows bank B, not A
constexpr uint8_t kShowD = 0x40;      // vdp2 shows bank D, not C
constexpr uint8_t kWriteFirst = 0x20; // the window writes to vdp1's other bank, not vdp2's
constexpr uint8_t kRomBank = 0x0F;

// In the order of the actions.
constexpr uint32_t kConsoleBits[] = {kArcadeCoin1, kArcadeCoin2, kArcadeStart1, kArcadeStart2};
constexpr uint32_t kPlayerBits[] = {
    kArcadeUp,           kArcadeDown,         kArcadeLeft,         kArcadeRight,
    kArcadeButton1,      kArcadeButton1 << 1, kArcadeButton1 << 2, kArcadeButton1 << 3,
    kArcadeButton1 << 4, kArcadeButton1 << 5,
};

bool IsEncrypted(uint32_t board) {
    return board == 2 || board == 5 || board == 6;
}

CSEGAE& Machine(void* context) {
    return *static_cast<CSEGAE*>(context);
}

} // namespace

// The Z80's bus in the frame loop.
struct ARCADE_BUS {
    CSEGAE& machine;
    const Z80& z80;
    uint32_t effects = 0; // accesses other than reads of memory, and uses of R, wrapping

    uint8_t Read(uint16_t address) { return machine.Peek(address); }
    uint8_t ReadOpcode(uint16_t address) {
        const uint8_t opcode = machine.PeekOpcode(address);
        effects += Z80UsesRefresh(z80, opcode) ? 1U : 0U;
        return opcode;
    }
    uint8_t IoRead(uint16_t port) {
        ++effects;
        return machine.ReadPort(port);
    }
    void Write(uint16_t address, uint8_t value) {
        ++effects;
        machine.WriteMemory(address, value);
    }
    void IoWrite(uint16_t port, uint8_t value) {
        ++effects;
        machine.WritePort(port, value);
    }
};

namespace {

// The same for a Z80 that runs ahead: the VDPs catch up before every port access.
struct ARCADE_CATCH_UP_BUS {
    ARCADE_BUS& bus;
    CATCH_UP<2>& chips;
    uint32_t& irqLine; // of the Z80
    const uint32_t& irqOut;
    uint32_t clock = 0;     // of the span
    uint32_t spanStart = 0; // clocks of the frame before the span
    Z80IdleLoop idle{};

    uint8_t Read(uint16_t address) { return bus.Read(address); }
    uint8_t ReadOpcode(uint16_t address) { return bus.ReadOpcode(address); }
    void Write(uint16_t address, uint8_t value) { bus.Write(address, value); }
    uint8_t IoRead(uint16_t port) {
        CatchUp();
        if (PollsVdp(port)) {
            return bus.machine.ReadPort(port);
        }
        const uint8_t value = bus.IoRead(port);
        irqLine = irqOut;
        return value;
    }
    void IoWrite(uint16_t port, uint8_t value) {
        CatchUp();
        bus.IoWrite(port, value);
        irqLine = irqOut;
    }
    void At(uint32_t now) { clock = now; }
    uint32_t SkipIdle(Z80& z80, uint32_t now, uint32_t left) {
        return idle.Skip(z80, bus.effects, spanStart + now, [&] {
            return chips.ClocksOfSamePolls(left, (now + left) * kVdpTicksPerClock);
        });
    }
    void CatchUp() { chips.CatchUp(clock * kVdpTicksPerClock, clock); }

private:
    // True if a read of this port polls a VDP and has no effect.
    [[nodiscard]] bool PollsVdp(uint16_t port) {
        switch (static_cast<uint8_t>(port)) {
        case kArcadePortVCounter: chips.PollCounter(); return true;
        case kArcadePortVdp1Control: return chips.PollStatus(0);
        case kArcadePortVdp2Control: return chips.PollStatus(1);
        default: return false;
        }
    }
};

// The bytes of the piece named "opcodes"; empty when the game has none.
std::span<const uint8_t> OpcodePiece(const CGameFile& game) {
    for (uint32_t index = 0; index < game.RomCount(); ++index) {
        std::string name;
        ROM_RECORD record{};
        if (game.GetRom(index, name, record) && name == "opcodes") {
            const size_t offset = game.RomOffset(index);
            const std::span<const uint8_t> data = game.Data();
            if (offset <= data.size() && record.size <= data.size() - offset) {
                return data.subspan(offset, record.size);
            }
        }
    }
    return {};
}

} // namespace

CSEGAE::CSEGAE(uint32_t sessionKeyValue)
    : CEmuSystem(sessionKeyValue, 256, 256) {}

bool CSEGAE::Init(const void* /*options*/, CGameFile* const games[2]) {
    auto image = TakeImage(games[0], kImageLimit);
    if (!image) {
        return false;
    }
    panel = {};
    panel.board = ArcadeRecordOf(*games[0]).board;
    const size_t imageBytes = image->size();
    rom = std::move(*image);
    rom.resize(std::max(imageBytes, size_t{kArcadeRomBytes}), 0xFF);
    opcodeRom.clear();
    if (IsEncrypted(panel.board) && !PrepareOpcodes(*games[0], imageBytes)) {
        return false;
    }
    ConnectChips();
    Reset();
    return true;
}

// Past the end of the piece opcodes come from the image itself: a board may encrypt only a part of
// it.
bool CSEGAE::PrepareOpcodes(const CGameFile& game, size_t imageBytes) {
    const std::span<const uint8_t> piece = OpcodePiece(game);
    if (piece.empty() || piece.size() > imageBytes) {
        EmuSetLastError(GameTitle(game) + " has an encrypted program (board " +
                        std::to_string(panel.board) +
                        (piece.empty() ? ") and no piece named \"opcodes\""
                                       : ") and its piece \"opcodes\" is longer than its image"));
        return false;
    }
    opcodeRom = rom;
    std::copy(piece.begin(), piece.end(), opcodeRom.begin());
    return true;
}

void CSEGAE::ConnectChips() {
    Z80Init(
        z80, this,
        [](void* context, uint32_t address, uint32_t isOpcodeFetch) {
            const auto at = static_cast<uint16_t>(address);
            return isOpcodeFetch != 0 ? Machine(context).PeekOpcode(at) : Machine(context).Peek(at);
        },
        [](void* context, uint32_t port) {
            return Machine(context).ReadPort(static_cast<uint16_t>(port));
        },
        [](void* context, uint32_t address, uint8_t value) {
            Machine(context).WriteMemory(static_cast<uint16_t>(address), value);
        },
        [](void* context, uint32_t port, uint8_t value) {
            Machine(context).WritePort(static_cast<uint16_t>(port), value);
        });
    // The pause button's line is never raised here.
    VdpInit(vdp1, &irqUnread, &z80.nmiEdge, false, kVdpFirst);
    VdpInit(vdp2, &irqLine, &z80.nmiEdge, false, kVdpFirst);
    vdp2.secondChip = true;
    PsgInit(psg1, kPsgClock, kPsgModel, false);
    PsgInit(psg2, kPsgClock, kPsgModel, false);
    psg1.pairs = &sound1.pairs;
    psg2.pairs = &sound2.pairs;
    const SOUND_CHOICE choice = SoundChoiceFromSettings();
    sound1.Init(kPsgClock / double{kPsgClocksPerPair}, choice);
    sound2.Init(kPsgClock / double{kPsgClocksPerPair}, choice);
    RebuildMap();
}

void CSEGAE::Reset() {
    ram.fill(0);
    vram.fill(0);
    psgPhase = 0;
    bankLatch = 0;
    const uint32_t board = panel.board;
    panel = {};
    panel.board = board;
    Z80Reset(z80);
    PsgReset(psg1);
    PsgReset(psg2);
    sound1.Reset();
    sound2.Reset();
    VdpReset(vdp1);
    VdpReset(vdp2);
    RebuildMap();
}

void CSEGAE::RebuildMap() {
    const size_t bank =
        size_t{kArcadeFixedBytes} + size_t{kArcadeBankBytes} * (bankLatch & kRomBank);
    readWindows = {rom.data(), rom.data() + kArcadeBankBytes, rom.data() + bank, ram.data()};
    opcodeWindows = readWindows;
    if (!opcodeRom.empty()) {
        const size_t opcodeBank =
            std::min(bank + opcodeOffset, opcodeRom.size() - kArcadeBankBytes);
        opcodeWindows[0] = opcodeRom.data();
        opcodeWindows[1] = opcodeRom.data() + kArcadeBankBytes;
        opcodeWindows[2] = opcodeRom.data() + opcodeBank;
    }
    // A chip shows one of its two banks; the window writes to the other one.
    uint8_t* const banks = vram.data();
    uint8_t* const first[2] = {banks, banks + kVdpVramBytes};
    uint8_t* const second[2] = {banks + size_t{2} * kVdpVramBytes,
                                banks + size_t{3} * kVdpVramBytes};
    const uint32_t shownFirst = (bankLatch & kShowB) != 0 ? 1 : 0;
    const uint32_t shownSecond = (bankLatch & kShowD) != 0 ? 1 : 0;
    uint8_t* const window =
        (bankLatch & kWriteFirst) != 0 ? first[1 - shownFirst] : second[1 - shownSecond];
    writeWindows = {dummy.data(), dummy.data(), window, ram.data()};
    vdp1.vram = first[shownFirst];
    vdp2.vram = second[shownSecond];
}

uint8_t CSEGAE::ReadPort(uint16_t port) {
    switch (const auto low = static_cast<uint8_t>(port)) {
    case kArcadePortVCounter: return VdpVCounter(vdp1);
    case kArcadePortVdp1Data: return VdpDataRead(vdp1);
    case kArcadePortVdp1Control: return VdpStatusRead(vdp1);
    case kArcadePortVdp2Data: return VdpDataRead(vdp2);
    case kArcadePortVdp2Control: return VdpStatusRead(vdp2);
    default: return ArcadePanelRead(panel, low);
    }
}

void CSEGAE::WritePort(uint16_t port, uint8_t value) {
    switch (static_cast<uint8_t>(port)) {
    case kArcadePortPsg2:
        RunSound();
        PsgWrite(psg2, value);
        break;
    case kArcadePortPsg1:
    case kArcadePortPsg1Mirror:
        RunSound();
        PsgWrite(psg1, value);
        break;
    case kArcadePortVdp1Data: VdpDataWrite(vdp1, value); break;
    case kArcadePortVdp1Control: VdpControlWrite(vdp1, value); break;
    case kArcadePortVdp2Data: VdpDataWrite(vdp2, value); break;
    case kArcadePortVdp2Control: VdpControlWrite(vdp2, value); break;
    case kArcadePortBankLatch:
        bankLatch = value;
        RebuildMap();
        break;
    case kArcadePortPanelSelect: ArcadePanelSelect(panel, value); break;
    default: break;
    }
}

void CSEGAE::RunFrame(EMU_INPUT_STATE* /*input*/, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) {
    VdpBeginFrame(vdp1, video->pixels, kVdpPictureWidth);
    VdpBeginFrame(vdp2, video->pixels, kVdpPictureWidth);
    ReadInput();
    ArcadePanelMove(panel);
    video->rotated = panel.board == kBoardDial ? 1 : 0;
    if (plainLoop) {
        RunFramePlain();
    } else {
        RunFrameFast();
    }
    sound1.Flush();
    sound2.Flush();
    const uint32_t values = ReadyValues(sound2);
    MixSound(sound1, sound2, values, *audio, [](int32_t first, int32_t second) {
        return static_cast<int32_t>((first + second) * kPsgGain);
    });
    VdpFinishFrame(vdp1, video);
}

void CSEGAE::ReadInput() {
    panel.inputP1 = ReadButtons(sessionKey, kArcadePlayerActions[0], kPlayerBits) |
                    ReadButtons(sessionKey, kArcadeConsoleActions, kConsoleBits);
    panel.inputP2 = ReadButtons(sessionKey, kArcadePlayerActions[1], kPlayerBits);
}

// One Z80 clock of every chip but the PSGs, in the order in which they are clocked.
void CSEGAE::TickChips(ARCADE_BUS& bus) {
    Z80TickOn(z80, bus);
    VdpTick(vdp1);
    VdpTick(vdp1);
    VdpTick(vdp2);
    VdpTick(vdp2);
    z80.irqLine = irqLine;
}

// One Z80 clock of the PSGs.
void CSEGAE::TickSound() {
    psgPhase += kPsgPhasePerZ80Clock;
    if (psgPhase >= kPsgPhasePerPsgClock) {
        psgPhase -= kPsgPhasePerPsgClock;
        PsgTick(psg1);
        PsgTick(psg2);
    }
}

void CSEGAE::RunSound() {
    const uint32_t phase = psgPhase + soundOwed * kPsgPhasePerZ80Clock;
    PsgRun(psg1, phase / kPsgPhasePerPsgClock);
    PsgRun(psg2, phase / kPsgPhasePerPsgClock);
    psgPhase = phase % kPsgPhasePerPsgClock;
    soundOwed = 0;
}

void CSEGAE::RunFramePlain() {
    ARCADE_BUS bus{*this, z80};
    while (!vdp2.frameDone) {
        TickChips(bus);
        TickSound();
    }
}

// The same frame, in which the chips around the Z80 catch up. A clock in which a VDP changes a line
// of the Z80 is run tick by tick; so is the first clock, which sets the lines' levels.
void CSEGAE::RunFrameFast() {
    ARCADE_BUS bus{*this, z80};
    CATCH_UP<2> chips{
        {&vdp1, &vdp2},
        soundOwed
    };
    ARCADE_CATCH_UP_BUS catchUpBus{bus, chips, z80.irqLine, irqLine};
    TickChips(bus);
    ++soundOwed;
    while (!vdp2.frameDone) {
        // A reset starts both chips at the same dot; a state may have them apart.
        const uint32_t ticks = std::min(VdpTicksToEvent(vdp1), VdpTicksToEvent(vdp2));
        const uint32_t clocks = (ticks - 1) / kVdpTicksPerClock;
        bus.effects += chips.BeginSpan() ? 1U : 0U;
        Z80RunOn(z80, catchUpBus, clocks);
        chips.CatchUp(clocks * kVdpTicksPerClock, clocks);
        TickChips(bus);
        ++soundOwed;
        catchUpBus.spanStart += clocks + 1;
    }
    RunSound();
}

// The mapper words are the banks of the three ROM slots and the bank latch. They are for readers of
// the state; a load derives them from the latch.
template <typename Visit>
void CSEGAE::BoardFields(Visit& visit) {
    std::array<uint8_t, 2> spare{};
    std::array<uint32_t, 4> mapper{0, 1, 2u + (bankLatch & kRomBank), bankLatch};
    visit(irqLine);
    visit(psgPhase);
    visit(bankLatch);
    visit(panel.analogSelect);
    visit(panel.steering);
    visit(panel.throttle);
    visit(panel.dialSelect);
    visit(spare);
    visit(panel.dialSpeed);
    visit(mapper);
    visit(ram);
    visit(vram);
}

StateBlob CSEGAE::SaveState(uint32_t& size) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    const auto sound = {&std::as_const(sound1), &std::as_const(sound2)};
    size = StatePieceSize(board) + Z80StateSize() + 2 * VdpStateSize() + 2 * PsgStateSize() +
           SoundStateSize(sound);
    auto blob = std::make_unique_for_overwrite<uint8_t[]>(size);
    uint8_t* out = StatePieceWrite(blob.get(), board);
    out = Z80SaveState(z80, out);
    out = VdpSaveState(vdp1, out);
    out = VdpSaveState(vdp2, out);
    out = PsgSaveState(psg1, out);
    out = PsgSaveState(psg2, out);
    SaveSoundState(sound, out);
    return blob;
}

bool CSEGAE::LoadPieces(const uint8_t* data, uint32_t size) {
    StatePieces pieces(data, size);
    const bool boardTaken = pieces.Take([&](const uint8_t* piece, uint32_t left) {
        return StatePieceRead(piece, left, [&](auto& visit) { BoardFields(visit); });
    });
    const bool loaded = boardTaken && pieces.Load(z80, Z80LoadState) &&
                        pieces.Load(vdp1, VdpLoadState) && pieces.Load(vdp2, VdpLoadState) &&
                        pieces.Load(psg1, PsgLoadState) && pieces.Load(psg2, PsgLoadState);
    LoadSoundState({&sound1, &sound2}, pieces.Rest(), loaded ? pieces.Left() : 0);
    return loaded;
}

// Derived values are computed after a refusal too: the pieces before the refused one are loaded.
bool CSEGAE::LoadState(const uint8_t* data, uint32_t size) {
    const bool loaded = LoadPieces(data, size);
    irqLine = irqLine != 0 ? 1 : 0;
    psgPhase %= kPsgPhasePerPsgClock;
    panel.dialSelect &= 3;
    // This board has no pause button.
    vdp1.pausePressed = false;
    vdp2.pausePressed = false;
    RebuildMap();
    return loaded;
}

std::vector<uint8_t> CSEGAE::Memory(std::string_view region) const {
    std::vector<uint8_t> bytes;
    if (region == "ram") {
        bytes.assign(ram.begin(), ram.end());
    } else if (region == "vram") {
        bytes.assign(vram.begin(), vram.end());
    } else if (region == "palette") {
        bytes.assign(vdp1.cram, vdp1.cram + kPaletteBytes);
        bytes.insert(bytes.end(), vdp2.cram, vdp2.cram + kPaletteBytes);
    }
    return bytes;
}

bool CSEGAE::Peek(uint32_t address, uint8_t& value) const {
    if (address > 0xFFFF) {
        return false;
    }
    value = Peek(static_cast<uint16_t>(address));
    return true;
}

std::vector<uint8_t> CSEGAE::Dump(std::string_view region) const {
    return Memory(region);
}

std::span<const std::string_view> CSEGAE::Regions() const {
    return kArcadeRegions;
}
