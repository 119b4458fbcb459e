#include "megadrive/mega_drive.h"

#include "machine/machine_image.h"
#include "machine/sound_frame.h"
#include "machine/state_piece.h"
#include "machine/state_pieces.h"
#include "megadrive/md_bus.h"
#include "megadrive/md_z80_ahead.h"
#include "settings/bindings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr uint32_t kMostWidth = 320;
constexpr uint32_t kMostHeight = 464; // 224 lines with their border, doubled
constexpr uint32_t kLargestImage = 16 * 1024 * 1024;
constexpr size_t kSmallestImage = 512;
constexpr size_t kRegionAt = 0x1F0;
constexpr size_t kRegionLength = 3;
constexpr size_t kDevicesAt = 0x190;
constexpr size_t kDevicesLength = 16;
constexpr uint32_t kMakerAt = 0x100;
constexpr uint32_t kMakerLength = 5;
constexpr uint32_t kBlack = 0xFF000000;

// Bits of a header's region.
constexpr uint32_t kRegionJapan = 1;
constexpr uint32_t kRegionJapan50 = 2;
constexpr uint32_t kRegionOverseas60 = 4;
constexpr uint32_t kRegionOverseas50 = 8;

constexpr uint8_t kVersionOverseas = 0x80;
constexpr uint8_t kVersionJapan = 0x00;
constexpr uint8_t kVersion50Hz = 0xC0;

// In the order of the actions, which is not MD_PAD's.
constexpr uint8_t MD_PAD::*kButtons[] = {
    &MD_PAD::up, &MD_PAD::down, &MD_PAD::left, &MD_PAD::right, &MD_PAD::start, &MD_PAD::mode,
    &MD_PAD::a,  &MD_PAD::b,    &MD_PAD::c,    &MD_PAD::x,     &MD_PAD::y,     &MD_PAD::z,
};
static_assert(std::size(kButtons) == std::size(kMdPlayerActions[0]));

char Upper(uint8_t byte) {
    return static_cast<char>(std::toupper(byte));
}

// One of a header's three region characters.
uint32_t RegionBits(uint8_t byte) {
    const char letter = Upper(byte);
    switch (letter) {
    case 'U': return kRegionOverseas60;
    case 'J':
    case 'K': return kRegionJapan;
    case 'E': return kRegionOverseas50;
    default: break;
    }
    if (byte < 16) {
        return byte;
    }
    if (letter >= '0' && letter <= '9') {
        return static_cast<uint32_t>(letter - '0');
    }
    if (letter >= 'A' && letter <= 'F') {
        return static_cast<uint32_t>(letter - 'A' + 10);
    }
    return 0;
}

// Old headers spell out one region; later ones have up to three letters, or one hexadecimal digit.
uint32_t HeaderRegions(std::span<const uint8_t> text) {
    std::string name;
    for (const uint8_t byte : text) {
        name += Upper(byte);
    }
    if (name == "EUR") {
        return kRegionOverseas50;
    }
    if (name == "USA") {
        return kRegionOverseas60;
    }
    if (name == "JAP") {
        return kRegionJapan;
    }
    uint32_t regions = 0;
    for (const uint8_t byte : text) {
        regions |= RegionBits(byte);
    }
    return regions;
}

uint8_t VersionFor(uint32_t regions) {
    if ((regions & kRegionOverseas60) != 0) {
        return kVersionOverseas;
    }
    if ((regions & kRegionJapan) != 0) {
        return kVersionJapan;
    }
    if ((regions & kRegionOverseas50) != 0) {
        return kVersion50Hz;
    }
    // No Japanese console ran at 50 Hz; its bit selects the 60 Hz one.
    return (regions & kRegionJapan50) != 0 ? kVersionJapan : kVersionOverseas;
}

// A gain from the settings. NaN and infinity are silence.
void BoundGain(float& gain) {
    constexpr float kLoudest = 16.0F;
    gain = std::isfinite(gain) ? std::clamp(gain, -kLoudest, kLoudest) : 0.0F;
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%06X", static_cast<unsigned>(value & kMdAddressMask));
    return text;
}

// The console's own check takes " SEGA" as well as "SEGA".
bool HasHeader(const MD_CARTRIDGE& cartridge) {
    std::string maker;
    for (uint32_t i = 0; i < kMakerLength; ++i) {
        maker += static_cast<char>(MdCartRomByte(cartridge, kMakerAt + i));
    }
    return maker.find("SEGA") != std::string::npos;
}

// Without a header the image may be no Mega Drive program at all, or have its bytes in another order.
std::string AddressErrorText(const M68K_STATE& cpu, const MD_CARTRIDGE& cartridge) {
    return "the program has gone wrong: address error at " + Hex(cpu.aerrAddress) +
           ", program counter " + Hex(cpu.prevPc) +
           (HasHeader(cartridge) ? "" : "; the image has no Mega Drive header");
}

