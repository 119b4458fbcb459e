#include "sega8/game_gear.h"

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
#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace {

constexpr uint32_t kVdpTicksPerClock = 3; // of the Z80
// Two of the three VDP ticks come before the Z80 acts in its clock.
constexpr uint32_t kVdpTicksBeforeZ80 = 2;

constexpr uint32_t kPsgClock = 3579545; // Hz
constexpr uint32_t kStackStart = 0xDFF0;
constexpr uint32_t kWindowWidth = 160;
constexpr uint32_t kWindowHeight = 144;
constexpr uint32_t kWindowColumn = 48; // of the whole picture
constexpr uint32_t kWindowRow = 24;    // below the border
constexpr float kWindowAspect = 4.0f / 3.0f;
constexpr uint32_t kBlack = 0xFF000000;

// In the order of the actions: the bits of port 0xDC, and the start button, which port 0x00 reads.
constexpr uint32_t kStart = 0x80;
constexpr uint32_t kButtonBits[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, kStart};

GEAR_CONSOLE& Console(void* context) {
    return *static_cast<GEAR_CONSOLE*>(context);
}

// The Z80's bus in the frame loop.
struct GEAR_BUS {
    GEAR_CONSOLE& console;
    uint32_t effects = 0; // accesses other than reads of memory, and uses of R, wrapping

    uint8_t Read(uint16_t address) { return SegaMemoryRead(console.memory, address); }
    uint8_t ReadOpcode(uint16_t address) {
        const uint8_t opcode = SegaMemoryRead(console.memory, address);
        effects += Z80UsesRefresh(console.z80, opcode) ? 1U : 0U;
        return opcode;
    }
    uint8_t IoRead(uint16_t port) {
        ++effects;
        return GearReadPort(console, port);
    }
    void Write(uint16_t address, uint8_t value) {
        ++effects;
        SegaMemoryWrite(console.memory, address, value);
    }
    void IoWrite(uint16_t port, uint8_t value) {
        ++effects;
        GearWritePort(console, port, value);
    }
};

// One Z80 clock of a console's chips but the PSG.
inline void ConsoleTick(GEAR_BUS& bus) {
    GEAR_CONSOLE& console = bus.console;
    VdpTick(console.vdp);
    VdpTick(console.vdp);
    Z80TickOn(console.z80, bus);
    VdpTick(console.vdp);
    GearLinkTick(console.link);
    console.z80.irqLine = console.irqOut;
}

// The same for a Z80 that runs ahead: VDP and link catch up before every port access.
struct GEAR_CATCH_UP_BUS {
    GEAR_BUS bus;
    CATCH_UP<1>& chips;
    uint32_t clock = 0;     // of the span
    uint32_t linkClock = 0; // clocks of the span that the link has run
    uint32_t spanStart = 0; // clocks of the frame before the span, wrapping
    Z80IdleLoop idle{};

    uint8_t Read(uint16_t address) { return bus.Read(address); }
    uint8_t ReadOpcode(uint16_t address) { return bus.ReadOpcode(address); }
    void Write(uint16_t address, uint8_t value) { bus.Write(address, value); }
    uint8_t IoRead(uint16_t port) {
        CatchUp();
        if (SegaPollsVdp(chips, port)) {
            return GearReadPort(bus.console, port);
        }
        const uint8_t value = bus.IoRead(port);
        bus.console.z80.irqLine = bus.console.irqOut;
        return value;
    }
    void IoWrite(uint16_t port, uint8_t value) {
        CatchUp();
        bus.IoWrite(port, value);
        bus.console.z80.irqLine = bus.console.irqOut;
    }
    void At(uint32_t now) { clock = now; }
    uint32_t SkipIdle(Z80& z80, uint32_t now, uint32_t left) {
        return idle.Skip(z80, bus.effects, spanStart + now, [&] {
            return chips.ClocksOfSamePolls(left, (now + left) * kVdpTicksPerClock);
        });
    }
    void CatchUp() {
        chips.CatchUp(clock * kVdpTicksPerClock + kVdpTicksBeforeZ80, clock);
        RunLink(clock);
    }
    void RunLink(uint32_t to) {
        GearLinkRun(bus.console.link, to - linkClock);
        linkClock = to;
    }
    void BeginSpan() {
        bus.effects += chips.BeginSpan() ? 1U : 0U;
        linkClock = 0;
    }
    void EndSpan(uint32_t clocks) {
        chips.CatchUp(clocks * kVdpTicksPerClock, clocks);
        RunLink(clocks);
        spanStart += clocks + 1; // and the clock that is run tick by tick
    }
};

