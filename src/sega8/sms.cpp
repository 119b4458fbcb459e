#include "sega8/sms.h"

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

#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace {

constexpr uint32_t kMasterPal = 53203425; // Hz
constexpr uint32_t kMasterNtsc = 53693175;
constexpr uint32_t kMasterDivider = 15;
constexpr uint32_t kVdpTicksPerClock = 3; // of the Z80
// Two of the three VDP ticks come before the Z80 acts in its clock.
constexpr uint32_t kVdpTicksBeforeZ80 = 2;
constexpr uint32_t kStackStart = 0xDFF0;
constexpr uint8_t kKindBios = 3; // `kind` of a machine record
constexpr int kPsgModel = 1;
constexpr double kFmGain = 0.7;
constexpr double kPsgGain = 0.7;
constexpr uint32_t kPaletteBytes = 32; // of colour RAM

// In the order of the actions.
constexpr uint32_t kConsoleBits[] = {kPadPause, kPadReset};
constexpr uint32_t kPlayerBits[] = {
    kPadUp,           kPadDown,         kPadLeft,         kPadRight,        kPadButton1,
    kPadButton1 << 1, kPadButton1 << 2, kPadButton1 << 3, kPadButton1 << 4, kPadButton1 << 5,
};

struct MODEL {
    uint32_t clock; // of Z80 and PSG
    bool pal;
    uint32_t variant;
};

MODEL ModelOf(uint8_t console) {
    switch (console) {
    case kSms1Pal: return {kMasterPal / kMasterDivider, true, kVdpFirst};
    case kSms2Pal: return {kMasterPal / kMasterDivider, true, kVdpSecond};
    case kSms1Ntsc:
    case kSmsJapanese:
    case kMarkIii: return {kMasterNtsc / kMasterDivider, false, kVdpFirst};
    default: return {kMasterNtsc / kMasterDivider, false, kVdpSecond};
    }
}

CSMS& Machine(void* context) {
    return *static_cast<CSMS*>(context);
}

} // namespace

// The Z80's bus in the frame loop: memory through the page tables.
struct SMS_BUS {
    CSMS& machine;
    SEGA_MEMORY& memory;
    const Z80& z80;
    uint32_t effects = 0; // accesses other than reads of memory, and uses of R, wrapping

    uint8_t Read(uint16_t address) { return SegaMemoryRead(memory, address); }
    uint8_t ReadOpcode(uint16_t address) {
        const uint8_t opcode = SegaMemoryRead(memory, address);
        effects += Z80UsesRefresh(z80, opcode) ? 1U : 0U;
        return opcode;
    }
    uint8_t IoRead(uint16_t port) {
        ++effects;
        return machine.ReadPort(port);
    }
    void Write(uint16_t address, uint8_t value) {
        ++effects;
        SegaMemoryWrite(memory, address, value);
    }
    void IoWrite(uint16_t port, uint8_t value) {
        ++effects;
        machine.WritePort(port, value);
    }
};

// The same for a Z80 that runs ahead: the VDP catches up before every port access.
struct SMS_CATCH_UP_BUS {
    SMS_BUS& bus;
    CATCH_UP<1>& chips;
    uint32_t& irqLine; // of the Z80
    const uint32_t& irqOut;
    uint32_t& clockCount;
    uint32_t clock = 0;      // of the span
    uint32_t startCount = 0; // `clockCount` at the start of the span
    Z80IdleLoop idle{};