// The words as bytes, high byte first.
template <typename Words>
std::vector<uint8_t> BigEndian(const Words& words) {
    std::vector<uint8_t> bytes;
    bytes.reserve(words.size() * 2);
    for (const uint16_t word : words) {
        bytes.push_back(static_cast<uint8_t>(word >> 8));
        bytes.push_back(static_cast<uint8_t>(word));
    }
    return bytes;
}

} // namespace

void MdBuildTables() {
    M68kBuildTables();
}

CMegaDrive::CMegaDrive(uint32_t sessionKeyValue)
    : CEmuSystem(sessionKeyValue, kMostWidth, kMostHeight) {}

void CMegaDrive::ChooseConsole(std::span<const uint8_t> image) {
    md.io.version = VersionFor(HeaderRegions(image.subspan(kRegionAt, kRegionLength)));
    switch (chosen.console) {
    case kMdConsoleGenesis: md.io.version = kVersionOverseas; break;
    case kMdConsoleJapan: md.io.version = kVersionJapan; break;
    case kMdConsolePal: md.io.version = kVersion50Hz; break;
    default: break;
    }
    md.is50Hz = md.io.version == kVersion50Hz;
    md.masterClock = md.is50Hz ? kMdClock50 : kMdClock60;
}

void CMegaDrive::ChooseDevices(std::span<const uint8_t> image) {
    const auto listed = image.subspan(kDevicesAt, kDevicesLength);
    const bool knowsSixButtons = std::find(listed.begin(), listed.end(), '6') != listed.end();
    for (size_t port = 0; port < kMdPads; ++port) {
        if (chosen.devices[port] == kMdDeviceAutomatic) {
            chosen.devices[port] = knowsSixButtons ? kMdDevice6Button : kMdDevice3Button;
        }
        md.io.devices[port] = chosen.devices[port];
    }
}

bool CMegaDrive::Init(const void* options, CGameFile* const games[2]) {
    const auto image = TakeImage(games[0], kLargestImage);
    if (!image) {
        return false;
    }
    if (image->size() < kSmallestImage) {
        EmuSetLastError("Invalid ROM file, less than 512 bytes");
        return false;
    }
    std::memcpy(&chosen, options, sizeof chosen);
    BoundGain(chosen.ymVolume);
    BoundGain(chosen.psgVolume);
    ChooseConsole(*image);
    ChooseDevices(*image);
    MdCartSetup(md.cartridge, *image);
    MdConnect(md);
    Reset();
    return true;
}

void CMegaDrive::Reset() {
    ended = false;
    MdReset(md);
}

void CMegaDrive::ReadPads() {
    for (size_t i = 0; i < kMdPads; ++i) {
        md.io.pads[i] = {};
        for (size_t button = 0; button < std::size(kButtons); ++button) {
            md.io.pads[i].*kButtons[button] =
                InputIsDown(sessionKey, kMdPlayerActions[i][button]) ? 1 : 0;
        }
    }
}

void CMegaDrive::RunProgram() {
    try {
        MdRunFrame(md);
    } catch (const M68K_ADDRESS_ERROR&) {
        MdCatchUpZ80(md);
        MdCatchUpVdp(md);
        MdCatchUpFm(md);
        MdCatchUpPsg(md);
        MdSanitize(md);
        End(AddressErrorText(md.cpu, md.cartridge));
    }
}

void CMegaDrive::RunFrame([[maybe_unused]] EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
                          EMU_AUDIO_FRAME* audio) {
    ReadPads();
    MdVdpBeginFrame(md.vdp, video->pixels);
    if (!ended) {
        RunProgram();
    }
    // The host's buffer may be gone before the next frame, and a state loaded until then may be mid-picture.
    MdVdpFinishFrame(md.vdp, video);
    md.vdp.pixels = nullptr;
    md.vdp.rowOut = nullptr;
    if (ended) {
        std::fill_n(video->pixels, size_t{video->width} * video->height, kBlack);
    }
    MixFrame(*audio);
}

void CMegaDrive::MixFrame(EMU_AUDIO_FRAME& audio) {
    md.psgSound.Flush();
    md.fmSound.Flush();
    const uint32_t psg = ReadyValues(md.psgSound);
    const uint32_t fm = ReadyValues(md.fmSound);
    if (fm < psg) {
        md.fmSound.FlushUntilReady(psg, [this] { Ym2612Run(md.fm, kYm2612ClocksPerSample); });
    } else if (psg < fm) {
        md.psgSound.FlushUntilReady(fm, [this] { PsgRun(md.psg, kPsgClocksPerPair); });
    }
    const auto mix = [this](int32_t psgValue, int32_t fmValue) {
        const float sum = static_cast<float>(psgValue) * chosen.psgVolume +
                          static_cast<float>(fmValue) * chosen.ymVolume;
        return static_cast<int32_t>(std::clamp(sum, -32768.0F, 32767.0F));
    };
    MixSound(md.psgSound, md.fmSound, std::max(psg, fm), audio, mix);
}