// One clock of the Z80 and of the link; the other chips owe it.
inline void Z80AndLinkTick(GEAR_CONSOLE& console, GEAR_CATCH_UP_BUS& bus, uint32_t clock) {
    bus.At(clock);
    Z80TickOn(console.z80, bus);
    bus.RunLink(clock + 1);
    console.z80.irqLine = console.irqOut;
}

// The consoles in turn, a clock each.
void RunInTurns(std::span<GEAR_CONSOLE> consoles, std::span<GEAR_CATCH_UP_BUS> buses,
                uint32_t clocks) {
    for (uint32_t clock = 0; clock < clocks; ++clock) {
        for (size_t i = 0; i < consoles.size(); ++i) {
            Z80AndLinkTick(consoles[i], buses[i], clock);
        }
    }
}

// True if no byte and no frame error is due within `clocks` clocks. A transfer that starts in that
// time takes longer than a line.
bool LinkIsQuiet(const GEAR_LINK& link, uint32_t clocks) {
    return (link.sendClocks == 0 || link.sendClocks > clocks) &&
           (link.errorClocks == 0 || link.errorClocks > clocks);
}

void ConnectConsole(GEAR_CONSOLE& console, int psgModel, const SOUND_CHOICE& choice) {
    Z80Init(
        console.z80, &console,
        [](void* context, uint32_t address, uint32_t) {
            return SegaMemoryRead(Console(context).memory, static_cast<uint16_t>(address));
        },
        [](void* context, uint32_t port) {
            return GearReadPort(Console(context), static_cast<uint16_t>(port));
        },
        [](void* context, uint32_t address, uint8_t value) {
            SegaMemoryWrite(Console(context).memory, static_cast<uint16_t>(address), value);
        },
        [](void* context, uint32_t port, uint8_t value) {
            GearWritePort(Console(context), static_cast<uint16_t>(port), value);
        });
    VdpInit(console.vdp, &console.irqOut, &console.z80.nmiEdge, false, kVdpGameGear);
    console.vdp.vram = console.vram.data();
    PsgInit(console.psg, kPsgClock, psgModel, true);
    console.psg.pairs = &console.sound.pairs;
    console.sound.Init(kPsgClock / double{kPsgClocksPerPair}, choice);
    console.link.nmi = &console.z80.nmiEdge;
}

void ResetConsole(GEAR_CONSOLE& console) {
    console.vram.fill(0);
    Z80Reset(console.z80);
    console.z80.regs[kZ80Sp] = kStackStart;
    VdpReset(console.vdp);
    PsgReset(console.psg);
    console.sound.Reset();
    GearLinkReset(console.link);
    console.ioControl = 0xFF;
    console.buttons = 0xFF;
    SegaMemoryReset(console.memory);
}

template <typename Visit>
void ConsoleFields(GEAR_CONSOLE& console, Visit& visit) {
    visit(console.irqOut);
    visit(console.ioControl);
    visit(console.memory.control);
    visit(console.buttons);
    visit(console.link.lines);
    visit(console.link.directions);
    visit(console.link.sendByte);
    visit(console.link.receivedByte);
    visit(console.link.serial);
    visit(console.link.panning);
    visit(console.link.sendClocks);
    visit(console.link.errorClocks);
    visit(console.memory.cartridgeWords.slots);
    visit(console.memory.cartridgeWords.control);
    visit(console.memory.biosWords.slots);
    visit(console.memory.biosWords.control);
    visit(console.memory.workRam);
    visit(console.memory.cartridgeRam);
    visit(console.vram);
}

