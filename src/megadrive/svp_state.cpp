// The signal processor's piece of a state.
#include "machine/state_piece.h"
#include "megadrive/svp_private.h"

#include <memory>

namespace {

constexpr size_t kSpareWords = 30;

template <typename Visit>
void Fields(MD_SVP& svp, Visit& visit) {
    std::array<uint32_t, kSpareWords> spare{};
    visit(svp.budget);
    visit(svp.emuStatus);
    visit(svp.pc);
    visit(svp.gr);
    for (size_t i = 0; i < kSvpStackDepth; ++i) {
        visit(svp.stack[i]);
        visit(svp.pmacRead[i]);
        visit(svp.pmacWrite[i]);
    }
    visit(svp.ram);
    visit(spare);
    visit(svp.r);
    visit(svp.iramRom);
    visit(svp.dram);
}

void Sanitize(MD_SVP& svp) {
    svp.emuStatus &= kSvpWaits | kSvpPmcSet | kSvpPmcHasAddress;
    svp.pc %= kSvpMemoryWords;
    for (uint32_t i = 0; i < svp.gr.size(); ++i) {
        if (i != kSvpA && i != kSvpP && i != kSvpPmc) {
            svp.gr[i] &= 0xFFFF0000;
        }
    }
    svp.gr[kSvpBlind] = 0xFFFF0000;
    svp.gr[kSvpStack] = ((svp.gr[kSvpStack] >> 16) % kSvpStackDepth) << 16;
    svp.gr[kSvpPc] = svp.pc << 16;
}

} // namespace

uint32_t SvpStateSize() {
    static const uint32_t kSize = [] {
        const auto svp = std::make_unique<MD_SVP>();
        return StatePieceSize([&](auto& visit) { Fields(*svp, visit); });
    }();
    return kSize;
}

StateOut SvpSaveState(const MD_SVP& svp, StateOut out) {
    // Saving and loading share this list of fields. Saving does not change them.
    auto& fields = const_cast<MD_SVP&>(svp);
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, visit); });
}

uint32_t SvpLoadState(MD_SVP& svp, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { Fields(svp, visit); });
    if (used != 0) {
        Sanitize(svp);
    }
    return used;
}
