// The line of the PPU at once: tile after tile with their pixels, the eight sprites of the next line, or nothing at
// all. The dots that this leaves, around a register access and at the end of a line, run one by one.
#include "nes/ppu_run.h"

#include "nes/ppu_pixels.h"
#include "nes/ppu_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kGroup = 8; // dots that fetch one tile or sprite
constexpr uint32_t kLastOfRow = 248;
constexpr uint32_t kSprites = 256;
constexpr uint32_t kAhead = 320; // the first two tiles of the next line
constexpr uint32_t kAheadEnd = 336;
constexpr uint32_t kAddressesOfPart = 2; // a group has two in nametables, then two of patterns

// The addresses of groups whose patterns all have bit 12 as in `pattern`.
void WatchGroups(const PPU& ppu, uint32_t pattern, uint32_t groups) {
    if ((pattern & ppu_bus::kSecondPatternTable) == 0) {
        ppu_bus::Watch(ppu, ppu_bus::kNametables, 2 * kAddressesOfPart * groups);
        return;
    }
    for (uint32_t i = 0; i < groups; ++i) {
        ppu_bus::Watch(ppu, ppu_bus::kNametables, kAddressesOfPart);
        ppu_bus::Watch(ppu, pattern, kAddressesOfPart);
    }
}

// What changes in the chip from tile to tile.
class Tiles {
public:
    explicit Tiles(PPU& chip)
        : ppu(chip)
        , pages(*chip.pages)
        , address(chip.vramAddress)
        , table(ppu_tick::PatternTable(chip)) {
        TakeNametable();
    }

    // Fetches a tile and moves to the next. Returns its eight pixels. The last of a row moves to the next row; no tile
    // follows then.
    uint32_t Fetch(bool isLastOfRow) {
        tile = nametable[address & (ppu_address::kCoarseX | ppu_address::kCoarseY)];
        const uint8_t byte = nametable[NesPpuPlace(ppu_tick::AttributeAddress(address))];
        if (isLastOfRow) {
            address = ppu_tick::NextRow(address);
        }
        attribute = ppu_tick::AttributeBits(address, byte);
        address = ppu_tick::NextColumn(address);
        if ((address & ppu_address::kCoarseX) == 0) {
            TakeNametable();
        }
        const uint32_t pattern = ppu_tick::PatternAddress(table, tile, address);
        low = Read(pattern);
        return ppu_tick::TilePixels(low, Read(pattern + ppu_bus::kPlaneBytes), attribute);
    }

    // Leaves the chip as after the last tile.
    void Store() const {
        ppu.vramAddress = static_cast<uint16_t>(address);
        ppu.tile = static_cast<uint8_t>(tile);
        ppu.attribute = static_cast<uint8_t>(attribute);
        ppu.lowPlane = low;
        ppu.fetchAddress = static_cast<uint16_t>(ppu_tick::PatternAddress(table, tile, address) +
                                                 ppu_bus::kPlaneBytes);
    }

private:
    [[nodiscard]] uint8_t Read(uint32_t pattern) const {
        return NesReadPpuPage(pages, static_cast<uint16_t>(pattern));
    }

    // No board switches nametables by what the PPU fetches, so that the page stays to the end of a row.
    void TakeNametable() {
        nametable = pages.ppu[NesPpuPageOf(ppu_tick::TileAddress(address))].data;
    }

    PPU& ppu;
    const NES_PAGES& pages;
    uint32_t address; // as PPU::vramAddress
    const uint32_t table;
    uint32_t tile = 0;
    uint32_t attribute = 0;
    uint8_t low = 0;
    const uint8_t* nametable = nullptr;
};

// Each tile completes the sixteen pixels of which the first eight have just been on the screen. The tile before has
// drawn all before `dot`.
void RunTiles(PPU& ppu, uint32_t dot, uint32_t end) {
    WatchGroups(ppu, ppu_tick::PatternTable(ppu), (end - dot) / kGroup);
    Tiles tiles(ppu);
    uint64_t background = ppu.background;
    if (ppu.visible && dot < kSprites) {
        for (; dot < end; dot += kGroup) {
            ppu_pixels::PutEight(ppu, dot, ppu_pixels::FirstEight(ppu, background));
            background = ppu_tick::WithNextEight(background, tiles.Fetch(dot == kLastOfRow));
        }
        ppu.drawnDots = end;
    } else if (dot < kSprites) {
        for (; dot < end; dot += kGroup) {
            background = ppu_tick::WithSecondEight(background, tiles.Fetch(dot == kLastOfRow));
        }
    } else {
        for (; dot < end; dot += kGroup) {
            background = ppu_tick::WithNextEight(background, tiles.Fetch(false));
        }
    }
    ppu.background = background;
    tiles.Store();
}