void Sanitize(GEAR_CONSOLE& console) {
    console.irqOut = console.irqOut != 0 ? 1 : 0;
    GearLinkSanitize(console.link);
    SegaMemoryRebuild(console.memory);
}

// Fills the rows from `row` on of one console's part of the picture.
void FillBlack(EMU_VIDEO_FRAME& video, uint32_t column, uint32_t row, uint32_t rowLength) {
    for (; row < video.height; ++row) {
        std::fill_n(video.pixels + size_t{row} * rowLength + column, kVdpPictureWidth, kBlack);
    }
}

} // namespace

CGAMEGEAR::CGAMEGEAR(uint32_t sessionKeyValue)
    : CEmuSystem(sessionKeyValue, 512, 256) {}

bool CGAMEGEAR::Init(const void* options, CGameFile* const games[2]) {
    std::memcpy(&chosen, options, sizeof chosen);
    consoleCount = chosen.gearToGear != 0 ? 2 : 1;
    auto image = TakeImage(games[0], kSegaImageLimit);
    if (!image) {
        return false;
    }
    for (GEAR_CONSOLE& console : consoles) {
        console.memory.cartridge = MakeCartridge(*image);
        console.memory.bios = {};
        console.memory.mapper = SegaMapperOf(GearRecordOf(*games[0]).board);
    }
    if (games[1] != nullptr) {
        auto second = TakeImage(games[1], kSegaImageLimit);
        if (!second) {
            return false;
        }
        if (consoleCount == 2) {
            consoles[1].memory.cartridge = MakeCartridge(std::move(*second));
            consoles[1].memory.mapper = SegaMapperOf(GearRecordOf(*games[1]).board);
        } else {
            consoles[0].memory.bios = MakeBios(std::move(*second));
        }
    }
    ConnectChips();
    Reset();
    return true;
}

void CGAMEGEAR::ConnectChips() {
    const SOUND_CHOICE choice = SoundChoiceFromSettings();
    ConnectConsole(consoles[0], 1, choice);
    ConnectConsole(consoles[1], 2, choice);
    const bool linked = consoleCount == 2;
    consoles[0].link.partner = linked ? &consoles[1].link : nullptr;
    consoles[1].link.partner = linked ? &consoles[0].link : nullptr;
    for (GEAR_CONSOLE& console : consoles) {
        console.link.japanese = chosen.model == kGearJapanese;
    }
}

void CGAMEGEAR::Reset() {
    for (GEAR_CONSOLE& console : consoles) {
        ResetConsole(console);
    }
}

void CGAMEGEAR::ReadInput() {
    for (uint32_t player = 0; player < consoleCount; ++player) {
        GEAR_CONSOLE& console = consoles[player];
        const uint32_t held = ReadButtons(sessionKey, kGearPlayerActions[player], kButtonBits);
        console.buttons = static_cast<uint8_t>(~(held & ~kStart));
        console.link.startDown = (held & kStart) != 0;
    }
}

void CGAMEGEAR::RunFrame(EMU_INPUT_STATE* /*input*/, EMU_VIDEO_FRAME* video,
                         EMU_AUDIO_FRAME* audio) {
    ReadInput();
    const uint32_t rowLength = consoleCount * kVdpPictureWidth;
    for (uint32_t i = 0; i < consoleCount; ++i) {
        VdpBeginFrame(consoles[i].vdp, video->pixels + size_t{i} * kVdpPictureWidth, rowLength);
    }
    ChipSound& first = consoles[0].sound;
    ChipSound& second = consoles[1].sound;
    if (consoleCount == 1) {
        RunConsoles();
        first.Flush();
        TakeSound(first, *audio);
    } else {
        RunConsoles();
        first.Flush();
        second.Flush();
        MixSound(first, second, kAudioFramePairs * 2, *audio,
                 [](int32_t a, int32_t b) { return (a + b) / 2; });
    }
    FinishPicture(*video);
}

