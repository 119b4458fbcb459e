#include "machine/state_piece.h"
#include "megadrive/m68000.h"
#include "megadrive/m68000_private.h"

namespace {

// Names the fields in the order of the piece, to read or write them.
auto Fields(M68K_STATE& cpu) {
    return [&cpu](auto& visit) {
        for (uint32_t* field : {&cpu.cpuType,
                                &cpu.prevPc,
                                &cpu.pc,
                                &cpu.vbr,
                                &cpu.sfc,
                                &cpu.dfc,
                                &cpu.cacr,
                                &cpu.caar,
                                &cpu.ir,
                                &cpu.fpiar,
                                &cpu.fpsr,
                                &cpu.fpcr,
                                &cpu.t1,
                                &cpu.t0,
                                &cpu.s,
                                &cpu.m,
                                &cpu.x,
                                &cpu.n,
                                &cpu.notZ,
                                &cpu.v,
                                &cpu.c,
                                &cpu.intMask,
                                &cpu.intLevel,
                                &cpu.stopped,
                                &cpu.prefetchAddr,
                                &cpu.prefetchData,
                                &cpu.srMask,
                                &cpu.instrMode,
                                &cpu.runMode}) {
            visit(*field);
        }
        for (int32_t* field :
             {&cpu.cycBranchByte, &cpu.cycBranchWord, &cpu.cycLoopRound, &cpu.cycLoopEnd,
              &cpu.cycSetTrue, &cpu.cycMovemWord, &cpu.cycMovemLong, &cpu.cycShift, &cpu.cycReset,
              &cpu.intCycles, &cpu.cyclesLeft}) {
            visit(*field);
        }
        for (uint32_t* field : {&cpu.spare0, &cpu.spare1, &cpu.aerrAddress, &cpu.aerrMode,
                                &cpu.aerrCode, &cpu.irqLines, &cpu.nmiPending, &cpu.spare2}) {
            visit(*field);
        }
        visit(cpu.fp);
        visit(cpu.stackSlots);
        visit(cpu.regs);
    };
}

// Brings a loaded record into the ranges that the processor itself keeps to.
void Sanitize(M68K_STATE& cpu) {
    cpu.ir &= kM68kOpcodes - 1;
    cpu.prefetchData &= 0xFFFF;
    cpu.t1 &= kM68kTrace1;
    cpu.t0 &= kM68kTrace0;
    cpu.s &= kM68kSupervisor;
    cpu.m &= kM68kMaster;
    cpu.intMask &= kM68kIntMask;
    cpu.intLevel &= kM68kIntMask;
    cpu.irqLines &= 0xFF;
}

} // namespace

uint32_t M68kStateSize() {
    M68K_STATE cpu;
    return StatePieceSize(Fields(cpu));
}

StateOut M68kSave(const M68K_STATE& cpu, StateOut out) {
    M68K_STATE copy = cpu;
    return StatePieceWrite(out, Fields(copy));
}

uint32_t M68kLoad(M68K_STATE& cpu, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, Fields(cpu));
    if (used != 0) {
        Sanitize(cpu);
    }
    return used;
}