    uint8_t Read(uint16_t address) { return bus.Read(address); }
    uint8_t ReadOpcode(uint16_t address) { return bus.ReadOpcode(address); }
    void Write(uint16_t address, uint8_t value) { bus.Write(address, value); }
    uint8_t IoRead(uint16_t port) {
        CatchUp();
        if (SegaPollsVdp(chips, port)) {
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
        return idle.Skip(z80, bus.effects, startCount + now, [&] {
            return chips.ClocksOfSamePolls(left, (now + left) * kVdpTicksPerClock);
        });
    }
    void CatchUp() {
        chips.CatchUp(clock * kVdpTicksPerClock + kVdpTicksBeforeZ80, clock);
        clockCount = startCount + clock;
    }
};

CSMS::CSMS(uint32_t sessionKeyValue)
    : CEmuSystem(sessionKeyValue, 256, 256) {}

bool CSMS::Init(const void* options, CGameFile* const games[2]) {
    std::memcpy(&chosen, options, sizeof chosen);
    auto image = TakeImage(games[0], kSegaImageLimit);
    if (!image) {
        return false;
    }
    const SMS_RECORD record = SmsRecordOf(*games[0]);
    memory.cartridge = {};
    memory.bios = {};
    memory.mapper = SegaMapperOf(record.board);
    if (record.kind == kKindBios) {
        memory.bios = MakeBios(std::move(*image));
    } else {
        memory.cartridge = MakeCartridge(std::move(*image));
        if (games[1] != nullptr) {
            auto bios = TakeImage(games[1], kSegaImageLimit);
            if (!bios) {
                return false;
            }
            memory.bios = MakeBios(std::move(*bios));
        }
    }
    ConnectChips();
    Reset();
    return true;
}

void CSMS::ConnectChips() {
    const MODEL model = ModelOf(chosen.console);
    Z80Init(
        z80, this,
        [](void* context, uint32_t address, uint32_t) {
            return Machine(context).Peek(static_cast<uint16_t>(address));
        },
        [](void* context, uint32_t port) {
            return Machine(context).ReadPort(static_cast<uint16_t>(port));
        },
        [](void* context, uint32_t address, uint8_t value) {
            SegaMemoryWrite(Machine(context).memory, static_cast<uint16_t>(address), value);
        },
        [](void* context, uint32_t port, uint8_t value) {
            Machine(context).WritePort(static_cast<uint16_t>(port), value);
        });
    VdpInit(vdp, &irqOut, &z80.nmiEdge, model.pal, model.variant);
    vdp.vram = vram.data();
    PsgInit(psg, model.clock, kPsgModel, false);
    YmInit(fm, model.clock);
    psg.pairs = &psgSound.pairs;
    fm.pairs = &fmSound.pairs;
    const SOUND_CHOICE choice = SoundChoiceFromSettings();
    psgSound.Init(model.clock / double{kPsgClocksPerPair}, choice);
    fmSound.Init(model.clock / double{kYmClocksPerSample}, choice);
    pads.device = {PadDeviceOf(chosen.devices[0]), PadDeviceOf(chosen.devices[1])};
    pads.thReturns = chosen.console != kSmsJapanese && chosen.console != kMarkIii;
}

void CSMS::Reset() {
    vram.fill(0);
    Z80Reset(z80);
    z80.regs[kZ80Sp] = kStackStart;
    VdpReset(vdp);
    PsgReset(psg);
    // YmReset alone leaves the oscillators and the rhythm register as they were.
    YmInit(fm, ModelOf(chosen.console).clock);
    YmReset(fm);
    psgSound.Reset();
    fmSound.Reset();
    PadsReset(pads);
    fmAddress = 0;
    fmControl = 0;
    frameToggle = 0;
    clockCount = 0;
    SegaMemoryReset(memory);
}

void CSMS::RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) {
    PadsBeginFrame(pads,
                   {ReadButtons(sessionKey, kSmsPlayerActions[0], kPlayerBits) |
                        ReadButtons(sessionKey, kSmsConsoleActions, kConsoleBits),
                    ReadButtons(sessionKey, kSmsPlayerActions[1], kPlayerBits)},
                   input);
    vdp.pausePressed = (pads.input[0] & kPadPause) != 0;
    VdpBeginFrame(vdp, video->pixels, kVdpPictureWidth);
    if (plainLoop) {
        RunFramePlain();
    } else {
        RunFrameFast();
    }
    if (chosen.fmChip != 0) {
        MixFm(*audio);
    } else {
        psgSound.Flush();
        TakeSound(psgSound, *audio);
    }
    frameToggle ^= 1;
    video->hold = chosen.glasses != 0 && frameToggle == 1 ? 1 : 0;
    VdpFinishFrame(vdp, video);
}

// One Z80 clock of every chip but the sound chips, in the order in which they are clocked.
void CSMS::TickChips(SMS_BUS& bus) {
    VdpTick(vdp);
    VdpTick(vdp);
    Z80TickOn(z80, bus);
    VdpTick(vdp);
    ++clockCount;
    z80.irqLine = irqOut;
}

void CSMS::RunSound() {
    PsgRun(psg, soundOwed);
    if (chosen.fmChip != 0) {
        YmRun(fm, soundOwed);
    }
    soundOwed = 0;
}

void CSMS::RunFramePlain() {
    SMS_BUS bus{*this, memory, z80};
    while (!vdp.frameDone) {
        TickChips(bus);
        PsgTick(psg);
        if (chosen.fmChip != 0) {
            YmTick(fm);
        }
    }
}

// The same frame, in which the chips around the Z80 catch up. A clock in which the VDP changes a
// line of the Z80 is run tick by tick; so is the first clock, which sets the lines' levels.
void CSMS::RunFrameFast() {
    SMS_BUS bus{*this, memory, z80};
    CATCH_UP<1> chips{{&vdp}, soundOwed};
    SMS_CATCH_UP_BUS catchUpBus{bus, chips, z80.irqLine, irqOut, clockCount};
    TickChips(bus);
    ++soundOwed;
    while (!vdp.frameDone) {
        const uint32_t clocks = (VdpTicksToEvent(vdp) - 1) / kVdpTicksPerClock;
        bus.effects += chips.BeginSpan() ? 1U : 0U;
        catchUpBus.startCount = clockCount;
        Z80RunOn(z80, catchUpBus, clocks);
        chips.CatchUp(clocks * kVdpTicksPerClock, clocks);
        clockCount = catchUpBus.startCount + clocks;
        TickChips(bus);
        ++soundOwed;
    }
    RunSound();
}