void CGAMEGEAR::RunConsoles() {
    if (plainLoop) {
        RunFramePlain();
    } else {
        RunFrameFast();
    }
}

// Every chip on every clock; two consoles take turns, a Z80 clock each. A reset starts both at the
// same dot, so their frames end together. A state may have them apart; then the first console's
// frame counts.
void CGAMEGEAR::RunFramePlain() {
    GEAR_BUS buses[2] = {{consoles[0]}, {consoles[1]}};
    while (!consoles[0].vdp.frameDone) {
        for (uint32_t i = 0; i < consoleCount; ++i) {
            ConsoleTick(buses[i]);
            PsgTick(consoles[i].psg);
        }
    }
}

// The same frame, in which VDP and PSG catch up. A clock in which a VDP changes a line of its Z80
// is run tick by tick; so is the first clock, which sets the lines' levels.
void CGAMEGEAR::RunFrameFast() {
    CATCH_UP<1> chips[2] = {
        {{&consoles[0].vdp}, consoles[0].soundOwed},
        {{&consoles[1].vdp}, consoles[1].soundOwed}
    };
    GEAR_CATCH_UP_BUS buses[2] = {
        {{consoles[0]}, chips[0]},
        {{consoles[1]}, chips[1]}
    };
    const auto tickConsoles = [&] {
        for (uint32_t i = 0; i < consoleCount; ++i) {
            ConsoleTick(buses[i].bus);
            ++consoles[i].soundOwed;
        }
    };
    tickConsoles();
    while (!consoles[0].vdp.frameDone) {
        uint32_t ticks = VdpTicksToEvent(consoles[0].vdp);
        if (consoleCount == 2) {
            ticks = std::min(ticks, VdpTicksToEvent(consoles[1].vdp));
        }
        const uint32_t clocks = (ticks - 1) / kVdpTicksPerClock;
        for (GEAR_CATCH_UP_BUS& bus : buses) {
            bus.BeginSpan();
        }
        if (consoleCount == 1 && LinkIsQuiet(consoles[0].link, clocks)) {
            Z80RunOn(consoles[0].z80, buses[0], clocks);
        } else {
            RunInTurns(std::span(consoles).first(consoleCount), buses, clocks);
        }
        for (uint32_t i = 0; i < consoleCount; ++i) {
            buses[i].EndSpan(clocks);
        }
        tickConsoles();
    }
    for (GEAR_CONSOLE& console : consoles) {
        GearRunSound(console);
    }
}

void CGAMEGEAR::FinishPicture(EMU_VIDEO_FRAME& video) const {
    VdpFinishFrame(consoles[0].vdp, &video);
    if (consoleCount == 2) {
        const uint32_t rowLength = 2 * kVdpPictureWidth;
        const uint32_t heights[2] = {consoles[0].vdp.pictureHeight, consoles[1].vdp.pictureHeight};
        video.width = rowLength;
        video.height = std::max(heights[0], heights[1]);
        video.aspect =
            video.aspect * 2.0f * static_cast<float>(heights[0]) / static_cast<float>(video.height);
        video.visibleX = 0;
        video.visibleY = 0;
        video.visibleWidth = video.width;
        video.visibleHeight = video.height;
        video.visibleAspect = video.aspect;
        for (uint32_t i = 0; i < 2; ++i) {
            FillBlack(video, i * kVdpPictureWidth, heights[i], rowLength);
        }
    }
    if (chosen.fullDisplay == 0) {
        CutWindow(video);
    }
}