template <typename Visit>
void CMegaDrive::BoardFields(Visit& visit) {
    visit(md.m68kBusCycles);
    visit(md.z80Clock);
    visit(md.z80Bank);
    visit(md.io.padTh);
    visit(md.io.padLastWrite);
    visit(md.io.padEdges);
    visit(md.workRam);
    visit(md.z80Ram);
    visit(md.io.ioPorts);
}

uint32_t CMegaDrive::StateSize() {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    return StatePieceSize(board) + M68kStateSize() + Z80StateSize() + MdVdpStateSize() +
           PsgStateSize() + Ym2612StateSize() + MdCartStateSize(md.cartridge) +
           SoundStateSize({&md.psgSound, &md.fmSound});
}

void CMegaDrive::WriteState(StateOut out) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    out = StatePieceWrite(out, board);
    out = M68kSave(md.cpu, out);
    out = Z80SaveState(md.z80, out);
    out = MdVdpSaveState(md.vdp, out);
    out = PsgSaveState(md.psg, out);
    out = Ym2612SaveState(md.fm, out);
    out = MdCartSaveState(md.cartridge, out);
    SaveSoundState({&md.psgSound, &md.fmSound}, out);
}

bool CMegaDrive::LoadPieces(const uint8_t* data, uint32_t size) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    StatePieces pieces(data, size);
    const bool loaded = pieces.Take([&](const uint8_t* piece, uint32_t left) {
        return StatePieceRead(piece, left, board);
    }) && pieces.Load(md.cpu, M68kLoad) &&
                        pieces.Load(md.z80, Z80LoadState) && pieces.Load(md.vdp, MdVdpLoadState) &&
                        pieces.Load(md.psg, PsgLoadState) && pieces.Load(md.fm, Ym2612LoadState) &&
                        pieces.Load(md.cartridge, MdCartLoadState);
    LoadSoundState({&md.psgSound, &md.fmSound}, pieces.Rest(), loaded ? pieces.Left() : 0);
    return loaded;
}

// Also after a refused piece: the pieces before it have been loaded.
bool CMegaDrive::LoadState(const uint8_t* data, uint32_t size) {
    const bool loaded = LoadPieces(data, size);
    MdSanitize(md);
    ended = false;
    return loaded;
}

bool CMegaDrive::Peek(uint32_t address, uint8_t& value) const {
    if (address > kMdAddressMask) {
        return false;
    }
    value = MdPeekByte(md, address);
    return true;
}

std::vector<uint8_t> CMegaDrive::Dump(std::string_view region) const {
    if (region == "ram") {
        return BigEndian(md.workRam);
    }
    if (region == "z80ram") {
        return {md.z80Ram.begin(), md.z80Ram.end()};
    }
    if (region == "sram") {
        return BatteryContents();
    }
    if (region == "palette") {
        return BigEndian(md.vdp.cram);
    }
    if (region == "vsram") {
        return BigEndian(md.vdp.vsram);
    }
    if (region == "vram") {
        std::vector<uint8_t> bytes(md.vdp.vram.begin(), md.vdp.vram.end());
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            std::swap(bytes[i], bytes[i + 1]);
        }
        return bytes;
    }
    return {};
}

std::span<const std::string_view> CMegaDrive::Regions() const {
    const bool hasMemory = !MdCartSaveData(md.cartridge).empty();
    return std::span(kMdRegions).first(std::size(kMdRegions) - (hasMemory ? 0 : 1));
}

// Battery RAM is held as words with the low byte first.
void CMegaDrive::SwapBattery(std::span<uint8_t> bytes) const {
    if (md.cartridge.cartKind == kMdCartSram) {
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            std::swap(bytes[i], bytes[i + 1]);
        }
    }
}

std::vector<uint8_t> CMegaDrive::BatteryContents() const {
    const auto held = MdCartSaveData(md.cartridge);
    std::vector<uint8_t> bytes(held.begin(), held.end());
    SwapBattery(bytes);
    return bytes;
}

bool CMegaDrive::SetBatteryContents(std::span<const uint8_t> bytes) {
    const auto held = MdCartSaveData(md.cartridge);
    if (held.size() != bytes.size()) {
        return false;
    }
    std::copy(bytes.begin(), bytes.end(), held.begin());
    SwapBattery(held);
    return true;
}
