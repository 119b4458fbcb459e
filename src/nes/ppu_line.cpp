// The fetches of a line at once, while no register access is in progress: tile after tile with their pixels, and
// the eight sprites of the next line.
#include "nes/ppu_line.h"

#include "nes/ppu_pixels.h"
#include "nes/ppu_tick.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint32_t kGroup = 8;           // dots that fetch one tile or sprite
constexpr uint32_t kAddressesOfPart = 2; // a group has two in nametables, then two of patterns

// What a page without data reads as.
constexpr std::array<uint8_t, kNesPpuPageBytes> kUnreadablePage = [] {
    std::array<uint8_t, kNesPpuPageBytes> page{};
    page.fill(kNesUnreadable);
    return page;
}();

[[nodiscard]] const uint8_t* PageAt(const NES_PAGES& pages, uint32_t address) {
    const NES_PPU_PAGE& page = pages.ppu[NesPpuPageOf(static_cast<uint16_t>(address))];
    return page.data != nullptr ? page.data : kUnreadablePage.data();
}

// The addresses of groups whose patterns all have bit 12 as in `pattern`.
void WatchGroups(const PPU& ppu, uint32_t pattern, uint32_t groups) {
    const NES_PAGES& pages = *ppu.pages;
    if (pages.ppuUpperHook == nullptr) {
        return;
    }
    if ((pattern & ppu_bus::kSecondPatternTable) == 0) {
        pages.ppuUpperHook(pages.board, ppu_bus::kNametables, 2 * kAddressesOfPart * groups);
        return;
    }
    for (uint32_t i = 0; i < groups; ++i) {
        pages.ppuUpperHook(pages.board, ppu_bus::kNametables, kAddressesOfPart);
        pages.ppuUpperHook(pages.board, static_cast<uint16_t>(pattern), kAddressesOfPart);
    }
}

// A row of background tiles. It may change the nametable once, after its last column.
class TileRow {
public:
    explicit TileRow(const PPU& ppu)
        : address(ppu.vramAddress)
        , fineY((ppu.vramAddress & ppu_address::kFineY) >> ppu_address::kFineYShift)
        , pages(*ppu.pages) {
        uint32_t start = PatternTable(ppu);
        for (const uint8_t*& page : patterns) {
            page = PageAt(pages, start);
            start += uint32_t{kNesPpuPageBytes};
        }
        TakeNametable();
    }

    [[nodiscard]] static uint32_t PatternTable(const PPU& ppu) {
        return (ppu.control & kPpuCtrlBackgroundTable) != 0 ? ppu_bus::kSecondPatternTable : 0;
    }

    // Fetches a tile and moves to the next. Returns its eight pixels of four bits.
    uint32_t Fetch() {
        using namespace ppu_address;
        tile = nametable[address & (kCoarseX | kCoarseY)];
        const uint32_t row = (address & kCoarseY) >> kCoarseYShift >> 2;
        const uint32_t column = (address & kCoarseX) >> 2;
        const uint32_t quarter = (address & kQuarterY) >> 4 | (address & kQuarterX);
        attribute = nametable[ppu_bus::kAttributes | row << 3 | column] >> quarter & 3U;
        const uint32_t place = (tile * ppu_bus::kTileBytes | fineY) & (kNesPpuPageBytes - 1);
        const uint8_t* const pattern = patterns[tile * ppu_bus::kTileBytes / kNesPpuPageBytes];
        low = pattern[place];
        if ((address & kCoarseX) == kCoarseX) {
            address ^= ppu_tick::kHorizontalBits;
            TakeNametable();
        } else {
            ++address;
        }
        constexpr uint32_t kInEveryPixel = 0x44444444; // bits 2 and 3 of each four
        return kPpuSpread[low] | kPpuSpread[pattern[place + ppu_bus::kPlaneBytes]] << 1 |
               attribute * kInEveryPixel;
    }

    // Leaves the chip as after the last tile.
    void Store(PPU& ppu) const {
        ppu.vramAddress = static_cast<uint16_t>(address);
        ppu.tile = static_cast<uint8_t>(tile);
        ppu.attribute = static_cast<uint8_t>(attribute);
        ppu.lowPlane = low;
        ppu.fetchAddress =
            static_cast<uint16_t>(ppu_tick::PatternAddress(ppu) + ppu_bus::kPlaneBytes);
    }

private:
    void TakeNametable() {
        nametable = PageAt(pages, ppu_bus::kNametables | (address & ppu_address::kNametables));
    }

    uint32_t address; // as PPU::vramAddress
    uint32_t fineY;
    uint32_t tile = 0;
    uint32_t attribute = 0;
    uint8_t low = 0;
    const uint8_t* nametable = nullptr;
    std::array<const uint8_t*, 4> patterns{}; // the pages of the table
    const NES_PAGES& pages;
};

} // namespace

bool PpuCanRunLine(const PPU& ppu) {
    const NES_PAGES& pages = *ppu.pages;
    return (pages.ppuAddressHook == NesIgnoreAddress || pages.ppuUpperHook != nullptr) &&
           std::ranges::none_of(pages.ppu,
                                [](const NES_PPU_PAGE& page) { return page.read != nullptr; });
}

void PpuRunTiles(PPU& ppu, uint32_t dot, uint32_t groups) {
    WatchGroups(ppu, TileRow::PatternTable(ppu), groups);
    TileRow row(ppu);
    if (ppu.visible) {
        PpuDrawTo(ppu, dot);
        uint64_t background = ppu.background;
        for (const uint32_t end = dot + groups * kGroup; dot < end; dot += kGroup) {
            ppu_pixels::PutEight(ppu, dot, ppu_pixels::FirstEight(ppu, background));
            background = background << 32 | row.Fetch();
        }
        ppu.background = background;
        ppu.drawnDots = dot;
    } else {
        constexpr uint64_t kFirstEight = 0xFFFFFFFF00000000;
        uint32_t pixels = 0;
        for (uint32_t i = 0; i < groups; ++i) {
            pixels = row.Fetch();
        }
        ppu.background = (ppu.background & kFirstEight) | pixels;
    }
    row.Store(ppu);
}

void PpuRunSprites(PPU& ppu, uint32_t firstSlot, uint32_t slots) {
    const NES_PAGES& pages = *ppu.pages;
    for (uint32_t slot = firstSlot; slot < firstSlot + slots; ++slot) {
        const uint32_t low = PpuSpriteAddress(ppu, slot);
        WatchGroups(ppu, low, 1);
        const uint8_t* const page = PageAt(pages, low);
        ppu.lowPlane = page[NesPpuPlace(static_cast<uint16_t>(low))];
        ppu.fetchAddress = static_cast<uint16_t>(low + ppu_bus::kPlaneBytes);
        if (slot < ppu.spriteCount) {
            PpuStoreSprite(ppu, slot, page[NesPpuPlace(ppu.fetchAddress)]);
        }
    }
}