// Moves the windows to the start of the buffer, row by row. A row's new place is always before the
// rows that are still to be moved.
void CGAMEGEAR::CutWindow(EMU_VIDEO_FRAME& video) const {
    uint32_t* out = video.pixels;
    for (uint32_t row = 0; row < kWindowHeight; ++row) {
        for (uint32_t i = 0; i < consoleCount; ++i) {
            const size_t from = row + kWindowRow + consoles[i].vdp.border;
            std::memmove(out,
                         video.pixels + from * video.width + size_t{i} * kVdpPictureWidth +
                             kWindowColumn,
                         kWindowWidth * sizeof *out);
            out += kWindowWidth;
        }
    }
    video.width = kWindowWidth * consoleCount;
    video.height = kWindowHeight;
    video.aspect = kWindowAspect * static_cast<float>(consoleCount);
    video.visibleX = 0;
    video.visibleY = 0;
    video.visibleWidth = video.width;
    video.visibleHeight = video.height;
    video.visibleAspect = video.aspect;
}

template <typename Visit>
void CGAMEGEAR::BoardFields(Visit& visit) {
    for (GEAR_CONSOLE& console : consoles) {
        ConsoleFields(console, visit);
    }
}

StateBlob CGAMEGEAR::SaveState(uint32_t& size) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    const auto sound = {&std::as_const(consoles[0].sound), &std::as_const(consoles[1].sound)};
    size = StatePieceSize(board) + 2 * (Z80StateSize() + VdpStateSize() + PsgStateSize()) +
           SoundStateSize(sound);
    auto blob = std::make_unique_for_overwrite<uint8_t[]>(size);
    uint8_t* out = StatePieceWrite(blob.get(), board);
    for (const GEAR_CONSOLE& console : consoles) {
        out = Z80SaveState(console.z80, out);
        out = VdpSaveState(console.vdp, out);
        out = PsgSaveState(console.psg, out);
    }
    SaveSoundState(sound, out);
    return blob;
}

bool CGAMEGEAR::LoadPieces(const uint8_t* data, uint32_t size) {
    StatePieces pieces(data, size);
    if (!pieces.Take([&](const uint8_t* piece, uint32_t left) {
            return StatePieceRead(piece, left, [&](auto& visit) { BoardFields(visit); });
        })) {
        return false;
    }
    const bool loaded = std::all_of(consoles.begin(), consoles.end(), [&](GEAR_CONSOLE& console) {
        return pieces.Load(console.z80, Z80LoadState) && pieces.Load(console.vdp, VdpLoadState) &&
               pieces.Load(console.psg, PsgLoadState);
    });
    LoadSoundState({&consoles[0].sound, &consoles[1].sound}, pieces.Rest(),
                   loaded ? pieces.Left() : 0);
    return loaded;
}

// Derived values are computed after a refusal too: the pieces before the refused one are loaded.
bool CGAMEGEAR::LoadState(const uint8_t* data, uint32_t size) {
    const bool loaded = LoadPieces(data, size);
    for (GEAR_CONSOLE& console : consoles) {
        Sanitize(console);
        console.vdp.pausePressed = false; // this console has no pause button
    }
    return loaded;
}

uint8_t CGAMEGEAR::Peek(uint16_t address, uint32_t console) const {
    return SegaMemoryRead(consoles[console == 0 ? 0 : 1].memory, address);
}

std::vector<uint8_t> CGAMEGEAR::Memory(std::string_view region, uint32_t console) const {
    const GEAR_CONSOLE& owner = consoles[console == 0 ? 0 : 1];
    return SegaMemoryRegion(owner.memory, owner.vram, owner.vdp.cram, region);
}

bool CGAMEGEAR::Peek(uint32_t address, uint8_t& value) const {
    if (address > 0xFFFF) {
        return false;
    }
    value = Peek(static_cast<uint16_t>(address));
    return true;
}

std::vector<uint8_t> CGAMEGEAR::BatteryContents() const {
    return SegaBattery(consoles[0].memory);
}

bool CGAMEGEAR::SetBatteryContents(std::span<const uint8_t> bytes) {
    return SetSegaBattery(consoles[0].memory, bytes);
}

std::vector<uint8_t> CGAMEGEAR::Dump(std::string_view region) const {
    return Memory(region);
}

std::span<const std::string_view> CGAMEGEAR::Regions() const {
    return kGearRegions;
}