void RunSprites(PPU& ppu, uint32_t dot, uint32_t end) {
    if (dot == kSprites) {
        ppu_tick::CopyX(ppu);
    }
    for (; dot < end; dot += kGroup) {
        const uint32_t slot = ppu_tick::SpriteSlot(dot);
        const uint16_t low = PpuSpriteAddress(ppu, slot);
        WatchGroups(ppu, low, 1);
        ppu.lowPlane = NesReadPpuPage(*ppu.pages, low);
        ppu.fetchAddress = static_cast<uint16_t>(low + ppu_bus::kPlaneBytes);
        PpuStoreSprite(ppu, slot, NesReadPpuPage(*ppu.pages, ppu.fetchAddress));
    }
}

// Runs dots from `dot` to `end` or earlier that are whole groups. Returns their number.
uint32_t RunGroups(PPU& ppu, uint32_t dot, uint32_t end) {
    const bool areSprites = dot >= kSprites && dot < kAhead;
    const uint32_t partEnd = dot < kSprites ? kSprites : areSprites ? kAhead : kAheadEnd;
    end = std::min(end, partEnd) / kGroup * kGroup;
    if (dot % kGroup != 0 || end <= dot) {
        return 0;
    }
    if (areSprites) {
        RunSprites(ppu, dot, end);
    } else {
        RunTiles(ppu, dot, end);
    }
    return end - dot;
}

// The same from `dot` to `end` or earlier, with no event after the first of them. Without rendering nothing is
// fetched and the picture is owed: the board sees the same address on every dot.
uint32_t RunLine(PPU& ppu, uint32_t dot, uint32_t end) {
    if (ppu.ioState != kPpuNoAccess) {
        return 0;
    }
    if (ppu.rendering) {
        return RunGroups(ppu, dot, end);
    }
    ppu_bus::Watch(ppu, ppu.vramAddress & ppu_bus::kMask, end - dot);
    return end - dot;
}

} // namespace

void PpuRun(PPU& ppu, uint32_t count) {
    while (count != 0) {
        uint32_t dot = ppu.dot + 1;
        if (dot == ppu.eventDot) {
            dot = PpuEvent(ppu, dot);
        }
        uint32_t done = RunLine(ppu, dot, std::min(dot + count, ppu.eventDot));
        if (done != 0) {
            ppu.dot = dot + done - 1;
        } else {
            PpuDot(ppu, dot);
            done = 1;
        }
        count -= done;
    }
}

// Only addresses of patterns can have the bit; between two tiles or sprites are two others. Sprites of eight lines are
// all in one table, so that of a line's sprites only the first can be a rise. Each of sixteen lines chooses its table.
// Two without the bit must be between two rises then, so that there are three at most.
// Of the tiles only the first after others without the bit can be a rise. It comes after the sprites, once a line, but
// the one from which on this is counted may be anywhere.
uint32_t PpuDotsToRise(const PPU& ppu, uint32_t rises) {
    constexpr uint32_t kNever = 1 << 20; // more than a frame
    constexpr uint32_t kBit = ppu_bus::kSecondPatternTable;
    if (!ppu.rendering) {
        // The address that stays on the bus, and that of an access in progress.
        const bool hasBit = ((uint32_t{ppu.vramAddress} | ppu.ioAddress) & kBit) != 0;
        return hasBit && rises == 1 ? 1 : kNever;
    }
    if (ppu_tick::PatternTable(ppu) != 0 && --rises == 0) {
        return 1;
    }
    const uint32_t risesOfLine = (ppu.control & kPpuCtrlTallSprites) != 0 ? 3 : 1;
    const uint32_t linesBefore = (rises - 1) / risesOfLine;
    // The line in which it may be is this one, or the next if this one has no more.
    const bool isPast = ppu.dot + 1 >= kAhead;
    const uint32_t lines = linesBefore + (isPast ? 1 : 0);
    if (lines == 0) {
        return ppu.dot < kSprites ? kSprites - ppu.dot : 1;
    }
    const uint32_t toNextLine = ppu.lineLength - ppu.dot;
    // After the picture the address that stays on the bus may be one.
    const auto linesToIdle = static_cast<uint32_t>(kPpuIdleLine - 1 - ppu.line);
    return toNextLine + std::min((lines - 1) * kPpuLineDots + kSprites, linesToIdle * kPpuLineDots);
}
