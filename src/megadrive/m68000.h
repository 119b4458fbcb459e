// M68000: the main processor of the Mega Drive.
//
// A table-driven interpreter: every opcode pattern has a handler of its own with its addressing mode expanded,
// and the whole opcode is the index. The run loop belongs to the machine; M68kTick (m68000_tick.h), one
// instruction, is what it repeats.
//
// Clock: one clock is 7 master clocks, 7,670,454 a second at 60 Hz. A tick returns the clocks that it cost,
//   which is the opcode's table byte and nothing more.
// Units: addresses are 24 bits wide on the bus; the registers keep all 32.
// Owner: its machine, on the session's thread, with no lock. The tables are shared and read-only once built.
// Pins: `owner` is passed to every callback. Long accesses go to the bus as such, so the order of their two
//   words is the bus's. A page of 64 KiB of plain memory may be set in readPages or writePages, as
//   little-endian words (a byte access flips bit 0 of the address); null uses the callback. intAck returns a
//   vector, kM68kAutovector, kM68kSpurious, or any other value above 255 to drop the interrupt. `stopped` is
//   also written by the VDP, which keeps the processor off the bus with it.
// Order: zero the record, set owner, intAck, the seven bus callbacks and the pages, M68kReset, then M68kTick.
// Differs: docs/HARDWARE.md, Mega Drive, 68000.
// As on the 68000, unlike later types:
//   - A branch with a displacement byte of 0xFF is a byte branch by -1 without extension words. It leads to an
//     odd address, which is an address error of the next tick.
//   - TST of an address register or of a PC-relative operand is illegal.
// Sources: Motorola M68000 User's Manual (9th ed.) and Programmer's Reference Manual; times also from "Yacht
//   v1.2"; open flags from B. Trzynadlowski, "68000 Undocumented Behavior Notes".
#pragma once

#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kM68kAutovector = 0xFFFFFFFF;
inline constexpr uint32_t kM68kSpurious = 0xFFFFFFFE;

inline constexpr uint32_t kM68kPages = 256; // of 64 KiB in the 24-bit map

// Index of A7 and of A0 in regs.
inline constexpr uint32_t kM68kA0 = 8;
inline constexpr uint32_t kM68kA7 = 15;

// Values of aerrMode.
enum M68kAccess : uint32_t { kM68kWriting = 0, kM68kReading = 16 };

// Thrown out of M68kTick by a word or long access at an odd address. aerrAddress, aerrMode and aerrCode are
// set, and the instruction is left half done; no frame is built and no vector taken. The owner catches it.
struct M68K_ADDRESS_ERROR {};

using M68kIntAckFunction = uint32_t (*)(void* owner, uint32_t level);
using M68kEventFunction = void (*)(void* owner);
using M68kReadFunction = uint32_t (*)(void* owner, uint32_t address);
using M68kWriteFunction = void (*)(void* owner, uint32_t address, uint32_t value);

