// The H step and the tick of the Mega Drive's VDP, for the machine's loop to inline.
//
// A step, in this order: sets the backdrop of its dot if the line is blanked; runs the access slot and then
// the event of the timetable; increments `hCount`; puts out the dot of the step that has just run. That the
// dot comes last, so that it shows what its own step wrote, is settled here.
#pragma once

#include "megadrive/md_vdp.h"
#include "megadrive/md_vdp_registers.h"
#include "megadrive/md_vdp_timetable.h"

#include <cstdint>

// Runs the access slot of `action`, then its event. `blanked` is the value at the beginning of the step.
void MdVdpRunAction(MD_VDP& vdp, uint32_t action, bool blanked);
// Puts out the pixel at `outX` in shadow mode.
void MdVdpPutShadowedDot(MD_VDP& vdp);

namespace md_vdp_tick {

// Whether the FIFO or a DMA would use a slot.
[[nodiscard]] inline bool HasSlotWork(const MD_VDP& vdp) {
    return vdp.fifoCount != 0 ||
           (vdp.dmaState != kMdVdpNoDma && vdp.dmaState != kMdVdpDmaFillArmed);
}

[[nodiscard]] inline uint16_t BackdropColour(const MD_VDP& vdp) {
    return vdp.cram[vdp.regs[kMdVdpRegBackdrop] & kMdVdpReg7Colour];
}

inline void SetBackdropDot(MD_VDP& vdp, uint32_t x, bool h40) {
    vdp.backdropX = x;
    vdp.backdropLine[x] = (vdp.cramDot & kMdVdpValid) != 0
                              ? static_cast<uint16_t>(vdp.cramDot & kMdVdpColourBits)
                              : BackdropColour(vdp);
    vdp.cramDot = 0;
    vdp.lineFlags[x] = 1;
    if (h40) {
        vdp.layerCode[x] = kMdVdpBackdrop;
    }
}

inline constexpr uint32_t kNormal = 512; // offset of the second of the three colour tables

inline void PutDot(MD_VDP& vdp) {
    const uint32_t x = vdp.outX;
    if (vdp.spriteDots[x] > 1) [[unlikely]] {
        vdp.status |= kMdVdpCollision;
    }
    if (vdp.shadowMode == 0) [[likely]] {
        const uint32_t colour = vdp.layerBuffers[vdp.layerCode[x]][x];
        vdp.rowOut[x] = vdp.colourTables[kNormal + colour];
    } else {
        MdVdpPutShadowedDot(vdp);
    }
    vdp.outX = x + 1;
}

template <bool H40>
inline void Step(MD_VDP& vdp) {
    constexpr uint32_t kFirst = H40 ? kMdVdpFirstDotH40 : kMdVdpFirstDotH32;
    constexpr uint32_t kDots = H40 ? kMdVdpDotsH40 : kMdVdpDotsH32;
    const uint32_t step = vdp.hCount;
    const uint32_t x = step - kFirst;
    const bool blanked = vdp.blanked != 0;
    if (blanked && x < kDots) {
        SetBackdropDot(vdp, x, H40);
    }
    const uint32_t action = H40 ? kMdVdpActionsH40[step] : kMdVdpActionsH32[step];
    vdp.hCount = step + 1; // the wrap event sets it to 0
    if ((action & kMdVdpEventBits) != 0 || (action != 0 && HasSlotWork(vdp))) {
        MdVdpRunAction(vdp, action, blanked);
    }
    if (x < kDots && vdp.rowOut != nullptr && vdp.outX < kDots) {
        PutDot(vdp);
    }
}

} // namespace md_vdp_tick

inline void MdVdpStepH32(MD_VDP& vdp) {
    md_vdp_tick::Step<false>(vdp);
}

inline void MdVdpStepH40(MD_VDP& vdp) {
    md_vdp_tick::Step<true>(vdp);
}

inline void MdVdpTick(MD_VDP& vdp) {
    vdp.stepDebt += 7;
    if (vdp.stepDebt > 0) {
        vdp.stepDebt -= vdp.stepTable[vdp.hCount];
        if (vdp.h40 != 0) {
            MdVdpStepH40(vdp);
        } else {
            MdVdpStepH32(vdp);
        }
    }
}