// Each chip has a resampler of its own, so one may be a sample short of the other. It then runs
// until both have the same count, and the pairs that are left over stay for the next frame.
void CSMS::MixFm(EMU_AUDIO_FRAME& audio) {
    psgSound.Flush();
    fmSound.Flush();
    const uint32_t values = std::max(ReadyValues(psgSound), ReadyValues(fmSound));
    psgSound.FlushUntilReady(values, [this] { PsgRun(psg, kPsgClocksPerPair); });
    fmSound.FlushUntilReady(values, [this] { YmRun(fm, kYmClocksPerSample); });
    MixSound(fmSound, psgSound, values, audio, [](int32_t fmValue, int32_t psgValue) {
        return static_cast<int32_t>(fmValue * kFmGain + psgValue * kPsgGain);
    });
}

template <typename Visit>
void CSMS::BoardFields(Visit& visit, uint8_t& irqByte) {
    visit(irqByte);
    visit(fmAddress);
    visit(fmControl);
    visit(pads.ioControl);
    visit(memory.control);
    visit(frameToggle);
    visit(pads.portDc);
    visit(pads.portDd);
    visit(pads.deviceState);
    visit(pads.deviceX);
    visit(pads.deviceY);
    visit(pads.lastEdgeClock);
    visit(memory.cartridgeWords.slots);
    visit(memory.cartridgeWords.control);
    visit(memory.biosWords.slots);
    visit(memory.biosWords.control);
    visit(clockCount);
    visit(memory.workRam);
    visit(memory.cartridgeRam);
    visit(vram);
}

StateBlob CSMS::SaveState(uint32_t& size) {
    auto irqByte = static_cast<uint8_t>(irqOut);
    const auto board = [&](auto& visit) { BoardFields(visit, irqByte); };
    const auto sound = {&std::as_const(psgSound), &std::as_const(fmSound)};
    size = StatePieceSize(board) + Z80StateSize() + VdpStateSize() + PsgStateSize() +
           YmStateSize() + SoundStateSize(sound);
    auto blob = std::make_unique_for_overwrite<uint8_t[]>(size);
    uint8_t* out = StatePieceWrite(blob.get(), board);
    out = Z80SaveState(z80, out);
    out = VdpSaveState(vdp, out);
    out = PsgSaveState(psg, out);
    out = YmSaveState(fm, out);
    SaveSoundState(sound, out);
    return blob;
}

bool CSMS::LoadPieces(const uint8_t* data, uint32_t size) {
    uint8_t irqByte = 0;
    const auto board = [&](auto& visit) { BoardFields(visit, irqByte); };
    StatePieces pieces(data, size);
    const bool boardTaken = pieces.Take(
        [&](const uint8_t* piece, uint32_t left) { return StatePieceRead(piece, left, board); });
    irqOut = irqByte != 0 ? 1 : 0;
    const bool loaded = boardTaken && pieces.Load(z80, Z80LoadState) &&
                        pieces.Load(vdp, VdpLoadState) && pieces.Load(psg, PsgLoadState) &&
                        pieces.Load(fm, YmLoadState);
    LoadSoundState({&psgSound, &fmSound}, pieces.Rest(), loaded ? pieces.Left() : 0);
    return loaded;
}

// Derived values are computed after a refusal too: the pieces before the refused one are loaded.
bool CSMS::LoadState(const uint8_t* data, uint32_t size) {
    const bool loaded = LoadPieces(data, size);
    frameToggle &= 1;
    PadsSanitize(pads);
    SegaMemoryRebuild(memory);
    return loaded;
}

std::vector<uint8_t> CSMS::Memory(std::string_view region) const {
    return SegaMemoryRegion(memory, vram, std::span(vdp.cram).first(kPaletteBytes), region);
}

bool CSMS::Peek(uint32_t address, uint8_t& value) const {
    if (address > 0xFFFF) {
        return false;
    }
    value = Peek(static_cast<uint16_t>(address));
    return true;
}

std::vector<uint8_t> CSMS::BatteryContents() const {
    return SegaBattery(memory);
}

bool CSMS::SetBatteryContents(std::span<const uint8_t> bytes) {
    return SetSegaBattery(memory, bytes);
}

std::vector<uint8_t> CSMS::Dump(std::string_view region) const {
    return Memory(region);
}

std::span<const std::string_view> CSMS::Regions() const {
    return kSmsRegions;
}