struct M68K_STATE {
    void* owner = nullptr;
    uint32_t cpuType = 0;            // 1: 68000
    std::array<uint32_t, 16> regs{}; // D0 to D7, A0 to A7; A7 is the active stack pointer
    uint32_t prevPc = 0;             // address of the instruction being executed
    uint32_t pc = 0;                 // next fetch address
    // Inactive stack pointers, by s | (m & s >> 1): 0 user, 4 interrupt, 6 master.
    std::array<uint32_t, 7> stackSlots{};
    uint32_t vbr = 0; // always 0 here, but added to every vector's address
    uint32_t sfc = 0; // this and the next three are of later types
    uint32_t dfc = 0;
    uint32_t cacr = 0;
    uint32_t caar = 0;
    uint32_t ir = 0;            // opcode being executed
    std::array<double, 8> fp{}; // of later types, like the next three
    uint32_t fpiar = 0;
    uint32_t fpsr = 0;
    uint32_t fpcr = 0;
    uint32_t t1 = 0;           // 0x8000 when set
    uint32_t t0 = 0;           // 0x4000 when set; never on a 68000
    uint32_t s = 0;            // 4 in supervisor state
    uint32_t m = 0;            // 2 in master state; never on a 68000
    uint32_t x = 0;            // bit 8
    uint32_t n = 0;            // bit 7
    uint32_t notZ = 0;         // 0 when Z is set
    uint32_t v = 0;            // bit 7
    uint32_t c = 0;            // bit 8
    uint32_t intMask = 0;      // level << 8
    uint32_t intLevel = 0;     // highest raised line << 8
    uint32_t stopped = 0;      // not 0: nothing executes; also written by the VDP
    uint32_t prefetchAddr = 0; // of the word in prefetchData
    uint32_t prefetchData = 0;
    uint32_t srMask = 0;    // implemented bits of the status word
    uint32_t instrMode = 0; // 8 since the first exception or acknowledgement; never read
    uint32_t runMode = 0;
    // Time that the data of an instruction adds or saves. It is subtracted from cyclesLeft, which nothing reads,
    // so no tick gets longer.
    int32_t cycBranchByte = 0; // branch not taken
    int32_t cycBranchWord = 0;
    int32_t cycLoopRound = 0; // DBcc with a false condition, counter not expired
    int32_t cycLoopEnd = 0;   // the same, counter expired
    int32_t cycSetTrue = 0;
    int32_t cycMovemWord = 0; // left shift of the number of registers
    int32_t cycMovemLong = 0;
    int32_t cycShift = 0; // left shift of the shift count
    int32_t cycReset = 0;
    int32_t intCycles = 0;
    int32_t cyclesLeft = 0; // counts down and wraps; a reset and STOP lower it to 0 if it is above
    uint32_t spare0 = 0;    // saved, otherwise unused
    uint32_t spare1 = 0;
    std::array<uint8_t, 256> recovery{}; // stays zero; an address error needs no buffer here
    uint32_t aerrAddress = 0;
    uint32_t aerrMode = 0; // M68kAccess
    uint32_t aerrCode = 0; // function code: s with 1 for data, with 2 for program
    uint32_t irqLines = 0; // bit n is line n
    uint32_t nmiPending = 0;
    M68kIntAckFunction intAck = nullptr;
    std::array<M68kEventFunction, 5> events{}; // may be null; RESET calls the second one
    M68kReadFunction readImmediate = nullptr;
    M68kReadFunction readByte = nullptr;
    M68kReadFunction readWord = nullptr;
    M68kReadFunction readLong = nullptr;
    M68kWriteFunction writeByte = nullptr;
    M68kWriteFunction writeWord = nullptr;
    M68kWriteFunction writeLong = nullptr;
    uint32_t spare2 = 0; // saved, otherwise unused

    std::array<const uint16_t*, kM68kPages>
        readPages{}; // set by the owner, not saved; also for fetches
    std::array<uint16_t*, kM68kPages> writePages{};
};

using M68kHandler = void (*)(M68K_STATE& cpu);

inline constexpr uint32_t kM68kOpcodes = 65536;
// NOLINTBEGIN(readability-identifier-naming): names fixed for the whole program
// By the whole opcode. Filled by M68kBuildTables, never written afterwards.
extern std::array<M68kHandler, kM68kOpcodes> m68kHandlers;
// Clocks by opcode.
extern std::array<uint8_t, kM68kOpcodes> m68kCycles;
// Clocks by vector.
extern const std::array<uint8_t, 256> m68kExceptionCycles;
// NOLINTEND(readability-identifier-naming)

// Fills the tables at the first call, from any thread; later calls do nothing.
void M68kBuildTables();

// Reads the vectors through the bus, so callbacks and pages must be set. An odd start address is an address
// error of the first tick.
void M68kReset(M68K_STATE& cpu);

// `state` 1 raises the line, anything else lowers it. Line 0 is ignored.
void M68kSetIrqLine(M68K_STATE& cpu, uint32_t line, uint32_t state);

// The status word, put together from its parts.
[[nodiscard]] uint32_t M68kStatus(const M68K_STATE& cpu);

// The state piece: a version byte, its size and the fields, 353 bytes:
//   0   version, 1
//   1   size, u32
//   5   48 u32: cpuType, prevPc, pc, vbr, sfc, dfc, cacr, caar, ir, fpiar, fpsr, fpcr, t1, t0, s, then m to
//       spare1 in the record's order, aerrAddress, aerrMode, aerrCode, irqLines, nmiPending, spare2
//   197 fp
//   261 stackSlots
//   289 regs
inline constexpr uint32_t kM68kStateSize = 353;
[[nodiscard]] uint32_t M68kStateSize();
// Writes the piece and returns the byte after it.
StateOut M68kSave(const M68K_STATE& cpu, StateOut out);
// Returns the bytes used, or 0 with nothing changed for a piece of another version or size. Callbacks and
// pages stay.
[[nodiscard]] uint32_t M68kLoad(M68K_STATE& cpu, const uint8_t* data, uint32_t size);
